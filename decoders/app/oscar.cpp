// Open System for Communication in Realtime, by its maker's published developer texts: frames on channels (FLAP), in them
// requests by family and subtype (SNAC), and in these types with lengths and values.
#include "core/elements.h"
#include "decoders/common/ahead_cut.h"
#include "decoders/common/text_lines.h"
#include "decoders/message_lengths.h"

namespace qxview {
namespace {

constexpr int32_t kFlapSize = 6;
constexpr uint32_t kStart = 0x2A;
enum Channel : uint32_t { kSignOn = 1, kSnac = 2, kError = 3, kSignOff = 4, kKeepAlive = 5 };

struct Oscar { Field length, channel, family, subtype, count; };
constexpr auto kChannelNames = SortedNames(
    {{kSignOn, "Sign On"}, {kSnac, "SNAC"}, {kError, "Error"}, {kSignOff, "Sign Off"}, {kKeepAlive, "Keep-Alive"}});
constexpr auto kFamilyNames = SortedNames({
    {0x01, "Generic Service"}, {0x02, "Location"}, {0x03, "Buddy List"}, {0x04, "Messages"}, {0x05, "Advertisements"},
    {0x06, "Invitation"}, {0x07, "Administration"}, {0x08, "Popup"}, {0x09, "Privacy"}, {0x0A, "User Lookup"},
    {0x0B, "Usage Statistics"}, {0x0C, "Translation"}, {0x0D, "Chat Navigation"}, {0x0E, "Chat"},
    {0x0F, "Directory Search"}, {0x10, "Buddy Icons"}, {0x13, "Server-Stored Information"}, {0x15, "ICQ Extensions"},
    {0x17, "Authorization"}, {0x18, "E-Mail"}, {0x85, "Broadcast"}});
constexpr auto kErrorNames = SortedNames({
    {0x01, "Invalid SNAC"}, {0x02, "Rate Limit of Server"}, {0x03, "Rate Limit of Client"}, {0x04, "Not Logged In"},
    {0x05, "Service Unavailable"}, {0x06, "Service Not Defined"}, {0x07, "Obsolete SNAC"}, {0x08, "Not Supported by Server"},
    {0x09, "Not Supported by Client"}, {0x0A, "Refused by Client"}, {0x0B, "Reply Too Big"}, {0x0C, "Responses Lost"},
    {0x0D, "Request Denied"}, {0x0E, "Incorrect SNAC"}, {0x0F, "Insufficient Rights"}, {0x10, "Recipient Blocked"},
    {0x11, "Sender Too Evil"}, {0x12, "Receiver Too Evil"}, {0x13, "User Unavailable"}, {0x14, "No Match"},
    {0x15, "List Overflow"}, {0x16, "Request Ambiguous"}, {0x17, "Server Queue Full"}, {0x18, "Not While on AOL"}});
constexpr auto kMessageChannelNames = SortedNames({{1, "Plain Text"}, {2, "Rendezvous"}, {4, "Typed Message"}});
constexpr auto kItemNames = SortedNames({
    {0x00, "Buddy"}, {0x01, "Group"}, {0x02, "Permitted"}, {0x03, "Denied"}, {0x04, "Privacy Settings"},
    {0x05, "Presence"}, {0x0E, "Ignored"}, {0x0F, "Last Update"}, {0x10, "Contact of Another Service"},
    {0x13, "Time of Import"}, {0x14, "Buddy Icon"}});

constexpr auto kFlap = Rows<Oscar>({
    Hex(1, "Start"), Number(1, "Channel", kChannelNames).Into(&Oscar::channel), Number(2, "Sequence Number"),
    Number(2, "Length").Into(&Oscar::length)});
constexpr auto kSnacHead = Rows<Oscar>({
    Hex(2, "Family", kFamilyNames).Into(&Oscar::family), Hex(2, "Subtype").Into(&Oscar::subtype), Word(2),
    Flag(0, "Header Information Follows"), Flag(15, "More Replies Follow"), Hex(4, "Request ID")});

// A value of letters, or of 1, 2 or 4 octets.
void ShowText(const Place& in, Cursor& c, Oscar&) { AddTextLine(in, Rest(c), "Text"); }
void ShowNumber(const Place& in, Cursor& c, Oscar&) {
  const int32_t size = Left(c);
  if (size != 1 && size != 2 && size != 4) return;
  const Field number = size == 1 ? TakeU8(c) : size == 2 ? TakeU16(c) : TakeU32(c);
  AddLine(in, number, "Number: %u", number.value);
}
void ShowTime(const Place& in, Cursor& c, Oscar&) {
  constexpr auto kTime = Rows<Oscar>({UnixTime(4, "Time")});
  if (Left(c) == 4) ShowRows(in, c, kTime);
}
void ShowAddress(const Place& in, Cursor& c, Oscar&) {
  constexpr auto kAddress = Rows<Oscar>({IPv4("Address")});
  if (Left(c) == 4) ShowRows(in, c, kAddress);
}

constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2};

constexpr auto kSignOnTlvs = Choices<Oscar>({
    {0x01, "Screen Name", {}, ShowText}, {0x02, "Masked Password"}, {0x03, "Client Identification", {}, ShowText},
    {0x04, "Error URL", {}, ShowText}, {0x05, "Server", {}, ShowText}, {0x06, "Cookie"}, {0x08, "Error", {}, ShowNumber},
    {0x09, "Disconnect Reason", {}, ShowNumber}, {0x0B, "Disconnect URL", {}, ShowText}, {0x0D, "Service Family", {}, ShowNumber},
    {0x0E, "Country", {}, ShowText}, {0x0F, "Language", {}, ShowText}, {0x11, "E-Mail Address", {}, ShowText},
    {0x13, "Registration Status", {}, ShowNumber}, {0x14, "Distribution Number", {}, ShowNumber}, {0x16, "Client ID", {}, ShowNumber},
    {0x17, "Major Version", {}, ShowNumber}, {0x18, "Minor Version", {}, ShowNumber}, {0x19, "Point Version", {}, ShowNumber},
    {0x1A, "Build", {}, ShowNumber}, {0x25, "Password Hash"}, {0x40, "Beta Build", {}, ShowNumber}, {0x41, "Beta URL", {}, ShowText},
    {0x43, "Beta Name", {}, ShowText}, {0x44, "Release Build", {}, ShowNumber}, {0x45, "Release URL", {}, ShowText},
    {0x47, "Release Name", {}, ShowText}, {0x4A, "Uses Server-Stored Information", {}, ShowNumber}, {0x4C, "Newer Password Hash"},
    {0x54, "Password Change URL", {}, ShowText}, {0x8E, "Encryption", {}, ShowNumber}});
constexpr auto kUserTlvs = Choices<Oscar>({
    {0x01, "User Class", {}, ShowNumber}, {0x02, "Created", {}, ShowTime}, {0x03, "Signed On", {}, ShowTime},
    {0x04, "Idle Minutes", {}, ShowNumber}, {0x05, "Member Since", {}, ShowTime}, {0x06, "Status", {}, ShowNumber},
    {0x0A, "External Address", {}, ShowAddress}, {0x0C, "Direct Connection"}, {0x0D, "Capabilities"},
    {0x0F, "Session Seconds", {}, ShowNumber}, {0x10, "Session Seconds of AOL", {}, ShowNumber},
    {0x14, "Instance", {}, ShowNumber}, {0x19, "Short Capabilities"}, {0x1D, "Icon and Available Message"}});
constexpr auto kLocationTlvs = Choices<Oscar>({
    {0x01, "Encoding of Profile", {}, ShowText}, {0x02, "Profile", {}, ShowText}, {0x03, "Encoding of Away Message", {}, ShowText},
    {0x04, "Away Message", {}, ShowText}, {0x05, "Capabilities"}});
constexpr auto kChatTlvs = Choices<Oscar>({
    {0x01, "To Self"}, {0x03, "Sender"}, {0x05, "Message"}, {0x06, "Reflect Message"}, {0x6A, "Room Name", {}, ShowText},
    {0xCA, "Created", {}, ShowTime}, {0xD3, "Room Title", {}, ShowText}, {0xD5, "Creation Permission", {}, ShowNumber}});
constexpr auto kItemTlvs = Choices<Oscar>({
    {0x66, "Authorization Awaited"}, {0xC8, "Members"}, {0xCA, "Privacy Mode", {}, ShowNumber}, {0xCB, "Visible Classes", {}, ShowNumber},
    {0x131, "Alias", {}, ShowText}, {0x137, "E-Mail Address", {}, ShowText}, {0x13A, "Phone Number", {}, ShowText},
    {0x13C, "Comment", {}, ShowText}});
constexpr auto kPlainTlvs = Choices<Oscar>({{0xFFFF, "Last"}});

void ShowSignOnTlvs(const Place& in, Cursor& c, Oscar& out) { ShowElements<Oscar>(in, c, kForm, "TLV", kSignOnTlvs, out); }
void ShowLocationTlvs(const Place& in, Cursor& c, Oscar& out) { ShowElements<Oscar>(in, c, kForm, "TLV", kLocationTlvs, out); }
void ShowTlvs(const Place& in, Cursor& c, Oscar& out) { ShowElements<Oscar>(in, c, kForm, "TLV", kPlainTlvs, out); }

// The text of a message: sections of what it needs and of what it says, with their characters' set.
constexpr auto kCharsetNames = SortedNames({{0, "ASCII"}, {2, "UTF-16"}, {3, "ISO 8859-1"}});
constexpr auto kCharset = Rows<Oscar>({Number(2, "Character Set", kCharsetNames), Number(2, "Character Subset")});
void ShowMessageSection(const Place& in, Cursor& c, Oscar&) {
  constexpr auto kWide = Rows<Oscar>({Utf16(0, "Message")});
  const bool isWide = PeekU16(c) == 2;
  ShowRows(in, c, kCharset);
  if (!isWide) return (void)AddTextLine(in, Rest(c), "Message");
  Oscar unused{};
  ShowRows<Oscar>(in, c, kWide, unused);
}
constexpr auto kSections = Choices<Oscar>({{0x0101, "Text", {}, ShowMessageSection}, {0x0501, "Capabilities"}});
void ShowMessageSections(const Place& in, Cursor& c, Oscar& out) { ShowElements<Oscar>(in, c, kForm, "Section", kSections, out); }
constexpr auto kMessageTlvs = Choices<Oscar>({
    {0x02, "Message", {}, ShowMessageSections}, {0x03, "Acknowledgement Wanted"}, {0x04, "Automatic Response"},
    {0x05, "Rendezvous"}, {0x06, "Store if Offline"}, {0x08, "Icon"}, {0x0B, "Typing Notifications"}, {0x16, "Sent", {}, ShowTime}});

constexpr auto kName = Rows<Oscar>({Counted(1, Utf8(0, "Screen Name"))});
void ShowNames(const Place& in, Cursor& c, Oscar& out) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<Oscar>(in, c, kName, out);
}

