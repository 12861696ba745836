// NetBIOS Frames (NBF), the protocol of NetBEUI: NetBIOS over LLC, without a network layer. Numbers are little-endian.
//
//   0        2           4         5        6        8                     10                     12
//   length   FF EF       command   data 1   data 2   transmit correlator   response correlator    ...
//   commands below 14 hex: destination name (16)   source name (16)
//   others:                destination session (1)   source session (1)
//   behind the length: the data of datagrams and sessions (SMB)
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

constexpr auto kCommandNames = SortedNames({
    {0x00, "Add Group Name Query"}, {0x01, "Add Name Query"}, {0x02, "Name In Conflict"}, {0x03, "Status Query"},
    {0x07, "Terminate Trace"}, {0x08, "Datagram"}, {0x09, "Datagram Broadcast"}, {0x0A, "Name Query"},
    {0x0D, "Add Name Response"}, {0x0E, "Name Recognized"}, {0x0F, "Status Response"},
    {0x13, "Terminate Trace, Local and Remote"}, {0x14, "Data Ack"}, {0x15, "Data First Middle"},
    {0x16, "Data Only Last"}, {0x17, "Session Confirm"}, {0x18, "Session End"}, {0x19, "Session Initialize"},
    {0x1A, "No Receive"}, {0x1B, "Receive Outstanding"}, {0x1C, "Receive Continue"}, {0x1F, "Session Alive"},
});

// A bit of the first data field that a command gives a meaning to.
struct BitRow {
  uint8_t command, firstBit, bitCount;
  const char* name;
};
constexpr BitRow kBits[] = {
    {kDataFirst, 4, 1, "Acknowledgement Included"},
    {kDataFirst, 6, 1, "No Acknowledgement Expected"},
    {kDataFirst, 7, 1, "Receive Continue Requested"},
    {kDataLast, 4, 1, "Acknowledgement Included"},
    {kDataLast, 5, 1, "Acknowledgement with Data Allowed"},
    {kDataLast, 6, 1, "No Acknowledgement Expected"},
    {kSessionConfirm, 0, 1, "No Acknowledgement Supported"},
    {kSessionConfirm, 7, 1, "Version 2.00 or Higher"},
    {kSessionInitialize, 0, 1, "No Acknowledgement Supported"},
    {kSessionInitialize, 4, 3, "Largest Frame Value"},
    {kSessionInitialize, 7, 1, "Version 2.00 or Higher"},
    {kNoReceive, 6, 1, "Data Sent without Acknowledgement Partially Received"},
};

void AddFirstData(const Place& in, const Field& data, uint32_t command) {
  if (command == kAddNameResponse) {
    AddLine(in, data, "Data 1: %u = %s", data.value, data.value ? "Name Being Added" : "Name Not Being Added");
    return;
  }
  if (command == kStatusResponse) {
    AddLine(in, data, "Data 1: %u = Names Sent So Far", data.value);
    return;
  }
  const Place under = Under(in, AddLine(in, data, "Data 1: 0x%.02X", data.value));
  for (const BitRow& row : kBits) {
    if (row.command != command) continue;
    const BitPicture bits = BitsOf(data, row.firstBit, row.bitCount);
    if (row.bitCount > 1) {
      AddBitLine(under, data, "%s: %s = %u", bits.picture, row.name, bits.value);
    } else {
      AddBitLine(under, data, "%s: %s = %s", bits.picture, row.name, TrueOrFalse(bits.value));
    }
  }
}

void AddSecondData(const Place& in, const Field& data, uint32_t command) {
  const uint32_t value = data.value;
  switch (command) {
    case kStatusQuery: AddLine(in, data, "Data 2: %u = Length of Status Buffer", value); break;
    case kStatusResponse: {
      const Place under = Under(in, AddLine(in, data, "Data 2: 0x%.04X", value));
      const BitPicture frame = BitsOf(data, 0, 1), buffer = BitsOf(data, 1, 1), length = BitsOf(data, 2, 14);
      AddBitLine(under, data, "%s: Frame Too Short for Status = %s", frame.picture, TrueOrFalse(frame.value));
      AddBitLine(under, data, "%s: Buffer Too Short for Status = %s", buffer.picture, TrueOrFalse(buffer.value));
      AddBitLine(under, data, "%s: Length of Status Data = %u", length.picture, length.value);
      break;
    }
    case kNameQuery:
    case kNameRecognized: {
      const Place under = Under(in, AddLine(in, data, "Data 2: 0x%.04X", value));
      const BitPicture type = BitsOf(data, 0, 8), session = BitsOf(data, 8, 8);
      AddBitLine(under, data, "%s: Name Type = %s", type.picture, type.value ? "Group" : "Unique");
      AddBitLine(under, data, "%s: Local Session Number = %u%s", session.picture, session.value,
                 session.value ? "" : command == kNameQuery ? " (Find Name)" : " (No Listen Outstanding)");
      break;
    }
    case kAddNameResponse: AddLine(in, data, "Data 2: %u = %s Name", value, value ? "Group" : "Unique"); break;
    case kDataFirst:
    case kDataLast: AddLine(in, data, "Data 2: %u = Resynchronize %s", value, value == 1 ? "True" : "False"); break;
    case kSessionConfirm:
    case kSessionInitialize: AddLine(in, data, "Data 2: %u = Largest User Data", value); break;
    case kSessionEnd: AddLine(in, data, "Data 2: %u = %s", value, value ? "Abnormal End" : "Normal End"); break;
    case kNoReceive:
    case kReceiveOutstanding: AddLine(in, data, "Data 2: %u = Bytes Accepted", value); break;
    default: AddLine(in, data, "Data 2: 0x%.04X", value);
  }
}

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
    const Field destination = TakeU8(c), source = TakeU8(c);
    AddLine(in, destination, "Destination Session Number: %u", destination.value);
    AddLine(in, source, "Source Session Number: %u", source.value);
    AppendToParent(in, source, ", Session %u -> %u", source.value, destination.value);
  }
}

}  // namespace

int32_t DecodeNetBiosFrame(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize + 2 || ReadLittleU16(c.at + 2) != kDelimiter) return 0;
  const uint32_t headerLength = ReadLittleU16(c.at), command = c.at[4];
  if (headerLength < static_cast<uint32_t>(kHeaderSize) + 2) return 0;
  Cursor header = TakeCursor(c, headerLength);
  const char* name = LookupName(kCommandNames, command);
  const Place in = Under(at, AddLine(at, Ahead(header, Left(header)), "NetBIOS Frame: %s", name));
  const Field length = TakeLittleU16(header);
  AddLine(in, length, "Header Length: %u", length.value);
  const Field delimiter = TakeLittleU16(header);
  AddLine(in, delimiter, "Delimiter: 0x%.04X", delimiter.value);
  const Field commandField = TakeU8(header);
  AddLine(in, commandField, "Command: 0x%.02X = %s", command, name);
  AddFirstData(in, TakeU8(header), command);
  AddSecondData(in, TakeLittleU16(header), command);
  const Field transmit = TakeLittleU16(header);
  AddLine(in, transmit, "Transmit Correlator: 0x%.04X", transmit.value);
  const Field response = TakeLittleU16(header);
  AddLine(in, response, "Response Correlator: 0x%.04X", response.value);
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
