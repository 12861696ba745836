// Values of HTTP's header fields: cookies (RFC 6265), credentials (RFC 9110 11, RFC 7617, RFC 6750, RFC 4559), ranges (RFC 9110
// 14), hops (7.6.3), warnings (RFC 7234 5.5), policies, lists of words.
#include "decoders/app/http_fields.h"
#include "decoders/common/header_lines.h"
#include "decoders/common/header_values.h"
#include "decoders/common/json_lines.h"
#include "decoders/common/transfer_text.h"
#include "decoders/smb/ntlmssp.h"
#include "decoders/smb/spnego.h"

namespace qxview {
namespace {

// RFC 7234 5.5; the registry of today keeps them.
constexpr auto kWarningNames = SortedNames({
    {110, "Response is Stale"}, {111, "Revalidation Failed"}, {112, "Disconnected Operation"}, {113, "Heuristic Expiration"},
    {199, "Miscellaneous Warning"}, {214, "Transformation Applied"}, {299, "Miscellaneous Persistent Warning"}});
// RFC 6265 5.2 and what browsers added.
constexpr const char* kCookieAttributes[] = {"Domain", "Expires", "HttpOnly", "Max-Age", "Partitioned", "Path", "Priority",
                                             "SameSite", "Secure", "Version", "Comment"};

// The piece up to a character, which may be missing, without blanks at its ends. No marks quote here.
Field TakePlain(Field& rest, uint8_t end) {
  const int32_t found = FindU8(CursorOver(rest), end), length = found < 0 ? rest.length : found;
  const Field piece = Trimmed(Slice(rest, 0, length));
  const int32_t behind = found < 0 ? length : length + 1;
  rest = Slice(rest, behind, rest.length - behind);
  return piece;
}

void ShowCookiePair(const Place& in, Field pair) {
  const Place under = Under(in, AddTextLine(in, pair, "Cookie Pair"));
  const bool hasValue = FindU8(CursorOver(pair), '=') >= 0;
  AddTextLine(under, TakePlain(pair, '='), "Name");
  if (hasValue) AddTextLine(under, pair, "Value");
}

void ShowCookies(const Place& in, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    const Field pair = TakePlain(rest, ';');
    if (pair.length > 0) ShowCookiePair(in, pair);
  }
}

void ShowSetCookie(const Place& in, Field rest) {
  ShowCookiePair(in, TakePlain(rest, ';'));
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    const Field attribute = TakePlain(rest, ';');
    Field value = attribute;
    const Field name = TakePlain(value, '=');
    const char* known = nullptr;
    for (const char* word : kCookieAttributes) {
      if (IsWord(name, word)) known = word;
    }
    // keys: text Domain, Expires, HttpOnly, Max-Age, Partitioned, Path, Priority, SameSite, Secure, Version, Comment
    if (known) AddTextLine(in, attribute, known, value);
    else if (attribute.length > 0) AddTextLine(in, attribute, "Cookie Attribute");
  }
}

// The token of "Basic": a name and a password.
void ShowBasic(const Place& in, const Field& token) {
  Cursor octets = DecodeBase64(in, token);
  if (Left(octets) < 1) return;
  const DerivedLines derived(in.view);
  const Field pair = Rest(octets);
  const int32_t colon = FindU8(CursorOver(pair), ':'), end = colon < 0 ? pair.length : colon;
  const auto show = [&in, &token](const char* label, const Field& text) {
    AddTextLine(in, token, label, text);
  };
  show("User", Slice(pair, 0, end));
  if (colon >= 0) show("Password", Slice(pair, colon + 1, pair.length - colon - 1));
}

// A bearer token that is a JSON Web Token (RFC 7519): header and claims are JSON, the signature octets.
void ShowWebToken(const Place& in, Field token) {
  constexpr const char* kParts[] = {"Token Header", "Token Claims"};
  if (!StartsWithWord(token, "eyJ")) return;   // what base64 makes of {"
  for (const char* label : kParts) {
    const Field part = TakePlain(token, '.');
    Cursor json = DecodeBase64(in, part);
    if (Left(json) < 1 || !StartsJson(json)) return;
    const DerivedLines derived(in.view);
    ShowJson(Under(in, AddLine(in, part, "%s", label)), json);   // keys: none Token Header, Token Claims
  }
  AddTextLine(in, token, "Token Signature");
}

