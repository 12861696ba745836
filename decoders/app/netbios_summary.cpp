// The packet list's text for NetBIOS over TCP and UDP (RFC 1002): the kind of message and the names in it.
#include "decoders/app/packet_summaries.h"
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"
#include "decoders/netbios/netbios.h"

namespace qxview {
namespace {

void AddName(SummaryText& text, const char* label, const NetBiosName& name) {
  if (name.field.here && name.form == NetBiosName::kEncoded) Add(text, ", %s: %s", label, name.text);
}

}  // namespace

int32_t DescribeNetBiosDatagram(const SummaryInput& in, char* out, int32_t outSize) {
  constexpr uint32_t kError = 0x13, kQuery = 0x14;
  SummaryText text;
  if (!BeginSummary(text, in.data, in.length, out, outSize)) return 0;
  Cursor c = MakeCursor(in.data, 0, in.length);
  const Field message = Ahead(c, Left(c)), kind = TakeU8(c);
  TakeBytes(c, 9);   // flags, datagram ID, address, port
  Add(text, "NetBIOS Datagram Service %s", NetBiosDatagramTypeName(kind.value));
  if (kind.value == kError) return 1;
  if (kind.value >= kQuery) return AddName(text, "Name", TakeNetBiosName(c, message)), 1;
  TakeBytes(c, 4);   // length, offset
  const NetBiosName source = TakeNetBiosName(c, message);
  AddName(text, "Name", source);
  AddName(text, "To", TakeNetBiosName(c, message));
  return 1;
}

int32_t DescribeNetBiosSession(const SummaryInput& in, char* out, int32_t outSize) {
  const Cursor c = MakeCursor(in.data, 0, in.length);
  if (StartsNetBiosSessionMessage(c) && DescribeSmb(in.data, in.length, out, outSize, 1, 1)) return 1;
  SummaryText text;
  if (!BeginSummary(text, in.data, in.length, out, outSize)) return 0;
  Add(text, "NetBIOS Session Service Data, %d bytes", in.length);
  return 1;
}

}  // namespace qxview
