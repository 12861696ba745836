// Network Time Protocol (RFC 5905; version 3: RFC 1305; extension fields: RFC 7822, Autokey: RFC 5906, Network Time
// Security: RFC 8915; control messages: RFC 9327): what time is it, and how sure is that?
#include "decoders/app/ntp.h"

#include "core/elements.h"
#include "core/times.h"
#include "decoders/common/digits.h"

namespace qxview {
namespace {

constexpr uint32_t kControl = 6, kPrivate = 7;
constexpr int32_t kHeaderSize = 48, kControlSize = 12;

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

constexpr auto kFirst = Rows<Ntp>({
    Word(1), Bits(0, 2, "Leap Indicator", kNtpLeapNames), Bits(2, 3, "Version Number").Into(&Ntp::version),
    Bits(5, 3, "Mode", kNtpModeNames).Into(&Ntp::mode)});
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

constexpr auto kSourceNames = SortedNames({
    {0, "Unspecified or Unknown"}, {1, "Calibrated Atomic Clock"}, {2, "VLF or LF Radio"}, {3, "HF Radio"},
    {4, "UHF Radio or Satellite"}, {5, "Local Net"}, {6, "UDP/NTP"}, {7, "UDP/TIME"}, {8, "Eyeball-and-Wristwatch"},
    {9, "Telephone Modem"}});
constexpr auto kSystemEventNames = SortedNames({
    {0, "Unspecified"}, {1, "Frequency File Not Available"}, {2, "Frequency Set"}, {3, "Spike Detected"},
    {4, "Frequency Training"}, {5, "Clock Synchronized"}, {6, "System Restart"}, {7, "Panic Stop"},
    {8, "No System Peer"}, {9, "Leap Second Armed"}, {10, "Leap Second Disarmed"},
    {11, "Leap Second Inserted or Deleted"},
    {12, "Clock Stepped"}, {13, "Kernel Status Changed"}, {14, "Leapsecond Table Loaded"},
    {15, "Leapsecond Table Outdated"}});
constexpr auto kSelectionNames = SortedNames({
    {0, "Rejected"}, {1, "Discarded by Intersection Algorithm"}, {2, "Discarded by Table Overflow"},
    {3, "Discarded by Cluster Algorithm"}, {4, "Included by Combine Algorithm"}, {5, "Backup"}, {6, "System Peer"},
    {7, "PPS Peer"}});
constexpr auto kPeerEventNames = SortedNames({
    {0, "Unspecified"}, {1, "Association Mobilized"}, {2, "Association Demobilized"}, {3, "Server Unreachable"},
    {4, "Server Reachable"}, {5, "Association Restart"}, {6, "No Server Found"}, {7, "Rate Exceeded"},
    {8, "Access Denied"}, {9, "Leap Armed by Server"}, {10, "Become System Peer"}, {11, "Reference Clock Event"},
    {12, "Authentication Failure"}, {13, "Popcorn Spike Suppressed"}, {14, "Entering Interleave Mode"},
    {15, "Interleave Error Recovered"}});
constexpr auto kErrorNames = SortedNames({
    {0, "Unspecified"}, {1, "Authentication Failure"}, {2, "Invalid Message Length or Format"}, {3, "Invalid Opcode"},
    {4, "Unknown Association ID"}, {5, "Unknown Variable Name"}, {6, "Invalid Variable Value"},
    {7, "Administratively Prohibited"}});

constexpr auto kControlHeader = Rows<Ntp>({
    Word(1), Flag(0, "Response"), Flag(1, "Error"), Flag(2, "More"),
    Bits(3, 5, "Operation Code", kOperationNames).Note(", %s").Into(&Ntp::operation), Number(2, "Sequence")});
constexpr auto kPlainStatus = Rows<Ntp>({Hex(2, "Status")});
constexpr auto kErrorStatus = Rows<Ntp>({Hex(2, "Status"), Bits(0, 8, "Error", kErrorNames), Bits(8, 8, "Reserved")});
constexpr auto kSystemStatus = Rows<Ntp>({
    Hex(2, "Status"), Bits(0, 2, "Leap Indicator", kNtpLeapNames), Bits(2, 6, "Clock Source", kSourceNames),
    Bits(8, 4, "System Event Count"), Bits(12, 4, "System Event Code", kSystemEventNames)});
constexpr auto kPeerStatus = Rows<Ntp>({
    Hex(2, "Status"), Flag(0, "Configured"), Flag(1, "Authentication Enabled"), Flag(2, "Authentic"),
    Flag(3, "Reachable"), Flag(4, "Broadcast"), Bits(5, 3, "Peer Selection", kSelectionNames),
    Bits(8, 4, "Peer Event Count"), Bits(12, 4, "Peer Event Code", kPeerEventNames)});
constexpr auto kClockStatus = Rows<Ntp>({
    Hex(2, "Status"), Bits(0, 8, "Clock Status", kNtpClockNames), Bits(8, 8, "Clock Event Code", kNtpClockNames)});
constexpr auto kControlRest = Rows<Ntp>({
    Number(2, "Association ID").Into(&Ntp::association), Number(2, "Offset"), Number(2, "Count").Into(&Ntp::count)});

// Extension fields.
constexpr auto kAutokeyMessage = Rows<Ntp>({
    Hex(4, "Association ID"), Number(4, "Timestamp", " seconds since 1900"),
    Number(4, "Filestamp", " seconds since 1900"), Counted(4, Bytes(0, "Value")), Counted(4, Bytes(0, "Signature"))});
constexpr auto kAutokeyShort = Rows<Ntp>({Hex(4, "Association ID")});
constexpr auto kUniqueIdentifier = Rows<Ntp>({Bytes(0, "Unique Identifier")});
constexpr auto kCookie = Rows<Ntp>({Bytes(0, "Cookie")});
constexpr auto kPlaceholder = Rows<Ntp>({Bytes(0, "Cookie Placeholder")});
constexpr auto kComplement = Rows<Ntp>({Bytes(22, "Must Be Zero"), Hex(2, "Checksum Complement")});

// What chrony sends beside (the magic number tells its field from others'): the time of a clock without steps, and how
// long a packet was held up on its way.
constexpr auto kMonotonicRoot = Rows<Ntp>({
    Hex(4, "Magic"), Number(4, "Root Delay", " / 2^28 seconds"), Number(4, "Root Dispersion", " / 2^28 seconds"),
    Number(8, "Monotonic Receive Timestamp"), Number(4, "Monotonic Epoch")});
constexpr auto kCorrection = Rows<Ntp>({Hex(4, "Magic"), Number(8, "Correction"), Bytes(12, "Reserved")});

void ShowAutokey(const Place& in, Cursor& c, Ntp& ntp) {
  if (Left(c) <= 4) return ShowRows<Ntp>(in, c, kAutokeyShort, ntp);
  ShowRows<Ntp>(in, c, kAutokeyMessage, ntp);
}
void ShowPadded(const Place& in, Cursor& c, uint32_t length, const char* label) {
  Cursor part = TakeCursor(c, length);
  ShowDigits(in, Rest(part), label);
  const Field padding = TakeBytes(c, (4 - length % 4) % 4);
  if (padding.length > 0) AddLine(in, padding, "Padding: %s", HexText(padding));
}
// Nonce and ciphertext are counted in front of both, and padded to words each.
void ShowSealed(const Place& in, Cursor& c, Ntp&) {
  const Field nonceLength = TakeU16(c), sealedLength = TakeU16(c);
  AddLine(in, nonceLength, "Nonce Length: %u", nonceLength.value);
  AddLine(in, sealedLength, "Ciphertext Length: %u", sealedLength.value);
  ShowPadded(in, c, nonceLength.value, "Nonce");
  ShowPadded(in, c, sealedLength.value, "Ciphertext");
}

constexpr auto kExtensions = Choices<Ntp>({
    {0x0002, "No-Operation Request", {}, ShowAutokey}, {0x0102, "Association Message Request", {}, ShowAutokey},
    {0x0104, "Unique Identifier", kUniqueIdentifier}, {0x0200, "No-Operation Request", {}, ShowAutokey},
    {0x0201, "Association Message Request", {}, ShowAutokey}, {0x0202, "Certificate Message Request", {}, ShowAutokey},
    {0x0203, "Cookie Message Request", {}, ShowAutokey}, {0x0204, "NTS Cookie", kCookie},
    {0x0205, "Leapseconds Message Request", {}, ShowAutokey}, {0x0206, "Sign Message Request", {}, ShowAutokey},
    {0x0207, "IFF Identity Message Request", {}, ShowAutokey},
    {0x0208, "GQ Identity Message Request", {}, ShowAutokey},
    {0x0209, "MV Identity Message Request", {}, ShowAutokey}, {0x0302, "Cookie Message Request", {}, ShowAutokey},
    {0x0304, "NTS Cookie Placeholder", kPlaceholder}, {0x0402, "Autokey Message Request", {}, ShowAutokey},
    {0x0404, "NTS Authenticator and Encrypted Extension Fields", {}, ShowSealed},
    {0x0502, "Leapseconds Message Request", {}, ShowAutokey}, {0x0602, "Sign Message Request", {}, ShowAutokey},
    {0x0702, "IFF Identity Message Request", {}, ShowAutokey},
    {0x0802, "GQ Identity Message Request", {}, ShowAutokey},
    {0x0902, "MV Identity Message Request", {}, ShowAutokey}, {0x2005, "UDP Checksum Complement", kComplement},
    {0x8002, "No-Operation Response", {}, ShowAutokey}, {0x8102, "Association Message Response", {}, ShowAutokey},
    {0x8200, "No-Operation Response", {}, ShowAutokey}, {0x8201, "Association Message Response", {}, ShowAutokey},
    {0x8202, "Certificate Message Response", {}, ShowAutokey}, {0x8203, "Cookie Message Response", {}, ShowAutokey},
    {0x8204, "Autokey Message Response", {}, ShowAutokey}, {0x8205, "Leapseconds Message Response", {}, ShowAutokey},
    {0x8206, "Sign Message Response", {}, ShowAutokey}, {0x8207, "IFF Identity Message Response", {}, ShowAutokey},
    {0x8208, "GQ Identity Message Response", {}, ShowAutokey},
    {0x8209, "MV Identity Message Response", {}, ShowAutokey},
    {0x8302, "Cookie Message Response", {}, ShowAutokey}, {0x8402, "Autokey Message Response", {}, ShowAutokey},
    {0x8502, "Leapseconds Message Response", {}, ShowAutokey}, {0x8602, "Sign Message Response", {}, ShowAutokey},
    {0x8702, "IFF Identity Message Response", {}, ShowAutokey},
    {0x8802, "GQ Identity Message Response", {}, ShowAutokey},
    {0x8902, "MV Identity Message Response", {}, ShowAutokey},
    {0xC002, "No-Operation Error Response", {}, ShowAutokey},
    {0xC102, "Association Message Error Response", {}, ShowAutokey},
    {0xC202, "Certificate Message Error Response", {}, ShowAutokey},
    {0xC302, "Cookie Message Error Response", {}, ShowAutokey},
    {0xC402, "Autokey Message Error Response", {}, ShowAutokey},
    {0xC502, "Leapseconds Message Error Response", {}, ShowAutokey},
    {0xC602, "Sign Message Error Response", {}, ShowAutokey},
    {0xC702, "IFF Identity Message Error Response", {}, ShowAutokey},
    {0xC802, "GQ Identity Message Error Response", {}, ShowAutokey},
    {0xC902, "MV Identity Message Error Response", {}, ShowAutokey},
    {0xF323, "Experimental Monotonic Root", kMonotonicRoot},
    {0xF324, "Experimental Network Correction", kCorrection}});

// Key and digest; the key alone says that there is none. In version 4, which has extension fields, they are those of
// MD5, SHA-1 and what is cut to their sizes; before it whatever is left up to the longest digest there is.
void ShowAuthenticator(const Place& in, Cursor& c, Ntp& ntp) {
  constexpr int32_t kKeySize = 4, kLongestDigest = 64;
  const int32_t size = Left(c) - kKeySize;
  const bool isOld = ntp.version.value < 4 && size % 4 == 0 && size >= 0 && size <= kLongestDigest;
  if (!isOld && size != 0 && size != 16 && size != 20) return;
  ShowRows<Ntp>(in, c, kKey, ntp);
  const Field digest = Rest(c);
  AddLine(in, digest, "Message Digest: %s", HexText(digest));
}

void ShowExtensions(const Place& in, Cursor& c, Ntp& ntp) {
  constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2, .lengthCountsHeader = true};
  constexpr int32_t kLongestAuthenticator = 24;   // what is longer starts with an extension field (RFC 7822 7.5)
  Loop loop;
  while (Left(c) > kLongestAuthenticator && PeekU16(c, 2) >= 4 && MoreAt(in, c, loop)) {
    const int32_t length = static_cast<int32_t>(PeekU16(c, 2));
    Cursor field = TakeCursor(c, length);
    ShowElements<Ntp>(in, field, kForm, "Extension Field", kExtensions, ntp);
  }
}

void DecodeTime(const Place& in, Cursor& c, Ntp& ntp) {
  ShowRows<Ntp>(in, c, kClock, ntp);
  ShowRows<Ntp>(in, c, ntp.stratum.value < 2 ? RowSpan<Ntp>(kSourceName) : RowSpan<Ntp>(kSourceAddress), ntp);
  ShowRows<Ntp>(in, c, kTimes, ntp);
  if (ntp.version.value >= 4) ShowExtensions(in, c, ntp);
  ShowAuthenticator(in, c, ntp);
}

// "name=value" up to a comma that stands in no quotes, and blanks and line ends behind it.
void ShowVariables(const Place& in, Cursor& c) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (PeekU8(c) <= ' ' || PeekU8(c) == ',') {
      TakeU8(c);
      continue;
    }
    int32_t length = 0, equals = 0;
    bool quoted = false;
    for (; length < Left(c); ++length) {
      const uint8_t next = PeekU8(c, length);
      if (!quoted && (next == ',' || next == '\r' || next == 0)) break;
      if (PeekU8(c, length) == '"') quoted = !quoted;
      if (PeekU8(c, length) == '=' && equals == 0) equals = length;
    }
    if (length == 0) break;
    const Field variable = TakeBytes(c, length);
    if (equals > 0) {
      const Field value = Slice(variable, equals + 1, length - equals - 1);
      AddLine(in, variable, "%s: %s", Text(Slice(variable, 0, equals)), Text(value));
    } else {
      AddLine(in, variable, "Variable: %s", Text(variable));
    }
  }
}

