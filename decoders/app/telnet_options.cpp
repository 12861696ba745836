// What the options of Telnet settle in subnegotiations: RFC 652-658, 698, 735, 779, 859, 861, 927, 946, 1041, 1053, 1073, 1079,
// 1091, 1096, 1184, 1372, 1408 and 1572, 2066, 2217, 2355, 2840, 2941-2953 (earlier 1411, 1412 and 1416), and as far as
// their makers published them those of games.
#include "core/elements.h"
#include "decoders/app/telnet.h"
#include "decoders/common/digits.h"
#include "decoders/common/header_lines.h"
#include "decoders/common/json_lines.h"
#include "decoders/smb/ntlmssp.h"

namespace qxview {
namespace {

constexpr auto kIsSendNames = SortedNames({{0, "IS"}, {1, "SEND"}});
constexpr auto kSenderNames = SortedNames({{0, "Data Receiver Asks"}, {1, "Data Sender Asks"}});
constexpr auto kSwitchNames = SortedNames({{0, "Off"}, {1, "On"}, {2, "Restart on Any Character"},
    {3, "Restart on XON"}});
constexpr auto kNegotiationNames = SortedNames({{251, "WILL"}, {252, "WON'T"}, {253, "DO"}, {254, "DON'T"}});

constexpr auto kTextIs = Rows<Telnet>({Number(1, "Command", kIsSendNames), Text(0, "Value")});
constexpr auto kTerminal = Rows<Telnet>({Number(1, "Command", kIsSendNames), Text(0, "Terminal Type")});
constexpr auto kSpeed = Rows<Telnet>({Number(1, "Command", kIsSendNames), Text(0, "Terminal Speed")});
constexpr auto kDisplay = Rows<Telnet>({Number(1, "Command", kIsSendNames), Text(0, "X Display Location")});
constexpr auto kRegimeCommandNames = SortedNames({{0, "IS"}, {1, "ARE"}});
constexpr auto kRegime = Rows<Telnet>({Number(1, "Command", kRegimeCommandNames), Text(0, "3270 Regime")});
constexpr auto kWindow = Rows<Telnet>({Number(2, "Width"), Number(2, "Height")});
constexpr auto kFlow = Rows<Telnet>({Number(1, "Flow Control", kSwitchNames)});
constexpr auto kOutput = Rows<Telnet>({Number(1, "Command", kSenderNames), Number(1, "Value")});
constexpr auto kMessageSize = Rows<Telnet>({Number(1, "Command", kSenderNames), Number(2, "Approximate Message Size")});
constexpr auto kExtendedAscii = Rows<Telnet>({Hex(2, "Extended Character")});
constexpr auto kLocation = Rows<Telnet>({Text(0, "Location")});
constexpr auto kMarking = Rows<Telnet>({Text(0, "Banner")});
constexpr auto kUser = Rows<Telnet>({Hex(4, "User Identifier")});
constexpr auto kTerminalLocationFormatNames = SortedNames({{0, "Host and Terminal"}});
constexpr auto kTerminalLocation = Rows<Telnet>({
    Number(1, "Format", kTerminalLocationFormatNames), IPv4("Host Address"), Hex(4, "Terminal")});
constexpr auto kMacroCommandNames = SortedNames({{1, "Define"}, {2, "Accept"}, {3, "Refuse"}, {4, "Literal"},
    {5, "Please Cancel"}});
constexpr auto kMacro = Rows<Telnet>({
    Number(1, "Command", kMacroCommandNames),
    Number(1, "Macro Byte"), Counted(1, Text(0, "Expansion"))});
constexpr auto kTlsCommandNames = SortedNames({{1, "FOLLOWS"}});
constexpr auto kTls = Rows<Telnet>({Number(1, "Command", kTlsCommandNames)});
constexpr auto kUrl = Rows<Telnet>({Text(0, "URL")});

// X.3 PAD (RFC 1053): pairs of parameter and value.
constexpr auto kPadCommandNames = SortedNames({{0, "SET"}, {1, "RESPONSE-SET"}, {2, "IS"}, {3, "RESPONSE-IS"},
    {4, "SEND"}});
constexpr auto kPad = Rows<Telnet>({
    Number(1, "Command", kPadCommandNames)});
constexpr auto kPadParameterNames = SortedNames({
    {1, "PAD Recall"}, {2, "Echo"}, {3, "Data Forwarding"}, {4, "Idle Timer"}, {5, "Ancillary Device Control"},
    {6, "PAD Service Signals"}, {7, "Break Operation"}, {8, "Discard Output"}, {9, "Padding after Carriage Return"},
    {10, "Line Folding"}, {11, "Speed"}, {12, "Flow Control of the PAD"}, {13, "Linefeed Insertion"},
    {14, "Padding after Linefeed"}, {15, "Editing"}, {16, "Character Delete"}, {17, "Line Delete"}, {18, "Line Display"},
    {19, "Editing Service Signals"}, {20, "Echo Mask"}, {21, "Parity Treatment"}, {22, "Page Wait"}});
constexpr auto kPadPair = Rows<Telnet>({Number(1, "Parameter", kPadParameterNames), Number(1, "Value")});

void ShowPad(const Place& in, Cursor& c, Telnet& telnet) {
  ShowRows<Telnet>(in, c, kPad, telnet);
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<Telnet>(in, c, kPadPair, telnet);
}

// Linemode (RFC 1184).
constexpr auto kLinemodeNames = SortedNames({
    {1, "MODE"}, {2, "FORWARDMASK"}, {3, "SLC"}, {251, "WILL"}, {252, "WON'T"}, {253, "DO"}, {254, "DON'T"}});
constexpr auto kLinemode = Rows<Telnet>({Number(1, "Command", kLinemodeNames).Into(&Telnet::command)});
constexpr auto kMode = Rows<Telnet>({
    Hex(1, "Mode"), Flag(3, "Literal Echo"), Flag(4, "Soft Tab"), Flag(5, "Acknowledgement"), Flag(6, "Trap Signals"),
    Flag(7, "Edit")});
constexpr auto kForwardMask = Rows<Telnet>({Number(1, "Linemode Command", kLinemodeNames), Bytes(0, "Forward Mask")});
constexpr auto kSlcNames = SortedNames({
    {0, "All"}, {1, "Synch"}, {2, "Break"}, {3, "Interrupt Process"}, {4, "Abort Output"}, {5, "Are You There"},
    {6, "End of Record"}, {7, "Abort"}, {8, "End of File"}, {9, "Suspend"}, {10, "Erase Character"}, {11, "Erase Line"},
    {12, "Erase Word"}, {13, "Reprint Line"}, {14, "Literal Next"}, {15, "XON"}, {16, "XOFF"}, {17, "Forward 1"},
    {18, "Forward 2"}, {19, "Cursor Left"}, {20, "Cursor Right"}, {21, "Cursor Word Left"}, {22, "Cursor Word Right"},
    {23, "Cursor to Beginning of Line"}, {24, "Cursor to End of Line"}, {25, "Insert Mode"}, {26, "Overstrike Mode"},
    {27, "Erase to the Right"}, {28, "Erase Word to the Right"}, {29, "Erase to Beginning of Line"},
    {30, "Erase to End of Line"}});
constexpr auto kSlcLevelNames = SortedNames({{0, "Not Supported"}, {1, "Cannot Change"}, {2, "Value"},
    {3, "Default"}});
constexpr auto kSlc = Rows<Telnet>({
    Number(1, "Function", kSlcNames), Hex(1, "Modifiers"), Flag(0, "Acknowledgement"), Flag(1, "Flush Input"),
    Flag(2, "Flush Output"), Bits(6, 2, "Level", kSlcLevelNames), Hex(1, "Character")});

void ShowLinemode(const Place& in, Cursor& c, Telnet& telnet) {
  ShowRows<Telnet>(in, c, kLinemode, telnet);
  if (telnet.command.value == 1) return ShowRows<Telnet>(in, c, kMode, telnet);
  if (telnet.command.value != 3) {
    ShowRows<Telnet>(in, c, kForwardMask, telnet);
    return;
  }
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Place under = Under(in, AddLine(in, Ahead(c, Left(c) < 3 ? Left(c) : 3), "Special Character: %s",
                                          LookupName(kSlcNames, PeekU8(c))));
    ShowRows<Telnet>(under, c, kSlc, telnet);
  }
}

// Texts that octets below 32 divide, each with what it is: environments, status of games' servers, terminals of 3270E. An
// octet behind `escape` is a character.
Field TakeDivided(Cursor& c, int32_t mostMark, int32_t escape) {
  int32_t length = 0;
  for (; length < Left(c); ++length) {
    const int32_t octet = static_cast<int32_t>(PeekU8(c, length));
    if (octet == escape) ++length;
    else if (octet <= mostMark) break;
  }
  return TakeBytes(c, length < Left(c) ? length : Left(c));
}

void ShowDivided(const Place& in, Cursor& c, const Names& marks, int32_t mostMark, int32_t escape) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Field mark = TakeU8(c);
    const Field text = TakeDivided(c, mostMark, escape);
    const Place under = Under(in, AddLine(in, Stated(mark.offset, 1 + text.length), "%s: %s", marks.NameOf(mark.value),
                                          Text(text)));   // keys: text Variable, Value, User Variable
    AddLine(under, mark, "Type: %u = %s", mark.value, marks.NameOf(mark.value));
    if (text.length > 0) AddTextLine(under, text, "Text");
  }
}

