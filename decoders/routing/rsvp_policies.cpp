// Policies that reservations carry (RFC 2750): preemption's priorities (RFC 3181) and identities (RFC 3182).
#include "decoders/routing/rsvp.h"

namespace qxview {
namespace {

constexpr auto kPolicyHead = Rows<Rsvp>({Number(2, "Policy Data Offset").Into(&Rsvp::size), Number(2, "Reserved")});
constexpr auto kPreemption = Rows<Rsvp>({
    Hex(1, "Preemption Flags"), Number(1, "Merge Strategy"), Number(1, "Merge Error Code"), Number(1, "Reserved"),
    Number(2, "Preemption Priority"), Number(2, "Defending Priority")});
constexpr auto kIdentity = Rows<Rsvp>({Number(1, "Subtype"), Utf8(0, nullptr)});
constexpr auto kIdentities = Choices<Rsvp>({
    {1, "Policy Locator", kIdentity}, {2, "Credential", kIdentity}, {3, "Digital Signature", kIdentity},
    {4, "Policy Error Object", kIdentity}});
void ShowIdentities(const Place& in, Cursor& c, Rsvp& rsvp) {
  constexpr ElementForm kForm{.lengthSize = 2, .padTo = 4, .lengthCountsHeader = true, .lengthFirst = true};
  ShowElements<Rsvp>(in, c, kForm, "Attribute", kIdentities, rsvp);
}
constexpr auto kPolicies = Choices<Rsvp>({
    {1, "Preemption Priority", kPreemption}, {2, "User Identity", {}, ShowIdentities},
    {3, "Application Identity", {}, ShowIdentities}});

}  // namespace

void ShowRsvpPolicies(const Place& in, Cursor& c, Rsvp& rsvp) {
  constexpr int32_t kBefore = 8;   // what stands in front of options, which the offset counts
  constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2, .lengthCountsHeader = true, .lengthFirst = true};
  ShowRows<Rsvp>(in, c, kPolicyHead, rsvp);
  const int32_t offset = static_cast<int32_t>(rsvp.size.value);
  Cursor options = TakeCursor(c, offset > kBefore ? offset - kBefore : 0);
  AddBlock(in, Rest(options), "Policy Options");
  ShowElements<Rsvp>(in, c, kForm, "Policy Element", kPolicies, rsvp);
}

}  // namespace qxview
