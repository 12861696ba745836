// Two operations that the host takes from the module as well: what a UDP payload on unknown ports is, and the data
// port that an FTP server opened.
#pragma once
#include <cstdint>

#include "qxview/qxview_host.h"
#include "qxview/qxview_types.h"

namespace qxview {

using ::AddressSlot;
using ::DetectionSettings;
using ::DynamicRecord;

constexpr uint32_t kLearntRtp = 0x2050059, kLearntRtcp = 0x205005A;
constexpr uint16_t kNoSubType = 0xFFFF;

// 1 when the payload is RTP or RTCP as far as `settings` lets them be looked for, else 0. `identifier` is kLearntRtp
// with the payload type as `subType`, kLearntRtcp with the first packet's type, or 0 with kNoSubType; `zero` is 0.
// `record`: RTP's sequence number and timestamp; of the report blocks of RTCP's first packet the highest sequence
// number (its low 16 bits) and the greatest jitter; not found otherwise. An RTP packet whose header extension is cut
// gives 0 and leaves what its fixed header said. Every output may be null; null settings look for nothing.
int32_t DetermineDynamicUDPPrototol(const DetectionSettings* settings, uint16_t sourcePort, uint16_t destinationPort,
                                    const uint8_t* data, int32_t length, uint32_t* identifier, uint16_t* subType,
                                    uint16_t* zero, DynamicRecord* record);

// Reads the address and port behind the first parenthesis of a passive-mode reply, "(h1,h2,h3,h4,p1,p2)": six decimal
// numbers of a byte each. At most 300 bytes are looked at. 1, or 0 with nothing written.
int32_t AddDynamicFtpDataPort(const char* text, int32_t length, AddressSlot* slot, uint16_t* port);

}  // namespace qxview