constexpr auto kEnvironmentCommandNames = SortedNames({{0, "IS"}, {1, "SEND"}, {2, "INFO"}});
constexpr auto kEnvironment = Rows<Telnet>({
    Number(1, "Command", kEnvironmentCommandNames).Into(&Telnet::command)});
constexpr auto kVariableNames = SortedNames({{0, "Variable"}, {1, "Value"}, {2, "Escape"}, {3, "User Variable"}});

void ShowEnvironment(const Place& in, Cursor& c, Telnet& telnet) {
  ShowRows<Telnet>(in, c, kEnvironment, telnet);
  ShowDivided(in, c, kVariableNames, 3, 2);
}

constexpr auto kServerStatusNames = SortedNames({
    {1, "Variable"}, {2, "Value"}, {3, "Table Open"}, {4, "Table Close"}, {5, "Array Open"}, {6, "Array Close"}});

void ShowServerStatus(const Place& in, Cursor& c, Telnet&) { ShowDivided(in, c, kServerStatusNames, 6, -1); }

// A package with its message, and what it says as JSON.
void ShowGameData(const Place& in, Cursor& c, Telnet&) {
  const int32_t blank = FindU8(c, ' ');
  AddTextLine(in, TakeBytes(c, blank < 0 ? Left(c) : blank), "Message");
  if (StartsJson(c)) ShowJson(in, c);
  if (Left(c) > 0) AddTextLine(in, Rest(c), "Data");
}

