// The exports over payloads and headers: summaries, dynamic ports, pseudo-header sums.
#include "core/settings.h"
#include "decoders/app/http_summary.h"
#include "decoders/app/rtp_summary.h"
#include "decoders/app/summaries.h"
#include "decoders/net/dynamic_udp.h"
#include "decoders/net/ipv6_checksum.h"
#include "decoders/net/pseudo_head.h"
#include "host/standalone_host.h"
#include "platform/platform.h"
#include "qxview/qxview.h"

using namespace qxview;

namespace {

// The user's setting, read once: these exports have no view to take it from. A damaged settings file leaves the default.
bool CleansText() {
  static const bool cleans = [] {
    try {
      std::string message;
      bool fileFault;
      HostOptions options;
      options.userSettings = FindUserSettings();
      const auto host = StandaloneHost::Create(options, &message, &fileFault);
      if (!host) return true;
      Settings settings;
      ReadSettings(&settings, {host->Record()->user, host->Record()->readSetting});
      return settings.cleanText;
    } catch (...) {
      return true;
    }
  }();
  return cleans;
}

}  // namespace

uint32_t PseudoHead(uint8_t* ipv4Header) { return ipv4Header ? qxview::PseudoHead(ipv4Header) : 0; }

uint16_t CalculateIPv6PseudoChecksum(const uint8_t* ipv6Header) {
  return ipv6Header ? qxview::CalculateIPv6PseudoChecksum(ipv6Header) : static_cast<uint16_t>(0);
}

int32_t AddDynamicFtpDataPort(const char* text, int32_t length, AddressSlot* slot, uint16_t* port) {
  return qxview::AddDynamicFtpDataPort(text, length, slot, port);
}

int32_t DetermineDynamicUDPPrototol(const DetectionSettings* settings, uint16_t sourcePort, uint16_t destinationPort,
                                    const uint8_t* data, int32_t length, uint32_t* identifier, uint16_t* subType,
                                    uint16_t* zero, DynamicRecord* record) {
  return qxview::DetermineDynamicUDPPrototol(settings, sourcePort, destinationPort, data, length, identifier, subType,
                                             zero, record);
}

int32_t GetDNSDescription(const uint8_t* data, int32_t length, TextBuffer* summary, int32_t transport,
                          uint16_t lengthHint, int32_t variant) {
  return DescribeDns(data, length, summary, transport, lengthHint, variant);
}

int32_t GetHTTPDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t isTls) {
  return DescribeHttp(data, length, out, outSize, isTls);
}

int32_t GetSSLTLSDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t port,
                             int32_t* pending) {
  TlsStream stream{pending ? *pending : 0, false};
  const int32_t result = DescribeTls(data, length, out, outSize, port, &stream);
  if (pending) *pending = stream.pending;
  return result;
}

int32_t GetFTPDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t messageLimit,
                          int32_t isDataConnection) {
  return DescribeFtp(data, length, out, outSize, messageLimit, isDataConnection);
}

int32_t GetSMTPDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t messageLimit) {
  return DescribeSmtp(data, length, out, outSize, messageLimit);
}

int32_t GetPOP3Description(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  return DescribePop3(data, length, out, outSize);
}

int32_t GetTelnetDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t commandLimit,
                             int32_t dataLimit, int32_t printableOnly) {
  const bool cleans = printableOnly && CleansText();
  return DescribeTelnet(data, length, out, outSize, commandLimit, dataLimit, printableOnly, cleans);
}

int32_t GetTDSDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t flag) {
  return DescribeTds(data, length, out, outSize, flag);
}

int32_t GetTNSDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  return DescribeTns(data, length, out, outSize);
}

int32_t GetRTPDescription(const uint8_t* data, int32_t length, const RtpStream* stream, int32_t showSsrc, char* out,
                          int32_t outSize) {
  return DescribeRtp(data, length, stream, showSsrc, out, outSize);
}

const char* GetRtpCodecDescription(int32_t payloadType) { return RtpCodecName(payloadType); }

int32_t GetRTCPDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  return DescribeRtcp(data, length, out, outSize);
}

int32_t GetRTSPDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  return DescribeRtsp(data, length, out, outSize);
}

int32_t GetSIPDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t flag) {
  return DescribeSip(data, length, out, outSize, flag);
}

int32_t GetSCCPDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  return DescribeSccp(data, length, out, outSize);
}

int32_t GetMGCPDescription(const uint8_t* data, int32_t length, TextBuffer* summary) {
  return DescribeMgcp(data, length, summary);
}

int32_t GetMegacoH248Description(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  return DescribeMegaco(data, length, out, outSize);
}

int32_t GetSNMPDescription(void*, const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  return DescribeSnmp(data, length, out, outSize);
}

int32_t GetLDAPDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  return DescribeLdap(data, length, out, outSize);
}

int32_t GetH323HostCallDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  return DescribeH323HostCall(data, length, out, outSize);
}

int32_t GetH323GatekeeperDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t flag) {
  return DescribeH323Gatekeeper(data, length, out, outSize, flag);
}

int32_t GetH245Description(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  return DescribeH245(data, length, out, outSize);
}

int32_t GetSMBDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t directTcp,
                          int32_t continuationAllowed) {
  return DescribeSmb(data, length, out, outSize, directTcp, continuationAllowed);
}

int32_t GetCGPDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  return DescribeCgp(data, length, out, outSize);
}

int32_t GetIAX2Description(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  return DescribeIax2(data, length, out, outSize);
}

int32_t GetBitTorrentDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  return DescribeBitTorrent(data, length, out, outSize);
}

int32_t GetCiscoWIDSDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  return DescribeWirelessIds(data, length, out, outSize);
}

int32_t GetFixDescription(const uint8_t* data, int32_t length, char* out, uint16_t outSize) {
  return DescribeFix(data, length, out, outSize);
}

int32_t GetGIOPDescription(const uint8_t* data, int32_t length, TextBuffer* summary) {
  return DescribeGiop(data, length, summary);
}

int32_t GetLpdLprDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  return DescribeLpd(data, length, out, outSize);
}

int32_t GetMinetDescription(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t flag) {
  return DescribeMinet(data, length, out, outSize, flag);
}

int32_t GetUNIStimDescriptionPublicDecode(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  return DescribeUnistim(data, length, out, outSize);
}
