// The information levels of Trans2 and of NT requests that pass them on (MS-CIFS 2.2.8, MS-SMB 2.2.8, MS-FSCC 2.4 and
// 2.5; the UNIX extensions' as published for CIFS): a row a level, with its fields in order.
#pragma once
#include "decoders/smb/smb_transaction.h"

namespace qxview {

// What follows the fields of a level; `last` is the last number of them, the length of a name where one follows.
using SmbLevelPart = void (*)(const SmbMessage& message, const Place& in, Cursor& c, uint32_t last);

struct SmbLevel {
  uint32_t level;
  const char* name;
  std::span<const SmbField> fields;
  SmbLevelPart rest;
};
using SmbLevels = std::span<const SmbLevel>;

extern const SmbLevels kSmbQueryFileLevels, kSmbSetFileLevels;   // by level
extern const SmbLevels kSmbQueryFsLevels, kSmbSetFsLevels;

// "Information Level: [%u] = %s" over two bytes; its number.
uint32_t AddSmbLevelLine(const Place& in, Cursor& c, SmbLevels levels);
// What the level says, when it is in the table.
void AddSmbLevel(const SmbMessage& message, const Place& in, Cursor& c, SmbLevels levels, uint32_t level);

// Searches: names of levels, and the entries of a reply. Searches with kSmbFindResumeKeys have a key in front of the
// entries of the levels below 0x100.
constexpr uint32_t kSmbFindResumeKeys = 0x0004;
uint32_t AddSmbFindLevelLine(const Place& in, Cursor& c);
void AddSmbFindEntries(const SmbMessage& message, const Place& in, Cursor& c, uint32_t level, uint32_t flags);

// Lists that several levels and functions hold.
void AddSmbEaList(const SmbMessage& message, const Place& in, Cursor& c);         // of full attributes
void AddSmbEaNames(const SmbMessage& message, const Place& in, Cursor& c);        // of names of attributes
void AddSmbFullEas(const SmbMessage& message, const Place& in, Cursor& c, uint32_t last);   // FILE_FULL_EA_INFORMATION
void AddSmbSecurityDescriptor(const Place& in, Cursor& c);
void AddSmbSid(const Place& in, Cursor& c, const char* label);
void AddSmbQuotas(const Place& in, Cursor& c);
void AddSmbDfsReferral(SmbTransaction& t, const Place& in, Cursor& c);
void AddSmbDfsReferrals(SmbTransaction& t, const Place& in, Cursor& c);   // behind their header
void AddSmbGuid(const Place& in, Cursor& c, const char* label);   // 16 bytes as "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"

// Controls of NT Transaction: the setup words, and the data of the controls whose data is known.
void AddSmbIoctlSetup(const SmbMessage& message, const Place& in, Cursor& c);
void SmbIoctlRequest(SmbTransaction& t, const Place& in, Cursor& c);
void SmbIoctlReply(SmbTransaction& t, const Place& in, Cursor& c);

// The levels of the UNIX extensions.
void AddSmbUnixBasic(const SmbMessage& message, const Place& in, Cursor& c, uint32_t last);
void AddSmbUnixInfo2(const SmbMessage& message, const Place& in, Cursor& c, uint32_t last);
void AddSmbPosixAcl(const SmbMessage& message, const Place& in, Cursor& c, uint32_t last);
void AddSmbPosixOpen(const SmbMessage& message, const Place& in, Cursor& c, uint32_t last);
void AddSmbPosixOpenReply(const SmbMessage& message, const Place& in, Cursor& c, uint32_t last);
void AddSmbWhoAmI(const SmbMessage& message, const Place& in, Cursor& c, uint32_t last);

}  // namespace qxview
