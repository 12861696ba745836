#include "platform/view_window.h"

namespace qxview {

void* OpenViewWindow(Session*, void*, const WindowPlace&, WindowPackets*) { return nullptr; }
void ShowFrameInWindow(Session*, const FrameRecord*) {}
bool CloseViewWindow(Session*) { return false; }
bool FitViewWindow(Session*) { return false; }
bool FocusViewWindow(Session*) { return false; }

}  // namespace qxview
