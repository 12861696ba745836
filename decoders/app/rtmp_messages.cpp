// Messages of Real-Time Messaging (its public text 1.0, sections 5.4 and 7): control of the connection, commands and data in
// the Action Message Format, shared objects, audio and video as Flash Video tags them.
#include "core/rows.h"
#include "decoders/app/rtmp.h"

namespace qxview {
namespace {

enum MessageType : uint32_t {
  kSetChunkSize = 1, kAbort = 2, kAcknowledgement = 3, kUserControl = 4, kWindowSize = 5, kPeerBandwidth = 6, kAudio = 8,
  kVideo = 9, kData3 = 15, kSharedObject3 = 16, kCommand3 = 17, kData0 = 18, kSharedObject0 = 19, kCommand0 = 20,
  kAggregate = 22
};
constexpr auto kMessageNames = SortedNames({
    {kSetChunkSize, "Set Chunk Size"}, {kAbort, "Abort Message"}, {kAcknowledgement, "Acknowledgement"},
    {kUserControl, "User Control"}, {kWindowSize, "Window Acknowledgement Size"}, {kPeerBandwidth, "Set Peer Bandwidth"},
    {kAudio, "Audio"}, {kVideo, "Video"}, {kData3, "Data (AMF 3)"}, {kSharedObject3, "Shared Object (AMF 3)"},
    {kCommand3, "Command (AMF 3)"}, {kData0, "Data"}, {kSharedObject0, "Shared Object"}, {kCommand0, "Command"},
    {kAggregate, "Aggregate"}});

constexpr uint32_t kTextMarker = 2;   // of values that are texts

enum ControlEvent : uint32_t {
  kStreamBegin, kStreamEnd, kStreamDry, kSetBufferLength, kStreamIsRecorded, kPingRequest = 6, kPingResponse, kBufferEmpty = 31,
  kBufferReady
};
constexpr auto kEventNames = SortedNames({
    {kStreamBegin, "Stream Begin"}, {kStreamEnd, "Stream EOF"}, {kStreamDry, "Stream Dry"},
    {kSetBufferLength, "Set Buffer Length"}, {kStreamIsRecorded, "Stream Is Recorded"}, {kPingRequest, "Ping Request"},
    {kPingResponse, "Ping Response"}, {kBufferEmpty, "Buffer Empty"}, {kBufferReady, "Buffer Ready"}});
constexpr auto kLimitNames = SortedNames({{0, "Hard"}, {1, "Soft"}, {2, "Dynamic"}});
constexpr auto kSoundNames = SortedNames({
    {0, "Linear PCM, Platform Endian"}, {1, "ADPCM"}, {2, "MP3"}, {3, "Linear PCM, Little Endian"}, {4, "Nellymoser 16 kHz Mono"},
    {5, "Nellymoser 8 kHz Mono"}, {6, "Nellymoser"}, {7, "G.711 A-Law"}, {8, "G.711 u-Law"}, {10, "AAC"}, {11, "Speex"},
    {14, "MP3 8 kHz"}, {15, "Device-Specific"}});
constexpr auto kRateNames = SortedNames({{0, "5.5 kHz"}, {1, "11 kHz"}, {2, "22 kHz"}, {3, "44 kHz"}});
constexpr auto kSampleNames = SortedNames({{0, "8 Bits"}, {1, "16 Bits"}});
constexpr auto kChannelNames = SortedNames({{0, "Mono"}, {1, "Stereo"}});
constexpr auto kAacNames = SortedNames({{0, "Sequence Header"}, {1, "Raw"}});
constexpr auto kFrameNames = SortedNames({
    {1, "Key Frame"}, {2, "Inter Frame"}, {3, "Disposable Inter Frame"}, {4, "Generated Key Frame"}, {5, "Information or Command"}});
constexpr auto kCodecNames = SortedNames({
    {1, "JPEG"}, {2, "Sorenson H.263"}, {3, "Screen Video"}, {4, "VP6"}, {5, "VP6 with Alpha"}, {6, "Screen Video 2"}, {7, "AVC"}});
constexpr auto kAvcNames = SortedNames({{0, "Sequence Header"}, {1, "NAL Units"}, {2, "End of Sequence"}});
constexpr auto kObjectEvents = SortedNames({
    {1, "Use"}, {2, "Release"}, {3, "Request Change"}, {4, "Change"}, {5, "Success"}, {6, "Send Message"}, {7, "Status"},
    {8, "Clear"}, {9, "Remove"}, {10, "Request Remove"}, {11, "Use Success"}});

struct Message { Field value, length, type; };
constexpr auto kChunkSize = Rows<Message>({Number(4, "Chunk Size", " bytes").Into(&Message::value)});
constexpr auto kChunkStream = Rows<Message>({Number(4, "Chunk Stream ID")});
constexpr auto kSequence = Rows<Message>({Number(4, "Sequence Number")});
constexpr auto kWindow = Rows<Message>({Number(4, "Window Size", " bytes")});
constexpr auto kBandwidth = Rows<Message>({Number(4, "Window Size", " bytes"), Number(1, "Limit Type", kLimitNames)});
constexpr auto kEvent = Rows<Message>({Number(2, "Event Type", kEventNames).Into(&Message::type)});
constexpr auto kEventStream = Rows<Message>({Number(4, "Stream ID")});
constexpr auto kEventBuffer = Rows<Message>({Number(4, "Stream ID"), Number(4, "Buffer Length", " ms")});
constexpr auto kEventTime = Rows<Message>({Number(4, "Timestamp")});
constexpr auto kSound = Rows<Message>({
    Word(1), Bits(0, 4, "Sound Format", kSoundNames), Bits(4, 2, "Sound Rate", kRateNames),
    Bits(6, 1, "Sound Size", kSampleNames), Bits(7, 1, "Sound Type", kChannelNames)});
constexpr auto kAac = Rows<Message>({Number(1, "AAC Packet Type", kAacNames)});
constexpr auto kPicture = Rows<Message>({
    Word(1), Bits(0, 4, "Frame Type", kFrameNames), Bits(4, 4, "Codec ID", kCodecNames)});
constexpr auto kAvc = Rows<Message>({Number(1, "AVC Packet Type", kAvcNames), Signed(3, "Composition Time", " ms")});
constexpr auto kObjectFlags = SortedNames({{2, "Persistent"}});
constexpr auto kObject = Rows<Message>({
    Number(4, "Object Version"), Flags(4, "Object Flags", kObjectFlags), Number(4, "Reserved")});
constexpr auto kObjectEvent = Rows<Message>({Number(1, "Object Event", kObjectEvents), Number(4, "Event Length").Into(&Message::length)});
constexpr auto kTag = Rows<Message>({
    Number(1, "Tag Type", kMessageNames).Into(&Message::type), Number(3, "Tag Length").Into(&Message::length),
    Number(3, "Tag Timestamp"), Number(1, "Timestamp Extension"), Number(3, "Tag Stream ID")});
constexpr auto kBack = Rows<Message>({Number(4, "Back Pointer")});

void ShowControl(const Place& in, Cursor& c) {
  const uint32_t event = ShowRows(in, c, kEvent).type.value;
  switch (event) {
    case kSetBufferLength: ShowRows(in, c, kEventBuffer); break;
    case kPingRequest:
    case kPingResponse: ShowRows(in, c, kEventTime); break;
    default: ShowRows(in, c, kEventStream); break;
  }
}

void ShowSound(const Place& in, Cursor& c) {
  constexpr uint32_t kAacFormat = 10;
  const uint32_t format = PeekU8(c) >> 4;
  ShowRows(in, c, kSound);
  if (format == kAacFormat) ShowRows(in, c, kAac);
}

void ShowPicture(const Place& in, Cursor& c) {
  constexpr uint32_t kAvcCodec = 7;
  const uint32_t codec = PeekU8(c) & 15;
  ShowRows(in, c, kPicture);
  if (codec == kAvcCodec) ShowRows(in, c, kAvc);
}

// A command's name is its first value, a text.
void ShowCommand(const Place& in, Cursor& c) {
  const Field name = PeekBytes(c, 3, static_cast<int32_t>(PeekU16(c, 1)));
  if (PeekU8(c) == kTextMarker) AppendToParent(in, name, ", %s", Text(name));
  ShowAmf0Values(in, c);
}

// A name, and what happened to the object's properties.
void ShowSharedObject(const Place& in, Cursor& c) {
  TakeAmf0Text(in, c, "Object Name");   // keys: text Object Name, Property Name
  ShowRows(in, c, kObject);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    constexpr uint32_t kRequestChange = 3, kChange = 4, kSendMessage = 6;
    const uint32_t event = PeekU8(c);
    const Place under = Under(in, AddLine(in, Ahead(c, 5), "Event: %s", LookupName(kObjectEvents, event)));
    const Message head = ShowRows(under, c, kObjectEvent);
    Cursor data = TakeCursor(c, head.length.value);
    if (event == kRequestChange || event == kChange) TakeAmf0Text(under, data, "Property Name");
    if (event == kRequestChange || event == kChange || event == kSendMessage) ShowAmf0Values(under, data);
    AddBlock(under, Rest(data), "Event Data");
  }
}

// Messages as Flash Video has tags: each with its head, and its length once more behind it.
void ShowAggregate(const Place& in, Cursor& c, uint32_t* chunkSize) {
  constexpr int32_t kHead = 11;
  Loop loop;
  while (Left(c) >= kHead && MoreAt(in, c, loop)) {
    const Place under = Under(in, AddLine(in, Ahead(c, kHead), "Tag: %s", RtmpMessageName(PeekU8(c))));
    const Message head = ShowRows(under, c, kTag);
    const Cursor data = TakeCursor(c, head.length.value);
    if (head.type.value != kAggregate) ShowRtmpMessage(under, data, head.type.value, chunkSize);
    ShowRows(under, c, kBack);
  }
}

}  // namespace

