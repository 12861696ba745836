#include "app/command_habits.h"

namespace qxview {
namespace {

struct Habit {
  char letter;
  const char* answer;
};

constexpr Habit kHabits[] = {
    {'r', "the file is named without an option: qxview list FILE, qxview decode FILE"},
    {'i', "live packets come through a pipe: tcpdump -U -w - -i INTERFACE | qxview decode -l -"},
    {'V', "the whole tree of each packet is what qxview decode FILE shows"},
    {'v', "the whole tree of each packet is what qxview decode FILE shows; --version tells the version"},
    {'n', "names are never looked up; those of the setting AliasFile are shown when it is set"},
    {'w', "packets are written by qxview save FILE OUT"},
    {'Y', "packets are chosen by -f EXPR, a BPF expression, or --packets LIST; qxview find FILE TEXT looks for a text"},
    {'R', "packets are chosen by -f EXPR, a BPF expression, or --packets LIST; qxview find FILE TEXT looks for a text"},
    {'T', "data for programs is written by qxview decode --format json FILE, documents by qxview xml FILE OUT"},
    {'o', "a setting for this run is --set NAME=VALUE"},
    {'x', "the bytes of each packet are shown by qxview decode -x FILE"},
    {'X', "the bytes of each packet are shown by qxview decode -x FILE"},
    {'A', "the bytes of each packet are shown by qxview decode -x FILE"},
    {'t', "the forms of time are those of qxview list -t FORM FILE"},
    {'e', "the addresses of the medium are in the tree: qxview decode FILE"},
    {'q', "the shortest form is qxview list FILE"},
    {'D', "there are no interfaces to list: qxview reads files, and live packets through a pipe"},
    {'s', "packets are cut by qxview save --partial BYTES FILE OUT"},
    {'U', "-l flushes after every packet"},
    {'?', "help is -h"},
};

}  // namespace

std::string HabitAnswer(char letter, const Command& command) {
  for (const Habit& habit : kHabits) {
    if (habit.letter == letter && !command.FindOption(letter)) return std::string("; ") + habit.answer;
  }
  return {};
}

}  // namespace qxview
