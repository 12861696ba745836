#include "app/packet_notes.h"

#include <cstring>

#include "core/characters.h"
#include "core/frame_entry.h"
#include "files/pcapng_options.h"

namespace qxview {
namespace {

constexpr size_t kMostNotes = 8192;   // bytes of a packet's

// UTF-8 in the characters of lines; a question mark for what they do not have, a blank for controls.
std::string LineTextOf(std::string_view text) {
  std::string line;
  for (size_t at = 0; at < text.size();) {
    const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data()) + at;
    const Utf8Character next = Utf8At(bytes, static_cast<int32_t>(text.size() - at));
    const uint32_t point = next.octets ? next.code : bytes[0];   // a byte that is no UTF-8 stands for itself
    const uint8_t character = next.octets ? Windows1252Of(point) : bytes[0];
    line += point < 0x20 || point == 0x7F ? ' ' : character ? static_cast<char>(character) : '?';
    at += next.octets ? static_cast<size_t>(next.octets) : 1;
  }
  return line;
}

std::string TextOf(const uint8_t* value, uint16_t length) {
  const std::string_view text(reinterpret_cast<const char*>(value), length);
  return LineTextOf(text.substr(0, text.find('\0')));   // some writers end texts with a zero byte
}

}  // namespace

// "Interface: 0 = eth0 (Ethernet adapter)"; nothing of the one interface of a file that tells nothing of it.
void PacketNotes::AddInterface(const CaptureFrame& frame) {
  std::string name, description;
  ForEachOption(frame.interface->options, [&](uint16_t code, uint16_t length, const uint8_t* value) {
    if (code == kInterfaceName) name = TextOf(value, length);
    if (code == kInterfaceDescription) description = TextOf(value, length);
  });
  if (name.empty()) name.swap(description);
  if (name.empty() && frame.interfaceIndex == 0) return;
  notes_ += "Interface: " + std::to_string(frame.interfaceIndex);
  if (!name.empty()) notes_ += " = " + name;
  if (!description.empty()) notes_ += " (" + description + ")";
  notes_ += '\0';
}

const FrameRecord* PacketNotes::Add(const FrameRecord* record, const CaptureFrame& frame, const PacketTimes& times) {
  notes_.clear();
  // The module shows the time in UTC, with nine digits where the last three of them say something.
  const bool isInNanoseconds = frame.interface && frame.interface->timeDigits == 9;
  const bool hasTime = record->nanoseconds != 0;
  if (hasTime && (form_ != TimeForm::kUtc || (isInNanoseconds && record->nanoseconds % 1000 == 0))) {
    notes_ += time_.Line(times, isInNanoseconds);
  }
  notes_ += '\0';
  if (frame.interface && frame.interface->section > 0) {
    AddInterface(frame);
    const LinkDirection direction = frame.direction;
    if (direction == LinkDirection::kReceived) notes_.append("Direction: Received").push_back('\0');
    if (direction == LinkDirection::kSent) notes_.append("Direction: Sent").push_back('\0');
    ForEachOption(frame.options, [&](uint16_t code, uint16_t length, const uint8_t* value) {
      if (code != kOptionComment || notes_.size() + length > kMostNotes) return;
      notes_.append("Comment: ").append(TextOf(value, length)).push_back('\0');
    });
  }
  const size_t block = 4 + notes_.size();
  if (notes_.size() == 1 || !HasFullHeader(record) || record->recordLength + block > kMaxRecord) return record;
  const auto* from = reinterpret_cast<const uint8_t*>(record);
  const uint16_t head[2] = {kExtensionNotes, static_cast<uint16_t>(block)};
  const size_t offset = record->dataOffset;
  std::memcpy(bytes_, from, offset);
  std::memcpy(bytes_ + offset, head, sizeof head);
  std::memcpy(bytes_ + offset + sizeof head, notes_.data(), notes_.size());
  std::memcpy(bytes_ + offset + block, from + offset, record->recordLength - offset);
  auto* noted = reinterpret_cast<FrameRecord*>(bytes_);
  noted->dataOffset = static_cast<uint16_t>(offset + block);
  noted->recordLength = static_cast<uint16_t>(record->recordLength + block);
  return noted;
}

}  // namespace qxview
