// Extensions of certificates and OCSP messages (RFC 5280 4.2, RFC 6962, RFC 7633, ETSI EN 319 412-5 and those of makers).
#include <cstring>

#include "decoders/asn1/x509.h"
#include "decoders/tls/tls_messages.h"

namespace qxview {
namespace {

constexpr const char* kUsages[] = {
    "Digital Signature", "Non Repudiation", "Key Encipherment", "Data Encipherment", "Key Agreement",
    "Key Certificate Sign", "CRL Sign", "Encipher Only", "Decipher Only"};
constexpr const char* kReasons[] = {
    "Unused", "Key Compromise", "CA Compromise", "Affiliation Changed", "Superseded", "Cessation of Operation",
    "Certificate Hold", "Privilege Withdrawn", "AA Compromise"};
constexpr const char* kNetscapeTypes[] = {
    "SSL Client", "SSL Server", "S/MIME", "Object Signing", "Reserved", "SSL CA", "S/MIME CA", "Object Signing CA"};
constexpr auto kFeatures = SortedNames({{5, "status_request"}, {17, "status_request_v2"}});
constexpr auto kReasonNames = SortedNames({
    {0, "unspecified"}, {1, "keyCompromise"}, {2, "cACompromise"}, {3, "affiliationChanged"}, {4, "superseded"},
    {5, "cessationOfOperation"}, {6, "certificateHold"}, {8, "removeFromCRL"}, {9, "privilegeWithdrawn"},
    {10, "aACompromise"}});

void ShowUsage(const Place& in, Cursor& c) {
  BerElement bits;
  if (TakeDer(c, kAsnBitString, &bits)) ShowDerFlags(in, bits, "Key Usage", kUsages, 9);
}
void ShowNetscapeType(const Place& in, Cursor& c) {
  BerElement bits;
  if (TakeDer(c, kAsnBitString, &bits)) ShowDerFlags(in, bits, "Netscape Certificate Type", kNetscapeTypes, 8);
}
void ShowKeyId(const Place& in, Cursor& c) {
  BerElement octets;
  if (TakeDer(c, kAsnOctetString, &octets)) ShowDerOctets(in, octets, "Key Identifier");
}
void ShowAuthorityKeyId(const Place& in, Cursor& c) {
  BerElement sequence, element;
  if (!TakeDer(c, kAsnSequence, &sequence)) return;
  Cursor inner = sequence.contents;
  if (TakeDer(inner, DerContext(0), &element)) ShowDerOctets(in, element, "Key Identifier");
  if (TakeDer(inner, DerExplicit(1), &element)) {
    Cursor names = element.contents;
    ShowGeneralNames(Under(in, AddLine(in, WholeOf(element), "Authority Cert Issuer:")), names);
  }
  if (TakeDer(inner, DerContext(2), &element)) ShowDerOctets(in, element, "Authority Cert Serial Number");
  ShowDerValues(in, inner);
}
void ShowConstraints(const Place& in, Cursor& c) {
  BerElement sequence, element;
  if (!TakeDer(c, kAsnSequence, &sequence)) return;
  Cursor inner = sequence.contents;
  if (TakeDer(inner, kAsnBoolean, &element)) ShowDerBoolean(in, element, "CA");
  else AddLine(in, WholeOf(sequence), "CA: False (default)");
  if (TakeDer(inner, kAsnInteger, &element)) ShowDerNumber(in, element, "Path Length Constraint");
  ShowDerValues(in, inner);
}
void ShowNames(const Place& in, Cursor& c) {
  BerElement sequence;
  if (!TakeDer(c, kAsnSequence, &sequence)) return;
  Cursor names = sequence.contents;
  ShowGeneralNames(in, names);
}
void ShowPurposes(const Place& in, Cursor& c) {
  BerElement sequence, id;
  if (!TakeDer(c, kAsnSequence, &sequence)) return;
  Cursor ids = sequence.contents;
  Loop loop;
  while (MoreAt(in, ids, loop) && TakeDer(ids, kAsnObjectId, &id)) ShowDerObject(in, id, "Key Purpose");
  ShowDerValues(in, ids);
}

void ShowQualifier(const Place& in, Cursor c) {
  BerElement id, text;
  if (TakeDer(c, kAsnObjectId, &id)) ShowDerObject(in, id, "Policy Qualifier");
  if (TakeDer(c, kDerIa5, &text)) ShowDerString(in, text, "CPS URI");
  ShowDerValues(in, c);
}
void ShowPolicies(const Place& in, Cursor& c) {
  BerElement sequence, policy, id, qualifiers, qualifier;
  if (!TakeDer(c, kAsnSequence, &sequence)) return;
  Cursor policies = sequence.contents;
  Loop loop;
  while (MoreAt(in, policies, loop) && TakeDer(policies, kAsnSequence, &policy)) {
    const Place under = Under(in, AddLine(in, WholeOf(policy), "Policy:"));
    Cursor inner = policy.contents;
    if (TakeDer(inner, kAsnObjectId, &id)) ShowDerObject(under, id, "Policy Identifier");
    if (TakeDer(inner, kAsnSequence, &qualifiers)) {
      Cursor list = qualifiers.contents;
      Loop each;
      while (MoreAt(under, list, each) && TakeDer(list, kAsnSequence, &qualifier)) ShowQualifier(under, qualifier.contents);
    }
    ShowDerValues(under, inner);
  }
}

void ShowPoint(const Place& in, Cursor c) {
  BerElement element, name;
  if (TakeDer(c, DerExplicit(0), &element)) {
    Cursor choice = element.contents;
    if (TakeDer(choice, DerExplicit(0), &name)) {
      Cursor names = name.contents;
      ShowGeneralNames(in, names);
    }
    ShowDerValues(in, choice);
  }
  if (TakeDer(c, DerContext(1), &element)) ShowDerFlags(in, element, "Reasons", kReasons, 9);
  if (TakeDer(c, DerExplicit(2), &element)) {
    Cursor names = element.contents;
    ShowGeneralNames(Under(in, AddLine(in, WholeOf(element), "CRL Issuer:")), names);
  }
  ShowDerValues(in, c);
}
void ShowPoints(const Place& in, Cursor& c) {
  BerElement sequence, point;
  if (!TakeDer(c, kAsnSequence, &sequence)) return;
  Cursor points = sequence.contents;
  Loop loop;
  while (MoreAt(in, points, loop) && TakeDer(points, kAsnSequence, &point)) {
    ShowPoint(Under(in, AddLine(in, WholeOf(point), "Distribution Point:")), point.contents);
  }
}
void ShowAccess(const Place& in, Cursor& c) {
  BerElement sequence, description, id;
  if (!TakeDer(c, kAsnSequence, &sequence)) return;
  Cursor list = sequence.contents;
  Loop loop;
  while (MoreAt(in, list, loop) && TakeDer(list, kAsnSequence, &description)) {
    const Place under = Under(in, AddLine(in, WholeOf(description), "Access Description:"));
    Cursor inner = description.contents;
    if (TakeDer(inner, kAsnObjectId, &id)) ShowDerObject(under, id, "Access Method");
    if (Left(inner) > 0) ShowGeneralName(under, inner, "Access Location");
  }
}
void ShowSubtrees(const Place& in, Cursor c) {
  BerElement tree, distance;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeDer(c, kAsnSequence, &tree)) {
    Cursor inner = tree.contents;
    ShowGeneralName(in, inner, "Base");
    if (TakeDer(inner, DerContext(0), &distance)) ShowDerNumber(in, distance, "Minimum");
    if (TakeDer(inner, DerContext(1), &distance)) ShowDerNumber(in, distance, "Maximum");
  }
  ShowDerValues(in, c);
}
void ShowNameConstraints(const Place& in, Cursor& c) {
  BerElement sequence, element;
  if (!TakeDer(c, kAsnSequence, &sequence)) return;
  Cursor inner = sequence.contents;
  if (TakeDer(inner, DerExplicit(0), &element)) {
    ShowSubtrees(Under(in, AddLine(in, WholeOf(element), "Permitted Subtrees:")), element.contents);
  }
  if (TakeDer(inner, DerExplicit(1), &element)) {
    ShowSubtrees(Under(in, AddLine(in, WholeOf(element), "Excluded Subtrees:")), element.contents);
  }
  ShowDerValues(in, inner);
}
void ShowPolicyConstraints(const Place& in, Cursor& c) {
  BerElement sequence, element;
  if (!TakeDer(c, kAsnSequence, &sequence)) return;
  Cursor inner = sequence.contents;
  if (TakeDer(inner, DerContext(0), &element)) ShowDerNumber(in, element, "Require Explicit Policy");
  if (TakeDer(inner, DerContext(1), &element)) ShowDerNumber(in, element, "Inhibit Policy Mapping");
  ShowDerValues(in, inner);
}
void ShowPeriod(const Place& in, Cursor& c) {
  BerElement sequence, time;
  if (!TakeDer(c, kAsnSequence, &sequence)) return;
  Cursor inner = sequence.contents;
  if (TakeDer(inner, DerContext(0), &time)) ShowDerTime(in, time, "Not Before");
  if (TakeDer(inner, DerContext(1), &time)) ShowDerTime(in, time, "Not After");
  ShowDerValues(in, inner);
}
void ShowFeatures(const Place& in, Cursor& c) {
  BerElement sequence, number;
  if (!TakeDer(c, kAsnSequence, &sequence)) return;
  Cursor inner = sequence.contents;
  Loop loop;
  while (MoreAt(in, inner, loop) && TakeDer(inner, kAsnInteger, &number)) {
    const uint32_t feature = BerNumber(number.contents);
    AddLine(in, ContentsOf(number), "TLS Feature: %u = %s", feature, LookupName(kFeatures, feature));
  }
}
void ShowTimestamps(const Place& in, Cursor& c) {
  BerElement octets;
  if (!TakeDer(c, kAsnOctetString, &octets)) return;
  Cursor list = octets.contents;
  ShowTimestampList(in, list);
}
void ShowStatements(const Place& in, Cursor& c) {
  BerElement sequence, statement, id;
  if (!TakeDer(c, kAsnSequence, &sequence)) return;
  Cursor list = sequence.contents;
  Loop loop;
  while (MoreAt(in, list, loop) && TakeDer(list, kAsnSequence, &statement)) {
    const Place under = Under(in, AddLine(in, WholeOf(statement), "QC Statement:"));
    Cursor inner = statement.contents;
    if (TakeDer(inner, kAsnObjectId, &id)) ShowDerObject(under, id, "Statement");
    ShowDerValues(under, inner);
  }
}
void ShowTemplate(const Place& in, Cursor& c) {
  BerElement sequence, element;
  if (!TakeDer(c, kAsnSequence, &sequence)) return;
  Cursor inner = sequence.contents;
  if (TakeDer(inner, kAsnObjectId, &element)) ShowDerObject(in, element, "Template");
  if (TakeDer(inner, kAsnInteger, &element)) ShowDerNumber(in, element, "Template Major Version");
  if (TakeDer(inner, kAsnInteger, &element)) ShowDerNumber(in, element, "Template Minor Version");
  ShowDerValues(in, inner);
}
void ShowReason(const Place& in, Cursor& c) {
  BerElement reason;
  if (!TakeDer(c, kAsnEnumerated, &reason)) return;
  const uint32_t code = BerNumber(reason.contents);
  AddLine(in, ContentsOf(reason), "CRL Reason: %u = %s", code, LookupName(kReasonNames, code));
}
void ShowNonce(const Place& in, Cursor& c) {
  BerElement octets;
  if (TakeDer(c, kAsnOctetString, &octets)) ShowDerOctets(in, octets, "Nonce");
  const Field rest = Rest(c);   // some leave out that it is a string of octets
  AddLine(in, rest, "Nonce: %s", HexDigits(rest));
}

struct ExtensionRow {
  const char* name;   // as object_names.txt has it
  void (*show)(const Place& in, Cursor& c);
};
constexpr ExtensionRow kExtensions[] = {
    {"subjectKeyIdentifier", ShowKeyId}, {"keyUsage", ShowUsage}, {"privateKeyUsagePeriod", ShowPeriod},
    {"subjectAltName", ShowNames}, {"issuerAltName", ShowNames}, {"basicConstraints", ShowConstraints},
    {"cRLReason", ShowReason}, {"nameConstraints", ShowNameConstraints}, {"cRLDistributionPoints", ShowPoints},
    {"freshestCRL", ShowPoints}, {"certificatePolicies", ShowPolicies}, {"authorityKeyIdentifier", ShowAuthorityKeyId},
    {"policyConstraints", ShowPolicyConstraints}, {"extKeyUsage", ShowPurposes}, {"authorityInfoAccess", ShowAccess},
    {"subjectInfoAccess", ShowAccess}, {"tlsfeature", ShowFeatures}, {"qcStatements", ShowStatements},
    {"signedCertificateTimestampList", ShowTimestamps}, {"ocspSCTs", ShowTimestamps},
    {"nsCertType", ShowNetscapeType}, {"certificateTemplate", ShowTemplate}, {"applicationCertPolicies", ShowPolicies},
    {"Nonce", ShowNonce},
};

void ShowValue(const Place& in, const char* name, Cursor c) {
  for (const ExtensionRow& row : kExtensions) {
    if (name && std::strcmp(row.name, name) == 0) row.show(in, c);
  }
  c.ranShort = false;
  ShowDerValues(in, c);
}

}  // namespace

void ShowX509Extensions(const Place& in, Cursor& c) {
  BerElement extension;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeDer(c, kAsnSequence, &extension)) {
    Cursor inner = extension.contents;
    BerElement id{}, critical{}, value{};
    const bool hasId = TakeDer(inner, kAsnObjectId, &id);
    const char* name = hasId ? NameOfObject(id.contents) : nullptr;
    const bool isCritical = TakeDer(inner, kAsnBoolean, &critical) && BerNumber(critical.contents) != 0;
    const Place under = Under(in, AddLine(in, WholeOf(extension), "Extension: %s%s", name ? name : kUnknown,
                                          isCritical ? ", critical" : ""));
    if (hasId) ShowDerObject(under, id, "Extension ID");
    if (critical.here) ShowDerBoolean(under, critical, "Critical");
    if (TakeDer(inner, kAsnOctetString, &value)) ShowValue(under, name, value.contents);
    ShowDerValues(under, inner);
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "Data");
}

}  // namespace qxview
