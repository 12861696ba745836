// IAX2 (RFC 5456): signalling and media of telephone calls over one UDP port. The call numbers are each end's own.
//
//   full frame:  1 + source call (15)   R + destination call (15)   time stamp (4)   out, in sequence   type   subclass
//   mini frame:  0 + source call (15)   time stamp (2)   voice
//   meta frame:  zero (16)   1 + source call (15)   time stamp (2) video   or   zero (16)   1 (1)   kind   time stamp (4)
#include "decoders/app/iax2.h"

#include "core/elements.h"
#include "decoders/states.h"

namespace qxview {
namespace {

constexpr uint32_t kTopBit = 0x8000;
enum FrameType : uint32_t { kVoice = 2, kVideo = 3, kIax = 6 };

constexpr auto kTypeNames = SortedNames({
    {1, "DTMF End"}, {2, "Voice"}, {3, "Video"}, {4, "Control"}, {5, "Null"}, {6, "IAX"}, {7, "Text"}, {8, "Image"},
    {9, "HTML"}, {10, "Comfort Noise"}, {11, "Modem"}, {12, "DTMF Begin"}});
constexpr auto kIaxNames = SortedNames({
    {1, "NEW"}, {2, "PING"}, {3, "PONG"}, {4, "ACK"}, {5, "HANGUP"}, {6, "REJECT"}, {7, "ACCEPT"}, {8, "AUTHREQ"},
    {9, "AUTHREP"}, {10, "INVAL"}, {11, "LAGRQ"}, {12, "LAGRP"}, {13, "REGREQ"}, {14, "REGAUTH"}, {15, "REGACK"},
    {16, "REGREJ"}, {17, "REGREL"}, {18, "VNAK"}, {19, "DPREQ"}, {20, "DPREP"}, {21, "DIAL"}, {22, "TXREQ"}, {23, "TXCNT"},
    {24, "TXACC"}, {25, "TXREADY"}, {26, "TXREL"}, {27, "TXREJ"}, {28, "QUELCH"}, {29, "UNQUELCH"}, {30, "POKE"},
    {31, "PAGE"}, {32, "MWI"}, {33, "UNSUPPORT"}, {34, "TRANSFER"}, {35, "PROVISION"}, {36, "FWDOWNL"}, {37, "FWDATA"},
    {38, "TXMEDIA"}, {39, "RTKEY"}, {40, "CALLTOKEN"}});
constexpr auto kControlNames = SortedNames({
    {1, "Hangup"}, {2, "Ring"}, {3, "Ringing"}, {4, "Answer"}, {5, "Busy"}, {8, "Congestion"}, {9, "Flash Hook"},
    {11, "Option"}, {12, "Key Radio"}, {13, "Unkey Radio"}, {14, "Call Progress"}, {15, "Call Proceeding"}, {16, "Hold"},
    {17, "Unhold"}, {18, "Video Update"}, {20, "Source Update"}, {24, "Connected Line"}, {25, "Redirecting"},
    {255, "Stop Sounds"}});
constexpr auto kHtmlNames = SortedNames({
    {1, "URL"}, {2, "Data"}, {4, "Beginning"}, {8, "End"}, {16, "Load Complete"}, {17, "Not Supported"}, {18, "Link URL"},
    {19, "Unlink"}, {20, "Link Reject"}});
constexpr auto kFormatNames = SortedNames({
    {0x1, "G.723.1"}, {0x2, "GSM"}, {0x4, "G.711 mu-law"}, {0x8, "G.711 a-law"}, {0x10, "G.726"}, {0x20, "IMA ADPCM"},
    {0x40, "16-bit Linear"}, {0x80, "LPC10"}, {0x100, "G.729"}, {0x200, "Speex"}, {0x400, "iLBC"}, {0x800, "G.726 AAL2"},
    {0x1000, "G.722"}, {0x2000, "AMR"}, {0x10000, "JPEG"}, {0x20000, "PNG"}, {0x40000, "H.261"}, {0x80000, "H.263"},
    {0x100000, "H.263p"}, {0x200000, "H.264"}});
constexpr auto kDataNames = SortedNames({{0, "None"}, {1, "V.110"}, {2, "H.223/H.245"}});
constexpr auto kPresentationNames = SortedNames({
    {0x00, "Allowed, User-Provided, Not Screened"}, {0x01, "Allowed, User-Provided, Passed"},
    {0x02, "Allowed, User-Provided, Failed"}, {0x03, "Allowed, Network Number"},
    {0x20, "Prohibited, User-Provided, Not Screened"}, {0x21, "Prohibited, User-Provided, Passed"},
    {0x22, "Prohibited, User-Provided, Failed"}, {0x23, "Prohibited, Network Number"}, {0x43, "Number Not Available"}});
constexpr auto kNumberTypeNames = SortedNames({
    {0x00, "Unknown"}, {0x10, "International"}, {0x20, "National"}, {0x30, "Network Specific"}, {0x40, "Subscriber"},
    {0x60, "Abbreviated"}, {0x70, "Reserved"}});
constexpr auto kAuthenticationNames = SortedNames({{1, "Plain Text"}, {2, "MD5"}, {4, "RSA"}});
constexpr auto kEncryptionNames = SortedNames({{1, "AES-128"}, {2, "AES-128 with Rotating Keys"}});
constexpr auto kDialplanNames = SortedNames({
    {0x1, "Exists"}, {0x2, "Can Exist"}, {0x4, "Does Not Exist"}, {0x4000, "Retain Dialtone"}, {0x8000, "More Digits May Match"}});
constexpr auto kCauseNames = SortedNames({
    {1, "Unassigned Number"}, {2, "No Route to Transit Network"}, {3, "No Route to Destination"}, {6, "Channel Unacceptable"},
    {7, "Call Awarded and Delivered"}, {16, "Normal Call Clearing"}, {17, "User Busy"}, {18, "No User Response"},
    {19, "No Answer"}, {21, "Call Rejected"}, {22, "Number Changed"}, {27, "Destination Out of Order"},
    {28, "Invalid Number Format"}, {29, "Facility Rejected"}, {30, "Response to Status Enquiry"}, {31, "Normal, Unspecified"},
    {34, "No Circuit Available"}, {38, "Network Out of Order"}, {41, "Temporary Failure"}, {42, "Switch Congestion"},
    {43, "Access Information Discarded"}, {44, "Requested Channel Not Available"}, {45, "Preempted"},
    {47, "Resource Unavailable"}, {50, "Facility Not Subscribed"}, {52, "Outgoing Call Barred"}, {54, "Incoming Call Barred"},
    {57, "Bearer Capability Not Authorized"}, {58, "Bearer Capability Not Available"}, {63, "Service Not Available"},
    {65, "Bearer Capability Not Implemented"}, {66, "Channel Type Not Implemented"}, {69, "Facility Not Implemented"},
    {81, "Invalid Call Reference"}, {82, "Channel Does Not Exist"}, {88, "Incompatible Destination"},
    {95, "Invalid Message"}, {96, "Mandatory Element Missing"}, {97, "Message Type Not Implemented"},
    {98, "Wrong Message"}, {99, "Information Element Not Implemented"}, {100, "Invalid Element Contents"},
    {101, "Wrong Call State"}, {102, "Recovery on Timer Expiry"}, {103, "Mandatory Element Length Error"},
    {111, "Protocol Error"}, {127, "Interworking"}});

struct Iax {
  Field format;
};

void ShowText(const Place& in, Cursor& c, const char* label, Iax&) {
  const Field text = Rest(c);
  if (text.here) AddLine(in, text, "%s: %s", label, Text(text));
}
// keys: text Called Number, Calling Number, Calling ANI, Calling Name, Called Context, User Name, Password, Language
// keys: text Originating DNID, Challenge, MD5 Result, RSA Result, Cause, Firmware Device Type, Music on Hold, RDNIS, Call Token
// keys: text Service Identifier
constexpr auto kText = Rows<Iax>({Shown<Iax>(nullptr, ShowText)});
constexpr auto kBytes = Rows<Iax>({Bytes(0, nullptr)});
constexpr auto kU16 = Rows<Iax>({Number(2, nullptr)});
constexpr auto kU32 = Rows<Iax>({Number(4, nullptr)});
constexpr auto kHex16 = Rows<Iax>({Hex(2, nullptr)});
constexpr auto kFormats = Rows<Iax>({Flags(4, nullptr, kFormatNames)});
constexpr auto kDataFormat = Rows<Iax>({Hex(4, nullptr, kDataNames)});
constexpr auto kAuthentication = Rows<Iax>({Flags(2, nullptr, kAuthenticationNames)});
constexpr auto kDialplan = Rows<Iax>({Flags(2, nullptr, kDialplanNames)});
constexpr auto kEncryption = Rows<Iax>({Flags(2, nullptr, kEncryptionNames)});
constexpr auto kPresentation = Rows<Iax>({Hex(1, nullptr, kPresentationNames)});
constexpr auto kNumberType = Rows<Iax>({Hex(1, nullptr, kNumberTypeNames)});
constexpr auto kCauseCode = Rows<Iax>({Number(1, nullptr, kCauseNames)});
constexpr auto kSubclass = Rows<Iax>({Number(1, nullptr, kIaxNames)});
constexpr auto kSeconds = Rows<Iax>({Number(2, nullptr, " seconds")});
constexpr auto kLoss = Rows<Iax>({Word(4), Bits(0, 8, "Loss Percentage", "%"), Bits(8, 24, "Loss Count")});
constexpr auto kSamplingRate = Rows<Iax>({Number(2, nullptr, " Hz")});
constexpr auto kSocket4 = LittleRows<Iax>({Number(2, "Address Family")});
constexpr auto kSocketRest = Rows<Iax>({Number(2, "Port"), IPv4("Address"), Bytes(0, "Filling")});
constexpr auto kWideFormats = Rows<Iax>({Number(1, "Version"), Hex(8, "Formats")});
constexpr auto kVariable = Rows<Iax>({Text(0, "Variable")});
void ShowTimeText(const Place& in, Cursor& c, const char* label, Iax&) {
  const uint32_t word = PeekU32(c);
  if (Left(c) < 4) return;
  AddLine(in, Ahead(c, 4), "%s: %u-%.02u-%.02u %.02u:%.02u:%.02u", label, 2000 + (word >> 25), word >> 21 & 15,   // keys: text Time
          word >> 16 & 31, word >> 11 & 31, word >> 5 & 63, 2 * (word & 31));
}
constexpr auto kTime = Rows<Iax>({
    Shown<Iax>("Time", ShowTimeText), Word(4), Bits(0, 7, "Year Since 2000"), Bits(7, 4, "Month"), Bits(11, 5, "Day"), Bits(16, 5, "Hours"), Bits(21, 6, "Minutes"),
    Bits(27, 5, "Two Seconds")});

void ShowAddress(const Place& in, Cursor& c, Iax& iax) {
  ShowRows<Iax>(in, c, kSocket4, iax);
  ShowRows<Iax>(in, c, kSocketRest, iax);
}

constexpr auto kElements = Choices<Iax>({
    {1, "Called Number", kText}, {2, "Calling Number", kText}, {3, "Calling ANI", kText}, {4, "Calling Name", kText},
    {5, "Called Context", kText}, {6, "User Name", kText}, {7, "Password", kText}, {8, "Capability", kFormats},
    {9, "Format", kFormats}, {10, "Language", kText}, {11, "Version", kHex16}, {12, "ADSI CPE", kHex16},
    {13, "Originating DNID", kText}, {14, "Authentication Methods", kAuthentication}, {15, "Challenge", kText},
    {16, "MD5 Result", kText}, {17, "RSA Result", kText}, {18, "Apparent Address", {}, ShowAddress}, {19, "Refresh", kSeconds},
    {20, "Dialplan Status", kDialplan}, {21, "Call Number", kU16}, {22, "Cause", kText}, {23, "Unknown IAX Command", kSubclass},
    {24, "Message Count", kU16}, {25, "Auto Answer"}, {26, "Music on Hold", kText}, {27, "Transfer ID", kU32},
    {28, "RDNIS", kText}, {29, "Provisioning", kBytes}, {30, "AES Provisioning", kBytes}, {31, "Date and Time", kTime},
    {32, "Firmware Device Type", kText}, {33, "Service Identifier", kText}, {34, "Firmware Version", kU16},
    {35, "Firmware Block Description", kU32}, {36, "Firmware Block Data", kBytes}, {37, "Provisioning Version", kU32},
    {38, "Calling Presentation", kPresentation}, {39, "Calling Type of Number", kNumberType},
    {40, "Calling Transit Network Select", kU16}, {41, "Sampling Rate", kSamplingRate}, {42, "Hangup Cause", kCauseCode},
    {43, "Encryption Methods", kEncryption}, {44, "Encryption Key", kBytes}, {45, "Codec Preferences", kText},
    {46, "Received Jitter", kU32}, {47, "Received Loss", kLoss}, {48, "Received Frames", kU32},
    {49, "Maximum Playout Delay", kU16}, {50, "Dropped Frames", kU32}, {51, "Frames Out of Order", kU32},
    {52, "Variable", kVariable}, {53, "OSP Token", kBytes}, {54, "Call Token", kBytes}, {55, "64-Bit Capability", kWideFormats},
    {56, "64-Bit Format", kWideFormats}, {255, "Data Format", kDataFormat}});
// keys: text Codec Preferences

// The subclass holds a number, or the exponent of two behind its top bit.
uint32_t SubclassOf(uint32_t subclass) {
  return subclass & 0x80 ? uint32_t{1} << (subclass & 0x1F) : subclass;
}

const char* SubclassName(uint32_t type, uint32_t subclass) {
  switch (type) {
    case kVoice:
    case kVideo: return LookupName(kFormatNames, SubclassOf(subclass));
    case 4: return LookupName(kControlNames, subclass);
    case kIax: return LookupName(kIaxNames, subclass);
    case 9: return LookupName(kHtmlNames, subclass);
    default: return nullptr;
  }
}

RequestKey CallKey(const PacketState& packet, uint32_t call) {
  return {DirectionOf(packet), {call, 0, 0, 0}};
}

// The formats are those of the end that sends.
void NoteFrame(const Place& at, uint32_t call, uint32_t type, uint32_t subclass, uint32_t time) {
  if (PacketOf(at).quoted || call == 0) return;
  const RequestKey key = CallKey(PacketOf(at), call);
  const IaxCall* known = Recall(at.view, kIaxCalls, key);
  IaxCall iax = known ? *known : IaxCall{};
  if (type == kVoice) iax.voice = SubclassOf(subclass);
  if (type == kVideo) iax.video = SubclassOf(subclass & 0xBF);
  iax.time = time;
  Remember(at.view, kIaxCalls, key, iax);
}

void ShowSubclass(const Place& in, Cursor& c, uint32_t type) {
  const Field subclass = TakeU8(c);
  const char* name = SubclassName(type, subclass.value);
  const bool isDtmf = type == 1 || type == 12;
  if (isDtmf) {
    const Field digit = Slice(subclass, 0, 1);
    AddLine(in, subclass, "Digit: %s", Text(digit));
  } else if (name) {
    AddLine(in, subclass, "Subclass: %u = %s", SubclassOf(subclass.value), name);
  } else {
    AddLine(in, subclass, "Subclass: %u", subclass.value);
  }
}

int32_t DecodeFull(const Place& at, Cursor c) {
  static constexpr auto kCalls = Rows<Iax>({
      Word(2), Flag(0, "Full Frame"), Bits(1, 15, "Source Call"), Word(2), Flag(0, "Retransmission"), Bits(1, 15, "Destination Call")});
  static constexpr auto kHead = Rows<Iax>({
      Number(4, "Timestamp", " milliseconds"), Number(1, "Outbound Sequence"), Number(1, "Inbound Sequence"),
      Number(1, "Frame Type", kTypeNames)});
  static constexpr ElementForm kForm{};
  Iax iax{};
  const uint32_t type = PeekU8(c, 10), subclass = PeekU8(c, 11), call = PeekU16(c) & ~kTopBit;
  const char* name = SubclassName(type, subclass);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "IAX2: %s%s%s, Call %u -> %u", LookupName(kTypeNames, type),
                                     name ? " " : "", name ? name : "", call, PeekU16(c, 2) & ~kTopBit));
  const uint32_t time = PeekU32(c, 4);
  ShowRows<Iax>(Under(in, AddLine(in, Ahead(c, 4), "Calls: %u -> %u", call, PeekU16(c, 2) & ~kTopBit)), c, kCalls, iax);
  ShowRows<Iax>(in, c, kHead, iax);
  ShowSubclass(in, c, type);
  NoteFrame(at, call, type, subclass, time);
  if (type == kIax || type == 4) {
    ShowElements<Iax>(in, c, kForm, "Information Element", kElements, iax);
  } else if (type == 7 || type == 9) {
    const Field text = Rest(c);
    if (text.here) AddLine(in, text, "Text: %s", Text(text));
  }
  AddBlock(in, Rest(c), "Media Data");
  return 1;
}

