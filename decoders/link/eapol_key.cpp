// Key descriptors of EAPOL: RC4's (IEEE 802.1X-2001) and those of the handshakes of 802.11 (IEEE 802.11-2020 12.7.2),
// with
// the elements that their key data hold where these are not encrypted.
#include "core/elements.h"
#include "decoders/common/digits.h"
#include "decoders/link/eapol.h"

namespace qxview {
namespace {

constexpr uint32_t kRc4 = 1, kEncryptedData = 0x1000, kMicBit = 0x0100, kAckBit = 0x0080, kPairwise = 0x0008,
                   kSecureBit = 0x0200;

constexpr auto kDescriptorNames = SortedNames({{1, "RC4"}, {2, "802.11 RSN"}, {254, "WPA"}});
constexpr auto kDescriptorVersions = SortedNames({
    {0, "Told by the AKM"}, {1, "HMAC-MD5 and RC4"}, {2, "HMAC-SHA1 and AES"}, {3, "AES-128-CMAC and AES"}});
constexpr auto kKeyTypes = SortedNames({{0, "Group or SMK"}, {1, "Pairwise"}});
constexpr auto kIndexKinds = SortedNames({{0, "Broadcast"}, {1, "Unicast"}});
// Suites of the organization 00-0F-AC, and of 00-50-F2 as far as that has them.
constexpr auto kCipherNames = SortedNames({
    {0, "Group Cipher"}, {1, "WEP-40"}, {2, "TKIP"}, {3, "Reserved"}, {4, "CCMP-128"}, {5, "WEP-104"}, {6,
    "BIP-CMAC-128"},
    {7, "Group Addressed Traffic Not Allowed"}, {8, "GCMP-128"}, {9, "GCMP-256"}, {10, "CCMP-256"}, {11,
    "BIP-GMAC-128"},
    {12, "BIP-GMAC-256"}, {13, "BIP-CMAC-256"}});
constexpr auto kAkmNames = SortedNames({
    {0, "None"}, {1, "802.1X"}, {2, "PSK"}, {3, "FT over 802.1X"}, {4, "FT with PSK"}, {5, "802.1X with SHA-256"},
    {6, "PSK with SHA-256"}, {7, "TDLS"}, {8, "SAE"}, {9, "FT with SAE"}, {10, "AP Peer Key"}, {11,
    "802.1X Suite B SHA-256"},
    {12, "802.1X CNSA SHA-384"}, {13, "FT over 802.1X with SHA-384"}, {14, "FILS with SHA-256"}, {15,
    "FILS with SHA-384"},
    {16, "FT over FILS with SHA-256"}, {17, "FT over FILS with SHA-384"}, {18, "OWE"}, {19, "FT with PSK and SHA-384"},
    {20, "PSK with SHA-384"}, {24, "SAE with Group-dependent Hash"}, {25, "FT with SAE and Group-dependent Hash"}});

struct Key {
  Field length, info, dataLength, count;
};

constexpr auto kRc4Key = Rows<Key>({
    Number(2, "Key Length").Into(&Key::length), Number(8, "Replay Counter"), Bytes(16, "Key IV"), Word(1),
    Bits(0, 1, "Key Kind", kIndexKinds), Bits(1, 7, "Key Index"), Bytes(16, "Key Signature"), Bytes(0, "Key")});
constexpr auto kKeyHead = Rows<Key>({
    Hex(2, "Key Information").Into(&Key::info), Bits(13, 3, "Key Descriptor Version", kDescriptorVersions),
    Bits(12, 1, "Key Type", kKeyTypes), Bits(10, 2, "Key Index"), Flag(9, "Install"), Flag(8, "Key ACK"), Flag(7,
    "Key MIC"),
    Flag(6, "Secure"), Flag(5, "Error"), Flag(4, "Request"), Flag(3, "Encrypted Key Data"), Flag(2, "SMK Message"),
    Bits(0, 2, "Reserved"), Number(2, "Key Length"), Number(8, "Replay Counter"), Bytes(32, "Key Nonce"), Bytes(16,
    "Key IV"),
    Bytes(8, "Key RSC"), Bytes(8, "Key ID")});
constexpr auto kMic16 = Rows<Key>({Bytes(16, "Key MIC Value")});
constexpr auto kMic24 = Rows<Key>({Bytes(24, "Key MIC Value")});
constexpr auto kDataLength = Rows<Key>({Number(2, "Key Data Length").Into(&Key::dataLength)});

// --- the elements of key data ---

constexpr auto kCount = LittleRows<Key>({Number(2, nullptr).Into(&Key::count)});

void ShowSuite(const Place& in, Cursor& c, const char* label, bool isCipher) {
  const Field suite = TakeBytes(c, 4);
  if (!suite.here) return;
  const uint32_t type = PeekU8(suite, 3), oui = PeekU32(suite) >> 8;
  const char* name = oui != 0x000FAC && oui != 0x0050F2 ? "Vendor Specific"
                     : isCipher                       ? LookupName(kCipherNames, type)
                                                      : LookupName(kAkmNames, type);
  AddLine(in, suite, "%s: %s = %s", label, HexText(suite), name);
}
void ShowSuites(const Place& in, Cursor& c, const char* countLabel, const char* label, bool isCipher) {
  if (Left(c) < 2) return;
  const Field count = TakeLittleU16(c);
  AddLine(in, count, "%s: %u", countLabel, count.value);
  Loop loop;
  for (uint32_t i = 0; i < count.value && MoreAt(in, c, loop); ++i) ShowSuite(in, c, label, isCipher);
}

constexpr auto kRsnVersion = LittleRows<Key>({Number(2, "RSN Version")});
constexpr auto kCapabilities = LittleRows<Key>({
    Hex(2, "RSN Capabilities"), Flag(15, "Preauthentication"), Flag(14, "No Pairwise"), Bits(12, 2,
    "PTKSA Replay Counters"),
    Bits(10, 2, "GTKSA Replay Counters"), Flag(9, "Management Frame Protection Required"),
    Flag(8, "Management Frame Protection Capable"), Flag(7, "Joint Multi-band RSNA"), Flag(6, "PeerKey Enabled"),
    Flag(5, "SPP A-MSDU Capable"), Flag(4, "SPP A-MSDU Required"), Flag(3, "PBAC"), Flag(2, "Extended Key ID"),
    Flag(1, "Operating Channel Validation Capable"), Bits(0, 1, "Reserved")});
constexpr auto kPmkids = Rows<Key>({Bytes(16, "PMKID")});

void ShowRsn(const Place& in, Cursor& c, Key& key) {
  ShowRows<Key>(in, c, kRsnVersion, key);
  if (Left(c) > 0) ShowSuite(in, c, "Group Data Cipher Suite", true);
  ShowSuites(in, c, "Pairwise Cipher Suites", "Pairwise Cipher Suite", true);
  ShowSuites(in, c, "AKM Suites", "AKM Suite", false);
  if (Left(c) > 0) ShowRows<Key>(in, c, kCapabilities, key);
  if (Left(c) > 0) {
    ShowRows<Key>(in, c, kCount, key, "PMKIDs");
    Loop loop;
    for (uint32_t i = 0; i < key.count.value && MoreAt(in, c, loop); ++i) ShowRows<Key>(in, c, kPmkids, key);
  }
  if (Left(c) > 0) ShowSuite(in, c, "Group Management Cipher Suite", true);
}

constexpr auto kGtk = Rows<Key>({
    Word(1), Bits(0, 5, "Reserved"), Flag(5, "Transmit"), Bits(6, 2, "Key ID"), Number(1, "Reserved"), Bytes(0,
    "GTK")});
constexpr auto kMac = Rows<Key>({Mac("MAC Address")});
constexpr auto kNonce = Rows<Key>({Bytes(0, "Nonce")});
constexpr auto kLifetime = Rows<Key>({Number(4, "Lifetime", " seconds")});
constexpr auto kError = Rows<Key>({Number(2, "Reserved"), Number(2, "Error Type")});
constexpr auto kIgtk = LittleRows<Key>({Number(2, "Key ID"), Bytes(6, "Packet Number"), Bytes(0, "IGTK")});
constexpr auto kKeyId = LittleRows<Key>({Word(2), Bits(14, 2, "Key ID"), Bits(0, 14, "Reserved")});
constexpr auto kOci = Rows<Key>({Number(1, "Operating Class"), Number(1, "Primary Channel"), Number(1,
    "Frequency Segment 1 Channel")});
constexpr auto kMloGtk = Rows<Key>({
    Word(1), Bits(0, 4, "Link ID"), Bits(4, 1, "Reserved"), Flag(5, "Transmit"), Bits(6, 2, "Key ID"), Bytes(6,
    "Packet Number"),
    Bytes(0, "GTK")});
constexpr auto kMloKey = Rows<Key>({
    Number(2, "Key ID").Little(), Bytes(6, "Packet Number"), Word(1), Bits(0, 4, "Link ID"), Bits(4, 4, "Reserved"),
    Bytes(0, "Group Key")});
constexpr auto kMloLink = Rows<Key>({
    Word(1), Bits(0, 4, "Link ID"), Flag(4, "RSNE Present"), Flag(5, "RSNXE Present"), Bits(6, 2, "Reserved"),
    Mac("MAC Address"),
    Bytes(0, "Elements")});

// Behind the organization 00-0F-AC.
constexpr auto kDataTypes = Choices<Key>({
    {1, "GTK", kGtk}, {2, "Reserved"}, {3, "MAC Address", kMac}, {4, "PMKID", kPmkids}, {5, "SMK"}, {6, "Nonce",
    kNonce},
    {7, "Lifetime", kLifetime}, {8, "Error", kError}, {9, "IGTK", kIgtk}, {10, "Key ID", kKeyId}, {11,
    "Multi-band GTK"},
    {12, "Multi-band Key ID"}, {13, "OCI", kOci}, {14, "BIGTK", kIgtk}, {15, "Reserved"}, {16, "MLO GTK", kMloGtk},
    {17, "MLO IGTK", kMloKey}, {18, "MLO BIGTK", kMloKey}, {19, "MLO Link", kMloLink}});

constexpr auto kOuiNames = SortedNames({{0x000FAC, "IEEE 802.11"}, {0x0050F2, "Microsoft"}, {0x506F9A,
    "Wi-Fi Alliance"}});

void ShowVendorData(const Place& in, Cursor& c, Key& key) {
  constexpr uint32_t kIeee = 0x000FAC, kMicrosoft = 0x0050F2, kWpaElement = 1;
  const Field oui = TakeU24(c);
  AddLine(in, oui, "Organization: 0x%.06X = %s", oui.value, LookupName(kOuiNames, oui.value));
  const Field type = TakeU8(c);
  const Choice<Key>* choice = oui.value == kIeee ? FindChoice<Key>(kDataTypes, type.value) : nullptr;
  AddLine(in, type, "Data Type: %u = %s", type.value, choice ? choice->name : kUnknown);
  if (choice) AppendToParent(in, type, ", %s", choice->name);
  if (choice) ShowChoice<Key>(in, c, choice, key);
  if (oui.value == kMicrosoft && type.value == kWpaElement) ShowRsn(in, c, key);
}

// --- elements of fast transitions ---

constexpr auto kMobilityDomain = Rows<Key>({
    Hex(2, "Mobility Domain ID"), Word(1), Bits(0, 6, "Reserved"), Flag(6, "Resource Request Protocol"),
    Flag(7, "Fast Transition over DS")});
constexpr auto kTransition = Rows<Key>({
    Word(2), Bits(0, 7, "Reserved"), Flag(7, "RSNXE Used"), Bits(8, 8, "Element Count"), Bytes(16, "MIC"),
    Bytes(32, "ANonce"), Bytes(32, "SNonce")});
constexpr auto kHolder = Rows<Key>({Bytes(0, nullptr)});
constexpr auto kTransitionGtk = LittleRows<Key>({
    Word(2), Bits(0, 14, "Reserved"), Bits(14, 2, "Key ID"), Number(1, "Key Length"), Bytes(8, "Key RSC"),
    Bytes(0, "Wrapped Key")});
constexpr auto kTransitionIgtk = LittleRows<Key>({
    Number(2, "Key ID"), Bytes(6, "Packet Number"), Number(1, "Key Length"), Bytes(0, "Wrapped Key")});
constexpr auto kTransitionParts = Choices<Key>({
    {1, "R1KH-ID", kHolder}, {2, "GTK", kTransitionGtk}, {3, "R0KH-ID", kHolder}, {4, "IGTK", kTransitionIgtk},
    {5, "OCI", kOci}, {6, "BIGTK", kTransitionIgtk}});
void ShowTransition(const Place& in, Cursor& c, Key& key) {
  ShowElements<Key>(in, c, ElementForm{}, "Subelement", kTransitionParts, key);
}
constexpr auto kTimeoutNames = SortedNames({
    {1, "Reassociation Deadline"}, {2, "Key Lifetime"}, {3, "Association Comeback"}, {4, "Time to Start"}});
constexpr auto kTimeout = LittleRows<Key>({Number(1, "Timeout Type", kTimeoutNames), Number(4, "Timeout Value")});
// The length of the field in octets less one stands in its first half.
constexpr auto kExtendedCapabilities = Rows<Key>({
    Word(1), Bits(4, 4, "Field Length - 1"), Flag(3, "Protected TWT Operations"), Flag(2, "SAE Hash-to-Element"),
    Bits(0, 2, "Reserved"), Bytes(0, "Further Capabilities")});
constexpr auto kExtensionId = Rows<Key>({Number(1, "Element ID Extension"), Bytes(0, "Element Data")});

constexpr auto kElements = Choices<Key>({
    {48, "RSN", {}, ShowRsn}, {54, "Mobility Domain", kMobilityDomain},
    {55, "Fast BSS Transition", kTransition, ShowTransition}, {56, "Timeout Interval", kTimeout},
    {221, "Vendor Specific", {}, ShowVendorData}, {244, "RSN Extension", kExtendedCapabilities},
    {255, "Extension", kExtensionId}});

// Padding starts with an octet of 0xDD that a zero follows.
void ShowKeyData(const Place& in, Cursor c, Key& key) {
  constexpr ElementForm kForm{};
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c)), "Key Data"));
  ShowElements<Key>(under, c, kForm, "Element", kElements, key);
  c.ranShort = false;
  AddBlock(under, Rest(c), "Key Data Padding");
}

