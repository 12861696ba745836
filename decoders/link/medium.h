// What the decoders of the media share, and the link headers that one medium carries of another.
#pragma once
#include "core/custom_libraries.h"
#include "core/decoder.h"
#include "core/frame_entry.h"

namespace qxview {

constexpr int32_t kMacAddressLength = 6;

// Takes the check sequence that the record's bytes end with off the cursor's end. Not here when the capture holds
// none.
Field CutCheckSequence(const Place& at, Cursor& c);

// Takes that many bytes off the cursor's end. Not here when there are fewer.
Field CutTail(Cursor& c, int32_t length);

// Lines under a frame's summary: the saved size of a partial frame, its number in the buffer it was captured
// in (of media that show it), the check sequence.
enum class OriginalNumber { kHidden, kShown, kShownWide };
void AddClosingSummaryLines(const Place& in, const Cursor& frame, OriginalNumber number, const Field& checkSequence);

// "label: address" with the user's name for it.
void AddAddress(const Place& in, const Field& address, const char* label);

// Frames of one medium inside another's: each starts at the first byte of its header.
int32_t DecodeTokenRingHeader(const Place& at, Cursor c);
int32_t DecodeFddiHeader(const Place& at, Cursor c);
int32_t DecodeWirelessHeader(const Place& at, Cursor c);
int32_t DecodeSwappedWirelessHeader(const Place& at, Cursor c);   // its control words have their bytes in the other order

// Takes the trailer of a parallel redundancy network (PRP) off the frame's end, where it has one.
void DecodeRedundancyTrailer(const Place& at, Cursor& c);

// SNAP as WAN and ATM carry it (RFC 2427, RFC 2684): an OUI and a protocol under `in`, what they name at `network`.
// Bridged frames stand behind `padding` bytes.
int32_t DecodeEncapsulatedSnap(const Place& in, const Place& network, Cursor c, int32_t padding);

// A network-layer protocol identifier (ISO 9577) and what it names; `in` gets its line, `network` the rest.
int32_t DispatchNlpid(const Place& in, const Place& network, Cursor c);
const char* NlpidName(uint32_t nlpid);   // null for one that has none

// The protocols of WAN links, from their address field on.
int32_t DecodePpp(const Place& at, Cursor c);
int32_t DecodeCiscoHdlc(const Place& at, Cursor c);
int32_t DecodeFrameRelay(const Place& at, Cursor c);
int32_t DecodeLinkManagement(const Place& at, Cursor c);   // Q.933 and LMI status, from the discriminator on

// Whether bytes whose link nobody named start like one of them.
bool LooksLikePpp(const Cursor& c);
bool LooksLikeCiscoHdlc(const Cursor& c);
bool LooksLikeFrameRelay(Cursor c);

// The radio header that the capture held in front of an 802.11 frame, from its extension block.
void DecodeRadioHeader(const Place& at);
bool HasHeaderPadding(const FrameRecord* record);   // the 802.11 header is filled up to a multiple of four bytes

}  // namespace qxview
