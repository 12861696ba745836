// The parameters of remote administration calls.
#include "decoders/smb/smb_rap.h"

#include <cstring>

namespace qxview {
namespace {

constexpr const char* kAnyCall = "Remote Administration Call";

// The structures that logon calls hold as one byte string.
constexpr auto kLogon = LittleRows<Smb>({
    SmbOemName<21>("User Name"), Bytes(1, "Pad"), Bytes(16, "Password"), SmbOemName<16>("Workstation")});
constexpr auto kLogoff = LittleRows<Smb>({SmbOemName<21>("User Name"), Bytes(1, "Pad"), SmbOemName<16>("Workstation")});

void AddLogonData(const SmbMessage& message, const Place& at, Cursor& c, int32_t size, bool isLogon) {
  Cursor data = TakeCursor(c, size);
  const Place in = Under(at, AddSmbTitle(at, Ahead(data, data.left), isLogon ? "Logon Data" : "Logoff Data"));
  ShowSmbRows(message, in, data, isLogon ? SmbRowSpan(kLogon) : kLogoff);
  AddBlock(in, Rest(data), "Reserved");
}

// A descriptor and a line for each of its letters; what it says goes to `out`, nothing when it is too long.
void AddDescriptor(const SmbMessage& message, const Place& in, Cursor& c, const char* label, bool isParameters,
                   char* out) {
  SmbString text = TakeSmbString(message, c, SmbCharacters::kOem);
  const LineHandle line = AddLine(in, text.field, "%s: %s", label, text.text[0] ? text.text : "<null string>");
  out[0] = 0;
  const size_t length = strnlen(text.text, kSmbTextSize);
  if (!text.field.here || length >= kRapDescriptorSize) return;
  std::memcpy(out, text.text, length + 1);
  const Place under = Under(in, line);
  const char* at = text.text;
  for (RapItem item{};;) {
    const char* start = at;
    if (!TakeRapItem(at, item)) break;
    const Field letter = Slice(text.field, static_cast<int32_t>(start - text.text), static_cast<int32_t>(at - start));
    AddLine(under, letter, "%c %s (%s)", item.code, isParameters ? "Parameter" : "Field",
            isParameters ? RapParameterKind(item.code) : RapFieldKind(item.code));
  }
}

// The bytes that a request holds for a letter of its descriptor; letters of what is returned have none.
void AddRequestParameter(SmbTransaction& t, const Place& in, Cursor& c, const RapItem& item, const char*& labels) {
  RapLabel label{{}, item.code, "Parameter", RapParameterKind(item.code)};
  switch (item.code) {
    case 'W':
    case 'L':
    case 'T':
    case 'P':
    case 'D':
      label.text = TakeRapLabel(labels);
      AddRapNumber(t.message, in, c, item.code == 'D' ? 4 : 2, label);
      break;
    case 'z':
      label.text = TakeRapLabel(labels);
      AddRapText(t.message, in, c, label);
      break;
    case 'b':
      label.text = TakeRapLabel(labels);
      if (t.request.function == kRapUserLogon || t.request.function == kRapUserLogoff) {
        AddLogonData(t.message, in, c, item.count, t.request.function == kRapUserLogon);
      } else {
        AddRapBytes(t.message, in, c, item.count, label);
      }
      break;
    case 'F': AddRapBytes(t.message, in, c, item.count, label); break;
    default: break;
  }
}

void AddReplyParameter(SmbTransaction& t, const Place& in, Cursor& c, const RapItem& item, const char*& labels) {
  RapLabel label{{}, item.code, "Parameter", RapParameterKind(item.code)};
  switch (item.code) {
    case 'e':
      t.request.flags = PeekLittleU16(c);
      [[fallthrough]];
    case 'h':
    case 'i':
      label.text = TakeRapLabel(labels);
      AddRapNumber(t.message, in, c, item.code == 'i' ? 4 : 2, label);
      break;
    case 'g':
      label.text = TakeRapLabel(labels);
      AddRapBytes(t.message, in, c, item.count, label);
      break;
    default: break;
  }
}

const char* NameOfCall(uint32_t code) {
  const RapCall* call = FindRapCall(code);
  return call ? call->name : kUndefined;
}
constexpr auto kFunction = LittleRows<Smb>({Coded(2, "Function", NameOfCall)});
constexpr auto kStatus = LittleRows<Smb>({
    Coded(2, "Return Status", RapStatusName), Number(2, "Converter").Into(&Smb::level)});

void RequestParameters(SmbTransaction& t, const Place& in, Cursor& c) {
  const uint32_t code = PeekLittleU16(c);
  const RapCall* call = FindRapCall(code);
  ShowSmbRows(t.message, in, c, kFunction);
  t.request.isRap = true;
  t.request.function = code;
  AddDescriptor(t.message, in, c, "Parameter Descriptor", true, t.request.parameters);
  AddDescriptor(t.message, in, c, "Data Descriptor", false, t.request.data);
  const char* at = t.request.parameters;
  const char* labels = call ? call->parameters : "";
  for (RapItem item{}; TakeRapItem(at, item) && Left(c) > 0;) AddRequestParameter(t, in, c, item, labels);
  if (Left(c) > 0) AddDescriptor(t.message, in, c, "Auxiliary Descriptor", false, t.request.auxiliary);
}

void RequestData(SmbTransaction& t, const Place& in, Cursor& c) { AddRapStructures(t, in, c, 1, 0); }

// The count of structures and the converter wait in the transaction's copy of the request for the data.
void ReplyParameters(SmbTransaction& t, const Place& in, Cursor& c) {
  const RapCall* call = FindRapCall(t.request.function);
  t.request.level = ShowSmbRows(t.message, in, c, kStatus).level.value;
  t.request.flags = 1;
  const char* at = t.request.parameters;
  const char* labels = call ? call->reply : "";
  for (RapItem item{}; TakeRapItem(at, item) && Left(c) > 0;) AddReplyParameter(t, in, c, item, labels);
}

void ReplyData(SmbTransaction& t, const Place& in, Cursor& c) {
  AddRapStructures(t, in, c, t.request.flags, t.request.level);
}

void AddCall(SmbTransaction& t, uint32_t code) {
  const RapCall* call = FindRapCall(code);
  const SmbFunction function = {code, call ? call->name : kAnyCall, RequestParameters, RequestData, ReplyParameters,
                                ReplyData};
  AddTransactionBytes(t, &function);
}

}  // namespace

void AddRapRequest(SmbTransaction& t) {
  const Cursor code = SmbCursor(t.message, t.parameterOffset, 2);
  AddCall(t, Left(code) >= 2 ? PeekLittleU16(code) : UINT32_MAX);
}

void AddRapReply(SmbTransaction& t) { AddCall(t, t.request.function); }

}  // namespace qxview
