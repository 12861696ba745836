// SCCP, the Skinny client control protocol between phones and their call manager. There is no public standard: messages and
// fields are those that are told of by its maker and by what answers phones in its place; what is not is data.
//
//   0        4          8             12
//   length   version    message       body (length counts from the message on); numbers are little-endian
#include "core/elements.h"
#include "decoders/app/sccp_names.h"
#include "decoders/message_lengths.h"

namespace qxview {
namespace {

constexpr uint32_t kWideAddresses = 17;   // the version from which addresses have a kind and sixteen octets

constexpr auto kButtonNames = SortedNames({
    {0, "0"}, {1, "1"}, {2, "2"}, {3, "3"}, {4, "4"}, {5, "5"}, {6, "6"}, {7, "7"}, {8, "8"}, {9, "9"}, {10, "A"}, {11, "B"},
    {12, "C"}, {13, "D"}, {14, "*"}, {15, "#"}, {16, "+"}});
constexpr auto kStimulusNames = SortedNames({
    {1, "Last Number Redial"}, {2, "Speed Dial"}, {3, "Hold"}, {4, "Transfer"}, {5, "Forward All"}, {6, "Forward Busy"},
    {7, "Forward No Answer"}, {8, "Display"}, {9, "Line"}, {10, "T.120 Chat"}, {11, "T.120 Whiteboard"},
    {12, "T.120 Application Sharing"}, {13, "T.120 File Transfer"}, {14, "Video"}, {15, "Voice Mail"},
    {16, "Answer Release"}, {17, "Auto Answer"}, {19, "Select"}, {20, "Feature"}, {21, "Service URL"},
    {27, "Malicious Call"}, {33, "Generic Application 1"}, {125, "Conference"}, {126, "Call Park"}, {127, "Call Pickup"},
    {128, "Group Call Pickup"}});
constexpr auto kSoftKeyNames = SortedNames({
    {1, "Redial"}, {2, "New Call"}, {3, "Hold"}, {4, "Transfer"}, {5, "Forward All"}, {6, "Forward Busy"},
    {7, "Forward No Answer"}, {8, "Backspace"}, {9, "End Call"}, {10, "Resume"}, {11, "Answer"}, {12, "Information"},
    {13, "Conference"}, {14, "Park"}, {15, "Join"}, {16, "Meet Me"}, {17, "Pickup"}, {18, "Group Pickup"}});
constexpr auto kSoftKeySets = SortedNames({
    {0, "On Hook"}, {1, "Connected"}, {2, "On Hold"}, {3, "Ring In"}, {4, "Off Hook"}, {5, "Connected with Transfer"},
    {6, "Digits after First"}, {7, "Connected with Conference"}, {8, "Ring Out"}, {9, "Off Hook with Features"},
    {10, "In Use Hint"}});
constexpr auto kRingNames = SortedNames({
    {1, "Off"}, {2, "Inside"}, {3, "Outside"}, {4, "Feature"}, {5, "Flash Only"}, {6, "Precedence"}});
constexpr auto kDurationNames = SortedNames({{1, "Normal"}, {2, "Single"}});
constexpr auto kLampNames = SortedNames({{1, "Off"}, {2, "On"}, {3, "Wink"}, {4, "Flash"}, {5, "Blink"}});
constexpr auto kModeNames = SortedNames({{1, "On"}, {2, "Off"}});
constexpr auto kCallStates = SortedNames({
    {1, "Off Hook"}, {2, "On Hook"}, {3, "Ring Out"}, {4, "Ring In"}, {5, "Connected"}, {6, "Busy"}, {7, "Congestion"},
    {8, "Hold"}, {9, "Call Waiting"}, {10, "Call Transfer"}, {11, "Call Park"}, {12, "Proceed"}, {13, "Call Remote Multiline"},
    {14, "Invalid Number"}});
constexpr auto kCallTypes = SortedNames({{1, "Inbound"}, {2, "Outbound"}, {3, "Forward"}});
constexpr auto kSecurityNames = SortedNames({{0, "Unknown"}, {1, "Not Authenticated"}, {2, "Authenticated"}, {3, "Encrypted"}});
constexpr auto kPrivacyNames = SortedNames({{0, "None"}, {1, "Full"}});
constexpr auto kPathNames = SortedNames({{1, "Headset"}, {2, "Handset"}, {3, "Speaker"}});
constexpr auto kToneNames = SortedNames({
    {0x00, "Silence"}, {0x21, "Inside Dial Tone"}, {0x22, "Outside Dial Tone"}, {0x23, "Line Busy Tone"},
    {0x24, "Alerting Tone"}, {0x25, "Reorder Tone"}, {0x26, "Recorder Warning Tone"}, {0x27, "Recorder Detected Tone"},
    {0x28, "Reverting Tone"}, {0x29, "Receiver Off Hook Tone"}, {0x2A, "Partial Dial Tone"}, {0x2B, "No Such Number Tone"},
    {0x2C, "Busy Verification Tone"}, {0x2D, "Call Waiting Tone"}, {0x2E, "Confirmation Tone"},
    {0x2F, "Camp On Indication Tone"}, {0x30, "Recall Dial Tone"}, {0x31, "Zip Zip"}, {0x32, "Zip"},
    {0x33, "Beep Bonk"}, {0x34, "Music Tone"}, {0x35, "Hold Tone"}, {0x36, "Test Tone"}, {0x40, "Add Call Waiting"},
    {0x7F, "No Tone"}});
constexpr auto kDirections = SortedNames({{0, "User"}, {1, "Network"}, {2, "All"}});
constexpr auto kPayloadNames = SortedNames({
    {1, "Nonstandard"}, {2, "G.711 A-Law 64k"}, {3, "G.711 A-Law 56k"}, {4, "G.711 u-Law 64k"}, {5, "G.711 u-Law 56k"},
    {6, "G.722 64k"}, {7, "G.722 56k"}, {8, "G.722 48k"}, {9, "G.723.1"}, {10, "G.728"}, {11, "G.729"}, {12, "G.729 Annex A"},
    {13, "IS11172 Audio"}, {14, "IS13818 Audio"}, {15, "G.729 Annex B"}, {16, "G.729 Annexes A and B"},
    {18, "GSM Full Rate"}, {19, "GSM Half Rate"}, {20, "GSM Enhanced Full Rate"}, {25, "Wideband 256k"}, {32, "Data 64k"},
    {33, "Data 56k"}, {40, "G.722.1 32k"}, {41, "G.722.1 24k"}, {80, "GSM"}, {82, "G.726 32k"}, {83, "G.726 24k"},
    {84, "G.726 16k"}, {86, "iLBC"}, {100, "H.261"}, {101, "H.263"}, {103, "H.264"}, {105, "T.120"}, {106, "H.224"},
    {257, "RFC 2833 Dynamic Payload"}});
constexpr auto kStatusNames = SortedNames({{0, "Ok"}, {1, "Unknown Error"}, {2, "Out of Channels"}, {3, "Out of Sockets"}});
constexpr auto kAddressNames = SortedNames({{0, "IPv4"}, {1, "IPv6"}, {2, "IPv4 and IPv6"}});
constexpr auto kEncryptionNames = SortedNames({{0, "None"}, {1, "AES-128 with HMAC-SHA1-32"}, {2, "AES-128 with HMAC-SHA1-80"}});
constexpr auto kEchoNames = SortedNames({{0, "Off"}, {1, "On"}});
constexpr auto kSeverityNames = SortedNames({
    {0, "Critical"}, {1, "Warning"}, {2, "Informational"}, {4, "Unknown"}, {7, "Major"}, {8, "Minor"}, {10, "Marginal"},
    {20, "Trace Information"}});
constexpr auto kResetNames = SortedNames({{1, "Reset"}, {2, "Restart"}, {3, "Apply Configuration"}});
constexpr auto kDeviceNames = SortedNames({
    {1, "30 SP+"}, {2, "12 SP+"}, {3, "12 SP"}, {4, "12"}, {5, "30 VIP"}, {6, "7910"}, {7, "7960"}, {8, "7940"}, {9, "7935"},
    {12, "ATA 186"}, {20, "Virtual 30 SP+"}, {21, "Phone Application"}, {30, "Analog Access"}, {40, "Digital Access"},
    {42, "Digital Access+"}, {43, "Digital Access WS-X6608"}, {47, "Analog Access WS-X6624"}, {50, "Conference Bridge"},
    {51, "Conference Bridge WS-X6608"}, {52, "Conference Bridge of Routers"}, {61, "H.323 Phone"}, {62, "H.323 Gateway"},
    {70, "Music on Hold"}, {71, "Pilot"}, {72, "TAPI Port"}, {73, "TAPI Route Point"}, {80, "Voice Mail"}, {90, "Load Simulator"},
    {110, "Media Termination Point"}, {112, "Media Termination Point of Routers"}, {115, "7941"}, {119, "7971"},
    {120, "MGCP Station"}, {124, "Expansion Module 7914"}, {302, "7985"}, {307, "7911"}, {308, "7961 GE"}, {309, "7941 GE"},
    {365, "7921"}, {369, "7906"}, {404, "7962"}, {431, "7937"}, {434, "7942"}, {435, "7945"}, {436, "7965"}, {437, "7975"}});

struct Skinny {
  Field version, count;
};

// A number that follows the kind of the address where the version has one.
void ShowAddress(const Place& in, Cursor& c, const char* label, Skinny& skinny) {
  constexpr uint32_t kIPv6 = 1;
  const bool isWide = skinny.version.value >= kWideAddresses;
  uint32_t kind = 0;
  if (isWide) {
    const Field type = TakeLittleU32(c);
    kind = type.value;
    AddLine(in, type, "Address Type: %u = %s", type.value, LookupName(kAddressNames, type.value));
  }
  const Field address = TakeBytes(c, isWide ? 16 : 4);
  if (!address.here) return;
  if (kind == kIPv6) {
    AddLine(in, address, "%s: %s", label, IPv6Text(address.bytes));
  } else {
    const Field four = Slice(address, 0, 4);
    AddLine(in, four, "%s: %s", label, IPv4Text(four.bytes));   // keys: address Address, Remote Address, Source Address
    const Field filling = Slice(address, 4, address.length - 4);
    if (isWide) AddLine(in, filling, "Filling: %s", HexText(filling));
  }
}

// Texts of a fixed size end with a zero as a rule.
template <int32_t kSize>
void ShowFixed(const Place& in, Cursor& c, const char* label, Skinny&) {
  const Field whole = TakeBytes(c, kSize < Left(c) ? kSize : Left(c));
  int32_t length = 0;
  while (length < whole.length && PeekU8(whole, length) != 0) ++length;
  AddLine(in, whole, "%s: %s", label, Text(Slice(whole, 0, length)));
}
template <int32_t kSize>
constexpr Row<Skinny> Fixed(const char* label) { return Shown<Skinny>(label, ShowFixed<kSize>); }
void ShowTerminated(const Place& in, Cursor& c, const char* label, Skinny&) {
  if (Left(c) == 0) return;
  const int32_t end = FindU8(c, 0);
  const Field whole = TakeBytes(c, end < 0 ? Left(c) : end + 1);
  AddLine(in, whole, "%s: %s", label, Text(Slice(whole, 0, end < 0 ? whole.length : end)));
}
constexpr Row<Skinny> Ended(const char* label) { return Shown<Skinny>(label, ShowTerminated); }
constexpr Row<Skinny> Address(const char* label) { return Shown<Skinny>(label, ShowAddress); }
// keys: text Device Name, Firmware Load, Called Party, Alarm Text, Directory Number, Text, Label, URL, Fully Qualified Name
// keys: text Calling Party Name, Calling Party, Called Party Name, Original Called Party Name, Original Called Party
// keys: text Last Redirecting Party Name, Last Redirecting Party, Calling Party Voice Mail, Called Party Voice Mail
// keys: text Original Called Party Voice Mail, Last Redirecting Voice Mail, Alternate Calling Party, Hunt Pilot Number
// keys: text Hunt Pilot Name, Forward All Number, Forward Busy Number, Forward No Answer Number, Display Name, User Name
// keys: text Server Name, Version, Dialed Number, Date Template

constexpr auto kLineCall = LittleRows<Skinny>({Number(4, "Line Instance"), Number(4, "Call Reference")});
constexpr auto kLine = LittleRows<Skinny>({Number(4, "Line Instance")});
constexpr auto kIndex = LittleRows<Skinny>({Number(4, "Index")});
constexpr auto kPhoneFeatures = LittleRows<Skinny>({
    Word(2), Flag(0, "Abbreviated Dial"), Bits(1, 5, "Reserved"), Flag(6, "RFC 2833"), Flag(7, "Reserved"),
    Flag(8, "Dynamic Messages"), Bits(9, 2, "Reserved"), Flag(11, "UTF-8"), Bits(12, 4, "Reserved")});
void ShowFeatures(const Place& in, Cursor& c, const char*, Skinny& skinny) {
  if (Left(c) < 2) return;
  const Place under = Under(in, AddLine(in, Ahead(c, 2), "Phone Features: 0x%.04X", PeekLittleU16(c)));
  ShowRows<Skinny>(under, c, kPhoneFeatures, skinny);
}
constexpr Row<Skinny> Features() { return Shown<Skinny>(nullptr, ShowFeatures); }

constexpr auto kRegister = LittleRows<Skinny>({
    Fixed<16>("Device Name"), Number(4, "Reserved"), Number(4, "Instance"), IPv4("Address"), Number(4, "Device Type", kDeviceNames),
    Number(4, "Maximum Streams"), Number(4, "Active Streams"), Number(1, "Protocol Version"), Number(1, "Unknown Octet"), Features(),
    Number(4, "Maximum Conferences"), Number(4, "Active Conferences"), Bytes(6, "MAC Address"), Bytes(6, "Filling"),
    Number(4, "IPv4 Address Scope"), Number(4, "Maximum Lines"), IPv6("IPv6 Address"), Number(4, "IPv6 Address Scope"),
    Fixed<32>("Firmware Load")});
constexpr auto kToken = LittleRows<Skinny>({
    Fixed<16>("Device Name"), Number(4, "Reserved"), Number(4, "Instance"), IPv4("Address"), Number(4, "Device Type", kDeviceNames)});
constexpr auto kPort = LittleRows<Skinny>({Number(4, "RTP Media Port")});
constexpr auto kKeypad = LittleRows<Skinny>({
    Number(4, "Button", kButtonNames).Note(", %s"), Number(4, "Line Instance"), Number(4, "Call Reference")});
constexpr auto kEnbloc = LittleRows<Skinny>({Fixed<24>("Called Party"), Number(4, "Line Instance")});
constexpr auto kStimulus = LittleRows<Skinny>({
    Number(4, "Stimulus", kStimulusNames).Note(", %s"), Number(4, "Stimulus Instance")});
constexpr auto kCapability = LittleRows<Skinny>({
    Number(4, "Payload Capability", kPayloadNames), Number(4, "Frames per Packet"), Bytes(8, "Capability Parameters")});
constexpr auto kCount = LittleRows<Skinny>({Number(4, "Capability Count").Into(&Skinny::count)});
constexpr auto kAlarm = LittleRows<Skinny>({
    Number(4, "Severity", kSeverityNames), Fixed<80>("Alarm Text"), Number(4, "First Parameter"), Hex(4, "Second Parameter")});
constexpr auto kReceptionAck = LittleRows<Skinny>({Number(4, "Reception Status", kStatusNames), Number(4, "Pass-Through Party ID")});
constexpr auto kReceiveAck = LittleRows<Skinny>({
    Number(4, "Reception Status", kStatusNames), Address("Address"), Number(4, "Port"), Number(4, "Pass-Through Party ID"),
    Number(4, "Call Reference")});
constexpr auto kStatistics = LittleRows<Skinny>({
    Fixed<24>("Directory Number"), Number(4, "Call Reference"), Number(4, "Processing Mode"), Number(4, "Packets Sent"),
    Number(4, "Octets Sent"), Number(4, "Packets Received"), Number(4, "Octets Received"), Number(4, "Packets Lost"),
    Number(4, "Jitter"), Number(4, "Latency")});
constexpr auto kSoftKey = LittleRows<Skinny>({
    Number(4, "Soft Key Event", kSoftKeyNames).Note(", %s"), Number(4, "Line Instance"), Number(4, "Call Reference")});
constexpr auto kFailure = LittleRows<Skinny>({
    Number(4, "Conference ID"), Number(4, "Pass-Through Party ID"), Address("Remote Address"), Number(4, "Remote Port"),
    Number(4, "Call Reference")});
constexpr auto kHeadset = LittleRows<Skinny>({Number(4, "Headset Status", kModeNames)});
constexpr auto kResource = LittleRows<Skinny>({
    Number(4, "Device Type", kDeviceNames), Number(4, "Streams in Service"), Number(4, "Maximum Streams per Conference"),
    Number(4, "Streams out of Service")});
constexpr auto kAvailable = LittleRows<Skinny>({Number(4, "Available Lines")});
constexpr auto kPath = LittleRows<Skinny>({Number(4, "Media Path", kPathNames), Number(4, "Path Event", kModeNames)});
constexpr auto kRegisterAck = LittleRows<Skinny>({
    Number(4, "Keep Alive Interval", " seconds"), Fixed<6>("Date Template"), Bytes(2, "Alignment"),
    Number(4, "Secondary Keep Alive Interval", " seconds"), Number(1, "Maximum Protocol Version"), Number(1, "Unknown Octet"),
    Features()});
constexpr auto kStartTone = LittleRows<Skinny>({
    Number(4, "Tone", kToneNames).Note(", %s"), Number(4, "Tone Direction", kDirections), Number(4, "Line Instance"),
    Number(4, "Call Reference")});
constexpr auto kStopTone = LittleRows<Skinny>({
    Number(4, "Line Instance"), Number(4, "Call Reference"), Number(4, "Tone", kToneNames)});
constexpr auto kRinger = LittleRows<Skinny>({
    Number(4, "Ring Mode", kRingNames).Note(", %s"), Number(4, "Ring Duration", kDurationNames), Number(4, "Line Instance"),
    Number(4, "Call Reference")});
constexpr auto kLamp = LittleRows<Skinny>({
    Number(4, "Stimulus", kStimulusNames), Number(4, "Stimulus Instance"), Number(4, "Lamp Mode", kLampNames).Note(", %s")});
constexpr auto kSpeaker = LittleRows<Skinny>({Number(4, "Speaker Mode", kModeNames).Note(", %s")});
constexpr auto kMicrophone = LittleRows<Skinny>({Number(4, "Microphone Mode", kModeNames).Note(", %s")});
constexpr auto kQualifier = LittleRows<Skinny>({
    Number(1, "Codec Mode"), Number(1, "Dynamic Payload"), Number(1, "First Codec Parameter"), Number(1, "Second Codec Parameter")});
constexpr auto kEncryption = LittleRows<Skinny>({
    Number(4, "Encryption", kEncryptionNames), Number(2, "Key Length"), Number(2, "Salt Length"), Bytes(16, "Key"), Bytes(16, "Salt"),
    Number(4, "MKI Present"), Number(4, "Key Derivation Rate")});
constexpr auto kStreamEnd = LittleRows<Skinny>({
    Number(4, "Stream Pass-Through ID"), Number(4, "Associated Stream ID"), Number(4, "RFC 2833 Payload Type"),
    Number(4, "DTMF Type"), Number(4, "Mixing Mode"), Number(4, "Party Direction")});
constexpr auto kTransmission = LittleRows<Skinny>({
    Number(4, "Conference ID"), Number(4, "Pass-Through Party ID"), Address("Remote Address"), Number(4, "Remote Port"),
    Number(4, "Packet Size", " milliseconds"), Number(4, "Payload", kPayloadNames).Note(", %s"), Number(4, "Precedence Value"),
    Number(4, "Silence Suppression", kEchoNames), Number(2, "Maximum Frames per Packet"), Number(2, "Padding")});
constexpr auto kCall = LittleRows<Skinny>({Number(4, "Call Reference")});
constexpr auto kStop = LittleRows<Skinny>({
    Number(4, "Conference ID"), Number(4, "Pass-Through Party ID"), Number(4, "Call Reference"), Number(4, "Port Handling Flag")});
constexpr auto kReceive = LittleRows<Skinny>({
    Number(4, "Conference ID"), Number(4, "Pass-Through Party ID"), Number(4, "Packet Size", " milliseconds"),
    Number(4, "Payload", kPayloadNames).Note(", %s"), Number(4, "Echo Cancellation", kEchoNames)});
constexpr auto kReceiveEnd = LittleRows<Skinny>({
    Address("Source Address"), Number(4, "Source Port"), Number(4, "Requested Address Type", kAddressNames)});
constexpr auto kCallInformation = LittleRows<Skinny>({
    Fixed<40>("Calling Party Name"), Fixed<24>("Calling Party"), Fixed<40>("Called Party Name"), Fixed<24>("Called Party"),
    Number(4, "Line Instance"), Number(4, "Call Reference"), Number(4, "Call Type", kCallTypes).Note(", %s"),
    Fixed<40>("Original Called Party Name"), Fixed<24>("Original Called Party"), Fixed<40>("Last Redirecting Party Name"),
    Fixed<24>("Last Redirecting Party"), Number(4, "Original Redirect Reason"), Number(4, "Last Redirect Reason"),
    Fixed<24>("Calling Party Voice Mail"), Fixed<24>("Called Party Voice Mail"), Fixed<24>("Original Called Party Voice Mail"),
    Fixed<24>("Last Redirecting Voice Mail"), Number(4, "Call Instance"), Number(4, "Security Status", kSecurityNames),
    Hex(4, "Restricted Information")});
constexpr auto kRestricted = SortedNames({
    {0x1, "Calling Party Name"}, {0x2, "Calling Party Number"}, {0x4, "Called Party Name"}, {0x8, "Called Party Number"},
    {0x10, "Original Called Party Name"}, {0x20, "Original Called Party Number"}, {0x40, "Last Redirecting Party Name"},
    {0x80, "Last Redirecting Party Number"}});
constexpr auto kCallInformation2 = LittleRows<Skinny>({
    Number(4, "Line Instance"), Number(4, "Call Reference"), Number(4, "Call Type", kCallTypes).Note(", %s"),
    Number(4, "Original Redirect Reason"), Number(4, "Last Redirect Reason"), Number(4, "Call Instance"),
    Number(4, "Security Status", kSecurityNames), Flags(4, "Restricted Information", kRestricted), Ended("Calling Party"),
    Ended("Alternate Calling Party"), Ended("Called Party"), Ended("Original Called Party"), Ended("Last Redirecting Party"),
    Ended("Calling Party Voice Mail"), Ended("Called Party Voice Mail"), Ended("Original Called Party Voice Mail"),
    Ended("Last Redirecting Voice Mail"), Ended("Calling Party Name"), Ended("Called Party Name"),
    Ended("Original Called Party Name"), Ended("Last Redirecting Party Name"), Ended("Hunt Pilot Number"),
    Ended("Hunt Pilot Name")});
constexpr auto kForward = LittleRows<Skinny>({
    Number(4, "Active Forward"), Number(4, "Line Instance"), Number(4, "Forward All Active"), Fixed<24>("Forward All Number"),
    Number(4, "Forward Busy Active"), Fixed<24>("Forward Busy Number"), Number(4, "Forward No Answer Active"),
    Fixed<24>("Forward No Answer Number")});
constexpr auto kSpeedDial = LittleRows<Skinny>({Number(4, "Index"), Fixed<24>("Directory Number"), Fixed<40>("Display Name")});
constexpr auto kLineStatus = LittleRows<Skinny>({
    Number(4, "Line Instance"), Fixed<24>("Directory Number"), Fixed<40>("Fully Qualified Name"), Fixed<40>("Display Name")});
constexpr auto kConfiguration = LittleRows<Skinny>({
    Fixed<16>("Device Name"), Number(4, "Reserved"), Number(4, "Instance"), Fixed<40>("User Name"), Fixed<40>("Server Name"),
    Number(4, "Lines"), Number(4, "Speed Dials")});
constexpr auto kTimeDate = LittleRows<Skinny>({
    Number(4, "Year"), Number(4, "Month"), Number(4, "Day of Week"), Number(4, "Day"), Number(4, "Hour"), Number(4, "Minute"),
    Number(4, "Second"), Number(4, "Milliseconds"), UnixTime(4, "System Time")});
constexpr auto kSession = LittleRows<Skinny>({Address("Remote Address"), Number(4, "Session Type")});
constexpr auto kTemplate = LittleRows<Skinny>({
    Number(4, "Offset"), Number(4, "Entries").Into(&Skinny::count), Number(4, "Total Entries")});
constexpr auto kTemplateButton = LittleRows<Skinny>({Number(1, "Instance"), Number(1, "Definition", kStimulusNames)});
constexpr auto kTemplateKey = LittleRows<Skinny>({Fixed<16>("Label"), Number(4, "Soft Key Event", kSoftKeyNames)});
constexpr auto kKeySet = LittleRows<Skinny>({Bytes(16, "Template Indexes"), Bytes(32, "Information Indexes")});
constexpr auto kVersionText = LittleRows<Skinny>({Fixed<16>("Version")});
constexpr auto kText = LittleRows<Skinny>({Fixed<32>("Text")});
constexpr auto kResetType = LittleRows<Skinny>({Number(4, "Reset Type", kResetNames)});
constexpr auto kStopMulticast = LittleRows<Skinny>({Number(4, "Conference ID"), Number(4, "Pass-Through Party ID")});
constexpr auto kClose = LittleRows<Skinny>({
    Number(4, "Conference ID"), Number(4, "Pass-Through Party ID"), Number(4, "Call Reference")});
constexpr auto kStatisticsRequest = LittleRows<Skinny>({
    Fixed<24>("Directory Number"), Number(4, "Call Reference"), Number(4, "Processing Mode")});
constexpr auto kSelect = LittleRows<Skinny>({
    Number(4, "Line Instance"), Number(4, "Call Reference"), Number(4, "Soft Key Set", kSoftKeySets).Note(", %s")});
constexpr auto kState = LittleRows<Skinny>({
    Number(4, "Call State", kCallStates).Note(", %s"), Number(4, "Line Instance"), Number(4, "Call Reference"),
    Number(4, "Privacy", kPrivacyNames), Number(4, "Precedence Level"), Number(4, "Precedence Domain")});
constexpr auto kPrompt = LittleRows<Skinny>({
    Number(4, "Timeout", " seconds"), Fixed<32>("Text"), Number(4, "Line Instance"), Number(4, "Call Reference")});
constexpr auto kNotify = LittleRows<Skinny>({Number(4, "Timeout", " seconds"), Fixed<32>("Text")});
constexpr auto kPriorityNotify = LittleRows<Skinny>({
    Number(4, "Timeout", " seconds"), Number(4, "Priority"), Fixed<32>("Text")});
constexpr auto kPriority = LittleRows<Skinny>({Number(4, "Priority")});
constexpr auto kUnregister = LittleRows<Skinny>({Number(4, "Unregister Status")});
constexpr auto kDialed = LittleRows<Skinny>({
    Fixed<25>("Dialed Number"), Number(4, "Line Instance"), Number(4, "Call Reference")});
constexpr auto kDialedShort = LittleRows<Skinny>({
    Fixed<24>("Dialed Number"), Number(4, "Line Instance"), Number(4, "Call Reference")});
constexpr auto kFeature = LittleRows<Skinny>({
    Number(4, "Index"), Number(4, "Feature ID"), Fixed<40>("Label"), Number(4, "Feature Status")});
constexpr auto kCallSelect = LittleRows<Skinny>({
    Number(4, "Selection Status"), Number(4, "Call Reference"), Number(4, "Line Instance")});
constexpr auto kNotify2 = LittleRows<Skinny>({Number(4, "Timeout", " seconds"), Ended("Text")});
constexpr auto kPriorityNotify2 = LittleRows<Skinny>({
    Number(4, "Timeout", " seconds"), Number(4, "Priority"), Ended("Text")});
constexpr auto kPrompt2 = LittleRows<Skinny>({
    Number(4, "Timeout", " seconds"), Number(4, "Line Instance"), Number(4, "Call Reference"), Ended("Text")});
constexpr auto kFeature2 = LittleRows<Skinny>({
    Number(4, "Index"), Number(4, "Feature ID"), Number(4, "Feature Status"), Ended("Label")});
constexpr auto kLine2 = LittleRows<Skinny>({
    Number(4, "Line Instance"), Number(4, "Line Type"), Ended("Directory Number"), Ended("Fully Qualified Name"), Ended("Label")});
constexpr auto kService2 = LittleRows<Skinny>({Number(4, "Index"), Ended("URL"), Ended("Label")});
constexpr auto kSpeedDial2 = LittleRows<Skinny>({Number(4, "Index"), Ended("Directory Number"), Ended("Display Name")});
constexpr auto kTransmissionAck = LittleRows<Skinny>({
    Number(4, "Conference ID"), Number(4, "Pass-Through Party ID"), Number(4, "Call Reference"), Address("Address"),
    Number(4, "Port"), Number(4, "Transmission Status", kStatusNames)});

void ShowEach(const Place& in, Cursor& c, RowSpan<Skinny> rows, int32_t size, uint32_t count, Skinny& skinny) {
  Loop loop;
  for (uint32_t i = 0; i < count && Left(c) >= size && MoreAt(in, c, loop); ++i) ShowRows<Skinny>(in, c, rows, skinny);
}
void ShowCapabilities(const Place& in, Cursor& c, Skinny& skinny) {
  const uint32_t count = PeekLittleU32(c);
  ShowRows<Skinny>(in, c, kCount, skinny);
  ShowEach(in, c, kCapability, 16, count, skinny);
}
void ShowTransmission(const Place& in, Cursor& c, Skinny& skinny) {
  ShowRows<Skinny>(in, c, kTransmission, skinny);
  ShowRows<Skinny>(in, c, kQualifier, skinny);
  ShowRows<Skinny>(in, c, kCall, skinny);
  if (Left(c) >= 48) ShowRows<Skinny>(in, c, kEncryption, skinny);
  if (Left(c) >= 4) ShowRows<Skinny>(in, c, kStreamEnd, skinny);
}
void ShowReceive(const Place& in, Cursor& c, Skinny& skinny) {
  ShowRows<Skinny>(in, c, kReceive, skinny);
  ShowRows<Skinny>(in, c, kQualifier, skinny);
  ShowRows<Skinny>(in, c, kCall, skinny);
  if (Left(c) >= 48) ShowRows<Skinny>(in, c, kEncryption, skinny);
  if (Left(c) >= 24) ShowRows<Skinny>(in, c, kStreamEnd, skinny);
  if (Left(c) >= 8) ShowRows<Skinny>(in, c, kReceiveEnd, skinny);
}
template <const auto& kEntry, int32_t kSize>
void ShowTemplate(const Place& in, Cursor& c, Skinny& skinny) {
  const uint32_t count = PeekLittleU32(c, 4);
  ShowRows<Skinny>(in, c, kTemplate, skinny);
  ShowEach(in, c, kEntry, kSize, count, skinny);
}
void ShowDialed(const Place& in, Cursor& c, Skinny& skinny) {
  const bool isLong = Left(c) % 4 != 0 || Left(c) == 36;   // 25 octets, and what fills the last word
  ShowRows<Skinny>(in, c, isLong ? RowSpan<Skinny>(kDialed) : RowSpan<Skinny>(kDialedShort), skinny);
}
void ShowSelect(const Place& in, Cursor& c, Skinny& skinny) {
  ShowRows<Skinny>(in, c, kSelect, skinny);
  const Field mask = TakeLittleU32(c);
  const Place under = Under(in, AddLine(in, mask, "Soft Key Mask: 0x%.08X", mask.value));
  for (int32_t i = 0; mask.here && i < 16; ++i) {
    const auto key = BitsOf(mask, 31 - i, 1);
    AddBitLine(under, mask, "%s: Soft Key %u = %s", key.picture, i + 1, LookupName(kFalseTrueNames, key.value));
  }
}

constexpr auto kMessages = Choices<Skinny>({
    {0x0001, "Register", kRegister}, {0x0002, "IP Port", kPort}, {0x0003, "Keypad Button", kKeypad},
    {0x0004, "Enbloc Call", kEnbloc}, {0x0005, "Stimulus", kStimulus}, {0x0006, "Off Hook", kLineCall},
    {0x0007, "On Hook", kLineCall}, {0x0008, "Hook Flash", kLineCall}, {0x0009, "Forward Status Request", kLine},
    {0x000A, "Speed Dial Status Request", kIndex}, {0x000B, "Line Status Request", kLine},
    {0x0010, "Capabilities Response", {}, ShowCapabilities}, {0x0020, "Alarm", kAlarm},
    {0x0021, "Multicast Media Reception Ack", kReceptionAck}, {0x0022, "Open Receive Channel Ack", kReceiveAck},
    {0x0023, "Connection Statistics Response", kStatistics}, {0x0026, "Soft Key Event", kSoftKey},
    {0x0029, "Register Token Request", kToken}, {0x002A, "Media Transmission Failure", kFailure},
    {0x002B, "Headset Status", kHeadset}, {0x002C, "Media Resource Notification", kResource},
    {0x002D, "Register Available Lines", kAvailable}, {0x0033, "Service URL Status Request", kIndex},
    {0x0034, "Feature Status Request", kIndex}, {0x0049, "Media Path Event", kPath}, {0x0081, "Register Ack", kRegisterAck},
    {0x0082, "Start Tone", kStartTone}, {0x0083, "Stop Tone", kStopTone}, {0x0085, "Set Ringer", kRinger},
    {0x0086, "Set Lamp", kLamp}, {0x0088, "Set Speaker Mode", kSpeaker}, {0x0089, "Set Microphone Mode", kMicrophone},
    {0x008A, "Start Media Transmission", {}, ShowTransmission}, {0x008B, "Stop Media Transmission", kStop},
    {0x008F, "Call Information", kCallInformation}, {0x0090, "Forward Status", kForward},
    {0x0091, "Speed Dial Status", kSpeedDial}, {0x0092, "Line Status", kLineStatus},
    {0x0093, "Configuration Status", kConfiguration}, {0x0094, "Define Time and Date", kTimeDate},
    {0x0095, "Start Session Transmission", kSession}, {0x0096, "Stop Session Transmission", kSession},
    {0x0097, "Button Template", {}, ShowTemplate<kTemplateButton, 2>}, {0x0098, "Version", kVersionText},
    {0x0099, "Display Text", kText}, {0x009D, "Register Reject", kText}, {0x009F, "Reset", kResetType},
    {0x0103, "Stop Multicast Media Reception", kStopMulticast}, {0x0104, "Stop Multicast Media Transmission", kStopMulticast},
    {0x0105, "Open Receive Channel", {}, ShowReceive}, {0x0106, "Close Receive Channel", kClose},
    {0x0107, "Connection Statistics Request", kStatisticsRequest},
    {0x0108, "Soft Key Template", {}, ShowTemplate<kTemplateKey, 20>}, {0x0109, "Soft Key Set", {}, ShowTemplate<kKeySet, 48>},
    {0x0110, "Select Soft Keys", {}, ShowSelect}, {0x0111, "Call State", kState}, {0x0112, "Display Prompt Status", kPrompt},
    {0x0113, "Clear Prompt Status", kLineCall}, {0x0114, "Display Notify", kNotify}, {0x0116, "Activate Call Plane", kLine},
    {0x0118, "Unregister Ack", kUnregister}, {0x0119, "Backspace", kLineCall}, {0x011D, "Dialed Number", {}, ShowDialed},
    {0x011F, "Feature Status", kFeature}, {0x0120, "Display Priority Notify", kPriorityNotify},
    {0x0121, "Clear Priority Notify", kPriority}, {0x0130, "Call Select Status", kCallSelect},
    {0x0143, "Display Notify v2", kNotify2}, {0x0144, "Display Priority Notify v2", kPriorityNotify2},
    {0x0145, "Display Prompt Status v2", kPrompt2}, {0x0146, "Feature Status v2", kFeature2},
    {0x0147, "Line Status v2", kLine2}, {0x0148, "Service URL Status v2", kService2},
    {0x0149, "Speed Dial Status v2", kSpeedDial2}, {0x014A, "Call Information v2", kCallInformation2},
    {0x0154, "Start Media Transmission Ack", kTransmissionAck}});

const char* MessageName(uint32_t message) {
  const char* name = LookupName(kSccpMessageNames, message, nullptr);
  const Choice<Skinny>* choice = FindChoice<Skinny>(kMessages, message);
  return name ? name : choice ? choice->name : kUnknown;
}

void ShowMessage(const Place& at, Cursor c) {
  static constexpr auto kHead = LittleRows<Skinny>({
      Number(4, "Length"), Number(4, "Version").Into(&Skinny::version), Hex(4, "Message", MessageName)});
  Skinny skinny{};
  const uint32_t message = PeekLittleU32(c, 8);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "SCCP: %s", MessageName(message)));
  ShowRows<Skinny>(in, c, kHead, skinny);
  const Choice<Skinny>* choice = FindChoice<Skinny>(kMessages, message);
  if (choice && choice->rows.count && Left(c) > 0) ShowRows<Skinny>(in, c, choice->rows, skinny);
  if (choice && choice->show && Left(c) > 0) choice->show(in, c, skinny);
  c.ranShort = false;   // versions end their messages earlier or later
  bool isFilling = Left(c) < 4;
  for (int32_t i = 0; i < Left(c); ++i) isFilling = isFilling && PeekU8(c, i) == 0;
  const Field rest = Rest(c);
  if (rest.here && isFilling) {
    AddLine(in, rest, "Filling: %s", HexText(rest));
  } else {
    AddBlock(in, rest, "Message Data");
  }
}

}  // namespace

int32_t LengthOfSkinny(const Cursor& c) {
  constexpr uint32_t kHighest = 64, kMost = 65536;
  if (Left(c) < 12) return 0;
  const uint32_t length = PeekLittleU32(c);
  const bool isOne = length >= 4 && length <= kMost && PeekLittleU32(c, 4) <= kHighest && PeekLittleU32(c, 8) <= 0x8200;
  return isOne ? static_cast<int32_t>(8 + length) : kNoMessage;
}

int32_t DecodeSkinny(const Place& at, Cursor c) {
  if (LengthOfSkinny(c) <= 0) return 0;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const int32_t length = LengthOfSkinny(c);
    if (length <= 0) break;
    ShowMessage(at, TakeCursor(c, length));
  }
  AddRawRest(at, c, "SCCP Data");
  return 1;
}

}  // namespace qxview
