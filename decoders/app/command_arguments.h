// What stands behind the verbs and codes of protocols in command lines (command_lines.cpp).
#pragma once
#include "decoders/common/header_lines.h"

namespace qxview {

// FTP: ports, types, places and facts of commands; of replies their facts, paths and sizes.
void ShowFtpArgument(const Place& in, const Field& verb, const Field& parameter);
void ShowFtpReplyText(const Place& in, int32_t code, const Field& text);

// SMTP: paths with their parameters, and the mechanism and first answer of AUTH; of replies the enhanced code (RFC 3463).
void ShowSmtpArgument(const Place& in, const Field& verb, const Field& parameter);
void ShowSmtpReplyText(const Place& in, int32_t code, const Field& text);

// What a mechanism of SASL says in base64 (RFC 4422, 4616, 2195): a challenge, names and passwords.
void ShowSasl(const Place& in, const Field& text);
// Whether a line can be nothing else.
bool IsSasl(const Field& line);

}  // namespace qxview
