// Values of SIP's header fields (RFC 3261 and the RFCs that its registry names): addresses, routes, credentials, lists of
// words with parameters.
#include "decoders/app/sip_headers.h"

#include "decoders/app/h323_names.h"
#include "decoders/common/header_lines.h"
#include "decoders/common/header_values.h"

namespace qxview {
namespace {

constexpr SipForm kText = SipForm::kText, kAddress = SipForm::kAddress, kItems = SipForm::kItems, kValue = SipForm::kValue,
                  kCredentials = SipForm::kCredentials, kParameters = SipForm::kParameters;
// The registry's names, and a few of before there was one.
constexpr SipHeader kHeaders[] = {
    {"Accept", 0, kItems, "Media Range"}, {"Accept-Contact", 'a', kItems, "Contact"},
    {"Accept-Encoding", 0, kItems, "Encoding"}, {"Accept-Language", 0, kItems, "Language"},
    {"Accept-Resource-Priority", 0, kItems, "Resource"}, {"Additional-Identity", 0, kAddress, nullptr},
    {"Alert-Info", 0, kAddress, nullptr}, {"Allow", 0, kItems, "Method"}, {"Allow-Events", 'u', kItems, "Event Package"},
    {"Answer-Mode", 0, kValue, "Mode"}, {"Attestation-Info", 0, kValue, "Attestation"},
    {"Authentication-Info", 0, kParameters, nullptr}, {"Authorization", 0, kCredentials, nullptr},
    {"Call-ID", 'i', kText, nullptr}, {"Call-Info", 0, kAddress, nullptr},
    {"Cellular-Network-Info", 0, kItems, "Access Type"}, {"Contact", 'm', kAddress, nullptr},
    {"Content-Disposition", 0, kValue, "Disposition"}, {"Content-Encoding", 'e', kItems, "Encoding"},
    {"Content-ID", 0, kText, nullptr}, {"Content-Language", 0, kItems, "Language"},
    {"Content-Length", 'l', kText, nullptr}, {"Content-Type", 'c', kValue, "Media Type"},
    {"CSeq", 0, SipForm::kSequence, nullptr}, {"Date", 0, kText, nullptr}, {"DC-Info", 0, kItems, "Data Channel"},
    {"Diversion", 0, kAddress, nullptr}, {"Encryption", 0, kValue, "Scheme"}, {"Error-Info", 0, kAddress, nullptr},
    {"Event", 'o', kValue, "Event Package"}, {"Expires", 0, kText, nullptr}, {"Feature-Caps", 0, kItems, "Capability"},
    {"Flow-Timer", 0, kText, nullptr}, {"From", 'f', kAddress, nullptr}, {"Geolocation", 0, kAddress, nullptr},
    {"Geolocation-Error", 0, kItems, "Error Code"}, {"Geolocation-Routing", 0, kValue, "Routing"},
    {"Hide", 0, kItems, "Hidden"}, {"History-Info", 0, kAddress, nullptr}, {"Identity", 'y', kValue, "Digest"},
    {"Identity-Info", 'n', kAddress, nullptr}, {"In-Reply-To", 0, kItems, "Call ID"},
    {"Info-Package", 0, kValue, "Info Package"}, {"Join", 0, kValue, "Call ID"}, {"Max-Breadth", 0, kText, nullptr},
    {"Max-Forwards", 0, kText, nullptr}, {"MIME-Version", 0, kText, nullptr}, {"Min-Expires", 0, kText, nullptr},
    {"Min-SE", 0, kValue, "Seconds"}, {"Organization", 0, kText, nullptr}, {"Origination-Id", 0, kText, nullptr},
    {"P-Access-Network-Info", 0, kItems, "Access Type"}, {"P-Answer-State", 0, kValue, "Answer Type"},
    {"P-Asserted-Identity", 0, kAddress, nullptr}, {"P-Asserted-Service", 0, kItems, "Service"},
    {"P-Associated-URI", 0, kAddress, nullptr}, {"P-Called-Party-ID", 0, kAddress, nullptr},
    {"P-Charge-Info", 0, kAddress, nullptr}, {"P-Charging-Function-Addresses", 0, kItems, "Address"},
    {"P-Charging-Vector", 0, kItems, "Charging"}, {"P-DCS-Billing-Info", 0, kValue, "Billing Correlation ID"},
    {"P-DCS-LAES", 0, kValue, "Content Address"}, {"P-DCS-OSPS", 0, kText, nullptr},
    {"P-DCS-Redirect", 0, kValue, "Called ID"}, {"P-DCS-Trace-Party-ID", 0, kAddress, nullptr},
    {"P-Early-Media", 0, kItems, "Direction"}, {"P-Media-Authorization", 0, kItems, "Token"},
    {"P-Preferred-Identity", 0, kAddress, nullptr}, {"P-Preferred-Service", 0, kItems, "Service"},
    {"P-Private-Network-Indication", 0, kItems, "Domain"}, {"P-Profile-Key", 0, kAddress, nullptr},
    {"P-Refused-URI-List", 0, kAddress, nullptr}, {"P-Served-User", 0, kAddress, nullptr},
    {"P-User-Database", 0, kAddress, nullptr}, {"P-Visited-Network-ID", 0, kItems, "Network"},
    {"Path", 0, kAddress, nullptr}, {"Permission-Missing", 0, kAddress, nullptr},
    {"Policy-Contact", 0, kAddress, nullptr}, {"Policy-ID", 0, kItems, "Policy"}, {"Priority", 0, kText, nullptr},
    {"Priority-Share", 0, kItems, "Share"}, {"Priority-Verstat", 0, kValue, "Verification"},
    {"Priv-Answer-Mode", 0, kValue, "Mode"}, {"Privacy", 0, kItems, "Privacy Value"},
    {"Proxy-Authenticate", 0, kCredentials, nullptr}, {"Proxy-Authentication-Info", 0, kParameters, nullptr},
    {"Proxy-Authorization", 0, kCredentials, nullptr}, {"Proxy-Require", 0, kItems, "Option Tag"},
    {"RAck", 0, SipForm::kReliable, nullptr}, {"Reason", 0, SipForm::kReason, "Protocol"}, {"Reason-Phrase", 0, kText, nullptr},
    {"Record-Route", 0, kAddress, nullptr}, {"Recv-Info", 0, kItems, "Info Package"}, {"Refer-Events-At", 0, kAddress, nullptr},
    {"Refer-Sub", 0, kValue, "Subscription"}, {"Refer-To", 'r', kAddress, nullptr}, {"Referred-By", 'b', kAddress, nullptr},
    {"Reject-Contact", 'j', kItems, "Contact"}, {"Relayed-Charge", 0, kItems, "Charging"},
    {"Remote-Party-ID", 0, kAddress, nullptr}, {"Replaces", 0, kValue, "Call ID"}, {"Reply-To", 0, kAddress, nullptr},
    {"Request-Disposition", 'd', kItems, "Directive"}, {"Require", 0, kItems, "Option Tag"},
    {"Resource-Priority", 0, kItems, "Resource"}, {"Resource-Share", 0, kItems, "Share"},
    {"Response-Key", 0, kCredentials, nullptr}, {"Response-Source", 0, kItems, "Source"},
    {"Restoration-Info", 0, kItems, "Restoration"}, {"Retry-After", 0, kValue, "Seconds"}, {"Route", 0, kAddress, nullptr},
    {"RSeq", 0, kText, nullptr}, {"Security-Client", 0, kItems, "Mechanism"}, {"Security-Server", 0, kItems, "Mechanism"},
    {"Security-Verify", 0, kItems, "Mechanism"}, {"Server", 0, kText, nullptr},
    {"Service-Interact-Info", 0, kItems, "Service"}, {"Service-Route", 0, kAddress, nullptr},
    {"Session-Expires", 'x', kValue, "Seconds"}, {"Session-ID", 0, kValue, "Session"}, {"SIP-ETag", 0, kText, nullptr},
    {"SIP-If-Match", 0, kText, nullptr}, {"Subject", 's', kText, nullptr}, {"Subscription-State", 0, kValue, "State"},
    {"Supported", 'k', kItems, "Option Tag"}, {"Suppress-If-Match", 0, kText, nullptr},
    {"Target-Dialog", 0, kValue, "Call ID"}, {"Timestamp", 0, SipForm::kTimestamp, nullptr}, {"To", 't', kAddress, nullptr},
    {"Trigger-Consent", 0, kAddress, nullptr}, {"Unsupported", 0, kItems, "Option Tag"}, {"User-Agent", 0, kText, nullptr},
    {"User-to-User", 0, kItems, "User Data"}, {"Via", 'v', SipForm::kVia, nullptr},
    {"Warning", 0, SipForm::kWarning, nullptr}, {"WWW-Authenticate", 0, kCredentials, nullptr}};

// RFC 3261 20.43 and the registry.
constexpr auto kWarningNames = SortedNames({
    {300, "Incompatible network protocol"}, {301, "Incompatible network address formats"},
    {302, "Incompatible transport protocol"}, {303, "Incompatible bandwidth units"}, {304, "Media type not available"},
    {305, "Incompatible media format"}, {306, "Attribute not understood"},
    {307, "Session description parameter not understood"}, {330, "Multicast not available"},
    {331, "Unicast not available"}, {370, "Insufficient bandwidth"}, {380, "SIPS Not Allowed"}, {381, "SIPS Required"},
    {399, "Miscellaneous warning"}});

int32_t FindByte(const Field& text, uint8_t wanted) {
  for (int32_t at = 0; at < text.length; ++at) {
    if (PeekU8(text, at) == wanted) return at;
  }
  return -1;
}

// Where the address opens; a name in quotation marks may hold a bracket of its own.
int32_t FindBracket(const Field& text) {
  bool quoted = false;
  for (int32_t at = 0; at < text.length; ++at) {
    if (quoted && PeekU8(text, at) == '\\') ++at;
    else if (PeekU8(text, at) == '"') quoted = !quoted;
    else if (!quoted && PeekU8(text, at) == '<') return at;
  }
  return -1;
}

// "host", "host:port", "[2001:db8::1]:port".
void ShowHostPort(const Place& in, const Field& text) {
  const int32_t bracket = FindByte(text, ']');
  const Field behind = bracket < 0 ? text : Slice(text, bracket, text.length - bracket);
  const int32_t colon = FindByte(behind, ':');
  if (colon < 0) {
    AddTextLine(in, text, "Host");
    return;
  }
  const int32_t host = text.length - behind.length + colon;
  AddTextLine(in, Slice(text, 0, host), "Host");
  AddTextLine(in, Slice(text, host + 1, text.length - host - 1), "Port");
}

}  // namespace

void ShowSipUri(const Place& in, const Field& uri) {
  Field rest = uri;
  const int32_t scheme = FindByte(rest, ':');
  if (scheme < 0) return;
  rest = Slice(rest, scheme + 1, rest.length - scheme - 1);
  const int32_t sign = FindByte(rest, '@');
  if (sign >= 0) {
    Field user = Slice(rest, 0, sign);
    AddTextLine(in, TakePiece(user, ":"), "User");
    if (user.length > 0) AddTextLine(in, user, "Password");
    rest = Slice(rest, sign + 1, rest.length - sign - 1);
  }
  const Field host = TakePiece(rest, ";?");
  if (StartsWithWord(uri, "tel:")) {
    AddTextLine(in, host, "Telephone Number");
  } else {
    ShowHostPort(in, host);
  }
  ShowParameters(in, rest, ";");
}

namespace {

// "Name" <uri>;parameter or uri;parameter, each of a list. The parameters of a bare address are the header's.
void ShowAddresses(const Place& in, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    Field parameters = TakePiece(rest, ",");
    Field address = TakePiece(parameters, ";");
    if (address.length == 0) continue;
    const int32_t bracket = FindBracket(address);
    if (bracket >= 0) {
      const Field name = Trimmed(Slice(address, 0, bracket));
      if (name.length > 0) AddTextLine(in, name, "Display Name");
      address = Slice(address, bracket + 1, address.length - bracket - 1);
      const int32_t end = FindByte(address, '>');
      if (end >= 0) address = Slice(address, 0, end);
    }
    ShowSipUri(Under(in, AddTextLine(in, address, "URI")), address);
    ShowParameters(in, parameters, ";");
  }
}

// "SIP/2.0/UDP host:port;branch=..." for each hop.
void ShowVia(const Place& in, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    Field parameters = TakePiece(rest, ",");
    Field first = TakePiece(parameters, ";");
    const Field protocol = TakeWord(first);
    int32_t slash = protocol.length;
    while (slash > 0 && PeekU8(protocol, slash - 1) != '/') --slash;
    AddTextLine(in, Slice(protocol, slash, protocol.length - slash), "Transport");
    ShowHostPort(in, Trimmed(first));
    ShowParameters(in, parameters, ";");
  }
}

