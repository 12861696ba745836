#include "decoders/smb/ntlmssp.h"

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

constexpr SmbField kFlags[] = {{kSmbFlags32, "Negotiate Flags", kFlagBits}};
constexpr SmbField kVersion[] = {
    {kSmbNumber8, "Major"}, {kSmbNumber8, "Minor"}, {kSmbNumber16, "Build"}, {kSmbBytes, "Reserved", {}, 3},
    {kSmbNumber8, "NTLM Revision"}};
constexpr SmbField kServerChallenge[] = {{kSmbBytes, "Server Challenge", {}, 8}, {kSmbBytes, "Reserved", {}, 8}};
constexpr SmbField kV2Fields[] = {
    {kSmbBytes, "NT Proof", {}, 16}, {kSmbNumber8, "Response Version"}, {kSmbNumber8, "Highest Response Version"},
    {kSmbHex16, "Reserved"}, {kSmbHex32, "Reserved"}, {kSmbFileTime, "Time"},
    {kSmbBytes, "Client Challenge", {}, 8}, {kSmbHex32, "Reserved"}};
constexpr SmbField kAvHeader[] = {{kSmbName16, "ID", kAvNames}, {kSmbNumber16, "Length"}};
constexpr SmbField kAvFlagsField[] = {{kSmbFlags32, "Value", kAvFlagBits}};
constexpr SmbField kAvTimeField[] = {{kSmbFileTime, "Value"}};

// The field rows and texts are SMB's, over a message of this protocol.
SmbMessage MessageOver(const Cursor& c) { return {c, 0, 0, 0, 0, 0, 0, false, false}; }

struct Buffer {
  uint32_t length, offset;
};

Buffer TakeBuffer(const Place& in, Cursor& c, const char* label) {
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c) < 8 ? Left(c) : 8), "%s Buffer", label));
  const Field length = TakeLittleU16(c);
  AddLine(under, length, "Length: %u", length.value);
  const Field room = TakeLittleU16(c);
  AddLine(under, room, "Maximum Length: %u", room.value);
  const Field offset = TakeLittleU32(c);
  AddLine(under, offset, "Offset: %u", offset.value);
  return {offset.here ? length.value : 0, offset.value};
}

// The bytes of a buffer that lies inside the message; none for any other.
Cursor ContentOf(const SmbMessage& message, const Buffer& buffer) {
  return CursorOver(SmbRange(message, buffer.offset, buffer.length));
}

void AddBufferText(const SmbMessage& message, const Place& in, const Buffer& buffer, const char* label, bool unicode) {
  Cursor content = ContentOf(message, buffer);
  if (Left(content) < 1) return;
  AddSmbCounted(message, in, content, Left(content), label, unicode ? SmbCharacters::kUnicode : SmbCharacters::kOem);
}

void AddBufferBytes(const SmbMessage& message, const Place& in, const Buffer& buffer, const char* label) {
  Cursor content = ContentOf(message, buffer);
  AddSmbBytes(in, content, Left(content), label);
}

void AddVersion(const SmbMessage& message, const Place& in, Cursor& c) {
  if (Left(c) < kVersionSize) return;
  const Place under = Under(in, AddLine(in, Ahead(c, kVersionSize), "Version"));
  AddSmbFields(message, under, c, kVersion);
}

void AddAvPair(const SmbMessage& message, const Place& in, Cursor& c) {
  const uint32_t id = PeekLittleU16(c), length = PeekLittleU16(c, 2);
  Cursor pair = TakeCursor(c, 4 + static_cast<int64_t>(length));
  const Place under = Under(in, AddLine(in, Ahead(pair, Left(pair)), "Pair: %s", LookupName(kAvNames, id, kUndefined)));
  AddSmbFields(message, under, pair, kAvHeader);
  if (Left(pair) < 1) return;
  if (id == kAvFlags) {
    AddSmbFields(message, under, pair, kAvFlagsField);
  } else if (id == kAvTime) {
    AddSmbFields(message, under, pair, kAvTimeField);
  } else if (id == kAvHost || id == kAvChannel || id > kAvChannel) {
    AddSmbBytes(under, pair, Left(pair), "Value");
  } else {
    AddSmbCounted(message, under, pair, Left(pair), "Value", SmbCharacters::kUnicode);
  }
}

// What is known of the target, up to the end of the list.
void AddAvPairs(const SmbMessage& message, const Place& in, Cursor& c, const char* title) {
  if (Left(c) < 4) return;
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c)), "%s", title));
  bool ended = false;
  while (!ended && Left(c) >= 4 && !PacketOf(in).limitReached) {
    ended = PeekLittleU16(c) == kAvEnd;
    AddAvPair(message, under, c);
  }
  AddSmbBytes(under, c, Left(c), "Pad");
}

