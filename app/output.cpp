#include "app/output.h"

#include "app/commands.h"
#include "app/packet_run.h"
#include "platform/new_file.h"
#include "platform/platform.h"

namespace qxview {
namespace {

// Code points of 0x80 to 0x9F; those that the code page leaves open are controls.
constexpr uint16_t kHighCodePoints[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D,
    0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A,
    0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

Output::Output() { OpenOutput(&file_, FileSink(StandardOutputFile())); }

int OutputFault() {
  Tell("standard output: " + WriteFailure());
  return kFileFault;
}

int KeepFile(NewFile* file, const std::string& name, bool written, int status) {
  std::string message;
  if (!written) return Tell(name + ": " + WriteFailure()), kFileFault;
  if (status == kFileFault && file->Replaces()) return Tell(name + ": stays as it was"), status;
  if (!file->Keep(&message)) return Tell(message), kFileFault;
  return status;
}

std::string_view Utf8Of(uint8_t character, char* scratch) {
  const uint32_t point = character >= 0x80 && character < 0xA0 ? kHighCodePoints[character - 0x80] : character;
  if (point < 0x80) {
    scratch[0] = static_cast<char>(point);
    return {scratch, 1};
  }
  if (point < 0x800) {
    scratch[0] = static_cast<char>(0xC0 | point >> 6);
    scratch[1] = static_cast<char>(0x80 | (point & 0x3F));
    return {scratch, 2};
  }
  scratch[0] = static_cast<char>(0xE0 | point >> 12);
  scratch[1] = static_cast<char>(0x80 | (point >> 6 & 0x3F));
  scratch[2] = static_cast<char>(0x80 | (point & 0x3F));
  return {scratch, 3};
}

}  // namespace qxview
