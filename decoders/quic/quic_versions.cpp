// The versions of QUIC: IETF's with its drafts, and those that makers registered for themselves.
#include "decoders/quic/quic.h"

namespace qxview {
namespace {

constexpr uint32_t kDrafts = 0xFF000000, kLastDraft = 34;
constexpr uint32_t kFirstGoogle = 0x51303031, kLastGoogle = 0x51303530;   // "Q001", "Q050"
constexpr uint32_t kReservedMask = 0x0F0F0F0F, kReservedBits = 0x0A0A0A0A;

constexpr auto kNames = SortedNames({
    {0x00000000, "Version Negotiation"}, {0x00000001, "Version 1"}, {0x07007007, "Quant"}, {0x45474700, "Quicly"},
    {0x454747FF, "Quicly"}, {0x50435130, "Picoquic 0"}, {0x50435131, "Picoquic 1"}, {0x50524F58, "Proxied"},
    {0x51474F00, "quic-go 0"}, {0x51474FFF, "quic-go"}, {0x51554943, "QUIC"},
    {0x6B3343CF, "Version 2"}, {0x709A50C4, "Version 2 Draft"}, {0x91C17000, "Quicly"}, {0xABCD0000, "MsQuic 0"},
    {0xABCD0001, "MsQuic 1"}, {0xF0F0F0F0, "ETH 0"}, {0xF0F0F0F1, "Spin Bit 1"}, {0xF0F0F0F2, "Spin Bit 2"},
    {0xF0F0F1F0, "Loss Bits"}, {0xF123F0C0, "Mozilla 0"}, {0xF123F0C1, "Mozilla 1"}, {0xF123F0C2, "Mozilla 2"},
    {0xF123F0C3, "Mozilla 3"}, {0xF123F0C4, "Mozilla 4"}, {0xF123F0C5, "Mozilla 5"}, {0xFACEB000, "mvfst Old 0"},
    {0xFACEB001, "mvfst Draft 22"}, {0xFACEB002, "mvfst Draft 27"}, {0xFACEB003, "mvfst Alias"},
    {0xFACEB00E, "mvfst Experimental"}, {0xFACEB00F, "mvfst Alias Draft 29"}, {0xFACEB010, "mvfst Experimental 2"},
    {0xFACEB011, "mvfst Primed"}, {0xFF010000, "Version 2 Draft 0"}, {0xFF020000, "Version 2 Draft"},
});

bool IsDraft(uint32_t version) { return version >= kDrafts && version <= kDrafts + kLastDraft; }

bool IsPrintable(uint32_t version) {
  for (int32_t shift = 0; shift < 32; shift += 8) {
    const uint32_t character = version >> shift & 0xFF;
    if (character < 0x21 || character > 0x7E) return false;
  }
  return true;
}

// The versions that Google named by four characters, a letter for the handshake: Q its own, T that of TLS.
bool IsGoogleName(uint32_t version) {
  const uint32_t letter = version >> 24;
  return (letter == 'Q' || letter == 'T') && (version >> 16 & 0xFF) == '0' && IsPrintable(version);
}

}  // namespace

ShortText<24> QuicVersionText(uint32_t version) {
  ShortText<24> text;
  if (IsDraft(version)) {
    FormatInto(text.text, sizeof text.text, "Draft %u", version - kDrafts);
  } else if (IsGoogleName(version)) {
    FormatInto(text.text, sizeof text.text, "%c%c%c%c", version >> 24, version >> 16 & 0xFF, version >> 8 & 0xFF,
               version & 0xFF);
  } else if ((version & kReservedMask) == kReservedBits) {
    FormatInto(text.text, sizeof text.text, "Reserved");
  } else {
    FormatInto(text.text, sizeof text.text, "%s", LookupName(kNames, version, "Unknown Version"));
  }
  return text;
}

void ShowQuicVersion(const Place& in, const Field& version) {
  AddLine(in, version, "Version: 0x%.08X = %s", version.value, QuicVersionText(version.value));
}

void ShowSupportedVersions(const Place& in, Cursor& c) {
  Loop loop;
  while (MoreAt(in, c, loop) && Left(c) >= 4) {
    const Field version = TakeU32(c);
    const auto text = QuicVersionText(version.value);
    AddLine(in, version, "Supported Version: 0x%.08X = %s", version.value, text);
    AppendToParent(in, version, ", %s", text);
  }
  AddBlock(in, Rest(c), "Data");
}

bool IsGoogleQuicVersion(uint32_t version) { return version >= kFirstGoogle && version < kLastGoogle; }

uint32_t QuicDraftOf(uint32_t version) {
  if (IsDraft(version)) return version - kDrafts;
  switch (version) {
    case 0xFACEB000:
    case 0xFACEB001: return 22;
    case 0xFACEB002:
    case 0xFACEB003:
    case 0xFACEB00E: return 27;
    case 0xFACEB00F: return 29;
    default: return IsGoogleName(version) ? 27 : 0;
  }
}

bool LooksLikeQuic(const Cursor& c) {
  constexpr uint32_t kLongForm = 0x80, kFixedBit = 0x40, kTypeBits = 0x30, kFirstDraft = kDrafts + 17, kMakerBits = 0xFACEB000;
  constexpr uint32_t kLeastReservedId = 8;
  const uint32_t first = PeekU8(c), version = PeekU32(c, 1), most = kMostQuicId;
  if (Left(c) < 21) return false;
  if ((first & kLongForm) == 0) return (first & 0xCB) == 0x09 && IsGoogleQuicVersion(PeekU32(c, 9));   // a public header
  if (IsGoogleQuicVersion(version)) return true;
  const uint32_t destination = PeekU8(c, 5);
  if ((first & kFixedBit) == 0 || destination > most || PeekU8(c, 6 + static_cast<int32_t>(destination)) > most) return false;
  // A client that wants to be sent another version begins as with one that there is.
  if ((version & kReservedMask) == kReservedBits) return (first & kTypeBits) == 0 && destination >= kLeastReservedId;
  return version == kQuicVersion1 || version == kQuicVersion2 || IsGoogleName(version) ||
         (version >= kFirstDraft && IsDraft(version)) || (version & 0xFFFFFFE0) == kMakerBits;
}

}  // namespace qxview
