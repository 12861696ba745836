#include "core/line_group.h"

#include <cstdlib>
#include <cstring>

#include "core/digits.h"
#include "core/made_line.h"

namespace qxview {
namespace detail {

namespace {

constexpr uint32_t kMostKeptLines = 16;
constexpr uint32_t kMostKeptText = 960;   // bytes, with the lines' blanks and line feeds
constexpr int32_t kMostTold = 8;          // bytes that tell of a group
constexpr int32_t kPlaceBits = 7;

struct KeptLine {
  uint32_t made, length;   // in the group's text
  uint32_t parent;         // one more than the place in the group; 0: the line that the group is added under
  uint16_t depth;
  uint8_t image, flags;
  ByteRange range;         // its offset from that of the bytes
};

}  // namespace

struct KeptGroup {
  const char* name;        // null: none yet
  uint64_t bytes, shape;
  uint32_t count, textLength;
  KeptLine lines[kMostKeptLines];
  char text[kMostKeptText];
};

}  // namespace detail

struct KeptGroups {
  detail::KeptGroup places[1 << detail::kPlaceBits];
};

KeptGroups* CreateKeptGroups() { return static_cast<KeptGroups*>(std::calloc(1, sizeof(KeptGroups))); }
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

uint64_t BytesOf(const Field& told) {
  uint64_t bytes = 0;
  for (int32_t i = 0; i < told.length; ++i) bytes = bytes << 8 | told.bytes[i];
  return bytes;
}

KeptGroup& PlaceOf(KeptGroups& groups, const char* name, uint64_t bytes) {
  constexpr uint64_t kMixer = 0x9E3779B97F4A7C15;
  const uint64_t mixed = (bytes * kMixer ^ reinterpret_cast<uintptr_t>(name)) * kMixer;
  return groups.places[mixed >> (64 - kPlaceBits)];
}

constexpr int32_t kOffsetBit = 10;                  // of a byte range
constexpr int32_t kMostOffset = (1 << 25) - 1;      // so that offsets can be added

void Copy(const KeptGroup& kept, const Place& at, const Field& told, DecodeContext& context, LineStore& store) {
  const uint32_t parent = static_cast<uint32_t>(at.parent), first = store.count + 1, start = store.textUsed;
  store.ComeUnder(parent);
  std::memcpy(store.text + start, kept.text, kept.textLength);
  ByteRange* const ranges = context.rangeTable + context.rangeCount;
  const ByteRange offset = static_cast<ByteRange>(static_cast<uint32_t>(told.offset)) << kOffsetBit;
  for (uint32_t i = 0; i < kept.count; ++i) {
    const KeptLine& from = kept.lines[i];
    LineStore::Line& line = store.lines[first + i];
    line.made = start + from.made;
    line.length = from.length;
    line.rangeIndex = context.rangeCount + i;
    line.parent = from.parent ? store.count + from.parent : parent;
    line.depth = from.depth;
    line.image = from.image;
    line.flags = from.flags;
    ranges[i] = from.range + offset;
  }
  store.count += kept.count;
  store.textUsed = start + kept.textLength;
  context.rangeCount += kept.count;
  context.packet.linesLeft -= static_cast<int32_t>(kept.count);
}

}  // namespace

ToldGroup::ToldGroup(const Place& at, const Field& told, const char* name) : name_(name) {
  DecodeContext& context = *at.view->context;
  LineStore* const store = OpenLines(&context, at.tree);
  if (!store || context.facts || !context.groups || at.dead || !told.here || at.parent > store->count || store->isLinked) return;
  if (told.length < 1 || told.length > kMostTold || told.offset < 0 || told.offset > kMostOffset || !store->lines) return;
  bytes_ = BytesOf(told);
  shape_ = static_cast<uint64_t>(static_cast<uint16_t>(at.level)) |
           static_cast<uint64_t>(static_cast<uint16_t>(at.lineSize)) << 16 |
           static_cast<uint64_t>(store->lines[at.parent].depth) << 32 | static_cast<uint64_t>(told.length) << 48;
  kept_ = &PlaceOf(*context.groups, name, bytes_);
  lines_ = store->count;
  ranges_ = context.rangeCount;
  if (kept_->bytes != bytes_ || kept_->name != name || kept_->shape != shape_) return;
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
  kept.name = nullptr;
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
    kept.lines[i] = {used, line.length, isUnder ? 0 : line.parent - lines_, line.depth, line.image,
                     LineStore::FirstFlags(line.depth - 1u),
                     MakeByteRange(kFieldKind, offset, static_cast<int32_t>(RangeLength(range)))};
    used += line.length;
    kept.text[used++] = '\n';
  }
  kept.name = name_;
  kept.bytes = bytes_;
  kept.shape = shape_;
  kept.count = count;
  kept.textLength = used;
}

}  // namespace detail
}  // namespace qxview
