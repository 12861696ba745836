// Telnet (RFC 854, 855): text in lines, and between its characters commands that begin with the octet 255, "interpret as
// command"; 255 twice is that octet itself. Options are negotiated by WILL, WON'T, DO and DON'T and settled by
// subnegotiations, which end in 255 240. How an option goes on is in telnet_options.cpp.
#include "decoders/app/telnet.h"

#include "decoders/common/header_lines.h"
#include "decoders/net/connection_key.h"
#include "decoders/states.h"

namespace qxview {
namespace {

constexpr auto kFurtherOptionNames = SortedNames({
    {69, "MSDP"}, {70, "MSSP"}, {85, "COMPRESS"}, {86, "COMPRESS2"}, {87, "COMPRESS3"}, {90, "MSP"}, {91, "MXP"},
    {93, "ZMP"}, {102, "Aardwolf"}, {200, "ATCP"}, {201, "GMCP"}});

const char* CommandName(uint32_t command) { return LookupName(kTelnetCommandNames, command); }

constexpr auto kCommand = Rows<Telnet>({
    Hex(1, "Interpret as Command"), Number(1, "Command", CommandName).Into(&Telnet::command)});
constexpr auto kOption = Rows<Telnet>({Number(1, "Option", TelnetOptionName).Into(&Telnet::option)});

// How far ahead the next command stands, behind octets that are doubled; the end where there is none.
int32_t FindCommand(const Cursor& c, int32_t* escapes) {
  for (int32_t at = 0; (at = FindU8(c, kTelnetIac, at)) >= 0; at += 2) {
    if (PeekU8(c, at + 1) != kTelnetIac) return at;
    ++*escapes;
  }
  return Left(c);
}

// The bytes without the first of two that are doubled. Where there is no room they stay as they are.
Cursor Unescaped(const Place& in, const Cursor& c, int32_t escapes) {
  const int32_t size = Left(c);
  if (c.offset >= kFirstRegionOffset) return c;
  uint8_t* const bytes = TakeFrameMemory(in.view, size);
  const int64_t room = (escapes + 1) * static_cast<int64_t>(sizeof(BytePiece));
  auto* pieces = reinterpret_cast<BytePiece*>(TakeFrameMemory(in.view, room));
  if (!bytes || !pieces) return c;
  const int64_t packet = in.view->context->packetNumber;
  int32_t used = 0, count = 0;
  for (int32_t from = 0; from < size;) {
    const int32_t found = FindU8(c, kTelnetIac, from);
    const int32_t end = found < 0 || found == size - 1 ? size : found + 1;
    if (count > escapes) return c;
    std::memcpy(bytes + used, PeekBytes(c, from, end - from).bytes, static_cast<size_t>(end - from));
    pieces[count++] = {packet, c.offset + from, end - from};
    used += end - from;
    from = end + (end < size);
  }
  return JoinedBytes(in.view, bytes, used, pieces, count, c.offset);
}

// Where a line ends, with what ends it: CR LF, LF, or CR NUL, which is a carriage return alone.
int32_t LengthOfLine(const Cursor& c) {
  for (int32_t at = 0; at < Left(c); ++at) {
    const uint32_t character = PeekU8(c, at);
    if (character == '\n' || (character == 0 && at > 0 && PeekU8(c, at - 1) == '\r')) return at + 1;
  }
  return Left(c);
}

void ShowData(const Place& in, Cursor c) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Field whole = TakeBytes(c, LengthOfLine(c));
    int32_t length = whole.length;
    while (length > 0 && (PeekU8(whole, length - 1) == '\n' || PeekU8(whole, length - 1) == '\r' ||
                          PeekU8(whole, length - 1) == 0)) {
      --length;
    }
    AddTextLine(in, whole, "Data", Slice(whole, 0, length));
  }
}

void TakeData(const Place& in, Cursor& c) {
  int32_t escapes = 0;
  const int32_t length = FindCommand(c, &escapes);
  if (length == 0) return;
  const Cursor text = TakeCursor(c, length);
  ShowData(in, escapes > 0 ? Unescaped(in, text, escapes) : text);
}

