// The information levels of Trans2 and of NT requests that pass them on (MS-CIFS 2.2.8, MS-SMB 2.2.8, MS-FSCC 2.4 and
// 2.5; the UNIX extensions' as published for CIFS): a choice a level.
#pragma once
#include "decoders/smb/smb_transaction.h"

namespace qxview {

extern const SmbChoices kSmbQueryFileLevels, kSmbSetFileLevels;
extern const SmbChoices kSmbQueryFsLevels, kSmbSetFsLevels;
extern const SmbChoices kSmbFindLevels;   // the lists that searches reply

// Searches with this flag have a key in front of the entries of the levels below 0x100.
constexpr uint32_t kSmbFindResumeKeys = 0x0004;

template <const SmbChoices& kLevels>
consteval Row<Smb> SmbLevelOf() {
  return Coded(2, "Information Level", SmbChoiceName<kLevels>).Into(&Smb::level);
}

// Lists that several levels and functions hold.
void ShowSmbEaList(const Place& in, Cursor& c, const char* label, Smb& values);    // of full attributes
inline constexpr auto kSmbEaList = LittleRows<Smb>({Shown(nullptr, ShowSmbEaList)});
void AddSmbEaNames(const SmbMessage& message, const Place& in, Cursor& c);         // of names of attributes
void ShowSmbFullEas(const Place& in, Cursor& c, const char* label, Smb& values);   // FILE_FULL_EA_INFORMATION
inline constexpr auto kSmbFullEas = LittleRows<Smb>({Shown("Extended Attribute", ShowSmbFullEas)});
void ShowSmbQuotas(const Place& in, Cursor& c, const char* label, Smb& values);
inline constexpr auto kSmbQuotas = LittleRows<Smb>({Shown("Quota", ShowSmbQuotas)});
void AddSmbSecurityDescriptor(const Place& in, Cursor& c);
void AddSmbSid(const Place& in, Cursor& c, const char* label);
void ShowSmbSid(const Place& in, Cursor& c, const char* label, Smb& values);
consteval Row<Smb> SmbSid(const char* label) { return Shown(label, ShowSmbSid); }
void AddSmbDfsReferral(SmbTransaction& t, const Place& in, Cursor& c);
void AddSmbDfsReferrals(SmbTransaction& t, const Place& in, Cursor& c);   // behind their header

// Controls of NT Transaction: the setup words, and the data of the controls whose data is known.
void AddSmbIoctlSetup(const SmbMessage& message, const Place& in, Cursor& c);
void SmbIoctlRequest(SmbTransaction& t, const Place& in, Cursor& c);
void SmbIoctlReply(SmbTransaction& t, const Place& in, Cursor& c);

// The levels of the UNIX extensions.
void ShowSmbUnixBasic(const Place& in, Cursor& c, const char* label, Smb& values);
void ShowSmbUnixInfo2(const Place& in, Cursor& c, const char* label, Smb& values);
void ShowSmbPosixAcl(const Place& in, Cursor& c, const char* label, Smb& values);
void ShowSmbPosixOpen(const Place& in, Cursor& c, const char* label, Smb& values);
void ShowSmbWhoAmI(const Place& in, Cursor& c, const char* label, Smb& values);
void AddSmbPosixOpenReply(const SmbMessage& message, const Place& in, Cursor& c);

}  // namespace qxview
