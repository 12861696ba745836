// The packet list's text for SMB (MS-CIFS) and its second version (MS-SMB2): command, request or response, status, the
// numbers that tie a response to its request.
//
//   session header, where the caller says so:  type (1)   length (3)
//   SMB:   FF "SMB"   command (1)   status (4)   flags (1)   flags 2 (2)   ...   TID  PID  UID  MID  (2 each, from 24 on)
//   SMB 2: FE "SMB"   size (2)   credits (2)   status (4)   command (2)   credits (2)   flags (4)   next (4)   message (8)
#include "decoders/app/smb_summary_names.h"
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"
#include "decoders/common/nt_status.h"
#include "decoders/netbios/netbios.h"
#include "decoders/smb/smb_block.h"

namespace qxview {
namespace {

constexpr uint32_t kMarker1 = 0xFF534D42, kMarker2 = 0xFE534D42, kMarkerEncrypted = 0xFD534D42;

void AddStatus(SummaryText& text, uint32_t status) {
  if (status == 0) return Add(text, ", Status: Success");
  if (const char* name = NtStatusName(status)) return Add(text, ", Status: %s", name);
  Add(text, ", Status: 0x%.08X", status);
}

void DescribeFirstVersion(SummaryText& text, Cursor c) {
  constexpr uint32_t kResponse = 0x80, kNtStatus = 0x4000;
  const uint32_t command = TakeU8(c).value;
  const Field status = TakeLittleU32(c);
  const uint32_t flags = TakeU8(c).value;
  const Field flags2 = TakeLittleU16(c);
  TakeBytes(c, 12);   // PID high, signature, reserved
  const Field tree = TakeLittleU16(c);
  TakeBytes(c, 2);    // process
  const Field user = TakeLittleU16(c), multiplex = TakeLittleU16(c);
  Add(text, " %s %s", SmbCommandName(command), flags & kResponse ? "Response" : "Request");
  if (flags2.here && flags & kResponse) {
    if (flags2.value & kNtStatus) {
      AddStatus(text, status.value);
    } else if (status.value == 0) {
      Add(text, ", Status: Success");
    } else {
      const uint32_t errorClass = status.value & 0xFF, code = status.value >> 16;
      Add(text, ", Error Class: %u = %s, Code: %u = %s", errorClass, SmbDosClassName(errorClass), code,
          SmbDosErrorName(errorClass, code));
    }
  }
  if (multiplex.here) Add(text, ", TID: %u, UID: %u, MID: %u", tree.value, user.value, multiplex.value);
}

void DescribeSecondVersion(SummaryText& text, Cursor c) {
  constexpr uint32_t kResponse = 1, kPending = 0x103;
  TakeBytes(c, 4);    // size, credit charge
  const Field status = TakeLittleU32(c);
  const Field command = TakeLittleU16(c);
  TakeBytes(c, 2);    // credits
  const Field flags = TakeLittleU32(c);
  TakeBytes(c, 4);    // next
  const WideField message = TakeLittleU64(c);
  if (!flags.here) return Add(text, " SMB2");
  const bool isResponse = (flags.value & kResponse) != 0;
  Add(text, " SMB2 %s %s", LookupName(kSmb2CommandNames, command.value), isResponse ? "Response" : "Request");
  if (isResponse && status.value == kPending) {
    Add(text, ", Status: Pending");
  } else if (isResponse) {
    AddStatus(text, status.value);
  }
  if (message.here) Add(text, ", Message ID: %I64u", message.wide);
}

// The name of a message of the session service other than data; null for data.
const char* SessionControlName(const Cursor& c) {
  constexpr uint32_t kFirst = 0x81, kLast = 0x85, kTooLong = 0x20000;
  const uint32_t type = PeekU8(c);
  return type >= kFirst && type <= kLast && PeekU24(c, 1) < kTooLong ? NetBiosSessionTypeName(type) : nullptr;
}

}  // namespace

int32_t DescribeSmb(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t directTcp,
                    int32_t continuationAllowed) {
  constexpr int32_t kSessionHeader = 4;
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Cursor c = MakeCursor(data, 0, length);
  if (directTcp && length >= kSessionHeader) {
    if (const char* session = SessionControlName(c)) {
      Add(text, "SMB/CIFS %s", session);
      return 1;
    }
    if (PeekU8(c) == 0) TakeBytes(c, kSessionHeader);
  }
  const Field marker = TakeU32(c);
  if (marker.value == kMarker1) {
    Add(text, "SMB/CIFS");
    DescribeFirstVersion(text, c);
  } else if (marker.value == kMarker2) {
    Add(text, "SMB/CIFS");
    DescribeSecondVersion(text, c);
  } else if (marker.value == kMarkerEncrypted) {
    Add(text, "SMB/CIFS SMB2 Encrypted");
  } else if (continuationAllowed) {
    Add(text, "SMB/CIFS Continuation");
  } else {
    return 0;
  }
  return 1;
}

}  // namespace qxview
