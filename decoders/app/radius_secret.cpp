#include "decoders/app/radius_secret.h"

#include <cstring>

#include "core/crypto.h"
#include "core/decoder.h"
#include "decoders/states.h"

namespace qxview {
namespace {

constexpr int32_t kHeadSize = 4;   // code, identifier and length
constexpr int32_t kAttributesAt = kHeadSize + kRadiusAuthenticatorSize;
constexpr uint8_t kZeros[kRadiusAuthenticatorSize] = {};
constexpr ByteSpan kZeroAuthenticator = {kZeros, kRadiusAuthenticatorSize};

enum class Kind { kRandom, kProved, kReply };

// How a packet's authenticator comes about: a random number, a digest over the packet, or one over the request's, too.
Kind KindOf(uint32_t code) {
  switch (code) {
    case 1: case 7: case 12: case 13: return Kind::kRandom;
    case 4: case 40: case 43: return Kind::kProved;
    default: return Kind::kReply;
  }
}

bool SameBytes(const uint8_t* made, const Field& field) {
  return field.here && std::memcmp(made, field.bytes, kMd5Size) == 0;
}

void AddStatus(const Place& in, const Field& field, const char* label, const RadiusSecret& secret, bool holds) {
  const char* status = !secret.packet.here                       ? "Not Checked (Packet Cut)"
                       : !secret.isRequest && !secret.hasRequest ? "Not Checked (Request Not Seen)"
                       : holds                                   ? "Valid"
                                                                 : "Invalid";
  AddLine(in, field, "%s: %s", label, status);
}

}  // namespace

RadiusSecret PrepareRadiusSecret(const Place& at, const Cursor& packet) {
  RadiusSecret secret{};
  const char* text = at.view->engine->settings.radiusSecret;
  secret.text = {reinterpret_cast<const uint8_t*>(text), static_cast<int32_t>(std::strlen(text))};
  if (secret.text.length == 0) return secret;
  secret.packet = PeekBytes(packet, 0, static_cast<int32_t>(PeekU16(packet, 2)));
  secret.isRequest = KindOf(PeekU8(packet)) != Kind::kReply;
  const RequestKey key = RequestOf(PacketOf(at), PeekU8(packet, 1));
  const Field own = PeekBytes(packet, kHeadSize, kRadiusAuthenticatorSize);
  if (secret.isRequest && own.here) {
    std::memcpy(secret.request.authenticator, own.bytes, sizeof secret.request.authenticator);
    if (!PacketOf(at).quoted) Remember(at.view, kRadiusRequests, key, secret.request);
    secret.hasRequest = true;
  } else if (const RadiusRequest* request = Recall(at.view, kRadiusRequests, key)) {
    secret.request = *request;
    secret.hasRequest = true;
  }
  return secret;
}

void ShowAuthenticatorStatus(const Place& in, const RadiusSecret& secret) {
  const Kind kind = KindOf(PeekU8(secret.packet));
  if (secret.text.length == 0 || (secret.packet.here && kind == Kind::kRandom)) return;
  const Field own = Slice(secret.packet, kHeadSize, kRadiusAuthenticatorSize);
  const Field attributes = Slice(secret.packet, kAttributesAt, secret.packet.length - kAttributesAt);
  const ByteSpan before =
      kind == Kind::kProved ? kZeroAuthenticator : ByteSpan{secret.request.authenticator, kRadiusAuthenticatorSize};
  uint8_t made[kMd5Size];
  HashOf(in.view, HashKind::kMd5, {BytesOf(Slice(secret.packet, 0, kHeadSize)), before, BytesOf(attributes), secret.text},
         made);
  AddStatus(in, own.here ? own : Stated(secret.packet.offset, 0), "Authenticator Status", secret, SameBytes(made, own));
}

void ShowMessageAuthenticatorStatus(const Place& in, const RadiusSecret& secret, const Field& value) {
  if (secret.text.length == 0 || value.length != kMd5Size) return;
  const Field& packet = secret.packet;
  const int32_t at = value.offset - packet.offset, behind = at + kMd5Size;
  const bool isProved = KindOf(PeekU8(packet)) == Kind::kProved;
  const ByteSpan authenticator =
      isProved ? kZeroAuthenticator : ByteSpan{secret.request.authenticator, kRadiusAuthenticatorSize};
  uint8_t made[kMd5Size];
  HmacOf(in.view, HashKind::kMd5, secret.text,
         {BytesOf(Slice(packet, 0, kHeadSize)), authenticator, BytesOf(Slice(packet, kAttributesAt, at - kAttributesAt)),
          kZeroAuthenticator, BytesOf(Slice(packet, behind, packet.length - behind))},
         made);
  AddStatus(in, value, "Message-Authenticator Status", secret, SameBytes(made, value));
}

Cursor OpenRadiusValue(const Place& in, const RadiusSecret& secret, const char* name, const Field& value,
                       const Field& salt, uint8_t (&buffer)[kMostRadiusValue]) {
  const Cursor nothing = MakeCursor(nullptr, value.offset, 0);
  if (secret.text.length == 0 || value.length < 1 || value.length > kMostRadiusValue) return nothing;
  if (!secret.hasRequest) {
    AddLine(in, value, "%s: Not Decrypted (Request Not Seen)", name);
    return nothing;
  }
  // Each block is hidden by a digest over the one before it as it was sent.
  ByteSpan before = {secret.request.authenticator, kRadiusAuthenticatorSize};
  for (int32_t at = 0; at < value.length; at += kMd5Size) {
    uint8_t pad[kMd5Size];
    HashOf(in.view, HashKind::kMd5, {secret.text, before, at == 0 ? BytesOf(salt) : ByteSpan{}}, pad);
    for (int32_t i = 0; i < kMd5Size && at + i < value.length; ++i) {
      buffer[at + i] = static_cast<uint8_t>(PeekU8(value, at + i) ^ pad[i]);
    }
    before = BytesOf(Slice(value, at, kMd5Size));
  }
  if (!salt.here) return MakeCursor(buffer, value.offset, value.length);
  if (buffer[0] >= value.length) {
    AddLine(in, value, "%s: Not Decrypted (Wrong Secret)", name);
    return nothing;
  }
  return MakeCursor(buffer + 1, value.offset + 1, buffer[0]);
}

}  // namespace qxview
