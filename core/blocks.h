// Block operations: hex dumps, titled data blocks, byte rows, wrapped text and the counted string.
#pragma once
#include "core/lines.h"

namespace qxview {

// Rows of 16 bytes under the parent line, image 13, range kind 8; at most 32768 bytes. With the view's range filter on,
// in every mode, a block that is not wholly inside the span is trimmed to the rows that overlap it.
void AddHexDumpLines(View* view, DecodeTree* tree, LineHandle parentLine, const uint8_t* data, int32_t offset,
                     int32_t length);

// A title line with the dump under it; 0, and nothing added, for a length below 1 or parent 0. Decoders pass
// level + 7 as the image number, which is the image of LevelImage(level).
LineHandle AddDataBlock(View* view, LineHandle parentLine, const uint8_t* data, int32_t offset, int32_t length,
                        const char* title, int32_t imageNumber);

// The same over min(available, declared) bytes.
LineHandle AddDataBlockClamped(View* view, LineHandle parentLine, const uint8_t* data, int32_t offset,
                               int32_t available, int32_t declared, const char* title, int32_t imageNumber);
LineHandle AddDataBlockClampedOut(View* view, LineHandle parentLine, const uint8_t* data, int32_t offset,
                                  int32_t available, int32_t declared, const char* title, int32_t imageNumber,
                                  int32_t* used);

// A top-level block with image 6 and range kind 8; 1, or 0 for a length below 1.
int32_t AddRawData(View* view, const uint8_t* data, int32_t offset, int32_t length, const char* title);

// Rows of 32 bytes as blank-separated hexadecimal: "label: bytes", or "label 0020: bytes" with the row's offset when
// there is more than one row. The rows' range kind is the low byte of the level.
void AddBitRows(View* view, LineHandle parentLine, const uint8_t* data, int32_t offset, int32_t length,
                const char* label, int32_t level);

// A text of `length` characters in pieces of at most 80, cut behind a blank where one follows within 10 characters.
// Result: the last line added.
LineHandle AddWrappedTextLines(View* view, LineHandle parentLine, const char* text, int32_t length, const char* label,
                               int32_t image, DecodeTree* tree, int32_t frameOffset, bool numbered);

enum class CountedCharacters { kSingleByte, kTwoByte };

// A field of a 16-bit big-endian length and that many bytes of text. Returns the bytes it took: 0 when fewer than 2
// are available. At most three characters of the text are shown and handed back: this is how the field has always
// appeared. The two-byte form shows one byte of each character.
int32_t AddCountedString(View* view, const uint8_t* data, int32_t available, int32_t frameOffset,
                         LineHandle parentLine, int32_t level, const char* label, char* valueBuffer,
                         int32_t valueBufferSize, CountedCharacters characters = CountedCharacters::kSingleByte);

}  // namespace qxview
