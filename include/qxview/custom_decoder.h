/* User decoder libraries: shared libraries that decode data of their own into the tree.
 *
 * A library is named by the settings CustomLibrary0 to CustomLibrary7 (a file name relative to the program's
 * directory) and exports one or more of the entry points below, unmangled. At each hook the loaded libraries are
 * offered the data in load order; the first that returns non-zero has decoded it and the module's own decoder is
 * passed over. 0 declines. Entry points run on the thread that decodes and must not keep any pointer.
 *
 * How a library adds lines:
 *  - on every platform as the module does: append the line with the range-table index *rangeCount as its tag, store
 *    the range at (*rangeTable)[*rangeCount], add 1 to *rangeCount, and double the table when it is full (with the C
 *    library's realloc, on Windows that of msvcrt.dll);
 *  - where the tree is a record (QxTree), simply with tree->addLine, which does all of that, and serves the print, save
 *    and find modes too.
 * On Windows `tree` is the handle of the tree view control when lines are shown in a view's window, and they are added
 * with the control's messages; in the other modes, and for a view without a window, it is the record as off Windows.
 * IsWindow tells which.
 */
#ifndef QXVIEW_CUSTOM_DECODER_H
#define QXVIEW_CUSTOM_DECODER_H

#include "qxview/qxview_types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Output modes, as in word 0 of the block. */
#define QX_MODE_DISPLAY '9'
#define QX_MODE_PRINT '7'
#define QX_MODE_SAVE '8'
#define QX_MODE_FIND ':'

/* Eight 32-bit words that are filled afresh for each offer. */
typedef struct CustomDecodeBlock {
  uint32_t outputMode;        /* word 0: one of the modes above */
  uint32_t addressKinds;      /* word 1: kind of the source slot, of the destination slot in the upper 16 bits */
  uint32_t sourcePort;        /* word 2 */
  uint32_t freeWord;          /* word 3: stays with the view; kept when the library accepts */
  uint32_t destinationPort;   /* word 4 */
  uint32_t unused5;           /* word 5: 0 */
  uint32_t outputFile;        /* word 6: the print or save file: a handle, or a file descriptor off Windows */
  uint32_t unused7;           /* word 7: 0 */
} CustomDecodeBlock;

/* A line: an opaque value, 0 for none and, as a parent, for the top level; 1000 outside display mode. */
typedef uintptr_t QxLine;

/* The decode tree off Windows, and where a view has no window. Ranges: bits 0-7 kind (0), 10-36 frame offset, 37-63
 * length. Images: 9 to 12 are nesting levels 2 to 5. */
typedef struct QxTree QxTree;
struct QxTree {
  uint32_t size;   /* of this record */
  QxLine (*append)(QxTree *tree, QxLine parent, const char *text, int32_t image, uint32_t tag);
  int32_t (*getText)(QxTree *tree, QxLine line, char *out, int32_t outSize);   /* characters copied */
  void (*setText)(QxTree *tree, QxLine line, const char *text);
  uint32_t (*getTag)(QxTree *tree, QxLine line);
  void (*setTag)(QxTree *tree, QxLine line, uint32_t tag);
  QxLine (*firstChild)(QxTree *tree, QxLine line);   /* of 0: the first top-level line */
  QxLine (*nextSibling)(QxTree *tree, QxLine line);
  QxLine (*parent)(QxTree *tree, QxLine line);
  void (*deleteLine)(QxTree *tree, QxLine line);     /* with its children */
  /* Adds a line in whatever mode is active; the result is the parent for its children. */
  QxLine (*addLine)(QxTree *tree, QxLine parent, const char *text, int32_t image, uint64_t range);
  void *data[2];   /* the tree's own */
};

/* "CustomDecodeFrame": Ethernet, Token Ring and FDDI frames. record: the frame's record (header and bytes). */
typedef int32_t (*CustomDecodeFrameFunction)(const uint8_t *frame, const void *record, int32_t length,
                                             uint32_t userParam1, int32_t zero, uint32_t expansionMask, void *tree,
                                             uint32_t *rangeCount, uint32_t *rangeCapacity, uint64_t **rangeTable,
                                             CustomDecodeBlock *block);

/* What the extension block of a WAN frame begins with; a header that the capture holds in front of the frame follows. */
typedef struct QxWanLink {
  uint16_t direction;   /* 1 DCE -> DTE (received), 2 DTE -> DCE (sent) */
  uint16_t number;      /* of the link, 0 when the capture tells none */
} QxWanLink;

/* "CustomDecodeFrameWireless" and "CustomDecodeFrameWan". extension: the data of the record's media extension block (the
 * radio header as it was captured; a QxWanLink), null when the capture tells none of it. */
typedef int32_t (*CustomDecodeMediaFunction)(const uint8_t *frame, const void *extension, int32_t length,
                                             int32_t zero, uint32_t expansionMask, void *tree, uint32_t *rangeCount,
                                             uint32_t *rangeCapacity, uint64_t **rangeTable,
                                             CustomDecodeBlock *block);

/* "CustomDecodeIP", "CustomDecodeTCP", "CustomDecodeUDP" and "ExternalDecode": payloads. */
typedef int32_t (*CustomDecodePayloadFunction)(QxLine parentLine, const uint8_t *payload, int32_t length,
                                               int32_t frameOffset, int32_t depth, uint32_t expansionMask, void *tree,
                                               uint32_t *rangeCount, uint32_t *rangeCapacity, uint64_t **rangeTable,
                                               CustomDecodeBlock *block);

#ifdef __cplusplus
}
#endif
#endif
