#include "platform/view_window.h"

namespace qxview {

void* OpenViewWindow(Session*, void*, const WindowPlace&) { return nullptr; }
bool CloseViewWindow(Session*) { return false; }
bool FitViewWindow(Session*) { return false; }
bool FocusViewWindow(Session*) { return false; }

}  // namespace qxview
