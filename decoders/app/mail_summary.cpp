// The packet list's text for mail: SMTP (RFC 5321) and POP3 (RFC 1939).
//
//   MAIL FROM:<user@example.org> CR LF        250 2.1.0 Ok CR LF
//   RETR 1 CR LF                              +OK 120 octets CR LF
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

// RFC 5321, 821, 1869, 1985, 2034, 2645, 2033, 3030, 3207, 4468, 4954. The longer of two that begin alike stands first.
constexpr const char* kSmtpCommands[] = {
    "MAIL FROM:", "RCPT TO:",  "SEND FROM:", "SOML FROM:", "SAML FROM:", "STARTTLS", "HELO", "EHLO", "LHLO",
    "MAIL",       "RCPT",      "DATA",       "BDAT",       "BURL",       "RSET",     "VRFY", "EXPN", "HELP",
    "NOOP",       "QUIT",      "TURN",       "ETRN",       "ATRN",       "AUTH",     "SEND", "SOML", "SAML",
};

// The first characters of a POP3 line. Commands without an argument stand alone on their line.
constexpr uint32_t kPop3Commands[] = {
    FourCharacters("USER"), FourCharacters("PASS"), FourCharacters("APOP"), FourCharacters("QUIT"),
    FourCharacters("STAT"), FourCharacters("LIST"), FourCharacters("RETR"), FourCharacters("DELE"),
    FourCharacters("NOOP"), FourCharacters("RSET"), FourCharacters("TOP "), FourCharacters("UIDL"),
    FourCharacters("AUTH"),
};
// The last two are replies whose line ends without CR LF together.
constexpr uint32_t kPop3Responses[] = {
    FourCharacters("+OK "), FourCharacters("-ERR"), FourCharacters("+OK\r"), FourCharacters("+OK\n"),
};

template <size_t kRows>
bool Holds(const uint32_t (&table)[kRows], uint32_t key) {
  for (uint32_t row : table) {
    if (row == key) return true;
  }
  return false;
}

// The length of the SMTP command that the payload starts with; 0 for none.
int32_t SmtpCommandLength(const TextSlice& payload) {
  for (const char* command : kSmtpCommands) {
    const int32_t length = static_cast<int32_t>(std::strlen(command));
    if (!StartsWith(payload, command)) continue;
    if (command[length - 1] == ':' || payload.length == length) return length;
    const char next = payload.text[length];
    if (next == ' ' || next == '\t' || next == '\r' || next == '\n') return length;
  }
  return 0;
}

// ", Message: " and what stands behind the code or command: the rest of its line without unprintable characters, at most
// `messageLimit` of them.
void AddMessage(SummaryText& text, const TextSlice& payload, int32_t from, int32_t messageLimit) {
  constexpr int32_t kUsualLimit = 300;
  const int32_t most = messageLimit < 0 ? kUsualLimit : messageLimit;
  if (from < payload.length && payload.text[from] == ' ') ++from;
  for (int32_t length = 0; from < payload.length && length < most; ++from) {
    const char c = payload.text[from] == '\t' ? ' ' : payload.text[from];
    if (c == '\r' || c == '\n' || c == 0) break;
    if (static_cast<uint8_t>(c) < 0x20 || c == 0x7F) continue;
    if (length++ == 0) Add(text, ", Message: ");
    Add(text, TextSlice{&c, 1});
  }
}

}  // namespace

int32_t DescribeSmtp(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t messageLimit) {
  constexpr int32_t kCode = 3;
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  const TextSlice payload = TextOf(data, length);
  int32_t taken = kCode;
  if (StartsWithReplyCode(payload)) {
    Add(text, "SMTP Reply: ");
  } else if ((taken = SmtpCommandLength(payload)) > 0) {
    Add(text, "SMTP Command: ");
  } else {
    return Add(text, "SMTP Data"), 1;
  }
  Add(text, TextSlice{payload.text, taken});
  if (messageLimit != 0 && length > taken) AddMessage(text, payload, taken, messageLimit);
  return 1;
}

int32_t DescribePop3(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  constexpr int32_t kKey = 4;
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  const TextSlice line = FirstLine(data, length);
  if (line.length == 0) return 0;
  const uint32_t key = FourCharacters(line);
  if (line.length >= kKey && Holds(kPop3Commands, key)) {
    Add(text, "POP3 Command: ");
  } else if (line.length >= kKey && Holds(kPop3Responses, key)) {
    Add(text, "POP3 Response: ");
  } else {
    return Add(text, "POP3 Data"), 1;
  }
  Add(text, line);
  return 1;
}

}  // namespace qxview
