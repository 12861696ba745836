// Resource Reservation Protocol: what its files share.
#pragma once
#include "core/elements.h"

namespace qxview {

struct Rsvp {
  Field type, length, code, size, first;
};

// What the objects hold, by class (high octet) and C-Type.
ChoiceSpan<Rsvp> RsvpObjects();

void ShowRsvpExplicitRoute(const Place& in, Cursor& c, Rsvp& rsvp);
void ShowRsvpRecordedRoute(const Place& in, Cursor& c, Rsvp& rsvp);
void ShowRsvpPolicies(const Place& in, Cursor& c, Rsvp& rsvp);
void ShowRsvpExcludedRoute(const Place& in, Cursor& c, Rsvp& rsvp);
void ShowRsvpFlow(const Place& in, Cursor& c, Rsvp& rsvp);   // integrated services: what flows ask for

}  // namespace qxview