// The TLVs that a count announces.
Cursor TakeCounted(Cursor& c, uint32_t count) {
  Cursor ahead = c;
  Element element;
  for (Loop loop; count > 0 && More(ahead, loop) && TakeElement(ahead, kForm, element); --count) {}
  return TakeCursor(c, ahead.offset - c.offset);
}
constexpr auto kUserTail = Rows<Oscar>({Number(2, "Warning Level"), Number(2, "TLV Count").Into(&Oscar::count)});
void ShowUser(const Place& at, Cursor& c, Oscar& out) {
  const int32_t length = static_cast<int32_t>(PeekU8(c));
  const Place in = Under(at, AddLine(at, AheadCut(c, length + 5), "User: %s", Text(PeekBytes(c, 1, length))));
  ShowRows<Oscar>(in, c, kName, out);
  ShowRows<Oscar>(in, c, kUserTail, out);
  Cursor tlvs = TakeCounted(c, out.count.value);
  ShowElements<Oscar>(in, tlvs, kForm, "TLV", kUserTlvs, out);
}
void ShowUsers(const Place& in, Cursor& c, Oscar& out) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowUser(in, c, out);
}
void ShowUserAndLocation(const Place& in, Cursor& c, Oscar& out) {
  ShowUser(in, c, out);
  ShowLocationTlvs(in, c, out);
}

