#include "core/crypto.h"

#include <cstdlib>
#include <cstring>
#include <iterator>

#include "core/context.h"
#include "core/engine.h"
#include "core/opened_records.h"
#include "core/states.h"

namespace qxview {
namespace {

// What is called of OpenSSL 3: contexts and algorithms are pointers to what only it knows.
struct Library {
  void* (*newContext)();
  void* (*fetchCipher)(void*, const char*, const char*);
  void (*freeCipher)(void*);
  void* (*newCipher)();
  void (*freeCipherContext)(void*);
  int (*startCipher)(void*, const void*, void*, const uint8_t*, const uint8_t*, int);
  int (*controlCipher)(void*, int, int, void*);
  int (*setPadding)(void*, int);
  int (*updateCipher)(void*, uint8_t*, int*, const uint8_t*, int);
  int (*endCipher)(void*, uint8_t*, int*);
  void* (*fetchHash)(void*, const char*, const char*);
  void (*freeHash)(void*);
  void* (*newHash)();
  void (*freeHashContext)(void*);
  int (*startHash)(void*, const void*, const void*);
  int (*updateHash)(void*, const void*, size_t);
  int (*endHash)(void*, uint8_t*, unsigned*);
  void (*freeContext)(void*);
  void* (*loadProvider)(void*, const char*);
  int (*unloadProvider)(void*);
  void (*clearErrors)();
};

// In the order of the record.
constexpr const char* kFunctions[] = {
    "OSSL_LIB_CTX_new", "EVP_CIPHER_fetch", "EVP_CIPHER_free", "EVP_CIPHER_CTX_new", "EVP_CIPHER_CTX_free",
    "EVP_CipherInit_ex", "EVP_CIPHER_CTX_ctrl", "EVP_CIPHER_CTX_set_padding", "EVP_CipherUpdate",
    "EVP_CipherFinal_ex", "EVP_MD_fetch", "EVP_MD_free", "EVP_MD_CTX_new", "EVP_MD_CTX_free", "EVP_DigestInit_ex2",
    "EVP_DigestUpdate", "EVP_DigestFinal_ex", "OSSL_LIB_CTX_free", "OSSL_PROVIDER_load", "OSSL_PROVIDER_unload",
    "ERR_clear_error"};
static_assert(sizeof(Library) == std::size(kFunctions) * sizeof(void*));

constexpr int kSetNonceLength = 9, kSetTag = 0x11;   // EVP_CTRL_AEAD_*
constexpr int kDecrypts = 0, kEncrypts = 1, kAsBefore = -1;

enum class Mode : uint8_t { kGcm, kCcm, kChained, kBlock, kStream };

struct CipherRow {
  const char* name;
  Mode mode;
  CipherForm form;
};

// By enum Cipher, its first left out.
constexpr CipherRow kCiphers[] = {
    {"AES-128-GCM", Mode::kGcm, {16, 0, 16}},
    {"AES-256-GCM", Mode::kGcm, {32, 0, 16}},
    {"AES-128-CCM", Mode::kCcm, {16, 0, 16}},
    {"AES-256-CCM", Mode::kCcm, {32, 0, 16}},
    {"AES-128-CCM", Mode::kCcm, {16, 0, 8}},
    {"AES-256-CCM", Mode::kCcm, {32, 0, 8}},
    {"ChaCha20-Poly1305", Mode::kGcm, {32, 0, 16}},
    {"ARIA-128-GCM", Mode::kGcm, {16, 0, 16}},
    {"ARIA-256-GCM", Mode::kGcm, {32, 0, 16}},
    {"AES-128-CBC", Mode::kChained, {16, 16, 0}},
    {"AES-256-CBC", Mode::kChained, {32, 16, 0}},
    {"DES-EDE3-CBC", Mode::kChained, {24, 8, 0}},
    {"DES-CBC", Mode::kChained, {8, 8, 0}},
    {"CAMELLIA-128-CBC", Mode::kChained, {16, 16, 0}},
    {"CAMELLIA-256-CBC", Mode::kChained, {32, 16, 0}},
    {"ARIA-128-CBC", Mode::kChained, {16, 16, 0}},
    {"ARIA-256-CBC", Mode::kChained, {32, 16, 0}},
    {"SEED-CBC", Mode::kChained, {16, 16, 0}},
    {"IDEA-CBC", Mode::kChained, {16, 8, 0}},
    {"AES-192-CBC", Mode::kChained, {24, 16, 0}},
    {"AES-128-ECB", Mode::kBlock, {16, 16, 0}},
    {"AES-256-ECB", Mode::kBlock, {32, 16, 0}},
    {"ChaCha20", Mode::kStream, {32, 0, 0}},
};
constexpr int32_t kCipherCount = static_cast<int32_t>(Cipher::kCount);
static_assert(std::size(kCiphers) == kCipherCount - 1);

struct HashRow {
  const char* name;
  int32_t size, block;
};
constexpr HashRow kHashes[] = {{"MD5", 16, 64}, {"SHA1", 20, 64}, {"SHA256", 32, 64}, {"SHA384", 48, 128}, {"SHA512", 64, 128}};
constexpr int32_t kHashCount = static_cast<int32_t>(HashKind::kCount);
static_assert(std::size(kHashes) == kHashCount);
constexpr int32_t kMostHashBlock = 128;

// An algorithm with its context, made when it is first asked for.
struct Made {
  void* algorithm;
  void* context;
  bool missing;   // the library does not have it
};

}  // namespace

struct Crypto {
  void* library;   // null: it is not here
  Library call;
  void* context;                     // a library context of its own: the host's is left alone
  void* providers[2];
  bool askedForLegacy;
  Made ciphers[kCipherCount], hashes[kHashCount];
  uint8_t* opened;   // kMostOpened bytes
  int32_t openedUsed;
  RecordListener listener;   // null `take`: nobody listens
};

namespace {

bool FindFunctions(const LibraryLoader& loader, Crypto* crypto) {
  void* found[std::size(kFunctions)];
  for (size_t i = 0; i < std::size(kFunctions); ++i) {
    found[i] = loader.find(crypto->library, kFunctions[i]);
    if (!found[i]) return false;
  }
  std::memcpy(&crypto->call, found, sizeof found);
  return true;
}

// The engine's record, made at the first use; null when there is no memory.
Crypto* CryptoOf(const View* view) {
  Engine* engine = view->engine;
  if (engine->crypto) return engine->crypto;
  auto* crypto = static_cast<Crypto*>(std::calloc(1, sizeof(Crypto)));
  if (crypto) engine->states->memory.used += sizeof(Crypto);
  return engine->crypto = crypto;
}

// The same with the library; null without.
Crypto* LibraryOf(const View* view) {
  Crypto* crypto = CryptoOf(view);
  if (!crypto || crypto->context) return crypto;
  Engine* engine = view->engine;
  const LibraryLoader& loader = engine->libraries.loader;
  if (engine->cryptoMissing || !loader.loadCrypto || !loader.find) return nullptr;
  crypto->library = loader.loadCrypto();
  if (crypto->library && FindFunctions(loader, crypto)) crypto->context = crypto->call.newContext();
  engine->cryptoMissing = !crypto->context;
  return crypto->context ? crypto : nullptr;
}

// Old ciphers are in a part of the library that has to be asked for, and then the other one, too.
void* FetchCipher(Crypto* crypto, const char* name) {
  void* fetched = crypto->call.fetchCipher(crypto->context, name, nullptr);
  if (!fetched && !crypto->askedForLegacy) {
    crypto->askedForLegacy = true;
    crypto->providers[0] = crypto->call.loadProvider(crypto->context, "default");
    crypto->providers[1] = crypto->call.loadProvider(crypto->context, "legacy");
    fetched = crypto->call.fetchCipher(crypto->context, name, nullptr);
  }
  crypto->call.clearErrors();
  return fetched;
}

Made* MakeCipher(Crypto* crypto, Cipher cipher) {
  Made* made = &crypto->ciphers[static_cast<int32_t>(cipher)];
  if (made->missing) return nullptr;
  if (made->context) return made;
  const CipherRow& row = kCiphers[static_cast<int32_t>(cipher) - 1];
  made->algorithm = FetchCipher(crypto, row.name);
  if (made->algorithm) made->context = crypto->call.newCipher();
  const int way = row.mode == Mode::kBlock ? kEncrypts : kDecrypts;   // a block is a mask's, for which nothing is opened
  if (made->context && crypto->call.startCipher(made->context, made->algorithm, nullptr, nullptr, nullptr, way) != 1) {
    crypto->call.freeCipherContext(made->context);
    made->context = nullptr;
  }
  if (made->context && row.mode != Mode::kStream) crypto->call.setPadding(made->context, 0);
  made->missing = !made->context;
  return made->context ? made : nullptr;
}

Made* MakeHash(Crypto* crypto, HashKind kind) {
  Made* made = &crypto->hashes[static_cast<int32_t>(kind)];
  if (made->missing) return nullptr;
  if (made->context) return made;
  made->algorithm = crypto->call.fetchHash(crypto->context, kHashes[static_cast<int32_t>(kind)].name, nullptr);
  if (made->algorithm) made->context = crypto->call.newHash();
  made->missing = !made->context;
  return made->context ? made : nullptr;
}

// A digest in the making: the program's own or the library's.
struct Digest {
  HashKind kind;
  Crypto* crypto = nullptr;
  Made* made = nullptr;
  Md5 md5{};
  Sha256 sha256{};
  bool good = true;

