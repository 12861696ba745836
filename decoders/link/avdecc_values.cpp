// The values of controls and the clusters of video and sensors in an entity's model (IEEE 1722.1 clauses 7.2.17, 7.2.18 and
// 7.3.6): what a control may be set to, by the type of its values.
#include "decoders/link/avtp.h"

namespace qxview {
namespace {

enum ValueType : uint32_t {
  kFirstSelector = 0x0A, kSelectorString = 0x14, kFirstArray = 0x15, kUtf8 = 0x1F, kBodePlot = 0x20, kSmpteTime = 0x21,
  kSampleRate = 0x22, kGptpTime = 0x23, kVendor = 0x3FFE,
};

// Numbers of one type; their label is given with them.
constexpr auto kInt8 = Rows<Avtp>({Signed(1, nullptr)});
constexpr auto kUint8 = Rows<Avtp>({Number(1, nullptr)});
constexpr auto kInt16 = Rows<Avtp>({Signed(2, nullptr)});
constexpr auto kUint16 = Rows<Avtp>({Number(2, nullptr)});
constexpr auto kInt32 = Rows<Avtp>({Signed(4, nullptr)});
constexpr auto kUint32 = Rows<Avtp>({Number(4, nullptr)});
constexpr auto kInt64 = Rows<Avtp>({Signed(8, nullptr)});
constexpr auto kUint64 = Rows<Avtp>({Number(8, nullptr)});
constexpr auto kFloat = Rows<Avtp>({Float(4, nullptr)});
constexpr auto kDouble = Rows<Avtp>({Float(8, nullptr)});
constexpr RowSpan<Avtp> kScalars[] = {kInt8, kUint8, kInt16, kUint16, kInt32, kUint32, kInt64, kUint64, kFloat, kDouble};
constexpr uint32_t kScalarCount = 10;

constexpr auto kUnitNames = SortedNames({
    {0x00, "UNITLESS"}, {0x01, "COUNT"}, {0x02, "PERCENT"}, {0x03, "FSTOP"}, {0x08, "SECONDS"}, {0x09, "MINUTES"},
    {0x0A, "HOURS"}, {0x0B, "DAYS"}, {0x0C, "MONTHS"}, {0x0D, "YEARS"}, {0x0E, "SAMPLES"}, {0x0F, "FRAMES"},
    {0x10, "HERTZ"}, {0x11, "SEMITONES"}, {0x12, "CENTS"}, {0x13, "OCTAVES"}, {0x14, "FPS"}, {0x18, "METERS"},
    {0x20, "KELVIN"}, {0x28, "GRAMS"}, {0x30, "VOLTS"}, {0x31, "DBV"}, {0x32, "DBU"}, {0x38, "AMPS"}, {0x40, "WATTS"},
    {0x41, "DBM"}, {0x42, "DBW"}, {0x48, "PASCALS"}, {0x50, "BITS"}, {0x51, "BYTES"}, {0x52, "KIBIBYTES"},
    {0x53, "MEBIBYTES"}, {0x54, "GIBIBYTES"}, {0x55, "TEBIBYTES"}, {0x58, "BITS_PER_SEC"}, {0x59, "BYTES_PER_SEC"},
    {0x5A, "KIBIBYTES_PER_SEC"}, {0x5B, "MEBIBYTES_PER_SEC"}, {0x5C, "GIBIBYTES_PER_SEC"}, {0x5D, "TEBIBYTES_PER_SEC"},
    {0x60, "CANDELAS"}, {0x68, "JOULES"}, {0x70, "RADIANS"}, {0x78, "NEWTONS"}, {0x80, "OHMS"}, {0x88, "METERS_PER_SEC"},
    {0x90, "METERS_PER_SEC_SQUARED"}, {0x98, "RADIANS_PER_SEC"}, {0xA0, "RADIANS_PER_SEC_SQUARED"},
    {0xA8, "NEWTON_METERS"}, {0xB0, "DB"}, {0xB1, "DB_PEAK"}, {0xB2, "DB_RMS"}, {0xB3, "DBFS"}, {0xB4, "DBFS_PEAK"},
    {0xB5, "DBFS_RMS"}, {0xB6, "DBTP"}, {0xB7, "DB_A"}, {0xB8, "DB_B"}, {0xB9, "DB_C"}, {0xBA, "DB_SPL"},
    {0xBB, "LU"}, {0xBC, "LUFS"}});
constexpr auto kUnit = Rows<Avtp>({Signed(1, "Unit Multiplier"), Hex(1, "Unit", kUnitNames)});
constexpr auto kString = Rows<Avtp>({Hex(2, "Value Name String")});

void ShowScalar(const Place& in, Cursor& c, RowSpan<Avtp> rows, const char* label, Avtp& avtp) {
  if (Left(c)) ShowRows<Avtp>(in, c, rows, avtp, label);
}
void ShowLinear(const Place& in, Cursor& c, RowSpan<Avtp> rows, uint32_t count, Avtp& avtp) {
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) {
    // keys: number Minimum, Maximum, Step, Default, Current, Option
    // keys: text Minimum, Maximum, Step, Default, Current, Option
    ShowScalar(in, c, rows, "Minimum", avtp);
    ShowScalar(in, c, rows, "Maximum", avtp);
    ShowScalar(in, c, rows, "Step", avtp);
    ShowScalar(in, c, rows, "Default", avtp);
    ShowScalar(in, c, rows, "Current", avtp);
    ShowRows<Avtp>(in, c, kUnit, avtp);
    ShowRows<Avtp>(in, c, kString, avtp);
  }
}
void ShowSelector(const Place& in, Cursor& c, RowSpan<Avtp> rows, uint32_t count, Avtp& avtp) {
  ShowScalar(in, c, rows, "Current", avtp);
  ShowScalar(in, c, rows, "Default", avtp);
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) ShowScalar(in, c, rows, "Option", avtp);
  if (Left(c)) ShowRows<Avtp>(in, c, kUnit, avtp);
}
void ShowArray(const Place& in, Cursor& c, RowSpan<Avtp> rows, uint32_t count, Avtp& avtp) {
  ShowScalar(in, c, rows, "Minimum", avtp);
  ShowScalar(in, c, rows, "Maximum", avtp);
  ShowScalar(in, c, rows, "Step", avtp);
  ShowScalar(in, c, rows, "Default", avtp);
  ShowRows<Avtp>(in, c, kUnit, avtp);
  ShowRows<Avtp>(in, c, kString, avtp);
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) ShowScalar(in, c, rows, "Current", avtp);
}

