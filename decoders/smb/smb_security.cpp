// Security descriptors (MS-DTYP 2.4): who owns a file and who may do what with it.
//
//   revision (1)  0 (1)  control (2)  offsets of owner, group, SACL, DACL (4 each)
//   SID   revision (1)  count (1)  authority (6, big-endian)  sub-authorities (4 each)
//   ACL   revision (1)  0 (1)  size (2)  count (2)  0 (2)  entries: type (1)  flags (1)  size (2)  mask (4)  SID
#include "decoders/common/sid.h"
#include "decoders/smb/smb_info_levels.h"

namespace qxview {
namespace {

constexpr uint32_t kMostAces = 1024;   // with lines of their own; real lists hold a few dozen
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

constexpr SmbField kDescriptorFields[] = {
    {kSmbNumber8, "Revision"}, {kSmbNumber8, "Reserved"}, {kSmbFlags16, "Control", kControlBits},
    {kSmbNumber32, "Owner Offset"}, {kSmbNumber32, "Group Offset"}, {kSmbNumber32, "SACL Offset"},
    {kSmbNumber32, "DACL Offset"}};
constexpr SmbField kAclFields[] = {
    {kSmbNumber8, "Revision"}, {kSmbNumber8, "Reserved"}, {kSmbNumber16, "ACL Size"}, {kSmbNumber16, "ACE Count"},
    {kSmbNumber16, "Reserved"}};
constexpr SmbField kAceFields[] = {
    {kSmbName8, "ACE Type", kAceTypes}, {kSmbFlags8, "ACE Flags", kAceFlagBits}, {kSmbNumber16, "ACE Size"},
    {kSmbFlags32, "Access Mask", kSmbAccessMaskBits}};
constexpr SmbField kObjectFlags[] = {{kSmbFlags32, "Object Flags", kObjectBits}};

constexpr SmbMessage kNoMessage{};   // no field here has text

bool IsObjectAce(uint32_t type) {
  return (type >= 5 && type <= 8) || type == 11 || type == 12 || type == 15 || type == 16;
}

void AddAce(const Place& in, Cursor& c) {
  const uint32_t type = c.at[0];
  AddSmbFields(kNoMessage, in, c, kAceFields);
  if (IsObjectAce(type)) {
    const uint32_t present = AddSmbFields(kNoMessage, in, c, kObjectFlags);
    if (present & 1) AddSmbGuid(in, c, "Object Type");
    if (present & 2) AddSmbGuid(in, c, "Inherited Object Type");
  }
  AddSmbSid(in, c, "SID");
  AddSmbFiller(in, c, "ACE Data");
}

void AddAcl(const Place& at, const Cursor& descriptor, uint32_t offset, const char* title, int32_t* end) {
  Cursor c = descriptor;
  if (offset == 0 || offset >= static_cast<uint32_t>(Left(c))) return;
  TakeBytes(c, offset);
  const uint32_t size = Left(c) >= 8 ? ReadLittleU16(c.at + 2) : 8, count = Left(c) >= 8 ? ReadLittleU16(c.at + 4) : 0;
  Cursor acl = TakeCursor(c, size);
  const Place in = Under(at, AddLine(at, Ahead(acl, acl.left), "%s", title));
  AddSmbFields(kNoMessage, in, acl, kAclFields);
  Loop loop;
  for (uint32_t i = 0; i < count && i < kMostAces && MoreAt(in, acl, loop) && Left(acl) >= 4; ++i) {
    const uint32_t aceSize = ReadLittleU16(acl.at + 2);
    Cursor ace = TakeCursor(acl, aceSize < kSmallestAce ? acl.left : aceSize);
    AddAce(Under(in, AddLine(in, Ahead(ace, ace.left), "ACE")), ace);
  }
  AddSmbFiller(in, acl, "ACL Data");
  if (c.offset > *end) *end = c.offset;
}

void AddSidAt(const Place& in, const Cursor& descriptor, uint32_t offset, const char* label, int32_t* end) {
  Cursor c = descriptor;
  if (offset == 0 || offset >= static_cast<uint32_t>(Left(c))) return;
  TakeBytes(c, offset);
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

void AddSmbSecurityDescriptor(const Place& at, Cursor& c) {
  if (Left(c) < 20) return;
  const Cursor descriptor = c;
  const Place in = Under(at, AddLine(at, Ahead(c, c.left), "Security Descriptor"));
  uint32_t offsets[4];
  for (int32_t i = 0; i < 4; ++i) offsets[i] = ReadLittleU32(c.at + 4 + 4 * i);
  AddSmbFields(kNoMessage, in, c, kDescriptorFields);
  int32_t end = c.offset;
  AddSidAt(in, descriptor, offsets[0], "Owner SID", &end);
  AddSidAt(in, descriptor, offsets[1], "Group SID", &end);
  AddAcl(in, descriptor, offsets[2], "SACL", &end);
  AddAcl(in, descriptor, offsets[3], "DACL", &end);
  TakeBytes(c, end - c.offset);
}

}  // namespace qxview
