// The control protocols of PPP: how a link (LCP, RFC 1661, 1570, 1990) and each network protocol over it is opened, and the
// options that both ends agree on: IPCP (RFC 1332, 1877), IPv6CP (RFC 5072), IPXCP (RFC 1552), ATCP (RFC 1378), BCP
// (RFC 3518), CCP (RFC 1962), ECP (RFC 1968), MPLSCP (RFC 3032), OSINLCP (RFC 1377), CDPCP, BACP (RFC 2125), PPPMuxCP
// (RFC 3153), NBFCP (RFC 2097), BVCP (RFC 1763).
//
//   code   identifier   length (of all)   options: type, length (of all), value; or what the code says
#include "core/elements.h"
#include "core/line_facts.h"
#include "decoders/link/ppp.h"
#include "decoders/link/ppp_compression.h"
#include "decoders/states.h"

namespace qxview {
namespace {

enum Code : uint32_t {
  kVendor = 0, kRequest = 1, kReject = 4, kCodeReject = 7, kProtocolReject = 8, kEchoRequest = 9, kDiscard = 11,
  kIdentification = 12, kTimeRemaining = 13,
};

constexpr auto kCodeNames = SortedNames({
    {0, "Vendor Specific"}, {1, "Configure-Request"}, {2, "Configure-Ack"}, {3, "Configure-Nak"},
    {4, "Configure-Reject"}, {5, "Terminate-Request"}, {6, "Terminate-Ack"}, {7, "Code-Reject"},
    {8, "Protocol-Reject"}, {9, "Echo-Request"}, {10, "Echo-Reply"}, {11, "Discard-Request"}, {12, "Identification"},
    {13, "Time-Remaining"}, {14, "Reset-Request"}, {15, "Reset-Ack"}});

struct Control {
  Field code, length, protocol, kind;
};
constexpr auto kHeader = Rows<Control>({
    Number(1, "Code", kCodeNames).Into(&Control::code), Number(1, "Identifier"),
    Number(2, "Length").Into(&Control::length)});
constexpr auto kMagic = Rows<Control>({Hex(4, "Magic Number")});
constexpr auto kMessage = Rows<Control>({Text(0, "Message")});
constexpr auto kSeconds = Rows<Control>({Number(4, "Seconds Remaining")});
constexpr auto kOrganization = Rows<Control>({Hex(3, "Organization (OUI)"), Number(1, "Kind")});
constexpr auto kRejected = Rows<Control>({Hex(2, "Rejected Protocol", PppProtocolName)});
constexpr auto kDataRow = Rows<Control>({Bytes(0, "Data")});
constexpr auto kBytes = Rows<Control>({Bytes(0, nullptr)});

// ---- LCP.

constexpr auto kCharacterMasks = SortedNames({
    {0x00000001, "NUL"}, {0x00000002, "SOH"}, {0x00000004, "STX"}, {0x00000008, "ETX"}, {0x00000010, "EOT"},
    {0x00000020, "ENQ"}, {0x00000040, "ACK"}, {0x00000080, "BEL"}, {0x00000100, "BS"}, {0x00000200, "HT"},
    {0x00000400, "LF"}, {0x00000800, "VT"}, {0x00001000, "FF"}, {0x00002000, "CR"}, {0x00004000, "SO"},
    {0x00008000, "SI"}, {0x00010000, "DLE"}, {0x00020000, "DC1 (XON)"}, {0x00040000, "DC2"}, {0x00080000, "DC3 (XOFF)"},
    {0x00100000, "DC4"}, {0x00200000, "NAK"}, {0x00400000, "SYN"}, {0x00800000, "ETB"}, {0x01000000, "CAN"},
    {0x02000000, "EM"}, {0x04000000, "SUB"}, {0x08000000, "ESC"}, {0x10000000, "FS"}, {0x20000000, "GS"},
    {0x40000000, "RS"}, {0x80000000, "US"}});
constexpr auto kAlgorithmNames = SortedNames({
    {5, "CHAP with MD5"}, {6, "CHAP with SHA-1"}, {7, "CHAP with SHA-256"}, {8, "CHAP with SHA3-256"}, {128, "MS-CHAP"},
    {129, "MS-CHAP-2"}});
constexpr auto kCheckMasks = SortedNames({{0x01, "Null FCS"}, {0x02, "CCITT 16-bit FCS"}, {0x04, "CCITT 32-bit FCS"}});
constexpr auto kCallbackNames = SortedNames({
    {0, "Location by User Authentication"}, {1, "Dialing String"}, {2, "Location Identifier"}, {3, "E.164 Number"},
    {4, "X.500 Distinguished Name"}, {6, "Location by CBCP Negotiation"}});
constexpr auto kEndpointNames = SortedNames({
    {0, "Null"}, {1, "Locally Assigned Address"}, {2, "IP Address"}, {3, "IEEE 802.1 MAC Address"},
    {4, "PPP Magic-Number Block"}, {5, "Public Switched Network Directory Number"}});
constexpr auto kDceNames = SortedNames({
    {1, "No Additional Negotiation"}, {2, "Full PPP Negotiation and State Machine"}});
constexpr auto kFormatNames = SortedNames({
    {2, "Long Sequence Numbers with Classes"}, {6, "Short Sequence Numbers with Classes"}});

constexpr auto kReceiveUnit = Rows<Control>({Number(2, "Maximum Receive Unit", " bytes").Note(": %u bytes")});
constexpr auto kCharacterMap = Rows<Control>({Flags(4, "Async Control Character Map", kCharacterMasks).Note(": 0x%.08X")});
constexpr auto kAuthentication = Rows<Control>({
    Hex(2, "Authentication Protocol", PppProtocolName).Note(": %s").Into(&Control::protocol)});
constexpr auto kAlgorithm = Rows<Control>({Number(1, "Algorithm", kAlgorithmNames).Note(", %s")});
constexpr auto kQuality = Rows<Control>({
    Hex(2, "Quality Protocol", PppProtocolName).Note(": %s").Into(&Control::protocol)});
constexpr auto kPeriod = Rows<Control>({Number(4, "Reporting Period", " hundredths of a second")});
constexpr auto kMagicOption = Rows<Control>({Hex(4, "Magic Number").Note(": 0x%.08X")});
constexpr auto kChecks = Rows<Control>({Flags(1, "FCS Alternatives", kCheckMasks)});
constexpr auto kPad = Rows<Control>({Number(1, "Maximum").Note(": %u")});
constexpr auto kNumbered = Rows<Control>({Number(1, "Window"), Bytes(0, "Address")});
constexpr auto kCallback = Rows<Control>({Number(1, "Operation", kCallbackNames).Note(": %s"), Text(0, "Message")});
constexpr auto kReconstructed = Rows<Control>({Number(2, "Maximum Received Reconstructed Unit").Note(": %u")});
constexpr auto kEndpoint = Rows<Control>({Number(1, "Class", kEndpointNames).Note(": %s").Into(&Control::kind)});
constexpr auto kEndpointIp = Rows<Control>({IPv4("IP Address")});
constexpr auto kEndpointMac = Rows<Control>({Mac("MAC Address")});
constexpr auto kEndpointOther = Rows<Control>({Bytes(0, "Address")});
constexpr auto kDce = Rows<Control>({Number(1, "Mode", kDceNames)});
constexpr auto kUnused = Rows<Control>({Bytes(0, "Unused")});
constexpr auto kDiscriminator = Rows<Control>({Number(2, "Link Discriminator").Note(": %u")});
constexpr auto kStuffing = Rows<Control>({
    Hex(1, "COBS Flags"), Bits(0, 6, "Reserved"), Flag(6, "Preemption"), Flag(7, "Zero Pair Elimination")});
constexpr auto kElision = Rows<Control>({Number(1, "Class"), Counted(1, Bytes(0, "Prefix"))});
constexpr auto kMultilinkFormat = Rows<Control>({
    Number(1, "Format", kFormatNames), Number(1, "Suspendable Classes")});
constexpr auto kLanguage = Rows<Control>({Number(4, "Character Set (MIBenum)"), Text(0, "Language Tag")});

void ShowAlgorithm(const Place& in, Cursor& c, Control& control) {
  constexpr uint32_t kChap = 0xC223;
  if (control.protocol.value == kChap) ShowRows<Control>(in, c, kAlgorithm, control);
}
void ShowPeriod(const Place& in, Cursor& c, Control& control) {
  constexpr uint32_t kReport = 0xC025;
  if (control.protocol.value == kReport) ShowRows<Control>(in, c, kPeriod, control);
}
void ShowEndpoint(const Place& in, Cursor& c, Control& control) {
  const uint32_t kind = control.kind.value;
  ShowRows<Control>(in, c, kind == 2 && Left(c) == 4   ? RowSpan<Control>(kEndpointIp)
                           : kind == 3 && Left(c) == 6 ? RowSpan<Control>(kEndpointMac)
                                                       : RowSpan<Control>(kEndpointOther), control);
}

constexpr auto kLcpOptions = Choices<Control>({
    {0, "Vendor-Specific", kOrganization}, {1, "Maximum-Receive-Unit", kReceiveUnit},
    {2, "Async-Control-Character-Map", kCharacterMap}, {3, "Authentication-Protocol", kAuthentication, ShowAlgorithm},
    {4, "Quality-Protocol", kQuality, ShowPeriod}, {5, "Magic-Number", kMagicOption},
    {6, "Link Quality Monitoring (Deprecated)"}, {7, "Protocol-Field-Compression"},
    {8, "Address-and-Control-Field-Compression"}, {9, "FCS-Alternatives", kChecks}, {10, "Self-Describing-Pad", kPad},
    {11, "Numbered-Mode", kNumbered}, {12, "Multi-Link-Procedure (Deprecated)"}, {13, "Callback", kCallback},
    {14, "Connect-Time (Deprecated)"}, {15, "Compound-Frames (Deprecated)"},
    {16, "Nominal-Data-Encapsulation (Deprecated)"}, {17, "Multilink-MRRU", kReconstructed},
    {18, "Multilink-Short-Sequence-Number-Header"}, {19, "Multilink-Endpoint-Discriminator", kEndpoint, ShowEndpoint},
    {20, "Proprietary"}, {21, "DCE-Identifier", kDce}, {22, "Multi-Link-Plus-Procedure", kUnused},
    {23, "Link-Discriminator", kDiscriminator}, {24, "LCP-Authentication-Option", kBytes},
    {25, "Consistent-Overhead-Byte-Stuffing", kStuffing}, {26, "Prefix-Elision", kElision},
    {27, "Multilink-Header-Format", kMultilinkFormat}, {28, "Internationalization", kLanguage},
    {29, "Simple-Data-Link-on-SONET/SDH"}});

// ---- IPCP and IPv6CP.

constexpr auto kCompressionNames = SortedNames({
    {0x0003, "Robust Header Compression (ROHC)"}, {0x002D, "Van Jacobson Compressed TCP/IP"},
    {0x004F, "IPv6 Header Compression"}, {0x0061, "IP Header Compression"}, {0x0069, "RTP Compression"}});
constexpr auto kAddressPair = Rows<Control>({IPv4("Source Address").Note(": %s"), IPv4("Destination Address")});
constexpr auto kAddress = Rows<Control>({IPv4(nullptr).Note(": %s")});
constexpr auto kCompression = Rows<Control>({
    Hex(2, "Compression Protocol", kCompressionNames).Note(": %s").Into(&Control::protocol)});
constexpr auto kSlots = Rows<Control>({Number(1, "Maximum Slot ID"), Number(1, "Slot ID Compressed", kFalseTrueNames)});
constexpr auto kSpaces = Rows<Control>({
    Number(2, "TCP Space"), Number(2, "Non-TCP Space"), Number(2, "Maximum Period of Full Headers", " packets"),
    Number(2, "Maximum Time between Full Headers", " seconds"), Number(2, "Maximum Header", " bytes")});
constexpr auto kRobust = Rows<Control>({
    Number(2, "Maximum Context ID"), Number(2, "Maximum Reconstructed Reception Unit"),
    Number(2, "Maximum Header", " bytes")});
constexpr auto kProfile = Rows<Control>({Hex(2, "Profile")});
constexpr auto kParameter = Rows<Control>({Number(1, "Parameter")});

void ShowProfiles(const Place& in, Cursor& c, Control& control) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Control>(in, c, kProfile, control);
}
constexpr auto kRobustSuboptions = Choices<Control>({{1, "Profiles", {}, ShowProfiles}});
constexpr auto kSpaceSuboptions = Choices<Control>({
    {1, "RTP Compression"}, {2, "Enhanced RTP Compression"}, {3, "TCP or Non-TCP Compression Only", kParameter}});
constexpr ElementForm kOptionForm{.lengthCountsHeader = true};

void ShowCompression(const Place& in, Cursor& c, Control& control) {
  constexpr uint32_t kVanJacobson = 0x002D, kHeaderCompression = 0x0061, kRohc = 0x0003;
  if (control.protocol.value == kVanJacobson) ShowRows<Control>(in, c, kSlots, control);
  if (control.protocol.value == kHeaderCompression) {
    ShowRows<Control>(in, c, kSpaces, control);
    ShowElements<Control>(in, c, kOptionForm, "Suboption", kSpaceSuboptions, control);
  }
  if (control.protocol.value == kRohc) {
    ShowRows<Control>(in, c, kRobust, control);
    ShowElements<Control>(in, c, kOptionForm, "Suboption", kRobustSuboptions, control);
  }
}

constexpr auto kIpcpOptions = Choices<Control>({
    {1, "IP-Addresses (Deprecated)", kAddressPair}, {2, "IP-Compression-Protocol", kCompression, ShowCompression},
    {3, "IP-Address", kAddress}, {4, "Mobile-IPv4", kAddress}, {129, "Primary DNS Server Address", kAddress},
    {130, "Primary NBNS Server Address", kAddress}, {131, "Secondary DNS Server Address", kAddress},
    {132, "Secondary NBNS Server Address", kAddress}});

constexpr auto kInterface = Rows<Control>({Bytes(8, nullptr).Note(": %s")});
constexpr auto kIpv6cpOptions = Choices<Control>({
    {1, "Interface-Identifier", kInterface}, {2, "IPv6-Compression-Protocol", kCompression, ShowCompression}});

// ---- IPXCP, ATCP, NBFCP, BVCP.

constexpr auto kIpxCompressionNames = SortedNames({{0x0002, "Telebit Compressed IPX"}, {0x0235, "Shiva Compressed NCP/IPX"}});
constexpr auto kIpxRoutingNames = SortedNames({
    {0, "None"}, {2, "RIP and SAP"}, {4, "NLSP"}, {5, "Demand RIP"}, {6, "Demand SAP"}, {7, "Triggered RIP"},
    {8, "Triggered SAP"}});
constexpr auto kIpxNetwork = Rows<Control>({Hex(4, nullptr).Note(": 0x%.08X")});
constexpr auto kIpxNode = Rows<Control>({Mac(nullptr).Note(": %s")});
constexpr auto kIpxCompression = Rows<Control>({Hex(2, "Compression Protocol", kIpxCompressionNames), Bytes(0, "Data")});
constexpr auto kIpxRouting = Rows<Control>({Number(2, "Routing Protocol", kIpxRoutingNames), Bytes(0, "Data")});
constexpr auto kName = Rows<Control>({Text(0, nullptr).Note(": %s")});
constexpr auto kIpxcpOptions = Choices<Control>({
    {1, "IPX-Network-Number", kIpxNetwork}, {2, "IPX-Node-Number", kIpxNode},
    {3, "IPX-Compression-Protocol", kIpxCompression}, {4, "IPX-Routing-Protocol", kIpxRouting},
    {5, "IPX-Router-Name", kName}, {6, "IPX-Configuration-Complete"}});

constexpr auto kAppleRoutingNames = SortedNames({
    {0, "No Routing Information Exchange"}, {1, "RTMP"}, {2, "AURP"}, {3, "ABGP"}});
constexpr auto kServerClassNames = SortedNames({{1, "AppleTalk PPP Dial-In Server"}, {2, "Generic AppleTalk PPP"},
                                                {3, "Both Dial-In Server and Router"}});
constexpr auto kAppleAddress = Rows<Control>({Number(1, "Reserved"), Number(2, "Network"), Number(1, "Node")});
constexpr auto kAppleRouting = Rows<Control>({Number(2, "Routing Protocol", kAppleRoutingNames), Bytes(0, "Data")});
constexpr auto kAppleTypes = Rows<Control>({Bytes(0, "DDP Types")});
constexpr auto kAppleCompression = Rows<Control>({Hex(2, "Compression Protocol")});
constexpr auto kAppleServer = Rows<Control>({
    Number(2, "Server Class", kServerClassNames), Hex(4, "Implementation ID"), Text(0, "Server Name")});
constexpr auto kAtcpOptions = Choices<Control>({
    {1, "AppleTalk-Address", kAppleAddress}, {2, "Routing-Protocol", kAppleRouting},
    {3, "Suppress-Broadcasts", kAppleTypes}, {4, "AT-Compression-Protocol", kAppleCompression}, {5, "Reserved"},
    {6, "Server-Information", kAppleServer}, {7, "Zone-Information", kName},
    {8, "Default-Router-Address", kAppleAddress}});

constexpr auto kPeer = Rows<Control>({Number(2, "Peer Class"), Number(2, "Major Version"), Number(2, "Minor Version"),
                                      Text(0, "Peer Name")});
constexpr auto kFilter = Rows<Control>({Number(2, "Multicast Forward Period", " seconds"), Number(1, "Priority")});
constexpr auto kNbfcpOptions = Choices<Control>({
    {1, "Name-Projection", kBytes}, {2, "Peer-Information", kPeer}, {3, "Multicast-Filtering", kFilter},
    {4, "IEEE-MAC-Address-Required"}});
constexpr auto kBvcpOptions = Choices<Control>({
    {1, "BV-NS-RTP-Link-Type"}, {2, "BV-FRP"}, {3, "BV-RTP"}, {4, "BV-Suppress-Broadcast"}});

// ---- BCP.

constexpr auto kMacTypeNames = SortedNames({
    {1, "IEEE 802.3 and Ethernet with Canonical Addresses"}, {2, "IEEE 802.4 with Canonical Addresses"},
    {3, "IEEE 802.5 with Non-Canonical Addresses"}, {4, "FDDI with Non-Canonical Addresses"},
    {11, "IEEE 802.5 with Canonical Addresses"}, {12, "FDDI with Canonical Addresses"}});
constexpr auto kEnabledNames = SortedNames({{1, "Enabled"}, {2, "Disabled"}});
constexpr auto kSpanningNames = SortedNames({
    {0, "Null"}, {1, "IEEE 802.1D"}, {2, "IEEE 802.1G Extended"}, {3, "IBM Source Route"}, {4, "DEC LANbridge 100"}});
constexpr auto kBridge = Rows<Control>({Word(2), Bits(0, 12, "LAN Segment Number"), Bits(12, 4, "Bridge Number")});
constexpr auto kMacType = Rows<Control>({Number(1, "MAC Type", kMacTypeNames).Note(": %s")});
constexpr auto kEnabled = Rows<Control>({Number(1, nullptr, kEnabledNames).Note(": %s")});
constexpr auto kMacOption = Rows<Control>({Mac(nullptr).Note(": %s")});
constexpr auto kSpanning = Rows<Control>({Number(1, "Protocol", kSpanningNames)});
void ShowSpanning(const Place& in, Cursor& c, Control& control) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<Control>(in, c, kSpanning, control);
}
constexpr auto kBcpOptions = Choices<Control>({
    {1, "Bridge-Identification", kBridge}, {2, "Line-Identification", kBridge}, {3, "MAC-Support", kMacType},
    {4, "Tinygram-Compression", kEnabled}, {5, "LAN-Identification", kEnabled}, {6, "MAC-Address", kMacOption},
    {7, "Spanning-Tree-Protocol", {}, ShowSpanning}, {8, "IEEE-802-Tagged-Frame", kEnabled}, {9, "Management-Inline"},
    {10, "Bridge-Control-Packet-Indicator"}});

