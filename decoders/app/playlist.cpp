// Playlists of HTTP Live Streaming (RFC 8216): tags, the segments or the playlists that they belong to, comments.
//
//   #EXTM3U
//   #EXT-X-STREAM-INF:BANDWIDTH=1280000,CODECS="avc1.4d401e,mp4a.40.2"
//   low/index.m3u8
#include "decoders/app/playlist.h"

#include "decoders/common/header_lines.h"

namespace qxview {
namespace {

// NAME=value, with commas between them that do not stand in quotation marks.
Field TakeAttribute(Field& rest) {
  int32_t end = 0;
  for (bool isQuoted = false; end < rest.length; ++end) {
    const uint32_t each = PeekU8(rest, end);
    if (each == '"') isQuoted = !isQuoted;
    if (!isQuoted && each == ',') break;
  }
  const Field attribute = Slice(rest, 0, end);
  const int32_t behind = end < rest.length ? end + 1 : end;
  rest = Slice(rest, behind, rest.length - behind);
  return attribute;
}

bool IsAttributeName(const Field& name) {
  for (int32_t i = 0; i < name.length; ++i) {
    const uint32_t each = PeekU8(name, i);
    if (each != '-' && (each < '0' || each > '9') && (each < 'A' || each > 'Z')) return false;
  }
  return name.length > 0;
}

void ShowAttributes(const Place& in, Field rest) {
  while (rest.length > 0) {
    const Field attribute = TakeAttribute(rest);
    Field value = attribute;
    const Field name = TakeWord(value, "=");
    if (!IsAttributeName(name) || value.length == 0) {
      AddTextLine(in, attribute, "Value");
      continue;
    }
    if (value.length > 1 && PeekU8(value) == '"') value = Slice(value, 1, value.length - 2);
    const Place under = Under(in, AddLine(in, attribute, "Attribute: %s = %s", Text(name), Text(value)));
    AddTextLine(under, name, "Name");
    AddTextLine(under, value, "Value");
  }
}

void ShowTag(const Place& in, const TextLine& line) {
  Field value = Slice(line.text, 1, line.text.length - 1);
  const Field name = TakeWord(value, ":");
  const Place under = Under(in, AddTextLine(in, line.whole, "Tag", Slice(line.text, 1, line.text.length - 1)));
  AddTextLine(under, name, "Name");
  if (!IsWord(name, "EXTINF")) return ShowAttributes(under, value);
  const Field duration = TakeWord(value, ",");
  AddLine(under, duration, "Duration: %s seconds", Text(duration));
  if (value.length > 0) AddTextLine(under, value, "Title");
}

}  // namespace

bool StartsPlaylist(const Cursor& c) { return PeekIs(c, 0, "#EXTM3U") && IsSpace(PeekU8(c, 7)); }

void ShowPlaylist(const Place& in, Cursor& c) {
  TextLine line;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeLine(c, line)) {
    if (StartsWithWord(line.text, "#EXT")) ShowTag(in, line);
    else if (PeekU8(line.text) == '#') AddTextLine(in, line.whole, "Comment", line.text);
    else if (line.text.length > 0) AddTextLine(in, line.whole, "URI", line.text);
  }
}

}  // namespace qxview
