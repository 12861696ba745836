// The targets for clang's fuzzer: the program's own name says which.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "fuzz/targets.h"

namespace {
const qxview::fuzz::Target* target;
}

extern "C" int LLVMFuzzerInitialize(int*, char*** argv) {
  const char* slash = std::strrchr((*argv)[0], '/');
  target = qxview::fuzz::FindTarget(slash ? slash + 1 : (*argv)[0]);
  if (target) return 0;
  std::fprintf(stderr, "this program is run by a target's name, such as frame_fuzz\n");
  std::exit(2);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  target->run(data, size);
  return 0;
}
