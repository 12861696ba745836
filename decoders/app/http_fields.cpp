// The header fields of HTTP (the registry that RFC 9110 18.4 set up, and what clients and proxies send beside it), each
// with what its value is made of; the pieces of targets and queries (RFC 9110 4 and 7.1, RFC 3986, WHATWG URL standard).
#include "decoders/app/http_fields.h"

#include "decoders/common/header_lines.h"
#include "decoders/common/line_text.h"

namespace qxview {
namespace {

constexpr HttpForm kText = HttpForm::kText, kNumber = HttpForm::kNumber, kItems = HttpForm::kItems, kValue = HttpForm::kValue,
                   kDirectives = HttpForm::kDirectives, kParameters = HttpForm::kParameters, kCookies = HttpForm::kCookies,
                   kSetCookie = HttpForm::kSetCookie, kCredentials = HttpForm::kCredentials, kRange = HttpForm::kRange,
                   kContentRange = HttpForm::kContentRange, kVia = HttpForm::kVia, kWarning = HttpForm::kWarning,
                   kPolicy = HttpForm::kPolicy;
constexpr HttpField kFields[] = {
    {"A-IM", kItems, "Instance Manipulation"}, {"Accept", kItems, "Media Range"},
    {"Accept-Additions", kItems, "Media Type"}, {"Accept-CH", kItems, "Field Name"},
    {"Accept-Charset", kItems, "Charset"}, {"Accept-Datetime", kText, nullptr}, {"Accept-Encoding", kItems, "Coding"},
    {"Accept-Features", kItems, "Feature"}, {"Accept-Language", kItems, "Language"},
    {"Accept-Patch", kItems, "Media Type"}, {"Accept-Post", kItems, "Media Type"},
    {"Accept-Ranges", kItems, "Range Unit"}, {"Accept-Signature", kText, nullptr}, {"Access-Control", kText, nullptr},
    {"Access-Control-Allow-Credentials", kText, nullptr}, {"Access-Control-Allow-Headers", kItems, "Field Name"},
    {"Access-Control-Allow-Methods", kItems, "Method"}, {"Access-Control-Allow-Origin", kText, nullptr},
    {"Access-Control-Expose-Headers", kItems, "Field Name"}, {"Access-Control-Max-Age", kNumber, nullptr},
    {"Access-Control-Request-Headers", kItems, "Field Name"}, {"Access-Control-Request-Method", kText, nullptr},
    {"Activate-Storage-Access", kText, nullptr}, {"Age", kNumber, nullptr}, {"Allow", kItems, "Method"},
    {"ALPN", kItems, "Protocol"}, {"Alt-Svc", kItems, "Alternative Service"}, {"Alt-Used", kText, nullptr},
    {"Alternates", kText, nullptr}, {"AMP-Cache-Transform", kText, nullptr}, {"Apply-To-Redirect-Ref", kText, nullptr},
    {"Authentication-Control", kDirectives, nullptr}, {"Authentication-Info", kDirectives, nullptr},
    {"Authorization", kCredentials, nullptr}, {"Available-Dictionary", kText, nullptr}, {"C-Ext", kText, nullptr},
    {"C-Man", kText, nullptr}, {"C-Opt", kText, nullptr}, {"C-PEP", kText, nullptr}, {"C-PEP-Info", kText, nullptr},
    {"Cache-Control", kDirectives, nullptr}, {"Cache-Status", kItems, "Hop"}, {"Cal-Managed-ID", kText, nullptr},
    {"CalDAV-Timezones", kText, nullptr}, {"Capsule-Protocol", kText, nullptr},
    {"CDN-Cache-Control", kDirectives, nullptr}, {"CDN-Loop", kItems, "Hop"}, {"Cert-Not-After", kText, nullptr},
    {"Cert-Not-Before", kText, nullptr}, {"Clear-Site-Data", kItems, "Data"}, {"Client-Cert", kValue, "Certificate"},
    {"Client-Cert-Chain", kItems, "Certificate"}, {"Close", kItems, "Option"}, {"CMCD-Object", kDirectives, nullptr},
    {"CMCD-Request", kDirectives, nullptr}, {"CMCD-Session", kDirectives, nullptr},
    {"CMCD-Status", kDirectives, nullptr}, {"CMSD-Dynamic", kDirectives, nullptr},
    {"CMSD-Static", kDirectives, nullptr}, {"Concealed-Auth-Export", kText, nullptr},
    {"Configuration-Context", kText, nullptr}, {"Connection", kItems, "Option"}, {"Content-Base", kText, nullptr},
    {"Content-Digest", kDirectives, nullptr}, {"Content-Disposition", kValue, "Disposition"},
    {"Content-Encoding", kItems, "Coding"}, {"Content-ID", kText, nullptr}, {"Content-Language", kItems, "Language"},
    {"Content-Length", kNumber, nullptr}, {"Content-Location", kText, nullptr}, {"Content-MD5", kText, nullptr},
    {"Content-Range", kContentRange, nullptr}, {"Content-Script-Type", kText, nullptr},
    {"Content-Security-Policy", kPolicy, "Directive"}, {"Content-Security-Policy-Report-Only", kPolicy, "Directive"},
    {"Content-Style-Type", kText, nullptr}, {"Content-Type", kValue, "Media Type"},
    {"Content-Version", kText, nullptr}, {"Cookie", kCookies, nullptr}, {"Cookie2", kCookies, nullptr},
    {"Cross-Origin-Embedder-Policy", kText, nullptr}, {"Cross-Origin-Embedder-Policy-Report-Only", kText, nullptr},
    {"Cross-Origin-Opener-Policy", kText, nullptr}, {"Cross-Origin-Opener-Policy-Report-Only", kText, nullptr},
    {"Cross-Origin-Resource-Policy", kText, nullptr}, {"CTA-Common-Access-Token", kText, nullptr},
    {"DASL", kText, nullptr}, {"Date", kText, nullptr}, {"DAV", kItems, "Compliance Class"},
    {"Default-Style", kText, nullptr}, {"Delta-Base", kText, nullptr}, {"Deprecation", kText, nullptr},
    {"Depth", kText, nullptr}, {"Derived-From", kText, nullptr}, {"Destination", kText, nullptr},
    {"Device-Memory", kNumber, nullptr}, {"Dictionary-ID", kText, nullptr}, {"Differential-ID", kText, nullptr},
    {"Digest", kDirectives, nullptr}, {"DNT", kNumber, nullptr}, {"Downlink", kText, nullptr},
    {"DPoP", kText, nullptr}, {"DPoP-Nonce", kText, nullptr}, {"DPR", kText, nullptr}, {"Early-Data", kText, nullptr},
    {"ECT", kText, nullptr}, {"EDIINT-Features", kText, nullptr}, {"ETag", kText, nullptr},
    {"Expect", kItems, "Expectation"}, {"Expect-CT", kDirectives, nullptr}, {"Expires", kText, nullptr},
    {"Ext", kText, nullptr}, {"Forwarded", kParameters, nullptr}, {"From", kText, nullptr},
    {"GetProfile", kText, nullptr}, {"Hobareg", kText, nullptr}, {"Host", kText, nullptr},
    {"HTTP2-Settings", kText, nullptr}, {"If", kText, nullptr}, {"If-Match", kItems, "Entity Tag"},
    {"If-Modified-Since", kText, nullptr}, {"If-None-Match", kItems, "Entity Tag"}, {"If-Range", kText, nullptr},
    {"If-Schedule-Tag-Match", kText, nullptr}, {"If-Unmodified-Since", kText, nullptr},
    {"IM", kItems, "Instance Manipulation"}, {"Include-Referred-Token-Binding-ID", kText, nullptr},
    {"Isolation", kText, nullptr}, {"Keep-Alive", kDirectives, nullptr}, {"Label", kText, nullptr},
    {"Last-Event-ID", kText, nullptr}, {"Last-Modified", kText, nullptr}, {"Link", kItems, "Target"},
    {"Link-Template", kItems, "Target"}, {"Location", kText, nullptr}, {"Lock-Token", kText, nullptr},
    {"Man", kText, nullptr}, {"Max-Forwards", kNumber, nullptr}, {"Memento-Datetime", kText, nullptr},
    {"Meter", kDirectives, nullptr}, {"Method-Check", kText, nullptr}, {"Method-Check-Expires", kText, nullptr},
    {"MIME-Version", kText, nullptr}, {"Negotiate", kItems, "Negotiation"}, {"NEL", kText, nullptr},
    {"OData-EntityId", kText, nullptr}, {"OData-Isolation", kText, nullptr}, {"OData-MaxVersion", kText, nullptr},
    {"OData-Version", kText, nullptr}, {"Opt", kText, nullptr}, {"Optional-WWW-Authenticate", kCredentials, nullptr},
    {"Ordering-Type", kText, nullptr}, {"Origin", kText, nullptr}, {"Origin-Agent-Cluster", kText, nullptr},
    {"OSCORE", kText, nullptr}, {"OSLC-Core-Version", kText, nullptr}, {"Overwrite", kText, nullptr},
    {"P3P", kDirectives, nullptr}, {"PEP", kText, nullptr}, {"PEP-Info", kText, nullptr},
    {"Permissions-Policy", kDirectives, nullptr}, {"PICS-Label", kText, nullptr}, {"Ping-From", kText, nullptr},
    {"Ping-To", kText, nullptr}, {"Position", kText, nullptr}, {"Pragma", kDirectives, nullptr},
    {"Prefer", kItems, "Preference"}, {"Preference-Applied", kItems, "Preference"}, {"Priority", kDirectives, nullptr},
    {"ProfileObject", kText, nullptr}, {"Protocol", kText, nullptr}, {"Protocol-Info", kText, nullptr},
    {"Protocol-Query", kText, nullptr}, {"Protocol-Request", kText, nullptr},
    {"Proxy-Authenticate", kCredentials, nullptr}, {"Proxy-Authentication-Info", kDirectives, nullptr},
    {"Proxy-Authorization", kCredentials, nullptr}, {"Proxy-Connection", kItems, "Option"},
    {"Proxy-Features", kText, nullptr}, {"Proxy-Instruction", kText, nullptr}, {"Proxy-Status", kItems, "Hop"},
    {"Public", kItems, "Method"}, {"Public-Key-Pins", kParameters, nullptr},
    {"Public-Key-Pins-Report-Only", kParameters, nullptr}, {"Range", kRange, nullptr},
    {"Redirect-Ref", kText, nullptr}, {"Referer", kText, nullptr}, {"Referer-Root", kText, nullptr},
    {"Referrer-Policy", kText, nullptr}, {"Refresh", kValue, "Seconds"}, {"Repeatability-Client-ID", kText, nullptr},
    {"Repeatability-First-Sent", kText, nullptr}, {"Repeatability-Request-ID", kText, nullptr},
    {"Repeatability-Result", kText, nullptr}, {"Replay-Nonce", kText, nullptr},
    {"Reporting-Endpoints", kItems, "Target"}, {"Repr-Digest", kDirectives, nullptr},
    {"Retry-After", kValue, "Seconds"}, {"RTT", kNumber, nullptr}, {"Safe", kText, nullptr},
    {"Save-Data", kText, nullptr}, {"Schedule-Reply", kText, nullptr}, {"Schedule-Tag", kText, nullptr},
    {"Sec-CH-UA", kItems, "Brand"}, {"Sec-CH-UA-Arch", kText, nullptr}, {"Sec-CH-UA-Bitness", kText, nullptr},
    {"Sec-CH-UA-Full-Version", kText, nullptr}, {"Sec-CH-UA-Full-Version-List", kItems, "Brand"},
    {"Sec-CH-UA-Mobile", kText, nullptr}, {"Sec-CH-UA-Model", kText, nullptr}, {"Sec-CH-UA-Platform", kText, nullptr},
    {"Sec-CH-UA-Platform-Version", kText, nullptr}, {"Sec-CH-UA-WoW64", kText, nullptr},
    {"Sec-Fetch-Dest", kText, nullptr}, {"Sec-Fetch-Mode", kText, nullptr}, {"Sec-Fetch-Site", kText, nullptr},
    {"Sec-Fetch-Storage-Access", kText, nullptr}, {"Sec-Fetch-User", kText, nullptr}, {"Sec-GPC", kNumber, nullptr},
    {"Sec-Purpose", kText, nullptr}, {"Sec-Token-Binding", kText, nullptr}, {"Sec-WebSocket-Accept", kText, nullptr},
    {"Sec-WebSocket-Extensions", kItems, "Extension"}, {"Sec-WebSocket-Key", kText, nullptr},
    {"Sec-WebSocket-Protocol", kItems, "Subprotocol"}, {"Sec-WebSocket-Version", kNumber, nullptr},
    {"Security-Scheme", kText, nullptr}, {"Server", kText, nullptr}, {"Server-Timing", kItems, "Metric"},
    {"Set-Cookie", kSetCookie, nullptr}, {"Set-Cookie2", kSetCookie, nullptr}, {"Set-Txn", kText, nullptr},
    {"SetProfile", kText, nullptr}, {"Signature", kItems, "Signature"}, {"Signature-Input", kItems, "Signature"},
    {"SLUG", kText, nullptr}, {"SoapAction", kText, nullptr}, {"Status-URI", kText, nullptr},
    {"Strict-Transport-Security", kParameters, nullptr}, {"Sunset", kText, nullptr},
    {"Surrogate-Capability", kDirectives, nullptr}, {"Surrogate-Control", kDirectives, nullptr},
    {"TCN", kItems, "Negotiation"}, {"TE", kItems, "Transfer Coding"}, {"Timeout", kText, nullptr},
    {"Timing-Allow-Origin", kItems, "Origin"}, {"Topic", kText, nullptr}, {"Traceparent", kText, nullptr},
    {"Tracestate", kItems, "Vendor State"}, {"Trailer", kItems, "Field Name"},
    {"Transfer-Encoding", kItems, "Transfer Coding"}, {"Translate", kText, nullptr}, {"TTL", kNumber, nullptr},
    {"Unencoded-Digest", kDirectives, nullptr}, {"Upgrade", kItems, "Protocol"},
    {"Upgrade-Insecure-Requests", kNumber, nullptr}, {"Urgency", kText, nullptr}, {"URI", kText, nullptr},
    {"Use-As-Dictionary", kDirectives, nullptr}, {"User-Agent", kText, nullptr},
    {"Variant-Vary", kItems, "Negotiation"}, {"Vary", kItems, "Field Name"}, {"Via", kVia, nullptr},
    {"Viewport-Width", kNumber, nullptr}, {"Want-Content-Digest", kDirectives, nullptr},
    {"Want-Digest", kDirectives, nullptr}, {"Want-Repr-Digest", kDirectives, nullptr}, {"Warning", kWarning, nullptr},
    {"Width", kNumber, nullptr}, {"WWW-Authenticate", kCredentials, nullptr},
    {"X-Content-Type-Options", kText, nullptr}, {"X-Forwarded-For", kItems, "Address"},
    {"X-Forwarded-Host", kText, nullptr}, {"X-Forwarded-Proto", kText, nullptr}, {"X-Frame-Options", kText, nullptr},
    {"X-Powered-By", kText, nullptr}, {"X-Requested-With", kText, nullptr}, {"X-XSS-Protection", kValue, "Filter"}};

int32_t HexOf(uint32_t c) {
  const uint32_t lower = c | 0x20;
  if (c >= '0' && c <= '9') return static_cast<int32_t>(c - '0');
  return lower >= 'a' && lower <= 'f' ? static_cast<int32_t>(lower - 'a' + 10) : -1;
}

// The characters that "+" and "%41" stand for.
ValueText Unescaped(const Field& text) {
  uint8_t octets[kLineSize];
  int32_t used = 0;
  for (int32_t at = 0; at < text.length && used < kLineSize; ++at) {
    uint32_t character = PeekU8(text, at);
    if (character == '+') character = ' ';
    const int32_t high = character == '%' ? HexOf(PeekU8(text, at + 1)) : -1, low = HexOf(PeekU8(text, at + 2));
    if (high >= 0 && low >= 0) {
      character = static_cast<uint32_t>(high * 16 + low);
      at += 2;
    }
    octets[used++] = static_cast<uint8_t>(character);
  }
  ValueText made;
  LineText(made.text, sizeof made.text).PutReadable(MakeCursor(octets, text.offset, used));
  return made;
}

}  // namespace

static_assert(AreInOrder(kFields));
const HttpField* FindHttpField(const Field& name) { return FindWord(kFields, name); }

void ShowHttpField(const Place& in, const Field& whole, const Field& name, const Field& value) {
  const HttpField* field = FindHttpField(name);
  if (!field) {
    char own[64];
    LineText(own, sizeof own).PutReadable(CursorOver(name));
    AddTextLine(in, whole, own, value);
    return;
  }
  const int32_t number = field->form == kNumber ? DecimalOf(value) : -1;
  if (number >= 0) AddLine(in, whole, "%s: %d", field->name, number);
  else ShowHttpValue(Under(in, AddTextLine(in, whole, field->name, value)), *field, value);
}

void ShowHttpPairs(const Place& in, const Field& pairs, const char* label) {
  Cursor c = CursorOver(pairs);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const int32_t end = FindU8(c, '&');
    const Field pair = TakeBytes(c, end < 0 ? Left(c) : end);
    if (end >= 0) TakeU8(c);
    if (pair.length == 0) continue;
    const int32_t equals = FindU8(CursorOver(pair), '=');
    const Field name = Slice(pair, 0, equals < 0 ? pair.length : equals);
    const Place under = Under(in, AddTextLine(in, pair, label));
    AddLine(under, name, "Name: %s", Unescaped(name));
    if (equals < 0) continue;
    const Field value = Slice(pair, equals + 1, pair.length - equals - 1);
    AddLine(under, value, "Value: %s", Unescaped(value));
  }
}

void ShowHttpTarget(const Place& in, const Field& target) {
  const Cursor c = CursorOver(target);
  int32_t start = 0;
  const int32_t colon = FindU8(c, ':'), slash = FindU8(c, '/');
  if (PeekU8(c) != '/' && colon > 0 && PeekIs(c, colon, "://")) {
    AddTextLine(in, Slice(target, 0, colon), "URI Scheme");
    start = colon + 3;
    const int32_t end = FindU8(c, '/', start), query = FindU8(c, '?', start);
    const int32_t stop = end < 0 || (query >= 0 && query < end) ? (query < 0 ? target.length : query) : end;
    AddTextLine(in, Slice(target, start, stop - start), "URI Authority");
    start = stop;
  } else if (slash != 0) {
    return;   // "*", or the host and port of CONNECT
  }
  const int32_t mark = FindU8(c, '?', start), end = mark < 0 ? target.length : mark;
  if (start < end) AddTextLine(in, Slice(target, start, end - start), "URI Path");
  if (mark < 0) return;
  const Field query = Slice(target, mark + 1, target.length - mark - 1);
  const Place under = Under(in, AddTextLine(in, query, "URI Query"));
  ShowHttpPairs(under, query, "Query Parameter");
}

}  // namespace qxview
