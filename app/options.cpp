#include "app/options.h"

#include <algorithm>

#include "files/byte_source.h"
#include "host/text.h"
#include "platform/mib_modules.h"
#include "platform/platform.h"
#include "query/filter.h"

namespace qxview {
namespace {

// Takes a display filter that is right; else *wrong says what is not, with marks under the place.
bool TakeFilter(const std::string& expression, std::string* filter, std::string* wrong) {
  FilterFault fault;
  *filter = expression;
  if (Filter::Parse(expression, &fault)) return true;
  *wrong = fault.message;
  if (expression.find_first_of("\n\r\t") != expression.npos || expression.size() > 1000) return false;
  // Bytes that go on a character of UTF-8 take no column.
  const auto columns = [](std::string_view text) {
    return std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; });
  };
  const std::string_view whole = expression;
  const auto first = columns(whole.substr(0, fault.at)), marked = columns(whole.substr(fault.at, fault.length));
  *wrong += "\n  " + expression + "\n  " + std::string(static_cast<size_t>(first), ' ') +
            std::string(static_cast<size_t>(std::max<ptrdiff_t>(marked, 1)), '^');
  return false;
}

}  // namespace

void AddWhereOption(Command* command, ReadingOptions* options) {
  command->AddOption("-Y,--where", "EXPR",
                     "only packets whose fields it is true of: dns.qry.name contains \"test\" and ip.addr == 10.0.0.0/8; "
                     "qxview protocols --fields lists the keys",
                     [options](const std::string& value, std::string* wrong) {
                       return TakeFilter(value, &options->where, wrong);
                     });
}

void AddDecodingOptions(Command* command, ReadingOptions* options) {
  command->AddTexts("-d,--decode-as", "SPEC",
                    "a protocol definition, may be repeated: tcp:8080=HTTP, udp:10.0.0.1:5000=SNMP, "
                    "tcp:[2001:db8::1]:80=HTTP; port 0: any port of the address; tcp:80=none takes one away",
                    &options->host.definitions);
  command->AddFileName("--settings", "FILE", "settings file instead of the user's own", &options->host.settingsFile);
  command->AddTexts("--set", "NAME=VALUE", "one setting, may be repeated", &options->host.settings);
  command->AddFlag("--modern", "the same as --set Modern=1: all records of DNS, and bad checksums end nothing",
                   &options->modern);
  command->AddFlag("--reassemble", "the same as --set Reassembly=1: messages over segments and fragments are joined",
                   &options->reassemble);
}

void AddReadingOptions(Command* command, ReadingOptions* options) {
  command->AddArguments("FILE",
                        "pcap, pcapng or BFR file, compressed or not; - for standard input. Of several each is a run of "
                        "its own",
                        &options->files, command->Live() ? &command->Live()->name : &options->filesFrom);
  options->live = command->Live();
  command->AddFileName("--files-from", "LIST", "further captures, named in this file a line each; - for standard input",
                   &options->filesFrom);
  command->AddFlag("--merge", "several captures as one run, by time", &options->merge);
  command->AddFlag("--keep-going", "go on behind a capture that cannot be read; the exit status is 3 in the end",
                   &options->keepGoing);
  command->AddOption("--packets", "LIST", "packet numbers from 1: 7, 3-9, 12-, comma-separated",
                     [options](const std::string& value, std::string* wrong) {
                       return options->selection.Parse(value, wrong);
                     });
  command->AddNumber("-c,--count", "N", "stop after N packets", 1, UINT64_MAX, &options->count);
  command->AddText("-f,--filter", "EXPR", "only packets that match a BPF expression", &options->filter);
  AddWhereOption(command, options);
  AddDecodingOptions(command, options);
  command->AddNumber("--jobs", "N", "threads that decode, the output is the same: 1 to 64; else one a processor, where that pays", 1, 64,
                     &options->jobs);
  command->AddFlag("-l", "flush the output after every packet", &options->flushEachPacket);
  command->AddChoice<ColorChoice>(
      "--color", "WHEN", "colours: auto, always or never",
      {{"auto", ColorChoice::kAuto}, {"always", ColorChoice::kAlways}, {"never", ColorChoice::kNever}},
      &options->color);
}

void AddPrefixOption(Command* command, ReadingOptions* options) {
  command->AddFlag("--prefix-file", "each packet's file: in front of every line, in json as \"file\"",
                   &options->prefixFile);
}

namespace {

// The names of a list, a line each.
bool ReadList(const std::string& path, std::vector<std::string>* names) {
  const std::string shown = path == "-" ? "standard input" : path;
  std::string reason, name;
  const std::unique_ptr<ByteSource> source = OpenFileSource(path.c_str(), &reason);
  if (!source) return Tell(shown + ": " + reason), false;
  while (const uint8_t* byte = source->Peek(1)) {
    const uint8_t* const end = byte + source->Remaining();
    for (; byte < end; ++byte) {
      if (*byte != '\n') {
        name += static_cast<char>(*byte);
        continue;
      }
      if (name.ends_with('\r')) name.pop_back();
      if (!name.empty()) names->push_back(name);
      name.clear();
    }
    source->Skip(source->Remaining());
  }
  if (!name.empty()) names->push_back(name);
  return source->Failure().empty() || (Tell(shown + ": " + source->Failure()), false);
}

}  // namespace

void FindSettings(HostOptions* options) {
  options->userSettings = FindUserSettings();
  // As in the home of another user whose rights this one runs without.
  const std::string& hidden = options->userSettings.hidden;
  if (options->settingsFile.empty() && !hidden.empty()) Tell(hidden + "; the settings are the defaults");
}

int FinishReadingOptions(ReadingOptions* options) {
  if (options->modern) options->host.settings.insert(options->host.settings.begin(), "Modern=1");
  if (options->reassemble) options->host.settings.insert(options->host.settings.begin(), "Reassembly=1");
  FilterFault fault;
  const auto where = options->where.empty() ? nullptr : Filter::Parse(options->where, &fault);
  const std::string doubt = where ? where->Keys().DoubtfulKeys() : "";
  if (!doubt.empty()) Tell("--where: note: " + doubt);
  FindSettings(&options->host);
  options->host.applicationDirectory = ExecutableDirectory();
  options->host.readMibModules = ReadMibModules;
  auto& files = options->files;
  if (options->live) {
    if (!files.empty()) return Tell(QuoteValue(files[0]) + ": the packets come from " + options->live->name + ", not from files"), kUsage;
    if (!options->filesFrom.empty()) return Tell("--files-from: the packets come from " + options->live->name), kUsage;
    files.push_back(options->live->name);
    return kDone;
  }
  const auto inputs = std::count(files.begin(), files.end(), "-") + (options->filesFrom == "-" ? 1 : 0);
  if (inputs > 1) return Tell("standard input can be read once, and is named twice"), kUsage;
  if (!options->filesFrom.empty() && !ReadList(options->filesFrom, &files)) return kFileFault;
  if (files.empty()) return Tell(options->filesFrom + ": names no capture"), kFileFault;
  return kDone;
}

}  // namespace qxview
