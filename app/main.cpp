// The command line: qxview COMMAND [OPTIONS] FILE.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

#include "app/commands.h"
#ifdef QXVIEW_HAS_SCREEN
#include "app/view/screen.h"
#endif
#include "platform/interruption.h"
#include "platform/platform.h"

namespace {

// Where memory ends an exception may find none for itself, or arise where none is passed on.
[[noreturn]] void EndWithoutMemory() {
  try {
    if (std::current_exception()) throw;
  } catch (const std::bad_alloc&) {
  } catch (...) {
    std::abort();
  }
#ifdef QXVIEW_HAS_SCREEN
  qxview::LeaveScreenAtOnce();
#endif
  qxview::RemoveAtOnce();
  std::fputs("qxview: out of memory\n", stderr);
  std::_Exit(qxview::kFileFault);
}

}  // namespace

int main(int argc, char** argv) try {
  using namespace qxview;
  std::set_terminate(EndWithoutMemory);
  const std::vector<std::string> words = StartProgram(argc, argv);
  CommandLine line;
  AddCaptureCommand(&line);
  AddReadingCommands(&line);
#ifdef QXVIEW_HAS_SCREEN
  AddViewCommand(&line);
#endif
  const int status = line.Run(words);
  EndBySignal();
  return status;
} catch (const std::bad_alloc&) {
  std::fputs("qxview: out of memory\n", stderr);
  return qxview::kFileFault;
}
