// Token Ring, FDDI, ATM and Fibre Channel frames.
#include "tests/support/decoding.h"

namespace qxview::testing {
namespace {

constexpr uint8_t kTokenRing = 1, kFddi = 2, kAtm = 6, kFibreChannel = 8;
constexpr uint16_t kLinkDelimited = 225;

const Bytes kArp = Hex("0001 0800 06 04 0001  02 00 00 00 00 02  0A 00 00 01  00 00 00 00 00 00  0A 00 00 02");
const Bytes kSnapArp = Hex("AA AA 03 00 00 00 08 06") + kArp;
const Bytes kMacArp = Ethernet(0x0806, kArp);

// The summary lines of a saved record: partial, with a number of its own.
Record Saved(const Bytes& frame, uint8_t medium) {
  Record record(frame, medium, kExtensionOriginalNumber, Hex("15 CD 5B 07 01 00 00 00"));  // 4418424085
  record->partial = 1;
  record->wireLength = 1000;
  record->receiveErrors = 3;
  return record;
}

TEST(TokenRing, ShowsMacVectors) {
  const Bytes frame =
      Hex("10 05  C0 00 FF FF FF FF  02 00 00 00 00 02  0012 00 05  08 02 020000000003  06 0B 00000001 AA");
  const std::string tree = TreeOf(Saved(frame, kTokenRing));
  ExpectInOrder(tree, {"captured  [Alignment+CRC]) {",
                       "Network: TokenRing,  Frame type:  MAC,  Protocol:  Active Monitor Present {",
                       "Frame size (including 4 bytes CRC):  1004 {", "Saved partial packet size:  33 {",
                       "Packet number in the original buffer: 123456789 {",
                       "....0101: Control = Active Monitor Present", "Token Ring MAC: Active Monitor Present {14+18}",
                       "Vector Length: 18 {14+2}", "Subvector: Upstream Neighbor Address {18+8}",
                       "Data: 02 00 00 00 00 03 {20+6}", "Subvector: Physical Drop Number {26+6}"});
}

TEST(Fddi, ShowsTheFrameControlAndWhatLlcCarries) {
  const Bytes frame = Hex("57  02 00 00 00 00 01  02 00 00 00 00 02") + kSnapArp;
  ExpectInOrder(TreeOf(frame, kFddi), {R"(
  Network: FDDI,  Frame type:  LLC Asynchronous,  Protocol:  ARP {0+49}
  Frame size (including 4 bytes CRC):  53 {0+49}
FDDI Header:  02:00:00:00:00:02 -> 02:00:00:00:00:01 {0+13}
  Frame Control: 0x57 = LLC Asynchronous {0+1}
  0.......: Class = Asynchronous {0+1}
  .1......: Address Length = 48 bits {0+1}
  ..01....: Format = LLC {0+1}
  ....0111: Priority = 7 {0+1}
  Destination: 02:00:00:00:00:01 {1+6}
  Source: 02:00:00:00:00:02 {7+6}
802.2 SNAP Header: Ethertype = ARP {13+8})"});
  const Bytes management = Hex("41  02 00 00 00 00 01  02 00 00 00 00 02  01 02 03");
  ExpectInOrder(
      TreeOf(Saved(management, kFddi)),
      {"Frame type:  SMT,  Protocol:  SMT", "Packet number in the original buffer: 4418424085", "SMT Data {8:13+3}"});
}

Record Cell(const Bytes& frame, const std::string& header) { return Record(frame, kAtm, kExtensionAtm, Hex(header)); }

TEST(Atm, FindsWhatTheCircuitCarries) {
  ExpectInOrder(
      TreeOf(Cell(kSnapArp, "82 05 0021")),
      {"Network: ATM, Frame Type: LLC/SNAP {0+36}", "Frame network size: 36 {0+36}",
       "ATM Header:  VPI = 5, VCI = 33 {0+0}", "Direction: Transmitted", "Traffic Type: 2 = LLC Multiplexed",
       "802.2 SNAP Header: Ethertype = ARP {0+8}", "ATMARP: "});  // which is not Ethernet's
  ExpectInOrder(TreeOf(Hex("AA AA 03 00 80 C2 0007 0000") + kMacArp, kAtm),
                {"Frame Type: LLC/SNAP", "802.2 SNAP Header: {0+8}", "Routed LAN Traffic {3+3}",
                 "Network Type: 0x0007 - Ethernet {6+2}", "Padding: 00 00 {8+2}", "Ethernet Header:", "{10+14}"});
  ExpectInOrder(TreeOf(Hex("AA AA 03 00 80 C2 000A 000000 57 020000000001 020000000002") + kSnapArp, kAtm),
                {"Network Type: 0x000A - FDDI", "Padding: 00 00 00 {8+3}", "FDDI Header:", "{11+13}"});
  ExpectInOrder(
      TreeOf(Hex("FE FE 03 CF C0 21 01 01 00 04"), kAtm),
      {"Frame Type: LLC/NLPID", "NLPID: 0xCF = PPP {3+1}", "PPP Header:  Protocol = LCP {4+2}",
      "LCP: Configure-Request, Identifier 1 {6+4}"});
  ExpectInOrder(TreeOf(Hex("42 42 03 00 00"), kAtm), {"Frame Type: LLC {", "Protocol = Spanning Tree BPDU {0+3}"});
}

TEST(Atm, FindsProtocolsWithNothingInFront) {
  ExpectInOrder(TreeOf(IPv4(17, Bytes(8)), kAtm), {"Network: ATM, Frame Type: VC Multiplexed IP {"});
  ExpectInOrder(TreeOf(Hex("0021") + IPv4(17, Bytes(8)), kAtm),
                {"VC Multiplexed PPP", "PPP Header:  Protocol = IP {0+2}"});
  ExpectInOrder(TreeOf(Hex("0000") + kMacArp, kAtm),
                {"VC Multiplexed Ethernet", "Bridged Ethernet: {0+2}", "Ethernet Header:", "{2+14}"});
  ExpectInOrder(TreeOf(Cell(Hex("0007") + kMacArp, "01 00 0064")),
                {"Frame Type: LAN Emulation", "LAN Emulation Client: 7 {0+2}", "Ethernet Header:", "{2+14}"});
  ExpectInOrder(TreeOf(Cell(Hex("FF00 0101 0001"), "01 00 0064")),
                {"Marker: 0xFF00 = Control {0+2}", "LAN Emulation Control Data {8:2+4}"});
  ExpectInOrder(TreeOf(Cell(Hex("30 10"), "05 00 0010")), {"Frame Type: ILMI", "ILMI Data {8:0+2}"});
}

// IP over Fibre Channel, the network header in front.
const Bytes kFcFrame = Hex(R"(
  04 010203 00 FFFFFC 05 390002 07 20 0000 1234 FFFF 00000000
  10 00 02 00 00 00 00 01  10 00 02 00 00 00 00 02)") +
                       kSnapArp + Hex("0000");

TEST(FibreChannel, ShowsTheHeaderOfEveryFrame) {
  ExpectInOrder(TreeOf(Saved(kFcFrame, kFibreChannel)), {"Network: Fibre Channel FC-2 {0+78}",
                                                         "Frame network size: 1000 {0+78}",
                                                         "Saved partial packet size:  78",
                                                         "Packet number in the original buffer: 123456789",
                                                         "Fibre Channel Header:  FF.FF.FC -> 01.02.03 {0+40}",
                                                         "R_CTL: 0x04 = Device Data, Unsolicited Data {0+1}",
                                                         "Destination: 01.02.03 {1+3}",
                                                         "CS_CTL: 0x00 {4+1}",
                                                         "Source: FF.FF.FC (Directory Server) {5+3}",
                                                         "Type: 0x05 = IP over FC {8+1}",
                                                         "F_CTL: 0x390002 {9+3}",
                                                         "..1..... ........ ........: First Sequence = 1 {9+3}",
                                                         "........ ........ ......10: Fill Bytes = 2 {9+3}",
                                                         "SEQ_ID: 0x07 {12+1}",
                                                         "DF_CTL: 0x20 {13+1}",
                                                         "SEQ_CNT: 0 {14+2}",
                                                         "OX_ID: 0x1234 {16+2}",
                                                         "RX_ID: 0xFFFF {18+2}",
                                                         "Parameter: 0x00000000 {20+4}",
                                                         "Network Destination: 10 00 02 00 00 00 00 01 {24+8}",
                                                         "802.2 SNAP Header: Ethertype = ARP {40+8}",
                                                         "ARP: Request, Source 10.0.0.1, Target 10.0.0.2 {48+28}"});
}

TEST(FibreChannel, ShowsDelimitersAndExtendedHeaders) {
  const Bytes frame =
      Hex("BCB55555  50 20 00 14 0A 000000  06 010203 00 040506 08 290000 07 00 0000 1234 FFFF 00000000") +
      Hex("DEADBEEF  11223344  BC957575");
  const auto delimited = [](const Bytes& bytes) {
    Record record(bytes, kFibreChannel);
    record->linkType = kLinkDelimited;
    return record;
  };
  ExpectInOrder(
      TreeOf(delimited(frame)),
      {"Network: Fibre Channel Class 2 FC-2 {", "Frame network size: 48 (including SOF, CRC and EOF) {0+48}",
       "Start of Frame: 0xBCB55555 = SOFi2 {0+4}", "CRC: 0x11223344 {40+4}", "End of Frame: 0xBC957575 = EOFt {44+4}",
       "Virtual Fabric Tagging Header {4+8}", "Virtual Fabric = 10 {4+4}", "Fibre Channel Header:", "{12+24}",
       "Device Data, Unsolicited Command", "Type: 0x08 = SCSI FCP", "SCSI FCP Data {8:36+4}"});
}

}  // namespace
}  // namespace qxview::testing
