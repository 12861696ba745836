#include <windows.h>

#include <cstring>

#include "platform/platform.h"
#include "platform/win32/wide_text.h"

namespace qxview {
namespace {

constexpr wchar_t kViewKey[] = L"Software\\Corvane\\Vantrell\\View";
constexpr wchar_t kProtocolsKey[] = L"Software\\Corvane\\Vantrell\\Protocols";
constexpr DWORD kLongestName = 256, kLongestValue = 4096;   // characters; longer ones are none of the settings

// Calls handle(name, value) for every text and number under a key of the user's.
template <class Handle>
void ForEachValue(const wchar_t* path, Handle handle) {
  HKEY key;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) return;
  wchar_t name[kLongestName], value[kLongestValue + 1];
  for (DWORD index = 0;; ++index) {
    DWORD nameLength = kLongestName, type = 0, bytes = kLongestValue * sizeof(wchar_t);
    const LSTATUS status =
        RegEnumValueW(key, index, name, &nameLength, nullptr, &type, reinterpret_cast<BYTE*>(value), &bytes);
    if (status == ERROR_MORE_DATA) continue;
    if (status != ERROR_SUCCESS) break;
    if (type == REG_SZ || type == REG_EXPAND_SZ) {
      value[bytes / sizeof(wchar_t)] = 0;   // what is stored may lack its terminator
      handle(NarrowOf(name), NarrowOf(value));
    } else if (type == REG_DWORD && bytes == sizeof(DWORD)) {
      DWORD number;
      std::memcpy(&number, value, sizeof number);
      handle(NarrowOf(name), std::to_string(number));
    }
  }
  RegCloseKey(key);
}

}  // namespace

UserSettings FindUserSettings() {
  UserSettings found;
  found.place = "HKEY_CURRENT_USER\\" + NarrowOf(kViewKey);
  ForEachValue(kViewKey, [&](std::string name, std::string value) {
    found.values.push_back({std::move(name), std::move(value)});
  });
  const std::string protocols = "HKEY_CURRENT_USER\\" + NarrowOf(kProtocolsKey);
  ForEachValue(kProtocolsKey, [&](const std::string& name, const std::string& value) {
    found.protocols.push_back({name + "=" + value, protocols});
  });
  return found;
}

}  // namespace qxview
