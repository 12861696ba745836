// A range of packets as an XML document: times, sizes, receive status and bytes of each packet, a summary, and the
// user's names for addresses. Written as it comes, in constant memory.
//
//    XmlExport document(sink, offsetOfZone);
//    document.Begin();
//    for (...) document.AddFrame(number, record);
//    if (!document.Finish(aliases, aliasCount, speed)) ... a write failed
//
// Lines end with CR LF, elements are indented by one blank a level, the text is UTF-8.
#pragma once
#include <cstdint>
#include <memory>
#include <string_view>

#include "core/frame_record.h"
#include "core/output_file.h"

namespace qxview {

// Seconds to add to a time in UTC (seconds since 1970) for local time.
using LocalOffsetFunction = int64_t (*)(int64_t utcSeconds);

// A user's name for an address. Absent parts are null; texts are UTF-8, or Windows-1252 where they are not valid UTF-8.
struct XmlAlias {
  const uint8_t* hardware;   // 6 bytes
  const char* ipv4;          // as written, "10.0.0.1"
  const char* ipv6;
  const char* name;
  const char* comment;
};

class XmlExport {
 public:
  XmlExport(const OutputSink& sink, LocalOffsetFunction offset);
  // Into what somebody else writes to as well, and flushes; `to` must stay.
  XmlExport(OutputFile* to, LocalOffsetFunction offset) : file_(to), offset_(offset) {}

  void Begin();
  // A captured frame, with whatever radio or cell header was captured in front of it.
  void AddFrame(uint64_t number, const FrameRecord* record);
  // A record of the analysis that the capture holds in place of a frame; the texts name its two sides.
  void AddAnalysis(uint64_t number, int64_t nanoseconds, const char* source, const char* destination);
  // What another one counted that wrote some of the frames: they stand behind those so far, or among them.
  void TakeCounts(const XmlExport& part);
  // speed: of the network in bits a second, 0 when it is not known. False when a write failed.
  bool Finish(const XmlAlias* aliases, size_t count, uint64_t speed);

  void Flush() { FlushOutput(file_); }
  bool Failed() const { return file_->failed; }

 private:
  void Put(std::string_view text);
  void PutNumber(uint64_t number);
  void PutAttribute(std::string_view nameAndEquals, uint64_t value);   // NAME="VALUE" and a blank
  void PutTextAttribute(std::string_view nameAndEquals, const char* text);
  void PutEscaped(std::string_view text);
  void PutTime(int64_t nanoseconds);
  void PutHex(const uint8_t* bytes, size_t length);
  void PutAlias(uint64_t number, const XmlAlias& alias);
  void Count(uint64_t number);

  std::unique_ptr<OutputFile> own_;
  OutputFile* file_;
  LocalOffsetFunction offset_;
  int64_t offsetSpan_ = INT64_MIN;   // the span of time that offsetSeconds_ holds for
  int64_t offsetSeconds_ = 0;
  uint64_t packets_ = 0, first_ = 0, last_ = 0;
  const char* networkType_ = nullptr;   // of the first frame
};

}  // namespace qxview
