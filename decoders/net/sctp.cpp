// Stream Control Transmission Protocol (RFC 9260) with its extensions: partial reliability (RFC 3758), authentication (RFC 4895),
// dynamic addresses (RFC 5061), stream resets (RFC 6525), padding (RFC 4820), interleaving (RFC 8260), SACK of its own kind
// for what may not be taken back (draft-natarajan-tsvwg-sctp-nrsack) and packet drop reports (draft-stewart-tsvwg-sctppktdrprep).
//
//   source port (2) destination port (2) verification tag (4) checksum (4)
//   chunks: type (1) flags (1) length (2) value, padded to words
//
// Messages that stand in one DATA chunk go to the decoder that their payload protocol identifier names, else to the one
// that has the port over TCP.
#include "decoders/net/sctp.h"

#include "core/dispatch.h"
#include "decoders/common/crc32.h"
#include "decoders/net/port_dispatch.h"

namespace qxview {
namespace {

constexpr int32_t kHeader = 12, kChunkHeader = 4;
constexpr uint32_t kData = 0, kAbort = 6, kShutdownComplete = 14, kInterleavedData = 64, kPacketDrop = 129;

constexpr auto kProtocolNames = SortedNames({
    {0, "Unspecified"}, {1, "IUA"}, {2, "M2UA"}, {3, "M3UA"}, {4, "SUA"}, {5, "M2PA"}, {6, "V5UA"}, {7, "H.248"},
    {8, "BICC/Q.2150.3"}, {9, "TALI"}, {10, "DUA"}, {11, "ASAP"}, {12, "ENRP"}, {13, "H.323"}, {14, "Q.IPC/Q.2150.3"},
    {15, "SIMCO"}, {16, "DDP Segment"}, {17, "DDP Stream Session Control"}, {18, "S1AP"}, {19, "RUA"}, {20, "HNBAP"},
    {21, "ForCES High Priority"}, {22, "ForCES Medium Priority"}, {23, "ForCES Low Priority"}, {24, "SBc-AP"},
    {25, "NBAP"}, {27, "X2AP"}, {28, "IRCP"}, {29, "LCS-AP"}, {30, "MPICH2"}, {31, "SABP"}, {32, "FGP"}, {33, "PPP"},
    {34, "CALCAPP"}, {35, "SSP"}, {36, "NPMP Control"}, {37, "NPMP Data"}, {38, "Echo"}, {39, "Discard"}, {40, "Daytime"},
    {41, "Character Generator"}, {42, "RNA"}, {43, "M2AP"}, {44, "M3AP"}, {45, "SSH"}, {46, "Diameter"},
    {47, "Diameter over DTLS"}, {48, "R14P"}, {49, "GDT"}, {50, "WebRTC DCEP"}, {51, "WebRTC String"},
    {52, "WebRTC Binary Partial"}, {53, "WebRTC Binary"}, {54, "WebRTC String Partial"}, {55, "PUA"},
    {56, "WebRTC String Empty"}, {57, "WebRTC Binary Empty"}, {58, "XwAP"}, {59, "Xw Control Plane"}, {60, "NGAP"},
    {61, "XnAP"}, {62, "F1AP"}, {63, "HTTP"}, {64, "E1AP"}, {65, "ELE2 Lawful Interception"}, {66, "NGAP over DTLS"},
    {67, "XnAP over DTLS"}, {68, "F1AP over DTLS"}, {69, "E1AP over DTLS"}, {70, "E2-CP"}, {71, "E2-UP"}, {72, "E2-DU"},
    {73, "W1AP"}});
constexpr auto kHmacNames = SortedNames({{0, "Reserved"}, {1, "SHA-1"}, {2, "Reserved"}, {3, "SHA-256"}});

// The indices of applications that identifiers name.
struct Carried {
  uint32_t protocol, index;
};
constexpr Carried kCarried[] = {
    {7, 0x14}, {38, 0x219}, {39, 0x21A}, {40, 0x21C}, {41, 0x21E}, {46, 0xC3}, {50, 0x3FA}, {51, 0x3FB}, {63, 0x04}};

constexpr auto kPorts = Rows<Sctp>({
    Number(2, "Source Port"), Number(2, "Destination Port"), Hex(4, "Verification Tag")});
constexpr auto kPlainHead = Rows<Sctp>({
    Number(1, "Chunk Type", kSctpChunkNames), Hex(1, "Chunk Flags"), Number(2, "Chunk Length")});
constexpr auto kDataHead = Rows<Sctp>({
    Number(1, "Chunk Type", kSctpChunkNames), Hex(1, "Chunk Flags"), Flag(4, "Immediate"), Flag(5, "Unordered"),
    Flag(6, "Beginning"), Flag(7, "End"), Number(2, "Chunk Length")});
constexpr auto kTagHead = Rows<Sctp>({
    Number(1, "Chunk Type", kSctpChunkNames), Hex(1, "Chunk Flags"), Flag(7, "Tag Reflected"), Number(2, "Chunk Length")});
constexpr auto kDropHead = Rows<Sctp>({
    Number(1, "Chunk Type", kSctpChunkNames), Hex(1, "Chunk Flags"), Flag(5, "Truncated"), Flag(6, "Bad Checksum"),
    Flag(7, "Sent by a Middlebox"), Number(2, "Chunk Length")});

constexpr auto kDataRows = Rows<Sctp>({
    Number(4, "TSN").Note(", TSN %u"), Number(2, "Stream Identifier").Note(", Stream %u"), Number(2, "Stream Sequence Number"),
    Number(4, "Payload Protocol", kProtocolNames).Note(", %s").Into(&Sctp::protocol)});
constexpr auto kInterleaved = Rows<Sctp>({
    Number(4, "TSN").Note(", TSN %u"), Number(2, "Stream Identifier").Note(", Stream %u"), Hex(2, "Reserved"),
    Number(4, "Message Identifier")});
constexpr auto kFirstFragment = Rows<Sctp>({
    Number(4, "Payload Protocol", kProtocolNames).Note(", %s").Into(&Sctp::protocol)});
constexpr auto kNextFragment = Rows<Sctp>({Number(4, "Fragment Sequence Number").Note(", Fragment %u")});
constexpr auto kInit = Rows<Sctp>({
    Hex(4, "Initiate Tag").Note(", Tag 0x%08X"), Number(4, "Advertised Receiver Window", " bytes"),
    Number(2, "Outbound Streams"), Number(2, "Inbound Streams"), Number(4, "Initial TSN")});
constexpr auto kSack = Rows<Sctp>({
    Number(4, "Cumulative TSN Ack").Note(", TSN %u"), Number(4, "Advertised Receiver Window", " bytes"),
    Number(2, "Gap Ack Blocks").Into(&Sctp::count), Number(2, "Duplicate TSNs").Into(&Sctp::second)});
constexpr auto kNrSack = Rows<Sctp>({
    Number(4, "Cumulative TSN Ack").Note(", TSN %u"), Number(4, "Advertised Receiver Window", " bytes"),
    Number(2, "Gap Ack Blocks").Into(&Sctp::count), Number(2, "Non-renegable Gap Ack Blocks").Into(&Sctp::length),
    Number(2, "Duplicate TSNs").Into(&Sctp::second), Hex(2, "Reserved")});
constexpr auto kGap = Rows<Sctp>({Number(2, "Gap Ack Block Start"), Number(2, "Gap Ack Block End")});
constexpr auto kKeptGap = Rows<Sctp>({Number(2, "Non-renegable Block Start"), Number(2, "Non-renegable Block End")});
constexpr auto kDuplicate = Rows<Sctp>({Number(4, "Duplicate TSN")});
constexpr auto kShutdown = Rows<Sctp>({Number(4, "Cumulative TSN Ack").Note(", TSN %u")});
constexpr auto kCookie = Rows<Sctp>({Bytes(0, "Cookie")});
constexpr auto kLowest = Rows<Sctp>({Number(4, "Lowest TSN").Note(", TSN %u")});
constexpr auto kAuthentication = Rows<Sctp>({
    Number(2, "Shared Key Identifier"), Number(2, "HMAC Identifier", kHmacNames).Note(", %s"), Bytes(0, "HMAC")});
constexpr auto kSerial = Rows<Sctp>({Number(4, "Serial Number").Note(", Serial %u")});
constexpr auto kForward = Rows<Sctp>({Number(4, "New Cumulative TSN").Note(", TSN %u")});
constexpr auto kSkipped = Rows<Sctp>({Number(2, "Stream Identifier"), Number(2, "Stream Sequence Number")});
constexpr auto kSkippedMessage = Rows<Sctp>({
    Number(2, "Stream Identifier"), Word(2), Bits(0, 15, "Reserved"), Flag(15, "Unordered"), Number(4, "Message Identifier")});
constexpr auto kDropped = Rows<Sctp>({
    Number(4, "Maximum Receiver Window", " bytes"), Number(4, "Bytes Queued", " bytes"), Number(2, "Truncated Length"),
    Hex(2, "Reserved")});
constexpr auto kPadding = Rows<Sctp>({Bytes(0, "Padding Data")});

void ShowEach(const Place& in, Cursor& c, RowSpan<Sctp> rows, int32_t size, uint32_t count, Sctp& sctp) {
  Loop loop;
  for (uint32_t i = 0; i < count && Left(c) >= size && MoreAt(in, c, loop); ++i) ShowRows<Sctp>(in, c, rows, sctp);
}

void ShowSack(const Place& in, Cursor& c, bool keeps, Sctp& sctp) {
  ShowRows<Sctp>(in, c, keeps ? RowSpan<Sctp>(kNrSack) : RowSpan<Sctp>(kSack), sctp);
  ShowEach(in, c, kGap, 4, sctp.count.value, sctp);
  if (keeps) ShowEach(in, c, kKeptGap, 4, sctp.length.value, sctp);
  ShowEach(in, c, kDuplicate, 4, sctp.second.value, sctp);
}

// A message, to its decoder; a piece of one is a block, for the rest of it is elsewhere.
void ShowPayload(const Place& at, const Place& in, Cursor& c, bool isWhole, const Sctp& sctp) {
  PacketState& packet = PacketOf(at);
  const char* name = sctp.protocol.value ? LookupName(kProtocolNames, sctp.protocol.value, "Payload") : "Payload";
  uint32_t index = kNoApplication;
  for (const Carried& row : kCarried) {
    if (row.protocol == sctp.protocol.value) index = row.index;
  }
  if (isWhole && index == kNoApplication) {
    constexpr int32_t kBuiltin = 0x10000;
    bool matchedSource;
    const int32_t defined = ResolveProtocol(at.view, kIpProtocolTcp, packet.source, packet.sourcePort, packet.destination,
                                            packet.destinationPort, &matchedSource);
    if (defined > 0 && defined & kBuiltin) index = static_cast<uint32_t>(defined) & 0xFFFF;
  }
  char title[40];
  FormatInto(title, sizeof title, "%s %s", name, isWhole ? "Data" : "Fragment");
  const DecoderRow* row = isWhole && index != kNoApplication ? FindBuiltinDecoder(index) : nullptr;
  if (row) ReachLayer(at, DispatchTable::kApplication, index, c);
  if (row && at.view->context->headersOnly) return;
  if (row && TryDecoder(Deeper(at), c, row->decode, name)) {
    TakeBytes(c, Left(c));
    return;
  }
  AddBlock(in, Rest(c), title);
}

void ShowData(const Place& at, const Place& in, Cursor& c, uint32_t type, uint32_t flags, Sctp& sctp) {
  constexpr uint32_t kBeginning = 2, kWhole = 3;
  if (type == kData) {
    ShowRows<Sctp>(in, c, kDataRows, sctp);
  } else {
    ShowRows<Sctp>(in, c, kInterleaved, sctp);
    sctp.protocol = {};
    ShowRows<Sctp>(in, c, flags & kBeginning ? RowSpan<Sctp>(kFirstFragment) : RowSpan<Sctp>(kNextFragment), sctp);
  }
  if (Left(c)) ShowPayload(at, in, c, (flags & kWhole) == kWhole, sctp);
}

// ASCONF begins with an address, which tells whose association this is.
void ShowChange(const Place& in, Cursor& c, Sctp& sctp) {
  ShowRows<Sctp>(in, c, kSerial, sctp);
  ShowSctpParameters(in, c, sctp);
}

void ShowDropped(const Place& in, Cursor& c, Sctp& sctp) {
  ShowRows<Sctp>(in, c, kDropped, sctp);
  AddBlock(in, Rest(c), "Dropped Packet");
}

void ShowValue(const Place& at, const Place& in, Cursor& c, uint32_t type, uint32_t flags, Sctp& sctp) {
  constexpr uint32_t kMany = 0xFFFF;
  switch (type) {
    case kData:
    case kInterleavedData: return ShowData(at, in, c, type, flags, sctp);
    case 1:
    case 2:
      ShowRows<Sctp>(in, c, kInit, sctp);
      return ShowSctpParameters(in, c, sctp);
    case 3:
    case 16: return ShowSack(in, c, type == 16, sctp);
    case 4:
    case 5:
    case 130: return ShowSctpParameters(in, c, sctp);
    case kAbort:
    case 9: return ShowSctpCauses(in, c, sctp);
    case 7: ShowRows<Sctp>(in, c, kShutdown, sctp); return;
    case 10: ShowRows<Sctp>(in, c, kCookie, sctp); return;
    case 12:
    case 13: ShowRows<Sctp>(in, c, kLowest, sctp); return;
    case 15: ShowRows<Sctp>(in, c, kAuthentication, sctp); return;
    case 128:
    case 193: return ShowChange(in, c, sctp);
    case kPacketDrop: return ShowDropped(in, c, sctp);
    case 132: ShowRows<Sctp>(in, c, kPadding, sctp); return;
    case 192:
      ShowRows<Sctp>(in, c, kForward, sctp);
      return ShowEach(in, c, kSkipped, 4, kMany, sctp);
    case 194:
      ShowRows<Sctp>(in, c, kForward, sctp);
      return ShowEach(in, c, kSkippedMessage, 8, kMany, sctp);
    default: return;
  }
}

RowSpan<Sctp> HeadOf(uint32_t type) {
  switch (type) {
    case kData:
    case kInterleavedData: return kDataHead;
    case kAbort:
    case kShutdownComplete: return kTagHead;
    case kPacketDrop: return kDropHead;
    default: return kPlainHead;
  }
}

// Result: false when the chunk's length leads nowhere.
bool ShowChunk(const Place& at, const Place& top, Cursor& c, Sctp& sctp) {
  const uint32_t type = PeekU8(c), flags = PeekU8(c, 1);
  const int32_t length = static_cast<int32_t>(PeekU16(c, 2));
  if (length < kChunkHeader) return false;
  Cursor chunk = TakeCursor(c, length);
  const Place in = Under(top, AddLine(top, Ahead(chunk, Left(chunk)), "%s Chunk", LookupName(kSctpChunkNames, type)));
  ShowRows<Sctp>(in, chunk, HeadOf(type), sctp);
  ShowValue(at, in, chunk, type, flags, sctp);
  chunk.ranShort = false;
  AddBlock(in, Rest(chunk), "Chunk Data");
  const int32_t filler = -length & 3;
  const Field padding = filler <= Left(c) ? TakeBytes(c, filler) : Field{};
  if (padding.length > 0) AddLine(in, padding, "Padding: %s", HexText(padding));
  return true;
}

// The check is over the packet with zeros in its place, and stands with its low byte first.
void AddChecksum(const Place& in, const Cursor& packet, Cursor& c) {
  constexpr uint8_t kZeros[4] = {};
  const NetworkState& network = PacketOf(in).network;
  const int32_t covered = Left(packet);
  const bool isPartial = network.totalLength > covered;
  uint32_t crc = AddCrc32(kCrc32cTable, 0xFFFFFFFF, packet.at, kHeader - 4);
  crc = AddCrc32(kCrc32cTable, crc, kZeros, 4);
  Cursor chunks = packet;
  TakeBytes(chunks, kHeader);
  crc = ~AddCrc32(kCrc32cTable, crc, chunks.at, Left(chunks));
  const Field checksum = TakeU32(c);
  const uint32_t right = crc >> 24 | (crc >> 8 & 0xFF00) | (crc << 8 & 0xFF0000) | crc << 24;
  const char* verdict = network.fragmented ? "data fragment - not able to check"
                        : isPartial        ? "partial packet - not able to check"
                        : checksum.value == right ? "Good"
                        : checksum.value == 0     ? "not used"
                                                  : "BAD";
  AddLine(in, checksum, "Checksum: 0x%.08X (%s)", checksum.value, verdict);
}

}  // namespace

int32_t DecodeSctp(const Place& at, Cursor c) {
  if (Left(c) < kHeader) return 0;
  const Cursor whole = c;
  PacketState& packet = PacketOf(at);
  packet.sourcePort = static_cast<uint16_t>(PeekU16(c));
  packet.destinationPort = static_cast<uint16_t>(PeekU16(c, 2));
  const Place in = Under(at, AddLine(at, Ahead(c, kHeader), "SCTP, [%u] -> [%u]", packet.sourcePort, packet.destinationPort));
  Sctp sctp = ShowRows(in, c, kPorts);
  AddChecksum(in, whole, c);
  Loop loop;
  bool isFirst = true;
  while (Left(c) >= kChunkHeader && MoreAt(in, c, loop)) {
    AppendToParent(in, Ahead(c, 1), "%s%s", isFirst ? ", " : " + ", LookupName(kSctpChunkNames, PeekU8(c)));
    isFirst = false;
    if (!ShowChunk(at, in, c, sctp)) break;
  }
  AddBlock(in, Rest(c), "SCTP Data");
  return 1;
}

}  // namespace qxview
