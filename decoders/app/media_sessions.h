// What session descriptions announce of media: an address and port, and how its payload types are coded. RTP that is sent
// there, or from there, is told by it and not by guesses.
#pragma once
#include "core/decoder.h"
#include "decoders/app/rtp_codec_table.h"
#include "qxview/qxview_types.h"

namespace qxview {

struct MediaKey {
  uint8_t address[16];
  uint16_t port;   // 0: of a description that leaves the ports to another protocol
  uint16_t kind;   // of the address
  uint32_t unused;
};

struct MediaFormat {
  uint8_t payloadType;
  char encoding[16];      // "H264", cut and terminated
  uint8_t mode;           // of fmtp: 1 octets aligned (AMR), the packetization mode (H.264), the width of AU sizes
  uint32_t clockRate;
};
constexpr int32_t kMostMediaFormats = 14, kMostMediaExtensions = 14;

struct MediaSession {
  uint8_t formats, extensions;
  bool isProtected;        // SRTP: its payload is encrypted
  MediaKind kind;
  MediaFormat format[kMostMediaFormats];
  struct Extension {
    uint8_t id, uri;       // an index of the names that rtp.cpp knows, from 1
  } extension[kMostMediaExtensions];
};

// An address as text; false for what is none and for the one that stands for nowhere.
bool ReadAddressText(const Field& text, AddressSlot* out);

// Remembered where the packet is not quoted; formats are added to those of the same key.
void AnnounceMedia(const Place& at, const AddressSlot& address, uint16_t port, const MediaSession& session);
// Of the packet's destination, or else its source, or what one of them announced without a port; null when nothing was
// announced. Good until the next look-up.
const MediaSession* FindMedia(const View* view);
// The format of a payload type; null when none was announced.
const MediaFormat* FindMediaFormat(const MediaSession* session, uint32_t payloadType);

}  // namespace qxview