// Authentication (RFC 2941) and what its mechanisms say (RFC 2942-2944, 2951, 1411, 1412; Kerberos 4 and NTLM).
constexpr auto kMechanismNames = SortedNames({
    {0, "NULL"}, {1, "Kerberos 4"}, {2, "Kerberos 5"}, {3, "SPX"}, {4, "MINK"}, {5, "SRP"}, {6, "RSA"}, {7, "SSL"},
    {10, "LOKI"}, {11, "SSA"}, {12, "KEA_SJ"}, {13, "KEA_SJ_INTEG"}, {14, "DSS"}, {15, "NTLM"}});
constexpr auto kAuthenticationCommandNames = SortedNames({{0, "IS"}, {1, "SEND"}, {2, "REPLY"}, {3, "NAME"}});
constexpr auto kAuthentication = Rows<Telnet>({
    Number(1, "Command", kAuthenticationCommandNames).Into(&Telnet::command)});
constexpr auto kMechanism = Rows<Telnet>({
    Number(1, "Authentication Type", kMechanismNames).Into(&Telnet::version), Hex(1, "Modifiers"),
    Flag(3, "Encrypt after Exchange"), Flag(4, "Forward Credentials"), Flag(5, "Encrypt by Telnet Option"),
    Flag(6, "Mutual Authentication"), Flag(7, "Server to Client")});
