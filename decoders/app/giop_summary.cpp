// The packet list's text for GIOP, the messages of CORBA (OMG CORBA 3.3, part 2, chapter 9).
//
//   "GIOP"   major   minor   flags (bit 0: little-endian)   type   size (4)
//   request 1.0, 1.1:  service contexts   request (4)   flags (1, 1.1: and 3)   object key   operation
//   request 1.2:       request (4)   flags (1)   reserved (3)   target address   operation
//   reply 1.0, 1.1:    service contexts   request (4)   status (4)            1.2: request (4)   status (4)
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

constexpr int32_t kHeader = 12;
enum MessageType : uint32_t { kRequest = 0, kReply = 1, kCancel = 2, kLocateRequest = 3, kLocateReply = 4, kFragment = 7 };

constexpr auto kTypeNames = SortedNames({
    {0, "Request"}, {1, "Reply"}, {2, "Cancel Request"}, {3, "Locate Request"}, {4, "Locate Reply"},
    {5, "Close Connection"}, {6, "Message Error"}, {7, "Fragment"},
});

constexpr auto kReplyNames = SortedNames({
    {0, "No Exception"}, {1, "User Exception"}, {2, "System Exception"}, {3, "Location Forward"},
    {4, "Location Forward Permanent"}, {5, "Needs Addressing Mode"},
});

// Values of the common data representation: numbers stand at multiples of their size from the message's start on.
struct CdrReader {
  Cursor c;
  bool little;
};

Field TakeNumber(CdrReader& reader) {
  TakeBytes(reader.c, -Taken(reader.c) & 3);
  return reader.little ? TakeLittleU32(reader.c) : TakeU32(reader.c);
}

// A sequence of octets, or a string with its terminator.
Field TakeOctets(CdrReader& reader) {
  const Field length = TakeNumber(reader);
  return TakeBytes(reader.c, length.here ? static_cast<int64_t>(length.value) : -1);
}

void SkipServiceContexts(CdrReader& reader) {
  constexpr uint32_t kMost = 32;
  const Field count = TakeNumber(reader);
  if (count.value > kMost) reader.c.ranShort = true;
  for (uint32_t i = 0; i < count.value && !reader.c.ranShort; ++i) {
    TakeNumber(reader);
    TakeOctets(reader);
  }
}

// The object that a request of version 1.2 is for, given by key; profiles and references are stepped over unread.
bool SkipTarget(CdrReader& reader) {
  constexpr uint32_t kKey = 0;
  TakeBytes(reader.c, -Taken(reader.c) & 1);
  const Field form = reader.little ? TakeLittleU16(reader.c) : TakeU16(reader.c);
  if (!form.here || form.value != kKey) return false;
  return TakeOctets(reader).here;
}

void DescribeRequest(SummaryText& text, CdrReader reader, uint32_t minor) {
  if (minor < 2) SkipServiceContexts(reader);
  const Field request = TakeNumber(reader);
  if (request.here) Add(text, ", Request: %u", request.value);
  const Field wantsReply = TakeU8(reader.c);
  if (wantsReply.here && wantsReply.value == 0) Add(text, ", One-way");
  if (minor > 0) TakeBytes(reader.c, 3);
  if (minor < 2) {
    TakeOctets(reader);
  } else if (!SkipTarget(reader)) {
    return;
  }
  const Field operation = TakeOctets(reader);
  if (operation.here) AddValue(text, "Operation", Text(operation));
}

void DescribeReply(SummaryText& text, CdrReader reader, uint32_t minor) {
  if (minor < 2) SkipServiceContexts(reader);
  const Field request = TakeNumber(reader), status = TakeNumber(reader);
  if (request.here) Add(text, ", Request: %u", request.value);
  if (status.here) Add(text, ", Status: %s", LookupName(kReplyNames, status.value));
}

}  // namespace

int32_t DescribeGiop(const uint8_t* data, int32_t length, TextBuffer* summary) {
  constexpr uint32_t kLittleFlag = 1, kFragmentFlag = 2;
  SummaryText text;
  if (!BeginSummary(text, data, length, summary)) return 0;
  const Cursor c = MakeCursor(data, 0, length);
  if (length < kHeader || !PeekIs(c, 0, "GIOP")) return Add(text, "GIOP Continuation Data"), 1;
  const uint32_t major = PeekU8(c, 4), minor = PeekU8(c, 5), flags = PeekU8(c, 6), type = PeekU8(c, 7);
  CdrReader reader{c, (flags & kLittleFlag) != 0};
  TakeBytes(reader.c, 8);
  const uint32_t size = TakeNumber(reader).value;
  Add(text, "GIOP %u.%u %s", major, minor, LookupName(kTypeNames, type));
  switch (type) {
    case kRequest: DescribeRequest(text, reader, minor); break;
    case kReply: DescribeReply(text, reader, minor); break;
    case kCancel:
    case kLocateRequest:
    case kLocateReply:
    case kFragment: {
      const Field request = TakeNumber(reader);
      if (request.here && !(type == kFragment && minor < 2)) Add(text, ", Request: %u", request.value);
      break;
    }
    default: break;
  }
  Add(text, ", Size: %u%s", size, flags & kFragmentFlag ? ", Fragmented" : "");
  return 1;
}

}  // namespace qxview
