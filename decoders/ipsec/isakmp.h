// The Internet Security Association and Key Management Protocol: what its versions share. A message is a header and a
// chain of payloads; each says which one follows it.
//
//   header    initiator's SPI (8)   responder's SPI (8)   next payload (1)   version (1)   exchange (1)   flags (1)
//             message identifier (4)   length of all (4)
//   payload   next payload (1)   critical or reserved (1)   length of all (2)   what it holds
#pragma once
#include "core/elements.h"

namespace qxview {

struct Ike {
  Field next, version, exchange, flags, messageId, length;   // of the header
  Field doi, situation, type, protocol, spiSize, count, part;
  bool isSecond;      // IKEv2
  bool isQuick;       // what IKEv1 proposes are transforms of IPsec and not of its own
};

// The payloads of each version, by their types.
ChoiceSpan<Ike> IkePayloads1();
ChoiceSpan<Ike> IkePayloads2();

// Attributes of transforms and configurations: a type whose first bit says whether the value, of two octets, stands in
// the place of the length.
void ShowIkeAttributes(const Place& in, Cursor& c, ChoiceSpan<Ike> attributes, Ike& ike);
ChoiceSpan<Ike> IkeConfigurationAttributes();

// A security association's proposals and their transforms: rows in front of both, and what else a transform holds.
struct IkeProposalForm {
  RowSpan<Ike> head, proposal;
  void (*showTransform)(const Place& in, Cursor& c, Ike& ike);
};
void ShowIkeProposals(const Place& in, Cursor& c, const IkeProposalForm& form, Ike& ike);

// What all versions have alike.
void ShowIkeCertificate(const Place& in, Cursor& c, Ike& ike);
void ShowIkeCertificateRequest(const Place& in, Cursor& c, Ike& ike);
void ShowIkeName(const Place& in, Cursor& c, Ike& ike);   // of an identity that is a distinguished or a general one
void ShowIkeVendor(const Place& in, Cursor& c, Ike& ike);
void ShowIkeSpis(const Place& in, Cursor& c, Ike& ike);   // as many as were counted, of the size that was told

// A number of as many octets as there are, up to eight; bytes where there are more.
void ShowIkeNumber(const Place& in, Cursor& c, const char* label, Ike& ike);

// Keys, signatures and other runs that mean nothing to readers: one line, which names the size of a longer one.
void ShowIkeOpaque(const Place& in, Cursor& c, const char* label, Ike& ike);

}  // namespace qxview
