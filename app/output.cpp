#include "app/output.h"

#include "app/commands.h"
#include "app/packet_run.h"
#include "core/characters.h"
#include "platform/new_file.h"
#include "platform/platform.h"

namespace qxview {
Output::Output() { OpenOutput(&file_, FileSink(StandardOutputFile())); }

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

std::string_view Utf8Of(uint8_t character, char* scratch) {
  const uint32_t point = CodeOfWindows1252(character);
  if (point < 0x80) {
    scratch[0] = static_cast<char>(point);
    return {scratch, 1};
  }
  if (point < 0x800) {
    scratch[0] = static_cast<char>(0xC0 | point >> 6);
    scratch[1] = static_cast<char>(0x80 | (point & 0x3F));
    return {scratch, 2};
  }
  scratch[0] = static_cast<char>(0xE0 | point >> 12);
  scratch[1] = static_cast<char>(0x80 | (point >> 6 & 0x3F));
  scratch[2] = static_cast<char>(0x80 | (point & 0x3F));
  return {scratch, 3};
}

}  // namespace qxview
