// The packet list's text for protocols with a place in the dispatch but no exported summary: ONC RPC (RFC 5531), FCIP
// (RFC 3821).
#include "decoders/app/packet_summaries.h"
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

constexpr auto kProgramNames = SortedNames({
    {100000, "Portmapper"}, {100001, "RSTAT"}, {100002, "RUSERS"}, {100003, "NFS"}, {100004, "YPSERV"},
    {100005, "MOUNT"}, {100007, "YPBIND"}, {100009, "YPPASSWD"}, {100011, "RQUOTA"}, {100012, "SPRAY"},
    {100021, "NLM"}, {100024, "STAT"}, {100026, "BOOTPARAM"}, {100227, "NFSACL"}, {150001, "PCNFSD"},
});

}  // namespace

int32_t DescribeOncRpc(const SummaryInput& in, char* out, int32_t outSize) {
  enum Kind : uint32_t { kCall = 0, kReply = 1 };
  SummaryText text;
  if (!BeginSummary(text, in.data, in.length, out, outSize)) return 0;
  Cursor c = MakeCursor(in.data, 0, in.length);
  Add(text, "ONC RPC");
  if (in.isTcp) TakeU32(c);   // the record marker
  const Field transaction = TakeU32(c), kind = TakeU32(c);
  if (!kind.here || kind.value > kReply) return Add(text, " Continuation"), 1;
  Add(text, kind.value == kCall ? " Call" : " Reply");
  if (kind.value == kCall) {
    TakeU32(c);
    const Field program = TakeU32(c), version = TakeU32(c), procedure = TakeU32(c);
    const char* name = program.here ? LookupName(kProgramNames, program.value, nullptr) : nullptr;
    if (name) {
      Add(text, ", Program: %s", name);
    } else if (program.here) {
      Add(text, ", Program: %u", program.value);
    }
    if (procedure.here) Add(text, ", Version: %u, Procedure: %u", version.value, procedure.value);
  } else {
    const Field status = TakeU32(c);
    if (status.here) Add(text, status.value == 0 ? ", Accepted" : ", Denied");
  }
  Add(text, ", XID: 0x%.08X", transaction.value);
  return 1;
}

int32_t DescribeFcip(const SummaryInput& in, char* out, int32_t outSize) {
  SummaryText text;
  if (!BeginSummary(text, in.data, in.length, out, outSize)) return 0;
  Add(text, "FCIP Frame, %d bytes", in.length);
  return 1;
}

}  // namespace qxview
