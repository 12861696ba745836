#include "decoders/common/location.h"

#include "core/elements.h"

namespace qxview {
namespace {

constexpr auto kAltitudeNames = SortedNames({{0, "Not Known"}, {1, "Meters"}, {2, "Floors"}});
constexpr auto kDatumNames = SortedNames({{1, "WGS 84"}, {2, "NAD 83 (NAVD 88)"}, {3, "NAD 83 (MLLW)"}});
uint64_t Wide(const Field& field) {
  uint64_t number = 0;
  for (int32_t i = 0; i < field.length; ++i) number = number << 8 | field.bytes[i];
  return number;
}

// Two's complement with 9 bits before the point and 25 behind it, as degrees with 6 digits; altitudes have 22 and 8.
struct FixedPoint {
  const char* sign;
  uint32_t whole, millionths;
};
FixedPoint FixedOf(uint64_t bits, int32_t width, int32_t fraction) {
  const bool negative = bits >> (width - 1) & 1;
  const uint64_t size = negative ? (uint64_t{1} << width) - bits : bits;
  const uint64_t rest = size & ((uint64_t{1} << fraction) - 1);
  return {negative ? "-" : "", static_cast<uint32_t>(size >> fraction),
          static_cast<uint32_t>(rest * 1000000 >> fraction)};
}

// Six bits that tell how exact the number behind them is, and the number, in five octets.
void ShowCoordinate(const Place& in, Cursor& c, const char* exactness, const char* label) {
  const Field field = TakeBytes(c, 5);
  if (!field.here) return;
  const uint64_t bits = Wide(field);
  const FixedPoint value = FixedOf(bits & 0x3FFFFFFFF, 34, 25);
  AddLine(in, field, "%s: %u", exactness, static_cast<uint32_t>(bits >> 34));
  AddLine(in, field, "%s: %s%u.%06u", label, value.sign, value.whole, value.millionths);
  AppendToParent(in, field, ", %s %s%u.%06u", label, value.sign, value.whole, value.millionths);
}

void ShowAltitude(const Place& in, Cursor& c, const char* exactness) {
  const Field field = TakeBytes(c, 5);
  if (!field.here) return;
  const uint64_t bits = Wide(field);
  const uint32_t type = static_cast<uint32_t>(bits >> 36);
  const FixedPoint value = FixedOf(bits & 0x3FFFFFFF, 30, 8);
  AddLine(in, field, "Altitude Type: %u = %s", type, LookupName(kAltitudeNames, type));
  AddLine(in, field, "%s: %u", exactness, static_cast<uint32_t>(bits >> 30 & 0x3F));
  AddLine(in, field, "Altitude: %s%u.%06u", value.sign, value.whole, value.millionths);
}

constexpr auto kPlainText = Rows<NoValues>({Text(0, nullptr).Note(", %s")});
constexpr auto kText = Rows<NoValues>({Utf8(0, nullptr).Note(", %s")});
constexpr auto kCivicNames = Choices<NoValues>({
    {0, "Language", kPlainText}, {1, "National Subdivision", kText}, {2, "County, Parish, District", kText},
    {3, "City, Township", kText}, {4, "City Division, Borough, City District, Ward", kText},
    {5, "Neighborhood, Block", kText}, {6, "Group of Streets Below the Neighborhood Level", kText},
    {16, "Leading Street Direction", kText}, {17, "Trailing Street Suffix", kText},
    {18, "Street Suffix or Type", kText}, {19, "House Number", kText}, {20, "House Number Suffix", kText},
    {21, "Landmark or Vanity Address", kText}, {22, "Additional Location Information", kText},
    {23, "Name (Residence and Office Occupant)", kText}, {24, "Postal or ZIP Code", kText},
    {25, "Building (Structure)", kText}, {26, "Unit (Apartment, Suite)", kText}, {27, "Floor", kText},
    {28, "Room", kText}, {29, "Type of Place", kText}, {30, "Postal Community Name", kText},
    {31, "Post Office Box", kText}, {32, "Additional Code", kText}, {33, "Seat", kText},
    {34, "Primary Road Name", kText}, {35, "Road Section", kText}, {36, "Branch Road Name", kText},
    {37, "Sub-Branch Road Name", kText}, {38, "Street Name Pre-Modifier", kText},
    {39, "Street Name Post-Modifier", kText}, {40, "Extension", kText}, {128, "Script", kPlainText},
    {255, "Reserved"}});

}  // namespace

void ShowGeoConfiguration(const Place& in, Cursor& c) {
  static constexpr auto kDatum = Rows<NoValues>({Number(1, "Map Datum", kDatumNames)});
  NoValues none;
  ShowCoordinate(in, c, "Latitude Resolution", "Latitude");
  ShowCoordinate(in, c, "Longitude Resolution", "Longitude");
  ShowAltitude(in, c, "Altitude Resolution");
  ShowRows<NoValues>(in, c, kDatum, none);
}

void ShowGeoLocation(const Place& in, Cursor& c) {
  static constexpr auto kVersion = Rows<NoValues>({
      Word(1), Bits(0, 2, "Version"), Bits(2, 3, "Reserved"), Bits(5, 3, "Map Datum", kDatumNames)});
  NoValues none;
  ShowCoordinate(in, c, "Latitude Uncertainty", "Latitude");
  ShowCoordinate(in, c, "Longitude Uncertainty", "Longitude");
  ShowAltitude(in, c, "Altitude Uncertainty");
  ShowRows<NoValues>(in, c, kVersion, none);
}

void ShowCivicElements(const Place& in, Cursor& c) {
  static constexpr ElementForm kForm{.typeLabel = "CAtype", .lengthLabel = "CAlength"};
  NoValues none;
  ShowElements(in, c, kForm, "Civic Address Element", kCivicNames, none);
}

}  // namespace qxview
