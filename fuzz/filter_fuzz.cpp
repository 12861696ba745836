// A display filter up to the first zero byte, behind it an Ethernet frame that it is asked of.
#include "fuzz/stations.h"
#include "fuzz/targets.h"
#include "fuzz/told_packet.h"
#include "query/filter.h"
#include "query/probe.h"

namespace qxview::fuzz {
namespace {

constexpr size_t kLongest = 20000;

}  // namespace

void RunFilter(const uint8_t* data, size_t size) {
  if (size > kLongest) return;
  static Station& station = *new Station(kReassembly, kDisplayMode);
  static Probe probe(*station.session);
  Input input(data, size);
  const std::string_view expression = input.Text();
  FilterFault fault;
  const auto filter = Filter::Parse(expression, &fault);
  if (!filter) {
    Expect(!fault.message.empty(), "a filter that is refused is told why");
    Expect(fault.at <= expression.size(), "the fault is in the filter");   // or at its end
    return;
  }
  Told told;
  const ExactRecord record(input.Rest());
  if (filter->Keys().AsksForProtocols()) {
    std::vector<const char*> protocols;
    if (probe.ListProtocols(record.get(), &protocols)) filter->Keys().TakeProtocols(protocols);
  }
  if (!probe.Ask(filter->Keys(), record.get(), told)) return;
  const bool holds = filter->Holds();
  // The same answer from an expression that is added beside it.
  FilterFault none;
  const int32_t again = filter->Add(expression, &none);
  if (again >= 0 && probe.Ask(filter->Keys(), record.get(), told)) {
    Expect(filter->HoldsFor(again) == holds, "a filter holds wherever it stands");
  }
}

}  // namespace qxview::fuzz
