#include <span>

#include "tests/support/smb_messages.h"

namespace qxview::testing {
namespace {

int32_t DecodeOrContinue(const Place& at, Cursor c) { return DecodeSmb(at, c, true); }

struct BlockCase {
  const char* name;
  Bytes message;
  const char* blocks;
};

TEST(Smb, RefusesWhatIsNoMessage) {
  TestView view;
  const Bytes header = Header(43, kRequest, kOem);
  EXPECT_EQ(view.Run(DecodeOneSmb, header), kSmbTruncated) << "one byte short of a block";
  EXPECT_EQ(view.Text(), "");
  EXPECT_EQ(view.Run(DecodeOneSmb, Bytes(40, 0x41)), kSmbNotDecoded);
  EXPECT_EQ(view.Run(DecodeOrContinue, Bytes(40, 0x41)), kSmbDecoded);
  EXPECT_EQ(view.Text(), "CIFS: Continuation Data, 40 bytes {0+40}\n  SMB Continuation Data {0+40}\n");
  EXPECT_EQ(view.Run(DecodeOneSmb, header + Hex("0A") + Bytes(15)), kSmbTruncated) << "ten words in 15 bytes";
}

// A logoff whose next block is told to be at an offset, with another logoff behind it at 39.
TEST(Smb, ChainsGoForwardOnly) {
  struct ChainCase {
    const char* name;
    uint8_t next;
    int offset;
    int headings;
    int32_t result;
  };
  constexpr ChainCase kCases[] = {
      {"in order", 116, 39, 2, kSmbDecoded},          {"the end of the chain", 255, 39, 1, kSmbDecoded},
      {"itself", 116, 32, 1, kSmbDecoded},            {"the header", 116, 0, 1, kSmbDecoded},
      {"past the end", 116, 46, 1, kSmbDecoded},      {"far past the end", 116, 0xFFFF, 1, kSmbDecoded},
      {"inside its own words", 116, 35, 2, kSmbTruncated}, {"an unknown command", 96, 39, 2, kSmbDecoded},
      {"no AndX command", 113, 39, 2, kSmbDecoded},   {"with a gap", 116, 40, 2, kSmbTruncated},
  };
  for (const ChainCase& c : kCases) {
    const Bytes first = Hex("02") + Bytes{c.next, 0} + Little(c.offset, 2) + Hex("0000");
    const Bytes message = Header(116, kRequest, kOem) + first + Block("FF 00 0000");
    TestView view;
    EXPECT_EQ(view.Run(DecodeOneSmb, message), c.result) << c.name;
    const std::string tree = view.Text();
    int headings = 0;
    for (size_t at = tree.find("  SMB - "); at != std::string::npos; at = tree.find("  SMB - ", at + 1)) ++headings;
    EXPECT_EQ(headings, c.headings) << c.name << "\n" << tree;
  }
}

TEST(Smb, SegmentsHoldMessagesBehindTheirLength) {
  const Bytes echo = Header(43, kRequest, kOem) + Block("0100", Hex("AA"));
  const Bytes framed = Hex("00 00 0026") + echo;
  ExpectInOrder(TreeOfRun(DecodeSmbOverTcp, framed + Hex("85 00 0000") + framed + Hex("00 01 FFFF") + echo),
                {"SMB over TCP {0+4}", "Message Type: 0x00 = Session Message {0+1}", "Reserved: 0x00 {1+1}",
                 "Message Length: 38 {2+2}", "CIFS: Client Request - Echo", "SMB - Echo {36+6}", "SMB over TCP {42+4}",
                 "0x85 = Session Keep Alive", "SMB over TCP {46+4}", "SMB - Echo {82+6}", "Reserved: 0x01",
                 "Message Length: 65535", "SMB - Echo {124+6}"});
  TestView view;
  EXPECT_EQ(view.Run(DecodeSmbOverTcp, Hex("01 00 0026") + echo), kSmbNotDecoded);
  EXPECT_EQ(view.Run(DecodeSmbOverTcp, Hex("00 00 0020") + Header(43, kRequest, kOem)), kSmbTruncated);
}

TEST(Smb, HostileMessagesAreBounded) {
  const Bytes negotiate = Header(114, kRequest, kOem) + Hex("00 FFFF");
  const Bytes setup = Header(115, kRequest, kOem) + Hex("0C FF000000") + Bytes(10) +
                      Hex("F0FF") + Bytes(8) + Hex("FFFF");
  Bytes chain = Header(116, kRequest, kOem), overlaid = chain;
  for (int at = 39; at < 65500; at += 7) chain = chain + Hex("02 74 00") + Little(at, 2) + Hex("0000");
  for (int at = 37; at < 65500; at += 5) overlaid = overlaid + Hex("02 74 00") + Little(at, 2);
  const struct {
    const char* name;
    Bytes message;
  } kCases[] = {
      {"empty dialects", negotiate + Repeat(Hex("02 00"), 32767)},
      {"dialects without a format", negotiate + Bytes(65535)},
      {"ranges to lock", Header(36, kRequest, kOem) + Hex("08 FF000000 0000 00 00 00000000 FFFF FFFF FFFF") +
                             Bytes(65535)},
      {"directory entries", Header(129, kResponse, kOem) + Hex("01 FFFF FFFF 05 FFFF") + Bytes(65532)},
      {"a chain of the smallest blocks", chain},
      {"a chain of blocks that overlap", overlaid},
      {"mechanisms", setup + Hex("60 83 00FFEE 06 01 2B A0 83 00FFE0 30 83 00FFD8 A0 83 00FFD0 30 83 00FFC8") +
                         Repeat(Hex("06 00"), 32700)},
      {"nested tokens", setup + Repeat(Hex("60 80"), 32700)},
      {"one long object identifier", setup + Hex("60 83 00FFEE 06 83 00FFD0") + Bytes(65520, 0x01)},
      {"pairs", setup + Hex("4E544C4D53535000 02000000 0000 0000 00000000 00000000") + Bytes(16) +
                    Hex("A0FF A0FF 30000000") +
                    Repeat(Hex("01 00 00 00"), 16370)},
      {"bytes of a message of 128 KB", Header(47, kRequest, kOem) +
       Block("FF 00 0000 0140 00000000 00000000 0000 0000 FFFF FFFF 4000") + Bytes(131072)},
  };
  constexpr double kMost = 200;   // milliseconds: far above what any takes, far below what a quadratic walk would
  for (const auto& c : kCases) {
    const double took = TimeOnSmallStack({c.message});
    EXPECT_LT(took, kMost) << c.name;
    RecordProperty(c.name, std::to_string(took));
  }
}

}  // namespace
}  // namespace qxview::testing
