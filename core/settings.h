// The module's settings, read once when an engine starts. Names, defaults and meanings: docs/settings.md.
#pragma once
#include <cstdint>

namespace qxview {

struct TypeOfServiceSettings {
  uint8_t mode;            // 0 to 3; anything above is 0
  uint8_t fieldMask;       // mode 3: a bit starts a new field
  char fieldNames[8][27];  // mode 3, up to 26 characters each
};

struct DetectionSettingsWords {
  bool on;
  uint32_t flags;       // bit 0 RTP, 1 RTCP, 3 MSRPC, 4 FIX
  uint32_t flags2;      // bit 10 GIOP
  bool tdsOff;
};

struct ForcedDecodingSettings {
  bool on;
  uint32_t startProtocol;
  uint32_t protocolChoice;
  uint32_t skipBytes;
};

struct Settings {
  TypeOfServiceSettings typeOfService;
  DetectionSettingsWords detection;
  ForcedDecodingSettings forced;
  bool expandLevel[3];          // 2nd, 3rd and 4th level trees
  bool rangeFilterOn;
  int32_t rangeFilterStart, rangeFilterLength;
  char externalDecoder[128];    // the detector's plug-in and its port
  uint16_t externalDecoderPort;
  bool cleanText;               // the cleaning option of the Telnet summary
  bool characterSet;            // character translation in hex dumps
  bool dnsRecords;              // every type of DNS record with its fields
  bool ignoreChecksums;         // bad ones are shown and end nothing
  bool reassembly;              // messages over segments and fragments are joined
  char tlsKeyLog[1024];         // the file with the secrets of TLS connections; whoever decrypts reads it
  char radiusSecret[256], tacacsSecret[256];   // what clients and servers share
};

// Where settings come from: the value of a name, 1 when there is one.
struct SettingsSource {
  void* user;
  int32_t (*read)(void* user, const char* name, char* out, int32_t outSize);
};

// Every setting that the source has over its default. A number that cannot be read keeps its default and is counted.
int32_t ReadSettings(Settings* settings, const SettingsSource& source);

}  // namespace qxview
