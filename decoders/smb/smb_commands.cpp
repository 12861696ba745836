// The commands and who decodes their words and bytes.
#include "decoders/smb/smb_commands.h"

namespace qxview {
namespace {

constexpr SmbCommand kCommands[] = {
#include "decoders/smb/smb_command_rows.inc"
};
constexpr int32_t kCommandCount = sizeof kCommands / sizeof kCommands[0];

}  // namespace

const SmbCommand* FindSmbCommand(uint32_t code) {
  int32_t lower = 0, upper = kCommandCount - 1;
  while (lower <= upper) {
    const int32_t middle = (lower + upper) / 2;
    if (kCommands[middle].code == code) return &kCommands[middle];
    if (kCommands[middle].code < code) {
      lower = middle + 1;
    } else {
      upper = middle - 1;
    }
  }
  return nullptr;
}

const char* SmbCommandName(uint32_t command) {
  const SmbCommand* found = FindSmbCommand(command);
  return found ? found->name : kUndefined;
}

}  // namespace qxview
