// Network-layer protocol identifiers (ISO/IEC TR 9577), one byte in front of the payload: how Frame Relay (RFC 2427),
// ATM (RFC 2684) and OSI over HDLC name what they carry. The identifier of an OSI protocol is the first byte of its
// own header; all others are passed over.
#include "decoders/link/carried.h"
#include "decoders/link/llc.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

enum Nlpid : uint32_t {
  kNull = 0x00, kUnnumberedInformation = 0x03, kQ933 = 0x08, kCiscoLmi = 0x09, kSnap = 0x80, kClnp = 0x81,
  kEsIs = 0x82, kIsIs = 0x83, kIPv6 = 0x8E, kIPv4 = 0xCC, kPpp = 0xCF,
};

constexpr auto kNames = SortedNames({
    {0x00, "Null"}, {0x01, "T.70"}, {0x03, "UI"}, {0x08, "Q.933"}, {0x09, "LMI"}, {0x0C, "Q.2119"}, {0x80, "SNAP"},
    {0x81, "CLNP"}, {0x82, "ES-IS"}, {0x83, "IS-IS"}, {0x85, "IDRP"}, {0x8E, "IPv6"}, {0xB0, "Data Compression"},
    {0xB1, "Fragmentation"}, {0xCC, "IP"}, {0xCF, "PPP"}});

constexpr uint16_t kEthertypeIPv4 = 0x0800, kEthertypeIPv6 = 0x86DD;

}  // namespace

const char* NlpidName(uint32_t nlpid) { return LookupName(kNames, nlpid, nullptr); }

int32_t DispatchNlpid(const Place& in, const Place& network, Cursor c) {
  const Cursor whole = c;
  const Field nlpid = TakeU8(c);
  if (!nlpid.here) return 0;
  const char* name = NlpidName(nlpid.value);
  AddLine(in, nlpid, "NLPID: 0x%.02X = %s", nlpid.value, name ? name : kUnknown);
  switch (nlpid.value) {
    case kSnap: return DecodeEncapsulatedSnap(in, network, c, 0);
    case kQ933:
    case kCiscoLmi: return CallDecoder(network, whole, DecodeLinkManagement, "Q.931 Data");
    case kClnp:
    case kEsIs:
    case kIsIs:
      ReachLayer(network, DispatchTable::kLlc, static_cast<uint32_t>(OsiService(nlpid.value)), whole);
      return CallDecoder(network, whole, FindLlcService(OsiService(nlpid.value))->decode, "Raw Data");
    case kIPv6: return DecodeCarriedPacket(network, c, kEthertypeIPv6);
    case kIPv4: return DecodeCarriedPacket(network, c, kEthertypeIPv4);
    case kPpp: return DecodeCarriedFrame(network, c, Carried::kPpp);
    default: return CallDecoder(network, c, nullptr, "Raw Data");
  }
}

}  // namespace qxview
