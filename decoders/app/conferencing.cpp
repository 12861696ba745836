// Small protocols around calls and conferences: T.38's UDP transport layer (ITU-T T.38 9.1), Session Announcement (RFC 2974),
// Binary Floor Control (RFC 8855).
#include "core/elements.h"
#include "decoders/common/header_lines.h"
#include "decoders/message_lengths.h"

namespace qxview {

int32_t DecodeSdp(const Place& at, Cursor c);

namespace {

struct Message {
  Field length, count;
};

// --- UDPTL: a packet and, behind it, older ones or their parity; lengths are PER's ---

// An octet, or two with 10 in the first bits; longer ones are in pieces and do not fit a datagram.
Field TakeLength(const Place& in, Cursor& c, const char* label) {
  const bool isLong = PeekU8(c) & 0x80;
  Field length = isLong ? TakeU16(c) : TakeU8(c);
  if (isLong) length.value &= 0x3FFF;
  AddLine(in, length, "%s: %u", label, length.value);   // keys: number Primary Length, Secondary Count, Secondary Length
  return length;
}
// keys: number Parity Packets, Parity Count, Parity Length

void ShowFaxParts(const Place& in, Cursor& c, const char* countLabel, const char* lengthLabel, const char* title) {
  const Field count = TakeLength(in, c, countLabel);
  Loop loop;
  for (uint32_t i = 0; i < count.value && MoreAt(in, c, loop); ++i) {
    const Field length = TakeLength(in, c, lengthLabel);
    AddBlock(in, TakeBytes(c, length.value), title);
  }
}

// --- BFCP ---

constexpr auto kPrimitiveNames = SortedNames({
    {1, "FloorRequest"}, {2, "FloorRelease"}, {3, "FloorRequestQuery"}, {4, "FloorRequestStatus"}, {5, "UserQuery"},
    {6, "UserStatus"}, {7, "FloorQuery"}, {8, "FloorStatus"}, {9, "ChairAction"}, {10, "ChairActionAck"}, {11, "Hello"},
    {12, "HelloAck"}, {13, "Error"}, {14, "FloorRequestStatusAck"}, {15, "FloorStatusAck"}, {16, "Goodbye"},
    {17, "GoodbyeAck"}});
constexpr auto kAttributeNames = SortedNames({
    {1, "BENEFICIARY-ID"}, {2, "FLOOR-ID"}, {3, "FLOOR-REQUEST-ID"}, {4, "PRIORITY"}, {5, "REQUEST-STATUS"}, {6, "ERROR-CODE"},
    {7, "ERROR-INFO"}, {8, "PARTICIPANT-PROVIDED-INFO"}, {9, "STATUS-INFO"}, {10, "SUPPORTED-ATTRIBUTES"},
    {11, "SUPPORTED-PRIMITIVES"}, {12, "USER-DISPLAY-NAME"}, {13, "USER-URI"}, {14, "BENEFICIARY-INFORMATION"},
    {15, "FLOOR-REQUEST-INFORMATION"}, {16, "REQUESTED-BY-INFORMATION"}, {17, "FLOOR-REQUEST-STATUS"},
    {18, "OVERALL-REQUEST-STATUS"}});
constexpr auto kPriorityNames = SortedNames({{0, "Lowest"}, {1, "Low"}, {2, "Normal"}, {3, "High"}, {4, "Highest"}});
constexpr auto kStatusNames = SortedNames({
    {1, "Pending"}, {2, "Accepted"}, {3, "Granted"}, {4, "Denied"}, {5, "Cancelled"}, {6, "Released"}, {7, "Revoked"}});
constexpr auto kErrorNames = SortedNames({
    {1, "Conference Does Not Exist"}, {2, "User Does Not Exist"}, {3, "Unknown Primitive"}, {4, "Unknown Mandatory Attribute"},
    {5, "Unauthorized Operation"}, {6, "Invalid Floor ID"}, {7, "Floor Request ID Does Not Exist"},
    {8, "Maximum Number of Floor Requests Reached"}, {9, "Use TLS"}, {10, "Unable to Parse Message"}, {11, "Use DTLS"},
    {12, "Unsupported Version"}, {13, "Incorrect Message Length"}, {14, "Generic Error"}});

constexpr auto kBfcp = Rows<Message>({
    Word(1), Bits(0, 3, "Version"), Flag(3, "Responder"), Flag(4, "Fragment"), Bits(5, 3, "Reserved"),
    Number(1, "Primitive", kPrimitiveNames), Number(2, "Payload Length", " words").Into(&Message::length),
    Number(4, "Conference ID"), Number(2, "Transaction ID"), Number(2, "User ID")});
constexpr auto kFragment = Rows<Message>({Number(2, "Fragment Offset", " words"), Number(2, "Fragment Length", " words")});
constexpr auto kAttributeHead = Rows<Message>({
    Word(1), Bits(0, 7, "Attribute", kAttributeNames), Flag(7, "Mandatory"), Number(1, "Length")});
constexpr auto kIdentifier = Rows<Message>({Number(2, "Identifier")});
constexpr auto kPriority = Rows<Message>({Word(2), Bits(0, 3, "Priority", kPriorityNames), Bits(3, 13, "Reserved")});
constexpr auto kStatus = Rows<Message>({Number(1, "Request Status", kStatusNames).Note(", %s"), Number(1, "Queue Position")});
constexpr auto kError = Rows<Message>({Number(1, "Error Code", kErrorNames).Note(", %s"), Bytes(0, "Error Details")});
constexpr auto kText = Rows<Message>({Utf8(0, "Text")});
constexpr auto kAttributeEntry = Rows<Message>({
    Word(1), Bits(0, 7, "Supported Attribute", kAttributeNames), Bits(7, 1, "Reserved")});
constexpr auto kPrimitiveEntry = Rows<Message>({Number(1, "Supported Primitive", kPrimitiveNames)});

void ShowEach(const Place& in, Cursor& c, RowSpan<Message> rows, Message& message) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<Message>(in, c, rows, message);
}

void ShowAttributes(const Place& in, Cursor& c, int32_t depth, Message& message) {
  constexpr int32_t kHead = 2;
  Loop loop;
  while (Left(c) >= kHead && MoreAt(in, c, loop)) {
    const uint32_t type = PeekU8(c) >> 1, length = PeekU8(c, 1);
    Cursor whole = TakeCursor(c, (length + 3) & ~3u);
    if (length < kHead) return;
    const Place under = Under(in, AddLine(in, Ahead(whole, Left(whole)), "Attribute: %s", LookupName(kAttributeNames, type)));
    ShowRows<Message>(under, whole, kAttributeHead, message);
    Cursor value = TakeCursor(whole, length - kHead);
    switch (type) {
      case 1:
      case 2:
      case 3: ShowRows<Message>(under, value, kIdentifier, message); break;
      case 4: ShowRows<Message>(under, value, kPriority, message); break;
      case 5: ShowRows<Message>(under, value, kStatus, message); break;
      case 6: ShowRows<Message>(under, value, kError, message); break;
      case 7:
      case 8:
      case 9:
      case 12:
      case 13: ShowRows<Message>(under, value, kText, message); break;
      case 10: ShowEach(under, value, kAttributeEntry, message); break;
      case 11: ShowEach(under, value, kPrimitiveEntry, message); break;
      case 14:
      case 15:
      case 16:
      case 17:
      case 18:
        ShowRows<Message>(under, value, kIdentifier, message);
        if (depth < kDeepestConferencing) ShowAttributes(under, value, depth + 1, message);
        break;
      default: break;
    }
    AddBlock(under, Rest(value), "Attribute Data");
    const Field padding = Rest(whole);
    if (padding.here) AddLine(under, padding, "Padding: %s", HexText(padding));
  }
}

}  // namespace

