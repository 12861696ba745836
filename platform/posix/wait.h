// Waiting for several descriptors, for no longer than some time.
#pragma once
#include <vector>

namespace qxview {

enum class Waited { kReady, kTimeOut, kInputEnded };

// Until one of the files has something to read or fails, the input is ended by a signal, or the milliseconds have gone by; -1
// waits for as long as it takes. What is to be done before a wait is done.
Waited WaitForFiles(const std::vector<int>& files, int milliseconds);

}  // namespace qxview
