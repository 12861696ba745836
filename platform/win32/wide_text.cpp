#include "platform/win32/wide_text.h"

#include <windows.h>

namespace qxview {

std::wstring WideOf(const std::string& text) {
  if (text.empty()) return {};
  const int length = static_cast<int>(text.size());
  UINT page = CP_UTF8;
  int needed = MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, text.data(), length, nullptr, 0);
  if (needed <= 0) needed = MultiByteToWideChar(page = CP_ACP, 0, text.data(), length, nullptr, 0);
  std::wstring wide(static_cast<size_t>(needed > 0 ? needed : 0), L'\0');
  MultiByteToWideChar(page, 0, text.data(), length, wide.data(), needed);
  return wide;
}

std::string NarrowOf(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  if (size <= 1) return {};
  std::string narrow(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, narrow.data(), size, nullptr, nullptr);
  narrow.pop_back();   // the terminator
  return narrow;
}

std::wstring WidePathOf(const std::string& path) {
  std::wstring wide = WideOf(path);
  // A folder's name has to leave room for a file's of the old form.
  if (wide.size() < MAX_PATH - 12 || wide.rfind(L"\\\\", 0) == 0) return wide;
  const DWORD size = GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr);
  std::wstring whole(size, L'\0');
  whole.resize(GetFullPathNameW(wide.c_str(), size, whole.data(), nullptr));
  return whole.empty() ? wide : L"\\\\?\\" + whole;
}

std::string ErrorText(uint32_t error) {
  wchar_t text[512] = L"";
  const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0,
                                      text, sizeof text / sizeof text[0], nullptr);
  if (length == 0) return "error " + std::to_string(error);
  std::string narrow = NarrowOf(text);
  narrow.erase(narrow.find_last_not_of("\r\n .") + 1);
  return narrow;
}

}  // namespace qxview
