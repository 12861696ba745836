// Packets from the network's interfaces as they pass, where libpcap is there.
#pragma once
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "files/capture_reader.h"

namespace qxview {

struct LiveOptions {
  std::vector<std::string> interfaces;   // none: the one that the system names first
  std::string filter;                    // libpcap's language; applied by the kernel
  uint32_t snapLength = 262144;
  bool promiscuous = true;
  uint32_t bufferMegabytes = 16;         // of the kernel, for each interface
  uint64_t count = UINT64_MAX;           // packets
  uint64_t seconds = 0;                  // 0: until a signal ends the input
};

struct LiveInterface {
  std::string name, description;
  std::string state;                    // "up", "down", "loopback" and the like, comma-separated
  std::vector<std::string> addresses;
};

// What became of the packets of an interface.
struct LiveCounts {
  std::string interface;
  uint64_t captured;            // given to whoever reads
  uint64_t kernelDropped;       // by the kernel, for want of buffer
  uint64_t interfaceDropped;    // by the interface or its driver, as far as it tells
};

class LiveCapture {
 public:
  // Opens the interfaces and begins to buffer. Null with a message that says what is wrong and, where it is known, what to do;
  // *isMisuse when it is the filter.
  static std::unique_ptr<LiveCapture> Open(const LiveOptions& options, std::string* message, bool* isMisuse);
  // False with a message.
  static bool ListInterfaces(std::vector<LiveInterface>* interfaces, std::string* message);

  virtual ~LiveCapture() = default;

  // What each interface is called, and a frame without bytes that tells of it what its packets will.
  virtual const std::vector<CaptureFrame>& Interfaces() const = 0;
  virtual std::string Name() const = 0;   // of all interfaces

  // The packets until the bounds or a signal end them; those that arrived before that moment are still given. One reader,
  // which goes before this does. `idle` is called before packets are waited for.
  virtual std::unique_ptr<CaptureReader> MakeReader(std::function<void()> idle) = 0;
  virtual std::vector<LiveCounts> Count() = 0;
};

}  // namespace qxview