  Digest(const View* view, HashKind of) : kind(of) {
    if (kind == HashKind::kMd5 || kind == HashKind::kSha256) return;
    crypto = LibraryOf(view);
    made = crypto ? MakeHash(crypto, kind) : nullptr;
    good = made && crypto->call.startHash(made->context, made->algorithm, nullptr) == 1;
  }
  void Add(const ByteSpan& bytes) {
    if (!good || bytes.length < 1) return;
    if (kind == HashKind::kMd5) return md5.Add(bytes);
    if (kind == HashKind::kSha256) return sha256.Add(bytes);
    good = crypto->call.updateHash(made->context, bytes.data, static_cast<size_t>(bytes.length)) == 1;
  }
  bool Finish(uint8_t* out) {
    if (!good) return false;
    if (kind == HashKind::kMd5) return md5.Finish(out), true;
    if (kind == HashKind::kSha256) return sha256.Finish(out), true;
    return crypto->call.endHash(made->context, out, nullptr) == 1;
  }
};

ByteSpan SpanOf(const char* text) {
  return {reinterpret_cast<const uint8_t*>(text), static_cast<int32_t>(std::strlen(text))};
}

// P_hash (RFC 5246, section 5), exclusive-ored into what `out` holds.
bool AddPHash(const View* view, HashKind kind, const ByteSpan& secret, const ByteSpan& seed, uint8_t* out,
              int32_t length) {
  const int32_t size = HashSize(kind);
  uint8_t chain[kMostHash], part[kMostHash];
  bool good = HmacOf(view, kind, secret, {seed}, chain);
  for (int32_t done = 0; good && done < length; done += size) {
    good = HmacOf(view, kind, secret, {{chain, size}, seed}, part);
    for (int32_t i = 0; i < size && done + i < length; ++i) out[done + i] ^= part[i];
    good = good && HmacOf(view, kind, secret, {{chain, size}}, chain);
  }
  return good;
}

}  // namespace

int32_t HashSize(HashKind kind) { return kHashes[static_cast<int32_t>(kind)].size; }

CipherForm FormOf(Cipher cipher) {
  return cipher == Cipher::kNone ? CipherForm{} : kCiphers[static_cast<int32_t>(cipher) - 1].form;
}

bool HashOf(const View* view, HashKind kind, std::initializer_list<ByteSpan> parts, uint8_t* out) {
  Digest digest(view, kind);
  for (const ByteSpan& part : parts) digest.Add(part);
  return digest.Finish(out);
}

bool HmacOf(const View* view, HashKind kind, const ByteSpan& key, std::initializer_list<ByteSpan> parts, uint8_t* out) {
  const HashRow& row = kHashes[static_cast<int32_t>(kind)];
  uint8_t held[kMostHashBlock] = {}, pad[kMostHashBlock], inner[kMostHash];
  if (key.length > row.block) {
    if (!HashOf(view, kind, {key}, held)) return false;
  } else if (key.length > 0) {
    std::memcpy(held, key.data, static_cast<size_t>(key.length));
  }
  for (int32_t i = 0; i < row.block; ++i) pad[i] = held[i] ^ 0x36;
  Digest digest(view, kind);
  digest.Add({pad, row.block});
  for (const ByteSpan& part : parts) digest.Add(part);
  if (!digest.Finish(inner)) return false;
  for (int32_t i = 0; i < row.block; ++i) pad[i] = held[i] ^ 0x5C;
  return HashOf(view, kind, {{pad, row.block}, {inner, row.size}}, out);
}

bool HkdfExtract(const View* view, HashKind kind, const ByteSpan& salt, const ByteSpan& secret, uint8_t* out) {
  return HmacOf(view, kind, salt, {secret}, out);
}

HkdfSecret::HkdfSecret(const View* view, HashKind kind, const ByteSpan& secret) : view_(view), kind_(kind), secret_(secret) {
  constexpr int32_t kBlock = 64;
  if (kind != HashKind::kSha256 || secret.length > kBlock) return;
  uint8_t pad[kBlock];
  for (const bool isInner : {true, false}) {
    std::memset(pad, isInner ? 0x36 : 0x5C, sizeof pad);
    for (int32_t i = 0; i < secret.length; ++i) pad[i] ^= secret.data[i];
    (isInner ? inner_ : outer_).Add({pad, kBlock});
  }
  isBegun_ = true;
}

bool HkdfSecret::Hmac(std::initializer_list<ByteSpan> parts, uint8_t* out) const {
  if (!isBegun_) return HmacOf(view_, kind_, secret_, parts, out);
  Sha256 inner = inner_, outer = outer_;
  for (const ByteSpan& part : parts) {
    if (part.length > 0) inner.Add(part);
  }
  uint8_t hash[kSha256Size];
  inner.Finish(hash);
  outer.Add({hash, kSha256Size});
  outer.Finish(out);
  return true;
}

bool HkdfSecret::ExpandLabel(const char* label, const ByteSpan& context, uint8_t* out, int32_t length) const {
  const int32_t size = HashSize(kind_);
  const ByteSpan text = SpanOf(label);
  const uint8_t head[3] = {static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length),
                           static_cast<uint8_t>(text.length)};
  const uint8_t contextLength = static_cast<uint8_t>(context.length);
  uint8_t part[kMostHash];
  uint8_t number = 1;
  for (int32_t done = 0; done < length; done += size, ++number) {
    const ByteSpan before = {part, done ? size : 0};
    if (!Hmac({before, {head, 3}, text, {&contextLength, 1}, context, {&number, 1}}, part)) return false;
    std::memcpy(out + done, part, static_cast<size_t>(length - done < size ? length - done : size));
  }
  return true;
}

