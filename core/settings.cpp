#include "core/settings.h"

#include <cstring>

#include "core/bounded_text.h"

namespace qxview {
namespace {

struct Reader {
  const SettingsSource& source;
  int32_t unreadable = 0;

  bool Text(const char* name, char* out, int32_t outSize) const {
    return source.read && source.read(source.user, name, out, outSize) == 1;
  }

  // Decimal or 0x-hexadecimal, with an optional sign.
  int64_t Number(const char* name, int64_t otherwise) {
    char text[64];
    if (!Text(name, text, sizeof text) || !text[0]) return otherwise;
    const char* at = text;
    const bool negative = *at == '-';
    if (negative) ++at;
    const bool hex = at[0] == '0' && (at[1] == 'x' || at[1] == 'X');
    if (hex) at += 2;
    int64_t value = 0;
    if (!*at) return ++unreadable, otherwise;
    for (; *at; ++at) {
      const char c = static_cast<char>(*at | 0x20);
      const int32_t digit = *at >= '0' && *at <= '9' ? *at - '0' : hex && c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
      if (digit < 0 || value > 0xFFFFFFFFF) return ++unreadable, otherwise;
      value = value * (hex ? 16 : 10) + digit;
    }
    return negative ? -value : value;
  }
};

}  // namespace

int32_t ReadSettings(Settings* settings, const SettingsSource& source) {
  std::memset(settings, 0, sizeof *settings);
  Reader read{source};
  const int64_t mode = read.Number("TypeOfServiceMode", 0);
  settings->typeOfService.mode = mode < 0 || mode > 3 ? 0 : static_cast<uint8_t>(mode);
  settings->typeOfService.fieldMask = static_cast<uint8_t>(read.Number("TypeOfServiceFieldMask", 0));
  for (int32_t i = 0; i < 8; ++i) {
    char name[40];
    FormatInto(name, sizeof name, "TypeOfServiceFieldName%u", i);
    char* field = settings->typeOfService.fieldNames[i];
    read.Text(name, field, sizeof settings->typeOfService.fieldNames[i]);
  }
  settings->detection.on = read.Number("DynamicDetection", 1) != 0;
  settings->detection.flags = static_cast<uint32_t>(read.Number("DetectionFlags", 0x1B));
  settings->detection.flags2 = static_cast<uint32_t>(read.Number("DetectionFlags2", 0x400));
  settings->detection.tdsOff = read.Number("TdsDetectionOff", 0) != 0;
  settings->forced.on = read.Number("ForcedDecoding", 0) != 0;
  settings->forced.startProtocol = static_cast<uint32_t>(read.Number("ForcedStartProtocol", 0));
  settings->forced.protocolChoice = static_cast<uint32_t>(read.Number("ForcedProtocolChoice", 0));
  settings->forced.skipBytes = static_cast<uint32_t>(read.Number("ForcedSkipBytes", 0));
  settings->expandLevel[0] = read.Number("Expand2ndLevel", 1) != 0;
  settings->expandLevel[1] = read.Number("Expand3rdLevel", 0) != 0;
  settings->expandLevel[2] = read.Number("Expand4thLevel", 0) != 0;
  settings->rangeFilterOn = read.Number("RangeFilterOn", 0) != 0;
  settings->rangeFilterStart = static_cast<int32_t>(read.Number("RangeFilterStart", 0));
  settings->rangeFilterLength = static_cast<int32_t>(read.Number("RangeFilterLength", 0));
  char library[sizeof settings->externalDecoder + 1] = "";   // a short name must not leave what stood here in the last place
  const bool whole = read.Text("ExternalDecoder", library, sizeof library) && !library[sizeof library - 2];
  if (whole) CopyString(settings->externalDecoder, sizeof settings->externalDecoder, library);
  settings->externalDecoderPort = static_cast<uint16_t>(read.Number("ExternalDecoderPort", 0));
  settings->cleanText = read.Number("CleanText", 1) != 0;
  settings->characterSet = read.Number("CharacterSet", 0) != 0;
  const int64_t modern = read.Number("Modern", 0) != 0;   // what the others are where they are not given
  settings->dnsRecords = read.Number("DnsRecords", modern) != 0;
  settings->ignoreChecksums = read.Number("IgnoreChecksums", modern) != 0;
  settings->reassembly = read.Number("Reassembly", 0) != 0;
  read.Text("TlsKeyLog", settings->tlsKeyLog, sizeof settings->tlsKeyLog);
  read.Text("RadiusSecret", settings->radiusSecret, sizeof settings->radiusSecret);
  read.Text("TacacsSecret", settings->tacacsSecret, sizeof settings->tacacsSecret);
  return read.unreadable;
}

}  // namespace qxview
