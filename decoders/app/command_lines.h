// Protocols of commands and replies in lines: what they share (command_lines.cpp).
#pragma once
#include "decoders/common/header_lines.h"

namespace qxview {

using ShowArgument = void (*)(const Place& in, const Field& verb, const Field& parameter);

// Whether a line of text starts here: what is behind STARTTLS or AUTH TLS is none.
bool StartsCommandLines(const Cursor& c);
// "220 text" or "220-text": the code; -1 for another line.
int32_t ReplyCodeOf(const Field& line);
bool HasVerb(const Field& line, const char* const* verbs, size_t count);

// The payload's line, which says its first line.
Place AddConversation(const Place& at, const Cursor& c, const char* name);
void ShowCommandLine(const Place& at, const TextLine& line, ShowArgument show);
// The rest of a message, a message from its headers on, or what a client answers to a challenge.
void ShowMailLines(const Place& in, Cursor& c);

}  // namespace qxview
