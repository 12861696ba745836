// Where FTP's data connections come in or go to, as the control connection said (RFC 959, RFC 2428).
#pragma once
#include "core/decoder.h"

namespace qxview {

struct FtpDataEnd {
  uint8_t address[16];
  uint16_t port;
  uint16_t kind;   // of the address
  uint32_t unused;
};
struct FtpDataState { uint8_t unused; };

// Remembers the end, where the packet is not quoted.
void AnnounceFtpData(const Place& at, const AddressSlot& address, uint16_t port);
// Whether the current packet comes from such an end or goes to it.
bool IsFtpData(const View* view);

}  // namespace qxview
