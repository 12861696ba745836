/* A user decoder library: decodes the "LAMP" protocol of a made-up lamp controller, UDP payloads that start with the
 * bytes 'L' 'A' 'M' 'P', and Ethernet frames of the experimental Ethertype 0x88B5 that carry the same message.
 *
 *   0     4        5     6
 *   LAMP  version  lamp  brightness (2)
 *
 * Build:   cc -shared -fPIC -I include -o lamp_decoder.so samples/custom_decoder/lamp_decoder.c
 * Use:     qxview decode --set CustomLibrary0=/path/to/lamp_decoder.so capture.pcap
 */
#include <stdio.h>
#include <string.h>

#include "qxview/custom_decoder.h"

#if defined(_WIN32)
#define ENTRY __declspec(dllexport)
#else
#define ENTRY __attribute__((visibility("default")))
#endif

enum { kMessageLength = 8, kTopImage = 9, kFieldImage = 10 };

static uint64_t Range(int32_t offset, uint32_t length) { return (uint64_t)offset << 10 | (uint64_t)length << 37; }

/* Shows one message through the tree's add-line function, which serves display, print, save and find alike. */
static int32_t ShowMessage(QxTree *tree, const uint8_t *data, int32_t length, int32_t offset) {
  char text[64];
  QxLine top;
  if (length < kMessageLength || memcmp(data, "LAMP", 4) != 0) return 0;
  top = tree->addLine(tree, 0, "LAMP: Lamp Control Message", kTopImage, Range(offset, kMessageLength));
  snprintf(text, sizeof text, "Version: %u", data[4]);
  tree->addLine(tree, top, text, kFieldImage, Range(offset + 4, 1));
  snprintf(text, sizeof text, "Lamp: %u", data[5]);
  tree->addLine(tree, top, text, kFieldImage, Range(offset + 5, 1));
  snprintf(text, sizeof text, "Brightness: %u %%", data[6] << 8 | data[7]);
  tree->addLine(tree, top, text, kFieldImage, Range(offset + 6, 2));
  return 1;
}

ENTRY int32_t CustomDecodeFrame(const uint8_t *frame, const void *record, int32_t length, uint32_t userParam1,
                                int32_t zero, uint32_t expansionMask, void *tree, uint32_t *rangeCount,
                                uint32_t *rangeCapacity, uint64_t **rangeTable, CustomDecodeBlock *block) {
  (void)record, (void)userParam1, (void)zero, (void)expansionMask;
  (void)rangeCount, (void)rangeCapacity, (void)rangeTable, (void)block;
  if (length < 14 || frame[12] != 0x88 || frame[13] != 0xB5) return 0;
  return ShowMessage(tree, frame + 14, length - 14, 14);
}

ENTRY int32_t CustomDecodeUDP(QxLine parentLine, const uint8_t *payload, int32_t length, int32_t frameOffset,
                              int32_t depth, uint32_t expansionMask, void *tree, uint32_t *rangeCount,
                              uint32_t *rangeCapacity, uint64_t **rangeTable, CustomDecodeBlock *block) {
  (void)parentLine, (void)depth, (void)expansionMask, (void)rangeCount, (void)rangeCapacity, (void)rangeTable;
  ++block->freeWord;   /* kept with the view when the message is accepted: the number of messages seen */
  return ShowMessage(tree, payload, length, frameOffset);
}
