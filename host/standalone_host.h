// The stand-alone host: what the module asks of its host when no analyzer lends it packets and settings.
#pragma once
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/alias_table.h"
#include "host/mib_database.h"
#include "host/protocol_definitions.h"
#include "host/segment_history.h"
#include "host/settings_store.h"
#include "qxview/qxview_host.h"

namespace qxview {

class Session;

struct HostOptions {
  std::string settingsFile;               // instead of the user's own settings; one that is missing is an error
  std::optional<std::string> settingsText;   // what a settings file holds, instead of any
  UserSettings userSettings;              // the user's own
  std::vector<std::string> settings;      // NAME=VALUE, over the file's
  std::vector<std::string> definitions;   // as --decode-as takes them, over the file's
  std::string applicationDirectory;
  MibModuleReader readMibModules = nullptr;   // null where no packets are decoded
};

class StandaloneHost {
 public:
  // Null with a message that names what is wrong and where; *fileFault tells a file's fault from the command line's.
  static std::unique_ptr<StandaloneHost> Create(const HostOptions& options, std::string* message, bool* fileFault);

  const QxHost* Record() const { return &record_; }

  // The session whose packets this host serves.
  void Attach(Session* session) { session_ = session; }
  // Behind the decoding of each packet: keeps what later ones may ask for.
  void FinishPacket();

  const SettingsStore& Settings() const { return settings_; }
  const AliasTable& Aliases() const { return aliases_; }
  const MibDatabase& Mib() const { return mib_; }
  ProtocolDefinitions& Definitions() { return definitions_; }
  SegmentHistory& History() { return history_; }

 private:
  StandaloneHost() = default;
  void FillRecord();
  bool ReadSettings(const HostOptions& options, std::string* message);
  bool LoadMibModules(MibModuleReader read, std::string* message);
  bool AddDefinitions(const std::vector<std::string>& overrides, std::string* message, bool* fileFault);

  QxHost record_{};
  Session* session_ = nullptr;
  SettingsStore settings_;
  AliasTable aliases_;
  MibDatabase mib_;
  ProtocolDefinitions definitions_;
  SegmentHistory history_;
  std::string applicationDirectory_;
};

}  // namespace qxview
