// The user's protocol definitions: which port or address carries which application protocol. Four tables (TCP and UDP
// ports, TCP and UDP addresses) start with the ports that IANA assigns to the built-in decoders, are extended and
// overridden by definitions such as "tcp:8080=HTTP", and the address tables also answer for what detection learnt.
//
// An identifier with bit 16 set names the built-in decoder whose index its low 16 bits are. Definitions hold
// 0x10000 | index; learnt identifiers carry further bits, which say how they came to be.
#pragma once
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/conversation_table.h"
#include "host/hash_tables.h"
#include "host/table_lock.h"
#include "qxview/qxview_host.h"

namespace qxview {

constexpr int32_t kBuiltinProtocol = 0x10000;

// A built-in decoder as the `protocols` command lists it.
struct DefinedProtocol {
  int32_t identifier;
  std::string name;
  std::vector<std::string> definitions;   // "tcp:80", "udp:10.0.0.1:5000", "tcp:[2001:db8::1]:0": ports, then addresses
};

class ProtocolDefinitions {
 public:
  // With the built-in definitions. Throws std::bad_alloc.
  ProtocolDefinitions();

  // Adds a definition, over one that stands for the same port or address:
  //   TRANSPORT:PORT=NAME             tcp:8080=HTTP
  //   TRANSPORT:ADDRESS:PORT=NAME     udp:10.0.0.1:5000=SNMP, tcp:[2001:db8::1]:80=HTTP; port 0: any of the address
  // Case does not count, nor do blanks around the parts. Result: none, or the message that names what is wrong.
  // Throws std::bad_alloc.
  std::optional<std::string> AddDefinition(std::string_view definition);

  // Every built-in decoder by its identifier. Throws std::bad_alloc.
  std::vector<DefinedProtocol> List();

  // What the host's record asks for. Tables are opaque to the module; `which` is a QxDefinitionTable. None throws.
  void* Table(int32_t which) noexcept;
  static int32_t FindPort(void* table, uint16_t port, int32_t* identifier) noexcept;
  static int32_t FindAddress(void* table, const AddressSlot* address, uint16_t port, int32_t* identifier) noexcept {
    const bool isDefined = table && address && static_cast<DefinitionTable*>(table)->endPorts[port];
    return isDefined ? FindDefined(table, address, port, identifier) : 0;
  }
  static void Lock(void* table) noexcept;
  static void Unlock(void* table) noexcept;
  // transport: QxTransport. Takes the table's lock itself.
  void Learn(uint32_t transport, int32_t identifier, const AddressSlot* address, uint16_t port,
             const DynamicRecord* extra) noexcept;
  // The name of a built-in decoder, whichever further bits the identifier has; 0 and an empty text for others.
  static int32_t DisplayName(int32_t identifier, char* out, int32_t outSize) noexcept;

  // Forgets what was learnt; definitions stay.
  void ForgetLearnt() noexcept;
  size_t CountLearnt(uint32_t transport) noexcept;

 private:
  struct DefinitionTable {
    std::shared_ptr<HashTable> hash;   // null while nothing is defined
    bool isOwn = false;                // others have the built-in definitions, which all hosts share
    ConversationTable learnt;       // of the address tables
    std::bitset<65536> endPorts;    // of these, that an end was defined or learnt at once: most packets' ports are none
    TableLock lock;
  };
  static HashTable* OwnTable(DefinitionTable& table);   // to be changed, or walked; throws std::bad_alloc
  static int32_t FindDefined(void* table, const AddressSlot* address, uint16_t port, int32_t* identifier) noexcept;
  DefinitionTable tables_[4];   // by QxDefinitionTable
};

// Fills the definitions' functions of a host record; `kDefinitionsOf` finds the definitions from the record's `user`.
template <ProtocolDefinitions& (*kDefinitionsOf)(void* user)>
void LendDefinitions(QxHost* host) {
  host->protocolDisplayName = [](void*, int32_t identifier, char* out, int32_t outSize) {
    return ProtocolDefinitions::DisplayName(identifier, out, outSize);
  };
  host->definitionTable = [](void* user, int32_t which) { return kDefinitionsOf(user).Table(which); };
  host->hashFind = [](void*, void* table, uint16_t port, int32_t* identifier) {
    return ProtocolDefinitions::FindPort(table, port, identifier);
  };
  host->hashFindGenericIPPort = [](void*, void* table, const AddressSlot* address, uint16_t port,
                                   int32_t* identifier) {
    return ProtocolDefinitions::FindAddress(table, address, port, identifier);
  };
  host->lockTable = [](void*, void* table) { ProtocolDefinitions::Lock(table); };
  host->unlockTable = [](void*, void* table) { ProtocolDefinitions::Unlock(table); };
  host->learn = [](void* user, uint32_t transport, int32_t identifier, const AddressSlot* address, uint16_t port,
                   int32_t, int32_t, const DynamicRecord* extra) {
    kDefinitionsOf(user).Learn(transport, identifier, address, port, extra);
  };
}

}  // namespace qxview