int32_t DecodeUdptl(const Place& at, Cursor c) {
  if (Left(c) < 4) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "T.38 UDPTL: Sequence %u", PeekU16(c)));
  const Field sequence = TakeU16(c);
  AddLine(in, sequence, "Sequence: %u", sequence.value);
  const Field length = TakeLength(in, c, "Primary Length");
  AddBlock(in, TakeBytes(c, length.value), "Primary IFP Packet");
  const Field recovery = TakeU8(c);
  const bool isParity = recovery.value & 0x80;
  AddLine(in, recovery, "Error Recovery: %u = %s", recovery.value >> 7, isParity ? "Parity" : "Secondary IFP Packets");
  if (isParity) {
    const Field octets = TakeU8(c), packets = TakeBytes(c, octets.value);
    AddLine(in, packets, "Parity Packets: %u", PeekU8(packets, packets.length - 1));
    ShowFaxParts(in, c, "Parity Count", "Parity Length", "Parity Data");
  } else if (recovery.here) {
    ShowFaxParts(in, c, "Secondary Count", "Secondary Length", "Secondary IFP Packet");
  }
  c.ranShort = false;   // what is there of a part that is longer
  AddBlock(in, Rest(c), "UDPTL Data");
  return 1;
}

int32_t DecodeSap(const Place& at, Cursor c) {
  static constexpr auto kHead = Rows<Message>({
      Word(1), Bits(0, 3, "Version"), Flag(3, "IPv6 Source"), Flag(4, "Reserved"), Flag(5, "Deletion"), Flag(6, "Encrypted"),
      Flag(7, "Compressed"), Number(1, "Authentication Length", " words").Into(&Message::length), Hex(2, "Message ID Hash")});
  static constexpr auto kSource4 = Rows<Message>({IPv4("Originating Source")});
  static constexpr auto kSource6 = Rows<Message>({IPv6("Originating Source")});
  const uint32_t first = PeekU8(c);
  if (Left(c) < 8 || first >> 5 > 1) return 0;
  Message message{};
  const LineHandle line = AddLine(at, Ahead(c, Left(c)), "SAP: %s", first & 0x04 ? "Deletion" : "Announcement");
  const Place in = Under(at, line);
  const int32_t start = c.offset;
  ShowRows<Message>(in, c, kHead, message);
  ShowRows<Message>(in, c, first & 0x10 ? RowSpan<Message>(kSource6) : RowSpan<Message>(kSource4), message);
  if (message.length.value > 0) AddBlock(in, TakeBytes(c, 4 * message.length.value), "Authentication Data");
  if (first & 0x03) return AddBlock(in, Rest(c), "Encrypted or Compressed Payload"), 1;
  const int32_t end = FindU8(c, 0);
  if (!PeekIs(c, 0, "v=0") && end > 0) {
    const Field type = TakeBytes(c, end + 1);
    AddTextLine(in, type, "Payload Type", Slice(type, 0, end));
  }
  if (!in.dead) SetRange(in, line, start, c.offset - start);
  if (Left(c) > 0) CallDecoder(Deeper(at), c, DecodeSdp, "SAP Payload");
  return 1;
}

int32_t LengthOfBfcp(const Cursor& c) {
  if (Left(c) < 4) return 0;
  const uint32_t version = PeekU8(c) >> 5, primitive = PeekU8(c, 1);
  if (version < 1 || version > 2 || primitive < 1 || primitive > 17) return kNoMessage;
  return static_cast<int32_t>(12 + 4 * PeekU16(c, 2));
}

int32_t DecodeBfcp(const Place& at, Cursor c) {
  if (LengthOfBfcp(c) < 12) return 0;
  Message message{};
  const bool isFragment = PeekU8(c) & 0x08;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "BFCP: %s", LookupName(kPrimitiveNames, PeekU8(c, 1))));
  ShowRows<Message>(in, c, kBfcp, message);
  if (isFragment) ShowRows<Message>(in, c, kFragment, message);
  ShowAttributes(in, c, 0, message);
  AddBlock(in, Rest(c), "BFCP Data");
  return 1;
}

}  // namespace qxview