// ---- CCP and ECP.

constexpr auto kStacNames = SortedNames({
    {0, "None"}, {1, "LCB"}, {2, "CRC"}, {3, "Sequence Number"}, {4, "Extended Mode"}});
constexpr auto kPointMasks = SortedNames({
    {0x00000001, "MPPC Compression (C)"}, {0x00000010, "Obsolete (D)"}, {0x00000020, "40-bit Encryption (L)"},
    {0x00000040, "128-bit Encryption (S)"}, {0x00000080, "56-bit Encryption (M)"}, {0x01000000, "Stateless Mode (H)"}});
constexpr auto kDcpNames = SortedNames({{0, "None"}, {1, "LCB"}, {2, "Sequence Number"}, {3, "Sequence Number and LCB"}});
constexpr auto kProcessNames = SortedNames({{0, "None"}, {1, "Process Uncompressed"}});
constexpr auto kCompressionOui = Rows<Control>({Hex(3, "Organization (OUI)"), Number(1, "Subtype"), Bytes(0, "Values")});
constexpr auto kStac = Rows<Control>({Number(2, "History Count"), Word(1), Bits(0, 5, "Reserved"),
                                      Bits(5, 3, "Check Mode", kStacNames)});
constexpr auto kPoint = Rows<Control>({Flags(4, "Supported Bits", kPointMasks)});
constexpr auto kGandalf = Rows<Control>({Number(1, "History"), Bytes(0, "Version")});
constexpr auto kBsd = Rows<Control>({Word(1), Bits(0, 3, "Version"), Bits(3, 5, "Dictionary Bits")});
constexpr auto kDcp = Rows<Control>({Number(2, "History Count"), Number(1, "Check Mode", kDcpNames),
                                     Number(1, "Process Mode", kProcessNames)});
