#include <windows.h>

#include "platform/interruption.h"
#include "platform/new_file.h"
#include "platform/platform.h"
#include "platform/win32/wide_text.h"

namespace qxview {
namespace {

constexpr int kMostAttempts = 100;
constexpr DWORD kLongestPath = 32768;

HANDLE HandleOf(int64_t file) { return reinterpret_cast<HANDLE>(static_cast<intptr_t>(file)); }

// The file that a link leads to, so that the link keeps pointing to what is replaced. Where there is none yet, the system
// says its name once it has been made.
std::string ResolveLink(const std::string& path) {
  const HANDLE file = CreateFileW(WidePathOf(path).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                  nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return path;
  const bool made = GetLastError() != ERROR_ALREADY_EXISTS;
  std::wstring resolved(kLongestPath, L'\0');
  const DWORD length = GetFinalPathNameByHandleW(file, resolved.data(), kLongestPath, 0);
  CloseHandle(file);
  const std::string name = length > 0 && length < kLongestPath ? NarrowOf(resolved.c_str()) : path;
  if (made) DeleteFileW(WidePathOf(name).c_str());
  return name;
}

// With the rights and the times of the file that it replaces, where the volume can do that.
bool MoveInto(const std::wstring& from, const std::wstring& to) {
  return ReplaceFileW(to.c_str(), from.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr, nullptr) ||
         MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

// A device or a pipe, which is written in place.
HANDLE OpenDevice(const std::wstring& path) {
  return CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

bool IsDevice(const std::wstring& path) {
  const HANDLE file = OpenDevice(path);
  if (file == INVALID_HANDLE_VALUE) return false;
  const bool device = GetFileType(file) != FILE_TYPE_DISK;
  CloseHandle(file);
  return device;
}

// Creates PATH.NNNNNN with a number that no file has yet, and with as much of the name as leaves room for it.
HANDLE CreateBeside(const std::string& path, std::string* name) {
  constexpr size_t kMostCharacters = 255 - 7;
  std::wstring wide = WideOf(path);
  const size_t folder = wide.find_last_of(L"\\/:") + 1;   // 0 where there is none
  if (wide.size() > folder + kMostCharacters) wide.resize(folder + kMostCharacters);
  const std::string start = NarrowOf(wide.c_str());
  uint32_t number = GetTickCount() ^ GetCurrentProcessId() << 16;
  for (int attempt = 0; attempt < kMostAttempts; ++attempt, number = number * 1664525 + 1013904223) {
    *name = start + "." + std::to_string(100000 + number % 900000);
    const HANDLE file = CreateFileW(WidePathOf(*name).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE || GetLastError() != ERROR_FILE_EXISTS) return file;
  }
  return INVALID_HANDLE_VALUE;
}

}  // namespace

NewFile::~NewFile() {
  if (file_ >= 0) CloseHandle(HandleOf(file_));
  if (temporary_.empty()) return;
  DeleteFileW(WidePathOf(temporary_).c_str());
  RemoveOnSignal("");
}

bool NewFile::Create(const std::string& path, std::string* message) {
  const DWORD attributes = GetFileAttributesW(WidePathOf(path).c_str());
  const bool there = attributes != INVALID_FILE_ATTRIBUTES;
  if (there && (attributes & FILE_ATTRIBUTE_DIRECTORY)) return *message = path + ": is a directory", false;
  if (there && (attributes & FILE_ATTRIBUTE_READONLY)) {
    return *message = path + ": " + ErrorText(ERROR_ACCESS_DENIED), false;
  }
  direct_ = IsDevice(WidePathOf(path));
  WIN32_FILE_ATTRIBUTE_DATA present{};
  replaces_ = there && !direct_ && GetFileAttributesExW(WidePathOf(path).c_str(), GetFileExInfoStandard, &present) &&
              (present.nFileSizeLow != 0 || present.nFileSizeHigh != 0);
  path_ = direct_ ? path : ResolveLink(path);
  const HANDLE file = direct_ ? OpenDevice(WidePathOf(path_)) : CreateBeside(path_, &temporary_);
  if (file != INVALID_HANDLE_VALUE) {
    file_ = reinterpret_cast<intptr_t>(file);
    RemoveOnSignal(temporary_);
    return true;
  }
  *message = path + ": " + ErrorText(GetLastError());
  temporary_.clear();
  return false;
}

OutputSink NewFile::Sink() const { return FileSink(file_); }

bool NewFile::Keep(std::string* message) {
  bool good = direct_ || FlushFileBuffers(HandleOf(file_));
  good = CloseHandle(HandleOf(file_)) && good;
  file_ = -1;
  good = good && (direct_ || MoveInto(WidePathOf(temporary_), WidePathOf(path_)));
  if (!good) *message = path_ + ": " + ErrorText(GetLastError());
  if (!good) return false;
  temporary_.clear();
  RemoveOnSignal("");
  return true;
}

}  // namespace qxview
