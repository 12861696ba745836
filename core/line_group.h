// Lines that always stand together, whatever the bytes say: as many of them, of the same texts. A question that leaves all of them
// out passes them over by one look. Those that a few bytes tell wholly are kept, and copied where the same bytes come again.
#pragma once
#include "core/decoder.h"
#include "core/line_facts.h"

namespace qxview {

// The lines of a context that were added last for bytes of each kind. Null when there is no memory, which nothing but time
// depends on.
KeptGroups* CreateKeptGroups();
void DestroyKeptGroups(KeptGroups* groups);

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

// Where lines of a group are kept, and where those that are to be kept start.
struct KeptGroup;
struct KeptName;
class ToldGroup {
 public:
  ToldGroup(const Place& at, const Field& told, const char* name);
  bool IsCopied() const { return isCopied_; }
  LineHandle First() const { return lines_ + 1; }
  void Keep(const Place& at, const Field& told);   // the lines that were added since

 private:
  KeptGroup* kept_ = nullptr;
  KeptName* keptName_ = nullptr;
  const char* name_;
  uint64_t bytes_[2] = {0, 0}, shape_ = 0;
  uint32_t lines_ = 0, ranges_ = 0;
  bool isCopied_ = false;
};

}  // namespace detail

// `add` adds the lines at this place or under it and does nothing else; `name` is the group's own.
template <class Add>
void AddGroup(const Place& at, const char* name, const Add& add) {
  if (!PacketOf(at).asked || Silent(at)) [[likely]] return add();
  const detail::LineGroup group(at, name);
  if (!group.IsLeft()) add();
}

// The same where nothing but these bytes (16 at most) and the engine's settings tells what the lines say and which of them they
// cover.
template <class Add>
void AddToldGroup(const Place& at, const Field& told, const char* name, const Add& add) {
  if (Silent(at) || PacketOf(at).asked) return AddGroup(at, name, add);
  detail::ToldGroup group(at, told, name);
  if (group.IsCopied()) return;
  add();
  group.Keep(at, told);
}

// The same where other lines are added under the first one of these, which `add` returns.
template <class Add>
LineHandle AddToldLines(const Place& at, const Field& told, const char* name, const Add& add) {
  if (Silent(at) || PacketOf(at).asked) return add();
  detail::ToldGroup group(at, told, name);
  if (group.IsCopied()) return group.First();
  const LineHandle first = add();
  group.Keep(at, told);
  return first;
}

}  // namespace qxview
