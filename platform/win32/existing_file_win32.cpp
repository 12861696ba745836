#include <windows.h>

#include "platform/existing_file.h"
#include "platform/platform.h"
#include "platform/win32/wide_text.h"

namespace qxview {
namespace {

HANDLE HandleOf(int64_t file) { return reinterpret_cast<HANDLE>(static_cast<intptr_t>(file)); }

}  // namespace

ExistingFile::~ExistingFile() {
  if (file_ < 0) return;
  LARGE_INTEGER now{}, before{};
  before.QuadPart = lengthBefore_;
  if (GetFileSizeEx(HandleOf(file_), &now) && now.QuadPart > lengthBefore_ &&
      SetFilePointerEx(HandleOf(file_), before, nullptr, FILE_BEGIN)) {
    SetEndOfFile(HandleOf(file_));   // where this fails nothing more can be done: the records in front of it are whole
  }
  CloseHandle(HandleOf(file_));
}

bool ExistingFile::Open(const std::string& path, std::string* why) {
  // Others may read meanwhile; that none of them writes is the lock.
  const HANDLE file = CreateFileW(WidePathOf(path).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    const DWORD error = GetLastError();
    *why = error == ERROR_SHARING_VIOLATION ? "File is currently being used by Vantrell or another program."
                                            : ErrorText(error);
    return false;
  }
  LARGE_INTEGER size{};
  if (GetFileType(file) != FILE_TYPE_DISK || !GetFileSizeEx(file, &size)) {
    CloseHandle(file);
    return *why = "not a regular file", false;
  }
  file_ = reinterpret_cast<intptr_t>(file);
  lengthBefore_ = size.QuadPart;
  return true;
}

bool ExistingFile::Keep(std::string* why) {
  if (!FlushFileBuffers(HandleOf(file_))) return *why = ErrorText(GetLastError()), false;
  CloseHandle(HandleOf(file_));
  file_ = -1;
  return true;
}

}  // namespace qxview
