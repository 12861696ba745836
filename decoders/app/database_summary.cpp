// The packet list's text for the protocols of two database networks: TDS (MS-TDS) and TNS.
//
//   TDS:  type (1)   status (1)   length (2)   SPID (2)   packet (1)   window (1)   data
//   TNS:  length (2)   checksum (2)   type (1)   reserved (1)   header checksum (2)   data
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

constexpr int32_t kHeader = 8;
constexpr int32_t kMostShown = 160;   // characters of a statement

enum TdsType : uint32_t { kSqlBatch = 1, kOldLogin = 2, kRpc = 3, kResponse = 4, kLogin = 16, kPreLogin = 18 };

constexpr auto kTdsTypeNames = SortedNames({
    {1, "SQL Batch"}, {2, "Login"}, {3, "RPC"}, {4, "Response"}, {6, "Attention"}, {7, "Bulk Load Data"},
    {8, "Federated Authentication Token"}, {14, "Transaction Manager Request"}, {15, "Query"}, {16, "Login7"},
    {17, "SSPI"}, {18, "Pre-Login"},
});

constexpr auto kTdsTokenNames = SortedNames({
    {0x79, "Return Status"}, {0x81, "Column Metadata"}, {0xA4, "Table Names"}, {0xA5, "Column Information"},
    {0xA9, "Order"}, {0xAA, "Error"}, {0xAB, "Information"}, {0xAC, "Return Value"}, {0xAD, "Login Acknowledgement"},
    {0xAE, "Feature Acknowledgement"}, {0xD1, "Row"}, {0xD2, "NBC Row"}, {0xE3, "Environment Change"},
    {0xE4, "Session State"}, {0xED, "SSPI"}, {0xFD, "Done"}, {0xFE, "Done Procedure"}, {0xFF, "Done In Procedure"},
});

constexpr auto kTdsProcedureNames = SortedNames({
    {1, "Sp_Cursor"}, {2, "Sp_CursorOpen"}, {3, "Sp_CursorPrepare"}, {4, "Sp_CursorExecute"},
    {5, "Sp_CursorPrepExec"}, {6, "Sp_CursorUnprepare"}, {7, "Sp_CursorFetch"}, {8, "Sp_CursorOption"},
    {9, "Sp_CursorClose"}, {10, "Sp_ExecuteSql"}, {11, "Sp_Prepare"}, {12, "Sp_Execute"}, {13, "Sp_PrepExec"},
    {14, "Sp_PrepExecRpc"}, {15, "Sp_Unprepare"},
});

// From version 7.2 on a request starts with its headers, whose total length is small; earlier ones start with text,
// which read as a length is far beyond the data.
void SkipRequestHeaders(Cursor& c) {
  constexpr uint32_t kLeast = 4, kMost = 256;
  if (Left(c) < 4) return;
  const uint32_t total = PeekLittleU32(c);
  if (total >= kLeast && total <= kMost) TakeBytes(c, total);
}

void DescribeRpc(SummaryText& text, Cursor c) {
  constexpr uint32_t kByNumber = 0xFFFF;
  SkipRequestHeaders(c);
  const Field nameLength = TakeLittleU16(c);
  if (!nameLength.here) return;
  Add(text, ": ");
  if (nameLength.value == kByNumber) return Add(text, LookupName(kTdsProcedureNames, TakeLittleU16(c).value));
  const Cursor name = TakeCursor(c, int64_t{2} * nameLength.value);
  AddWideText(text, name.at, Left(name), kMostShown);
}

// A string of the login record: an offset from the record's start and a length in characters.
void AddLoginText(SummaryText& text, const Cursor& record, int32_t at, const char* label) {
  Cursor place = record;
  TakeBytes(place, at);
  const Field offset = TakeLittleU16(place), characters = TakeLittleU16(place);
  Cursor value = record;
  TakeBytes(value, offset.value);
  if (!characters.here || characters.value == 0 || Left(value) < 1) return;
  constexpr int32_t kMost = 64;
  const Cursor bytes = TakeCursor(value, int64_t{2} * characters.value);
  Add(text, ", ");
  Add(text, label);
  AddWideText(text, bytes.at, Left(bytes), kMost);
}

void DescribeLogin(SummaryText& text, const Cursor& record) {
  AddLoginText(text, record, 36, "Host: ");
  AddLoginText(text, record, 40, "User: ");
  AddLoginText(text, record, 48, "Application: ");
  AddLoginText(text, record, 52, "Server: ");
  AddLoginText(text, record, 68, "Database: ");
}

