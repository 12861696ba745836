// Ctrl-C and its kin, for a command line: they end the input, not the program. What has been read is shown and files are
// finished; then the program ends by the signal after all. A second one ends it at once.
#pragma once
#include <cstdint>
#include <string>

namespace qxview {

// From now on what would end the program ends its input. Signals that whoever started the program ignores stay ignored.
void EndInputOnSignals();
bool IsInputEnded();

// Ends the program by the signal that ended its input; returns when none did.
void EndBySignal();
// A signal is how this work is meant to end: the program then ends with its own status.
void TakeSignalAsEnd();

// What a second signal cleans up: a file that is not whole (empty: none), and a terminal left in some colour.
void RemoveOnSignal(const std::string& path);
void RemoveAtOnce();   // the same file, where the program ends otherwise
void ResetColorsOnSignal();

// What to do before waiting for input that is not there yet; null for nothing.
using IdleAction = void (*)(void* with);
void SetIdleAction(IdleAction action, void* with);

// Waits until `file`, a descriptor or a handle, has bytes to read or has ended; false when the input was ended meanwhile.
bool WaitForInput(int64_t file);

}  // namespace qxview
