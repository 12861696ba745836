// Status messages between a Frame Relay station and its switch (Q.933 Annex A, T1.617 Annex D, and the LMI that came
// before both): is the line alive, which circuits are there?
//
//   0              1               2             3
//   discriminator  call reference  message type  locking shift (T1.617 only), then elements: type, length, data
#include "core/line_facts.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

constexpr uint32_t kLmiDiscriminator = 0x09;

constexpr auto kDiscriminators = SortedNames({{0x08, "Q.931"}, {0x09, "LMI"}});

constexpr auto kMessages = SortedNames({{0x75, "Status Enquiry"}, {0x7B, "Update Status"}, {0x7D, "Status"}});

// The elements of Q.933 have numbers of their own; the meaning is that of the older ones.
enum Element : uint32_t { kReportType = 0x01, kKeepalive = 0x03, kCircuitStatus = 0x07 };
uint32_t PlainElement(uint32_t type) { return type >= 0x51 && type <= 0x57 ? type - 0x50 : type; }

constexpr auto kElements = SortedNames({{0x01, "Report Type"}, {0x03, "Keepalive"}, {0x05, "Multicast Status"},
                                        {0x07, "PVC Status"}, {0x08, "Cause"}, {0x14, "Call State"}});
constexpr auto kReportTypes = SortedNames({{0, "Full Status"}, {1, "Link Integrity Verification"},
                                           {2, "Single PVC Asynchronous Status"}});

void AddStatusBit(const Place& in, const Field& status, int32_t bit, const char* name) {
  const BitPicture picture = BitsOf(status, bit, 1);
  AddBitLine(in, status, "%s: %s = %s", picture.picture, name, TrueOrFalse(picture.value));
}

// LMI gives a circuit as a plain number; the others as an address of Q.922 with the extension bit first.
void DecodeCircuit(const Place& in, Cursor c, bool lmi) {
  const Field number = TakeU16(c);
  uint32_t dlci = number.value;
  if (!lmi && number.here) dlci = (number.value >> 8 & 0x3F) << 4 | (number.value >> 3 & 0x0F);
  AddLine(in, number, "DLCI: %u", dlci);
  AppendToParent(in, number, ", DLCI = %u", dlci);
  if (!lmi && number.here && (number.value & 0x80) == 0) TakeBytes(c, Left(c) - 1);   // longer addresses
  const Field status = TakeU8(c);
  AddLine(in, status, "Status: 0x%.02X", status.value);
  AddStatusBit(in, status, 4, "New");
  AddStatusBit(in, status, 5, "Deleted");
  AddStatusBit(in, status, 6, "Active");
  if (Left(c) >= 3) {
    const Field bandwidth = TakeU24(c);
    AddLine(in, bandwidth, "Bandwidth: %u bits per second", bandwidth.value);
  }
}

void DecodeElement(const Place& at, Cursor& c, bool lmi) {
  if (Left(c) >= 1 && PeekU8(c) & 0x80) {   // elements of one byte
    const Field shift = TakeU8(c);
    AddLine(at, shift, "Locking Shift: 0x%.02X = Codeset %u", shift.value, shift.value & 7);
    return;
  }
  const Cursor start = c;
  const Field type = TakeU8(c);
  const Field length = TakeU8(c);
  if (!length.here) return;
  const uint32_t plain = PlainElement(type.value);
  const char* name = LookupName(kElements, plain);
  Cursor data = TakeCursor(c, length.value);
  const Place in = Under(at, AddLine(at, Ahead(start, 2 + Left(data)), "%s", name));
  AddLine(in, type, "Element: 0x%.02X = %s", type.value, name);
  AddLine(in, length, "Length: %u", length.value);
  if (plain == kReportType) {
    const Field report = TakeU8(data);
    AddLine(in, report, "Report Type: %u = %s", report.value, LookupName(kReportTypes, report.value));
    AppendToParent(in, report, ": %s", LookupName(kReportTypes, report.value));
  } else if (plain == kKeepalive) {
    const Field send = TakeU8(data);
    AddLine(in, send, "Send Sequence Number: %u", send.value);
    const Field receive = TakeU8(data);
    AddLine(in, receive, "Receive Sequence Number: %u", receive.value);
  } else if (plain == kCircuitStatus) {
    DecodeCircuit(in, data, lmi);
  } else {
    AddBlock(in, Rest(data), "Element Data");
  }
}

}  // namespace

int32_t DecodeLinkManagement(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "lmi");
  if (Left(c) < 3 || PeekU8(c, 1) != 0) return 0;   // status has no call to refer to
  const char* message = LookupName(kMessages, PeekU8(c, 2), nullptr);
  if (!message) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, 3), "Q.931 LMI Status Message - Control Type %s", message));
  const Field discriminator = TakeU8(c);
  AddLine(in, discriminator, "Protocol Discriminator: 0x%.02X = %s", discriminator.value,
          LookupName(kDiscriminators, discriminator.value));
  const Field reference = TakeU8(c);
  AddLine(in, reference, "Call Reference: 0x%.02X", reference.value);
  const Field type = TakeU8(c);
  AddLine(in, type, "Message Type: 0x%.02X = %s", type.value, message);
  Loop loop;
  while (MoreAt(at, c, loop)) DecodeElement(in, c, discriminator.value == kLmiDiscriminator);
  CoverBytes(in, c);
  return 1;
}

}  // namespace qxview
