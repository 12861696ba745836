// The hierarchy of protocols, with the packets and bytes of each.
#include <algorithm>

#include "app/protocol_tree.h"
#include "app/statistics.h"
#include "core/dispatch.h"

namespace qxview {

std::vector<const std::pair<const std::string, ProtocolTree::Node>*> ProtocolTree::Node::ByPackets() const {
  std::vector<const std::pair<const std::string, Node>*> sorted;
  for (const auto& child : under) sorted.push_back(&child);
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const auto* a, const auto* b) { return a->second.traffic.packets > b->second.traffic.packets; });
  return sorted;
}

std::string ProtocolTitle(std::string_view key) {
  for (int32_t i = 0; const ProtocolRow* row = RegistryProtocol(i); ++i) {
    if (row->key == key) return row->name;
  }
  return std::string(key);
}

namespace {

class Protocols final : public Statistic {
 public:
  bool WantsProtocols() const override { return true; }
  void TakeProtocols(const std::vector<const char*>& protocols) override { path_ = &protocols; }
  void Take(const StatPacket& p) override { tree_.Add(*path_, p.length); }

  std::vector<StatTable> Tables() override {
    StatTable table("Protocols", {{"depth", "Depth", true},
                                  {"protocol", "Protocol", false},
                                  {"path", "Path", false},
                                  {"packets", "Packets", true},
                                  {"percent", "Percent", true},
                                  {"bytes", "Bytes", true},
                                  {"last", "Innermost", true}});
    AddRows(tree_.Root(), 0, "", &table);
    return {table};
  }

 private:
  void AddRows(const ProtocolTree::Node& node, uint64_t depth, const std::string& path, StatTable* table) const {
    for (const auto* child : node.ByPackets()) {
      const auto& [name, under] = *child;
      const std::string whole = path.empty() ? name : path + ":" + name;
      table->Number(depth).Text(std::string(2 * depth, ' ') + ProtocolTitle(name)).Text(whole).Number(under.traffic.packets);
      table->Percent(under.traffic.packets, tree_.Root().traffic.packets).Number(under.traffic.bytes).Number(under.last);
      AddRows(under, depth + 1, whole, table);
    }
  }

  const std::vector<const char*>* path_ = nullptr;
  ProtocolTree tree_;
};

}  // namespace

std::unique_ptr<Statistic> MakeProtocols() { return std::make_unique<Protocols>(); }

}  // namespace qxview