constexpr auto kMagnalink = Rows<Control>({Word(1), Bits(0, 2, "Features"), Flag(2, "Packet by Packet"), Bits(3, 5, "History"),
                                           Number(1, "Contexts")});
constexpr auto kDeflate = Rows<Control>({Word(1), Bits(0, 4, "Window"), Bits(4, 4, "Method"), Word(1),
                                         Bits(0, 6, "Must Be Zero"), Bits(6, 2, "Check")});
constexpr auto kV44 = Rows<Control>({Number(2, "Mode and Dictionary Count"), Number(2, "Dictionary Size"),
                                     Number(2, "History Length")});
constexpr auto kCcpOptions = Choices<Control>({
    {0, "OUI", kCompressionOui}, {1, "Predictor Type 1"}, {2, "Predictor Type 2"}, {3, "Puddle Jumper"},
    {16, "Hewlett-Packard PPC", kBytes}, {17, "Stac Electronics LZS", kStac}, {18, "Microsoft PPE/PPC", kPoint},
    {19, "Gandalf FZA", kGandalf}, {20, "V.42bis Compression", kBytes}, {21, "BSD LZW Compress", kBsd},
    {23, "LZS-DCP", kDcp}, {24, "MVRCA (Magnalink)", kMagnalink}, {25, "DCE", kDce}, {26, "Deflate", kDeflate},
    {27, "V.44/LZJH", kV44}});
