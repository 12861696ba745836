#include "decoders/common/eap.h"

#include "core/line_facts.h"

namespace qxview {
namespace {

constexpr auto kCodeNames = SortedNames({
    {1, "Request"}, {2, "Response"}, {3, "Success"}, {4, "Failure"}, {5, "Initiate"}, {6, "Finish"}});
constexpr auto kHeader = Rows<Eap>({
    Number(1, "Code", kCodeNames).Into(&Eap::code), Number(1, "Identifier").Into(&Eap::identifier),
    Number(2, "Length").Into(&Eap::length)});
constexpr auto kType = Rows<Eap>({Number(1, "Type", kEapTypeNames)});

}  // namespace

int32_t AddEap(const Place& at, Cursor& c, const EapCarrier* carrier) {
  const KeyedAs keys(PacketOf(at), "eap");
  const Eap ahead = PeekRows(c, kHeader);
  const int32_t stated = static_cast<int32_t>(ahead.length.value);
  const int32_t here = stated < Left(c) ? stated : Left(c);
  const Place in = Under(at, AddLine(at, Ahead(c, here), "EAP: %s", LookupName(kCodeNames, ahead.code.value)));
  Cursor packet = TakeCursor(c, stated);
  const int32_t begin = packet.offset;
  Eap eap = ShowRows(in, packet, kHeader);
  eap.carrier = carrier;
  eap.begin = begin;
  const bool hasType = eap.code.value == 1 || eap.code.value == 2;
  if (hasType && Left(packet) > 0) {
    eap.type = PeekU8(packet);
    ShowRows<Eap>(in, packet, kType, eap);
    ShowChoice<Eap>(in, packet, FindChoice<Eap>(kEapMethods, eap.type), eap);
  }
  AddBlock(in, Rest(packet), "EAP Data");
  return stated > here ? stated - here : 0;
}

}  // namespace qxview
