// Output of the print mode that becomes a text.
#pragma once
#include <string>

#include "core/output_file.h"

namespace qxview {

class TextOutput {
 public:
  TextOutput() {
    OpenOutput(&file_, {this,
                        [](void* self, const char* bytes, int32_t length) {
                          static_cast<TextOutput*>(self)->text_.append(bytes, static_cast<size_t>(length));
                          return int32_t{1};
                        },
                        [](void* self, int64_t bytes) {
                          std::string& text = static_cast<TextOutput*>(self)->text_;
                          text.resize(text.size() - static_cast<size_t>(bytes));
                          return int32_t{1};
                        },
                        -1});
  }
  TextOutput(const TextOutput&) = delete;
  TextOutput& operator=(const TextOutput&) = delete;
  OutputFile* File() { return &file_; }
  // What was put since the last call.
  std::string Take() {
    FlushOutput(&file_);
    std::string taken;
    taken.swap(text_);
    return taken;
  }

 private:
  std::string text_;
  OutputFile file_;
};

}  // namespace qxview
