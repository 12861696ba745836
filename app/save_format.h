// The kinds of capture files that are written.
#pragma once
#include <string>
#include <string_view>

namespace qxview {

class Command;

enum class SaveFormat { kByName, kCaptureBuffer, kPcap, kPcapng };

// Adds --format. `about` says what is done without it.
void AddSaveFormat(Command* command, const char* about, SaveFormat* format);

bool EndsIgnoringCase(const std::string& text, std::string_view ending);

// The format that a name's ending says; kByName when it says none.
SaveFormat FormatOfName(const std::string& name);

// The ending of a name that asks for compression, which is not done; null for another.
const char* CompressedEnding(const std::string& name);

}  // namespace qxview
