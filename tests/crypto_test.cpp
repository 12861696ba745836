// The ciphers and digests that decoders use, against the examples of RFC 9001, RFC 4231, RFC 2202 and of NIST; and the
// bounds of what is held opened. Without the system's libcrypto only the program's own digests are looked at.
#include "core/crypto.h"

#include <gtest/gtest.h>

#include "core/engine.h"
#include "core/lines.h"
#include "tests/support/cases.h"

namespace qxview::testing {
namespace {

ByteSpan SpanOf(const Bytes& bytes) { return {bytes.data(), static_cast<int32_t>(bytes.size())}; }
ByteSpan SpanOf(const std::string& text) {
  return {reinterpret_cast<const uint8_t*>(text.data()), static_cast<int32_t>(text.size())};
}

Bytes HashText(const View& view, HashKind kind, const std::string& text) {
  Bytes out(static_cast<size_t>(HashSize(kind)));
  return HashOf(&view, kind, {SpanOf(text)}, out.data()) ? out : Bytes{};
}

TEST(Crypto, OwnDigestsNeedNoLibrary) {
  TestView test;
  test.loader.loadCrypto = [] { return static_cast<void*>(nullptr); };
  const View& view = test.view();
  EXPECT_EQ(HashText(view, HashKind::kMd5, ""), Hex("D41D8CD98F00B204E9800998ECF8427E"));
  EXPECT_EQ(HashText(view, HashKind::kMd5, "12345678901234567890123456789012345678901234567890123456789012345678901234567890"),
            Hex("57EDF4A22BE3C955AC49DA2E2107B67A"));
  EXPECT_EQ(HashText(view, HashKind::kSha256, "abc"), Hex("BA7816BF8F01CFEA414140DE5DAE2223B00361A396177A9CB410FF61F20015AD"));
  EXPECT_EQ(HashText(view, HashKind::kSha256, "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            Hex("248D6A61D20638B8E5C026930C3E6039A33CE45964FF2167F6ECEDD419DB06C1"));
  Bytes mac(32);
  const std::string key = "Jefe", text[] = {"what do ya want ", "for nothing?"};
  ASSERT_TRUE(HmacOf(&view, HashKind::kSha256, SpanOf(key), {SpanOf(text[0]), SpanOf(text[1])}, mac.data()));
  EXPECT_EQ(mac, Hex("5BDCC146BF60754E6A042426089575C75A003F089D2739839DEC58B964EC3843"));
  EXPECT_FALSE(view.engine->cryptoMissing);
  EXPECT_TRUE(HashText(view, HashKind::kSha384, "abc").empty());
  EXPECT_TRUE(view.engine->cryptoMissing);
  const Bytes sealed(32);
  Bytes out(16);
  const auto opening = OpenSealed(&view, Cipher::kAes128Gcm, sealed.data(), sealed.data(), {}, SpanOf(sealed), out.data());
  EXPECT_EQ(opening, Opening::kUnavailable);
}

class WithLibrary : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!HasLibcrypto()) GTEST_SKIP() << "no libcrypto here";
  }
  Bytes Mask(Cipher cipher, const Bytes& key, const std::string& sample) {
    Bytes out(16);
    EXPECT_TRUE(MakeMask(&test_.view(), cipher, key.data(), Hex(sample).data(), out.data()));
    return Bytes(out.begin(), out.begin() + 5);
  }
  Bytes Expand(const Bytes& secret, const char* label, size_t length) {
    Bytes out(length);
    EXPECT_TRUE(HkdfExpandLabel(&test_.view(), HashKind::kSha256, SpanOf(secret), label, {}, out.data(),
                                static_cast<int32_t>(length)));
    return out;
  }
  TestView test_;
};

TEST_F(WithLibrary, DigestsAndFunctionsOverThem) {
  const View& view = test_.view();
  EXPECT_EQ(HashText(view, HashKind::kSha1, "abc"), Hex("A9993E364706816ABA3E25717850C26C9CD0D89D"));
  EXPECT_EQ(HashText(view, HashKind::kSha384, "abc").size(), 48u);
  Bytes out(100);
  const Bytes secret = Hex("9BBE436BA940F017B17652849A71DB35"), seed = Hex("A0BA9F936CDA311827A6F796FFD5198C");
  ASSERT_TRUE(TlsPrf(&view, HashKind::kSha256, SpanOf(secret), "test label", {SpanOf(seed)}, out.data(), 100));
  EXPECT_EQ(Bytes(out.begin(), out.begin() + 32), Hex("E3F229BA727BE17B8D122620557CD453C2AAB21D07C3D495329B52D4E61EDB5A"));
  EXPECT_EQ(Bytes(out.end() - 4, out.end()), Hex("87347B66"));
}

TEST_F(WithLibrary, KeysMasksAndPackets) {
  const View& view = test_.view();
  const Bytes salt = Hex("38762CF7F55934B34D179AE6A4C80CADCCBB7F0A"), id = Hex("8394C8F03E515708");
  Bytes initial(32);
  ASSERT_TRUE(HkdfExtract(&view, HashKind::kSha256, SpanOf(salt), SpanOf(id), initial.data()));
  const Bytes client = Expand(initial, "tls13 client in", 32);
  EXPECT_EQ(client, Hex("C00CF151CA5BE075ED0EBFB5C80323C42D6B7DB67881289AF4008F1F6C357AEA"));
  EXPECT_EQ(Expand(client, "tls13 quic key", 16), Hex("1F369613DD76D5467730EFCBE3B1A22D"));
  EXPECT_EQ(Mask(Cipher::kAes128Ecb, Expand(client, "tls13 quic hp", 16), "D1B1C98DD7689FB8EC11D242B123DC9B"), Hex("437B9AEC36"));
  const Bytes other = Hex("9AC312A7F877468EBE69422748AD00A15443F18203A07D6060F688F30F21632B");
  EXPECT_EQ(Mask(Cipher::kChaCha20, Expand(other, "tls13 quic hp", 32), "5E5CD55C41F69080575D7999C25A5BFB"), Hex("AEFEFE7D03"));
  const Bytes key = Expand(other, "tls13 quic key", 32), nonce = Hex("E0459B3474BDD0E46D417EB0"), head = Hex("4200BFF4");
  Bytes sealed = Hex("655E5CD55C41F69080575D7999C25A5BFB"), out(1);
  const auto open = [&] {
    return OpenSealed(&view, Cipher::kChaCha20Poly1305, key.data(), nonce.data(), SpanOf(head), SpanOf(sealed), out.data());
  };
  EXPECT_EQ(open(), Opening::kOpened);
  EXPECT_EQ(out[0], 1);
  sealed[3] ^= 1;
  EXPECT_EQ(open(), Opening::kWrong);
  const uint64_t allocations = CountAllocations();
  EXPECT_EQ(open(), Opening::kWrong);
  sealed[3] ^= 1;
  EXPECT_EQ(open(), Opening::kOpened);
  EXPECT_EQ(CountAllocations(), allocations) << "contexts are used again";
}

TEST_F(WithLibrary, TagsOverNothingAndShortInput) {
  const View& view = test_.view();
  const Bytes key(16), nonce(12), tag = Hex("58E2FCCEFA7E3061367F1D57A4E7455A");
  uint8_t out[1];
  for (const Cipher cipher : {Cipher::kAes128Gcm, Cipher::kAes128Ccm, Cipher::kAes128Ccm8, Cipher::kAria128Gcm}) {
    const Opening opening = OpenSealed(&view, cipher, key.data(), nonce.data(), {}, SpanOf(tag), out);
    EXPECT_EQ(opening == Opening::kOpened, cipher == Cipher::kAes128Gcm);
    EXPECT_EQ(OpenSealed(&view, cipher, key.data(), nonce.data(), {}, {tag.data(), 3}, out), Opening::kWrong);
  }
  EXPECT_EQ(OpenChained(&view, Cipher::kAes128Cbc, key.data(), key.data(), {tag.data(), 15}, out), Opening::kWrong);
  const Bytes zeros(16), block = Hex("66E94BD4EF8A2C3B884CFA59CA342B2E");
  uint8_t plain[16] = {1};
  EXPECT_EQ(OpenChained(&view, Cipher::kAes128Cbc, zeros.data(), zeros.data(), SpanOf(block), plain), Opening::kOpened);
  EXPECT_EQ(Bytes(plain, plain + 16), zeros);
  for (int32_t i = 1; i < static_cast<int32_t>(Cipher::kCount); ++i) {   // every cipher is one that the library has
    const Cipher cipher = static_cast<Cipher>(i);
    const Bytes longKey(32), sealed(32);
    uint8_t opened[32];
    if (FormOf(cipher).tagSize) {
      const Opening opening = OpenSealed(&view, cipher, longKey.data(), longKey.data(), {}, SpanOf(sealed), opened);
      EXPECT_EQ(opening, Opening::kWrong) << i;
    }
  }
}

TEST(OpenedBytes, AreBoundedAndGivenBack) {
  TestView test;
  const View* view = &test.view();
  uint8_t* first;
  {
    OpenedBytes outer(view, 100), inner(view, kMostOpened - 112);
    first = outer.data;
    EXPECT_EQ(inner.data, outer.data + 112);
    EXPECT_EQ(OpenedBytes(view, 1).data, nullptr);
  }
  EXPECT_EQ(OpenedBytes(view, kMostOpened).data, first);
  EXPECT_EQ(OpenedBytes(view, kMostOpened + 1).data, nullptr);
}

TEST(DerivedLines, AreKnownByTheirIndexes) {
  TestView test;
  View* view = &test.view();
  const auto add = [&] { AddDecodeLine(view, 0, "line", 0, view->tree, MakeByteRange(0, 0, 1)); };
  add();
  {
    DerivedLines outer(view);
    add();
    { DerivedLines inner(view); add(); }
    add();
  }
  { DerivedLines next(view); add(); }
  add();
  { DerivedLines last(view); add(); }
  std::string told;
  for (uint32_t i = 0; i < 8; ++i) told += IsDerived(view->context, i) ? 'x' : '.';
  EXPECT_EQ(told, ".xxxx.x.");
  EXPECT_EQ(view->context->derivedCount, 2u);
}

}  // namespace
}  // namespace qxview::testing
