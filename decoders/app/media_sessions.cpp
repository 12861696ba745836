#include "decoders/app/media_sessions.h"

#include "core/states.h"
#include "decoders/states.h"

namespace qxview {
namespace {

MediaKey KeyOf(const AddressSlot& address, uint16_t port) {
  MediaKey key{};
  std::memcpy(key.address, address.address, sizeof key.address);
  key.port = port;
  key.kind = static_cast<uint16_t>(address.kind);
  return key;
}

// "192.0.2.1" into the last four octets.
bool ReadIPv4(const Field& text, uint8_t* out) {
  int32_t part = 0, digits = 0;
  uint32_t value = 0;
  for (int32_t i = 0; i <= text.length; ++i) {
    const uint32_t c = i < text.length ? PeekU8(text, i) : '.';
    if (c >= '0' && c <= '9' && digits < 3) {
      value = value * 10 + (c - '0');
      ++digits;
    } else if (c == '.' && digits > 0 && value <= 255 && part < 4) {
      out[part++] = static_cast<uint8_t>(value);
      value = 0;
      digits = 0;
    } else {
      return false;
    }
  }
  return part == 4;
}

uint32_t DigitOf(uint32_t c) {
  if (c >= '0' && c <= '9') return c - '0';
  c |= 0x20;
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : 16;
}

// "2001:db8::1"; the groups behind "::" stand at the end.
bool ReadIPv6(const Field& text, uint8_t* out) {
  uint16_t groups[8] = {};
  int32_t count = 0, gap = -1, at = 0;
  while (at < text.length) {
    if (PeekU16(text, at) == 0x3A3A && gap < 0) {
      gap = count;
      at += 2;
      continue;
    }
    if (count > 0 && gap != count) {
      if (PeekU8(text, at) != ':') return false;
      ++at;
    }
    uint32_t value = 0;
    int32_t digits = 0;
    for (; digits < 4 && at < text.length && DigitOf(PeekU8(text, at)) < 16; ++digits, ++at) {
      value = value << 4 | DigitOf(PeekU8(text, at));
    }
    if (digits == 0 || count == 8) return false;
    groups[count++] = static_cast<uint16_t>(value);
  }
  if (gap < 0 ? count != 8 : count == 8) return false;
  for (int32_t i = 0; i < count; ++i) {
    const int32_t place = gap >= 0 && i >= gap ? 8 - count + i : i;
    out[2 * place] = static_cast<uint8_t>(groups[i] >> 8);
    out[2 * place + 1] = static_cast<uint8_t>(groups[i]);
  }
  return true;
}

}  // namespace

bool ReadAddressText(const Field& text, AddressSlot* out) {
  AddressSlot slot{};
  slot.kind = 1;
  if (ReadIPv4(text, slot.address + 12)) {
    *out = slot;
    return (slot.address[12] | slot.address[13] | slot.address[14] | slot.address[15]) != 0;   // zeros: nothing is to be sent
  }
  slot = AddressSlot{};
  slot.kind = 2;
  if (!ReadIPv6(text, slot.address)) return false;
  *out = slot;
  return true;
}

void AnnounceMedia(const Place& at, const AddressSlot& address, uint16_t port, const MediaSession& session) {
  if (PacketOf(at).quoted) return;
  Remember(at.view, kMediaSessions, KeyOf(address, port), session);
}

const MediaSession* FindMedia(const View* view) {
  const PacketState& packet = view->context->packet;
  if (const MediaSession* session = Recall(view, kMediaSessions, KeyOf(packet.destination, packet.destinationPort))) return session;
  if (const MediaSession* session = Recall(view, kMediaSessions, KeyOf(packet.source, packet.sourcePort))) return session;
  if (const MediaSession* session = Recall(view, kMediaSessions, KeyOf(packet.source, 0))) return session;
  return Recall(view, kMediaSessions, KeyOf(packet.destination, 0));
}

const MediaFormat* FindMediaFormat(const MediaSession* session, uint32_t payloadType) {
  for (int32_t i = 0; session && i < session->formats; ++i) {
    if (session->format[i].payloadType == payloadType) return &session->format[i];
  }
  return nullptr;
}

}  // namespace qxview
