// Fingerprints of hellos: JA3 and JA3S, MD5 over the numbers of a hello in their order, and JA4 of clients, whose parts are
// counts, and SHA-256 over the sorted numbers. Values of GREASE count for none.
#include <algorithm>

#include "core/digest.h"
#include "decoders/tls/tls_messages.h"

namespace qxview {
namespace {

constexpr int32_t kMostNumbers = 256;

struct NumberList {
  uint16_t of[kMostNumbers];
  int32_t count = 0;
  bool isFull = false;
  void Add(uint32_t number) {
    if (count == kMostNumbers) isFull = true;
    else of[count++] = static_cast<uint16_t>(number);
  }
};

// What of a hello its fingerprints are made of.
struct HelloNumbers {
  uint32_t version, highest;   // stated, and the highest that is supported
  NumberList suites, extensions, groups, formats, schemes;
  bool hasName, isWhole;
  char alpn[3];
};

void ReadNumbers(Cursor c, NumberList& list, int32_t countSize, int32_t size) {
  Cursor items = TakeCursor(c, TakeSize(c, countSize).value);
  while (Left(items) >= size) {
    const uint32_t number = size == 1 ? TakeU8(items).value : TakeU16(items).value;
    if (size == 1 || !IsGrease(number)) list.Add(number);
  }
}

bool IsAlphanumeric(uint32_t octet) {
  return (octet >= '0' && octet <= '9') || (octet >= 'A' && octet <= 'Z') || (octet >= 'a' && octet <= 'z');
}

// The first protocol's first and last characters, or digits of them.
void ReadAlpn(Cursor c, char* out) {
  TakeU16(c);
  const Field name = TakeBytes(c, TakeU8(c).value);
  if (!name.here || name.length < 1) return;
  const uint32_t first = PeekU8(name), last = PeekU8(name, name.length - 1);
  constexpr char kDigits[] = "0123456789abcdef";
  const bool isText = IsAlphanumeric(first) && IsAlphanumeric(last);
  out[0] = isText ? static_cast<char>(first) : kDigits[first >> 4];
  out[1] = isText ? static_cast<char>(last) : kDigits[last & 15];
}

void ReadExtension(uint32_t type, Cursor value, HelloNumbers& hello) {
  switch (type) {
    case 0: hello.hasName = true; break;
    case 10: ReadNumbers(value, hello.groups, 2, 2); break;
    case 11: ReadNumbers(value, hello.formats, 1, 1); break;
    case 13: ReadNumbers(value, hello.schemes, 2, 2); break;
    case 16: ReadAlpn(value, hello.alpn); break;
    case 43:
      TakeU8(value);
      while (Left(value) >= 2) {
        const uint32_t version = TakeU16(value).value;
        if (!IsGrease(version) && version > hello.highest && version < 0x7F00) hello.highest = version;
      }
      break;
    default: break;
  }
}

void ReadHello(Cursor c, const TlsMessage& message, HelloNumbers& hello) {
  hello.version = hello.highest = TakeU16(c).value;
  TakeBytes(c, 32);
  TakeBytes(c, TakeU8(c).value);
  if (message.type == kClientHello) {
    if (message.handshake->carrier == TlsCarrier::kDatagrams) TakeBytes(c, TakeU8(c).value);
    const Cursor suites = c;
    ReadNumbers(suites, hello.suites, 2, 2);
    TakeBytes(c, TakeU16(c).value);
    TakeBytes(c, TakeU8(c).value);
  } else {
    hello.suites.Add(TakeU16(c).value);
    TakeU8(c);
  }
  if (Left(c) == 0) {   // without extensions
    hello.isWhole = !c.ranShort;
    return;
  }
  const uint32_t size = TakeU16(c).value;
  if (size > static_cast<uint32_t>(Left(c))) return;   // cut
  Cursor list = TakeCursor(c, size);
  while (Left(list) >= 4) {
    const uint32_t type = TakeU16(list).value, length = TakeU16(list).value;
    const Cursor value = TakeCursor(list, length);
    if (!IsGrease(type)) hello.extensions.Add(type);
    if (message.type == kClientHello) ReadExtension(type, value, hello);
  }
  hello.isWhole = !hello.suites.isFull && !hello.extensions.isFull && !hello.groups.isFull && !hello.schemes.isFull;
}

// A text that grows, and is cut where its room ends.
struct Joined {
  char text[kMostNumbers * 6 * 4];
  int32_t size = 0;
  template <class... Args>
  void Put(FormatText<std::type_identity_t<Args>...> format, const Args&... args) {
    size += FormatInto(text + size, static_cast<int32_t>(sizeof text) - size, format, args...);
  }
  void PutNumbers(const NumberList& list) {
    for (int32_t i = 0; i < list.count; ++i) {
      if (i > 0) Put("-");
      Put("%u", list.of[i]);
    }
  }
  void PutCodes(const NumberList& list) {
    for (int32_t i = 0; i < list.count; ++i) {
      if (i > 0) Put(",");
      Put("%.04x", list.of[i]);
    }
  }
  ByteSpan Span() const { return {reinterpret_cast<const uint8_t*>(text), size}; }
};

struct DigestText {
  char text[2 * kSha256Size + 1];
};

void PutDigits(const uint8_t* digest, int32_t count, char* out) {
  for (int32_t i = 0; i < count; ++i) FormatInto(out + 2 * i, 3, "%.02x", digest[i]);
}

DigestText Md5Of(const Joined& joined) {
  uint8_t digest[kMd5Size];
  Md5 md5;
  md5.Add(joined.Span());
  md5.Finish(digest);
  DigestText made;
  PutDigits(digest, kMd5Size, made.text);
  return made;
}

// The first twelve digits; zeros for a part without numbers.
DigestText ShortSha256Of(const Joined& joined) {
  DigestText made{"000000000000"};
  if (joined.size == 0) return made;
  uint8_t digest[kSha256Size];
  Sha256 sha;
  sha.Add(joined.Span());
  sha.Finish(digest);
  PutDigits(digest, 6, made.text);
  return made;
}

const char* ShortVersion(uint32_t version) {
  switch (version) {
    case kTls13: return "13";
    case kTls12: return "12";
    case kTls11: return "11";
    case kTls10: return "10";
    case kSsl3: return "s3";
    case kSsl2: return "s2";
    case kDtls10: return "d1";
    case kDtls12: return "d2";
    case kDtls13: return "d3";
    default: return "00";
  }
}

void ShowJa3(const Place& in, const Field& whole, const TlsMessage& message, const HelloNumbers& hello) {
  const bool isClient = message.type == kClientHello;
  Joined text;
  text.Put("%u,", hello.version);
  text.PutNumbers(hello.suites);
  text.Put(",");
  text.PutNumbers(hello.extensions);
  if (isClient) {
    text.Put(",");
    text.PutNumbers(hello.groups);
    text.Put(",");
    text.PutNumbers(hello.formats);
  }
  const TextSlice full{text.text, text.size};
  const DigestText md5 = Md5Of(text);
  if (isClient) {
    AddLine(in, whole, "JA3 Text: %s", full);
    AddLine(in, whole, "JA3: %s", TextSlice{md5.text, 2 * kMd5Size});
  } else {
    AddLine(in, whole, "JA3S Text: %s", full);
    AddLine(in, whole, "JA3S: %s", TextSlice{md5.text, 2 * kMd5Size});
  }
}

void ShowJa4(const Place& in, const Field& whole, const TlsMessage& message, HelloNumbers& hello) {
  constexpr int32_t kMostCounted = 99;
  constexpr uint32_t kName = 0, kAlpn = 16;
  const TlsCarrier carrier = message.handshake->carrier;
  const char first = carrier == TlsCarrier::kQuic ? 'q' : carrier == TlsCarrier::kDatagrams ? 'd' : 't';
  const int32_t suites = hello.suites.count, extensions = hello.extensions.count;
  Joined head;
  head.Put("%c%s%c%.02d%.02d%s", first, ShortVersion(hello.highest), hello.hasName ? 'd' : 'i',
           suites < kMostCounted ? suites : kMostCounted, extensions < kMostCounted ? extensions : kMostCounted,
           TextSlice{hello.alpn, 2});
  NumberList others;
  for (int32_t i = 0; i < extensions; ++i) {
    const uint32_t type = hello.extensions.of[i];
    if (type != kName && type != kAlpn) others.Add(type);
  }
  std::sort(hello.suites.of, hello.suites.of + suites);
  std::sort(others.of, others.of + others.count);
  Joined first2, second;
  first2.PutCodes(hello.suites);
  second.PutCodes(others);
  if (hello.schemes.count > 0 && others.count > 0) second.Put("_");
  second.PutCodes(hello.schemes);
  AddLine(in, whole, "JA4: %s_%s_%s", TextSlice{head.text, head.size}, TextSlice{ShortSha256Of(first2).text, 12},
          TextSlice{ShortSha256Of(second).text, 12});
  AddLine(in, whole, "JA4 Text: %s_%s_%s", TextSlice{head.text, head.size}, TextSlice{first2.text, first2.size},
          TextSlice{second.text, second.size});
}

}  // namespace

void ShowHelloFingerprints(const Place& in, const TlsMessage& message) {
  const Field whole = Ahead(message.body, Left(message.body));
  if (in.dead || NobodyWants(in)) return;
  HelloNumbers hello{};
  hello.alpn[0] = hello.alpn[1] = '0';
  ReadHello(message.body, message, hello);
  if (!hello.isWhole) return;
  ShowJa3(in, whole, message, hello);
  if (message.type == kClientHello) ShowJa4(in, whole, message, hello);
}

}  // namespace qxview