constexpr auto kKerberos4Names = SortedNames({
    {0, "AUTH"}, {1, "REJECT"}, {2, "ACCEPT"}, {3, "CHALLENGE"}, {4, "RESPONSE"}});
constexpr auto kKerberos5Names = SortedNames({
    {0, "AUTH"}, {1, "REJECT"}, {2, "ACCEPT"}, {3, "RESPONSE"}, {4, "FORWARD"}, {5, "FORWARD_ACCEPT"},
    {6, "FORWARD_REJECT"}, {7, "TLS_VERIFY"}});
constexpr auto kSpxNames = SortedNames({{0, "AUTH"}, {1, "REJECT"}, {2, "ACCEPT"}});
constexpr auto kSrpNames = SortedNames({
    {0, "AUTH"}, {1, "REJECT"}, {2, "ACCEPT"}, {3, "CHALLENGE"}, {4, "RESPONSE"}, {8, "EXP"}, {9, "PARAMS"}});
constexpr auto kKeaNames = SortedNames({
    {1, "CERTA_RA"}, {2, "CERTB_RB_IVB_NONCEB"}, {3, "IVA_RESPONSEB_NONCEA"}, {4, "RESPONSEA"}});
constexpr auto kDssNames = SortedNames({
    {1, "INITIALIZE"}, {2, "TOKENBA"}, {3, "CERTA_TOKENAB"}, {4, "CERTB_TOKENBA2"}});
constexpr auto kNtlmNames = SortedNames({
    {0, "NEGOTIATE"}, {1, "CHALLENGE"}, {2, "AUTHENTICATE"}, {3, "ACCEPT"}, {4, "REJECT"}});
constexpr auto kKerberos4Message = Rows<Telnet>({Number(1, "Message", kKerberos4Names), Digits("Message Data")});
constexpr auto kKerberos5Message = Rows<Telnet>({Number(1, "Message", kKerberos5Names), Digits("Message Data")});
constexpr auto kSpxMessage = Rows<Telnet>({Number(1, "Message", kSpxNames), Digits("Message Data")});
constexpr auto kSrpMessage = Rows<Telnet>({Number(1, "Message", kSrpNames), Digits("Message Data")});
constexpr auto kKeaMessage = Rows<Telnet>({Number(1, "Message", kKeaNames), Digits("Message Data")});
constexpr auto kDssMessage = Rows<Telnet>({Number(1, "Message", kDssNames), Digits("Message Data")});
constexpr auto kNtlmMessage = Rows<Telnet>({
    Number(1, "Message", kNtlmNames), Number(4, "Data Size").Little(), Number(4, "Buffer Type").Little()});

void ShowNtlm(const Place& in, Cursor& c, Telnet&) {
  if (TryDecoder(in, c, DecodeNtlmssp, nullptr)) Rest(c);
}

constexpr auto kMechanisms = Choices<Telnet>({
    {1, "Kerberos 4", kKerberos4Message}, {2, "Kerberos 5", kKerberos5Message}, {3, "SPX", kSpxMessage},
    {5, "SRP", kSrpMessage}, {12, "KEA_SJ", kKeaMessage}, {13, "KEA_SJ_INTEG", kKeaMessage}, {14, "DSS", kDssMessage},
    {15, "NTLM", kNtlmMessage, ShowNtlm}});
constexpr auto kUserName = Rows<Telnet>({Text(0, "User Name")});

