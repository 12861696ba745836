#include <algorithm>
#include <cstdio>
#include <memory>

#include "app/commands.h"
#include "app/json_writer.h"
#include "app/output.h"
#include "app/protocol_fields.h"
#include "core/dispatch.h"
#include "decoders/app/packet_summaries.h"
#include "platform/platform.h"

namespace qxview {

int32_t DeclineData(const Place& at, Cursor c);

namespace {

enum class Format { kText, kJson };

struct ProtocolsOptions {
  HostOptions host;
  Format format = Format::kText;
  bool fields = false;
  std::vector<std::string> names;   // none: every protocol
};

// What is there for a protocol beside its name.
struct Shown {
  bool tree, line;
};

Shown ShownOf(int32_t identifier) {
  const uint32_t index = static_cast<uint32_t>(identifier) & 0xFFFF;
  const DecoderRow* row = FindBuiltinDecoder(index);
  return {row && row->decode != DeclineData, row && (row->protocol->summary || row->decode != DeclineData)};
}

void PutText(Output& out, const DefinedProtocol& protocol, size_t width) {
  const Shown shown = ShownOf(protocol.identifier);
  char identifier[16];
  std::snprintf(identifier, sizeof identifier, "0x%05X  ", static_cast<uint32_t>(protocol.identifier));
  std::string name = protocol.name;
  name.resize(width, ' ');
  out.Put(identifier);
  out.Put(name);
  out.Put(shown.tree ? shown.line ? "  tree, line" : "  tree      " : shown.line ? "  line      " : "  name      ");
  for (size_t i = 0; i < protocol.definitions.size(); ++i) {
    out.Put(i ? " " : "  ");
    out.Put(protocol.definitions[i]);
  }
  out.Put('\n');
}

void PutJson(Output& out, const DefinedProtocol& protocol) {
  const Shown shown = ShownOf(protocol.identifier);
  out.Put("{\"identifier\":");
  out.Put(std::to_string(protocol.identifier));
  out.Put(",\"name\":");
  PutJsonText(out, protocol.name);
  out.Put(shown.tree ? ",\"tree\":true" : ",\"tree\":false");
  out.Put(shown.line ? ",\"line\":true" : ",\"line\":false");
  out.Put(",\"definitions\":[");
  for (size_t i = 0; i < protocol.definitions.size(); ++i) {
    if (i) out.Put(',');
    PutJsonText(out, protocol.definitions[i]);
  }
  out.Put("]}\n");
}

// The short names of the protocols that are named; false, and what is wrong is told, for a name that none has.
bool TakeNames(const std::vector<std::string>& names, std::vector<std::string>* protocols) {
  for (const std::string& name : names) {
    const std::string protocol = ProtocolOfName(name);
    if (protocol.empty()) return Tell("protocols: \"" + name + "\" is no protocol"), false;
    protocols->push_back(protocol);
  }
  return true;
}

int ListProtocols(const ProtocolsOptions& options) {
  std::vector<std::string> wanted;
  if (!TakeNames(options.names, &wanted)) return kUsage;
  if (options.fields) {
    Output out;
    PutFields(out, wanted, options.format == Format::kJson);
    out.Flush();
    return out.Failed() ? OutputFault() : kDone;
  }
  std::string message;
  bool fileFault = false;
  const auto host = StandaloneHost::Create(options.host, &message, &fileFault);
  if (!host) return Tell(message), fileFault ? kFileFault : kUsage;
  std::vector<DefinedProtocol> protocols = host->Definitions().List();
  std::erase_if(protocols, [&](const DefinedProtocol& protocol) {
    return !wanted.empty() && std::find(wanted.begin(), wanted.end(), ProtocolOfName(protocol.name)) == wanted.end();
  });
  size_t width = 0;
  for (const DefinedProtocol& protocol : protocols) width = std::max(width, protocol.name.size());
  Output out;
  for (const DefinedProtocol& protocol : protocols) {
    if (options.format == Format::kJson) {
      PutJson(out, protocol);
    } else {
      PutText(out, protocol, width);
    }
  }
  out.Flush();
  return out.Failed() ? OutputFault() : kDone;
}

}  // namespace

void AddProtocolsCommand(CommandLine* line) {
  Command& command = line->Add("protocols", "the protocols, what is shown of each, and their ports");
  auto options = std::make_shared<ProtocolsOptions>();
  static const std::string kAll = "every protocol";
  command.AddArguments("NAME", "of these protocols alone, by their names or short names", &options->names, &kAll);
  command.AddFlag("--fields", "the keys of their lines, with the lines' labels and the kinds of their values",
                  &options->fields);
  command.AddTexts("-d,--decode-as", "SPEC", "a protocol definition, may be repeated", &options->host.definitions);
  command.AddFileName("--settings", "FILE", "settings file instead of the user's own", &options->host.settingsFile);
  command.AddChoice<Format>("--format", "FORMAT", "text or json (an object a line)",
                            {{"text", Format::kText}, {"json", Format::kJson}}, &options->format);
  command.SetExamples(
      "Behind each name: \"tree\" when decode takes the protocol apart, \"line\" when\n"
      "list has a summary of its own for it, \"name\" when neither does; then the ports\n"
      "and addresses that carry it.\n\n"
      "Examples:\n"
      "  qxview protocols\n"
      "  qxview protocols --fields dns tcp\n"
      "  qxview protocols --format json | jq -r 'select(.tree).name'");
  command.SetAction([options] {
    FindSettings(&options->host);
    return ListProtocols(*options);
  });
}

}  // namespace qxview
