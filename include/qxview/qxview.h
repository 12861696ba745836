/* qxview: the exported functions of libqxview.so and qxview.dll. C linkage, unmangled names, the C calling convention
 * on every platform; usable from C and C++. Integers are 32-bit and signed unless said otherwise. Views and captures stand
 * for themselves: each may be used on a thread of its own, by one thread at a time; what has none of them as an argument
 * may be called on any thread. */
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

/* ---- Addresses, ports and checksums ---- */

/* The one's-complement sum of the pseudo-header that TCP and UDP checksums cover, over an IPv4 header of at least 20
 * bytes: both addresses, the protocol and the total length less the header length. In words as this machine reads them,
 * folded to 16 bits, so that it can be continued over the segment's bytes in memory. 0 for a null header. */
QXVIEW_EXPORT uint32_t PseudoHead(uint8_t *ipv4Header);

/* The same over an IPv6 header of 40 bytes: both addresses, Payload Length and Next Header. The two bytes of the result
 * in memory are the sum, high byte first. 0 for a null header. */
QXVIEW_EXPORT uint16_t CalculateIPv6PseudoChecksum(const uint8_t *ipv6Header);

/* Reads the address and port of a passive-mode reply, "(h1,h2,h3,h4,p1,p2)": six decimal numbers of a byte each behind
 * the first parenthesis. 1, or 0 with nothing written. */
QXVIEW_EXPORT int32_t AddDynamicFtpDataPort(const char *text, int32_t length, AddressSlot *slot, uint16_t *port);

/* What a UDP payload on ports without a definition is, as far as the settings let it be looked for. identifier:
 * 0x2050059 RTP (subType: the payload type) or 0x205005A RTCP (subType: the first packet's type), else 0 with subType
 * 0xFFFF; zero: 0; record: the stream's numbers. Any output may be null; null settings look for nothing. 1 when it is
 * one of them, else 0. The misspelt name is the one that programs link to. */
QXVIEW_EXPORT int32_t DetermineDynamicUDPPrototol(const DetectionSettings *settings, uint16_t sourcePort,
                                                  uint16_t destinationPort, const uint8_t *data, int32_t length,
                                                  uint32_t *identifier, uint16_t *subType, uint16_t *zero,
                                                  DynamicRecord *record);

/* ---- Summaries: one line of text for a packet list, from an application payload alone ----
 *
 * All take the payload and its length in bytes, then the output. Most write into a character buffer `out` of `outSize`
 * bytes; GetDNSDescription, GetMGCPDescription and GetGIOPDescription into a TextBuffer, whose last byte is always 0.
 * The output is emptied first, text that does not fit is cut, and it is always terminated.
 *
 * Result: 0 when the payload or the output is missing, when a size is below 1, when a text protocol's first line is empty
 * and where told below; otherwise 1. Nothing is kept between calls; they may be made on any thread. */

/* transport: 6 for TCP, 17 otherwise. lengthHint: on TCP the length prefix is taken for one when it is at most
 * lengthHint - 4. variant: 0 DNS, 1 LLMNR, 2 multicast DNS. A capacity of 0 takes nothing. */
QXVIEW_EXPORT int32_t GetDNSDescription(const uint8_t *data, int32_t length, TextBuffer *summary, int32_t transport,
                                        uint16_t lengthHint, int32_t variant);

/* 1 request, 2 reply, 3 continuation. isTls: a TLS record is summarised as one, with result 1. */
QXVIEW_EXPORT int32_t GetHTTPDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                         int32_t isTls);

/* port: names what application data carry (443 HTTP, ...). pending may be null; on entry the bytes that an earlier record
 * of this direction still lacks (0 for none), on return the bytes that the last record of this payload lacks. */
QXVIEW_EXPORT int32_t GetSSLTLSDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                           int32_t port, int32_t *pending);

/* messageLimit: characters of a reply's message; 0 none, negative what fits. isDataConnection: not 0 gives "FTP Data ". */
QXVIEW_EXPORT int32_t GetFTPDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                        int32_t messageLimit, int32_t isDataConnection);

/* messageLimit: characters of the text behind a code or command; 0 none, negative 300. */
QXVIEW_EXPORT int32_t GetSMTPDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                         int32_t messageLimit);

QXVIEW_EXPORT int32_t GetPOP3Description(const uint8_t *data, int32_t length, char *out, int32_t outSize);

/* commandLimit: commands shown, -1 for all. dataLimit: characters of text shown; 0 none, negative what fits.
 * printableOnly: not 0 leaves unprintable characters out while the user's setting CleanText is on. */
