#include "platform/bpf_filter.h"

namespace qxview {

std::unique_ptr<BpfFilter> BpfFilter::Create(const std::string& expression, std::string* message) {
  *message = "--filter " + expression + ": filters are not available on Windows";
  return nullptr;
}

}  // namespace qxview
