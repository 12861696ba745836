// The capture at a glance: one page that needs nothing beside itself.
#include <algorithm>
#include <cstdio>

#include "app/commands.h"
#include "app/output.h"
#include "app/packet_run.h"
#include "app/report_page.h"
#include "app/report_sections.h"
#include "core/digest.h"
#include "files/byte_source.h"
#include "platform/interruption.h"
#include "platform/new_file.h"
#include "platform/platform.h"

namespace qxview {
namespace {

struct ReportOptions {
  ReadingOptions reading;
  std::string out;
};

// A word as a shell takes it; one with controls as $'...'.
std::string ShellWord(const std::string& word) {
  constexpr const char* kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./:=,+@%";
  if (!word.empty() && word.find_first_not_of(kPlain) == word.npos) return word;
  bool hasControls = false;
  for (const char c : word) hasControls |= static_cast<uint8_t>(c) < 0x20 || static_cast<uint8_t>(c) >= 0x7F;
  std::string quoted = hasControls ? "$'" : "'";
  for (const char c : word) {
    char code[8];
    if (static_cast<uint8_t>(c) < 0x20 || static_cast<uint8_t>(c) >= 0x7F) {
      std::snprintf(code, sizeof code, "\\x%02X", static_cast<uint8_t>(c));
      quoted += code;
    } else if (c == '\'') {
      quoted += hasControls ? "\\'" : "'\\''";
    } else {
      if (c == '\\' && hasControls) quoted += c;
      quoted += c;
    }
  }
  return quoted + "'";
}

// Lists the packets that a report counted; what is asked of them in addition stands behind it.
std::string ListCommand(const ReadingOptions& options, const std::vector<std::string>& files) {
  std::string command = "qxview list";
  const auto add = [&](const char* option, const std::string& value) {
    command += std::string(" ") + option + (*option ? " " : "") + ShellWord(value);
  };
  for (const std::string& setting : options.host.settings) {
    if (setting == "Modern=1") command += " --modern";
    else if (setting == "Reassembly=1") command += " --reassemble";
    else add("--set", setting);
  }
  if (!options.host.settingsFile.empty()) add("--settings", options.host.settingsFile);
  for (const std::string& definition : options.host.definitions) add("-d", definition);
  if (!options.selection.Text().empty()) add("--packets", options.selection.Text());
  if (!options.filter.empty()) add("-f", options.filter);
  if (files.size() > 1) command += " --merge";
  if (options.live) return command + " -";   // what came by is read again from where it was saved
  for (const std::string& file : files) {
    const bool isOption = file.starts_with("-") && file != "-";
    command.append(isOption ? " ./" : " ").append(ShellWord(file));
  }
  return command;
}

// What cannot be read a second time has no digest; why is told.
ReportedCapture::File Describe(const std::string& name, int* status) {
  ReportedCapture::File file{name == "-" ? "standard input" : name, 0, ""};
  if (name == "-" || !IsDiskFile(name)) return file;   // what is no plain file is read once
  std::string reason;
  const std::unique_ptr<ByteSource> source = OpenFileSource(name.c_str(), &reason);
  if (!source) return Tell(name + ": " + reason), *status = kFileFault, file;
  file.size = source->FileSize();
  Sha256 hash;
  while (const uint8_t* bytes = source->Peek(1)) {
    const size_t length = source->Remaining();
    hash.Add({bytes, static_cast<int32_t>(length)});
    source->Skip(length);
  }
  uint8_t digest[kSha256Size];
  hash.Finish(digest);
  if (IsInputEnded()) return file;
  if (!source->Failure().empty()) return Tell(name + ": " + source->Failure()), *status = kFileFault, file;
  for (const uint8_t byte : digest) {
    char pair[3];
    std::snprintf(pair, sizeof pair, "%02x", byte);
    file.digest += pair;
  }
  return file;
}

void Count(PacketRun& run, ReportCounts* counts) {
  run.ForEachAsked(counts->Query(), [&](const FrameRecord* record, const CaptureFrame& frame) {
    const auto moved = static_cast<uint32_t>(MovedHeaderLength(record));
    const PacketTimes& times = run.Times();
    counts->Take({run.GetSession().Context().packet, record, frame.number, times.now, times.first, WireLength(record) + moved,
                  run.Host().Record()},
                 record->capturedLength + moved, frame.linkType);
    return true;
  });
  counts->Finish();
}

// What one run is told of on the page.
std::string ArticleOf(PacketRun& run, const ReadingOptions& options, const std::vector<std::string>& files, size_t number,
                      int* status) {
  ReportCounts counts;
  Count(run, &counts);
  ReportedCapture capture;
  for (const std::string& file : files) capture.files.push_back(Describe(file, status));
  capture.command = ListCommand(options, files);
  capture.where = options.where;
  if (counts.all.packets == options.count) {   // of those that are asked for later the first ones may be others
    const std::string upTo = "frame.number <= " + std::to_string(counts.lastNumber);
    capture.where = capture.where.empty() ? upTo : "(" + capture.where + ") and " + upTo;
  }
  capture.isDamaged = run.Status() == kFileFault;
  return ReportArticle(counts, capture, number);
}

int Report(const ReportOptions& options) {
  const ReadingOptions& reading = options.reading;
  const bool toStandardOutput = options.out == "-";
  for (const std::string& file : reading.files) {
    if (!toStandardOutput && IsSameFile(file, options.out)) return Tell(options.out + ": is a capture that is read"), kUsage;
  }
  std::string title = reading.files[0];
  if (reading.files.size() > 1) title += " and " + std::to_string(reading.files.size() - 1) + " more";
  NewFile target;
  std::unique_ptr<Output> out;
  std::string message;
  size_t runs = 0;
  int status = kDone;
  const int read = ForEachRun(reading, [&](PacketRun& run) {
    if (!out) {
      if (!toStandardOutput && !target.Create(options.out, &message)) return Tell(message), false;
      out = toStandardOutput ? std::make_unique<Output>() : std::make_unique<Output>(target.Sink());
      out->Put(PageHead(title + " - capture report", reading.merge ? std::vector<std::string>() : reading.files));
    }
    const std::vector<std::string> files = reading.merge ? reading.files : std::vector<std::string>{run.Name()};
    out->Put(ArticleOf(run, reading, files, ++runs, &status));
    return !out->Failed();
  });
  status = std::max(status, read);
  if (!out) return message.empty() ? status : kFileFault;
  out->Put(PageFoot());
  out->Flush();
  if (toStandardOutput) return out->Failed() ? OutputFault() : status;
  return KeepFile(&target, options.out, !out->Failed(), reading, status);
}

}  // namespace

void AddReportCommand(CommandLine* line) {
  auto options = std::make_shared<ReportOptions>();
  Command& command = line->Add("report", "a capture at a glance, as a page for the browser");
  AddReadingOptions(&command, &options->reading);
  command.AddFileName("-o,--output", "OUT", "the page, \"-\" for standard output; it needs no network", &options->out);
  command.SetExamples(
      "Examples:\n"
      "  qxview report capture.pcapng -o report.html\n"
      "  qxview report --merge eth0.pcap eth1.pcap -o both.html\n"
      "  qxview report -Y 'ip.addr == 192.0.2.0/24' capture.pcap -o - | gzip >report.html.gz\n"
      "Packets are decoded as with --modern. Every number on the page shows the command that lists its packets.");
  command.SetAction([options] {
    if (options->out.empty()) return Tell("report: -o is missing: -o OUT.html, the page that is written, or -o -"), static_cast<int>(kUsage);
    options->reading.modern = true;
    const int status = FinishReadingOptions(&options->reading);
    return status == kDone ? Report(*options) : status;
  });
}

}  // namespace qxview
