// Options that other tools of the field have taught people's fingers, answered with what does the same here.
#pragma once
#include <string>

#include "app/command_line.h"

namespace qxview {

// What the letter's user likely wants, as "; ..."; empty where there is nothing to say.
std::string HabitAnswer(char letter, const Command& command);

}  // namespace qxview
