// The packet list's text for FIX, the exchanges' protocol of orders and quotes (FIX 4.0 to 5.0, transport FIXT 1.1).
//
//   8=FIX.4.2 SOH 9=178 SOH 35=D SOH 34=4 SOH 49=BUYER SOH 56=SELLER SOH 55=IBM SOH ... 10=128 SOH
#include "decoders/app/fix_names.h"
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

constexpr uint8_t kSeparator = 1;
constexpr int32_t kMostFields = 48;   // what tells messages apart stands at their start

// The fields that are shown, in the order they are shown in.
struct ShownField {
  int32_t tag;
  const char* label;
};
constexpr int32_t kMessageType = 35;
constexpr ShownField kShown[] = {
    {34, "Sequence"}, {49, "Sender"}, {56, "Target"}, {11, "Order"}, {55, "Symbol"}, {54, "Side"},
    {38, "Quantity"}, {44, "Price"}, {39, "Status"}, {58, "Text"},
};
constexpr int32_t kShownCount = sizeof kShown / sizeof kShown[0];
constexpr int32_t kSide = 54, kStatus = 39;

constexpr const char* kSideNames[] = {"Buy", "Sell", "Buy Minus", "Sell Plus", "Sell Short", "Sell Short Exempt"};
constexpr const char* kStatusNames[] = {
    "New", "Partially Filled", "Filled", "Done For Day", "Canceled", "Replaced", "Pending Cancel", "Stopped",
    "Rejected", "Suspended",
};

// The next "tag=value" of the cursor; tag 0 when it is none.
int32_t TakeField(Cursor& c, TextSlice* value) {
  const int32_t end = FindU8(c, kSeparator), length = end < 0 ? Left(c) : end;
  const Field field = TakeBytes(c, length);
  if (Left(c) > 0) TakeU8(c);
  int32_t tag = 0, at = 0;
  while (at < length && at < 6 && IsDigit(static_cast<char>(PeekU8(field, at)))) {
    tag = 10 * tag + (PeekU8(field, at++) - '0');
  }
  if (at == length || at == 0 || PeekU8(field, at) != '=') return 0;
  *value = Text(Slice(field, at + 1, length - at - 1));
  return tag;
}

// The spoken value of a one-digit code, or the value itself.
template <size_t kRows>
TextSlice Spoken(const TextSlice& value, const char* const (&names)[kRows], char first) {
  const int32_t index = value.length == 1 ? *value.text - first : -1;
  if (index < 0 || index >= static_cast<int32_t>(kRows)) return value;
  return {names[index], static_cast<int32_t>(std::strlen(names[index]))};
}

// From where the first message starts on; a segment may start inside an earlier one. Empty when none does.
Cursor FindMessage(const Cursor& c) {
  int32_t at = FindU8(c, '8');
  while (at >= 0 && !PeekIs(c, at, "8=FIX")) at = FindU8(c, '8', at + 1);
  return CursorOver(PeekBytes(c, at, Left(c) - at));
}

}  // namespace

int32_t DescribeFix(const uint8_t* data, int32_t length, char* out, uint16_t outSize) {
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  TextSlice type{nullptr, 0};
  TextSlice values[kShownCount] = {};
  Cursor c = FindMessage(MakeCursor(data, 0, length));
  const bool starts = Left(c) > 0;
  for (int32_t i = 0; i < kMostFields && Left(c) > 0; ++i) {
    TextSlice value;
    const int32_t tag = TakeField(c, &value);
    constexpr int32_t kCheckSum = 10;
    if (tag == kCheckSum) break;   // the message's last field: the next message is not looked at
    if (tag == kMessageType) type = value;
    for (int32_t field = 0; field < kShownCount; ++field) {
      if (kShown[field].tag == tag && values[field].length == 0) values[field] = value;
    }
  }
  if (type.length == 0) return Add(text, starts ? "FIX" : "FIX Data"), 1;
  if (const char* name = FixMessageName(type)) {
    Add(text, name);
  } else {
    Add(text, "FIX Message %s", type);
  }
  for (int32_t field = 0; field < kShownCount; ++field) {
    TextSlice value = values[field];
    if (kShown[field].tag == kSide) value = Spoken(value, kSideNames, '1');
    if (kShown[field].tag == kStatus) value = Spoken(value, kStatusNames, '0');
    AddValue(text, kShown[field].label, value);
  }
  return 1;
}

}  // namespace qxview
