// What bounds the work, the memory and the output of qxview, whatever a frame, a capture or a peer says: each bound with its unit
// and why it is where it is. A bound that is reached ends in a line or a message, never in silence. The tables of state between
// frames have theirs beside their names (decoders/state_rows.inc), statistics, reports and the screen in app/, for they bound what
// a person can read. tests/bounds_test.cpp and the tests of the decoders reach them.
#pragma once
#include <cstddef>
#include <cstdint>

namespace qxview {

// --- A frame ---

// Decoder calls in one another, of every decoder on carried data; then a raw data block. Real frames have less than 20.
constexpr int32_t kMostNesting = 64;

// Lines of a frame, so that output and work stay linear in input whatever the bytes say: so many, more for every byte that was
// captured, and no more than these. Of the frames that were seen, the one with most has 52,666 in 63 KB, made to be hard; without
// such frames it is 8,356, of a message that came over many segments. Lists end before (below): search found 83,600, of DNS.
constexpr int32_t kLinesOfAnyFrame = 10000;
constexpr int32_t kLinesAByte = 16;
constexpr int32_t kMostLines = 1000000;
constexpr int32_t MostLinesOf(int32_t capturedLength) {
  const int64_t lines = kLinesOfAnyFrame + int64_t{kLinesAByte} * capturedLength;
  return lines < kMostLines ? static_cast<int32_t>(lines) : kMostLines;
}

// Lists of small elements that give many lines for few bytes (flags, options, events) go on until the frame has so many lines; then
// what is left of each is a block. Real frames have a sixth of it, the hardest that was made for others 52,666.
constexpr int32_t kLinesOfLists = 57000;

// Bytes of a line's text with its terminator. Longer texts are cut; the shorter buffer is of decoders that have always used it.
constexpr int32_t kLineSize = 512;
constexpr int32_t kShortLineSize = 300;
constexpr int32_t kMostJoinedText = 300;   // characters of a line with what is appended to it

constexpr int32_t kMostDumped = 32768;     // bytes of a hex dump: 2,048 lines

// Bytes that are joined for a frame; they are freed with it. The regions are those of one joined text.
constexpr int32_t kMostFrameMemory = 8 << 20;
constexpr int32_t kMostRegions = 4096;
constexpr int32_t kMostOpened = 512 * 1024;    // bytes that stand decrypted at once, of data within data
constexpr int32_t kInflatedSize = 900000;      // bytes that a compressed body is inflated to; then it is said

// What a view keeps of a frame's lines for the next ones: real frames need less. More than that is kept for so many frames in a row
// that do without: to take the pages anew is as much work as the large frame's lines, and little beside so many frames'.
constexpr uint32_t kKeptLines = 4096;
constexpr uint32_t kKeptText = 256u << 10;     // bytes
constexpr uint32_t kFramesWithout = 16384;

// Steps that have no line of their own.

// Labels and pointers of DNS that are read behind a pointer are hops, and all expansions of a payload share them: a chain of
// pointers may be thousands long, and every record may point at its end. Names past the bound stay as far as they were expanded.
constexpr int32_t kMostDnsNameHops = 500000;
// A failed update message is stepped over where a failed standard one ends the payload; each may dump all the rest.
constexpr int32_t kMostFailedDnsUpdates = 16;
constexpr int32_t kMostEarlierSegments = 100;     // searched for the headers of an HTTP message without Reassembly
constexpr int32_t kMostSealedNumbers = 64;        // tried in either direction for a TLS record behind a gap
constexpr uint8_t kMostSealedFailures = 6;        // records that do not open: behind these no number is looked for

// What looks at its elements more than once, or shows a structure for each.
constexpr int32_t kMostKrbElements = 4000;        // of a Kerberos payload: ten times what the largest of real messages hold
constexpr int32_t kMostLdapElements = 8192;       // of an LDAP payload that get lines; what follows is dumped
constexpr uint32_t kMostAccessEntries = 1024;     // of an access control list; real ones hold a few dozen
constexpr int32_t kMostSampledHeaders = 64;       // of a sFlow datagram that are decoded as frames; the others are blocks
constexpr int32_t kShowAgain = 2;                 // times its bytes that a record whose entries may claim the same ones shows

// --- One in another: levels of a format, then a block or a line that says so ---

constexpr int32_t kDeepestDer = 12;               // elements where no form explains them
constexpr int32_t kDeepestIndefinite = 12;        // elements of indefinite length in cryptographic messages
constexpr int32_t kDeepestContent = 4;            // contents and countersignatures in one another in them
constexpr int32_t kDeepestFilter = 64;            // filters of LDAP
constexpr int32_t kDeepestProtobuf = 12;          // messages of protocol buffers
constexpr int32_t kDeepestAmf = 16;               // values of AMF
constexpr int32_t kDeepestMegaco = 16;            // braces of Megaco
constexpr int32_t kDeepestBinaryMegaco = 48;      // elements of binary Megaco: each level takes three
constexpr int32_t kDeepestZ3950 = 16;             // elements of Z39.50
constexpr int32_t kDeepestMail = 8;               // messages and parts in one another
constexpr int32_t kDeepestImap = 8;               // lists
constexpr int32_t kDeepestSubversion = 8;         // lists
constexpr int32_t kDeepestBodyParts = 6;          // parts of an HTTP body
constexpr int32_t kDeepestSipParts = 6;           // parts of a SIP body
constexpr int32_t kDeepestMarkup = 32;            // JSON objects and arrays, XML elements with a level of their own
constexpr int32_t kDeepestRadius = 8;             // attributes
constexpr int32_t kDeepestDhcpv6 = 24;            // options, relayed messages among them
constexpr int32_t kDeepestDiameter = 12;          // groups of AVPs
constexpr int32_t kDeepestFlowLists = 6;          // lists of RFC 6313
constexpr int32_t kDeepestLisp = 8;               // lists of addresses
constexpr int32_t kDeepestHncp = 8;               // elements
constexpr int32_t kDeepestBgp = 4;                // sets of attributes, routes in routes, link state in link state
constexpr int32_t kDeepestLinkAttributes = 3;     // attributes of links, of OSPF and IS-IS
constexpr int32_t kDeepestSctp = 4;               // parameters
constexpr int32_t kDeepestNetlink = 12;           // attributes
constexpr int32_t kDeepestCharging = 8;           // elements of charging records
constexpr int32_t kDeepestConferencing = 4;       // attributes

// --- Between frames: what a message, a datagram or a direction may keep; the tables' own bounds are their rows' ---

constexpr uint32_t kMostKeySize = 96, kMostValueSize = 512;   // bytes of a table's key and value

constexpr int32_t kMostStreamBytes = 1 << 20;     // of one direction of TCP; a longer message is shown as far as it came
constexpr int32_t kMostStreamPieces = 4096;       // segments that they came in
constexpr int32_t kMostAheadSegments = 64;        // behind a gap, before it is taken for lost
constexpr int32_t kMostAheadBytes = 256 << 10;    // how far behind a gap segments wait
constexpr int64_t kLongestGap = 2000000000;      // nanoseconds that a gap is kept open
constexpr int32_t kMostFragments = 256;           // of one datagram or message
constexpr uint32_t kMostPiecedBytes = 1 << 20;    // of a web body; what is longer is shown as it comes
constexpr uint32_t kMostWebPieces = 4096;            // frames that it comes in
constexpr int32_t kMostJoinedChunks = 256;        // of an HTTP body; what follows are blocks
constexpr int32_t kMostHttpFirstLine = 16 << 10;      // bytes of an HTTP message that are waited for
constexpr int32_t kMostHttpHeaders = 256 << 10;
constexpr int32_t kMostHttpChunkLine = 4 << 10;
constexpr int32_t kMostKeptFrame = 24 << 10;      // bytes of a frame of HTTP/2 and HTTP/3; longer ones are shown as they come
constexpr int32_t kMostFieldKept = 64 << 10;      // bytes of a header field that goes on in a CONTINUATION
constexpr uint32_t kMostCompressedPending = 64 << 10;       // bytes of compressed text that cannot be opened yet
constexpr int32_t kMostVpnBytes = 64 << 10;       // of a run of records of OpenVPN
constexpr uint32_t kMostVpnAhead = 64;            // packets that came early and are shown with the one they waited for
constexpr uint32_t kMostQuicAhead = 32 << 10;     // bytes of a QUIC stream ahead of what was shown
constexpr uint32_t kMostQuicPieces = 24;          // apart from each other
constexpr int32_t kMostRelayMessage = 1 << 17;    // bytes of a message of MSRP whose end is waited for
constexpr uint32_t kMostRtmpMessage = 64 << 10;   // bytes of a message of RTMP that is opened when it is whole
constexpr int32_t kMostInflatedBodies = 4;        // kept for the segments to come, of messages that arrive at the same time
constexpr int32_t kKeptInflated = 128 << 10;      // bytes of one; the memory of a larger one is given back behind it
constexpr int32_t kMessageStart = 8;              // bytes of a segment that tell whether it starts an HTTP message

// --- The host ---

constexpr size_t kMostHistorySegments = 101;          // of a connection and direction: a message's start and 100
constexpr uint32_t kMostHistoryMemory = 4u << 20;     // bytes in all, bookkeeping included
constexpr uint32_t kMostConversations = 65536;        // learnt ones of a transport, the oldest go first
constexpr size_t kMostKeyLogLine = 4096;              // bytes; a longer one is blamed
constexpr size_t kMostTextFile = 64u << 20;           // bytes of a settings, alias or definitions file

// --- Questions ---

constexpr size_t kMostExpression = 16384;             // characters of a filter
constexpr int32_t kMostBrackets = 200;                // in one another
constexpr size_t kMostPattern = 1024;                 // characters of a pattern

}  // namespace qxview
