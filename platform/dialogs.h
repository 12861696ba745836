// Message boxes and file dialogs. Where there is no desktop, messages go to standard error and dialogs are cancelled.
#pragma once
#include <cstdint>

namespace qxview {

enum class BoxStyle { kPlain, kInformation, kError };

// window: the owner, or null.
void ShowMessageBox(void* window, const char* text, const char* title, BoxStyle style);

struct FileDialog {
  bool saving;
  const char* title;
  const char* filterName;       // "Captures (*.BFR)"
  const char* filterPattern;    // "*.BFR"
  const char* inUseMessage;     // shown for a file that another program holds open; the dialog then stays
  const char* extension = "BFR";   // of names without one
};

// The name stands in `fileName` on entry (to offer) and on return; false when cancelled.
bool AskFileName(void* window, const FileDialog& dialog, char* fileName, int32_t size);

}  // namespace qxview