QXVIEW_EXPORT int32_t GetTelnetDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                           int32_t commandLimit, int32_t dataLimit, int32_t printableOnly);

/* flag: not 0 adds the numbers of the server process and the packet. */
QXVIEW_EXPORT int32_t GetTDSDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize, int32_t flag);

QXVIEW_EXPORT int32_t GetTNSDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize);

/* stream: the formats negotiated for this stream, for dynamic payload types; may be null. showSsrc: not 0 adds the SSRC.
 * 0 for what is no RTP packet of version 2 with a known payload type. */
QXVIEW_EXPORT int32_t GetRTPDescription(const uint8_t *data, int32_t length, const RtpStream *stream, int32_t showSsrc,
                                        char *out, int32_t outSize);

/* The display name of an RTP payload type; an empty text when it has none. Never null; the text is the module's. */
QXVIEW_EXPORT const char *GetRtpCodecDescription(int32_t payloadType);

/* 0 for what is no RTCP packet. */
QXVIEW_EXPORT int32_t GetRTCPDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize);

QXVIEW_EXPORT int32_t GetRTSPDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize);

/* flag: not 0 adds the call's identifier. 0 for what is no SIP message. */
QXVIEW_EXPORT int32_t GetSIPDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize, int32_t flag);

QXVIEW_EXPORT int32_t GetSCCPDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize);
QXVIEW_EXPORT int32_t GetMGCPDescription(const uint8_t *data, int32_t length, TextBuffer *summary);
QXVIEW_EXPORT int32_t GetMegacoH248Description(const uint8_t *data, int32_t length, char *out, int32_t outSize);

/* context: the caller's own, not looked at; may be null. */
QXVIEW_EXPORT int32_t GetSNMPDescription(void *context, const uint8_t *data, int32_t length, char *out,
                                         int32_t outSize);

QXVIEW_EXPORT int32_t GetLDAPDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize);
QXVIEW_EXPORT int32_t GetH323HostCallDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize);

/* flag: not 0 adds the request's number. */
QXVIEW_EXPORT int32_t GetH323GatekeeperDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                                   int32_t flag);

QXVIEW_EXPORT int32_t GetH245Description(const uint8_t *data, int32_t length, char *out, int32_t outSize);

/* directTcp: not 0 when a session header of 4 bytes stands in front. continuationAllowed: a payload without the protocol's
 * marker is "SMB/CIFS Continuation"; without the flag the result is 0. */
QXVIEW_EXPORT int32_t GetSMBDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                        int32_t directTcp, int32_t continuationAllowed);

QXVIEW_EXPORT int32_t GetCGPDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize);
QXVIEW_EXPORT int32_t GetIAX2Description(const uint8_t *data, int32_t length, char *out, int32_t outSize);
QXVIEW_EXPORT int32_t GetBitTorrentDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize);
QXVIEW_EXPORT int32_t GetCiscoWIDSDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize);
QXVIEW_EXPORT int32_t GetFixDescription(const uint8_t *data, int32_t length, char *out, uint16_t outSize);
QXVIEW_EXPORT int32_t GetGIOPDescription(const uint8_t *data, int32_t length, TextBuffer *summary);
QXVIEW_EXPORT int32_t GetLpdLprDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize);

/* flag: not 0 adds the payload's length. */
QXVIEW_EXPORT int32_t GetMinetDescription(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                          int32_t flag);

QXVIEW_EXPORT int32_t GetUNIStimDescriptionPublicDecode(const uint8_t *data, int32_t length, char *out,
                                                        int32_t outSize);

/* ---- Embedding: a view over a decode tree of its own ----
 *
 * A view is an opaque pointer. Lines are opaque values, 0 for none; they are good until the next packet is decoded. */

/* Output modes. */
#define QXVIEW_DISPLAY '9'   /* the decode tree */
#define QXVIEW_PRINT '7'     /* text lines to a file, as printed */
#define QXVIEW_SAVE '8'      /* text lines to a file, as saved */
#define QXVIEW_LIST '1'      /* no lines: headers alone, for QxView_PacketLine; several times as fast */

/* Why the last call on this thread of a function of this family did not succeed; an empty text when it did. UTF-8, good
 * until the next call on this thread. */
QXVIEW_EXPORT const char *QxView_LastError(void);

