// The Online Certificate Status Protocol (RFC 6960): whether certificates are revoked.
//
//   request    tbsRequest ([0] version, [1] requestorName, requests of certificate IDs, [2] extensions), [0] signature
//   response   status, [0] type and the octets of BasicOCSPResponse: tbsResponseData ([0] version, responder, time,
//              responses, [1] extensions), signatureAlgorithm, signature, [0] certificates
#include "core/line_facts.h"
#include "decoders/asn1/x509.h"

namespace qxview {
namespace {

constexpr auto kStatusNames = SortedNames({
    {0, "successful"}, {1, "malformedRequest"}, {2, "internalError"}, {3, "tryLater"}, {5, "sigRequired"},
    {6, "unauthorized"}});
constexpr auto kReasonNames = SortedNames({
    {0, "unspecified"}, {1, "keyCompromise"}, {2, "cACompromise"}, {3, "affiliationChanged"}, {4, "superseded"},
    {5, "cessationOfOperation"}, {6, "certificateHold"}, {8, "removeFromCRL"}, {9, "privilegeWithdrawn"},
    {10, "aACompromise"}});

void ShowVersion(const Place& in, Cursor& c) {
  BerElement tagged, number;
  if (!TakeDer(c, DerExplicit(0), &tagged)) return;
  Cursor inner = tagged.contents;
  if (TakeDer(inner, kAsnInteger, &number)) ShowDerNumber(in, number, "Version");
}

void ShowTaggedExtensions(const Place& in, Cursor& c, uint32_t tag, const char* title) {
  BerElement tagged, sequence;
  if (!TakeDer(c, DerExplicit(tag), &tagged)) return;
  Cursor inner = tagged.contents;
  if (!TakeDer(inner, kAsnSequence, &sequence)) return;
  Cursor extensions = sequence.contents;
  ShowX509Extensions(Under(in, AddLine(in, WholeOf(tagged), "%s:", title)), extensions);
}

void ShowCertificateId(const Place& in, Cursor& c) {
  BerElement id, element;
  if (!TakeDer(c, kAsnSequence, &id)) return;
  const Place under = Under(in, AddLine(in, WholeOf(id), "Certificate ID:"));
  Cursor inner = id.contents;
  ShowX509Algorithm(under, inner, "Hash Algorithm");
  if (TakeDer(inner, kAsnOctetString, &element)) ShowDerOctets(under, element, "Issuer Name Hash");
  if (TakeDer(inner, kAsnOctetString, &element)) ShowDerOctets(under, element, "Issuer Key Hash");
  if (TakeDer(inner, kAsnInteger, &element)) ShowDerOctets(under, element, "Serial Number");
  ShowDerValues(under, inner);
}

void ShowCertificates(const Place& in, Cursor& c) {
  BerElement tagged, sequence;
  if (!TakeDer(c, DerExplicit(0), &tagged)) return;
  Cursor inner = tagged.contents;
  if (!TakeDer(inner, kAsnSequence, &sequence)) return;
  const Place under = Under(in, AddLine(in, WholeOf(tagged), "Certificates:"));
  Cursor certificates = sequence.contents;
  Loop loop;
  while (MoreAt(under, certificates, loop)) {
    const BerElement whole = TakeBer(certificates);
    Cursor certificate = whole.whole;
    ShowX509Certificate(under, certificate);
  }
}

void ShowStatus(const Place& in, Cursor& c) {
  BerElement status, element, reason;
  if (TakeDer(c, DerContext(0), &status)) {
    AddLine(in, WholeOf(status), "Certificate Status: good");
  } else if (TakeDer(c, DerContext(2), &status)) {
    AddLine(in, WholeOf(status), "Certificate Status: unknown");
  } else if (TakeDer(c, DerExplicit(1), &status)) {
    const Place under = Under(in, AddLine(in, WholeOf(status), "Certificate Status: revoked"));
    Cursor inner = status.contents;
    if (TakeDer(inner, kDerGeneralizedTime, &element)) ShowDerTime(under, element, "Revocation Time");
    Cursor tagged = TakeDer(inner, DerExplicit(0), &element) ? element.contents : Cursor{};
    if (TakeDer(tagged, kAsnEnumerated, &reason)) {
      const uint32_t code = BerNumber(reason.contents);
      AddLine(under, ContentsOf(reason), "Revocation Reason: %u = %s", code, LookupName(kReasonNames, code));
    }
    ShowDerValues(under, inner);
  }
}

void ShowSingleResponse(const Place& in, Cursor c) {
  BerElement time, tagged;
  ShowCertificateId(in, c);
  ShowStatus(in, c);
  if (TakeDer(c, kDerGeneralizedTime, &time)) ShowDerTime(in, time, "This Update");
  if (TakeDer(c, DerExplicit(0), &tagged)) {
    Cursor inner = tagged.contents;
    if (TakeDer(inner, kDerGeneralizedTime, &time)) ShowDerTime(in, time, "Next Update");
  }
  ShowTaggedExtensions(in, c, 1, "Single Extensions");
  ShowDerValues(in, c);
}

void ShowResponseData(const Place& in, Cursor c) {
  BerElement element, single;
  ShowVersion(in, c);
  if (TakeDer(c, DerExplicit(1), &element)) {
    Cursor name = element.contents;
    ShowX509Name(in, name, "Responder Name");
  } else if (TakeDer(c, DerExplicit(2), &element)) {
    Cursor key = element.contents;
    BerElement octets;
    if (TakeDer(key, kAsnOctetString, &octets)) ShowDerOctets(in, octets, "Responder Key Hash");
  }
  if (TakeDer(c, kDerGeneralizedTime, &element)) ShowDerTime(in, element, "Produced At");
  if (TakeDer(c, kAsnSequence, &element)) {
    Cursor responses = element.contents;
    Loop loop;
    while (MoreAt(in, responses, loop) && TakeDer(responses, kAsnSequence, &single)) {
      ShowSingleResponse(Under(in, AddLine(in, WholeOf(single), "Single Response:")), single.contents);
    }
  }
  ShowTaggedExtensions(in, c, 1, "Response Extensions");
  ShowDerValues(in, c);
}

void ShowBasicResponse(const Place& in, Cursor c) {
  BerElement basic, data;
  if (!TakeDer(c, kAsnSequence, &basic)) return ShowDerValues(in, c);
  Cursor inner = basic.contents;
  if (TakeDer(inner, kAsnSequence, &data)) {
    ShowResponseData(Under(in, AddLine(in, WholeOf(data), "Response Data:")), data.contents);
  }
  ShowX509Algorithm(in, inner, "Signature Algorithm");
  ShowX509Signature(in, inner);
  ShowCertificates(in, inner);
  ShowDerValues(in, inner);
}

void ShowRequests(const Place& in, Cursor c) {
  BerElement request;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeDer(c, kAsnSequence, &request)) {
    const Place under = Under(in, AddLine(in, WholeOf(request), "Request:"));
    Cursor inner = request.contents;
    ShowCertificateId(under, inner);
    ShowTaggedExtensions(under, inner, 0, "Single Extensions");
    ShowDerValues(under, inner);
  }
}

}  // namespace