constexpr auto kText = Rows<Avtp>({Terminated(Utf8(0, "Current"))});
constexpr auto kPlotHead = Rows<Avtp>({
    Float(4, "Frequency Minimum"), Float(4, "Frequency Maximum"), Float(4, "Frequency Step"), Float(4, "Frequency Default"),
    Float(4, "Magnitude Minimum"), Float(4, "Magnitude Maximum"), Float(4, "Magnitude Step"), Float(4, "Magnitude Default"),
    Float(4, "Phase Minimum"), Float(4, "Phase Maximum"), Float(4, "Phase Step"), Float(4, "Phase Default")});
constexpr auto kPlotPoint = Rows<Avtp>({Float(4, "Frequency"), Float(4, "Magnitude"), Float(4, "Phase")});
constexpr auto kRate = Rows<Avtp>({Shown(4, "Current Sampling Rate", ShowAvdeccRate)});
constexpr auto kTime = Rows<Avtp>({Number(6, "gPTP Seconds"), Number(4, "gPTP Nanoseconds")});
constexpr auto kVendorValue = Rows<Avtp>({Eui64("Vendor ID"), Bytes(0, "Vendor Values")});

// --- clusters and maps of video and sensors ---

constexpr auto kVideoCluster = Rows<Avtp>({
    Number(4, "Path Latency", " ns"), Number(4, "Block Latency", " ns"), Hex(1, "Video Format"),
    Hex(4, "Current Format Specific"), Number(2, "Format Specifics Offset"),
    Number(2, "Format Specifics Count").Into(&Avtp::count), Shown(4, "Current Sampling Rate", ShowAvdeccRate),
    Number(2, "Sampling Rates Offset"), Number(2, "Sampling Rates Count").Into(&Avtp::size), Hex(2, "Current Aspect Ratio"),
    Number(2, "Aspect Ratios Offset"), Number(2, "Aspect Ratios Count").Into(&Avtp::length), Hex(4, "Current Size"),
    Number(2, "Sizes Offset"), Number(2, "Sizes Count").Into(&Avtp::index), Hex(2, "Current Color Space"),
    Number(2, "Color Spaces Offset"), Number(2, "Color Spaces Count").Into(&Avtp::status)});