/* A view on this host; null: the stand-alone host, with the user's settings file. What the record does not fill in is the
 * stand-alone host's: the built-in definitions and MIB names, the settings' defaults, a history of segments. What the
 * record's functions need must outlive the view. Null when there is no memory or the settings file is damaged (a message
 * on standard error says where). */
QXVIEW_EXPORT void *QxView_CreateView(const QxHost *host);

/* Kinds of messages. */
#define QXVIEW_NOTE 0    /* something worth knowing: packets without a decoder, user libraries that are not there */
#define QXVIEW_ERROR 1   /* why there is no view */

/* Takes a message: one line in UTF-8 without a line end, good during the call. Called on the thread that uses the view. */
typedef void (*QxMessageFunction)(void *user, int32_t kind, const char *text);

/* How a view is made. The caller sets size and zeroes what it does not use. */
typedef struct QxViewOptions {
  uint32_t size;                /* of this record */
  const QxHost *host;           /* as for QxView_CreateView */
  const char *settings;         /* what a settings file holds (docs/settings.md), instead of the user's settings and of the
                                   host's; an empty text: the defaults */
  QxMessageFunction message;    /* gets the view's messages; null: there are none */
  void *messageUser;            /* handed back with every message */
} QxViewOptions;

/* The same with options; null options: none. Nothing is written to standard error. */
QXVIEW_EXPORT void *QxView_CreateViewWith(const QxViewOptions *options);
QXVIEW_EXPORT void QxView_DestroyView(void *view);

/* Where lines go from now on. file: for the print and save modes an open file, a descriptor or on Windows a handle; it
 * stays the caller's. Lines reach it when the mode is set again or the view is destroyed. 1, or 0 for a mode that is
 * none, or when an earlier write to the file did not succeed. */
QXVIEW_EXPORT int32_t QxView_SetOutput(void *view, int32_t mode, intptr_t file);

/* Decodes the frame of a record as capture buffers hold it (docs/capture-file.md). skipBytes: bytes of the frame to
 * pass over. 1, a medium decoder's own result, or 0 for a medium without a decoder and for a record whose lengths
 * contradict each other, which is not decoded (QxView_LastError says so). */
QXVIEW_EXPORT int32_t QxView_DecodeFrame(void *view, const void *frameRecord, uint32_t userParam1, uint32_t userParam2,
                                         int32_t skipBytes);

/* Decodes plain bytes. mediaType: 0 Ethernet, 1 Token Ring, 2 FDDI, 3 WAN, 6 ATM, 8 Fibre Channel, 9 802.11.
 * originalLength: bytes on the wire. nanoseconds: time since 1970-01-01T00:00:00Z. Packets number themselves from 1. */
QXVIEW_EXPORT int32_t QxView_DecodeBytes(void *view, int32_t mediaType, const uint8_t *data, int32_t length,
                                         uint32_t originalLength, int64_t nanoseconds);

/* The same by the link type of a capture, the number that pcap and pcapng files hold (LINKTYPE_...): what stands in front
 * of the medium's header, as in radio captures, is told apart. */
QXVIEW_EXPORT int32_t QxView_DecodeLinkType(void *view, uint16_t linkType, const uint8_t *data, int32_t length,
                                            uint32_t originalLength, int64_t nanoseconds);

/* The line of the list for the packet that was decoded last. */
typedef struct QxPacketLine {
  uint32_t size;             /* of this record, set by the caller */
  uint32_t length;           /* bytes on the wire */
  uint64_t number;
  int64_t nanoseconds;       /* since 1970-01-01T00:00:00Z */
  const char *source;        /* UTF-8, good until the next packet; an empty text for none */
  const char *destination;
  const char *summary;
} QxPacketLine;

/* 1, or 0 before the first packet. In the mode QXVIEW_LIST nothing is decoded twice for it. */
QXVIEW_EXPORT int32_t QxView_PacketLine(void *view, QxPacketLine *line);

/* The first top-level line; the next line of the same parent; the first child. */
QXVIEW_EXPORT uintptr_t QxView_FirstLine(void *view);
QXVIEW_EXPORT uintptr_t QxView_NextLine(void *view, uintptr_t line);
QXVIEW_EXPORT uintptr_t QxView_FirstChild(void *view, uintptr_t line);

/* Copies the text (Windows-1252), cut to outSize - 1 bytes and terminated; the length copied. */
QXVIEW_EXPORT int32_t QxView_LineText(void *view, uintptr_t line, char *out, int32_t outSize);
/* The text in UTF-8, cut between characters to outSize - 1 bytes and terminated; `out` may be null when outSize is 0. The
 * length of the whole text, which did not fit when it is outSize or more; -1 for no line. */
