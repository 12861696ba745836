// Vocabularies of XML: SOAP 1.1 and 1.2 (W3C) with WS-Addressing, XML-RPC, NETCONF (RFC 6241), SyncML (OMA), CWMP (TR-069), UPnP
// Device Architecture 2.0, WebDAV (RFC 4918, 3253, 3744, 4791, 6352). And of JSON: JSON-RPC 2.0.
#include "decoders/app/web_vocabulary.h"

#include <cstring>

#include "core/rows.h"
#include "decoders/common/header_lines.h"
#include "decoders/common/json_lines.h"
#include "decoders/common/xml_lines.h"

namespace qxview {
namespace {

enum class Kind : uint8_t { kSoap, kRpc, kNetconf, kSyncMl, kDav, kDevice, kService, kEvent, kPlain };

struct Vocabulary {
  const char* root;         // null for any
  const char* nameSpace;    // what it starts with; null for any
  Kind kind;
  const char* name;
};
constexpr Vocabulary kVocabularies[] = {
    {"Envelope", "http://schemas.xmlsoap.org/soap/envelope/", Kind::kSoap, "SOAP 1.1"},
    {"Envelope", "http://www.w3.org/2003/05/soap-envelope", Kind::kSoap, "SOAP 1.2"},
    {"methodCall", nullptr, Kind::kRpc, "XML-RPC"}, {"methodResponse", nullptr, Kind::kRpc, "XML-RPC"},
    {nullptr, "urn:ietf:params:xml:ns:netconf:", Kind::kNetconf, "NETCONF"},
    {"SyncML", nullptr, Kind::kSyncMl, "SyncML"},
    {nullptr, "DAV:", Kind::kDav, "WebDAV"}, {nullptr, "urn:ietf:params:xml:ns:caldav", Kind::kDav, "CalDAV"},
    {nullptr, "urn:ietf:params:xml:ns:carddav", Kind::kDav, "CardDAV"},
    {"root", "urn:schemas-upnp-org:device-1-", Kind::kDevice, "UPnP Device Description"},
    {"scpd", "urn:schemas-upnp-org:service-1-", Kind::kService, "UPnP Service Description"},
    {"propertyset", "urn:schemas-upnp-org:event-1-", Kind::kEvent, "UPnP Event"},
    {nullptr, "http://www.w3.org/2005/Atom", Kind::kPlain, "Atom"}, {"rss", nullptr, Kind::kPlain, "RSS"},
    {nullptr, "http://www.w3.org/1999/xhtml", Kind::kPlain, "XHTML"},
    {nullptr, "http://www.w3.org/2000/svg", Kind::kPlain, "SVG"},
    {"definitions", "http://schemas.xmlsoap.org/wsdl/", Kind::kPlain, "WSDL 1.1"},
    {nullptr, "urn:oasis:names:tc:SAML:", Kind::kPlain, "SAML"},
    {nullptr, "urn:ietf:params:xml:ns:pidf", Kind::kPlain, "PIDF"},
    {"plist", nullptr, Kind::kPlain, "Property List"},
    {nullptr, "http://www.sitemaps.org/schemas/", Kind::kPlain, "Sitemap"},
    {nullptr, "urn:mpeg:dash:schema:mpd:", Kind::kPlain, "DASH Media Presentation Description"},
    {"cross-domain-policy", nullptr, Kind::kPlain, "Cross Domain Policy"}};

// UPnP Device Architecture 2.0 3.1.3, and services' own.
constexpr auto kUpnpErrors = SortedNames({
    {401, "Invalid Action"}, {402, "Invalid Args"}, {403, "Out of Sync"}, {501, "Action Failed"},
    {600, "Argument Value Invalid"}, {601, "Argument Value Out of Range"}, {602, "Optional Action Not Implemented"},
    {603, "Out of Memory"}, {604, "Human Intervention Required"}, {605, "String Argument Too Long"},
    {606, "Action Not Authorized"}, {607, "Signature Failure"}, {608, "Signature Missing"}, {609, "Not Encrypted"},
    {610, "Invalid Sequence"}, {611, "Invalid Control URL"}, {612, "No Such Session"},
    {714, "No Such Entry in Array"}, {715, "Wild Card Not Permitted in Source IP"},
    {716, "Wild Card Not Permitted in External Port"}, {718, "Conflict in Mapping Entry"},
    {724, "Same Port Values Required"}, {725, "Only Permanent Leases Supported"},
    {726, "Remote Host Only Supports Wild Card"}, {727, "External Port Only Supports Wild Card"}});
// TR-069 annex A.5.1.
constexpr auto kCwmpFaults = SortedNames({
    {8000, "Method not supported"}, {8001, "Request denied"}, {8002, "Internal error"}, {8003, "Invalid arguments"},
    {8004, "Resources exceeded"}, {8005, "Retry request"}, {8006, "ACS version incompatible with CPE"},
    {9000, "Method not supported"}, {9001, "Request denied"}, {9002, "Internal error"}, {9003, "Invalid arguments"},
    {9004, "Resources exceeded"}, {9005, "Invalid parameter name"}, {9006, "Invalid parameter type"},
    {9007, "Invalid parameter value"}, {9008, "Attempt to set a non-writable parameter"},
    {9009, "Notification request rejected"}, {9010, "File transfer failure"}, {9011, "Upload failure"},
    {9012, "File transfer server authentication failure"}, {9013, "Unsupported protocol for file transfer"},
    {9014, "File transfer failure: unable to join multicast group"},
    {9015, "File transfer failure: unable to contact file server"},
    {9016, "File transfer failure: unable to access file"},
    {9017, "File transfer failure: unable to complete download"}, {9018, "File transfer failure: file corrupted"},
    {9019, "File transfer failure: file authentication failure"},
    {9020, "File transfer failure: unable to complete download within specified time windows"},
    {9021, "Cancelation of file transfer not permitted in current transfer state"}, {9022, "Invalid UUID Format"},
    {9023, "Unknown Execution Environment"}, {9024, "Disabled Execution Environment"},
    {9025, "Execution Environment to Deployment Unit Mismatch"}, {9026, "Duplicate Deployment Unit"},
    {9027, "System Resources Exceeded"}, {9028, "Unknown Deployment Unit"}, {9029, "Invalid Deployment Unit State"},
    {9030, "Invalid Deployment Unit Update: downgrade not permitted"},
    {9031, "Invalid Deployment Unit Update: version not specified"},
    {9032, "Invalid Deployment Unit Update: version already exists"}});
// SyncML Representation Protocol 1.2, 10.
constexpr auto kSyncMlStatus = SortedNames({
    {101, "In progress"}, {200, "OK"}, {201, "Item added"}, {202, "Accepted for processing"},
    {203, "Non-authoritative response"},
    {204, "No content"}, {205, "Reset content"}, {206, "Partial content"}, {207, "Conflict resolved with merge"},
    {208, "Conflict resolved with client's command winning"}, {209, "Conflict resolved with duplicate"},
    {210, "Delete without archive"},
    {211, "Item not deleted"}, {212, "Authentication accepted"}, {213, "Chunked item accepted and buffered"},
    {214, "Operation cancelled"}, {215, "Not executed"}, {216, "Atomic roll back OK"}, {300, "Multiple choices"},
    {301, "Moved permanently"}, {302, "Found"}, {303, "See other"}, {304, "Not modified"}, {305, "Use proxy"},
    {400, "Bad request"},
    {401, "Invalid credentials"}, {402, "Paid need"}, {403, "Forbidden"}, {404, "Not found"},
    {405, "Command not allowed"},
    {406, "Optional feature not supported"}, {407, "Missing credentials"}, {408, "Request timeout"}, {409, "Conflict"},
    {410, "Gone"},
    {411, "Size required"}, {412, "Incomplete command"}, {413, "Request entity too large"}, {414, "URI too long"},
    {415, "Unsupported media type or format"}, {416, "Requested size too big"}, {417, "Retry later"},
    {418, "Already exists"},
    {419, "Conflict resolved with server data"}, {420, "Device full"}, {421, "Unknown search grammar"},
    {422, "Bad CGI Script"},
    {423, "Soft-delete conflict"}, {424, "Size mismatch"}, {425, "Permission Denied"},
    {426, "Partial item not accepted"},
    {427, "Item Not empty"}, {428, "Move Failed"}, {500, "Command failed"}, {501, "Command not implemented"},
    {502, "Bad gateway"},
    {503, "Service unavailable"}, {504, "Gateway timeout"}, {505, "DTD Version not supported"},
    {506, "Processing error"},
    {507, "Atomic failed"}, {508, "Refresh required"}, {509, "Reserved for future use"}, {510, "Data store failure"},
    {511, "Server failure"}, {512, "Synchronization failed"}, {513, "Protocol Version not supported"},
    {514, "Operation cancelled"},
    {516, "Atomic roll back failed"}, {517, "Atomic response too large to fit"}});
// JSON-RPC 2.0, 5.1: numbers below zero.
constexpr auto kJsonRpcErrors = SortedNames({
    {32600, "Invalid Request"}, {32601, "Method not found"}, {32602, "Invalid params"}, {32603, "Internal error"},
    {32700, "Parse error"}});

// What stands at a path of local names tells the label; "*" is any name, which is what the line says then.
struct Piece {
  Kind kind;
  const char* path;
  const char* label;
  Names names{};
};
constexpr Piece kPieces[] = {
    {Kind::kSoap, "Envelope/Header/*", "Header Block"}, {Kind::kSoap, "Envelope/Header/Action", "Action"},
    {Kind::kSoap, "Envelope/Header/To", "To"}, {Kind::kSoap, "Envelope/Header/MessageID", "Message ID"},
    {Kind::kSoap, "Envelope/Header/RelatesTo", "Relates To"}, {Kind::kSoap, "Envelope/Body/*", "Operation"},
    {Kind::kSoap, "Envelope/Body/Fault/faultcode", "Fault Code"},
    {Kind::kSoap, "Envelope/Body/Fault/faultstring", "Fault Reason"},
    {Kind::kSoap, "Envelope/Body/Fault/faultactor", "Fault Actor"},
    {Kind::kSoap, "Envelope/Body/Fault/Code/Value", "Fault Code"},
    {Kind::kSoap, "Envelope/Body/Fault/Code/Subcode/Value", "Fault Subcode"},
    {Kind::kSoap, "Envelope/Body/Fault/Reason/Text", "Fault Reason"},
    {Kind::kSoap, "Envelope/Body/Fault/detail/UPnPError/errorCode", "UPnP Error", kUpnpErrors},
    {Kind::kSoap, "Envelope/Body/Fault/detail/UPnPError/errorDescription", "UPnP Error Description"},
    {Kind::kSoap, "Envelope/Body/Fault/detail/Fault/FaultCode", "CWMP Fault", kCwmpFaults},
    {Kind::kSoap, "Envelope/Body/Fault/detail/Fault/FaultString", "CWMP Fault Description"},
    {Kind::kRpc, "methodCall/methodName", "Method"}, {Kind::kRpc, "methodCall/params/param/value/*", "Parameter Type"},
    {Kind::kRpc, "methodResponse/params/param/value/*", "Result Type"},
    {Kind::kRpc, "methodResponse/fault/value/struct/member/name", "Fault Member"},
    {Kind::kRpc, "methodResponse/fault/value/struct/member/value/int", "Fault Code"},
    {Kind::kRpc, "methodResponse/fault/value/struct/member/value/string", "Fault Reason"},
    {Kind::kNetconf, "hello/capabilities/capability", "Capability"}, {Kind::kNetconf, "hello/session-id", "Session ID"},
    {Kind::kNetconf, "rpc/*", "Operation"}, {Kind::kNetconf, "rpc/*/source/*", "Source"},
    {Kind::kNetconf, "rpc/*/target/*", "Target"},
    {Kind::kNetconf, "rpc-reply/*", "Reply"}, {Kind::kNetconf, "rpc-reply/rpc-error/error-type", "Error Type"},
    {Kind::kNetconf, "rpc-reply/rpc-error/error-tag", "Error Tag"},
    {Kind::kNetconf, "rpc-reply/rpc-error/error-severity", "Error Severity"},
    {Kind::kNetconf, "rpc-reply/rpc-error/error-path", "Error Path"},
    {Kind::kNetconf, "rpc-reply/rpc-error/error-message", "Error Message"},
    {Kind::kNetconf, "notification/eventTime", "Event Time"}, {Kind::kNetconf, "notification/*", "Notification"},
    {Kind::kSyncMl, "SyncML/SyncHdr/VerDTD", "Version of the DTD"},
    {Kind::kSyncMl, "SyncML/SyncHdr/VerProto", "Protocol Version"},
    {Kind::kSyncMl, "SyncML/SyncHdr/SessionID", "Session ID"}, {Kind::kSyncMl, "SyncML/SyncHdr/MsgID", "Message ID"},
    {Kind::kSyncMl, "SyncML/SyncHdr/Target/LocURI", "Target"},
    {Kind::kSyncMl, "SyncML/SyncHdr/Source/LocURI", "Source"},
    {Kind::kSyncMl, "SyncML/SyncBody/*", "Command"}, {Kind::kSyncMl, "SyncML/SyncBody/Status/Cmd", "Status of Command"},
    {Kind::kSyncMl, "SyncML/SyncBody/Status/Data", "Status", kSyncMlStatus},
    {Kind::kSyncMl, "SyncML/SyncBody/Alert/Data", "Alert Code"},
    {Kind::kDav, "propfind/*", "Requested"}, {Kind::kDav, "propfind/prop/*", "Property"},
    {Kind::kDav, "propertyupdate/*", "Update"}, {Kind::kDav, "propertyupdate/*/prop/*", "Property"},
    {Kind::kDav, "lockinfo/lockscope/*", "Lock Scope"}, {Kind::kDav, "lockinfo/locktype/*", "Lock Type"},
    {Kind::kDav, "prop/lockdiscovery/activelock/locktoken/href", "Lock Token"},
    {Kind::kDav, "multistatus/response/href", "Resource"}, {Kind::kDav, "multistatus/response/status", "Status"},
    {Kind::kDav, "multistatus/response/propstat/prop/*", "Property"},
    {Kind::kDav, "multistatus/response/propstat/status", "Status"},
    {Kind::kDav, "multistatus/sync-token", "Sync Token"},
    {Kind::kDav, "error/*", "Precondition"}, {Kind::kDav, "sync-collection/sync-token", "Sync Token"},
    {Kind::kDav, "calendar-query/prop/*", "Property"}, {Kind::kDav, "addressbook-query/prop/*", "Property"},
    {Kind::kDevice, "root/device/deviceType", "Device Type"},
    {Kind::kDevice, "root/device/friendlyName", "Friendly Name"},
    {Kind::kDevice, "root/device/manufacturer", "Manufacturer"}, {Kind::kDevice, "root/device/modelName", "Model Name"},
    {Kind::kDevice, "root/device/modelNumber", "Model Number"},
    {Kind::kDevice, "root/device/serialNumber", "Serial Number"},
    {Kind::kDevice, "root/device/UDN", "Unique Device Name"},
    {Kind::kDevice, "root/device/serviceList/service/serviceType", "Service Type"},
    {Kind::kDevice, "root/device/serviceList/service/controlURL", "Control URL"},
    {Kind::kService, "scpd/actionList/action/name", "Action"},
    {Kind::kService, "scpd/serviceStateTable/stateVariable/name", "State Variable"},
    {Kind::kEvent, "propertyset/property/*", "Variable"}};

constexpr int32_t kMostPath = 8;   // names of the longest path and more

Field LocalName(const Field& name) {
  const int32_t colon = FindU8(CursorOver(name), ':');
  return Slice(name, colon + 1, name.length - colon - 1);
}

// "xmlns:s" for "s".
bool BindsPrefix(const Field& name, const Field& prefix) {
  constexpr int32_t kBehind = 6;
  if (!StartsWithWord(name, "xmlns:") || name.length != kBehind + prefix.length) return false;
  const Field bound = Slice(name, kBehind, prefix.length);
  return std::memcmp(bound.bytes, prefix.bytes, static_cast<size_t>(prefix.length)) == 0;
}

// The value of the attribute that binds the prefix of a name, of the tag itself.
Field NameSpaceOf(const XmlTag& tag) {
  const int32_t colon = FindU8(CursorOver(tag.name), ':');
  const Field prefix = Slice(tag.name, 0, colon < 0 ? 0 : colon);
  Cursor c = CursorOver(tag.attributes);
  Field name, value;
  Loop loop;
  while (More(c, loop) && TakeXmlAttribute(c, name, value)) {
    if (prefix.length == 0 ? IsWord(name, "xmlns") : BindsPrefix(name, prefix)) return value;
  }
  return {};
}

const Vocabulary* FindVocabulary(const Field& root, const Field& nameSpace) {
  for (const Vocabulary& row : kVocabularies) {
    if (row.root && !IsWord(root, row.root)) continue;
    if (!row.nameSpace || (nameSpace.here && StartsWithWord(nameSpace, row.nameSpace))) return &row;
  }
  return nullptr;
}

// Whether the names of a path are these; `isAny` when the last one is any.
bool Matches(const char* path, const Field* names, int32_t count, bool* isAny) {
  for (int32_t i = 0; i < count; ++i) {
    const char* end = path;
    while (*end && *end != '/') ++end;
    const int32_t length = static_cast<int32_t>(end - path);
    *isAny = length == 1 && *path == '*';
    if (!*isAny && (names[i].length != length || std::memcmp(names[i].bytes, path, static_cast<size_t>(length)) != 0)) return false;
    if ((*end == 0) != (i == count - 1)) return false;
    path = *end ? end + 1 : end;
  }
  return count > 0;
}

// The row of a path; one that names the last piece goes before one that takes any.
const Piece* FindPiece(Kind kind, const Field* names, int32_t count, bool* isAny) {
  const Piece* any = nullptr;
  for (const Piece& row : kPieces) {
    if (row.kind != kind || !Matches(row.path, names, count, isAny)) continue;
    if (!*isAny) return &row;
    if (!any) any = &row;
  }
  *isAny = any != nullptr;
  return any;
}

void ShowPiece(const Place& under, const Piece& piece, const XmlTag& tag, bool isAny) {
  const Field text = isAny ? LocalName(tag.name) : tag.text;
  if (!text.here || text.length < 1) return;
  const int32_t code = piece.names.Here() ? DecimalOf(text) : -1;
  LineHandle line;
  if (code >= 0) {
    line = AddLine(under, text, "%s: %d = %s", piece.label, code, piece.names.NameOf(static_cast<uint32_t>(code)));
  } else {
    line = AddTextLine(under, text, piece.label);
  }
  const Field nameSpace = isAny ? NameSpaceOf(tag) : Field{};
  if (nameSpace.length > 0) AddTextLine(Under(under, line), nameSpace, "Name Space");
}

}  // namespace

void ShowXmlVocabulary(const Place& in, Cursor c) {
  XmlTag tag;
  if (!TakeXmlTag(c, tag) || tag.isEnd) return;
  Field path[kMostPath];
  path[0] = LocalName(tag.name);
  const Vocabulary* known = FindVocabulary(path[0], NameSpaceOf(tag));
  if (!known) return;
  const Place under = Under(in, AddLine(in, tag.whole, "Vocabulary: %s", known->name));
  if (known->kind == Kind::kPlain) return;
  AddTextLine(under, path[0], "Document Element");
  Loop loop;
  for (int32_t depth = tag.isEmpty ? 0 : 1; depth > 0 && MoreAt(under, c, loop) && TakeXmlTag(c, tag);) {
    if (tag.isEnd) {
      --depth;
      continue;
    }
    bool isAny = false;
    if (depth < kMostPath) {
      path[depth] = LocalName(tag.name);
      if (const Piece* piece = FindPiece(known->kind, path, depth + 1, &isAny)) ShowPiece(under, *piece, tag, isAny);
    }
    if (!tag.isEmpty) ++depth;
  }
}

namespace {

struct JsonPieces {
  Field version, method, params, id, result, error;
};

JsonPieces PiecesOf(Cursor c) {
  JsonPieces found{};
  const struct {
    const char* name;
    Field* value;
  } kWanted[] = {{"\"jsonrpc\"", &found.version}, {"\"method\"", &found.method}, {"\"params\"", &found.params},
                 {"\"id\"", &found.id},           {"\"result\"", &found.result}, {"\"error\"", &found.error}};
  JsonMember member;
  Loop loop;
  while (More(c, loop) && TakeJsonMember(c, member)) {
    for (const auto& wanted : kWanted) {
      if (StartsWithText(CursorOver(member.name), wanted.name) && !wanted.value->here) *wanted.value = member.value;
    }
  }
  return found;
}

Field Unquoted(const Field& text) {
  return text.length > 1 && PeekU8(text) == '"' ? Slice(text, 1, text.length - 2) : text;
}

void ShowJsonRpcError(const Place& in, const Field& error) {
  if (PeekU8(error) != '{') return;
  const Place under = Under(in, AddLine(in, error, "Error"));
  Cursor c = CursorOver(error);
  JsonMember member;
  Loop loop;
  while (MoreAt(under, c, loop) && TakeJsonMember(c, member)) {
    if (IsWord(member.name, "\"message\"")) AddTextLine(under, Unquoted(member.value), "Error Message");
    if (!IsWord(member.name, "\"code\"")) continue;
    const bool isNegative = PeekU8(member.value) == '-';
    const int32_t code = DecimalOf(Slice(member.value, isNegative, member.value.length - isNegative));
    const bool isServers = isNegative && code >= 32000 && code <= 32099;
    const char* name = isServers ? "Server error" : isNegative && code >= 0 ? LookupName(kJsonRpcErrors, static_cast<uint32_t>(code))
                                                                            : kUnknown;
    if (code >= 0) AddLine(under, member.value, "Error Code: %d = %s", isNegative ? -code : code, name);
  }
}

void ShowJsonRpc(const Place& in, const Field& whole) {
  const JsonPieces found = PiecesOf(CursorOver(whole));
  const bool isCall = found.method.here && found.params.here, isAnswer = found.id.here && (found.result.here || found.error.here);
  if (!found.version.here && !(found.id.here && (isCall || isAnswer))) return;
  if (!found.method.here && !isAnswer) return;
  const char* version = found.version.here ? "JSON-RPC 2.0" : "JSON-RPC 1.0";
  const Place under = Under(in, AddLine(in, whole, "Vocabulary: %s", version));
  const auto show = [&under](const char* label, const Field& value) {
    if (value.here) AddTextLine(under, Unquoted(value), label);   // keys: text JSON-RPC Version, Method, Params, ID, Result
  };
  show("JSON-RPC Version", found.version);
  show("Method", found.method);
  show("Params", found.params);
  show("ID", found.id);
  if (!IsWord(found.result, "null") || !found.error.here) show("Result", found.result);
  if (found.error.here) ShowJsonRpcError(under, found.error);
}

}  // namespace

// A batch is an array of calls.
void ShowJsonVocabulary(const Place& in, Cursor c) {
  SkipSpace(c);
  c = TakeCursor(c, Left(c));
  if (PeekU8(c) == '{') return ShowJsonRpc(in, Rest(c));
  if (PeekU8(c) != '[') return;
  JsonMember item;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeJsonMember(c, item)) {
    if (PeekU8(item.value) == '{') ShowJsonRpc(in, item.value);
  }
}

}  // namespace qxview
