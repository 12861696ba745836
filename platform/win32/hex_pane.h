// A pane with a packet's bytes: offsets, hexadecimal pairs, characters, some of the bytes marked. A window class of its own;
// the parent is told by WM_NOTIFY when the user chooses a byte.
#pragma once
#include <cstdint>
// Behind a header of the library, which keeps it from naming macros min and max.
#include <windows.h>

namespace qxview {

// What the parent is told of, with a ChosenByte.
constexpr UINT kByteChosen = 0U - 3001U;
struct ChosenByte {
  NMHDR head;
  int32_t offset;
};

// Null when it cannot be made. The class goes with UnregisterHexPanes, when there is no pane any more.
HWND CreateHexPane(HWND parent, HINSTANCE module);
void UnregisterHexPanes(HINSTANCE module);

// The pane keeps a copy.
void ShowBytes(HWND pane, const uint8_t* bytes, int32_t length);
// Marks these and brings them in sight; a length of 0 marks nothing.
void MarkBytes(HWND pane, int32_t offset, int32_t length);

}  // namespace qxview