const char* RtmpMessageName(uint32_t type) { return LookupName(kMessageNames, type); }

bool IsRtmpRecord(uint32_t type) { return type != kAudio && type != kVideo && type != kAggregate; }

void ShowRtmpMessage(const Place& in, Cursor c, uint32_t type, uint32_t* chunkSize) {
  switch (type) {
    case kSetChunkSize: {
      const Field size = ShowRows(in, c, kChunkSize).value;
      if (size.here && size.value > 0 && size.value <= INT32_MAX) *chunkSize = size.value;
      break;
    }
    case kAbort: ShowRows(in, c, kChunkStream); break;
    case kAcknowledgement: ShowRows(in, c, kSequence); break;
    case kUserControl: ShowControl(in, c); break;
    case kWindowSize: ShowRows(in, c, kWindow); break;
    case kPeerBandwidth: ShowRows(in, c, kBandwidth); break;
    case kAudio: ShowSound(in, c); break;
    case kVideo: ShowPicture(in, c); break;
    case kSharedObject3:
    case kData3:
    case kCommand3: {   // an octet in front tells that values are of version 0 up to one that says otherwise
      const Field format = TakeU8(c);
      AddLine(in, format, "Format: %u", format.value);
      if (type == kSharedObject3) ShowSharedObject(in, c);
      else ShowCommand(in, c);
      break;
    }
    case kSharedObject0: ShowSharedObject(in, c); break;
    case kData0:
    case kCommand0: ShowCommand(in, c); break;
    case kAggregate: ShowAggregate(in, c, chunkSize); break;
    default: break;
  }
  AddBlock(in, Rest(c), type == kAudio || type == kVideo ? "Media Data" : "Message Data");
}

}  // namespace qxview
