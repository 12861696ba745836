// Where a client stands, as both versions of DHCP tell it: coordinates (RFC 3825, RFC 6225) and civic addresses
// (RFC 4776).
#include "decoders/app/dhcp.h"
#include "decoders/common/location.h"

namespace qxview {
namespace {

constexpr auto kWhatNames = SortedNames({
    {0, "Location of the DHCP Server"}, {1, "Network Element Closest to the Client"}, {2, "Location of the Client"}});

}  // namespace

void ShowDhcpGeoConfiguration(const Place& in, Cursor& c, DhcpMessage&) { ShowGeoConfiguration(in, c); }
void ShowDhcpGeoLocation(const Place& in, Cursor& c, DhcpMessage&) { ShowGeoLocation(in, c); }

void ShowDhcpCivicLocation(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kHead = Rows<DhcpMessage>({
      Number(1, "What", kWhatNames), Text(2, "Country Code").Note(", %s")});
  ShowRows<DhcpMessage>(in, c, kHead, message);
  ShowCivicElements(in, c);
}

}  // namespace qxview
