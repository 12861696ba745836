#include "decoders/app/command_arguments.h"

#include "core/rows.h"
#include "decoders/app/ftp_data.h"
#include "decoders/app/media_sessions.h"
#include "decoders/common/header_lines.h"
#include "decoders/common/text_lines.h"
#include "decoders/common/transfer_text.h"

namespace qxview {
namespace {

constexpr auto kTypeNames = SortedNames({{'A', "ASCII"}, {'E', "EBCDIC"}, {'I', "Image"}, {'L', "Local"}});
constexpr auto kFormatNames = SortedNames({{'C', "Carriage Control"}, {'N', "Non-Print"}, {'T', "Telnet"}});
constexpr auto kModeNames = SortedNames({{'B', "Block"}, {'C', "Compressed"}, {'S', "Stream"}, {'Z', "Deflate"}});
constexpr auto kStructureNames = SortedNames({{'F', "File"}, {'P', "Page"}, {'R', "Record"}});
constexpr auto kProtectionNames = SortedNames({{'C', "Clear"}, {'E', "Confidential"}, {'P', "Private"}, {'S', "Safe"}});

// "192,0,2,1,4,0".
void ShowActivePort(const Place& in, const Field& text) {
  Field rest = text;
  uint32_t numbers[6];
  int32_t split = 0;
  for (int32_t i = 0; i < 6; ++i) {
    const int32_t before = rest.length;
    const int32_t number = DecimalOf(Trimmed(TakeWord(rest, ",")));
    if (number < 0 || number > 255) return;
    numbers[i] = static_cast<uint32_t>(number);
    if (i < 4) split += before - rest.length;
  }
  AddLine(in, Slice(text, 0, split - 1), "Active IP Address: %u.%u.%u.%u", numbers[0], numbers[1], numbers[2], numbers[3]);
  const uint32_t port = numbers[4] * 256 + numbers[5];
  AddLine(in, Slice(text, split, text.length - split), "Active Port: %u", port);
  AddressSlot slot{};
  slot.kind = 1;
  for (int32_t i = 0; i < 4; ++i) slot.address[12 + i] = static_cast<uint8_t>(numbers[i]);
  AnnounceFtpData(in, slot, static_cast<uint16_t>(port));
  AnnounceFtpData(in, PacketOf(in).source, static_cast<uint16_t>(port));
}

// "|1|192.0.2.1|1024|" (RFC 2428): any character divides.
void ShowExtendedPort(const Place& in, const Field& text) {
  if (text.length < 2) return;
  const char ends[] = {static_cast<char>(PeekU8(text)), 0};
  Field rest = Slice(text, 1, text.length - 1);
  const Field family = TakeWord(rest, ends);
  AddLine(in, family, "Address Family: %s", PeekU8(family) == '2' ? "2 = IPv6" : PeekU8(family) == '1' ? "1 = IPv4" : kUnknown);
  const Field address = TakeWord(rest, ends), port = TakeWord(rest, ends);
  AddTextLine(in, address, "Active IP Address");
  AddTextLine(in, port, "Active Port");
  AddressSlot slot;
  const int32_t number = DecimalOf(port);
  if (number > 0 && number <= 0xFFFF && ReadAddressText(address, &slot)) AnnounceFtpData(in, slot, static_cast<uint16_t>(number));
}

template <size_t kRows>
void ShowLetter(const Place& in, const Field& word, const char* label, const NameTable<kRows>& names) {
  const uint32_t letter = PeekU8(word) & 0xDF;
  if (word.here) AddLine(in, word, "%s: %s = %s", label, Text(word), LookupName(names, letter));
}

// "type=file;size=5; name" (RFC 3659): facts and the name that they are of.
void ShowFacts(const Place& in, Field text) {
  Loop loop;
  while (text.length > 0 && PeekU8(text) != ' ' && MoreAt(in, text, loop)) {
    AddTextLine(in, TakeWord(text, ";"), "Fact");
  }
  const Field name = Trimmed(text);
  if (name.length > 0) AddTextLine(in, name, "Path");
}

// A path in quotation marks, "" standing for one within.
void ShowQuotedPath(const Place& in, const Field& text) {
  const Cursor c = CursorOver(text);
  const int32_t open = FindU8(c, '"');
  int32_t close = open < 0 ? -1 : FindU8(c, '"', open + 1);
  while (close >= 0 && PeekU8(c, close + 1) == '"') close = FindU8(c, '"', close + 2);
  if (close > open) AddTextLine(in, Slice(text, open + 1, close - open - 1), "Path");
}

void ShowParameters(const Place& in, Field& rest) {
  for (Field word = TakeWord(rest); word.here; word = TakeWord(rest)) AddTextLine(in, word, "Parameter");
}

// "FROM:<a@b> SIZE=10".
void ShowPath(const Place& in, const Field& parameter) {
  const Cursor c = CursorOver(parameter);
  const int32_t open = FindU8(c, '<'), close = open < 0 ? -1 : FindU8(c, '>', open);
  if (close < 0) return;
  const char* label = StartsWithWord(parameter, "FROM") ? "Reverse Path" : "Forward Path";
  if (close == open + 1) {
    AddLine(in, Slice(parameter, open, 2), "%s: Empty", label);
  } else {
    AddTextLine(in, Slice(parameter, open + 1, close - open - 1), label);   // keys: text Reverse Path, Forward Path
  }
  Field rest = Slice(parameter, close + 1, parameter.length - close - 1);
  ShowParameters(in, rest);
}

}  // namespace

void ShowFtpArgument(const Place& in, const Field& verb, const Field& parameter) {
  Field rest = parameter;
  if (IsWord(verb, "PORT")) {
    ShowActivePort(in, parameter);
  } else if (IsWord(verb, "EPRT")) {
    ShowExtendedPort(in, parameter);
  } else if (IsWord(verb, "TYPE")) {
    const Field type = TakeWord(rest), format = TakeWord(rest);
    ShowLetter(in, type, "Representation Type", kTypeNames);
    if (DecimalOf(format) > 0) AddTextLine(in, format, "Byte Size");
    else ShowLetter(in, format, "Format", kFormatNames);
  } else if (IsWord(verb, "MODE")) {
    ShowLetter(in, parameter, "Transfer Mode", kModeNames);
  } else if (IsWord(verb, "STRU")) {
    ShowLetter(in, parameter, "File Structure", kStructureNames);
  } else if (IsWord(verb, "PROT")) {
    ShowLetter(in, parameter, "Protection Level", kProtectionNames);
  } else if (IsWord(verb, "OPTS") || IsWord(verb, "SITE")) {
    AddTextLine(in, TakeWord(rest), "Subcommand");
    ShowParameters(in, rest);
  } else if (IsWord(verb, "MFMT") || IsWord(verb, "MDTM")) {
    const Field time = TakeWord(rest);
    if (DecimalOf(Slice(time, 0, 4)) >= 0) AddTextLine(in, time, "Time");
    AddTextLine(in, Trimmed(DecimalOf(Slice(time, 0, 4)) >= 0 ? rest : parameter), "Path");
  } else if (IsWord(verb, "MFF")) {
    ShowFacts(in, parameter);
  } else if (IsWord(verb, "ADAT") || IsWord(verb, "MIC") || IsWord(verb, "ENC") || IsWord(verb, "CONF")) {
    ShowSasl(in, parameter);
  }
}

void ShowFtpReplyText(const Place& in, int32_t code, const Field& text) {
  if (code == 257) ShowQuotedPath(in, text);
  if (code == 213 && DecimalOf(Trimmed(text)) >= 0) AddTextLine(in, Trimmed(text), "Size");
  if (code == 334 || code == 335 || code == 235) {
    const int32_t mark = FindU8(CursorOver(text), '=');
    if (mark >= 0 && StartsWithWord(text, "ADAT")) ShowSasl(in, Slice(text, mark + 1, text.length - mark - 1));
  }
  // A line of a list of facts stands behind a blank.
  if (code < 0 && PeekU8(text) == ' ' && FindU8(CursorOver(text), '=') > 0 && FindU8(CursorOver(text), ';') > 0) {
    ShowFacts(in, Trimmed(text));
  }
}

void ShowSmtpArgument(const Place& in, const Field& verb, const Field& parameter) {
  Field rest = parameter;
  if (IsWord(verb, "MAIL") || IsWord(verb, "RCPT")) {
    ShowPath(in, parameter);
  } else if (IsWord(verb, "AUTH")) {
    AddTextLine(in, TakeWord(rest), "Mechanism");
    ShowSasl(in, Trimmed(rest));
  } else if (IsWord(verb, "BDAT")) {
    AddTextLine(in, TakeWord(rest), "Chunk Size");
    if (Trimmed(rest).length > 0) AddTextLine(in, Trimmed(rest), "Chunk");
  } else if (IsWord(verb, "HELO") || IsWord(verb, "EHLO") || IsWord(verb, "LHLO")) {
    AddTextLine(in, parameter, "Domain");
  } else if (IsWord(verb, "XCLIENT") || IsWord(verb, "XFORWARD")) {
    ShowParameters(in, rest);
  }
}

void ShowSmtpReplyText(const Place& in, int32_t code, const Field& text) {
  if (code == 334) return ShowSasl(in, Trimmed(text));
  Field rest = text;
  const Field word = TakeWord(rest);
  Field digits = word;
  const Field kind = TakeWord(digits, "."), subject = TakeWord(digits, ".");
  if (kind.length == 1 && DecimalOf(subject) >= 0 && DecimalOf(digits) >= 0) AddTextLine(in, word, "Enhanced Status Code");
}

bool IsSasl(const Field& line) {
  if (line.length < 4 || line.length % 4 != 0) return false;
  for (int32_t i = 0; i < line.length; ++i) {
    const uint32_t c = PeekU8(line, i), letter = c | 0x20;
    const bool isPad = c == '=' && i >= line.length - 2;
    if (!isPad && (letter < 'a' || letter > 'z') && (c < '0' || c > '9') && c != '+' && c != '/') return false;
  }
  return true;
}

void ShowSasl(const Place& at, const Field& text) {
  if (!IsSasl(text)) return;
  Cursor octets = DecodeBase64(at, text);
  if (Left(octets) == 0) return;
  const bool isText = IsReadable(octets), isPlain = !isText && IsReadable(octets, true);
  const Place in = Under(at, AddTextLine(at, text, "Base64"));
  const DerivedLines derived(at.view);
  if (isText) {
    AddTextLine(in, text, "Decoded Text", Rest(octets));
  } else if (isPlain) {
    AddTextLine(in, text, "Authorization Identity", TakeTerminated(octets));
    AddTextLine(in, text, "Authentication Identity", TakeTerminated(octets));
    AddTextLine(in, text, "Password", TakeTerminated(octets));
  } else {
    AddBlock(in, Rest(octets), "Decoded Data");
  }
}

}  // namespace qxview
