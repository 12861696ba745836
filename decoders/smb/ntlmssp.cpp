#include "decoders/smb/ntlmssp.h"

#include "core/line_facts.h"
#include "decoders/smb/smb_block.h"

namespace qxview {
namespace {

constexpr uint32_t kNtlm = 0x4E544C4D, kSsp = 0x53535000;   // "NTLMSSP" with its zero
constexpr uint32_t kNegotiate = 1, kChallenge = 2, kAuthenticate = 3;
constexpr uint32_t kUnicodeFlag = 0x00000001;
constexpr int32_t kVersionSize = 8, kMicSize = 16, kShortResponse = 24, kV2Header = 44;
constexpr uint32_t kAvEnd = 0, kAvFlags = 6, kAvTime = 7, kAvHost = 8, kAvChannel = 10;

constexpr auto kTypeNames = SortedNames({{1, "Negotiate"}, {2, "Challenge"}, {3, "Authenticate"}});

constexpr auto kFlagBits = SortedNames({
    {0x00000001, "Unicode"}, {0x00000002, "OEM"}, {0x00000004, "Request Target"}, {0x00000010, "Sign"},
    {0x00000020, "Seal"}, {0x00000040, "Datagram"}, {0x00000080, "LAN Manager Key"}, {0x00000200, "NTLM"},
    {0x00000800, "Anonymous"}, {0x00001000, "Domain Supplied"}, {0x00002000, "Workstation Supplied"},
    {0x00008000, "Always Sign"}, {0x00010000, "Target is a Domain"}, {0x00020000, "Target is a Server"},
    {0x00080000, "Extended Session Security"}, {0x00100000, "Identify"}, {0x00400000, "Request Non-NT Session Key"},
    {0x00800000, "Target Information"}, {0x02000000, "Version"}, {0x20000000, "128 Bit Encryption"},
    {0x40000000, "Key Exchange"}, {0x80000000, "56 Bit Encryption"}});

constexpr auto kAvNames = SortedNames({
    {0, "End of List"}, {1, "NetBIOS Computer Name"}, {2, "NetBIOS Domain Name"}, {3, "DNS Computer Name"},
    {4, "DNS Domain Name"}, {5, "DNS Tree Name"}, {6, "Flags"}, {7, "Timestamp"}, {8, "Single Host"},
    {9, "Target Name"}, {10, "Channel Bindings"}});

constexpr auto kAvFlagBits = SortedNames({
    {0x00000001, "Constrained Account"}, {0x00000002, "Message Integrity Code Present"},
    {0x00000004, "Untrusted Service Name"}});

constexpr auto kHead = LittleRows<NoValues>({Text(8, "Signature"), Coded(4, "Message Type", kTypeNames).Note(": %s")});

struct Buffer {
  Field length, offset;
};
// What a message says of itself, and where what it points at stands.
struct Login {
  Field flags;
  Buffer lanManager, nt, domain, user, workstation, key, target, information;
};

constexpr auto kBuffer = LittleRows<Buffer>({
    Number(2, "Length").Into(&Buffer::length), Number(2, "Maximum Length"), Number(4, "Offset").Into(&Buffer::offset)});
template <Buffer Login::*kMember>
void ShowBuffer(const Place& in, Cursor& c, const char* label, Login& login) {
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c) < 8 ? Left(c) : 8), "%s Buffer", label));
  login.*kMember = ShowRows(under, c, kBuffer);
}
template <Buffer Login::*kMember>
consteval Row<Login> BufferOf(const char* label) { return Shown(label, ShowBuffer<kMember>); }

constexpr auto kNegotiateRows = LittleRows<Login>({
    Flags(4, "Negotiate Flags", kFlagBits), BufferOf<&Login::domain>("Domain Name"),
    BufferOf<&Login::workstation>("Workstation Name")});
constexpr auto kChallengeRows = LittleRows<Login>({
    BufferOf<&Login::target>("Target Name"), Flags(4, "Negotiate Flags", kFlagBits).Into(&Login::flags),
    Bytes(8, "Server Challenge"), Bytes(8, "Reserved"), BufferOf<&Login::information>("Target Information")});
