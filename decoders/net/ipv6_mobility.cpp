// The IPv6 mobility header (RFC 6275, fast handovers: RFC 5568): how a node that moves keeps its address. Its home agent
// and its peers learn from these messages where it is reached now (the care-of address).
//
//   0  payload protocol (8)   length in units of 8 bytes beyond the first 8 (8)   type (8)   reserved (8)
//   4  checksum (16)          6  message, then options: type (8), length (8), data; Pad1 is its type byte alone
#include "decoders/net/ipv6_extensions.h"

namespace qxview {
namespace {

constexpr auto kMessageNames = SortedNames({
    {0, "Binding Refresh Request"}, {1, "Home Test Init"}, {2, "Care-of Test Init"}, {3, "Home Test"},
    {4, "Care-of Test"}, {5, "Binding Update"}, {6, "Binding Acknowledgement"}, {7, "Binding Error"},
    {8, "Fast Binding Update"}, {9, "Fast Binding Acknowledgement"}, {10, "Fast Neighbor Advertisement"},
    {11, "Experimental Mobility Header"}, {12, "Home Agent Switch"}, {13, "Heartbeat"}, {14, "Handover Initiate"},
    {15, "Handover Acknowledge"}, {16, "Binding Revocation"}, {17, "Localized Routing Initiation"},
    {18, "Localized Routing Acknowledgment"}, {19, "Update Notification"}, {20, "Update Notification Acknowledgement"},
    {21, "Flow Binding"}, {22, "Subscription Query"}, {23, "Subscription Response"}});

constexpr auto kBindingStatusNames = SortedNames({
    {0, "Binding Update accepted"}, {1, "Accepted but prefix discovery necessary"},
    {128, "Reason unspecified"}, {129, "Administratively prohibited"}, {130, "Insufficient resources"},
    {131, "Home registration not supported"}, {132, "Not home subnet"}, {133, "Not home agent for this mobile node"},
    {134, "Duplicate Address Detection failed"}, {135, "Sequence number out of window"},
    {136, "Expired home nonce index"}, {137, "Expired care-of nonce index"}, {138, "Expired nonces"},
    {139, "Registration type change disallowed"}, {140, "Mobile Router operation not permitted"},
    {141, "Invalid prefix"}, {142, "Not authorized for prefix"}, {143, "Forwarding setup failed"}});

constexpr auto kBindingErrorNames = SortedNames({
    {1, "Unknown binding for Home Address destination option"}, {2, "Unrecognized mobility header type"}});

constexpr auto kFastBindingStatusNames = SortedNames({
    {0, "Fast Binding Update accepted"}, {1, "Accepted but new care-of address invalid"},
    {128, "Reason unspecified"}, {129, "Administratively prohibited"}, {130, "Insufficient resources"},
    {131, "Incorrect interface identifier length"}});

constexpr auto kHandoverCodeNames = SortedNames({
    {0, "Handover accepted, new care-of address valid"}, {1, "Handover accepted, new care-of address not valid"},
    {2, "Handover accepted, new care-of address assigned"}, {3, "Handover accepted, use previous care-of address"},
    {4, "Message sent unsolicited"}, {128, "Handover not accepted, reason unspecified"},
    {129, "Administratively prohibited"}, {130, "Insufficient resources"}});

struct FlagName {
  int32_t bit;   // from the most significant one
  const char* name;
};

template <size_t kCount>
void AddFlags(const Place& in, const Field& flags, const FlagName (&names)[kCount]) {
  for (const FlagName& flag : names) {
    const BitPicture picture = BitsOf(flags, flag.bit, 1);
    AddBitLine(in, flags, "%s: %s = %s", picture.picture, flag.name, TrueOrFalse(picture.value));
  }
}

void AddReserved(const Place& in, Cursor& c) {
  const Field reserved = TakeU16(c);
  AddLine(in, reserved, "Reserved : %u", reserved.value);
}

void AddCookie(const Place& in, Cursor& c, const char* which) {
  const WideField cookie = TakeU64(c);
  AddLine(in, cookie, "%s Init Cookie : %I64u", which, cookie.wide);
}

void AddSequence(const Place& in, Cursor& c) {
  const Field sequence = TakeU16(c);
  AddLine(in, sequence, "Sequence : %u", sequence.value);
}

void AddLifetime(const Place& in, Cursor& c) {
  const Field lifetime = TakeU16(c);
  AddLine(in, lifetime, "Lifetime : %u (in 4-second time units = %u seconds)", lifetime.value, lifetime.value * 4);
}

void DecodeRefreshRequest(const Place& in, Cursor& c) { AddReserved(in, c); }

void DecodeHomeTestInit(const Place& in, Cursor& c) {
  TakeU16(c);   // reserved
  AddCookie(in, c, "Home");
}

void DecodeCareOfTestInit(const Place& in, Cursor& c) {
  TakeU16(c);   // reserved
  AddCookie(in, c, "Care-of");
}

void DecodeTest(const Place& in, Cursor& c, const char* which) {
  const Field nonce = TakeU16(c);
  AddLine(in, nonce, "%s Nonce Index : %u", which, nonce.value);
  AddCookie(in, c, which);
  const WideField token = TakeU64(c);
  AddLine(in, token, "%s Keygen Token : %I64u", which, token.wide);
}

void DecodeHomeTest(const Place& in, Cursor& c) { DecodeTest(in, c, "Home"); }
void DecodeCareOfTest(const Place& in, Cursor& c) { DecodeTest(in, c, "Care-of"); }

void DecodeBindingUpdate(const Place& in, Cursor& c) {
  constexpr FlagName kFlags[] = {{0, "Acknowledge"}, {1, "Home Registration"}, {2, "Link-Local Address Compatibility"},
                                 {3, "Key Management Mobility Capability"}, {4, "MAP Registration"},
                                 {5, "Mobile Router"}, {6, "Proxy Registration"}, {7, "UDP Encapsulation"}};
  AddSequence(in, c);
  const Field flags = TakeU16(c);
  AddFlags(Under(in, AddLine(in, flags, "Flags : 0x%.04X", flags.value)), flags, kFlags);
  AddLifetime(in, c);
}

void DecodeBindingAcknowledgement(const Place& in, Cursor& c) {
  constexpr FlagName kFlags[] = {{0, "Key Management Mobility Capability"}, {1, "Mobile Router"},
                                 {2, "Proxy Registration"}, {3, "TLV-header format"}};
  const Field status = TakeU8(c);
  AddLine(in, status, "Status : %u = %s", status.value, LookupName(kBindingStatusNames, status.value));
  const Field flags = TakeU8(c);
  AddFlags(Under(in, AddLine(in, flags, "Flags : 0x%.02X", flags.value)), flags, kFlags);
  AddSequence(in, c);
  AddLifetime(in, c);
}

void DecodeBindingError(const Place& in, Cursor& c) {
  const Field status = TakeU8(c);
  AddLine(in, status, "Status : %u = %s", status.value, LookupName(kBindingErrorNames, status.value));
  const Field reserved = TakeU8(c);
  AddLine(in, reserved, "Reserved : %u", reserved.value);
  const Field address = TakeBytes(c, 16);
  if (address.here) AddLine(in, address, "Home Address : %s", IPv6Text(address.bytes));
}

void DecodeFastBindingAcknowledgement(const Place& in, Cursor& c) {
  constexpr FlagName kFlags[] = {{0, "Key Management Mobility Capability"}};
  const Field status = TakeU8(c);
  AddLine(in, status, "Status : %u = %s", status.value, LookupName(kFastBindingStatusNames, status.value));
  const Field flags = TakeU8(c);
  AddFlags(Under(in, AddLine(in, flags, "Flags : 0x%.02X", flags.value)), flags, kFlags);
  AddSequence(in, c);
  AddLifetime(in, c);
}

void DecodeHomeAgentSwitch(const Place& in, Cursor& c) {
  const Field count = TakeU8(c);
  AddLine(in, count, "Number of Addresses : %u", count.value);
  const Field reserved = TakeU8(c);
  AddLine(in, reserved, "Reserved : %u", reserved.value);
  for (uint32_t i = 0; i < count.value && Left(c) >= 16; ++i) {
    const Field address = TakeBytes(c, 16);
    AddLine(in, address, "Home Agent Address : %s", IPv6Text(address.bytes));
  }
}

void DecodeHeartbeat(const Place& in, Cursor& c) {
  constexpr FlagName kFlags[] = {{14, "Unsolicited"}, {15, "Response"}};
  const Field flags = TakeU16(c);
  AddFlags(Under(in, AddLine(in, flags, "Flags : 0x%.04X", flags.value)), flags, kFlags);
  const Field sequence = TakeU32(c);
  AddLine(in, sequence, "Sequence : %u", sequence.value);
}

void DecodeHandoverInitiate(const Place& in, Cursor& c) {
  constexpr FlagName kFlags[] = {{0, "Assigned Address Configuration"}, {1, "Buffer"}};
  AddSequence(in, c);
  const Field flags = TakeU8(c);
  AddFlags(Under(in, AddLine(in, flags, "Flags : 0x%.02X", flags.value)), flags, kFlags);
  const Field code = TakeU8(c);
  AddLine(in, code, "Code : %u", code.value);
}

void DecodeHandoverAcknowledge(const Place& in, Cursor& c) {
  AddSequence(in, c);
  const Field reserved = TakeU8(c);
  AddLine(in, reserved, "Reserved : %u", reserved.value);
  const Field code = TakeU8(c);
  AddLine(in, code, "Code : %u = %s", code.value, LookupName(kHandoverCodeNames, code.value));
}

struct MessageRow {
  uint32_t type;
  void (*decode)(const Place& in, Cursor& c);
};
constexpr MessageRow kMessages[] = {
    {0, DecodeRefreshRequest},      {1, DecodeHomeTestInit},     {2, DecodeCareOfTestInit},
    {3, DecodeHomeTest},            {4, DecodeCareOfTest},       {5, DecodeBindingUpdate},
    {6, DecodeBindingAcknowledgement}, {7, DecodeBindingError},  {8, DecodeBindingUpdate},
    {9, DecodeFastBindingAcknowledgement}, {10, DecodeRefreshRequest}, {12, DecodeHomeAgentSwitch},
    {13, DecodeHeartbeat},          {14, DecodeHandoverInitiate}, {15, DecodeHandoverAcknowledge}};

void DecodePadding(const Place& in, Cursor& c) {
  const Field length = Slice(TakeU16(c), 1, 1);
  AddLine(in, length, "Length : %u bytes", PeekU8(length));
  AddBlock(in, Rest(c), "Padding");
}

void DecodeRefreshAdvice(const Place& in, Cursor& c) {
  const Field interval = TakeU16(c);
  AddLine(in, interval, "Refresh Interval : %u (in 4-second time units = %u seconds)", interval.value,
          interval.value * 4);
}

void DecodeAlternateAddress(const Place& in, Cursor& c) {
  const Field address = TakeBytes(c, 16);
  if (address.here) AddLine(in, address, "Alternate Care-of Address : %s", IPv6Text(address.bytes));
}

void DecodeNonceIndices(const Place& in, Cursor& c) {
  const Field home = TakeU16(c);
  AddLine(in, home, "Home Nonce Index : %u", home.value);
  const Field careOf = TakeU16(c);
  AddLine(in, careOf, "Care-of Nonce Index : %u", careOf.value);
}

void DecodeAuthorization(const Place& in, Cursor& c) { AddBlock(in, Rest(c), "Authenticator"); }

constexpr uint32_t kPad1 = 0, kPadN = 1;

struct OptionRow {
  uint32_t type;
  const char* title;
  void (*decode)(const Place& in, Cursor& c);   // of the data
};
constexpr OptionRow kOptions[] = {{2, "Binding Refresh Advice", DecodeRefreshAdvice},
                                  {3, "Alternate Care-of Address", DecodeAlternateAddress},
                                  {4, "Nonce Indices", DecodeNonceIndices},
                                  {5, "Binding Authorization Data", DecodeAuthorization}};

void DecodeOtherOption(const Place& in, Cursor& c) {
  const Field type = TakeU8(c);
  AddLine(in, type, "Type : %u", type.value);
  const Field length = TakeU8(c);
  AddLine(in, length, "Length : %u", length.value);
  AddBlock(in, Rest(c), "Data");
}

// An option with a length; `c` holds all of it that is in its header.
void DecodeLongOption(const Place& in, Cursor c) {
  const Field whole = Ahead(c, Left(c));
  const uint32_t type = PeekU8(c);
  if (type == kPadN) return DecodePadding(Under(in, AddLine(in, whole, "PadN")), c);
  for (const OptionRow& row : kOptions) {
    if (row.type != type) continue;
    const Place option = Under(in, AddLine(in, whole, "%s", row.title));
    TakeU16(c);   // type and length
    row.decode(option, c);
    AddBlock(option, Rest(c), "Data");
    return;
  }
  DecodeOtherOption(Under(in, AddLine(in, whole, "Mobility Option Data")), c);
}

void DecodeOptions(const Place& in, Cursor& c) {
  if (Left(c) < 1) return;
  const Place options = Under(in, AddLine(in, Ahead(c, Left(c)), "Mobility Options"));
  for (Loop loop; MoreAt(in, c, loop);) {
    if (PeekU8(c) == kPad1) {
      const Field pad = TakeU8(c);
      AddLine(Under(options, AddLine(options, pad, "Pad1")), pad, "Type : %u  (padding)", pad.value);
    } else if (Left(c) < 2 || static_cast<int32_t>(PeekU8(c, 1)) > Left(c) - 2) {
      AddBlock(options, Rest(c), "Mobility Support Options Data");   // an option that runs past its header
    } else {
      DecodeLongOption(options, TakeCursor(c, 2 + PeekU8(c, 1)));
    }
  }
}

void DecodeMessage(const Place& in, Cursor& c, uint32_t type) {
  const LineHandle line =
      AddLine(in, Ahead(c, Left(c)), "%s Message", LookupName(kMessageNames, type, "Mobility"));
  const Place message = Under(in, line);
  for (const MessageRow& row : kMessages) {
    if (row.type != type) continue;
    row.decode(message, c);
    return DecodeOptions(message, c);
  }
  AddBlock(message, Rest(c), "Message Data");
}

}  // namespace

bool DecodeMobilityHeader(const Place& at, Cursor& c, HeaderChain& chain) {
  ReachLayer(at, DispatchTable::kIpProtocol, kMobilityHeader, c);
  const int32_t size = DeclaredHeaderSize(c);
  if (size == 0) return EndChain(at, c);
  const LineHandle top = AddLine(at, CapturedPart(c, size), "IPv6 Mobility Header: %u bytes", size);
  const Place in = Under(at, top);
  Cursor header = TakeCursor(c, size);
  TakeNextHeader(in, header, chain);
  const Field length = TakeU8(header);
  AddLine(in, length, "Length of the header excluding first 8 octets: %u", length.value);
  const Field type = TakeU8(header);
  AddLine(in, type, "Mobility Header Type: %u = %s", type.value, LookupName(kMessageNames, type.value));
  const Field reserved = TakeU8(header);
  AddLine(in, reserved, "Reserved: %u", reserved.value);
  const Field checksum = TakeU16(header);
  AddLine(in, checksum, "Checksum: 0x%.04X", checksum.value);
  if (checksum.here) DecodeMessage(in, header, type.value);
  return Left(c) > 0;
}

}  // namespace qxview
