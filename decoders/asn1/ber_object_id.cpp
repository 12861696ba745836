// Object identifiers, with what the host's MIB knows of them.
#include "decoders/asn1/ber_element.h"
#include "decoders/common/object_id.h"

namespace qxview {
namespace {

constexpr char kInternet[] = "iso.org.dod.internet.";

// Writes the arcs with dots between them; false when they do not all fit. The first two are of the first octet alone,
// and an arc that is cut is shown as far as it goes: identifiers have always been shown, and looked up, like this.
bool FormatArcs(Cursor c, char* out, int32_t size) {
  constexpr int32_t kLongestArc = 12;
  const uint32_t first = TakeU8(c).value;
  int32_t used = FormatInto(out, size, "%u.%u", first / 40, first % 40);
  while (Left(c) > 0) {
    uint32_t arc;
    TakeObjectIdNumber(c, &arc);
    if (used + kLongestArc > size) return false;
    used += FormatInto(out + used, size - used, ".%u", arc);
  }
  return true;
}

bool FindEntry(const Place& at, const char* dotted, QxMibEntry& entry) {
  const QxHost* host = at.view->engine->host;
  const auto findMibEntry = QXVIEW_HOST_FUNCTION(host, findMibEntry);
  if (!findMibEntry) return false;
  entry = QxMibEntry{};
  entry.size = sizeof entry;
  if (!findMibEntry(host->user, dotted, &entry)) return false;
  entry.path[sizeof entry.path - 1] = entry.nodeNumber[sizeof entry.nodeNumber - 1] = 0;
  entry.suffix[sizeof entry.suffix - 1] = entry.type[sizeof entry.type - 1] = 0;
  entry.access[sizeof entry.access - 1] = 0;
  return true;
}

void AddEntry(const Place& at, const AsnElement& element, const QxMibEntry& entry, AsnObjectNames& names) {
  constexpr size_t kPrefix = sizeof kInternet - 1;
  const char* path = strncmp(entry.path, kInternet, kPrefix) == 0 ? entry.path + kPrefix : entry.path;
  const char* suffix = entry.suffix;
  if (suffix[0]) {
    FormatInto(names.name, sizeof names.name, "%s.%s", path, suffix);
  } else {
    CopyString(names.name, sizeof names.name, path);
  }
  const char* name = names.name;
  const char* type = entry.type;
  const char* access = entry.access;
  const Field& contents = element.contents;
  const LineHandle value = AddLine(at, contents, "ASN Value : %s, %s, %s (%s)", name, type, access,
                                   static_cast<const char*>(names.dotted));
  const Place in = Beneath(at, value);
  AddLine(in, contents, "Object ID: %s.%s", static_cast<const char*>(entry.nodeNumber), suffix);
  AddLine(in, contents, "Object Name: %s", name);
  AddLine(in, contents, "Type: %s", type);
  AddLine(in, contents, "Access: %s", access);
}

}  // namespace

int32_t DecodeAsnObjectId(const Place& at, Cursor& c, AsnObjectNames& names, AsnResult& out) {
  names.dotted[0] = names.name[0] = 0;
  const int32_t met = MeetIdentifier(c, kAsnObjectId);
  if (met != kAsnDecoded) return met;
  const AsnElement element = OpenElement(at, c, "OBJECT IDENTIFIER", out);
  if (!element.contents.here) {
    if (element.status == kAsnDecoded) CopyString(names.dotted, sizeof names.dotted, "<NULL>");
    return element.status;
  }
  const bool isWhole = FormatArcs(CursorOver(element.contents), names.dotted, sizeof names.dotted);
  QxMibEntry entry;
  if (isWhole && FindEntry(at, names.dotted, entry)) {
    AddEntry(at, element, entry, names);
    CopyString(out.text, out.textSize, names.name);
    return kAsnDecoded;
  }
  CopyString(out.text, out.textSize, names.dotted);
  AddLine(at, element.contents, "ASN Value : %s", static_cast<const char*>(names.dotted));
  return Left(c) > 0 ? kAsnUnnamed : kAsnDecoded;
}

}  // namespace qxview
