// The messages of Secure Shell's version 1 that stand in clear (draft-ylonen-ssh-protocol-00): the keys of the server, and
// the session's key that the client made for it.
#include "core/elements.h"
#include "decoders/app/ssh.h"

namespace qxview {
namespace {

constexpr auto kCipherNames = SortedNames({
    {0, "None"}, {1, "IDEA"}, {2, "DES"}, {3, "Triple DES"}, {4, "TSS"}, {5, "RC4"}, {6, "Blowfish"}});
constexpr auto kCipherMasks = SortedNames({
    {0x01, "None"}, {0x02, "IDEA"}, {0x04, "DES"}, {0x08, "Triple DES"}, {0x10, "TSS"}, {0x20, "RC4"}, {0x40, "Blowfish"}});
constexpr auto kMethodMasks = SortedNames({
    {0x02, "Rhosts"}, {0x04, "RSA"}, {0x08, "Password"}, {0x10, "Rhosts with RSA"}, {0x20, "TIS"}, {0x40, "Kerberos"},
    {0x80, "Kerberos Ticket"}});
constexpr auto kProtocolMasks = SortedNames({{0x01, "Screen Number"}, {0x02, "Host in Forwarded Open"}});

// A number behind the count of its bits.
void ShowNumber(const Place& in, Cursor& c, const char* label, NoValues&) {
  const Field bits = TakeU16(c);
  AddLine(in, bits, "%s Length: %u bits", label, bits.value);
  const Field number = TakeBytes(c, (bits.value + 7) / 8);
  if (number.length) AddLine(in, number, "%s: %s", label, HexDigits(number));
}
// keys: text
void ShowString(const Place& in, Cursor& c, const char* label, NoValues&) { ShowSshText(in, c, label); }
constexpr Row<NoValues> Wide(const char* label) { return Shown<NoValues>(label, ShowNumber); }
constexpr Row<NoValues> String(const char* label) { return Shown<NoValues>(label, ShowString); }

constexpr auto kPublicKey = Rows<NoValues>({
    Bytes(8, "Anti-spoofing Cookie"), Number(4, "Server Key Bits"), Wide("Server Key Exponent"), Wide("Server Key Modulus"),
    Number(4, "Host Key Bits"), Wide("Host Key Exponent"), Wide("Host Key Modulus"), Flags(4, "Protocol Flags", kProtocolMasks),
    Flags(4, "Supported Ciphers", kCipherMasks), Flags(4, "Supported Authentications", kMethodMasks)});
constexpr auto kSessionKey = Rows<NoValues>({
    Number(1, "Cipher", kCipherNames), Bytes(8, "Anti-spoofing Cookie"), Wide("Encrypted Session Key"),
    Flags(4, "Protocol Flags", kProtocolMasks)});
constexpr auto kDisconnect = Rows<NoValues>({String("Description")});
constexpr auto kIgnore = Rows<NoValues>({String("Ignored Data")});
constexpr auto kDebug = Rows<NoValues>({String("Message")});

constexpr auto kMessages = Choices<NoValues>({
    {1, "MSG_DISCONNECT", kDisconnect}, {2, "SMSG_PUBLIC_KEY", kPublicKey}, {3, "CMSG_SESSION_KEY", kSessionKey},
    {32, "MSG_IGNORE", kIgnore}, {36, "MSG_DEBUG", kDebug}});

}  // namespace

void ShowSsh1Message(const Place& in, Cursor& c, uint32_t type) {
  NoValues none;
  const Choice<NoValues>* choice = FindChoice<NoValues>(kMessages, type);
  if (choice) ShowRows<NoValues>(in, c, choice->rows, none, choice->name);
}

}  // namespace qxview
