// What searches reply: a list of entries, one a file, in the form of the level that was asked for.
//
//   levels below 0x100   [resume key]   dates, sizes, attributes   name length (1)   name
//   levels above         how far on the next entry starts (4)   file index   times, sizes, attributes   name
#include "decoders/smb/smb_info_levels.h"

namespace qxview {
namespace {

enum FindLevel : uint32_t {
  kStandard = 1, kEaSize = 2, kEasFromList = 3,
  kDirectory = 0x101, kFullDirectory, kNames, kBothDirectory, kIdFullDirectory, kIdBothDirectory,
  kUnix = 0x202, kUnixInfo2 = 0x20B,
};

constexpr auto kFindLevelNames = SortedNames({
    {kStandard, "Info Standard"}, {kEaSize, "Info Query EA Size"}, {kEasFromList, "Info Query EAs From List"},
    {kDirectory, "Find File Directory Info"}, {kFullDirectory, "Find File Full Directory Info"},
    {kNames, "Find File Names Info"}, {kBothDirectory, "Find File Both Directory Info"},
    {kIdFullDirectory, "Find File ID Full Directory Info"}, {kIdBothDirectory, "Find File ID Both Directory Info"},
    {kUnix, "Find File UNIX"}, {kUnixInfo2, "Find File UNIX Info 2"}});

constexpr SmbField kDatedFields[] = {
    {kSmbDosDateTime, "Creation Date and Time"}, {kSmbDosDateTime, "Last Access Date and Time"},
    {kSmbDosDateTime, "Last Write Date and Time"}, {kSmbNumber32, "File Data Size"},
    {kSmbNumber32, "Allocation Size"}, {kSmbFlags16, "Attributes", kSmbAttributeBits}};
constexpr SmbField kResumeKey = {kSmbNumber32, "Resume Key"};
constexpr SmbField kEaSizeField = {kSmbNumber32, "EA Size"};
constexpr int32_t kShortNameSize = 24;

constexpr SmbField kEntryFields[] = {{kSmbNumber32, "Next Entry Offset"}, {kSmbNumber32, "File Index"}};
constexpr SmbField kTimedFields[] = {
    {kSmbFileTime, "Creation Time"}, {kSmbFileTime, "Last Access Time"}, {kSmbFileTime, "Last Write Time"},
    {kSmbFileTime, "Change Time"}, {kSmbNumber64, "End of File"}, {kSmbNumber64, "Allocation Size"},
    {kSmbFlags32, "File Attributes", kSmbAttributeBits}};
constexpr SmbField kNameLength = {kSmbNumber32, "File Name Length"};
constexpr SmbField kFileId[] = {{kSmbHex64, "File ID"}};

// The least that an entry takes, name aside.
int32_t SmallestEntry(uint32_t level) {
  switch (level) {
    case kDirectory: return 64;
    case kFullDirectory: return 68;
    case kNames: return 12;
    case kBothDirectory: return 94;
    case kIdFullDirectory: return 80;
    case kIdBothDirectory: return 104;
    case kUnix: return 108;
    case kUnixInfo2: return 128;
    default: return 0;
  }
}

// A name whose length is one byte, not counting its terminator. In two-byte characters it starts at an even place; at
// the levels with extended attributes servers put it right behind its length, and one byte ends it.
void AddDatedName(const SmbMessage& message, const Place& in, Cursor& c, uint32_t level) {
  const Field length = AddSmbField(message, in, c, {kSmbNumber8, "File Name Length"});
  if (!length.here) return;
  const bool isAligned = message.isUnicode && level == kStandard;
  if (isAligned) AddSmbPad(message, in, c, 2);
  NameSmbEntry(in, AddSmbCounted(message, in, c, length.value, "File Name"));
  const int32_t terminator = isAligned ? 2 : 1;
  if (Left(c) >= terminator && c.at[0] == 0 && c.at[terminator - 1] == 0) {
    const Field pad = TakeBytes(c, terminator);
    AddLine(in, pad, "Pad: %s", HexText(pad));
  }
}

void AddDatedEntry(const SmbMessage& message, const Place& at, Cursor& c, uint32_t level, uint32_t flags) {
  const LineHandle line = AddLine(at, Ahead(c, 0), "Entry");
  const Place in = Under(at, line);
  const int32_t start = c.offset;
  if (flags & kSmbFindResumeKeys) AddSmbField(message, in, c, kResumeKey);
  AddSmbFields(message, in, c, kDatedFields);
  if (level == kEaSize) AddSmbField(message, in, c, kEaSizeField);
  if (level == kEasFromList) AddSmbEaList(message, in, c);
  AddDatedName(message, in, c, level);
  SetRange(at, line, start, c.offset - start);
}

void AddUnixEntry(const SmbMessage& message, const Place& in, Cursor& c, uint32_t level) {
  if (level == kUnix) {
    AddSmbUnixBasic(message, in, c, 0);
    NameSmbEntry(in, AddSmbString(message, in, c, "File Name"));
    return;
  }
  AddSmbUnixInfo2(message, in, c, 0);
  const Field length = AddSmbField(message, in, c, kNameLength);
  if (length.here) NameSmbEntry(in, AddSmbCounted(message, in, c, length.value, "File Name"));
}

void AddTimedEntry(const SmbMessage& message, const Place& in, Cursor& c, uint32_t level) {
  if (level != kNames) AddSmbFields(message, in, c, kTimedFields);
  const Field length = AddSmbField(message, in, c, kNameLength);
  if (level != kNames && level != kDirectory) AddSmbField(message, in, c, kEaSizeField);
  if (level == kBothDirectory || level == kIdBothDirectory) {
    AddSmbField(message, in, c, {kSmbNumber8, "Short Name Length"});
    AddSmbField(message, in, c, {kSmbNumber8, "Reserved"});
    if (Left(c) > 0) AddSmbCounted(message, in, c, kShortNameSize, "Short Name", SmbCharacters::kUnicode);
  }
  if (level == kIdBothDirectory || level == kIdFullDirectory) {
    AddSmbField(message, in, c, {kSmbBytes, "Reserved", {}, level == kIdBothDirectory ? 2 : 4});
    AddSmbFields(message, in, c, kFileId);
  }
  if (length.here) NameSmbEntry(in, AddSmbCounted(message, in, c, length.value, "File Name"));
}

}  // namespace

uint32_t AddSmbFindLevelLine(const Place& in, Cursor& c) {
  const Field level = TakeLittleU16(c);
  AddLine(in, level, "Information Level: [%u] = %s", level.value,
          LookupName(kFindLevelNames, level.value, kUndefined));
  return level.value;
}

void AddSmbFindEntries(const SmbMessage& message, const Place& in, Cursor& c, uint32_t level, uint32_t flags) {
  if (level >= kStandard && level <= kEasFromList) {
    for (Loop loop; MoreAt(in, c, loop) && Left(c) > 22;) AddDatedEntry(message, in, c, level, flags);
    return;
  }
  const int32_t smallest = SmallestEntry(level);
  for (Loop loop; smallest > 0 && MoreAt(in, c, loop);) {
    Cursor entry = TakeSmbEntry(c, smallest);
    const Place under = Under(in, AddLine(in, Ahead(entry, entry.left), "Entry"));
    AddSmbField(message, under, entry, kEntryFields[0]);
    AddSmbField(message, under, entry, level < kUnix ? kEntryFields[1] : kResumeKey);
    if (level >= kUnix) {
      AddUnixEntry(message, under, entry, level);
    } else {
      AddTimedEntry(message, under, entry, level);
    }
    AddSmbFiller(under, entry);
  }
}

}  // namespace qxview
