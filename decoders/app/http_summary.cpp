// The packet list's text for HTTP (RFC 9112): "HTTP GET http://host/path", "HTTP Reply Status=200 OK, Content-Type: ...".
#include "decoders/app/http_summary.h"

#include <cstring>

#include "core/bounded_text.h"
#include "decoders/app/http_message.h"
#include "decoders/app/summaries.h"
#include "decoders/app/tls_record.h"

namespace qxview {
namespace {

constexpr int32_t kMostFirstLine = 160;

struct Summary {
  char* out;
  int32_t size;
};
void Add(const Summary& summary, const char* text) { AppendString(summary.out, summary.size, text); }
void Add(const Summary& summary, const TextSlice& slice) {
  AppendBounded(summary.out, summary.size, slice.text, slice.length);
}

// The payload up to its first zero, where the searches for headers stop.
TextSlice SearchedText(const uint8_t* data, int32_t length) {
  const char* text = reinterpret_cast<const char*>(data);
  return {text, static_cast<int32_t>(strnlen(text, static_cast<size_t>(length)))};
}

// From the name to the CR LF behind it; empty when either is missing. At a line's start only, when asked.
TextSlice FindHeader(const TextSlice& text, const char* name, bool atLineStart) {
  const int32_t nameLength = static_cast<int32_t>(std::strlen(name));
  for (int32_t at = 0; at + nameLength <= text.length; ++at) {
    const void* found = std::memchr(text.text + at, name[0], static_cast<size_t>(text.length - nameLength + 1 - at));
    if (!found) break;
    at = static_cast<int32_t>(static_cast<const char*>(found) - text.text);
    if (std::memcmp(text.text + at, name, static_cast<size_t>(nameLength)) != 0) continue;
    if (atLineStart && (at == 0 || text.text[at - 1] != '\n')) continue;
    const int32_t end = FindLineEnd(MakeCursor(reinterpret_cast<const uint8_t*>(text.text) + at, 0, text.length - at));
    return {text.text + at, end < 0 ? 0 : end};
  }
  return {text.text, 0};
}

// The characters before the line's first blank; -1 without one.
int32_t FindBlank(const TextSlice& line) {
  const void* blank = std::memchr(line.text, ' ', static_cast<size_t>(line.length));
  return blank ? static_cast<int32_t>(static_cast<const char*>(blank) - line.text) : -1;
}

void DescribeReply(const Summary& summary, const TextSlice& line, const TextSlice& text) {
  Add(summary, "Reply ");
  const int32_t blank = FindBlank(line);
  if (blank >= 0) {
    Add(summary, "Status=");
    Add(summary, TextSlice{line.text + blank + 1, line.length - blank - 1});
  } else {
    Add(summary, line);
  }
  constexpr const char* kShown[] = {"Content-Type:", "Content-Length:"};
  for (const char* name : kShown) {
    const TextSlice header = FindHeader(text, name, false);
    if (header.length == 0) continue;
    Add(summary, ", ");
    Add(summary, header);
  }
}

void DescribeRequest(const Summary& summary, const TextSlice& line, const TextSlice& text) {
  constexpr int32_t kMethod = 4, kVersion = 9;   // "GET " and " HTTP/1.1": other methods keep their tail in the path
  const int32_t blank = FindBlank(line);
  if (blank >= 0) {
    Add(summary, TextSlice{line.text, blank});
    Add(summary, " ");
  }
  if (line.length <= kMethod + kVersion) return;
  const TextSlice host = FindHeader(text, "Host:", true);
  constexpr int32_t kHostName = 6;
  if (host.length > kHostName) {
    Add(summary, "http://");
    Add(summary, TextSlice{host.text + kHostName, host.length - kHostName});
  }
  Add(summary, TextSlice{line.text + kMethod, line.length - kMethod - kVersion});
}

}  // namespace

int32_t DescribeHttp(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t isTls) {
  if (!out || outSize < 1) return 0;
  out[0] = 0;
  if (!data || length < 1) return 0;
  const Summary summary{out, outSize};
  constexpr int32_t kHttpsPort = 443;
  if (isTls && StartsTlsRecord(data, length)) return DescribeTls(data, length, out, outSize, kHttpsPort, nullptr);
  Add(summary, "HTTP ");
  const HttpFirstLine first = SplitHttpFirstLine(data, length);
  if (first.length == 0) return 0;
  const TextSlice text = SearchedText(data, length);
  const TextSlice line{text.text, first.length < kMostFirstLine ? first.length : kMostFirstLine};
  switch (first.kind) {
    case kHttpRequest: DescribeRequest(summary, line, text); break;
    case kHttpResponse: DescribeReply(summary, line, text); break;
    default: Add(summary, "Continuation");
  }
  return first.kind;
}

}  // namespace qxview
