// What a report finds in packets beside their traffic: trouble, names, and addresses that two stations claim.
#pragma once
#include <map>
#include <set>
#include <string>
#include <vector>

#include "query/filter.h"

namespace qxview {

enum class Weight { kFault, kWarning, kNote };

// Trouble that a filter finds.
class Findings {
 public:
  struct Row {
    Weight weight;
    const char* title;
    const char* about;
    const char* filter;
  };
  struct Count {
    const Row* row;
    int32_t expression;
    uint64_t packets = 0, bytes = 0, first = 0;
  };

  explicit Findings(Filter* filter);
  void Take(const Filter& filter, uint64_t number, uint64_t bytes);
  const std::vector<Count>& All() const { return counts_; }

 private:
  std::vector<Count> counts_;
};

// Names that packets tell of addresses.
class LearntNames {
 public:
  struct Name {
    std::string address, name;   // UTF-8
    const char* how;
    std::string filter;
    uint64_t packets = 0;
  };

  explicit LearntNames(KeyQuery* query);
  void Take(const KeyQuery& query, const std::string& destination);
  std::vector<Name> ByPackets() const;
  uint64_t LeftOut() const { return leftOut_; }   // packets that tell more names than are kept

 private:
  void Learn(const char* how, const std::string& address, const AskedValue& name, const char* nameKey, const char* addressKey);

  int32_t question_, ipv4_, ipv6_, server_, header_, client_, clientAddress_;
  std::map<std::string, Name> names_;
  std::set<const Name*> ofThis_;   // of the packet that is taken
  uint64_t leftOut_ = 0;
};

// Hardware addresses by the network addresses that they claim in ARP.
class HardwareOwners {
 public:
  explicit HardwareOwners(KeyQuery* query);
  void Take(const KeyQuery& query);
  // The network addresses that several claim, with the packets of each.
  std::vector<std::pair<std::string, std::map<std::string, uint64_t>>> Shared() const;

 private:
  int32_t address_, hardware_;
  std::map<std::string, std::map<std::string, uint64_t>> owners_;
};

// A text as the literal of a filter, in quotation marks; empty for what no filter can ask.
std::string FilterLiteral(std::string_view utf8);

}  // namespace qxview