void ShowBytes(const Place& in, const Field& range, const char* first, const char* last) {
  Field rest = range;
  const Field from = TakePlain(rest, '-');
  // keys: number First Byte, Last Byte, Last Bytes
  if (DecimalOf(from) >= 0) AddLine(in, from, "%s: %d", first, DecimalOf(from));
  else if (from.length > 0) AddTextLine(in, from, first);
  if (rest.length == 0) return;
  const char* label = from.length > 0 ? last : "Last Bytes";
  if (DecimalOf(rest) >= 0) AddLine(in, rest, "%s: %d", label, DecimalOf(rest));
  else AddTextLine(in, rest, label);
}

void ShowRanges(const Place& in, Field rest) {
  AddTextLine(in, TakePlain(rest, '='), "Range Unit");
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    const Field range = TakePlain(rest, ',');
    ShowBytes(Under(in, AddTextLine(in, range, "Byte Range")), range, "First Byte", "Last Byte");
  }
}

void ShowContentRange(const Place& in, Field rest) {
  AddTextLine(in, TakeWord(rest), "Range Unit");
  rest = Trimmed(rest);
  const Field range = TakePlain(rest, '/');
  ShowBytes(in, range, "First Byte", "Last Byte");
  if (rest.length > 0) AddTextLine(in, rest, "Complete Length");
}

// "1.1 host (comment)" for each hop.
void ShowVia(const Place& in, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    Field hop = TakePiece(rest, ",");
    const Place under = Under(in, AddTextLine(in, hop, "Hop"));
    AddTextLine(under, TakeWord(hop), "Received Protocol");
    AddTextLine(under, TakeWord(hop), "Received By");
    hop = Trimmed(hop);
    if (hop.length > 0) AddTextLine(under, hop, "Hop Comment");
  }
}

void ShowWarnings(const Place& in, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    Field warning = TakePiece(rest, ",");
    const Field code = TakeWord(warning);
    const int32_t number = DecimalOf(code);
    if (number >= 0) AddLine(in, code, "Warning Code: %d = %s", number, LookupName(kWarningNames, static_cast<uint32_t>(number)));
    AddTextLine(in, TakeWord(warning), "Warning Agent");
    const Field text = TakeWord(warning, "\"");
    AddTextLine(in, text.here ? text : TakeWord(warning, "\""), "Warning Text");
  }
}

// "default-src 'self' https:; img-src *"
void ShowPolicy(const Place& in, const char* label, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    const Field directive = TakePlain(rest, ';');
    if (directive.length > 0) AddTextLine(in, directive, label);
  }
}

}  // namespace

void ShowHttpCredentials(const Place& in, Field value) {
  const Field scheme = TakeWord(value);
  AddTextLine(in, scheme, "Scheme");
  const Field token = Trimmed(value);
  if (token.length == 0) return;
  const bool isBasic = IsWord(scheme, "Basic"), isNegotiate = IsWord(scheme, "NTLM") || IsWord(scheme, "Negotiate");
  if (FindU8(CursorOver(token), ' ') < 0 && (isBasic || isNegotiate || IsWord(scheme, "Bearer"))) {
    const Place under = Under(in, AddTextLine(in, token, "Token"));
    if (isBasic) return ShowBasic(under, token);
    if (!isNegotiate) return ShowWebToken(under, token);
    Cursor octets = DecodeBase64(under, token);
    const DerivedLines derived(in.view);
    if (StartsNtlmssp(octets)) DecodeNtlmssp(under, octets);
    else AddSecurityBlob(under, Rest(octets));
    return;
  }
  ShowParameters(in, value, ",");
}

void ShowHttpValue(const Place& in, const HttpField& field, const Field& value) {
  if (in.dead || value.length == 0) return;
  switch (field.form) {
    case HttpForm::kItems: return ShowItems(in, field.label, value, true);
    case HttpForm::kValue: return ShowItems(in, field.label, value, false);
    case HttpForm::kDirectives: return ShowParameters(in, value, ",");
    case HttpForm::kParameters: return ShowParameters(in, value, ";");
    case HttpForm::kCookies: return ShowCookies(in, value);
    case HttpForm::kSetCookie: return ShowSetCookie(in, value);
    case HttpForm::kCredentials: return ShowHttpCredentials(in, value);
    case HttpForm::kRange: return ShowRanges(in, value);
    case HttpForm::kContentRange: return ShowContentRange(in, value);
    case HttpForm::kVia: return ShowVia(in, value);
    case HttpForm::kWarning: return ShowWarnings(in, value);
    case HttpForm::kPolicy: return ShowPolicy(in, field.label, value);
    case HttpForm::kText: case HttpForm::kNumber: return;
  }
}

}  // namespace qxview
