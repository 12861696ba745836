/* Records shared by the exports, the host and user decoder libraries. Usable from C and C++.
 * Integers are little pieces of memory of the width they name; structures use natural alignment. */
#ifndef QXVIEW_TYPES_H
#define QXVIEW_TYPES_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A bounded text: `capacity` bytes at `text`, terminator included. */
typedef struct TextBuffer {
  uint16_t capacity;
  char *text;
} TextBuffer;

/* A row of a name table: a code and its NUL-terminated name. */
typedef struct NameTableEntry {
  uint32_t code;
  const char *name;
} NameTableEntry;

/* A network address: kind 0 none, 1 IPv4 in the last four bytes (the first twelve zero), 2 IPv6. */
typedef struct AddressSlot {
  uint8_t address[16];
  uint32_t kind;
} AddressSlot;

/* Which heuristics the detection of protocols on unknown ports may use. */
typedef struct DetectionSettings {
  uint32_t flags;            /* bit 0 RTP, 1 RTCP, 3 MSRPC, 4 FIX */
  uint32_t flags2;           /* bit 10 GIOP */
  int32_t tdsDetectionOff;   /* not 0: no TDS */
} DetectionSettings;

/* A format that was negotiated for a stream: its RTP payload type, SDP encoding name and clock rate in Hz. */
typedef struct RtpMedia {
  int32_t payloadType;
  const char *encodingName;
  uint32_t clockRate;
} RtpMedia;

typedef struct RtpStream {
  int32_t count;
  const RtpMedia *media;
} RtpStream;

#ifdef __cplusplus
}
#endif
#endif
