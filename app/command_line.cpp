#include "app/command_line.h"

#include <getopt.h>

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "app/command_habits.h"
#include "app/commands.h"
#include "app/output.h"
#include "host/nearest_name.h"
#include "host/text.h"
#include "qxview/version.h"

namespace qxview {
namespace {

constexpr int kFirstLongOption = 256;   // above the letters

int ShowText(const std::string& text) {
  Output out;
  out.Put(text);
  out.Flush();
  return out.Failed() ? OutputFault() : kDone;
}

// Splits "-c,--count".
void SplitNames(const char* names, CommandOption* option) {
  const std::string_view text = names;
  option->letter = text.starts_with("--") ? 0 : text[1];
  if (const size_t dashes = text.find("--"); dashes != text.npos) option->name = text.substr(dashes + 2);
}

}  // namespace

void Command::AddOption(const char* names, const char* valueName, const std::string& about, TakeValue take) {
  CommandOption option{0, "", valueName, about, std::move(take)};
  SplitNames(names, &option);
  options_.push_back(std::move(option));
}

void Command::AddFlag(const char* names, const char* about, bool* on) {
  AddOption(names, nullptr, about, [on](const std::string&, std::string*) { return *on = true; });
}

void Command::AddText(const char* names, const char* valueName, const char* about, std::string* text) {
  AddOption(names, valueName, about, [text](const std::string& value, std::string*) {
    *text = value;
    return true;
  });
}

void Command::AddFileName(const char* names, const char* valueName, const char* about, std::string* file) {
  AddOption(names, valueName, about, [file](const std::string& value, std::string* wrong) {
    *wrong = "the name of a file is wanted";
    *file = value;
    return !value.empty();
  });
}

void Command::AddTexts(const char* names, const char* valueName, const char* about, std::vector<std::string>* texts) {
  AddOption(names, valueName, about, [texts](const std::string& value, std::string*) {
    texts->push_back(value);
    return true;
  });
}

bool Command::TakeNumber(const std::string& value, uint64_t least, uint64_t most, uint64_t* number,
                         std::string* wrong) {
  const char* const last = value.data() + value.size();
  const auto [end, error] = std::from_chars(value.data(), last, *number);
  if (!value.empty() && error == std::errc() && end == last && *number >= least && *number <= most) return true;
  *wrong = "a number from " + std::to_string(least);
  if (most != UINT64_MAX || error == std::errc::result_out_of_range) *wrong += " to " + std::to_string(most);
  *wrong += " is wanted";
  return false;
}

int32_t Command::TakeWord(const std::string& value, const std::vector<const char*>& words, std::string* wrong) {
  for (size_t i = 0; i < words.size(); ++i) {
    if (EqualsIgnoringCase(value, words[i])) return static_cast<int32_t>(i);
    *wrong += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + std::string(words[i]);
  }
  *wrong += " is wanted";
  return -1;
}

const CommandOption* Command::FindOption(char letter) const {
  const auto found = std::find_if(options_.begin(), options_.end(),
                                  [=](const CommandOption& option) { return letter && option.letter == letter; });
  return found == options_.end() ? nullptr : &*found;
}

std::vector<std::string> Command::LongSpellings() const {
  std::vector<std::string> spellings{"--help"};
  for (const CommandOption& option : options_) {
    if (!option.name.empty()) spellings.push_back(option.Spelling());
  }
  return spellings;
}

namespace {

// What getopt found no option for: `word` is what the user typed, `letter` of it the one it stands at, 0 for a word.
void TellUnknownOption(const Command& command, const std::string& word, char letter) {
  if (letter) {
    Tell(std::string(command.Name()) + ": there is no option " + QuoteValue(std::string{'-', letter}) +
         HabitAnswer(letter, command));
    return;
  }
  const std::string name = word.substr(0, word.find('='));
  const std::vector<std::string> spellings = command.LongSpellings();
  Tell(std::string(command.Name()) + ": there is no option " + QuoteValue(name) +
       NearestHint(name, {spellings.begin(), spellings.end()}));
}

}  // namespace

const CommandOption* Command::OptionOf(int code) const {
  return code >= kFirstLongOption ? &options_[static_cast<size_t>(code - kFirstLongOption)]
                                  : FindOption(static_cast<char>(code));
}

Command::Outcome Command::TellMisuse(int code, const std::string& word) const {
  const CommandOption* known = code ? OptionOf(code) : nullptr;
  if (!known) {
    TellUnknownOption(*this, word, static_cast<char>(code));
  } else {
    Tell(std::string(name_) + ": " + known->Spelling() +
         (known->valueName ? std::string(" wants a value, ") + known->valueName : " takes no value"));
  }
  return Outcome::kMisused;
}

// The words are read in their order, whatever POSIXLY_CORRECT says: '-' in front hands out arguments as they come, and '+' ends
// at the first.
Command::Outcome Command::Parse(std::vector<std::string>& words, std::vector<std::string>* arguments) const {
  std::string letters = takesRest_ ? "+:h" : "-:h";
  std::vector<option> names{{"help", no_argument, nullptr, 'h'}};
  for (size_t i = 0; i < options_.size(); ++i) {
    const CommandOption& described = options_[i];
    if (described.letter) letters.append(1, described.letter).append(described.valueName ? ":" : "");
    if (!described.name.empty()) {
      names.push_back({described.name.c_str(), described.valueName ? required_argument : no_argument, nullptr,
                       kFirstLongOption + static_cast<int>(i)});
    }
  }
  names.push_back({nullptr, 0, nullptr, 0});
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  const int count = static_cast<int>(words.size());
  opterr = 0;
  optind = 0;   // anew, for a command within a command, too
  for (int code; (code = getopt_long(count, pointers.data(), letters.c_str(), names.data(), nullptr)) != -1;) {
    if (code == 'h') return Outcome::kHelp;
    if (code == '?' || code == ':') return TellMisuse(optopt, words[static_cast<size_t>(optind - 1)]);
    if (code == 1) {
      arguments->push_back(optarg);
      continue;
    }
    const CommandOption* given = OptionOf(code);
    const std::string value = optarg ? optarg : "";
    std::string wrong;
    if (given->take(value, &wrong)) continue;
    Tell(given->Spelling() + " " + QuoteValue(value) + ": " + wrong);
    return Outcome::kWrongValue;
  }
  arguments->insert(arguments->end(), words.begin() + optind, words.end());
  return Outcome::kTaken;
}

bool Command::TakeArguments(const std::vector<std::string>& given) const {
  if (takesRest_) return *arguments_.back().values = given, true;
  const auto repeated = std::find_if(arguments_.begin(), arguments_.end(),
                                     [](const CommandArgument& argument) { return argument.values != nullptr; });
  const bool repeats = repeated != arguments_.end();
  const size_t mayLack = repeats && !repeated->instead->empty() ? 1 : 0;
  if (given.size() + mayLack < arguments_.size()) {
    const CommandArgument& missing = arguments_[given.size() + mayLack];
    return Tell(std::string(name_) + ": " + missing.name + " is missing: " + missing.about), false;
  }
  if (given.size() > arguments_.size() && !repeats) {
    return Tell(std::string(name_) + ": " + QuoteValue(given[arguments_.size()]) + " is one argument too many"), false;
  }
  auto at = given.begin();
  for (const CommandArgument& argument : arguments_) {
    const auto end = at + (argument.values ? static_cast<ptrdiff_t>(given.size() + 1 - arguments_.size()) : 1);
    if (std::find(at, end, "") != end) {
      return Tell(std::string(name_) + ": " + argument.name + " is empty: " + argument.about), false;
    }
    if (argument.values) {
      argument.values->assign(at, end);
    } else {
      *argument.value = *at;
    }
    at = end;
  }
  return true;
}

int Command::Run(std::vector<std::string> words) const {
  std::vector<std::string> arguments;
  const Outcome outcome = Parse(words, &arguments);
  if (outcome == Outcome::kHelp) return ShowText(HelpText());
  if (outcome == Outcome::kTaken && TakeArguments(arguments)) return action_();
  if (outcome != Outcome::kWrongValue) {
    std::fprintf(stderr, "%s\nqxview help %s tells more.\n", UsageText().c_str(), name_);
  }
  return kUsage;
}

std::string Command::UsageText() const {
  std::string text = "Usage: qxview " + std::string(name_) + " [OPTION...]";
  for (const CommandArgument& argument : arguments_) {
    text.append(takesRest_ ? " [" : " ").append(argument.name);
    text.append(takesRest_ ? " [OPTION...]]" : argument.values ? "..." : "");
  }
  return text;
}

namespace {

// A row of help: what is typed, and what it does, in lines of up to 80 columns.
void AddHelpRow(const std::string& typed, std::string_view about, std::string* text) {
  constexpr size_t kColumn = 26, kWidth = 80 - kColumn;
  std::string head = "  " + typed;
  if (head.size() + 2 > kColumn) *text += head + "\n", head.clear();
  while (true) {
    size_t length = about.size();
    if (length > kWidth) {
      length = about.rfind(' ', kWidth);
      if (length == about.npos) length = std::min(about.find(' '), about.size());
    }
    head.resize(kColumn, ' ');
    *text += head + std::string(about.substr(0, length)) + "\n";
    if (length >= about.size()) return;
    about.remove_prefix(length + 1);
    head.clear();
  }
}

}  // namespace

std::string Command::HelpText() const {
  std::string text = UsageText() + "\n" + name_ + ": " + about_ + "\n\n";
  for (const CommandArgument& argument : arguments_) AddHelpRow(argument.name, argument.about, &text);
  text += arguments_.empty() ? "Options:\n" : "\nOptions:\n";
  for (const CommandOption& described : options_) {
    std::string typed = described.letter ? std::string{'-', described.letter} : "";
    if (!described.name.empty()) typed += (typed.empty() ? "--" : ", --") + described.name;
    if (described.valueName) typed.append(" ").append(described.valueName);
    AddHelpRow(typed, described.about, &text);
  }
  AddHelpRow("-h, --help", "this text", &text);
  return text + "\n" + examples_ + "\n";
}

std::string CommandLine::HelpText() const {
  std::string text =
      "Usage: qxview COMMAND [OPTION...] FILE\n"
      "Decodes captured packets layer by layer into a tree of lines, each tied to its\nbytes.\n\n"
      "Commands:\n";
  for (const Command& command : commands_) AddHelpRow(command.Name(), command.About(), &text);
  AddHelpRow("help [COMMAND]", "this text, or a command's options and examples", &text);
  return text + "\nOptions:\n  -h, --help              this text\n  --version               the version\n";
}

const Command* CommandLine::Find(const std::string& name) const {
  const auto found = std::find_if(commands_.begin(), commands_.end(),
                                  [&](const Command& command) { return name == command.Name(); });
  return found == commands_.end() ? nullptr : &*found;
}

int CommandLine::TellUnknown(const std::string& word) const {
  std::vector<std::string_view> names{"help", "--help", "--version"};
  for (const Command& command : commands_) names.push_back(command.Name());
  if (word.starts_with("-")) {
    Tell("a command comes first, then its options; " + QuoteValue(word) + " is none" +
         (word.starts_with("--") ? NearestHint(word, names)
          : word.size() > 1      ? HabitAnswer(word[1], commands_.front())
                                 : ""));
  } else {
    Tell("there is no command " + QuoteValue(word) + NearestHint(word, names));
  }
  std::fprintf(stderr, "qxview help tells the commands.\n");
  return kUsage;
}

int CommandLine::Run(const std::vector<std::string>& words) const {
  const std::vector<std::string> given(words.begin() + (words.empty() ? 0 : 1), words.end());
  if (given.empty()) {
    std::fputs(HelpText().c_str(), stderr);
    return kUsage;
  }
  const std::string& first = given[0];
  if (const Command* command = Find(first)) return command->Run(given);
  if (first == "--version") return ShowText("qxview " QXVIEW_VERSION_TEXT "\n");
  if (first != "help" && first != "--help" && first != "-h") {
    if (!takesDefault_ || !takesDefault_(first)) return TellUnknown(first);
    std::vector<std::string> meant = given;
    meant.insert(meant.begin(), default_);
    return Find(default_)->Run(std::move(meant));
  }
  if (first != "help" || given.size() < 2 || given[1].starts_with("-")) return ShowText(HelpText());
  if (given[1] == "help") return ShowText(HelpText());
  const Command* command = Find(given[1]);
  return command ? ShowText(command->HelpText()) : TellUnknown(given[1]);
}

}  // namespace qxview
