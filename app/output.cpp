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

// UTF-8 to Windows-1252: see the header.
bool Windows1252Of(std::string_view text, std::string* out, std::string* missing) {
  out->clear();
  for (size_t at = 0; at < text.size();) {
    const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data()) + at;
    const Utf8Character next = Utf8At(bytes, static_cast<int32_t>(text.size() - at));
    const uint8_t character = next.octets ? Windows1252Of(next.code) : bytes[0];
    if (character == 0 && next.code != 0) {
      *missing = text.substr(at, static_cast<size_t>(next.octets));
      return false;
    }
    *out += static_cast<char>(character);
    at += next.octets ? static_cast<size_t>(next.octets) : 1;
  }
  return true;
}

}  // namespace qxview
