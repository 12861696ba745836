#include "host/completed_host.h"

#include <algorithm>
#include <cstring>

namespace qxview {

// Calls a function of one of both records with that record's user.
template <class Result, class... Arguments, Result (*QxHost::*kFunction)(void*, Arguments...),
          QxHost CompletedHost::*kFrom>
struct CompletedHost::Pass<kFunction, kFrom> {
  static Result Call(void* self, Arguments... arguments) {
    const QxHost& host = static_cast<CompletedHost*>(self)->*kFrom;
    return (host.*kFunction)(host.user, arguments...);
  }
};

template <auto kFunction>
void CompletedHost::Choose(bool fromOwn) {
  if (fromOwn) {
    if (own_.*kFunction) record_.*kFunction = Pass<kFunction, &CompletedHost::own_>::Call;
  } else if (lent_.*kFunction) {
    record_.*kFunction = Pass<kFunction, &CompletedHost::lent_>::Call;
  }
}

CompletedHost::CompletedHost(const QxHost* lent, const StandaloneHost& own, bool ownSettings) : own_(*own.Record()) {
  // A record of an older program ends early, one of a newer program goes on behind what is known here.
  std::memcpy(&lent_, lent, std::min<size_t>(lent->size, sizeof lent_));
  record_.size = sizeof record_;
  record_.user = this;
  Choose<&QxHost::readSetting>(ownSettings || !lent_.readSetting);
  Choose<&QxHost::applicationDirectory>(!lent_.applicationDirectory);
  Choose<&QxHost::addressAlias>(!lent_.addressAlias);
  Choose<&QxHost::earlierSegment>(!lent_.earlierSegment);
  Choose<&QxHost::findMibEntry>(!lent_.findMibEntry);
  // Tables are one host's or the other's: their functions go together.
  const bool ownTables = !lent_.definitionTable;
  Choose<&QxHost::definitionTable>(ownTables);
  Choose<&QxHost::hashFind>(ownTables);
  Choose<&QxHost::hashFindGenericIPPort>(ownTables);
  Choose<&QxHost::lockTable>(ownTables);
  Choose<&QxHost::unlockTable>(ownTables);
  Choose<&QxHost::learn>(ownTables);
  Choose<&QxHost::protocolDisplayName>(ownTables && !lent_.protocolDisplayName);
  // The stand-alone host has no capture buffer and no windows around the view's.
  Choose<&QxHost::captureBufferState>(false);
  Choose<&QxHost::lendPacket>(false);
  Choose<&QxHost::viewRequest>(false);
}

}  // namespace qxview
