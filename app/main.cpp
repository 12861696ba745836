// The command line: qxview COMMAND [OPTIONS] FILE.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <new>
#include <sstream>

#include "app/commands.h"
#include "app/output.h"
#include "app/packet_run.h"
#include "platform/platform.h"
#include "qxview/version.h"

namespace qxview {
namespace {

// What --help and --version ask for.
int ShowHelp(const CLI::App& app, const CLI::ParseError& request) {
  std::ostringstream text;
  app.exit(request, text, text);
  Output out;
  out.Put(text.str());
  out.Flush();
  return out.Failed() ? OutputFault() : kDone;
}

int Run(int argc, char** argv) {
  CLI::App app("Decodes captured packets layer by layer into a tree of lines, each tied to its bytes.", "qxview");
  app.set_version_flag("--version", "qxview " QXVIEW_VERSION_TEXT);
  app.allow_windows_style_options(false);   // "/x" is a path there, too
  app.require_subcommand(1);
  app.failure_message(CLI::FailureMessage::simple);
  app.footer("Every command has --help with examples.");
  int status = kDone;
  AddDecodeCommand(&app, &status);
  AddFindCommand(&app, &status);
  AddListCommand(&app, &status);
  AddPrintCommand(&app, &status);
  AddProtocolsCommand(&app, &status);
  AddSaveCommand(&app, &status);
  AddXmlCommand(&app, &status);
  const auto named = [&](const CLI::App* command) { return command->get_name() == argv[1]; };
  const std::vector<CLI::App*> commands = app.get_subcommands(nullptr);
  if (argc > 1 && argv[1][0] != '-' && std::none_of(commands.begin(), commands.end(), named)) {
    std::fprintf(stderr, "qxview: there is no command \"%s\"\n", argv[1]);
    std::fprintf(stderr, "qxview --help tells the commands.\n");
    return kUsage;
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) return ShowHelp(app, error);
    std::fprintf(stderr, "qxview: %s\n", error.what());
    std::fprintf(stderr, "qxview --help tells the commands, qxview COMMAND --help their options.\n");
    return kUsage;
  }
  return status;
}

}  // namespace
}  // namespace qxview

int main(int argc, char** argv) try {
  std::vector<std::string> words = qxview::StartProgram(argc, argv);
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  return qxview::Run(static_cast<int>(pointers.size()), pointers.data());
} catch (const std::bad_alloc&) {
  std::fputs("qxview: out of memory\n", stderr);
  return qxview::kFileFault;
}
