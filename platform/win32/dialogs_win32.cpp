#include <windows.h>
// Behind windows.h, whose types it uses.
#include <commdlg.h>

#include <cstring>
#include <string>

#include "platform/dialogs.h"

namespace qxview {
namespace {

// Whether another program holds the file open: it cannot be had alone then.
bool IsInUse(const char* fileName) {
  const HANDLE file = CreateFileA(fileName, GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_SHARING_VIOLATION;
  CloseHandle(file);
  return false;
}

using AskFunction = BOOL(WINAPI*)(OPENFILENAMEA*);

// The system's dialogs bring half of its shell along: they are loaded when the first one is shown, and the module by
// itself is loaded in a moment.
AskFunction FindAskFunction(bool saving) {
  static const HMODULE dialogs = LoadLibraryW(L"comdlg32.dll");
  if (!dialogs) return nullptr;
  const FARPROC function = GetProcAddress(dialogs, saving ? "GetSaveFileNameA" : "GetOpenFileNameA");
  return reinterpret_cast<AskFunction>(reinterpret_cast<void*>(function));
}

}  // namespace

void ShowMessageBox(void* window, const char* text, const char* title, BoxStyle style) {
  const UINT icon = style == BoxStyle::kError ? MB_ICONERROR : style == BoxStyle::kInformation ? MB_ICONINFORMATION : 0;
  MessageBoxA(static_cast<HWND>(window), text, title, MB_OK | icon);
}

bool AskFileName(void* window, const FileDialog& dialog, char* fileName, int32_t size) {
  std::string filter = dialog.filterName;
  filter += '\0';
  filter += dialog.filterPattern;
  filter += '\0';   // the list ends with an empty text
  OPENFILENAMEA ask{};
  ask.lStructSize = sizeof ask;
  ask.hwndOwner = static_cast<HWND>(window);
  ask.lpstrFilter = filter.c_str();
  ask.lpstrFile = fileName;
  ask.nMaxFile = static_cast<DWORD>(size);
  ask.lpstrTitle = dialog.title;
  ask.lpstrDefExt = dialog.extension;
  ask.Flags = OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST |
              (dialog.saving ? OFN_OVERWRITEPROMPT : OFN_FILEMUSTEXIST);
  const AskFunction show = FindAskFunction(dialog.saving);
  for (;;) {
    if (!show || !show(&ask)) return false;
    if (!IsInUse(fileName)) return true;
    ShowMessageBox(window, dialog.inUseMessage, dialog.title, BoxStyle::kPlain);
  }
}

}  // namespace qxview
