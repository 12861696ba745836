/* A user decoder library: decodes the "LAMP" protocol of a made-up lamp controller, UDP payloads that start with the
 * bytes 'L' 'A' 'M' 'P', and Ethernet frames of the experimental Ethertype 0x88B5 that carry the same message.
 *
 *   0     4        5     6
 *   LAMP  version  lamp  brightness (2)
 *
 * Build:   cc -shared -fPIC -I include -o lamp_decoder.so samples/custom_decoder/lamp_decoder.c
 *          i686-w64-mingw32-gcc -shared -static -I include -o lamp_decoder.dll samples/custom_decoder/lamp_decoder.c
 * Use:     qxview decode --set CustomLibrary0=/path/to/lamp_decoder.so capture.pcap
 */
#include <stdio.h>
#include <string.h>

#include "qxview/custom_decoder.h"

#if defined(_WIN32)
#include <windows.h>
#include <commctrl.h>
#include <stdlib.h>
#define ENTRY __declspec(dllexport)
#else
#define ENTRY __attribute__((visibility("default")))
#endif

enum { kMessageLength = 8, kTopImage = 9, kFieldImage = 10 };

static uint64_t Range(int32_t offset, uint32_t length) { return (uint64_t)offset << 10 | (uint64_t)length << 37; }

/* Where an entry point's lines go. */
typedef struct Lines {
  void *tree;
  uint32_t *count, *capacity;
  uint64_t **ranges;
} Lines;

#if defined(_WIN32)
/* Into the tree view control of a view's window: an item whose tag is the index of its range in the module's table. */
static QxLine AddItem(const Lines *lines, QxLine parent, const char *text, int32_t image, uint64_t range) {
  TVINSERTSTRUCTA item;
  QxLine line;
  if (*lines->count + 1 >= *lines->capacity) {
    uint64_t *grown = realloc(*lines->ranges, sizeof(uint64_t) * 2 * *lines->capacity);
    if (!grown) return 0;
    *lines->ranges = grown;
    *lines->capacity *= 2;
  }
  memset(&item, 0, sizeof item);
  item.hParent = parent ? (HTREEITEM)parent : TVI_ROOT;
  item.hInsertAfter = TVI_LAST;
  item.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_PARAM;
  item.item.pszText = (char *)text;
  item.item.iImage = item.item.iSelectedImage = image;
  item.item.lParam = (LPARAM)*lines->count;
  (*lines->ranges)[*lines->count] = range;
  line = (QxLine)SendMessageA((HWND)lines->tree, TVM_INSERTITEMA, 0, (LPARAM)&item);
  if (line) ++*lines->count;
  return line;
}
#endif

/* Adds a line where the tree is a record with its add-line function, which serves display, print, save and find alike. */
static QxLine AddLine(const Lines *lines, QxLine parent, const char *text, int32_t image, uint64_t range) {
  QxTree *record = lines->tree;
#if defined(_WIN32)
  if (IsWindow((HWND)lines->tree)) return AddItem(lines, parent, text, image, range);
#endif
  return record->addLine(record, parent, text, image, range);
}

static int32_t ShowMessage(const Lines *lines, const uint8_t *data, int32_t length, int32_t offset) {
  char text[64];
  QxLine top;
  if (length < kMessageLength || memcmp(data, "LAMP", 4) != 0) return 0;
  top = AddLine(lines, 0, "LAMP: Lamp Control Message", kTopImage, Range(offset, kMessageLength));
  snprintf(text, sizeof text, "Version: %u", data[4]);
  AddLine(lines, top, text, kFieldImage, Range(offset + 4, 1));
  snprintf(text, sizeof text, "Lamp: %u", data[5]);
  AddLine(lines, top, text, kFieldImage, Range(offset + 5, 1));
  snprintf(text, sizeof text, "Brightness: %u %%", data[6] << 8 | data[7]);
  AddLine(lines, top, text, kFieldImage, Range(offset + 6, 2));
  return 1;
}

ENTRY int32_t CustomDecodeFrame(const uint8_t *frame, const void *record, int32_t length, uint32_t userParam1,
                                int32_t zero, uint32_t expansionMask, void *tree, uint32_t *rangeCount,
                                uint32_t *rangeCapacity, uint64_t **rangeTable, CustomDecodeBlock *block) {
  const Lines lines = {tree, rangeCount, rangeCapacity, rangeTable};
  (void)record, (void)userParam1, (void)zero, (void)expansionMask, (void)block;
  if (length < 14 || frame[12] != 0x88 || frame[13] != 0xB5) return 0;
  return ShowMessage(&lines, frame + 14, length - 14, 14);
}

ENTRY int32_t CustomDecodeUDP(QxLine parentLine, const uint8_t *payload, int32_t length, int32_t frameOffset,
                              int32_t depth, uint32_t expansionMask, void *tree, uint32_t *rangeCount,
                              uint32_t *rangeCapacity, uint64_t **rangeTable, CustomDecodeBlock *block) {
  const Lines lines = {tree, rangeCount, rangeCapacity, rangeTable};
  (void)parentLine, (void)depth, (void)expansionMask;
  ++block->freeWord;   /* kept with the view when the message is accepted: the number of messages seen */
  return ShowMessage(&lines, payload, length, frameOffset);
}
