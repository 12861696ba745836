// Locator/ID separation: packets to endpoint identifiers inside packets to locators (RFC 9300), and the messages by which
// routers learn and register which locators stand for which identifiers (RFC 9301, addresses of RFC 8060).
//
//   data       flags, nonce (24)   instance (24), locator bits (8)   the inner datagram
//   control    type (4 bits), flags, count   nonce (64)   what the type says: keys, records of identifiers with locators
#include "core/elements.h"
#include "decoders/common/ahead_cut.h"
#include "decoders/link/carried.h"
#include "decoders/net/lisp_rows.h"

namespace qxview {
namespace {

constexpr uint32_t kCanonical = 16387, kIPv4Family = 1, kIPv6Family = 2, kMacFamily = 16389;

void ShowAddress(const Place& in, Cursor& c, const char* label, int32_t depth);

// Address formats of their own: a type and a length, and addresses inside (RFC 8060).
void ShowCanonical(const Place& at, Cursor& c, const char* label, int32_t depth) {
  const int32_t length = static_cast<int32_t>(PeekU16(c, 4));
  Cursor whole = TakeCursor(c, 6 + length);
  const Place in = Under(at, AddLine(at, Ahead(whole, Left(whole)), "%s: %s", label,
                                     LookupName(kLispCanonicalNames, PeekU8(whole, 2))));
  Lisp out = ShowRows(in, whole, kLispCanonicalHeader);
  const auto show = [&](RowSpan<Lisp> rows) { ShowRows<Lisp>(in, whole, rows, out); };
  const auto addresses = [&](int32_t most) {
    Loop loop;
    for (int32_t i = 0; i < most && Left(whole) >= 2 && depth < kDeepestLisp && MoreAt(in, whole, loop); ++i) {
      ShowAddress(in, whole, "Address", depth + 1);
    }
  };
  Loop loop;
  switch (out.type.value) {
    case 1: addresses(INT32_MAX); break;
    case 2: show(kLispInstance); addresses(1); break;
    case 3: show(kLispSystem); addresses(1); break;
    case 4: show(kLispApplication); addresses(1); break;
    case 5: show(kLispGeographic); addresses(1); break;
    case 7: show(kLispTraversal); addresses(INT32_MAX); break;
    case 8: show(kLispNonceLocator); addresses(1); break;
    case 9: show(kLispMulticast); addresses(2); break;
    case 10:
      while (Left(whole) >= 4 && depth < kDeepestLisp && MoreAt(in, whole, loop)) {
        show(kLispHop);
        ShowAddress(in, whole, "Address", depth + 1);
      }
      break;
    case 12: show(kLispPair); addresses(2); break;
    case 13:
      while (Left(whole) >= 6 && depth < kDeepestLisp && MoreAt(in, whole, loop)) {
        show(kLispReplication);
        ShowAddress(in, whole, "Address", depth + 1);
      }
      break;
    case 15: addresses(2); break;
    default: break;
  }
  whole.ranShort = false;
  AddBlock(in, Rest(whole), "Address Data");
}

void ShowAddress(const Place& in, Cursor& c, const char* label, int32_t depth) {
  if (Left(c) < 2) return;
  const uint32_t family = PeekU16(c);
  const Field number = TakeU16(c);
  AddLine(in, number, "Address Family: %u = %s", family, LookupName(kLispFamilyNames, family));
  switch (family) {
    case kIPv4Family: {
      const Field address = TakeBytes(c, 4);
      if (address.here) AddLine(in, address, "%s: %s", label, IPv4Text(address.bytes));
      break;
    }
    case kIPv6Family: {
      const Field address = TakeBytes(c, 16);
      if (address.here) AddLine(in, address, "%s: %s", label, IPv6Text(address.bytes));
      break;
    }
    case kMacFamily: {
      const Field address = TakeBytes(c, 6);
      if (address.here) AddLine(in, address, "%s: %s", label, MacText(address.bytes));
      break;
    }
    case kCanonical: ShowCanonical(in, c, label, depth); break;
    default: break;   // none, or of a length that is not told
  }
}

void ShowMapping(const Place& at, Cursor& c, uint32_t number) {
  const Cursor start = c;
  const Place in = Under(at, AddLine(at, AheadCut(c, 12), "Mapping Record %u", number));
  Lisp out = ShowRows(in, c, kLispMapping);
  ShowAddress(in, c, "EID", 0);
  Loop loop;
  for (uint32_t i = 0; i < out.count.value && Left(c) >= 8 && MoreAt(in, c, loop); ++i) {
    const Cursor before = c;
    const Place under = Under(in, AddLine(in, AheadCut(c, 6), "Locator Record %u", i + 1));
    ShowRows<Lisp>(under, c, kLispLocator, out);
    ShowAddress(under, c, "Locator", 0);
    if (under.parent) SetRange(under, under.parent, before.offset, c.offset - before.offset);
  }
  if (in.parent) SetRange(in, in.parent, start.offset, c.offset - start.offset);
}

void ShowMappings(const Place& in, Cursor& c, uint32_t count) {
  Loop loop;
  for (uint32_t i = 0; i < count && Left(c) >= 12 && MoreAt(in, c, loop); ++i) ShowMapping(in, c, i + 1);
}

void ShowRequest(const Place& in, Cursor& c) {
  Lisp out{};
  ShowRows<Lisp>(in, c, kLispRequest, out);
  ShowAddress(in, c, "Source EID", 0);
  Loop loop, records;
  for (uint32_t i = 0; i <= out.locators.value && MoreAt(in, c, loop); ++i) ShowAddress(in, c, "ITR Locator", 0);
  for (uint32_t i = 0; i < out.count.value && Left(c) >= 4 && MoreAt(in, c, records); ++i) {
    const Cursor before = c;
    const Place under = Under(in, AddLine(in, AheadCut(c, 4), "EID Record %u", i + 1));
    ShowRows<Lisp>(under, c, kLispIdentifierPrefix, out);
    ShowAddress(under, c, "EID", 0);
    if (under.parent) SetRange(under, under.parent, before.offset, c.offset - before.offset);
  }
  if (out.more.value && Left(c) >= 12) ShowMapping(in, c, 1);
}

// Of registrations, their answers and of questions for the way through translators.
void ShowAuthentication(const Place& in, Cursor& c, Lisp& out) {
  ShowRows<Lisp>(in, c, kLispKey, out);
  if (out.length.value) ShowRows<Lisp>(in, c, kLispAuthentication, out);
}

void ShowRegister(const Place& in, Cursor& c, bool isRegister) {
  Lisp out{};
  ShowRows<Lisp>(in, c, isRegister ? RowSpan<Lisp>(kLispRegister) : RowSpan<Lisp>(kLispNotify), out);
  ShowRows<Lisp>(in, c, kLispNonce, out);
  ShowAuthentication(in, c, out);
  ShowMappings(in, c, out.count.value);
  if (out.more.value && Left(c) >= 24) ShowRows<Lisp>(in, c, kLispSite, out);
}

void ShowInformation(const Place& in, Cursor& c) {
  Lisp out{};
  ShowRows<Lisp>(in, c, kLispInformation, out);
  ShowAuthentication(in, c, out);
  ShowRows<Lisp>(in, c, kLispLifetime, out);
  ShowRows<Lisp>(in, c, kLispIdentifierPrefix, out);
  ShowAddress(in, c, "EID", 0);
  ShowAddress(in, c, "Address", 0);
}

void ShowReferral(const Place& in, Cursor& c) {
  Lisp out{};
  ShowRows<Lisp>(in, c, kLispReply, out);
  Loop loop;
  for (uint32_t i = 0; i < out.count.value && Left(c) >= 12 && MoreAt(in, c, loop); ++i) ShowMapping(in, c, i + 1);
}

}  // namespace

int32_t DecodeLispControl(const Place& at, Cursor c) {
  constexpr uint32_t kEncapsulated = 8;
  const uint32_t type = PeekU8(c) >> 4;
  if (Left(c) < 4 || !LookupName(kLispTypeNames, type, nullptr)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, type == kEncapsulated ? 4 : Left(c)), "LISP: %s",
      LookupName(kLispTypeNames, type)));
  Lisp out{};
  switch (type) {
    case 1: ShowRequest(in, c); break;
    case 2: ShowReferral(in, c); break;
    case 3: ShowRegister(in, c, true); break;
    case 4:
    case 5: ShowRegister(in, c, false); break;
    case 6: ShowReferral(in, c); break;
    case 7: ShowInformation(in, c); break;
    default:
      ShowRows<Lisp>(in, c, kLispEncapsulatedHeader, out);
      return DecodeCarriedFrame(Deeper(at), c, Carried::kIp, "LISP Data");
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "LISP Data");
  return 1;
}