bool HkdfExpandLabel(const View* view, HashKind kind, const ByteSpan& secret, const char* label, const ByteSpan& context,
                     uint8_t* out, int32_t length) {
  return HkdfSecret(view, kind, secret).ExpandLabel(label, context, out, length);
}

bool TlsPrf(const View* view, HashKind kind, const ByteSpan& secret, const char* label,
            std::initializer_list<ByteSpan> seed, uint8_t* out, int32_t length) {
  uint8_t whole[192];
  const ByteSpan text = SpanOf(label);
  int32_t used = 0;
  const auto put = [&](const ByteSpan& part) {
    if (part.length < 1 || part.length > static_cast<int32_t>(sizeof whole) - used) return;
    std::memcpy(whole + used, part.data, static_cast<size_t>(part.length));
    used += part.length;
  };
  put(text);
  for (const ByteSpan& part : seed) put(part);
  std::memset(out, 0, static_cast<size_t>(length));
  if (kind != HashKind::kMd5) return AddPHash(view, kind, secret, {whole, used}, out, length);
  // Each half of the secret, the middle byte of an odd one in both.
  const int32_t half = (secret.length + 1) / 2;
  return AddPHash(view, HashKind::kMd5, {secret.data, half}, {whole, used}, out, length) &&
         AddPHash(view, HashKind::kSha1, {secret.data + secret.length - half, half}, {whole, used}, out, length);
}

