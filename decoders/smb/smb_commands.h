// The parts of SMB's commands, by the file that has them.
#pragma once
#include "decoders/smb/smb_block.h"

namespace qxview {

// smb_files.cpp
void CloseRequestWords(SmbBlock& block);

}  // namespace qxview
