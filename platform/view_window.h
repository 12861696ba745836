// The window of a packet view: the decode tree in a tree control of the platform. Where there is no desktop there is
// none, and the functions below say so with null or false.
#pragma once
#include <cstdint>

#include "host/session.h"

namespace qxview {

// In the parent's client area. A width or height below 1 fills it, from then on whenever the window is fitted.
struct WindowPlace {
  int32_t left, top, width, height;
};

// Makes the session's window, as a child of `parent` or with null as a window of its own, and shows the session in it
// until the window is destroyed, by whomever. Null when the session has one already, or when it cannot be made.
void* OpenViewWindow(Session* session, void* parent, const WindowPlace& place);

// False when the session has no window.
bool CloseViewWindow(Session* session);
bool FitViewWindow(Session* session);       // to its place, with the selected line in sight
bool FocusViewWindow(Session* session);     // the tree takes the keyboard

}  // namespace qxview
