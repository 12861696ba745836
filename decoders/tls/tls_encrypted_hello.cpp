// Encrypted client hello (RFC 9849), as it is seen from outside, and the configurations that servers answer with.
#include "decoders/tls/tls_messages.h"

namespace qxview {
namespace {

constexpr auto kTypeNames = SortedNames({{0, "outer"}, {1, "inner"}});

constexpr auto kType = Rows<TlsMessage>({
    Number(1, "Client Hello Type", kTypeNames).Note(", %s").Into(&TlsMessage::choice)});
constexpr auto kOuter = Rows<TlsMessage>({
    Hex(2, "KDF", TlsKdfName), Hex(2, "AEAD", TlsAeadName), Number(1, "Config ID"),
    Counted(2, Digits("Encapsulated Key")), Counted(2, Digits("Encrypted Payload"))});
constexpr auto kConfirmation = Rows<TlsMessage>({Bytes(8, "Confirmation")});
constexpr auto kVersion = Rows<TlsMessage>({Hex(2, "Config Version").Into(&TlsMessage::version)});
constexpr auto kKey = Rows<TlsMessage>({
    Number(1, "Config ID"), Hex(2, "KEM", TlsKemName), Counted(2, Digits("Public Key"))});
constexpr auto kSuite = Rows<TlsMessage>({Hex(2, "KDF", TlsKdfName), Hex(2, "AEAD", TlsAeadName)});
constexpr auto kName = Rows<TlsMessage>({Number(1, "Maximum Name Length"), Counted(1, Text(0, "Public Name"))});

void ShowConfig(const Place& in, Cursor& c, TlsMessage& message) {
  constexpr uint32_t kKnownVersion = 0xFE0D;
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c)), "Config:"));
  ShowRows<TlsMessage>(under, c, kVersion, message);
  const Field length = TakeU16(c);
  AddLine(under, length, "Config Length: %u", length.value);
  Cursor config = TakeCursor(c, length.value);
  if (message.version.value == kKnownVersion) {
    ShowRows<TlsMessage>(under, config, kKey, message);
    ShowTlsList<TlsMessage>(under, config, 2, "Cipher Suites", kSuite, message);
    ShowRows<TlsMessage>(under, config, kName, message);
    Place in2;
    Cursor extensions = TakeTlsList(under, config, 2, "Config Extensions", &in2);
    AddBlock(in2, Rest(extensions), "Data");
  }
  config.ranShort = false;
  AddBlock(under, Rest(config), "Data");
}

}  // namespace

void ShowEncryptedHello(const Place& in, Cursor& c, TlsMessage& message) {
  if (message.type == kClientHello) {
    ShowRows<TlsMessage>(in, c, kType, message);
    if (message.choice.here && message.choice.value == 0) ShowRows<TlsMessage>(in, c, kOuter, message);
  } else if (message.type == kEncryptedExtensions) {
    Place under;
    Cursor list = TakeTlsList(in, c, 2, "Retry Configs", &under);
    Loop loop;
    while (MoreAt(under, list, loop)) {
      Cursor config = TakeCursor(list, 4 + int64_t{PeekU16(list, 2)});
      ShowConfig(under, config, message);
    }
  } else {
    ShowRows<TlsMessage>(in, c, kConfirmation, message);
  }
}

}  // namespace qxview
