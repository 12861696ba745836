// Decode cases as data: tests/cases/*.txt. A case is a payload of a row of the registry and, where it is more than a
// seed of the property test, the tree that it gives.
//
//   = application SMB [tcp]: a close with more words than it has fields
//   0000 0027  FF534D42 04 "text\r\n" u"wide" 18*00     # digits, texts, repeated bytes; a note
//   -
//   ...
//     SMB - Close File {36+7}
//
// The row's table and name; in brackets what else is known of the packet: tcp, its transport; to=N, the port it goes
// to; link=N and extension=DIGITS, what its record says; modern, the setting. In the tree "..." stands for any lines, none included.
#pragma once
#include <string>
#include <vector>

#include "tests/support/decoding.h"

namespace qxview::testing {

struct Payload {
  const DecoderRow* row = nullptr;
  uint8_t mediaType = 0;
  bool overTcp = false;
  bool modern = false;
  uint16_t toPort = 0;
  uint16_t linkType = 0;
  Bytes extension{};
  Bytes bytes{};
};

struct DecodeCase {
  Payload payload;
  std::string title;
  std::vector<std::string> tree;
  bool isSeed = true;
};

// The case files, by name; the cases of one.
std::vector<std::string> CaseFiles();
std::vector<DecodeCase> CasesOf(const std::string& file);

// Runs the payload's decoder as if the packet carried it, into the view's tree or wherever its mode leads. The payload
// stands in an allocation of its own size. `isTried`: as others try it, where in silence the loops of plain decoders end at once.
struct PayloadRun {
  int32_t lines;           // added, or counted in silence
  uint64_t allocations;    // that the decoder made
  bool takes;              // it did not decline
};
PayloadRun RunPayload(View& view, const Payload& payload, bool isTried = false);

// Whether libcrypto is here: without it, as under Wine, what is encrypted stays closed.
bool HasLibcrypto();

// A row by its table's and its own name, "application DNS"; null for none.
const DecoderRow* RowNamed(const std::string& name);

}  // namespace qxview::testing
