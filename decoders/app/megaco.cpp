// Megaco in its text form (RFC 3525 annex B, ITU-T H.248.1): a controller commands a gateway's terminations. Words have short
// forms; what stands in braces belongs to the word in front.
//
//   MEGACO/1 [192.0.2.1]:2944 Transaction = 1 { Context = $ { Add = A4444 { Media { Local { v=0 ... } } } } }
#include "decoders/app/megaco.h"

#include "core/rows.h"
#include "decoders/common/header_lines.h"
#include "decoders/message_lengths.h"

namespace qxview {

int32_t DecodeSdp(const Place& at, Cursor c);

namespace {

constexpr int32_t kDeepest = 16;   // braces in braces

constexpr struct {
  const char* brief;
  const char* name;
} kWords[] = {
    {"T", "Transaction"}, {"P", "Reply"}, {"PN", "Pending"}, {"K", "Transaction Response Acknowledgement"}, {"C", "Context"},
    {"A", "Add"}, {"MV", "Move"}, {"MF", "Modify"}, {"S", "Subtract"}, {"AV", "Audit Value"}, {"AC", "Audit Capability"},
    {"N", "Notify"}, {"SC", "Service Change"}, {"ER", "Error"}, {"M", "Media"}, {"ST", "Stream"}, {"L", "Local"}, {"R", "Remote"},
    {"O", "Local Control"}, {"TS", "Termination State"}, {"E", "Events"}, {"OE", "Observed Events"}, {"SG", "Signals"},
    {"SL", "Signal List"}, {"DM", "Digit Map"}, {"SV", "Services"}, {"AT", "Audit"}, {"MO", "Mode"}, {"SO", "Send Only"},
    {"RC", "Receive Only"}, {"SR", "Send Receive"}, {"IN", "Inactive"}, {"LB", "Loopback"}, {"MD", "Modem"}, {"MX", "Mux"},
    {"SA", "Statistics"}, {"PG", "Packages"}, {"EB", "Event Buffer"}, {"EM", "Embed"}, {"TP", "Topology"}, {"PR", "Priority"},
    {"EG", "Emergency"}, {"MT", "Method"}, {"RE", "Reason"}, {"AD", "Address"}, {"DL", "Delay"}, {"PF", "Profile"},
    {"V", "Version"}, {"MG", "MGC to Try"}, {"RP", "Reserved Group or Error Ratio"}, {"TL", "Termination"},
    {"AU", "Authentication"}};

// The bytes of a token that ends at one of the marks.
Field TakeToken(Cursor& c) {
  int32_t length = 0;
  for (bool quoted = false; length < Left(c); ++length) {
    const uint32_t each = PeekU8(c, length);
    if (each == '"') quoted = !quoted;
    if (!quoted && (each == '{' || each == '}' || each == ',' || each == ';')) break;
  }
  return TakeBytes(c, length);
}

Field WithoutSpace(Field text) {
  while (text.length > 0 && IsSpace(PeekU8(text))) text = Slice(text, 1, text.length - 1);
  while (text.length > 0 && IsSpace(PeekU8(text, text.length - 1))) text = Slice(text, 0, text.length - 1);
  return text;
}

const char* NameOf(const Field& token) {
  Field rest = token;
  const Field word = WithoutSpace(TakeWord(rest, "= \t\r\n"));
  for (const auto& row : kWords) {
    if (IsWord(word, row.brief)) return row.name;
  }
  return nullptr;
}

bool IsDescription(const Field& token) {
  return IsWord(token, "Local") || IsWord(token, "L") || IsWord(token, "Remote") || IsWord(token, "R");
}

void ShowItems(const Place& at, const Place& in, Cursor& c, int32_t depth) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const int32_t start = c.offset;
    const Field token = WithoutSpace(TakeToken(c));
    const uint32_t mark = PeekU8(c);
    const char* name = NameOf(token);
    Place under = in;
    if (token.length > 0) {
      const LineHandle line = name ? AddLine(in, token, "Item: %s (%s)", Text(token), name) : AddTextLine(in, token, "Item");
      under = Under(in, line);
    }
    if (mark == '}') return;
    if (Left(c) > 0) TakeU8(c);
    if (mark != '{') continue;
    if (IsDescription(token)) {
      const int32_t end = FindU8(c, '}');
      Cursor body = TakeCursor(c, end < 0 ? Left(c) : end);
      SkipSpace(body);
      if (Left(body) > 0) CallDecoder(Deeper(at), body, DecodeSdp, "Megaco Data");
    } else if (depth >= kDeepest) {
      return (void)AddBlock(under, Rest(c), "Nested Items");
    } else {
      ShowItems(at, under, c, depth + 1);
    }
    if (PeekU8(c) == '}') TakeU8(c);
    if (!under.dead && token.length > 0) SetRange(under, under.parent, start, c.offset - start);
  }
}

// Messages over TCP and SCTP's like stand in packets of their own (RFC 1006 6, ITU-T H.248.1 Annex D).
struct Framing { Field length; };
constexpr auto kFraming = Rows<Framing>({
    Number(1, "Version"), Number(1, "Reserved"), Number(2, "Length").Into(&Framing::length)});
constexpr int32_t kFramingSize = 4;

bool IsFramed(const Cursor& c) { return PeekU16(c) == 0x0300 && PeekU16(c, 2) > kFramingSize; }

}  // namespace

int32_t LengthOfMegaco(const Cursor& c) {
  if (Left(c) < kFramingSize) return PeekU8(c) == 3 && PeekU8(c, 1) == 0 ? 0 : kNoMessage;
  return IsFramed(c) ? static_cast<int32_t>(PeekU16(c, 2)) : kNoMessage;
}

int32_t DecodeMegaco(const Place& at, Cursor c) {
  if (IsFramed(c)) {
    const Place in = Under(at, AddLine(at, Ahead(c, kFramingSize), "TPKT"));
    ShowRows(in, c, kFraming);
    return CallDecoder(at, c, DecodeMegaco, "Megaco Data"), 1;
  }
  if (IsBinaryMegaco(c)) return DecodeBinaryMegaco(at, c);
  if (!StartsWithText(c, "MEGACO/") && !StartsWithText(c, "!/") && !StartsWithText(c, "Authentication") && !StartsWithText(c, "AU=")) {
    return 0;
  }
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Megaco"));
  int32_t length = 0;
  while (length < Left(c) && !IsSpace(PeekU8(c, length))) ++length;
  const Field version = TakeBytes(c, length);
  AddTextLine(in, version, "Protocol");
  SkipSpace(c);
  length = 0;
  while (length < Left(c) && !IsSpace(PeekU8(c, length))) ++length;
  const Field sender = TakeBytes(c, length);
  AddTextLine(in, sender, "Message ID");
  ShowItems(at, in, c, 0);
  AddBlock(in, Rest(c), "Megaco Data");
  return 1;
}

}  // namespace qxview
