#include <CLI/CLI.hpp>
#include <cstdio>

#include "app/commands.h"
#include "app/packet_run.h"

namespace qxview {

void AddProtocolsCommand(CLI::App* app, int* status) {
  CLI::App* command = app->add_subcommand("protocols", "the built-in decoders, their identifiers, names and ports");
  command->footer("Example:\n  qxview protocols");
  auto host = std::make_shared<HostOptions>();
  command->add_option("-d,--decode-as", host->definitions, "a protocol definition, may be repeated")
      ->type_name("SPEC")
      ->allow_extra_args(false);
  command->add_option("--settings", host->settingsFile, "settings file instead of the user's own")->type_name("FILE");
  command->callback([host, status] {
    std::string message;
    bool fileFault = false;
    host->settingsFileNamed = !host->settingsFile.empty();
    const auto made = StandaloneHost::Create(*host, &message, &fileFault);
    if (!made) {
      Tell(message);
      *status = fileFault ? kFileFault : kUsage;
      return;
    }
    for (const DefinedProtocol& protocol : made->Definitions().List()) {
      std::printf("0x%05X  %-26s", static_cast<unsigned>(protocol.identifier), protocol.name.c_str());
      for (const std::string& definition : protocol.definitions) std::printf(" %s", definition.c_str());
      std::printf("\n");
    }
    *status = std::fflush(stdout) == 0 ? kDone : OutputFault();
  });
}

}  // namespace qxview
