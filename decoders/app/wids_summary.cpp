// The packet list's text for the frames that wireless access points copy to an intrusion detection server.
//
//   0         2            8   9         10       16                18                20       28
//   version   time stamp       channel            original length   captured length            802.11 frame
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"
#include "decoders/app/wireless_names.h"

namespace qxview {

int32_t DescribeWirelessIds(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  constexpr int32_t kMacAddress = 6;
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "Cisco Wireless IDS ");
  Cursor c = MakeCursor(data, 0, length);
  const Field version = TakeU16(c);
  TakeBytes(c, 7);   // time stamp, one byte of unknown meaning
  const Field channel = TakeU8(c);
  TakeBytes(c, 6);
  const Field original = TakeU16(c);
  TakeBytes(c, 10);  // captured length, eight bytes of unknown meaning
  if (c.ranShort) return Add(text, "Data"), 1;
  Add(text, "Version: %u, Channel: %u, Length: %u", version.value, channel.value, original.value);
  const Field control = TakeU8(c);
  TakeBytes(c, 3);   // flags, duration
  const Field receiver = TakeBytes(c, kMacAddress), transmitter = TakeBytes(c, kMacAddress);
  if (control.here) Add(text, ", %s", WirelessFrameName(control.value));
  if (transmitter.here) Add(text, ", %s -> %s", MacText(transmitter.bytes), MacText(receiver.bytes));
  return 1;
}

}  // namespace qxview
