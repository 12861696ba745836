// Resource Reservation Protocol: what its files share.
#pragma once
#include "core/elements.h"

namespace qxview {

struct Rsvp {
  Field type, length, code, size, first;
};

// What the objects hold, by class (high octet) and C-Type; null for none.
const Choice<Rsvp>* FindRsvpObject(uint32_t kind);
const Choice<Rsvp>* FindRareRsvpObject(uint32_t kind);

// Objects, one behind the other.
void ShowRsvpObjects(const Place& in, Cursor& c);
void ShowRsvpErrorSpec(const Place& in, Cursor& c, Rsvp& rsvp);   // behind the node's address

// Framing of elements in objects: two octets of type and length each, both counted.
inline constexpr ElementForm kRsvpForm{
    .typeSize = 2, .lengthSize = 2, .padTo = 4, .lengthCountsHeader = true, .valueLines = true};

const char* RsvpErrorName(uint32_t code);
const char* RsvpErrorValueName(uint32_t code, uint32_t value);   // null for none

void ShowRsvpExplicitRoute(const Place& in, Cursor& c, Rsvp& rsvp);
void ShowRsvpRecordedRoute(const Place& in, Cursor& c, Rsvp& rsvp);
void ShowRsvpPolicies(const Place& in, Cursor& c, Rsvp& rsvp);
void ShowRsvpExcludedRoute(const Place& in, Cursor& c, Rsvp& rsvp);
void ShowRsvpPathAttributes(const Place& in, Cursor& c, Rsvp& rsvp);
void ShowRsvpFlow(const Place& in, Cursor& c, Rsvp& rsvp);   // integrated services: what flows ask for

}  // namespace qxview
