// The command line: qxview COMMAND [OPTIONS] FILE.
#include <cstdio>
#include <new>

#include "app/commands.h"
#include "platform/interruption.h"
#include "platform/platform.h"

int main(int argc, char** argv) try {
  using namespace qxview;
  const std::vector<std::string> words = StartProgram(argc, argv);
  CommandLine line;
  AddDecodeCommand(&line);
  AddFindCommand(&line);
  AddListCommand(&line);
  AddPrintCommand(&line);
  AddProtocolsCommand(&line);
  AddSaveCommand(&line);
  AddXmlCommand(&line);
  const int status = line.Run(words);
  EndBySignal();
  return status;
} catch (const std::bad_alloc&) {
  std::fputs("qxview: out of memory\n", stderr);
  return qxview::kFileFault;
}
