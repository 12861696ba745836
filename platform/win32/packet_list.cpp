#include "platform/win32/packet_list.h"

// Behind windows.h, whose types it uses.
#include <commctrl.h>

#include <algorithm>
#include <cstdio>

namespace qxview {
namespace {

struct Column {
  const char* name;
  int32_t width;   // at 96 dots per inch
  int32_t format;
};
enum ColumnIndex { kNumber, kTime, kSource, kDestination, kLength, kSummary };
constexpr Column kColumns[] = {{"Packet", 64, LVCFMT_RIGHT},      {"Time", 96, LVCFMT_RIGHT},
                               {"Source", 150, LVCFMT_LEFT},      {"Destination", 150, LVCFMT_LEFT},
                               {"Length", 64, LVCFMT_RIGHT},      {"Summary", 420, LVCFMT_LEFT}};

LRESULT Send(HWND window, UINT message, WPARAM what = 0, LPARAM value = 0) {
  return SendMessageA(window, message, what, value);
}

}  // namespace

bool PacketList::Create(HWND parent, HINSTANCE module, WindowPackets* packets, const Marks* marks, uint32_t dotsPerInch) {
  packets_ = packets;
  marks_ = marks;
  rows_.resize(kKept);
  const DWORD style = WS_CHILD | WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_NOSORTHEADER;
  window_ = CreateWindowExA(0, WC_LISTVIEWA, "Packets", style, 0, 0, 0, 0, parent, nullptr, module, nullptr);
  if (!window_) return false;
  Send(window_, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER,
       LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
  for (size_t i = 0; i < std::size(kColumns); ++i) {
    LVCOLUMNA column{};
    column.mask = LVCF_TEXT | LVCF_FMT | LVCF_WIDTH;
    column.pszText = const_cast<char*>(kColumns[i].name);
    column.fmt = kColumns[i].format;
    Send(window_, LVM_INSERTCOLUMNA, i, reinterpret_cast<LPARAM>(&column));
  }
  ScaleColumns(dotsPerInch);
  Refresh();
  return true;
}

void PacketList::ScaleColumns(uint32_t dotsPerInch) {
  for (size_t i = 0; i < std::size(kColumns); ++i) {
    Send(window_, LVM_SETCOLUMNWIDTH, i, MulDiv(kColumns[i].width, static_cast<int>(dotsPerInch), 96));
  }
}

void PacketList::Refresh() {
  constexpr uint64_t kMostRows = 100000000;   // that the control takes
  for (Row& row : rows_) row.number = 0;
  const uint64_t count = std::min(packets_->Count(), kMostRows);
  Send(window_, LVM_SETITEMCOUNT, static_cast<WPARAM>(count), LVSICF_NOINVALIDATEALL | LVSICF_NOSCROLL);
  InvalidateRect(window_, nullptr, FALSE);
}

void PacketList::Select(uint64_t number) {
  if (number == 0 || Selected() == number) return;
  LVITEMA item{};
  item.state = item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
  Send(window_, LVM_SETITEMSTATE, static_cast<WPARAM>(number - 1), reinterpret_cast<LPARAM>(&item));
  Send(window_, LVM_ENSUREVISIBLE, static_cast<WPARAM>(number - 1), FALSE);
}

uint64_t PacketList::Selected() const {
  const LRESULT index = SendMessageA(window_, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED);
  return static_cast<uint64_t>(index + 1);
}

const PacketList::Row* PacketList::RowOf(uint64_t number) {
  if (!hasFirstTime_) {
    const FrameRecord* first = packets_->Lend(1);
    firstTime_ = first ? first->nanoseconds : 0;
    hasFirstTime_ = first != nullptr;
  }
  Row& row = rows_[number % kKept];
  if (row.number == number) return &row;
  row.number = packets_->Describe(number, &row.packet) ? number : 0;
  return row.number ? &row : nullptr;
}

void PacketList::FillCell(LPARAM note) {
  LVITEMA& item = reinterpret_cast<NMLVDISPINFOA*>(note)->item;
  if (!(item.mask & LVIF_TEXT) || item.cchTextMax < 1) return;
  item.pszText[0] = 0;
  const Row* row = RowOf(static_cast<uint64_t>(item.iItem) + 1);
  const auto room = static_cast<size_t>(item.cchTextMax);
  const bool isMarked = marks_->Has(static_cast<uint64_t>(item.iItem) + 1);
  if (item.iSubItem == kNumber) std::snprintf(item.pszText, room, "%s%d", isMarked ? "* " : "", item.iItem + 1);
  if (!row) return;
  switch (item.iSubItem) {
    case kTime:
      std::snprintf(item.pszText, room, "%.6f", static_cast<double>(row->packet.nanoseconds - firstTime_) / 1e9);
      break;
    case kSource: std::snprintf(item.pszText, room, "%s", row->packet.source.c_str()); break;
    case kDestination: std::snprintf(item.pszText, room, "%s", row->packet.destination.c_str()); break;
    case kLength: std::snprintf(item.pszText, room, "%u", static_cast<unsigned>(row->packet.length)); break;
    case kSummary: std::snprintf(item.pszText, room, "%s", row->packet.summary.c_str()); break;
    default: break;
  }
}

}  // namespace qxview