void ShowAuthentication(const Place& in, Cursor& c, Telnet& telnet) {
  ShowRows<Telnet>(in, c, kAuthentication, telnet);
  if (telnet.command.value == 3) return ShowRows<Telnet>(in, c, kUserName, telnet);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    ShowRows<Telnet>(in, c, kMechanism, telnet);
    if (telnet.command.value == 1) continue;   // a list of what is offered
    ShowChoice<Telnet>(in, c, FindChoice<Telnet>(kMechanisms, telnet.version.value), telnet);
  }
}

// Encryption (RFC 2946-2950, 2952, 2953).
constexpr auto kCipherNames = SortedNames({
    {0, "NULL"}, {1, "DES_CFB64"}, {2, "DES_OFB64"}, {3, "DES3_CFB64"}, {4, "DES3_OFB64"}, {8, "CAST5_40_CFB64"},
    {9, "CAST5_40_OFB64"}, {10, "CAST128_CFB64"}, {11, "CAST128_OFB64"}});
constexpr auto kEncryptionCommandNames = SortedNames({{0, "IS"}, {1, "SUPPORT"}, {2, "REPLY"}, {3, "START"},
    {4, "END"}, {5, "REQUEST-START"}, {6, "REQUEST-END"}, {7, "ENC_KEYID"}, {8, "DEC_KEYID"}});
constexpr auto kEncryption = Rows<Telnet>({
    Number(1, "Command", kEncryptionCommandNames)
        .Into(&Telnet::command)});
constexpr auto kCipher = Rows<Telnet>({Number(1, "Encryption Type", kCipherNames)});
constexpr auto kVectorMessageNames = SortedNames({{1, "IV"}, {2, "IV_OK"}, {3, "IV_BAD"}});
constexpr auto kVector = Rows<Telnet>({
    Number(1, "Encryption Type", kCipherNames),
    Number(1, "Message", kVectorMessageNames), Digits("Initialization Vector")});
constexpr auto kKeyId = Rows<Telnet>({Digits("Key Identifier")});

void ShowEncryption(const Place& in, Cursor& c, Telnet& telnet) {
  ShowRows<Telnet>(in, c, kEncryption, telnet);
  const uint32_t command = telnet.command.value;
  telnet.isEncrypted = command == 3;
  if (command == 0 || command == 2) return ShowRows<Telnet>(in, c, kVector, telnet);
  if (command != 1) return ShowRows<Telnet>(in, c, kKeyId, telnet);
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<Telnet>(in, c, kCipher, telnet);
}

// TN3270E (RFC 2355): key words, of which some have a text behind them, and lists.
constexpr auto kKeyWordNames = SortedNames({
    {0, "ASSOCIATE"}, {1, "CONNECT"}, {2, "DEVICE-TYPE"}, {3, "FUNCTIONS"}, {4, "IS"}, {5, "REASON"}, {6, "REJECT"},
    {7, "REQUEST"}, {8, "SEND"}});
constexpr auto kKeyWord = Rows<Telnet>({Number(1, "Key Word", kKeyWordNames).Into(&Telnet::command)});
constexpr auto kReasonNames = SortedNames({{0, "CONN-PARTNER"}, {1, "DEVICE-IN-USE"}, {2, "INV-ASSOCIATE"},
    {3, "INV-NAME"}, {4, "INV-DEVICE-TYPE"}, {5, "TYPE-NAME-ERROR"}, {6, "UNKNOWN-ERROR"}, {7, "UNSUPPORTED-REQ"}});
constexpr auto kReason = Rows<Telnet>({
    Number(1, "Reason", kReasonNames)});
constexpr auto kFunctionNames = SortedNames({{0, "BIND-IMAGE"}, {1, "DATA-STREAM-CTL"}, {2, "RESPONSES"},
    {3, "SCS-CTL-CODES"}, {4, "SYSREQ"}, {5, "CONTENTION-RESOLUTION"}, {6, "SNA-SENSE"}});
constexpr auto kFunction = Rows<Telnet>({
    Number(1, "Function", kFunctionNames)});

