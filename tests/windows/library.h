// The library as a test loads it, with settings and files of the test's own.
#pragma once
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string>
#include <vector>

#include "qxview/qxview_functions.h"

using Bytes = std::vector<uint8_t>;

class Library {
 public:
  Library() : module_(LoadLibraryA("qxview.dll")) {}
  ~Library() { FreeLibrary(module_); }
  bool Good() const { return module_ != nullptr; }
  template <class Function>
  Function* Find(const char* name) const {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
  }

 private:
  HMODULE module_;
};

#define FIND(library, name) (library).Find<decltype(name)>(#name)

// The user's part of the registry, laid on a key of the test's own.
class Registry {
 public:
  Registry() {
    RegDeleteTreeA(HKEY_CURRENT_USER, kOwn);
    RegCreateKeyA(HKEY_CURRENT_USER, kOwn, &own_);
    RegOverridePredefKey(HKEY_CURRENT_USER, own_);
  }
  ~Registry() {
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegCloseKey(own_);
    RegDeleteTreeA(HKEY_CURRENT_USER, kOwn);
  }
  void Set(const char* folder, const char* name, const std::string& value) {
    HKEY key;
    ASSERT_EQ(RegCreateKeyA(HKEY_CURRENT_USER, (std::string("Software\\Corvane\\Vantrell\\") + folder).c_str(), &key), 0);
    RegSetValueExA(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                   static_cast<DWORD>(value.size() + 1));
    RegCloseKey(key);
  }

 private:
  static constexpr const char* kOwn = "Software\\qxview-tests";
  HKEY own_;
};

// A new file in the folder for temporary files; its name goes with it.
class TemporaryFile {
 public:
  TemporaryFile() {
    char folder[MAX_PATH - 14];
    GetTempPathA(sizeof folder, folder);
    GetTempFileNameA(folder, "qxv", 0, name_);
    handle_ = CreateFileA(name_, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  }
  ~TemporaryFile() {
    CloseHandle(handle_);
    DeleteFileA(name_);
  }
  intptr_t Handle() const { return reinterpret_cast<intptr_t>(handle_); }
  const char* Name() const { return name_; }
  void Rewind() { SetFilePointer(handle_, 0, nullptr, FILE_BEGIN); }
  std::string Read() {
    Rewind();
    std::string text(1 << 16, 0);
    DWORD got = 0;
    if (!ReadFile(handle_, text.data(), static_cast<DWORD>(text.size()), &got, nullptr)) got = 0;
    text.resize(got);
    return text;
  }

 private:
  char name_[MAX_PATH];
  HANDLE handle_;
};

inline Bytes Hex(const char* text) {
  Bytes bytes;
  for (int high = -1; *text; ++text) {
    if (*text == ' ') continue;
    const int digit = *text <= '9' ? *text - '0' : (*text | 0x20) - 'a' + 10;
    if (high >= 0) bytes.push_back(static_cast<uint8_t>(high << 4 | digit));
    high = high >= 0 ? -1 : digit;
  }
  return bytes;
}
