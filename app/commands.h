// The commands. Each function adds its command to the command line; the command writes its exit status.
#pragma once
#include "app/options.h"

namespace qxview {

void AddDecodeCommand(CLI::App* app, int* status);
void AddFindCommand(CLI::App* app, int* status);
void AddListCommand(CLI::App* app, int* status);
void AddPrintCommand(CLI::App* app, int* status);
void AddProtocolsCommand(CLI::App* app, int* status);
void AddSaveCommand(CLI::App* app, int* status);
void AddXmlCommand(CLI::App* app, int* status);

// Says that standard output could not be written; the exit status for it.
int OutputFault();

}  // namespace qxview