void ShowOcspResponse(const Place& in, Cursor& c) {
  const KeyedAs keys(PacketOf(in), "ocsp");
  BerElement response, element, type, octets;
  if (!TakeDer(c, kAsnSequence, &response)) return static_cast<void>(AddBlock(in, Rest(c), "OCSP Data"));
  const Place under = Under(in, AddLine(in, WholeOf(response), "OCSP Response"));
  Cursor inner = response.contents;
  if (TakeDer(inner, kAsnEnumerated, &element)) {
    const uint32_t status = BerNumber(element.contents);
    AddLine(under, ContentsOf(element), "Response Status: %u = %s", status, LookupName(kStatusNames, status));
  }
  if (TakeDer(inner, DerExplicit(0), &element)) {
    Cursor tagged = element.contents;
    if (TakeDer(tagged, kAsnSequence, &element)) tagged = element.contents;
    if (TakeDer(tagged, kAsnObjectId, &type)) ShowDerObject(under, type, "Response Type");
    if (TakeDer(tagged, kAsnOctetString, &octets)) ShowBasicResponse(under, octets.contents);
    ShowDerValues(under, tagged);
  }
  ShowDerValues(under, inner);
  AddBlock(in, Rest(c), "Data");
}

void ShowOcspRequest(const Place& in, Cursor& c) {
  const KeyedAs keys(PacketOf(in), "ocsp");
  BerElement request, tbs, element;
  if (!TakeDer(c, kAsnSequence, &request)) return static_cast<void>(AddBlock(in, Rest(c), "OCSP Data"));
  const Place under = Under(in, AddLine(in, WholeOf(request), "OCSP Request"));
  Cursor inner = request.contents;
  if (TakeDer(inner, kAsnSequence, &tbs)) {
    Cursor body = tbs.contents;
    ShowVersion(under, body);
    if (TakeDer(body, DerExplicit(1), &element)) {
      Cursor name = element.contents;
      ShowGeneralName(under, name, "Requestor Name");
    }
    if (TakeDer(body, kAsnSequence, &element)) ShowRequests(under, element.contents);
    ShowTaggedExtensions(under, body, 2, "Request Extensions");
    ShowDerValues(under, body);
  }
  ShowDerValues(under, inner);
  AddBlock(in, Rest(c), "Data");
}

}  // namespace qxview
