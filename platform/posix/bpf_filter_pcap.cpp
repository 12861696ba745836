#include <dlfcn.h>
#include <pcap/pcap.h>

#include <algorithm>
#include <iterator>
#include <map>

#include "platform/bpf_filter.h"

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

// libpcap is looked up when a filter is asked for: a program that filters nothing starts without it, and one on a
// machine that does not have it says so.
struct Pcap {
  decltype(&pcap_open_dead) openDead;
  decltype(&pcap_compile) compile;
  decltype(&pcap_geterr) getError;
  decltype(&pcap_close) close;
  decltype(&pcap_freecode) freeCode;
  decltype(&pcap_offline_filter) match;

  bool Load(std::string* why) {
    void* library = dlopen("libpcap.so.0.8", RTLD_NOW | RTLD_LOCAL);
    if (!library) *why = dlerror();
    if (!library) library = dlopen("libpcap.so.1", RTLD_NOW | RTLD_LOCAL);
    if (!library) return false;
    *why = "it lacks functions";
    const auto find = [&](auto& function, const char* name) {
      function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(dlsym(library, name));
      return function != nullptr;
    };
    return find(openDead, "pcap_open_dead") && find(compile, "pcap_compile") && find(getError, "pcap_geterr") &&
           find(close, "pcap_close") && find(freeCode, "pcap_freecode") && find(match, "pcap_offline_filter");
  }
};

class PcapFilter final : public BpfFilter {
 public:
  PcapFilter(const Pcap& pcap, const std::string& expression) : pcap_(pcap), expression_(expression) {}
  ~PcapFilter() override {
    for (auto& [linkType, program] : programs_) {
      if (program.compiled) pcap_.freeCode(&program.code);
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
    return pcap_.match(&program.code, &header, data) != 0;
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
    pcap_t* dead = pcap_.openDead(DltOf(linkType), kSnapLength);
    if (!dead) return program.error = "out of memory", program;
    program.compiled = pcap_.compile(dead, &program.code, expression_.c_str(), 1, PCAP_NETMASK_UNKNOWN) == 0;
    if (!program.compiled) program.error = pcap_.getError(dead);
    pcap_.close(dead);
    return program;
  }

  Pcap pcap_;
  std::string expression_;
  std::map<uint16_t, Program> programs_;
};

}  // namespace

std::unique_ptr<BpfFilter> BpfFilter::Create(const std::string& expression, std::string* message) {
  Pcap pcap{};
  std::string why;
  if (!pcap.Load(&why)) {
    *message = "--filter needs libpcap: " + why;
    return nullptr;
  }
  auto filter = std::make_unique<PcapFilter>(pcap, expression);
  // One that no kind of link takes is wrong; whether a capture's takes it is known at its first packet.
  const std::string& error = filter->Check(DLT_EN10MB);
  const auto compiles = [&](uint16_t linkType) { return filter->Check(linkType).empty(); };
  if (error.empty() || std::any_of(std::begin(kOtherLinks), std::end(kOtherLinks), compiles)) return filter;
  *message = "--filter " + expression + ": " + error;
  return nullptr;
}

}  // namespace qxview