constexpr auto kMessageHead = Rows<Oscar>({Hex(8, "Cookie"), Number(2, "Message Channel", kMessageChannelNames)});
void ShowSentMessage(const Place& in, Cursor& c, Oscar& out) {
  ShowRows<Oscar>(in, c, kMessageHead, out);
  ShowRows<Oscar>(in, c, kName, out);
  ShowElements<Oscar>(in, c, kForm, "TLV", kMessageTlvs, out);
}
void ShowReceivedMessage(const Place& in, Cursor& c, Oscar& out) {
  ShowRows<Oscar>(in, c, kMessageHead, out);
  ShowUser(in, c, out);
  ShowElements<Oscar>(in, c, kForm, "TLV", kMessageTlvs, out);
}
constexpr auto kTypingNames = SortedNames({{0, "Finished"}, {1, "Text Typed"}, {2, "Begun"}, {15, "Window Closed"}});
constexpr auto kTyping = Rows<Oscar>({Number(2, "Typing", kTypingNames)});
void ShowTyping(const Place& in, Cursor& c, Oscar& out) {
  ShowRows<Oscar>(in, c, kMessageHead, out);
  ShowRows<Oscar>(in, c, kName, out);
  ShowRows<Oscar>(in, c, kTyping, out);
}
void ShowChatMessage(const Place& in, Cursor& c, Oscar& out) {
  ShowRows<Oscar>(in, c, kMessageHead, out);
  ShowElements<Oscar>(in, c, kForm, "TLV", kChatTlvs, out);
}

constexpr auto kFamily = Rows<Oscar>({Hex(2, "Family", kFamilyNames)});
constexpr auto kVersion = Rows<Oscar>({Hex(2, "Family", kFamilyNames), Number(2, "Version")});
constexpr auto kReady = Rows<Oscar>({Hex(2, "Family", kFamilyNames), Number(2, "Version"), Hex(2, "Tool"), Hex(2, "Tool Version")});
constexpr auto kRateGroup = Rows<Oscar>({Number(2, "Rate Class")});
template <const auto& kRows>
void ShowMany(const Place& in, Cursor& c, Oscar& out) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<Oscar>(in, c, kRows, out);
}

constexpr auto kRateClass = Rows<Oscar>({
    Number(2, "Rate Class"), Number(4, "Window Size"), Number(4, "Clear Level"), Number(4, "Alert Level"), Number(4, "Limit Level"),
    Number(4, "Disconnect Level"), Number(4, "Current Level"), Number(4, "Maximum Level"), Number(4, "Last Time"), Number(1, "State")});
