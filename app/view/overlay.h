// What lies over the panes for a while: texts, menus and tables.
#pragma once
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "app/view/screen.h"

namespace qxview {

class Overlay {
 public:
  virtual ~Overlay() = default;
  virtual void Draw(Screen& screen) = 0;
  // False when it is done with.
  virtual bool TakeKey(const Key& key, Screen& screen) = 0;
  // Does a piece of what fills it; false when there is nothing left to do.
  virtual bool Work() { return false; }
};

struct TextLine {
  std::string text;   // UTF-8, or in the characters of lines
  Style style = Style::kPlain;
  bool isUtf8 = true;
};

// Lines to read, as they come.
class TextOverlay : public Overlay {
 public:
  TextOverlay(std::string title, std::string keys) : title_(std::move(title)), keys_(std::move(keys)) {}
  void Add(TextLine line) { lines_.push_back(std::move(line)); }
  void Draw(Screen& screen) override;
  bool TakeKey(const Key& key, Screen& screen) override;

 protected:
  void Clear() { lines_.clear(), top_ = 0; }
  void SetTitle(std::string title) { title_ = std::move(title); }
  std::vector<TextLine>& Lines() { return lines_; }
  size_t Top() const { return top_; }

 private:
  bool Find(bool again);

  std::string title_, keys_;
  std::vector<TextLine> lines_;
  size_t top_ = 0;
  int32_t shift_ = 0;
  bool isTyping_ = false;
  std::string wanted_;
};

// Choices by a key each.
class MenuOverlay final : public Overlay {
 public:
  struct Choice {
    int32_t key;
    std::string about;
    std::function<void()> take;
  };
  MenuOverlay(std::string title, std::vector<Choice> choices) : title_(std::move(title)), choices_(std::move(choices)) {}
  void Draw(Screen& screen) override;
  bool TakeKey(const Key& key, Screen& screen) override;

 private:
  std::string title_;
  std::vector<Choice> choices_;
  size_t selected_ = 0;
};

// Rows to choose from, sorted by any column.
class TableOverlay : public Overlay {
 public:
  struct Column {
    std::string title;
    bool isNumber = false;
  };
  struct Cell {
    std::string text;   // UTF-8
    double number = 0;
  };
  using Row = std::vector<Cell>;

  void Draw(Screen& screen) override;
  bool TakeKey(const Key& key, Screen& screen) override;

 protected:
  void SetTable(std::string title, std::vector<Column> columns, std::vector<Row> rows);
  // Enter.
  virtual bool Choose(const Row& row) = 0;
  // Keys of its own; *goesOn false to close.
  virtual bool TakeOwnKey(int32_t, bool* /*goesOn*/) { return false; }
  virtual std::string KeysText() const { return "Enter filter  s sort  q close"; }

 private:
  void Sort();
  std::string title_;
  std::vector<Column> columns_;
  std::vector<Row> rows_;
  std::vector<int32_t> widths_;
  size_t selected_ = 0, top_ = 0;
  int32_t sorted_ = -1;   // column; -1: as they came
};

}  // namespace qxview
