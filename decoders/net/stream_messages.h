// Messages over TCP, wherever their bytes came: for the setting Reassembly.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Whether messages of this protocol in the current packet's segment are joined with what other packets brought.
bool JoinsMessages(const Place& at, const DecoderRow* row);

// Takes in the segment's payload and shows the messages that are whole, at the place. `title` names what the decoder
// does not take; `row` is one that JoinsMessages.
void ShowStreamMessages(const Place& at, Cursor c, const DecoderRow& row, const char* title);

}  // namespace qxview
