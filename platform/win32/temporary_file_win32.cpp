#include <windows.h>

#include "files/temporary_file.h"
#include "platform/win32/wide_text.h"

namespace qxview {
namespace {

HANDLE HandleOf(int64_t file) { return reinterpret_cast<HANDLE>(static_cast<intptr_t>(file)); }

OVERLAPPED PlaceOf(uint64_t position) {
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(position);
  place.OffsetHigh = static_cast<DWORD>(position >> 32);
  return place;
}

constexpr size_t kMostAtOnce = 1u << 30;

}  // namespace

std::shared_ptr<TemporaryFile> TemporaryFile::Create(std::string* reason) {
  wchar_t folder[MAX_PATH + 1], path[MAX_PATH + 1];
  HANDLE file = INVALID_HANDLE_VALUE;
  if (GetTempPathW(MAX_PATH + 1, folder) && GetTempFileNameW(folder, L"qxv", 0, path)) {
    file = CreateFileW(path, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                       FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  }
  if (file == INVALID_HANDLE_VALUE) {
    *reason = "no temporary file: " + ErrorText(GetLastError());
    return nullptr;
  }
  return std::shared_ptr<TemporaryFile>(new TemporaryFile(reinterpret_cast<intptr_t>(file)));
}

TemporaryFile::~TemporaryFile() { CloseHandle(HandleOf(file_)); }

bool TemporaryFile::Append(const void* bytes, size_t length) {
  for (size_t done = 0; done < length;) {
    OVERLAPPED place = PlaceOf(size_ + done);
    const size_t left = length - done;
    DWORD put = 0;
    const char* from = static_cast<const char*>(bytes) + done;
    if (!WriteFile(HandleOf(file_), from, static_cast<DWORD>(left < kMostAtOnce ? left : kMostAtOnce), &put, &place)) return false;
    if (put == 0) return false;
    done += put;
  }
  size_ += length;
  return true;
}

size_t TemporaryFile::ReadAt(uint64_t position, void* out, size_t length) const {
  if (position >= size_) return 0;
  const size_t most = size_ - position < length ? static_cast<size_t>(size_ - position) : length;
  size_t done = 0;
  while (done < most) {
    OVERLAPPED place = PlaceOf(position + done);
    const size_t left = most - done;
    DWORD got = 0;
    char* to = static_cast<char*>(out) + done;
    if (!ReadFile(HandleOf(file_), to, static_cast<DWORD>(left < kMostAtOnce ? left : kMostAtOnce), &got, &place)) break;
    if (got == 0) break;
    done += got;
  }
  return done;
}

}  // namespace qxview
