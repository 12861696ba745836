// QUIC's frames (RFC 9000, section 19; DATAGRAM: RFC 9221; acknowledgement frequency, timestamps, several paths and other
// drafts with registered types): acknowledgements, streams, flow control, connection IDs, the end.
//
//   type (variable length)   fields, most of them numbers of variable length
#include "decoders/quic/quic_frames.h"

#include "core/elements.h"
#include "decoders/quic/http3.h"
#include "decoders/quic/quic_streams.h"

namespace qxview {
namespace {

constexpr uint32_t kPadding = 0x00, kStream = 0x08, kLastStream = 0x0F;
constexpr uint32_t kStreamOffset = 4, kStreamLength = 2, kStreamFin = 1;
constexpr uint64_t kCryptoError = 0x100, kLastCryptoError = 0x1FF;

constexpr auto kErrorNames = SortedNames({
    {0x00, "NO_ERROR"}, {0x01, "INTERNAL_ERROR"}, {0x02, "CONNECTION_REFUSED"}, {0x03, "FLOW_CONTROL_ERROR"},
    {0x04, "STREAM_LIMIT_ERROR"}, {0x05, "STREAM_STATE_ERROR"}, {0x06, "FINAL_SIZE_ERROR"}, {0x07, "FRAME_ENCODING_ERROR"},
    {0x08, "TRANSPORT_PARAMETER_ERROR"}, {0x09, "CONNECTION_ID_LIMIT_ERROR"}, {0x0A, "PROTOCOL_VIOLATION"},
    {0x0B, "INVALID_TOKEN"}, {0x0C, "APPLICATION_ERROR"}, {0x0D, "CRYPTO_BUFFER_EXCEEDED"}, {0x0E, "KEY_UPDATE_ERROR"},
    {0x0F, "AEAD_LIMIT_REACHED"}, {0x10, "NO_VIABLE_PATH"}, {0x11, "VERSION_NEGOTIATION_ERROR"},
});

// A frame while it is shown.
struct Frame {
  uint64_t type, stream, offset, length, count, code;
  QuicSession* session;
  QuicKind kind;
  Field data;
};

void ShowValue(const Place& in, Cursor& c, const char* label, Frame&) { ShowQuicNumber(in, c, label); }
void ShowOffset(const Place& in, Cursor& c, const char* label, Frame& frame) { frame.offset = ShowQuicNumber(in, c, label); }
void ShowLength(const Place& in, Cursor& c, const char* label, Frame& frame) { frame.length = ShowQuicNumber(in, c, label); }
void ShowCount(const Place& in, Cursor& c, const char* label, Frame& frame) { frame.count = ShowQuicNumber(in, c, label); }
constexpr Row<Frame> Value(const char* label) { return Shown<Frame>(label, ShowValue); }
constexpr Row<Frame> Length(const char* label) { return Shown<Frame>(label, ShowLength); }

const char* ApplicationErrorName(const Frame& frame) {
  return frame.session->state.content == QuicContent::kHttp3 ? Http3ErrorName(static_cast<uint32_t>(frame.code)) : nullptr;
}

void ShowStreamId(const Place& in, Cursor& c, const char* label, Frame& frame) {
  const WideField id = TakeQuicNumber(c);
  frame.stream = id.wide;
  AddLine(in, id, "%s: %I64u (%s-Initiated, %s)", label, id.wide, id.wide & 1 ? "Server" : "Client",
          id.wide & 2 ? "Unidirectional" : "Bidirectional");
  AppendToParent(in, id, ", Stream %I64u", id.wide);
}
constexpr Row<Frame> StreamId() { return Shown<Frame>("Stream ID", ShowStreamId); }

void ShowTransportError(const Place& in, Cursor& c, const char* label, Frame& frame) {
  const WideField code = TakeQuicNumber(c);
  frame.code = code.wide;
  if (code.wide >= kCryptoError && code.wide <= kLastCryptoError) {
    AddLine(in, code, "%s: 0x%I64X = CRYPTO_ERROR (TLS alert %u)", label, code.wide, code.value & 0xFF);
  } else {
    AddLine(in, code, "%s: 0x%I64X = %s", label, code.wide, QuicErrorName(code.wide));
  }
}
void ShowApplicationError(const Place& in, Cursor& c, const char* label, Frame& frame) {
  const WideField code = TakeQuicNumber(c);
  frame.code = code.wide;
  if (const char* name = code.wide >> 32 ? nullptr : ApplicationErrorName(frame)) {
    AddLine(in, code, "%s: 0x%I64X = %s", label, code.wide, name);
  } else {
    AddLine(in, code, "%s: 0x%I64X", label, code.wide);
  }
}
constexpr Row<Frame> ApplicationError() { return Shown<Frame>("Application Error Code", ShowApplicationError); }

// Bytes behind the number that counts them.
void ShowCounted(const Place& in, Cursor& c, const char* label, Frame& frame) {
  frame.data = TakeBytes(c, static_cast<int64_t>(frame.length < INT32_MAX ? frame.length : INT32_MAX));
  if (frame.data.length) AddLine(in, frame.data, "%s: %s", label, HexDigits(frame.data));
}
void ShowReason(const Place& in, Cursor& c, const char* label, Frame& frame) {
  frame.data = TakeBytes(c, static_cast<int64_t>(frame.length < INT32_MAX ? frame.length : INT32_MAX));
  if (frame.data.length) AddLine(in, frame.data, "%s: %s", label, Text(frame.data));
}

// Gaps and ranges, from the largest number downwards.
void ShowAckRanges(const Place& in, Cursor& c, const char*, Frame& frame) {
  Loop loop;
  while (frame.count > 0 && MoreAt(in, c, loop)) {
    --frame.count;
    const WideField gap = TakeQuicNumber(c);
    AddLine(in, gap, "Gap: %I64u", gap.wide);
    const WideField range = TakeQuicNumber(c);
    AddLine(in, range, "ACK Range: %I64u", range.wide);
  }
  if (frame.count > 0) c.ranShort = true;
}
void ShowEcnCounts(const Place& in, Cursor& c, const char*, Frame& frame) {
  if (!(frame.type & 1)) return;
  ShowQuicNumber(in, c, "ECT(0) Count");
  ShowQuicNumber(in, c, "ECT(1) Count");
  ShowQuicNumber(in, c, "ECN-CE Count");
}
void ShowLargest(const Place& in, Cursor& c, const char* label, Frame&) {
  const WideField largest = TakeQuicNumber(c);
  AddLine(in, largest, "%s: %I64u", label, largest.wide);
  AppendToParent(in, largest, ", up to %I64u", largest.wide);
}

void ShowToken(const Place& in, Cursor& c, const char* label, Frame&) {
  const Field token = TakeBytes(c, 16);
  AddLine(in, token, "%s: %s", label, HexDigits(token));
}
void ShowConnectionId(const Place& in, Cursor& c, const char*, Frame& frame) {
  const Field length = TakeU8(c);
  AddLine(in, length, "Connection ID Length: %u", length.value);
  const Field id = TakeBytes(c, length.value);
  AddLine(in, id, "Connection ID: %s", HexDigits(id));
  RememberQuicId(in, id, *frame.session);
}
void ShowPathData(const Place& in, Cursor& c, const char* label, Frame&) {
  const Field data = TakeBytes(c, 8);
  AddLine(in, data, "%s: %s", label, HexDigits(data));
}

void ShowCrypto(const Place& in, Cursor& c, const char* label, Frame& frame) {
  AppendToParent(in, Ahead(c, 0), ", %I64u bytes at %I64u", frame.length, frame.offset);
  const Field data = TakeBytes(c, static_cast<int64_t>(frame.length < INT32_MAX ? frame.length : INT32_MAX));
  const Place under = Under(in, AddLine(in, data, "%s: %d bytes", label, data.length));
  if (data.here) ShowQuicCryptoData(under, data, frame.offset, frame.kind, *frame.session);
}

// The offset and the length stand there where the type says so; without a length the data end with the packet.
void ShowStream(const Place& in, Cursor& c, const char* label, Frame& frame) {
  const uint32_t type = static_cast<uint32_t>(frame.type);
  frame.offset = 0;
  if (type & kStreamOffset) frame.offset = ShowQuicNumber(in, c, "Offset");
  frame.length = static_cast<uint64_t>(Left(c));
  if (type & kStreamLength) frame.length = ShowQuicNumber(in, c, "Length");
  AppendToParent(in, Ahead(c, 0), ", %I64u bytes at %I64u%s", frame.length, frame.offset, type & kStreamFin ? ", FIN" : "");
  const Field data = TakeBytes(c, static_cast<int64_t>(frame.length < INT32_MAX ? frame.length : INT32_MAX));
  const Place under = Under(in, AddLine(in, data, "%s: %d bytes", label, data.length));
  if (data.here) ShowQuicStreamData(under, data, frame.stream, frame.offset, type & kStreamFin, *frame.session);
}

void ShowDatagram(const Place& in, Cursor& c, const char* label, Frame& frame) {
  frame.length = static_cast<uint64_t>(Left(c));
  if (frame.type & 1) frame.length = ShowQuicNumber(in, c, "Length");
  const Field data = TakeBytes(c, static_cast<int64_t>(frame.length < INT32_MAX ? frame.length : INT32_MAX));
  if (data.length && frame.session->state.content == QuicContent::kHttp3) {
    ShowHttp3Datagram(in, CursorOver(data), label);
  } else if (data.length) {
    AddBlock(in, data, label);
  }
}
void ShowAddress(const Place& in, Cursor& c, const char*, Frame& frame) {
  if (frame.type & 1) {
    const Field address = TakeBytes(c, 16);
    AddLine(in, address, "IPv6 Address: %s", IPv6Text(address.bytes));
  } else {
    const Field address = TakeBytes(c, 4);
    AddLine(in, address, "IPv4 Address: %s", IPv4Text(address.bytes));
  }
  const Field port = TakeU16(c);
  AddLine(in, port, "Port: %u", port.value);
}

constexpr auto kAckRows = Rows<Frame>({
    Shown<Frame>("Largest Acknowledged", ShowLargest), Value("ACK Delay"), Shown<Frame>("ACK Range Count", ShowCount),
    Value("First ACK Range"), Shown<Frame>("Ranges", ShowAckRanges), Shown<Frame>("Counts", ShowEcnCounts)});
constexpr auto kPathAckRows = Rows<Frame>({
    Value("Path ID"), Shown<Frame>("Largest Acknowledged", ShowLargest), Value("ACK Delay"),
    Shown<Frame>("ACK Range Count", ShowCount), Value("First ACK Range"), Shown<Frame>("Ranges", ShowAckRanges),
    Shown<Frame>("Counts", ShowEcnCounts)});
constexpr auto kResetRows = Rows<Frame>({StreamId(), ApplicationError(), Value("Final Size")});
constexpr auto kResetAtRows = Rows<Frame>({StreamId(), ApplicationError(), Value("Final Size"), Value("Reliable Size")});
constexpr auto kStopRows = Rows<Frame>({StreamId(), ApplicationError()});
constexpr auto kCryptoRows = Rows<Frame>({
    Shown<Frame>("Offset", ShowOffset), Length("Length"), Shown<Frame>("Crypto Data", ShowCrypto)});
constexpr auto kTokenRows = Rows<Frame>({Length("Token Length"), Shown<Frame>("Token", ShowCounted)});
constexpr auto kStreamRows = Rows<Frame>({StreamId(), Shown<Frame>("Stream Data", ShowStream)});
constexpr auto kMaxDataRows = Rows<Frame>({Value("Maximum Data")});
constexpr auto kMaxStreamDataRows = Rows<Frame>({StreamId(), Value("Maximum Stream Data")});
constexpr auto kMaxStreamsRows = Rows<Frame>({Value("Maximum Streams")});
constexpr auto kDataBlockedRows = Rows<Frame>({Value("Maximum Data")});
constexpr auto kStreamDataBlockedRows = Rows<Frame>({StreamId(), Value("Maximum Stream Data")});
constexpr auto kNewIdRows = Rows<Frame>({
    Value("Sequence Number"), Value("Retire Prior To"), Shown<Frame>("Connection ID", ShowConnectionId),
    Shown<Frame>("Stateless Reset Token", ShowToken)});
constexpr auto kPathNewIdRows = Rows<Frame>({
    Value("Path ID"), Value("Sequence Number"), Value("Retire Prior To"), Shown<Frame>("Connection ID", ShowConnectionId),
    Shown<Frame>("Stateless Reset Token", ShowToken)});
constexpr auto kRetireIdRows = Rows<Frame>({Value("Sequence Number")});
constexpr auto kPathRetireIdRows = Rows<Frame>({Value("Path ID"), Value("Sequence Number")});
constexpr auto kPathDataRows = Rows<Frame>({Shown<Frame>("Data", ShowPathData)});
constexpr auto kCloseRows = Rows<Frame>({
    Shown<Frame>("Error Code", ShowTransportError), Value("Offending Frame Type"), Length("Reason Phrase Length"),
    Shown<Frame>("Reason Phrase", ShowReason)});
constexpr auto kApplicationCloseRows = Rows<Frame>({
    ApplicationError(), Length("Reason Phrase Length"), Shown<Frame>("Reason Phrase", ShowReason)});
constexpr auto kDatagramRows = Rows<Frame>({Shown<Frame>("Datagram", ShowDatagram)});
constexpr auto kFrequencyRows = Rows<Frame>({
    Value("Sequence Number"), Value("Ack-Eliciting Threshold"), Value("Requested Max Ack Delay"),
    Value("Reordering Threshold")});
constexpr auto kTimestampRows = Rows<Frame>({Value("Timestamp")});
constexpr auto kPathAbandonRows = Rows<Frame>({Value("Path ID"), Shown<Frame>("Error Code", ShowTransportError)});
constexpr auto kPathStatusRows = Rows<Frame>({Value("Path ID"), Value("Path Status Sequence Number")});
constexpr auto kMaxPathRows = Rows<Frame>({Value("Maximum Path ID")});
constexpr auto kPathIdsBlockedRows = Rows<Frame>({Value("Path ID"), Value("Next Sequence Number")});
constexpr auto kObservedRows = Rows<Frame>({Value("Sequence Number"), Shown<Frame>("Address", ShowAddress)});

constexpr auto kFrames = Choices<Frame>({
    {0x00, "PADDING"}, {0x01, "PING"}, {0x02, "ACK", kAckRows}, {0x03, "ACK with ECN", kAckRows},
    {0x04, "RESET_STREAM", kResetRows}, {0x05, "STOP_SENDING", kStopRows}, {0x06, "CRYPTO", kCryptoRows},
    {0x07, "NEW_TOKEN", kTokenRows}, {0x08, "STREAM", kStreamRows}, {0x09, "STREAM", kStreamRows},
    {0x0A, "STREAM", kStreamRows}, {0x0B, "STREAM", kStreamRows}, {0x0C, "STREAM", kStreamRows},
    {0x0D, "STREAM", kStreamRows}, {0x0E, "STREAM", kStreamRows}, {0x0F, "STREAM", kStreamRows},
    {0x10, "MAX_DATA", kMaxDataRows}, {0x11, "MAX_STREAM_DATA", kMaxStreamDataRows},
    {0x12, "MAX_STREAMS (bidirectional)", kMaxStreamsRows}, {0x13, "MAX_STREAMS (unidirectional)", kMaxStreamsRows},
    {0x14, "DATA_BLOCKED", kDataBlockedRows}, {0x15, "STREAM_DATA_BLOCKED", kStreamDataBlockedRows},
    {0x16, "STREAMS_BLOCKED (bidirectional)", kMaxStreamsRows},
    {0x17, "STREAMS_BLOCKED (unidirectional)", kMaxStreamsRows}, {0x18, "NEW_CONNECTION_ID", kNewIdRows},
    {0x19, "RETIRE_CONNECTION_ID", kRetireIdRows}, {0x1A, "PATH_CHALLENGE", kPathDataRows},
    {0x1B, "PATH_RESPONSE", kPathDataRows}, {0x1C, "CONNECTION_CLOSE", kCloseRows},
    {0x1D, "CONNECTION_CLOSE (application)", kApplicationCloseRows}, {0x1E, "HANDSHAKE_DONE"}, {0x1F, "IMMEDIATE_ACK"},
    {0x24, "RESET_STREAM_AT", kResetAtRows}, {0x30, "DATAGRAM", kDatagramRows}, {0x31, "DATAGRAM", kDatagramRows},
    {0xAC, "IMMEDIATE_ACK"}, {0xAF, "ACK_FREQUENCY", kFrequencyRows}, {0x2F5, "TIMESTAMP", kTimestampRows},
    {0x9F81A6, "OBSERVED_ADDRESS", kObservedRows}, {0x9F81A7, "OBSERVED_ADDRESS", kObservedRows},
    {0x15228C00, "PATH_ACK", kPathAckRows}, {0x15228C01, "PATH_ACK with ECN", kPathAckRows},
    {0x15228C05, "PATH_ABANDON", kPathAbandonRows}, {0x15228C07, "PATH_STATUS_BACKUP", kPathStatusRows},
    {0x15228C08, "PATH_STATUS_AVAILABLE", kPathStatusRows}, {0x15228C09, "PATH_NEW_CONNECTION_ID", kPathNewIdRows},
    {0x15228C0A, "PATH_RETIRE_CONNECTION_ID", kPathRetireIdRows}, {0x15228C0C, "MAX_PATH_ID", kMaxPathRows},
    {0x15228C0D, "PATHS_BLOCKED", kMaxPathRows}, {0x15228C0E, "PATH_CIDS_BLOCKED", kPathIdsBlockedRows},
});

// How many zeros stand in front; packets are filled up with a thousand of them.
int32_t CountZeros(const Cursor& c) {
  constexpr int32_t kStep = 4;
  int32_t count = 0;
  while (count <= Left(c) - kStep && PeekU32(c, count) == 0) count += kStep;
  while (count < Left(c) && PeekU8(c, count) == kPadding) ++count;
  return count;
}

// A run of zeros is a line.
void ShowPadding(const Place& in, Cursor& c) {
  const int32_t length = CountZeros(c);
  const Field run = TakeBytes(c, length);
  const Place frame = Under(in, AddLine(in, run, "Frame: PADDING, %d bytes", length));
  AddLine(frame, Slice(run, 0, 1), "Frame Type: 0x%.02X = %s", 0, "PADDING");
  AddLine(frame, run, "Padding Length: %d", length);
}

void ShowStreamFlags(const Place& in, const Field& type) {
  AddBitLine(in, type, "%s: OFF = %s", BitsOf(type, 5, 1).picture, TrueOrFalse(type.value & kStreamOffset));
  AddBitLine(in, type, "%s: LEN = %s", BitsOf(type, 6, 1).picture, TrueOrFalse(type.value & kStreamLength));
  AddBitLine(in, type, "%s: FIN = %s", BitsOf(type, 7, 1).picture, TrueOrFalse(type.value & kStreamFin));
}

}  // namespace

const char* QuicErrorName(uint64_t code) {
  constexpr uint64_t kAbandonPath = 0x004150504C494142;   // "APPLIAB" and its like: codes that are texts
  if (code == kAbandonPath) return "APPLICATION_ABANDON_PATH";
  return code >> 32 ? kUnknown : LookupName(kErrorNames, static_cast<uint32_t>(code));
}

void ShowQuicFrames(const Place& in, const Field& payload, const QuicOpened& opened, QuicKind kind, QuicSession& session) {
  Cursor c = MakeCursor(opened.payload, payload.offset, opened.length);
  session.turn = {opened.number + 1, 0};
  Loop loop;
  while (MoreAt(in, c, loop)) {
    ++session.turn.frame;
    if (PeekU8(c) == kPadding) {
      ShowPadding(in, c);
      continue;
    }
    const int32_t start = c.offset;
    const WideField type = TakeQuicNumber(c);
    const Choice<Frame>* choice = type.wide >> 32 ? nullptr : FindChoice<Frame>(kFrames, type.value);
    const char* name = choice ? choice->name : kUnknown;
    const Place under = Under(in, AddLine(in, type, "Frame: %s", name));
    const Place bits = Under(under, AddLine(under, type, "Frame Type: 0x%.02I64X = %s", type.wide, name));
    if (!choice) {   // nothing tells where it ends
      AddBlock(under, Rest(c), "Data");
      break;
    }
    if (type.value >= kStream && type.value <= kLastStream) ShowStreamFlags(bits, type);
    Frame frame{};
    frame.type = type.wide;
    frame.session = &session;
    frame.kind = kind;
    if (choice->rows.count) ShowRows<Frame>(under, c, choice->rows, frame, choice->name);
    if (!under.dead) SetRange(under, under.parent, start, c.offset - start);
    if (c.ranShort) {
      c.ranShort = false;
      AddBlock(in, Rest(c), "Data");
    }
  }
}

}  // namespace qxview
