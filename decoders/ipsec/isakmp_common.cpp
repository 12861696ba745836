// What both versions of the Internet Key Exchange show alike: attributes, certificates, the marks of vendors.
#include "core/line_facts.h"
#include "decoders/asn1/x509.h"
#include "decoders/ipsec/isakmp.h"
#include "decoders/ipsec/isakmp_names.h"

namespace qxview {
namespace {

constexpr auto kFormatNames = SortedNames({{0, "Type/Length/Value"}, {1, "Type/Value"}});
constexpr auto kAttributeHead = Rows<Ike>({
    Word(2), Flag(0, "Attribute Format", kFormatNames).Into(&Ike::part),
    Bits(1, 15, "Attribute Type").Into(&Ike::type)});
constexpr auto kAttributeLength = Rows<Ike>({Number(2, "Attribute Length").Into(&Ike::length)});

constexpr auto kEncoding = Rows<Ike>({
    Number(1, "Certificate Encoding", kIkeEncodingNames).Note(", %s").Into(&Ike::type)});
constexpr auto kCertificate = Rows<Ike>({Shown<Ike>("Certificate Data", ShowIkeOpaque)});
constexpr int32_t kHashSize = 20;
constexpr auto kAuthority = Rows<Ike>({Bytes(20, "Certificate Authority Key Hash")});
constexpr auto kHashAndUrl = Rows<Ike>({Bytes(20, "Certificate Hash"), Text(0, "Certificate URL")});

constexpr auto kSpi = Rows<Ike>({Bytes(0, "SPI").SizedBy(&Ike::spiSize)});

// A mark is what its maker chose, most often an MD5 sum of a text; versions and capabilities may follow it.
struct Vendor {
  uint64_t first, second;   // of marks shorter than 16 octets the rest is zero
  uint8_t size;
  const char* name;
};
constexpr Vendor kVendors[] = {
#include "decoders/ipsec/isakmp_vendors.inc"
};

const Vendor* FindVendor(const Cursor& c) {
  for (const Vendor& vendor : kVendors) {
    const Field mark = PeekBytes(c, 0, vendor.size);
    if (!mark.here) continue;
    uint64_t words[2] = {0, 0};
    for (int32_t i = 0; i < vendor.size; ++i) words[i / 8] |= uint64_t{PeekU8(mark, i)} << (56 - i % 8 * 8);
    if (words[0] == vendor.first && words[1] == vendor.second) return &vendor;
  }
  return nullptr;
}

bool IsPrintable(const Field& field) {
  for (int32_t i = 0; i < field.length; ++i) {
    if (PeekU8(field, i) < ' ' || PeekU8(field, i) > '~') return false;
  }
  return field.length > 3;
}

}  // namespace

void ShowIkeNumber(const Place& in, Cursor& c, const char* label, Ike&) {
  constexpr int32_t kMostNumber = 8;
  const Field field = Rest(c);
  if (field.length > kMostNumber) {
    AddLine(in, field, "%s: %s", label, HexText(field));
    return;
  }
  uint64_t value = 0;
  for (int32_t i = 0; i < field.length; ++i) value = value << 8 | PeekU8(field, i);
  AddLine(in, field, "%s: %I64u", label, value);
  AppendToParent(in, field, ", %I64u", value);
}

void ShowIkeOpaque(const Place& in, Cursor& c, const char* label, Ike&) {
  constexpr int32_t kMostShown = 128;
  const Field field = Rest(c);
  if (field.length <= kMostShown) {
    AddLine(in, field, "%s: %s", label, HexText(field));
  } else {
    AddLine(in, field, "%s: %s... (%d bytes)", label, HexText(Slice(field, 0, kMostShown)), field.length);
  }
}

void ShowIkeAttributes(const Place& in, Cursor& c, ChoiceSpan<Ike> attributes, Ike& ike) {
  constexpr int32_t kHead = 4;
  Loop loop;
  while (Left(c) >= kHead && MoreAt(in, c, loop)) {
    const bool isShort = PeekU16(c) >> 15;
    const int64_t size = isShort ? kHead : kHead + int64_t{PeekU16(c, 2)};
    const Choice<Ike>* choice = FindChoice<Ike>(attributes, PeekU16(c) & 0x7FFF);
    Cursor attribute = TakeCursor(c, size);
    const Place under = Under(in, AddLine(in, Ahead(attribute, Left(attribute)), "Attribute: %s",
                                          choice ? choice->name : kUnknown));
    ShowRows<Ike>(under, attribute, kAttributeHead, ike);
    if (!isShort) ShowRows<Ike>(under, attribute, kAttributeLength, ike);
    if (Left(attribute) > 0) ShowChoice<Ike>(under, attribute, choice, ike);
  }
}

namespace {

constexpr auto kProposalSpi = Rows<Ike>({Bytes(0, "SPI").SizedBy(&Ike::spiSize)});
constexpr int32_t kPartHeader = 4;

// Whether a proposal or a transform begins here, whose length says more than its own header.
bool HasPart(const Cursor& c) { return Left(c) >= kPartHeader && PeekU16(c, 2) >= kPartHeader; }

void ShowTransforms(const Place& in, Cursor& c, const IkeProposalForm& form, Ike& ike) {
  Loop loop;
  while (HasPart(c) && MoreAt(in, c, loop)) {
    Cursor transform = TakeCursor(c, PeekU16(c, 2));
    const Place under = Under(in, AddLine(in, Ahead(transform, Left(transform)), "Transform"));
    ShowRows<Ike>(under, transform, form.head, ike);
    form.showTransform(under, transform, ike);
    transform.ranShort = false;   // what is left of a transform that is cut
    AddBlock(under, Rest(transform), "Transform Data");
  }
}

}  // namespace

void ShowIkeProposals(const Place& in, Cursor& c, const IkeProposalForm& form, Ike& ike) {
  Loop loop;
  while (HasPart(c) && MoreAt(in, c, loop)) {
    Cursor proposal = TakeCursor(c, PeekU16(c, 2));
    const Place under = Under(in, AddLine(in, Ahead(proposal, Left(proposal)), "Proposal"));
    ShowRows<Ike>(under, proposal, form.head, ike);
    ShowRows<Ike>(under, proposal, form.proposal, ike);
    if (ike.spiSize.value > 0) ShowRows<Ike>(under, proposal, kProposalSpi, ike);
    ShowTransforms(under, proposal, form, ike);
    proposal.ranShort = false;   // what is left of a proposal that is cut
    AddBlock(under, Rest(proposal), "Proposal Data");
  }
}

namespace {

constexpr uint32_t kSignature = 4, kExchange = 5, kAttribute = 10, kOcsp = 14, kRawKey = 15;   // encodings
bool IsCertificate(uint32_t encoding) {
  return encoding == kSignature || encoding == kExchange || encoding == kAttribute;
}

void ShowOfX509(const Place& in, Cursor& c, uint32_t encoding) {
  const KeyedAs keys(PacketOf(in), "x509");
  if (IsCertificate(encoding)) {
    ShowX509Certificate(in, c);
  } else if (encoding == kOcsp) {
    ShowOcspResponse(in, c);
  } else {
    ShowX509PublicKey(in, c);
  }
}
void ShowAuthority(const Place& in, Cursor& c) {
  const KeyedAs keys(PacketOf(in), "x509");
  ShowX509Name(in, c, "Certificate Authority");
}

// A certificate that does not start as one is shown as it is.
void ShowEncoded(const Place& in, Cursor& c, Ike& ike) {
  constexpr uint32_t kSequence = 0x30;
  const uint32_t encoding = ike.type.value;
  if (PeekU8(c) == kSequence && (IsCertificate(encoding) || encoding == kOcsp || encoding == kRawKey)) {
    ShowOfX509(in, c, encoding);
  } else {
    ShowRows<Ike>(in, c, kCertificate, ike);
  }
}

}  // namespace

void ShowIkeCertificate(const Place& in, Cursor& c, Ike& ike) {
  constexpr uint32_t kHashAndUrlFirst = 12, kHashAndUrlLast = 13;
  ShowRows<Ike>(in, c, kEncoding, ike);
  const bool isFar = ike.type.value >= kHashAndUrlFirst && ike.type.value <= kHashAndUrlLast && Left(c) > kHashSize;
  if (isFar) {
    ShowRows<Ike>(in, c, kHashAndUrl, ike);
  } else if (Left(c) > 0) {
    ShowEncoded(in, c, ike);
  }
}

// Authorities: version 1 asks by their names, version 2 by the hashes of their keys.
void ShowIkeCertificateRequest(const Place& in, Cursor& c, Ike& ike) {
  ShowRows<Ike>(in, c, kEncoding, ike);
  if (!ike.isSecond && Left(c) > 0) return ShowAuthority(in, c);
  Loop loop;
  while (Left(c) >= kHashSize && MoreAt(in, c, loop)) ShowRows<Ike>(in, c, kAuthority, ike);
  if (Left(c) > 0) ShowRows<Ike>(in, c, kCertificate, ike);
}

void ShowIkeName(const Place& in, Cursor& c, Ike& ike) {
  constexpr uint32_t kDistinguished = 9;
  const KeyedAs keys(PacketOf(in), "x509");
  if (ike.type.value == kDistinguished) {
    ShowX509Name(in, c, "Distinguished Name");
  } else {
    ShowGeneralName(in, c, "General Name");
  }
}

void ShowIkeVendor(const Place& in, Cursor& c, Ike&) {
  const Field whole = PeekBytes(c, 0, Left(c));
  const Vendor* vendor = FindVendor(c);
  if (vendor) {
    AddLine(in, whole, "Vendor ID: %s (%s)", HexDigits(whole), vendor->name);
    AppendToParent(in, whole, ", %s", vendor->name);
    TakeBytes(c, vendor->size);
    const Field rest = Rest(c);
    AddLine(in, rest, "Version and Capabilities: %s", HexText(rest));
  } else if (IsPrintable(whole)) {
    AddLine(in, Rest(c), "Vendor ID: %s", Text(whole));
    AppendToParent(in, whole, ", %s", Text(whole));
  } else {
    AddLine(in, Rest(c), "Vendor ID: %s", HexDigits(whole));
  }
}

void ShowIkeSpis(const Place& in, Cursor& c, Ike& ike) {
  const uint32_t count = ike.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) ShowRows<Ike>(in, c, kSpi, ike);
}

}  // namespace qxview
