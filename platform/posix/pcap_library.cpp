#include "platform/posix/pcap_library.h"

#include <dlfcn.h>

namespace qxview {

const PcapLibrary* PcapLibrary::Load(std::string* why) {
  static PcapLibrary loaded;
  static bool isLoaded = false;
  if (isLoaded) return &loaded;
  void* library = dlopen("libpcap.so.0.8", RTLD_NOW | RTLD_LOCAL);
  if (!library) *why = dlerror();
  if (!library) library = dlopen("libpcap.so.1", RTLD_NOW | RTLD_LOCAL);
  if (!library) return nullptr;
  const auto find = [&](auto& function, const char* name) {
    function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(dlsym(library, name));
    if (!function) *why = std::string("it lacks ") + name;
    return function != nullptr;
  };
#define QXVIEW_FIND(name) \
  if (!find(loaded.name, "pcap_" #name)) return nullptr;
  QXVIEW_PCAP_FUNCTIONS(QXVIEW_FIND)
#undef QXVIEW_FIND
  isLoaded = true;
  return &loaded;
}

}  // namespace qxview