constexpr auto kAuthenticateRows = LittleRows<Login>({
    BufferOf<&Login::lanManager>("LAN Manager Response"), BufferOf<&Login::nt>("NT Response"),
    BufferOf<&Login::domain>("Domain Name"), BufferOf<&Login::user>("User Name"),
    BufferOf<&Login::workstation>("Workstation Name"), BufferOf<&Login::key>("Session Key"),
    Flags(4, "Negotiate Flags", kFlagBits).Into(&Login::flags)});
constexpr auto kVersion = LittleRows<NoValues>({
    Number(1, "Major"), Number(1, "Minor"), Number(2, "Build"), Bytes(3, "Reserved"), Number(1, "NTLM Revision")});
constexpr auto kV2Rows = LittleRows<NoValues>({
    Bytes(16, "NT Proof"), Number(1, "Response Version"), Number(1, "Highest Response Version"), Hex(2, "Reserved"),
    Hex(4, "Reserved"), FileTime("Time"), Bytes(8, "Client Challenge"), Hex(4, "Reserved")});
constexpr auto kAvHeader = LittleRows<NoValues>({Coded(2, "ID", kAvNames), Number(2, "Length")});
constexpr auto kAvFlagsValue = LittleRows<NoValues>({Flags(4, "Value", kAvFlagBits)});
constexpr auto kAvTimeValue = LittleRows<NoValues>({FileTime("Value")});

// The bytes of a buffer that lies inside the message; not here for any other.
Field ContentOf(const Field& message, const Buffer& buffer) {
  if (!buffer.offset.here) return {};
  return Slice(message, static_cast<int32_t>(buffer.offset.value), static_cast<int32_t>(buffer.length.value));
}

void AddContentText(const Place& in, const Field& content, const char* label, bool unicode) {
  Cursor c = CursorOver(content);
  if (Left(c) < 1) return;
  AddSmbCounted(SmbMessage{}, in, c, Left(c), label, unicode ? SmbCharacters::kUnicode : SmbCharacters::kOem);
}

void AddContentBytes(const Place& in, const Field& content, const char* label) {
  Cursor c = CursorOver(content);
  AddSmbBytes(in, c, Left(c), label);
}

void AddVersion(const Place& in, Cursor& c) {
  if (Left(c) < kVersionSize) return;
  ShowRows(Under(in, AddLine(in, Ahead(c, kVersionSize), "Version")), c, kVersion);
}

void AddAvPair(const Place& in, Cursor& c) {
  const uint32_t id = PeekLittleU16(c), length = PeekLittleU16(c, 2);
  Cursor pair = TakeCursor(c, 4 + static_cast<int64_t>(length));
  const Place under = Under(in, AddLine(in, Ahead(pair, Left(pair)), "Pair: %s", LookupName(kAvNames, id, kUndefined)));
  ShowRows(under, pair, kAvHeader);
  if (id == kAvFlags) {
    ShowRows(under, pair, kAvFlagsValue);
  } else if (id == kAvTime) {
    ShowRows(under, pair, kAvTimeValue);
  } else if (id == kAvHost || id >= kAvChannel) {
    AddSmbBytes(under, pair, Left(pair), "Value");
  } else {
    AddContentText(under, Rest(pair), "Value", true);
  }
}

// What is known of the target, up to the end of the list.
void AddAvPairs(const Place& in, Cursor& c, const char* title) {
  if (Left(c) < 4) return;
  const Place under = Under(in, AddSmbTitle(in, Ahead(c, Left(c)), title));
  bool ended = false;
  for (Loop loop; !ended && Left(c) >= 4 && MoreAt(in, c, loop);) {
    ended = PeekLittleU16(c) == kAvEnd;
    AddAvPair(under, c);
  }
  AddSmbBytes(under, c, Left(c), "Pad");
}

// Whether the version has room in front of what a buffer points at.
bool LeavesRoom(const Cursor& c, const Buffer& buffer) {
  return buffer.offset.value >= static_cast<uint32_t>(Taken(c) + kVersionSize);
}

