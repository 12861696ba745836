#include <dlfcn.h>
#include <pcap/pcap.h>

#include <map>

#include "platform/bpf_filter.h"

namespace qxview {
namespace {

constexpr int kSnapLength = 262144;

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

  bool Load() {
    void* library = dlopen("libpcap.so.0.8", RTLD_NOW | RTLD_LOCAL);
    if (!library) library = dlopen("libpcap.so.1", RTLD_NOW | RTLD_LOCAL);
    if (!library) return false;
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

  // Compiles for one link type; the error text when it does not compile.
  std::string Compile(uint16_t linkType) {
    Program& program = programs_[linkType];
    pcap_t* dead = pcap_.openDead(DltOf(linkType), kSnapLength);
    if (!dead) return "out of memory";
    program.compiled = pcap_.compile(dead, &program.code, expression_.c_str(), 1, PCAP_NETMASK_UNKNOWN) == 0;
    const std::string error = program.compiled ? "" : pcap_.getError(dead);
    pcap_.close(dead);
    return error;
  }

  bool Matches(uint16_t linkType, const uint8_t* data, uint32_t length, uint32_t wireLength,
               std::string* why) override {
    if (programs_.find(linkType) == programs_.end()) *why = Compile(linkType);
    const Program& program = programs_[linkType];
    if (!program.compiled) return false;
    pcap_pkthdr header{};
    header.caplen = length;
    header.len = wireLength;
    return pcap_.match(&program.code, &header, data) != 0;
  }

 private:
  struct Program {
    bpf_program code{};
    bool compiled = false;
  };
  Pcap pcap_;
  std::string expression_;
  std::map<uint16_t, Program> programs_;
};

}  // namespace

std::unique_ptr<BpfFilter> BpfFilter::Create(const std::string& expression, std::string* message) {
  Pcap pcap{};
  if (!pcap.Load()) {
    *message = "--filter needs libpcap, which is not on this machine";
    return nullptr;
  }
  auto filter = std::make_unique<PcapFilter>(pcap, expression);
  const std::string error = filter->Compile(DLT_EN10MB);
  if (!error.empty()) {
    *message = "--filter " + expression + ": " + error;
    return nullptr;
  }
  return filter;
}

}  // namespace qxview
