#include <cstdio>

#include "platform/dialogs.h"

namespace qxview {

void ShowMessageBox(void*, const char* text, const char* title, BoxStyle) {
  std::fprintf(stderr, "%s: %s\n", title, text);
}

bool AskFileName(void*, const FileDialog&, char*, int32_t) { return false; }

}  // namespace qxview
