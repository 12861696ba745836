#include <sys/auxv.h>
#include <sys/syscall.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <netdb.h>
#include <netinet/in.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>

#ifdef __linux__
#include <linux/capability.h>
#endif

#include "files/capture_formats.h"
#include "files/pcapng_options.h"
#include "platform/interruption.h"
#include "platform/live_capture.h"
#include "platform/platform.h"
#include "platform/posix/pcap_library.h"
#include "platform/posix/wait.h"
#include "qxview/version.h"

namespace qxview {
namespace {

constexpr int kBlockMilliseconds = 50;    // after which the kernel hands over a block that is not full
constexpr int kDrainMilliseconds = 4 * kBlockMilliseconds;
constexpr int64_t kPerSecond = 1000000000;

int64_t Now() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

// Options of a pcapng block, as whoever reads a frame of one has them.
class OptionList {
 public:
  void Add(uint16_t code, std::string_view text) {
    if (text.empty()) return;
    text = text.substr(0, 0xFFFF);
    const uint16_t head[2] = {code, static_cast<uint16_t>(text.size())};
    bytes_.append(reinterpret_cast<const char*>(head), sizeof head).append(text);
    bytes_.resize((bytes_.size() + 3) & ~size_t{3});
  }
  FileOptions Shown() const {
    return {reinterpret_cast<const uint8_t*>(bytes_.data()), static_cast<uint32_t>(bytes_.size()), false};
  }

 private:
  std::string bytes_;
};

// One open interface.
struct Source {
  const PcapLibrary* pcap = nullptr;
  pcap_t* handle = nullptr;
  std::string name;
  OptionList options;
  CaptureInterface shown{};
  int64_t nanosecondsPerTick = 1000;
  uint64_t captured = 0;

  Source() = default;
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;
  ~Source() {
    if (handle) pcap->close(handle);
  }
};

using Sources = std::vector<std::unique_ptr<Source>>;

class LiveReader final : public CaptureReader {
 public:
  LiveReader(const PcapLibrary& pcap, const Sources& sources, const std::vector<CaptureFrame>& kinds,
             const LiveOptions& options, const std::string& name, std::function<void()> idle)
      : CaptureReader(nullptr, name.c_str()), pcap_(pcap), sources_(sources), kinds_(kinds), idle_(std::move(idle)),
        left_(options.count) {
    for (const auto& source : sources) files_.push_back(pcap.get_selectable_fd(source->handle));
    if (options.seconds > 0) end_ = Clock::now() + std::chrono::seconds(options.seconds);
  }
  uint64_t FilePosition() const override { return bytes_; }
  uint64_t FileSize() const override { return 0; }

 protected:
  bool IsInterrupted() const override { return false; }

  ReadResult ReadFrame(CaptureFrame* frame) override {
    if (left_ == 0) return ReadResult::kEnd;
    for (;;) {
      if (stoppedAt_ == 0 && (IsInputEnded() || Clock::now() >= end_)) Stop();
      // Each interface in turn, so that a busy one does not keep the others waiting.
      for (size_t tried = 0; tried < sources_.size(); ++tried) {
        next_ = (next_ + 1) % sources_.size();
        pcap_pkthdr* header = nullptr;
        const uint8_t* data = nullptr;
        const int got = pcap_.next_ex(sources_[next_]->handle, &header, &data);
        if (got == 1 && Take(*header, data, frame)) return ReadResult::kFrame;
        if (got < 0) return DamagedAs(sources_[next_]->name + ": " + pcap_.geterr(sources_[next_]->handle));
      }
      if (!Wait()) return ReadResult::kEnd;
    }
  }

 private:
  using Clock = std::chrono::steady_clock;

  // What arrived before this moment is still in the kernel's buffer, and is waited for.
  void Stop() {
    stoppedAt_ = Now();
    drained_ = Clock::now() + std::chrono::milliseconds(kDrainMilliseconds);
  }

  // False for a packet that came behind the end.
  bool Take(const pcap_pkthdr& header, const uint8_t* data, CaptureFrame* frame) {
    Source& source = *sources_[next_];
    const int64_t time = header.ts.tv_sec * kPerSecond + header.ts.tv_usec * source.nanosecondsPerTick;
    if (stoppedAt_ != 0 && time > stoppedAt_) return false;
    const char* const file = frame->file;
    *frame = kinds_[next_];
    frame->file = file;
    frame->nanoseconds = time;
    frame->capturedLength = frame->dataLength = header.caplen;
    frame->wireLength = header.len;
    frame->data = data;
    bytes_ += header.caplen;
    ++source.captured;
    --left_;
    return true;
  }

