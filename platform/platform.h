// What the command line and the exports take from the platform.
#pragma once
#include <string>

#include "core/engine.h"
#include "core/output_file.h"

namespace qxview {

LibraryLoader PlatformLibraryLoader();

// The directory of the running executable; user decoder libraries are named relative to it.
std::string ExecutableDirectory();

// A sink over an open file of the platform (a descriptor; on Windows a handle).
OutputSink FileSink(int64_t file);

// Reads up to `length` bytes of an open file; 0 at the end, -1 on failure.
int32_t ReadFileBytes(int64_t file, uint8_t* out, int32_t length);

// Standard output's file, and whether standard output and standard error are terminals.
int64_t StandardOutputFile();
bool IsTerminal(int64_t file);
bool StandardErrorIsTerminal();

}  // namespace qxview
