// The targets without a fuzzer, for any compiler: every input of the files and folders that are named, a pack
// (scripts/fuzz_corpus.py) being several.
//
//   fuzz_run TARGET FILE|FOLDER...
//   fuzz_run --rows              the rows of the registry: table, key, name
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "core/decoder.h"
#include "fuzz/input.h"
#include "fuzz/targets.h"

namespace {

using namespace qxview;
namespace fs = std::filesystem;

constexpr char kPackMark[] = "QXPACK1\n";

size_t ran;

void RunInput(const fuzz::Target& target, const std::string& name, const std::string& bytes) {
  if (std::getenv("QXVIEW_FUZZ_TELL")) std::fprintf(stderr, "%s\n", name.c_str());
  std::fflush(stderr);
  // An allocation of its own, as the fuzzer gives it.
  const fuzz::ExactBytes exact({reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
  target.run(exact.data(), exact.size());
  ++ran;
}

// A pack: its mark, then inputs, each behind its length (4 bytes, the low one first).
bool RunFile(const fuzz::Target& target, const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), {});
  if (!file && bytes.empty()) return std::fprintf(stderr, "%s: cannot be read\n", path.string().c_str()), false;
  if (!bytes.starts_with(kPackMark)) return RunInput(target, path.string(), bytes), true;
  fuzz::Input pack(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  pack.Take(sizeof kPackMark - 1);
  for (size_t number = 1; pack.Left(); ++number) {
    const uint32_t size = pack.U32();
    const fuzz::Piece input = pack.Take(size);
    if (input.size < size) return std::fprintf(stderr, "%s: cut in input %zu\n", path.string().c_str(), number), false;
    RunInput(target, path.string() + " #" + std::to_string(number), {reinterpret_cast<const char*>(input.data), input.size});
  }
  return true;
}

int ListRows() {
  for (int32_t table = 0; table <= static_cast<int32_t>(DoorKind::kUdpPort); ++table) {
    const char* name;
    const DecoderRowSpan span = RegistryTable(static_cast<DoorKind>(table), &name);
    for (int32_t i = 0; i < span.count; ++i) std::printf("%d\t%s\t%u\t%s\n", table, name, span.rows[i].key, span.rows[i].name);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::string(argv[1]) == "--rows") return ListRows();
  const fuzz::Target* target = argc > 2 ? fuzz::FindTarget(argv[1]) : nullptr;
  if (!target) {
    std::fprintf(stderr, "fuzz_run TARGET FILE|FOLDER...\ntargets:");
    for (const fuzz::Target& each : fuzz::kTargets) std::fprintf(stderr, " %s", each.name);
    return std::fprintf(stderr, "\n"), 2;
  }
  bool good = true;
  for (int i = 2; i < argc; ++i) {
    std::vector<fs::path> files;
    if (!fs::is_directory(argv[i])) files.emplace_back(argv[i]);
    else
      for (const auto& entry : fs::recursive_directory_iterator(argv[i])) {
        if (entry.is_regular_file()) files.push_back(entry.path());
      }
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files) good &= RunFile(*target, file);
  }
  std::printf("%zu inputs of %s\n", ran, target->name);
  return good && ran ? 0 : 1;
}
