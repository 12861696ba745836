// The values of SIP's header fields, taken apart by what each is made of.
#pragma once
#include "decoders/common/header_lines.h"

namespace qxview {

// What a header's value is made of.
enum class SipForm : uint8_t {
  kText,
  kAddress,       // "Name" <uri>;parameters, a list
  kVia,
  kCredentials,   // a scheme and its parameters
  kParameters,    // parameters alone, parted by commas
  kSequence,      // a number and a method
  kReliable,      // two numbers and a method
  kItems,         // a list of words with parameters
  kValue,         // one word with parameters
  kReason,
  kWarning,
  kTimestamp,
};

struct SipHeader {
  const char* name;
  char compact;             // the short name (RFC 3261 7.3.3); 0 for none
  SipForm form;
  const char* label;        // of its words
};

// Null for a name that is not registered.
const SipHeader* FindSipHeader(const Field& name);
// The name of a header that has parts, and these.
void ShowSipHeader(const Place& in, const SipHeader& header, const HeaderLine& line);
// "sip:user:password@host:port;parameter?header".
void ShowSipUri(const Place& in, const Field& uri);

}  // namespace qxview