void DecodeNegotiate(const SmbMessage& message, const Place& in, Cursor& c) {
  AddSmbFields(message, in, c, kFlags);
  const Buffer domain = TakeBuffer(in, c, "Domain Name");
  const Buffer workstation = TakeBuffer(in, c, "Workstation Name");
  const bool bare = domain.length == 0 && workstation.length == 0;
  const uint32_t here = static_cast<uint32_t>(SmbOffset(message, c)) + kVersionSize;
  if (bare || (domain.offset >= here && workstation.offset >= here)) AddVersion(message, in, c);
  AddBufferText(message, in, domain, "Domain Name", false);
  AddBufferText(message, in, workstation, "Workstation Name", false);
}

void DecodeChallenge(const SmbMessage& message, const Place& in, Cursor& c) {
  const Buffer target = TakeBuffer(in, c, "Target Name");
  const uint32_t flags = AddSmbFields(message, in, c, kFlags);
  AddSmbFields(message, in, c, kServerChallenge);
  const Buffer information = TakeBuffer(in, c, "Target Information");
  const uint32_t here = static_cast<uint32_t>(SmbOffset(message, c)) + kVersionSize;
  if (target.length == 0 || target.offset >= here) AddVersion(message, in, c);
  AddBufferText(message, in, target, "Target Name", (flags & kUnicodeFlag) != 0);
  Cursor pairs = ContentOf(message, information);
  AddAvPairs(message, in, pairs, "Target Information");
}

// The version and the integrity code have room only when the first buffer starts behind them.
void AddVersionAndCode(const SmbMessage& message, const Place& in, Cursor& c, std::span<const Buffer> buffers) {
  uint32_t first = UINT32_MAX;
  for (const Buffer& buffer : buffers) {
    if (buffer.length > 0 && buffer.offset < first) first = buffer.offset;
  }
  const uint32_t here = static_cast<uint32_t>(SmbOffset(message, c));
  if (first < here + kVersionSize) return;
  AddVersion(message, in, c);
  if (first >= here + kVersionSize + kMicSize && Left(c) >= kMicSize) AddSmbBytes(in, c, kMicSize, "Integrity Code");
}

void DecodeAuthenticate(const SmbMessage& message, const Place& in, Cursor& c) {
  const Buffer buffers[] = {TakeBuffer(in, c, "LAN Manager Response"), TakeBuffer(in, c, "NT Response"),
                            TakeBuffer(in, c, "Domain Name"),          TakeBuffer(in, c, "User Name"),
                            TakeBuffer(in, c, "Workstation Name"),     TakeBuffer(in, c, "Session Key")};
  const uint32_t flags = AddSmbFields(message, in, c, kFlags);
  AddVersionAndCode(message, in, c, buffers);
  const bool unicode = (flags & kUnicodeFlag) != 0;
  AddBufferText(message, in, buffers[2], "Domain Name", unicode);
  AddBufferText(message, in, buffers[3], "User Name", unicode);
  AddBufferText(message, in, buffers[4], "Workstation Name", unicode);
  AddBufferBytes(message, in, buffers[0], "LAN Manager Response");
  AddNtlmV2Response(in, SmbRange(message, buffers[1].offset, buffers[1].length), "NT Response");
  AddBufferBytes(message, in, buffers[5], "Session Key");
}

}  // namespace

bool StartsNtlmssp(const Cursor& c) { return PeekU32(c) == kNtlm && PeekU32(c, 4) == kSsp; }

int32_t DecodeNtlmssp(const Place& in, Cursor c) {
  if (!StartsNtlmssp(c)) return 0;
  const SmbMessage message = MessageOver(c);
  const LineHandle line = AddLine(in, Ahead(c, Left(c)), "NTLMSSP");
  const Place under = Under(in, line);
  const Field signature = TakeBytes(c, 8);
  AddLine(under, signature, "Signature: %s", Text(signature));
  const Field type = TakeLittleU32(c);
  const char* name = LookupName(kTypeNames, type.value, kUndefined);
  AppendToParent(under, type, ": %s", name);
  AddLine(under, type, "Message Type: [%u] = %s", type.value, name);
  switch (type.value) {
    case kNegotiate: DecodeNegotiate(message, under, c); break;
    case kChallenge: DecodeChallenge(message, under, c); break;
    case kAuthenticate: DecodeAuthenticate(message, under, c); break;
    default: AddBlock(under, Rest(c), "Message Data"); break;
  }
  return 1;
}

void AddNtlmV2Response(const Place& in, const Field& response, const char* title) {
  Cursor c = CursorOver(response);
  if (response.length <= kShortResponse || response.length < kV2Header) {
    AddSmbBytes(in, c, Left(c), title);
    return;
  }
  const SmbMessage message = MessageOver(c);
  const Place under = Under(in, AddLine(in, response, "%s", title));
  AddSmbFields(message, under, c, kV2Fields);
  AddAvPairs(message, under, c, "Target Information");
}

}  // namespace qxview
