// Which protocols stand in which, with the packets and bytes of each.
#pragma once
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "app/traffic.h"

namespace qxview {

class ProtocolTree {
 public:
  struct Node {
    Traffic traffic;
    uint64_t last = 0;   // packets that go no deeper
    std::map<std::string, Node, std::less<>> under;

    // Those under it, most packets first.
    std::vector<const std::pair<const std::string, Node>*> ByPackets() const;
  };

  // A packet by its protocols' short names, the outer ones first.
  template <typename Names>
  void Add(const Names& protocols, uint64_t bytes) {
    Node* node = &root_;
    for (const std::string_view protocol : protocols) {
      auto found = node->under.find(protocol);
      if (found == node->under.end()) {
        if (nodes_ >= kMostNodes) break;   // the packet counts towards what is there
        ++nodes_;
        found = node->under.emplace(protocol, Node()).first;
      }
      node->traffic += {1, bytes};
      node = &found->second;
    }
    node->traffic += {1, bytes};
    node->last += 1;
  }

  const Node& Root() const { return root_; }
  bool IsWhole() const { return nodes_ < kMostNodes; }

 private:
  static constexpr size_t kMostNodes = 20000;
  Node root_;
  size_t nodes_ = 0;
};

// The registry's name of a protocol by its short one.
std::string ProtocolTitle(std::string_view key);

}  // namespace qxview
