// The type-of-service byte of IPv4 in its four readings, chosen by the settings.
//
//   mode 0   precedence (3 bits), delay, throughput, reliability, ECN (2)     RFC 791, RFC 3168
//   mode 1   precedence (3 bits), OSPF metric (3), cost, reserved             RFC 1349
//   mode 2   differentiated services code point (6 bits), ECN (2)             RFC 2474, RFC 2597
//   mode 3   fields of the user's own
#include "core/line_group.h"
#include "decoders/net/ipv4_parts.h"

namespace qxview {
namespace {

// The missing blank in the last name is how it has always been shown.
constexpr auto kPrecedenceNames = SortedNames({{0, "Routine"}, {1, "Priority"}, {2, "Immediate"}, {3, "Flash"},
                                               {4, "Flash Override"}, {5, "CRITIC/ECP"}, {6, "Internetwork Control"},
                                               {7, "NetworkControl"}});

const char* AddPrecedence(const Place& in, const Field& service) {
  const BitPicture precedence = BitsOf(service, 0, 3);
  const char* name = LookupName(kPrecedenceNames, precedence.value);
  AddBitLine(in, service, "%s: Precedence = %s", precedence.picture, name);
  AppendToParent(in, service, " %s Precedence", name);
  return name;
}

void AddClassicService(const Place& in, const Field& service) {
  AddPrecedence(in, service);
  const BitPicture delay = BitsOf(service, 3, 1), throughput = BitsOf(service, 4, 1);
  const BitPicture reliability = BitsOf(service, 5, 1);
  const char* delayName = delay.value ? "Low" : "Normal";
  const char* throughputName = throughput.value ? "High" : "Normal";
  const char* reliabilityName = reliability.value ? "High" : "Normal";
  AddBitLine(in, service, "%s: Delay = %s", delay.picture, delayName);
  AddBitLine(in, service, "%s: Throughput = %s", throughput.picture, throughputName);
  AddBitLine(in, service, "%s: Reliability = %s", reliability.picture, reliabilityName);
  const BitPicture capable = BitsOf(service, 6, 1), experienced = BitsOf(service, 7, 1);
  AddBitLine(in, service, "%s: ECN-Capable Transport (ECT) (%u)", capable.picture, capable.value);
  AddBitLine(in, service, "%s: ECN-CE (%u)", experienced.picture, experienced.value);
  // These names differ from those of RFC 3168: they tell the two bits apart, not the code point.
  constexpr const char* kCongestionNames[] = {"Not ECT", "ECT(0)", "Not ECT(1)", "EC"};
  const uint32_t congestion = service.value & 3;
  AppendToParent(in, service, ", %s Delay, %s Throughput, %s Reliability, ECN (0x%.02X) = %s", delayName,
                 throughputName, reliabilityName, congestion, kCongestionNames[congestion]);
}

void AddRoutingMetric(const Place& in, const Field& service) {
  AddPrecedence(in, service);
  const BitPicture metric = BitsOf(service, 3, 3), cost = BitsOf(service, 6, 1), reserved = BitsOf(service, 7, 1);
  AddBitLine(in, service, "%s : OSPF V2 = %u", metric.picture, metric.value);
  AddBitLine(in, service, "%s : Cost = %u", cost.picture, cost.value);
  AddBitLine(in, service, "%s : Reserved = %u", reserved.picture, reserved.value);
}

void AddDifferentiatedService(const Place& in, const Field& service) {
  constexpr const char* kDropNames[] = {"", "Low Drop Prec", "Medium Drop Prec", "High Drop Prec"};
  constexpr uint32_t kLastAssuredClass = 4;
  const BitPicture codePoint = BitsOf(service, 0, 6);
  const uint32_t serviceClass = codePoint.value >> 3, drop = codePoint.value >> 1 & 3;
  if ((codePoint.value & 7) == 0) {
    AddBitLine(in, service, "%s: CS%d (Precedence %d)", codePoint.picture, serviceClass, serviceClass);
  } else if (serviceClass > kLastAssuredClass || drop == 0) {
    AddBitLine(in, service, "%s: Unknown/User defined Assured Forwarding", codePoint.picture);
  } else {
    AddBitLine(in, service, "%s: AF%d%d Class %d %s", codePoint.picture, serviceClass, drop, serviceClass,
               kDropNames[drop]);
  }
  AppendToParent(in, service, " DSCP = %u ", codePoint.value);

  constexpr const char* kCongestionNames[] = {"Not Used", "ECT(1)", "ECT(0)", "CE - Congestion"};
  const BitPicture congestion = BitsOf(service, 6, 2);
  AddBitLine(in, service, "%s : Explicit Congestion Notification  (ECN) = %s", congestion.picture,
             kCongestionNames[congestion.value]);
  AppendToParent(in, service, ",  ECN = (%u) %s ", congestion.value, kCongestionNames[congestion.value]);
}

// The user's own layout: a set bit of the mask starts a field.
void AddUserService(const Place& in, const Field& service, const TypeOfServiceSettings& settings) {
  for (int32_t start = 0; start < 8;) {
    int32_t width = 1;
    while (start + width < 8 && !(settings.fieldMask & 0x80 >> (start + width))) ++width;
    const BitPicture part = BitsOf(service, start, width);
    AddBitLine(in, service, "%s : %s = %u", part.picture, static_cast<const char*>(settings.fieldNames[start]),
               part.value);
    start += width;
  }
}

}  // namespace

void AddTypeOfService(const Place& in, const Field& service) {
  const TypeOfServiceSettings& settings = in.view->engine->settings.typeOfService;
  constexpr int32_t kClassicLines = 7;
  if (Silent(in) && settings.mode == 0) return CountLines(in, kClassicLines);
  const auto addTop = [&] { return Under(in, AddLine(in, service, "Type of Service:")); };
  switch (settings.mode) {
    case 1: return AddRoutingMetric(addTop(), service);
    case 2: return AddDifferentiatedService(addTop(), service);
    case 3: return AddUserService(addTop(), service, settings);
    default: return AddToldGroup(in, service, "ip type of service", [&] { AddClassicService(addTop(), service); });
  }
}

}  // namespace qxview
