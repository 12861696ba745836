// Protocols of commands and replies in lines: FTP's control connection (RFC 959, 2228, 2389, 2428, 3659), SMTP (RFC 5321 and
// its extensions), POP3 (RFC 1939, 2449) and NNTP (RFC 3977).
#include <iterator>

#include "decoders/app/command_arguments.h"
#include "decoders/app/command_lines.h"
#include "decoders/app/ftp_data.h"
#include "decoders/app/internet_message.h"
#include "decoders/app/tls_record.h"
#include "decoders/common/header_lines.h"
#include "decoders/net/dynamic_udp.h"

namespace qxview {
namespace {

bool IsText(const Field& line) {
  for (int32_t i = 0; i < line.length; ++i) {
    if (PeekU8(line, i) < ' ' && PeekU8(line, i) != '\t') return false;
  }
  return line.length > 0;
}

}  // namespace

bool StartsCommandLines(const Cursor& c) {
  TextLine line;
  Cursor ahead = c;
  return !StartsTlsRecord(c.at, Left(c)) && TakeLine(ahead, line) && IsText(line.text);
}

int32_t ReplyCodeOf(const Field& line) {
  if (line.length < 3 || (line.length > 3 && PeekU8(line, 3) != ' ' && PeekU8(line, 3) != '-')) return -1;
  return DecimalOf(Slice(line, 0, 3));
}

void ShowCommandLine(const Place& at, const TextLine& line, ShowArgument show) {
  const Place in = Under(at, AddTextLine(at, line.whole, "Command", line.text));
  Field rest = line.text;
  const Field verb = TakeWord(rest);
  AddTextLine(in, verb, "Verb");
  rest = Trimmed(rest);
  if (rest.length > 0) show(Under(in, AddTextLine(in, rest, "Parameter")), verb, rest);
}

bool HasVerb(const Field& line, const char* const* verbs, size_t count) {
  Field rest = line;
  const Field verb = TakeWord(rest);
  for (size_t i = 0; i < count; ++i) {
    if (IsWord(verb, verbs[i])) return true;
  }
  return false;
}

Place AddConversation(const Place& at, const Cursor& c, const char* name) {
  TextLine line;
  Cursor ahead = c;
  TakeLine(ahead, line);
  return Under(at, AddLine(at, Ahead(c, Left(c)), "%s: %s", name, Text(line.text)));
}

void ShowMailLines(const Place& in, Cursor& c) {
  TextLine line;
  Cursor next = c;
  if (TakeLine(next, line) && Left(next) == 0 && IsSasl(line.text)) {
    ShowSasl(Under(in, AddTextLine(in, line.whole, "Authentication", line.text)), line.text);
    c = next;
    return;
  }
  if (StartsInternetMessage(c)) {
    ShowInternetMessage(in, c, kAtDot);
  } else {
    ShowMessageText(in, c, kAtDot);
  }
}

namespace {

constexpr auto kFtpCodes = SortedNames({
    {110, "Restart Marker"}, {120, "Service Ready Soon"}, {125, "Data Connection Already Open"},
    {150, "Opening Data Connection"}, {200, "Command Okay"}, {202, "Command Superfluous"}, {211, "System Status or Help"},
    {212, "Directory Status"}, {213, "File Status"}, {214, "Help Message"}, {215, "System Type"},
    {220, "Service Ready"}, {221, "Closing Control Connection"}, {225, "Data Connection Open"},
    {226, "Closing Data Connection"}, {227, "Entering Passive Mode"}, {228, "Entering Long Passive Mode"},
    {229, "Entering Extended Passive Mode"}, {230, "User Logged In"}, {232, "User Logged In by Security Data"},
    {234, "Security Data Exchange Complete"}, {235, "Security Data Accepted"}, {250, "File Action Completed"},
    {257, "Path Created"}, {331, "Password Needed"}, {332, "Account Needed"}, {334, "Security Mechanism Accepted"},
    {335, "More Security Data Needed"}, {336, "Password Needed with Challenge"}, {350, "Further Information Needed"},
    {421, "Service Not Available"}, {425, "Cannot Open Data Connection"}, {426, "Connection Closed"},
    {430, "Invalid Username or Password"}, {431, "Security Resource Unavailable"}, {434, "Host Not Available"},
    {450, "File Unavailable"}, {451, "Local Error"}, {452, "Insufficient Storage"}, {500, "Syntax Error"},
    {501, "Syntax Error in Parameters"}, {502, "Command Not Implemented"}, {503, "Bad Sequence of Commands"},
    {504, "Parameter Not Implemented"}, {521, "Data Connection Cannot Be Opened"}, {522, "Network Protocol Not Supported"},
    {530, "Not Logged In"}, {532, "Account Needed for Storing"}, {533, "Protection Level Denied"},
    {534, "Request Denied for Policy"}, {535, "Security Check Failed"}, {536, "Protection Level Not Supported"},
    {537, "Protection Level Not Supported by Mechanism"}, {550, "File Unavailable"}, {551, "Page Type Unknown"},
    {552, "Storage Allocation Exceeded"}, {553, "File Name Not Allowed"}, {631, "Integrity Protected Reply"},
    {632, "Confidentiality and Integrity Protected Reply"}, {633, "Confidentiality Protected Reply"}});
constexpr auto kSmtpCodes = SortedNames({
    {211, "System Status"}, {214, "Help Message"}, {220, "Service Ready"}, {221, "Closing Connection"},
    {235, "Authentication Succeeded"}, {240, "QUIT"}, {250, "Action Completed"}, {251, "User Not Local, Will Forward"},
    {252, "Cannot Verify User, Will Attempt Delivery"}, {334, "Server Challenge"}, {354, "Start Mail Input"},
    {421, "Service Not Available"}, {432, "Password Transition Needed"}, {450, "Mailbox Unavailable"},
    {451, "Local Error"}, {452, "Insufficient Storage"}, {454, "Temporary Authentication Failure"},
    {455, "Unable to Accommodate Parameters"}, {500, "Syntax Error"}, {501, "Syntax Error in Parameters"},
    {502, "Command Not Implemented"}, {503, "Bad Sequence of Commands"}, {504, "Parameter Not Implemented"},
    {521, "Host Accepts No Mail"}, {523, "Encryption Needed"}, {524, "Authentication Mechanism Too Weak"},
    {530, "Authentication Required"}, {534, "Authentication Mechanism Too Weak"}, {535, "Authentication Failed"},
    {538, "Encryption Required for Authentication"}, {550, "Mailbox Unavailable"}, {551, "User Not Local"},
    {552, "Storage Allocation Exceeded"}, {553, "Mailbox Name Not Allowed"}, {554, "Transaction Failed"},
    {555, "Parameters Not Recognized"}, {556, "Domain Accepts No Mail"}});
// (192,0,2,1,4,0) or (|||1024|): where the server waits for the data connection.
void ShowDataPort(const Place& in, const Field& text) {
  AddressSlot slot;
  uint16_t port;
  if (AddDynamicFtpDataPort(reinterpret_cast<const char*>(text.bytes), text.length, &slot, &port)) {
    int32_t open = 0;
    while (open < text.length && PeekU8(text, open) != '(') ++open;
    Field address = Slice(text, open + 1, text.length - open - 1);
    address = TakeWord(address, ")");
    int32_t commas = 0, split = 0;
    for (; split < address.length && commas < 4; ++split) commas += PeekU8(address, split) == ',';
    AddLine(in, Slice(address, 0, split - 1), "Passive IP Address: %s", IPv4Text(slot.address + 12));
    AddLine(in, Slice(address, split, address.length - split), "Passive Port: %u", port);
    AnnounceFtpData(in, slot, port);
    AnnounceFtpData(in, PacketOf(in).source, port);   // where addresses are translated on the way
    return;
  }
  Field rest = text;
  TakeWord(rest, "(");
  if (rest.length > 3 && PeekU8(rest) == PeekU8(rest, 1) && PeekU8(rest, 1) == PeekU8(rest, 2)) {
    const char ends[] = {static_cast<char>(PeekU8(rest)), 0};
    Field number = Slice(rest, 3, rest.length - 3);
    number = TakeWord(number, ends);
    if (DecimalOf(number) >= 0) AddTextLine(in, number, "Passive Port");
    if (DecimalOf(number) > 0 && DecimalOf(number) <= 0xFFFF) {
      AnnounceFtpData(in, PacketOf(in).source, static_cast<uint16_t>(DecimalOf(number)));
    }
  }
}

// What a protocol's verbs and codes say.
using ShowReplyText = void (*)(const Place& in, int32_t code, const Field& text);

template <class Codes>
void ShowReply(const Place& at, const TextLine& line, const Codes& codes, ShowReplyText show) {
  const int32_t code = ReplyCodeOf(line.text);
  const Place in = Under(at, AddTextLine(at, line.whole, "Reply", line.text));
  if (code < 0) return show(in, code, line.text);
  AddLine(in, Slice(line.text, 0, 3), "Reply Code: %u = %s", code, LookupName(codes, static_cast<uint32_t>(code)));
  const Field text = Slice(line.text, 4, line.text.length - 4);
  if (text.length > 0) AddTextLine(in, text, "Reply Text");
  show(in, code, text);
}

void ShowFtpText(const Place& in, int32_t code, const Field& text) {
  if (code == 227 || code == 229) ShowDataPort(in, text);
  ShowFtpReplyText(in, code, text);
}

constexpr const char* kSmtpVerbs[] = {"HELO", "EHLO", "LHLO", "MAIL", "RCPT", "DATA", "BDAT", "RSET", "VRFY", "EXPN", "HELP",
                                      "NOOP", "QUIT", "STARTTLS", "AUTH", "TURN", "ETRN", "ATRN", "BURL", "SEND", "SOML",
                                      "SAML", "XCLIENT", "XFORWARD"};
constexpr const char* kPopVerbs[] = {"USER", "PASS", "STAT", "LIST", "RETR", "DELE", "NOOP", "RSET", "QUIT", "TOP", "UIDL",
                                     "APOP", "AUTH", "CAPA", "STLS", "UTF8", "LANG"};

bool IsPopReply(const Field& line) {
  return StartsWithWord(line, "+OK") || StartsWithWord(line, "-ERR") || IsWord(line, "+") || StartsWithWord(line, "+ ");
}

void ShowPopArgument(const Place& in, const Field& verb, const Field& parameter) {
  if (IsWord(verb, "AUTH")) ShowSmtpArgument(in, verb, parameter);
}

// The octets of a chunk (RFC 3030).
void ShowChunk(const Place& in, Cursor& c, const Field& command) {
  Field rest = command;
  TakeWord(rest);
  const int32_t length = DecimalOf(TakeWord(rest));
  if (length <= 0) return;
  Cursor chunk = TakeCursor(c, length);
  const MessageEnd end{false, true, static_cast<uint32_t>(length - Left(chunk))};
  if (StartsInternetMessage(chunk)) {
    ShowInternetMessage(in, chunk, end);
  } else {
    ShowMessageText(in, chunk, end);
  }
}

// Replies from `leastCode` on, commands by their verbs, and what is neither as part of a message.
template <class Codes, size_t kVerbCount>
void ShowConversation(const Place& in, Cursor& c, int32_t leastCode, const Codes& codes,
                      const char* const (&verbs)[kVerbCount], ShowArgument showArgument, ShowReplyText showText) {
  ShowMessageRest(in, c);
  TextLine line;
  Loop loop;
  while (MoreAt(in, c, loop)) {
    Cursor next = c;
    if (!TakeLine(next, line)) break;
    if (ReplyCodeOf(line.text) >= leastCode) {
      ShowReply(in, line, codes, showText);
    } else if (HasVerb(line.text, verbs, kVerbCount)) {
      ShowCommandLine(in, line, showArgument);
      if (StartsWithWord(line.text, "BDAT ")) {
        ShowChunk(in, next, line.text);
      }
    } else {
      ShowMailLines(in, c);
      continue;
    }
    c = next;
  }
}

}  // namespace

int32_t DecodeFtp(const Place& at, Cursor c) {
  if (!StartsCommandLines(c)) return 0;
  const Place in = AddConversation(at, c, "FTP");
  // Lines of a long reply have no code of their own, but come from the server.
  const bool isReply = PacketOf(at).matchedSource || ReplyCodeOf(Ahead(c, Left(c) < 4 ? Left(c) : 4)) >= 0;
  TextLine line;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) {
    if (isReply) {
      ShowReply(in, line, kFtpCodes, ShowFtpText);
    } else {
      ShowCommandLine(in, line, ShowFtpArgument);
    }
  }
  return 1;
}

