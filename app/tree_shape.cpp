#include "app/tree_shape.h"

#include <algorithm>

#include "app/command_line.h"
#include "app/protocol_fields.h"
#include "core/line_facts.h"
#include "host/text.h"

namespace qxview {
namespace {

LineHandle SkipDumps(Session& session, LineHandle line) {
  const ArenaTree& tree = session.Tree();
  while (line && RangeKind(RangeOfLine(&session.Context(), &tree, line)) == kRawDataKind) line = tree.NextSibling(line);
  return line;
}

// Splits "tcp,http" and looks the names up.
bool TakeProtocols(const std::string& value, std::vector<std::string>* protocols, std::string* wrong) {
  for (size_t at = 0; at <= value.size();) {
    const size_t end = std::min(value.find(',', at), value.size());
    const std::string name = Trim(std::string_view(value).substr(at, end - at));
    const std::string protocol = ProtocolOfName(name);
    if (protocol.empty()) {
      *wrong = "there is no protocol " + QuoteValue(name) + "; qxview protocols --fields lists them";
      return false;
    }
    protocols->push_back(protocol);
    at = end + 1;
  }
  return true;
}

}  // namespace

LineHandle TreeShape::FirstUnder(Session& session, LineHandle line, int32_t depthOfLine) const {
  if (line && depthOfLine >= depth) return 0;
  if (line && !only.empty() && depthOfLine == 1) {
    const LineFact* fact = FactOf(&session.Context(), session.Tree().RangeIndex(line));
    if (!fact || std::find(only.begin(), only.end(), fact->protocol) == only.end()) return 0;
  }
  const LineHandle first = session.Tree().FirstChild(line);
  return noDumps ? SkipDumps(session, first) : first;
}

LineHandle TreeShape::Next(Session& session, LineHandle line) const {
  const LineHandle next = session.Tree().NextSibling(line);
  return noDumps ? SkipDumps(session, next) : next;
}

void AddShapeOptions(Command* command, TreeShape* shape) {
  command->AddOption("-O,--only", "PROTO[,PROTO]", "details of these protocols alone (tree, json)",
                     [shape](const std::string& value, std::string* wrong) {
                       return TakeProtocols(value, &shape->only, wrong);
                     });
  command->AddNumber("--depth", "N", "lines of the first N levels (tree, json)", 1, 1000, &shape->depth);
  command->AddFlag("--no-dumps", "without the rows of hex dumps (tree, json)", &shape->noDumps);
}

}  // namespace qxview
