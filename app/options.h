// What every reading command takes, and how it is put on the command line.
#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "app/command_line.h"
#include "host/packet_selection.h"
#include "host/standalone_host.h"

namespace qxview {

enum class ColorChoice { kAuto, kAlways, kNever };

struct ReadingOptions {
  std::vector<std::string> files;   // each a run of its own
  const LiveInput* live = nullptr;  // in place of files
  std::string filesFrom;            // a list of further ones
  bool merge = false;               // they are one run, by time
  bool keepGoing = false;           // a file fault does not end the command
  bool modern = false;              // the setting of this name, in front of those that are given
  bool reassemble = false;          // the setting Reassembly, in the same way
  bool prefixFile = false;          // what is written of a packet says its file
  PacketSelection selection;
  uint64_t count = UINT64_MAX;
  std::string filter;
  std::string where;                // a display filter that was found right
  HostOptions host;
  bool flushEachPacket = false;
  int32_t jobs = 0;                 // threads that decode; 0: as many as there are processors, where that pays
  ColorChoice color = ColorChoice::kAuto;
};

// Adds FILE and the options that every reading command takes.
void AddReadingOptions(Command* command, ReadingOptions* options);

// Of these the display filter, and those that say how packets are decoded.
void AddWhereOption(Command* command, ReadingOptions* options);
void AddDecodingOptions(Command* command, ReadingOptions* options);

// For the commands that write something of every packet.
void AddPrefixOption(Command* command, ReadingOptions* options);

// Finds the user's own settings; says so where they may not be looked for.
void FindSettings(HostOptions* options);

// Fills in what the platform gives, and the files of the list; the exit status, what is wrong is told.
int FinishReadingOptions(ReadingOptions* options);

}  // namespace qxview
