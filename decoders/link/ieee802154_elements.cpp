// What the information elements of IEEE 802.15.4 hold (IEEE 802.15.4-2015 7.4.2 to 7.4.4): those of the header, and those that
// stand in MLME's.
#include "decoders/link/ieee802154.h"

#include "core/rows.h"

namespace qxview {
namespace {

struct Held {
  Field count;
};
constexpr auto kVendor = LittleRows<Held>({Hex(3, "Organization (OUI)"), Bytes(0, "Vendor Data")});
constexpr auto kSampled = LittleRows<Held>({Number(2, "CSL Phase"), Number(2, "CSL Period")});
constexpr auto kRendezvous = LittleRows<Held>({Number(2, "Rendezvous Time")});
constexpr auto kReceiverInitiated = LittleRows<Held>({
    Number(1, "Time to First Listen"), Number(1, "Number of Repeats"), Number(2, "Repeat Listen Interval")});
constexpr auto kWakeup = LittleRows<Held>({Number(2, "Rendezvous Time"), Number(2, "Wake-Up Interval")});
constexpr auto kGlobalTime = LittleRows<Held>({Number(4, "Global Time")});
constexpr auto kSynchronization = LittleRows<Held>({Number(5, "Absolute Slot Number"), Number(1, "Join Metric")});
constexpr auto kSlotframes = LittleRows<Held>({Number(1, "Slotframes").Into(&Held::count)});
constexpr auto kSlotframe = LittleRows<Held>({
    Number(1, "Slotframe Handle"), Number(2, "Slotframe Size"), Number(1, "Links").Into(&Held::count)});
constexpr auto kLink = LittleRows<Held>({
    Number(2, "Timeslot"), Number(2, "Channel Offset"), Hex(1, "Link Options"), Bits(0, 3, "Reserved"), Flag(3, "Priority"),
    Flag(4, "Timekeeping"), Flag(5, "Shared"), Flag(6, "Receive Link"), Flag(7, "Transmit Link")});
constexpr auto kTimeslotId = LittleRows<Held>({Number(1, "Timeslot ID")});
constexpr auto kTimeslot = LittleRows<Held>({
    Number(2, "CCA Offset", " us"), Number(2, "CCA Duration", " us"), Number(2, "Transmit Offset", " us"),
    Number(2, "Receive Offset", " us"), Number(2, "Receive Acknowledgement Delay", " us"),
    Number(2, "Transmit Acknowledgement Delay", " us"), Number(2, "Receive Wait", " us"),
    Number(2, "Acknowledgement Wait", " us"), Number(2, "Turnaround", " us"), Number(2, "Maximum Acknowledgement", " us")});
constexpr auto kTimeslotEnd2 = LittleRows<Held>({Number(2, "Maximum Transmission", " us"), Number(2, "Timeslot Duration", " us")});
constexpr auto kTimeslotEnd3 = LittleRows<Held>({Number(3, "Maximum Transmission", " us"), Number(3, "Timeslot Duration", " us")});
constexpr auto kHopping = LittleRows<Held>({Number(1, "Hopping Sequence ID")});
constexpr auto kHoppingMore = LittleRows<Held>({
    Number(1, "Channel Page"), Number(2, "Channels"), Hex(4, "PHY Configuration")});

Held ShowValue(const Place& in, Cursor& c, RowSpan<Held> rows) {
  Held held{};
  ShowRows<Held>(in, c, rows, held);
  return held;
}

void ShowSlotframes(const Place& in, Cursor& c) {
  const uint32_t count = ShowValue(in, c, kSlotframes).count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) {
    const uint32_t links = ShowValue(in, c, kSlotframe).count.value;
    Loop inner;
    for (uint32_t j = 0; j < links && MoreAt(in, c, inner); ++j) ShowValue(in, c, kLink);
  }
}

}  // namespace

void ShowWpanVendor(const Place& in, Cursor& c) {
  if (Left(c) >= 3) ShowValue(in, c, kVendor);
}

void ShowWpanHeaderElement(const Place& in, Cursor& c, uint32_t id) {
  const int32_t left = Left(c);
  if (id == 0x00 && left >= 3) ShowValue(in, c, kVendor);
  if (id == 0x1A && left >= 4) ShowValue(in, c, kSampled);
  if (id == 0x1A && left == 6) ShowValue(in, c, kRendezvous);
  if (id == 0x1B && left == 4) ShowValue(in, c, kReceiverInitiated);
  if (id == 0x1D && left == 4) ShowValue(in, c, kWakeup);
  if (id == 0x29 && left == 4) ShowValue(in, c, kGlobalTime);
  if (id == 0x1E && left == 2) {   // twelve bits with a sign, and whether the frame was not accepted
    const Field field = TakeLittleU16(c);
    const int32_t time = static_cast<int32_t>(field.value & 0x0FFF) - (field.value & 0x0800 ? 0x1000 : 0);
    AddLine(in, field, "Time Correction: %d us", time);
    AddLine(in, field, "Acknowledgement: %s", field.value & 0x8000 ? "Negative" : "Positive");
  }
}

void ShowWpanNestedElement(const Place& in, Cursor& c, uint32_t id, bool isLong) {
  if (isLong && id == 0x09) {
    ShowValue(in, c, kHopping);
    if (Left(c) >= 7) ShowValue(in, c, kHoppingMore);
  } else if (!isLong && id == 0x1A && Left(c) == 6) {
    ShowValue(in, c, kSynchronization);
  } else if (!isLong && id == 0x1B) {
    ShowSlotframes(in, c);
  } else if (!isLong && id == 0x1C) {
    ShowValue(in, c, kTimeslotId);
    const bool isWide = Left(c) == 26;
    if (Left(c) >= 24) {
      ShowValue(in, c, kTimeslot);
      ShowValue(in, c, isWide ? RowSpan<Held>(kTimeslotEnd3) : RowSpan<Held>(kTimeslotEnd2));
    }
  }
}

}  // namespace qxview