constexpr auto kNonce = Rows<Control>({Bytes(8, "Initial Nonce")});
constexpr auto kEcpOptions = Choices<Control>({
    {0, "OUI", kCompressionOui}, {1, "DESE (Deprecated)", kNonce}, {2, "3DESE", kNonce}, {3, "DESE-bis", kNonce}});

// ---- The rest.

constexpr auto kAlignment = Rows<Control>({Number(1, "Alignment")});
constexpr auto kOsinlcpOptions = Choices<Control>({{1, "Align-NPDU", kAlignment}});
constexpr auto kBacpOptions = Choices<Control>({{1, "Favored-Peer", kMagicOption}});
constexpr auto kDefaultProtocol = Rows<Control>({Hex(2, "Default Protocol", PppProtocolName).Note(": %s")});
constexpr auto kMuxcpOptions = Choices<Control>({{1, "Default PID", kDefaultProtocol}});

// Serial data (SDCP, RFC 1963). XNSCP (RFC 1764), DNCP (RFC 1762) and SNACP (RFC 2043) have no options.
constexpr auto kSerialByte = Rows<Control>({Number(1, nullptr).Note(": %u")});
constexpr auto kSerialSize = Rows<Control>({Number(2, nullptr, " bytes").Note(": %u bytes")});
constexpr auto kSerialTime = Rows<Control>({Number(4, nullptr).Note(": %u")});
constexpr auto kSdcpOptions = Choices<Control>({
    {1, "Packet-Format", kSerialByte}, {2, "Header-Type", kSerialByte}, {3, "Length-Field-Present"}, {4, "Multi-Port"},
    {5, "Transport-Mode", kSerialByte}, {6, "Maximum-Frame-Size", kSerialSize}, {7, "Allow-Odd-Frames"},
    {8, "FCS-Type", kSerialByte}, {9, "Flow-Expiration-Time", kSerialTime}});

