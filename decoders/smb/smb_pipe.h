// Data that is read from and written to named pipes. Remote procedure calls (C706) on them have a decoder of their own.
#pragma once
#include "decoders/smb/smb_block.h"

namespace qxview {

// Whether the bytes start with the header of a connection-oriented remote procedure call.
bool IsRpcHeader(const Cursor& c);

// Takes all of the cursor: by the decoder of remote procedure calls when that is what it holds, which adds lines of its
// own at the top; else as a dump with the title.
void AddSmbPipeData(const Place& in, Cursor& c, const char* title);

}  // namespace qxview
