// EAP over LANs (IEEE 802.1X-2010): who may use this port, and with which keys?
//
//   0        1     2       4
//   version  type  length  body: an EAP packet, a key descriptor, MACsec key agreement, an announcement
#include "decoders/link/eapol.h"

#include "core/rows.h"
#include "decoders/common/eap.h"

namespace qxview {
namespace {

enum EapolType : uint32_t { kPacket, kStart, kLogoff, kKey, kAlert, kKeyAgreement, kGeneric, kSpecific, kRequest };

constexpr auto kVersionNames = SortedNames({{1, "802.1X-2001"}, {2, "802.1X-2004"}, {3, "802.1X-2010"}});
constexpr auto kTypeNames = SortedNames({
    {0, "EAP Packet"}, {1, "Start"}, {2, "Logoff"}, {3, "Key"}, {4, "Encapsulated ASF Alert"}, {5, "MKA"},
    {6, "Announcement (Generic)"}, {7, "Announcement (Specific)"}, {8, "Announcement Request"}});
constexpr auto kRequestFlags = SortedNames({{1, "Announcement Requested"}});

struct Eapol {
  Field type, length;
};
constexpr auto kHeader = Rows<Eapol>({
    Number(1, "Version", kVersionNames), Number(1, "Type", kTypeNames).Into(&Eapol::type),
    Number(2, "Length").Into(&Eapol::length)});
constexpr auto kStartBody = Rows<Eapol>({Flags(1, "Start Flags", kRequestFlags)});

}  // namespace

int32_t DecodeEapol(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 4;
  if (Left(c) < kHeaderSize) return 0;
  const Eapol ahead = PeekRows(c, kHeader);
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "802.1X EAPOL: %s", LookupName(kTypeNames,
      ahead.type.value)));
  Eapol eapol = ShowRows(in, c, kHeader);
  Cursor body = TakeCursor(c, eapol.length.value);
  if (!in.dead) SetRange(in, in.parent, c.begin, c.offset - c.begin);
  switch (eapol.type.value) {
    case kPacket:
      if (Left(body) > 0) AddEap(in, body);
      break;
    case kStart:
    case kRequest:
      if (Left(body) > 0) ShowRows<Eapol>(in, body, kStartBody, eapol);
      ShowAnnouncement(in, body);
      break;
    case kKey: ShowEapolKey(in, body); break;
    case kKeyAgreement: ShowKeyAgreement(in, body); break;
    case kGeneric:
    case kSpecific: ShowAnnouncement(in, body); break;
    default: break;
  }
  body.ranShort = false;
  AddBlock(in, Rest(body), "EAPOL Data");
  return 1;
}

}  // namespace qxview
