// What users write, by the first byte: 0 settings, 1 a definition, 2 addresses, 3 names of addresses, 4 a key log in pieces of
// the second byte's length, 5 a dotted object identifier, 6 a list of packets, 7 objects of MIB modules.
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "fuzz/stations.h"
#include "fuzz/targets.h"
#include "host/key_log.h"
#include "host/packet_selection.h"

namespace qxview::fuzz {
namespace {

constexpr size_t kLongest = 40000;

void CheckMessage(bool good, const std::string& message) {
  if (good) return;
  Expect(!message.empty(), "what is refused is told why");
  Expect(message.find('\n') == std::string::npos, "a message is one line");
}

// Settings as an embedding program gives them; what decodes behind them needs nothing else.
void ReadSettingsText(std::string_view text) {
  static const uint8_t kFrame[60] = {2, 0, 0, 0, 0, 1, 2, 0, 0, 0, 0, 2, 8, 0, 0x45, 0xFC, 0, 40, 0, 0, 0, 0, 64, 17};
  HostOptions options;
  options.settingsText = std::string(text);
  std::string message;
  bool fileFault;
  const auto host = StandaloneHost::Create(options, &message, &fileFault);
  CheckMessage(host != nullptr, message);
  if (!host) return;
  const auto session = Session::Create(host->Record(), {});
  host->Attach(session.get());
  const ExactRecord record({kFrame, sizeof kFrame});
  session->Decode(record.get());
  host->FinishPacket();
  host->Attach(nullptr);
}

void AddDefinition(std::string_view text) {
  static ProtocolDefinitions definitions;
  if (const auto wrong = definitions.AddDefinition(text)) {
    CheckMessage(false, *wrong);
    return;
  }
  Expect(!definitions.AddDefinition(text), "a definition that is good stays so");
}

void ReadAddress(std::string_view text) {
  AliasKind kind;
  std::array<uint8_t, 16> address;
  ParseAddress(std::string(text), &kind, &address);
}

void ReadAliases(std::string_view text) {
  const int file = memfd_create("aliases", 0);
  Expect(file >= 0 && write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size()), "a file in memory");
  const std::string path = "/proc/self/fd/" + std::to_string(file);
  AliasTable aliases;
  std::string message;
  CheckMessage(aliases.ReadFile(path, &message), message);
  for (const Alias& alias : aliases.Entries()) {
    Expect(aliases.Find(alias.kind, alias.address.data()) != nullptr, "an alias that was read is found");
  }
  close(file);
}

void ReadSecrets(std::string_view text) {
  static Station& station = *new Station(0, kDisplayMode);
  const size_t step = text.empty() ? 1 : static_cast<uint8_t>(text[0]) + 1u;
  KeyLog log(station.session->GetView());
  for (size_t at = 0; at < text.size(); at += step) log.Take(text.substr(at, step));
  const std::string wrong = log.Finish();
  Expect(wrong.find('\n') == std::string::npos, "a message is one line");
}

void FindObject(std::string_view text) {
  static const MibDatabase mib;
  QxMibEntry entry{};
  entry.size = sizeof entry;
  mib.Find(std::string(text).c_str(), &entry);
}

void SelectPackets(std::string_view text) {
  PacketSelection selection;
  std::string wrong;
  const bool good = selection.Parse(std::string(text), &wrong);
  CheckMessage(good, wrong);
  if (good) selection.Holds(7);
}

// Each object: arcs (1), an arc each (1), then its name, type and access, each ended by a zero byte.
void AddObjects(Input& input) {
  std::vector<MibObject> objects;
  while (input.Left() && objects.size() < 200) {
    MibObject object;
    for (uint32_t arcs = input.U8(); arcs > 0; --arcs) object.number.push_back(input.U8());
    object.name = input.Text();
    object.type = input.Text();
    object.access = input.Text();
    objects.push_back(std::move(object));
  }
  MibDatabase mib;
  mib.Add(objects);
  for (const MibObject& object : objects) {
    std::string dotted;
    for (const uint32_t arc : object.number) (dotted += dotted.empty() ? "" : ".") += std::to_string(arc);
    QxMibEntry entry{};
    entry.size = sizeof entry;
    mib.Find(dotted.c_str(), &entry);
    mib.Find((dotted + ".0").c_str(), &entry);
  }
}

}  // namespace

void RunSettings(const uint8_t* data, size_t size) {
  if (size < 1 || size > kLongest) return;
  Input input(data, size);
  const uint32_t kind = input.U8() % 8;
  if (kind == 7) return AddObjects(input);
  const Piece rest = input.Rest();
  // A copy: what is read behind it is the sanitizer's.
  const ExactBytes exact(rest);
  const std::string_view text(reinterpret_cast<const char*>(exact.data()), exact.size());
  constexpr void (*kReaders[])(std::string_view) = {ReadSettingsText, AddDefinition, ReadAddress,  ReadAliases,
                                                    ReadSecrets,      FindObject,    SelectPackets};
  kReaders[kind](text);
}

}  // namespace qxview::fuzz
