// What GoogleTest's sources lack when they are built for Windows without threads of their own: the holder of a handle
// that its death tests use. Included in front of them by the build.
#pragma once
#include <windows.h>

namespace testing::internal {

class AutoHandle {
 public:
  using Handle = HANDLE;
  AutoHandle() = default;
  explicit AutoHandle(Handle handle) : handle_(handle) {}
  ~AutoHandle() { Reset(); }
  AutoHandle(const AutoHandle&) = delete;
  AutoHandle& operator=(const AutoHandle&) = delete;
  Handle Get() const { return handle_; }
  void Reset(Handle handle = INVALID_HANDLE_VALUE) {
    if (handle_ != INVALID_HANDLE_VALUE && handle_ != nullptr) CloseHandle(handle_);
    handle_ = handle;
  }

 private:
  Handle handle_ = INVALID_HANDLE_VALUE;
};

}  // namespace testing::internal