void ShowTerminal3270(const Place& in, Cursor& c, Telnet& telnet) {
  const bool isFunctions = PeekU8(c) == 3;
  Loop loop;
  for (int32_t words = 0; MoreAt(in, c, loop); ++words) {
    if (isFunctions && words > 1) {
      ShowRows<Telnet>(in, c, kFunction, telnet);
      continue;
    }
    ShowRows<Telnet>(in, c, kKeyWord, telnet);
    if (telnet.command.value == 5) ShowRows<Telnet>(in, c, kReason, telnet);
    if (Left(c) > 0 && PeekU8(c) >= ' ') AddTextLine(in, TakeDivided(c, ' ' - 1, -1), "Name");
  }
}

// Character sets (RFC 2066).
constexpr auto kCharsetCommandNames = SortedNames({{1, "REQUEST"}, {2, "ACCEPTED"}, {3, "REJECTED"}, {4, "TTABLE-IS"},
    {5, "TTABLE-REJECTED"}, {6, "TTABLE-ACK"}, {7, "TTABLE-NAK"}});
constexpr auto kCharset = Rows<Telnet>({
    Number(1, "Command", kCharsetCommandNames)
        .Into(&Telnet::command)});
constexpr auto kTableOffer = Rows<Telnet>({Text(8, "Translation Table"), Number(1, "Version")});
constexpr auto kSeparator = Rows<Telnet>({Text(1, "Separator").Into(&Telnet::separator)});
constexpr auto kTableVersion = Rows<Telnet>({Number(1, "Version")});
constexpr auto kTableSizes = Rows<Telnet>({Number(1, "Character Size", " bits"), Number(3, "Character Count")});

Field TakeUpTo(Cursor& c, uint32_t separator) {
  const int32_t end = FindU8(c, static_cast<uint8_t>(separator));
  const Field name = TakeBytes(c, end < 0 ? Left(c) : end);
  if (end >= 0) TakeBytes(c, 1);
  return name;
}

void ShowCharset(const Place& in, Cursor& c, Telnet& telnet) {
  ShowRows<Telnet>(in, c, kCharset, telnet);
  const uint32_t command = telnet.command.value;
  if (command == 2) AddTextLine(in, Rest(c), "Character Set");
  if (command == 4) ShowRows<Telnet>(in, c, kTableVersion, telnet);
  if (command != 1 && command != 4) return;
  if (PeekIs(c, 0, "[TTABLE]")) ShowRows<Telnet>(in, c, kTableOffer, telnet);
  ShowRows<Telnet>(in, c, kSeparator, telnet);
  const uint32_t separator = PeekU8(telnet.separator);
  Loop loop;
  for (int32_t names = 0; MoreAt(in, c, loop) && (command == 1 || names < 2); ++names) {
    AddTextLine(in, TakeUpTo(c, separator), "Character Set");
    if (command == 4) ShowRows<Telnet>(in, c, kTableSizes, telnet);
  }
}

// Ports of modems (RFC 2217); an access server's codes are 100 higher.
const char* PortCommandName(uint32_t code) {
  static constexpr auto kNames = SortedNames({
      {0, "SIGNATURE"}, {1, "SET-BAUDRATE"}, {2, "SET-DATASIZE"}, {3, "SET-PARITY"}, {4, "SET-STOPSIZE"},
      {5, "SET-CONTROL"}, {6, "NOTIFY-LINESTATE"}, {7, "NOTIFY-MODEMSTATE"}, {8, "FLOWCONTROL-SUSPEND"},
      {9, "FLOWCONTROL-RESUME"}, {10, "SET-LINESTATE-MASK"}, {11, "SET-MODEMSTATE-MASK"}, {12, "PURGE-DATA"}});
  return LookupName(kNames, code < 100 ? code : code - 100);
}
constexpr auto kPortCommand = Rows<Telnet>({Number(1, "Command", PortCommandName).Into(&Telnet::command)});
constexpr auto kSignature = Rows<Telnet>({Text(0, "Signature")});
constexpr auto kBaudRate = Rows<Telnet>({Number(4, "Baud Rate")});
constexpr auto kDataSize = Rows<Telnet>({Number(1, "Data Size", " bits")});
constexpr auto kParityNames = SortedNames({{0, "Request"}, {1, "None"}, {2, "Odd"}, {3, "Even"}, {4, "Mark"},
    {5, "Space"}});
