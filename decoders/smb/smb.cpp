#include "decoders/smb/smb.h"

#include "core/line_facts.h"
#include "decoders/common/nt_status.h"
#include "decoders/smb/smb_block.h"

namespace qxview {
namespace {

constexpr uint32_t kMarker = 0xFF534D42, kNoCommand = 255, kResponseFlag = 0x80;
constexpr uint32_t kNtStatusFlag = 0x4000, kUnicodeFlag = 0x8000;
constexpr int32_t kCommandOffset = 4, kStatusOffset = 5, kFlags2Offset = 10;

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

struct Header {
  Field errorClass, flags, flags2, pidHigh, tid, pid, uid, mid;
  LineHandle flags2Line;
};

LineHandle AddFlagLines(const Place& in, const Field& flags, const char* title, std::span<const FlagRow> rows) {
  const LineHandle line = AddSmbTitle(in, flags, title);
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

void ShowFlags(const Place& in, Cursor& c, const char* title, Header& header) {
  header.flags = TakeU8(c);
  AddFlagLines(in, header.flags, title, kFlags);
}
void ShowFlags2(const Place& in, Cursor& c, const char* title, Header& header) {
  header.flags2 = TakeLittleU16(c);
  header.flags2Line = AddFlagLines(in, header.flags2, title, kFlags2);
}

const char* StatusName(uint32_t status) {
  const char* name = NtStatusName(status);
  return name ? name : kUndefined;
}
void ShowErrorCode(const Place& in, Cursor& c, const char* label, Header& header) {
  const Field code = TakeLittleU16(c);
  AddLine(in, code, "%s: [%u] = %s", label, code.value, SmbDosErrorName(header.errorClass.value, code.value));
}

constexpr auto kCommand = LittleRows<Header>({
    Text(4, "CIFS Protocol Marker").Told("CIFS Protocol Marker: %s = SMB"), Coded(1, "Command", SmbCommandName)});
// The two forms of the status.
constexpr auto kNtStatus = LittleRows<Header>({Number(4, "NT Status", StatusName).Told("NT Status: [0x%.08X] = %s")});
constexpr auto kDosError = LittleRows<Header>({
    Coded(1, "Error Class", SmbDosClassName).Into(&Header::errorClass), Number(1, "Reserved"),
    Shown("Error Code", ShowErrorCode)});
// Numbers are shown with a blank behind them.
constexpr auto kNumbers = LittleRows<Header>({
    Shown("Flags", ShowFlags), Shown("Flags2", ShowFlags2), Number(2, "PID High", " ").Into(&Header::pidHigh),
    Bytes(8, "Security Signature"), Bytes(2, "Pad"), Number(2, "TID", " ").Into(&Header::tid),
    Number(2, "PID", " ").Into(&Header::pid), Number(2, "UID", " ").Into(&Header::uid),
    Number(2, "MID", " ").Into(&Header::mid)});

// The header of a message that has all of it. Result: the root line.
LineHandle DecodeHeader(const Place& at, Cursor& c, SmbMessage& message) {
  const LineHandle root = AddLine(at, Ahead(c, kSmbHeaderSize), "CIFS");
  const Place under = Under(at, root);
  message.command = PeekU8(c, kCommandOffset);
  message.status = PeekLittleU32(c, kStatusOffset);
  const bool hasNtStatus = (PeekLittleU16(c, kFlags2Offset) & kNtStatusFlag) != 0;
  const char* name = SmbCommandName(message.command);
  const LineHandle group = AddLine(under, Ahead(c, kSmbHeaderSize), "SMB Header");
  SetLine(under, group, "SMB Header: Command [%u] = %s", message.command, name);

  const Place in = Under(under, group);
  Header header{};
  ShowRows<Header>(in, c, kCommand, header);
  ShowRows<Header>(in, c, hasNtStatus ? RowSpan<Header>(kNtStatus) : kDosError, header);
  ShowRows<Header>(in, c, kNumbers, header);
  AppendToLine(in, header.flags2Line, ": PID High = %u ", header.pidHigh.value);
  message.isResponse = (header.flags.value & kResponseFlag) != 0;
  message.isUnicode = (header.flags2.value & kUnicodeFlag) != 0;
  message.tid = header.tid.value;
  message.pid = header.pidHigh.value << 16 | header.pid.value;
  message.uid = header.uid.value;
  message.mid = header.mid.value;
  SetLine(at, root, "CIFS: %s - %s   (TID=0x%.04X, PID=0x%.04X:0x%.04X, UID=0x%.04X, MID=0x%.04X)",
          message.isResponse ? "Server Response" : "Client Request", name, message.tid, message.pid >> 16,
          message.pid & 0xFFFF, message.uid, message.mid);
  return root;
}

// What an AndX group says of the block that follows: its command, and where it starts from the header's first byte.
struct NextBlock {
  Field command, offset;
};

const char* NameOfNext(uint32_t code) {
  const SmbCommand* known = FindSmbCommand(code);
  return known ? known->name : "Undefined Command";
}
constexpr auto kAndX = LittleRows<NextBlock>({
    Number(1, "And X Command", NameOfNext).Told("And X Command: Next Command in Chain [%u] = %s").Note(": %s")
        .Into(&NextBlock::command),
    Number(1, "And X Reserved"), Number(2, "And X Offset").Into(&NextBlock::offset)});

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
  block.allWords = block.words;
  const bool isAndX = command && command->isAndX;
  if (isAndX && wordCount.value >= 2) {
    next = ShowRows(Under(block.in, AddLine(block.in, Ahead(block.words, 4), "AndX")), block.words, kAndX);
  }
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
  int64_t room = kShowAgain * static_cast<int64_t>(message.whole.left);
  for (;;) {
    NextBlock next{};
    SmbBlock block{&message, nullptr, under, 0, 0, {}, 0, {}, {}};
    const int32_t begin = c.offset;
    const uint32_t start = static_cast<uint32_t>(SmbOffset(message, c));
    const int32_t status = DecodeBlock(under, c, code, block, next);
    SetRange(under, block.line, begin, c.offset - begin);
    if (status != kSmbDecoded) return status;
    const uint32_t offset = next.offset.value;
    const bool goesOn = next.command.value != kNoCommand && offset > start && room > 0 &&
                        offset < static_cast<uint32_t>(message.whole.left) && !PacketOf(under).limitReached;
    if (goesOn) {
      AddSmbPadTo(message, block.in, c, offset);
    } else {
      AddBlock(block.in, Rest(c), "Buffer");
    }
    SetRange(under, block.line, begin, c.offset - begin);
    room -= c.offset - begin;
    if (!goesOn) return kSmbDecoded;
    code = next.command.value;
    c = SmbCursor(message, offset, UINT32_MAX);
  }
}

}  // namespace

int32_t DecodeSmbContinuation(const Place& at, const Cursor& c) {
  const KeyedAs keys(PacketOf(at), "smb");
  const LineHandle root = AddLine(at, Ahead(c, Left(c)), "CIFS: Continuation Data, %u bytes", Left(c));
  AddBlock(Under(at, root), Ahead(c, Left(c)), "SMB Continuation Data");
  return kSmbDecoded;
}

int32_t DecodeSmb(const Place& at, Cursor c, bool continuationAllowed) {
  const KeyedAs keys(PacketOf(at), "smb");
  if (Left(c) <= kSmbHeaderSize) return kSmbTruncated;
  if (PeekU32(c) != kMarker) return continuationAllowed ? DecodeSmbContinuation(at, c) : kSmbNotDecoded;
  Cursor own = TakeCursor(c, Left(c));   // begins at the header's first byte
  SmbMessage message{own, 0, 0, 0, 0, 0, 0, false, false};
  const LineHandle root = DecodeHeader(at, own, message);
  return DecodeBlocks(message, Under(at, root), own);
}

int32_t DecodeSmbDatagram(const Place& at, Cursor c) {
  return Left(c) <= kSmbHeaderSize ? kSmbNotDecoded : DecodeSmb(at, c, false);
}

int32_t DecodeSmbPiece(const Place& at, Cursor c) {
  return Left(c) <= kSmbHeaderSize ? DecodeSmbContinuation(at, c) : DecodeSmb(at, c, true);
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