// The clock's low 16 bits, behind those of the last full frame.
void ShowTime(const Place& in, const Field& time, const IaxCall* call, uint32_t mask) {
  if (!call) return;
  uint32_t whole = (call->time & ~mask) | (time.value & mask);
  if (whole < call->time && call->time - whole > mask / 2) whole += mask + 1;
  AddLine(in, time, "Full Timestamp: %u milliseconds", whole);
}

int32_t DecodeMini(const Place& at, Cursor c) {
  static constexpr auto kHead = Rows<Iax>({
      Word(2), Flag(0, "Full Frame"), Bits(1, 15, "Source Call"), Number(2, "Timestamp", " milliseconds").Into(&Iax::format)});
  Iax iax{};
  const uint32_t number = PeekU16(c);
  const IaxCall* call = Recall(at.view, kIaxCalls, CallKey(PacketOf(at), number));
  const char* name = call && call->voice ? LookupName(kFormatNames, static_cast<uint32_t>(call->voice)) : kUnknown;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "IAX2: Mini Voice %s, Call %u", name, number));
  const Place head = Under(in, AddLine(in, Ahead(c, 4), "Mini Frame: Call %u, %u milliseconds", number, PeekU16(c, 2)));
  ShowRows<Iax>(head, c, kHead, iax);
  ShowTime(head, iax.format, call, 0xFFFF);
  AddBlock(in, Rest(c), "Media Data");
  return 1;
}

