// BJNP, by which Canon's printers and scanners are found and driven over UDP: a header in front of every message. There is
// no public text of its maker; the fields are those that free drivers know (CUPS, SANE).
#include "core/rows.h"
#include "decoders/common/header_lines.h"
#include "decoders/common/line_text.h"

namespace qxview {
namespace {

constexpr int32_t kHeader = 16;
constexpr uint32_t kIdentity = 0x30, kFromDevice = 0x80;

constexpr auto kTypeNames = SortedNames({
    {0x01, "Printer Command"}, {0x02, "Scanner Command"}, {0x81, "Printer Response"}, {0x82, "Scanner Response"}});
constexpr auto kCodeNames = SortedNames({
    {0x01, "Discover"}, {0x10, "Print Job Details"}, {0x11, "Request Closure"}, {0x20, "Get Printer Status"},
    {0x21, "Print"}, {0x30, "Get Printer Identity"}, {0x32, "Scan Job Details"}});

struct Bjnp {
  Field type, code, size;
};
constexpr auto kHeaderRows = Rows<Bjnp>({
    Text(4, "ID"), Hex(1, "Type", kTypeNames).Into(&Bjnp::type), Hex(1, "Code", kCodeNames).Into(&Bjnp::code),
    Number(4, "Sequence Number"), Number(2, "Session ID"), Number(4, "Payload Length").Into(&Bjnp::size)});
constexpr auto kIdentitySize = Rows<Bjnp>({Number(2, "Identity Length")});

// "MFG:Canon;CMD:MultiPass;...": the device's IEEE 1284 identity.
void ShowIdentity(const Place& in, Cursor& c) {
  Bjnp none{};
  ShowRows<Bjnp>(in, c, kIdentitySize, none);
  Field text = Rest(c);
  Loop loop;
  while (text.length > 0 && MoreAt(in, text, loop)) {
    Field pair = TakeWord(text, ";");
    const Field whole = pair;
    const Field name = TakeWord(pair, ":");
    if (!name.here) continue;
    ValueText label;
    FormatInto(label.text, sizeof label.text, "%s", qxview::Text(name));
    AddTextLine(in, whole, label.text, pair);
  }
}

}  // namespace

int32_t DecodeBjnp(const Place& at, Cursor c) {
  if (Left(c) < kHeader || (PeekU8(c, 4) & ~kFromDevice) > 2 || (PeekU16(c) != 0x424A && PeekU16(c) != 0x4D46)) return 0;
  const Bjnp ahead = PeekRows(c, kHeaderRows);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "BJNP: %s, %s", LookupName(kTypeNames, ahead.type.value),
                                     LookupName(kCodeNames, ahead.code.value)));
  ShowRows(in, c, kHeaderRows);
  Cursor payload = TakeCursor(c, ahead.size.value > INT32_MAX ? INT32_MAX : ahead.size.value);
  if (ahead.code.value == kIdentity && (ahead.type.value & kFromDevice)) ShowIdentity(in, payload);
  AddBlock(in, Rest(payload), "Payload");
  AddBlock(in, Rest(c), "Data");
  return 1;
}

}  // namespace qxview
