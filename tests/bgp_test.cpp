// What a BGP session's openings teach for its routes: the width of systems' numbers and path identifiers, in either
// direction, over a restart whose opening was missed, and from the bytes alone.
#include "tests/support/transport.h"

namespace qxview::testing {
namespace {

Bytes Message(uint8_t type, const Bytes& body) {
  const uint16_t length = static_cast<uint16_t>(19 + body.size());
  return Bytes(16, 0xFF) + Bytes{static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length), type} + body;
}
Bytes Open(const Bytes& capabilities) {
  const uint8_t size = static_cast<uint8_t>(capabilities.size());
  const Bytes parameter = size ? Bytes{2, size} + capabilities : Bytes{};
  return Message(1, Hex("04 FDE8 00B4 0A000001") + Bytes{static_cast<uint8_t>(parameter.size())} + parameter);
}
Bytes Update(const Bytes& path, const Bytes& routes) {
  const Bytes attribute = Bytes{0x40, 2, static_cast<uint8_t>(path.size())} + path;
  return Message(2, Bytes{0, 0, 0, static_cast<uint8_t>(attribute.size())} + attribute + routes);
}

const Bytes kWide = Hex("41 04 0000FDE8"), kBothPaths = Hex("45 04 0001 01 03");
const Bytes kWidePath = Hex("02 02 0000FDE8 0000FDE9"), kNarrowPath = Hex("02 02 FDE8 FDE9");
const Bytes kRoute = Hex("18 C00002"), kRouteWithPath = Hex("00000007 18 C00002");

class BgpSessions : public ::testing::Test {
 protected:
  ~BgpSessions() override { testNetwork = TestNetwork{}; }
  std::string From(bool isFirst, const Bytes& payload) {
    testNetwork = TestNetwork{};
    if (!isFirst) std::swap(testNetwork.source, testNetwork.destination);
    TcpParts parts;
    parts.sourcePort = isFirst ? 40000 : 179;
    parts.destinationPort = isFirst ? 179 : 40000;
    parts.payload = payload;
    view_.Run(DecodeTcpOverNetwork, Tcp(parts));
    return view_.Text();
  }

 private:
  DefinitionsHost host_;
  TestView view_{&host_};
};

bool Has(const std::string& tree, const std::string& text) { return tree.find(text) != std::string::npos; }

TEST_F(BgpSessions, TellWidthsAndPathsInEitherDirection) {
  From(true, Open(kWide + kBothPaths));
  From(false, Open(kWide + kBothPaths));
  for (const bool isFirst : {true, false}) {
    const std::string tree = From(isFirst, Update(kWidePath, kRouteWithPath));
    ExpectInOrder(tree, {"AS_PATH: 65000 65001", "Path Identifier: 7 {", "Network: 192.0.2.0/24"});
    EXPECT_FALSE(Has(tree, "assumed")) << tree;
  }
}

TEST_F(BgpSessions, GiveWayToBytesWhereARestartWasMissed) {
  From(true, Open(kWide + kBothPaths));
  From(false, Open(kWide + kBothPaths));
  ExpectInOrder(From(true, Update(kNarrowPath, kRoute)),
                {"AS Number Width: 2 bytes (as the path tells, 4 were announced)", "AS_SEQUENCE 65000 65001",
                 "Network: 192.0.2.0/24"});
  From(true, Open({}));   // the other end's opening was not captured
  ExpectInOrder(From(false, Update(kWidePath, kRouteWithPath)),
                {"AS Number Width: 4 bytes (as the path tells, 2 were announced)", "AS_SEQUENCE 65000 65001",
                 "Path Identifier: 7 (as the bytes tell, the opening said otherwise)"});
  From(false, Open({}));
  EXPECT_FALSE(Has(From(true, Update(kNarrowPath, kRoute)), "as the")) << "both ends have told it anew";
}

TEST_F(BgpSessions, AreToldFromBytesWithoutOpenings) {
  ExpectInOrder(From(true, Update(kWidePath, kRouteWithPath)),
                {"AS Number Width: 4 bytes (assumed", "65000 65001", "Path Identifier: 7 (assumed"});
  From(true, Open(kWide));   // one end alone
  ExpectInOrder(From(true, Update(kNarrowPath, kRoute)), {"AS Number Width: 2 bytes (assumed", "65000 65001"});
}

TEST_F(BgpSessions, NameWhatSegmentsCut) {
  const Bytes update = Update(kWidePath, kRoute);
  const auto part = [&](size_t from, size_t to) {
    return Bytes(update.begin() + static_cast<std::ptrdiff_t>(from), update.begin() + static_cast<std::ptrdiff_t>(to));
  };
  EXPECT_TRUE(Has(From(true, part(0, 30)), "BGP: UPDATE, continued in a later segment {20+30}"));
  ExpectInOrder(From(true, part(30, update.size()) + update), {"BGP: rest of a message", "BGP: UPDATE {", "192.0.2.0/24"});
}

}  // namespace
}  // namespace qxview::testing
