// The hierarchy of protocols, with the packets and bytes of each.
#include <map>
#include <string_view>

#include "app/statistics.h"
#include "core/dispatch.h"

namespace qxview {
namespace {

// The registry's name of a protocol by its short one.
std::string NameOf(std::string_view key) {
  for (int32_t i = 0; const ProtocolRow* row = RegistryProtocol(i); ++i) {
    if (row->key == key) return row->name;
  }
  return std::string(key);
}

class Protocols final : public Statistic {
 public:
  bool WantsProtocols() const override { return true; }
  void TakeProtocols(const std::vector<const char*>& protocols) override { path_ = &protocols; }

  void Take(const StatPacket& p) override {
    Node* node = &root_;
    for (const char* protocol : *path_) {
      if (nodes_ >= kMostNodes && !node->under.contains(protocol)) break;   // the packet counts towards what is there
      nodes_ += !node->under.contains(protocol);
      node->packets += 1;
      node->bytes += p.length;
      node = &node->under[protocol];
    }
    node->packets += 1;
    node->bytes += p.length;
    node->last += 1;
  }

  std::vector<StatTable> Tables() override {
    StatTable table("Protocols", {{"depth", "Depth", true},
                                  {"protocol", "Protocol", false},
                                  {"path", "Path", false},
                                  {"packets", "Packets", true},
                                  {"percent", "Percent", true},
                                  {"bytes", "Bytes", true},
                                  {"last", "Innermost", true}});
    AddRows(root_, 0, "", &table);
    return {table};
  }

 private:
  static constexpr size_t kMostNodes = 20000;
  struct Node {
    uint64_t packets = 0, bytes = 0, last = 0;   // last: of packets that go no deeper
    std::map<std::string, Node> under;
  };

  void AddRows(const Node& node, uint64_t depth, const std::string& path, StatTable* table) const {
    std::multimap<uint64_t, const std::pair<const std::string, Node>*, std::greater<>> byPackets;
    for (const auto& child : node.under) byPackets.emplace(child.second.packets, &child);
    for (const auto& [packets, child] : byPackets) {
      const std::string whole = path.empty() ? child->first : path + ":" + child->first;
      table->Number(depth).Text(std::string(2 * depth, ' ') + NameOf(child->first)).Text(whole);
      table->Number(packets).Percent(packets, root_.packets).Number(child->second.bytes).Number(child->second.last);
      AddRows(child->second, depth + 1, whole, table);
    }
  }

  const std::vector<const char*>* path_ = nullptr;
  Node root_;
  size_t nodes_ = 0;
};

}  // namespace

std::unique_ptr<Statistic> MakeProtocols() { return std::make_unique<Protocols>(); }

}  // namespace qxview
