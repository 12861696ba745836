// Printing: IPP's messages (RFC 8010, 8011), which HTTP carries, and jobs that printers are sent with PJL's lines in front.
#include "core/rows.h"
#include "core/times.h"
#include "decoders/common/text_lines.h"

namespace qxview {
namespace {

constexpr auto kOperationNames = SortedNames({
    {0x0002, "Print-Job"}, {0x0003, "Print-URI"}, {0x0004, "Validate-Job"}, {0x0005, "Create-Job"}, {0x0006, "Send-Document"},
    {0x0007, "Send-URI"}, {0x0008, "Cancel-Job"}, {0x0009, "Get-Job-Attributes"}, {0x000A, "Get-Jobs"},
    {0x000B, "Get-Printer-Attributes"}, {0x000C, "Hold-Job"}, {0x000D, "Release-Job"}, {0x000E, "Restart-Job"},
    {0x0010, "Pause-Printer"}, {0x0011, "Resume-Printer"}, {0x0012, "Purge-Jobs"}, {0x0013, "Set-Printer-Attributes"},
    {0x0014, "Set-Job-Attributes"}, {0x0015, "Get-Printer-Supported-Values"}, {0x0016, "Create-Printer-Subscriptions"},
    {0x0017, "Create-Job-Subscriptions"}, {0x0018, "Get-Subscription-Attributes"}, {0x0019, "Get-Subscriptions"},
    {0x001A, "Renew-Subscription"}, {0x001B, "Cancel-Subscription"}, {0x001C, "Get-Notifications"},
    {0x0022, "Enable-Printer"}, {0x0023, "Disable-Printer"}, {0x0024, "Pause-Printer-After-Current-Job"},
    {0x0025, "Hold-New-Jobs"}, {0x0026, "Release-Held-New-Jobs"}, {0x0027, "Deactivate-Printer"},
    {0x0028, "Activate-Printer"}, {0x0029, "Restart-Printer"}, {0x002A, "Shutdown-Printer"}, {0x002B, "Startup-Printer"},
    {0x002C, "Reprocess-Job"}, {0x002D, "Cancel-Current-Job"}, {0x002E, "Suspend-Current-Job"}, {0x002F, "Resume-Job"},
    {0x0030, "Promote-Job"}, {0x0031, "Schedule-Job-After"}, {0x0033, "Cancel-Document"},
    {0x0034, "Get-Document-Attributes"}, {0x0035, "Get-Documents"}, {0x0036, "Delete-Document"},
    {0x0037, "Set-Document-Attributes"}, {0x0038, "Cancel-Jobs"}, {0x0039, "Cancel-My-Jobs"}, {0x003A, "Resubmit-Job"},
    {0x003B, "Close-Job"}, {0x003C, "Identify-Printer"}, {0x003D, "Validate-Document"}, {0x003E, "Add-Document-Images"},
    {0x003F, "Acknowledge-Document"}, {0x0040, "Acknowledge-Identify-Printer"}, {0x0041, "Acknowledge-Job"},
    {0x0042, "Fetch-Document"}, {0x0043, "Fetch-Job"}, {0x0044, "Get-Output-Device-Attributes"},
    {0x0045, "Update-Active-Jobs"}, {0x0046, "Deregister-Output-Device"}, {0x0047, "Update-Document-Status"},
    {0x0048, "Update-Job-Status"}, {0x0049, "Update-Output-Device-Attributes"}, {0x004A, "Get-Next-Document-Data"}});
constexpr auto kStatusNames = SortedNames({
    {0x0000, "successful-ok"}, {0x0001, "successful-ok-ignored-or-substituted-attributes"},
    {0x0002, "successful-ok-conflicting-attributes"}, {0x0003, "successful-ok-ignored-subscriptions"},
    {0x0005, "successful-ok-too-many-events"}, {0x0007, "successful-ok-events-complete"}, {0x0400, "client-error-bad-request"},
    {0x0401, "client-error-forbidden"}, {0x0402, "client-error-not-authenticated"}, {0x0403, "client-error-not-authorized"},
    {0x0404, "client-error-not-possible"}, {0x0405, "client-error-timeout"}, {0x0406, "client-error-not-found"},
    {0x0407, "client-error-gone"}, {0x0408, "client-error-request-entity-too-large"},
    {0x0409, "client-error-request-value-too-long"}, {0x040A, "client-error-document-format-not-supported"},
    {0x040B, "client-error-attributes-or-values-not-supported"}, {0x040C, "client-error-uri-scheme-not-supported"},
    {0x040D, "client-error-charset-not-supported"}, {0x040E, "client-error-conflicting-attributes"},
    {0x040F, "client-error-compression-not-supported"}, {0x0410, "client-error-compression-error"},
    {0x0411, "client-error-document-format-error"}, {0x0412, "client-error-document-access-error"},
    {0x0413, "client-error-attributes-not-settable"}, {0x0414, "client-error-ignored-all-subscriptions"},
    {0x0415, "client-error-too-many-subscriptions"}, {0x0418, "client-error-document-password-error"},
    {0x0419, "client-error-document-permission-error"}, {0x041A, "client-error-document-security-error"},
    {0x041B, "client-error-document-unprintable-error"}, {0x041C, "client-error-account-info-needed"},
    {0x041D, "client-error-account-closed"}, {0x041E, "client-error-account-limit-reached"},
    {0x041F, "client-error-account-authorization-failed"}, {0x0420, "client-error-not-fetchable"},
    {0x0500, "server-error-internal-error"}, {0x0501, "server-error-operation-not-supported"},
    {0x0502, "server-error-service-unavailable"}, {0x0503, "server-error-version-not-supported"},
    {0x0504, "server-error-device-error"}, {0x0505, "server-error-temporary-error"},
    {0x0506, "server-error-not-accepting-jobs"}, {0x0507, "server-error-busy"}, {0x0508, "server-error-job-canceled"},
    {0x0509, "server-error-multiple-document-jobs-not-supported"}, {0x050A, "server-error-printer-is-deactivated"},
    {0x050B, "server-error-too-many-jobs"}, {0x050C, "server-error-too-many-documents"}});
constexpr auto kGroupNames = SortedNames({
    {1, "Operation Attributes"}, {2, "Job Attributes"}, {3, "End of Attributes"}, {4, "Printer Attributes"},
    {5, "Unsupported Attributes"}, {6, "Subscription Attributes"}, {7, "Event Notification Attributes"},
    {8, "Resource Attributes"}, {9, "Document Attributes"}, {10, "System Attributes"}});
constexpr auto kTagNames = SortedNames({
    {0x10, "unsupported"}, {0x12, "unknown"}, {0x13, "no-value"}, {0x15, "not-settable"}, {0x16, "delete-attribute"},
    {0x17, "admin-define"}, {0x21, "integer"}, {0x22, "boolean"}, {0x23, "enum"}, {0x30, "octetString"}, {0x31, "dateTime"},
    {0x32, "resolution"}, {0x33, "rangeOfInteger"}, {0x34, "begCollection"}, {0x35, "textWithLanguage"},
    {0x36, "nameWithLanguage"}, {0x37, "endCollection"}, {0x41, "textWithoutLanguage"}, {0x42, "nameWithoutLanguage"},
    {0x44, "keyword"}, {0x45, "uri"}, {0x46, "uriScheme"}, {0x47, "charset"}, {0x48, "naturalLanguage"},
    {0x49, "mimeMediaType"}, {0x4A, "memberAttrName"}});
constexpr auto kUnitNames = SortedNames({{3, "dots per inch"}, {4, "dots per centimeter"}});

struct Ipp { Field major, code; };
constexpr auto kVersion = Rows<Ipp>({Number(1, "Major Version").Into(&Ipp::major), Number(1, "Minor Version")});
constexpr auto kRequest = Rows<Ipp>({Hex(2, "Operation", kOperationNames), Number(4, "Request ID")});
constexpr auto kResponse = Rows<Ipp>({Hex(2, "Status Code", kStatusNames), Number(4, "Request ID")});
constexpr auto kInteger = Rows<Ipp>({Signed(4, "Value")});
constexpr auto kBoolean = Rows<Ipp>({Number(1, "Value", kFalseTrueNames)});
constexpr auto kResolution = Rows<Ipp>({
    Number(4, "Cross Feed Resolution"), Number(4, "Feed Resolution"), Number(1, "Units", kUnitNames)});
constexpr auto kRange = Rows<Ipp>({Signed(4, "Lower Bound"), Signed(4, "Upper Bound")});
constexpr auto kDate = Rows<Ipp>({
    Number(2, "Year"), Number(1, "Month"), Number(1, "Day"), Number(1, "Hour"), Number(1, "Minute"), Number(1, "Second"),
    Number(1, "Tenths"), Text(1, "Direction from UTC"), Number(1, "Hours from UTC"), Number(1, "Minutes from UTC")});
constexpr auto kWithLanguage = Rows<Ipp>({Counted(2, Text(0, "Language")), Counted(2, Utf8(0, "Text"))});

bool IsText(uint32_t tag) { return tag >= 0x40 && tag < 0x60; }

void ShowValue(const Place& in, Cursor& value, uint32_t tag, Ipp& ipp) {
  switch (tag) {
    case 0x21: case 0x23: ShowRows<Ipp>(in, value, kInteger, ipp); break;
    case 0x22: ShowRows<Ipp>(in, value, kBoolean, ipp); break;
    case 0x31: ShowRows<Ipp>(in, value, kDate, ipp); break;
    case 0x32: ShowRows<Ipp>(in, value, kResolution, ipp); break;
    case 0x33: ShowRows<Ipp>(in, value, kRange, ipp); break;
    case 0x35: case 0x36: ShowRows<Ipp>(in, value, kWithLanguage, ipp); break;
    default:
      if (IsText(tag) || IsReadable(value)) AddTextLine(in, Rest(value), "Value");
  }
  value.ranShort = false;
  AddBlock(in, Rest(value), "Value Data");
}

// Tag, name and value; a name of no length goes on with the attribute before.
void ShowAttribute(const Place& at, Cursor& c, Ipp& ipp) {
  const Cursor before = c;
  const Field tag = TakeU8(c), nameLength = TakeU16(c);
  Cursor nameBytes = TakeCursor(c, nameLength.value);
  const Field name = Ahead(nameBytes, Left(nameBytes)), valueLength = TakeU16(c);
  Cursor value = TakeCursor(c, valueLength.value);
  const Field shown = Ahead(value, IsText(tag.value) ? Left(value) : 0);
  const Field whole = Ahead(before, c.offset - before.offset);
  const Place in = Under(at, name.length > 0 ? AddLine(at, whole, "Attribute: %s %s", Text(name), Text(shown))
                                             : AddLine(at, whole, "Further Value: %s", Text(shown)));
  AddLine(in, tag, "Value Tag: 0x%02X = %s", tag.value, LookupName(kTagNames, tag.value));
  AddLine(in, nameLength, "Name Length: %u", nameLength.value);
  if (name.length > 0) AddTextLine(in, name, "Name");
  AddLine(in, valueLength, "Value Length: %u", valueLength.value);
  ShowValue(in, value, tag.value, ipp);
}

}  // namespace

// The body of an HTTP message of type application/ipp.
int32_t DecodeIpp(const Place& at, Cursor c) {
  constexpr int32_t kLeast = 9;
  const uint32_t major = PeekU8(c), code = PeekU16(c, 2);
  if (Left(c) < kLeast || major > 2) return 0;
  // Operations and codes of success share their numbers: the side that is asked tells.
  const bool isResponse = code == 0 || code >= 0x0400 || PacketOf(at).matchedSource;
  const char* name = isResponse ? LookupName(kStatusNames, code) : LookupName(kOperationNames, code);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "IPP: %s", name));
  Ipp ipp = ShowRows(in, c, kVersion);
  if (isResponse) ShowRows<Ipp>(in, c, kResponse, ipp);
  else ShowRows<Ipp>(in, c, kRequest, ipp);
  Place group = in;
  bool isEnded = false;
  Loop loop;
  while (!isEnded && MoreAt(in, c, loop)) {
    const uint32_t tag = PeekU8(c);
    if (tag >= 0x10) {
      ShowAttribute(group, c, ipp);
      continue;
    }
    const Field delimiter = TakeU8(c);
    group = Under(in, AddLine(in, delimiter, "Group: %u = %s", tag, LookupName(kGroupNames, tag)));
    isEnded = tag == 3;
  }
  AddBlock(in, Rest(c), "Document");
  return 1;
}

