#include "app/save_format.h"

#include "app/command_line.h"
#include "host/text.h"

namespace qxview {

void AddSaveFormat(Command* command, const char* about, SaveFormat* format) {
  command->AddChoice<SaveFormat>(
      "--format", "FORMAT", about,
      {{"pcap", SaveFormat::kPcap}, {"pcapng", SaveFormat::kPcapng}, {"bfr", SaveFormat::kCaptureBuffer}}, format);
}

bool EndsIgnoringCase(const std::string& text, std::string_view ending) {
  return text.size() >= ending.size() && EqualsIgnoringCase(std::string_view(text).substr(text.size() - ending.size()), ending);
}

SaveFormat FormatOfName(const std::string& name) {
  if (EndsIgnoringCase(name, ".pcap")) return SaveFormat::kPcap;
  if (EndsIgnoringCase(name, ".pcapng")) return SaveFormat::kPcapng;
  return EndsIgnoringCase(name, ".bfr") ? SaveFormat::kCaptureBuffer : SaveFormat::kByName;
}

const char* CompressedEnding(const std::string& name) {
  for (const char* ending : {".gz", ".zst", ".lz4", ".xz", ".bz2"}) {
    if (EndsIgnoringCase(name, ending)) return ending;
  }
  return nullptr;
}

}  // namespace qxview