RowSpan<Ntp> StatusRows(uint32_t operation, uint32_t association, bool isResponse, bool isError) {
  constexpr uint32_t kReadClock = 4, kWriteClock = 5, kTrap = 7;
  if (!isResponse) return kPlainStatus;
  if (isError) return kErrorStatus;
  if (operation == kReadClock || operation == kWriteClock) return kClockStatus;
  if (operation > kTrap) return kPlainStatus;
  return association ? RowSpan<Ntp>(kPeerStatus) : RowSpan<Ntp>(kSystemStatus);
}

void DecodeControl(const Place& in, Cursor& c, Ntp& ntp) {
  constexpr uint32_t kReadStatus = 1, kResponse = 0x80, kError = 0x40;
  const uint32_t bits = PeekU8(c), association = PeekU16(c, 5);
  ShowRows<Ntp>(in, c, kControlHeader, ntp);
  const bool isResponse = bits & kResponse;
  ShowRows<Ntp>(in, c, StatusRows(ntp.operation.value, association, isResponse, bits & kError), ntp);
  ShowRows<Ntp>(in, c, kControlRest, ntp);
  Cursor data = TakeCursor(c, ntp.count.value);
  const LineHandle line = Left(data) > 0 ? AddLine(in, Ahead(data, Left(data)), "Data: %d bytes", Left(data)) : 0;
  const Place under = Under(in, line);
  if (ntp.operation.value == kReadStatus && isResponse && association == 0) {
    constexpr auto kAssociation = Rows<Ntp>({Number(2, "Association ID")});
    Loop loop;
    while (Left(data) >= 4 && MoreAt(under, data, loop)) {
      ShowRows<Ntp>(under, data, kAssociation, ntp);
      ShowRows<Ntp>(under, data, kPeerStatus, ntp);
    }
  } else {
    ShowVariables(under, data);
  }
  const int32_t padding = (4 - Taken(c) % 4) % 4;
  if (padding > 0 && Left(c) >= padding) {
    const Field filler = TakeBytes(c, padding);
    AddLine(in, filler, "Padding: %s", HexText(filler));
  }
  ShowAuthenticator(in, c, ntp);
  AddBlock(in, Rest(c), "NTP Data");
}

}  // namespace

int32_t DecodeNtp(const Place& at, Cursor c) {
  const Ntp ahead = PeekRows(c, kFirst);
  const uint32_t mode = ahead.mode.value;
  if (Left(c) < (mode == kControl ? kControlSize : mode == kPrivate ? kPrivateNtpSize : kHeaderSize)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "NTP: Version %u, %s", ahead.version.value,
                                     LookupName(kNtpModeNames, mode)));
  Ntp ntp{};
  if (mode == kPrivate) return DecodePrivateNtp(in, c, ntp), 1;
  ShowRows<Ntp>(in, c, kFirst, ntp);
  if (mode == kControl) return DecodeControl(in, c, ntp), 1;
  DecodeTime(in, c, ntp);
  AddBlock(in, Rest(c), "NTP Data");
  return 1;
}

}  // namespace qxview
