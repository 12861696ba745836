// Connections with what went wrong in them, as a table.
#include "app/tcp_connections.h"

namespace qxview {
namespace {

class Tcp final : public Statistic {
 public:
  void Take(const StatPacket& p) override {
    host_ = p.host;
    connections_.Take(p);
  }

  void LetHostGo() override { host_ = nullptr; }

  std::vector<StatTable> Tables() override {
    StatTable table("TCP connections", {{"a", "A", false},
                                        {"b", "B", false},
                                        {"packets", "Packets", true},
                                        {"bytes", "Data", true},
                                        {"retransmissions", "Again", true},
                                        {"out_of_order", "Late", true},
                                        {"missing", "Gaps", true},
                                        {"duplicate_acks", "Dup ACK", true},
                                        {"zero_windows", "Zero win", true},
                                        {"resets", "RST", true},
                                        {"handshake", "Handshake", true}});
    const BoundedCounts<TcpConnections::Connection>& connections = connections_.All();
    for (const auto& [key, c] : connections.All()) {
      const TcpTrouble& trouble = c.trouble;
      table.Text(EndTextOf(TcpConnections::FirstEnd(key, c), host_)).Text(EndTextOf(TcpConnections::OtherEnd(key, c), host_));
      table.Number(c.packets).Number(c.bytes).Number(trouble.again).Number(trouble.outOfOrder).Number(trouble.missing);
      table.Number(trouble.duplicates).Number(trouble.zeroWindows).Number(trouble.resets);
      if (c.handshake >= 0) table.Seconds(c.handshake); else table.Nothing();
    }
    table.Sort("a");
    table.Sort("packets");
    table.Sort("retransmissions");
    if (connections.Merged()) {
      table.Remark("others: " + std::to_string(connections.Merged()) + " connections of few packets, with " +
                   std::to_string(connections.Others().packets) + " packets");
    }
    return {table};
  }

 private:
  const QxHost* host_ = nullptr;
  TcpConnections connections_;
};

}  // namespace

std::unique_ptr<Statistic> MakeTcp() { return std::make_unique<Tcp>(); }

}  // namespace qxview