int32_t DecodeLispData(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 8;
  constexpr uint32_t kVersion = 0x10, kInstanceId = 0x08;
  const uint32_t version = PeekU8(c, kHeader) >> 4, flags = PeekU8(c);
  if (Left(c) < kHeader || (Left(c) > kHeader && version != 4 && version != 6)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeader), "LISP Data"));
  Lisp out{};
  ShowRows<Lisp>(in, c, kLispDataFlags, out);
  ShowRows<Lisp>(in, c, flags & kVersion ? RowSpan<Lisp>(kLispDataVersions) : RowSpan<Lisp>(kLispDataNonce), out);
  ShowRows<Lisp>(in, c, flags & kInstanceId ? RowSpan<Lisp>(kLispDataInstance) : RowSpan<Lisp>(kLispDataBits), out);
  return DecodeCarriedFrame(Deeper(at), c, Carried::kIp, "LISP Data");
}

// The reliable transport of registrations over TCP (draft-kouvelas-lisp-map-server-reliable-transport).
int32_t DecodeLispReliable(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 8;
  constexpr uint32_t kEndMarker = 0x9FACADE9;
  if (Left(c) < kHeader || !LookupName(kLispReliableNames, PeekU16(c), nullptr)) return 0;
  Loop loop;
  while (Left(c) >= kHeader && MoreAt(at, c, loop)) {
    const int32_t length = static_cast<int32_t>(PeekU16(c, 2));
    if (length < kHeader) break;
    Cursor message = TakeCursor(c, length);
    const Place in = Under(at, AddLine(at, Ahead(message, Left(message)), "LISP: %s", LookupName(kLispReliableNames,
    PeekU16(message))));
    const Lisp out = ShowRows(in, message, kLispReliable);
    Cursor body = TakeCursor(message, Left(message) - 4);
    if (out.type.value == 17 && Left(body) > 4) {   // a registration as UDP has it
      CallDecoder(Deeper(at), body, DecodeLispControl, "Registration");
    } else {
      AddBlock(in, Rest(body), "Message Data");
    }
    const Field marker = TakeU32(message);
    AddLine(in, marker, "End Marker: 0x%.08X%s", marker.value, marker.value == kEndMarker ? "" : " (unexpected)");
  }
  if (Left(c) > 0) AddRawRest(at, c, "LISP Data");
  return 1;
}

}  // namespace qxview
