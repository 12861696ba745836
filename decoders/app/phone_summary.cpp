// The packet list's text for two protocols between desk phones and their exchange: UNIStim and Minet.
//
//   UNIStim:  sequence (4)   type (1: 0 NAK, 1 ACK, 2 payload)   payload kind (1)   [terminal identifier (4)]
//             commands, each: manager (1)   length (1, of the whole command)   command (1)   operands
//   Minet:    message (2)   body
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

constexpr uint32_t kFromPhone = 0x80;   // in a manager's number

constexpr auto kManagerNames = SortedNames({
    {0x11, "Broadcast"}, {0x16, "Audio"}, {0x17, "Display"}, {0x19, "Key"}, {0x1A, "Basic"}, {0x1E, "Network"},
});

constexpr uint32_t CommandKey(uint32_t manager, uint32_t command) { return manager << 8 | command; }

// What tells the course of a call; other commands are shown by their number.
constexpr auto kCommandNames = SortedNames({
    {CommandKey(0x11, 0x02), "Time and Date"}, {CommandKey(0x16, 0x30), "Open Audio Stream"},
    {CommandKey(0x16, 0x31), "Close Audio Stream"}, {CommandKey(0x16, 0x32), "Connect Transducer"},
    {CommandKey(0x19, 0x00), "LED Update"}, {CommandKey(0x1E, 0x02), "Soft Reset"},
    {CommandKey(0x1E, 0x03), "Hard Reset"}, {CommandKey(0x1E, 0x0C), "Server Switch"},
    {CommandKey(0x1E, 0x12), "Reset Watchdog"},
    {CommandKey(0x96, 0x00), "Handset Connected"}, {CommandKey(0x96, 0x01), "Handset Disconnected"},
    {CommandKey(0x96, 0x02), "Headset Connected"}, {CommandKey(0x96, 0x03), "Headset Disconnected"},
    {CommandKey(0x99, 0x00), "Key Event"}, {CommandKey(0x99, 0x03), "On Hook"}, {CommandKey(0x99, 0x04), "Off Hook"},
    {CommandKey(0x9A, 0x02), "Firmware Version"}, {CommandKey(0x9A, 0x07), "Hardware ID"},
    {CommandKey(0x9E, 0x00), "Soft Reset Ack"}, {CommandKey(0x9E, 0x01), "Sanity OK"},
    {CommandKey(0x9E, 0x08), "Resume Connection"}, {CommandKey(0x9E, 0x09), "Suspend Connection"},
});

void DescribeCommands(SummaryText& text, Cursor c) {
  constexpr int32_t kMostCommands = 6, kLeast = 3;
  for (int32_t i = 0; i < kMostCommands && Left(c) >= kLeast; ++i) {
    const uint32_t manager = TakeU8(c).value;
    const uint32_t length = TakeU8(c).value;
    const char* managerName = LookupName(kManagerNames, manager & ~kFromPhone, nullptr);
    if (!managerName || length < kLeast) return;
    Cursor body = TakeCursor(c, static_cast<int32_t>(length) - 2);
    const uint32_t command = TakeU8(body).value;
    Add(text, ", %s %s: ", manager & kFromPhone ? "Phone" : "Switch", managerName);
    if (const char* name = LookupName(kCommandNames, CommandKey(manager, command), nullptr)) {
      Add(text, name);
    } else {
      Add(text, "Command 0x%.02X", command);
    }
  }
}

void DescribePayload(SummaryText& text, Cursor c) {
  enum Kind : uint32_t { kNull = 0, kCommands = 1, kCommandsWithTerminal = 2, kFileTransfer = 3 };
  const Field kind = TakeU8(c);
  if (!kind.here) return;
  switch (kind.value) {
    case kNull: return Add(text, ", Null");
    case kCommandsWithTerminal: {
      const Field terminal = TakeBytes(c, 4);
      if (terminal.here) Add(text, ", Terminal: %s", IPv4Text(terminal.bytes));
      return DescribeCommands(text, c);
    }
    case kCommands: return DescribeCommands(text, c);
    case kFileTransfer: return Add(text, ", File Transfer");
    default: return Add(text, ", Free Form");
  }
}

}  // namespace

int32_t DescribeUnistim(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  enum Type : uint32_t { kNak = 0, kAck = 1, kPayload = 2 };
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "Nortel UNIStim ");
  Cursor c = MakeCursor(data, 0, length);
  const Field sequence = TakeU32(c), type = TakeU8(c);
  if (!type.here || type.value > kPayload) return Add(text, "Data"), 1;
  Add(text, "%s, Sequence: %u", type.value == kNak ? "NAK" : type.value == kAck ? "ACK" : "Payload", sequence.value);
  if (type.value == kPayload) DescribePayload(text, c);
  return 1;
}

int32_t DescribeMinet(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t flag) {
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "Minet ");
  if (length < 2) return Add(text, "Data"), 1;
  Add(text, "Message 0x%.04X", PeekU16(MakeCursor(data, 0, length)));
  if (flag) Add(text, ", %d bytes", length);
  return 1;
}

}  // namespace qxview