constexpr auto kParity = Rows<Telnet>({
    Number(1, "Parity", kParityNames)});
constexpr auto kStopSizeNames = SortedNames({{0, "Request"}, {1, "1 Bit"}, {2, "2 Bits"}, {3, "1.5 Bits"}});
constexpr auto kStopSize = Rows<Telnet>({
    Number(1, "Stop Size", kStopSizeNames)});
constexpr auto kControlNames = SortedNames({{0, "Request Outbound Flow Control"}, {1, "No Flow Control"},
    {2, "XON/XOFF"}, {3, "Hardware"}, {4, "Request Break State"}, {5, "Break On"}, {6, "Break Off"},
    {7, "Request DTR"}, {8, "DTR On"}, {9, "DTR Off"}, {10, "Request RTS"}, {11, "RTS On"}, {12, "RTS Off"},
    {13, "Request Inbound Flow Control"}, {14, "No Inbound Flow Control"}, {15, "Inbound XON/XOFF"},
    {16, "Inbound Hardware"}, {17, "DCD Flow Control"}, {18, "Inbound DTR Flow Control"}, {19, "DSR Flow Control"}});
constexpr auto kControl = Rows<Telnet>({
    Number(1, "Control",
           kControlNames)});
constexpr auto kLineState = Rows<Telnet>({
    Hex(1, "Line State"), Flag(0, "Timeout Error"), Flag(1, "Transfer Shift Register Empty"),
    Flag(2, "Transfer Holding Register Empty"), Flag(3, "Break Detect"), Flag(4, "Framing Error"), Flag(5, "Parity Error"),
    Flag(6, "Overrun Error"), Flag(7, "Data Ready")});
constexpr auto kModemState = Rows<Telnet>({
    Hex(1, "Modem State"), Flag(0, "Carrier Detect"), Flag(1, "Ring Indicator"), Flag(2, "Data Set Ready"),
    Flag(3, "Clear to Send"), Flag(4, "Carrier Detect Changed"), Flag(5, "Trailing Edge of Ring"),
    Flag(6, "Data Set Ready Changed"), Flag(7, "Clear to Send Changed")});
constexpr auto kPurgeNames = SortedNames({{1, "Receive Buffer"}, {2, "Transmit Buffer"}, {3, "Both Buffers"}});
constexpr auto kPurge = Rows<Telnet>({
    Number(1, "Purge", kPurgeNames)});
constexpr auto kPortCommands = Choices<Telnet>({
    {0, "SIGNATURE", kSignature}, {1, "SET-BAUDRATE", kBaudRate}, {2, "SET-DATASIZE", kDataSize},
    {3, "SET-PARITY", kParity}, {4, "SET-STOPSIZE", kStopSize}, {5, "SET-CONTROL", kControl},
    {6, "NOTIFY-LINESTATE", kLineState}, {7, "NOTIFY-MODEMSTATE", kModemState}, {10, "SET-LINESTATE-MASK", kLineState},
    {11, "SET-MODEMSTATE-MASK", kModemState}, {12, "PURGE-DATA", kPurge}});

void ShowPort(const Place& in, Cursor& c, Telnet& telnet) {
  ShowRows<Telnet>(in, c, kPortCommand, telnet);
  const uint32_t code = telnet.command.value;
  ShowChoice<Telnet>(in, c, FindChoice<Telnet>(kPortCommands, code < 100 ? code : code - 100), telnet);
}

constexpr auto kKermitCommandNames = SortedNames({{0, "START-SERVER"}, {1, "STOP-SERVER"}, {2, "REQ-START"},
    {3, "REQ-STOP"}, {4, "SOP"}, {8, "RESP-START"}, {9, "RESP-STOP"}});
