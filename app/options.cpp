#include "app/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>

#include "app/packet_run.h"
#include "platform/mib_modules.h"
#include "platform/platform.h"

namespace qxview {
namespace {

bool ParsePacketNumber(const std::string& text, uint64_t* number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *number);
  return !text.empty() && error == std::errc() && end == text.data() + text.size() && *number > 0;
}

}  // namespace

bool PacketSelection::Parse(const std::string& list, std::string* message) {
  for (size_t at = 0; at <= list.size();) {
    const size_t comma = std::min(list.find(',', at), list.size());
    const std::string piece = list.substr(at, comma - at);
    const size_t dash = piece.find('-');
    uint64_t first = 0, last = 0;
    bool good = ParsePacketNumber(piece.substr(0, dash), &first);
    if (dash == std::string::npos) {
      last = first;
    } else if (dash + 1 == piece.size()) {
      last = UINT64_MAX;
    } else {
      good = good && ParsePacketNumber(piece.substr(dash + 1), &last) && first <= last;
    }
    if (!good) {
      *message = "--packets " + list + ": \"" + piece + "\" is no packet number from 1, nor a span like 3-9 or 12-";
      return false;
    }
    spans_.push_back({first, last});
    at = comma + 1;
  }
  return true;
}

bool PacketSelection::Holds(uint64_t number) const {
  return spans_.empty() || std::any_of(spans_.begin(), spans_.end(), [&](const auto& span) {
           return number >= span.first && number <= span.second;
         });
}

uint64_t PacketSelection::Last() const {
  uint64_t last = spans_.empty() ? UINT64_MAX : 0;
  for (const auto& span : spans_) last = std::max(last, span.second);
  return last;
}

void AddReadingOptions(CLI::App* command, ReadingOptions* options) {
  command->add_option("FILE", options->file, "pcap, pcapng or BFR file, gzip-compressed or not; - for standard input")
      ->required();
  command->add_option("--packets", options->packets, "packet numbers from 1: 7, 3-9, 12-, comma-separated")
      ->type_name("LIST");
  command->add_option("-c,--count", options->count, "stop after N packets")
      ->type_name("N")
      ->check(CLI::PositiveNumber);
  command->add_option("-f,--filter", options->filter, "only packets that match a BPF expression")->type_name("EXPR");
  command
      ->add_option("-d,--decode-as", options->host.definitions,
                   "a protocol definition, may be repeated: tcp:8080=HTTP, udp:10.0.0.1:5000=SNMP, "
                   "tcp:[2001:db8::1]:80=HTTP; port 0: any port of the address")
      ->type_name("SPEC")
      ->allow_extra_args(false);
  command->add_option("--settings", options->host.settingsFile, "settings file instead of the user's own")
      ->type_name("FILE");
  command->add_option("--set", options->host.settings, "one setting, may be repeated")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
  command->add_flag("-l", options->flushEachPacket, "flush the output after every packet");
  command->add_option("--color", options->color, "colours: auto, always or never")
      ->type_name("WHEN")
      ->transform(CLI::CheckedTransformer(
          std::map<std::string, ColorChoice>{
              {"auto", ColorChoice::kAuto}, {"always", ColorChoice::kAlways}, {"never", ColorChoice::kNever}},
          CLI::ignore_case))
      ->option_text("WHEN (auto|always|never)");
}

bool FinishReadingOptions(ReadingOptions* options) {
  options->host.userSettings = FindUserSettings();
  options->host.applicationDirectory = ExecutableDirectory();
  options->host.readMibModules = ReadMibModules;
  std::string message;
  if (options->packets.empty() || options->selection.Parse(options->packets, &message)) return true;
  Tell(message);
  return false;
}

}  // namespace qxview
