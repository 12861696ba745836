// Protocols of commands and replies in lines: FTP's control connection (RFC 959, 2228, 2389, 2428, 3659), SMTP (RFC 5321 and
// its extensions), POP3 (RFC 1939, 2449) and NNTP (RFC 3977).
#include <iterator>

#include "decoders/app/command_arguments.h"
#include "decoders/app/ftp_data.h"
#include "decoders/app/internet_message.h"
#include "decoders/app/tls_record.h"
#include "decoders/common/header_lines.h"
#include "decoders/net/dynamic_udp.h"

namespace qxview {
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

bool IsText(const Field& line) {
  for (int32_t i = 0; i < line.length; ++i) {
    if (PeekU8(line, i) < ' ' && PeekU8(line, i) != '\t') return false;
  }
  return line.length > 0;
}

// What is behind STARTTLS or AUTH TLS, or no text at all, is not of these protocols.
bool IsLines(const Cursor& c) {
  TextLine line;
  Cursor ahead = c;
  return !StartsTlsRecord(c.at, Left(c)) && TakeLine(ahead, line) && IsText(line.text);
}

// "220 text" or "220-text": the code; -1 for another line.
int32_t CodeOf(const Field& line) {
  if (line.length < 3 || (line.length > 3 && PeekU8(line, 3) != ' ' && PeekU8(line, 3) != '-')) return -1;
  return DecimalOf(Slice(line, 0, 3));
}

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
using ShowArgument = void (*)(const Place& in, const Field& verb, const Field& parameter);
using ShowReplyText = void (*)(const Place& in, int32_t code, const Field& text);

void ShowNoArgument(const Place&, const Field&, const Field&) {}
void ShowNoReplyText(const Place&, int32_t, const Field&) {}

template <class Codes>
void ShowReply(const Place& at, const TextLine& line, const Codes& codes, ShowReplyText show) {
  const int32_t code = CodeOf(line.text);
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

void ShowCommand(const Place& at, const TextLine& line, ShowArgument show) {
  const Place in = Under(at, AddTextLine(at, line.whole, "Command", line.text));
  Field rest = line.text;
  const Field verb = TakeWord(rest);
  AddTextLine(in, verb, "Verb");
  rest = Trimmed(rest);
  if (rest.length > 0) show(Under(in, AddTextLine(in, rest, "Parameter")), verb, rest);
}

bool IsOneOf(const Field& line, const char* const* verbs, size_t count) {
  Field rest = line;
  const Field verb = TakeWord(rest);
  for (size_t i = 0; i < count; ++i) {
    if (IsWord(verb, verbs[i])) return true;
  }
  return false;
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

// The payload's line, which says its first line.
Place TopLine(const Place& at, const Cursor& c, const char* name) {
  TextLine line;
  Cursor ahead = c;
  TakeLine(ahead, line);
  return Under(at, AddLine(at, Ahead(c, Left(c)), "%s: %s", name, Text(line.text)));
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

// The rest of a message, a message from its headers on, or what a client answers to a challenge.
void ShowMail(const Place& in, Cursor& c) {
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
    if (CodeOf(line.text) >= leastCode) {
      ShowReply(in, line, codes, showText);
    } else if (IsOneOf(line.text, verbs, kVerbCount)) {
      ShowCommand(in, line, showArgument);
      if (StartsWithWord(line.text, "BDAT ")) {
        ShowChunk(in, next, line.text);
      }
    } else {
      ShowMail(in, c);
      continue;
    }
    c = next;
  }
}

}  // namespace

int32_t DecodeFtp(const Place& at, Cursor c) {
  if (!IsLines(c)) return 0;
  const Place in = TopLine(at, c, "FTP");
  // Lines of a long reply have no code of their own, but come from the server.
  const bool isReply = PacketOf(at).matchedSource || CodeOf(Ahead(c, Left(c) < 4 ? Left(c) : 4)) >= 0;
  TextLine line;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) {
    if (isReply) {
      ShowReply(in, line, kFtpCodes, ShowFtpText);
    } else {
      ShowCommand(in, line, ShowFtpArgument);
    }
  }
  return 1;
}

int32_t DecodeSmtp(const Place& at, Cursor c) {
  if (!IsLines(c) && RecallNote(at, c).phase == 0) return 0;
  const Place in = TopLine(at, c, "SMTP");
  ShowConversation(in, c, 200, kSmtpCodes, kSmtpVerbs, ShowSmtpArgument, ShowSmtpReplyText);
  return 1;
}

int32_t DecodeNntp(const Place& at, Cursor c) {
  constexpr const char* kVerbs[] = {"ARTICLE", "AUTHINFO", "BODY", "CAPABILITIES", "CHECK", "COMPRESS", "DATE", "GROUP", "HDR",
                                    "HEAD", "HELP", "IHAVE", "LAST", "LIST", "LISTGROUP", "MODE", "NEWGROUPS", "NEWNEWS",
                                    "NEXT", "OVER", "POST", "QUIT", "SLAVE", "STARTTLS", "STAT", "TAKETHIS", "XGTITLE",
                                    "XHDR", "XOVER", "XPAT"};
  if (!IsLines(c) && RecallNote(at, c).phase == 0) return 0;
  const Place in = TopLine(at, c, "NNTP");
  ShowConversation(in, c, 100, kNntpCodes, kVerbs, ShowNoArgument, ShowNoReplyText);
  return 1;
}

int32_t DecodePop3(const Place& at, Cursor c) {
  if (!IsLines(c) && RecallNote(at, c).phase == 0) return 0;
  const Place in = TopLine(at, c, "POP3");
  if (!IsPopReply(Ahead(c, Left(c)))) ShowMessageRest(in, c);
  TextLine line;
  Loop loop;
  while (MoreAt(in, c, loop)) {
    Cursor next = c;
    if (!TakeLine(next, line)) break;
    const bool isReply = IsPopReply(line.text);
    if (!isReply && !IsOneOf(line.text, kPopVerbs, std::size(kPopVerbs))) {
      ShowMail(in, c);
      continue;
    }
    c = next;
    if (!isReply) {
      ShowCommand(in, line, ShowPopArgument);
      continue;
    }
    const Place under = Under(in, AddTextLine(in, line.whole, "Reply", line.text));
    Field rest = line.text;
    AddTextLine(under, TakeWord(rest), "Status Indicator");
    if (rest.length > 0) ShowSasl(Under(under, AddTextLine(under, rest, "Reply Text")), Trimmed(rest));
  }
  return 1;
}

}  // namespace qxview
