// Network News Transfer Protocol (RFC 3977, 4642, 4643, 4644, 8054): commands, replies, and the lines that many replies
// announce, up to one of a dot: articles, lists of groups, overviews, abilities.
#include <iterator>

#include "decoders/app/command_arguments.h"
#include "decoders/app/command_lines.h"
#include "decoders/app/compressed_lines.h"
#include "decoders/app/internet_message.h"
#include "decoders/common/text_lines.h"

namespace qxview {
namespace {

constexpr auto kNntpCodes = SortedNames({
    {100, "Help Text Follows"}, {101, "Capabilities Follow"}, {111, "Server Date and Time"},
    {200, "Service Available, Posting Allowed"}, {201, "Service Available, Posting Prohibited"}, {203, "Streaming Permitted"},
    {205, "Connection Closing"}, {211, "Group Selected"}, {215, "Information Follows"}, {220, "Article Follows"},
    {221, "Headers Follow"}, {222, "Body Follows"}, {223, "Article Exists"}, {224, "Overview Information Follows"},
    {225, "Headers Follow"}, {230, "New Articles Follow"}, {231, "New Groups Follow"}, {235, "Article Transferred"},
    {238, "Send Article"}, {239, "Article Transferred"}, {281, "Authentication Accepted"}, {335, "Send Article to Transfer"},
    {340, "Send Article to Post"}, {381, "Password Required"}, {382, "Continue with TLS"}, {383, "Continue with SASL"},
    {400, "Service Unavailable"}, {401, "Wrong Mode"}, {403, "Internal Fault"}, {411, "No Such Group"},
    {412, "No Group Selected"}, {420, "No Article Selected"}, {421, "No Next Article"}, {422, "No Previous Article"},
    {423, "No Such Article Number"}, {430, "No Such Article"}, {431, "Transfer Not Possible Now"},
    {435, "Article Not Wanted"}, {436, "Transfer Not Possible, Try Later"}, {437, "Transfer Rejected"},
    {438, "Article Not Wanted"}, {439, "Transfer Rejected"}, {440, "Posting Not Permitted"}, {441, "Posting Failed"},
    {480, "Authentication Required"}, {481, "Authentication Failed"}, {482, "Authentication Out of Sequence"},
    {483, "Encryption Required"}, {500, "Unknown Command"}, {501, "Syntax Error"}, {502, "Permission Denied"},
    {503, "Feature Not Supported"}, {504, "Base64 Error"}, {580, "Cannot Start TLS"}});
constexpr const char* kVerbs[] = {"ARTICLE", "AUTHINFO", "BODY", "CAPABILITIES", "CHECK", "COMPRESS", "DATE", "GROUP", "HDR",
                                  "HEAD", "HELP", "IHAVE", "LAST", "LIST", "LISTGROUP", "MODE", "NEWGROUPS", "NEWNEWS",
                                  "NEXT", "OVER", "POST", "QUIT", "SLAVE", "STARTTLS", "STAT", "TAKETHIS", "XGTITLE",
                                  "XHDR", "XOVER", "XPAT"};

constexpr uint8_t kInList = 3;   // the phase of a note, behind those of a message; its detail is the code less this:
constexpr int32_t kFirstCode = 100;

// What the words of a command or of a reply's text are, by their places, and what is left behind them.
struct Labels {
  const char* words[4];
  const char* rest;
};
void ShowWords(const Place& in, Field rest, const Labels& labels) {
  for (const char* label : labels.words) {
    if (!label) break;
    const Field word = TakeWord(rest);
    if (word.length < 1) return;
    AddTextLine(in, word, label);
  }
  rest = Trimmed(rest);
  if (labels.rest && rest.length > 0) AddTextLine(in, rest, labels.rest);
}

// keys: text Article, Authentication, User or Password, Algorithm, Group, Range, Header, Patterns, Message Identifier, Keyword
// keys: text Argument, Mode, Date, Time, Zone, Groups, Articles, First, Last, Status, Description, Ability, Number, Value, Text
constexpr struct { const char* verb; Labels labels; } kArguments[] = {
    {"ARTICLE", {{"Article"}, nullptr}}, {"BODY", {{"Article"}, nullptr}}, {"HEAD", {{"Article"}, nullptr}},
    {"STAT", {{"Article"}, nullptr}}, {"AUTHINFO", {{"Authentication"}, "User or Password"}},
    {"CAPABILITIES", {{"Keyword"}, nullptr}}, {"CHECK", {{"Message Identifier"}, nullptr}},
    {"TAKETHIS", {{"Message Identifier"}, nullptr}}, {"IHAVE", {{"Message Identifier"}, nullptr}},
    {"COMPRESS", {{"Algorithm"}, nullptr}}, {"GROUP", {{"Group"}, nullptr}}, {"LISTGROUP", {{"Group", "Range"}, nullptr}},
    {"HDR", {{"Header", "Range"}, nullptr}}, {"XHDR", {{"Header", "Range"}, nullptr}}, {"OVER", {{"Range"}, nullptr}},
    {"XOVER", {{"Range"}, nullptr}}, {"XPAT", {{"Header", "Range"}, "Patterns"}}, {"LIST", {{"Keyword"}, "Argument"}},
    {"MODE", {{"Mode"}, nullptr}}, {"NEWGROUPS", {{"Date", "Time", "Zone"}, nullptr}},
    {"NEWNEWS", {{"Groups", "Date", "Time", "Zone"}, nullptr}}, {"XGTITLE", {{}, "Patterns"}}};
void ShowArguments(const Place& in, const Field& verb, const Field& parameter) {
  for (const auto& each : kArguments) {
    if (IsWord(verb, each.verb)) ShowWords(in, parameter, each.labels);
  }
}

constexpr struct { int32_t code; Labels labels; } kReplies[] = {
    {111, {{"Time"}, nullptr}}, {211, {{"Articles", "First", "Last", "Group"}, "Text"}},
    {220, {{"Number", "Message Identifier"}, "Text"}}, {221, {{"Number", "Message Identifier"}, "Text"}},
    {222, {{"Number", "Message Identifier"}, "Text"}}, {223, {{"Number", "Message Identifier"}, "Text"}},
    {238, {{"Message Identifier"}, nullptr}}, {239, {{"Message Identifier"}, nullptr}}, {438, {{"Message Identifier"}, nullptr}},
    {439, {{"Message Identifier"}, nullptr}}};

// Replies that lines follow, and what is in these. After LISTGROUP they follow 211 as well, which its text alone does not tell.
constexpr Labels kGroupWords{{"Group", "Last", "First", "Status"}, nullptr};
constexpr struct { int32_t code; const char* label; Labels words; } kLists[] = {
    {100, "Help", {}}, {101, "Capability", {{"Ability"}, "Argument"}}, {211, "Article Number", {}}, {215, "Entry", kGroupWords},
    {224, "Overview", {}}, {225, "Header of Article", {{"Number"}, "Value"}}, {230, "Article", {}}, {231, "Group", kGroupWords},
    {282, "Group", {{"Group"}, "Description"}}};
const auto* LinesBehind(int32_t code) {
  for (const auto& each : kLists) {
    if (each.code == code) return &each;
  }
  return static_cast<decltype(&kLists[0])>(nullptr);
}

// An article's number and the headers that overviews have, each up to a tabulator (RFC 3977 8.3).
void ShowOverview(const Place& in, Field rest) {
  constexpr const char* kLabels[] = {"Number", "Subject", "From", "Date", "Message-ID", "References", "Bytes", "Lines"};
  for (size_t i = 0; rest.length > 0; ++i) {
    const int32_t tab = FindU8(CursorOver(rest), '\t');
    const Field value = Slice(rest, 0, tab < 0 ? rest.length : tab);
    if (value.length > 0) AddTextLine(in, value, i < std::size(kLabels) ? kLabels[i] : "Further Header");
    rest = tab < 0 ? Slice(rest, rest.length, 0) : Slice(rest, tab + 1, rest.length - tab - 1);
  }
}

// Entries of LIST are of groups where numbers say so; those of its other keywords are told as they are.
bool IsGroup(Field rest) {
  TakeWord(rest);
  const Field last = TakeWord(rest), first = TakeWord(rest);
  return DecimalOf(last) >= 0 && DecimalOf(first) >= 0;
}

bool IsEnd(const Field& line) { return line.length == 1 && PeekU8(line) == '.'; }

// The lines up to that of a dot; where it is to come, the segment behind is told.
void ShowList(const Place& at, Cursor& c, int32_t code, bool isMidLine) {
  const auto* list = LinesBehind(code);
  if (!list) return;
  TextLine line;
  Loop loop;
  while (MoreAt(at, c, loop) && TakeLine(c, line)) {
    if (IsEnd(line.text) && !isMidLine) return (void)AddLine(at, line.whole, "End of List");
    const Place in = Under(at, AddTextLine(at, line.whole, isMidLine ? "Rest of Line" : list->label, line.text));
    if (!isMidLine && code == 224) ShowOverview(in, line.text);
    else if (!isMidLine && (code != 215 || IsGroup(line.text))) ShowWords(in, line.text, list->words);
    isMidLine = false;
  }
  StreamNote note{};
  note.phase = kInList;
  note.detail = static_cast<uint8_t>(code - kFirstCode);
  note.isMidLine = line.whole.length == 0 ? isMidLine : line.whole.length == line.text.length;
  if (Left(c) == 0) LeaveNote(at, c, note);
}

// Whether numbers of articles follow a group's line.
bool StartsNumbers(Cursor c) {
  TextLine line;
  return TakeLine(c, line) && (IsEnd(line.text) || DecimalOf(line.text) >= 0);
}

void ShowReply(const Place& at, Cursor& c, const TextLine& line, int32_t code) {
  const Place in = Under(at, AddTextLine(at, line.whole, "Reply", line.text));
  AddLine(in, Slice(line.text, 0, 3), "Reply Code: %u = %s", code, LookupName(kNntpCodes, static_cast<uint32_t>(code)));
  const Field text = Slice(line.text, 4, line.text.length - 4);
  if (text.length > 0) {
    const Place under = Under(in, AddTextLine(in, text, "Reply Text"));
    for (const auto& each : kReplies) {
      if (each.code == code) ShowWords(under, text, each.labels);
    }
  }
  if (code != 211 || StartsNumbers(c)) ShowList(at, c, code, false);
}

void ShowConversation(const Place& in, Cursor& c) {
  constexpr int32_t kGoesOver = 206;
  TextLine line;
  Loop loop;
  while (MoreAt(in, c, loop)) {
    Cursor next = c;
    if (!TakeLine(next, line)) break;
    const int32_t code = ReplyCodeOf(line.text);
    const bool isCommand = HasVerb(line.text, kVerbs, std::size(kVerbs));
    if (code < kFirstCode && !isCommand) {
      ShowMailLines(in, c);
      continue;
    }
    c = next;
    if (isCommand) ShowCommandLine(in, line, ShowArguments);
    else ShowReply(in, c, line, code);
    if (isCommand && StartsWithWord(line.text, "COMPRESS DEFLATE")) NoteCompressionAsked(in, {});
    if (!isCommand && code == kGoesOver) NoteCompressionGranted(in, {});
  }
}

}  // namespace

int32_t DecodeNntp(const Place& at, Cursor c) {
  if (ShowCompressedLines(at, c, "NNTP", ShowConversation)) return 1;
  const StreamNote note = RecallNote(at, c);
  if (!StartsCommandLines(c) && note.phase == 0) return 0;
  const Place in = AddConversation(at, c, "NNTP");
  if (note.phase == kInList) ShowList(in, c, note.detail + kFirstCode, note.isMidLine);
  else ShowMessageRest(in, c);
  ShowConversation(in, c);
  return 1;
}

}  // namespace qxview
