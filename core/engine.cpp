#include "core/engine.h"

#include <cstddef>
#include <cstdlib>

#include "core/crypto.h"
#include "core/custom_libraries.h"
#include "core/dispatch.h"
#include "core/states.h"

namespace qxview {

Engine* CreateEngine(const QxHost* host, const LibraryLoader& loader, uint64_t seed) {
  auto* engine = static_cast<Engine*>(std::calloc(1, sizeof(Engine)));
  if (!engine) return nullptr;
  engine->host = host;
  SettingsSource source{};
  if (host) source = {host->user, QXVIEW_HOST_FUNCTION(host, readSetting)};
  engine->unreadableSettings = ReadSettings(&engine->settings, source);
  engine->libraries.loader = loader;
  LoadCustomLibraries(engine);
  engine->states = CreateStates(seed);
  if (!engine->states || !CreateDecoderStates(engine)) {
    DestroyEngine(engine);
    return nullptr;
  }
  return engine;
}

void DestroyEngine(Engine* engine) {
  if (!engine) return;
  DestroyDecoderStates(engine);
  DestroyCrypto(engine);
  DestroyStates(engine->states);
  UnloadCustomLibraries(engine);
  std::free(engine);
}

}  // namespace qxview
