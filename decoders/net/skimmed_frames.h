// Frames that are told to later ones without being read: who reads a capture on several threads makes the look-ups of state that
// the headers ask for, in their order, and leaves the headers to whoever makes something of them.
#pragma once
#include "core/context.h"

namespace qxview {

enum class Skim : uint8_t {
  kNot,       // the frame has to be read: it may leave something, or asks for more
  kDone,      // nothing more is asked for, nor by its summary
  kSummary,   // its summary may: PassSummary is to be called
};

// Of Ethernet frames as most are (a datagram in one piece, TCP or UDP in it, of a protocol that its ends tell, or of one that
// shows itself and of which nothing is learnt): makes the look-ups that reading its headers and no more would make, and leaves
// nothing. Where it is not skimmed some of them may have been made. The view's packet state is the frame's behind it, as far as
// PassSummary asks for it.
Skim SkimFrame(View* view, const uint8_t* frame, int32_t length);

}  // namespace qxview
