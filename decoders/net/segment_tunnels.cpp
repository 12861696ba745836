// Tunnels that look like something else: Ethernet in segments that are no TCP (STT, draft-davie-stt), and the text by which a
// host asks a broker for an IPv6 tunnel (TSP, RFC 5572).
//
//   STT   of a frame's first segment: version, flags, offset of layer 4, reserved, segment size, VLAN, context (64), padding
//   TSP   [over UDP: sequence, timestamp]   "VERSION=2.0.0", SASL lines, "Content-length: n" and XML
#include "core/rows.h"
#include "decoders/common/header_lines.h"
#include "decoders/common/xml_lines.h"
#include "decoders/link/carried.h"
#include "decoders/net/ip_fragments.h"

namespace qxview {
namespace {

constexpr auto kStt = Rows<NoValues>({
    Number(1, "Version"), Hex(1, "Flags"), Bits(0, 4, "Reserved"), Flag(4, "TCP Payload"), Flag(5, "IPv4"),
    Flag(6, "Checksum Partial"), Flag(7, "Checksum Verified"), Number(1, "Layer 4 Offset"), Hex(1, "Reserved"),
    Number(2, "Maximum Segment Size"), Word(2), Bits(0, 3, "Priority"), Flag(3, "VLAN Present"), Bits(4, 12, "VLAN ID"),
    Hex(8, "Context ID"), Hex(2, "Padding")});
constexpr auto kBroker = Rows<NoValues>({
    Word(4), Bits(0, 4, "Version"), Bits(4, 28, "Sequence Number"), Number(4, "Timestamp")});

bool IsText(const Cursor& c) {
  for (int32_t i = 0; i < 4; ++i) {
    const uint32_t character = PeekU8(c, i);
    if (character < 32 || character > 126) return false;
  }
  return true;
}

}  // namespace

namespace {

int32_t DecodeSttFrame(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 18;
  if (Left(c) < kHeader || PeekU8(c) != 0) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeader), "STT: Context 0x%.08X%.08X", PeekU32(c, 8), PeekU32(c, 12)));
  ShowRows(in, c, kStt);
  return DecodeCarriedFrame(Deeper(at), c, Carried::kEthernet, "STT Data");
}

}  // namespace

// The sequence number of what stands where TCP's header would is the length of the whole frame and where this piece belongs;
// the acknowledgment number is the frame's own. With Reassembly a frame is shown when its last piece has come.
int32_t DecodeStt(const Place& at, Cursor c) {
  constexpr uint8_t kTcp = 6;
  const TcpSegment& segment = PacketOf(at).segment;
  const uint32_t length = segment.sequence >> 16, offset = segment.sequence & 0xFFFF;
  const uint32_t left = static_cast<uint32_t>(Left(c));
  const bool isPiece = segment.here && (offset > 0 || length > left);
  if (isPiece) {
    AddLine(at, Ahead(c, 0), "STT: Piece at %u of a Frame of %u bytes", offset, length);
    if (JoinsFragments(at) && segment.cut == 0) {
      Cursor joined;
      const FragmentRun run = TakeIpFragment(at, c, segment.acknowledgment, kTcp, offset, offset + left < length, &joined);
      TellFragments(at, c, run);
      return Left(joined) > 0 ? DecodeSttFrame(at, joined) : CallDecoder(at, c, nullptr, "STT Fragment Data");
    }
  }
  return offset > 0 && segment.here ? CallDecoder(at, c, nullptr, "STT Fragment Data") : DecodeSttFrame(at, c);
}

int32_t DecodeTunnelSetup(const Place& at, Cursor c) {
  const bool hasHeader = Left(c) >= 8 && PeekU8(c) >> 4 == 15;
  Cursor text = c;
  TakeBytes(text, hasHeader ? 8 : 0);
  if (Left(c) < 4 || (!hasHeader && !IsText(c)) || (hasHeader && Left(text) >= 4 && !IsText(text))) {
    return PeekU8(text) >> 4 == 6 || PeekU8(c) >> 4 == 6 ? DecodeCarriedFrame(at, c, Carried::kIp, "TSP Data") : 0;
  }
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "TSP: Tunnel Setup"));
  if (hasHeader) ShowRows(in, c, kBroker);
  TextLine line;
  Loop loop;
  int32_t noXmlTo = -1;   // of blanks in front of a text each is asked once
  while (MoreAt(in, c, loop)) {
    if (c.offset > noXmlTo) {
      if (StartsXml(c)) break;
      Cursor blanks = c;
      SkipSpace(blanks);
      noXmlTo = blanks.offset;
    }
    if (!TakeLine(c, line)) break;
    if (line.text.length > 0) AddTextLine(in, line.whole, "Line", line.text);
  }
  if (Left(c) > 0) {
    const Place xml = Under(in, AddLine(in, Ahead(c, Left(c)), "XML: %d bytes", Left(c)));
    ShowXml(xml, c);
  }
  AddBlock(in, Rest(c), "TSP Data");
  return 1;
}

}  // namespace qxview
