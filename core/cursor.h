// Cursor: the only way to the bytes of a frame. Take* never reads outside; it returns a Field that knows its value
// and its frame range, and makes the cursor short for good when the bytes end. A field that is not here adds no line,
// so decoders need no length tests: they show the lines so far and are quiet after that.
#pragma once
#include <cstdint>
#include <cstring>

#include "core/bits.h"
#include "core/byte_range.h"
#include "core/formatter.h"

namespace qxview {

struct Cursor {
  const uint8_t* at;
  int32_t offset;    // frame offset of `at`
  int32_t left;      // bytes available from `at`
  int32_t begin;     // frame offset that the cursor started at
  bool ranShort;
};

struct Field {
  const uint8_t* bytes;   // null when the field is stated and not read, or not here
  int32_t offset;         // frame offset
  int32_t length;
  uint32_t value;         // of number fields; the low 32 bits of wider ones
  bool here;
};

struct WideField : Field {
  uint64_t wide;
};

inline Cursor MakeCursor(const uint8_t* data, int32_t offset, int32_t left) {
  return {data, offset, left > 0 ? left : 0, offset, false};
}

inline int32_t Left(const Cursor& c) { return c.ranShort ? 0 : c.left; }
inline int32_t Taken(const Cursor& c) { return c.offset - c.begin; }

// Number fields.
constexpr uint32_t ReadU16(const uint8_t* p) { return static_cast<uint32_t>(p[0] << 8 | p[1]); }
constexpr uint32_t ReadU24(const uint8_t* p) { return static_cast<uint32_t>(p[0] << 16 | p[1] << 8 | p[2]); }
constexpr uint32_t ReadU32(const uint8_t* p) { return ReadU16(p) << 16 | ReadU16(p + 2); }
constexpr uint64_t ReadU64(const uint8_t* p) { return static_cast<uint64_t>(ReadU32(p)) << 32 | ReadU32(p + 4); }
constexpr uint32_t ReadLittleU16(const uint8_t* p) { return static_cast<uint32_t>(p[1] << 8 | p[0]); }
constexpr uint32_t ReadLittleU32(const uint8_t* p) { return ReadLittleU16(p + 2) << 16 | ReadLittleU16(p); }
constexpr uint64_t ReadLittleU64(const uint8_t* p) {
  return static_cast<uint64_t>(ReadLittleU32(p + 4)) << 32 | ReadLittleU32(p);
}

// The next `length` bytes. A negative length takes nothing and makes the cursor short, as a missing byte does.
inline Field TakeBytes(Cursor& c, int64_t length) {
  if (c.ranShort || length < 0 || length > c.left) {
    c.ranShort = true;
    return {nullptr, c.offset, 0, 0, false};
  }
  const int32_t taken = static_cast<int32_t>(length);
  Field field{c.at, c.offset, taken, 0, true};
  c.at += taken;
  c.offset += taken;
  c.left -= taken;
  return field;
}

inline Field TakeU8(Cursor& c) {
  Field field = TakeBytes(c, 1);
  if (field.here) field.value = field.bytes[0];
  return field;
}
inline Field TakeU16(Cursor& c) {
  Field field = TakeBytes(c, 2);
  if (field.here) field.value = ReadU16(field.bytes);
  return field;
}
inline Field TakeU24(Cursor& c) {
  Field field = TakeBytes(c, 3);
  if (field.here) field.value = ReadU24(field.bytes);
  return field;
}
inline Field TakeU32(Cursor& c) {
  Field field = TakeBytes(c, 4);
  if (field.here) field.value = ReadU32(field.bytes);
  return field;
}
inline WideField TakeU64(Cursor& c) {
  WideField field{TakeBytes(c, 8), 0};
  if (field.here) {
    field.wide = ReadU64(field.bytes);
    field.value = static_cast<uint32_t>(field.wide);
  }
  return field;
}
inline Field TakeLittleU16(Cursor& c) {
  Field field = TakeBytes(c, 2);
  if (field.here) field.value = ReadLittleU16(field.bytes);
  return field;
}
inline Field TakeLittleU32(Cursor& c) {
  Field field = TakeBytes(c, 4);
  if (field.here) field.value = ReadLittleU32(field.bytes);
  return field;
}
inline WideField TakeLittleU64(Cursor& c) {
  WideField field{TakeBytes(c, 8), 0};
  if (field.here) {
    field.wide = ReadLittleU64(field.bytes);
    field.value = static_cast<uint32_t>(field.wide);
  }
  return field;
}

// A look ahead, for what a top line says and a decoder chooses by before it takes its fields: the number at `at` bytes
// from the cursor; 0 when it is not all there.
inline uint32_t PeekU8(const Cursor& c, int32_t at = 0) { return at >= 0 && at < Left(c) ? c.at[at] : 0; }
inline uint32_t PeekU16(const Cursor& c, int32_t at = 0) {
  return at >= 0 && at < Left(c) - 1 ? ReadU16(c.at + at) : 0;
}
inline uint32_t PeekU24(const Cursor& c, int32_t at = 0) {
  return at >= 0 && at < Left(c) - 2 ? ReadU24(c.at + at) : 0;
}
inline uint32_t PeekU32(const Cursor& c, int32_t at = 0) {
  return at >= 0 && at < Left(c) - 3 ? ReadU32(c.at + at) : 0;
}
inline uint32_t PeekLittleU16(const Cursor& c, int32_t at = 0) {
  return at >= 0 && at < Left(c) - 1 ? ReadLittleU16(c.at + at) : 0;
}
inline uint32_t PeekLittleU32(const Cursor& c, int32_t at = 0) {
  return at >= 0 && at < Left(c) - 3 ? ReadLittleU32(c.at + at) : 0;
}

// `length` bytes, `at` bytes from the cursor; not here when they are not all there.
inline Field PeekBytes(const Cursor& c, int32_t at, int32_t length) {
  if (at < 0 || length < 0 || length > Left(c) - at) return {nullptr, c.offset, 0, 0, false};
  return {c.at + at, c.offset + at, length, 0, true};
}
// Whether these bytes stand there: the characters of a text, or an array.
template <size_t kSize>
bool PeekIs(const Cursor& c, int32_t at, const char (&text)[kSize]) {
  return at >= 0 && static_cast<int32_t>(kSize) - 1 <= Left(c) - at && std::memcmp(c.at + at, text, kSize - 1) == 0;
}
template <size_t kSize>
bool PeekIs(const Cursor& c, int32_t at, const uint8_t (&bytes)[kSize]) {
  return at >= 0 && static_cast<int32_t>(kSize) <= Left(c) - at && std::memcmp(c.at + at, bytes, kSize) == 0;
}
// How far ahead such a byte stands, `from` or farther; -1 for none.
inline int32_t FindU8(const Cursor& c, uint8_t wanted, int32_t from = 0) {
  if (from < 0 || from >= Left(c)) return -1;
  const void* found = std::memchr(c.at + from, wanted, static_cast<size_t>(c.left - from));
  return found ? static_cast<int32_t>(static_cast<const uint8_t*>(found) - c.at) : -1;
}

// All bytes that are left; here when there is at least one.
inline Field Rest(Cursor& c) {
  if (Left(c) < 1) return {nullptr, c.offset, 0, 0, false};
  return TakeBytes(c, c.left);
}

// A run for a header line: `length` bytes from the cursor on, nothing taken. Its bytes are null when they are not all
// there. For lines that cover a declared length.
inline Field Ahead(const Cursor& c, int32_t length) {
  return {length <= c.left ? c.at : nullptr, c.offset, length, 0, true};
}

// A range that was not read.
inline Field Stated(int32_t offset, int32_t length) { return {nullptr, offset, length, 0, true}; }

// A piece of a field that is here: `length` bytes from its byte `first` on.
inline Field Slice(const Field& field, int32_t first, int32_t length) {
  if (!field.here || first < 0 || length < 0 || first > field.length - length) return {nullptr, field.offset, 0, 0, false};
  return {field.bytes ? field.bytes + first : nullptr, field.offset + first, length, 0, true};
}

// A cursor of its own over the next `length` bytes, cut to what is left; the outer one stands behind them.
inline Cursor TakeCursor(Cursor& c, int64_t length) {
  const int32_t left = Left(c);
  const int32_t taken = length < 0 ? 0 : length < left ? static_cast<int32_t>(length) : left;
  Cursor inner = MakeCursor(c.at, c.offset, taken);
  inner.ranShort = c.ranShort;
  c.at += taken;
  c.offset += taken;
  c.left -= taken;
  return inner;
}

// A cursor over a field's bytes; short when the field is not here.
inline Cursor CursorOver(const Field& field) {
  Cursor c = MakeCursor(field.bytes, field.offset, field.bytes ? field.length : 0);
  c.ranShort = !field.here;
  return c;
}

// The same look into a field that was taken.
inline uint32_t PeekU8(const Field& field, int32_t at = 0) { return PeekU8(CursorOver(field), at); }
inline uint32_t PeekU16(const Field& field, int32_t at = 0) { return PeekU16(CursorOver(field), at); }
inline uint32_t PeekU32(const Field& field, int32_t at = 0) { return PeekU32(CursorOver(field), at); }

// while (More(c, loop)): whether bytes are left and the pass before took some.
struct Loop {
  int32_t lastOffset = -1;
};
inline bool More(const Cursor& c, Loop& loop) {
  if (Left(c) < 1 || c.offset == loop.lastOffset) return false;
  loop.lastOffset = c.offset;
  return true;
}

// Texts of a field.
inline TextSlice Text(const Field& field) { return {reinterpret_cast<const char*>(field.bytes), field.length}; }
inline HexSlice HexText(const Field& field) { return {field.bytes, field.bytes ? field.length : 0, ' '}; }
inline HexSlice HexDigits(const Field& field) { return {field.bytes, field.bytes ? field.length : 0, '\0'}; }

// The picture of `bitCount` bits of a field of 1 to 4 bytes, counted from its most significant bit, and their value.
inline BitPicture BitsOf(const Field& field, int32_t firstBit, int32_t bitCount) {
  const int32_t width = field.length < 1 ? 8 : field.length > 4 ? 32 : 8 * field.length;
  if (firstBit < 0) firstBit = 0;
  if (firstBit > width) firstBit = width;
  if (bitCount < 0) bitCount = 0;
  if (bitCount > width - firstBit) bitCount = width - firstBit;
  const uint64_t above = uint64_t{field.value} >> (width - firstBit - bitCount);
  return {{field.value, static_cast<uint8_t>(width), static_cast<uint8_t>(firstBit), static_cast<uint8_t>(bitCount)},
          static_cast<uint32_t>(above & ((uint64_t{1} << bitCount) - 1))};
}

}  // namespace qxview
