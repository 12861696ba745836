#include <algorithm>

#include "app/commands.h"
#include "app/output.h"
#include "app/packet_run.h"
#include "core/bounded_text.h"
#include "files/xml_export.h"
#include "platform/interruption.h"
#include "platform/new_file.h"
#include "platform/platform.h"

namespace qxview {
namespace {

struct XmlOptions {
  ReadingOptions reading;
  std::string out;
};

// The aliases as the document takes them; the texts of addresses stand in `texts`.
std::vector<XmlAlias> CollectAliases(const AliasTable& table, std::vector<std::string>* texts) {
  std::vector<XmlAlias> aliases;
  texts->reserve(table.Entries().size());   // the records point into it
  for (const Alias& entry : table.Entries()) {
    if (table.Find(entry.kind, entry.address.data()) != &entry.name) continue;   // a later line named it anew
    XmlAlias alias{nullptr, nullptr, nullptr, entry.name.c_str(), entry.comment.empty() ? nullptr : entry.comment.c_str()};
    char text[kIPv6TextSize] = "";
    if (entry.kind == AliasKind::kHardware) {
      alias.hardware = entry.address.data();
    } else if (entry.kind == AliasKind::kIPv4) {
      FormatIPv4(entry.address.data(), text);
    } else {
      FormatIPv6(entry.address.data(), text);
    }
    texts->push_back(text);
    if (entry.kind == AliasKind::kIPv4) alias.ipv4 = texts->back().c_str();
    if (entry.kind == AliasKind::kIPv6) alias.ipv6 = texts->back().c_str();
    aliases.push_back(alias);
  }
  return aliases;
}

// Frames with their numbers, of one thread.
struct XmlPart {
  explicit XmlPart(Output& to) : document(to.File(), LocalOffset) {}
  XmlExport document;
  uint64_t last = 0;
};

int ExportXml(const XmlOptions& options) {
  const bool toStandardOutput = options.out == "-";
  NewFile target;
  std::unique_ptr<Output> out;
  std::unique_ptr<XmlExport> document;
  AliasTable names;
  std::string message;
  const auto begin = [&](const AliasTable& aliases) {
    if (!toStandardOutput && !target.Create(options.out, &message)) return Tell(message), false;
    out = std::make_unique<Output>(toStandardOutput ? FileSink(StandardOutputFile()) : target.Sink());
    document = std::make_unique<XmlExport>(out->File(), LocalOffset);
    if (toStandardOutput) SetIdleAction([](void* written) { static_cast<Output*>(written)->Flush(); }, out.get());
    YieldTerminal(toStandardOutput ? StandardOutputFile() : target.File());
    document->Begin();
    names = aliases;
    return true;
  };
  uint64_t number = 0;   // the packets of a further capture are numbered on
  const int status = ForEachRun(options.reading, [&](PacketRun& captured) {
    if (!document && !begin(captured.Host().Aliases())) return false;
    const uint64_t before = number;
    std::vector<std::unique_ptr<XmlPart>> parts;
    captured.ForEachWritten(*out, [&](PacketRun& run, Output& to) -> PacketRun::Handler {
      run.KeepPackets();
      parts.push_back(std::make_unique<XmlPart>(to));
      XmlPart& part = *parts.back();
      return [&, before](const FrameRecord* record, const CaptureFrame& frame, int32_t) {
        part.last = before + frame.number;
        part.document.AddFrame(part.last, record);
        return !to.Failed();
      };
    });
    for (const auto& part : parts) {
      document->TakeCounts(part->document);
      number = std::max(number, part->last);
    }
    return !out->Failed();
  });
  SetIdleAction(nullptr, nullptr);
  if (!document) return message.empty() ? status : kFileFault;
  std::vector<std::string> texts;
  const std::vector<XmlAlias> aliases = CollectAliases(names, &texts);
  const bool good = document->Finish(aliases.data(), aliases.size(), 0);
  if (toStandardOutput) return good ? status : OutputFault();
  return KeepFile(&target, options.out, good, options.reading, status);
}

}  // namespace

void AddXmlCommand(CommandLine* line) {
  auto options = std::make_shared<XmlOptions>();
  Command& command = line->Add("xml", "packets as an XML document");
  AddReadingOptions(&command, &options->reading);
  command.AddArgument("OUT", "the document, \"-\" for standard output", &options->out);
  command.SetExamples(
      "Examples:\n"
      "  qxview xml capture.pcap packets.xml\n"
      "  qxview xml --packets 10-20 --set AliasFile=names.txt packets.bfr - | less");
  command.SetAction([options] {
    const int status = FinishReadingOptions(&options->reading);
    return status == kDone ? ExportXml(*options) : status;
  });
}

}  // namespace qxview
