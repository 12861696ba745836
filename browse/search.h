// What a view is asked to look for: in the rows of the list, in lines of trees, or in the packets' bytes.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "browse/tree_pane.h"
#include "browse/viewed_capture.h"

namespace qxview {

enum class SearchIn : uint8_t { kList, kTree, kBytes };

struct SearchText {
  SearchIn in = SearchIn::kTree;
  Literal literal;              // kList, kTree
  std::vector<uint8_t> bytes;   // kBytes
  int32_t offset = -1;          // of kBytes: only there
};

// Reads what a user types: TEXT, whatever the case; /EXPRESSION/ of kList and kTree; of kBytes hexadecimal pairs behind 0x, else
// the text's own bytes. False with what is wrong.
bool TakeSearch(SearchIn in, const std::string& typed, SearchText* search, std::string* wrong);

// Where the bytes are in a packet; -1 for nowhere.
int32_t FindBytes(const SearchText& search, const uint8_t* bytes, int32_t length, int32_t from = 0);

// A search over the packets that are shown, from behind one of them on around to itself, in steps.
class SearchRun {
 public:
  SearchRun(ViewedCapture& capture, SearchText search, uint64_t fromNumber, bool backward);
  enum class State { kGoesOn, kFound, kNotFound };
  State Advance(int32_t packets);
  uint64_t Found() const { return number_; }
  bool Wrapped() const { return wrapped_; }
  const SearchText& Text() const { return search_; }
  uint64_t Looked() const { return looked_; }

 private:
  bool Holds(uint64_t number);

  ViewedCapture& capture_;
  SearchText search_;
  uint64_t place_, looked_ = 0, number_ = 0;
  bool backward_, wrapped_ = false;
  KeyQuery lines_;
};

}  // namespace qxview