// A job: what leaves the printer's language, lines of PJL, and the language that they enter.
int32_t DecodePjl(const Place& at, Cursor c) {
  constexpr char kExit[] = "\x1B%-12345X";
  if (!PeekIs(c, 0, kExit) && !PeekIs(c, 0, "@PJL")) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "PJL"));
  Loop loop;
  while (MoreAt(in, c, loop)) {
    TextLine line;
    if (PeekIs(c, 0, kExit)) {
      AddLine(in, TakeBytes(c, sizeof kExit - 1), "Universal Exit");
    } else if (PeekIs(c, 0, "@PJL") && TakeLine(c, line)) {
      Field rest = line.text;
      const Place under = Under(in, AddTextLine(in, line.whole, "Command", line.text));
      TakeWord(rest);
      AddTextLine(under, TakeWord(rest), "Verb");
      if (Trimmed(rest).length > 0) AddTextLine(under, Trimmed(rest), "Parameter");
    } else {
      const int32_t exit = FindU8(c, 0x1B, 1);
      Cursor data = TakeCursor(c, exit < 0 ? Left(c) : exit);
      if (IsReadable(data)) ShowLinesOfText(in, data, "Text");
      AddBlock(in, Rest(data), "Data");
    }
  }
  return 1;
}

}  // namespace qxview
