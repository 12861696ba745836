// The commands. Each function adds its command to the command line; the command writes its exit status.
#pragma once
#include "app/options.h"

namespace qxview {

class NewFile;

void AddDecodeCommand(CLI::App* app, int* status);
void AddFindCommand(CLI::App* app, int* status);
void AddListCommand(CLI::App* app, int* status);
void AddPrintCommand(CLI::App* app, int* status);
void AddProtocolsCommand(CLI::App* app, int* status);
void AddSaveCommand(CLI::App* app, int* status);
void AddXmlCommand(CLI::App* app, int* status);

// Says that standard output could not be written, and why; the exit status for it.
int OutputFault();

// Ends the writing of a new file after a pass with this status: moves the file into its place, or says why it is not
// there. What could not be read to its end does not take the place of a file that may be whole.
int KeepFile(NewFile* file, const std::string& name, bool written, int status);

}  // namespace qxview
