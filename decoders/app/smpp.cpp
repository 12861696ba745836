// Short Message Peer-to-Peer (SMPP 3.4 and 5.0 of the SMS Forum): short messages handed to centers and taken from them.
//
//   0        4            8        12         16
//   length   command id   status   sequence   what the command takes, then parameters of type, length and value
#include "core/elements.h"
#include "decoders/app/smpp_names.h"
#include "decoders/common/ahead_cut.h"
#include "decoders/common/text_lines.h"
#include "decoders/message_lengths.h"

namespace qxview {
namespace {

struct Smpp { Field length, command, count, coding; };
constexpr int32_t kHeaderSize = 16;

constexpr auto kHeader = Rows<Smpp>({
    Number(4, "Command Length").Into(&Smpp::length), Hex(4, "Command ID", kSmppCommandNames).Into(&Smpp::command),
    Hex(4, "Command Status", kSmppStatusNames), Number(4, "Sequence Number")});

// The parts that commands share.
constexpr auto kSource = Rows<Smpp>({
    Number(1, "Source Type of Number", kSmppNumberTypeNames), Number(1, "Source Numbering Plan", kSmppPlanNames),
    Terminated(Text(0, "Source Address"))});
constexpr auto kDestination = Rows<Smpp>({
    Number(1, "Destination Type of Number", kSmppNumberTypeNames), Number(1, "Destination Numbering Plan", kSmppPlanNames),
    Terminated(Text(0, "Destination Address"))});
constexpr auto kService = Rows<Smpp>({Terminated(Text(0, "Service Type"))});
constexpr auto kMessageId = Rows<Smpp>({Terminated(Text(0, "Message ID"))});
constexpr auto kEsmClass = Rows<Smpp>({
    Hex(1, "ESM Class"), Bits(0, 2, "GSM Features", kSmppFeatureNames), Bits(2, 4, "Message Type", kSmppTypeNames),
    Bits(6, 2, "Messaging Mode", kSmppModeNames)});
constexpr auto kTimes = Rows<Smpp>({
    Terminated(Text(0, "Schedule Delivery Time")), Terminated(Text(0, "Validity Period"))});
constexpr auto kDelivery = Rows<Smpp>({
    Hex(1, "Registered Delivery"), Flag(3, "Intermediate Notification"), Bits(4, 2, "Acknowledgement", kSmppAckNames),
    Bits(6, 2, "Delivery Receipt", kSmppReceiptNames)});
constexpr auto kCoding = Rows<Smpp>({Hex(1, "Data Coding", kSmppCodingNames).Into(&Smpp::coding)});
constexpr auto kPriority = Rows<Smpp>({Number(1, "Protocol ID"), Number(1, "Priority")});
constexpr auto kReplace = Rows<Smpp>({Number(1, "Replace if Present")});
constexpr auto kDefault = Rows<Smpp>({Number(1, "Default Message ID")});
constexpr auto kMessageLength = Rows<Smpp>({Number(1, "Message Length").Into(&Smpp::count)});

constexpr auto kBind = Rows<Smpp>({
    Terminated(Text(0, "System ID")), Terminated(Text(0, "Password")), Terminated(Text(0, "System Type")),
    Hex(1, "Interface Version"), Number(1, "Address Type of Number", kSmppNumberTypeNames),
    Number(1, "Address Numbering Plan", kSmppPlanNames), Terminated(Text(0, "Address Range"))});
constexpr auto kBound = Rows<Smpp>({Terminated(Text(0, "System ID"))});
constexpr auto kOutbind = Rows<Smpp>({Terminated(Text(0, "System ID")), Terminated(Text(0, "Password"))});
constexpr auto kQueried = Rows<Smpp>({
    Terminated(Text(0, "Message ID")), Terminated(Text(0, "Final Date")), Number(1, "Message State", kSmppStateNames),
    Number(1, "Error Code")});
constexpr auto kAlertTarget = Rows<Smpp>({
    Number(1, "ESME Type of Number", kSmppNumberTypeNames), Number(1, "ESME Numbering Plan", kSmppPlanNames),
    Terminated(Text(0, "ESME Address"))});
constexpr auto kCount = Rows<Smpp>({Number(1, "Count").Into(&Smpp::count)});
constexpr auto kListName = Rows<Smpp>({Terminated(Text(0, "Distribution List"))});
constexpr auto kDestinationFlag = Rows<Smpp>({Number(1, "Destination Flag", kSmppDestinationNames).Into(&Smpp::count)});
constexpr auto kErrorStatus = Rows<Smpp>({Hex(4, "Error Status", kSmppStatusNames)});

template <class... Tables>
void ShowAll(const Place& in, Cursor& c, Smpp& smpp, const Tables&... tables) {
  (ShowRows<Smpp>(in, c, tables, smpp), ...);
}

constexpr auto kWide = Rows<Smpp>({Utf16(0, "Message")});
constexpr auto kPriorityAlone = Rows<Smpp>({Number(1, "Priority")});

// Text by its coding: of 16 bits, or octets.
void ShowMessageText(const Place& in, Cursor& c, const Smpp& smpp) {
  constexpr uint32_t kUcs2 = 8;
  Cursor text = TakeCursor(c, smpp.count.value);
  Smpp unused{};
  if (smpp.coding.value == kUcs2) ShowRows<Smpp>(in, text, kWide, unused);
  else if (IsReadable(text)) AddTextLine(in, Rest(text), "Message");
  AddBlock(in, Rest(text), "Message");
}

void ShowSubmit(const Place& in, Cursor& c, Smpp& smpp) {
  ShowAll(in, c, smpp, kService, kSource, kDestination, kEsmClass, kPriority, kTimes, kDelivery, kReplace, kCoding, kDefault,
          kMessageLength);
  ShowMessageText(in, c, smpp);
}
void ShowData(const Place& in, Cursor& c, Smpp& smpp) {
  ShowAll(in, c, smpp, kService, kSource, kDestination, kEsmClass, kDelivery, kCoding);
}
void ShowQuery(const Place& in, Cursor& c, Smpp& smpp) { ShowAll(in, c, smpp, kMessageId, kSource); }
void ShowCancel(const Place& in, Cursor& c, Smpp& smpp) {
  ShowAll(in, c, smpp, kService, kMessageId, kSource, kDestination);
}
void ShowReplace(const Place& in, Cursor& c, Smpp& smpp) {
  ShowAll(in, c, smpp, kMessageId, kSource, kTimes, kDelivery, kDefault, kMessageLength);
  ShowMessageText(in, c, smpp);
}
void ShowAlert(const Place& in, Cursor& c, Smpp& smpp) { ShowAll(in, c, smpp, kSource, kAlertTarget); }
void ShowBroadcast(const Place& in, Cursor& c, Smpp& smpp) {
  ShowAll(in, c, smpp, kService, kSource, kMessageId, kPriorityAlone, kTimes, kReplace, kCoding, kDefault);
}
void ShowBroadcastCancel(const Place& in, Cursor& c, Smpp& smpp) { ShowAll(in, c, smpp, kService, kMessageId, kSource); }

void ShowMulti(const Place& in, Cursor& c, Smpp& smpp) {
  ShowAll(in, c, smpp, kService, kSource, kCount);
  const uint32_t count = smpp.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) {
    ShowAll(in, c, smpp, kDestinationFlag);
    if (smpp.count.value == 2) ShowAll(in, c, smpp, kListName);
    else ShowAll(in, c, smpp, kDestination);
  }
  ShowAll(in, c, smpp, kEsmClass, kPriority, kTimes, kDelivery, kReplace, kCoding, kDefault, kMessageLength);
  ShowMessageText(in, c, smpp);
}
void ShowMultiResponse(const Place& in, Cursor& c, Smpp& smpp) {
  ShowAll(in, c, smpp, kMessageId, kCount);
  Loop loop;
  for (uint32_t i = 0; i < smpp.count.value && MoreAt(in, c, loop); ++i) ShowAll(in, c, smpp, kDestination, kErrorStatus);
}

constexpr auto kCommands = Choices<Smpp>({
    {0x00000001, "", kBind}, {0x00000002, "", kBind}, {0x00000003, "", {}, ShowQuery}, {0x00000004, "", {}, ShowSubmit},
    {0x00000005, "", {}, ShowSubmit}, {0x00000007, "", {}, ShowReplace}, {0x00000008, "", {}, ShowCancel},
    {0x00000009, "", kBind}, {0x0000000B, "", kOutbind}, {0x00000021, "", {}, ShowMulti}, {0x00000102, "", {}, ShowAlert},
    {0x00000103, "", {}, ShowData}, {0x00000111, "", {}, ShowBroadcast}, {0x00000112, "", {}, ShowQuery},
    {0x00000113, "", {}, ShowBroadcastCancel}, {0x80000001, "", kBound}, {0x80000002, "", kBound}, {0x80000003, "", kQueried},
    {0x80000004, "", kMessageId}, {0x80000005, "", kMessageId}, {0x80000009, "", kBound},
    {0x80000021, "", {}, ShowMultiResponse}, {0x80000103, "", kMessageId}, {0x80000111, "", kMessageId},
    {0x80000112, "", kMessageId}});

constexpr ElementForm kParameterForm{.typeSize = 2, .lengthSize = 2};
constexpr auto kNumber1 = Rows<Smpp>({Number(1, "Value")});
constexpr auto kNumber2 = Rows<Smpp>({Number(2, "Value")});
constexpr auto kNumber4 = Rows<Smpp>({Number(4, "Value")});

const char* ParameterName(uint32_t tag) {
  return LookupName(kSmppParameterNames, tag, tag >= 0x1400 && tag < 0x4000 ? "Vendor Specific" : kUnknown);
}

void ShowParameter(const Place& at, Element& element) {
  const Place in = Under(at, AddLine(at, element.whole, "Parameter: %s", ParameterName(element.code)));
  AddLine(in, element.type, "Tag: 0x%04X = %s", element.code, ParameterName(element.code));
  AddLine(in, element.length, "Length: %u", element.length.value);
  Cursor& value = element.value;
  Smpp unused{};
  const bool isText = Left(value) > 4 && IsReadable(value, true);
  if (isText) AddTextLine(in, TakeTerminated(value), "Text");
  else if (Left(value) == 1) ShowRows<Smpp>(in, value, kNumber1, unused);
  else if (Left(value) == 2) ShowRows<Smpp>(in, value, kNumber2, unused);
  else if (Left(value) == 4) ShowRows<Smpp>(in, value, kNumber4, unused);
  AddBlock(in, Rest(value), "Value Data");
}

bool StartsMessage(const Cursor& c) {
  const uint32_t length = PeekU32(c), command = PeekU32(c, 4);
  return length >= kHeaderSize && length < 0x10000 && LookupName(kSmppCommandNames, command, nullptr);
}

}  // namespace

