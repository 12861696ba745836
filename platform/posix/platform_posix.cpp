#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>
#include <climits>

#include "platform/platform.h"

namespace qxview {
namespace {

int32_t WriteDescriptor(void* handle, const char* bytes, int32_t length) {
  const int descriptor = static_cast<int>(reinterpret_cast<intptr_t>(handle));
  while (length > 0) {
    const ssize_t written = write(descriptor, bytes, static_cast<size_t>(length));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return 0;
    bytes += written;
    length -= static_cast<int32_t>(written);
  }
  return 1;
}

int32_t MoveDescriptorBack(void* handle, int64_t bytes) {
  const int descriptor = static_cast<int>(reinterpret_cast<intptr_t>(handle));
  const off_t now = lseek(descriptor, 0, SEEK_CUR);
  if (now < bytes) return 0;   // a pipe, or more than was written
  return ftruncate(descriptor, now - bytes) == 0 && lseek(descriptor, now - bytes, SEEK_SET) >= 0 ? 1 : 0;
}

}  // namespace

LibraryLoader PlatformLibraryLoader() {
  return {[](const char* path) { return dlopen(path, RTLD_NOW | RTLD_LOCAL); },
          [](void* library, const char* name) { return dlsym(library, name); },
          [](void* library) { dlclose(library); }};
}

std::string ExecutableDirectory() {
  char path[PATH_MAX];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
  if (length <= 0) return {};
  const std::string whole(path, static_cast<size_t>(length));
  return whole.substr(0, whole.rfind('/'));
}

OutputSink FileSink(int64_t file) {
  return {reinterpret_cast<void*>(static_cast<intptr_t>(file)), WriteDescriptor, MoveDescriptorBack, file};
}

int32_t ReadFileBytes(int64_t file, uint8_t* out, int32_t length) {
  ssize_t got;
  do got = read(static_cast<int>(file), out, static_cast<size_t>(length));
  while (got < 0 && errno == EINTR);
  return static_cast<int32_t>(got);
}

int64_t StandardOutputFile() { return STDOUT_FILENO; }
bool IsTerminal(int64_t file) { return isatty(static_cast<int>(file)) == 1; }
bool StandardErrorIsTerminal() { return isatty(STDERR_FILENO) == 1; }

}  // namespace qxview
