// X.509 certificates (RFC 5280) and OCSP messages (RFC 6960) at a cursor, for whatever carries them. What is cut is shown as
// far as it is there; the cursor goes on to its end.
#pragma once
#include "decoders/asn1/der.h"

namespace qxview {

void ShowX509Certificate(const Place& in, Cursor& c);
void ShowX509Name(const Place& in, Cursor& c, const char* title);
void ShowX509PublicKey(const Place& in, Cursor& c);             // SubjectPublicKeyInfo
void ShowX509Extensions(const Place& in, Cursor& c);            // the elements of the list, one after the other
void ShowX509Algorithm(const Place& in, Cursor& c, const char* title);   // with its parameters
void ShowGeneralName(const Place& in, Cursor& c, const char* title);
void ShowGeneralNames(const Place& in, Cursor& c);              // until the cursor's end
DerText X509NameText(Cursor name);                              // "C=US, O=Example, CN=example.com"
// A signature's bit string, of integers where the algorithm makes two.
void ShowX509Signature(const Place& in, Cursor& c);

void ShowOcspRequest(const Place& in, Cursor& c);
void ShowOcspResponse(const Place& in, Cursor& c);

}  // namespace qxview
