// FTP's data connections (RFC 959): lists and files.
#include "decoders/app/ftp_data.h"

#include "core/states.h"
#include "decoders/common/text_lines.h"
#include "decoders/states.h"

namespace qxview {
namespace {

FtpDataEnd EndOf(const AddressSlot& address, uint16_t port) {
  FtpDataEnd end{};
  std::memcpy(end.address, address.address, sizeof end.address);
  end.port = port;
  end.kind = static_cast<uint16_t>(address.kind);
  return end;
}

}  // namespace

void AnnounceFtpData(const Place& at, const AddressSlot& address, uint16_t port) {
  constexpr uint16_t kLeast = 1024;   // below stand services, whose packets no announcement takes away
  if (port < kLeast || PacketOf(at).quoted) return;
  Remember(at.view, kFtpDataEnds, EndOf(address, port), FtpDataState{});
}

bool IsFtpData(const View* view) {
  const PacketState& packet = view->context->packet;
  return Recall(view, kFtpDataEnds, EndOf(packet.destination, packet.destinationPort)) ||
         Recall(view, kFtpDataEnds, EndOf(packet.source, packet.sourcePort));
}

// Lists and files: text in lines, whatever the file is otherwise.
int32_t DecodeFtpData(const Place& at, Cursor c) {
  const Field whole = Ahead(c, Left(c));
  if (!IsReadable(c)) {
    const Place in = Under(at, AddLine(at, whole, "FTP Data: %u bytes", static_cast<uint32_t>(Left(c))));
    AddBlock(in, Rest(c), "Data");
    return 1;
  }
  TextLine line;
  Cursor ahead = c;
  TakeLine(ahead, line);
  ShowLinesOfText(Under(at, AddTextLine(at, whole, "FTP Data", line.text)), c, "Line");
  return 1;
}

}  // namespace qxview
