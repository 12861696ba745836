#include "core/line_group.h"

namespace qxview::detail {

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

}  // namespace qxview::detail
