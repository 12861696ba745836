#include "platform/posix/cairo_library.h"

#include <dlfcn.h>

namespace qxview {

const CairoLibrary* CairoLibrary::Load(std::string* why) {
  static CairoLibrary loaded;
  static bool isLoaded = false;
  if (isLoaded) return &loaded;
  void* const library = dlopen("libpangocairo-1.0.so.0", RTLD_NOW | RTLD_LOCAL);   // which brings along what it rests on
  if (!library) return *why = dlerror(), nullptr;
#define QXVIEW_FIND(result, name, arguments)                                        \
  loaded.name = reinterpret_cast<decltype(loaded.name)>(dlsym(library, #name));     \
  if (!loaded.name) return *why = "it lacks " #name, nullptr;
  QXVIEW_CAIRO_FUNCTIONS(QXVIEW_FIND)
#undef QXVIEW_FIND
  isLoaded = true;
  return &loaded;
}

}  // namespace qxview
