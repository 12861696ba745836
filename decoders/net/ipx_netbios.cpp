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
#include "core/line_facts.h"
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

constexpr RowData kTypeRow = Hex(1, "Packet Type", kTypeNames);

enum NmpiOperation : uint32_t { kMailslotWrite = 0xFC };
constexpr auto kOperationNames = SortedNames({
    {0xF1, "Claim Name"}, {0xF2, "Delete Name"}, {0xF3, "Query Name"}, {0xF4, "Name Found"},
    {0xF5, "Messenger Hangup"}, {kMailslotWrite, "Mailslot Write"}, {0xFD, "Find Mailslot Name"},
    {0xFE, "Mailslot Name Found"},
});
enum NameType : uint32_t { kMachine = 1, kWorkgroup, kBrowser };
constexpr auto kNameTypeNames = SortedNames({{kMachine, "Machine"}, {kWorkgroup, "Workgroup"}, {kBrowser, "Browser"}});

struct Header {
  Field flags;
};
constexpr auto kNameFlags = Rows<Header>({
    Hex(1, "Name Flags").Into(&Header::flags), Flag(0, "Group Name"), Flag(1, "Name In Use"), Flag(5, "Name Registered"),
    Flag(6, "Name Duplicated"), Flag(7, "Name Deregistered"), kTypeRow});
constexpr auto kControl = Rows<Header>({
    Hex(1, "Connection Control").Into(&Header::flags), Flag(0, "System Packet"), Flag(1, "Acknowledgement Required"),
    Flag(2, "Attention"), Flag(3, "End of Message"), Flag(4, "Resend"), kTypeRow});

struct Session {
  Field source, destination, offset, length;
};
constexpr auto kSession = Rows<Session>({
    Hex(2, "Source Connection ID").Into(&Session::source),
    Hex(2, "Destination Connection ID").Into(&Session::destination), Number(2, "Send Sequence Number"),
    Number(2, "Total Data Length"), Number(2, "Offset").Into(&Session::offset),
    Number(2, "Data Length").Into(&Session::length), Number(2, "Receive Sequence Number"), Number(2, "Bytes Received")});

struct NameMessage {
  Field operation, type;
};
constexpr auto kNameMessage = Rows<NameMessage>({
    Hex(1, "Operation", kOperationNames).Into(&NameMessage::operation),
    Number(1, "Name Type", kNameTypeNames).Into(&NameMessage::type), Hex(2, "Message ID").Little()});

struct Hosted {
  Field connection, sequence;
};
constexpr auto kHosted = Rows<Hosted>({
    Hex(4, "Key"), Number(2, "Connection ID").Into(&Hosted::connection),
    Number(2, "Sequence Number").Into(&Hosted::sequence), Number(2, "Group ID")});

// Routers write in which network they had a broadcast from; transport control counts the places that are used.
void AddNetworks(const Place& in, Cursor& c) {
  const Place under = Under(in, AddLine(in, Ahead(c, kNetworksSize), "Networks Passed"));
  for (int32_t i = 0; i < kNetworkCount; ++i) AddIpxNetworkLine(under, TakeBytes(c, 4), "Network");
}

void AddNames(const Place& in, Cursor& c) {
  const NetBiosName destination = TakePlainNetBiosName(c), source = TakePlainNetBiosName(c);
  AddNetBiosNameLine(in, "Destination Name", destination);
  AddNetBiosNameLine(in, "Source Name", source);
  AppendToParent(in, source.field, ", %s -> %s", source.text, destination.text);
}

// Data that has a decoder, or is a block of the message.
void ShowUserData(const Place& at, const Place& in, Cursor data, DecoderFunction decode) {
  if (Left(data) < 1) return;
  data.begin = data.offset;
  if (!TryDecoder(Deeper(at), data, decode, nullptr)) AddBlock(in, Ahead(data, Left(data)), "User Data");
}

int32_t DecodeRestOfSmb(const Place& at, Cursor c) { return DecodeSmbContinuation(at, c); }

