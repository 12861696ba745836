// The pieces of the HTTP decoder: lines, headers, bodies, and the state they share while one payload is decoded.
#pragma once
#include "core/decoder.h"
#include "decoders/app/http.h"
#include "decoders/app/web_body.h"
#include "decoders/common/tells_all.h"

namespace qxview {

// The bounds of one payload's decoding.
constexpr int32_t kMostFirstLineShown = 300;
constexpr int32_t kMostTextLineShown = 200;
constexpr int32_t kMostInflatedLineShown = 199;

struct TextToken {
  int32_t offset;   // from the payload's start
  int32_t length;
};

// The first line of a payload, up to CR LF or the payload's end, split at blanks; the third token runs to the line's
// end. A token that is not there is empty and stands at the line's end.
struct HttpFirstLine {
  int32_t kind;      // kHttpRequest, kHttpResponse or kHttpContinuation
  int32_t length;    // without the line end
  int32_t taken;     // with it
  TextToken tokens[3];
};
HttpFirstLine SplitHttpFirstLine(const uint8_t* data, int32_t length);

// The bytes up to the next CR LF; -1 when there is none.
int32_t FindLineEnd(const Cursor& c);
// The next line without its CR LF; the cursor stands behind it. Not here, with nothing taken, when no CR LF follows.
Field TakeTextLine(Cursor& c);

enum class ContentCoding : uint8_t { kNone, kGzip, kDeflate, kOther };

// What a message's headers say of its body.
struct HttpFlags {
  bool chunked, gzip, text, image, ocspRequest, ocspResponse;
  WebContent content;
  Field mediaType;
  ContentCoding coding;
  bool inChunks, hasLength;                    // whatever case the names have
  int32_t length;
  bool toWebSocket, toHttp2;                   // what the connection goes over to
  bool deflates, clientForgets, serverForgets;   // WebSocket's messages are compressed, an end's each for itself
};

// Earlier segments of the current frame's connection and direction, the nearest first; when the search found the
// headers, the last one starts the message.
struct HttpHistory {
  QxSegment segments[kMostEarlierSegments + 1];
  int32_t count;
  bool finished;   // one of them had the FIN flag set
};

struct HttpInflater;

struct HttpState {
  HttpFlags flags;
  HttpHistory history;
  HttpInflater* inflater;   // made when the first compressed body is decoded, kept with the engine
};

void* CreateHttpState();
void DestroyHttpState(void* state);
void DestroyHttpInflater(HttpInflater* inflater);

// For a payload that starts no message: looks for the headers of its message in at most `maxSegments` earlier segments
// of the connection, the one with the headers not counted. Result: 1 text, 2 image, 3 gzip, 0 none of them or no
// headers found; the segments passed on the way are left in `history`.
int32_t FindHttpHeaderContext(View* view, const uint8_t* data, int32_t length, int32_t maxSegments,
                              HttpHistory* history);
constexpr int32_t kTextContext = 1, kImageContext = 2, kGzipContext = 3;

// Shows header lines up to and with the empty line, and notes what they say of the body.
void WalkHttpHeaders(const Place& in, HttpFlags& flags, Cursor& c);

// Shows the body. Result: whether what is left behind a chunk is to be decoded as a message of its own.
bool DecodeHttpBody(const Place& in, HttpState& state, int32_t kind, Cursor& c);

// The same where all is asked for: what the message's lengths make the body is shown by its content, chunks joined and content
// codings opened (http_content.cpp). Result: whether a further message follows.
bool ShowHttpContent(const Place& at, const Place& in, HttpFlags& flags, bool hasBody, Cursor& c);

struct HttpChunkSize {
  bool valid;
  bool extended;      // something follows behind ";" or "="
  int32_t digits;     // characters of the number
  int32_t size;       // declared; what does not fit is INT32_MAX
};
HttpChunkSize ReadChunkSize(const uint8_t* line, int32_t length);

struct HttpChunk {
  Field data;
  bool isLast, hasBoundary;   // the CR LF behind it
};
// Shows one chunk and takes it with the CR LF behind it. Nothing, and false, when no chunk size is here. Its data is a block
// where it is not handed out.
bool DecodeHttpChunk(const Place& in, Cursor& c, HttpChunk* shown = nullptr);

// Shows a gzip body: the member header, then what it inflates to, line by line. A continuation is inflated with the
// earlier segments of its message.
void DecodeHttpGzip(const Place& in, HttpState& state, bool continuation, const Cursor& c);

// The member header's lines. The bytes of one that began in an earlier frame have no place in this one: its lines
// cover nothing.
void ShowGzipHeader(const Place& in, Cursor c, bool elsewhere);
// The length of the member header at `bytes`, told by its flags; -1 when the bytes end before it does.
int32_t GzipHeaderLength(const uint8_t* bytes, int32_t length);

}  // namespace qxview
