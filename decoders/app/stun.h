// STUN: what its files share, and what dispatching asks of it.
#pragma once
#include "core/decoder.h"

namespace qxview {

constexpr int32_t kStunProtocol = 0x10243;   // as definitions name it
constexpr uint32_t kStunCookie = 0x2112A442;
constexpr int32_t kStunHeaderSize = 20;

// Whether the bytes start a message with the cookie, or are a classic one to the last byte; over TCP, whether they start one
// with the cookie, behind a length or not; whether they start anything that STUN's ports carry: a message with or without the
// cookie, one behind a length, channel data.
bool LooksLikeStun(const Cursor& c);
bool LooksLikeStunOverTcp(const Cursor& c);
bool StartsStun(const Cursor& c);

// A message while it is decoded.
struct Stun {
  Place top;             // the message's line, which says the main addresses as well
  Field message;         // header and attributes, as far as they are there
  Field mask;   // cookie and transaction ID, by which addresses are hidden
  bool isClassic;        // RFC 3489: without a cookie
  bool toldMapped, toldPeer;   // what the line said of them
  Field size;
  int32_t depth;         // messages that this one is relayed in
};

int32_t DecodeStun(const Place& at, Cursor c);
void ShowStunMessages(const Place& in, Cursor c, int32_t depth);   // relayed in so many others
void ShowStunAttributes(const Place& in, Cursor& c, Stun& stun);

}  // namespace qxview
