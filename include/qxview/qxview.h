/* qxview: the exported functions of libqxview.so and qxview.dll. C linkage, unmangled names, the C calling convention
 * on every platform; usable from C and C++. Integers are 32-bit and signed unless said otherwise. A program decodes on
 * one thread at a time; views of their own may be used on threads of their own. */
#ifndef QXVIEW_H
#define QXVIEW_H

#include "qxview/qxview_host.h"
#include "qxview/qxview_types.h"

#if defined(QXVIEW_BUILD) && !defined(_WIN32)
#define QXVIEW_EXPORT __attribute__((visibility("default")))
#else
#define QXVIEW_EXPORT   /* on Windows the module-definition file names the exports */
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Version and names ---- */

/* (major << 8) + minor. */
QXVIEW_EXPORT uint32_t GetQxViewVersion(void);

/* The name of the first of `count` rows with this code, in a table of any order; defaultName when there is none. */
QXVIEW_EXPORT const char *GetNameDescriptorPlus(const NameTableEntry *table, uint32_t code, int32_t count,
                                                const char *defaultName);

/* ---- Embedding: a view over a decode tree of its own ----
 *
 * A view is an opaque pointer. Lines are opaque values, 0 for none; they are good until the next packet is decoded. */

/* Output modes. */
#define QXVIEW_DISPLAY '9'   /* the decode tree */
#define QXVIEW_PRINT '7'     /* text lines to a file, as printed */
#define QXVIEW_SAVE '8'      /* text lines to a file, as saved */

/* A view on this host; null: the stand-alone host, with the user's settings file. The record must outlive the view.
 * Null when there is no memory or the settings file is damaged (a message on standard error says where). */
QXVIEW_EXPORT void *QxView_CreateView(const QxHost *host);
QXVIEW_EXPORT void QxView_DestroyView(void *view);

/* Where lines go from now on. file: for the print and save modes an open file, a descriptor or on Windows a handle; it
 * stays the caller's. Lines reach it when the mode is set again or the view is destroyed. 1, or 0 for a mode that is
 * none, or when an earlier write to the file did not succeed. */
QXVIEW_EXPORT int32_t QxView_SetOutput(void *view, int32_t mode, intptr_t file);

/* Decodes the frame of a record as capture buffers hold it (docs/capture-file.md). skipBytes: bytes of the frame to
 * pass over. 1, a medium decoder's own result, or 0 for a medium without a decoder. */
QXVIEW_EXPORT int32_t QxView_DecodeFrame(void *view, const void *frameRecord, uint32_t userParam1, uint32_t userParam2,
                                         int32_t skipBytes);

/* Decodes plain bytes. mediaType: 0 Ethernet, 1 Token Ring, 2 FDDI, 3 WAN, 6 ATM, 8 Fibre Channel, 9 802.11.
 * originalLength: bytes on the wire. nanoseconds: time since 1970-01-01T00:00:00Z. Packets number themselves from 1. */
QXVIEW_EXPORT int32_t QxView_DecodeBytes(void *view, int32_t mediaType, const uint8_t *data, int32_t length,
                                         uint32_t originalLength, int64_t nanoseconds);

/* The first top-level line; the next line of the same parent; the first child. */
QXVIEW_EXPORT uintptr_t QxView_FirstLine(void *view);
QXVIEW_EXPORT uintptr_t QxView_NextLine(void *view, uintptr_t line);
QXVIEW_EXPORT uintptr_t QxView_FirstChild(void *view, uintptr_t line);

/* Copies the text (Windows-1252), cut to outSize - 1 bytes and terminated; the length copied. */
QXVIEW_EXPORT int32_t QxView_LineText(void *view, uintptr_t line, char *out, int32_t outSize);
/* The bytes of the frame that the line was decoded from; any output may be null. 1, or 0 for no line. kind: 0 fields,
 * 8 raw data. */
QXVIEW_EXPORT int32_t QxView_LineRange(void *view, uintptr_t line, int32_t *offset, uint32_t *length, int32_t *kind);
/* The image of the line's level, 0 to 22; -1 for no line. */
QXVIEW_EXPORT int32_t QxView_LineImage(void *view, uintptr_t line);

/* The number of the packet shown; -1 when the view is missing. */
QXVIEW_EXPORT int64_t GetCurrentPacketNumber(void *view);

/* Removes every line of the view. */
QXVIEW_EXPORT void ClearDecodeLists(void *view);

#ifdef __cplusplus
}
#endif
#endif
