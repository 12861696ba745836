// NetBIOS Frames (NBF), the protocol of NetBEUI: NetBIOS over LLC, without a network layer. Numbers are little-endian.
//
//   0        2           4         5        6        8                     10                     12
//   length   FF EF       command   data 1   data 2   transmit correlator   response correlator    ...
//   commands below 14 hex: destination name (16)   source name (16)
//   others:                destination session (1)   source session (1)
//   behind the length: the data of datagrams and sessions (SMB)
#include "core/elements.h"
#include "decoders/netbios/netbios.h"
#include "decoders/smb/smb.h"

namespace qxview {
namespace {

constexpr uint32_t kDelimiter = 0xEFFF, kFirstSessionCommand = 0x14;
constexpr int32_t kHeaderSize = 12;

enum Command : uint32_t {
  kAddGroupName = 0x00, kAddName = 0x01, kStatusQuery = 0x03, kDatagram = 0x08, kBroadcast = 0x09, kNameQuery = 0x0A,
  kAddNameResponse = 0x0D, kNameRecognized = 0x0E, kStatusResponse = 0x0F, kDataFirst = 0x15, kDataLast = 0x16,
  kSessionConfirm = 0x17, kSessionEnd = 0x18, kSessionInitialize = 0x19, kNoReceive = 0x1A, kReceiveOutstanding = 0x1B
};

constexpr auto kNameKinds = SortedNames({{0, "Unique"}});
constexpr auto kBeingAdded = SortedNames({{0, "Name Not Being Added"}});
constexpr auto kResynchronizes = SortedNames({{1, "True"}});
constexpr auto kEnds = SortedNames({{0, "Normal End"}});
constexpr auto kFindsName = SortedNames({{0, " (Find Name)"}});
constexpr auto kListensNot = SortedNames({{0, " (No Listen Outstanding)"}});

// The two data fields, to which every command gives a meaning of its own.
constexpr RowData kFirst = Hex(1, "Data 1"), kSecond = Hex(2, "Data 2").Little();
constexpr RowData kNameType = Bits(0, 8, "Name Type", NamesOr(kNameKinds, "Group")).Told("%s: Name Type = %s");
consteval RowData Session(Names note) {
  return Bits(8, 8, "Local Session Number", note).Told("%s: Local Session Number = %u%s");
}
constexpr RowData kResynchronize =
    Number(2, "Data 2", NamesOr(kResynchronizes, "False")).Told("Data 2: %u = Resynchronize %s").Little();
constexpr RowData kLargestData = Number(2, "Data 2").Told("Data 2: %u = Largest User Data").Little();
constexpr RowData kAccepted = Number(2, "Data 2").Told("Data 2: %u = Bytes Accepted").Little();

constexpr auto kAnyRows = Rows<NoValues>({kFirst, kSecond});
constexpr auto kStatusQueryRows =
    Rows<NoValues>({kFirst, Number(2, "Data 2").Told("Data 2: %u = Length of Status Buffer").Little()});
constexpr auto kNameQueryRows = Rows<NoValues>({kFirst, kSecond, kNameType, Session(NamesOr(kFindsName, ""))});
constexpr auto kNameRecognizedRows = Rows<NoValues>({kFirst, kSecond, kNameType, Session(NamesOr(kListensNot, ""))});
constexpr auto kAddNameResponseRows = Rows<NoValues>({
    Number(1, "Data 1", NamesOr(kBeingAdded, "Name Being Added")),
    Number(2, "Data 2", NamesOr(kNameKinds, "Group")).Told("Data 2: %u = %s Name").Little()});
constexpr auto kStatusResponseRows = Rows<NoValues>({
    Number(1, "Data 1").Told("Data 1: %u = Names Sent So Far"), kSecond, Flag(0, "Frame Too Short for Status"),
    Flag(1, "Buffer Too Short for Status"), Bits(2, 14, "Length of Status Data")});
constexpr auto kDataFirstRows = Rows<NoValues>({
    kFirst, Flag(4, "Acknowledgement Included"), Flag(6, "No Acknowledgement Expected"),
    Flag(7, "Receive Continue Requested"), kResynchronize});
constexpr auto kDataLastRows = Rows<NoValues>({
    kFirst, Flag(4, "Acknowledgement Included"), Flag(5, "Acknowledgement with Data Allowed"),
    Flag(6, "No Acknowledgement Expected"), kResynchronize});
constexpr auto kSessionConfirmRows = Rows<NoValues>({
    kFirst, Flag(0, "No Acknowledgement Supported"), Flag(7, "Version 2.00 or Higher"), kLargestData});
constexpr auto kSessionEndRows = Rows<NoValues>({kFirst, Number(2, "Data 2", NamesOr(kEnds, "Abnormal End")).Little()});
constexpr auto kSessionInitializeRows = Rows<NoValues>({
    kFirst, Flag(0, "No Acknowledgement Supported"), Bits(4, 3, "Largest Frame Value"),
    Flag(7, "Version 2.00 or Higher"), kLargestData});
constexpr auto kNoReceiveRows =
    Rows<NoValues>({kFirst, Flag(6, "Data Sent without Acknowledgement Partially Received"), kAccepted});
constexpr auto kReceiveOutstandingRows = Rows<NoValues>({kFirst, kAccepted});

constexpr auto kCommands = Choices<NoValues>({
    {kAddGroupName, "Add Group Name Query"}, {kAddName, "Add Name Query"},
    {0x02, "Name In Conflict"}, {kStatusQuery, "Status Query", kStatusQueryRows},
    {0x07, "Terminate Trace"}, {kDatagram, "Datagram"}, {kBroadcast, "Datagram Broadcast"},
    {kNameQuery, "Name Query", kNameQueryRows}, {kAddNameResponse, "Add Name Response", kAddNameResponseRows},
    {kNameRecognized, "Name Recognized", kNameRecognizedRows}, {kStatusResponse, "Status Response", kStatusResponseRows},
    {0x13, "Terminate Trace, Local and Remote"}, {0x14, "Data Ack"},
    {kDataFirst, "Data First Middle", kDataFirstRows}, {kDataLast, "Data Only Last", kDataLastRows},
    {kSessionConfirm, "Session Confirm", kSessionConfirmRows}, {kSessionEnd, "Session End", kSessionEndRows},
    {kSessionInitialize, "Session Initialize", kSessionInitializeRows}, {kNoReceive, "No Receive", kNoReceiveRows},
    {kReceiveOutstanding, "Receive Outstanding", kReceiveOutstandingRows}, {0x1C, "Receive Continue"},
    {0x1F, "Session Alive"},
});

const char* CommandName(uint32_t command) {
  const Choice<NoValues>* known = FindChoice<NoValues>(kCommands, command);
  return known ? known->name : kUnknown;
}

struct Frame {
  Field destination, source;
};
constexpr auto kHead = Rows<NoValues>({Number(2, "Header Length").Little(), Hex(2, "Delimiter").Little(),
                                       Hex(1, "Command", CommandName)});
constexpr auto kCorrelators =
    Rows<NoValues>({Hex(2, "Transmit Correlator").Little(), Hex(2, "Response Correlator").Little()});
constexpr auto kSessions = Rows<Frame>({Number(1, "Destination Session Number").Into(&Frame::destination),
                                        Number(1, "Source Session Number").Into(&Frame::source)});

void AddAddresses(const Place& in, Cursor& c, uint32_t command) {
  if (command < kFirstSessionCommand) {
    const bool addsName = command == kAddGroupName || command == kAddName;   // the destination means nothing then
    const NetBiosName destination = TakePlainNetBiosName(c);
    if (addsName) {
      AddLine(in, destination.field, "Destination Name: not used");
    } else {
      AddNetBiosNameLine(in, "Destination Name", destination);
    }
    const NetBiosName source = TakePlainNetBiosName(c);
    AddNetBiosNameLine(in, "Source Name", source, command == kAddGroupName);
    AppendToParent(in, source.field, ", %s", source.text);
    if (!addsName) AppendToParent(in, destination.field, " -> %s", destination.text);
  } else {
    const Frame frame = ShowRows(in, c, kSessions);
    AppendToParent(in, frame.source, ", Session %u -> %u", frame.source.value, frame.destination.value);
  }
}

}  // namespace

int32_t DecodeNetBiosFrame(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize + 2 || PeekLittleU16(c, 2) != kDelimiter) return 0;
  const uint32_t headerLength = PeekLittleU16(c), command = PeekU8(c, 4);
  if (headerLength < static_cast<uint32_t>(kHeaderSize) + 2) return 0;
  Cursor header = TakeCursor(c, headerLength);
  const Choice<NoValues>* known = FindChoice<NoValues>(kCommands, command);
  const Place in = Under(at, AddLine(at, Ahead(header, Left(header)), "NetBIOS Frame: %s", CommandName(command)));
  NoValues none;
  ShowRows(in, header, kHead);
  ShowRows<NoValues>(in, header, known && known->rows.count ? known->rows : kAnyRows, none);
  ShowRows(in, header, kCorrelators);
  AddAddresses(in, header, command);
  AddBlock(in, Ahead(header, Left(header)), "Header Data");

  if (Left(c) < 1) return 1;
  c.begin = c.offset;
  const bool isSession = command == kDataFirst || command == kDataLast;
  const bool isDatagram = command == kDatagram || command == kBroadcast;
  const DecoderFunction decode = isSession ? DecodeSmbPiece : isDatagram ? DecodeSmbDatagram : nullptr;
  if (!decode || !TryDecoder(Deeper(at), c, decode, nullptr)) {
    AddBlock(in, Ahead(c, Left(c)), isSession || isDatagram ? "User Data" : "Padding");
  }
  return 1;
}

}  // namespace qxview
