// The fuzz targets: what each does with an input.
#pragma once
#include <cstddef>
#include <cstdint>

namespace qxview::fuzz {

// Each says in its source how an input is laid out.
void RunFrame(const uint8_t* data, size_t size);
void RunConversation(const uint8_t* data, size_t size);
void RunPayload(const uint8_t* data, size_t size);
void RunCapture(const uint8_t* data, size_t size);
void RunFilter(const uint8_t* data, size_t size);
void RunSettings(const uint8_t* data, size_t size);
void RunExports(const uint8_t* data, size_t size);

struct Target {
  const char* name;
  void (*run)(const uint8_t* data, size_t size);
};
inline constexpr Target kTargets[] = {
    {"frame", RunFrame},   {"conversation", RunConversation}, {"payload", RunPayload}, {"capture", RunCapture},
    {"filter", RunFilter}, {"settings", RunSettings},         {"exports", RunExports},
};

// The target of this name, or whose name a program's begins with ("frame_fuzz"); null for none.
const Target* FindTarget(const char* name);

}  // namespace qxview::fuzz
