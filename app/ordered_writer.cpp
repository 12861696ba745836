#include "app/ordered_writer.h"

#include <new>

namespace qxview {

OutputSink OrderedWriter::SinkOf(Lane* lane) {
  return {lane,
          [](void* handle, const char* bytes, int32_t length) {
            Lane& lane = *static_cast<Lane*>(handle);
            return lane.writer.Write(lane, {bytes, static_cast<size_t>(length)});
          },
          // Only user decoder libraries take back what was written, and with them there is one thread.
          [](void*, int64_t) { return int32_t{0}; }, -1};
}

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

// For more text; the memory of a packet that has very much of it is given back.
void OrderedWriter::Clear(std::string* text) {
  text->clear();
  if (text->capacity() > kMostSpareSize) text->shrink_to_fit();
}

// False when the lane has to wait for its turn.
bool OrderedWriter::Hold(Lane& lane, std::string_view bytes) {
  if (lane.held.size() + bytes.size() > kMostHeld) return false;
  try {
    lane.held.append(bytes);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

// A turn ends by its lane alone, so a lane that has its turn needs no lock.
int32_t OrderedWriter::Write(Lane& lane, std::string_view bytes) {
  if (turn_ != lane.place) {
    if (Hold(lane, bytes)) return failed_ ? 0 : 1;
    InMonitor inside(monitor_);
    while (turn_ != lane.place && !failed_) moved_.Wait();
  }
  const bool written = WriteThrough(lane.held) && WriteThrough(bytes);
  Clear(&lane.held);
  return written ? 1 : 0;
}

// Leaves what the lane holds to whoever ends the turn in front of it; false when its own has come.
bool OrderedWriter::LeaveBehind(Lane& lane) {
  InMonitor inside(monitor_);
  while (turn_ != lane.place && endedBytes_ + lane.held.size() > kMostEnded && !failed_) moved_.Wait();
  if (turn_ == lane.place) return false;
  const size_t bytes = lane.held.size();
  ended_.emplace(lane.place, std::move(lane.held));
  endedBytes_ += bytes;
  lane.held.clear();
  if (!spare_.empty()) {
    lane.held.swap(spare_.back());
    spare_.pop_back();
  }
  return true;
}

void OrderedWriter::End(Lane& lane) {
  if (LeaveBehind(lane)) return;
  WriteThrough(lane.held);
  Clear(&lane.held);
  for (std::string text;;) {
    monitor_.Enter();
    if (text.capacity() > 0 && spare_.size() < kMostSpare) spare_.push_back(std::move(text));
    const auto next = ended_.find(++turn_);
    if (next == ended_.end()) break;
    text = std::move(next->second);
    endedBytes_ -= text.size();
    ended_.erase(next);
    monitor_.Leave();
    WriteThrough(text);
    Clear(&text);
  }
  moved_.Changed();
  monitor_.Leave();
}

}  // namespace qxview
