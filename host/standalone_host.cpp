#include "host/standalone_host.h"

#include <cstring>
#include <sstream>

#include "host/session.h"

namespace qxview {
namespace {

StandaloneHost* HostOf(void* user) { return static_cast<StandaloneHost*>(user); }

ProtocolDefinitions& DefinitionsOf(void* user) { return HostOf(user)->Definitions(); }

int32_t GiveText(const std::string& text, char* out, int32_t outSize) {
  if (!out || outSize < 1) return 0;
  const size_t length = std::min(text.size(), static_cast<size_t>(outSize - 1));
  std::memcpy(out, text.data(), length);
  out[length] = 0;
  return 1;
}

int32_t ReadSetting(void* user, const char* name, char* out, int32_t outSize) {
  const std::string* value = HostOf(user)->Settings().Find(name);
  return value ? GiveText(*value, out, outSize) : 0;
}

int32_t AddressAlias(void* user, uint32_t kind, const uint8_t* address, char* out, int32_t outSize) {
  if (kind > 2 || !address) return 0;
  const std::string* name = HostOf(user)->Aliases().Find(static_cast<AliasKind>(kind), address);
  return name ? GiveText(*name, out, outSize) : 0;
}

int32_t FindMibEntry(void* user, const char* dotted, QxMibEntry* out) {
  return dotted && out ? HostOf(user)->Mib().Find(dotted, out) : 0;
}

int32_t EarlierSegment(void* user, const AddressSlot* source, uint16_t sourcePort, const AddressSlot* destination,
                       uint16_t destinationPort, int32_t back, QxSegment* out) {
  return HostOf(user)->History().Find(*source, sourcePort, *destination, destinationPort, back, out) ? 1 : 0;
}

}  // namespace

void StandaloneHost::FillRecord() {
  record_.size = sizeof record_;
  record_.user = this;
  record_.readSetting = ReadSetting;
  record_.applicationDirectory = [](void* user, char* out, int32_t outSize) {
    return GiveText(HostOf(user)->applicationDirectory_, out, outSize);
  };
  if (!aliases_.Entries().empty()) record_.addressAlias = AddressAlias;
  record_.earlierSegment = EarlierSegment;
  record_.findMibEntry = FindMibEntry;
  LendDefinitions<&DefinitionsOf>(&record_);
}

bool StandaloneHost::LoadMibModules(MibModuleReader read, std::string* message) {
  const std::string* names = settings_.Find("MibModules");
  const std::string* path = settings_.Find("MibPath");
  std::vector<std::string> modules;
  std::stringstream list(names ? *names : "");
  for (std::string name; std::getline(list, name, ',');) {
    const size_t first = name.find_first_not_of(" \t");
    if (first != std::string::npos) modules.push_back(name.substr(first, name.find_last_not_of(" \t") + 1 - first));
  }
  if (modules.empty() || !read) return true;
  std::vector<MibObject> objects;
  if (!read(path ? *path : "", modules, &objects, message)) return false;
  mib_.Add(objects);
  return true;
}

bool StandaloneHost::ReadSettings(const HostOptions& options, std::string* message) {
  if (options.settingsText) {
    std::istringstream text(*options.settingsText);
    return settings_.ReadText(text, "the settings", message);
  }
  if (!options.settingsFile.empty()) return settings_.ReadFile(options.settingsFile, message);
  const UserSettings& own = options.userSettings;
  return own.file.empty() ? settings_.Take(own, message) : settings_.ReadFile(own.file, message);
}

bool StandaloneHost::AddDefinitions(const std::vector<std::string>& overrides, std::string* message,
                                    bool* fileFault) {
  *fileFault = true;
  for (const SettingsLine& line : settings_.ProtocolLines()) {
    if (const auto wrong = definitions_.AddDefinition(line.text)) return *message = line.place + ": " + *wrong, false;
  }
  *fileFault = false;
  for (const std::string& definition : overrides) {
    if (auto wrong = definitions_.AddDefinition(definition)) return *message = *wrong, false;
  }
  return true;
}

void StandaloneHost::FinishPacket() {
  if (!session_) return;
  const PacketState& packet = session_->Context().packet;
  if (packet.segment.here && packet.segment.wanted > 0) {
    history_.Record(packet.source, packet.sourcePort, packet.destination, packet.destinationPort, packet.segment,
                    session_->Context().packetNumber);
  }
}

std::unique_ptr<StandaloneHost> StandaloneHost::Create(const HostOptions& options, std::string* message,
                                                       bool* fileFault) {
  std::unique_ptr<StandaloneHost> host(new StandaloneHost);
  *fileFault = true;
  if (!host->ReadSettings(options, message)) return nullptr;
  *fileFault = false;
  for (const std::string& assignment : options.settings) {
    if (!host->settings_.Set(assignment, message)) return nullptr;
  }
  if (!host->AddDefinitions(options.definitions, message, fileFault)) return nullptr;
  *fileFault = true;
  const std::string* aliasFile = host->settings_.Find("AliasFile");
  if (aliasFile && !aliasFile->empty() && !host->aliases_.ReadFile(*aliasFile, message)) return nullptr;
  if (!host->LoadMibModules(options.readMibModules, message)) return nullptr;
  host->applicationDirectory_ = options.applicationDirectory;
  host->FillRecord();
  return host;
}

}  // namespace qxview