Opening OpenSealed(const View* view, Cipher cipher, const uint8_t* key, const uint8_t* nonce, const ByteSpan& additional,
                   const ByteSpan& sealed, uint8_t* out) {
  Crypto* crypto = LibraryOf(view);
  Made* made = crypto ? MakeCipher(crypto, cipher) : nullptr;
  if (!made) return Opening::kUnavailable;
  const CipherRow& row = kCiphers[static_cast<int32_t>(cipher) - 1];
  const Library& call = crypto->call;
  const int32_t tagSize = row.form.tagSize, length = sealed.length - tagSize;
  if (length < 0 || tagSize == 0) return Opening::kWrong;
  uint8_t tag[16];
  std::memcpy(tag, sealed.data + length, static_cast<size_t>(tagSize));
  int done = 0;
  bool good = true;
  if (row.mode == Mode::kCcm) {   // the others' nonces are as long where nothing is said
    good = call.controlCipher(made->context, kSetNonceLength, kNonceSize, nullptr) == 1 &&
           call.controlCipher(made->context, kSetTag, tagSize, tag) == 1;
  }
  good = good && call.startCipher(made->context, nullptr, nullptr, key, nonce, kAsBefore) == 1;
  if (row.mode == Mode::kCcm) good = good && call.updateCipher(made->context, nullptr, &done, nullptr, length) == 1;
  if (additional.length > 0) {
    good = good && call.updateCipher(made->context, nullptr, &done, additional.data, additional.length) == 1;
  }
  static const uint8_t kNothing = 0;   // a message without bytes has to be given, too
  uint8_t unused[16];
  good = good && call.updateCipher(made->context, length ? out : unused, &done, length ? sealed.data : &kNothing, length) == 1;
  if (row.mode != Mode::kCcm) {
    good = good && call.controlCipher(made->context, kSetTag, tagSize, tag) == 1 &&
           call.endCipher(made->context, unused, &done) == 1;
  }
  if (good) return Opening::kOpened;
  call.clearErrors();
  return Opening::kWrong;
}