void DescribeResponse(SummaryText& text, Cursor c) {
  constexpr uint32_t kError = 0xAA, kInformation = 0xAB;
  const Field token = TakeU8(c);
  const char* name = token.here ? LookupName(kTdsTokenNames, token.value, nullptr) : nullptr;
  if (!name) return;
  Add(text, ": %s", name);
  if (token.value != kError && token.value != kInformation) return;
  TakeLittleU16(c);
  const Field number = TakeLittleU32(c);
  TakeBytes(c, 2);   // state, class
  const Field characters = TakeLittleU16(c);
  if (!characters.here) return;
  Add(text, " %u, ", number.value);
  const Cursor message = TakeCursor(c, int64_t{2} * characters.value);
  AddWideText(text, message.at, Left(message), kMostShown);
}

constexpr auto kTnsTypeNames = SortedNames({
    {1, "Connect"}, {2, "Accept"}, {3, "Acknowledge"}, {4, "Refuse"}, {5, "Redirect"}, {6, "Data"}, {7, "Null"},
    {9, "Abort"}, {11, "Resend"}, {12, "Marker"}, {13, "Attention"}, {14, "Control Information"},
});
enum TnsType : uint32_t { kConnect = 1, kAccept = 2, kRefuse = 4, kRedirect = 5, kData = 6 };

// The text of a connect descriptor: "(DESCRIPTION=(CONNECT_DATA=(SID=..." .
void AddDescriptor(SummaryText& text, const Cursor& packet, int32_t offset, int32_t length) {
  Cursor c = packet;
  TakeBytes(c, offset);
  const Cursor descriptor = TakeCursor(c, length);
  if (Left(descriptor) < 1) return;
  Add(text, ", ");
  AddPrintable(text, descriptor.at, Left(descriptor), kMostShown);
}

void DescribeTnsBody(SummaryText& text, uint32_t type, const Cursor& packet) {
  Cursor c = packet;
  TakeBytes(c, kHeader);
  if (type == kConnect) {
    const Field version = TakeU16(c);
    if (version.here) Add(text, ", Version: %u", version.value);
    TakeBytes(c, 14);
    const Field length = TakeU16(c), offset = TakeU16(c);
    if (offset.here) AddDescriptor(text, packet, static_cast<int32_t>(offset.value), static_cast<int32_t>(length.value));
  } else if (type == kAccept) {
    const Field version = TakeU16(c);
    if (version.here) Add(text, ", Version: %u", version.value);
  } else if (type == kRefuse) {
    const Field user = TakeU8(c), system = TakeU8(c);
    if (system.here) Add(text, ", Reason: %u, %u", user.value, system.value);
    const Field length = TakeU16(c);
    if (length.here) AddDescriptor(text, packet, kHeader + 4, static_cast<int32_t>(length.value));
  } else if (type == kRedirect) {
    const Field length = TakeU16(c);
    if (length.here) AddDescriptor(text, packet, kHeader + 2, static_cast<int32_t>(length.value));
  }
}

}  // namespace

int32_t DescribeTds(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t flag) {
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "TDS-SQL ");
  Cursor c = MakeCursor(data, 0, length);
  const uint32_t type = TakeU8(c).value;
  const char* name = LookupName(kTdsTypeNames, type, nullptr);
  const Field status = TakeU8(c);
  const Field packetLength = TakeU16(c), process = TakeU16(c);
  const Field number = TakeU8(c);
  TakeU8(c);
  if (!name || c.ranShort || packetLength.value < kHeader || status.value > 31) return Add(text, "Data"), 1;
  Add(text, name);
  Cursor body = TakeCursor(c, static_cast<int32_t>(packetLength.value) - kHeader);
  constexpr uint32_t kFirst = 1;
  if (number.value <= kFirst) {
    switch (type) {
      case kSqlBatch:
        SkipRequestHeaders(body);
        Add(text, ": ");
        AddWideText(text, body.at, Left(body), kMostShown);
        break;
      case kRpc: DescribeRpc(text, body); break;
      case kResponse: DescribeResponse(text, body); break;
      case kLogin: DescribeLogin(text, body); break;
      default: break;
    }
  }
  if (flag) Add(text, ", SPID: %u, Packet: %u, Length: %u", process.value, number.value, packetLength.value);
  return 1;
}

int32_t DescribeTns(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "Oracle TNS ");
  Cursor c = MakeCursor(data, 0, length);
  uint32_t packetLength = TakeU16(c).value;
  const Field checksum = TakeU16(c);
  const Field type = TakeU8(c);
  TakeBytes(c, 3);
  // From version 315 on the length takes four bytes; no packet is shorter than its header.
  if (packetLength == 0) packetLength = checksum.value;
  const char* name = type.here ? LookupName(kTnsTypeNames, type.value, nullptr) : nullptr;
  if (c.ranShort || !name || packetLength < kHeader) return Add(text, "Data"), 1;
  Add(text, "%s", name);
  if (type.value == kData) {
    Add(text, ", Length: %u", packetLength);
  } else {
    DescribeTnsBody(text, type.value, MakeCursor(data, 0, length));
  }
  return 1;
}

}  // namespace qxview
