// The commands. Each function adds its command to the command line.
#pragma once
#include "app/options.h"

namespace qxview {

class NewFile;

void AddCaptureCommand(CommandLine* line);
void AddDecodeCommand(CommandLine* line);
void AddFieldsCommand(CommandLine* line);
void AddFindCommand(CommandLine* line);
void AddFollowCommand(CommandLine* line);
void AddListCommand(CommandLine* line);
void AddPrintCommand(CommandLine* line);
void AddProtocolsCommand(CommandLine* line);
void AddReportCommand(CommandLine* line);
void AddSaveCommand(CommandLine* line);
void AddStatCommand(CommandLine* line);
void AddViewCommand(CommandLine* line);   // where the build has a terminal's library
void AddXmlCommand(CommandLine* line);

// All of them but the capture of live packets.
void AddReadingCommands(CommandLine* line);

// Says that standard output could not be written, and why; the exit status for it.
int OutputFault();

// Whether what was read after runs with this status may lack its end: a file that may be whole is not replaced by it. That could
// not be read to its end, but with --keep-going; or a signal came in the middle of files on a disk (it is how pipes end).
bool MayLackItsEnd(const ReadingOptions& options, int status);

// Ends the writing of a new file after runs with this status: moves the file into its place, or says why it is not there.
int KeepFile(NewFile* file, const std::string& name, bool written, const ReadingOptions& options, int status);

}  // namespace qxview