constexpr auto kCount = Rows<Oscar>({Number(2, "Count").Into(&Oscar::count)});
constexpr auto kRatePair = Rows<Oscar>({Hex(2, "Family", kFamilyNames), Hex(2, "Subtype")});
void ShowRates(const Place& in, Cursor& c, Oscar& out) {
  ShowRows<Oscar>(in, c, kCount, out);
  Loop loop;
  for (uint32_t i = 0; i < out.count.value && MoreAt(in, c, loop); ++i) ShowRows<Oscar>(in, c, kRateClass, out);
  Loop groups;
  while (MoreAt(in, c, groups)) {
    ShowRows<Oscar>(in, c, kRateGroup, out);
    ShowRows<Oscar>(in, c, kCount, out);
    Cursor pairs = TakeCursor(c, static_cast<int64_t>(out.count.value) * 4);
    ShowMany<kRatePair>(in, pairs, out);
  }
}

// Contacts and settings that the server keeps.
constexpr auto kItem = Rows<Oscar>({
    Counted(2, Utf8(0, "Name")), Number(2, "Group ID"), Number(2, "Item ID"),
    Number(2, "Item Type", kItemNames), Number(2, "Item Length").Into(&Oscar::count)});
void ShowItem(const Place& at, Cursor& c, Oscar& out) {
  constexpr int32_t kFixed = 10;
  const int32_t name = static_cast<int32_t>(PeekU16(c)), length = static_cast<int32_t>(PeekU16(c, name + 8));
  const Place in = Under(at, AddLine(at, AheadCut(c, kFixed + name + length), "Item: %s", Text(PeekBytes(c, 2, name))));
  ShowRows<Oscar>(in, c, kItem, out);
  Cursor tlvs = TakeCursor(c, out.count.value);
  ShowElements<Oscar>(in, tlvs, kForm, "TLV", kItemTlvs, out);
}
void ShowItems(const Place& in, Cursor& c, Oscar& out) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowItem(in, c, out);
}
void ShowRoster(const Place& in, Cursor& c, Oscar& out) {
  constexpr auto kHead = Rows<Oscar>({Number(1, "Version"), Number(2, "Count").Into(&Oscar::count)});
  constexpr auto kTail = Rows<Oscar>({UnixTime(4, "Last Change")});
  ShowRows<Oscar>(in, c, kHead, out);
  const uint32_t count = out.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) ShowItem(in, c, out);
  if (Left(c) >= 4) ShowRows<Oscar>(in, c, kTail, out);
}
constexpr auto kRosterState = Rows<Oscar>({UnixTime(4, "Last Change"), Number(2, "Count")});
constexpr auto kResultNames = SortedNames({
    {0x00, "Success"}, {0x02, "Not Found"}, {0x03, "Exists Already"}, {0x0A, "Not Added"}, {0x0C, "Limit Reached"},
    {0x0D, "Contact of Another Service"}, {0x0E, "Authorization Needed"}});
constexpr auto kResult = Rows<Oscar>({Hex(2, "Result", kResultNames)});
constexpr auto kErrorCode = Rows<Oscar>({Hex(2, "Error", kErrorNames)});
void ShowErrorTlvs(const Place& in, Cursor& c, Oscar& out) {
  ShowRows<Oscar>(in, c, kErrorCode, out);
  ShowTlvs(in, c, out);
}
constexpr auto kIdle = Rows<Oscar>({Number(4, "Idle", " seconds")});
constexpr auto kCapability = Rows<Oscar>({Number(2, "Requested Information")});
void ShowUserRequest(const Place& in, Cursor& c, Oscar& out) {
  ShowRows<Oscar>(in, c, kCapability, out);
  ShowRows<Oscar>(in, c, kName, out);
}
// Rates that change, families that pause, what a server's other one takes over.
constexpr auto kRateNews = SortedNames({{1, "Limits Changed"}, {2, "Warning"}, {3, "Limited"}, {4, "Cleared"}});
constexpr auto kRateMessage = Rows<Oscar>({Number(2, "Rate Message", kRateNews)});
void ShowRateChange(const Place& in, Cursor& c, Oscar& out) {
  ShowRows<Oscar>(in, c, kRateMessage, out);
  ShowMany<kRateClass>(in, c, out);
}
constexpr auto kWarned = Rows<Oscar>({Number(2, "New Warning Level")});
void ShowMigration(const Place& in, Cursor& c, Oscar& out) {
  ShowRows<Oscar>(in, c, kCount, out);
  Cursor families = TakeCursor(c, static_cast<int64_t>(out.count.value) * 2);
  ShowMany<kFamily>(in, families, out);
  ShowSignOnTlvs(in, c, out);
}
constexpr auto kPrivacy = Rows<Oscar>({Word(4), Flag(31, "Idle Time Is Seen"), Flag(30, "Membership Is Seen")});
constexpr auto kVerify = Rows<Oscar>({Number(4, "Offset"), Number(4, "Length")});
constexpr auto kVerified = Rows<Oscar>({Counted(2, Bytes(0, "Hash"))});
constexpr auto kStatusItem = Rows<Oscar>({Number(2, "Status Type"), Hex(1, "Status Flags"), Counted(1, Bytes(0, "Status Data"))});
constexpr auto kWideRequest = Rows<Oscar>({Hex(4, "Requested Information")});
void ShowWideUserRequest(const Place& in, Cursor& c, Oscar& out) {
  ShowRows<Oscar>(in, c, kWideRequest, out);
  ShowRows<Oscar>(in, c, kName, out);
}

