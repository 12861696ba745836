// The record that an embedding program lent, completed: what it does not fill in is the stand-alone host's, so that an
// empty record decodes like no record at all.
#pragma once
#include "host/standalone_host.h"

namespace qxview {

class CompletedHost {
 public:
  // `own` must outlive this and serves what the lent record does not; with `ownSettings` the settings, too.
  CompletedHost(const QxHost* lent, const StandaloneHost& own, bool ownSettings);
  CompletedHost(const CompletedHost&) = delete;
  CompletedHost& operator=(const CompletedHost&) = delete;

  const QxHost* Record() const { return &record_; }
  // Whether the stand-alone host is the one that is asked for earlier segments.
  bool KeepsSegments() const { return lent_.earlierSegment == nullptr; }

 private:
  template <auto kFunction, QxHost CompletedHost::*kFrom>
  struct Pass;
  template <auto kFunction>
  void Choose(bool fromOwn);

  QxHost record_{};
  QxHost lent_{};   // as far as the program's record goes
  QxHost own_{};
};

}  // namespace qxview
