// User decoder libraries: loaded once, offered data at fixed points of decoding, in load order, until one accepts.
#pragma once
#include "core/cursor.h"
#include "qxview/custom_decoder.h"

namespace qxview {

struct Engine;
struct Place;
struct View;

// Loads CustomLibrary0 to 7 of the settings, up to the first that is missing; a library that cannot be loaded is
// skipped without a gap.
void LoadCustomLibraries(Engine* engine);
void UnloadCustomLibraries(Engine* engine);

// Each returns 1 when a library took the data.
int32_t OfferFrame(const Place& at, const Cursor& c);
int32_t OfferWirelessFrame(const Place& at, const Cursor& c);
int32_t OfferWanFrame(const Place& at, const Cursor& c);

enum class PayloadHook { kIp, kTcp, kUdp };
int32_t OfferPayload(const Place& at, PayloadHook hook, const Cursor& c);

// The detector's external plug-in, through its entry point "ExternalDecode".
int32_t OfferExternal(const Place& at, const Cursor& c);

}  // namespace qxview