// What messages may be, warnings, and messages that did not come.
constexpr auto kParameters = Rows<Oscar>({
    Number(2, "Message Channel", kMessageChannelNames), Hex(4, "Message Flags"), Number(2, "Longest Message"),
    Number(2, "Highest Warning Level of Senders"), Number(2, "Highest Warning Level of Receivers"), Number(4, "Shortest Interval", " ms")});
constexpr auto kChannel = Rows<Oscar>({Number(2, "Message Channel", kMessageChannelNames)});
constexpr auto kAnonymous = Rows<Oscar>({Number(2, "Anonymous", kFalseTrueNames)});
void ShowWarning(const Place& in, Cursor& c, Oscar& out) {
  ShowRows<Oscar>(in, c, kAnonymous, out);
  ShowRows<Oscar>(in, c, kName, out);
}
constexpr auto kWarningResult = Rows<Oscar>({Number(2, "Warning Level Gained"), Number(2, "New Warning Level")});
constexpr auto kMissedNames = SortedNames({
    {0, "Invalid Message"}, {1, "Message Too Large"}, {2, "Rate Exceeded"}, {3, "Sender Too Evil"}, {4, "Receiver Too Evil"}});
constexpr auto kMissed = Rows<Oscar>({Number(2, "Messages Missed"), Number(2, "Reason", kMissedNames)});
void ShowMissed(const Place& in, Cursor& c, Oscar& out) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    ShowRows<Oscar>(in, c, kChannel, out);
    ShowUser(in, c, out);
    ShowRows<Oscar>(in, c, kMissed, out);
  }
}
constexpr auto kResponseReasons = SortedNames({{1, "Channel Not Supported"}, {2, "Refused"}, {3, "Data of the Channel"}});
constexpr auto kResponse = Rows<Oscar>({Number(2, "Reason", kResponseReasons)});
void ShowClientResponse(const Place& in, Cursor& c, Oscar& out) {
  ShowRows<Oscar>(in, c, kMessageHead, out);
  ShowRows<Oscar>(in, c, kName, out);
  ShowRows<Oscar>(in, c, kResponse, out);
}

// Accounts, classes, intervals of reports.
constexpr auto kAccount = Rows<Oscar>({Hex(2, "Permissions"), Number(2, "TLV Count").Into(&Oscar::count)});
constexpr auto kStatus = Rows<Oscar>({Number(2, "Status")});
constexpr auto kClasses = Rows<Oscar>({Hex(4, "User Classes")});
constexpr auto kInterval = Rows<Oscar>({Number(2, "Interval", " hours")});

// Rooms.
constexpr auto kExchange = Rows<Oscar>({Number(2, "Exchange")});
constexpr auto kRoom = Rows<Oscar>({
    Number(2, "Exchange"), Counted(1, Utf8(0, "Room Cookie")), Number(2, "Room Instance"), Number(1, "Detail Level")});
void ShowRoom(const Place& in, Cursor& c, Oscar& out) {
  ShowRows<Oscar>(in, c, kRoom, out);
  ShowRows<Oscar>(in, c, kCount, out);
  ShowElements<Oscar>(in, c, kForm, "TLV", kChatTlvs, out);
}
void ShowSearchResults(const Place& in, Cursor& c, Oscar& out) {
  constexpr auto kHead = Rows<Oscar>({Number(2, "Status"), Number(2, "Reserved"), Number(2, "Count")});
  ShowRows<Oscar>(in, c, kHead, out);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    ShowRows<Oscar>(in, c, kCount, out);
    Cursor tlvs = TakeCounted(c, out.count.value);
    ShowTlvs(in, tlvs, out);
  }
}

// Icons by the hash of their octets.
constexpr auto kIconUpload = Rows<Oscar>({Number(2, "Icon Type"), Counted(2, Bytes(0, "Icon"))});
constexpr auto kIconStored = Rows<Oscar>({
    Number(1, "Result"), Number(2, "Icon Type"), Hex(1, "Icon Flags"), Counted(1, Bytes(0, "Icon Hash"))});
constexpr auto kIconHash = Rows<Oscar>({Number(2, "Icon Type"), Hex(1, "Icon Flags"), Counted(1, Bytes(0, "Icon Hash"))});
constexpr auto kIconData = Rows<Oscar>({Counted(2, Bytes(0, "Icon"))});
void ShowIconRequest(const Place& in, Cursor& c, Oscar& out) {
  constexpr auto kHashes = Rows<Oscar>({Number(1, "Icon Count")});
  ShowRows<Oscar>(in, c, kName, out);
  ShowRows<Oscar>(in, c, kHashes, out);
  ShowMany<kIconHash>(in, c, out);
}
void ShowIcon(const Place& in, Cursor& c, Oscar& out) {
  ShowRows<Oscar>(in, c, kName, out);
  ShowRows<Oscar>(in, c, kIconHash, out);
  ShowRows<Oscar>(in, c, kIconData, out);
}

