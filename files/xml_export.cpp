#include "files/xml_export.h"

#include <algorithm>
#include <cstring>

#include "core/characters.h"
#include "core/civil_date.h"
#include "core/digits.h"

namespace qxview {
namespace {

constexpr int64_t kPerSecond = 1000000000;
// Zones change their offset at multiples of a quarter of an hour.
constexpr int64_t kOffsetSpan = 900;

int64_t DivideDown(int64_t value, int64_t by) { return value / by - (value % by < 0 ? 1 : 0); }

// In the order in which a frame's receive errors are told in its decode.
const char* StatusName(uint32_t errors) {
  constexpr uint32_t kBoth = kReceiveAlignment | kReceiveCrc;
  if (errors == 0) return "Normal";
  if ((errors & kBoth) == kBoth) return "Alignment+CRC";
  if (errors & kReceiveAlignment) return "Alignment";
  if (errors & kReceiveCrc) return "CRC";
  if (errors & kReceiveTooSmall) return "Frame Too Small";
  if (errors & kReceiveTooBig) return "Frame Too Big";
  if (errors & kReceiveAbort) return "Abort Error";
  if (errors & kReceiveRBit) return "RBit Error";
  return "Data Error";
}

// Readers of the document know three names.
const char* NetworkName(const FrameRecord* record) {
  if (record->mediaType == static_cast<uint8_t>(Medium::kTokenRing)) return "TokenRing";
  if (record->mediaType == static_cast<uint8_t>(Medium::kFddi)) return "FDDI";
  return "Ethernet";
}

// Whether all of it is characters in UTF-8 that XML takes.
bool IsUtf8(std::string_view text) {
  const uint8_t* at = reinterpret_cast<const uint8_t*>(text.data());
  for (int32_t left = static_cast<int32_t>(text.size()); left > 0;) {
    const Utf8Character character = Utf8At(at, left);
    if (character.octets == 0 || character.code == 0xFFFE || character.code == 0xFFFF) return false;
    at += character.octets;
    left -= character.octets;
  }
  return true;
}

}  // namespace

XmlExport::XmlExport(const OutputSink& sink, LocalOffsetFunction offset)
    : own_(std::make_unique<OutputFile>()), file_(own_.get()), offset_(offset) {
  OpenOutput(file_, sink);
}

void XmlExport::Put(std::string_view text) {
  WriteOutput(file_, text.data(), static_cast<int32_t>(text.size()));
}

void XmlExport::PutNumber(uint64_t number) {
  char digits[24];
  char* const end = digits + sizeof digits;
  const char* start = WriteDecimal(end, number);
  Put({start, static_cast<size_t>(end - start)});
}

void XmlExport::PutAttribute(std::string_view nameAndEquals, uint64_t value) {
  Put(nameAndEquals);
  Put("\"");
  PutNumber(value);
  Put("\" ");
}

void XmlExport::PutTextAttribute(std::string_view nameAndEquals, const char* text) {
  Put(nameAndEquals);
  Put("\"");
  PutEscaped(text ? text : "");
  Put("\" ");
}

void XmlExport::PutEscaped(std::string_view text) {
  const bool utf8 = IsUtf8(text);
  for (const char c : text) {
    const uint8_t value = static_cast<uint8_t>(c);
    if (c == '&') {
      Put("&amp;");
    } else if (c == '<') {
      Put("&lt;");
    } else if (c == '>') {
      Put("&gt;");
    } else if (c == '"') {
      Put("&quot;");
    } else if (c == '\t' || c == '\n' || c == '\r') {   // a reader turns them into blanks unless they are escaped
      Put("&#");
      PutNumber(value);
      Put(";");
    } else if (value < 0x20) {
      Put("?");   // XML has no way to say it
    } else if (value < 0x80 || utf8) {
      Put({&c, 1});
    } else {
      Put("&#");
      PutNumber(CodeOfWindows1252(value));
      Put(";");
    }
  }
}

void XmlExport::PutTime(int64_t nanoseconds) {
  static constexpr char kDays[] = "ThuFriSatSunMonTueWed";   // the epoch's first day was a Thursday
  static constexpr char kMonths[] = "JanFebMarAprMayJunJulAugSepOctNovDec";
  const int64_t utcSeconds = DivideDown(nanoseconds, kPerSecond);
  if (const int64_t span = DivideDown(utcSeconds, kOffsetSpan); span != offsetSpan_) {
    offsetSpan_ = span;
    offsetSeconds_ = offset_(utcSeconds);
  }
  const int64_t micros = DivideDown(nanoseconds, 1000) + offsetSeconds_ * 1000000;
  const int64_t seconds = DivideDown(micros, 1000000);
  const uint32_t fraction = static_cast<uint32_t>(micros - seconds * 1000000);
  const CivilTime time = TimeOfSecond(seconds);
  Put("Date=\"");
  Put({kDays + 3 * (time.dayNumber - 7 * DivideDown(time.dayNumber, 7)), 3});
  Put(" ");
  Put({kMonths + 3 * (time.month - 1), 3});
  Put(" ");
  PutNumber(time.day);
  Put(" ");
  PutNumber(static_cast<uint64_t>(time.year));
  Put("\" ");
  PutAttribute("Day=", static_cast<uint64_t>(time.dayNumber));
  Put("Time=\"");
  PutNumber(time.hour);
  Put("h:");
  PutNumber(time.minute);
  Put("m ");
  PutNumber(time.second);
  char digits[8] = ".000000";
  for (uint32_t at = 6, rest = fraction; rest > 0; --at, rest /= 10) digits[at] = static_cast<char>('0' + rest % 10);
  Put({digits, 7});
  Put("s\" ");
  PutAttribute("Mks=", static_cast<uint64_t>(micros));
}

void XmlExport::PutHex(const uint8_t* bytes, size_t length) {
  char digits[8192];
  while (length > 0) {
    const size_t now = std::min(length, sizeof digits / 2);
    for (size_t i = 0; i < now; ++i) std::memcpy(digits + 2 * i, kHexPairs + 2 * bytes[i], 2);
    Put({digits, 2 * now});
    bytes += now;
    length -= now;
  }
}

void XmlExport::Begin() {
  Put("<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"yes\"?>\r\n"
      "<VantrellPacketCapture version=\"9.0\">\r\n"
      " <PacketCapture>\r\n"
      "  <Packets>\r\n");
}

void XmlExport::Count(uint64_t number) {
  if (packets_++ == 0) first_ = number;
  last_ = number;
}

void XmlExport::AddFrame(uint64_t number, const FrameRecord* record) {
  Count(number);
  const char* const network = NetworkName(record);
  if (!networkType_) networkType_ = network;
  int32_t movedLength;
  const uint8_t* const moved = FindMovedHeader(record, &movedLength);
  const uint64_t before = static_cast<uint64_t>(movedLength);
  Put("   <Packet ");
  PutAttribute("Number=", number);
  Put("Type=\"");
  Put(StatusName(record->receiveErrors));
  Put("\" ");
  PutTime(record->nanoseconds);
  PutAttribute("FrameSize=", WireLength(record) + before);
  PutAttribute("CapturedSize=", record->capturedLength + before);
  Put("NetworkType=\"");
  Put(network);
  Put("\" RawPacket=\"");
  if (moved) PutHex(moved, static_cast<size_t>(movedLength));
  PutHex(FrameData(record), record->capturedLength);
  Put("\"/>\r\n");
}

void XmlExport::AddAnalysis(uint64_t number, int64_t nanoseconds, const char* source, const char* destination) {
  Count(number);
  Put("   <Packet ");
  PutAttribute("Number=", number);
  Put("Type=\"ExpertPacket\" ");
  PutTime(nanoseconds);
  PutTextAttribute("Src=", source);
  PutTextAttribute("Dst=", destination);
  Put(">\r\n   </Packet>\r\n");
}

void XmlExport::PutAlias(uint64_t number, const XmlAlias& alias) {
  Put("   <Entry ");
  PutAttribute("Number=", number);
  if (alias.hardware) {
    Put("Addr=\"");
    for (int i = 0; i < 6; ++i) {
      if (i > 0) Put(":");
      PutHex(alias.hardware + i, 1);
    }
    Put("\" ");
  }
  if (alias.ipv4) PutTextAttribute("IP=", alias.ipv4);
  if (alias.ipv6) PutTextAttribute("IPv6=", alias.ipv6);
  if (alias.name) PutTextAttribute("Alias=", alias.name);
  if (alias.comment) PutTextAttribute("Comment=", alias.comment);
  Put("/>\r\n");
}

void XmlExport::TakeCounts(const XmlExport& part) {
  if (part.packets_ == 0) return;
  if (packets_ == 0 || part.first_ < first_) {
    first_ = part.first_;
    networkType_ = part.networkType_;
  }
  last_ = std::max(last_, part.last_);
  packets_ += part.packets_;
}

bool XmlExport::Finish(const XmlAlias* aliases, size_t count, uint64_t speed) {
  Put("  </Packets>\r\n  <Summary>\r\n   <SummaryData ");
  PutAttribute("Packets=", packets_);
  PutAttribute("FirstPacket=", first_);
  PutAttribute("LastPacket=", last_);
  PutTextAttribute("NetworkType=", networkType_ ? networkType_ : "Ethernet");
  PutAttribute("NetworkSpeed=", speed);
  Put("/>\r\n  </Summary>\r\n  <AliasList>\r\n");
  for (size_t i = 0; i < count; ++i) PutAlias(i + 1, aliases[i]);
  Put("  </AliasList>\r\n </PacketCapture>\r\n</VantrellPacketCapture>\r\n");
  FlushOutput(file_);
  return !file_->failed;
}

}  // namespace qxview
