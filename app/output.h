// Buffered standard output for the command line: every write checked, a closed pipe ends the program quietly.
#pragma once
#include <string>
#include <string_view>

#include "core/characters.h"
#include "core/output_file.h"

namespace qxview {

class Output {
 public:
  Output();   // standard output: shown whenever input is waited for
  ~Output();
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  explicit Output(const OutputSink& sink) { OpenOutput(&file_, sink); }
  void Put(std::string_view text) { WriteOutput(&file_, text.data(), static_cast<int32_t>(text.size())); }
  void Put(char c) { WriteOutput(&file_, &c, 1); }
  void Flush() { FlushOutput(&file_); }
  bool Failed() const { return file_.failed; }
  OutputFile* File() { return &file_; }

 private:
  OutputFile file_;
};

// UTF-8 to Windows-1252; bytes that are no UTF-8 stay as they are. False with the first character that the code page
// does not have.
bool Windows1252Of(std::string_view text, std::string* out, std::string* missing);

}  // namespace qxview
