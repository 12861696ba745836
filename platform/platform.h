// What the command line and the exports take from the platform.
#pragma once
#include <string>
#include <vector>

#include "core/engine.h"
#include "core/output_file.h"
#include "host/settings_store.h"

namespace qxview {

// What a command line program does first: a reader of its output that goes away ends it quietly, output is bytes as
// they are, and a standard file that is closed stays useless whatever else is opened. Gives the command line's words, on
// Windows in UTF-8, which all paths are held in there.
std::vector<std::string> StartProgram(int argc, char** argv);

LibraryLoader PlatformLibraryLoader();
// Why the library was not loaded that was asked for last.
std::string LibraryFailure();

// Gives back what only the start of a large library needed of it, as far as it comes from its file: most of it is not needed again.
void GiveBackLibraryPages();

// The directory of the running executable; user decoder libraries are named relative to it.
std::string ExecutableDirectory();

// The user's own settings: a file, or on Windows what the registry holds.
UserSettings FindUserSettings();

// Whether both paths lead to one file that is there; "-" is standard input.
bool IsSameFile(const std::string& a, const std::string& b);
// Whether it is a file on a disk, which has an end of its own; pipes and terminals have not.
bool IsDiskFile(const std::string& path);

// Seconds since 1970-01-01T00:00:00Z, and what this machine's zone adds to UTC at such a time; 0 for times that it
// cannot tell.
int64_t CurrentTime();
int64_t LocalOffset(int64_t utcSeconds);

// A sink over an open file of the platform (a descriptor; on Windows a handle).
OutputSink FileSink(int64_t file);

// Why the last write through such a sink failed; empty when none did.
std::string WriteFailure();

// A file that is written at its place, in place of what was there; -1 with a message that names it.
int64_t CreateOutputFile(const std::string& path, std::string* message);
bool CloseOutputFile(int64_t file);
bool RemoveFile(const std::string& path);

// Reads up to `length` bytes of an open file; 0 at the end, -1 on failure.
int32_t ReadFileBytes(int64_t file, uint8_t* out, int32_t length);

// Standard output's file, and whether standard output and standard error are terminals.
int64_t StandardOutputFile();
bool IsTerminal(int64_t file);
bool StandardErrorIsTerminal();

struct TerminalSize {
  int32_t columns, rows;
};
// Of standard output's terminal; 0 for what it does not say.
TerminalSize OutputTerminalSize();

}  // namespace qxview
