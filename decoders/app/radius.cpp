// Remote Authentication Dial In User Service (RFC 2865; accounting: RFC 2866, 2867; tunnels: RFC 2868; RFC 2869, 3162;
// dynamic authorization: RFC 5176; location: RFC 5580; extended attributes: RFC 6929): may this user come in, and what
// was used?
//
//   code (1)   identifier (1)   length (2)   authenticator (16)   attributes: type (1), length of the whole (1), value
//
// What an attribute holds is a row of a dictionary; vendors have one each, and some frame their attributes otherwise.
#include <cstring>

#include "core/elements.h"
#include "core/times.h"
#include "decoders/app/radius_secret.h"
#include "decoders/common/eap.h"
#include "decoders/common/location.h"
#include "decoders/net/ip_fragments.h"
#include "decoders/states.h"

namespace qxview {
namespace {

struct RadiusAttribute {
  uint32_t code, name;
  uint16_t below;   // the values that have names, or the attributes within
  uint8_t type, flags;
};
struct RadiusValue {
  uint32_t code, name;
};
struct RadiusVendor {
  uint32_t number, name;
  uint16_t space;
  uint8_t typeSize, lengthSize;
  uint8_t more;     // an octet behind the length says whether the value goes on in the next attribute
};
enum RadiusFlag : uint32_t { kTagged = 1, kSalted = 2, kHidden = 4 };

#include "decoders/app/radius_table.inc"

constexpr int32_t kHeaderSize = 20;
constexpr uint32_t kMessageAuthenticator = 80;

constexpr auto kCodeNames = SortedNames({
    {1, "Access-Request"}, {2, "Access-Accept"}, {3, "Access-Reject"}, {4, "Accounting-Request"},
    {5, "Accounting-Response"}, {6, "Accounting-Status"}, {7, "Password-Request"}, {8, "Password-Ack"},
    {9, "Password-Reject"}, {10, "Accounting-Message"}, {11, "Access-Challenge"}, {12, "Status-Server"},
    {13, "Status-Client"}, {21, "Resource-Free-Request"}, {22, "Resource-Free-Response"},
    {23, "Resource-Query-Request"}, {24, "Resource-Query-Response"}, {25, "Alternate-Resource-Reclaim-Request"},
    {26, "NAS-Reboot-Request"}, {27, "NAS-Reboot-Response"}, {28, "Reserved"}, {29, "Next-Passcode"}, {30, "New-Pin"},
    {31, "Terminate-Session"}, {32, "Password-Expired"}, {33, "Event-Request"}, {34, "Event-Response"},
    {40, "Disconnect-Request"}, {41, "Disconnect-ACK"}, {42, "Disconnect-NAK"}, {43, "CoA-Request"}, {44, "CoA-ACK"},
    {45, "CoA-NAK"}, {50, "IP-Address-Allocate"}, {51, "IP-Address-Release"}, {52, "Protocol-Error"},
    {250, "Experimental Use"}, {251, "Experimental Use"}, {252, "Experimental Use"}, {253, "Experimental Use"},
    {254, "Reserved"}, {255, "Reserved"}});
constexpr auto kIndicationNames = SortedNames({{0x31, "Tagged"}, {0x32, "Untagged"}});
constexpr auto kNamespaceNames = SortedNames({{0x30, "TADIG"}, {0x31, "REALM"}, {0x32, "E212"}, {0x33, "ICC"}});
constexpr auto kLocationNames = SortedNames({{0, "Civic Location Profile"}, {1, "Geospatial Location Profile"}});
constexpr auto kEntityNames = SortedNames({{0, "User's Client Device"}, {1, "RADIUS Client"}});
constexpr auto kAssociationNames = SortedNames({{0, "Primary"}, {1, "Static"}, {2, "Dynamic"}});
constexpr auto kHighFeatures = SortedNames({
    {0x0100, "PMIP6_SUPPORTED"}, {0x0200, "IP4_HOA_SUPPORTED"}, {0x0400, "LOCAL_MAG_ROUTING_SUPPORTED"},
    {0x0800, "ASSIGN_LOCAL_IP"}, {0x1000, "MIP4_SUPPORTED"}, {0x2000, "OPTIMIZED_IDLE_MODE_MOBILITY"}});
constexpr auto kLowFeatures = SortedNames({{1, "MIP6_INTEGRATED"}, {2, "LOCAL_HOME_AGENT_ASSIGNMENT"}});

struct Radius {
  Field code, identifier, length, vendor, vendorType, locationCode, salt;
  RadiusSecret secret;
  bool isProved;        // a Message-Authenticator was looked at
  int32_t eapMissing;   // bytes of an EAP packet that the EAP-Message attributes to come hold
  Cursor behind;        // the attributes behind the current one
  EapCarrier eap;
};

constexpr auto kHeader = Rows<Radius>({
    Number(1, "Code", kCodeNames).Into(&Radius::code), Number(1, "Identifier").Into(&Radius::identifier),
    Number(2, "Length").Into(&Radius::length), Bytes(16, "Authenticator")});

// Values; they are named after their attribute.
constexpr auto kOctetsRows = Rows<Radius>({Bytes(0, nullptr)});
constexpr auto kTextRows = Rows<Radius>({Utf8(0, nullptr).Note(", %s")});
constexpr auto kHexRows = Rows<Radius>({Hex(4, nullptr)});
constexpr auto kSignedRows = Rows<Radius>({Signed(4, nullptr).Note(", %d")});
constexpr auto kDateRows = Rows<Radius>({UnixTime(4, nullptr).Note(", %s")});
constexpr auto kAddress4Rows = Rows<Radius>({IPv4(nullptr).Note(", %s")});
constexpr auto kAddress6Rows = Rows<Radius>({IPv6(nullptr).Note(", %s")});
constexpr auto kInterfaceRows = Rows<Radius>({Eui64(nullptr).Note(", %s")});
constexpr auto kEtherRows = Rows<Radius>({Mac(nullptr).Note(", %s")});
constexpr auto kChapRows = Rows<Radius>({Number(1, "CHAP Ident"), Bytes(0, "CHAP Response")});
constexpr auto kVlanRows = Rows<Radius>({
    Number(1, "Tag Indication", kIndicationNames), Word(3), Bits(0, 12, "Pad"), Bits(12, 12, "VLAN ID")});
constexpr auto kVlanNameRows = Rows<Radius>({
    Number(1, "Tag Indication", kIndicationNames), Utf8(0, nullptr).Note(", %s")});
constexpr auto kArapPasswordRows = Rows<Radius>({Bytes(8, "Challenge"), Bytes(8, "Response")});
// Of the AppleTalk world: seconds since 1904.
void ShowArapTime(const Place& in, const Field& field, const char* label) {
  constexpr int64_t kEpoch = -2082844800;
  AddLine(in, field, "%s: %s", label, UtcText(kEpoch + PeekU32(field)));
}
constexpr auto kArapFeaturesRows = Rows<Radius>({
    Hex(1, "Password Changing"), Number(1, "Minimum Password Length"), Shown(4, "Password Creation Date", ShowArapTime),
    Number(4, "Password Expiration Delta", " seconds"), Shown(4, "Current RADIUS Time", ShowArapTime)});
constexpr auto kHomeLinkRows = Rows<Radius>({Number(1, "Prefix Length"), IPv6(nullptr).Note(", %s")});
constexpr auto kOperatorRows = Rows<Radius>({
    Number(1, "Namespace ID", kNamespaceNames), Utf8(0, nullptr).Note(", %s")});
constexpr auto kLocationRows = Rows<Radius>({
    Number(2, "Index"), Number(1, "Code", kLocationNames).Into(&Radius::locationCode),
    Number(1, "Entity", kEntityNames), NtpTime("Sighting Time"), NtpTime("Time-to-Live"), Utf8(0, "Method")});
constexpr auto kPolicyRows = Rows<Radius>({
    Word(2), Flag(0, "Retransmission Allowed"), Bits(1, 15, "Reserved"), NtpTime("Retention Expires"),
    Utf8(0, "Note Well")});
constexpr auto kPkmSettingsRows = Rows<Radius>({
    Number(4, "Authorize Wait Timeout"), Number(4, "Reauthorize Wait Timeout"), Number(4, "Authorization Grace Time"),
    Number(4, "Operational Wait Timeout"), Number(4, "Rekey Wait Timeout"), Number(4, "TEK Grace Time"),
    Number(4, "Authorize Reject Wait Timeout")});
constexpr auto kPkmSuiteRows = Rows<Radius>({
    Number(1, "Data Encryption Algorithm"), Number(1, "Data Authentication Algorithm"),
    Number(1, "TEK Encryption Algorithm")});
constexpr auto kPkmDescriptorRows = Rows<Radius>({Number(2, "SAID"), Number(1, "SA Type", kAssociationNames)});
constexpr auto kPkmKeyRows = Rows<Radius>({Number(4, "Lifetime"), Number(1, "Sequence"), Bytes(0, "Key (Encrypted)")});
constexpr auto kFeatureRows = Rows<Radius>({
    Flags(4, "High Word", kHighFeatures), Flags(4, "Low Word", kLowFeatures)});
constexpr auto kTagRows = Rows<Radius>({Number(1, "Tag").Note(", Tag %u")});
constexpr auto kSaltRows = Rows<Radius>({Hex(2, "Salt").Into(&Radius::salt)});
constexpr auto kMoreRows = Rows<Radius>({Word(1), Flag(0, "More"), Bits(1, 7, "Reserved")});
constexpr auto kPrefixRows = Rows<Radius>({Number(1, "Reserved"), Number(1, "Prefix Length")});

constexpr ElementForm kAttributeForm{.lengthCountsHeader = true};

const char* NameAt(uint32_t position) { return kNames + position; }

template <class Row>
const Row* FindCode(const Row* rows, uint32_t first, uint32_t end, uint32_t code) {
  while (first < end) {
    const uint32_t middle = (first + end) / 2;
    if (rows[middle].code == code) return &rows[middle];
    if (rows[middle].code < code) {
      first = middle + 1;
    } else {
      end = middle;
    }
  }
  return nullptr;
}
const RadiusAttribute* FindAttribute(uint32_t space, uint32_t code) {
  return FindCode(kAttributes, kSpaces[space], kSpaces[space + 1], code);
}
// What the registry calls the numbers that it gives to nobody.
const char* UnassignedName(uint32_t space, uint32_t code) {
  if (space != kRegistrySpace) return kUnknown;
  if (code >= 192 && code <= 223) return "Experimental Use";
  if (code >= 224 && code <= 240) return "Implementation Specific";
  return code >= 247 ? "Reserved" : "Unassigned";
}
const char* FindValue(uint32_t set, uint32_t code) {
  if (set == 0) return nullptr;
  const RadiusValue* value = FindCode(kValues, kValueSets[set], kValueSets[set + 1], code);
  return value ? NameAt(value->name) : kUnknown;
}
const RadiusVendor* FindVendor(uint32_t number) {
  for (const RadiusVendor& vendor : kVendors) {
    if (vendor.number == number) return &vendor;
  }
  return nullptr;
}

void ShowNumber(const Place& in, const Field& field, const RadiusAttribute& attribute) {
  const char* name = NameAt(attribute.name);
  uint64_t number = 0;
  for (int32_t i = 0; i < field.length; ++i) number = number << 8 | field.bytes[i];
  const char* value = FindValue(attribute.below, static_cast<uint32_t>(number));
  if (value) {
    // keys: file decoders/app/radius_registry.txt
    AddLine(in, field, "%s: %I64u = %s", name, number, value);
    AppendToParent(in, field, ", %s", value);
  } else {
    AddLine(in, field, "%s: %I64u", name, number);
    AppendToParent(in, field, ", %I64u", number);
  }
}

void ShowFlags(const Place& in, Field field, const RadiusAttribute& attribute) {
  const LineHandle line = AddLine(in, field, "%s: 0x%.08X", NameAt(attribute.name), field.value);
  const Place under = Under(in, line);
  for (uint32_t i = kValueSets[attribute.below]; attribute.below && i < kValueSets[attribute.below + 1]; ++i) {
    int32_t bit = 31;
    while (bit > 0 && kValues[i].code >> (31 - bit) > 1) --bit;
    const BitPicture picture = BitsOf(field, bit, 1);
    AddBitLine(under, field, "%s: %s = %s", picture.picture, NameAt(kValues[i].name),
               LookupName(kFalseTrueNames, picture.value));
  }
}

// An address or a prefix of which only the octets that count are there.
void ShowPrefix(const Place& in, Cursor& c, const char* name, Radius& radius, int32_t size) {
  ShowRows<Radius>(in, c, kPrefixRows, radius);
  const uint32_t bits = c.offset > c.begin ? PeekU8(MakeCursor(c.at - 1, c.offset - 1, 1)) : 0;
  uint8_t whole[16] = {};
  const Field prefix = Left(c) <= size ? TakeBytes(c, Left(c)) : TakeBytes(c, size);
  if (!prefix.here) return;
  std::memcpy(whole, prefix.bytes, static_cast<size_t>(prefix.length));
  if (size == 4) {
    AddLine(in, prefix, "%s: %s/%u", name, IPv4Text(whole), bits);
    AppendToParent(in, prefix, ", %s/%u", IPv4Text(whole), bits);
  } else {
    AddLine(in, prefix, "%s: %s/%u", name, IPv6Text(whole), bits);
    AppendToParent(in, prefix, ", %s/%u", IPv6Text(whole), bits);
  }
}

void ShowAssigned(const Place& in, Cursor& c, const char* name, Radius& radius) {
  const uint32_t number = PeekU32(c);
  if (number < 0xFFFFFFFE || Left(c) < 4) return ShowRows<Radius>(in, c, kAddress4Rows, radius, name);
  const char* meaning = number == 0xFFFFFFFF ? "User Selected" : "Assigned by NAS";
  const Field address = TakeBytes(c, 4);
  AddLine(in, address, "%s: %s (%s)", name, IPv4Text(address.bytes), meaning);
  AppendToParent(in, address, ", %s", meaning);
}

constexpr uint32_t kUserName = 1, kCallingStation = 31, kEapMessage = 79;

// Which of the conversations between two ends that share a port an EAP packet belongs to: requests tell user and station,
// and their number is that of the challenge that answers them.
void FindConversation(const Place& in, Cursor attributes, Radius& radius) {
  constexpr uint32_t kRequest = 1;
  const RequestKey key = RequestOf(PacketOf(in), radius.identifier.value);
  if (radius.code.value != kRequest) {
    const EapConversation* known = Recall(in.view, kEapConversations, key);
    if (known) std::memcpy(radius.eap.conversation, known->number, sizeof known->number);
    return;
  }
  uint64_t number = 0xCBF29CE484222325;   // FNV-1a
  Loop loop;
  Element element;
  while (More(attributes, loop) && TakeElement(attributes, kAttributeForm, element)) {
    if (element.code != kUserName && element.code != kCallingStation) continue;
    for (int32_t i = 0; i < element.whole.length; ++i) number = (number ^ PeekU8(element.whole, i)) * 0x100000001B3;
  }
  EapConversation conversation{{static_cast<uint32_t>(number), static_cast<uint32_t>(number >> 32)}};
  std::memcpy(radius.eap.conversation, conversation.number, sizeof conversation.number);
  Remember(in.view, kEapConversations, key, conversation);
}

// The packet that the attribute's value and those of the EAP-Message attributes behind it make.
Cursor JoinEapMessages(const Place& in, const Cursor& c, Radius& radius) {
  constexpr int32_t kMostPieces = 64;
  const int32_t size = static_cast<int32_t>(PeekU16(c, 2));
  const Cursor none = MakeCursor(nullptr, c.offset, 0);
  uint8_t* memory = TakeFrameMemory(in.view, kMostPieces * sizeof(BytePiece) + static_cast<size_t>(size));
  if (!memory) return none;
  auto* pieces = reinterpret_cast<BytePiece*>(memory);
  uint8_t* bytes = memory + kMostPieces * sizeof(BytePiece);
  int32_t count = 0, length = 0;
  Cursor value = c, behind = radius.behind;
  Element element;
  for (;;) {
    const int32_t taken = Left(value) < size - length ? Left(value) : size - length;
    const BytePiece piece{in.view->context->packetNumber, value.offset, taken};
    std::memcpy(pieces + count++, &piece, sizeof piece);
    std::memcpy(bytes + length, value.at, static_cast<size_t>(taken));
    length += taken;
    if (length == size) break;
    if (count == kMostPieces || !TakeElement(behind, kAttributeForm, element) || element.code != kEapMessage) return none;
    value = element.value;
  }
  radius.eap.pieces = pieces;
  radius.eap.pieceCount = count;
  return JoinedBytes(in.view, bytes, length, pieces, count, c.offset);
}

// An EAP packet takes as many attributes as it needs; those behind the first continue it.
void ShowEap(const Place& in, Cursor& c, Radius& radius) {
  if (radius.eapMissing > 0 || Left(c) < kEapHeaderSize) {
    const Field part = Rest(c);
    AddBlock(in, part, "EAP Packet Continued");
    radius.eapMissing -= part.length;
  } else if (const int32_t size = static_cast<int32_t>(PeekU16(c, 2)); JoinsFragments(in) && size > Left(c)) {
    Cursor packet = JoinEapMessages(in, c, radius);
    radius.eapMissing = size - Left(c);
    if (!Left(packet)) AddEap(in, c);
    else AddEap(in, packet, &radius.eap);
    TakeBytes(c, Left(c));
  } else {
    radius.eapMissing = AddEap(in, c, &radius.eap);
  }
}

void ShowSuites(const Place& in, Cursor& c, Radius& radius) {
  Loop loop;
  while (Left(c) >= 3 && MoreAt(in, c, loop)) ShowRows<Radius>(in, c, kPkmSuiteRows, radius);
}

// What a Location-Information attribute before it says that it is: an address in postal words, or coordinates.
void ShowLocation(const Place& in, Cursor& c, Radius& radius) {
  constexpr auto kIndex = Rows<Radius>({Number(2, "Index")});
  constexpr auto kCountry = Rows<Radius>({Text(2, "Country Code")});
  constexpr auto kOther = Rows<Radius>({Bytes(0, "Location")});
  ShowRows<Radius>(in, c, kIndex, radius);
  if (radius.locationCode.here && radius.locationCode.value == 0) {
    ShowRows<Radius>(in, c, kCountry, radius);
    ShowCivicElements(in, c);
  } else if (radius.locationCode.here && Left(c) == kGeoConfigurationSize) {
    ShowGeoConfiguration(in, c);
  } else {
    ShowRows<Radius>(in, c, kOther, radius);
  }
}

void ShowFeatures(const Place& in, Cursor& c, const char* name, Radius& radius) {
  const Field all = Ahead(c, Left(c) < 8 ? Left(c) : 8);
  const Place under = Under(in, AddLine(in, all, "%s: %s", name, HexText(all)));
  ShowRows<Radius>(under, c, kFeatureRows, radius);
}

// What the user's secret makes of a value that is hidden.
void ShowOpened(const Place& in, const Field& value, const RadiusAttribute& attribute, RadiusType type, Radius& radius) {
  uint8_t buffer[kMostRadiusValue];
  const char* name = NameAt(attribute.name);
  const Field salt = attribute.flags & kSalted ? radius.salt : Field{};
  Cursor opened = OpenRadiusValue(in, radius.secret, name, value, salt, buffer);
  const DerivedLines derived(in.view);
  if (Left(opened) < 1) return;
  int32_t printable = 0;
  while (PeekU8(opened, printable) >= 0x20 && PeekU8(opened, printable) < 0x7F) ++printable;
  const bool isText = type == RadiusType::kText || type == RadiusType::kPassword || printable == Left(opened);
  // Passwords are filled up to whole blocks.
  if (isText && !salt.here) {
    const int32_t end = FindU8(opened, 0);
    if (end >= 0) opened = TakeCursor(opened, end);
  }
  ShowRows<Radius>(in, opened, isText ? RowSpan<Radius>(kTextRows) : RowSpan<Radius>(kOctetsRows), radius, name);
}

// What is alike under every type: the tag and the salt in front, and what nobody can read. True: nothing is left.
bool ShowFront(const Place& in, Cursor& c, const RadiusAttribute& attribute, RadiusType type, Radius& radius) {
  constexpr uint32_t kMostTag = 0x1F;
  if (attribute.flags & kTagged && Left(c) > 0 && (type == RadiusType::kNumber || PeekU8(c) <= kMostTag)) {
    ShowRows<Radius>(in, c, kTagRows, radius);
  }
  if (attribute.flags & kSalted) ShowRows<Radius>(in, c, kSaltRows, radius);
  const bool hidden = attribute.flags & (kSalted | kHidden) || type == RadiusType::kPassword;
  if (hidden && Left(c) > 0) {
    const Field value = Rest(c);
    AddLine(in, value, "%s (Encrypted): %s", NameAt(attribute.name), HexText(value));
    ShowOpened(in, value, attribute, type, radius);
  }
  return hidden;
}

void ShowAttributes(const Place& in, Cursor& c, const ElementForm& form, uint32_t space, Radius& radius,
                    int32_t nesting);

bool IsChain(Cursor c, const ElementForm& form) {
  Element element;
  Loop loop;
  while (More(c, loop)) {
    if (!TakeElement(c, form, element)) return false;
    if (Left(element.value) + 2 < static_cast<int32_t>(element.length.value)) return false;
  }
  return true;
}

void ShowVendor(const Place& in, Cursor& c, Radius& radius, int32_t nesting) {
  const Field number = TakeU32(c);
  const RadiusVendor* vendor = number.here ? FindVendor(number.value) : nullptr;
  const char* name = vendor ? NameAt(vendor->name) : kUnknown;
  AddLine(in, number, "Vendor ID: %u = %s", number.value, name);
  AppendToParent(in, number, ", %s", name);
  ElementForm form = kAttributeForm;
  if (vendor) {
    form.typeSize = vendor->typeSize;
    form.lengthSize = vendor->lengthSize;
  }
  if (!vendor && !IsChain(c, form)) return ShowRows<Radius>(in, c, kOctetsRows, radius, "Vendor Data");
  radius.vendor = number;
  ShowAttributes(in, c, form, vendor ? vendor->space : 0, radius, nesting);
}

void ShowExtended(const Place& in, Cursor& c, const RadiusAttribute& attribute, Radius& radius, int32_t nesting);

void ShowValue(const Place& in, Cursor& c, const RadiusAttribute& attribute, Radius& radius, int32_t nesting) {
  const RadiusType type = static_cast<RadiusType>(attribute.type);
  const char* name = NameAt(attribute.name);
  if (ShowFront(in, c, attribute, type, radius)) return;
  const auto show = [&](RowSpan<Radius> rows) { ShowRows<Radius>(in, c, rows, radius, name); };
  const int32_t left = Left(c);
  switch (type) {
    case RadiusType::kText: return show(kTextRows);
    case RadiusType::kNumber: return left > 0 && left <= 8 ? ShowNumber(in, Rest(c), attribute) : show(kOctetsRows);
    case RadiusType::kSigned: return left == 4 ? show(kSignedRows) : show(kOctetsRows);
    case RadiusType::kHex: return left == 4 ? show(kHexRows) : show(kOctetsRows);
    case RadiusType::kFlags: return left == 4 ? ShowFlags(in, TakeU32(c), attribute) : show(kOctetsRows);
    case RadiusType::kDate: return left == 4 ? show(kDateRows) : show(kOctetsRows);
    case RadiusType::kAddress:
      return left == 4 ? show(kAddress4Rows) : left == 16 ? show(kAddress6Rows) : show(kOctetsRows);
    case RadiusType::kAssignedAddress: return left == 4 ? ShowAssigned(in, c, name, radius) : show(kOctetsRows);
    case RadiusType::kPrefix: return ShowPrefix(in, c, name, radius, 16);
    case RadiusType::kPrefix4: return ShowPrefix(in, c, name, radius, 4);
    case RadiusType::kInterface: return left == 8 ? show(kInterfaceRows) : show(kOctetsRows);
    case RadiusType::kEther: return left == 6 ? show(kEtherRows) : show(kOctetsRows);
    case RadiusType::kList: return ShowAttributes(in, c, kAttributeForm, attribute.below, radius, nesting + 1);
    case RadiusType::kVendor: return ShowVendor(in, c, radius, nesting + 1);
    case RadiusType::kExtended:
    case RadiusType::kLongExtended: return ShowExtended(in, c, attribute, radius, nesting + 1);
    case RadiusType::kChapPassword: return show(kChapRows);
    case RadiusType::kEap: return ShowEap(in, c, radius);
    case RadiusType::kVlan: return show(kVlanRows);
    case RadiusType::kVlanName: return show(kVlanNameRows);
    case RadiusType::kArapPassword: return show(kArapPasswordRows);
    case RadiusType::kArapFeatures: return show(kArapFeaturesRows);
    case RadiusType::kMip6Features: return left == 8 ? ShowFeatures(in, c, name, radius) : show(kOctetsRows);
    case RadiusType::kHomeLinkPrefix: return show(kHomeLinkRows);
    case RadiusType::kOperator: return show(kOperatorRows);
    case RadiusType::kLocationInformation: return show(kLocationRows);
    case RadiusType::kLocationData: return ShowLocation(in, c, radius);
    case RadiusType::kLocationPolicy: return show(kPolicyRows);
    case RadiusType::kPkmSettings: return show(kPkmSettingsRows);
    case RadiusType::kPkmSuites: return ShowSuites(in, c, radius);
    case RadiusType::kPkmDescriptor: return show(kPkmDescriptorRows), ShowSuites(in, c, radius);
    case RadiusType::kPkmKey: return show(kPkmKeyRows);
    default: return show(kOctetsRows);
  }
}

// Attributes with a second type (RFC 6929), those of vendors among them.
void ShowExtended(const Place& in, Cursor& c, const RadiusAttribute& attribute, Radius& radius, int32_t nesting) {
  const Field type = TakeU8(c);
  const RadiusAttribute* below = FindAttribute(attribute.below, type.value);
  const char* name = below ? NameAt(below->name) : kUnknown;
  AddLine(in, type, "Extended Type: %u = %s", type.value, name);
  AppendToParent(in, type, ", %s", name);
  if (static_cast<RadiusType>(attribute.type) == RadiusType::kLongExtended) ShowRows<Radius>(in, c, kMoreRows, radius);
  if (below && static_cast<RadiusType>(below->type) == RadiusType::kExtendedVendor) {
    const Field vendor = TakeU32(c), vendorType = TakeU8(c);
    const RadiusVendor* known = FindVendor(vendor.value);
    AddLine(in, vendor, "Vendor ID: %u = %s", vendor.value, known ? NameAt(known->name) : kUnknown);
    AddLine(in, vendorType, "Vendor Type: %u", vendorType.value);
    ShowRows<Radius>(in, c, kOctetsRows, radius, "Vendor Data");
  } else if (below) {
    ShowValue(in, c, *below, radius, nesting);
  }
}

void ShowAttributes(const Place& in, Cursor& c, const ElementForm& form, uint32_t space, Radius& radius,
                    int32_t nesting) {
  if (nesting > kDeepestRadius) return AddBlock(in, Rest(c), "Data"), void();
  const RadiusVendor* vendor = radius.vendor.here ? FindVendor(radius.vendor.value) : nullptr;
  radius.vendor.here = false;   // what its attributes hold is framed as everywhere
  Loop loop;
  Element element;
  while (MoreAt(in, c, loop) && TakeElement(c, form, element)) {
    const RadiusAttribute* attribute = FindAttribute(space, element.code);
    const char* name = attribute ? NameAt(attribute->name) : UnassignedName(space, element.code);
    const Place under = detail::AddElementHead(in, element, form, "Attribute", name);
    radius.behind = c;
    if (vendor && vendor->more) ShowRows<Radius>(under, element.value, kMoreRows, radius);
    if (attribute) ShowValue(under, element.value, *attribute, radius, nesting);
    if (nesting == 0 && element.code == kMessageAuthenticator && !radius.isProved) {
      radius.isProved = true;   // a packet has one: each would take all of its bytes
      ShowMessageAuthenticatorStatus(under, radius.secret, Slice(element.whole, 2, element.whole.length - 2));
    }
    element.value.ranShort = false;   // what is left of a value that is cut
    if (Left(element.value) > 0) ShowRows<Radius>(under, element.value, kOctetsRows, radius, "Data");
    if (nesting == 0 && element.code == 1) {
      const Field user = Slice(element.whole, 2, element.whole.length - 2);
      AppendToParent(in, user, ", User %s", Text(user));
    }
  }
  AddBlock(in, Rest(c), "Data");
}

}  // namespace

int32_t DecodeRadius(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize) return 0;
  const Radius ahead = PeekRows(c, kHeader);
  if (ahead.length.value < kHeaderSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "RADIUS: %s, ID %u",
                                     LookupName(kCodeNames, ahead.code.value), ahead.identifier.value));
  const RadiusSecret secret = PrepareRadiusSecret(at, c);
  Radius radius = ShowRows(in, c, kHeader);
  radius.secret = secret;
  ShowAuthenticatorStatus(in, secret);
  Cursor attributes = TakeCursor(c, int64_t{radius.length.value} - kHeaderSize);
  if (JoinsFragments(in)) FindConversation(in, attributes, radius);
  ShowAttributes(in, attributes, kAttributeForm, kRegistrySpace, radius, 0);
  CoverBytes(in, c);
  AddBlock(in, Rest(c), "Padding");
  return 1;
}

}  // namespace qxview
