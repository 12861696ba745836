// The classes and codes of DOS errors (MS-CIFS 2.2.2.4).
#include "decoders/smb/smb_block.h"

namespace qxview {
namespace {

constexpr uint32_t kSuccess = 0, kDos = 1, kServer = 2, kHardware = 3;

constexpr auto kClassNames = SortedNames({
    {0x00, "SUCCESS"}, {0x01, "ERRDOS"}, {0x02, "ERRSRV"}, {0x03, "ERRHRD"}, {0x04, "ERRXOS"}, {0xE1, "ERRRMX1"},
    {0xE2, "ERRRMX2"}, {0xE3, "ERRRMX3"}, {0xFF, "ERRCMD"}});

constexpr auto kDosNames = SortedNames({
    {0, "SUCCESS"}, {1, "ERRbadfunc"}, {2, "ERRbadfile"}, {3, "ERRbadpath"}, {4, "ERRnofids"}, {5, "ERRnoaccess"},
    {6, "ERRbadfid"}, {7, "ERRbadmcb"}, {8, "ERRnomem"}, {9, "ERRbadmem"}, {10, "ERRbadenv"}, {11, "ERRbadformat"},
    {12, "ERRbadaccess"}, {13, "ERRbaddata"}, {15, "ERRbaddrive"}, {16, "ERRremcd"}, {17, "ERRdiffdevice"},
    {18, "ERRnofiles"}, {31, "ERRgeneral"}, {32, "ERRbadshare"}, {33, "ERRlock"}, {38, "ERReof"}, {50, "ERRunsup"},
    {64, "ERRnetnamedeleted"}, {67, "ERRnosuchshare"}, {80, "ERRfilexists"}, {87, "ERRinvalidparam"},
    {110, "ERRcannotopen"}, {111, "ERRbufferoverflow"}, {112, "ERRdiskfull"},
    {113, "ERROR_NO_MORE_SEARCH_HANDLES"}, {122, "ERRinsufficientbuffer"}, {123, "ERRinvalidname"},
    {124, "ERRunknownlevel"}, {131, "ERRinvalidseek"}, {145, "ERRdirnotempty"}, {158, "ERRnotlocked"},
    {173, "ERROR_CANCEL_VIOLATION"}, {174, "ERROR_ATOMIC_LOCKS_NOT_SUPPORTED"}, {183, "ERRalreadyexists"}, {230, "ERRbadpipe"}, {231, "ERRpipebusy"}, {232, "ERRpipeclosing"},
    {233, "ERRnotconnected"}, {234, "ERRmoredata"}, {255, "ERRbadealist"}, {266, "ERROR_CANNOT_COPY"},
    {275, "ERROR_EAS_DIDNT_FIT"}, {282, "ERROR_EAS_NOT_SUPPORTED"}, {994, "ERROR_EA_ACCESS_DENIED"}, {1022, "ERRnotifyenumdir"}, {2401, "ERRopenfiles"}});

constexpr auto kServerNames = SortedNames({
    {0, "SUCCESS"}, {1, "ERRerror"}, {2, "ERRbadpw"}, {3, "ERRbadpath"}, {4, "ERRaccess"}, {5, "ERRinvtid"},
    {6, "ERRinvnetname"}, {7, "ERRinvdevice"}, {16, "ERRinvsess"}, {17, "ERRworking"}, {18, "ERRnotme"},
    {22, "ERRbadcmd"}, {49, "ERRqfull"}, {50, "ERRqtoobig"}, {51, "ERRqeof"}, {52, "ERRinvpfid"}, {64, "ERRsmbcmd"},
    {65, "ERRsrverror"}, {66, "ERRbadBID"}, {67, "ERRfilespecs"}, {68, "ERRbadLink"}, {69, "ERRbadpermits"},
    {70, "ERRbadPID"}, {71, "ERRsetattrmode"}, {81, "ERRpaused"}, {82, "ERRmsgoff"}, {83, "ERRnoroom"},
    {87, "ERRrmuns"}, {88, "ERRtimeout"}, {89, "ERRnoresource"}, {90, "ERRtoomanyuids"}, {91, "ERRbaduid"},
    {233, "ERRnotconnected"}, {250, "ERRusempx"}, {251, "ERRusestd"}, {252, "ERRcontmpx"}, {2239, "ERRaccountExpired"}, {2240, "ERRbadClient"},
    {2241, "ERRbadLogonTime"}, {2242, "ERRpasswordExpired"}, {0xFFFF, "ERRnosupport"}});

constexpr auto kHardwareNames = SortedNames({
    {0, "SUCCESS"}, {19, "ERRnowrite"}, {20, "ERRbadunit"}, {21, "ERRnotready"}, {22, "ERRbadcmd"}, {23, "ERRdata"},
    {24, "ERRbadreq"}, {25, "ERRseek"}, {26, "ERRbadmedia"}, {27, "ERRbadsector"}, {28, "ERRnopaper"},
    {29, "ERRwrite"}, {30, "ERRread"}, {31, "ERRgeneral"}, {32, "ERRbadshare"}, {33, "ERRlock"},
    {34, "ERRwrongdisk"}, {35, "ERRFCBUnavail"}, {36, "ERRsharebufexc"}, {39, "ERRdiskfull"}});

}  // namespace

const char* SmbDosClassName(uint32_t errorClass) { return LookupName(kClassNames, errorClass, kUndefined); }

const char* SmbDosErrorName(uint32_t errorClass, uint32_t code) {
  switch (errorClass) {
    case kSuccess: return code == 0 ? "SUCCESS" : kUndefined;
    case kDos: return LookupName(kDosNames, code, kUndefined);
    case kServer: return LookupName(kServerNames, code, kUndefined);
    case kHardware: return LookupName(kHardwareNames, code, kUndefined);
    default: return kUndefined;
  }
}

}  // namespace qxview
