// Trivial File Transfer Protocol (RFC 1350; options: RFC 2347 to 2349, RFC 7440): a file in numbered blocks.
//
//   operation (2)   1, 2: file name, mode, options, each up to a zero octet   3: block (2), data   4: block (2)
//                   5: error (2), message   6: options
//
// The server answers a request from a port of its own, to the port that the client asked from: that end is learnt.
#include "core/rows.h"
#include "decoders/net/learn.h"

namespace qxview {
namespace {

constexpr uint32_t kReadRequest = 1, kWriteRequest = 2, kData = 3, kAcknowledgement = 4, kError = 5,
                   kOptionAcknowledgement = 6;
constexpr int32_t kLearntTftp = 0x20100A2;

constexpr auto kOperationNames = SortedNames({
    {1, "Read Request"}, {2, "Write Request"}, {3, "Data"}, {4, "Acknowledgement"}, {5, "Error"},
    {6, "Option Acknowledgement"}});
constexpr auto kErrorNames = SortedNames({
    {0, "Not Defined"}, {1, "File Not Found"}, {2, "Access Violation"}, {3, "Disk Full or Allocation Exceeded"},
    {4, "Illegal TFTP Operation"}, {5, "Unknown Transfer ID"}, {6, "File Already Exists"}, {7, "No Such User"},
    {8, "Option Negotiation Refused"}});

struct Tftp {
  Field operation, name;
};

constexpr auto kOperation = Rows<Tftp>({Number(2, "Operation", kOperationNames).Into(&Tftp::operation)});
constexpr auto kRequest = Rows<Tftp>({
    Terminated(Text(0, "File Name")).Note(", %s"), Terminated(Text(0, "Mode")).Note(", %s")});
constexpr auto kBlock = Rows<Tftp>({Number(2, "Block").Note(" %u")});
constexpr auto kErrorRows = Rows<Tftp>({
    Number(2, "Error Code", kErrorNames).Note(", %s"), Terminated(Text(0, "Error Message")).Note(", %s")});

// Pairs of name and value, a line for each with both under it.
void ShowOptions(const Place& in, Cursor& c) {
  static constexpr auto kOption = Rows<Tftp>({Terminated(Text(0, "Option Name")), Terminated(Text(0, "Option Value"))});
  Loop loop;
  while (MoreAt(in, c, loop)) {
    Cursor ahead = c;
    Tftp option{};
    const Field name = TakeBytes(ahead, static_cast<int64_t>(strnlen(reinterpret_cast<const char*>(c.at),
                                                                     static_cast<size_t>(Left(c)))));
    TakeU8(ahead);
    const Field value = TakeBytes(ahead, static_cast<int64_t>(strnlen(reinterpret_cast<const char*>(ahead.at),
                                                                      static_cast<size_t>(Left(ahead)))));
    TakeU8(ahead);
    const Place under = Under(in, AddLine(in, Ahead(c, ahead.offset - c.offset), "Option: %s = %s", Text(name),
                                          Text(value)));
    AppendToParent(in, name, ", %s=%s", Text(name), Text(value));
    ShowRows<Tftp>(under, c, kOption, option);
  }
}

// Whether a mode follows the name: what else comes to the port is none of ours.
bool IsRequest(const Cursor& c) { return PeekU8(c, 2) != 0 && FindU8(c, 0, 3) > 0; }

void ShowMessage(const Place& in, Cursor& c, uint32_t operation) {
  Tftp tftp{};
  switch (operation) {
    case kReadRequest:
    case kWriteRequest:
      ShowRows<Tftp>(in, c, kRequest, tftp);
      ShowOptions(in, c);
      break;
    case kData:
      ShowRows<Tftp>(in, c, kBlock, tftp);
      AppendToParent(in, Ahead(c, 0), ", %u bytes", Left(c));
      AddBlock(in, Rest(c), "Data");
      break;
    case kAcknowledgement:
      ShowRows<Tftp>(in, c, kBlock, tftp);
      break;
    case kError:
      ShowRows<Tftp>(in, c, kErrorRows, tftp);
      break;
    case kOptionAcknowledgement:
      ShowOptions(in, c);
      break;
  }
}

}  // namespace

int32_t DecodeTftp(const Place& at, Cursor c) {
  const uint32_t operation = PeekU16(c);
  if (operation < kReadRequest || operation > kOptionAcknowledgement) return 0;
  const bool isRequest = operation <= kWriteRequest;
  if (isRequest && !IsRequest(c)) return 0;
  const PacketState& packet = PacketOf(at);
  if (isRequest) Learn(at.view, QX_OVER_UDP, kLearntTftp, packet.source, packet.sourcePort, -1, -1, nullptr);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "TFTP: %s", LookupName(kOperationNames, operation)));
  Tftp tftp{};
  ShowRows<Tftp>(in, c, kOperation, tftp);
  ShowMessage(in, c, operation);
  AddBlock(in, Rest(c), "TFTP Data");
  return 1;
}

}  // namespace qxview
