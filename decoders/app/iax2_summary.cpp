// The packet list's text for IAX2 (RFC 5456): calls and their media over one UDP port.
//
//   full frame:  1 + source call (15)   R + destination call (15)   time stamp (4)   out, in sequence   type   subclass
//   mini frame:  0 + source call (15)   time stamp (2)   voice
//   meta frame:  zero (16)   kind
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

constexpr uint32_t kTopBit = 0x8000;
enum FrameType : uint32_t { kDtmfEnd = 1, kVoice = 2, kVideo = 3, kControl = 4, kIax = 6, kTextFrame = 7, kDtmfBegin = 12 };

constexpr auto kFrameNames = SortedNames({
    {1, "DTMF End"}, {2, "Voice"}, {3, "Video"}, {4, "Control"}, {5, "Null"}, {6, "IAX"}, {7, "Text"}, {8, "Image"},
    {9, "HTML"}, {10, "Comfort Noise"}, {12, "DTMF Begin"},
});

constexpr auto kIaxNames = SortedNames({
    {1, "NEW"}, {2, "PING"}, {3, "PONG"}, {4, "ACK"}, {5, "HANGUP"}, {6, "REJECT"}, {7, "ACCEPT"}, {8, "AUTHREQ"},
    {9, "AUTHREP"}, {10, "INVAL"}, {11, "LAGRQ"}, {12, "LAGRP"}, {13, "REGREQ"}, {14, "REGAUTH"}, {15, "REGACK"},
    {16, "REGREJ"}, {17, "REGREL"}, {18, "VNAK"}, {19, "DPREQ"}, {20, "DPREP"}, {21, "DIAL"}, {22, "TXREQ"},
    {23, "TXCNT"}, {24, "TXACC"}, {25, "TXREADY"}, {26, "TXREL"}, {27, "TXREJ"}, {28, "QUELCH"}, {29, "UNQUELCH"},
    {30, "POKE"}, {32, "MWI"}, {33, "UNSUPPORT"}, {34, "TRANSFER"}, {35, "PROVISION"}, {36, "FWDOWNL"},
    {37, "FWDATA"}, {38, "TXMEDIA"}, {39, "RTKEY"}, {40, "CALLTOKEN"},
});

constexpr auto kControlNames = SortedNames({
    {1, "Hangup"}, {2, "Ring"}, {3, "Ringing"}, {4, "Answer"}, {5, "Busy"}, {8, "Congestion"}, {9, "Flash Hook"},
    {11, "Option"}, {12, "Key Radio"}, {13, "Unkey Radio"}, {14, "Call Progress"}, {15, "Call Proceeding"},
    {16, "Hold"}, {17, "Unhold"}, {255, "Stop Sounds"},
});

// Media formats are powers of two; the subclass holds the power behind its top bit, or the format itself.
constexpr auto kFormatNames = SortedNames({
    {0x1, "G.723.1"}, {0x2, "GSM"}, {0x4, "G.711 mu-law"}, {0x8, "G.711 a-law"}, {0x10, "G.726"}, {0x20, "IMA ADPCM"},
    {0x40, "16-bit Linear"}, {0x80, "LPC10"}, {0x100, "G.729"}, {0x200, "Speex"}, {0x400, "iLBC"},
    {0x800, "G.726 AAL2"}, {0x1000, "G.722"}, {0x2000, "AMR"}, {0x10000, "JPEG"}, {0x20000, "PNG"},
    {0x40000, "H.261"}, {0x80000, "H.263"}, {0x100000, "H.263p"}, {0x200000, "H.264"},
});

uint32_t FormatOf(uint32_t subclass) {
  constexpr uint32_t kIsPower = 0x80, kPower = 0x1F;
  return subclass & kIsPower ? uint32_t{1} << (subclass & kPower) : subclass;
}

void DescribeElements(SummaryText& text, Cursor c) {
  enum Element : uint32_t { kCalled = 1, kCalling = 2, kCallingName = 4, kUser = 6, kCause = 22 };
  constexpr int32_t kMostElements = 32;
  for (int32_t i = 0; i < kMostElements && Left(c) >= 2; ++i) {
    const uint32_t element = TakeU8(c).value;
    const Cursor body = TakeCursor(c, TakeU8(c).value);
    const TextSlice value = TextOf(body.at, Left(body));
    switch (element) {
      case kCalled: AddValue(text, "Called", value); break;
      case kCalling: AddValue(text, "Calling", value); break;
      case kCallingName: AddValue(text, "Name", value); break;
      case kUser: AddValue(text, "User", value); break;
      case kCause: AddValue(text, "Cause", value); break;
      default: break;
    }
  }
}

void DescribeSubclass(SummaryText& text, uint32_t type, uint32_t subclass) {
  switch (type) {
    case kIax: return Add(text, LookupName(kIaxNames, subclass));
    case kControl: return Add(text, "Control: %s", LookupName(kControlNames, subclass));
    case kDtmfBegin:
    case kDtmfEnd:
      return Add(text, "%s: %c", LookupName(kFrameNames, type),
                 IsPrintable(static_cast<uint8_t>(subclass)) ? subclass : uint32_t{'.'});
    case kVoice:
    case kVideo:
      return Add(text, "%s: %s", LookupName(kFrameNames, type), LookupName(kFormatNames, FormatOf(subclass)));
    default: return Add(text, LookupName(kFrameNames, type));
  }
}

void DescribeFullFrame(SummaryText& text, Cursor c) {
  const uint32_t source = TakeU16(c).value & ~kTopBit;
  const uint32_t destination = TakeU16(c).value;
  const uint32_t time = TakeU32(c).value;
  const uint32_t out = TakeU8(c).value, in = TakeU8(c).value;
  const uint32_t type = TakeU8(c).value;
  const Field subclass = TakeU8(c);
  if (!subclass.here) return Add(text, "Data");
  DescribeSubclass(text, type, subclass.value);
  Add(text, ", Source Call: %u, Destination Call: %u, Time: %u, Out: %u, In: %u%s", source, destination & ~kTopBit,
      time, out, in, destination & kTopBit ? ", Retransmission" : "");
  if (type == kIax) DescribeElements(text, c);
  if (type == kTextFrame) AddValue(text, "Text", TextOf(c.at, Left(c)));
}

}  // namespace

int32_t DescribeIax2(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "IAX2 ");
  Cursor c = MakeCursor(data, 0, length);
  if (length < 4) return Add(text, "Data"), 1;
  const uint32_t first = PeekU16(c);
  if (first & kTopBit) return DescribeFullFrame(text, c), 1;
  const uint32_t second = PeekU16(c, 2);
  if (first != 0) {
    Add(text, "Mini Voice, Source Call: %u, Time: %u, %d bytes", first, second, length - 4);
  } else if (second & kTopBit) {
    Add(text, "Meta Video, Source Call: %u", second & ~kTopBit);
  } else {
    Add(text, "Meta Trunk");
  }
  return 1;
}

}  // namespace qxview