  // False at the end.
  bool Wait() {
    if (idle_) idle_();
    if (stoppedAt_ != 0) {
      if (Clock::now() >= drained_) return false;
      return usleep(kBlockMilliseconds * 200), true;
    }
    int milliseconds = -1;
    if (end_ != Clock::time_point::max()) {
      const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end_ - Clock::now()).count() + 1;
      milliseconds = static_cast<int>(std::clamp<int64_t>(left, 1, 3600000));
    }
    WaitForFiles(files_, milliseconds);
    return true;
  }

  const PcapLibrary& pcap_;
  const Sources& sources_;
  const std::vector<CaptureFrame>& kinds_;
  const std::function<void()> idle_;
  std::vector<int> files_;
  uint64_t left_;
  uint64_t bytes_ = 0;
  size_t next_ = 0;
  Clock::time_point end_ = Clock::time_point::max(), drained_;
  int64_t stoppedAt_ = 0;
};

// What to do about rights that are missing.
std::string AboutRights() {
  return "capturing takes rights that this program does not have: run it as root, or give them to it once with\n"
         "  sudo setcap cap_net_raw,cap_net_admin+ep " + ExecutableDirectory() + "/qxview";
}

// A program that was given rights by its file needs them for opening alone: nothing that a packet brings about may use them.
void GiveUpRights() {
#ifdef __linux__
  if (!getauxval(AT_SECURE) || geteuid() == 0) return;
  __user_cap_header_struct head{_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3]{};
  syscall(SYS_capset, &head, none);
#endif
}

class PcapCapture final : public LiveCapture {
 public:
  explicit PcapCapture(const PcapLibrary& pcap, const LiveOptions& options) : pcap_(pcap), options_(options) {}

  const std::vector<CaptureFrame>& Interfaces() const override { return kinds_; }
  std::string Name() const override { return name_; }
  std::unique_ptr<CaptureReader> MakeReader(std::function<void()> idle) override {
    return std::make_unique<LiveReader>(pcap_, sources_, kinds_, options_, name_, std::move(idle));
  }
  std::vector<LiveCounts> Count() override {
    std::vector<LiveCounts> counts;
    for (const auto& source : sources_) {
      pcap_stat told{};
      if (pcap_.stats(source->handle, &told) != 0) told = {};
      counts.push_back({source->name, source->captured, told.ps_drop, told.ps_ifdrop});
    }
    return counts;
  }

  bool Begin(std::string* message, bool* isMisuse) {
    utsname system{};
    uname(&system);
    system_ = std::string(system.sysname) + " " + system.release;
    section_.Add(kSectionSystem, system_);
    section_.Add(kSectionApplication, "qxview " QXVIEW_VERSION_TEXT);
    for (const std::string& name : options_.interfaces) {
      if (!Open(name, message, isMisuse)) return false;
      name_ += (name_.empty() ? "" : ", ") + name;
    }
    GiveUpRights();
    return true;
  }

 private:
  bool Open(const std::string& name, std::string* message, bool* isMisuse) {
    char why[PCAP_ERRBUF_SIZE] = "";
    auto source = std::make_unique<Source>();
    source->pcap = &pcap_;
    source->name = name;
    pcap_t* const handle = source->handle = pcap_.create(name.c_str(), why);
    if (!handle) return *message = name + ": " + why, false;
    pcap_.set_snaplen(handle, static_cast<int>(options_.snapLength));
    pcap_.set_promisc(handle, options_.promiscuous);
    pcap_.set_timeout(handle, kBlockMilliseconds);
    pcap_.set_buffer_size(handle, static_cast<int>(options_.bufferMegabytes << 20));
    pcap_.set_tstamp_precision(handle, PCAP_TSTAMP_PRECISION_NANO);   // where that is not offered: microseconds
    const int status = pcap_.activate(handle);
    if (status < 0) return *message = name + ": " + Explain(handle, status), false;
    if (pcap_.setnonblock(handle, 1, why) != 0) return *message = name + ": " + why, false;
    if (!options_.filter.empty() && !Filter(handle, message)) return *isMisuse = true, false;
    Describe(source.get());
    sources_.push_back(std::move(source));
    return true;
  }

  std::string Explain(pcap_t* handle, int status) {
    if (status == PCAP_ERROR_PERM_DENIED || status == PCAP_ERROR_PROMISC_PERM_DENIED) return AboutRights();
    if (status == PCAP_ERROR_NO_SUCH_DEVICE) {
      return "there is no such interface; qxview capture --list-interfaces tells those that there are";
    }
    if (status == PCAP_ERROR_IFACE_NOT_UP) return "the interface is down";
    return status == PCAP_ERROR ? pcap_.geterr(handle) : pcap_.statustostr(status);
  }

