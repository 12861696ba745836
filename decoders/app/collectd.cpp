// The binary protocol of collectd (collectd.org: Binary protocol): values that hosts measure. A datagram is a list of
// parts; what a part says holds for the values behind it until another part of its type says otherwise.
//
//   type (2)   length of the whole part (2)   what the type says
#include "core/elements.h"
#include "core/times.h"

namespace qxview {
namespace {

constexpr auto kSeverityNames = SortedNames({{1, "Failure"}, {2, "Warning"}, {4, "Okay"}});
constexpr auto kValueNames = SortedNames({{0, "Counter"}, {1, "Gauge"}, {2, "Derive"}, {3, "Absolute"}});
constexpr uint32_t kGauge = 1, kDerive = 2;

struct Collectd {
  Field name, count;
  uint64_t values;
};

void AddHighResolution(const Place& in, Cursor& c, const char* label, bool isTime) {
  const WideField ticks = TakeU64(c);   // of 2^-30 seconds
  const uint32_t nanoseconds = static_cast<uint32_t>((ticks.wide & 0x3FFFFFFF) * 1000000000 >> 30);
  const int64_t seconds = static_cast<int64_t>(ticks.wide >> 30);
  // keys: time Time (High Resolution)
  // keys: text Interval (High Resolution)
  if (isTime) {
    AddLine(in, ticks, "%s: %s", label, UtcText(seconds, nanoseconds, 9));
  } else {
    AddLine(in, ticks, "%s: %u.%09u seconds", label, static_cast<uint32_t>(seconds), nanoseconds);
  }
}

void ShowTime(const Place& in, Cursor& c, const char* label, Collectd&) { AddHighResolution(in, c, label, true); }
void ShowInterval(const Place& in, Cursor& c, const char* label, Collectd&) { AddHighResolution(in, c, label, false); }

// First the types of all values, then the values. Gauges alone have their low byte first.
void ShowValues(const Place& in, Cursor& c, const char*, Collectd& collectd) {
  constexpr auto kNumber = Rows<Collectd>({Number(8, nullptr)});
  constexpr auto kSigned = Rows<Collectd>({Signed(8, nullptr)});
  constexpr auto kFloat = Rows<Collectd>({Float(8, nullptr).Little()});
  // keys: number Absolute, Counter, Derive
  // keys: text Gauge
  const Field count = TakeU16(c);
  AddLine(in, count, "Values: %u", count.value);
  Cursor types = TakeCursor(c, count.value);
  Loop loop;
  while (MoreAt(in, types, loop)) {
    const Field type = TakeU8(types);
    const char* name = LookupName(kValueNames, type.value);
    AddLine(in, type, "Value Type: %u = %s", type.value, name);
    if (Left(c) < 8) continue;
    ++collectd.values;
    ShowRows<Collectd>(in, c, type.value == kGauge    ? RowSpan<Collectd>(kFloat)
                              : type.value == kDerive ? RowSpan<Collectd>(kSigned)
                                                      : RowSpan<Collectd>(kNumber), collectd, name);
  }
}

constexpr auto kText = Rows<Collectd>({Terminated(Utf8(0, nullptr)).Note(", %s")});
constexpr auto kSeconds = Rows<Collectd>({UnixTime(8, nullptr)});
constexpr auto kSpan = Rows<Collectd>({Number(8, nullptr, " seconds")});
constexpr auto kSeverity = Rows<Collectd>({Number(8, nullptr, kSeverityNames).Note(", %s")});
constexpr auto kTime = Rows<Collectd>({Shown<Collectd>(nullptr, ShowTime)});
constexpr auto kInterval = Rows<Collectd>({Shown<Collectd>(nullptr, ShowInterval)});
constexpr auto kValues = Rows<Collectd>({Shown<Collectd>(nullptr, ShowValues)});
constexpr auto kSignature = Rows<Collectd>({Bytes(32, "HMAC-SHA-256"), Utf8(0, "User Name").Note(", %s")});
constexpr auto kEncryption = Rows<Collectd>({
    Counted(2, Utf8(0, "User Name")), Bytes(16, "Initialization Vector"), Bytes(0, "Encrypted Data")});

constexpr ElementForm kParts{.typeSize = 2, .lengthSize = 2, .lengthCountsHeader = true};
constexpr auto kPartChoices = Choices<Collectd>({
    {0x000, "Host", kText}, {0x001, "Time", kSeconds}, {0x002, "Plugin", kText}, {0x003, "Plugin Instance", kText},
    {0x004, "Type", kText}, {0x005, "Type Instance", kText}, {0x006, "Values", kValues}, {0x007, "Interval", kSpan},
    {0x008, "Time (High Resolution)", kTime}, {0x009, "Interval (High Resolution)", kInterval},
    {0x100, "Message", kText}, {0x101, "Severity", kSeverity}, {0x200, "Signature (HMAC-SHA-256)", kSignature},
    {0x210, "Encryption (AES-256-OFB)", kEncryption}});

}  // namespace

int32_t DecodeCollectd(const Place& at, Cursor c) {
  const uint32_t type = PeekU16(c), length = PeekU16(c, 2);
  if (Left(c) < 5 || length < 5 || !FindChoice<Collectd>(kPartChoices, type)) return 0;
  const LineHandle top = type == 0 ? AddLine(at, Ahead(c, Left(c)), "collectd: Host %s",
                                             TextSlice{reinterpret_cast<const char*>(c.at) + 4,
                                                       static_cast<int32_t>(length) < Left(c)
                                                           ? static_cast<int32_t>(length) - 4
                                                           : Left(c) - 4})
                                   : AddLine(at, Ahead(c, Left(c)), "collectd");
  const Place in = Under(at, top);
  Collectd collectd{};
  ShowElements<Collectd>(in, c, kParts, "Part", kPartChoices, collectd);
  if (collectd.values) AppendToLine(in, top, ", %I64u values", collectd.values);
  c.ranShort = false;
  AddBlock(in, Rest(c), "collectd Data");
  return 1;
}

}  // namespace qxview
