// TCP options (RFC 9293 section 3.2 and those named below).
//
//   0     1       2
//   kind  length  value (length - 2)     kinds 0 and 1 are a single byte
#include "decoders/net/tcp_options.h"

#include "decoders/net/window_scales.h"

namespace qxview {
namespace {

enum OptionKind : uint32_t {
  kEndOfOptions = 0, kNoOperation = 1, kMaximumSegmentSize = 2, kWindowScale = 3, kSackPermitted = 4, kSack = 5,
  kEcho = 6, kEchoReply = 7, kTimestamps = 8, kPartialOrderPermitted = 9, kPartialOrderProfile = 10,
  kConnectionCount = 11, kConnectionCountNew = 12, kConnectionCountEcho = 13, kAlternateChecksum = 14,
  kAlternateChecksumData = 15, kTrailerChecksum = 18, kMd5Signature = 19,
};

// The kinds that are shown field by field.
constexpr auto kShownKinds = SortedNames({
    {kEndOfOptions, "End of Option List"}, {kNoOperation, "No-Operation"},
    {kMaximumSegmentSize, "Maximum Segment Size"}, {kWindowScale, "Window Scale"},
    {kSackPermitted, "SACK Permitted"}, {kSack, "SACK"}, {kEcho, "Echo"}, {kEchoReply, "Echo Reply"},
    {kTimestamps, "Timestamps"}, {kPartialOrderPermitted, "Partial Order Connection Permitted"},
    {kPartialOrderProfile, "Partial Order Service Profile"}, {kConnectionCount, "CC"},
    {kConnectionCountNew, "CC.NEW"}, {kConnectionCountEcho, "CC.ECHO"},
    {kAlternateChecksum, "TCP Alternate Checksum Request"}, {kAlternateChecksumData, "TCP Alternate Checksum Data"},
    {kTrailerChecksum, "Trailer Checksum"}, {kMd5Signature, "MD5 Signature"}});

// The other assigned kinds: their "Kind:" line has the name, their option line stays "Undefined".
constexpr auto kAssignedKinds = SortedNames({
    {16, "Skeeter"}, {17, "Bubba"}, {20, "SCPS Capabilities"}, {21, "Selective Negative Acknowledgements"},
    {22, "Record Boundaries"}, {23, "Corruption Experienced"}, {24, "SNAP"}, {26, "TCP Compression Filter"},
    {27, "Quick-Start Response"}, {28, "User Timeout"}, {29, "TCP Authentication"}, {30, "Multipath TCP"},
    {34, "TCP Fast Open Cookie"}, {69, "Encryption Negotiation"}, {172, "Accurate ECN Order 0"},
    {174, "Accurate ECN Order 1"}, {253, "RFC3692-style Experiment 1"}, {254, "RFC3692-style Experiment 2"}});

// RFC 2018: the blocks that the receiver holds behind the acknowledged bytes.
void AddSackBlocks(const Place& in, const Field& length, Cursor& body) {
  AddLine(in, length, "Length: %u bytes", length.value);
  Loop loop;
  for (uint32_t block = 1; MoreAt(in, body, loop); ++block) {
    const Field left = TakeU32(body);
    AddLine(in, left, "Left Edge of Block %u: %u", block, left.value);
    const Field right = TakeU32(body);
    AddLine(in, right, "Right Edge of Block %u: %u", block, right.value);
  }
}

// RFC 1693.
void AddPartialOrderProfile(const Place& in, Cursor& body) {
  const Field profile = TakeU8(body);
  const BitPicture start = BitsOf(profile, 0, 1), end = BitsOf(profile, 1, 1);
  AddBitLine(in, profile, "%s: Start Flag = %s", start.picture, SetOrNotSet(start.value));
  AddBitLine(in, profile, "%s: End Flag = %s", end.picture, SetOrNotSet(end.value));
  AddBitLine(in, profile, "%s: Reserved", BitsOf(profile, 2, 6).picture);
}

// RFC 1146. The two blanks before Fletcher's name stay: users search for these lines.
void AddAlternateChecksum(const Place& in, Cursor& body) {
  const Field number = TakeU8(body);
  const char* name = "Undefined Checksum";
  switch (number.value) {
    case 0: name = "TCP Checksum"; break;
    case 1: name = "8-bit  Fletcher's Algorithm"; break;
    case 2: name = "16-bit  Fletcher's Algorithm"; break;
    case 3: name = "Redundant Checksum Avoidance"; break;
    default: break;
  }
  AddLine(in, number, "Alternate Checksum: %u = %s", number.value, name);
}

// The value of an option; `length` is its length field. Result: the exponent of a window scale, or kNoWindowScale.
int32_t AddOptionValue(const Place& in, uint32_t kind, const Field& length, Cursor body) {
  switch (kind) {
    case kMaximumSegmentSize: {
      const Field size = TakeU16(body);
      AddLine(in, size, "Maximum Segment Length: %u", size.value);
      break;
    }
    case kWindowScale: {
      const Field exponent = TakeU8(body);
      AddLine(in, exponent, "Scale Value: %u", exponent.value);
      return exponent.here ? static_cast<int32_t>(exponent.value) : kNoWindowScale;
    }
    case kSack: AddSackBlocks(in, length, body); break;
    case kEcho:
    case kEchoReply: {
      const Field data = TakeBytes(body, 4);
      if (!data.here) break;
      AddLine(in, data, "Echo Data: 0x%.02X 0x%.02X 0x%.02X 0x%.02X", PeekU8(data), PeekU8(data, 1), PeekU8(data, 2),
              PeekU8(data, 3));
      break;
    }
    case kTimestamps: {
      const Field value = TakeU32(body);
      AddLine(in, value, "TSval: %u", value.value);
      const Field reply = TakeU32(body);
      AddLine(in, reply, "TSecr: %u", reply.value);
      break;
    }
    case kPartialOrderProfile: AddPartialOrderProfile(in, body); break;
    case kConnectionCount:
    case kConnectionCountNew:
    case kConnectionCountEcho: {
      const Field count = TakeU32(body);
      AddLine(in, count, "Connection Count: SEG.CC = %u", count.value);
      break;
    }
    case kAlternateChecksum: AddAlternateChecksum(in, body); break;
    case kAlternateChecksumData: AddBlock(in, Rest(body), "Checksum Data"); break;
    case kTrailerChecksum: {
      const Field checksum = TakeU8(body);
      AddLine(in, checksum, "Trailer Checksum: %u", checksum.value);
      break;
    }
    case kMd5Signature: AddBlock(in, Rest(body), "MD5 digest"); break;
    default: ShowTcpOptionValue(in, kind, body); break;
  }
  return kNoWindowScale;
}

}  // namespace

int32_t DecodeTcpOptions(const Place& in, Cursor c, int32_t declared) {
  const int32_t missing = declared - Left(c);
  int32_t exponent = kNoWindowScale;
  Loop loop;
  for (uint32_t number = 1; MoreAt(in, c, loop); ++number) {
    const Cursor start = c;
    const Field kind = TakeU8(c);
    const bool single = kind.value == kEndOfOptions || kind.value == kNoOperation;
    Field length = Stated(kind.offset, 0);
    length.here = false;
    if (!single) length = TakeU8(c);
    const int32_t valueLength = static_cast<int32_t>(length.value) - 2;
    const bool fits = length.here && valueLength >= 0 && valueLength <= Left(c) + missing;
    const Cursor value = TakeCursor(c, fits ? valueLength : 0);   // what of it was captured

    const Field option = Ahead(start, Taken(c) - Taken(start));
    const char* name = Silent(in) ? kUndefined : LookupName(kShownKinds, kind.value, nullptr);
    const Place inOption =
        Under(in, name ? AddLine(in, option, "Option #%u: %s", number, name)
                       : AddLine(in, option, "Option #%u: Type %u = %s", number, kind.value, kUndefined));
    AddLine(inOption, kind, "Kind: %u = %s", kind.value,
            name ? name : LookupName(kAssignedKinds, kind.value, kUndefined));
    AddLine(inOption, length, "Length: %u", length.value);
    if (single) {
      if (kind.value == kEndOfOptions) break;
      continue;
    }
    if (!fits) break;
    const int32_t scale = AddOptionValue(inOption, kind.value, length, value);
    if (scale != kNoWindowScale) exponent = scale;
  }
  return exponent;
}

}  // namespace qxview
