/* Types of pointers to the exported functions, NAMEFunction for each, for programs that load the library while they run:
 *
 *   QxView_CreateViewFunction create = (QxView_CreateViewFunction)GetProcAddress(module, "QxView_CreateView");
 *
 * Made from qxview.h by scripts/make_function_types.py. */
#ifndef QXVIEW_FUNCTIONS_H
#define QXVIEW_FUNCTIONS_H

#include "qxview/qxview.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef uint32_t (*GetQxViewVersionFunction)(void);
typedef const char *(*GetNameDescriptorPlusFunction)(const NameTableEntry *table, uint32_t code, int32_t count,
                                                      const char *defaultName);
typedef uint32_t (*PseudoHeadFunction)(uint8_t *ipv4Header);
typedef uint16_t (*CalculateIPv6PseudoChecksumFunction)(const uint8_t *ipv6Header);
typedef int32_t (*AddDynamicFtpDataPortFunction)(const char *text, int32_t length, AddressSlot *slot, uint16_t *port);
typedef int32_t (*DetermineDynamicUDPPrototolFunction)(const DetectionSettings *settings, uint16_t sourcePort,
                                                        uint16_t destinationPort, const uint8_t *data, int32_t length,
                                                        uint32_t *identifier, uint16_t *subType, uint16_t *zero,
                                                        DynamicRecord *record);
typedef int32_t (*GetDNSDescriptionFunction)(const uint8_t *data, int32_t length, TextBuffer *summary,
                                              int32_t transport, uint16_t lengthHint, int32_t variant);
typedef int32_t (*GetHTTPDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                               int32_t isTls);
typedef int32_t (*GetSSLTLSDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                                 int32_t port, int32_t *pending);
typedef int32_t (*GetFTPDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                              int32_t messageLimit, int32_t isDataConnection);
typedef int32_t (*GetSMTPDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                               int32_t messageLimit);
typedef int32_t (*GetPOP3DescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize);
typedef int32_t (*GetTelnetDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                                 int32_t commandLimit, int32_t dataLimit, int32_t printableOnly);
typedef int32_t (*GetTDSDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                              int32_t flag);
typedef int32_t (*GetTNSDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize);
typedef int32_t (*GetRTPDescriptionFunction)(const uint8_t *data, int32_t length, const RtpStream *stream,
                                              int32_t showSsrc, char *out, int32_t outSize);
typedef const char *(*GetRtpCodecDescriptionFunction)(int32_t payloadType);
typedef int32_t (*GetRTCPDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize);
typedef int32_t (*GetRTSPDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize);
typedef int32_t (*GetSIPDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                              int32_t flag);
typedef int32_t (*GetSCCPDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize);
typedef int32_t (*GetMGCPDescriptionFunction)(const uint8_t *data, int32_t length, TextBuffer *summary);
typedef int32_t (*GetMegacoH248DescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize);
typedef int32_t (*GetSNMPDescriptionFunction)(void *context, const uint8_t *data, int32_t length, char *out,
                                               int32_t outSize);
typedef int32_t (*GetLDAPDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize);
typedef int32_t (*GetH323HostCallDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize);
typedef int32_t (*GetH323GatekeeperDescriptionFunction)(const uint8_t *data, int32_t length, char *out,
                                                         int32_t outSize, int32_t flag);
typedef int32_t (*GetH245DescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize);
typedef int32_t (*GetSMBDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                              int32_t directTcp, int32_t continuationAllowed);
typedef int32_t (*GetCGPDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize);
typedef int32_t (*GetIAX2DescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize);
typedef int32_t (*GetBitTorrentDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize);
typedef int32_t (*GetCiscoWIDSDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize);
typedef int32_t (*GetFixDescriptionFunction)(const uint8_t *data, int32_t length, char *out, uint16_t outSize);
typedef int32_t (*GetGIOPDescriptionFunction)(const uint8_t *data, int32_t length, TextBuffer *summary);
typedef int32_t (*GetLpdLprDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize);
typedef int32_t (*GetMinetDescriptionFunction)(const uint8_t *data, int32_t length, char *out, int32_t outSize,
                                                int32_t flag);
