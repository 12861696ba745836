// The packet list's text for the protocols between media gateways and their controllers: MGCP (RFC 3435) and the text
// form of Megaco/H.248 (RFC 3525, ITU-T H.248.1 annex B).
//
//   CRCX 1204 aaln/1@gw.example.org MGCP 1.0 CR LF                  200 1204 OK CR LF
//   MEGACO/1 [192.0.2.1]:2944 Transaction = 1 { Context = $ { Add = A4444 ...
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

struct Word {
  const char* word;
  const char* name;
};

constexpr Word kMgcpVerbs[] = {
    {"EPCF", "Endpoint Configuration"}, {"CRCX", "Create Connection"}, {"MDCX", "Modify Connection"},
    {"DLCX", "Delete Connection"},      {"RQNT", "Notification Request"}, {"NTFY", "Notify"},
    {"AUEP", "Audit Endpoint"},         {"AUCX", "Audit Connection"},  {"RSIP", "Restart In Progress"},
    {"MESG", "Message"},
};

// Megaco's words and their short forms. The first four start a transaction, the next one a context, the rest are
// commands of it.
constexpr Word kMegacoWords[] = {
    {"Transaction", "T"}, {"Reply", "P"}, {"Pending", "PN"}, {"TransactionResponseAck", "K"},
    {"Context", "C"},
    {"Add", "A"}, {"Move", "MV"}, {"Modify", "MF"}, {"Subtract", "S"}, {"AuditValue", "AV"},
    {"AuditCapability", "AC"}, {"Notify", "N"}, {"ServiceChange", "SC"}, {"Error", "ER"},
};

bool Equals(const TextSlice& text, const char* word) {
  return text.length == static_cast<int32_t>(std::strlen(word)) && StartsWith(text, word);
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
bool EndsWord(char c) { return IsBlank(c) || c == '=' || c == '{' || c == '}' || c == ',' || c == 0; }

void SkipBlanks(TextSlice& text) {
  while (text.length > 0 && IsBlank(*text.text)) {
    ++text.text;
    --text.length;
  }
}

// The next word or the next single mark; empty at the end.
TextSlice NextToken(TextSlice& text) {
  SkipBlanks(text);
  TextSlice token{text.text, 0};
  while (token.length < text.length && !EndsWord(text.text[token.length])) ++token.length;
  if (token.length == 0 && text.length > 0) token.length = 1;
  text.text += token.length;
  text.length -= token.length;
  return token;
}

const char* MegacoName(TextSlice word) {
  // "W-" marks a command whose answer may be a wildcard, "O-" one that is optional.
  while (word.length > 2 && (StartsWith(word, "W-") || StartsWith(word, "O-"))) {
    word.text += 2;
    word.length -= 2;
  }
  for (const Word& known : kMegacoWords) {
    if (Equals(word, known.word) || Equals(word, known.name)) return known.word;
  }
  return nullptr;
}

// The transaction, context and commands of the message's start, as they come, with what stands behind their '='. What
// lies deeper than commands is their descriptors'.
void DescribeMegacoBody(SummaryText& text, TextSlice body) {
  constexpr int32_t kMostTokens = 160, kMostShown = 8, kCommandDepth = 2;
  int32_t depth = 0, shown = 0;
  for (int32_t i = 0; i < kMostTokens && body.length > 0 && shown < kMostShown; ++i) {
    const TextSlice token = NextToken(body);
    if (Equals(token, "{")) ++depth;
    if (Equals(token, "}")) --depth;
    const char* name = depth <= kCommandDepth ? MegacoName(token) : nullptr;
    if (!name) continue;
    if (shown++ > 0) Add(text, ", ");
    Add(text, name);
    TextSlice ahead = body;
    if (!Equals(NextToken(ahead), "=")) continue;
    Add(text, " = ");
    Add(text, NextToken(ahead));
    body = ahead;
  }
}

}  // namespace

int32_t DescribeMgcp(const uint8_t* data, int32_t length, TextBuffer* summary) {
  SummaryText text;
  if (!BeginSummary(text, data, length, summary)) return 0;
  const TextSlice line = FirstLine(data, length);
  if (line.length == 0) return 0;
  TextSlice rest;
  const TextSlice first = FirstWord(line, &rest);
  const TextSlice transaction = FirstWord(rest, &rest);
  if (first.length == 3 && IsDigit(first.text[0])) {
    Add(text, "MGCP Response: %s", first);
    if (rest.length > 0) Add(text, " %s", rest);
    AddValue(text, "Transaction", transaction);
    return 1;
  }
  Add(text, "MGCP Command: %s", first);
  for (const Word& verb : kMgcpVerbs) {
    if (Equals(first, verb.word)) Add(text, " (%s)", verb.name);
  }
  AddValue(text, "Transaction", transaction);
  AddValue(text, "Endpoint", FirstWord(rest, nullptr));
  return 1;
}

int32_t DescribeMegaco(const uint8_t* data, int32_t length, char* out, int32_t outSize) {
  constexpr int32_t kSearched = 1024;
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "Megaco H.248 Text - ");
  TextSlice body = TextOf(data, length < kSearched ? length : kSearched);
  TextSlice start = NextToken(body);
  const bool known = StartsWith(start, "MEGACO/") || StartsWith(start, "!/");
  if (!known) return Add(text, "Data"), 1;
  SkipBlanks(body);
  const TextSlice sender = NextToken(body);   // an address in brackets, a name in angle brackets, or MTP{...}
  const int32_t before = text.used;
  DescribeMegacoBody(text, body);
  if (text.used == before) {
    Add(text, sender);
  } else {
    AddValue(text, "From", sender);
  }
  return 1;
}

}  // namespace qxview