QXVIEW_EXPORT int32_t QxView_LineTextUtf8(void *view, uintptr_t line, char *out, int32_t outSize);
/* The bytes of the frame that the line was decoded from; any output may be null. 1, or 0 for no line. kind: 0 fields,
 * 8 raw data. */
QXVIEW_EXPORT int32_t QxView_LineRange(void *view, uintptr_t line, int32_t *offset, uint32_t *length, int32_t *kind);
/* The image of the line's level, 0 to 22; -1 for no line. */
QXVIEW_EXPORT int32_t QxView_LineImage(void *view, uintptr_t line);

/* Keys and values of lines: what a line says, as data. Off at first, for it costs some time; with `keep` not 0 the lines
 * of the packets to come have them. 1, or 0 when there is no memory. */
QXVIEW_EXPORT int32_t QxView_KeepKeys(void *view, int32_t keep);
/* The line's key, such as "ip.time_to_live", cut to outSize - 1 bytes and terminated; its length, 0 for none. */
QXVIEW_EXPORT int32_t QxView_LineKey(void *view, uintptr_t line, char *out, int32_t outSize);

/* Kinds of values. */
#define QXVIEW_NO_VALUE 0
#define QXVIEW_NUMBER 1   /* unsigned */
#define QXVIEW_SIGNED 2   /* number holds it in two's complement */
#define QXVIEW_TEXT 3

typedef struct QxValue {
  uint32_t size;             /* of this record, set by the caller */
  int32_t kind;
  uint64_t number;
  const char *text;          /* UTF-8, good until the next call for this view; null for other kinds */
} QxValue;

/* The line's value: 1; 0 for a line that has no key. */
QXVIEW_EXPORT int32_t QxView_LineValue(void *view, uintptr_t line, QxValue *value);

/* All of a line at once. Members may be added at the end: size tells what is there. */
typedef struct QxLineInfo {
  uint32_t size;             /* of this record, set by the library */
  int32_t depth;             /* 0 for a top-level line */
  uintptr_t line;
  const char *text;          /* UTF-8, terminated; good during the call */
  int32_t textLength;
  int32_t image;             /* the line's level, 0 to 22 */
  int32_t offset;            /* the bytes of the frame that it was decoded from */
  uint32_t length;
  int32_t kind;              /* 0 fields, 8 raw data */
  const char *key;           /* null for none, and while keys are not kept */
  const QxValue *value;      /* with the key */
} QxLineInfo;

/* Takes a line; not 0 ends the visit. The view is not to be decoded into or destroyed meanwhile. */
typedef int32_t (*QxLineVisitor)(void *user, const QxLineInfo *line);

/* Shows every line to the visitor, children behind their parent. How many it was shown; -1 on failure. */
QXVIEW_EXPORT int32_t QxView_VisitLines(void *view, QxLineVisitor visit, void *user);

/* The number of the packet shown; -1 when the view is missing. */
QXVIEW_EXPORT int64_t GetCurrentPacketNumber(void *view);

/* Removes every line of the view. */
QXVIEW_EXPORT void ClearDecodeLists(void *view);

/* ---- Captures: pcap, pcapng and capture buffer files, compressed or not ---- */

/* A packet as the capture holds it. */
typedef struct QxPacket {
  uint32_t size;             /* of this record, set by the caller */
  uint16_t linkType;         /* LINKTYPE number, 0 where the file has none */
  uint16_t direction;        /* 0 unknown, 1 received, 2 sent */
  uint64_t number;           /* from 1, in the order of the file */
  int64_t nanoseconds;       /* since 1970-01-01T00:00:00Z */
  uint32_t capturedLength;   /* bytes at data */
  uint32_t originalLength;   /* bytes on the wire */
  const uint8_t *data;
  const void *record;        /* for QxView_DecodeFrame */
  uint32_t interfaceIndex;   /* pcapng: the interface's place in its section */
} QxPacket;

/* Opens a capture file, or standard input for "-". path: UTF-8 on Windows. Null when it cannot be opened or is of no kind
 * that is known. */
QXVIEW_EXPORT void *QxView_OpenCapture(const char *path);
/* The next packet, good until the next call: 1; 0 at the end; -1 when the file is damaged from here on. */
QXVIEW_EXPORT int32_t QxView_NextPacket(void *capture, QxPacket *packet);
/* How much of the file has been read, 0 to 100; -1 when its size is not known. */
QXVIEW_EXPORT int32_t QxView_CapturePercent(void *capture);
QXVIEW_EXPORT void QxView_CloseCapture(void *capture);

