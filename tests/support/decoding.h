// What decode cases are written with: a frame as hexadecimal text with notes, the whole tree as text with ranges.
#pragma once
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/decoder.h"
#include "core/frame_entry.h"
#include "tests/support/trees.h"

namespace qxview::testing {

using Bytes = std::vector<uint8_t>;

// Hexadecimal digits; blanks, line ends and anything from '#' to the end of a line are passed over.
Bytes Hex(const std::string& text);
Bytes operator+(const Bytes& a, const Bytes& b);
Bytes Repeat(const Bytes& bytes, size_t times);
// The 14 bytes of an Ethernet II header, then the payload.
Bytes Ethernet(uint16_t ethertype, const Bytes& payload);
// An IPv4 header with a good checksum in front of the payload; ports and checksum (none) for UDP.
Bytes IPv4(uint8_t protocol, const Bytes& payload);
// An IPv6 header from fe80::1 to ff02::2 with the payload's length, in front of the payload.
Bytes IPv6(uint8_t nextHeader, const Bytes& payload);
Bytes Udp(uint16_t sourcePort, uint16_t destinationPort, const Bytes& payload);

// A record with the frame inside it, as a capture buffer lends it; with an extension block when `tag` is not 0.
class Record {
 public:
  explicit Record(const Bytes& frame, uint8_t mediaType = 0, uint16_t tag = 0, const Bytes& extension = {});
  FrameRecord* operator->() { return get(); }
  FrameRecord* get() { return reinterpret_cast<FrameRecord*>(bytes_.data()); }

 private:
  std::vector<uint8_t> bytes_;
};

// Settings by name for a test's host; anything a test needs more it sets on `host`.
struct TestHost {
  TestHost();
  QxHost host{};
  std::vector<std::pair<std::string, std::string>> settings;
};

// A view over a tree with an engine of its own. The engine reads its settings when the first frame is decoded.
class TestView {
 public:
  explicit TestView(TestHost* host = nullptr, TreeKind kind = TreeKind::kArena);
  ~TestView();
  View& view();
  DecodeTree& tree() { return *tree_; }
  std::string LineText(LineHandle line) const { return tree_.Text(line); }
  DecodeContext& context() { return *view().context; }
  LibraryLoader loader{};

  int32_t Decode(const Bytes& frame, uint8_t mediaType = 0);   // clears the tree first in display mode
  int32_t Decode(Record& record, int32_t skipBytes = 0);
  // Runs one decoder on bytes at frame offset 0 at a top-level place of `level`.
  int32_t Run(DecoderFunction decode, const Bytes& bytes, int32_t level = 3);

  // The tree, a line each: two blanks a depth, the text, " {offset+length}" of its stored range; " {kind:...}" in
  // front of the offset for kinds other than 0. Dump rows (image 13 with kind 8) are left out unless `dumps`.
  std::string Text(bool dumps = false) const;
  // What the print ('7') or save ('8') mode writes for the frame; for find use context().
  std::string Printed(const Bytes& frame, char mode = kPrintMode, uint8_t mediaType = 0);

 private:
  std::unique_ptr<TestHost> ownHost_;
  TestHost* host_;
  TestTree tree_;
  mutable View view_{};
};

// The tree of a frame decoded alone.
std::string TreeOf(const Bytes& frame, uint8_t mediaType = 0);
std::string TreeOf(Record record);
// Expects the texts in the tree, each behind the one before it.
void ExpectInOrder(const std::string& tree, const std::vector<std::string>& texts);
// The tree of one decoder run alone.
std::string TreeOfRun(DecoderFunction decode, const Bytes& bytes, int32_t level = 3);

// Allocations of this thread so far (malloc, calloc, realloc, operator new); always 0 where they cannot be counted.
uint64_t CountAllocations();

}  // namespace qxview::testing