constexpr auto kSpecific = Rows<Avtp>({Hex(4, "Format Specific")});
constexpr auto kSamplingRate = Rows<Avtp>({Shown(4, "Sampling Rate", ShowAvdeccRate)});
constexpr auto kAspect = Rows<Avtp>({Hex(2, "Aspect Ratio")});
constexpr auto kSize = Rows<Avtp>({Number(2, "Width"), Number(2, "Height")});
constexpr auto kColor = Rows<Avtp>({Hex(2, "Color Space")});
constexpr auto kSensorCluster = Rows<Avtp>({
    Number(4, "Path Latency", " ns"), Number(4, "Block Latency", " ns"), Shown(8, "Current Format", ShowAvdeccFormat),
    Number(2, "Formats Offset"), Number(2, "Number of Formats").Into(&Avtp::count),
    Shown(4, "Current Sampling Rate", ShowAvdeccRate), Number(2, "Sampling Rates Offset"),
    Number(2, "Sampling Rates Count").Into(&Avtp::size)});
constexpr auto kFormat = Rows<Avtp>({Shown(8, "Format", ShowAvdeccFormat)});
constexpr auto kVideoMapping = Rows<Avtp>({
    Number(2, "Stream Index"), Number(2, "Program Stream"), Number(2, "Elementary Stream"), Number(2, "Cluster Offset")});
constexpr auto kSensorMapping = Rows<Avtp>({
    Number(2, "Stream Index"), Number(2, "Stream Signal"), Number(2, "Cluster Offset")});

void ShowEach(const Place& in, Cursor& c, uint32_t count, RowSpan<Avtp> rows, Avtp& avtp) {
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) ShowRows<Avtp>(in, c, rows, avtp);
}

}  // namespace

void ShowAvdeccValues(const Place& in, Cursor& c, uint32_t type, uint32_t count) {
  Avtp avtp{};
  if (type < kFirstSelector) return ShowLinear(in, c, kScalars[type], count, avtp);
  if (type < kSelectorString) return ShowSelector(in, c, kScalars[type - kFirstSelector], count, avtp);
  if (type == kSelectorString) return ShowSelector(in, c, kUint16, count, avtp);
  if (type < kFirstArray + kScalarCount) return ShowArray(in, c, kScalars[type - kFirstArray], count, avtp);
  switch (type) {
    case kUtf8: return ShowEach(in, c, count, kText, avtp);
    case kBodePlot:
      ShowRows<Avtp>(in, c, kPlotHead, avtp);
      return ShowEach(in, c, count, kPlotPoint, avtp);
    case kSampleRate: return ShowEach(in, c, count, kRate, avtp);
    case kGptpTime: return ShowEach(in, c, count, kTime, avtp);
    case kVendor: return ShowRows<Avtp>(in, c, kVendorValue, avtp);
    default: return;
  }
}

void ShowAvdeccCluster(const Place& in, Cursor& c, bool isVideo) {
  Avtp avtp{};
  if (isVideo) {
    ShowRows<Avtp>(in, c, kVideoCluster, avtp);
    ShowEach(in, c, avtp.count.value, kSpecific, avtp);
    ShowEach(in, c, avtp.size.value, kSamplingRate, avtp);
    ShowEach(in, c, avtp.length.value, kAspect, avtp);
    ShowEach(in, c, avtp.index.value, kSize, avtp);
    ShowEach(in, c, avtp.status.value, kColor, avtp);
  } else {
    ShowRows<Avtp>(in, c, kSensorCluster, avtp);
    ShowEach(in, c, avtp.count.value, kFormat, avtp);
    ShowEach(in, c, avtp.size.value, kSamplingRate, avtp);
  }
}

void ShowAvdeccOtherMappings(const Place& in, Cursor& c, uint32_t count, bool isVideo) {
  Avtp avtp{};
  ShowEach(in, c, count, isVideo ? RowSpan<Avtp>(kVideoMapping) : RowSpan<Avtp>(kSensorMapping), avtp);
}

}  // namespace qxview
