// UNIStim, between desk phones and their exchange. There is no public standard: the frame, who a command is for and the
// commands that are known by name are told, operands are data.
//
//   sequence (4)   type (1: 0 NAK, 1 ACK, 2 payload)   payload kind (1)   [terminal identifier (4)]
//   commands, each: manager (1)   length (1, of the whole command)   command (1)   operands
#include "core/rows.h"

namespace qxview {
namespace {

constexpr auto kTypeNames = SortedNames({{0, "NAK"}, {1, "ACK"}, {2, "Payload"}});
constexpr auto kKindNames = SortedNames({
    {0, "Null"}, {1, "Commands"}, {2, "Commands with Terminal"}, {3, "File Transfer"}, {255, "Free Form"}});
constexpr auto kManagerNames = SortedNames({
    {0x11, "Broadcast, from the Switch"}, {0x16, "Audio, from the Switch"}, {0x17, "Display, from the Switch"},
    {0x19, "Key, from the Switch"}, {0x1A, "Basic, from the Switch"}, {0x1E, "Network, from the Switch"},
    {0x91, "Broadcast, from the Phone"}, {0x96, "Audio, from the Phone"}, {0x97, "Display, from the Phone"},
    {0x99, "Key, from the Phone"}, {0x9A, "Basic, from the Phone"}, {0x9E, "Network, from the Phone"}});

constexpr auto kHead = Rows<NoValues>({Number(4, "Sequence"), Number(1, "Packet Type", kTypeNames)});
constexpr auto kKind = Rows<NoValues>({Number(1, "Payload Kind", kKindNames)});
constexpr auto kTerminal = Rows<NoValues>({Hex(4, "Terminal Identifier")});
constexpr auto kCommand = Rows<NoValues>({
    Hex(1, "Manager", kManagerNames), Number(1, "Length"), Hex(1, "Command")});

}  // namespace

int32_t DecodeUnistim(const Place& at, Cursor c) {
  constexpr uint32_t kPayload = 2, kCommands = 1, kWithTerminal = 2;
  if (Left(c) < 5 || PeekU8(c, 4) > kPayload) return 0;
  NoValues none;
  const uint32_t type = PeekU8(c, 4), kind = PeekU8(c, 5);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "UNIStim: %s, Sequence: %u", LookupName(kTypeNames, type), PeekU32(c)));
  ShowRows<NoValues>(in, c, kHead, none);
  if (type == kPayload && Left(c) > 0) {
    ShowRows<NoValues>(in, c, kKind, none);
    if (kind == kWithTerminal) ShowRows<NoValues>(in, c, kTerminal, none);
    Loop loop;
    while ((kind == kCommands || kind == kWithTerminal) && Left(c) >= 3 && PeekU8(c, 1) >= 3 && MoreAt(in, c, loop)) {
      const char* manager = LookupName(kManagerNames, PeekU8(c));
      Cursor command = TakeCursor(c, PeekU8(c, 1));
      const Place under = Under(in, AddLine(in, Ahead(command, Left(command)), "Command: %s, 0x%.02X", manager, PeekU8(command, 2)));
      ShowRows<NoValues>(under, command, kCommand, none);
      AddBlock(under, Rest(command), "Operands");
    }
  }
  AddBlock(in, Rest(c), "UNIStim Data");
  return 1;
}

}  // namespace qxview
