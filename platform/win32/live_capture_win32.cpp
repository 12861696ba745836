#include "platform/live_capture.h"

namespace qxview {
namespace {
constexpr char kNotHere[] = "capturing is not available on Windows: what another program captures is read from its file";
}

std::unique_ptr<LiveCapture> LiveCapture::Open(const LiveOptions&, std::string* message, bool* isMisuse) {
  *message = kNotHere;
  *isMisuse = false;
  return nullptr;
}

bool LiveCapture::ListInterfaces(std::vector<LiveInterface>*, std::string* message) {
  *message = kNotHere;
  return false;
}

}  // namespace qxview
