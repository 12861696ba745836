#include <algorithm>
#include <iterator>
#include <map>

#include "platform/bpf_filter.h"
#include "platform/posix/pcap_library.h"

namespace qxview {
namespace {

constexpr int kSnapLength = 262144;

// Kinds of links with expressions of their own.
constexpr uint16_t kOtherLinks[] = {DLT_IEEE802_11_RADIO, DLT_SUNATM, DLT_PFLOG, DLT_MTP2, DLT_PPP, DLT_LINUX_SLL};

// LINKTYPE numbers that libpcap knows under another number on this system.
int DltOf(uint16_t linkType) {
  switch (linkType) {
    case 100: return DLT_ATM_RFC1483;
    case 101: return DLT_RAW;
    case 106: return DLT_ATM_CLIP;
    default: return linkType;
  }
}

class PcapFilter final : public BpfFilter {
 public:
  PcapFilter(const PcapLibrary& pcap, const std::string& expression) : pcap_(pcap), expression_(expression) {}
  ~PcapFilter() override {
    for (auto& [linkType, program] : programs_) {
      if (program.compiled) pcap_.freecode(&program.code);
    }
  }

  bool Matches(uint16_t linkType, const uint8_t* data, uint32_t length, uint32_t wireLength,
               std::string* why) override {
    Program& program = ProgramFor(linkType);
    why->swap(program.error);   // told once
    if (!program.compiled) return false;
    pcap_pkthdr header{};
    header.caplen = length;
    header.len = wireLength;
    return pcap_.offline_filter(&program.code, &header, data) != 0;
  }

  // The error text when it does not compile for this link type.
  const std::string& Check(uint16_t linkType) { return ProgramFor(linkType).error; }

 private:
  struct Program {
    bpf_program code{};
    bool compiled = false;
    std::string error;
  };

  Program& ProgramFor(uint16_t linkType) {
    const auto [found, isNew] = programs_.try_emplace(linkType);
    Program& program = found->second;
    if (!isNew) return program;
    pcap_t* dead = pcap_.open_dead(DltOf(linkType), kSnapLength);
    if (!dead) return program.error = "out of memory", program;
    program.compiled = pcap_.compile(dead, &program.code, expression_.c_str(), 1, PCAP_NETMASK_UNKNOWN) == 0;
    if (!program.compiled) program.error = pcap_.geterr(dead);
    pcap_.close(dead);
    return program;
  }

  const PcapLibrary& pcap_;
  std::string expression_;
  std::map<uint16_t, Program> programs_;
};

}  // namespace

std::unique_ptr<BpfFilter> BpfFilter::Create(const std::string& expression, std::string* message) {
  std::string why;
  const PcapLibrary* const pcap = PcapLibrary::Load(&why);
  if (!pcap) {
    *message = "--filter needs libpcap: " + why;
    return nullptr;
  }
  auto filter = std::make_unique<PcapFilter>(*pcap, expression);
  // One that no kind of link takes is wrong; whether a capture's takes it is known at its first packet.
  const std::string& error = filter->Check(DLT_EN10MB);
  const auto compiles = [&](uint16_t linkType) { return filter->Check(linkType).empty(); };
  if (error.empty() || std::any_of(std::begin(kOtherLinks), std::end(kOtherLinks), compiles)) return filter;
  *message = "--filter " + expression + ": " + error;
  return nullptr;
}

}  // namespace qxview
