// The panes of a packet view's window and how they stand: the list of packets above, the tree, the bytes below, a line that
// tells about what is selected. The list and the bytes can be closed; the bars between panes can be moved.
#pragma once
#include <cstdint>
#include <string>
// Behind a header of the library, which keeps it from naming macros min and max.
#include <windows.h>

#include "browse/places.h"
#include "browse/search_text.h"
#include "browse/tree_lines.h"
#include "platform/view_window.h"
#include "platform/win32/packet_list.h"
#include "platform/win32/print_window.h"
#include "platform/win32/tree_control.h"

namespace qxview {

// What stands behind a window; it goes with it.
struct ViewWindow {
  ViewWindow(Session* shown, WindowPackets* lent, HWND window, HWND treeControl)
      : session(shown), packets(lent), handle(window), control(treeControl), tree(treeControl) {}

  Session* session;
  WindowPackets* packets;     // null for none
  HWND handle;
  HWND control;
  TreeControl tree;
  PacketList list;
  HWND bytes = nullptr, status = nullptr;
  HFONT textFont = nullptr, fixedFont = nullptr;   // the window's own
  uint32_t dotsPerInch = 96;
  bool fills = false;                              // the parent's client area
  bool listOpen = true, bytesOpen = true;
  int32_t listPart = 300, bytesPart = 250;         // of the height, in thousandths
  int32_t draggedBar = 0;                          // 1 the one under the list, 2 the one above the bytes
  uint64_t shownNumber = 0;
  uint64_t listed = 0;                             // packets, when the list was last refreshed
  std::string typed;                               // what was looked for last
  SearchText search;
  bool hasSearch = false;
  Marks marks;
  PrintSettings printing;

  TreeLines Lines() const { return {session->GetView(), &tree}; }
};

ViewWindow* WindowStateOf(HWND window);

// False when one cannot be made.
bool MakePanes(ViewWindow* window, HINSTANCE module);
void PlacePanes(ViewWindow* window);
// Fonts, images and columns for the dots of the window's screen.
void ScalePanes(ViewWindow* window);

// The bar at this height of the window: 0 for none.
int32_t BarAt(const ViewWindow& window, int32_t y);
void DragBar(ViewWindow* window, int32_t y);

// The pane behind the one with the keyboard, or before it, gets it.
void FocusNextPane(ViewWindow* window, bool backward);

void TellStatus(ViewWindow* window, const std::string& text);
// Marks the selected line's bytes and tells about it.
void FollowSelection(ViewWindow* window);
// Makes the line the one that the user chose.
void ChooseLine(ViewWindow* window, LineHandle line);
// Keeps the path to the line that the user went to, so that the next packet comes up with the same field selected.
void RememberSelection(ViewWindow* window, LineHandle line);

}  // namespace qxview
