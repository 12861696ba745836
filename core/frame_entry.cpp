#include "core/frame_entry.h"

#include <cstddef>
#include <cstring>
#include <memory>

#include "core/byte_origins.h"
#include "core/line_facts.h"
#include "core/times.h"

namespace qxview {
namespace {

// Forced decoding: a start that no medium chooses. Choices are fixed decoders by the way they are reached.
enum ForcedChoice : uint32_t { kChooseIPv4 = 2, kChooseIPv6 = 3, kChooseLlc = 14, kChooseEthernetHeader = 15 };
enum ForcedStart : uint32_t {
  kStartIPv4 = 1, kStartIPv6 = 2, kStartTcp = 4, kStartUdp = 5, kStartArp = 6, kStartEthernetFrame = 17,
};

constexpr uint16_t kEthertypeIPv4 = 0x0800, kEthertypeArp = 0x0806, kEthertypeIPv6 = 0x86DD;
constexpr uint8_t kProtocolTcp = 6, kProtocolUdp = 17;
constexpr uint32_t kNoDecoder = 0xFFFFFFFF;

int32_t DecodeRow(const Place& at, const Cursor& c, const DecoderRow* row) {
  return CallDecoder(at, c, row ? row->decode : nullptr, "Raw Data");
}

// Applications tell by the protocol of IP whether a length stands in front of their messages.
int32_t DecodeForcedTransport(const Place& at, const Cursor& c, uint8_t protocol) {
  PacketOf(at).ipProtocol = protocol;
  return DecodeRow(at, c, FindIpProtocol(protocol));
}

int32_t DecodeForcedPayload(const Place& at, const Cursor& c, const ForcedDecodingSettings& forced) {
  const uint32_t choice = forced.protocolChoice;
  const uint32_t start = choice ? kNoDecoder : forced.startProtocol;
  if (choice == kChooseIPv4 || start == kStartIPv4) return DecodeRow(at, c, FindEthertype(kEthertypeIPv4));
  if (choice == kChooseIPv6 || start == kStartIPv6) return DecodeRow(at, c, FindEthertype(kEthertypeIPv6));
  if (choice == kChooseLlc) return CallDecoder(at, c, DecodeLlc, "Raw Data");
  if (choice == kChooseEthernetHeader) return CallDecoder(at, c, DecodeEthernetHeader, "Raw Data");
  if (start == kStartTcp) return DecodeForcedTransport(at, c, kProtocolTcp);
  if (start == kStartUdp) return DecodeForcedTransport(at, c, kProtocolUdp);
  if (start == kStartArp) return DecodeRow(at, c, FindEthertype(kEthertypeArp));
  return CallDecoder(at, c, nullptr, "Raw Data");
}

// Link type 0 is that of loopback frames, which are raw ones; of others it says nothing.
const DecoderRow* FindLinkType(const FrameRecord* record) {
  if (!HasFullHeader(record) || (record->linkType == 0 && !IsRawFrame(record))) return nullptr;
  return FindLinkEncapsulation(kLinkTypeKeys + record->linkType);
}

// Frames of link types without a medium header start at their network header, as if forced to. What stands in front of
// that has lines of its own where the link type is known; a header that names no protocol is left to its decoder.
int32_t DecodeRawFrame(const Place& at, Cursor c, const FrameRecord* record) {
  const Place in = AddFrameSummary(at, c);
  const char* name = record->rawEthertype == kRawLlc ? "IEEE 802.2" : EthertypeName(record->rawEthertype);
  AddLine(in, Ahead(c, Left(c)), "Network: Raw IP,  Frame type:  %s", name ? name : kUnknown);
  AddLine(in, Ahead(c, Left(c)), "Frame network size: %lu", WireLength(record));
  AddPartialSize(in, c);
  AddCaptureLines(in);
  const DecoderRow* link = record->rawSkip ? FindLinkType(record) : nullptr;
  if (link && record->rawEthertype == kRawUnknown) return CallDecoder(at, c, link->decode, "Raw Data");
  const Cursor header = TakeCursor(c, record->rawSkip);
  if (link) TryDecoder(at, header, link->decode, nullptr);
  const Place network = Deeper(at);
  if (record->rawEthertype == kRawLlc) return CallDecoder(network, c, DecodeLlc, "Raw Data");
  const int32_t handled = DispatchEthertype(network, c, record->rawEthertype);
  return handled ? handled : CallDecoder(network, c, nullptr, "Raw Data");
}

// Frames whose link type is no medium: the lines that all frames start with, then what the link type's decoder shows.
int32_t DecodeLinkFrame(const Place& at, const Cursor& c, const DecoderRow* link) {
  const Place in = AddFrameSummary(at, c);
  AddLine(in, Ahead(c, Left(c)), "Network: %s", link->name);
  AddLine(in, Ahead(c, Left(c)), "Frame network size: %lu", WireLength(PacketOf(at).frame));
  AddPartialSize(in, c);
  AddCaptureLines(in);
  const int32_t index = ApplicationIndexOf(link->protocol);
  if (index >= 0) ReachLayer(at, DispatchTable::kApplication, static_cast<uint32_t>(index), c);
  return CallDecoder(at, c, link->decode, "Raw Data");
}

int32_t DecodeForced(const Place& at, Cursor c, const ForcedDecodingSettings& forced) {
  View* view = at.view;
  if (view->context->outputMode != kPrintMode && view->context->outputMode != kSaveMode) {
    ClearDecodeTree(view, view->tree, true);
  }
  if (!forced.protocolChoice && forced.startProtocol == kStartEthernetFrame) {
    TakeBytes(c, forced.skipBytes);
    return CallDecoder(at, c, FindMedium(0)->decode, "Raw Data");
  }
  const Place in = AddFrameSummary(at, c);
  AddLine(in, Ahead(c, Left(c)), "Frame network size: %lu", WireLength(PacketOf(at).frame));
  AddPartialSize(in, c);
  AddCaptureLines(in);
  TakeBytes(c, forced.skipBytes);
  return DecodeForcedPayload(Deeper(at), c, forced);
}

void ExpandBelow(DecodeTree* tree, LineHandle parent, const bool* expand, int32_t depth) {
  constexpr int32_t kDepths = 3;
  for (LineHandle line = tree->FirstChild(parent); line; line = tree->NextSibling(line)) {
    if (depth + 1 < kDepths) ExpandBelow(tree, line, expand, depth + 1);
    tree->Expand(line, expand[depth]);
  }
}

int32_t KindOfLine(View* view, LineHandle line) {
  ByteRange range = 0;
  const int32_t has = GetDecodeLineRange(view, view->tree, line, &range);
  int32_t kind;
  SplitByteRange(has ? &range : nullptr, &kind, nullptr, nullptr);
  return kind;
}

void ExpandTree(View* view) {
  const auto& levels = view->engine->settings.expandLevel;
  const bool areExpanded = view->tree->ExpandLevels(levels);
  for (LineHandle top = view->tree->FirstChild(0); top; top = view->tree->NextSibling(top)) {
    if (!areExpanded) ExpandBelow(view->tree, top, levels, 0);
    const int32_t kind = KindOfLine(view, top);
    if (view->expansionMask & BitMask(static_cast<uint32_t>(kind))) view->tree->Expand(top, true);
  }
}

// Selects the line at the path that was selected in the packet before, as far as this tree has lines.
void RestoreSelection(View* view) {
  DecodeTree* tree = view->tree;
  if (view->selectionPath[0] < 0) {
    view->selectionPath[0] = 0;
    view->selectionPath[1] = view->selectionPath[2] = -1;
    const LineHandle first = tree->FirstChild(0);
    view->currentTopKind = first ? KindOfLine(view, first) : 0;
    return;
  }
  LineHandle reached = 0;
  for (int32_t depth = 0; depth < 3 && view->selectionPath[depth] >= 0; ++depth) {
    LineHandle line = tree->FirstChild(reached);
    for (int32_t i = 0; line && i < view->selectionPath[depth]; ++i) line = tree->NextSibling(line);
    if (!line) return;
    reached = line;
  }
  if (reached) tree->Select(reached);
}

}  // namespace

const DecoderRow* FindFrameDecoder(const FrameRecord* record) {
  const DecoderRow* medium = FindMedium(record->mediaType);
  return medium ? medium : FindLinkType(record);
}

const char* ReceiveErrorNote(uint32_t receiveErrors) {
  if (receiveErrors == 0) return "";
  constexpr uint32_t kBoth = kReceiveAlignment | kReceiveCrc;
  // The stray parenthesis is part of the note: users search for it.
  if ((receiveErrors & kBoth) == kBoth) return "[Alignment+CRC])";
  if (receiveErrors & kReceiveAlignment) return "[Alignment error]";
  if (receiveErrors & kReceiveCrc) return "[CRC error]";
  if (receiveErrors & kReceiveTooSmall) return "[Frame Too Small]";
  if (receiveErrors & kReceiveTooBig) return "[Frame Too Big]";
  if (receiveErrors & kReceiveAbort) return "[Abort error]";
  if (receiveErrors & kReceiveRBit) return "[RBit error]";
  return "[Undefined error]";
}

Place AddFrameSummary(const Place& at, const Cursor& c) {
  const FrameRecord* record = PacketOf(at).frame;
  const char* note = ReceiveErrorNote(record->receiveErrors);
  const KeyedAs keys(PacketOf(at), kFrameProtocol);
  const LineHandle line = AddLine(at, Ahead(c, Left(c)), "Packet %I64u:  %u bytes captured%s%s", record->packetNumber,
                                  record->capturedLength, note[0] ? "  " : "", note);
  if (PacketOf(at).asked && line == kLineOutsideDisplay) [[unlikely]] return Under(at, kLeftFrameLine);
  if (KeepsFacts(at.view)) [[unlikely]] {
    LabelLine(at.view, line, "Number");
    NumberLine(at.view, line, record->packetNumber, false);
  }
  return Under(at, line);
}

void AddPartialSize(const Place& in, const Cursor& c) {
  const FrameRecord* record = PacketOf(in).frame;
  if (record->partial == 1) {
    AddLine(in, Ahead(c, Left(c)), "Saved partial packet size:  %lu", record->capturedLength);
  }
}

namespace {

constexpr Field kNowhere = {nullptr, 0, 0, 0, true};

void AddTimeLine(const Place& in, int64_t nanoseconds) {
  constexpr int64_t kPerSecond = 1000000000;
  const int64_t rest = nanoseconds % kPerSecond;
  const uint32_t fraction = static_cast<uint32_t>(rest < 0 ? rest + kPerSecond : rest);
  AddLine(in, kNowhere, "Time: %s UTC", UtcText(nanoseconds / kPerSecond - (rest < 0), fraction, fraction % 1000 == 0 ? 6 : 9));
}

}  // namespace

void AddCaptureLines(const Place& in) {
  const FrameRecord* record = PacketOf(in).frame;
  const bool isLeft = Silent(in) || in.parent == kLeftFrameLine;
  int32_t left;
  const char* note = reinterpret_cast<const char*>(FindExtension(record, kExtensionNotes, &left));
  if (record->nanoseconds != 0 && (left == 0 || note[0] == 0)) {
    if (isLeft) {
      CountLines(in, 1);
    } else {
      AddTimeLine(in, record->nanoseconds);
    }
  }
  while (left > 0) {
    const void* end = std::memchr(note, 0, static_cast<size_t>(left));
    if (!end) return;
    const int32_t length = static_cast<int32_t>(static_cast<const char*>(end) - note);
    // keys: text Time, Interface, Direction, Comment
    if (length > 0) AddLine(in, kNowhere, "%s", note);
    note += length + 1;
    left -= length + 1;
  }
}

bool OriginalPacketNumber(const FrameRecord* record, uint64_t* number) {
  int32_t length;
  const uint8_t* data = FindExtension(record, kExtensionOriginalNumber, &length);
  if (!data || length < 8) return false;
  *number = ReadLittleU64(data);
  return true;
}

uint32_t SizeWithCheckSequence(const FrameRecord* record, uint32_t checkSequenceLength) {
  const bool held = HasFullHeader(record) && record->checkSequenceLength > 0;
  return WireLength(record) + (held ? 0 : checkSequenceLength);
}

ShortText<80> CheckAlias(const View* view, uint32_t kind, const uint8_t* address) {
  ShortText<80> made;
  made.text[0] = 0;
  if (view->context->silent && (view->context->outputMode != kDisplayMode || view->context->packet.asked)) return made;
  char notation[kIPv6TextSize];
  if (kind == 0) {
    FormatMac(address, notation);
  } else if (kind == 1) {
    FormatIPv4(address, notation);
  } else {
    FormatIPv6(address, notation);
  }
  const QxHost* host = view->engine->host;
  const auto alias = QXVIEW_HOST_FUNCTION(host, addressAlias);
  char name[32] = "";
  if (alias && alias(host->user, kind, address, name, sizeof name) == 1 && name[0]) {
    FormatInto(made.text, sizeof made.text, "%s [%s]", static_cast<const char*>(name),
               static_cast<const char*>(notation));
  } else {
    CopyString(made.text, sizeof made.text, notation);
  }
  return made;
}

int32_t NamedMac::Write(const DeferredText& text, char* out, int32_t size) {
  const auto& mac = static_cast<const NamedMac&>(text);
  return FormatInto(out, size, "%s", CheckAlias(mac.view, 0, mac.address));
}

FormatArgument ArgumentOf(const NamedMac& mac) {
  if (QXVIEW_HOST_FUNCTION(mac.view->engine->host, addressAlias)) return ArgumentOf(static_cast<const DeferredText&>(mac));
  return ArgumentOf(AddressBytes<AddressForm::kMac>{mac.address});
}

int32_t DecodeFrame(View* view, const FrameRecord* record, uint32_t userParam1, uint32_t userParam2,
                    int32_t skipBytes) {
  if (!view || !view->context || !view->tree || !record) return 0;
  DecodeContext* context = view->context;
  PacketState& packet = context->packet;
  std::construct_at(&packet);   // in place: nothing is copied
  packet.frame = record;
  packet.userParam1 = userParam1;
  packet.userParam2 = userParam2;
  BeginLines(packet, record->capturedLength);
  packet.protocol = kFrameProtocol;
  const bool display = context->outputMode == kDisplayMode, silent = context->silent;
  packet.asked = display && context->facts && context->facts->question ? context : nullptr;
  if (packet.asked) ChooseLines(context);
  const int64_t number = static_cast<int64_t>(record->packetNumber);
  // The headers of the frame that is shown may be read once more: its lines keep their origins.
  if (!context->headersOnly || number != context->packetNumber) ForgetOrigins(context->origins);
  context->packetNumber = number;
  if (display) view->tree->HoldRedraw(true);

  const Place at = TopLevel(view, kFirstLevel);
  Cursor c = MakeCursor(FrameData(record), 0, record->capturedLength);
  TakeBytes(c, skipBytes);
  const ForcedDecodingSettings& forced = view->engine->settings.forced;
  int32_t handled = 0;
  if (forced.on) {
    handled = DecodeForced(at, c, forced);
  } else if (HasFullHeader(record) && record->rawEthertype != 0) {
    handled = DecodeRawFrame(at, c, record);
  } else if (const DecoderRow* medium = FindMedium(record->mediaType)) {
    packet.protocol = medium->protocol->key;
    if (packet.asked) ChooseLines(context);
    handled = medium->decode(at, c);
  } else if (const DecoderRow* link = FindLinkType(record)) {
    handled = DecodeLinkFrame(at, c, link);
  }
  if (!display) return handled;
  if (packet.asked) {   // nobody sees the lines
    packet.asked = nullptr;
    context->silent = silent;
    return handled;
  }
  if (!view->isWritten) ExpandTree(view);
  view->tree->ScrollToTop();
  view->tree->HoldRedraw(false);
  if (!view->isWritten) RestoreSelection(view);
  return handled;
}

}  // namespace qxview
