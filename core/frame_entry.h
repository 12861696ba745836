// The frame entry: one captured frame into lines.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Decodes the frame by its medium. In display mode the tree is then expanded as the settings say and the selection put
// back on the line that was selected in the packet before. Result: 1, a medium decoder's own result, or 0 for a medium
// that has no decoder. Outside forced decoding the caller has cleared the tree. `skipBytes` leading bytes of the frame
// are passed over.
int32_t DecodeFrame(View* view, const FrameRecord* record, uint32_t userParam1, uint32_t userParam2,
                    int32_t skipBytes);

// Link types that no medium's number stands for lead to their decoders by these keys of the table of encapsulations.
constexpr uint32_t kLinkTypeKeys = 0x10000;

// Whoever decodes the frame: its medium, or its link type where that has no medium's number; null for nobody.
const DecoderRow* FindFrameDecoder(const FrameRecord* record);

// The bracketed note of the receive errors; empty for a good frame.
const char* ReceiveErrorNote(uint32_t receiveErrors);

// A frame's first lines: the summary with the receive-error note. Result: the place for its children.
Place AddFrameSummary(const Place& at, const Cursor& c);

// The size lines under the summary that media share: "Saved partial packet size" for a partial record.
void AddPartialSize(const Place& in, const Cursor& c);

// What is shown of a frame beside its bytes: texts, each ended by a zero byte. The first is how its time is shown, empty
// for UTC; each further one is a line. Records of files do not have it, whoever shows them may add it.
constexpr uint16_t kExtensionNotes = 2;

// The last lines under the summary: the time of capture, where the record has one, and its notes.
void AddCaptureLines(const Place& in);

// The number in the buffer the frame was captured in, where the record carries it.
bool OriginalPacketNumber(const FrameRecord* record, uint64_t* number);

// Wire length with the check sequence, which captures mostly leave out.
uint32_t SizeWithCheckSequence(const FrameRecord* record, uint32_t checkSequenceLength);

// An address with the user's name for it: "name [address]", or the address alone.
ShortText<80> CheckAlias(const View* view, uint32_t kind, const uint8_t* address);

// The same of a MAC address, made when the line is formatted.
struct NamedMac : DeferredText {
  NamedMac(const View* in, const uint8_t* bytes) : DeferredText{Write}, view(in), address(bytes) {}
  static int32_t Write(const DeferredText& text, char* out, int32_t size);
  const View* view;
  const uint8_t* address;
};
FormatArgument ArgumentOf(const NamedMac& mac);

}  // namespace qxview
