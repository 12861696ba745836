// What every reading command takes, and how it is put on the command line.
#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "host/standalone_host.h"

namespace CLI {
class App;
}

namespace qxview {

enum ExitStatus : int { kDone = 0, kNothingFound = 1, kUsage = 2, kFileFault = 3 };

// Packet numbers from 1: "7", "3-9", "12-", comma-separated.
class PacketSelection {
 public:
  // False with a message that names the piece that is wrong.
  bool Parse(const std::string& list, std::string* message);
  bool Holds(uint64_t number) const;
  uint64_t Last() const;   // no packet behind this one is selected

 private:
  std::vector<std::pair<uint64_t, uint64_t>> spans_;   // none: every packet
};

enum class ColorChoice { kAuto, kAlways, kNever };

struct ReadingOptions {
  std::string file;
  std::string packets;
  PacketSelection selection;
  uint64_t count = UINT64_MAX;
  std::string filter;
  HostOptions host;
  bool flushEachPacket = false;
  ColorChoice color = ColorChoice::kAuto;
};

// Adds FILE and the options that every reading command takes.
void AddReadingOptions(CLI::App* command, ReadingOptions* options);

// Reads what the command line gave as texts; false when that is wrong, which is told then.
bool FinishReadingOptions(ReadingOptions* options);

}  // namespace qxview