// What stands behind the header of other codes than those with options.
void ShowLinkBody(const Place& in, Cursor& c, Control& control) {
  const auto show = [&](RowSpan<Control> rows) { ShowRows<Control>(in, c, rows, control); };
  const uint32_t code = control.code.value;
  if (code == kVendor || (code >= kEchoRequest && code <= kTimeRemaining)) show(kMagic);
  if (code == kVendor) show(kOrganization);
  if (code == kProtocolReject) show(kRejected);
  if (code == kTimeRemaining) show(kSeconds);
  const bool isText = code == kIdentification || code == kTimeRemaining;
  if (Left(c) > 0) show(isText ? RowSpan<Control>(kMessage) : RowSpan<Control>(kDataRow));
}
// The same for network protocols, under one key for all of them.
void ShowNetworkBody(const Place& in, Cursor& c, Control& control) {
  const KeyedAs keys(PacketOf(in), "pppcp");
  if (control.code.value == kVendor) {
    ShowRows<Control>(in, c, kMagic, control);
    ShowRows<Control>(in, c, kOrganization, control);
  }
  if (Left(c) > 0) ShowRows<Control>(in, c, kDataRow, control);
}

constexpr int32_t kHeaderSize = 4;

// The header, and what of the packet's length is there; what is left behind it is padding of the link.
Cursor OpenControl(const Place& at, Cursor& c, const char* name, Control& control, Place& in) {
  in = Under(at, AddLine(at, Ahead(c, Left(c)), "%s: %s, Identifier %u", name, LookupName(kCodeNames, PeekU8(c)),
                         PeekU8(c, 1)));
  ShowRows<Control>(in, c, kHeader, control);
  Cursor body = TakeCursor(c, static_cast<int64_t>(control.length.value) - kHeaderSize);
  CoverBytes(in, c);
  return body;
}

