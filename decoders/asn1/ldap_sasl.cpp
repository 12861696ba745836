// Buffers of SASL security layers (RFC 4422 3.7): four octets of length, then a token of the mechanism.
//
//   Kerberos (RFC 4121)     05 04, flags, FF, extra count (2), rotation (2), sequence (8), data and checksum
//   GSS-API (RFC 1964)      60, length, OID, 02 01, signing (2), sealing (2), FFFF, sequence (8), checksum (8), data
//   NTLM                    01 00 00 00, checksum (8), sequence (4), data
//   DIGEST-MD5 (RFC 2831)   data, authentication code (10), 00 01, sequence (4)
//
// Where the layer signs and does not encrypt the data are messages.
#include "decoders/asn1/ldap.h"

namespace qxview {
namespace {

constexpr uint32_t kGssToken = 0x60, kKerberosWrap = 0x0504, kGssWrap = 0x0201;
constexpr uint32_t kNtlmVersion = 0x01000000;
constexpr uint32_t kMostBuffer = 0xFFFFFF;  // what a mechanism can agree on
constexpr int32_t kLengthSize = 4;

// What is left of the data: messages in the clear, or a dump.
void ShowData(const Place& at, const Place& in, Cursor& c, BerWalk& walk, const char* title) {
  BerElement message;
  if (StartsMessage(c, message)) ShowLdapMessages(at, c, walk);
  AddBlock(in, Rest(c), title);
}

void ShowKerberos(const Place& at, const Place& in, Cursor& c, BerWalk& walk) {
  const Field token = TakeU16(c);
  AddLine(in, token, "Token ID: 0x%.04X = Wrap (RFC 4121)", token.value);
  const Field flags = TakeU8(c);
  const BitPicture subkey = BitsOf(flags, 5, 1), sealed = BitsOf(flags, 6, 1), acceptor = BitsOf(flags, 7, 1);
  const Place bits = Under(in, AddLine(in, flags, "Flags: 0x%.02X", flags.value));
  AddBitLine(bits, flags, "%s: Acceptor Subkey = %s", subkey.picture, TrueOrFalse(subkey.value));
  AddBitLine(bits, flags, "%s: Sealed = %s", sealed.picture, TrueOrFalse(sealed.value));
  AddBitLine(bits, flags, "%s: Sent By Acceptor = %s", acceptor.picture, TrueOrFalse(acceptor.value));
  const Field filler = TakeU8(c), extra = TakeU16(c), rotation = TakeU16(c);
  AddLine(in, filler, "Filler: 0x%.02X", filler.value);
  AddLine(in, extra, "Extra Count: %u", extra.value);
  AddLine(in, rotation, "Right Rotation Count: %u", rotation.value);
  const WideField sequence = TakeU64(c);
  AddLine(in, sequence, "Sequence Number: %I64u", sequence.wide);
  if (sealed.value) {
    AddBlock(in, Rest(c), "Encrypted Data");
    return;
  }
  // The checksum stands behind the data, or is turned round to the front.
  const int32_t checksum = static_cast<int32_t>(extra.value);
  const bool isTurned = rotation.value == extra.value;
  if (isTurned) AddBlock(in, TakeBytes(c, checksum), "Checksum");
  Cursor data = TakeCursor(c, isTurned ? Left(c) : Left(c) - checksum);
  ShowData(at, in, data, walk, "Signed Data");
  AddBlock(in, Rest(c), "Checksum");
}

void ShowGss(const Place& at, const Place& in, Cursor& c, BerWalk& walk) {
  DecodeAsnHeader(in, c, "Token");
  AsnObjectNames names;
  AsnResult object{};
  const LineHandle line = AddLine(in, Ahead(c, 0), "Mechanism:");
  const int32_t start = c.offset;
  DecodeAsnObjectId(Beneath(in, line), c, names, object);
  SetRange(in, line, start, c.offset - start);
  AppendToLine(in, line, " %s", static_cast<const char*>(names.dotted));
  const Field token = TakeU16(c);
  AddLine(in, token, "Token ID: 0x%.04X%s", token.value, token.value == kGssWrap ? " = Wrap (RFC 1964)" : "");
  if (!token.here || token.value != kGssWrap) {
    AddBlock(in, Rest(c), "Token Data");
    return;
  }
  const Field signing = TakeU16(c), sealing = TakeU16(c), filler = TakeU16(c);
  AddLine(in, signing, "Signing Algorithm: 0x%.04X", signing.value);
  AddLine(in, sealing, "Sealing Algorithm: 0x%.04X", sealing.value);
  AddLine(in, filler, "Filler: 0x%.04X", filler.value);
  const Field sequence = TakeBytes(c, 8), checksum = TakeBytes(c, 8);
  AddLine(in, sequence, "Encrypted Sequence Number: %s", HexText(sequence));
  AddLine(in, checksum, "Checksum: %s", HexText(checksum));
  if (sealing.value != 0xFFFF) {
    AddBlock(in, Rest(c), "Encrypted Data");
    return;
  }
  const Field confounder = TakeBytes(c, 8);
  AddLine(in, confounder, "Confounder: %s", HexText(confounder));
  ShowData(at, in, c, walk, "Signed Data");
}

void ShowNtlm(const Place& at, const Place& in, Cursor& c, BerWalk& walk) {
  const Field version = TakeLittleU32(c), checksum = TakeBytes(c, 8), sequence = TakeLittleU32(c);
  AddLine(in, version, "NTLM Signature Version: %u", version.value);
  AddLine(in, checksum, "Checksum: %s", HexText(checksum));
  AddLine(in, sequence, "Sequence Number: %u", sequence.value);
  ShowData(at, in, c, walk, "Encrypted Data");
}

void ShowDigest(const Place& at, const Place& in, Cursor& c, BerWalk& walk) {
  ShowLdapMessages(at, c, walk);
  constexpr int32_t kCode = 10, kTrailer = kCode + 6;
  if (Left(c) != kTrailer) {
    AddBlock(in, Rest(c), "Signature");
    return;
  }
  const Field code = TakeBytes(c, kCode), version = TakeU16(c), sequence = TakeU32(c);
  AddLine(in, code, "Message Authentication Code: %s", HexText(code));
  AddLine(in, version, "Message Type: %u", version.value);
  AddLine(in, sequence, "Sequence Number: %u", sequence.value);
}

enum class Token { kNone, kKerberos, kGss, kNtlm, kDigest };

Token TokenOf(const Cursor& c) {
  constexpr int32_t kKerberosHeader = 16;
  BerElement message;
  if (Left(c) >= kKerberosHeader && PeekU16(c) == kKerberosWrap && PeekU8(c, 3) == 0xFF) return Token::kKerberos;
  if (Left(c) >= kKerberosHeader && PeekU32(c) == kNtlmVersion) return Token::kNtlm;
  if (StartsMessage(c, message)) return Token::kDigest;
  const BerElement token = PeekBer(c);
  const bool isGss = token.identifier == kGssToken && PeekBer(token.contents).identifier == kAsnObjectId;
  return isGss ? Token::kGss : Token::kNone;
}

}  // namespace

bool ShowSaslBuffer(const Place& at, Cursor& c, BerWalk& walk) {
  if (Left(c) <= kLengthSize || walk.elementsLeft < 1) return false;
  const uint32_t size = PeekU32(c);
  const uint32_t left = static_cast<uint32_t>(Left(c) - kLengthSize);
  if (size < 1 || size > kMostBuffer) return false;
  Cursor ahead = c;
  TakeBytes(ahead, kLengthSize);
  Cursor data = TakeCursor(ahead, size);
  const Token token = TokenOf(data);
  if (token == Token::kNone && size != left) return false;
  --walk.elementsLeft;
  const Field range = Ahead(c, kLengthSize + Left(data));
  const LineHandle line = size > left ? AddLine(at, range, "LDAP: SASL Buffer, %u of %u Bytes", left, size)
                                      : AddLine(at, range, "LDAP: SASL Buffer, %u Bytes", size);
  const Place in = Under(at, line);
  const Field length = TakeU32(c);
  AddLine(in, length, "SASL Buffer Length: %u Bytes", length.value);
  c = ahead;
  switch (token) {
    case Token::kKerberos:
      ShowKerberos(at, in, data, walk);
      break;
    case Token::kGss:
      ShowGss(at, in, data, walk);
      break;
    case Token::kNtlm:
      ShowNtlm(at, in, data, walk);
      break;
    case Token::kDigest:
      ShowDigest(at, in, data, walk);
      break;
    case Token::kNone:
      AddBlock(in, Rest(data), "Encrypted Data");
      break;
  }
  return true;
}

}  // namespace qxview
