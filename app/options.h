// What every reading command takes, and how it is put on the command line.
#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "app/command_line.h"
#include "host/standalone_host.h"

namespace qxview {

// Packet numbers from 1: "7", "3-9", "12-", comma-separated.
class PacketSelection {
 public:
  // False with a message that names the piece that is wrong.
  bool Parse(const std::string& list, std::string* wrong);
  bool Holds(uint64_t number) const;
  uint64_t Last() const;   // no packet behind this one is selected

 private:
  std::vector<std::pair<uint64_t, uint64_t>> spans_;   // none: every packet
};

enum class ColorChoice { kAuto, kAlways, kNever };

struct ReadingOptions {
  std::string file;
  PacketSelection selection;
  uint64_t count = UINT64_MAX;
  std::string filter;
  HostOptions host;
  bool flushEachPacket = false;
  ColorChoice color = ColorChoice::kAuto;
};

// Adds FILE and the options that every reading command takes.
void AddReadingOptions(Command* command, ReadingOptions* options);

// Fills in what the platform gives.
void FinishReadingOptions(ReadingOptions* options);

}  // namespace qxview