bool HasOptions(const Control& control) { return control.code.value >= kRequest && control.code.value <= kReject; }

int32_t ShowControl(const Place& at, Cursor c, const char* name, ChoiceSpan<Control> options) {
  if (Left(c) < kHeaderSize) return 0;
  Control control{};
  Place in{};
  Cursor body = OpenControl(at, c, name, control, in);
  if (!HasOptions(control)) return ShowNetworkBody(in, body, control), 1;
  ShowElements<Control>(in, body, kOptionForm, "Option", options, control);
  AddBlock(in, Rest(body), "Option Data");
  return 1;
}

int32_t DecodeLcp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "lcp");
  if (Left(c) < kHeaderSize) return 0;
  Control control{};
  Place in{};
  Cursor body = OpenControl(at, c, "LCP", control, in);
  if (!HasOptions(control)) return ShowLinkBody(in, body, control), 1;
  ShowElements<Control>(in, body, kOptionForm, "Option", kLcpOptions, control);
  AddBlock(in, Rest(body), "Option Data");
  return 1;
}
int32_t DecodeIpcp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "ipcp");
  return ShowControl(at, c, "IPCP", kIpcpOptions);
}
int32_t DecodeIpv6cp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "ipv6cp");
  return ShowControl(at, c, "IPv6CP", kIpv6cpOptions);
}
int32_t DecodeIpxcp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "ipxcp");
  return ShowControl(at, c, "IPXCP", kIpxcpOptions);
}
int32_t DecodeAtcp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "atcp");
  return ShowControl(at, c, "ATCP", kAtcpOptions);
}
int32_t DecodeBcp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "bcp");
  return ShowControl(at, c, "BCP", kBcpOptions);
}
// The algorithm that one end acknowledges is what the other one sends from then on.
int32_t DecodeCcp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "ccp");
  constexpr uint32_t kAck = 2;
  int32_t direction;
  const PacketState& packet = PacketOf(at);
  if (PeekU8(c) == kAck && Left(c) > kHeaderSize && !packet.quoted) {
    Remember(at.view, kPppCompressions, ConnectionOf(packet, &direction), {PeekU8(c, kHeaderSize), 0});
  }
  return ShowControl(at, c, "CCP", kCcpOptions);
}
int32_t DecodeEcp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "ecp");
  return ShowControl(at, c, "ECP", kEcpOptions);
}
int32_t DecodeMplscp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "mplscp");
  return ShowControl(at, c, "MPLSCP", {});
}
int32_t DecodeOsinlcp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "osinlcp");
  return ShowControl(at, c, "OSINLCP", kOsinlcpOptions);
}
int32_t DecodeCdpcp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "cdpcp");
  return ShowControl(at, c, "CDPCP", {});
}
int32_t DecodeBacp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "bacp");
  return ShowControl(at, c, "BACP", kBacpOptions);
}
int32_t DecodeMuxcp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "pppmuxcp");
  return ShowControl(at, c, "PPPMuxCP", kMuxcpOptions);
}
int32_t DecodeNbfcp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "nbfcp");
  return ShowControl(at, c, "NBFCP", kNbfcpOptions);
}
int32_t DecodeBvcp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "bvcp");
  return ShowControl(at, c, "BVCP", kBvcpOptions);
}
int32_t DecodeSdcp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "sdcp");
  return ShowControl(at, c, "SDCP", kSdcpOptions);
}
int32_t DecodeXnscp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "pppcp");
  return ShowControl(at, c, "XNSCP", {});
}
int32_t DecodeDncp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "pppcp");
  return ShowControl(at, c, "DNCP", {});
}
int32_t DecodeSnacp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "pppcp");
  return ShowControl(at, c, "SNACP", {});
}
int32_t DecodeOtherControl(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "pppcp");
  return ShowControl(at, c, "PPP Control Protocol", {});
}

}  // namespace

