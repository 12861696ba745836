#include <algorithm>
#include <cstdio>
#include <memory>

#include "app/commands.h"
#include "app/output.h"
#include "app/packet_run.h"
#include "platform/platform.h"

namespace qxview {
namespace {

// A line a decoder: identifier, name, and what is defined for it.
int ListProtocols(const HostOptions& options) {
  std::string message;
  bool fileFault = false;
  const auto host = StandaloneHost::Create(options, &message, &fileFault);
  if (!host) return Tell(message), fileFault ? kFileFault : kUsage;
  const std::vector<DefinedProtocol> protocols = host->Definitions().List();
  size_t width = 0;
  for (const DefinedProtocol& protocol : protocols) width = std::max(width, protocol.name.size());
  Output out;
  for (const DefinedProtocol& protocol : protocols) {
    std::string line = protocol.name;
    if (!protocol.definitions.empty()) line.resize(width, ' ');
    for (size_t i = 0; i < protocol.definitions.size(); ++i) line += (i ? " " : "  ") + protocol.definitions[i];
    char identifier[16];
    std::snprintf(identifier, sizeof identifier, "0x%05X  ", static_cast<uint32_t>(protocol.identifier));
    out.Put(identifier);
    out.Put(line);
    out.Put('\n');
  }
  out.Flush();
  return out.Failed() ? OutputFault() : kDone;
}

}  // namespace

void AddProtocolsCommand(CommandLine* line) {
  Command& command = line->Add("protocols", "the built-in decoders, their identifiers, names and ports");
  auto options = std::make_shared<HostOptions>();
  command.AddTexts("-d,--decode-as", "SPEC", "a protocol definition, may be repeated", &options->definitions);
  command.AddText("--settings", "FILE", "settings file instead of the user's own", &options->settingsFile);
  command.SetExamples("Example:\n  qxview protocols");
  command.SetAction([options] {
    options->userSettings = FindUserSettings();
    return ListProtocols(*options);
  });
}

}  // namespace qxview
