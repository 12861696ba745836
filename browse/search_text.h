// What a user looks for in a packet view, as it was typed.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "query/value.h"

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

// Whether a text of kList or kTree is in one of the packet's.
bool IsIn(const SearchText& search, std::string_view text);

// Where the bytes are in a packet; -1 for nowhere.
int32_t FindBytes(const SearchText& search, const uint8_t* bytes, int32_t length, int32_t from = 0);

}  // namespace qxview
