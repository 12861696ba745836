// Opening, reading, writing and closing files, and what is done to their names and attributes.
#include "decoders/smb/smb_commands.h"

namespace qxview {
namespace {

constexpr SmbField kCloseRequest[] = {{kSmbHex16, "FID"}, {kSmbTime32, "Last Write Time"}};

}  // namespace

void CloseRequestWords(SmbBlock& block) { AddSmbFields(block, block.words, kCloseRequest); }

}  // namespace qxview
