#include <windows.h>

#include <cstring>
#include <new>

#include "files/byte_source.h"
#include "platform/interruption.h"
#include "platform/platform.h"
#include "platform/win32/wide_text.h"

namespace qxview {
namespace {

// Reads what the system has at hand, so a live pipe delivers its packets at once.
class HandleSource final : public BufferedSource {
 public:
  // Closes the handle at the end where it is the source's own.
  HandleSource(HANDLE file, bool own) : file_(file), own_(own) {
    LARGE_INTEGER size{}, start{}, none{};
    if (GetFileType(file) != FILE_TYPE_DISK || !GetFileSizeEx(file, &size)) return;
    size_ = static_cast<uint64_t>(size.QuadPart);
    if (SetFilePointerEx(file, none, &start, FILE_CURRENT)) start_ = static_cast<uint64_t>(start.QuadPart);
  }
  ~HandleSource() override {
    if (own_) CloseHandle(file_);
  }
  uint64_t FilePosition() const override { return start_ + Position(); }
  uint64_t FileSize() const override { return size_; }
  bool IsInterrupted() const override { return interrupted_; }
  bool Seek(uint64_t position) override {
    if (size_ == 0) return false;
    LARGE_INTEGER to{};
    to.QuadPart = static_cast<LONGLONG>(start_ + position);
    return MoveWindow(position) || SetFilePointerEx(file_, to, nullptr, FILE_BEGIN);
  }

 protected:
  size_t ReadSome(uint8_t* out, size_t size) override {
    constexpr size_t kMost = 1u << 30;
    const int64_t file = reinterpret_cast<intptr_t>(file_);
    if (!WaitForInput(file)) return interrupted_ = true, 0;
    const int32_t got = ReadFileBytes(file, out, static_cast<int32_t>(size < kMost ? size : kMost));
    if (got <= 0 && IsInputEnded()) return interrupted_ = true, 0;
    if (got < 0) failure_ = ErrorText(GetLastError());
    return got > 0 ? static_cast<size_t>(got) : 0;
  }

 private:
  HANDLE file_;
  bool own_;
  uint64_t start_ = 0;   // where standard input stood when it was taken over
  uint64_t size_ = 0;
  bool interrupted_ = false;
};

}  // namespace

std::unique_ptr<ByteSource> OpenFileSource(const char* path, std::string* reason) {
  const bool standard = std::strcmp(path, "-") == 0;
  const std::wstring wide = WidePathOf(path);
  const DWORD attributes = standard ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(wide.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY)) {
    *reason = "Is a directory";
    return nullptr;
  }
  const HANDLE file = standard ? GetStdHandle(STD_INPUT_HANDLE)
                               : CreateFileW(wide.c_str(), GENERIC_READ,
                                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                             OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (!file || file == INVALID_HANDLE_VALUE) {
    *reason = file ? ErrorText(GetLastError()) : "there is no standard input";
    return nullptr;
  }
  std::unique_ptr<ByteSource> source(new (std::nothrow) HandleSource(file, !standard));
  if (source) return source;
  if (!standard) CloseHandle(file);
  *reason = "out of memory";
  return nullptr;
}

}  // namespace qxview
