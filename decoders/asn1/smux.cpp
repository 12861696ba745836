// SMUX (RFC 1227): an agent of SNMP and its peers, before AgentX; and SNMP's messages over TCP (RFC 3430), one behind
// the other.
//
//   Open  [APPLICATION 0] { version, identity, description, password }    Close  [APPLICATION 1] INTEGER
//   Register [APPLICATION 2] { subtree, priority, operation }   its response [APPLICATION 3]   commit [APPLICATION 4]
//   and SNMP's protocol data units
#include "core/rows.h"
#include "decoders/asn1/snmp.h"
#include "decoders/common/object_id.h"

namespace qxview {
namespace {

enum SmuxTag : uint32_t {
  kOpen = 0x60, kClose = 0x41, kRegister = 0x62, kRegisterResponse = 0x43, kCommit = 0x44, kFirstPdu = 0xA0,
  kLastPdu = 0xA8
};
constexpr int32_t kDeepestBase = 2;   // all depths of a message still have an image of their own
constexpr int32_t kTextSize = 300;

constexpr auto kTagNames = SortedNames({
    {kClose, "Close"}, {kRegisterResponse, "Register Response"}, {kCommit, "Commit or Rollback"}, {kOpen, "Open"},
    {kRegister, "Register"}});
constexpr auto kReasonNames = SortedNames({
    {0, "goingDown"}, {1, "unsupportedVersion"}, {2, "packetFormat"}, {3, "protocolError"}, {4, "internalError"},
    {5, "authenticationFailure"}});
constexpr auto kOperationNames = SortedNames({{0, "delete"}, {1, "readOnly"}, {2, "readWrite"}});
constexpr auto kEndNames = SortedNames({{0, "commit"}, {1, "rollback"}});
constexpr auto kRegisteredNames = SortedNames({{0xFFFFFFFF, "failure"}});
constexpr auto kVersionNames = SortedNames({{0, "version-1"}});

constexpr BerTitles kTitles{"SMUX Data", "SMUX Data", kTextSize};

bool IsSmux(uint32_t tag) {
  return (tag >= kFirstPdu && tag <= kLastPdu) || tag == kOpen || tag == kClose || tag == kRegister ||
         tag == kRegisterResponse || tag == kCommit;
}

void DescribeNumber(const Cursor& contents, const Names& names, char* out) {
  const int32_t number = BerInteger(contents);
  const char* name = LookupName(names.rows, static_cast<uint32_t>(number), names.count, nullptr);
  if (name) {
    FormatInto(out, kTextSize, "%d = %s", number, name);
  } else {
    FormatInto(out, kTextSize, "%d", number);
  }
}

// An element's line says what it holds; identifier and length stand under it.
void ShowElement(BerWalk& walk, const Place& in, Cursor& c, const char* title, const Names& names = {}) {
  const BerElement element = PeekBer(c);
  if (!element.here) return;
  char text[kTextSize];
  text[0] = 0;
  switch (element.identifier) {
    case kAsnObjectId: FormatInto(text, kTextSize, "%s", TextOfObjectId(element.contents)); break;
    case kAsnOctetString: FormatInto(text, kTextSize, "%s", BerText(element.contents)); break;
    default: DescribeNumber(element.contents, names, text); break;
  }
  Place under;
  Cursor contents;
  if (!EnterBer(walk, in, c, title, text, &under, &contents)) return;
  const Field value = Rest(contents);
  AddLine(under, value, "Contents: %s", HexText(value));
}

void ShowFields(BerWalk& walk, const Place& in, Cursor& c, uint32_t tag) {
  Cursor contents;
  if (!EnterBer(walk, in, c, LookupName(kTagNames, tag), &contents)) return;
  if (tag == kOpen) {
    ShowElement(walk, in, contents, "Version", kVersionNames);
    ShowElement(walk, in, contents, "Identity");
    ShowElement(walk, in, contents, "Description");
    ShowElement(walk, in, contents, "Password");
  } else {
    ShowElement(walk, in, contents, "Subtree");
    ShowElement(walk, in, contents, "Priority");
    ShowElement(walk, in, contents, "Operation", kOperationNames);
  }
  ShowBerRest(walk, in, contents);
}

void ShowMessage(const Place& at, Cursor c) {
  const uint32_t tag = PeekU8(c);
  Place top = at;
  if (top.level > kDeepestBase) top.level = kDeepestBase;
  if (tag >= kFirstPdu) {
    const LineHandle root = AddLine(top, Ahead(c, Left(c)), "SMUX: SNMP");
    SnmpWalk walk{Beneath(top, root), root, c};
    DecodeSnmpPdu(walk);
    return;
  }
  const LineHandle root = AddLine(top, Ahead(c, Left(c)), "SMUX: %s", LookupName(kTagNames, tag));
  const Place in = Beneath(top, root);
  BerWalk walk{&kTitles, 64};
  if (tag == kOpen || tag == kRegister) return ShowFields(walk, in, c, tag);
  ShowElement(walk, in, c, tag == kClose ? "Reason" : tag == kCommit ? "Operation" : "Result",
              tag == kClose ? Names(kReasonNames) : tag == kCommit ? Names(kEndNames) : Names(kRegisteredNames));
}

}  // namespace

int32_t DecodeSmux(const Place& at, Cursor c) {
  if (!IsSmux(PeekU8(c)) || !PeekBer(c).here) return 0;
  Loop loop;
  while (MoreAt(at, c, loop) && IsSmux(PeekU8(c)) && PeekBer(c).here) ShowMessage(at, TakeBer(c).whole);
  AddRawRest(at, c, "SMUX Data");
  return 1;
}

int32_t DecodeSnmpOverTcp(const Place& at, Cursor c) {
  if (PeekSnmpVersion(c) < 0) return 0;
  Loop loop;
  while (MoreAt(at, c, loop) && PeekSnmpVersion(c) >= 0) {
    Cursor next = c;
    if (DecodeSnmpPayload(at, TakeBer(next).whole) == 0) break;   // it is data then
    c = next;
  }
  AddRawRest(at, c, "SNMP Data");
  return 1;
}

}  // namespace qxview
