// What one line costs: formatted and added to the tree, written to the print file, and passed by the find.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <vector>

#include "core/decoder.h"
#include "core/frame_entry.h"
#include "core/output_file.h"
#include "decoders/asn1/snmp.h"
#include "host/mib_database.h"
#include "view/arena_tree.h"

namespace qxview {
namespace {

struct Bench {
  explicit Bench(const QxHost* host = nullptr) {
    engine = CreateEngine(host, {}, 1);
    view.context = CreateDecodeContext();
    view.tree = &tree;
    view.engine = engine;
    view.selectionPath[0] = -1;
  }
  ~Bench() {
    DestroyDecodeContext(view.context);
    DestroyEngine(engine);
  }
  Engine* engine;
  ArenaTree tree;
  View view{};
};

constexpr uint8_t kBytes[] = {0x00, 0x01, 0x08, 0x00, 0x06, 0x04, 0x00, 0x01, 0x0A, 0x00, 0x00, 0x01};
constexpr auto kNames = SortedNames({{1, "Ethernet"}, {2, "Reserved"}, {6, "IEEE 802"}, {15, "Frame Relay"}});

// Ten lines like those of a header: numbers, names, a bit picture, an address, a plain title.
int32_t DecodeTenLines(const Place& at, Cursor c) {
  const Cursor start = c;
  const Place in = Under(at, AddLine(at, Ahead(c, 12), "Bench Header:"));
  const Field type = TakeU16(c);
  AddLine(in, type, "Hardware Type: %u = %s", type.value, LookupName(kNames, type.value));
  const Field protocol = TakeU16(c);
  AddLine(in, protocol, "Protocol Type: 0x%.04X = %s", protocol.value, "IP");
  const Field length = TakeU8(c);
  AddLine(in, length, "Hardware Address Length: %u", length.value);
  const BitPicture bits = BitsOf(length, 2, 3);
  AddBitLine(in, length, "%s: Precedence = %s", bits.picture, "Routine");
  const Field second = TakeU8(c);
  AddLine(in, second, "Time to live: %d", second.value);
  const Field operation = TakeU16(c);
  AddLine(in, operation, "Sequence number:          %4lu", operation.value);
  AddLine(in, operation, "ID: 0x%.04X (%d)", operation.value, operation.value);
  const Field address = TakeBytes(c, 4);
  AddLine(in, address, "Source: %s", IPv4Text(address.bytes));
  AddLine(in, Ahead(start, 12), "Total length: %u", 12);
  return 1;
}

void AddToTree(benchmark::State& state) {
  Bench bench;
  constexpr int kRounds = 20;
  for (auto _ : state) {
    ClearDecodeTree(&bench.view, &bench.tree, true);
    bench.view.context->packet.linesLeft = kMostLines;
    for (int i = 0; i < kRounds; ++i) DecodeTenLines(TopLevel(&bench.view, 2), MakeCursor(kBytes, 14, sizeof kBytes));
  }
  state.counters["ns/line"] = benchmark::Counter(static_cast<double>(state.iterations()) * kRounds * 10,
                                                 benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(AddToTree);

void Print(benchmark::State& state) {
  Bench bench;
  static OutputFile file;
  OpenOutput(&file, {nullptr, [](void*, const char*, int32_t) { return 1; }, nullptr, -1});
  bench.view.context->outputMode = kPrintMode;
  bench.view.context->outputFile = &file;
  for (auto _ : state) {
    bench.view.context->packet.linesLeft = kMostLines;
    DecodeTenLines(TopLevel(&bench.view, 2), MakeCursor(kBytes, 14, sizeof kBytes));
  }
  state.counters["ns/line"] = benchmark::Counter(static_cast<double>(state.iterations()) * 10,
                                                 benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(Print);

void DumpRows(benchmark::State& state) {
  Bench bench;
  static uint8_t data[1600];
  for (auto _ : state) {
    ClearDecodeTree(&bench.view, &bench.tree, true);
    bench.view.context->packet.linesLeft = kMostLines;
    AddRawData(&bench.view, data, 0, sizeof data, "Raw Data");
  }
  state.counters["ns/row"] = benchmark::Counter(static_cast<double>(state.iterations()) * 101,
                                                benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(DumpRows);

// A datagram full of bindings, each of 21 lines and more: with empty object identifiers, and with identifiers of the
// built-in MIB.
void Bindings(benchmark::State& state, const QxHost* host, const std::vector<uint8_t>& binding) {
  Bench bench(host);
  std::vector<uint8_t> payload = {0x30, 0x82, 0xFF, 0xFF, 2,    1, 1, 4, 0, 0xA2, 0x82, 0xFF, 0xF0, 2,   1,
                                  1,    2,    1,    0,    2,    1, 0, 0x30, 0x82, 0xFF, 0xE0};
  while (payload.size() + binding.size() < 60000) payload.insert(payload.end(), binding.begin(), binding.end());
  for (auto _ : state) {
    ClearDecodeTree(&bench.view, &bench.tree, true);
    bench.view.context->packet.linesLeft = kMostLines;
    DecodeSnmpPayload(TopLevel(&bench.view, 2), MakeCursor(payload.data(), 42, static_cast<int32_t>(payload.size())));
  }
  state.counters["ns/line"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * bench.tree.LineCount(),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
void EmptyBindings(benchmark::State& state) { Bindings(state, nullptr, {0x30, 4, 6, 0, 5, 0}); }
BENCHMARK(EmptyBindings)->Unit(benchmark::kMillisecond);

void NamedBindings(benchmark::State& state) {
  static MibDatabase mib;
  QxHost host{};
  host.size = sizeof host;
  host.findMibEntry = [](void*, const char* dotted, QxMibEntry* out) { return mib.Find(dotted, out); };
  Bindings(state, &host, {0x30, 12, 6, 8, 0x2B, 6, 1, 2, 1, 1, 1, 0, 5, 0});
}
BENCHMARK(NamedBindings)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace qxview

BENCHMARK_MAIN();
