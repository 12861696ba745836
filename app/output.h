// Buffered standard output for the command line: every write checked, a closed pipe ends the program quietly.
#pragma once
#include <string_view>

#include "core/output_file.h"

namespace qxview {

class Output {
 public:
  Output();                                  // standard output
  explicit Output(const OutputSink& sink) { OpenOutput(&file_, sink); }
  void Put(std::string_view text) { WriteOutput(&file_, text.data(), static_cast<int32_t>(text.size())); }
  void Put(char c) { WriteOutput(&file_, &c, 1); }
  void Flush() { FlushOutput(&file_); }
  bool Failed() const { return file_.failed; }
  OutputFile* File() { return &file_; }

 private:
  OutputFile file_;
};

// Windows-1252 to UTF-8.
std::string_view Utf8Of(uint8_t character, char* scratch);

}  // namespace qxview
