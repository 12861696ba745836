// Colours for terminals whose background nobody knows: of the 256-colour palette those that are about as far from white
// as from black (a contrast of 4 and more against either).
#pragma once
#include "app/options.h"

namespace qxview {

inline constexpr const char* kNoColor = "";
inline constexpr const char* kBoldText = "\033[1m";
inline constexpr const char* kFaintText = "\033[2m";
inline constexpr const char* kBlue = "\033[38;5;27m";
inline constexpr const char* kGreen = "\033[38;5;28m";
inline constexpr const char* kTeal = "\033[38;5;30m";
inline constexpr const char* kViolet = "\033[38;5;99m";
inline constexpr const char* kBrown = "\033[38;5;130m";
inline constexpr const char* kMagenta = "\033[38;5;163m";
inline constexpr const char* kBoldRed = "\033[1;38;5;160m";
inline constexpr const char* kPlainText = "\033[0m";

// Whether standard output takes colours: as the user chose, else when it is a terminal that has some and NO_COLOR is
// not set.
bool UsesColor(ColorChoice choice);

}  // namespace qxview
