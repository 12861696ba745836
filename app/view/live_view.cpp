#include "app/view/live_view.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "app/commands.h"

namespace qxview {
namespace {

// What the capturing process tells, passed on; it must not write over the screen.
void PassOn(int from) {
  char text[4096];
  ssize_t got;
  while ((got = read(from, text, sizeof text)) > 0 || (got < 0 && errno == EINTR)) {
    if (got > 0 && write(STDERR_FILENO, text, static_cast<size_t>(got)) < 0) return;
  }
}

// Waits until the file has a beginning; false when the process ended before.
bool WaitForBeginning(const std::string& path, int told) {
  constexpr int kMilliseconds = 20;
  for (;;) {
    struct stat about {};
    if (stat(path.c_str(), &about) == 0 && about.st_size > 0) return true;
    pollfd ended{told, 0, 0};
    if (poll(&ended, 1, kMilliseconds) > 0 && (ended.revents & POLLHUP)) return false;
  }
}

int End(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) continue;
  return WIFEXITED(status) ? WEXITSTATUS(status) : kFileFault;
}

}  // namespace

std::string MakeLiveFile(std::string* message) {
  const char* folder = std::getenv("TMPDIR");
  std::string path = std::string(folder && folder[0] ? folder : "/tmp") + "/qxview_XXXXXX.pcapng";
  constexpr int kEnding = 7;
  const int file = mkstemps(path.data(), kEnding);
  if (file < 0) return *message = path + ": " + std::strerror(errno), std::string();
  close(file);
  return path;
}

int ViewLive(const std::string& path, bool isKept, const std::function<int()>& capture, const std::function<int()>& view) {
  int told[2];
  if (pipe2(told, O_CLOEXEC) != 0) return Tell(std::string("view: ") + std::strerror(errno)), kFileFault;
  const pid_t process = fork();
  if (process == 0) {
    setpgid(0, 0);   // the keys of the terminal are the view's: neither Ctrl-C nor Ctrl-Z stops the capture
    dup2(told[1], STDERR_FILENO);
    close(told[0]);
    return capture();
  }
  close(told[1]);
  if (process < 0) return close(told[0]), Tell(std::string("view: ") + std::strerror(errno)), kFileFault;
  int status = kFileFault;
  const bool hasBegun = WaitForBeginning(path, told[0]);
  if (hasBegun) status = view();
  kill(process, SIGTERM);
  PassOn(told[0]);
  close(told[0]);
  const int captured = End(process);
  if (!isKept) unlink(path.c_str());
  return hasBegun ? status : captured;
}

}  // namespace qxview
