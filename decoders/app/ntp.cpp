// Network Time Protocol (RFC 5905; version 3: RFC 1305; control messages: RFC 9327): what time is it, and how sure is
// that?
#include "core/rows.h"
#include "core/times.h"

namespace qxview {
namespace {

constexpr uint32_t kControl = 6, kPrivate = 7;
constexpr int32_t kHeaderSize = 48, kControlSize = 12, kPrivateSize = 8;

constexpr auto kLeapNames = SortedNames({
    {0, "No Warning"}, {1, "Last Minute of the Day Has 61 Seconds"}, {2, "Last Minute of the Day Has 59 Seconds"},
    {3, "Unknown (Clock Unsynchronized)"}});
constexpr auto kModeNames = SortedNames({
    {0, "Reserved"}, {1, "Symmetric Active"}, {2, "Symmetric Passive"}, {3, "Client"}, {4, "Server"},
    {5, "Broadcast"}, {6, "Control Message"}, {7, "Private Use"}});
constexpr auto kOperationNames = SortedNames({
    {0, "Reserved"}, {1, "Read Status"}, {2, "Read Variables"}, {3, "Write Variables"}, {4, "Read Clock Variables"},
    {5, "Write Clock Variables"}, {6, "Set Trap Address/Port"}, {7, "Trap Response"}, {8, "Runtime Configuration"},
    {9, "Export Configuration"}, {10, "Retrieve Remote Address Statistics"}, {11, "Retrieve Ordered List"},
    {12, "Request Client-Specific Nonce"}, {31, "Unset Trap Address/Port"}});

const char* StratumName(uint32_t stratum) {
  return stratum == 0    ? "Unspecified or Invalid"
         : stratum == 1  ? "Primary Server"
         : stratum < 16  ? "Secondary Server"
         : stratum == 16 ? "Unsynchronized"
                         : "Reserved";
}

struct Ntp {
  Field version, mode, stratum;
};

constexpr auto kFirst = Rows<Ntp>({
    Word(1), Bits(0, 2, "Leap Indicator", kLeapNames), Bits(2, 3, "Version Number").Into(&Ntp::version),
    Bits(5, 3, "Mode", kModeNames).Into(&Ntp::mode)});
constexpr auto kClock = Rows<Ntp>({
    Number(1, "Stratum", StratumName).Note(", Stratum %u").Into(&Ntp::stratum),
    Signed(1, "Poll Exponent", " (log2 seconds)"), Signed(1, "Precision", " (log2 seconds)"), NtpSpan("Root Delay"),
    NtpSpan("Root Dispersion")});
constexpr auto kSourceName = Rows<Ntp>({Text(4, "Reference ID").Note(", Reference %s")});
constexpr auto kSourceAddress = Rows<Ntp>({IPv4("Reference ID").Note(", Reference %s")});
constexpr auto kTimes = Rows<Ntp>({
    NtpTime("Reference Timestamp"), NtpTime("Origin Timestamp"), NtpTime("Receive Timestamp"),
    NtpTime("Transmit Timestamp")});
constexpr auto kKey = Rows<Ntp>({Hex(4, "Key Identifier")});

constexpr auto kControlHeader = Rows<Ntp>({
    Word(1), Flag(0, "Response"), Flag(1, "Error"), Flag(2, "More"),
    Bits(3, 5, "Operation Code", kOperationNames).Note(", %s"),
    Number(2, "Sequence"), Hex(2, "Status"), Number(2, "Association ID"), Number(2, "Offset"), Number(2, "Count")});
constexpr auto kPrivateHeader = Rows<Ntp>({
    Word(1), Flag(0, "Authenticated"), Bits(1, 7, "Sequence"), Number(1, "Implementation"), Number(1, "Request Code"),
    Word(2), Bits(0, 4, "Error"), Bits(4, 12, "Number of Items"), Word(2), Bits(0, 4, "Reserved"),
    Bits(4, 12, "Item Size")});

void DecodeTime(const Place& in, Cursor& c, Ntp& ntp) {
  constexpr int32_t kDigestSizes[] = {4, 4 + 16, 4 + 20};
  ShowRows<Ntp>(in, c, kClock, ntp);
  ShowRows<Ntp>(in, c, ntp.stratum.value < 2 ? RowSpan<Ntp>(kSourceName) : RowSpan<Ntp>(kSourceAddress), ntp);
  ShowRows<Ntp>(in, c, kTimes, ntp);
  for (const int32_t size : kDigestSizes) {
    if (Left(c) != size) continue;
    ShowRows<Ntp>(in, c, kKey, ntp);
    const Field digest = Rest(c);
    AddLine(in, digest, "Message Digest: %s", HexText(digest));
  }
}

}  // namespace

int32_t DecodeNtp(const Place& at, Cursor c) {
  const Ntp ahead = PeekRows(c, kFirst);
  const uint32_t mode = ahead.mode.value;
  if (Left(c) < (mode == kControl ? kControlSize : mode == kPrivate ? kPrivateSize : kHeaderSize)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "NTP: Version %u, %s", ahead.version.value,
                                     LookupName(kModeNames, mode)));
  Ntp ntp{};
  if (mode == kPrivate) {
    constexpr auto kPrivateFirst = Rows<Ntp>({
        Word(1), Flag(0, "Response"), Flag(1, "More"), Bits(2, 3, "Version Number"), Bits(5, 3, "Mode", kModeNames)});
    ShowRows<Ntp>(in, c, kPrivateFirst, ntp);
    ShowRows<Ntp>(in, c, kPrivateHeader, ntp);
    AddBlock(in, Rest(c), "Private Data");
    return 1;
  }
  ShowRows<Ntp>(in, c, kFirst, ntp);
  if (mode == kControl) {
    ShowRows<Ntp>(in, c, kControlHeader, ntp);
    const Field data = Rest(c);
    if (data.length > 400) {
      AddBlock(in, data, "Data");
    } else {
      AddLine(in, data, "Data: %s", Text(data));
    }
    return 1;
  }
  DecodeTime(in, c, ntp);
  AddBlock(in, Rest(c), "NTP Data");
  return 1;
}

}  // namespace qxview
