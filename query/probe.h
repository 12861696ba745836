// Asks a frame: decodes it beside what its session shows and collects what a query asks for. Only the lines that are asked about
// are made.
#pragma once
#include <array>
#include <memory>

#include "host/session.h"
#include "query/key_query.h"
#include "query/partial_tree.h"

namespace qxview {

class Probe {
 public:
  explicit Probe(Session& session) : session_(session) {}
  ~Probe() { DestroyFacts(facts_); }
  Probe(const Probe&) = delete;
  Probe& operator=(const Probe&) = delete;

  // The query's values are those of the frame, until the next one is asked. The lines that the session held are gone; its mode
  // is as it was. False when there is no memory.
  bool Ask(KeyQuery& query, const FrameRecord* record, PacketTold& told);

  // The short names of the frame's protocols in their order, the outer ones first: of those that add lines.
  bool ListProtocols(const FrameRecord* record, std::vector<const char*>* protocols);

 private:
  void MakeFacts();
  template <typename Use>
  void Decode(const FrameRecord* record, const Use& use, bool headersOnly = false);
  bool MayReadHeadersAlone(const KeyQuery& query) const;

  LineQuestion* QuestionOf(KeyQuery& query);

  struct Asked {
    uint64_t version = 0;
    std::unique_ptr<LineQuestion> question;
  };
  std::array<Asked, 4> asked_;
  size_t next_ = 0;
  Session& session_;
  LineFacts* facts_ = nullptr;
  PartialTree tree_;
};

}  // namespace qxview
