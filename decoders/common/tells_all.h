// Whether all is asked for (the setting Modern): what is scripted on has the lines of old alone, and these have more beside
// and below them.
#pragma once
#include "core/decoder.h"

namespace qxview {

inline bool TellsAll(const Place& at) {
  const Settings& settings = at.view->engine->settings;
  return settings.dnsRecords && settings.ignoreChecksums;
}

}  // namespace qxview
