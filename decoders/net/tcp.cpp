// Transmission Control Protocol (RFC 9293).
//
//   0            2                 4         8                12           13     14      16        18        20
//   source port  destination port  sequence  acknowledgement  data offset  flags  window  checksum  urgent p.  options
//
// Data offset: the header's length in words of 4 bytes, in the high four bits of byte 12.
#include "decoders/net/tcp.h"

#include <cstring>

#include "core/custom_libraries.h"
#include "core/decoder.h"
#include "core/internet_checksum.h"
#include "core/line_facts.h"
#include "core/line_group.h"
#include "decoders/common/checksum_line.h"
#include "decoders/net/port_dispatch.h"
#include "decoders/net/tcp_options.h"
#include "decoders/net/window_scales.h"

namespace qxview {
namespace {

constexpr int32_t kPorts = 4, kThroughFlags = 14, kChecksum = 16, kFixedHeader = 20;
constexpr uint32_t kFin = 1, kSyn = 2, kRst = 4, kPsh = 8, kAck = 16, kUrg = 32, kEce = 64, kCwr = 128;

// The segment as its parts learn of it.
struct Segment {
  Cursor start;
  const NetworkState* network;
  bool strictCheck;
  int32_t dataOffset;      // words
  int32_t headerLength;    // bytes; at least the fixed header
  uint32_t flags;
  uint32_t sequence;
  LineHandle topLine;
  int32_t protocol;
  bool matchedSource;
  ShortText<kProtocolNameSize> sourceName, destinationName;   // of the side that matched; the other is empty
  bool isBad;   // its checksum, where that ends the decoding
};

const char* WordOf(const Segment& segment, uint32_t flag, const char* word) {
  return segment.flags & flag ? word : "";
}

// Whose protocol it is, by the definitions, and beside which port its name stands.
void ResolveSegment(const Place& at, Segment& segment) {
  const PacketState& packet = PacketOf(at);
  segment.protocol = ResolveProtocol(at.view, kIpProtocolTcp, packet.source, packet.sourcePort, packet.destination,
                                     packet.destinationPort, &segment.matchedSource);
  segment.sourceName.text[0] = segment.destinationName.text[0] = 0;
  if (Silent(at)) return;
  (segment.matchedSource ? segment.sourceName : segment.destinationName) = ProtocolName(at.view, segment.protocol);
}

LineHandle AddTopLine(const Place& at, const Segment& segment) {
  if (Silent(at)) return at.dead ? 0 : CountLine(at.view);
  const PacketState& packet = PacketOf(at);
  const int32_t left = Left(segment.start);
  const Field header = Ahead(segment.start, segment.headerLength < left ? segment.headerLength : left);
  // The first place is for a note on the whole segment; there is none so far.
  return AddLine(at, header, "TCP %s%s%s%s%s%s%s,   [%u] %s -> [%u] %s", "", WordOf(segment, kFin, " FIN"),
                 WordOf(segment, kSyn, " SYN"), WordOf(segment, kRst, " RST"), WordOf(segment, kPsh, " PSH"),
                 WordOf(segment, kAck, " ACK"), WordOf(segment, kUrg, " URG"), packet.sourcePort,
                 segment.sourceName, packet.destinationPort, segment.destinationName);
}

void AddPorts(const Place& in, Cursor& c, const Segment& segment) {
  const PacketState& packet = PacketOf(in);
  const Place ports =
      Under(in, AddLine(in, Ahead(c, kPorts), "Ports: Source port [%u] %s, Destination port [%u] %s",
                        packet.sourcePort, segment.sourceName, packet.destinationPort, segment.destinationName));
  const bool matched = segment.protocol > 0;
  const Field source = TakeU16(c);
  if (matched && segment.matchedSource) {
    AddLine(ports, source, "Source Port : %u = %s", source.value, segment.sourceName);
  } else {
    AddLine(ports, source, "Source Port : %u ", source.value);
  }
  const Field destination = TakeU16(c);
  if (matched && !segment.matchedSource) {
    AddLine(ports, destination, "Destination Port : %u = %s", destination.value, segment.destinationName);
  } else {
    AddLine(ports, destination, "Destination Port : %u", destination.value);
  }
}

void AddFlags(const Place& in, const Field& word, const Segment& segment) {
  const int32_t words = segment.dataOffset, bytes = 4 * words;
  const Place at = Under(
      in, AddLine(in, word, "TCP flags: %s%s%s%s%s%s   Header length: [%d]*4 bytes = %d bytes",
                  WordOf(segment, kFin, " FIN"), WordOf(segment, kSyn, " SYN"), WordOf(segment, kRst, " RST"),
                  WordOf(segment, kPsh, " PSH"), WordOf(segment, kAck, " ACK"), WordOf(segment, kUrg, " URG"),
                  words, bytes));
  AddBitLine(at, word, "%s : TCP header length (Data Offset) [%d]*4 bytes = %d (0x%.01X) bytes",
             BitsOf(word, 0, 4).picture, words, bytes, bytes);
  AddBitLine(at, word, "%s : Reserved", BitsOf(word, 4, 4).picture);
  const auto bit = [&](uint32_t flag, int32_t position) {
    BitPicture made = BitsOf(word, position, 1);
    made.value = segment.flags & flag;
    return made;
  };
  const BitPicture cwr = bit(kCwr, 8), ece = bit(kEce, 9), urg = bit(kUrg, 10), ack = bit(kAck, 11);
  const BitPicture psh = bit(kPsh, 12), rst = bit(kRst, 13), syn = bit(kSyn, 14), fin = bit(kFin, 15);
  AddBitLine(at, word, "%s : Congestion Window Reduced (CWR) = %s", cwr.picture, SetOrNotSet(cwr.value));
  AddBitLine(at, word, "%s : ECN-Echo = %s", ece.picture, SetOrNotSet(ece.value));
  AddBitLine(at, word, "%s : Urgent pointer field %ssignificant", urg.picture, urg.value ? "" : "not ");
  AddBitLine(at, word, "%s : Acknowledgment field %ssignificant", ack.picture, ack.value ? "" : "not ");
  AddBitLine(at, word, "%s : Push function %s", psh.picture, SetOrNotSet(psh.value));
  AddBitLine(at, word, "%s : Reset the connection %s", rst.picture, SetOrNotSet(rst.value));
  AddBitLine(at, word, "%s : Synchronize sequence numbers %s", syn.picture, SetOrNotSet(syn.value));
  if (LeavesLabel(at.view, at.parent, "Finish", true)) return CountLines(at, 1);   // its text has no label
  const LineHandle last =
      AddBitLine(at, word, "%s : %sore data from sender", fin.picture, fin.value ? "No m" : "Expect m");
  if (KeepsFacts(at.view)) [[unlikely]] LabelLine(at.view, last, "Finish");
}

void AddWindow(const Place& in, Cursor& c, const Segment& segment) {
  const Field window = TakeU16(c);
  // The window of a SYN segment itself is never scaled (RFC 7323 section 2.2).
  const int32_t exponent = segment.flags & kSyn ? kNoWindowScale : FindWindowScale(in);
  if (exponent == kNoWindowScale) {
    AddLine(in, window, "Window:                   %d", window.value);
  } else {
    AddLine(in, window, "Window: (%u * %u) = %u", window.value, 1u << exponent, window.value << exponent);
  }
}

// What a bad sum is excused by: the field was left to the network card. Null for no excuse.
const char* WhyNotCalculated(const Segment& segment, const Field& checksum) {
  uint16_t stored;   // as the machine reads it, as the sums are
  std::memcpy(&stored, checksum.bytes, sizeof stored);
  if (segment.strictCheck || stored != segment.network->pseudoHead) return nullptr;
  return stored ? "Not Calculated" : "Not Checked";
}

struct ChecksumFinding {
  const char* unchecked;   // why it tells nothing
  uint32_t sum;
  bool isBad;
};

// Of a segment that is no fragment.
ChecksumFinding CheckSegment(const Segment& segment, const Field& checksum) {
  const NetworkState& network = *segment.network;
  if (network.offloaded) return {"Not Checked - Segmentation Offload", 0, false};
  if (network.totalLength > Left(segment.start)) return {"Not Checked - Partial Capture", 0, false};
  const uint32_t sum = SumWords(network.pseudoHead, segment.start.at, Left(segment.start));
  const char* unchecked = sum == 0xFFFF ? nullptr : WhyNotCalculated(segment, checksum);
  return {unchecked, sum, !unchecked && sum != 0xFFFF};
}

void AddChecksum(const Place& in, Cursor& c, Segment& segment) {
  const Field checksum = TakeU16(c);
  if (!checksum.here) return;
  const NetworkState& network = *segment.network;
  if (network.fragmented) {
    AddLine(in, checksum, "Checksum:                 0x%.04X", checksum.value);
    AppendToLine(in, segment.topLine, "(fragment, offset %u, %s)", network.fragmentOffset,
                 network.moreFragments ? "more fragments to follow" : "last fragment");
    return;
  }
  const ChecksumFinding found = CheckSegment(segment, checksum);
  AddChecksumLine(in, checksum, "Checksum:                ", found.unchecked, found.sum, BadChecksum::kWithRight);
  if (found.isBad) AppendToLine(in, segment.topLine, "(Bad Checksum)");
  segment.isBad = found.isBad && !in.view->engine->settings.ignoreChecksums;   // it is told, and that is all
}

// The fields of the fixed header, as far as they are there.
void ShowHeader(const Place& in, Cursor& c, Segment& segment) {
  AddPorts(in, c, segment);
  const Field sequence = TakeU32(c);
  AddLine(in, sequence, "Sequence number:          %4lu", sequence.value);
  const Field acknowledgement = TakeU32(c);
  AddLine(in, acknowledgement, "Acknowledgement:          %4lu", acknowledgement.value);
  const Field flags = TakeU16(c);
  AddToldGroup(in, flags, "tcp flags", [&] { AddFlags(in, flags, segment); });
  AddWindow(in, c, segment);
  AddChecksum(in, c, segment);
  const Field urgent = TakeU16(c);
  AddLine(in, urgent, "Urgent Pointer:           %d - %ssignificant", urgent.value, segment.flags & kUrg ? "" : "not ");
}

// The header where nobody wants its lines, of a segment that has all its bytes.
void PassHeader(const Place& in, Cursor& c, Segment& segment) {
  constexpr int32_t kLines = 19;   // under the top line, without options and what is calculated
  CountLines(in, kLines);
  // Asked in every pass that a decode may follow: what a look-up gave may be recorded.
  if (!(segment.flags & kSyn) && !in.view->context->headersOnly) FindWindowScale(in);
  TakeBytes(c, kChecksum);
  const Field checksum = TakeU16(c);
  segment.isBad = !in.view->engine->settings.ignoreChecksums && CheckSegment(segment, checksum).isBad;
  TakeU16(c);
}

// What follows from the header: lines over the fields that they are calculated from.
void AddCalculatedLines(const Place& in, const Segment& segment, int32_t dataLength) {
  const Field offsetByte = Stated(segment.start.offset + 12, 1), sequence = Stated(segment.start.offset + 4, 4);
  AddLine(in, offsetByte, "TCP data length:          %u (calculated from Data Offset)", dataLength);
  if (segment.flags & kSyn) {
    AddLine(in, sequence, "Expected Acknowledgement: %4lu (Calculated from Sequence Number)", segment.sequence + 1);
  }
  if (dataLength > 0) {
    AddLine(in, sequence, "Expected Acknowledgement: %4lu (Calculated from Sequence Number and Data Length)",
            segment.sequence + static_cast<uint32_t>(dataLength));
  }
}

// Two bytes of padding and timestamps: what nearly all options are, and nothing for later.
bool IsTimestampsAlone(const Cursor& area) {
  constexpr int32_t kSize = 12;
  constexpr uint32_t kStart = 0x0101080A;
  return Left(area) == kSize && PeekU32(area) == kStart;
}

void AddOptions(const Place& in, Cursor& c, const Segment& segment) {
  const int32_t declared = segment.headerLength - kFixedHeader;
  const bool whole = declared <= Left(c);
  const Cursor area = TakeCursor(c, declared);
  int32_t exponent = kNoWindowScale;
  const bool isSyn = segment.flags & kSyn;
  if (IsTimestampsAlone(area) && NobodyWants(in)) {
    constexpr int32_t kLines = 10;
    CountLines(in, kLines);
  } else if (Left(area) > 0 && (isSyn || !in.view->context->headersOnly)) {   // none but a SYN's is needed later
    exponent = DecodeTcpOptions(Under(in, AddLine(in, Ahead(area, Left(area)), "Options:")), area, declared);
  }
  if (isSyn && whole && !segment.isBad && !PacketOf(in).quoted) {
    RecordSynSegment(in, segment.sequence, segment.flags & kAck, exponent);
  }
}

int32_t DecodePayload(const Place& at, Cursor c, const Segment& segment) {
  if (segment.isBad) {
    AddRawRest(at, c, "TCP Data: (Bad TCP Checksum)");
    return 1;
  }
  // A SYN takes the first number for itself, so its data start one behind.
  const uint32_t dataSequence = segment.sequence + (segment.flags & kSyn ? 1 : 0);
  PacketState& packet = PacketOf(at);
  const NetworkState& network = *segment.network;
  const int32_t declared = network.totalLength - segment.headerLength;
  // Trailers of the medium stand behind what IPv6 declares: they are shown, and no part of the stream.
  const bool hasTrailer = declared >= 0 && declared < Left(c) && !network.offloaded && !network.fragmented;
  packet.segment = {c.at, hasTrailer ? declared : Left(c), dataSequence, segment.flags, true,
                    declared > Left(c) ? declared - Left(c) : 0, PeekU32(segment.start, 8)};
  if (at.view->engine->settings.reassembly) NoteTcpSegment(at, c, segment.protocol, PeekU32(segment.start, 8));
  if (Left(c) == 0 || (!packet.quoted && OfferPayload(at, PayloadHook::kTcp, c))) return 1;
  return DispatchTcpPayload(at, c, segment.protocol, segment.matchedSource);
}

// Peeks at what the top line tells of; false for fewer bytes than that takes.
bool ReadSegment(const Cursor& c, const NetworkState& network, bool strictCheck, Segment& segment) {
  if (Left(c) < kThroughFlags) return false;
  segment.start = c;
  segment.network = &network;
  segment.strictCheck = strictCheck;
  segment.dataOffset = PeekU8(c, 12) >> 4;
  segment.headerLength = 4 * segment.dataOffset < kFixedHeader ? kFixedHeader : 4 * segment.dataOffset;
  segment.flags = PeekU8(c, 13);
  segment.sequence = PeekU32(c, 4);
  segment.isBad = false;
  return true;
}

}  // namespace

int32_t DecodeTcpSegment(const Place& at, Cursor c, const NetworkState& network, bool strictCheck) {
  if (Left(c) < kPorts) return 0;
  PacketState& packet = PacketOf(at);
  packet.sourcePort = static_cast<uint16_t>(PeekU16(c));
  packet.destinationPort = static_cast<uint16_t>(PeekU16(c, 2));
  if (network.fragmented && network.fragmentOffset > 0) return AddRawRest(at, c, "Fragment data");
  Segment segment;
  if (!ReadSegment(c, network, strictCheck, segment)) return 0;
  ResolveSegment(at, segment);
  segment.topLine = AddTopLine(at, segment);

  const Place in = Under(at, segment.topLine);
  const bool passes = Silent(at) && Left(c) >= kFixedHeader && !network.fragmented;
  if (passes) PassHeader(in, c, segment); else ShowHeader(in, c, segment);
  if (c.ranShort) return 1;   // the header is cut

  const int32_t behind = Left(segment.start) - segment.headerLength;
  AddCalculatedLines(in, segment, behind > 0 ? behind : 0);
  AddOptions(in, c, segment);
  return behind >= 0 ? DecodePayload(at, c, segment) : 1;
}

bool IsBadTcpSegment(const View* view, const Cursor& c, const NetworkState& network) {
  Segment segment;
  segment.start = c;
  segment.network = &network;
  segment.strictCheck = false;
  return !view->engine->settings.ignoreChecksums && CheckSegment(segment, PeekBytes(c, kChecksum, 2)).isBad;
}

int32_t DecodeTcp(const Place& at, Cursor c) {
  const NetworkState network = PacketOf(at).network;
  return DecodeTcpSegment(at, c, network, false);
}

}  // namespace qxview
