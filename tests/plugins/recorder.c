/* A library for the tests of the hooks: notes every offer in the file that QXVIEW_TEST_OFFERS names, as
 * "NAME ENTRY LENGTH WORD3", of WAN frames with their direction and link number behind ENTRY, and accepts what starts with the byte RECORDER_ACCEPTS. It adds its line as the module
 * does itself: append, store the range, count, grow. Built twice, with different names and bytes. */
#include <stdio.h>
#include <stdlib.h>

#include "qxview/custom_decoder.h"

#define ENTRY __attribute__((visibility("default")))

static void AddAsTheModuleDoes(QxTree *tree, const char *text, uint32_t *count, uint32_t *capacity, uint64_t **table) {
  if (*count + 1 >= *capacity) {
    *table = realloc(*table, sizeof(uint64_t) * 2 * *capacity);
    *capacity *= 2;
  }
  (*table)[*count] = (uint64_t)5 << 10 | (uint64_t)3 << 37;
  if (tree->append(tree, 0, text, 9, *count)) ++*count;
}

static int32_t Note(const char *entry, const uint8_t *data, int32_t length, CustomDecodeBlock *block) {
  const char *path = getenv("QXVIEW_TEST_OFFERS");
  FILE *file = path ? fopen(path, "a") : NULL;
  if (file) {
    fprintf(file, "%s %s %d %u\n", RECORDER_NAME, entry, length, block->freeWord);
    fclose(file);
  }
  block->freeWord += 100;
  return length > 0 && data[0] == RECORDER_ACCEPTS;
}

ENTRY int32_t CustomDecodeFrame(const uint8_t *frame, const void *record, int32_t length, uint32_t userParam1,
                                int32_t zero, uint32_t expansionMask, void *tree, uint32_t *rangeCount,
                                uint32_t *rangeCapacity, uint64_t **rangeTable, CustomDecodeBlock *block) {
  (void)record, (void)userParam1, (void)zero, (void)expansionMask;
  if (!Note("CustomDecodeFrame", frame, length, block)) return 0;
  AddAsTheModuleDoes(tree, "taken by " RECORDER_NAME, rangeCount, rangeCapacity, rangeTable);
  return 1;
}

ENTRY int32_t CustomDecodeFrameWan(const uint8_t *frame, const void *extension, int32_t length, int32_t zero,
                                   uint32_t expansionMask, void *tree, uint32_t *rangeCount, uint32_t *rangeCapacity,
                                   uint64_t **rangeTable, CustomDecodeBlock *block) {
  (void)zero, (void)expansionMask, (void)tree, (void)rangeCount, (void)rangeCapacity, (void)rangeTable;
  const QxWanLink *link = extension;
  char entry[60] = "CustomDecodeFrameWan";
  if (link) snprintf(entry, sizeof entry, "CustomDecodeFrameWan[%u,%u]", link->direction, link->number);
  return Note(entry, frame, length, block);
}

ENTRY int32_t CustomDecodeFrameWireless(const uint8_t *frame, const void *extension, int32_t length, int32_t zero,
                                        uint32_t expansionMask, void *tree, uint32_t *rangeCount,
                                        uint32_t *rangeCapacity, uint64_t **rangeTable, CustomDecodeBlock *block) {
  (void)extension, (void)zero, (void)expansionMask, (void)tree, (void)rangeCount, (void)rangeCapacity, (void)rangeTable;
  return Note("CustomDecodeFrameWireless", frame, length, block);
}
