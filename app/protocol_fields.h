// The keys of protocols, as `protocols --fields` lists them.
#pragma once
#include <string>
#include <vector>

#include "app/output.h"

namespace qxview {

// The short name of the protocol that somebody names by its own or its short name; empty for a name that none has.
std::string ProtocolOfName(const std::string& name);

// The keys of these protocols (short names), of all when there is none, a line each, and the aliases behind them.
void PutFields(Output& out, const std::vector<std::string>& protocols, bool asJson);

}  // namespace qxview
