// What searches reply: a list of entries, one a file, in the form of the level that was asked for.
//
//   levels below 0x100   [resume key]   dates, sizes, attributes   name length (1)   name
//   levels above         how far on the next entry starts (4)   file index   times, sizes, attributes   name
#include "decoders/smb/smb_info_levels.h"

namespace qxview {
namespace {

// --- levels below 0x100 ---

constexpr auto kResumeKey = LittleRows<Smb>({Number(4, "Resume Key")});
constexpr auto kDated = LittleRows<Smb>({
    SmbDateTime("Creation Date and Time"), SmbDateTime("Last Access Date and Time"),
    SmbDateTime("Last Write Date and Time"), Number(4, "File Data Size"), Number(4, "Allocation Size"),
    Flags(2, "Attributes", kSmbAttributeBits)});
constexpr auto kDatedSize = LittleRows<Smb>({SmbTable<kDated>(), Number(4, "EA Size")});
constexpr auto kDatedEas = LittleRows<Smb>({SmbTable<kDated>(), SmbTable<kSmbEaList>()});
constexpr auto kNameLength = LittleRows<Smb>({Number(1, "File Name Length").Into(&Smb::length)});

// A name whose length is one byte, not counting its terminator. In two-byte characters it starts at an even place; at
// the levels with extended attributes servers put it right behind its length, and one byte ends it.
void AddDatedName(const SmbMessage& message, const Place& in, Cursor& c, bool isAligned) {
  const Field length = ShowSmbRows(message, in, c, kNameLength).length;
  if (!length.here) return;
  if (isAligned) AddSmbPad(message, in, c, 2);
  NameSmbEntry(in, AddSmbCounted(message, in, c, length.value, "File Name"));
  const int32_t terminator = isAligned ? 2 : 1;
  if (Left(c) >= terminator && PeekU8(c) == 0 && PeekU8(c, terminator - 1) == 0) AddSmbBytes(in, c, terminator, "Pad");
}

template <const auto& kTable, bool kIsAligned>
void ShowDatedEntries(const Place& at, Cursor& c, const char* title, Smb& values) {
  const SmbMessage& message = *values.message;
  for (Loop loop; MoreAt(at, c, loop) && Left(c) > 22;) {
    const LineHandle line = AddSmbTitle(at, Ahead(c, 0), title);
    const Place in = Under(at, line);
    const int32_t start = c.offset;
    if (values.flags.value & kSmbFindResumeKeys) ShowSmbRows(message, in, c, kResumeKey);
    ShowSmbRows(message, in, c, kTable);
    AddDatedName(message, in, c, kIsAligned && message.isUnicode);
    SetRange(at, line, start, c.offset - start);
  }
}

constexpr auto kStandardList = LittleRows<Smb>({Shown("Entry", ShowDatedEntries<kDated, true>)});
constexpr auto kSizeList = LittleRows<Smb>({Shown("Entry", ShowDatedEntries<kDatedSize, false>)});
constexpr auto kEasList = LittleRows<Smb>({Shown("Entry", ShowDatedEntries<kDatedEas, false>)});

// --- levels above ---

void ShowName(const Place& in, Cursor& c, const char* label, Smb& values) {
  if (values.length.here) NameSmbEntry(in, AddSmbCounted(*values.message, in, c, values.length.value, label));
}
void ShowTerminatedName(const Place& in, Cursor& c, const char* label, Smb& values) {
  NameSmbEntry(in, AddSmbString(*values.message, in, c, label));
}
void ShowShortName(const Place& in, Cursor& c, const char* label, Smb& values) {
  constexpr int32_t kShortNameSize = 24;
  if (Left(c) > 0) AddSmbCounted(*values.message, in, c, kShortNameSize, label, SmbCharacters::kUnicode);
}

constexpr auto kTimed = LittleRows<Smb>({
    Number(4, "Next Entry Offset"), Number(4, "File Index"), FileTime("Creation Time"), FileTime("Last Access Time"),
    FileTime("Last Write Time"), FileTime("Change Time"), Number(8, "End of File"), Number(8, "Allocation Size"),
    Flags(4, "File Attributes", kSmbAttributeBits), SmbLength("File Name Length")});
constexpr auto kDirectory = LittleRows<Smb>({SmbTable<kTimed>(), Shown("File Name", ShowName)});
constexpr auto kFullDirectory = LittleRows<Smb>({
    SmbTable<kTimed>(), Number(4, "EA Size"), Shown("File Name", ShowName)});
constexpr auto kNames = LittleRows<Smb>({
    Number(4, "Next Entry Offset"), Number(4, "File Index"), SmbLength("File Name Length"),
    Shown("File Name", ShowName)});
constexpr auto kBothDirectory = LittleRows<Smb>({
    SmbTable<kTimed>(), Number(4, "EA Size"), Number(1, "Short Name Length"), Number(1, "Reserved"),
    Shown("Short Name", ShowShortName), Shown("File Name", ShowName)});
constexpr auto kIdFullDirectory = LittleRows<Smb>({
    SmbTable<kTimed>(), Number(4, "EA Size"), Bytes(4, "Reserved"), Hex(8, "File ID"), Shown("File Name", ShowName)});
constexpr auto kIdBothDirectory = LittleRows<Smb>({
    SmbTable<kTimed>(), Number(4, "EA Size"), Number(1, "Short Name Length"), Number(1, "Reserved"),
    Shown("Short Name", ShowShortName), Bytes(2, "Reserved"), Hex(8, "File ID"), Shown("File Name", ShowName)});
constexpr auto kUnix = LittleRows<Smb>({
    Number(4, "Next Entry Offset"), Number(4, "Resume Key"), Shown(nullptr, ShowSmbUnixBasic),
    Shown("File Name", ShowTerminatedName)});
constexpr auto kUnixInfo2 = LittleRows<Smb>({
    Number(4, "Next Entry Offset"), Number(4, "Resume Key"), Shown(nullptr, ShowSmbUnixInfo2),
    SmbLength("File Name Length"), Shown("File Name", ShowName)});

// With the least that an entry takes, name aside.
constexpr auto kDirectoryList = LittleRows<Smb>({SmbEntries<kDirectory, 64>("Entry")});
constexpr auto kFullDirectoryList = LittleRows<Smb>({SmbEntries<kFullDirectory, 68>("Entry")});
constexpr auto kNamesList = LittleRows<Smb>({SmbEntries<kNames, 12>("Entry")});
constexpr auto kBothDirectoryList = LittleRows<Smb>({SmbEntries<kBothDirectory, 94>("Entry")});
constexpr auto kIdFullDirectoryList = LittleRows<Smb>({SmbEntries<kIdFullDirectory, 80>("Entry")});
constexpr auto kIdBothDirectoryList = LittleRows<Smb>({SmbEntries<kIdBothDirectory, 104>("Entry")});
constexpr auto kUnixList = LittleRows<Smb>({SmbEntries<kUnix, 108>("Entry")});
constexpr auto kUnixInfo2List = LittleRows<Smb>({SmbEntries<kUnixInfo2, 128>("Entry")});

constexpr auto kLevels = Choices<Smb>({
    {0x001, "Info Standard", kStandardList},
    {0x002, "Info Query EA Size", kSizeList},
    {0x003, "Info Query EAs From List", kEasList},
    {0x101, "Find File Directory Info", kDirectoryList},
    {0x102, "Find File Full Directory Info", kFullDirectoryList},
    {0x103, "Find File Names Info", kNamesList},
    {0x104, "Find File Both Directory Info", kBothDirectoryList},
    {0x105, "Find File ID Full Directory Info", kIdFullDirectoryList},
    {0x106, "Find File ID Both Directory Info", kIdBothDirectoryList},
    {0x202, "Find File UNIX", kUnixList},
    {0x20B, "Find File UNIX Info 2", kUnixInfo2List}});

}  // namespace

const SmbChoices kSmbFindLevels = kLevels;

}  // namespace qxview