int32_t DecodeSmtp(const Place& at, Cursor c) {
  if (!StartsCommandLines(c) && RecallNote(at, c).phase == 0) return 0;
  const Place in = AddConversation(at, c, "SMTP");
  ShowConversation(in, c, 200, kSmtpCodes, kSmtpVerbs, ShowSmtpArgument, ShowSmtpReplyText);
  return 1;
}

namespace {

// What answers LIST, UIDL and CAPA have behind their first line (RFC 1939 5 and 7, RFC 2449): "1 120", "1 whqtswO00WBw", "TOP".
void ShowPopListing(const Place& at, const TextLine& line) {
  constexpr const char* kAbilities[] = {"TOP", "USER", "SASL", "RESP-CODES", "LOGIN-DELAY", "PIPELINING", "EXPIRE", "UIDL",
                                        "IMPLEMENTATION", "STLS", "AUTH-RESP-CODE", "UTF8", "LANG"};
  Field rest = line.text;
  const Field first = TakeWord(rest);
  rest = Trimmed(rest);
  if (line.text.length == 1 && PeekU8(line.text) == '.') return (void)AddLine(at, line.whole, "End of List");
  if (DecimalOf(first) >= 0 && rest.length > 0) {
    const Place in = Under(at, AddTextLine(at, line.whole, "Listing", line.text));
    AddTextLine(in, first, "Message Number");
    AddTextLine(in, rest, DecimalOf(rest) >= 0 ? "Message Size" : "Unique Identifier");   // keys: text Message Size, Unique Identifier
    return;
  }
  const bool isAbility = HasVerb(line.text, kAbilities, std::size(kAbilities));
  const Place in = Under(at, AddTextLine(at, line.whole, isAbility ? "Capability" : "Text", line.text));   // keys: text Capability, Text
  if (!isAbility || rest.length == 0) return;
  AddTextLine(in, first, "Keyword");
  AddTextLine(in, rest, "Argument");
}

// Whether such lines, and no message, stand behind a reply.
bool StartsPopListing(Cursor c) {
  TextLine line;
  if (!TakeLine(c, line)) return false;
  Field rest = line.text;
  const Field first = TakeWord(rest);
  if (DecimalOf(first) > 0) return Trimmed(rest).length > 0 && FindU8(CursorOver(Trimmed(rest)), ' ') < 0;
  for (int32_t i = 0; i < first.length; ++i) {
    if ((PeekU8(first, i) < 'A' || PeekU8(first, i) > 'Z') && PeekU8(first, i) != '-') return false;
  }
  return first.length > 2;
}

}  // namespace

