// A packet on pages: its row of the list, the lines of its tree, its bytes.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "paper/pages.h"

namespace qxview {

struct PaperParts {
  bool tree = false, list = false, bytes = false;
  bool HasListAlone() const { return list && !tree && !bytes; }
};

// Texts of a packet are in the characters of lines.
struct PaperPacket {
  uint64_t number;
  std::string_view time;      // for the page's head; empty for none
  std::string_view elapsed;   // since the first packet
  std::string_view source, destination, protocol, summary;
  uint32_t length;            // on the wire
  std::string_view lines;     // of its tree, each with its line end
  const uint8_t* bytes;
  int32_t captured;
};

class PacketPages {
 public:
  // The list of wide pages has a column of protocols, where these are told.
  PacketPages(PageBreaker* breaker, const PageGrid& grid, const PaperParts& parts, bool tellsProtocols = true);
  void Put(const PaperPacket& packet);

 private:
  void PutListRow(const PaperPacket& packet);
  void PutTree(std::string_view lines);
  void PutBytes(const PaperPacket& packet);

  PageBreaker* const breaker_;
  const PaperParts parts_;
  const bool isWide_;
  int32_t hang_ = 0;   // of the list's rows
};

}  // namespace qxview
