#include "app/output.h"

#include "app/commands.h"
#include "app/packet_run.h"
#include "core/characters.h"
#include "platform/interruption.h"
#include "platform/new_file.h"
#include "platform/platform.h"

namespace qxview {

Output::Output() {
  OpenOutput(&file_, FileSink(StandardOutputFile()));
  SetIdleAction([](void* output) { static_cast<Output*>(output)->Flush(); }, this);
}

Output::~Output() { SetIdleAction(nullptr, nullptr); }

int OutputFault() {
  Tell("standard output: " + WriteFailure());
  return kFileFault;
}

int KeepFile(NewFile* file, const std::string& name, bool written, int status) {
  std::string message;
  if (!written) return Tell(name + ": " + WriteFailure()), kFileFault;
  if (status == kFileFault && file->Replaces()) return Tell(name + ": stays as it was"), status;
  if (!file->Keep(&message)) return Tell(message), kFileFault;
  return status;
}

}  // namespace qxview
