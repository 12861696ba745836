// Measurements in lines of text: StatsD's over UDP ("name:value|type|@rate|#tags", its protocol text) and Graphite's
// plaintext protocol ("path value timestamp").
#include "core/times.h"
#include "decoders/common/header_lines.h"

namespace qxview {
namespace {

const char* MetricName(const Field& type) {
  constexpr struct {
    const char* sign;
    const char* name;
  } kTypes[] = {{"c", "Counter"}, {"g", "Gauge"},     {"ms", "Timer"}, {"h", "Histogram"},
                {"m", "Meter"},   {"s", "Set"},       {"d", "Distribution"}};
  for (const auto& each : kTypes) {
    if (IsWord(type, each.sign)) return each.name;
  }
  return kUnknown;
}

// Behind "name:" stand values with their types, of which one line may have several.
void ShowMetric(const Place& at, const Field& line) {
  Field rest = line;
  const Field name = TakeWord(rest, ":");
  const Place in = Under(at, AddTextLine(at, line, "Metric"));
  AddTextLine(in, name, "Name");
  AddTextLine(in, TakeWord(rest, "|"), "Value");
  const Field type = TakeWord(rest, "|");
  AddLine(in, type, "Type: %s = %s", Text(type), MetricName(type));
  Loop loop;
  while (rest.length > 0 && MoreAt(in, rest, loop)) {
    const Field part = TakeWord(rest, "|");
    if (!part.here) continue;
    const Field behind = Slice(part, 1, part.length - 1);
    switch (PeekU8(part)) {
      case '@': AddTextLine(in, part, "Sample Rate", behind); break;
      case '#': AddTextLine(in, part, "Tags", behind); break;
      case 'T': AddTextLine(in, part, "Timestamp", behind); break;
      default: AddTextLine(in, part, "Extension"); break;
    }
  }
}

bool IsMetric(const Field& line) {
  Field rest = line;
  const Field name = TakeWord(rest, ":");
  const Field value = TakeWord(rest, "|");
  const Field type = TakeWord(rest, "|");
  return name.here && value.here && type.here && name.length < line.length;
}

void ShowPoint(const Place& at, const Field& line) {
  Field rest = line;
  const Place in = Under(at, AddTextLine(at, line, "Metric"));
  AddTextLine(in, TakeWord(rest), "Path");
  AddTextLine(in, TakeWord(rest), "Value");
  const Field time = TakeWord(rest);
  const int64_t seconds = time.here && time.length == 10 ? DecimalOf(Slice(time, 0, 9)) : -1;
  if (seconds >= 0 && PeekU8(time, 9) >= '0' && PeekU8(time, 9) <= '9') {
    AddLine(in, time, "Timestamp: %s (%s)", Text(time), UtcText(seconds * 10 + (PeekU8(time, 9) - '0')));
  } else if (time.here) {
    AddTextLine(in, time, "Timestamp");
  }
}

bool IsPoint(const Field& line) {
  Field rest = line;
  const bool hasPath = TakeWord(rest).here;
  return hasPath && TakeWord(rest).here && TakeWord(rest).here && !Trimmed(rest).length;
}

// Lines that are of the protocol, each shown; the rest as it is.
int32_t DecodeLines(const Place& at, Cursor& c, const char* title, bool (*isMetric)(const Field&),
                    void (*show)(const Place&, const Field&)) {
  TextLine line;
  Cursor ahead = c;
  if (!TakeLine(ahead, line) || !isMetric(line.text)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "%s: %s", title, Text(line.text)));
  Loop loop;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) {
    if (isMetric(line.text)) {
      show(in, line.text);
    } else if (line.text.length > 0) {
      AddTextLine(in, line.text, "Text");
    }
  }
  return 1;
}

}  // namespace

int32_t DecodeStatsd(const Place& at, Cursor c) { return DecodeLines(at, c, "StatsD", IsMetric, ShowMetric); }
int32_t DecodeGraphite(const Place& at, Cursor c) { return DecodeLines(at, c, "Graphite", IsPoint, ShowPoint); }

}  // namespace qxview
