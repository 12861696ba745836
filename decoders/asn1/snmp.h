// Simple Network Management Protocol: version 1 (RFC 1157), 2c (RFC 1901, RFC 3416) and 3 (RFC 3412, RFC 3414).
//
//   1, 2c   SEQUENCE { version, community, PDU }
//   3       SEQUENCE { version, SEQUENCE { id, max size, flags, model },
//                      OCTET STRING { SEQUENCE { engine ID, boots, time, user, authentication, privacy } },
//                      SEQUENCE { context engine ID, context name, PDU }, or an OCTET STRING of it, encrypted }
//   PDU     [0..8] { request ID, error status, error index, SEQUENCE { bindings } }; a trap has fields of its own
//   binding SEQUENCE { OBJECT IDENTIFIER, value }
//
// The lengths of sequences are shown and bound nothing: an agent that gets them wrong is still read to the end.
#pragma once
#include "decoders/asn1/ber_rows.h"

namespace qxview {

// A message while it is decoded: the next element is at the cursor, which ends where the payload does.
struct SnmpWalk {
  Place in;
  LineHandle root;   // of the message; of a binding its own line
  Cursor c;
};

// Decodes a payload. Result: 1; 0 for bytes that are not SNMP and for messages that go wrong in their structure, with
// the lines so far; 2 for messages that are cut.
int32_t DecodeSnmpPayload(const Place& at, Cursor c);

// The version octet, or -1 when the payload does not start as a message does: 0x30, a length, a version of one octet.
int32_t PeekSnmpVersion(Cursor c);

int32_t DecodeSnmpMessage(const Place& at, Cursor c);     // versions 1 and 2c
int32_t DecodeSnmpV3Message(const Place& at, Cursor c);
int32_t DecodeSnmpUsm(SnmpWalk& walk);                    // the security parameters
int32_t DecodeSnmpPdu(SnmpWalk& walk);
int32_t DecodeSnmpVarBind(SnmpWalk& walk, uint32_t number);

// The message's root line over the whole payload and the walk under it.
SnmpWalk BeginSnmp(const Place& at, const Cursor& c);

// The steps of a walk. Each gives the element's status, 2 at the end of the bytes, and moves the cursor on.
int32_t StepLength(SnmpWalk& walk, const char* title);

// A titled line over the element with its lines under it; the element's text and number are the step's.
struct SnmpStep {
  LineHandle line;
  AsnResult value;
  char longText[128];          // of TimeTicks
  char text[kAsnTextSize];
};
using SnmpNumber = int32_t (*)(const Place&, Cursor&, AsnResult&);
int32_t StepNumber(SnmpWalk& walk, const char* title, SnmpNumber decode, SnmpStep& step);
int32_t StepString(SnmpWalk& walk, const char* title, const char* label, SnmpStep& step);
int32_t StepTicks(SnmpWalk& walk, const char* title, SnmpStep& step);

// The rows of a table one after the other, to the first that is not as it should be; their titles are lines as they
// stand. The label of a number's type is what the root line puts in front of it, that of a string what its line
// becomes. A group is its identifier's line, with the type's label, its length's, with the row's title, and its rows.
int32_t StepRows(SnmpWalk& walk, std::span<const BerRow> rows);

}  // namespace qxview
