#include "decoders/smb/spnego.h"

#include "core/line_facts.h"
#include <cstring>

#include "decoders/asn1/ber_rows.h"
#include "decoders/asn1/kerberos.h"
#include "decoders/common/object_id.h"
#include "decoders/smb/ntlmssp.h"
#include "decoders/smb/smb_block.h"

namespace qxview {
namespace {

constexpr uint32_t kGssToken = 0x60, kInitToken = 0xA0, kRespToken = 0xA1;
constexpr const char* kKerberosMechanism = "1.2.840.113554.1.2.2";

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

const char* NameOfMechanism(const ObjectIdText& oid) {
  for (const MechanismRow& row : kMechanisms) {
    if (strcmp(row.oid, oid.text) == 0) return row.name;
  }
  return kUndefined;
}

Field Over(const Cursor& c) { return Ahead(c, Left(c)); }

// Result: the identifier.
ObjectIdText AddMechanism(const Place& in, const BerElement& oid, const char* label) {
  const ObjectIdText text = TextOfObjectId(oid.contents);
  AddLine(in, Over(oid.whole), "%s: %s = %s", label, text, NameOfMechanism(text));
  return text;
}

void AddBytes(const Place& in, const BerElement& tagged, const char* label) {
  Cursor contents = PeekBer(tagged.contents).contents;
  AddSmbBytes(in, contents, Left(contents), label);
}

// What a Kerberos mechanism sends: a token's identifier of two bytes and a message of Kerberos.
void AddKerberos(const Place& in, Cursor& c) {
  const Field token = TakeU16(c);
  AddLine(in, token, "Token: [0x%.04X] = %s", token.value, LookupName(kKerberosTokens, token.value, kUndefined));
  if (in.dead || TryDecoder(in, c, DecodeKerberosMessage, nullptr) == 0) AddBlock(in, Rest(c), "Kerberos Message");
}

// --- the parts of tokens, each inside its tag ---

// A token of a mechanism: inside SPNEGO it is never SPNEGO again, so this does not nest.
void ShowToken(BerWalk&, const Place& in, Cursor& c, const char* title) {
  const BerElement part = TakeBer(c);
  Cursor token = PeekBer(part.contents).contents;
  const Place under = Under(in, AddSmbTitle(in, Over(part.whole), title));
  if (DecodeNtlmssp(under, token)) return;
  Cursor content = TakeBerContents(token, kGssToken);
  const BerElement mechanism = TakeBer(content);
  if (mechanism.identifier != kAsnObjectId) {
    AddBlock(under, Rest(token), "Token Data");
    return;
  }
  const ObjectIdText oid = AddMechanism(under, mechanism, "Mechanism");
  if (strcmp(oid.text, kKerberosMechanism) == 0) {
    AddKerberos(under, content);
  } else {
    AddBlock(under, Rest(content), "Token Data");
  }
}

void ShowMechanisms(BerWalk&, const Place& in, Cursor& c, const char* title) {
  const BerElement part = TakeBer(c);
  const Place under = Under(in, AddSmbTitle(in, Over(part.whole), title));
  Cursor list = PeekBer(part.contents).contents;
  for (Loop loop; MoreAt(under, list, loop);) {
    const BerElement oid = TakeBer(list);
    if (oid.identifier == kAsnObjectId) AddMechanism(under, oid, "Mechanism");
  }
}

void ShowMechanism(BerWalk&, const Place& in, Cursor& c, const char* title) {
  const BerElement oid = PeekBer(TakeBer(c).contents);
  if (oid.here) AddMechanism(in, oid, title);
}

void ShowBytes(BerWalk&, const Place& in, Cursor& c, const char* title) { AddBytes(in, TakeBer(c), title); }

// Servers that speak first give a name as a hint where others have the integrity code.
void ShowHintsOrCode(BerWalk&, const Place& in, Cursor& c, const char* title) {
  const BerElement part = TakeBer(c);
  const BerElement inner = PeekBer(part.contents);
  if (inner.identifier != kAsnSequence) return AddBytes(in, part, title);
  const Place under = Under(in, AddLine(in, Over(part.whole), "Negotiation Hints"));
  Cursor list = inner.contents;
  for (Loop loop; MoreAt(under, list, loop);) {
    const BerElement hint = TakeBer(list);
    const BerElement value = PeekBer(hint.contents);
    if (value.identifier == kAsnGeneralString) {
      AddLine(under, Over(hint.whole), "Hint Name: %s", BerText(value.contents));
    } else if (hint.here) {
      AddBytes(under, hint, "Hint Address");
    }
  }
}

void ShowState(BerWalk&, const Place& in, Cursor& c, const char* title) {
  const BerElement part = TakeBer(c);
  const uint32_t state = PeekU8(PeekBer(part.contents).contents);
  AddLine(in, Over(part.whole), "%s: [%u] = %s", title, state, LookupName(kStates, state, kUndefined));
}

constexpr BerType Shown(BerShow show) { return {.form = BerForm::kShown, .show = show}; }
constexpr BerType kToken = Shown(ShowToken), kMechanismList = Shown(ShowMechanisms), kMechanism = Shown(ShowMechanism),
                  kBytes = Shown(ShowBytes), kHintsOrCode = Shown(ShowHintsOrCode), kState = Shown(ShowState);
constexpr BerRow kInitParts[] = {
    {0xA0, "Mechanism Types", &kMechanismList}, {0xA1, "Request Flags", &kBytes}, {0xA2, "Mechanism Token", &kToken},
    {0xA3, "Mechanism List Integrity Code", &kHintsOrCode}, {0xA4, "Mechanism List Integrity Code", &kBytes}};
constexpr BerRow kRespParts[] = {
    {0xA0, "Negotiation State", &kState}, {0xA1, "Supported Mechanism", &kMechanism}, {0xA2, "Response Token", &kToken},
    {0xA3, "Mechanism List Integrity Code", &kBytes}};
constexpr BerType kInit = Repeated(kInitParts), kResp = Repeated(kRespParts);
constexpr BerTitles kTitles{"Partial Data", "Further Data", kShortLineSize};
constexpr int32_t kMostParts = 64;

// The token of either side. Result: false when it is neither.
bool AddNegotiation(const Place& in, Cursor& c) {
  const BerElement token = PeekBer(c);
  const bool isInit = token.identifier == kInitToken;
  if (!isInit && token.identifier != kRespToken) return false;
  TakeBer(c);
  const Place under = Under(in, AddSmbTitle(in, Over(token.whole), isInit ? "NegTokenInit" : "NegTokenResp"));
  Cursor parts = PeekBer(token.contents).contents;
  BerWalk walk{&kTitles, kMostParts};
  ShowBerRows(walk, under, parts, isInit ? kInit : kResp);
  return true;
}

}  // namespace

void AddSecurityBlob(const Place& in, const Field& blob) {
  const KeyedAs keys(PacketOf(in), "spnego");
  if (blob.length < 1) return;
  const Place under = Under(in, AddLine(in, blob, "Security Blob"));
  Cursor c = CursorOver(blob);
  if (DecodeNtlmssp(under, c)) return;
  if (PeekBer(c).identifier == kGssToken) {
    const BerElement gss = TakeBer(c);
    const Place inToken = Under(under, AddLine(under, Over(gss.whole), "GSS-API Token"));
    Cursor content = gss.contents;
    if (PeekBer(content).identifier == kAsnObjectId) AddMechanism(inToken, TakeBer(content), "Mechanism");
    if (!AddNegotiation(inToken, content)) AddBlock(inToken, Rest(content), "Token Data");
  } else {
    AddNegotiation(under, c);
  }
  AddBlock(under, Rest(c), "Security Blob Data");
}

}  // namespace qxview
