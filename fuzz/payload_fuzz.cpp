// What a row of the registry decodes: wishes (1), the row with what else is known (fuzz/payload.h), the payload.
#include "core/byte_origins.h"
#include "fuzz/payload.h"
#include "fuzz/targets.h"

namespace qxview::fuzz {
namespace {

constexpr size_t kLongest = 9000;
constexpr size_t kMostPrefixes = 64;

const DecoderRow* RowOf(uint32_t table, uint32_t key) {
  const DecoderRowSpan span = RegistryTable(static_cast<DoorKind>(table), nullptr);
  const DecoderRow* row = nullptr;
  for (int32_t i = 0; i < span.count && (!row || span.rows[i].key <= key); ++i) row = &span.rows[i];
  return row;
}

void Decode(Stations& stations, const PayloadHead& head, const Piece& bytes) {
  const ExactRecord record = RecordOf(head, bytes);
  stations.Each(record->capturedLength, [&](Station& station) { DecodePayload(*station.session, head, record); });
}

}  // namespace

PayloadHead ReadPayloadHead(Input& input) {
  const uint32_t table = input.U8() % (static_cast<uint32_t>(DoorKind::kApplication) + 1), key = input.U32();
  PayloadHead head{RowOf(table, key), 0, input.U8(), 0, 0, {}};
  head.port = static_cast<uint16_t>(input.U16());
  head.linkType = static_cast<uint16_t>(input.U16());
  head.extension = input.Take(input.U8());
  if (static_cast<DoorKind>(table) == DoorKind::kMedium) head.medium = static_cast<uint8_t>(head.row->key);
  return head;
}

ExactRecord RecordOf(const PayloadHead& head, const Piece& payload) {
  const uint16_t tag = head.extension.size == 0 ? 0 : head.medium == 6 ? kExtensionAtm : kExtensionMedium;
  ExactRecord record(payload, tag, head.extension);
  record->mediaType = head.medium;
  record->linkType = head.linkType;
  return record;
}

void DecodePayload(Session& session, const PayloadHead& head, const ExactRecord& record) {
  View* view = session.GetView();
  const bool overTcp = head.flags & 1;
  if (view->context->outputMode == kDisplayMode) ClearDecodeTree(view, view->tree, true);
  PacketState& packet = view->context->packet = PacketState{};
  const Cursor c = MakeCursor(record.Frame(), 0, record->capturedLength);
  packet.frame = record.get();
  BeginLines(packet, c.left);
  packet.protocol = head.row->protocol->key;
  packet.ipProtocol = overTcp ? 6 : 17;
  packet.destinationPort = head.port;
  packet.network.totalLength = c.left;
  packet.segment = {c.at, overTcp ? c.left : 0, 0, 0, overTcp};
  packet.quoted = head.flags & 2;
  ForgetOrigins(view->context->origins);
  head.row->decode(TopLevel(view, kFirstLevel), c);
  packet.frame = nullptr;
}

void RunPayload(const uint8_t* data, size_t size) {
  if (size < 12 || size > kLongest) return;
  Input input(data, size);
  const uint32_t wishes = input.U8() & ~uint32_t{kHeaders};
  const PayloadHead head = ReadPayloadHead(input);
  const Piece whole = input.Rest();
  Stations stations(wishes);
  Decode(stations, head, whole);
  if (!(wishes & kPrefixes)) return;
  const size_t step = whole.size / kMostPrefixes + 1;
  for (size_t length = 0; length < whole.size; length += step) Decode(stations, head, {whole.data, length});
}

}  // namespace qxview::fuzz