Opening OpenChained(const View* view, Cipher cipher, const uint8_t* key, const uint8_t* vector, const ByteSpan& blocks,
                    uint8_t* out) {
  Crypto* crypto = LibraryOf(view);
  Made* made = crypto ? MakeCipher(crypto, cipher) : nullptr;
  if (!made) return Opening::kUnavailable;
  const CipherForm& form = kCiphers[static_cast<int32_t>(cipher) - 1].form;
  if (form.blockSize == 0 || blocks.length < form.blockSize || blocks.length % form.blockSize) return Opening::kWrong;
  int done = 0;
  const bool good = crypto->call.startCipher(made->context, nullptr, nullptr, key, vector, kAsBefore) == 1 &&
                    crypto->call.updateCipher(made->context, out, &done, blocks.data, blocks.length) == 1 &&
                    done == blocks.length;
  if (good) return Opening::kOpened;
  crypto->call.clearErrors();
  return Opening::kWrong;
}

bool MakeMask(const View* view, Cipher cipher, const uint8_t* key, const uint8_t sample[16], uint8_t mask[16]) {
  Crypto* crypto = LibraryOf(view);
  Made* made = crypto ? MakeCipher(crypto, cipher) : nullptr;
  if (!made) return false;
  const bool isStream = cipher == Cipher::kChaCha20;
  // AES turns the sample over; the stream is begun by it and its bytes are taken as they come.
  static const uint8_t kZeros[16] = {};
  int done = 0;
  const bool good = crypto->call.startCipher(made->context, nullptr, nullptr, key, isStream ? sample : nullptr, kAsBefore) == 1 &&
                    crypto->call.updateCipher(made->context, mask, &done, isStream ? kZeros : sample, 16) == 1;
  return good && done == 16;
}