int32_t DecodeNetBiosMessage(const Place& at, Cursor c, bool hasNetworks) {
  const KeyedAs keys(PacketOf(at), "nbipx");
  if (Left(c) < (hasNetworks ? kNetworksSize : 0) + 2) return 0;
  const uint32_t type = PeekU8(c, (hasNetworks ? kNetworksSize : 0) + 1);
  const Place in = Under(at, AddLine(at, Ahead(c, 2), "NetBIOS over IPX: %s", LookupName(kTypeNames, type)));
  if (hasNetworks) AddNetworks(in, c);
  const bool isName = type >= kFindName && type <= kDeleteName;
  const Header header = isName ? ShowRows(in, c, kNameFlags) : ShowRows(in, c, kControl);
  Cursor data{};
  Session session{};
  if (isName) {
    const NetBiosName subject = TakePlainNetBiosName(c);
    AddNetBiosNameLine(in, "Name", subject, (header.flags.value & kGroupFlag) != 0);
    AppendToParent(in, subject.field, ", %s", subject.text);
  } else if (type == kDirectedDatagram) {
    AddNames(in, c);
    data = TakeCursor(c, Left(c));
  } else if (type >= kSessionData && type <= kSessionEndAck) {
    session = ShowRows(in, c, kSession, ByteOrder::kLittle);
    AppendToParent(in, session.destination, ", Connection 0x%.04X -> 0x%.04X", session.source.value,
                   session.destination.value);
    data = TakeCursor(c, session.length.value);
  }
  SetRange(at, in.parent, c.begin, (Left(data) > 0 ? data.offset : c.offset) - c.begin);
  // Sessions say where in a message their data goes, so that what begins one is not taken for the rest of another.
  ShowUserData(at, in, data, session.offset.value != 0 ? DecodeRestOfSmb : DecodeSmbDatagram);
  c.ranShort = false;
  AddBlock(in, Rest(c), type == kStatusResponse ? "Status Data" : "Extra Data");
  return 1;
}

int32_t DecodeNmpi(const Place& at, Cursor c, const char* name) {
  const KeyedAs keys(PacketOf(at), "nmpi");
  const Place in = Under(at, AddLine(at, Ahead(c, kNmpiSize), "NMPI: %s", name));
  AddNetworks(in, c);
  const NameMessage message = ShowRows(in, c, kNameMessage);
  const NetBiosName requested = TakePlainNetBiosName(c), source = TakePlainNetBiosName(c);
  AddNetBiosNameLine(in, "Requested Name", requested,
                     message.type.value == kWorkgroup || message.type.value == kBrowser);
  AddNetBiosNameLine(in, "Source Name", source);
  AppendToLine(at, in.parent, ", %s -> %s", source.text, requested.text);
  if (message.operation.value == kMailslotWrite) {
    ShowUserData(at, in, c, DecodeSmbDatagram);
  } else {
    AddBlock(in, Rest(c), "Extra Data");
  }
  return 1;
}

// The connection of a message without a session below it, then the message.
int32_t DecodeHostedSmb(const Place& at, const Cursor& c) {
  Cursor words = CursorOver(PeekBytes(c, kSmbKeyOffset, kSmbConnectionSize));
  const Place in = Under(at, AddLine(at, Ahead(words, kSmbConnectionSize), "SMB over IPX"));
  const Hosted hosted = ShowRows(in, words, kHosted, ByteOrder::kLittle);
  AppendToLine(at, in.parent, ": Connection %u, Sequence %u", hosted.connection.value, hosted.sequence.value);
  return CallDecoder(Deeper(at), c, DecodeSmbDatagram, "SMB Data");
}

}  // namespace

int32_t DecodeIpxNetBiosBroadcast(const Place& at, Cursor c) { return DecodeNetBiosMessage(at, c, true); }

int32_t DecodeIpxNetBios(const Place& at, Cursor c) {
  // Name messages that go to one station have room for the networks, too.
  const bool isName = Left(c) == kNetworksSize + kNameMessageSize && PeekU8(c, kNetworksSize + 1) >= kFindName &&
                      PeekU8(c, kNetworksSize + 1) <= kDeleteName;
  return DecodeNetBiosMessage(at, c, isName);
}

int32_t DecodeNwlinkSmb(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "nwlink");
  if (Left(c) > kSmbHeaderSize && PeekU32(c) == kMarker) return DecodeHostedSmb(at, c);
  if (Left(c) < kNmpiSize) return 0;
  const char* name = LookupName(kOperationNames, PeekU8(c, kNetworksSize), nullptr);
  return name ? DecodeNmpi(at, c, name) : 0;
}

}  // namespace qxview
