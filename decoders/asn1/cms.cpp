// The Cryptographic Message Syntax (RFC 5652): a ContentInfo names the type of its content.
//
//   SignedData      version, digest algorithms, content, [0] certificates, [1] revocation lists, signers
//   EnvelopedData   version, [0] originator, recipients, encrypted content, [1] attributes
//   DigestedData    version, digest algorithm, content, digest
//   EncryptedData   version, encrypted content, [1] attributes
//   AuthenticatedData       version, [0] originator, recipients, MAC algorithm, [1] digest algorithm, content, [2] attributes,
//                           MAC, [3] attributes
//   AuthEnvelopedData       version, [0] originator, recipients, encrypted content, [1] attributes, MAC, [2] attributes (RFC 5083)
//   CompressedData          version, compression algorithm, content (RFC 3274)
//
// Messages that were written in one pass have elements of indefinite length, and strings in pieces.
#include "decoders/asn1/cms.h"

#include <cstring>
#include <iterator>

#include "core/line_facts.h"
#include "decoders/asn1/x509.h"

namespace qxview {
namespace {

constexpr uint32_t kConstructed = 0x20;
constexpr uint8_t kIndefinite = 0x80;

// How many octets stand in front of the end-of-contents of an element of indefinite length; -1 where it is not here.
int32_t LengthToEnd(Cursor c, int32_t depth) {
  const int32_t start = c.offset;
  while (Left(c) >= 2) {
    if (PeekU16(c, 0) == 0) return c.offset - start;
    if (PeekU8(c, 1) == kIndefinite) {
      if (depth >= kDeepestIndefinite) return -1;
      Cursor inner = c;
      TakeBytes(inner, 2);
      const int32_t length = LengthToEnd(inner, depth + 1);
      if (length < 0) return -1;
      TakeBytes(c, length + 4);
      continue;
    }
    const BerElement element = TakeBer(c);
    if (!element.here || IsCut(element)) return -1;
  }
  return -1;
}

// The element at the cursor, of a length that is stated or not. One whose end is not here reaches as far as the bytes do.
BerElement TakeElement(Cursor& c) {
  if (Left(c) < 2 || PeekU8(c, 1) != kIndefinite || !(PeekU8(c) & kConstructed)) return TakeBer(c);
  BerElement element{};
  element.identifier = PeekU8(c);
  Cursor inner = c;
  TakeBytes(inner, 2);
  const int32_t length = LengthToEnd(inner, 0), here = length < 0 ? Left(inner) : length;
  element.size = here + (length < 0 ? 2 : 4);
  element.contents = TakeCursor(inner, here);
  element.whole = TakeCursor(c, static_cast<int32_t>(element.size));
  element.here = true;
  return element;
}

bool Take(Cursor& c, uint32_t identifier, BerElement* element) {
  if (Left(c) < 2 || PeekU8(c) != identifier) return false;
  Cursor rest = c;
  *element = TakeElement(rest);
  if (!element->here) return false;
  c = rest;
  return true;
}

// The octets of a string, which is in one piece or in several.
Cursor OctetsOf(const Place& in, const BerElement& string) {
  if (!(string.identifier & kConstructed)) return string.contents;
  Cursor pieces = string.contents;
  BerElement piece;
  if (Take(pieces, kAsnOctetString, &piece) && Left(pieces) == 0) return piece.contents;
  pieces = string.contents;
  uint8_t* const joined = TakeFrameMemory(in.view, Left(pieces));
  int32_t used = 0;
  while (joined && Take(pieces, kAsnOctetString, &piece)) {
    const Field octets = ContentsOf(piece);
    std::memcpy(joined + used, octets.bytes, static_cast<size_t>(octets.length));
    used += octets.length;
  }
  return MakeCursor(joined, string.contents.offset, used);
}

void ShowContentInfo(const Place& in, Cursor& c, const CmsData& data, int32_t depth);

void ShowData(const Place& in, Cursor& octets, const CmsData& data) {
  if (!data.show || Left(octets) == 0) return;
  const KeyedAs keys(PacketOf(in), data.keys);
  data.show(in, octets, data.depth);
}
void ShowSigner(const Place& in, const BerElement& signer, int32_t depth);

constexpr uint8_t kData[] = {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x07, 0x01};
constexpr uint8_t kPkcs7[] = {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x07};
constexpr uint8_t kPkcs9[] = {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x09};
constexpr uint8_t kTypes[] = {0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x09, 0x10, 0x01};

// The last number of an identifier below an arc; 0 for others.
uint32_t NumberBelow(const Cursor& id, const uint8_t* arc, int32_t size) {
  if (Left(id) != size + 1) return 0;
  for (int32_t i = 0; i < size; ++i) {
    if (PeekU8(id, i) != arc[i]) return 0;
  }
  return PeekU8(id, size);
}

void ShowVersion(const Place& in, Cursor& c) {
  BerElement number;
  if (Take(c, kAsnInteger, &number)) ShowDerNumber(in, number, "Version");
}

void ShowAlgorithms(const Place& in, Cursor& c) {
  BerElement set;
  if (!Take(c, kDerSet, &set)) return;
  const Place under = Under(in, AddLine(in, WholeOf(set), "Digest Algorithms:"));
  Cursor algorithms = set.contents;
  Loop loop;
  while (MoreAt(under, algorithms, loop) && PeekU8(algorithms) == kAsnSequence) {
    ShowX509Algorithm(under, algorithms, "Digest Algorithm");
  }
  ShowDerValues(under, algorithms);
}

// The content itself, of a type that an identifier names: octets of a string.
void ShowEncapsulated(const Place& in, Cursor& c, const CmsData& data, int32_t depth) {
  BerElement content, type{}, tagged, string;
  if (!Take(c, kAsnSequence, &content)) return;
  const Place under = Under(in, AddLine(in, WholeOf(content), "Encapsulated Content:"));
  Cursor inner = content.contents;
  if (Take(inner, kAsnObjectId, &type)) ShowDerObject(under, type, "Content Type");
  if (Take(inner, DerExplicit(0), &tagged)) {
    Cursor value = tagged.contents;
    if (Take(value, kAsnOctetString, &string) || Take(value, kAsnOctetString | kConstructed, &string)) {
      Cursor octets = OctetsOf(under, string);
      const Field whole = ContentsOf(string);
      const bool isData = PeekIs(type.contents, 0, kData);
      const bool isContent = NumberBelow(type.contents, kPkcs7, sizeof kPkcs7) > 1;
      const Place at = Under(under, AddLine(under, whole, "Content: %u bytes", static_cast<uint32_t>(Left(octets))));
      if (isContent && depth < kDeepestContent) ShowContentInfo(at, octets, data, depth + 1);
      else if (isData) ShowData(at, octets, data);
      else if (PeekU8(octets) == kAsnSequence) ShowDerValues(at, octets);   // a time stamp, an indirect statement
      AddBlock(at, Rest(octets), "Content Data");
    }
    ShowDerValues(under, value);
  }
  ShowDerValues(under, inner);
}

void ShowEncrypted(const Place& in, Cursor& c) {
  BerElement content, type, octets;
  if (!Take(c, kAsnSequence, &content)) return;
  const Place under = Under(in, AddLine(in, WholeOf(content), "Encrypted Content:"));
  Cursor inner = content.contents;
  if (Take(inner, kAsnObjectId, &type)) ShowDerObject(under, type, "Content Type");
  ShowX509Algorithm(under, inner, "Content Encryption Algorithm");
  if (Take(inner, DerContext(0), &octets)) {
    AddBlock(under, ContentsOf(octets), "Encrypted Data");
  } else if (Take(inner, DerExplicit(0), &octets)) {
    BerElement piece;
    Cursor pieces = octets.contents;
    Loop loop;
    while (MoreAt(under, pieces, loop) && Take(pieces, kAsnOctetString, &piece)) {
      AddBlock(under, ContentsOf(piece), "Encrypted Data");
    }
  }
  ShowDerValues(under, inner);
}

// Certificates and lists of what was revoked, which their tags name.
void ShowCertificates(const Place& in, Cursor& c) {
  BerElement set;
  if (Take(c, DerExplicit(0), &set)) {
    const Place under = Under(in, AddLine(in, WholeOf(set), "Certificates:"));
    Cursor list = set.contents;
    Loop loop;
    while (MoreAt(under, list, loop) && PeekU8(list) == kAsnSequence) {
      const BerElement whole = TakeBer(list);
      Cursor certificate = whole.whole;
      ShowX509Certificate(under, certificate);
    }
    ShowDerValues(under, list);
  }
  if (Take(c, DerExplicit(1), &set)) {
    Cursor lists = set.contents;
    ShowDerValues(Under(in, AddLine(in, WholeOf(set), "Revocation Lists:")), lists);
  }
}

void ShowOriginator(const Place& in, Cursor& c) {
  BerElement originator;
  if (!Take(c, DerExplicit(0), &originator)) return;
  const Place under = Under(in, AddLine(in, WholeOf(originator), "Originator:"));
  Cursor inner = originator.contents;
  ShowCertificates(under, inner);
  ShowDerValues(under, inner);
}

// One certificate: by its issuer and number, or by the identifier of its key.
void ShowCertificateOf(const Place& in, Cursor& c, const char* title) {
  BerElement who, number;
  if (Take(c, DerContext(0), &who)) {
    ShowDerOctets(Under(in, AddLine(in, WholeOf(who), "%s:", title)), who, "Subject Key Identifier");
  } else if (Take(c, kAsnSequence, &who)) {
    const Place under = Under(in, AddLine(in, WholeOf(who), "%s:", title));
    Cursor inner = who.contents;
    ShowX509Name(under, inner, "Issuer");
    if (Take(inner, kAsnInteger, &number)) ShowDerOctets(under, number, "Serial Number");
    ShowDerValues(under, inner);
  }
}

void ShowAttributeValue(const Place& in, uint32_t type, Cursor& c, int32_t depth) {
  BerElement value;
  if (type == 3 && Take(c, kAsnObjectId, &value)) {
    ShowDerObject(in, value, "Content Type");
  } else if (type == 4 && Take(c, kAsnOctetString, &value)) {
    ShowDerOctets(in, value, "Message Digest");
  } else if (type == 5 && (Take(c, kDerUtcTime, &value) || Take(c, kDerGeneralizedTime, &value))) {
    ShowDerTime(in, value, "Signing Time");
  } else if (type == 6 && depth < kDeepestContent && Take(c, kAsnSequence, &value)) {
    ShowSigner(in, value, depth + 1);   // a countersignature
  } else if (type == 15 && Take(c, kAsnSequence, &value)) {
    const Place under = Under(in, AddLine(in, WholeOf(value), "Capabilities:"));
    Cursor capabilities = value.contents;
    Loop loop;
    while (MoreAt(under, capabilities, loop) && PeekU8(capabilities) == kAsnSequence) ShowX509Algorithm(under, capabilities, "Capability");
    ShowDerValues(under, capabilities);
  }
}

void ShowAttributes(const Place& in, Cursor& c, uint32_t tag, const char* title, int32_t depth = 0) {
  BerElement set, attribute, type{}, values;
  if (!Take(c, DerExplicit(tag), &set)) return;
  const Place under = Under(in, AddLine(in, WholeOf(set), "%s:", title));
  Cursor list = set.contents;
  Loop loop;
  while (MoreAt(under, list, loop) && Take(list, kAsnSequence, &attribute)) {
    Cursor inner = attribute.contents;
    const bool hasType = Take(inner, kAsnObjectId, &type);
    const char* name = hasType ? NameOfObject(type.contents) : nullptr;
    const Place at = Under(under, AddLine(under, WholeOf(attribute), "Attribute: %s", name ? name : kUnknown));
    if (hasType) ShowDerObject(at, type, "Attribute Type");
    if (hasType && Take(inner, kDerSet, &values)) {
      Cursor value = values.contents;
      ShowAttributeValue(at, NumberBelow(type.contents, kPkcs9, sizeof kPkcs9), value, depth);
      ShowDerValues(at, value);
    }
    ShowDerValues(at, inner);
  }
  ShowDerValues(under, list);
}

// keys: none Signed Attributes, Unsigned Attributes, Unprotected Attributes, Authenticated Attributes, Unauthenticated Attributes
void ShowSigner(const Place& in, const BerElement& signer, int32_t depth) {
  BerElement element;
  const Place under = Under(in, AddLine(in, WholeOf(signer), "Signer:"));
  Cursor inner = signer.contents;
  ShowVersion(under, inner);
  ShowCertificateOf(under, inner, "Signer Identifier");
  ShowX509Algorithm(under, inner, "Digest Algorithm");
  ShowAttributes(under, inner, 0, "Signed Attributes", depth);
  ShowX509Algorithm(under, inner, "Signature Algorithm");
  if (Take(inner, kAsnOctetString, &element)) ShowDerOctets(under, element, "Signature");
  ShowAttributes(under, inner, 1, "Unsigned Attributes", depth);
  ShowDerValues(under, inner);
}

void ShowSigned(const Place& in, Cursor c, const CmsData& data, int32_t depth) {
  BerElement set, signer;
  ShowVersion(in, c);
  ShowAlgorithms(in, c);
  ShowEncapsulated(in, c, data, depth);
  ShowCertificates(in, c);
  if (Take(c, kDerSet, &set)) {
    const Place under = Under(in, AddLine(in, WholeOf(set), "Signers:"));
    Cursor signers = set.contents;
    Loop loop;
    while (MoreAt(under, signers, loop) && Take(signers, kAsnSequence, &signer)) ShowSigner(under, signer, 0);
    ShowDerValues(under, signers);
  }
  ShowDerValues(in, c);
}

void ShowKey(const Place& in, Cursor& c) {
  BerElement key;
  if (Take(c, kAsnOctetString, &key)) ShowDerOctets(in, key, "Encrypted Key");
}

// What keys are agreed on with: the originator's, and a key for each recipient.
void ShowAgreement(const Place& in, Cursor& c) {
  BerElement element, each, key;
  if (Take(c, DerExplicit(0), &element)) {
    Cursor originator = element.contents;
    if (Take(originator, DerExplicit(1), &key)) {
      const Place under = Under(in, AddLine(in, WholeOf(key), "Originator Public Key:"));
      Cursor inner = key.contents;
      ShowX509Algorithm(under, inner, "Public Key Algorithm");
      if (Take(inner, kAsnBitString, &each)) {
        Cursor octets = ShowDerBits(under, each);
        const Field point = Rest(octets);
        AddLine(under, point, "Public Key: %s", HexDigits(point));
      }
      ShowDerValues(under, inner);
    }
    ShowCertificateOf(in, originator, "Originator Identifier");
  }
  if (Take(c, DerExplicit(1), &element)) {
    Cursor material = element.contents;
    if (Take(material, kAsnOctetString, &key)) ShowDerOctets(in, key, "User Keying Material");
  }
  ShowX509Algorithm(in, c, "Key Encryption Algorithm");
  if (!Take(c, kAsnSequence, &element)) return;
  Cursor keys = element.contents;
  Loop loop;
  while (MoreAt(in, keys, loop) && Take(keys, kAsnSequence, &each)) {
    const Place under = Under(in, AddLine(in, WholeOf(each), "Recipient Key:"));
    Cursor inner = each.contents;
    if (Take(inner, DerExplicit(0), &key)) {
      Cursor id = key.contents;
      if (Take(id, kAsnOctetString, &key)) ShowDerOctets(under, key, "Subject Key Identifier");
      ShowDerValues(under, id);
    } else {
      ShowCertificateOf(under, inner, "Recipient Identifier");
    }
    ShowKey(under, inner);
    ShowDerValues(under, inner);
  }
}

void ShowRecipient(const Place& in, Cursor& c) {
  BerElement recipient, element;
  constexpr const char* kKinds[] = {"Key Transport", "Key Agreement", "Key Encryption Key", "Password", "Other"};
  recipient = TakeElement(c);
  if (!recipient.here) return;
  const uint32_t kind = recipient.identifier == kAsnSequence ? 0 : recipient.identifier & 0x1F;
  const Place under = Under(in, AddLine(in, WholeOf(recipient), "Recipient: %s", kind < std::size(kKinds) ? kKinds[kind] : kUnknown));
  Cursor inner = recipient.contents;
  if (kind == 4 && Take(inner, kAsnObjectId, &element)) ShowDerObject(under, element, "Recipient Type");
  ShowVersion(under, inner);
  if (kind == 0) {
    ShowCertificateOf(under, inner, "Recipient Identifier");
  } else if (kind == 1) {
    ShowAgreement(under, inner);
  } else if (kind == 2 && Take(inner, kAsnSequence, &element)) {
    Cursor id = element.contents;
    if (Take(id, kAsnOctetString, &element)) ShowDerOctets(under, element, "Key Identifier");
    if (Take(id, kDerGeneralizedTime, &element)) ShowDerTime(under, element, "Date");
    ShowDerValues(under, id);
  } else if (kind == 3 && Take(inner, DerExplicit(0), &element)) {
    const Place at = Under(under, AddLine(under, WholeOf(element), "Key Derivation Algorithm:"));
    Cursor algorithm = element.contents;   // a sequence whose tag is another one
    BerElement id;
    if (Take(algorithm, kAsnObjectId, &id)) ShowDerObject(at, id, "Algorithm");
    ShowDerValues(at, algorithm);
  }
  ShowX509Algorithm(under, inner, "Key Encryption Algorithm");
  ShowKey(under, inner);
  ShowDerValues(under, inner);
}

void ShowRecipients(const Place& in, Cursor& c) {
  BerElement set;
  ShowOriginator(in, c);
  if (!Take(c, kDerSet, &set)) return;
  const Place under = Under(in, AddLine(in, WholeOf(set), "Recipients:"));
  Cursor recipients = set.contents;
  Loop loop;
  while (MoreAt(under, recipients, loop)) ShowRecipient(under, recipients);
}

void ShowMac(const Place& in, Cursor& c) {
  BerElement mac;
  if (Take(c, kAsnOctetString, &mac)) ShowDerOctets(in, mac, "Message Authentication Code");
}

void ShowAuthenticated(const Place& in, Cursor c, const CmsData& data, int32_t depth) {
  BerElement algorithm, id;
  ShowVersion(in, c);
  ShowRecipients(in, c);
  ShowX509Algorithm(in, c, "MAC Algorithm");
  if (Take(c, DerExplicit(1), &algorithm)) {
    Cursor inner = algorithm.contents;
    if (Take(inner, kAsnObjectId, &id)) ShowDerObject(in, id, "Digest Algorithm");
    ShowDerValues(in, inner);
  }
  ShowEncapsulated(in, c, data, depth);
  ShowAttributes(in, c, 2, "Authenticated Attributes");
  ShowMac(in, c);
  ShowAttributes(in, c, 3, "Unauthenticated Attributes");
  ShowDerValues(in, c);
}

void ShowContent(const Place& in, const Cursor& type, Cursor c, const CmsData& data, int32_t depth) {
  const uint32_t kind = NumberBelow(type, kPkcs7, sizeof kPkcs7), other = NumberBelow(type, kTypes, sizeof kTypes);
  BerElement content;
  if (kind == 1 && (Take(c, kAsnOctetString, &content) || Take(c, kAsnOctetString | kConstructed, &content))) {
    Cursor octets = OctetsOf(in, content);
    ShowData(in, octets, data);
    AddBlock(in, Rest(octets), "Content Data");
    return ShowDerValues(in, c);
  }
  if (!Take(c, kAsnSequence, &content)) return ShowDerValues(in, c);
  Cursor inner = content.contents;
  if (kind == 2) {
    ShowSigned(in, inner, data, depth);
  } else if (kind == 3 || kind == 6 || other == 23) {
    ShowVersion(in, inner);
    if (kind != 6) ShowRecipients(in, inner);
    ShowEncrypted(in, inner);
    ShowAttributes(in, inner, 1, other == 23 ? "Authenticated Attributes" : "Unprotected Attributes");
    ShowMac(in, inner);
    ShowAttributes(in, inner, 2, "Unauthenticated Attributes");
    ShowDerValues(in, inner);
  } else if (kind == 5 || other == 9) {
    BerElement digest;
    ShowVersion(in, inner);
    ShowX509Algorithm(in, inner, kind == 5 ? "Digest Algorithm" : "Compression Algorithm");
    ShowEncapsulated(in, inner, data, depth);
    if (Take(inner, kAsnOctetString, &digest)) ShowDerOctets(in, digest, "Digest");
    ShowDerValues(in, inner);
  } else if (other == 2) {
    ShowAuthenticated(in, inner, data, depth);
  } else {
    ShowDerValues(in, inner);
  }
}

void ShowContentInfo(const Place& in, Cursor& c, const CmsData& data, int32_t depth) {
  BerElement info, type{}, tagged;
  if (!Take(c, kAsnSequence, &info)) return;
  Cursor inner = info.contents;
  const bool hasType = Take(inner, kAsnObjectId, &type);
  const char* name = hasType ? NameOfObject(type.contents) : nullptr;
  const Place under = Under(in, AddLine(in, WholeOf(info), "Cryptographic Message: %s", name ? name : kUnknown));
  if (hasType) ShowDerObject(under, type, "Content Type");
  if (hasType && Take(inner, DerExplicit(0), &tagged)) ShowContent(under, type.contents, tagged.contents, data, depth);
  ShowDerValues(under, inner);
}

}  // namespace

void ShowCms(const Place& in, Cursor& c, const CmsData& data) {
  const CmsData own{data.show, data.depth, PacketOf(in).protocol};
  const KeyedAs keys(PacketOf(in), "cms");
  ShowContentInfo(in, c, own, 0);
  AddBlock(in, Rest(c), "Data");
}

}  // namespace qxview
