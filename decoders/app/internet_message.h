// Internet messages (RFC 5322, MIME) as mail protocols carry them.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Whether a message's headers begin here: a known one, or a header with another behind it.
bool StartsInternetMessage(const Cursor& c);

// Shows headers and body of what is there, under `in`. `takesDot`: a line of a dot alone ends the message (SMTP, POP3).
void ShowInternetMessage(const Place& in, Cursor& c, bool takesDot);

// Lines of a body whose headers came before.
void ShowMessageText(const Place& in, Cursor& c, bool takesDot);

}  // namespace qxview