constexpr auto kKermit = Rows<Telnet>({
    Number(1, "Command", kKermitCommandNames),
    Hex(1, "Start of Packet")});

// The status of all options (RFC 859), with settled ones between 250 and 240.
constexpr auto kStatus = Rows<Telnet>({Number(1, "Command", kIsSendNames)});
constexpr auto kStatusOption = Rows<Telnet>({
    Number(1, "Status", kNegotiationNames), Number(1, "Option", TelnetOptionName)});
constexpr auto kStatusSettled = Rows<Telnet>({
    Number(1, "Status", kTelnetCommandNames), Number(1, "Option", TelnetOptionName)});

void ShowStatus(const Place& in, Cursor& c, Telnet& telnet) {
  ShowRows<Telnet>(in, c, kStatus, telnet);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (PeekU8(c) != kTelnetSubnegotiation) {
      ShowRows<Telnet>(in, c, kStatusOption, telnet);
      continue;
    }
    ShowRows<Telnet>(in, c, kStatusSettled, telnet);
    AddBlock(in, TakeUpTo(c, kTelnetSubnegotiationEnd), "Parameters");
  }
}

// Options from 256 on (RFC 861).
constexpr auto kExtended = Rows<Telnet>({Number(1, "Command", kTelnetCommandNames), Number(1, "Extended Option")});

void NoteCompression(const Place&, Cursor&, Telnet& telnet) { telnet.isCompressed = true; }

constexpr auto kOptions = Choices<Telnet>({
    {4, "Approximate Message Size Negotiation", kMessageSize}, {5, "Status", {}, ShowStatus}, {8, "Line Width", kOutput},
    {9, "Page Size", kOutput}, {10, "Carriage Returns", kOutput}, {11, "Tab Stops", kOutput}, {12, "Tabs", kOutput},
    {13, "Formfeeds", kOutput}, {14, "Vertical Tab Stops", kOutput}, {15, "Vertical Tabs", kOutput},
    {16, "Linefeeds", kOutput}, {17, "Extended ASCII", kExtendedAscii}, {19, "Byte Macro", kMacro},
    {23, "Send Location", kLocation}, {24, "Terminal Type", kTerminal}, {26, "User Identification", kUser},
    {27, "Output Marking", kMarking}, {28, "Terminal Location", kTerminalLocation}, {29, "3270 Regime", kRegime},
    {30, "X.3 PAD", {}, ShowPad}, {31, "Window Size", kWindow}, {32, "Terminal Speed", kSpeed}, {33, "Flow Control", kFlow},
    {34, "Linemode", {}, ShowLinemode}, {35, "X Display Location", kDisplay}, {36, "Environment", {}, ShowEnvironment},
    {37, "Authentication", {}, ShowAuthentication}, {38, "Encryption", {}, ShowEncryption},
    {39, "New Environment", {}, ShowEnvironment}, {40, "TN3270E", {}, ShowTerminal3270}, {41, "XAUTH", kTextIs},
    {42, "Charset", {}, ShowCharset}, {44, "Com Port Control", {}, ShowPort}, {46, "Start TLS", kTls},
    {47, "Kermit", kKermit}, {48, "Send-URL", kUrl}, {69, "MSDP", {}, ShowServerStatus}, {70, "MSSP", {}, ShowServerStatus},
    {86, "COMPRESS2", {}, NoteCompression}, {200, "ATCP", {}, ShowGameData}, {201, "GMCP", {}, ShowGameData},
    {255, "Extended Options List", kExtended}});

}  // namespace

void ShowTelnetSubnegotiation(const Place& in, Cursor& c, Telnet& telnet) {
  const Choice<Telnet>* option = FindChoice<Telnet>(kOptions, telnet.option.value);
  if (!option) return ShowDigits(in, Rest(c), "Option Data");   // nothing tells what is in it
  ShowChoice<Telnet>(in, c, option, telnet);
}

}  // namespace qxview