int32_t DecodeMetaVideo(const Place& at, Cursor c) {
  static constexpr auto kHead = Rows<Iax>({
      Hex(2, "Meta Indicator"), Word(2), Flag(0, "Video"), Bits(1, 15, "Source Call"), Word(2), Flag(0, "Frame Ends"),
      Bits(1, 15, "Timestamp", " milliseconds").Into(&Iax::format)});
  Iax iax{};
  const uint32_t number = PeekU16(c, 2) & ~kTopBit;
  const IaxCall* call = Recall(at.view, kIaxCalls, CallKey(PacketOf(at), number));
  const char* name = call && call->video ? LookupName(kFormatNames, static_cast<uint32_t>(call->video)) : kUnknown;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "IAX2: Meta Video %s, Call %u", name, number));
  ShowRows<Iax>(in, c, kHead, iax);
  AddBlock(in, Rest(c), "Media Data");
  return 1;
}

// Media of several calls in one datagram (RFC 5456 8.1.3.2).
int32_t DecodeMetaTrunk(const Place& at, Cursor c) {
  constexpr uint32_t kHasTimes = 1;
  static constexpr auto kHead = Rows<Iax>({
      Hex(2, "Meta Indicator"), Word(1), Flag(0, "Video"), Bits(1, 7, "Meta Command"), Word(1), Bits(0, 7, "Reserved"),
      Flag(7, "Trunk Timestamps"), Number(4, "Timestamp", " milliseconds")});
  static constexpr auto kEntry = Rows<Iax>({Word(2), Bits(0, 1, "Reserved"), Bits(1, 15, "Source Call"), Number(2, "Length")});
  static constexpr auto kTimedEntry = Rows<Iax>({
      Number(2, "Length"), Word(2), Bits(0, 1, "Reserved"), Bits(1, 15, "Source Call"), Number(2, "Timestamp", " milliseconds")});
  Iax iax{};
  const bool isTimed = PeekU8(c, 3) & kHasTimes;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "IAX2: Meta Trunk"));
  ShowRows<Iax>(in, c, kHead, iax);
  Loop loop;
  while (Left(c) >= (isTimed ? 6 : 4) && MoreAt(in, c, loop)) {
    const uint32_t length = PeekU16(c, isTimed ? 0 : 2), call = PeekU16(c, isTimed ? 2 : 0) & ~kTopBit;
    Cursor entry = TakeCursor(c, (isTimed ? 6 : 4) + length);
    const Place under = Under(in, AddLine(in, Ahead(entry, Left(entry)), "Entry: Call %u, %u bytes", call, length));
    ShowRows<Iax>(under, entry, isTimed ? RowSpan<Iax>(kTimedEntry) : RowSpan<Iax>(kEntry), iax);
    AddBlock(under, Rest(entry), "Media Data");
  }
  AddBlock(in, Rest(c), "Trunk Data");
  return 1;
}

}  // namespace

int32_t DecodeIax2(const Place& at, Cursor c) {
  constexpr int32_t kFullHeader = 12, kMiniHeader = 4, kTrunkHeader = 8, kVideoHeader = 6;
  if (Left(c) < kMiniHeader) return 0;
  const uint32_t first = PeekU16(c);
  if (first & kTopBit) return Left(c) < kFullHeader ? 0 : DecodeFull(at, c);
  if (first != 0) return DecodeMini(at, c);
  if (PeekU16(c, 2) & kTopBit) return Left(c) < kVideoHeader ? 0 : DecodeMetaVideo(at, c);
  return Left(c) < kTrunkHeader ? 0 : DecodeMetaTrunk(at, c);
}

}  // namespace qxview