int32_t LengthOfSmpp(const Cursor& c) {
  if (Left(c) < kHeaderSize) return 0;
  return StartsMessage(c) ? static_cast<int32_t>(PeekU32(c)) : kNoMessage;
}

int32_t DecodeSmpp(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize || !StartsMessage(c)) return 0;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    if (Left(c) < kHeaderSize || !StartsMessage(c)) return AddRawRest(at, c, "SMPP Data");
    const Place in = Under(at, AddLine(at, AheadCut(c, PeekU32(c)), "SMPP: %s", LookupName(kSmppCommandNames, PeekU32(c, 4))));
    Smpp smpp = ShowRows(in, c, kHeader);
    Cursor body = TakeCursor(c, static_cast<int64_t>(smpp.length.value) - kHeaderSize);
    const Choice<Smpp>* choice = FindChoice<Smpp>(kCommands, smpp.command.value);
    if (choice && choice->rows.count && Left(body) > 0) ShowRows<Smpp>(in, body, choice->rows, smpp);
    if (choice && choice->show && Left(body) > 0) choice->show(in, body, smpp);
    Element element;
    Loop parameters;
    while (MoreAt(in, body, parameters) && TakeElement(body, kParameterForm, element)) ShowParameter(in, element);
    body.ranShort = false;
    AddBlock(in, Rest(body), "Data");
  }
  return 1;
}

}  // namespace qxview
