// What a row of the registry decodes: wishes (1), table (1), key (4), flags (1), port (2), link type (2), length of an
// extension block (1), the block, the payload. A key that no row has stands for the row in front of it.
#include "core/byte_origins.h"
#include "fuzz/stations.h"
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

struct Payload {
  const DecoderRow* row;
  uint8_t medium;
  uint32_t flags;
  uint16_t port, linkType;
  Piece extension;
};

void Decode(Stations& stations, const Payload& payload, const Piece& bytes) {
  const uint16_t tag = payload.extension.size == 0 ? 0 : payload.medium == 6 ? kExtensionAtm : kExtensionMedium;
  const ExactRecord record(bytes, tag, payload.extension);
  record->mediaType = payload.medium;
  record->linkType = payload.linkType;
  const bool overTcp = payload.flags & 1;
  stations.Each(record->capturedLength, [&](Station& station) {
    View* view = station.session->GetView();
    if (view->context->outputMode == kDisplayMode) ClearDecodeTree(view, view->tree, true);
    PacketState& packet = view->context->packet = PacketState{};
    const Cursor c = MakeCursor(record.Frame(), 0, record->capturedLength);
    packet.frame = record.get();
    packet.linesLeft = MostLinesOf(c.left);
    packet.protocol = payload.row->protocol->key;
    packet.ipProtocol = overTcp ? 6 : 17;
    packet.destinationPort = payload.port;
    packet.network.totalLength = c.left;
    packet.segment = {c.at, overTcp ? c.left : 0, 0, 0, overTcp};
    packet.quoted = payload.flags & 2;
    ForgetOrigins(view->context->origins);
    payload.row->decode(TopLevel(view, kFirstLevel), c);
    packet.frame = nullptr;
  });
}

}  // namespace

void RunPayload(const uint8_t* data, size_t size) {
  if (size < 12 || size > kLongest) return;
  Input input(data, size);
  const uint32_t wishes = input.U8() & ~uint32_t{kHeaders};
  const uint32_t table = input.U8() % (static_cast<uint32_t>(DoorKind::kApplication) + 1), key = input.U32();
  Payload payload{RowOf(table, key), 0, input.U8(), 0, 0, {}};
  payload.port = static_cast<uint16_t>(input.U16());
  payload.linkType = static_cast<uint16_t>(input.U16());
  payload.extension = input.Take(input.U8());
  if (static_cast<DoorKind>(table) == DoorKind::kMedium) payload.medium = static_cast<uint8_t>(payload.row->key);
  const Piece whole = input.Rest();
  Stations stations(wishes);
  Decode(stations, payload, whole);
  if (!(wishes & kPrefixes)) return;
  const size_t step = whole.size / kMostPrefixes + 1;
  for (size_t length = 0; length < whole.size; length += step) Decode(stations, payload, {whole.data, length});
}

}  // namespace qxview::fuzz
