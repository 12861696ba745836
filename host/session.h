// A view with everything under it, for programs without an analyzer: engine, decode context, arena tree.
#pragma once
#include <memory>

#include "core/frame_entry.h"
#include "core/output_file.h"
#include "view/arena_tree.h"

namespace qxview {

class Session {
 public:
  // Null when there is no memory. The host's record must outlive the session.
  static std::unique_ptr<Session> Create(const QxHost* host, const LibraryLoader& loader);
  ~Session();

  View* GetView() { return &view_; }
  ArenaTree& Tree() { return tree_; }
  DecodeContext& Context() { return *view_.context; }
  Engine* GetEngine() { return view_.engine; }

  // Lines go into this tree from now on, into the own one again with null. Both start empty; the tree must stay good
  // until it is taken away or the session ends.
  void ShowIn(DecodeTree* tree);

  // Where the print and save modes write; null ends them and goes back to display.
  void SetOutput(char mode, OutputFile* file);

  // Clears the tree (display mode) and decodes the frame.
  int32_t Decode(const FrameRecord* record, uint32_t userParam1 = 0, uint32_t userParam2 = 0, int32_t skipBytes = 0);

  // From now on Decode leaves what the headers of a frame tell in the context's packet state and shows nothing; what
  // carries an application's payload is resolved and learnt from as ever.
  void DecodeHeadersOnly();

  // Decodes the headers of the frame that was decoded last once more, for the packet state alone: its lines stay.
  void ReadHeaders(const FrameRecord* record);

  // Passes the frame through for what later frames need of it (learning, window scales): nothing is shown or written.
  void Pass(const FrameRecord* record);

 private:
  Session() = default;
  ArenaTree tree_;
  View view_{};
};

}  // namespace qxview
