// NetBIOS and SMB over IPX, as NWLink and NetWare's own NetBIOS send them. Numbers are little-endian but for networks.
//
//   NetBIOS (socket 0455)
//     broadcasts   networks that it came through (8 of 4)   what follows
//     names        name flags (1)   type (1)   name (16)
//     datagrams    control (1)   type (1)   destination name (16)   source name (16)   user data (SMB)
//     sessions     control (1)   type (1)   source connection (2)   destination connection (2)   send sequence (2)
//                  total length (2)   offset (2)   length (2)   receive sequence (2)   bytes received (2)   data (SMB)
//   Direct hosting (sockets 0550 to 0555): SMB without NetBIOS. What is elsewhere the signature of its header holds
//     14   key (4)   connection ID (2)   sequence number (2)   group ID (2)
//   and names are looked for by the name management protocol (NMPI)
//     networks (8 of 4)   operation (1)   name type (1)   message ID (2)   requested name (16)   source name (16)
#include "decoders/net/ipx.h"
#include "decoders/netbios/netbios.h"
#include "decoders/smb/smb.h"

namespace qxview {
namespace {

constexpr int32_t kNetworkCount = 8, kNetworksSize = 4 * kNetworkCount;
constexpr int32_t kNameMessageSize = 2 + kNetBiosNameLength, kNmpiSize = kNetworksSize + 4 + 2 * kNetBiosNameLength;
constexpr uint32_t kMarker = 0xFF534D42, kGroupFlag = 0x80;
constexpr int32_t kSmbKeyOffset = 14, kSmbConnectionSize = 10;

enum Type : uint32_t {
  kFindName = 1, kDeleteName = 5, kSessionData = 6, kSessionEnd, kSessionEndAck, kStatusQuery, kStatusResponse,
  kDirectedDatagram
};
constexpr auto kTypeNames = SortedNames({
    {kFindName, "Find Name"}, {2, "Name Recognized"}, {3, "Check Name"}, {4, "Name In Use"},
    {kDeleteName, "Deregister Name"}, {kSessionData, "Session Data"}, {kSessionEnd, "Session End"},
    {kSessionEndAck, "Session End Ack"}, {kStatusQuery, "Status Query"}, {kStatusResponse, "Status Response"},
    {kDirectedDatagram, "Directed Datagram"},
});

enum NmpiOperation : uint32_t { kMailslotWrite = 0xFC };
constexpr auto kOperationNames = SortedNames({
    {0xF1, "Claim Name"}, {0xF2, "Delete Name"}, {0xF3, "Query Name"}, {0xF4, "Name Found"},
    {0xF5, "Messenger Hangup"}, {kMailslotWrite, "Mailslot Write"}, {0xFD, "Find Mailslot Name"},
    {0xFE, "Mailslot Name Found"},
});
enum NameType : uint32_t { kMachine = 1, kWorkgroup, kBrowser };
constexpr auto kNameTypeNames = SortedNames({{kMachine, "Machine"}, {kWorkgroup, "Workgroup"}, {kBrowser, "Browser"}});

struct BitRow {
  uint8_t bit;   // from the most significant one
  const char* name;
};
constexpr BitRow kNameFlags[] = {
    {0, "Group Name"}, {1, "Name In Use"}, {5, "Name Registered"}, {6, "Name Duplicated"}, {7, "Name Deregistered"}};
constexpr BitRow kControlBits[] = {
    {0, "System Packet"}, {1, "Acknowledgement Required"}, {2, "Attention"}, {3, "End of Message"}, {4, "Resend"}};

template <size_t kRows>
void AddBits(const Place& in, const Field& flags, const char* label, const BitRow (&rows)[kRows]) {
  const Place under = Under(in, AddLine(in, flags, "%s: 0x%.02X", label, flags.value));
  for (const BitRow& row : rows) {
    const BitPicture bit = BitsOf(flags, row.bit, 1);
    AddBitLine(under, flags, "%s: %s = %s", bit.picture, row.name, TrueOrFalse(bit.value));
  }
}

// Routers write in which network they had a broadcast from; transport control counts the places that are used.
void AddNetworks(const Place& in, Cursor& c) {
  const Place under = Under(in, AddLine(in, Ahead(c, kNetworksSize), "Networks Passed"));
  for (int32_t i = 0; i < kNetworkCount; ++i) AddIpxNetworkLine(under, "Network", TakeBytes(c, 4));
}

void AddNumber(const Place& in, Cursor& c, const char* label) {
  const Field field = TakeLittleU16(c);
  AddLine(in, field, "%s: %u", label, field.value);
}

void AddNames(const Place& in, Cursor& c) {
  const NetBiosName destination = TakePlainNetBiosName(c), source = TakePlainNetBiosName(c);
  AddNetBiosNameLine(in, "Destination Name", destination);
  AddNetBiosNameLine(in, "Source Name", source);
  AppendToParent(in, source.field, ", %s -> %s", source.text, destination.text);
}

// The session lines up to the data, whose bytes are what is left of the result.
Cursor AddSession(const Place& in, Cursor& c, uint32_t* offset) {
  const Field source = TakeLittleU16(c);
  AddLine(in, source, "Source Connection ID: 0x%.04X", source.value);
  const Field destination = TakeLittleU16(c);
  AddLine(in, destination, "Destination Connection ID: 0x%.04X", destination.value);
  AppendToParent(in, destination, ", Connection 0x%.04X -> 0x%.04X", source.value, destination.value);
  AddNumber(in, c, "Send Sequence Number");
  AddNumber(in, c, "Total Data Length");
  const Field start = TakeLittleU16(c);
  AddLine(in, start, "Offset: %u", start.value);
  *offset = start.value;
  const Field length = TakeLittleU16(c);
  AddLine(in, length, "Data Length: %u", length.value);
  AddNumber(in, c, "Receive Sequence Number");
  AddNumber(in, c, "Bytes Received");
  return TakeCursor(c, length.value);
}

// Data that has a decoder, or is a block of the message.
void ShowUserData(const Place& at, const Place& in, Cursor data, DecoderFunction decode) {
  if (Left(data) < 1) return;
  data.begin = data.offset;
  if (!TryDecoder(Deeper(at), data, decode, nullptr)) AddBlock(in, Ahead(data, Left(data)), "User Data");
}

int32_t DecodeRestOfSmb(const Place& at, Cursor c) { return DecodeSmbContinuation(at, c); }

int32_t DecodeNetBiosMessage(const Place& at, Cursor c, bool hasNetworks) {
  if (Left(c) < (hasNetworks ? kNetworksSize : 0) + 2) return 0;
  const uint32_t type = c.at[(hasNetworks ? kNetworksSize : 0) + 1];
  const char* name = LookupName(kTypeNames, type);
  const Place in = Under(at, AddLine(at, Ahead(c, 2), "NetBIOS over IPX: %s", name));
  if (hasNetworks) AddNetworks(in, c);
  const Field flags = TakeU8(c);
  const bool isName = type >= kFindName && type <= kDeleteName;
  if (isName) {
    AddBits(in, flags, "Name Flags", kNameFlags);
  } else {
    AddBits(in, flags, "Connection Control", kControlBits);
  }
  const Field typeField = TakeU8(c);
  AddLine(in, typeField, "Packet Type: 0x%.02X = %s", type, name);
  Cursor data = MakeCursor(c.at, c.offset, 0);
  uint32_t offset = 0;
  if (isName) {
    const NetBiosName subject = TakePlainNetBiosName(c);
    AddNetBiosNameLine(in, "Name", subject, (flags.value & kGroupFlag) != 0);
    AppendToParent(in, subject.field, ", %s", subject.text);
  } else if (type == kDirectedDatagram) {
    AddNames(in, c);
    data = TakeCursor(c, Left(c));
  } else if (type >= kSessionData && type <= kSessionEndAck) {
    data = AddSession(in, c, &offset);
  }
  SetRange(at, in.parent, c.begin, (Left(data) > 0 ? data.offset : c.offset) - c.begin);
  // Sessions say where in a message their data goes, so that what begins one is not taken for the rest of another.
  ShowUserData(at, in, data, offset != 0 ? DecodeRestOfSmb : DecodeSmbDatagram);
  c.ranShort = false;
  AddBlock(in, Rest(c), type == kStatusResponse ? "Status Data" : "Extra Data");
  return 1;
}

int32_t DecodeNmpi(const Place& at, Cursor c, const char* name) {
  const Place in = Under(at, AddLine(at, Ahead(c, kNmpiSize), "NMPI: %s", name));
  AddNetworks(in, c);
  const Field operation = TakeU8(c);
  AddLine(in, operation, "Operation: 0x%.02X = %s", operation.value, name);
  const Field type = TakeU8(c);
  AddLine(in, type, "Name Type: %u = %s", type.value, LookupName(kNameTypeNames, type.value));
  const Field identifier = TakeLittleU16(c);
  AddLine(in, identifier, "Message ID: 0x%.04X", identifier.value);
  const NetBiosName requested = TakePlainNetBiosName(c), source = TakePlainNetBiosName(c);
  AddNetBiosNameLine(in, "Requested Name", requested, type.value == kWorkgroup || type.value == kBrowser);
  AddNetBiosNameLine(in, "Source Name", source);
  AppendToLine(at, in.parent, ", %s -> %s", source.text, requested.text);
  if (operation.value == kMailslotWrite) {
    ShowUserData(at, in, c, DecodeSmbDatagram);
  } else {
    AddBlock(in, Rest(c), "Extra Data");
  }
  return 1;
}

// The connection of a message without a session below it, then the message.
int32_t DecodeHostedSmb(const Place& at, const Cursor& c) {
  Cursor words = CursorOver(Slice(Ahead(c, Left(c)), kSmbKeyOffset, kSmbConnectionSize));
  const LineHandle line = AddLine(at, Ahead(words, kSmbConnectionSize), "SMB over IPX");
  const Place in = Under(at, line);
  const Field key = TakeLittleU32(words), connection = TakeLittleU16(words), sequence = TakeLittleU16(words);
  AddLine(in, key, "Key: 0x%.08X", key.value);
  AddLine(in, connection, "Connection ID: %u", connection.value);
  AddLine(in, sequence, "Sequence Number: %u", sequence.value);
  const Field group = TakeLittleU16(words);
  AddLine(in, group, "Group ID: %u", group.value);
  AppendToLine(at, line, ": Connection %u, Sequence %u", connection.value, sequence.value);
  return CallDecoder(Deeper(at), c, DecodeSmbDatagram, "SMB Data");
}

}  // namespace

int32_t DecodeIpxNetBiosBroadcast(const Place& at, Cursor c) { return DecodeNetBiosMessage(at, c, true); }

int32_t DecodeIpxNetBios(const Place& at, Cursor c) {
  // Name messages that go to one station have room for the networks, too.
  const bool isName = Left(c) == kNetworksSize + kNameMessageSize && c.at[kNetworksSize + 1] >= kFindName &&
                      c.at[kNetworksSize + 1] <= kDeleteName;
  return DecodeNetBiosMessage(at, c, isName);
}

int32_t DecodeNwlinkSmb(const Place& at, Cursor c) {
  if (Left(c) > kSmbHeaderSize && ReadU32(c.at) == kMarker) return DecodeHostedSmb(at, c);
  if (Left(c) < kNmpiSize) return 0;
  const char* name = LookupName(kOperationNames, c.at[kNetworksSize], nullptr);
  return name ? DecodeNmpi(at, c, name) : 0;
}

}  // namespace qxview