void Rc4::Start(const ByteSpan& key) {
  i = j = 0;
  for (int32_t n = 0; n < 256; ++n) s[n] = static_cast<uint8_t>(n);
  uint8_t at = 0;
  for (int32_t n = 0; n < 256; ++n) {
    at = static_cast<uint8_t>(at + s[n] + key.data[n % key.length]);
    const uint8_t held = s[n];
    s[n] = s[at];
    s[at] = held;
  }
}

void Rc4::Open(const ByteSpan& bytes, uint8_t* out) {
  for (int32_t n = 0; n < bytes.length; ++n) {
    j = static_cast<uint8_t>(j + s[++i]);
    const uint8_t held = s[i];
    s[i] = s[j];
    s[j] = held;
    if (out) out[n] = bytes.data[n] ^ s[static_cast<uint8_t>(s[i] + s[j])];
  }
}

OpenedBytes::OpenedBytes(const View* view, int32_t size) : engine_(view->engine) {
  Crypto* crypto = CryptoOf(view);
  if (!crypto || size < 0) return;
  if (!crypto->opened) {
    crypto->opened = static_cast<uint8_t*>(std::malloc(kMostOpened));
    if (crypto->opened) engine_->states->memory.used += kMostOpened;
  }
  const int32_t rounded = (size + 15) / 16 * 16;
  if (!crypto->opened || rounded > kMostOpened - crypto->openedUsed) return;
  data = crypto->opened + crypto->openedUsed;
  crypto->openedUsed += rounded;
  size_ = rounded;
}

OpenedBytes::~OpenedBytes() {
  if (data) engine_->crypto->openedUsed -= size_;
}

bool ListenToRecords(const View* view, const RecordListener& listener) {
  Crypto* crypto = CryptoOf(view);
  if (crypto) crypto->listener = listener;
  return crypto != nullptr;
}

void TellRecord(const View* view, const OpenedRecord& record) {
  const Crypto* crypto = view->engine->crypto;
  if (crypto && crypto->listener.take) crypto->listener.take(crypto->listener.with, record);
}

void DestroyCrypto(Engine* engine) {
  Crypto* crypto = engine->crypto;
  if (!crypto) return;
  const Library& call = crypto->call;
  for (Made& made : crypto->ciphers) {
    if (made.context) call.freeCipherContext(made.context);
    if (made.algorithm) call.freeCipher(made.algorithm);
  }
  for (Made& made : crypto->hashes) {
    if (made.context) call.freeHashContext(made.context);
    if (made.algorithm) call.freeHash(made.algorithm);
  }
  for (void* provider : crypto->providers) {
    if (provider) call.unloadProvider(provider);
  }
  if (crypto->context) call.freeContext(crypto->context);
  std::free(crypto->opened);   // the library itself stays: it takes no going away
  std::free(crypto);
  engine->crypto = nullptr;
}

}  // namespace qxview
