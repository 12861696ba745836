// Elements of RTP's header extensions (RFC 8285) by the names that sessions announce for them.
#include "core/rows.h"
#include "decoders/app/rtp_extension_names.h"
#include "decoders/app/rtp_payloads.h"

namespace qxview {
namespace {

constexpr auto kRotationNames = SortedNames({{0, "0 Degrees"}, {1, "90 Degrees"}, {2, "180 Degrees"}, {3, "270 Degrees"}});
constexpr auto kContentNames = SortedNames({{0, "Unspecified"}, {1, "Screenshare"}});
constexpr auto kPrimariesNames = SortedNames({
    {1, "BT.709"}, {2, "Unspecified"}, {4, "BT.470M"}, {5, "BT.470BG"}, {6, "SMPTE 170M"}, {7, "SMPTE 240M"}, {8, "Film"},
    {9, "BT.2020"}, {10, "SMPTE ST 428"}, {11, "SMPTE RP 431"}, {12, "SMPTE EG 432"}, {22, "JEDEC P22"}});

constexpr auto kLevel = Rows<NoValues>({Word(1), Flag(0, "Voice"), Bits(1, 7, "Level", " -dBov")});
constexpr auto kMixLevel = Rows<NoValues>({Word(1), Flag(0, "Reserved"), Bits(1, 7, "Level", " -dBov")});
constexpr auto kOffset = Rows<NoValues>({Signed(3, "Transmission Offset")});
constexpr auto kSendTime = Rows<NoValues>({Number(3, "Absolute Send Time", " / 262144 seconds")});
constexpr auto kSequence = Rows<NoValues>({Number(2, "Transport-Wide Sequence")});
constexpr auto kIdentifier = Rows<NoValues>({Utf8(0, "Identifier")});
constexpr auto kOrientation = Rows<NoValues>({
    Word(1), Bits(0, 4, "Reserved"), Flag(4, "Back-Facing Camera"), Flag(5, "Flipped"), Bits(6, 2, "Rotation", kRotationNames)});
constexpr auto kPlayout = Rows<NoValues>({
    Word(3), Bits(0, 12, "Minimum Playout Delay", " * 10 milliseconds"), Bits(12, 12, "Maximum Playout Delay", " * 10 milliseconds")});
constexpr auto kContent = Rows<NoValues>({Number(1, "Content Type", kContentNames)});
constexpr auto kTiming = Rows<NoValues>({
    Hex(1, "Flags"), Number(2, "Encode Start", " milliseconds"), Number(2, "Encode Finish", " milliseconds"),
    Number(2, "Packetization Finish", " milliseconds"), Number(2, "Pacer Exit", " milliseconds"),
    Number(2, "Network Timestamp", " milliseconds"), Number(2, "Second Network Timestamp", " milliseconds")});
constexpr auto kColor = Rows<NoValues>({
    Number(1, "Primaries", kPrimariesNames), Number(1, "Transfer"), Number(1, "Matrix"), Word(1), Bits(0, 2, "Reserved"),
    Bits(2, 2, "Range"), Bits(4, 2, "Chroma Siting Horizontal"), Bits(6, 2, "Chroma Siting Vertical")});
constexpr auto kCapture = Rows<NoValues>({NtpTime("Capture Time")});
constexpr auto kMarking = Rows<NoValues>({
    Word(1), Flag(0, "Start of Frame"), Flag(1, "End of Frame"), Flag(2, "Independent"), Flag(3, "Discardable"),
    Flag(4, "Base Layer Sync"), Bits(5, 3, "Temporal ID")});
constexpr auto kMarkingLayer = Rows<NoValues>({Number(1, "Layer ID"), Number(1, "TL0PICIDX")});
constexpr auto kDependency = Rows<NoValues>({
    Word(3), Flag(0, "Start of Frame"), Flag(1, "End of Frame"), Bits(2, 6, "Template ID"), Bits(8, 16, "Frame Number")});
constexpr auto kClockOffset = Rows<NoValues>({Hex(8, "Estimated Clock Offset")});

struct Extension {
  RowSpan<NoValues> rows, behind = {};
};
// In the order of the names.
constexpr Extension kExtensions[] = {
    {kLevel},
    {kMixLevel},
    {kOffset},
    {kSendTime},
    {kSequence},
    {kIdentifier},
    {kIdentifier},
    {kIdentifier},
    {kIdentifier},
    {kOrientation},
    {kPlayout},
    {kContent},
    {kTiming},
    {kColor},
    {kCapture, kClockOffset},
    {kCapture},
    {kMarking, kMarkingLayer},
    {kDependency},
};
static_assert(sizeof kExtensions / sizeof kExtensions[0] == kRtpExtensions);

}  // namespace

void ShowRtpExtension(const Place& in, Cursor c, uint8_t extension) {
  if (extension < 1 || extension > kRtpExtensions) return;
  const Extension& row = kExtensions[extension - 1];
  NoValues none;
  Loop loop;
  if (row.rows.rows == RowSpan<NoValues>(kMixLevel).rows) {
    while (MoreAt(in, c, loop)) ShowRows<NoValues>(in, c, row.rows, none);
    return;
  }
  ShowRows<NoValues>(in, c, row.rows, none);
  if (Left(c) > 0) ShowRows<NoValues>(in, c, row.behind, none);
  AddBlock(in, Rest(c), "Extension Data");
}

}  // namespace qxview