void ShowLcpOptions(const Place& in, Cursor& c) {
  const KeyedAs keys(PacketOf(in), "lcp");
  Control control{};
  ShowElements<Control>(in, c, kOptionForm, "Option", kLcpOptions, control);
}

DecoderFunction FindPppControl(uint32_t protocol) {
  switch (protocol) {
    case 0xC021: return DecodeLcp;
    case 0x8021: return DecodeIpcp;
    case 0x8057: return DecodeIpv6cp;
    case 0x802B: return DecodeIpxcp;
    case 0x8029: return DecodeAtcp;
    case 0x8031: return DecodeBcp;
    case 0x80FD:
    case 0x80FB: return DecodeCcp;
    case 0x8053:
    case 0x8055: return DecodeEcp;
    case 0x8281:
    case 0x8283: return DecodeMplscp;
    case 0x8023: return DecodeOsinlcp;
    case 0x8207: return DecodeCdpcp;
    case 0xC02B: return DecodeBacp;
    case 0x8059: return DecodeMuxcp;
    case 0x803F: return DecodeNbfcp;
    case 0x8035: return DecodeBvcp;
    case 0x8025: return DecodeXnscp;
    case 0x8027: return DecodeDncp;
    case 0x8049: return DecodeSdcp;
    case 0x804B:
    case 0x804D: return DecodeSnacp;
    case 0x8033:
    case 0x803D:
    case 0x8041:
    case 0x8043:
    case 0x8045:
    case 0x8047:
    case 0x804F:
    case 0x8051:
    case 0x805D:
    case 0x806F:
    case 0x8073:
    case 0x80C1:
    case 0x8209:
    case 0x820B:
    case 0x820D:
    case 0x8235:
    case 0x8285:
    case 0x8287:
    case 0x8289: return DecodeOtherControl;
    default: return nullptr;
  }
}

}  // namespace qxview
