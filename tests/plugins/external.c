/* The detector's plug-in for its tests: takes payloads that start with 0xEE or with the byte 0x13 of a BitTorrent
 * handshake, and shows what it was called with. */
#include <stdio.h>

#include "qxview/custom_decoder.h"

__attribute__((visibility("default"))) int32_t ExternalDecode(QxLine parentLine, const uint8_t *payload,
                                                              int32_t length, int32_t frameOffset, int32_t depth,
                                                              uint32_t expansionMask, void *tree, uint32_t *rangeCount,
                                                              uint32_t *rangeCapacity, uint64_t **rangeTable,
                                                              CustomDecodeBlock *block) {
  (void)expansionMask, (void)rangeCount, (void)rangeCapacity, (void)rangeTable;
  QxTree *lines = tree;
  char text[100];
  if (length < 1 || (payload[0] != 0xEE && payload[0] != 0x13)) return 0;
  snprintf(text, sizeof text, "External: %d bytes, depth %d, %u -> %u", length, depth, block->sourcePort,
           block->destinationPort);
  lines->addLine(lines, parentLine, text, 7 + depth, (uint64_t)frameOffset << 10 | (uint64_t)length << 37);
  return 1;
}
