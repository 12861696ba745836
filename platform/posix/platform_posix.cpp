#include <dlfcn.h>
#include <fcntl.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#ifdef __linux__
#include <link.h>
#include <sys/mman.h>
#endif
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "platform/platform.h"

namespace qxview {
namespace {

int writeError = 0;

#ifdef __GLIBC__
// Bytes. What threads write ahead of their turn is less: to have its pages taken and given anew costs more than it holds.
constexpr int kLargeBlock = 768 << 10;
#endif

int32_t WriteDescriptor(void* handle, const char* bytes, int32_t length) {
  const int descriptor = static_cast<int>(reinterpret_cast<intptr_t>(handle));
  while (length > 0) {
    const ssize_t written = write(descriptor, bytes, static_cast<size_t>(length));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return writeError = written < 0 ? errno : EIO, 0;
    bytes += written;
    length -= static_cast<int32_t>(written);
  }
  return 1;
}

int32_t MoveDescriptorBack(void* handle, int64_t bytes) {
  const int descriptor = static_cast<int>(reinterpret_cast<intptr_t>(handle));
  const off_t now = lseek(descriptor, 0, SEEK_CUR);
  if (now < bytes) return writeError = ESPIPE, 0;   // a pipe, or more than was written
  if (ftruncate(descriptor, now - bytes) == 0 && lseek(descriptor, now - bytes, SEEK_SET) >= 0) return 1;
  return writeError = errno, 0;
}

bool ReadStatus(const std::string& path, struct stat* status) {
  return (path == "-" ? fstat(STDIN_FILENO, status) : stat(path.c_str(), status)) == 0;
}

// A standard file that is closed would be the number of the next file opened, and messages would be written into it.
// What takes its place fails for what the number is used for, as the closed one does.
void OccupyStandardFiles() {
  for (int number = STDIN_FILENO; number <= STDERR_FILENO; ++number) {
    if (fcntl(number, F_GETFD) >= 0 || errno != EBADF) continue;
    const int way = number == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    if (open("/dev/null", way) < 0 && open("/", O_RDONLY) < 0) _exit(3);
  }
}

#ifdef __linux__
// Parts that nobody writes to are read from the file again when they are asked for.
int GiveBackPagesOf(dl_phdr_info* library, size_t, void*) {
  if (!std::strstr(library->dlpi_name, "/libcrypto.so")) return 0;
  const uintptr_t page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
  for (int i = 0; i < library->dlpi_phnum; ++i) {
    const ElfW(Phdr)& part = library->dlpi_phdr[i];
    if (part.p_type != PT_LOAD || part.p_flags & PF_W) continue;
    const uintptr_t from = library->dlpi_addr + part.p_vaddr, start = from & ~(page - 1), end = from + part.p_memsz;
    madvise(reinterpret_cast<void*>(start), end - start, MADV_DONTNEED);
  }
  return 0;
}
#endif

}  // namespace

void GiveBackLibraryPages() {
#ifdef __linux__
  dl_iterate_phdr(GiveBackPagesOf, nullptr);
#endif
}

std::vector<std::string> StartProgram(int argc, char** argv) {
  OccupyStandardFiles();
#ifdef __GLIBC__
  mallopt(M_MMAP_THRESHOLD, kLargeBlock);   // set, it stays where it is: large blocks go back when they are freed
#endif
  std::signal(SIGPIPE, SIG_DFL);   // a reader that goes away ends the program quietly
  std::signal(SIGXFSZ, SIG_IGN);   // a file at its size limit is a write that fails, with its message
  return {argv, argv + argc};
}

// $XDG_CONFIG_HOME/vantrell/view.ini, or .config/vantrell/view.ini under $HOME.
UserSettings FindUserSettings() {
  UserSettings found;
  const char* config = std::getenv("XDG_CONFIG_HOME");
  const char* home = std::getenv("HOME");
  if (config && config[0]) {
    found.file = std::string(config) + "/vantrell/view.ini";
  } else if (home && home[0]) {
    found.file = std::string(home) + "/.config/vantrell/view.ini";
  }
  // One that is there and cannot be read is told.
  if (access(found.file.c_str(), F_OK) == 0) return found;
  if (errno == EACCES) found.hidden = found.file + ": " + std::strerror(errno);
  if (errno == EACCES || errno == ENOENT || errno == ENOTDIR) found.file.clear();
  return found;
}

bool IsSameFile(const std::string& a, const std::string& b) {
  struct stat one {}, other {};
  return ReadStatus(a, &one) && ReadStatus(b, &other) && one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool IsDiskFile(const std::string& path) {
  struct stat about {};
  return ReadStatus(path, &about) && S_ISREG(about.st_mode);
}

int64_t CurrentTime() { return std::time(nullptr); }

int64_t LocalOffset(int64_t utcSeconds) {
  const std::time_t time = utcSeconds;
  std::tm local{};
  return localtime_r(&time, &local) ? local.tm_gmtoff : 0;
}

LibraryLoader PlatformLibraryLoader() {
  return {[](const char* path) { return dlopen(path, RTLD_NOW | RTLD_LOCAL); },
          [](void* library, const char* name) { return dlsym(library, name); },
          [](void* library) { dlclose(library); },
          [](const char* name) { return std::strchr(name, '/') != nullptr; },
          [] { return dlopen("libcrypto.so.3", RTLD_NOW | RTLD_LOCAL); }};
}

std::string LibraryFailure() {
  const char* reason = dlerror();
  return reason ? reason : "";
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

int64_t CreateOutputFile(const std::string& path, std::string* message) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (file < 0) *message = path + ": " + std::strerror(errno);
  return file;
}

bool CloseOutputFile(int64_t file) {
  if (close(static_cast<int>(file)) == 0) return true;
  return writeError = errno, false;
}

bool RemoveFile(const std::string& path) { return unlink(path.c_str()) == 0; }

std::string WriteFailure() { return writeError ? std::strerror(writeError) : ""; }

int32_t ReadFileBytes(int64_t file, uint8_t* out, int32_t length) {
  ssize_t got;
  do got = read(static_cast<int>(file), out, static_cast<size_t>(length));
  while (got < 0 && errno == EINTR);
  return static_cast<int32_t>(got);
}

int64_t StandardOutputFile() { return STDOUT_FILENO; }
bool IsTerminal(int64_t file) { return isatty(static_cast<int>(file)) == 1; }
bool StandardErrorIsTerminal() { return isatty(STDERR_FILENO) == 1; }

TerminalSize OutputTerminalSize() {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0) size = {};
  return {size.ws_col, size.ws_row};
}

}  // namespace qxview
