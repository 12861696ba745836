/* What the module asks of its host: one record of functions. A program that embeds the module may lend its own; a
 * null function, or a record whose size ends before it, means that the host does not have the service: a view then
 * takes the module's own (the six functions of definition tables together). All functions are called on the thread that
 * decodes; texts are NUL-terminated; the C calling convention is used everywhere. */
#ifndef QXVIEW_HOST_H
#define QXVIEW_HOST_H

#include "qxview/qxview_types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* What detection saw of a stream beside its protocol: RTP's sequence number and time stamp, or RTCP's values. */
typedef struct DynamicRecord {
  int32_t found;
  uint32_t first;
  uint32_t second;
} DynamicRecord;

/* The protocol definitions of the user: which port or address carries which protocol. */
enum QxDefinitionTable {
  QX_TCP_PORTS = 0, QX_UDP_PORTS = 1, QX_TCP_ADDRESSES = 2, QX_UDP_ADDRESSES = 3
};

/* The transport of what is learnt; learnt identifiers carry it too. */
enum QxTransport { QX_OVER_TCP = 0x1000000, QX_OVER_UDP = 0x2000000 };

/* A data segment of the current packet's TCP connection and direction. The bytes stay the host's. */
typedef struct QxSegment {
  uint32_t size;            /* of this record, set by the caller */
  int32_t length;           /* payload bytes captured */
  const uint8_t *payload;
  uint32_t sequence;        /* sequence number of the first payload byte */
  uint32_t flags;           /* TCP flags, FIN = 1 */
  int64_t packetNumber;
} QxSegment;

/* What the MIB knows of a dotted object identifier. */
typedef struct QxMibEntry {
  uint32_t size;            /* of this record, set by the caller */
  char path[512];           /* symbolic path from the root, "iso.org.dod.internet.mgmt.mib-2.system.sysDescr" */
  char nodeNumber[16];      /* the node's own number */
  char suffix[512];         /* the instance, "0"; empty when the identifier is the node itself */
  char type[64];
  char access[32];
} QxMibEntry;

/* The capture buffer, as its window answers for it. */
typedef struct QxCaptureBufferState {
  uint32_t size;            /* of this record, set by the caller */
  uint64_t packetCount;     /* packets that it holds */
} QxCaptureBufferState;

/* What the user asks of the host in a view's window, by its context menu. */
enum QxViewRequestKind {
  QX_START_CAPTURE = 1,     /* capture what the selected packet's addresses exchange */
  QX_POST_FILTER = 2,       /* of the packets in the buffer show those */
  QX_FILTER = 3             /* from now on capture those alone */
};

typedef struct QxViewRequest {
  uint32_t size;            /* of this record */
  int32_t kind;             /* QxViewRequestKind */
  int64_t packetNumber;     /* the packet that is shown */
  AddressSlot source;       /* of its innermost datagram; of kind 0 where there is none */
  AddressSlot destination;
  uint16_t sourcePort;      /* 0 where there are none */
  uint16_t destinationPort;
  const char *expression;   /* the selected line as a display filter, "dns.type == 1"; an empty text for none */
} QxViewRequest;

typedef struct QxHost {
  uint32_t size;            /* of this record */
  void *user;               /* handed back with every call */

  /* The value of a setting; 1 when there is one. */
  int32_t (*readSetting)(void *user, const char *name, char *out, int32_t outSize);
  /* The directory that user decoder libraries are named relative to; 1 when known. */
  int32_t (*applicationDirectory)(void *user, char *out, int32_t outSize);
  /* The user's name for an address; kind 0 a hardware address (6 bytes), 1 IPv4 (4 bytes), 2 IPv6 (16 bytes). 1 when
   * there is one. */
  int32_t (*addressAlias)(void *user, uint32_t kind, const uint8_t *address, char *out, int32_t outSize);
  /* The display name of a protocol identifier; 1 when there is one. */
  int32_t (*protocolDisplayName)(void *user, int32_t identifier, char *out, int32_t outSize);

  /* A definition table (QxDefinitionTable), or null when the definitions cannot be reached. */
  void *(*definitionTable)(void *user, int32_t which);
  /* The identifier of a port's entry; 0 when there is none. */
  int32_t (*hashFind)(void *user, void *table, uint16_t port, int32_t *identifier);
  /* The identifier of the entry of an address and port (0: any port of this address); 0 when there is none. */
  int32_t (*hashFindGenericIPPort)(void *user, void *table, const AddressSlot *address, uint16_t port,
                                   int32_t *identifier);
  /* Taken around look-ups in an address table; null when no lock is in use. */
  void (*lockTable)(void *user, void *table);
  void (*unlockTable)(void *user, void *table);
  /* Records that this address and port carry this protocol. transport: QxTransport; port2 and port3 are -1; extra may
   * be null. */
  void (*learn)(void *user, uint32_t transport, int32_t identifier, const AddressSlot *address, uint16_t port,
                int32_t port2, int32_t port3, const DynamicRecord *extra);

  /* The data segment `back` (from 1) before the current packet from this source to this destination (TCP); 1 when there
   * is one. The bytes stay good until the next packet is decoded. */
  int32_t (*earlierSegment)(void *user, const AddressSlot *source, uint16_t sourcePort,
                            const AddressSlot *destination, uint16_t destinationPort, int32_t back, QxSegment *out);
  /* 1 when the MIB has an entry for the dotted identifier. */
  int32_t (*findMibEntry)(void *user, const char *dotted, QxMibEntry *out);

  /* ---- The capture buffer that packets are saved from; called on the thread that saves ---- */

  /* 1 when the capture window answers with the buffer's state. */
  int32_t (*captureBufferState)(void *user, QxCaptureBufferState *out);
  /* The record of a packet (docs/capture-file.md), good until the next call, its record length readable; null when the
   * packet is not in the buffer any more. */
  const void *(*lendPacket)(void *user, uint64_t packetNumber);
  /* A ready-made information element for the file's header: type and length of the whole element (16 bits each, little-
   * endian), then its data; null for none. */
  const uint8_t *(*optionalElement)(void *user);
  /* How many packets compressed with FRF.9 were decompressed since the state was last asked for. */
  uint32_t (*decompressedPackets)(void *user);

  /* ---- The packet view's window; called on the thread of the window ---- */

  /* 1 when the host does this. Null, or a null request that is answered with 0: the menu does not offer it. */
  int32_t (*viewRequest)(void *user, const QxViewRequest *request);
} QxHost;

#ifdef __cplusplus
}
#endif
#endif