typedef int32_t (*GetUNIStimDescriptionPublicDecodeFunction)(const uint8_t *data, int32_t length, char *out,
                                                              int32_t outSize);
typedef const char *(*QxView_LastErrorFunction)(void);
typedef void *(*QxView_CreateViewFunction)(const QxHost *host);
typedef void *(*QxView_CreateViewWithFunction)(const QxViewOptions *options);
typedef void (*QxView_DestroyViewFunction)(void *view);
typedef int32_t (*QxView_SetOutputFunction)(void *view, int32_t mode, intptr_t file);
typedef int32_t (*QxView_DecodeFrameFunction)(void *view, const void *frameRecord, uint32_t userParam1,
                                               uint32_t userParam2, int32_t skipBytes);
typedef int32_t (*QxView_DecodeBytesFunction)(void *view, int32_t mediaType, const uint8_t *data, int32_t length,
                                               uint32_t originalLength, int64_t nanoseconds);
typedef int32_t (*QxView_DecodeLinkTypeFunction)(void *view, uint16_t linkType, const uint8_t *data, int32_t length,
                                                  uint32_t originalLength, int64_t nanoseconds);
typedef int32_t (*QxView_PacketLineFunction)(void *view, QxPacketLine *line);
typedef uintptr_t (*QxView_FirstLineFunction)(void *view);
typedef uintptr_t (*QxView_NextLineFunction)(void *view, uintptr_t line);
typedef uintptr_t (*QxView_FirstChildFunction)(void *view, uintptr_t line);
typedef int32_t (*QxView_LineTextFunction)(void *view, uintptr_t line, char *out, int32_t outSize);
typedef int32_t (*QxView_LineTextUtf8Function)(void *view, uintptr_t line, char *out, int32_t outSize);
typedef int32_t (*QxView_LineRangeFunction)(void *view, uintptr_t line, int32_t *offset, uint32_t *length,
                                             int32_t *kind);
typedef int32_t (*QxView_LineImageFunction)(void *view, uintptr_t line);
typedef int32_t (*QxView_KeepKeysFunction)(void *view, int32_t keep);
typedef int32_t (*QxView_LineKeyFunction)(void *view, uintptr_t line, char *out, int32_t outSize);
typedef int32_t (*QxView_LineValueFunction)(void *view, uintptr_t line, QxValue *value);
typedef int32_t (*QxView_VisitLinesFunction)(void *view, QxLineVisitor visit, void *user);
typedef int64_t (*GetCurrentPacketNumberFunction)(void *view);
typedef void (*ClearDecodeListsFunction)(void *view);
typedef void *(*QxView_OpenCaptureFunction)(const char *path);
typedef int32_t (*QxView_NextPacketFunction)(void *capture, QxPacket *packet);
typedef int32_t (*QxView_CapturePercentFunction)(void *capture);
typedef void (*QxView_CloseCaptureFunction)(void *capture);
typedef void *(*CreateViewWindowFunction)(void *view, void *parent, int32_t left, int32_t top, int32_t width,
                                           int32_t height);
typedef int32_t (*CorrectViewFunction)(void *view);
typedef int32_t (*SetFocusOnDecodeListFunction)(void *view);
typedef int32_t (*SaveCaptureBufferFunction)(const QxHost *host, const QxSaveRecord *save, uint32_t *decompressed);
typedef int32_t (*QxView_SavePacketsFunction)(const QxHost *host, const QxSaveRecord *save, const uint64_t *packets,
                                               int32_t count, uint32_t *decompressed);
typedef int32_t (*DisplaySaveBufferResultMsgFunction)(void *window, const QxSaveRecord *save, int32_t result,
                                                       uint32_t count);
typedef int32_t (*DisplaySaveBufferDialogFunction)(void *window, int32_t fromProbe, char *fileName, int32_t size);
typedef int32_t (*GetLoadBufferFileNameFunction)(void *window, int32_t skipDuplicates, char *fileName, int32_t size);
typedef int32_t (*QxView_OpenCaptureFileDlgFunction)(void *window, int32_t skipDuplicates, char *fileName,
                                                      int32_t size);

#ifdef __cplusplus
}
#endif
#endif
