#include "decoders/app/stream_note.h"

#include "decoders/states.h"

namespace qxview {
bool FindStreamPlace(const Place& at, const Cursor& c, RequestKey* key) {
  const PacketState& packet = PacketOf(at);
  const Field place = PeekBytes(c, 0, 0);
  const TcpSegment& segment = packet.segment;
  if (!segment.here || !segment.payload || !place.bytes) return false;
  const intptr_t ahead = reinterpret_cast<intptr_t>(place.bytes) - reinterpret_cast<intptr_t>(segment.payload);
  if (ahead < 0 || ahead > segment.length) return false;
  int32_t direction;
  const ConnectionKey connection = ConnectionOf(packet, &direction);
  *key = {connection, {segment.sequence + static_cast<uint32_t>(ahead), static_cast<uint32_t>(direction), 0, 0}};
  return true;
}

StreamNote RecallNote(const Place& at, const Cursor& c) {
  RequestKey key;
  if (!FindStreamPlace(at, c, &key)) return {};
  const StreamNote* kept = Recall(at.view, kStreamNotes, key);
  return kept ? *kept : StreamNote{};
}

void LeaveNote(const Place& at, const Cursor& c, const StreamNote& note) {
  RequestKey key;
  if (!PacketOf(at).quoted && FindStreamPlace(at, c, &key)) Remember(at.view, kStreamNotes, key, note);
}

void PutText(StreamNote& note, const Field& text) {
  if (text.bytes == note.text) return;   // what it has already
  note.textLength = 0;
  AppendText(note, text);
}

void AppendText(StreamNote& note, const Field& text) {
  const int32_t room = static_cast<int32_t>(sizeof note.text) - note.textLength;
  const Field cut = Slice(text, 0, text.length < room ? text.length : room);
  if (!cut.here || !cut.bytes || cut.length == 0) return;
  std::memcpy(note.text + note.textLength, cut.bytes, static_cast<size_t>(cut.length));
  note.textLength = static_cast<uint8_t>(note.textLength + cut.length);
}

}  // namespace qxview
