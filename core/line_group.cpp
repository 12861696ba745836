#include "core/line_group.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "core/digits.h"
#include "core/made_line.h"

namespace qxview {
namespace detail {

namespace {

constexpr uint32_t kMostKeptLines = 16;
constexpr uint32_t kMostKeptText = 960;   // bytes, with the lines' blanks and line feeds
constexpr int32_t kMostTold = 16;         // bytes that tell of a group
constexpr int32_t kPlaceBits = 6;         // pairs of places

// Four numbers that are added to four others at once, where the processor can.
using Four = uint32_t __attribute__((vector_size(16)));

struct KeptLine {
  // As a line's first four: where its text stands in the group's, its length, its place in the group, and its parent's place, for
  // one under the line that the group is added under as that of the line before the group.
  uint32_t place[4];
  uint32_t ofParent[4];    // all bits of the last for such a line: what is added if that line is another one
  uint32_t looks;          // a line's depth, image and flags as they stand there
  ByteRange range;         // its offset from that of the bytes
};

}  // namespace

struct KeptGroup {
  uint32_t count, textLength;
  KeptLine lines[kMostKeptLines];
  char text[kMostKeptText];
};

// What tells whether a group is kept in a place.
struct KeptName {
  const char* name;        // null: none is
  uint64_t bytes[2], shape;
};

}  // namespace detail

struct KeptGroups {
  detail::KeptName names[1 << detail::kPlaceBits][2];
  uint8_t older[1 << detail::kPlaceBits];   // of each pair
  detail::KeptGroup places[1 << detail::kPlaceBits][2];   // set where there is a name: many a context lives for few packets
};

KeptGroups* CreateKeptGroups() {
  auto* const groups = static_cast<KeptGroups*>(std::malloc(sizeof(KeptGroups)));
  if (groups) std::memset(static_cast<void*>(groups), 0, offsetof(KeptGroups, places));
  return groups;
}
void DestroyKeptGroups(KeptGroups* groups) { std::free(groups); }

namespace detail {

LineGroup::LineGroup(const Place& at, const char* name)
    : context_(*at.view->context), name_(name), linesLeft_(context_.packet.linesLeft),
      undecided_(context_.facts->question->undecided),
      isLeft_(at.parent != kLeftFrameLine && IsKnownToBeLeft(context_, name, false)) {
  if (isLeft_) CountLines(at, context_.facts->question->PlaceOf(name).lines);
}

// The texts of all its lines were known to be left wherever they stand.
LineGroup::~LineGroup() {
  LineQuestion& question = *context_.facts->question;
  const PacketState& packet = context_.packet;
  const int32_t lines = linesLeft_ - packet.linesLeft;
  constexpr int32_t kMostLinesOfGroup = 64;
  if (isLeft_ || undecided_ != question.undecided || packet.limitReached || lines < 1 || lines > kMostLinesOfGroup) return;
  KnownLabel known{};
  known.text = name_;
  known.protocol = packet.protocol;
  known.isAlwaysLeft = true;
  known.lines = static_cast<uint8_t>(lines);
  question.PlaceOf(name_) = known;
}

namespace {

// The number of the group's own place, or of the one that it is to take.
uint32_t PlaceOf(KeptGroups& groups, const char* name, const uint64_t (&bytes)[2], uint64_t shape) {
  constexpr uint64_t kMixer = 0x9E3779B97F4A7C15, kOther = 0xD6E8FEB86659FD93;
  const uint64_t mixed = ((bytes[0] ^ bytes[1] * kOther) * kMixer ^ reinterpret_cast<uintptr_t>(name)) * kMixer;
  const uint32_t at = static_cast<uint32_t>(mixed >> (64 - kPlaceBits));
  KeptName (&pair)[2] = groups.names[at];
  for (uint32_t i = 0; i < 2; ++i) {
    const KeptName& place = pair[i];
    if (place.bytes[0] != bytes[0] || place.bytes[1] != bytes[1] || place.name != name || place.shape != shape) continue;
    groups.older[at] = static_cast<uint8_t>(1 - i);
    return at * 2 + i;
  }
  const uint32_t older = groups.older[at];
  groups.older[at] ^= 1;
  pair[older].name = nullptr;
  return at * 2 + older;
}

constexpr int32_t kOffsetBit = 10;                  // of a byte range
constexpr int32_t kMostOffset = (1 << 25) - 1;      // so that offsets can be added

constexpr size_t kLooksAt = offsetof(LineStore::Line, depth);
static_assert(offsetof(LineStore::Line, image) == kLooksAt + 2 && offsetof(LineStore::Line, flags) == kLooksAt + 3);

void Copy(const KeptGroup& kept, const Place& at, const Field& told, DecodeContext& context, LineStore& store) {
  using Line = LineStore::Line;
  static_assert(offsetof(Line, made) == 0 && offsetof(Line, length) == 4);
  static_assert(offsetof(Line, rangeIndex) == 8 && offsetof(Line, parent) == 12);
  const uint32_t parent = static_cast<uint32_t>(at.parent), start = store.textUsed, firstRange = context.rangeCount;
  store.ComeUnder(parent);
  std::memcpy(store.text + start, kept.text, kept.textLength);
  const Four starts = {start, 0, firstRange, store.count}, ofParent = {0, 0, 0, parent - store.count};
  const ByteRange offset = static_cast<ByteRange>(static_cast<uint32_t>(told.offset)) << kOffsetBit;
  ByteRange* const ranges = context.rangeTable + firstRange;
  Line* const lines = store.lines + store.count + 1;
  for (uint32_t i = 0; i < kept.count; ++i) {
    const KeptLine& from = kept.lines[i];
    Four place, parentMask;
    std::memcpy(&place, from.place, sizeof place);
    std::memcpy(&parentMask, from.ofParent, sizeof parentMask);
    place += (parentMask & ofParent) + starts;
    std::memcpy(lines + i, &place, sizeof place);
    std::memcpy(reinterpret_cast<char*>(lines + i) + kLooksAt, &from.looks, sizeof from.looks);
    ranges[i] = from.range + offset;
  }
  store.count += kept.count;
  store.textUsed = start + kept.textLength;
  context.rangeCount = firstRange + kept.count;
  context.packet.linesLeft -= static_cast<int32_t>(kept.count);
}

}  // namespace

ToldGroup::ToldGroup(const Place& at, const Field& told, const char* name) : name_(name) {
  DecodeContext& context = *at.view->context;
  LineStore* const store = OpenLines(&context, at.tree);
  if (!store || context.facts || !context.groups || at.dead || !told.here || at.parent > store->count || store->isLinked) return;
  if (told.length < 1 || told.length > kMostTold || told.offset < 0 || told.offset > kMostOffset || !store->lines) return;
  CopyShort(reinterpret_cast<char*>(bytes_), reinterpret_cast<const char*>(told.bytes), static_cast<size_t>(told.length));
  shape_ = static_cast<uint64_t>(static_cast<uint16_t>(at.level)) |
           static_cast<uint64_t>(static_cast<uint16_t>(at.lineSize)) << 16 |
           static_cast<uint64_t>(store->lines[at.parent].depth) << 32 | static_cast<uint64_t>(told.length) << 48;
  const uint32_t place = PlaceOf(*context.groups, name, bytes_, shape_);
  keptName_ = &context.groups->names[0][0] + place;
  kept_ = &context.groups->places[0][0] + place;
  lines_ = store->count;
  ranges_ = context.rangeCount;
  if (!keptName_->name) return;
  if (context.packet.linesLeft <= static_cast<int32_t>(kept_->count) ||
      ranges_ + kept_->count >= context.rangeCapacity || !store->Reserve(kept_->count, kept_->textLength)) {
    kept_ = nullptr;
    return;
  }
  Copy(*kept_, at, told, context, *store);
  isCopied_ = true;
}

// Texts that were changed since are kept as they read now, and stand in their places in the copies.
void ToldGroup::Keep(const Place& at, const Field& told) {
  if (!kept_) return;
  const DecodeContext& context = *at.view->context;
  const LineStore& store = *at.tree->Lines();
  const uint32_t count = store.count - lines_;
  if (count < 1 || count > kMostKeptLines || context.rangeCount - ranges_ != count || store.isLinked || !store.isInOrder ||
      context.packet.limitReached) {
    return;
  }
  KeptGroup& kept = *kept_;
  keptName_->name = nullptr;
  uint32_t used = 0;
  for (uint32_t i = 0; i < count; ++i) {
    const LineStore::Line& line = store.lines[lines_ + 1 + i];
    const ByteRange range = context.rangeTable[ranges_ + i];
    const int32_t offset = RangeOffset(range) - told.offset;
    const bool isUnder = line.parent == at.parent;
    if (line.rangeIndex != ranges_ + i || RangeKind(range) != kFieldKind || offset < 0) return;
    if (!isUnder && line.parent <= lines_) return;
    if (line.depth > LineStore::kDeepestPrinted) return;
    const uint32_t blanks = LineStore::BlanksUnder(line.depth - 1u);
    if (used + blanks + line.length + 1 > kMostKeptText) return;
    std::memset(kept.text + used, ' ', blanks);
    used += blanks;
    std::memcpy(kept.text + used, store.PlaceOf(line), line.length);
    LineStore::Line looks = line;
    looks.flags = LineStore::FirstFlags(line.depth - 1u);
    kept.lines[i] = {{used, line.length, i, isUnder ? 0 : line.parent - lines_}, {0, 0, 0, isUnder ? UINT32_MAX : 0}, 0,
                     MakeByteRange(kFieldKind, offset, static_cast<int32_t>(RangeLength(range)))};
    std::memcpy(&kept.lines[i].looks, reinterpret_cast<const char*>(&looks) + kLooksAt, sizeof kept.lines[i].looks);
    used += line.length;
    kept.text[used++] = '\n';
  }
  *keptName_ = {name_, {bytes_[0], bytes_[1]}, shape_};
  kept.count = count;
  kept.textLength = used;
}

}  // namespace detail
}  // namespace qxview
