// The look-ups of every dispatch table. decoders/registry.cpp defines them over its rows, so that core calls decoders
// without including one.
#pragma once
#include <cstdint>

#include "core/cursor.h"

namespace qxview {

struct Engine;
struct Place;

// Decodes what the cursor stands on into lines at the place. Result: 0 when the data is too short or not of the
// protocol, otherwise 1 or the result of the next decoder; the structured decoders also give 2 for truncated data.
using DecoderFunction = int32_t (*)(const Place& at, Cursor c);

// How long the message is that starts where the cursor stands, its header included; 0 while more bytes are needed to tell.
// For decoders over TCP, whose messages may span segments.
using MessageLengthFunction = int32_t (*)(const Cursor& c);
constexpr int32_t kNoMessage = -1;                    // these bytes start none
constexpr int32_t kMessageToTheEnd = 0x7FFFFFFF;      // it ends with the connection

// What the packet list shows of a payload; see decoders/app/packet_summaries.h.
struct SummaryInput;
using SummaryFunction = int32_t (*)(const SummaryInput& in, char* out, int32_t outSize);

// A protocol: a row of decoders/registry_rows.inc.
struct ProtocolRow {
  const char* name;
  const char* key;           // the keys of its lines start with it
  DecoderFunction decode;
  SummaryFunction summary;   // null: the packet list shows the decoder's top line
  MessageLengthFunction messageLength = nullptr;   // null: its messages are not joined
  bool takesRuns = false;    // the decoder gets all messages that are whole at once, not one by one
  bool isPlain = false;      // the decoder keeps and asks for nothing beside its bytes, and its lines are all of this key
};

// What leads to a protocol. The numbers are those of the registry's tables.
enum class DoorKind : int32_t {
  kMedium, kEncapsulation, kLlc, kEthertype, kIpProtocol, kNextHeader, kApplication, kTcpPort, kUdpPort, kCount
};

// A protocol in one of the tables, by the key that leads to it there.
struct DecoderRow {
  uint32_t key;
  const char* name;
  DecoderFunction decode;
  const ProtocolRow* protocol;
};

const DecoderRow* FindMedium(uint8_t mediaType);
const DecoderRow* FindEthertype(uint16_t ethertype);
const DecoderRow* FindIpProtocol(uint8_t protocol);
const DecoderRow* FindIPv6NextHeader(uint8_t nextHeader);
const DecoderRow* FindBuiltinDecoder(uint32_t index);   // the low 16 bits of a protocol identifier

// Encapsulations and variants that a link decoder chooses itself.
constexpr uint32_t kIslKey = 1, kAtmArpKey = 2;
const DecoderRow* FindLinkEncapsulation(uint32_t key);

struct DecoderRowSpan {
  const DecoderRow* rows;   // in the order of their keys
  int32_t count;
};
// A table with its name, for tests and listings.
DecoderRowSpan RegistryTable(DoorKind kind, const char** name = nullptr);
// Every protocol in turn; null past the last.
const ProtocolRow* RegistryProtocol(int32_t number);
// The index by which definitions and detection name a protocol of the registry; -1 for one that they do not.
int32_t ApplicationIndexOf(const ProtocolRow* protocol);

// 3Com NBP stands on a run of Ethertypes.
constexpr uint16_t kFirstNbp = 0x3C00, kLastNbp = 0x3C0D;

// The protocol of a decoder; null for a function that no row holds.
const ProtocolRow* ProtocolOf(DecoderFunction decode);

// The names of Ethertypes; null for one that has none.
const char* EthertypeName(uint16_t ethertype);

// The decoders' state of an engine; false when there is no memory.
bool CreateDecoderStates(Engine* engine);
void DestroyDecoderStates(Engine* engine);

// Calls a decoder on carried data and counts the nesting. At the bound, and when the decoder declines with 0, the
// caller's fallback is shown: a top-level raw data block with `title`; none for a null title. Result: the decoder's,
// or 1 when the fallback was shown in its place. Where nobody wants the lines, the decoder of a plain protocol is not
// called, and the result is 1.
int32_t CallDecoder(const Place& at, Cursor c, DecoderFunction decode, const char* title);

// The same without the fallback on 0: for callers that have a fallback of their own. A plain protocol's decoder is called
// in any case, since it may decline, but with the bound of lines reached, so that its loops end.
int32_t TryDecoder(const Place& at, Cursor c, DecoderFunction decode, const char* title);

// Link headers that more than one medium carries: a MAC header with its addresses, the type/length field and what
// follows, and the 802.2 header.
int32_t DecodeMacHeader(const Place& at, Cursor c);
int32_t DecodeEthernetHeader(const Place& at, Cursor c);
int32_t DecodeLlc(const Place& at, Cursor c);

// Dispatches a payload by its Ethertype. Fewer than 4 bytes: nothing, result 0.
int32_t DispatchEthertype(const Place& at, Cursor c, uint16_t ethertype);

}  // namespace qxview