// Who may see whom: a name, an answer, and why.
constexpr auto kReason = Rows<Oscar>({Counted(2, Utf8(0, "Reason Text"))});
constexpr auto kAccepted = Rows<Oscar>({Number(1, "Accepted", kFalseTrueNames)});
void ShowAuthorization(const Place& in, Cursor& c, Oscar& out) {
  ShowRows<Oscar>(in, c, kName, out);
  ShowRows<Oscar>(in, c, kReason, out);
}
void ShowAuthorizationReply(const Place& in, Cursor& c, Oscar& out) {
  ShowRows<Oscar>(in, c, kName, out);
  ShowRows<Oscar>(in, c, kAccepted, out);
  ShowRows<Oscar>(in, c, kReason, out);
}

// A message of the other service stands in a TLV, the low octets first.
constexpr auto kIcqNames = SortedNames({
    {0x3C, "Offline Messages Request"}, {0x3E, "Offline Messages Delete"}, {0x41, "Offline Message"}, {0x42, "End of Offline Messages"},
    {0x7D0, "Information Request"}, {0x7DA, "Information"}});
constexpr auto kIcq = LittleRows<Oscar>({
    Number(2, "Message Length"), Number(4, "User Number"), Hex(2, "Message Type", kIcqNames).Into(&Oscar::subtype),
    Number(2, "Message Number")});
constexpr auto kIcqSubtype = LittleRows<Oscar>({Hex(2, "Message Subtype")});
void ShowIcq(const Place& in, Cursor& c, Oscar& out) {
  constexpr uint32_t kInformation = 0x7D0;
  ShowRows<Oscar>(in, c, kIcq, out);
  if (out.subtype.value >= kInformation) ShowRows<Oscar>(in, c, kIcqSubtype, out);
}
constexpr auto kIcqTlvs = Choices<Oscar>({{0x01, "Message of the Other Service", {}, ShowIcq}});
void ShowIcqTlvs(const Place& in, Cursor& c, Oscar& out) { ShowElements<Oscar>(in, c, kForm, "TLV", kIcqTlvs, out); }

constexpr auto kKeyLength = Rows<Oscar>({Counted(2, Utf8(0, "Key"))});

