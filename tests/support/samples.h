// The samples as tests read them: their names, their records, and a host that knows protocols and objects.
#pragma once
#include <functional>
#include <string>
#include <vector>

#include "tests/support/transport.h"

namespace qxview::testing {

// The captures in samples/, by name.
std::vector<std::string> Samples();

// Calls `check` with every record of a sample, as long as nothing has failed.
void ForEachRecord(const std::string& sample, const std::function<void(const FrameRecord*)>& check);

// Lends the definitions, so that payloads reach the decoders of their ports, and the names of objects.
struct NamingHost : DefinitionsHost {
  NamingHost();
};

}  // namespace qxview::testing
