// What encrypted records were opened to, for who follows a connection beside its lines.
#pragma once
#include <cstdint>

namespace qxview {

struct View;

struct OpenedRecord {
  enum How : uint8_t { kOpened, kFailed, kNoSecrets };
  How how;
  bool isData;            // of the application, not of the protocol itself
  uint64_t keys;          // tells the keys of a direction from those that follow them
  uint64_t sequence;      // of the record under these keys; of opened ones
  const uint8_t* bytes;   // of opened ones; good while they are told
  int32_t length;         // of those that were not opened as they were sent
};

struct RecordListener {
  void (*take)(void* with, const OpenedRecord& record);
  void* with;
};

// From now on the listener, which the engine keeps a copy of, is told of the records of TLS over TCP; false when there is no
// memory.
bool ListenToRecords(const View* view, const RecordListener& listener);
void TellRecord(const View* view, const OpenedRecord& record);

}  // namespace qxview