// "Q.850;cause=21;text=\"Call rejected\"" (RFC 3326).
void ShowReasons(const Place& in, const char* label, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    Field parameters = TakePiece(rest, ",");
    const Field all = parameters;
    const Field protocol = TakePiece(parameters, ";");
    const Place under = Under(in, AddTextLine(in, protocol, label));
    const Field cause = ParameterOf(all, "cause");
    const int32_t number = cause.here ? DecimalOf(cause) : -1;
    if (number >= 0 && IsWord(protocol, "Q.850")) {
      AddLine(under, cause, "Cause: %u = %s", number, LookupName(kQ931CauseNames, static_cast<uint32_t>(number)));
    } else if (cause.here) {
      AddTextLine(under, cause, "Cause");
    }
    ShowParameters(under, parameters, ";");
  }
}

// "399 agent \"text\"", each of a list.
void ShowWarnings(const Place& in, Field rest) {
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    Field warning = TakePiece(rest, ",");
    const Field code = TakeWord(warning);
    const int32_t number = DecimalOf(code);
    if (number < 0) {
      AddTextLine(in, code, "Warning Code");
    } else {
      AddLine(in, code, "Warning Code: %u = %s", number, LookupName(kWarningNames, static_cast<uint32_t>(number)));
    }
    AddTextLine(in, TakeWord(warning), "Warning Agent");
    const Field text = Trimmed(warning);
    if (text.length > 0) AddTextLine(in, text, "Warning Text");
  }
}