// From the command on; what is settled ends in front of the next command, which should be the end.
void ShowSubnegotiation(const Place& at, Cursor& c, TelnetMode& mode) {
  const uint32_t option = PeekU8(c, 2);
  Cursor ahead = c;
  TakeBytes(ahead, 3);
  int32_t escapes = 0;
  const int32_t size = Left(ahead) > 0 ? FindCommand(ahead, &escapes) : 0;
  const int32_t head = Left(c) < 3 ? Left(c) : 3;
  const Place in = Under(at, AddLine(at, Ahead(c, head + size), "Subnegotiation: %s", TelnetOptionName(option)));
  Telnet telnet = ShowRows(in, c, kCommand);
  ShowRows<Telnet>(in, c, kOption, telnet);
  if (!telnet.option.here) return;
  Cursor body = TakeCursor(c, size);
  if (escapes > 0) body = Unescaped(in, body, escapes);
  ShowTelnetSubnegotiation(in, body, telnet);
  if (telnet.isEncrypted) mode.isEncrypted = 1;
  if (telnet.isCompressed && PeekU8(c, 1) == kTelnetSubnegotiationEnd) mode.isCompressed = 1;
}

void ShowCommand(const Place& at, Cursor& c, TelnetMode& mode) {
  const uint32_t command = PeekU8(c, 1);
  if (command == kTelnetSubnegotiation) return ShowSubnegotiation(at, c, mode);
  const bool hasOption = command >= kFirstTelnetCommandWithOption && command <= kLastTelnetCommandWithOption;
  const int32_t most = hasOption ? 3 : 2, size = Left(c) < most ? Left(c) : most;
  const Place in = Under(at, hasOption ? AddLine(at, Ahead(c, size), "Command: %s %s", CommandName(command),
                                                 TelnetOptionName(PeekU8(c, 2)))
                                       : AddLine(at, Ahead(c, size), "Command: %s", CommandName(command)));
  Telnet telnet = ShowRows(in, c, kCommand);
  if (hasOption) ShowRows<Telnet>(in, c, kOption, telnet);
  c.ranShort = false;   // a command that is cut
}

LineHandle AddTopLine(const Place& at, const Cursor& c) {
  const Field whole = Ahead(c, Left(c));
  const uint32_t command = PeekU8(c, 1);
  if (PeekU8(c) != kTelnetIac || command == kTelnetIac) {
    const Cursor line = MakeCursor(c.at, c.offset, LengthOfLine(c));
    int32_t escapes = 0;
    Field text = Trimmed(Ahead(line, FindCommand(line, &escapes)));
    while (text.length > 0 && IsSpace(PeekU8(text, text.length - 1))) text = Slice(text, 0, text.length - 1);
    return text.length > 0 ? AddTextLine(at, whole, "Telnet", text) : AddLine(at, whole, "Telnet: Empty Line");
  }
  return command >= kFirstTelnetCommandWithOption && command <= kLastTelnetCommandWithOption
             ? AddLine(at, whole, "Telnet: %s %s", CommandName(command), TelnetOptionName(PeekU8(c, 2)))
             : AddLine(at, whole, "Telnet: %s", CommandName(command));
}

// What the direction had gone over to before this packet.
TelnetMode ModeBefore(const Place& at, const ConnectionKey& key) {
  const TelnetMode* kept = Recall(at.view, kTelnetModes, key);
  const bool isOfEarlier = kept && kept->packet < at.view->context->packetNumber;
  return isOfEarlier ? *kept : TelnetMode{at.view->context->packetNumber, 0, 0};
}

}  // namespace

const char* TelnetOptionName(uint32_t option) {
  return LookupName(kTelnetOptionNames, option, LookupName(kFurtherOptionNames, option));
}

int32_t DecodeTelnet(const Place& at, Cursor c) {
  if (Left(c) < 1) return 0;
  const ConnectionKey key = DirectionOf(PacketOf(at));
  TelnetMode mode = ModeBefore(at, key);
  const bool wasSealed = mode.isCompressed || mode.isEncrypted;
  const Place in = Under(at, wasSealed ? AddLine(at, Ahead(c, Left(c)), "Telnet: %s Data",
                                                 mode.isCompressed ? "Compressed" : "Encrypted")
                                       : AddTopLine(at, c));
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (!wasSealed) TakeData(in, c);
    if (!wasSealed && Left(c) > 0) ShowCommand(in, c, mode);
    // The command that ends the last subnegotiation is still in the clear.
    const bool isSealed = mode.isCompressed || mode.isEncrypted;
    if (isSealed && !wasSealed && PeekU8(c, 1) == kTelnetSubnegotiationEnd) ShowCommand(in, c, mode);
    if (mode.isCompressed) AddBlock(in, Rest(c), "Compressed Data");
    if (mode.isEncrypted) AddBlock(in, Rest(c), "Encrypted Data");
  }
  if (!wasSealed && (mode.isCompressed || mode.isEncrypted) && !PacketOf(at).quoted) {
    mode.packet = at.view->context->packetNumber;
    Remember(at.view, kTelnetModes, key, mode);
  }
  return 1;
}

}  // namespace qxview