// Which message of a handshake the flags tell.
const char* NameMessage(uint32_t info, uint32_t dataLength) {
  if (!(info & kPairwise)) return info & kAckBit ? "Group Message 1 of 2" : "Group Message 2 of 2";
  if (info & kAckBit) return info & kMicBit ? "Message 3 of 4" : "Message 1 of 4";
  return info & kSecureBit || dataLength == 0 ? "Message 4 of 4" : "Message 2 of 4";
}

}  // namespace

void ShowEapolKey(const Place& in, Cursor& c) {
  constexpr int32_t kBeforeMic = 76;
  const Field type = TakeU8(c);
  AddLine(in, type, "Descriptor Type: %u = %s", type.value, LookupName(kDescriptorNames, type.value));
  Key key{};
  if (type.value == kRc4) {
    ShowRows<Key>(in, c, kRc4Key, key);
    return;
  }
  // Suites of 192 bits have a longer check; the length of the data tells where it stands.
  const bool isLong = Left(c) >= kBeforeMic + 26 && PeekU16(c,
      kBeforeMic + 16) != static_cast<uint32_t>(Left(c) - kBeforeMic - 18) &&
                      PeekU16(c, kBeforeMic + 24) == static_cast<uint32_t>(Left(c) - kBeforeMic - 26);
  ShowRows<Key>(in, c, kKeyHead, key);
  ShowRows<Key>(in, c, isLong ? RowSpan<Key>(kMic24) : RowSpan<Key>(kMic16), key);
  ShowRows<Key>(in, c, kDataLength, key);
  AppendToParent(in, key.dataLength, ", %s", NameMessage(key.info.value, key.dataLength.value));
  Cursor data = TakeCursor(c, key.dataLength.value);
  if (Left(data) < 1) return;
  if (key.info.value & kEncryptedData) {
    ShowDigits(in, Rest(data), "Encrypted Key Data");
  } else {
    ShowKeyData(in, data, key);
  }
}

}  // namespace qxview
