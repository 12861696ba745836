#include "decoders/smb/smb.h"

#include "decoders/common/nt_status.h"
#include "decoders/smb/smb_block.h"

namespace qxview {
namespace {

constexpr uint32_t kMarker = 0xFF534D42, kNoCommand = 255, kResponseFlag = 0x80;
constexpr uint32_t kNtStatusFlag = 0x4000, kUnicodeFlag = 0x8000;
constexpr int32_t kFlags2Offset = 10;

// A row of flags: the texts hold their own blanks, which line the names up for reading. A null short form is a run of
// reserved bits.
struct FlagRow {
  uint8_t firstBit, bitCount;
  const char* shortForm;
  const char* text;
};

constexpr FlagRow kFlags[] = {
    {7, 1, "SD", " (SD) Supports Sub-Dialect = "},
    {6, 1, "GB", " (GB) Client Guarantees Receive Buffer = "},
    {5, 1, nullptr, "      Reserved (must be zero)"},
    {4, 1, "PC", " (PC) All Pathnames are Caseless = "},
    {3, 1, "CA", " (CA) All Paths Sent are Already Canonicalized = "},
    {2, 1, "OL", " (OL) Requesting File Be Opportunistically Locked  = "},
    {1, 1, "SN", " (SN) Server Notify Client = "},
    {0, 1, "SR", " (SR) Server Response to a Client Request = "},
};

constexpr FlagRow kFlags2[] = {
    {15, 1, "LC", " (LC) Server May Return Long Components in Path Names = "},
    {14, 1, "EA", " (EA) Client is Aware of Extended Attributes = "},
    {13, 1, "SS", " (SS) Client is Security Signature Enabled = "},
    {12, 1, "CP", " (CP) Compression = "},
    {10, 2, nullptr, " Reserved"},
    {9, 1, "LN", " (LN) Is a Long Name = "},
    {5, 4, nullptr, "      Reserved"},
    {4, 1, "ES", " (ES) Client is Aware of Extended Security = "},
    {3, 1, "DF", " (DF) Pathnames Should Resolve in the Distributed File System = "},
    {2, 1, "RP", " (RP) Read Permitted with Execute Permission = "},
    {1, 1, "32", " (32) 32 Bit Error Code = "},
    {0, 1, "UC", " (UC) STRING Data Type is Unicode = "},
};

LineHandle AddFlagLines(const Place& in, const Field& flags, const char* title, std::span<const FlagRow> rows) {
  const LineHandle line = AddLine(in, flags, "%s", title);
  const Place under = Under(in, line);
  const char* separator = ":";
  for (const FlagRow& row : rows) {
    const BitPicture bits = BitsOf(flags, row.firstBit, row.bitCount);
    if (!row.shortForm) {
      AddBitLine(under, flags, "%s:%s", bits.picture, row.text);
      continue;
    }
    const char* set = TrueOrFalse(bits.value);
    AppendToLine(in, line, "%s %s=%s", separator, row.shortForm, set);
    AddBitLine(under, flags, "%s:%s%s", bits.picture, row.text, set);
    separator = ",";
  }
  return line;
}

// The fields behind the status. The cursor ends behind the header.
void DecodeHeaderFields(const Place& in, Cursor& c, SmbMessage& message) {
  const Field flags = TakeU8(c);
  AddFlagLines(in, flags, "Flags", kFlags);
  message.isResponse = (flags.value & kResponseFlag) != 0;
  const Field flags2 = TakeLittleU16(c);
  const LineHandle flags2Line = AddFlagLines(in, flags2, "Flags2", kFlags2);
  message.isUnicode = (flags2.value & kUnicodeFlag) != 0;

  const Field pidHigh = TakeLittleU16(c);
  AppendToLine(in, flags2Line, ": PID High = %u ", pidHigh.value);
  AddLine(in, pidHigh, "PID High: %u ", pidHigh.value);
  const Field signature = TakeBytes(c, 8);
  AddLine(in, signature, "Security Signature: %s", HexText(signature));
  const Field pad = TakeBytes(c, 2);
  AddLine(in, pad, "Pad: %s", HexText(pad));
  const Field tid = TakeLittleU16(c);
  AddLine(in, tid, "TID: %u ", tid.value);
  const Field pid = TakeLittleU16(c);
  AddLine(in, pid, "PID: %u ", pid.value);
  const Field uid = TakeLittleU16(c);
  AddLine(in, uid, "UID: %u ", uid.value);
  const Field mid = TakeLittleU16(c);
  AddLine(in, mid, "MID: %u ", mid.value);
  message.tid = tid.value;
  message.pid = pidHigh.value << 16 | pid.value;
  message.uid = uid.value;
  message.mid = mid.value;
}

// The header of a message that has all of it. Result: the root line.
LineHandle DecodeHeader(const Place& at, Cursor& c, SmbMessage& message) {
  const LineHandle root = AddLine(at, Ahead(c, kSmbHeaderSize), "CIFS");
  const Place under = Under(at, root);
  const LineHandle group = AddLine(under, Ahead(c, kSmbHeaderSize), "SMB Header");
  const Place in = Under(under, group);
  const bool hasNtStatus = (ReadLittleU16(c.at + kFlags2Offset) & kNtStatusFlag) != 0;

  const Field marker = TakeBytes(c, 4);
  AddLine(in, marker, "CIFS Protocol Marker: %s = SMB", Text(marker));
  const Field command = TakeU8(c);
  const char* name = SmbCommandName(command.value);
  AddLine(in, command, "Command: [%u] = %s", command.value, name);
  SetLine(under, group, "SMB Header: Command [%u] = %s", command.value, name);
  message.command = command.value;
  message.status = ReadLittleU32(c.at);
  if (hasNtStatus) {
    DecodeSmbNtStatus(in, c);
  } else {
    DecodeSmbDosError(in, c);
  }
  DecodeHeaderFields(in, c, message);
  SetLine(at, root, "CIFS: %s - %s   (TID=0x%.04X, PID=0x%.04X:0x%.04X, UID=0x%.04X, MID=0x%.04X)",
          message.isResponse ? "Server Response" : "Client Request", name, message.tid, message.pid >> 16,
          message.pid & 0xFFFF, message.uid, message.mid);
  return root;
}

// What an AndX group says of the block that follows.
struct NextBlock {
  uint32_t command = kNoCommand;
  uint32_t offset = 0;   // from the header's first byte
};

NextBlock TakeAndX(const Place& in, Cursor& words) {
  const Place under = Under(in, AddLine(in, Ahead(words, 4), "AndX"));
  const Field command = TakeU8(words);
  const SmbCommand* known = FindSmbCommand(command.value);
  const char* name = known ? known->name : "Undefined Command";
  AppendToParent(under, command, ": %s", name);
  AddLine(under, command, "And X Command: Next Command in Chain [%u] = %s", command.value, name);
  const Field reserved = TakeU8(words);
  AddLine(under, reserved, "And X Reserved: %u", reserved.value);
  const Field offset = TakeLittleU16(words);
  AddLine(under, offset, "And X Offset: %u", offset.value);
  return {command.value, offset.value};
}

// One block of a command, known or not. The cursor ends behind its bytes.
int32_t DecodeBlock(const Place& under, Cursor& c, uint32_t code, SmbBlock& block, NextBlock& next) {
  const SmbMessage& message = *block.message;
  const SmbCommand* command = block.command = FindSmbCommand(code);
  block.line = AddLine(under, Ahead(c, 0), "SMB - %s", SmbCommandName(code));
  block.in = Under(under, block.line);

  const Field wordCount = TakeU8(c);
  AddLine(block.in, wordCount, "Word Count: %u", wordCount.value);
  block.wordCount = wordCount.value;
  if (static_cast<int64_t>(wordCount.value) * 2 > Left(c)) return kSmbTruncated;
  block.words = TakeCursor(c, static_cast<int64_t>(wordCount.value) * 2);
  block.allWords = Ahead(block.words, block.words.left);
  const bool isAndX = command && command->isAndX;
  if (isAndX && wordCount.value >= 2) next = TakeAndX(block.in, block.words);
  const bool hasWords = command && !(isAndX && wordCount.value < 2);
  const SmbPart words = !hasWords ? nullptr : message.isResponse ? command->responseWords : command->requestWords;
  if (words) words(block);
  block.words.ranShort = false;   // what no field had room for is here all the same
  AddBlock(block.in, Rest(block.words), "Word Data");

  const Field byteCount = TakeLittleU16(c);
  AddLine(block.in, byteCount, "Byte Count: %u ", byteCount.value);
  block.byteCount = byteCount.value;
  block.data = TakeCursor(c, byteCount.value);
  const SmbPart data = !command ? nullptr : message.isResponse ? command->responseData : command->requestData;
  if (data) data(block);
  block.data.ranShort = false;
  AddBlock(block.in, Rest(block.data), "Byte Data");
  if (block.data.offset > c.offset) TakeBytes(c, block.data.offset - c.offset);
  return kSmbDecoded;
}

// The blocks of a chain, each at an offset beyond the one before it. Blocks may overlap; a chain that would read its
// message more than twice over ends.
int32_t DecodeBlocks(const SmbMessage& message, const Place& under, Cursor c) {
  uint32_t code = message.command;
  int64_t room = 2 * static_cast<int64_t>(message.whole.left);
  for (;;) {
    NextBlock next;
    SmbBlock block{&message, nullptr, under, 0, 0, {}, 0, {}, {}};
    const int32_t begin = c.offset;
    const uint32_t start = static_cast<uint32_t>(SmbOffset(message, c));
    const int32_t status = DecodeBlock(under, c, code, block, next);
    SetRange(under, block.line, begin, c.offset - begin);
    if (status != kSmbDecoded) return status;
    const bool goesOn = next.command != kNoCommand && next.offset > start && room > 0 &&
                        next.offset < static_cast<uint32_t>(message.whole.left) && !PacketOf(under).limitReached;
    if (goesOn) {
      AddSmbPadTo(message, block.in, c, next.offset);
    } else {
      AddBlock(block.in, Rest(c), "Buffer");
    }
    SetRange(under, block.line, begin, c.offset - begin);
    room -= c.offset - begin;
    if (!goesOn) return kSmbDecoded;
    code = next.command;
    c = SmbCursor(message, next.offset, UINT32_MAX);
  }
}

}  // namespace

void DecodeSmbNtStatus(const Place& in, Cursor& c) {
  const Field status = TakeLittleU32(c);
  const char* name = NtStatusName(status.value);
  AddLine(in, status, "NT Status: [0x%.08X] = %s", status.value, name ? name : kUndefined);
}

void DecodeSmbDosError(const Place& in, Cursor& c) {
  const Field errorClass = TakeU8(c);
  AddLine(in, errorClass, "Error Class: [%u] = %s", errorClass.value, SmbDosClassName(errorClass.value));
  const Field reserved = TakeU8(c);
  AddLine(in, reserved, "Reserved: %u", reserved.value);
  const Field code = TakeLittleU16(c);
  AddLine(in, code, "Error Code: [%u] = %s", code.value, SmbDosErrorName(errorClass.value, code.value));
}

int32_t DecodeSmbContinuation(const Place& at, const Cursor& c) {
  const LineHandle root = AddLine(at, Ahead(c, Left(c)), "CIFS: Continuation Data, %u bytes", Left(c));
  AddBlock(Under(at, root), Ahead(c, Left(c)), "SMB Continuation Data");
  return kSmbDecoded;
}

int32_t DecodeSmb(const Place& at, const uint8_t* data, int32_t length, int32_t frameOffset, bool continuationAllowed) {
  if (length <= kSmbHeaderSize) return kSmbTruncated;
  Cursor c = MakeCursor(data, frameOffset, length);
  if (ReadU32(data) != kMarker) return continuationAllowed ? DecodeSmbContinuation(at, c) : kSmbNotDecoded;
  SmbMessage message{c, 0, 0, 0, 0, 0, 0, false, false};
  const LineHandle root = DecodeHeader(at, c, message);
  return DecodeBlocks(message, Under(at, root), c);
}

int32_t DecodeSmbDatagram(const Place& at, Cursor c) {
  if (Left(c) <= kSmbHeaderSize) return kSmbNotDecoded;
  return DecodeSmb(at, c.at, Left(c), c.offset, false);
}

int32_t DecodeSmbPiece(const Place& at, Cursor c) {
  if (Left(c) <= kSmbHeaderSize) return DecodeSmbContinuation(at, c);
  return DecodeSmb(at, c.at, Left(c), c.offset, true);
}

Field SmbRange(const SmbMessage& message, uint32_t offset, uint32_t length) {
  const uint32_t whole = static_cast<uint32_t>(message.whole.left);
  if (offset > whole || length > whole - offset) return {nullptr, message.whole.begin, 0, 0, false};
  return Slice(Ahead(message.whole, message.whole.left), static_cast<int32_t>(offset), static_cast<int32_t>(length));
}

Cursor SmbCursor(const SmbMessage& message, uint32_t offset, uint32_t length) {
  const uint32_t whole = static_cast<uint32_t>(message.whole.left);
  if (offset > whole) offset = whole;
  if (length > whole - offset) length = whole - offset;
  return CursorOver(SmbRange(message, offset, length));
}

}  // namespace qxview
