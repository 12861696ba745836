// Security descriptors (MS-DTYP 2.4): who owns a file and who may do what with it.
//
//   revision (1)  0 (1)  control (2)  offsets of owner, group, SACL, DACL (4 each)
//   SID   revision (1)  count (1)  authority (6, big-endian)  sub-authorities (4 each)
//   ACL   revision (1)  0 (1)  size (2)  count (2)  0 (2)  entries: type (1)  flags (1)  size (2)  mask (4)  SID
#include "decoders/common/guid.h"
#include "decoders/common/sid.h"
#include "decoders/smb/smb_info_levels.h"

namespace qxview {
namespace {

constexpr uint32_t kSmallestAce = 16;

constexpr auto kControlBits = SortedNames({
    {0x0001, "Owner Defaulted"}, {0x0002, "Group Defaulted"}, {0x0004, "DACL Present"}, {0x0008, "DACL Defaulted"},
    {0x0010, "SACL Present"}, {0x0020, "SACL Defaulted"}, {0x0040, "DACL Trusted"}, {0x0080, "Server Security"},
    {0x0100, "DACL Inheritance Required"}, {0x0200, "SACL Inheritance Required"}, {0x0400, "DACL Auto Inherited"},
    {0x0800, "SACL Auto Inherited"}, {0x1000, "DACL Protected"}, {0x2000, "SACL Protected"},
    {0x4000, "RM Control Valid"}, {0x8000, "Self Relative"}});

constexpr auto kAceTypes = SortedNames({
    {0x00, "Access Allowed"}, {0x01, "Access Denied"}, {0x02, "System Audit"}, {0x03, "System Alarm"},
    {0x04, "Access Allowed Compound"}, {0x05, "Access Allowed Object"}, {0x06, "Access Denied Object"},
    {0x07, "System Audit Object"}, {0x08, "System Alarm Object"}, {0x09, "Access Allowed Callback"},
    {0x0A, "Access Denied Callback"}, {0x0B, "Access Allowed Callback Object"},
    {0x0C, "Access Denied Callback Object"}, {0x0D, "System Audit Callback"}, {0x0E, "System Alarm Callback"},
    {0x0F, "System Audit Callback Object"}, {0x10, "System Alarm Callback Object"},
    {0x11, "System Mandatory Label"}, {0x12, "System Resource Attribute"}, {0x13, "System Scoped Policy ID"}});

constexpr auto kAceFlagBits = SortedNames({
    {0x01, "Object Inherit"}, {0x02, "Container Inherit"}, {0x04, "No Propagate Inherit"}, {0x08, "Inherit Only"},
    {0x10, "Inherited"}, {0x40, "Successful Access"}, {0x80, "Failed Access"}});

constexpr auto kObjectBits = SortedNames({{0x1, "Object Type Present"}, {0x2, "Inherited Object Type Present"}});

struct Descriptor {
  Field owner, group, sacl, dacl;
};
constexpr auto kDescriptor = LittleRows<Descriptor>({
    Number(1, "Revision"), Number(1, "Reserved"), Flags(2, "Control", kControlBits),
    Number(4, "Owner Offset").Into(&Descriptor::owner), Number(4, "Group Offset").Into(&Descriptor::group),
    Number(4, "SACL Offset").Into(&Descriptor::sacl), Number(4, "DACL Offset").Into(&Descriptor::dacl)});
constexpr auto kAcl = LittleRows<NoValues>({
    Number(1, "Revision"), Number(1, "Reserved"), Number(2, "ACL Size"), Number(2, "ACE Count"),
    Number(2, "Reserved")});

struct Ace {
  Field type, objects;
};
constexpr auto kObjectType = LittleRows<Ace>({LittleGuid("Object Type")});
constexpr auto kInheritedType = LittleRows<Ace>({LittleGuid("Inherited Object Type")});
constexpr auto kObject = LittleRows<Ace>({Flags(4, "Object Flags", kObjectBits).Into(&Ace::objects)});
void ShowObject(const Place& in, Cursor& c, const char*, Ace& ace) {
  const uint32_t type = ace.type.value;
  const bool hasObject = (type >= 5 && type <= 8) || type == 11 || type == 12 || type == 15 || type == 16;
  if (!hasObject) return;
  ShowRows<Ace>(in, c, kObject, ace);
  if (ace.objects.value & 1) ShowRows<Ace>(in, c, kObjectType, ace);
  if (ace.objects.value & 2) ShowRows<Ace>(in, c, kInheritedType, ace);
}
void ShowSid(const Place& in, Cursor& c, const char* label, Ace&) { AddSmbSid(in, c, label); }
void ShowFiller(const Place& in, Cursor& c, const char* label, Ace&) { AddSmbFiller(in, c, label); }
constexpr auto kAce = LittleRows<Ace>({
    Coded(1, "ACE Type", kAceTypes).Into(&Ace::type), Flags(1, "ACE Flags", kAceFlagBits), Number(2, "ACE Size"),
    Flags(4, "Access Mask", kSmbAccessMaskBits), Shown(nullptr, ShowObject), Shown("SID", ShowSid),
    Shown("ACE Data", ShowFiller)});

// What an offset leads to; nothing for 0 and for one past the end.
Cursor TakeAt(const Cursor& descriptor, uint32_t offset) {
  Cursor c = descriptor;
  TakeCursor(c, offset == 0 ? Left(c) : offset);
  return c;
}

void AddAcl(const Place& at, const Cursor& descriptor, uint32_t offset, const char* title, int32_t* end) {
  Cursor c = TakeAt(descriptor, offset);
  if (Left(c) < 1) return;
  const bool hasHeader = Left(c) >= 8;
  const uint32_t count = hasHeader ? PeekLittleU16(c, 4) : 0;
  Cursor acl = TakeCursor(c, hasHeader ? PeekLittleU16(c, 2) : 8);
  const Place in = Under(at, AddSmbTitle(at, Ahead(acl, acl.left), title));
  ShowRows(in, acl, kAcl);
  Loop loop;
  for (uint32_t i = 0; i < count && i < kMostAccessEntries && MoreAt(in, acl, loop) && Left(acl) >= 4; ++i) {
    const uint32_t size = PeekLittleU16(acl, 2);
    Cursor ace = TakeCursor(acl, size < kSmallestAce ? Left(acl) : static_cast<int64_t>(size));
    ShowRows(Under(in, AddLine(in, Ahead(ace, ace.left), "ACE")), ace, kAce);
  }
  AddSmbFiller(in, acl, "ACL Data");
  if (c.offset > *end) *end = c.offset;
}

void AddSidAt(const Place& in, const Cursor& descriptor, uint32_t offset, const char* label, int32_t* end) {
  Cursor c = TakeAt(descriptor, offset);
  if (Left(c) < 1) return;
  AddSmbSid(in, c, label);
  if (c.offset > *end) *end = c.offset;
}

}  // namespace

void AddSmbSid(const Place& in, Cursor& c, const char* label) {
  const int32_t size = SidSize(c);
  if (size == 0) return;
  const Field sid = TakeBytes(c, size);
  AddLine(in, sid, "%s: %s", label, TextOfSid(sid));
}

void ShowSmbSid(const Place& in, Cursor& c, const char* label, Smb&) { AddSmbSid(in, c, label); }

void AddSmbSecurityDescriptor(const Place& at, Cursor& c) {
  if (Left(c) < 20) return;
  const Cursor descriptor = c;
  const Place in = Under(at, AddLine(at, Ahead(c, c.left), "Security Descriptor"));
  const Descriptor offsets = ShowRows(in, c, kDescriptor);
  int32_t end = c.offset;
  AddSidAt(in, descriptor, offsets.owner.value, "Owner SID", &end);
  AddSidAt(in, descriptor, offsets.group.value, "Group SID", &end);
  AddAcl(in, descriptor, offsets.sacl.value, "SACL", &end);
  AddAcl(in, descriptor, offsets.dacl.value, "DACL", &end);
  TakeBytes(c, end - c.offset);
}

}  // namespace qxview
