// A frame: wishes (1), way (1), number (2), flags (1), the bytes. The way's top bit: a frame of a capture, whose link type is
// the number; else a record of the medium, or a raw one whose Ethertype is the number.
#include <algorithm>

#include "files/record_builder.h"
#include "fuzz/stations.h"
#include "fuzz/targets.h"
#include "fuzz/told_packet.h"
#include "host/packet_addresses.h"
#include "query/probe.h"

namespace qxview::fuzz {
namespace {

constexpr size_t kLongest = 20000;
constexpr uint32_t kMedia = 11;   // the last one: a raw frame

ExactRecord RecordOf(uint32_t way, uint16_t number, uint32_t flags, const Piece& frame) {
  if (way & 0x80) {
    static const auto builder = std::make_unique<RecordBuilder>();
    CaptureFrame captured{};
    captured.number = 1;
    captured.nanoseconds = 1234567890123456789;
    captured.capturedLength = captured.dataLength = static_cast<uint32_t>(frame.size);
    captured.wireLength = static_cast<uint32_t>(frame.size) + (flags & 1 ? 100 : 0);
    captured.data = frame.data;
    captured.linkType = number;
    captured.direction = static_cast<LinkDirection>(flags >> 1 & 3);
    captured.receiveErrors = flags & 8 ? number : 0;
    captured.checkSequenceLength = flags & 0x10 ? 4 : 0;
    return ExactRecord(builder->Build(captured));
  }
  const uint32_t medium = (way & 0x3F) % kMedia;
  ExactRecord record(frame);
  record->mediaType = static_cast<uint8_t>(medium < 10 ? medium : 0);
  record->partial = flags & 1;
  record->direction = static_cast<uint8_t>(flags >> 1 & 3);
  record->receiveErrors = flags & 8 ? flags : 0;
  record->checkSequenceLength = flags & 0x10 ? 4 : 0;
  record->linkType = number;
  if (medium == 10) {
    record->rawEthertype = number;
    record->rawSkip = flags & 0x20 ? 4 : 0;
  }
  if (way & 0x40) record->layout = 0;
  return record;
}

// Each with its line; in no order, since lines that are added above others stand behind them where those are left out.
std::string AnswersOf(const KeyQuery& query) {
  std::vector<std::string> answers;
  for (int32_t asked = 0; asked < query.Count(); ++asked) {
    for (const AskedValue& value : query.ValuesOf(asked)) {
      answers.push_back(std::to_string(asked) + ": " + TextOfValue(value) + " of " + std::string(value.line) + "\n");
    }
  }
  std::sort(answers.begin(), answers.end());
  std::string text;
  for (const std::string& answer : answers) text += answer;
  return text;
}

// A question makes only the lines that it asks about, and finds in them what the whole frame says: asked for the keys of some of
// its lines, one by one and then together.
void CheckQuestions(uint32_t wishes, const FrameRecord* record, uint32_t seed) {
  constexpr uint32_t kMostAsked = 4;
  Station station(wishes, kDisplayMode);
  Session& session = *station.session;
  if (!KeepFacts(&session.Context(), true)) return;
  session.Decode(record);
  const DecodeContext& context = session.Context();
  if (context.packet.limitReached) return;   // what is passed over counts less, so a question may get further
  KeyQuery all;
  Told told;
  std::vector<std::string> keys, wanted;
  for (uint32_t i = 0; i < kMostAsked && context.rangeCount > 0; ++i) {
    const LineFact* fact = FactOf(&context, (seed + i * 0x9E3779B1u) % context.rangeCount);
    char key[kKeySize];
    KeyQuery query;
    if (!fact || FormatKey(&context, *fact, key, sizeof key) <= 0) continue;
    if (query.Ask(key, nullptr) < 0 || query.AsksForProtocols()) continue;
    query.Collect(context, session.Tree(), told);
    keys.emplace_back(key);
    wanted.push_back(AnswersOf(query));
    all.Ask(key, nullptr);
  }
  all.Collect(context, session.Tree(), told);
  const std::string together = AnswersOf(all);
  const auto expect = [&](KeyQuery& query, const std::string& answers, const std::string& asked) {
    const Station other(wishes, kDisplayMode);   // which was taught nothing by the frame
    Probe probe(*other.session);
    if (!probe.Ask(query, record, told)) return;
    const std::string got = AnswersOf(query);
    if (got != answers) Fail("a question finds what the frame says", (asked + "\n" + answers + "--- asked\n" + got).c_str());
  };
  for (size_t i = 0; i < keys.size(); ++i) {
    KeyQuery query;
    query.Ask(keys[i], nullptr);
    expect(query, wanted[i], keys[i]);
  }
  expect(all, together, "all");
}

}  // namespace

void RunFrame(const uint8_t* data, size_t size) {
  if (size < 5 || size > kLongest) return;
  Input input(data, size);
  const uint32_t wishes = input.U8(), way = input.U8();
  const auto number = static_cast<uint16_t>(input.U16());
  const uint32_t flags = input.U8();
  const ExactRecord record = RecordOf(way, number, flags, input.Rest());
  if (wishes & kRepaired) {
    const bool isDatagram = record->rawEthertype != 0;
    const size_t skip = isDatagram ? record->rawSkip : 0, length = record->capturedLength;
    if (skip < length) RepairChecksums(record.Frame() + skip, length - skip, !isDatagram);
  }
  Stations stations(wishes);
  const int32_t skipBytes = flags & 0x40 ? 14 : 0;
  stations.Decode(record.get(), skipBytes);
  // Once more, behind what it has taught.
  record->packetNumber = 2;
  stations.Decode(record.get(), skipBytes);
  if (wishes & kKeys) CheckQuestions(wishes, record.get(), (static_cast<uint32_t>(number) << 8 | flags) ^ record->capturedLength);
  PacketAddresses addresses;
  FormatPacketAddresses(stations.Shown().Context().packet, stations.Shown().GetEngine()->host, &addresses);
}

}  // namespace qxview::fuzz
