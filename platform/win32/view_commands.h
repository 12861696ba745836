// What the user does in a packet view's window by keys and by its menu.
#pragma once
#include "platform/win32/window_panes.h"

namespace qxview {

// True when the key, with what is held down beside it, is one of the window's.
bool TakeWindowKey(ViewWindow* window, WPARAM key);

// At this place of the screen; below -1 at the pane with the keyboard.
void ShowWindowMenu(ViewWindow* window, int32_t x, int32_t y);

}  // namespace qxview
