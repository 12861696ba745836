// Lines that always stand together, whatever the bytes say: as many of them, of the same texts. A question that leaves all of them
// out passes them over by one look.
#pragma once
#include "core/decoder.h"
#include "core/line_facts.h"

namespace qxview {
namespace detail {

class LineGroup {
 public:
  LineGroup(const Place& at, const char* name);
  ~LineGroup();
  LineGroup(const LineGroup&) = delete;
  LineGroup& operator=(const LineGroup&) = delete;
  bool IsLeft() const { return isLeft_; }   // its lines are counted

 private:
  const DecodeContext& context_;
  const char* name_;
  int32_t linesLeft_;
  uint64_t undecided_;
  bool isLeft_;
};

}  // namespace detail

// `add` adds the lines at this place or under it and does nothing else; `name` is the group's own.
template <class Add>
void AddGroup(const Place& at, const char* name, const Add& add) {
  if (!PacketOf(at).asked || Silent(at)) [[likely]] return add();
  const detail::LineGroup group(at, name);
  if (!group.IsLeft()) add();
}

}  // namespace qxview