void DecodeNegotiate(const Place& in, Cursor& c, const Field& message) {
  const Login login = ShowRows(in, c, kNegotiateRows);
  const bool bare = login.domain.length.value == 0 && login.workstation.length.value == 0;
  if (bare || (LeavesRoom(c, login.domain) && LeavesRoom(c, login.workstation))) AddVersion(in, c);
  AddContentText(in, ContentOf(message, login.domain), "Domain Name", false);
  AddContentText(in, ContentOf(message, login.workstation), "Workstation Name", false);
}

void DecodeChallenge(const Place& in, Cursor& c, const Field& message) {
  const Login login = ShowRows(in, c, kChallengeRows);
  if (login.target.length.value == 0 || LeavesRoom(c, login.target)) AddVersion(in, c);
  AddContentText(in, ContentOf(message, login.target), "Target Name", (login.flags.value & kUnicodeFlag) != 0);
  Cursor pairs = CursorOver(ContentOf(message, login.information));
  AddAvPairs(in, pairs, "Target Information");
}

// The version and the integrity code have room only when the first buffer starts behind them.
void AddVersionAndCode(const Place& in, Cursor& c, std::span<const Buffer> buffers) {
  uint32_t first = UINT32_MAX;
  for (const Buffer& buffer : buffers) {
    if (buffer.length.value > 0 && buffer.offset.value < first) first = buffer.offset.value;
  }
  const uint32_t here = static_cast<uint32_t>(Taken(c));
  if (first < here + kVersionSize) return;
  AddVersion(in, c);
  if (first >= here + kVersionSize + kMicSize && Left(c) >= kMicSize) AddSmbBytes(in, c, kMicSize, "Integrity Code");
}

void DecodeAuthenticate(const Place& in, Cursor& c, const Field& message) {
  const Login login = ShowRows(in, c, kAuthenticateRows);
  const Buffer buffers[] = {login.lanManager, login.nt, login.domain, login.user, login.workstation, login.key};
  AddVersionAndCode(in, c, buffers);
  const bool unicode = (login.flags.value & kUnicodeFlag) != 0;
  AddContentText(in, ContentOf(message, login.domain), "Domain Name", unicode);
  AddContentText(in, ContentOf(message, login.user), "User Name", unicode);
  AddContentText(in, ContentOf(message, login.workstation), "Workstation Name", unicode);
  AddContentBytes(in, ContentOf(message, login.lanManager), "LAN Manager Response");
  AddNtlmV2Response(in, ContentOf(message, login.nt), "NT Response");
  AddContentBytes(in, ContentOf(message, login.key), "Session Key");
}

}  // namespace

bool StartsNtlmssp(const Cursor& c) { return PeekU32(c) == kNtlm && PeekU32(c, 4) == kSsp; }

int32_t DecodeNtlmssp(const Place& in, Cursor rest) {
  const KeyedAs keys(PacketOf(in), "ntlmssp");
  if (!StartsNtlmssp(rest)) return 0;
  const Field message = Ahead(rest, Left(rest));
  Cursor c = CursorOver(message);
  const LineHandle line = AddLine(in, message, "NTLMSSP");
  const Place under = Under(in, line);
  const uint32_t type = PeekLittleU32(c, 8);
  ShowRows(under, c, kHead);
  switch (type) {
    case kNegotiate: DecodeNegotiate(under, c, message); break;
    case kChallenge: DecodeChallenge(under, c, message); break;
    case kAuthenticate: DecodeAuthenticate(under, c, message); break;
    default: AddBlock(under, Rest(c), "Message Data"); break;
  }
  return 1;
}

void AddNtlmV2Response(const Place& in, const Field& response, const char* title) {
  const KeyedAs keys(PacketOf(in), "ntlmssp");
  Cursor c = CursorOver(response);
  if (response.length <= kShortResponse || response.length < kV2Header) {
    AddSmbBytes(in, c, Left(c), title);
    return;
  }
  const Place under = Under(in, AddSmbTitle(in, response, title));
  ShowRows(under, c, kV2Rows);
  AddAvPairs(under, c, "Target Information");
}

}  // namespace qxview