void ShowNumbers(const Place& in, Field rest, const char* first, const char* second, const char* third) {
  const char* const labels[] = {first, second, third};
  for (const char* label : labels) {
    const Field word = label ? TakeWord(rest) : Field{};
    // keys: text Sequence Number, Response Number, Method, Time, Delay
    if (word.here && word.length > 0) AddTextLine(in, word, label);
  }
}

void ShowValue(const Place& in, const SipHeader& header, const Field& field) {
  Field value = field;
  switch (header.form) {
    case SipForm::kAddress: return ShowAddresses(in, value);
    case SipForm::kVia: return ShowVia(in, value);
    case SipForm::kCredentials:
      AddTextLine(in, TakeWord(value), "Scheme");
      return ShowParameters(in, value, ",");
    case SipForm::kParameters: return ShowParameters(in, value, ",");
    case SipForm::kSequence: return ShowNumbers(in, value, "Sequence Number", "Method", nullptr);
    case SipForm::kReliable: return ShowNumbers(in, value, "Response Number", "Sequence Number", "Method");
    case SipForm::kTimestamp: return ShowNumbers(in, value, "Time", "Delay", nullptr);
    case SipForm::kItems: return ShowItems(in, header.label, value, true);
    case SipForm::kValue: return ShowItems(in, header.label, value, false);
    case SipForm::kReason: return ShowReasons(in, header.label, value);
    case SipForm::kWarning: return ShowWarnings(in, value);
    case SipForm::kText: return;
  }
}

}  // namespace

static_assert(AreInOrder(kHeaders));
const SipHeader* FindSipHeader(const Field& name) {
  const uint32_t letter = PeekU8(name) | 0x20;
  for (const SipHeader& row : kHeaders) {
    if (name.length == 1 && row.compact && letter == static_cast<uint8_t>(row.compact)) return &row;
  }
  return FindWord(kHeaders, name);
}

void ShowSipHeader(const Place& in, const SipHeader& header, const HeaderLine& line) {
  if (header.form == SipForm::kText) return;
  AddTextLine(in, line.name, "Header Name");
  ShowValue(in, header, line.value);
}

}  // namespace qxview