constexpr uint32_t Request(uint32_t family, uint32_t subtype) { return family << 16 | subtype; }
constexpr auto kSnacs = Choices<Oscar>({
    {Request(0x01, 0x02), "Client Ready", {}, ShowMany<kReady>}, {Request(0x01, 0x03), "Server Families", {}, ShowMany<kFamily>},
    {Request(0x01, 0x04), "Service Request", kFamily, ShowTlvs}, {Request(0x01, 0x05), "Redirect", {}, ShowSignOnTlvs},
    {Request(0x01, 0x06), "Rate Request"}, {Request(0x01, 0x07), "Rates", {}, ShowRates},
    {Request(0x01, 0x08), "Rates Accepted", {}, ShowMany<kRateGroup>}, {Request(0x01, 0x0A), "Rate Change", {}, ShowRateChange},
    {Request(0x01, 0x0B), "Pause", {}, ShowMany<kFamily>}, {Request(0x01, 0x0C), "Paused", {}, ShowMany<kFamily>}, {Request(0x01, 0x0D), "Resume", {}, ShowMany<kFamily>}, {Request(0x01, 0x0E), "Own Information Request"},
    {Request(0x01, 0x0F), "Own Information", {}, ShowUsers}, {Request(0x01, 0x10), "Warned", kWarned, ShowUsers}, {Request(0x01, 0x11), "Idle", kIdle},
    {Request(0x01, 0x12), "Migration", {}, ShowMigration}, {Request(0x01, 0x13), "Message of the Day", kCapability, ShowTlvs},
    {Request(0x01, 0x14), "Privacy Flags", kPrivacy}, {Request(0x01, 0x15), "Well-Known URLs", {}, ShowTlvs}, {Request(0x01, 0x16), "No Operation"},
    {Request(0x01, 0x17), "Client Versions", {}, ShowMany<kVersion>}, {Request(0x01, 0x18), "Server Versions", {}, ShowMany<kVersion>},
    {Request(0x01, 0x1E), "Status", {}, ShowTlvs}, {Request(0x01, 0x1F), "Client Verification Request", kVerify},
    {Request(0x01, 0x20), "Client Verification", kVerified}, {Request(0x01, 0x21), "Extended Status", {}, ShowMany<kStatusItem>},
    {Request(0x02, 0x02), "Limits Request"}, {Request(0x02, 0x03), "Limits", {}, ShowTlvs},
    {Request(0x02, 0x04), "Set Information", {}, ShowLocationTlvs}, {Request(0x02, 0x05), "User Information Request", {}, ShowUserRequest},
    {Request(0x02, 0x06), "User Information", {}, ShowUserAndLocation}, {Request(0x02, 0x07), "Watcher Subscription", {}, ShowNames},
    {Request(0x02, 0x08), "Watcher Notification", {}, ShowNames}, {Request(0x02, 0x09), "Set Directory Information", {}, ShowTlvs},
    {Request(0x02, 0x0A), "Set Directory Information Result", kStatus}, {Request(0x02, 0x0B), "Directory Information Request", {}, ShowNames}, {Request(0x02, 0x0C), "Directory Information", kAccount, ShowTlvs},
    {Request(0x02, 0x15), "Newer User Information Request", {}, ShowWideUserRequest},
    {Request(0x03, 0x02), "Limits Request"}, {Request(0x03, 0x03), "Limits", {}, ShowTlvs},
    {Request(0x03, 0x04), "Add Buddies", {}, ShowNames}, {Request(0x03, 0x05), "Remove Buddies", {}, ShowNames},
    {Request(0x03, 0x0A), "Rejected Buddies", {}, ShowNames}, {Request(0x03, 0x0B), "Buddy Arrived", {}, ShowUsers},
    {Request(0x03, 0x0C), "Buddy Left", {}, ShowUsers},
    {Request(0x04, 0x02), "Set Parameters", kParameters}, {Request(0x04, 0x03), "Reset Parameters"}, {Request(0x04, 0x04), "Parameters Request"},
    {Request(0x04, 0x05), "Parameters", kParameters}, {Request(0x04, 0x06), "Message Sent", {}, ShowSentMessage},
    {Request(0x04, 0x07), "Message Received", {}, ShowReceivedMessage}, {Request(0x04, 0x08), "Warning", {}, ShowWarning},
    {Request(0x04, 0x09), "Warning Result", kWarningResult}, {Request(0x04, 0x0A), "Missed Messages", {}, ShowMissed}, {Request(0x04, 0x0B), "Client Response", {}, ShowClientResponse},
    {Request(0x04, 0x0C), "Message Acknowledgement", kMessageHead, ShowNames}, {Request(0x04, 0x14), "Typing", {}, ShowTyping},
    {Request(0x07, 0x02), "Account Information Request", {}, ShowTlvs}, {Request(0x07, 0x03), "Account Information", kAccount, ShowTlvs},
    {Request(0x07, 0x04), "Account Change", {}, ShowTlvs}, {Request(0x07, 0x05), "Account Change Result", kAccount, ShowTlvs},
    {Request(0x07, 0x06), "Confirmation Request"}, {Request(0x07, 0x07), "Confirmation", kStatus, ShowTlvs},
    {Request(0x08, 0x02), "Popup", {}, ShowTlvs},
    {Request(0x09, 0x02), "Limits Request"}, {Request(0x09, 0x03), "Limits", {}, ShowTlvs}, {Request(0x09, 0x04), "Permitted Classes", kClasses},
    {Request(0x09, 0x05), "Add Permitted", {}, ShowNames}, {Request(0x09, 0x06), "Remove Permitted", {}, ShowNames},
    {Request(0x09, 0x07), "Add Denied", {}, ShowNames}, {Request(0x09, 0x08), "Remove Denied", {}, ShowNames},
    {Request(0x0A, 0x02), "Search by E-Mail Address", {}, ShowText}, {Request(0x0A, 0x03), "Search Result", {}, ShowTlvs},
    {Request(0x0B, 0x02), "Report Interval", kInterval}, {Request(0x0B, 0x03), "Report", {}, ShowTlvs}, {Request(0x0B, 0x04), "Report Acknowledgement"},
    {Request(0x0D, 0x02), "Limits Request"}, {Request(0x0D, 0x03), "Exchange Request", kExchange}, {Request(0x0D, 0x04), "Room Request", kRoom},
    {Request(0x0D, 0x08), "Room Creation", {}, ShowRoom}, {Request(0x0D, 0x09), "Information", {}, ShowTlvs},
    {Request(0x0E, 0x02), "Room Information", {}, ShowRoom}, {Request(0x0E, 0x03), "Users Joined", {}, ShowUsers},
    {Request(0x0E, 0x04), "Users Left", {}, ShowUsers}, {Request(0x0E, 0x05), "Message Sent", {}, ShowChatMessage},
    {Request(0x0E, 0x06), "Message Received", {}, ShowChatMessage},
    {Request(0x0F, 0x02), "Directory Search", {}, ShowTlvs}, {Request(0x0F, 0x03), "Directory Search Result", {}, ShowSearchResults},
    {Request(0x10, 0x02), "Icon Upload", kIconUpload}, {Request(0x10, 0x03), "Icon Upload Result", kIconStored}, {Request(0x10, 0x04), "Icon Request", {}, ShowIconRequest},
    {Request(0x10, 0x05), "Icon", {}, ShowIcon},
    {Request(0x13, 0x02), "Limits Request", {}, ShowTlvs}, {Request(0x13, 0x03), "Limits", {}, ShowTlvs},
    {Request(0x13, 0x04), "Roster Request"}, {Request(0x13, 0x05), "Roster if Changed", kRosterState},
    {Request(0x13, 0x06), "Roster", {}, ShowRoster}, {Request(0x13, 0x07), "Roster in Use"}, {Request(0x13, 0x08), "Add Items", {}, ShowItems},
    {Request(0x13, 0x09), "Update Items", {}, ShowItems}, {Request(0x13, 0x0A), "Remove Items", {}, ShowItems},
    {Request(0x13, 0x0E), "Results", {}, ShowMany<kResult>}, {Request(0x13, 0x0F), "Roster Unchanged", kRosterState},
    {Request(0x13, 0x11), "Edit Begins"}, {Request(0x13, 0x12), "Edit Ends"}, {Request(0x13, 0x14), "Authorization Granted", {}, ShowAuthorization}, {Request(0x13, 0x15), "Authorization Given", {}, ShowAuthorization},
    {Request(0x13, 0x18), "Authorization Request", {}, ShowAuthorization}, {Request(0x13, 0x19), "Authorization Asked", {}, ShowAuthorization},
    {Request(0x13, 0x1A), "Authorization Reply", {}, ShowAuthorizationReply}, {Request(0x13, 0x1B), "Authorization Answered", {}, ShowAuthorizationReply}, {Request(0x13, 0x1C), "Added", {}, ShowNames},
    {Request(0x15, 0x02), "Request", {}, ShowIcqTlvs}, {Request(0x15, 0x03), "Response", {}, ShowIcqTlvs},
    {Request(0x17, 0x02), "Login", {}, ShowSignOnTlvs}, {Request(0x17, 0x03), "Login Result", {}, ShowSignOnTlvs},
    {Request(0x17, 0x04), "Registration", {}, ShowTlvs}, {Request(0x17, 0x05), "Registration Result", {}, ShowTlvs},
    {Request(0x17, 0x06), "Key Request", {}, ShowSignOnTlvs}, {Request(0x17, 0x07), "Key", kKeyLength},
    {Request(0x17, 0x0A), "Token Request"}, {Request(0x17, 0x0B), "Token"}});
