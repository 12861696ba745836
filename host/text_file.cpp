#include "host/text_file.h"

#include "core/budgets.h"
#include "files/byte_source.h"

namespace qxview {
bool ReadTextFile(const std::string& path, std::istringstream* text, std::string* reason) {
  const auto source = OpenFileSource(path == "-" ? "./-" : path.c_str(), reason);   // standard input is the capture's
  if (!source) return false;
  std::string read;
  while (const uint8_t* bytes = source->Peek(1)) {
    const size_t count = source->Remaining();
    if (read.size() + count > kMostTextFile) return *reason = "it is too large", false;
    read.append(reinterpret_cast<const char*>(bytes), count);
    source->Skip(count);
  }
  if (!source->Failure().empty()) return *reason = source->Failure(), false;
  if (source->IsInterrupted()) return *reason = "interrupted", false;
  text->str(std::move(read));
  return true;
}

}  // namespace qxview
