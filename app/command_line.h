// What the command line is made of: commands, each a name, its options and arguments, and what it does. Reading the
// user's words, telling what is wrong with them, and the texts of help follow from these records.
#pragma once
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qxview {

class CaptureReader;

enum ExitStatus : int { kDone = 0, kNothingFound = 1, kUsage = 2, kFileFault = 3 };

// A message on standard error: "qxview: TEXT".
void Tell(const std::string& text);

// Takes what the user gave for an option; false for a value that it does not take, then *wrong says why.
using TakeValue = std::function<bool(const std::string& value, std::string* wrong)>;

struct CommandOption {
  char letter;              // 0: none
  std::string name;         // without the dashes; empty: none
  const char* valueName;    // null: a flag
  std::string about;
  TakeValue take;
  // As the user types it.
  std::string Spelling() const { return name.empty() ? std::string{'-', letter} : "--" + name; }
};

struct CommandArgument {
  const char* name;
  const char* about;
  std::string* value;
  std::vector<std::string>* values;   // one that may be repeated: it takes what the others leave
  const std::string* instead;         // and may be left out when this option is given
};

// Packets that are read in place of files: those of a capture that is going on.
struct LiveInput {
  std::string name;
  std::function<std::unique_ptr<CaptureReader>(std::string* message)> open;   // null with a message
};

class Command {
 public:
  Command(const char* name, const char* about, const LiveInput* live) : name_(name), about_(about), live_(live) {}

  // `names` is "-c,--count", "-c" or "--count". The targets hold the defaults and live as long as the command.
  void AddFlag(const char* names, const char* about, bool* on);
  void AddText(const char* names, const char* valueName, const char* about, std::string* text);
  void AddFileName(const char* names, const char* valueName, const char* about, std::string* file);
  void AddTexts(const char* names, const char* valueName, const char* about, std::vector<std::string>* texts);
  void AddOption(const char* names, const char* valueName, const std::string& about, TakeValue take);

  template <typename Number>
  void AddNumber(const char* names, const char* valueName, const char* about, uint64_t least, uint64_t most,
                 Number* number) {
    AddOption(names, valueName, about, [=](const std::string& value, std::string* wrong) {
      uint64_t parsed = 0;
      if (!TakeNumber(value, least, most, &parsed, wrong)) return false;
      *number = static_cast<Number>(parsed);
      return true;
    });
  }
  template <typename Choice>
  void AddChoice(const char* names, const char* valueName, const char* about,
                 std::vector<std::pair<const char*, Choice>> choices, Choice* chosen) {
    std::vector<const char*> words;
    for (const auto& choice : choices) words.push_back(choice.first);
    AddOption(names, valueName, about, [=](const std::string& value, std::string* wrong) {
      const int32_t index = TakeWord(value, words, wrong);
      if (index >= 0) *chosen = choices[static_cast<size_t>(index)].second;
      return index >= 0;
    });
  }

  void AddArgument(const char* name, const char* about, std::string* value) {
    arguments_.push_back({name, about, value, nullptr, nullptr});
  }
  // At most one of a command's arguments.
  void AddArguments(const char* name, const char* about, std::vector<std::string>* values, const std::string* instead) {
    arguments_.push_back({name, about, nullptr, values, instead});
  }
  // Everything from the first word on that is no option, with its own options: another command.
  void AddRest(const char* name, const char* about, std::vector<std::string>* words) {
    arguments_.push_back({name, about, nullptr, words, nullptr});
    takesRest_ = true;
  }
  void SetExamples(const char* text) { examples_ = text; }
  void SetAction(std::function<int()> action) { action_ = std::move(action); }

  const char* Name() const { return name_; }
  const char* About() const { return about_; }
  const LiveInput* Live() const { return live_; }   // null: files are read
  const CommandOption* FindOption(char letter) const;
  std::vector<std::string> LongSpellings() const;
  std::string HelpText() const;
  // Reads the words behind the command's name and runs it; the exit status.
  int Run(std::vector<std::string> words) const;

 private:
  static bool TakeNumber(const std::string& value, uint64_t least, uint64_t most, uint64_t* number,
                         std::string* wrong);
  static int32_t TakeWord(const std::string& value, const std::vector<const char*>& words, std::string* wrong);
  const CommandOption* OptionOf(int code) const;
  // What is wrong is told.
  enum class Outcome { kTaken, kHelp, kWrongValue, kMisused };
  Outcome Parse(std::vector<std::string>& words, std::vector<std::string>* arguments) const;
  Outcome TellMisuse(int code, const std::string& word) const;
  bool TakeArguments(const std::vector<std::string>& given) const;
  std::string UsageText() const;

  const char* name_;
  const char* about_;
  const LiveInput* live_;
  bool takesRest_ = false;
  const char* examples_ = "";
  std::vector<CommandOption> options_;
  std::vector<CommandArgument> arguments_;
  std::function<int()> action_;
};

class CommandLine {
 public:
  // What its commands read: files, or with `live` that.
  explicit CommandLine(const LiveInput* live = nullptr) : live_(live) {}
  Command& Add(const char* name, const char* about) { return commands_.emplace_back(name, about, live_); }
  // The command that a first word means which is none's name, when `takes` says so.
  void SetDefault(const char* command, std::function<bool(const std::string& word)> takes) {
    default_ = command;
    takesDefault_ = std::move(takes);
  }
  // Runs the command that the words name; the exit status.
  int Run(const std::vector<std::string>& words) const;

 private:
  const Command* Find(const std::string& name) const;
  int TellUnknown(const std::string& word) const;
  std::string HelpText() const;

  const LiveInput* live_;
  std::list<Command> commands_;
  std::string default_;
  std::function<bool(const std::string&)> takesDefault_;
};

}  // namespace qxview