constexpr Choice<Oscar> kAnyError{1, "Error", {}, ShowErrorTlvs};   // of every family

void ShowSnac(const Place& in, LineHandle title, Cursor& c) {
  constexpr uint32_t kHasInformation = 0x8000;
  const bool hasInformation = PeekU16(c, 4) & kHasInformation;
  Oscar snac = ShowRows(in, c, kSnacHead);
  if (!snac.subtype.here) return;
  const Choice<Oscar>* choice = snac.subtype.value == 1 ? &kAnyError
                                                        : FindChoice<Oscar>(kSnacs, Request(snac.family.value, snac.subtype.value));
  AppendToLine(in, title, ", %s: %s", LookupName(kFamilyNames, snac.family.value), choice ? choice->name : kUnknown);
  if (hasInformation && Left(c) >= 2) {
    const Field length = TakeU16(c);
    AddLine(in, length, "Header Information Length: %u", length.value);
    Cursor information = TakeCursor(c, length.value);
    ShowTlvs(in, information, snac);
  }
  ShowChoice(in, c, choice, snac);
}

void ShowFlapBody(const Place& in, LineHandle title, Cursor& c, uint32_t channel) {
  constexpr auto kProtocol = Rows<Oscar>({Number(4, "Protocol Version")});
  Oscar out{};
  if (channel == kSnac) return ShowSnac(in, title, c);
  if (channel == kSignOn) ShowRows<Oscar>(in, c, kProtocol, out);
  if (channel == kSignOn || channel == kSignOff) ShowSignOnTlvs(in, c, out);
  AddBlock(in, Rest(c), "Data");
}

bool StartsFlap(const Cursor& c) {
  const uint32_t channel = PeekU8(c, 1);
  return Left(c) >= kFlapSize && PeekU8(c) == kStart && channel >= kSignOn && channel <= kKeepAlive;
}

}  // namespace

int32_t LengthOfOscar(const Cursor& c) {
  if (Left(c) < kFlapSize) return PeekU8(c) == kStart ? 0 : kNoMessage;
  return StartsFlap(c) ? kFlapSize + static_cast<int32_t>(PeekU16(c, 4)) : kNoMessage;
}

int32_t DecodeOscar(const Place& at, Cursor c) {
  if (!StartsFlap(c)) return 0;
  Loop loop;
  while (MoreAt(at, c, loop) && StartsFlap(c)) {
    const LineHandle title = AddLine(at, AheadCut(c, kFlapSize + static_cast<int32_t>(PeekU16(c, 4))), "OSCAR: %s",
                                     LookupName(kChannelNames, PeekU8(c, 1)));
    const Place in = Under(at, title);
    const Oscar flap = ShowRows(in, c, kFlap);
    Cursor body = TakeCursor(c, flap.length.value);
    ShowFlapBody(in, title, body, flap.channel.value);
  }
  if (Left(c) > 0) AddRawRest(at, c, "OSCAR Data");
  return 1;
}

}  // namespace qxview
