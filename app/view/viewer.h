// The packet view at a terminal: the list, the tree and the bytes in step, and one line for what is asked. Everything that takes
// long is done in pieces between two looks at the keyboard.
#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/list_time.h"
#include "app/view/overlay.h"
#include "app/view/prompt.h"
#include "app/view/remembered.h"
#include "app/view/screen.h"
#include "browse/places.h"
#include "browse/search.h"
#include "browse/tree_pane.h"
#include "browse/viewed_capture.h"
#include "paper/packet_pages.h"

namespace qxview {

enum Pane : uint8_t { kListPane, kTreePane, kBytesPane, kPanes };

class Viewer {
 public:
  // `input`: what packets come from while they are looked at; -1 for a file.
  Viewer(Screen& screen, ViewedCapture& capture, Remembered& remembered, int64_t input, bool isLive);
  // Until the user leaves; the signal that ended it, or 0.
  int Run();

  // For what lies over the panes.
  void Note(std::string text, bool isWrong = false) { note_ = std::move(text), noteIsWrong_ = isWrong; }
  bool FilterBy(const std::string& expression, std::string* wrong);
  void Jump(uint64_t number);
  ViewedCapture& Capture() { return capture_; }
  uint64_t Number() const { return number_; }
  const Marks& Marked() const { return marks_; }
  void Open(std::unique_ptr<Overlay> overlay) { opened_ = std::move(overlay); }
  void Ask(Prompt prompt) { prompt_.emplace(std::move(prompt)); }
  // Goes on until the step says that it is done.
  void StartTask(std::string name, std::function<bool()> step) { taskName_ = std::move(name), task_ = std::move(step); }
  // Asks for a file and writes the bytes to it.
  void AskFile(const std::string& title, std::string bytes);
  void CopyText(const std::string& text, const char* what);
  TreePane& Tree() { return tree_; }

  struct Action {
    std::vector<int32_t> keys;
    const char* about;          // the title of a group where there is no key
    void (Viewer::*run)();
  };
  static const std::vector<Action>& Actions();

 private:
  struct Rect {
    int32_t row = 0, column = 0, rows = 0, columns = 0;
    bool Holds(int32_t r, int32_t c) const { return r >= row && r < row + rows && c >= column && c < column + columns; }
  };
  struct Column {
    std::string key;
    int32_t width;   // 0: as its texts want it
  };
  struct Cells {
    PacketRow row;
    std::vector<std::string> extra;   // of columns that are keys
  };

  // viewer.cpp: the panes in step
  bool Work();
  void Select(uint64_t number);
  void SelectPlace(uint64_t place);
  uint64_t Place() const;
  void EnsureShown();
  void TakeKey(const Key& key);
  void TakeMouse(const Key& key);
  void Move(const Key& key);
  void MoveList(int64_t by);
  void MoveTree(int64_t by);
  void MoveBytes(int64_t by);
  bool MoveAcross(int32_t code);
  void SelectByte(int32_t offset);
  int32_t PageOf(Pane pane) const;
  void FitFilter();

  // viewer_draw.cpp
  void Arrange();
  void Draw();
  void DrawBar();
  void DrawStatus();
  void DrawList(const Rect& rect);
  void DrawRow(const Rect& rect, int32_t row, uint64_t place, const std::vector<int32_t>& widths);
  void DrawTree(const Rect& rect);
  void DrawBytes(const Rect& rect);
  void DrawByteRow(const Rect& rect, int32_t row, int32_t offset, FrameBytes marked);
  void DrawHead(const Rect& rect, Pane pane, const std::string& title);
  const Cells& CellsOf(uint64_t number);
  std::string CellText(const Cells& cells, size_t column, uint64_t place);
  std::vector<int32_t> WidthsFor(const Rect& rect, uint64_t first, uint64_t count);
  int32_t BytesInRow(const Rect& rect) const { return rect.columns >= 74 ? 16 : rect.columns >= 40 ? 8 : 4; }
  bool TakeColumns(const std::string& spec, std::string* wrong);
  std::string StatusText() const;

