// The list of a window's packets: a list view control that asks for the rows in sight alone, whatever their number.
#pragma once
#include <cstdint>
#include <vector>
// Behind a header of the library, which keeps it from naming macros min and max.
#include <windows.h>

#include "browse/places.h"
#include "platform/view_window.h"

namespace qxview {

class PacketList {
 public:
  // Null when the system's common controls are not there.
  bool Create(HWND parent, HINSTANCE module, WindowPackets* packets, const Marks* marks, uint32_t dotsPerInch);
  HWND Window() const { return window_; }

  // Rows are asked for anew; their number, too.
  void Refresh();
  void Select(uint64_t number);
  uint64_t Selected() const;   // 0 for none

  // What the control asks its parent: the text of a cell.
  void FillCell(LPARAM note);
  void ScaleColumns(uint32_t dotsPerInch);

 private:
  struct Row {
    uint64_t number = 0;
    ListedPacket packet;
  };
  const Row* RowOf(uint64_t number);

  static constexpr size_t kKept = 256;   // rows, by their number modulo this
  HWND window_ = nullptr;
  WindowPackets* packets_ = nullptr;
  const Marks* marks_ = nullptr;   // shown with a star
  std::vector<Row> rows_;
  int64_t firstTime_ = 0;
  bool hasFirstTime_ = false;
};

}  // namespace qxview
