// 802.2 logical link control (IEEE 802.2).
//
//   0     1     2                 3 or 4
//   DSAP  SSAP  control (1 or 2)  payload; AA AA 03 is followed by a SNAP header
//
// Information and supervisory control fields have two bytes, unnumbered ones one.
#include "decoders/link/llc.h"

#include "core/line_facts.h"
namespace qxview {
namespace {

constexpr uint32_t kSnapSap = 0xAA, kUnnumberedInformation = 0x03;

constexpr auto kSapNames = SortedNames({{0x00, "Null"}, {0x02, "LLC Sublayer Management"}, {0x04, "SNA"},
                                        {0x06, "IP"}, {0x0E, "PROWAY"}, {0x42, "Spanning Tree BPDU"},
                                        {0x4E, "EIA RS-511"}, {0x5E, "ISI IP"}, {0x7E, "X.25"}, {0x80, "XNS"},
                                        {0x8E, "PROWAY Active Station List"}, {0x98, "ARP"}, {0xAA, "SNAP"},
                                        {0xBC, "VINES"}, {0xE0, "NetWare IPX"}, {0xF0, "NetBIOS"},
                                        {0xF4, "LAN Management"}, {0xF8, "Remote Program Load"},
                                        {0xFE, "OSI Network Layer"}, {0xFF, "Global"}});

constexpr auto kUnnumberedNames = SortedNames({{0x03, "UI"}, {0x0F, "DM"}, {0x43, "DISC"}, {0x63, "UA"},
                                               {0x6F, "SABME"}, {0x87, "FRMR"}, {0xAF, "XID"}, {0xE3, "TEST"}});

constexpr auto kSupervisoryNames = SortedNames({{0, "RR"}, {1, "RNR"}, {2, "REJ"}});

struct Sap {
  Field dsap, ssap, control;
};

void AddSapLines(const Place& in, const Sap& sap) {
  AddLine(in, sap.dsap, "DSAP: 0x%.02X = %s%s", sap.dsap.value, LookupName(kSapNames, sap.dsap.value & 0xFE),
          sap.dsap.value & 1 ? " (Group)" : "");
  AddLine(in, sap.ssap, "SSAP: 0x%.02X = %s%s", sap.ssap.value, LookupName(kSapNames, sap.ssap.value & 0xFE),
          sap.ssap.value & 1 ? " (Response)" : " (Command)");
  if (sap.control.here) AddControlLine(in, sap.control);
}

bool IsSnap(const Sap& sap) {
  return sap.control.here && sap.dsap.value == kSnapSap && sap.ssap.value == kSnapSap &&
         sap.control.value == kUnnumberedInformation;
}

// The two SAPs and the control field; the control is not here when the bytes end.
Sap TakeSap(Cursor& c) {
  Sap sap;
  sap.dsap = TakeU8(c);
  sap.ssap = TakeU8(c);
  const bool unnumbered = Left(c) >= 1 && (PeekU8(c) & 3) == 3;
  sap.control = unnumbered ? TakeU8(c) : TakeU16(c);
  return sap;
}

int32_t DecodeSnap(const Place& at, const Sap& sap, const Cursor& c) {
  const LineHandle top = AddLine(at, Stated(sap.dsap.offset, Left(c) < 5 ? 3 + Left(c) : 8), "802.2 SNAP Header:");
  const Place in = Under(at, top);
  AddSapLines(in, sap);
  return DecodeSnapFields(in, top, Deeper(at), c);
}

// Which service the SAPs and the control field name; first match wins. The cursor stands on the payload.
LlcService ChooseService(const Sap& sap, const Cursor& c) {
  const uint32_t dsap = sap.dsap.value, ssap = sap.ssap.value;
  const uint32_t control = sap.control.length == 1 ? sap.control.value & 0xEF : 0;
  const int32_t next = Left(c) >= 1 ? PeekU8(c) : -1;
  if (control == 0xAF || control == 0xE3) return LlcService::kXidTest;
  if (dsap == 0xFE && ssap == 0xFE) return next < 0 ? LlcService::kOsiOther : OsiService(static_cast<uint32_t>(next));
  if (dsap == 0xE0 && ssap == 0xE0) return Left(c) >= 30 ? LlcService::kIpx : LlcService::kNone;
  if (dsap == 0xF0 || ssap == 0xF0) return LlcService::kNetBios;
  if (dsap == 0xBC && ssap == 0xBC) return next == 0xBA ? LlcService::kVinesBa : LlcService::kVines;
  if (dsap == 0x42 && ssap == 0x42) return LlcService::kSpanningTree;
  if (dsap == 0x04 || ssap == 0x04) return LlcService::kSna;
  return LlcService::kNone;
}

// The numbers of information and supervisory frames.
void AddNumberBits(const Place& in, const Field& control, bool isInformation) {
  if (isInformation) {
    const BitPicture sent = BitsOf(control, 0, 7);
    AddBitLine(in, control, "%s: Send Sequence Number = %u", sent.picture, sent.value);
  } else {
    const BitPicture kind = BitsOf(control, 4, 2);
    AddBitLine(in, control, "%s: Supervisory Function = %u (%s)", kind.picture, kind.value,
               LookupName(kSupervisoryNames, kind.value));
  }
  const BitPicture received = BitsOf(control, 8, 7), poll = BitsOf(control, 15, 1);
  AddBitLine(in, control, "%s: Receive Sequence Number = %u", received.picture, received.value);
  AddBitLine(in, control, "%s: Poll or Final = %s", poll.picture, TrueOrFalse(poll.value));
}

}  // namespace

void AddControlLine(const Place& in, const Field& control) {
  const uint32_t first = control.length == 2 ? control.value >> 8 : control.value;
  if ((first & 1) == 0) {
    const LineHandle line = AddLine(in, control, "Control: 0x%.04X = Information, N(S) = %u, N(R) = %u", control.value,
                                    first >> 1, control.value >> 1 & 0x7F);
    AddNumberBits(Under(in, line), control, true);
  } else if ((first & 3) == 1) {
    const LineHandle line = AddLine(in, control, "Control: 0x%.04X = Supervisory, %s, N(R) = %u", control.value,
                                    LookupName(kSupervisoryNames, first >> 2 & 3), control.value >> 1 & 0x7F);
    AddNumberBits(Under(in, line), control, false);
  } else {
    const LineHandle line = AddLine(in, control, "Control: 0x%.02X = Unnumbered, %s", control.value,
                                    LookupName(kUnnumberedNames, first & 0xEF));
    if ((first & 0xEF) == kUnnumberedInformation) return;   // its control field says no more than its name
    const Place under = Under(in, line);
    const BitPicture poll = BitsOf(control, 3, 1);
    AddBitLine(under, control, "%s: Poll or Final = %s", poll.picture, TrueOrFalse(poll.value));
  }
}

LlcService OsiService(uint32_t nlpid) {
  switch (nlpid) {
    case 0x00: return LlcService::kOsiNull;
    case 0x81: return LlcService::kClnp;
    case 0x82: return LlcService::kEsIs;
    case 0x83: return LlcService::kIsIs;
    default: return LlcService::kOsiOther;
  }
}

const char* NameLlcPayload(Cursor c) {
  const Sap sap = TakeSap(c);
  if (!sap.control.here) return kUnknown;
  if (IsSnap(sap)) {
    TakeU24(c);
    const Field protocol = TakeU16(c);
    const char* name = protocol.here ? EthertypeName(static_cast<uint16_t>(protocol.value)) : nullptr;
    return name ? name : "SNAP";
  }
  const DecoderRow* service = FindLlcService(ChooseService(sap, c));
  return service ? service->name : LookupName(kSapNames, sap.dsap.value & 0xFE);
}

int32_t DecodeLlc(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "llc");
  const Cursor start = c;
  if (Left(c) < 2) return 0;
  const Sap sap = TakeSap(c);
  if (IsSnap(sap)) return DecodeSnap(at, sap, c);
  const DecoderRow* service = FindLlcService(ChooseService(sap, c));
  ReachLayer(at, DispatchTable::kLlc, service ? service->key : sap.dsap.value << 8, c);
  const Field header = Ahead(start, Taken(c));
  const Place in = Under(at, service ? AddLine(at, header, "802.2 Header: Protocol = %s", service->name)
                                     : AddLine(at, header, "802.2 Header"));
  AddSapLines(in, sap);
  if (Left(c) > 0) CallDecoder(Deeper(at), c, service ? service->decode : nullptr, "Raw Data");
  return 1;
}

}  // namespace qxview
