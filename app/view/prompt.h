// One line that the user types: with a check while typing, completion by Tab and what was typed before.
#pragma once
#include <functional>
#include <string>
#include <vector>

#include "app/view/screen.h"

namespace qxview {

class Prompt {
 public:
  // What is done with the text; false with what is wrong, and the line stays.
  using Take = std::function<bool(const std::string& text, std::string* wrong)>;
  // Texts that a word may be completed to, in their order.
  using Complete = std::function<std::vector<std::string>(const std::string& word)>;

  Prompt(std::string title, std::string text, Take take)
      : title_(std::move(title)), text_(std::move(text)), at_(text_.size()), take_(std::move(take)) {}

  // While typing: green for what is right.
  void CheckBy(Take check) { check_ = std::move(check), Look(); }
  void CompleteBy(Complete complete) { complete_ = std::move(complete); }
  // The newest first.
  void RememberIn(std::vector<std::string>* before) { before_ = before; }

  // False when the line is done with.
  bool TakeKey(const Key& key);
  // In this row, what is wrong and the completions in the one above.
  void Draw(Screen& screen, int32_t row) const;

 private:
  size_t WordStart() const;
  void CompleteWord();
  void Recall(int32_t step);
  void Look();
  bool Accept();

  std::string title_, text_;
  size_t at_;
  Take take_, check_;
  Complete complete_;
  std::vector<std::string>* before_ = nullptr;
  int32_t recalled_ = -1;
  std::string typed_;   // before anything was recalled
  bool isRight_ = true;
  std::string wrong_;
  std::vector<std::string> candidates_;
  size_t candidate_ = 0, wordStart_ = 0;
};

}  // namespace qxview