  bool Filter(pcap_t* handle, std::string* message) {
    bpf_program program{};
    bool good = pcap_.compile(handle, &program, options_.filter.c_str(), 1, PCAP_NETMASK_UNKNOWN) == 0;
    if (good) {
      good = pcap_.setfilter(handle, &program) == 0;
      if (!good) *message = "--filter " + options_.filter + ": " + pcap_.geterr(handle);
      pcap_.freecode(&program);
      return good;
    }
    return *message = "--filter " + options_.filter + ": " + pcap_.geterr(handle), false;
  }

  // What a capture file tells of the interface.
  void Describe(Source* source) {
    const bool nanoseconds = pcap_.get_tstamp_precision(source->handle) == PCAP_TSTAMP_PRECISION_NANO;
    source->nanosecondsPerTick = nanoseconds ? 1 : 1000;
    source->options.Add(kInterfaceName, source->name);
    if (!options_.filter.empty()) source->options.Add(kInterfaceFilter, std::string(1, '\0') + options_.filter);
    source->options.Add(kInterfaceSystem, system_);
    const int snapshot = pcap_.snapshot(source->handle);
    source->shown = {1, static_cast<uint32_t>(std::max(snapshot, 0)), 0, static_cast<uint8_t>(nanoseconds ? 9 : 6),
                     source->options.Shown(), section_.Shown()};
    CaptureFrame frame{};
    frame.interface = &source->shown;
    frame.interfaceIndex = static_cast<uint32_t>(kinds_.size());
    frame.linkType = NormalizeLinkType(static_cast<uint16_t>(pcap_.datalink(source->handle)));
    kinds_.push_back(frame);
  }

  const PcapLibrary& pcap_;
  const LiveOptions options_;
  std::string name_, system_;
  OptionList section_;
  Sources sources_;
  std::vector<CaptureFrame> kinds_;
};

std::string AddressText(const sockaddr* address) {
  if (!address || (address->sa_family != AF_INET && address->sa_family != AF_INET6)) return {};
  const socklen_t length = address->sa_family == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6);
  char text[NI_MAXHOST] = "";
  if (getnameinfo(address, length, text, sizeof text, nullptr, 0, NI_NUMERICHOST) != 0) return {};
  return text;
}

}  // namespace

std::unique_ptr<LiveCapture> LiveCapture::Open(const LiveOptions& options, std::string* message, bool* isMisuse) {
  std::string why;
  *isMisuse = false;
  const PcapLibrary* const pcap = PcapLibrary::Load(&why);
  if (!pcap) return *message = "capturing needs libpcap: " + why, nullptr;
  LiveOptions chosen = options;
  if (chosen.interfaces.empty()) {
    std::vector<LiveInterface> interfaces;
    if (!ListInterfaces(&interfaces, message)) return nullptr;
    if (interfaces.empty()) return *message = "there is no interface to capture from; " + AboutRights(), nullptr;
    chosen.interfaces.push_back(interfaces[0].name);
  }
  auto capture = std::make_unique<PcapCapture>(*pcap, chosen);
  if (!capture->Begin(message, isMisuse)) return nullptr;
  return capture;
}

bool LiveCapture::ListInterfaces(std::vector<LiveInterface>* interfaces, std::string* message) {
  std::string why;
  const PcapLibrary* const pcap = PcapLibrary::Load(&why);
  if (!pcap) return *message = "capturing needs libpcap: " + why, false;
  char error[PCAP_ERRBUF_SIZE] = "";
  pcap_if_t* first = nullptr;
  if (pcap->findalldevs(&first, error) != 0) return *message = error, false;
  for (const pcap_if_t* at = first; at; at = at->next) {
    LiveInterface interface{at->name, at->description ? at->description : "", "", {}};
    interface.state = at->flags & PCAP_IF_UP ? "up" : "down";
    if (at->flags & PCAP_IF_LOOPBACK) interface.state += ", loopback";
    if (at->flags & PCAP_IF_WIRELESS) interface.state += ", wireless";
    if ((at->flags & PCAP_IF_CONNECTION_STATUS) == PCAP_IF_CONNECTION_STATUS_DISCONNECTED) interface.state += ", disconnected";
    for (const pcap_addr_t* address = at->addresses; address; address = address->next) {
      const std::string text = AddressText(address->addr);
      if (!text.empty()) interface.addresses.push_back(text);
    }
    interfaces->push_back(std::move(interface));
  }
  pcap->freealldevs(first);
  return true;
}

}  // namespace qxview
