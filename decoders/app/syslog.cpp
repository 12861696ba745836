// The syslog protocol (RFC 5424), the one it replaced (RFC 3164), and its frames over TCP (RFC 6587): what do hosts and
// their programs have to say?
//
//   RFC 5424   <priority>version timestamp hostname application process message-id structured-data message
//   RFC 3164   <priority>timestamp hostname tag: content       of which senders leave out what they please
//   over TCP   length message, or message and a line feed
#include "core/rows.h"

namespace qxview {
namespace {

constexpr auto kFacilityNames = SortedNames({
    {0, "kernel messages"}, {1, "user-level messages"}, {2, "mail system"}, {3, "system daemons"},
    {4, "security/authorization messages"}, {5, "messages generated internally by syslogd"},
    {6, "line printer subsystem"}, {7, "network news subsystem"}, {8, "UUCP subsystem"}, {9, "clock daemon"},
    {10, "security/authorization messages"}, {11, "FTP daemon"}, {12, "NTP subsystem"}, {13, "log audit"},
    {14, "log alert"}, {15, "clock daemon"}, {16, "local use 0 (local0)"}, {17, "local use 1 (local1)"},
    {18, "local use 2 (local2)"}, {19, "local use 3 (local3)"}, {20, "local use 4 (local4)"},
    {21, "local use 5 (local5)"}, {22, "local use 6 (local6)"}, {23, "local use 7 (local7)"}});
constexpr auto kFacilityKeywords = SortedNames({
    {0, "kern"}, {1, "user"}, {2, "mail"}, {3, "daemon"}, {4, "auth"}, {5, "syslog"}, {6, "lpr"}, {7, "news"},
    {8, "uucp"}, {9, "cron"}, {10, "authpriv"}, {11, "ftp"}, {12, "ntp"}, {13, "audit"}, {14, "alert"}, {15, "clock"},
    {16, "local0"}, {17, "local1"}, {18, "local2"}, {19, "local3"}, {20, "local4"}, {21, "local5"}, {22, "local6"},
    {23, "local7"}});
constexpr auto kSeverityNames = SortedNames({
    {0, "Emergency: system is unusable"}, {1, "Alert: action must be taken immediately"},
    {2, "Critical: critical conditions"}, {3, "Error: error conditions"}, {4, "Warning: warning conditions"},
    {5, "Notice: normal but significant condition"}, {6, "Informational: informational messages"},
    {7, "Debug: debug-level messages"}});
constexpr auto kSeverityKeywords = SortedNames({
    {0, "emerg"}, {1, "alert"}, {2, "crit"}, {3, "err"}, {4, "warning"}, {5, "notice"}, {6, "info"}, {7, "debug"}});

struct Priority {
  int32_t length;   // with its brackets; 0 for none
  uint32_t value;
};

constexpr uint32_t kByteOrderMark = 0xEFBBBF;

constexpr auto kText = Rows<NoValues>({Utf8(0, nullptr)});
constexpr auto kMark = Rows<NoValues>({Bytes(3, "Byte Order Mark")});

bool IsDigit(uint32_t character) { return character >= '0' && character <= '9'; }

Priority PriorityOf(const Cursor& c) {
  Priority priority{0, 0};
  if (PeekU8(c) != '<' || !IsDigit(PeekU8(c, 1))) return priority;
  int32_t at = 1;
  for (; at <= 3 && IsDigit(PeekU8(c, at)); ++at) priority.value = priority.value * 10 + PeekU8(c, at) - '0';
  if (PeekU8(c, at) == '>') priority.length = at + 1;
  return priority;
}

// Where a character stands ahead; what is left where it does not.
int32_t Find(const Cursor& c, char character) {
  int32_t at = 0;
  while (at < Left(c) && PeekU8(c, at) != static_cast<uint8_t>(character)) ++at;
  return at;
}

void ShowText(const Place& in, Field text, const char* label) {
  constexpr int32_t kMostInOneLine = 400;
  if (!text.here || text.length == 0) return;
  if (text.length <= kMostInOneLine) {
    Cursor c = CursorOver(text);
    NoValues none;
    return ShowRows<NoValues>(in, c, kText, none, label);
  }
  const Place under = Under(in, AddLine(in, text, "%s: %s...", label, Text(Slice(text, 0, kMostInOneLine))));
  if (under.dead) return;
  AddWrappedTextLines(in.view, under.parent, Text(text).text, text.length, label, LevelImage(under.level), in.tree,
                      text.offset, true);
}

// The next word and the blank behind it.
Field TakeWord(const Place& in, Cursor& c, const char* label) {
  const Field word = TakeBytes(c, Find(c, ' '));
  ShowText(in, word, label);
  if (Left(c) > 0) TakeU8(c);
  return word;
}

// [ID name="value" name="value"]: quotes and brackets in values stand behind a backslash.
int32_t FindQuote(const Cursor& c) {
  int32_t at = 0;
  while (at < Left(c) && PeekU8(c, at) != '"') at += PeekU8(c, at) == '\\' ? 2 : 1;
  return at < Left(c) ? at : Left(c);
}
int32_t ElementLength(const Cursor& c) {
  bool quoted = false;
  for (int32_t at = 0; at < Left(c); ++at) {
    if (PeekU8(c, at) == '\\' && quoted) {
      ++at;
    } else if (PeekU8(c, at) == '"') {
      quoted = !quoted;
    } else if (PeekU8(c, at) == ']' && !quoted) {
      return at + 1;
    }
  }
  return Left(c);
}

void ShowElement(const Place& at, Cursor& c) {
  const Field whole = Ahead(c, Left(c));
  const Place in = Under(at, AddLine(at, whole, "Structured Data Element: %s", Text(whole)));
  TakeU8(c);
  const int32_t blank = Find(c, ' '), end = Find(c, ']');
  ShowText(in, TakeBytes(c, blank < end ? blank : end), "SD-ID");
  Loop loop;
  while (PeekU8(c) == ' ' && MoreAt(in, c, loop)) {
    TakeU8(c);
    Cursor parameter = c;
    const Field name = TakeBytes(c, Find(c, '='));
    if (Left(c) < 2) break;
    TakeBytes(c, 2);
    const Field value = TakeBytes(c, FindQuote(c));
    if (Left(c) > 0) TakeU8(c);
    const Field all = Ahead(parameter, c.offset - parameter.offset);
    const Place under = Under(in, AddLine(in, all, "Parameter: %s = %s", Text(name), Text(value)));
    ShowText(under, name, "Name");
    ShowText(under, value, "Value");
  }
}

void ShowStructuredData(const Place& in, Cursor& c) {
  if (PeekU8(c) != '[') {
    TakeWord(in, c, "Structured Data");
    return;
  }
  Loop loop;
  while (PeekU8(c) == '[' && MoreAt(in, c, loop)) {
    Cursor element = TakeCursor(c, ElementLength(c));
    ShowElement(in, element);
  }
  if (PeekU8(c) == ' ') TakeU8(c);
}

// What is ahead without what senders end it with: zeros and line ends.
int32_t MessageLength(const Cursor& c) {
  int32_t length = Left(c);
  while (length > 0 && PeekU8(c, length - 1) < ' ') --length;
  return length;
}

void ShowMessage(const Place& in, Cursor& c, const char* label) {
  int32_t length = MessageLength(c);
  if (PeekU24(c) == kByteOrderMark && length >= 3) {
    NoValues none;
    ShowRows<NoValues>(in, c, kMark, none);
    length -= 3;
  }
  const Field message = TakeBytes(c, length);
  ShowText(in, message, label);
  const Field trailer = Rest(c);
  AddLine(in, trailer, "Trailer: %s", HexText(trailer));
}

void ShowInTop(const Place& in, const Field& message) {
  constexpr int32_t kMost = 100;
  if (message.length < 1) return;
  AppendToParent(in, message, ": %s", Text(Slice(message, 0, message.length < kMost ? message.length : kMost)));
}

void ShowHeader(const Place& in, Cursor& c) {
  const Field version = TakeWord(in, c, "Version");
  TakeWord(in, c, "Timestamp");
  const Field host = TakeWord(in, c, "Hostname"), application = TakeWord(in, c, "Application Name");
  const Field* const names[] = {&host, &application};
  for (const Field* name : names) {
    if (name->length > 0 && name->bytes[0] != '-') AppendToParent(in, *name, ", %s", Text(*name));
  }
  TakeWord(in, c, "Process ID");
  TakeWord(in, c, "Message ID");
  if (version.here) ShowStructuredData(in, c);
  Cursor message = c;
  if (PeekU24(message) == kByteOrderMark) TakeBytes(message, 3);
  ShowInTop(in, Ahead(message, MessageLength(message)));
  ShowMessage(in, c, "Message");
}

// "Sep 12 19:16:12" or "2013-09-12T19:16:34+04:00" ahead: its length, 0 for neither.
int32_t TimestampLength(const Cursor& c) {
  constexpr int32_t kSize = 15;
  const bool isOld = Left(c) > kSize && PeekU8(c, 3) == ' ' && PeekU8(c, 6) == ' ' && PeekU8(c, 9) == ':' &&
                     PeekU8(c, 12) == ':' && IsDigit(PeekU8(c, 5)) && IsDigit(PeekU8(c, 7)) && IsDigit(PeekU8(c, 14)) &&
                     PeekU8(c, kSize) == ' ';
  if (isOld) return kSize;
  const bool isNew = Left(c) > 19 && IsDigit(PeekU8(c)) && PeekU8(c, 4) == '-' && PeekU8(c, 7) == '-' &&
                     PeekU8(c, 10) == 'T' && PeekU8(c, 13) == ':';
  const int32_t length = Find(c, ' ');
  return isNew && length < Left(c) ? length : 0;
}

// A tag ends at the first character that is no letter, digit or sign of a program's name.
int32_t TagLength(const Cursor& c) {
  int32_t at = 0;
  while (at < Left(c) && PeekU8(c, at) != ':' && PeekU8(c, at) != '[' && PeekU8(c, at) != ' ') ++at;
  const bool ends = at > 0 && at < Left(c) && PeekU8(c, at) != ' ';
  return ends ? at : 0;
}

void ShowOldHeader(const Place& at, Cursor& c) {
  const int32_t end = MessageLength(c);
  Field whole = Ahead(c, end);
  ShowInTop(at, whole);
  const int32_t size = TimestampLength(c);
  if (size == 0) return ShowMessage(at, c, "Message");
  const Place in = Under(at, AddLine(at, whole, "Message: %s", Text(whole)));
  ShowText(in, TakeBytes(c, size), "Timestamp");
  TakeU8(c);
  // Messages of the host itself have no name in front of the tag.
  if (TagLength(c) == 0) TakeWord(in, c, "Hostname");
  const int32_t tag = TagLength(c);
  if (tag == 0) return ShowMessage(in, c, "Content");
  ShowText(in, TakeBytes(c, tag), "Tag");
  // The character that ends the tag is the content's first.
  whole = Ahead(c, end - (c.offset - whole.offset));
  const Place under = Under(in, AddLine(in, whole, "Content: %s", Text(whole)));
  if (PeekU8(c) == '[' && Find(c, ']') < Left(c)) {
    TakeU8(c);
    ShowText(under, TakeBytes(c, Find(c, ']')), "Process ID");
    TakeU8(c);
  }
  if (PeekU8(c) == ':') TakeU8(c);
  if (PeekU8(c) == ' ') TakeU8(c);
  ShowMessage(under, c, "Text");
}

// A message, which on a stream may have a count of its octets in front: as many digits.
void ShowOne(const Place& at, Cursor& c, int32_t digits, uint32_t length) {
  const Field whole = Ahead(c, Left(c)), count = TakeBytes(c, digits);
  if (digits > 0) TakeU8(c);
  const Priority priority = PriorityOf(c);
  const uint32_t facility = priority.value / 8, severity = priority.value % 8;
  if (priority.length == 0) {
    const Place in = Under(at, AddLine(at, whole, "Syslog: No Priority"));
    if (digits > 0) AddLine(in, count, "Message Length: %u", length);
    return ShowOldHeader(in, c);
  }
  const Place in = Under(at, AddLine(at, whole, "Syslog: %s.%s", LookupName(kFacilityKeywords, facility),
                                     LookupName(kSeverityKeywords, severity)));
  if (digits > 0) AddLine(in, count, "Message Length: %u", length);
  const Field number = TakeBytes(c, priority.length);
  const Place under = Under(in, AddLine(in, number, "Priority: %u", priority.value));
  AddLine(under, number, "Facility: %u = %s", facility, LookupName(kFacilityNames, facility));
  AddLine(under, number, "Severity: %u = %s", severity, LookupName(kSeverityNames, severity));
  const bool hasVersion = IsDigit(PeekU8(c)) && (PeekU8(c, 1) == ' ' || (IsDigit(PeekU8(c, 1)) && PeekU8(c, 2) == ' '));
  hasVersion ? ShowHeader(in, c) : ShowOldHeader(in, c);
}

}  // namespace

int32_t DecodeSyslog(const Place& at, Cursor c) {
  if (Left(c) < 1) return 0;
  ShowOne(at, c, 0, 0);
  return 1;
}

int32_t DecodeSyslogOverTcp(const Place& at, Cursor c) {
  constexpr uint32_t kMostLength = 1000000;
  if (Left(c) < 3 || (PeekU8(c) != '<' && !IsDigit(PeekU8(c)))) return 0;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    uint32_t length = 0;
    int32_t digits = 0;
    while (digits < 7 && IsDigit(PeekU8(c, digits))) length = length * 10 + PeekU8(c, digits++) - '0';
    const bool counted = digits > 0 && length <= kMostLength && PeekU8(c, digits) == ' ';
    Cursor message = TakeCursor(c, counted ? digits + 1 + static_cast<int32_t>(length) : Find(c, '\n') + 1);
    if (Left(message) > 0) ShowOne(at, message, counted ? digits : 0, length);
  }
  return 1;
}

}  // namespace qxview
