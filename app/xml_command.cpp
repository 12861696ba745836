#include "app/commands.h"
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

int ExportXml(const XmlOptions& options) {
  const bool toStandardOutput = options.out == "-";
  NewFile target;
  std::unique_ptr<XmlExport> document;
  AliasTable names;
  std::string message;
  const auto begin = [&](const AliasTable& aliases) {
    if (!toStandardOutput && !target.Create(options.out, &message)) return Tell(message), false;
    document = std::make_unique<XmlExport>(toStandardOutput ? FileSink(StandardOutputFile()) : target.Sink(), LocalOffset);
    if (toStandardOutput) {
      SetIdleAction([](void* out) { static_cast<XmlExport*>(out)->Flush(); }, document.get());
    }
    YieldTerminal(toStandardOutput ? StandardOutputFile() : target.File());
    document->Begin();
    names = aliases;
    return true;
  };
  uint64_t before = 0, number = 0;   // the packets of a further capture are numbered on
  const int status = ForEachRun(options.reading, [&](PacketRun& run) {
    if (!document && !begin(run.Host().Aliases())) return false;
    before = number;
    run.ForEachRecord([&](const FrameRecord* record, const CaptureFrame& frame) {
      number = before + frame.number;
      document->AddFrame(number, record);
      return !document->Failed();
    });
    return !document->Failed();
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
