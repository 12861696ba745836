#include "decoders/app/dns_service.h"

#include "core/elements.h"

namespace qxview {
namespace {

struct Parameter {
  Field key;
};

constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2, .typeLabel = "Key"};

void ShowKeys(const Place& in, Cursor& c, Parameter& parameter);

void ShowProtocols(const Place& in, Cursor& c, Parameter& parameter) {
  static constexpr auto kProtocol = Rows<Parameter>({Counted(1, Text(0, "ALPN Protocol")).Note(", %s")});
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<Parameter>(in, c, kProtocol, parameter);
}

void ShowIPv4(const Place& in, Cursor& c, Parameter& parameter) {
  static constexpr auto kAddress = Rows<Parameter>({IPv4("IP Address").Note(", %s")});
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Parameter>(in, c, kAddress, parameter);
}

void ShowIPv6(const Place& in, Cursor& c, Parameter& parameter) {
  static constexpr auto kAddress = Rows<Parameter>({IPv6("IPv6 Address").Note(", %s")});
  Loop loop;
  while (Left(c) >= 16 && MoreAt(in, c, loop)) ShowRows<Parameter>(in, c, kAddress, parameter);
}

void ShowGroups(const Place& in, Cursor& c, Parameter& parameter) {
  static constexpr auto kGroupNames = SortedNames({
      {23, "secp256r1"}, {24, "secp384r1"}, {25, "secp521r1"}, {29, "x25519"}, {30, "x448"}, {256, "ffdhe2048"},
      {257, "ffdhe3072"}, {258, "ffdhe4096"}, {259, "ffdhe6144"}, {260, "ffdhe8192"}, {4587, "SecP256r1MLKEM768"},
      {4588, "X25519MLKEM768"}, {4589, "SecP384r1MLKEM1024"}});
  static constexpr auto kGroup = Rows<Parameter>({Number(2, "Supported Group", kGroupNames).Note(", %s")});
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Parameter>(in, c, kGroup, parameter);
}

// Configurations of encrypted client hello (RFC 9849 4): a counted list of them.
void ShowEch(const Place& in, Cursor& c, Parameter& parameter) {
  constexpr uint32_t kVersion = 0xFE0D;
  static constexpr auto kHead = Rows<Parameter>({Hex(2, "Version").Into(&Parameter::key)});
  static constexpr auto kContents = Rows<Parameter>({
      Number(1, "Configuration ID"), Hex(2, "KEM ID"), Counted(2, Bytes(0, "Public Key"))});
  static constexpr auto kSuite = Rows<Parameter>({Hex(2, "KDF ID"), Hex(2, "AEAD ID")});
  static constexpr auto kTail = Rows<Parameter>({
      Number(1, "Maximum Name Length"), Counted(1, Text(0, "Public Name")).Note(", %s"), Counted(2, Bytes(0, "Extensions"))});
  const Field length = TakeU16(c);
  AddLine(in, length, "Configuration List Length: %u", length.value);
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    ShowRows<Parameter>(in, c, kHead, parameter);
    const Field size = TakeU16(c);
    AddLine(in, size, "Length: %u", size.value);
    Cursor one = TakeCursor(c, size.value);
    if (parameter.key.value == kVersion) {
      ShowRows<Parameter>(in, one, kContents, parameter);
      const Field suitesLength = TakeU16(one);
      AddLine(in, suitesLength, "Cipher Suites Length: %u", suitesLength.value);
      Cursor suites = TakeCursor(one, suitesLength.value);
      Loop each;
      while (Left(suites) >= 4 && MoreAt(in, suites, each)) ShowRows<Parameter>(in, suites, kSuite, parameter);
      ShowRows<Parameter>(in, one, kTail, parameter);
    }
    AddBlock(in, Rest(one), "Configuration");
  }
}

constexpr auto kPort = Rows<Parameter>({Number(2, nullptr).Note(", %u")});
constexpr auto kPath = Rows<Parameter>({Utf8(0, nullptr).Note(", %s")});

constexpr auto kKeys = Choices<Parameter>({
    {0, "mandatory", {}, ShowKeys}, {1, "alpn", {}, ShowProtocols}, {2, "no-default-alpn"}, {3, "port", kPort},
    {4, "ipv4hint", {}, ShowIPv4}, {5, "ech", {}, ShowEch}, {6, "ipv6hint", {}, ShowIPv6}, {7, "dohpath", kPath},
    {8, "ohttp"}, {9, "tls-supported-groups", {}, ShowGroups}, {10, "docpath"}, {65535, "Invalid"}});

const char* KeyName(uint32_t key) {
  const Choice<Parameter>* choice = FindChoice<Parameter>(kKeys, key);
  return choice ? choice->name : kUnknown;
}

void ShowKeys(const Place& in, Cursor& c, Parameter& parameter) {
  static constexpr auto kKey = Rows<Parameter>({Number(2, "Key", KeyName).Note(", %s")});
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Parameter>(in, c, kKey, parameter);
}

}  // namespace

void ShowServiceParameters(const Place& in, Cursor& c) {
  Parameter parameter{};
  ShowElements(in, c, kForm, "Service Parameter", kKeys, parameter);
}

}  // namespace qxview
