// The engine: everything that outlives a frame and a view. What is told as module-wide or process-wide lives here and
// is reached from the view, so that two engines can run side by side.
#pragma once
#include <cstdint>

#include "core/settings.h"
#include "qxview/qxview_host.h"

namespace qxview {

struct Crypto;
struct States;
struct View;

constexpr int32_t kMostCustomLibraries = 8;

// Loading libraries is the platform's matter.
struct LibraryLoader {
  void* (*load)(const char* path);                    // null when it cannot be loaded
  void* (*find)(void* library, const char* name);     // null when it has no such entry point
  void (*release)(void* library);
  bool (*isPath)(const char* name);                   // or the name of a file beside the program
  void* (*loadCrypto)();                              // the system's libcrypto; null when it is not installed
};

struct CustomLibraries {
  LibraryLoader loader;
  void* handles[kMostCustomLibraries];   // in load order
  int32_t count;
  void* external;                        // the detector's plug-in
};

// Buffers of decoders, a slot each; made with the engine, so that decoding allocates nothing.
enum class DecoderState : int32_t { kHttp, kCount };

struct Engine {
  const QxHost* host;
  Settings settings;
  int32_t unreadableSettings;
  uint32_t textLinesWritten;      // lines handled in the print and save modes, empty ones included
  bool trackWrittenBytes;         // the rewind mark: off unless a decoder sets it
  uint32_t bytesSinceMark;
  CustomLibraries libraries;
  void* decoderState[static_cast<int32_t>(DecoderState::kCount)];
  States* states;                 // what frames tell of later ones
  Crypto* crypto;                 // ciphers and digests in use; null before the first
  bool cryptoMissing;             // was asked for and is not here
};

// Reads the settings, loads the user decoder libraries and makes the decoders' state; null when there is no memory.
// The host's record must outlive the engine. The seed keeps apart what captures make collide: a number
// that nobody can know (DrawSeed), but for tests.
Engine* CreateEngine(const QxHost* host, const LibraryLoader& loader, uint64_t seed);
void DestroyEngine(Engine* engine);

// A function of the host's record, or null when the record ends before it.
#define QXVIEW_HOST_FUNCTION(host, name) \
  ((host) && (host)->size >= offsetof(QxHost, name) + sizeof((host)->name) ? (host)->name : nullptr)

template <class T>
T* StateOf(const Engine* engine, DecoderState slot) {
  return static_cast<T*>(engine->decoderState[static_cast<int32_t>(slot)]);
}

}  // namespace qxview
