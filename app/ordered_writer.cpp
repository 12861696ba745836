#include "app/ordered_writer.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace qxview {

bool OrderedWriter::WriteThrough(std::string_view bytes) {
  if (bytes.empty()) return !failed_;
  const OutputSink& sink = out_.Target();   // prefixes are the lanes' own
  if (!failed_ && sink.write(sink.handle, bytes.data(), static_cast<int32_t>(bytes.size())) != 1) Fail();
  return !failed_;
}

void OrderedWriter::Fail() {
  InMonitor inside(monitor_);
  failed_ = true;
  moved_.Changed();
}

// A buffer to fill, and room to note the one it comes in place of; null when the lane has no more, or there is no memory.
char* OrderedWriter::TakeBuffer(Lane& lane) {
  try {
    if (lane.held.size() == lane.held.capacity()) lane.held.reserve(lane.held.size() + kMostBuffers + 1);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  {
    InMonitor inside(monitor_);
    if (!lane.spare.empty()) {
      char* const buffer = lane.spare.back();
      lane.spare.pop_back();
      return buffer;
    }
  }
  if (lane.buffers.size() >= kMostBuffers) return nullptr;
  try {
    lane.buffers.push_back(std::make_unique_for_overwrite<char[]>(kOutputSize));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  return lane.buffers.back().get();
}

// Keeps the Output's buffer, or a copy of what does not stand there, such as lines that were given prefixes. False when the
// lane has to wait for its turn.
bool OrderedWriter::Hold(Lane& lane, std::string_view bytes) {
  OutputFile& file = *lane.out.File();
  if (bytes.data() == file.buffer) {
    char* const next = TakeBuffer(lane);
    if (!next) return false;
    lane.held.push_back({file.buffer, static_cast<int32_t>(bytes.size())});
    file.buffer = next;
    return true;
  }
  const size_t before = lane.held.size();
  for (std::string_view left = bytes; !left.empty();) {
    char* const buffer = TakeBuffer(lane);
    if (!buffer) {
      InMonitor inside(monitor_);
      for (; lane.held.size() > before; lane.held.pop_back()) lane.spare.push_back(lane.held.back().buffer);
      return false;
    }
    const size_t piece = std::min<size_t>(left.size(), kOutputSize);
    std::memcpy(buffer, left.data(), piece);
    lane.held.push_back({buffer, static_cast<int32_t>(piece)});
    left.remove_prefix(piece);
  }
  return true;
}

// A turn ends by its lane alone, so a lane that has its turn needs no lock.
int32_t OrderedWriter::Write(void* of, const char* bytes, int32_t length) {
  Lane& lane = *static_cast<Lane*>(of);
  OrderedWriter& self = lane.writer;
  const std::string_view text{bytes, static_cast<size_t>(length)};
  if (self.turn_ != lane.place) {
    if (self.Hold(lane, text)) return self.failed_ ? 0 : 1;
    InMonitor inside(self.monitor_);
    while (self.turn_ != lane.place && !self.failed_) self.moved_.Wait();
  }
  self.WritePieces(lane, lane.held);
  return self.WriteThrough(text) ? 1 : 0;
}

void OrderedWriter::WritePieces(Lane& lane, std::vector<Piece>& pieces) {
  if (pieces.empty()) return;
  for (const Piece& piece : pieces) WriteThrough({piece.buffer, static_cast<size_t>(piece.used)});
  InMonitor inside(monitor_);
  for (const Piece& piece : pieces) lane.spare.push_back(piece.buffer);
  pieces.clear();
}

// Leaves what the lane holds to whoever ends the turn in front of it; false when its own has come.
bool OrderedWriter::LeaveBehind(Lane& lane) {
  InMonitor inside(monitor_);
  if (turn_ == lane.place) return false;
  ended_.emplace(lane.place, Ended{&lane, std::move(lane.held)});
  lane.held.clear();
  return true;
}

void OrderedWriter::End(Lane& lane) {
  lane.out.Flush();
  if (LeaveBehind(lane)) return;
  WritePieces(lane, lane.held);
  for (Ended next;;) {
    {
      InMonitor inside(monitor_);
      const auto found = ended_.find(++turn_);
      if (found == ended_.end()) return moved_.Changed();
      next = std::move(found->second);
      ended_.erase(found);
    }
    WritePieces(*next.lane, next.pieces);
  }
}

}  // namespace qxview