int32_t DecodePop3(const Place& at, Cursor c) {
  if (!StartsCommandLines(c) && RecallNote(at, c).phase == 0) return 0;
  const Place in = AddConversation(at, c, "POP3");
  if (!IsPopReply(Ahead(c, Left(c)))) ShowMessageRest(in, c);
  TextLine line;
  Loop loop;
  while (MoreAt(in, c, loop)) {
    Cursor next = c;
    if (!TakeLine(next, line)) break;
    const bool isReply = IsPopReply(line.text);
    if (!isReply && !HasVerb(line.text, kPopVerbs, std::size(kPopVerbs))) {
      ShowMailLines(in, c);
      continue;
    }
    c = next;
    if (!isReply) {
      ShowCommandLine(in, line, ShowPopArgument);
      continue;
    }
    const Place under = Under(in, AddTextLine(in, line.whole, "Reply", line.text));
    Field rest = line.text;
    AddTextLine(under, TakeWord(rest), "Status Indicator");
    if (rest.length > 0) ShowSasl(Under(under, AddTextLine(under, rest, "Reply Text")), Trimmed(rest));
    if (!StartsPopListing(c)) continue;
    Loop listing;
    while (MoreAt(in, c, listing) && TakeLine(c, line)) ShowPopListing(in, line);
  }
  return 1;
}

}  // namespace qxview
