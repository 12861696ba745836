#include <CLI/CLI.hpp>
#include <cstdio>

#include "app/commands.h"
#include "core/dispatch.h"

namespace qxview {

void AddProtocolsCommand(CLI::App* app, int* status) {
  CLI::App* command = app->add_subcommand("protocols", "the built-in decoders, their identifiers, names and ports");
  command->footer("Example:\n  qxview protocols");
  command->callback([status] {
    const RowSpan rows = RegistryTable(6, nullptr);
    for (int32_t i = 0; i < rows.count; ++i) {
      std::printf("0x%05X  %s\n", 0x10000u | rows.rows[i].key, rows.rows[i].name);
    }
    *status = kDone;
  });
}

}  // namespace qxview
