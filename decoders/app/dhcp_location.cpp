// Where a client stands, as both versions of DHCP tell it: coordinates (RFC 3825, RFC 6225) and civic addresses
// (RFC 4776).
#include "decoders/app/dhcp.h"

namespace qxview {
namespace {

constexpr auto kAltitudeNames = SortedNames({{0, "Not Known"}, {1, "Meters"}, {2, "Floors"}});
constexpr auto kDatumNames = SortedNames({{1, "WGS 84"}, {2, "NAD 83 (NAVD 88)"}, {3, "NAD 83 (MLLW)"}});
constexpr auto kWhatNames = SortedNames({
    {0, "Location of the DHCP Server"}, {1, "Network Element Closest to the Client"}, {2, "Location of the Client"}});

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

constexpr auto kCivicNames = Choices<DhcpMessage>({
    {0, "Language", kDhcpText}, {1, "National Subdivision", kDhcpUtf8}, {2, "County, Parish, District", kDhcpUtf8},
    {3, "City, Township", kDhcpUtf8}, {4, "City Division, Borough, City District, Ward", kDhcpUtf8},
    {5, "Neighborhood, Block", kDhcpUtf8}, {6, "Group of Streets Below the Neighborhood Level", kDhcpUtf8},
    {16, "Leading Street Direction", kDhcpUtf8}, {17, "Trailing Street Suffix", kDhcpUtf8},
    {18, "Street Suffix or Type", kDhcpUtf8}, {19, "House Number", kDhcpUtf8}, {20, "House Number Suffix", kDhcpUtf8},
    {21, "Landmark or Vanity Address", kDhcpUtf8}, {22, "Additional Location Information", kDhcpUtf8},
    {23, "Name (Residence and Office Occupant)", kDhcpUtf8}, {24, "Postal or ZIP Code", kDhcpUtf8},
    {25, "Building (Structure)", kDhcpUtf8}, {26, "Unit (Apartment, Suite)", kDhcpUtf8}, {27, "Floor", kDhcpUtf8},
    {28, "Room", kDhcpUtf8}, {29, "Type of Place", kDhcpUtf8}, {30, "Postal Community Name", kDhcpUtf8},
    {31, "Post Office Box", kDhcpUtf8}, {32, "Additional Code", kDhcpUtf8}, {33, "Seat", kDhcpUtf8},
    {34, "Primary Road Name", kDhcpUtf8}, {35, "Road Section", kDhcpUtf8}, {36, "Branch Road Name", kDhcpUtf8},
    {37, "Sub-Branch Road Name", kDhcpUtf8}, {38, "Street Name Pre-Modifier", kDhcpUtf8},
    {39, "Street Name Post-Modifier", kDhcpUtf8}, {40, "Extension", kDhcpUtf8}, {128, "Script", kDhcpText},
    {255, "Reserved"}});

}  // namespace

void ShowDhcpGeoConfiguration(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kDatum = Rows<DhcpMessage>({Number(1, "Map Datum", kDatumNames)});
  ShowCoordinate(in, c, "Latitude Resolution", "Latitude");
  ShowCoordinate(in, c, "Longitude Resolution", "Longitude");
  ShowAltitude(in, c, "Altitude Resolution");
  ShowRows<DhcpMessage>(in, c, kDatum, message);
}

void ShowDhcpGeoLocation(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kVersion = Rows<DhcpMessage>({
      Word(1), Bits(0, 2, "Version"), Bits(2, 3, "Reserved"), Bits(5, 3, "Map Datum", kDatumNames)});
  ShowCoordinate(in, c, "Latitude Uncertainty", "Latitude");
  ShowCoordinate(in, c, "Longitude Uncertainty", "Longitude");
  ShowAltitude(in, c, "Altitude Uncertainty");
  ShowRows<DhcpMessage>(in, c, kVersion, message);
}

void ShowDhcpCivicLocation(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr ElementForm kForm{.typeLabel = "CAtype", .lengthLabel = "CAlength"};
  static constexpr auto kHead = Rows<DhcpMessage>({
      Number(1, "What", kWhatNames), Text(2, "Country Code").Note(", %s")});
  ShowRows<DhcpMessage>(in, c, kHead, message);
  ShowElements(in, c, kForm, "Civic Address Element", kCivicNames, message);
}

}  // namespace qxview
