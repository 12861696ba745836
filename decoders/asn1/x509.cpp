// Certificates (RFC 5280 4.1): version, serial number, names, validity, key, extensions, and the signature over them.
//
//   Certificate     tbsCertificate, signatureAlgorithm, signatureValue
//   tbsCertificate  [0] version, serialNumber, signature, issuer, validity, subject, subjectPublicKeyInfo,
//                   [1] issuerUniqueID, [2] subjectUniqueID, [3] extensions
#include "decoders/asn1/x509.h"

#include "core/line_facts.h"

namespace qxview {
namespace {

constexpr auto kVersionNames = SortedNames({{0, "v1"}, {1, "v2"}, {2, "v3"}});

void ShowRest(const Place& in, Cursor& c) {
  c.ranShort = false;
  AddBlock(in, Rest(c), "Data");
}

void ShowValidity(const Place& in, Cursor& c) {
  BerElement validity;
  if (!TakeDer(c, kAsnSequence, &validity)) return;
  const Place under = Under(in, AddLine(in, WholeOf(validity), "Validity:"));
  Cursor times = validity.contents;
  constexpr const char* kLabels[] = {"Not Before", "Not After"};
  for (const char* label : kLabels) {
    if (Left(times) < 2) break;
    const BerElement time = TakeBer(times);
    if (time.here) ShowDerTime(under, time, label);
  }
}

// The subject's name, which stands behind other elements: of a certificate's line.
DerText SubjectOf(Cursor tbs) {
  BerElement skipped;
  TakeDer(tbs, DerExplicit(0), &skipped);
  for (int32_t i = 0; i < 4; ++i) TakeBer(tbs);   // serial number, algorithm, issuer, validity
  return X509NameText(tbs);
}

void ShowToBeSigned(const Place& in, Cursor c) {
  BerElement element;
  if (TakeDer(c, DerExplicit(0), &element)) {
    Cursor version = element.contents;
    const BerElement number = TakeBer(version);
    const uint32_t value = BerNumber(number.contents);
    AddLine(in, ContentsOf(number), "Version: %u = %s", value, LookupName(kVersionNames, value));
  }
  if (TakeDer(c, kAsnInteger, &element)) ShowDerOctets(in, element, "Serial Number");
  ShowX509Algorithm(in, c, "Signature Algorithm");
  ShowX509Name(in, c, "Issuer");
  ShowValidity(in, c);
  ShowX509Name(in, c, "Subject");
  ShowX509PublicKey(in, c);
  if (TakeDer(c, DerContext(1), &element)) ShowDerOctets(in, element, "Issuer Unique ID");
  if (TakeDer(c, DerContext(2), &element)) ShowDerOctets(in, element, "Subject Unique ID");
  if (TakeDer(c, DerExplicit(3), &element)) {
    Cursor list = element.contents;
    BerElement sequence;
    if (TakeDer(list, kAsnSequence, &sequence)) {
      Cursor extensions = sequence.contents;
      ShowX509Extensions(Under(in, AddLine(in, WholeOf(element), "Extensions:")), extensions);
    }
    ShowRest(in, list);
  }
  ShowRest(in, c);
}

constexpr uint8_t kRsa[] = {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x01};   // the arc of PKCS #1

void ShowRsaKey(const Place& in, Cursor key) {
  BerElement sequence, number;
  if (!TakeDer(key, kAsnSequence, &sequence)) return ShowRest(in, key);
  Cursor c = sequence.contents;
  if (TakeDer(c, kAsnInteger, &number)) {
    ShowDerOctets(in, number, "Modulus");
    const int32_t first = PeekU8(number.contents) == 0 ? 1 : 0;
    AppendToParent(in, WholeOf(number), ", RSA %d bits", 8 * (static_cast<int32_t>(number.size) - 4 - first));
  }
  if (TakeDer(c, kAsnInteger, &number)) ShowDerNumber(in, number, "Public Exponent");
  ShowRest(in, c);
}

}  // namespace

void ShowX509Algorithm(const Place& in, Cursor& c, const char* title) {
  BerElement algorithm, id;
  if (!TakeDer(c, kAsnSequence, &algorithm)) return;
  Cursor inner = algorithm.contents;
  Cursor ahead = inner;
  const bool hasId = TakeDer(ahead, kAsnObjectId, &id);
  const char* name = hasId ? NameOfObject(id.contents) : nullptr;
  const Place under = Under(in, AddLine(in, WholeOf(algorithm), "%s: %s", title, name ? name : kUnknown));
  if (hasId) {
    inner = ahead;
    ShowDerObject(under, id, "Algorithm");
  }
  if (TakeDer(inner, kAsnObjectId, &id)) ShowDerObject(under, id, "Named Curve");
  BerElement parameters;
  if (TakeDer(inner, kAsnSequence, &parameters)) {
    Cursor values = parameters.contents;
    ShowDerValues(Under(under, AddLine(under, WholeOf(parameters), "Parameters:")), values);
  } else if (TakeDer(inner, kAsnNull, &parameters)) {
    AddLine(under, WholeOf(parameters), "Parameters: NULL");
  }
  ShowDerValues(under, inner);   // an initialization vector, a key length
}

void ShowX509PublicKey(const Place& in, Cursor& c) {
  BerElement info, bits;
  if (!TakeDer(c, kAsnSequence, &info)) return;
  const Place under = Under(in, AddLine(in, WholeOf(info), "Subject Public Key Info"));
  Cursor inner = info.contents;
  BerElement algorithm, id;
  Cursor ahead = inner;
  const bool hasId = TakeDer(ahead, kAsnSequence, &algorithm);
  Cursor ids = algorithm.contents;
  const bool isRsa = hasId && TakeDer(ids, kAsnObjectId, &id) && PeekIs(id.contents, 0, kRsa);
  ShowX509Algorithm(under, inner, "Public Key Algorithm");
  if (TakeDer(inner, kAsnBitString, &bits)) {
    Cursor key = ShowDerBits(under, bits);
    if (isRsa) {
      ShowRsaKey(under, key);
    } else if (PeekU8(key) == kAsnInteger && Left(key) > 2) {   // DSA, Diffie-Hellman
      BerElement number;
      if (TakeDer(key, kAsnInteger, &number)) ShowDerOctets(under, number, "Public Key");
    } else {
      const Field point = Rest(key);
      AddLine(under, point, "Public Key: %s", HexDigits(point));
    }
  }
  ShowRest(under, inner);
}

void ShowX509Signature(const Place& in, Cursor& c) {
  BerElement bits;
  if (!TakeDer(c, kAsnBitString, &bits)) return;
  Cursor signature = ShowDerBits(in, bits);
  const Field octets = Rest(signature);
  AddLine(in, octets, "Signature: %s", HexDigits(octets));
}

void ShowX509Certificate(const Place& in, Cursor& c) {
  const KeyedAs keys(PacketOf(in), "x509");
  if (NobodyWants(in)) return static_cast<void>(Rest(c));
  BerElement certificate, tbs;
  if (!TakeDer(c, kAsnSequence, &certificate)) return static_cast<void>(AddBlock(in, Rest(c), "Certificate Data"));
  Cursor inner = certificate.contents;
  const bool hasBody = TakeDer(inner, kAsnSequence, &tbs);
  const Place under = Under(in, AddLine(in, WholeOf(certificate), "Certificate: %s",
                                        hasBody ? SubjectOf(tbs.contents) : DerText{""}));
  if (hasBody) ShowToBeSigned(under, tbs.contents);
  ShowX509Algorithm(under, inner, "Certificate Signature Algorithm");
  ShowX509Signature(under, inner);
  ShowRest(under, inner);
  ShowRest(in, c);
}

}  // namespace qxview
