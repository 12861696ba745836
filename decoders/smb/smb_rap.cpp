// The parameters of remote administration calls.
#include "decoders/smb/smb_rap.h"

#include <cstring>

namespace qxview {
namespace {

constexpr const char* kAnyCall = "Remote Administration Call";
constexpr int32_t kUserNameSize = 21, kPasswordSize = 16, kComputerNameSize = 16;

// Fields of the structures that logon calls hold as one byte string.
void AddLogonData(const SmbMessage& message, const Place& at, Cursor& c, int32_t size, bool withPassword) {
  Cursor data = TakeCursor(c, size);
  const Place in = Under(at, AddLine(at, Ahead(data, data.left), "%s", withPassword ? "Logon Data" : "Logoff Data"));
  AddSmbCounted(message, in, data, kUserNameSize, "User Name", SmbCharacters::kOem);
  AddSmbField(message, in, data, {kSmbBytes, "Pad", {}, 1});
  if (withPassword) AddSmbField(message, in, data, {kSmbBytes, "Password", {}, kPasswordSize});
  if (Left(data) > 0) AddSmbCounted(message, in, data, kComputerNameSize, "Workstation", SmbCharacters::kOem);
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
      t.request.flags = Left(c) >= 2 ? ReadLittleU16(c.at) : 0;
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

void RequestParameters(SmbTransaction& t, const Place& in, Cursor& c) {
  const Field code = TakeLittleU16(c);
  const RapCall* call = FindRapCall(code.value);
  AddLine(in, code, "Function: [%u] = %s", code.value, call ? call->name : kUndefined);
  t.request.isRap = true;
  t.request.function = code.value;
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
  const Field status = TakeLittleU16(c);
  AddLine(in, status, "Return Status: [%u] = %s", status.value, RapStatusName(status.value));
  const Field converter = TakeLittleU16(c);
  AddLine(in, converter, "Converter: %u", converter.value);
  t.request.level = converter.value;
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
  const Field code = SmbRange(t.message, t.parameterOffset, 2);
  AddCall(t, code.here ? ReadLittleU16(code.bytes) : UINT32_MAX);
}

void AddRapReply(SmbTransaction& t) { AddCall(t, t.request.function); }

}  // namespace qxview
