// Packets chosen by their numbers.
#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace qxview {

// Packet numbers from 1: "7", "3-9", "12-", comma-separated.
class PacketSelection {
 public:
  // False with a message that names the piece that is wrong.
  bool Parse(const std::string& list, std::string* wrong);
  void Add(uint64_t number) { spans_.push_back({number, number}); }
  bool Holds(uint64_t number) const;
  uint64_t Last() const;   // no packet behind this one is selected
  const std::string& Text() const { return text_; }   // as it was given

 private:
  std::vector<std::pair<uint64_t, uint64_t>> spans_;   // none: every packet
  std::string text_;
};

}  // namespace qxview
