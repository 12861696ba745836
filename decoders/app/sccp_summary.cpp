// The packet list's text for SCCP, the Skinny client control protocol between phones and their call manager.
//
//   0        4          8             12
//   length   version    message       body (length counts from the message on); numbers are little-endian
#include "decoders/app/sccp_names.h"
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

constexpr int32_t kHeader = 12;
constexpr int32_t kMostMessages = 8;
constexpr uint32_t kMostLength = 8192;   // of a message: what is longer is the middle of one

enum Message : uint32_t {
  kKeypadButton = 0x0003, kStartTone = 0x0082, kOpenReceiveChannelAck = 0x0022, kStartMediaTransmission = 0x008A,
  kDisplayText = 0x0099, kCallState = 0x0111, kDialedNumber = 0x011D,
};

constexpr auto kCallStateNames = SortedNames({
    {1, "Off Hook"}, {2, "On Hook"}, {3, "Ring Out"}, {4, "Ring In"}, {5, "Connected"}, {6, "Busy"},
    {7, "Congestion"}, {8, "Hold"}, {9, "Call Waiting"}, {10, "Call Transfer"}, {11, "Call Park"}, {12, "Proceed"},
    {13, "Call Remote Multiline"}, {14, "Invalid Number"},
});

// What tells one message from the next of the same kind.
void DescribeBody(SummaryText& text, uint32_t message, Cursor body) {
  constexpr int32_t kMostText = 32;
  switch (message) {
    case kKeypadButton: {
      const Field button = TakeLittleU32(body);
      if (!button.here) return;
      if (button.value < 10) return Add(text, " %u", button.value);
      return Add(text, button.value == 14 ? " *" : button.value == 15 ? " #" : "");
    }
    case kCallState: {
      const Field state = TakeLittleU32(body);
      if (!state.here) return;
      Add(text, " %s", LookupName(kCallStateNames, state.value));
      const Field line = TakeLittleU32(body), call = TakeLittleU32(body);
      if (call.here) Add(text, ", Line: %u, Call: %u", line.value, call.value);
      return;
    }
    case kStartTone: {
      const Field tone = TakeLittleU32(body);
      if (tone.here) Add(text, " 0x%.02X", tone.value);
      return;
    }
    case kDisplayText:
    case kDialedNumber:
      Add(text, " ");
      return Add(text, TextOf(body.at, Left(body) < kMostText ? Left(body) : kMostText));
    default: return;
  }
}

}  // namespace

int32_t DescribeSccp(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "Cisco SCCP ");
  Cursor c = MakeCursor(data, 0, length);
  for (int32_t i = 0; i < kMostMessages && Left(c) >= kHeader; ++i) {
    const uint32_t messageLength = TakeLittleU32(c).value;
    TakeLittleU32(c);
    if (messageLength < 4 || messageLength > kMostLength) break;
    Cursor body = TakeCursor(c, messageLength);
    const uint32_t message = TakeLittleU32(body).value;
    const char* name = LookupName(kSccpMessageNames, message, nullptr);
    if (i > 0) Add(text, ", ");
    if (name) {
      Add(text, name);
      DescribeBody(text, message, body);
    } else {
      Add(text, "Message 0x%.04X", message);
    }
  }
  constexpr int32_t kPrefix = 11;
  if (text.used <= kPrefix && text.used < text.size - 1) Add(text, "Data");
  return 1;
}

}  // namespace qxview
