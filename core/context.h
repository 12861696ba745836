// The decode context of a packet view, and the view that owns it.
#pragma once
#include <cstdint>

#include "core/budgets.h"
#include "core/byte_range.h"
#include "core/frame_record.h"
#include "core/spare_memory.h"
#include "qxview/qxview_types.h"
#include "view/decode_tree.h"

namespace qxview {

using ::AddressSlot;

// What an address slot holds; an IPv4 address stands in its last four bytes.
enum AddressKind : uint32_t { kNoAddress = 0, kIPv4Kind = 1, kIPv6Kind = 2 };

struct ByteOrigins;
struct DecodeContext;
struct Engine;
struct KeptGroups;
struct LineFacts;
struct OutputFile;

constexpr char kDisplayMode = '9';
constexpr char kPrintMode = '7';
constexpr char kSaveMode = '8';
constexpr char kFindMode = ':';

// What add-line gives in every mode but display, so that decoders pass it on as a parent unchanged.
constexpr LineHandle kLineOutsideDisplay = 1000;

// The frame's own line where a question leaves it out: what is added under it tells of the frame all the same.
constexpr LineHandle kLeftFrameLine = 1001;

// A line whose value a question took, so that it was not made.
constexpr LineHandle kTakenLine = 1002;

// How the current frame's network layer carries its transport: set by IPv4 and IPv6 for TCP, UDP and SCTP. Of tunnelled
// datagrams it is the innermost one's, as are the addresses and ports below.
struct NetworkState {
  uint32_t pseudoHead;       // one's-complement sum of the pseudo-header, as PseudoHead gives it
  uint32_t fragmentOffset;   // bytes
  int32_t totalLength;       // bytes of the transport's data that the network header declares
  bool fragmented;           // a fragment, the first included
  bool moreFragments;
  bool offloaded;            // to be cut into segments by the network adapter: no checksum over it holds yet
};

// The TCP segment of the current frame (the innermost of tunnelled ones), for the host's history of segments.
struct TcpSegment {
  const uint8_t* payload;
  int32_t length;        // payload bytes captured
  uint32_t sequence;
  uint32_t flags;        // FIN = 1
  bool here;
  int32_t cut = 0;       // payload bytes that were not captured
  uint32_t acknowledgment = 0;
  int32_t wanted = 0;    // so many of its bytes a later one's decoder may ask for: the host keeps them
};

// The table that a layer's payload was looked up in, with the key, and the payload itself: what a frame carries when no
// decoder shows it. The innermost layer's stays.
enum class DispatchTable : uint8_t {
  kNone,
  kEthertype,
  kLlc,           // LlcService; without one the destination SAP above bit 8
  kPpp,           // protocol numbers of RFC 1661
  kIpProtocol,    // by IPv4 and IPv6 alike
  kIpFragment,    // a fragment that is not the first: the IP protocol, the fragment's offset in bytes above bit 8
  kApplication,   // the index of a built-in decoder; kNoApplication when ports and payload tell of none
};
constexpr uint32_t kNoApplication = 0xFFFFFFFF;
constexpr uint32_t kSlarpKey = 0x18035;   // Cisco HDLC's own protocol, whose number is an Ethertype of another

struct ReachedLayer {
  DispatchTable table;
  uint32_t key;
  const uint8_t* bytes;
  int32_t length;
};

// What the decoders of the current frame leave for later ones and for the view's commands; cleared for each frame.
struct PacketState {
  const FrameRecord* frame;
  uint32_t userParam1, userParam2;
  uint32_t scratch[2];
  uint32_t ipHeaderSeen;
  uint8_t ipProtocol;
  AddressSlot source, destination;
  uint16_t sourcePort, destinationPort;
  NetworkState network;
  TcpSegment segment;
  const uint8_t* payload;    // of the application protocol
  int32_t payloadLength;
  int32_t payloadOffset;
  uint32_t matchedSource;    // TCP: the protocol's definition matched the source side
  ReachedLayer reached;
  ReachedLayer carrier;      // what IP carries, header included; behind it `reached` may be the application
  int32_t nesting;
  int32_t linesLeft;         // below 0 once the bound is told
  int32_t listsEnd = INT32_MIN;   // as many lines left end lists (kLinesOfLists)
  bool limitReached;
  const char* protocol;      // the short name of the protocol whose lines are added, for their keys
  DecodeContext* asked;      // the context, while a question wants some of the lines alone (core/line_facts.h)
  bool quoted;               // an error message quotes this datagram: of another frame, cut anywhere; learn nothing
};

inline void BeginLines(PacketState& packet, int32_t capturedLength) {
  packet.linesLeft = MostLinesOf(capturedLength);
  if (packet.linesLeft > kLinesOfLists) packet.listsEnd = packet.linesLeft - kLinesOfLists;
}

// A datagram starts: what an outer one left for its own transport is none of this one's.
inline void BeginDatagram(PacketState& packet) {
  packet.ipHeaderSeen = 1;
  packet.sourcePort = packet.destinationPort = 0;
  packet.network = NetworkState{};
  packet.segment = TcpSegment{};
}

// Lines behind one another, by their indexes in the range table.
struct LineRun {
  uint32_t first, end;
};

struct DecodeContext {
  int64_t packetNumber;
  char outputMode;
  bool silent;               // lines are counted and not even formatted: outside display mode, or because nobody wants them
  bool headersOnly;          // application payloads are resolved and detected, not decoded
  OutputFile* outputFile;
  char findText[1024];
  uint32_t findFound;
  char findLine[256];
  int64_t findPacketNumber;
  int32_t findLineIndex;
  int32_t findLineLimit;
  int32_t findLineCounter;
  uint32_t findBounded;
  int32_t findLinesLeft;      // the packet state's linesLeft at the recorded match: tells the line from its likes
  LineHandle foundLineHandle; // the last line that reads as the found one
  LineHandle matchedLine;     // the found one itself, when its packet is shown as it was when it was found
  ByteRange* rangeTable;
  uint32_t rangeCapacity;
  uint32_t rangeCount;
  SpareMemory spareRanges;
  int32_t rangeFilterStart;
  int32_t rangeFilterLength;
  uint32_t rangeFilterOn;
  ByteOrigins* origins;      // of bytes that are not the frame's own
  KeptGroups* groups;        // lines that came before (core/line_group.h); null when there is no memory
  LineFacts* facts;          // keys and values of the lines; null while nobody asks
  LineRun* derived;          // the lines of bytes that were opened or inflated
  uint32_t derivedCount, derivedCapacity;
  int32_t derivedDepth;      // of such data within such data
  uint32_t customWord;       // the word that user decoder libraries pass on; stays with the view
  PacketState packet;
};

constexpr uint32_t kFirstRangeCapacity = 512;

struct View {
  DecodeContext* context;
  DecodeTree* tree;
  Engine* engine;
  uint32_t expansionMask;        // by range kind: top-level lines of these kinds are expanded
  int32_t selectionPath[3];      // indexes of the selected line, its parent's first; a negative one ends the path
  int32_t currentTopKind;
  bool isWritten;                // lines are written and not browsed: none is expanded or selected
  const uint8_t* characterTable; // 256 characters for hex dumps when character translation is on
};

// Zero-filled context in display mode with an empty range table of 512 entries; null when there is no memory.
DecodeContext* CreateDecodeContext();
void DestroyDecodeContext(DecodeContext* context);

// The number of the packet shown; -1 when the view is missing or has no context.
int64_t CurrentPacketNumber(const View* view);

}  // namespace qxview
