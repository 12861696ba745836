// What flows of integrated services ask for, as RSVP carries them (RFC 2210, RFC 2211, RFC 2212, RFC 2215, RFC
// 2997).
//
//   version (4 bits), reserved, length in words (2)   services: number (1)   flags (1)   length in words (2)
//   parameters: number (1)   flags (1)   length in words (2)   values
#include "decoders/routing/rsvp.h"

namespace qxview {
namespace {

constexpr int32_t kHead = 4, kWord = 4;

constexpr auto kServiceNames = SortedNames({
    {1, "Default General Parameters"}, {2, "Guaranteed Service"}, {5, "Controlled-Load Service"}, {6, "Null Service"}});

constexpr auto kMessage = Rows<Rsvp>({
    Word(2), Bits(0, 4, "Message Format Version"), Bits(4, 12, "Reserved"), Number(2, "Data Length", " words")});
constexpr auto kService = Rows<Rsvp>({
    Number(1, "Service", kServiceNames), Word(1), Flag(0, "Break"), Bits(1, 7, "Reserved"),
    Number(2, "Service Length", " words")});
constexpr auto kBucket = Rows<Rsvp>({
    Float(4, "Token Bucket Rate").Note(", Rate %s"), Float(4, "Token Bucket Size"), Float(4, "Peak Data Rate"),
    Number(4, "Minimum Policed Unit"), Number(4, "Maximum Packet Size")});
constexpr auto kReserved = Rows<Rsvp>({Float(4, "Reserved Rate"), Number(4, "Slack Term", " microseconds")});
constexpr auto kHops = Rows<Rsvp>({Number(4, "IS Hops")});
constexpr auto kBandwidth = Rows<Rsvp>({Float(4, "Path Bandwidth Estimate")});
constexpr auto kLatency = Rows<Rsvp>({Number(4, "Minimum Path Latency", " microseconds")});
constexpr auto kMtu = Rows<Rsvp>({Number(4, "Composed Path MTU")});
constexpr auto kTotal = Rows<Rsvp>({Number(4, nullptr)});
constexpr auto kSize = Rows<Rsvp>({Number(4, "Maximum Packet Size")});

constexpr auto kParameters = Choices<Rsvp>({
    {4, "IS Hop Count", kHops}, {6, "Path Bandwidth", kBandwidth}, {8, "Path Latency", kLatency},
    {10, "Path MTU", kMtu},
    {127, "Token Bucket TSpec", kBucket}, {128, "Null Service TSpec", kSize},
    {130, "Guaranteed Service RSpec", kReserved},
    {133, "End-to-End Composed C", kTotal}, {134, "End-to-End Composed D", kTotal},
    {135, "Since-Last-Reshaping C", kTotal}, {136, "Since-Last-Reshaping D", kTotal}});
const char* ParameterName(uint32_t number) {
  const Choice<Rsvp>* choice = FindChoice<Rsvp>(kParameters, number);
  return choice ? choice->name : kUnknown;
}
constexpr auto kParameter = Rows<Rsvp>({
    Number(1, "Parameter", ParameterName), Hex(1, "Parameter Flags"), Number(2, "Parameter Length", " words")});

}  // namespace

void ShowRsvpFlow(const Place& in, Cursor& c, Rsvp& rsvp) {
  ShowRows<Rsvp>(in, c, kMessage, rsvp);
  Loop services;
  while (Left(c) >= kHead && MoreAt(in, c, services)) {
    Cursor service = TakeCursor(c, kHead + int64_t{PeekU16(c, 2)} * kWord);
    const Place under = Under(in, AddLine(in, Ahead(service, Left(service)), "Service: %s",
                                          LookupName(kServiceNames, PeekU8(service))));
    ShowRows<Rsvp>(under, service, kService, rsvp);
    Loop parameters;
    while (Left(service) >= kHead && MoreAt(under, service, parameters)) {
      Cursor parameter = TakeCursor(service, kHead + int64_t{PeekU16(service, 2)} * kWord);
      const Choice<Rsvp>* choice = FindChoice<Rsvp>(kParameters, PeekU8(parameter));
      const Place deep = Under(under, AddLine(under, Ahead(parameter, Left(parameter)), "Parameter: %s",
                                              choice ? choice->name : kUnknown));
      ShowRows<Rsvp>(deep, parameter, kParameter, rsvp);
      ShowChoice<Rsvp>(deep, parameter, choice, rsvp);
    }
    service.ranShort = false;   // what is left of a service that is cut
    AddBlock(under, Rest(service), "Service Data");
  }
}

}  // namespace qxview
