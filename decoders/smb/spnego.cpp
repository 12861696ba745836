#include "decoders/smb/spnego.h"

#include <cstring>

#include "decoders/asn1/kerberos.h"
#include "decoders/smb/ntlmssp.h"
#include "decoders/smb/smb_block.h"

namespace qxview {
namespace {

constexpr uint32_t kObjectId = 0x06, kGssToken = 0x60, kInitToken = 0xA0, kRespToken = 0xA1, kSequence = 0x30;
constexpr uint32_t kGeneralString = 0x1B;
constexpr int32_t kOidSize = 96;
constexpr const char* kKerberosMechanism = "1.2.840.113554.1.2.2";

using OidText = ShortText<kOidSize>;

struct MechanismRow {
  const char* oid;
  const char* name;
};

constexpr MechanismRow kMechanisms[] = {
    {"1.3.6.1.5.5.2", "SPNEGO"},
    {kKerberosMechanism, "Kerberos 5"},
    {"1.2.840.48018.1.2.2", "Kerberos 5 (the identifier of older servers)"},
    {"1.2.840.113554.1.2.2.3", "Kerberos 5 User to User"},
    {"1.3.6.1.5.2.5", "IAKERB"},
    {"1.3.6.1.4.1.311.2.2.10", "NTLMSSP"},
    {"1.3.6.1.4.1.311.2.2.30", "NEGOEX"},
};

constexpr auto kStates = SortedNames({
    {0, "Accept Completed"}, {1, "Accept Incomplete"}, {2, "Reject"}, {3, "Request MIC"}});
constexpr auto kKerberosTokens = SortedNames({{0x0100, "AP-REQ"}, {0x0200, "AP-REP"}, {0x0300, "KRB-ERROR"}});

// An element of DER: its tag, all of it, and its contents.
struct Element {
  uint32_t tag = 0;
  Field whole{};
  Cursor body{};
};

// The next element, cut to what is there; tag 0 when not even its length is.
Element TakeElement(Cursor& c) {
  const Cursor start = c;
  const Field tag = TakeU8(c), first = TakeU8(c);
  uint32_t length = first.value;
  if (first.value >= 0x80) {
    const uint32_t count = first.value & 0x7F;
    const Field octets = count >= 1 && count <= 4 ? TakeBytes(c, count) : TakeBytes(c, -1);
    length = 0;
    for (int32_t i = 0; i < octets.length; ++i) length = length << 8 | octets.bytes[i];
  }
  if (c.ranShort) {
    c = start;
    return {};
  }
  Element element;
  element.tag = tag.value;
  element.body = TakeCursor(c, length);
  element.whole = {start.at, start.offset, c.offset - start.offset, 0, true};
  return element;
}

// The only element in a tagged one.
Element Inner(const Element& outer) {
  Cursor c = outer.body;
  return TakeElement(c);
}

OidText TextOfOid(const Cursor& body) {
  OidText out;
  out.text[0] = 0;
  uint32_t number = 0;
  bool first = true;
  int32_t length = 0;
  for (int32_t i = 0; i < Left(body) && length < kOidSize - 1; ++i) {
    number = number << 7 | (body.at[i] & 0x7F);
    if (body.at[i] & 0x80) continue;
    if (first) {
      const uint32_t top = number < 80 ? number / 40 : 2;
      length = AppendFormat(out.text, kOidSize, "%u.%u", top, number - 40 * top);
    } else {
      length = AppendFormat(out.text, kOidSize, ".%u", number);
    }
    first = false;
    number = 0;
  }
  return out;
}

const char* NameOfMechanism(const OidText& oid) {
  for (const MechanismRow& row : kMechanisms) {
    if (strcmp(row.oid, oid.text) == 0) return row.name;
  }
  return kUndefined;
}

// Result: the identifier.
OidText AddMechanism(const Place& in, const Element& oid, const char* label) {
  const OidText text = TextOfOid(oid.body);
  AddLine(in, oid.whole, "%s: %s = %s", label, text, NameOfMechanism(text));
  return text;
}

void AddElementBytes(const Place& in, const Element& element, const char* label) {
  Cursor body = Inner(element).body;
  AddSmbBytes(in, body, Left(body), label);
}

// What a Kerberos mechanism sends: a token's identifier of two bytes and a message of Kerberos.
void AddKerberos(const Place& in, Cursor& c) {
  const Field token = TakeU16(c);
  AddLine(in, token, "Token: [0x%.04X] = %s", token.value, LookupName(kKerberosTokens, token.value, kUndefined));
  if (in.dead || TryDecoder(in, c, DecodeKerberosMessage, nullptr) == 0) AddBlock(in, Rest(c), "Kerberos Message");
}

// A token of a mechanism: inside SPNEGO it is never SPNEGO again, so this does not nest.
void AddMechanismToken(const Place& in, const Element& element, const char* label) {
  Cursor body = Inner(element).body;
  const Place under = Under(in, AddLine(in, element.whole, "%s", label));
  if (DecodeNtlmssp(under, body)) return;
  Cursor inner = body;
  const Element gss = TakeElement(inner);
  Cursor content = gss.body;
  const Element mechanism = TakeElement(content);
  if (gss.tag != kGssToken || mechanism.tag != kObjectId) {
    AddBlock(under, Rest(body), "Token Data");
    return;
  }
  const OidText oid = AddMechanism(under, mechanism, "Mechanism");
  if (strcmp(oid.text, kKerberosMechanism) == 0) {
    AddKerberos(under, content);
  } else {
    AddBlock(under, Rest(content), "Token Data");
  }
}

void AddMechanismTypes(const Place& in, const Element& element) {
  const Place under = Under(in, AddLine(in, element.whole, "Mechanism Types"));
  Cursor list = Inner(element).body;
  for (Loop loop; MoreAt(under, list, loop);) {
    const Element oid = TakeElement(list);
    if (oid.tag == kObjectId) AddMechanism(under, oid, "Mechanism");
  }
}

// Servers that speak first give a name as a hint where others have the integrity code.
void AddHints(const Place& in, const Element& element) {
  const Element inner = Inner(element);
  if (inner.tag != kSequence) {
    AddElementBytes(in, element, "Mechanism List Integrity Code");
    return;
  }
  const Place under = Under(in, AddLine(in, element.whole, "Negotiation Hints"));
  Cursor list = inner.body;
  for (Loop loop; MoreAt(under, list, loop);) {
    const Element hint = TakeElement(list);
    const Element value = Inner(hint);
    if (value.tag == kGeneralString) {
      const Field text{value.body.at, value.body.offset, Left(value.body), 0, true};
      AddLine(under, hint.whole, "Hint Name: %s", Text(text));
    } else if (hint.tag != 0) {
      AddElementBytes(under, hint, "Hint Address");
    }
  }
}

void AddInitPart(const Place& in, const Element& part) {
  switch (part.tag) {
    case 0xA0: AddMechanismTypes(in, part); break;
    case 0xA1: AddElementBytes(in, part, "Request Flags"); break;
    case 0xA2: AddMechanismToken(in, part, "Mechanism Token"); break;
    case 0xA3: AddHints(in, part); break;
    case 0xA4: AddElementBytes(in, part, "Mechanism List Integrity Code"); break;
    default: break;
  }
}

void AddRespPart(const Place& in, const Element& part) {
  switch (part.tag) {
    case 0xA0: {
      const Element state = Inner(part);
      const uint32_t value = Left(state.body) > 0 ? *state.body.at : 0;
      AddLine(in, part.whole, "Negotiation State: [%u] = %s", value, LookupName(kStates, value, kUndefined));
      break;
    }
    case 0xA1: AddMechanism(in, Inner(part), "Supported Mechanism"); break;
    case 0xA2: AddMechanismToken(in, part, "Response Token"); break;
    case 0xA3: AddElementBytes(in, part, "Mechanism List Integrity Code"); break;
    default: break;
  }
}

// The token of either side. Result: false when it is neither.
bool AddNegotiation(const Place& in, Cursor& c) {
  const Cursor start = c;
  const Element token = TakeElement(c);
  const bool isInit = token.tag == kInitToken;
  if (!isInit && token.tag != kRespToken) {
    c = start;
    return false;
  }
  const Place under = Under(in, AddLine(in, token.whole, "%s", isInit ? "NegTokenInit" : "NegTokenResp"));
  Cursor parts = Inner(token).body;
  for (Loop loop; MoreAt(under, parts, loop);) {
    const Element part = TakeElement(parts);
    if (isInit) AddInitPart(under, part);
    else AddRespPart(under, part);
  }
  return true;
}

}  // namespace

void AddSecurityBlob(const Place& in, const Field& blob) {
  if (blob.length < 1) return;
  const Place under = Under(in, AddLine(in, blob, "Security Blob"));
  Cursor c = CursorOver(blob);
  if (DecodeNtlmssp(under, c)) return;
  if (*c.at == kGssToken) {
    const Element gss = TakeElement(c);
    if (gss.tag == kGssToken) {
      const Place inToken = Under(under, AddLine(under, gss.whole, "GSS-API Token"));
      Cursor content = gss.body;
      const Element mechanism = TakeElement(content);
      if (mechanism.tag == kObjectId) AddMechanism(inToken, mechanism, "Mechanism");
      if (!AddNegotiation(inToken, content)) AddBlock(inToken, Rest(content), "Token Data");
    }
  } else {
    AddNegotiation(under, c);
  }
  AddBlock(under, Rest(c), "Security Blob Data");
}

}  // namespace qxview