  // viewer_actions.cpp: what keys do
  void Quit() { quits_ = true; }
  void ShowHelp();
  void NextPane();
  void PaneBefore();
  void ClosePane();
  void OpenPanes();
  void ZoomPane() { zoomed_ = !zoomed_; }
  void Grow() { Resize(1); }
  void Shrink() { Resize(-1); }
  void Resize(int32_t by);
  void ToggleBeside() { remembered_.beside = !remembered_.beside; }
  void NextPacket() { MoveList(1); }
  void PacketBefore() { MoveList(-1); }
  void AskNumber();
  void Back();
  void Forward();
  void ToggleLine();
  void ExpandAll();
  void CollapseAll();
  void Levels1() { ShowLevels(1); }
  void Levels2() { ShowLevels(2); }
  void Levels3() { ShowLevels(3); }
  void Levels4() { ShowLevels(4); }
  void LevelsAll() { ShowLevels(100); }
  void ShowLevels(int32_t levels);
  void NextTime();
  void AskColumns();
  void ToggleMark();
  void NextMark();
  void MarkBefore();
  void ClearMarks();
  void Redraw() { screen_.DrawAnew(); }
  void Stick();
  void Escape();
  void AskDecodeAs();
  void UndoDecodeAs();
  void KeepDecodeAs();
  void ToggleNames();
  bool DecodeWith(HostOptions options, std::string* wrong);

  // viewer_find.cpp: search and filter
  void AskSearch();
  void SearchNext() { Search(false); }
  void SearchBefore() { Search(true); }
  void Search(bool backward);
  bool SearchHere(bool backward);
  void StartSearch(SearchText search, bool backward, bool selects);
  void SameBytes();
  void AskFilter();
  void ClearFilter();
  void FilterLine() { FilterFromLine(""); }
  void FilterAnd() { FilterFromLine(" and "); }
  void FilterOr() { FilterFromLine(" or "); }
  void FilterNot() { FilterFromLine(" and not "); }
  void FilterFromLine(const std::string& joint);
  void NextInConversation() { FindConversation(false); }
  void BeforeInConversation() { FindConversation(true); }
  void FindConversation(bool backward);
  void FilterConversation();
  void NextTrouble() { FindTrouble(false); }
  void TroubleBefore() { FindTrouble(true); }
  void FindTrouble(bool backward);
  void FindPacket(const std::string& name, bool backward, std::function<bool(uint64_t)> holds);

  // viewer_print.cpp, viewer_save.cpp, viewer_streams.cpp
  void ShowPrintMenu();
  void ShowPartsMenu(const std::vector<uint64_t>& numbers);
  void AskPrintFile(const std::vector<uint64_t>& numbers, const PaperParts& parts);
  void ShowCopyMenu();
  void ShowSaveMenu();
  void AskPackets(bool marked);
  void AskBytesFile();
  void AskTreeFile();
  void FollowStream();
  void ShowTables();
  void ShowFlow();

  Screen& screen_;
  ViewedCapture& capture_;
  Remembered& remembered_;
  const int64_t input_;
  const bool isLive_;     // packets are still to come
  bool quits_ = false, isDirty_ = true;
  int endedBy_ = 0;

  uint64_t number_ = 0;   // of the selected packet; 0 for none
  uint64_t top_ = 0;      // place of the first row that is seen
  bool sticks_ = false;   // to the end, as packets come
  TreePane tree_;
  size_t treeTop_ = 0;
  int32_t byte_ = -1;     // of the bytes' pane
  int32_t bytesTop_ = 0;  // row
  Pane focus_ = kListPane;
  bool open_[kPanes] = {true, true, true}, zoomed_ = false;
  Rect rects_[kPanes];
  int32_t pressedRow_ = -1;   // where the mouse took hold of a pane's head
  Pane pressed_ = kListPane;

  std::vector<Column> columns_;
  KeyQuery columnKeys_;
  std::unordered_map<uint64_t, Cells> cells_;
  ListTime time_;
  Marks marks_;
  VisitedPlaces places_;
  std::optional<SearchText> search_;
  std::optional<SearchText> same_;
  size_t decodings_ = 0;   // definitions that were made here

  std::optional<Prompt> prompt_;
  std::unique_ptr<Overlay> overlay_, opened_;
  std::string taskName_;
  std::function<bool()> task_;
  std::string note_;
  bool noteIsWrong_ = false, filterRuns_ = false;
};

}  // namespace qxview
