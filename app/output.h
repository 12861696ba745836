// Buffered standard output for the command line: every write checked, a closed pipe ends the program quietly.
#pragma once
#include <string>
#include <string_view>

#include "core/characters.h"
#include "core/output_file.h"

namespace qxview {

class Output {
 public:
  // Standard output: shown whenever input is waited for, without a progress on its terminal.
  Output();
  ~Output();
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  explicit Output(const OutputSink& sink) { OpenOutput(&file_, sink); }
  // From now on a terminal is given what is put as text of Windows-1252, with controls as \xNN; others the bytes.
  void EscapeForTerminal();
  void Put(std::string_view text) { WriteOutput(&file_, text.data(), static_cast<int32_t>(text.size())); }
  void Put(char c) { WriteOutput(&file_, &c, 1); }
  // Room for so many bytes, kMostRoom at most, in the buffer; behind them Took says where they end.
  static constexpr size_t kMostRoom = 48u << 10;
  char* Room(size_t wanted) {
    if (kOutputSize - static_cast<size_t>(file_.used) < wanted) Flush();
    return file_.buffer + file_.used;
  }
  void Took(const char* end) { file_.used = static_cast<int32_t>(end - file_.buffer); }
  void Flush() { FlushOutput(&file_); }
  bool Failed() const { return file_.failed; }
  OutputFile* File() { return &file_; }

  // Where what is put goes in the end, without prefixes.
  const OutputSink& Target() const { return target_.write ? target_ : file_.sink; }

  // Lines that have their prefix.
  void PutPrefixed(std::string_view lines);

  // From now on every line but empty ones begins with this file's name and two blanks.
  void SetLinePrefix(std::string_view file);

 private:
  static int32_t WriteEscaped(void* output, const char* bytes, int32_t length);
  int32_t WritePrefixed(std::string_view bytes);

  OutputFile file_;
  OutputSink terminal_{};   // where escaped text goes
  bool endsInReturn_ = false;   // what was put last: one without a line feed behind it is a control like any other
  OutputSink target_{};   // where the lines go that are given their prefix
  std::string named_, prefix_, prefixed_;
  bool atLineStart_ = true;
};

// UTF-8 to Windows-1252; bytes that are no UTF-8 stay as they are. False with the first character that the code page
// does not have.
bool ToLineText(std::string_view text, std::string* out, std::string* missing);

}  // namespace qxview