/* ---- The view's window (Windows; elsewhere there is none, and the results are null and 0) ---- */

/* Makes the window that shows the view's lines in a tree view control, empty until the next packet is decoded.
 * parent: the window that it becomes a child of, at this place of the client area; null for a window of its own. A width
 * or height below 1 fills the parent. Lines are the control's item handles as long as the window is there. The control's
 * notifications go on to the parent in their ANSI form, but for TVN_DELETEITEM; WM_SETFONT sent to the window goes to
 * the control. The line that the user selects stays selected from packet to packet. To be called, as everything that
 * this view is given from then on, on the thread that runs the window. The window goes with its parent, with the view
 * or by DestroyWindow. The window's handle; null when the view has a window already, or when it cannot be made. */
QXVIEW_EXPORT void *CreateViewWindow(void *view, void *parent, int32_t left, int32_t top, int32_t width,
                                     int32_t height);

/* Puts the window right after its surroundings changed: one that fills its parent is fitted to it, and the selected line
 * is scrolled into sight. 1, or 0 for a view without a window. */
QXVIEW_EXPORT int32_t CorrectView(void *view);

/* Gives the keyboard to the tree. 1, or 0 for a view without a window. */
QXVIEW_EXPORT int32_t SetFocusOnDecodeList(void *view);

/* ---- Capture buffer files (docs/capture-file.md) ---- */

/* A save. The caller sets size and zeroes what it does not use. */
typedef struct QxSaveRecord {
  uint32_t size;                /* of this record */
  int32_t append;               /* not 0: behind the packets of an existing file, numbered on from its last one */
  intptr_t file;                /* a descriptor, on Windows a handle, at the file's start; open for writing, to append for
                                   reading too. It stays the caller's */
  uint64_t firstPacket;         /* the range, both included */
  uint64_t lastPacket;
  uint64_t firstNumber;         /* a new file: the number that its first packet gets; 0 is taken as 1 */
  int32_t savePartial;          /* not 0: packets are cut to partialBytes */
  uint16_t partialBytes;
  uint16_t zero;
  int32_t source;               /* 0 the decode window, 1 session decryption, 2 a probe */
  uint32_t headerByte;          /* a byte for the file's header, left out when it is above 254 */
  int32_t useOptionalElement;   /* not 0: the host is asked for its information element */
  int32_t tellDecompressed;     /* not 0: success tells how many packets were decompressed */
  const char *name;             /* kept in a new file, at most 260 characters */
  const char *fileName;         /* for messages */
} QxSaveRecord;

/* Saves a range, or the packets of a list in its order (the record's range is not used), from the host's capture buffer.
 * decompressed: gets how many packets were decompressed meanwhile; may be null. The result: 1 done; 3 a full buffer or 5
 * the last one could not be written; 8 too short, 9 of an older format or 10 of another kind to append to; 11 nothing to
 * save; 12 the host did not answer, or a packet is not there any more; 13 the header could not be written. After a failure
 * the file is left as written so far. */
QXVIEW_EXPORT int32_t SaveCaptureBuffer(const QxHost *host, const QxSaveRecord *save, uint32_t *decompressed);
QXVIEW_EXPORT int32_t QxView_SavePackets(const QxHost *host, const QxSaveRecord *save, const uint64_t *packets,
                                         int32_t count, uint32_t *decompressed);

/* Shows the message of a result code: a message box, off Windows a line on standard error. 6 and 7 are for a caller that
 * could not open the file for writing or for appending. window: the box's owner or null. 1 when the code has a message. */
QXVIEW_EXPORT int32_t DisplaySaveBufferResultMsg(void *window, const QxSaveRecord *save, int32_t result,
                                                 uint32_t count);

/* The dialogs that ask for a capture buffer file: 1 with the name in fileName (terminated within size bytes, on entry the
 * name to offer), 0 when cancelled, which off Windows they always are. */
QXVIEW_EXPORT int32_t DisplaySaveBufferDialog(void *window, int32_t fromProbe, char *fileName, int32_t size);
QXVIEW_EXPORT int32_t GetLoadBufferFileName(void *window, int32_t skipDuplicates, char *fileName, int32_t size);
QXVIEW_EXPORT int32_t QxView_OpenCaptureFileDlg(void *window, int32_t skipDuplicates, char *fileName, int32_t size);

#ifdef __cplusplus
}
#endif
#endif
