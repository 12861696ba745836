// Whether all is asked for (the setting Modern): what is scripted on has the lines of old alone, and these have more beside
// and below them.
#pragma once
#include "core/decoder.h"

namespace qxview {

inline bool TellsAll(const Place& at) {
  const Settings& settings = at.view->engine->settings;
  return settings.dnsRecords && settings.ignoreChecksums;
}

// Bytes that stand in a block of old, on a line that has their key.
inline void TellBytes(const Place& in, const Field& field, const char* label) {
  // keys: bytes Padding, Option Value, Authenticator, Message Value, Challenge, Extension Value, Reserved
  if (TellsAll(in) && field.length > 0) AddLine(in, field, "%s: %s", label, HexText(field));
}

}  // namespace qxview
