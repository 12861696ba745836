// The fields of blocks.
#include "decoders/smb/smb_block.h"

namespace qxview {
namespace {

constexpr int32_t kSmbShownBytes = 64;   // in one line; more is a dump

const char* NameOf(const SmbNames& names, uint32_t value) {
  return names.rows ? LookupName(names.rows, value, names.count, kUndefined) : kUndefined;
}

// A line for the field and one for each of its named bits. A name's code is its mask; all bits of it stand together.
void AddFlags(const Place& in, const Field& flags, const SmbField& row) {
  if (!flags.here) return;
  const LineHandle line = flags.length == 1   ? AddLine(in, flags, "%s: 0x%.02X", row.label, flags.value)
                          : flags.length == 2 ? AddLine(in, flags, "%s: 0x%.04X", row.label, flags.value)
                                              : AddLine(in, flags, "%s: 0x%.08X", row.label, flags.value);
  const Place under = Under(in, line);
  const int32_t width = 8 * flags.length;
  for (int32_t i = 0; i < row.names.count; ++i) {
    const NameTableEntry& bit = row.names.rows[i];
    int32_t lowest = 0, count = 1;
    while (lowest < 31 && !(bit.code >> lowest & 1)) ++lowest;
    while (lowest + count < 32 && bit.code >> (lowest + count) & 1) ++count;
    if (lowest + count > width) continue;
    const BitPicture bits = BitsOf(flags, width - lowest - count, count);
    if (count == 1) {
      AddBitLine(under, flags, "%s: %s = %s", bits.picture, bit.name, TrueOrFalse(bits.value));
    } else {
      AddBitLine(under, flags, "%s: %s = %u", bits.picture, bit.name, bits.value);
    }
  }
}

Field AddTimeDate(const Place& in, Cursor& c, const SmbField& row) {
  const bool timeFirst = row.form == kSmbDosTimeDate;
  const Field both = TakeBytes(c, 4);
  if (!both.here) return both;
  const uint32_t first = ReadLittleU16(both.bytes), second = ReadLittleU16(both.bytes + 2);
  AddLine(in, both, "%s: %s", row.label, DosTimeText(timeFirst ? second : first, timeFirst ? first : second));
  return both;
}

Field AddText(const SmbMessage& message, const Place& in, Cursor& c, const SmbField& row) {
  const bool oem = row.form == kSmbOemText || row.form == kSmbFormattedOem;
  if (row.form == kSmbFormattedText || row.form == kSmbFormattedOem) {
    const Field format = TakeU8(c);
    AddLine(in, format, "Buffer Format: [%u] = %s", format.value, NameOf(kSmbBufferFormatNames, format.value));
    if (!format.here) return format;
  }
  AddSmbString(message, in, c, row.label, oem ? SmbCharacters::kOem : SmbCharacters::kMessage);
  return {};
}

Field TakeNumber(Cursor& c, int32_t size) {
  return size == 1 ? TakeU8(c) : size == 2 ? TakeLittleU16(c) : TakeLittleU32(c);
}

}  // namespace

Field AddSmbField(const SmbMessage& message, const Place& in, Cursor& c, const SmbField& row) {
  switch (row.form) {
    case kSmbNumber8:
    case kSmbNumber16:
    case kSmbNumber32: {
      const Field field = TakeNumber(c, 1 << (row.form - kSmbNumber8));
      AddLine(in, field, "%s: %u", row.label, field.value);
      return field;
    }
    case kSmbNumber64: {
      const WideField field = TakeLittleU64(c);
      AddLine(in, field, "%s: %I64u", row.label, field.wide);
      return field;
    }
    case kSmbHex8: {
      const Field field = TakeU8(c);
      AddLine(in, field, "%s: 0x%.02X", row.label, field.value);
      return field;
    }
    case kSmbHex16: {
      const Field field = TakeLittleU16(c);
      AddLine(in, field, "%s: 0x%.04X", row.label, field.value);
      return field;
    }
    case kSmbHex32: {
      const Field field = TakeLittleU32(c);
      AddLine(in, field, "%s: 0x%.08X", row.label, field.value);
      return field;
    }
    case kSmbHex64: {
      const WideField field = TakeLittleU64(c);
      AddLine(in, field, "%s: 0x%.016I64X", row.label, field.wide);
      return field;
    }
    case kSmbName8:
    case kSmbName16:
    case kSmbName32: {
      const Field field = TakeNumber(c, 1 << (row.form - kSmbName8));
      AddLine(in, field, "%s: [%u] = %s", row.label, field.value, NameOf(row.names, field.value));
      return field;
    }
    case kSmbFlags8:
    case kSmbFlags16:
    case kSmbFlags32: {
      const Field field = TakeNumber(c, 1 << (row.form - kSmbFlags8));
      AddFlags(in, field, row);
      return field;
    }
    case kSmbSigned16:
    case kSmbSigned32: {
      const Field field = TakeNumber(c, row.form == kSmbSigned16 ? 2 : 4);
      const int32_t wide = static_cast<int32_t>(field.value);
      const int32_t value = row.form == kSmbSigned16 ? static_cast<int16_t>(wide) : wide;
      AddLine(in, field, "%s: %d", row.label, value);
      return field;
    }
    case kSmbTime32: {
      const Field field = TakeLittleU32(c);
      AddLine(in, field, "%s: %s", row.label, UnixTimeText(field.value));
      return field;
    }
    case kSmbFileTime: {
      const WideField field = TakeLittleU64(c);
      AddLine(in, field, "%s: %s", row.label, FileTimeText(field.wide));
      return field;
    }
    case kSmbDosTimeDate:
    case kSmbDosDateTime: return AddTimeDate(in, c, row);
    case kSmbBytes: {
      const Field field = TakeBytes(c, row.size);
      if (row.size < 1) return field;
      AddLine(in, field, "%s: %s", row.label, HexText(field));
      return field;
    }
    default: return AddText(message, in, c, row);
  }
}

uint32_t AddSmbFields(const SmbMessage& message, const Place& in, Cursor& c, std::span<const SmbField> fields) {
  uint32_t last = 0;
  for (const SmbField& row : fields) {
    if (Left(c) < 1) break;
    last = AddSmbField(message, in, c, row).value;
  }
  return last;
}

uint32_t AddSmbFields(SmbBlock& block, Cursor& c, std::span<const SmbField> fields) {
  return AddSmbFields(*block.message, block.in, c, fields);
}

void AddSmbPad(const SmbMessage& message, const Place& in, Cursor& c, int32_t alignment, const char* label) {
  const int32_t beyond = SmbOffset(message, c) % alignment;
  if (beyond == 0 || Left(c) < 1) return;
  const int32_t wanted = alignment - beyond;
  const Field pad = TakeBytes(c, wanted < Left(c) ? wanted : Left(c));
  AddLine(in, pad, "%s: %s", label, HexText(pad));
}

void AddSmbPadTo(const SmbMessage& message, const Place& in, Cursor& c, uint32_t offset, const char* label) {
  const int64_t ahead = static_cast<int64_t>(offset) - SmbOffset(message, c);
  if (ahead < 1 || ahead > Left(c)) return;
  AddSmbBytes(in, c, ahead, label);
}

void AddSmbBytes(const Place& in, Cursor& c, int64_t length, const char* label) {
  const Field bytes = TakeBytes(c, length < Left(c) ? length : Left(c));
  if (bytes.length > kSmbShownBytes) {
    AddBlock(in, bytes, label);
  } else if (bytes.length > 0) {
    AddLine(in, bytes, "%s: %s", label, HexText(bytes));
  }
}

uint32_t SmbByte(const SmbBlock& block, int32_t offset) {
  return block.allWords.here && offset < block.allWords.length ? block.allWords.bytes[offset] : 0;
}

}  // namespace qxview
