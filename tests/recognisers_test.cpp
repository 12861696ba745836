#include "decoders/net/recognisers.h"

#include <cstring>
#include <map>
#include <random>

#include "decoders/net/dynamic_udp.h"
#include "tests/support/decoding.h"

namespace qxview::testing {
namespace {

bool Asks(Recogniser recognise, const Bytes& payload) {
  const std::unique_ptr<uint8_t[]> exact(new uint8_t[payload.size() + 1]);   // one over, so that none is null
  if (!payload.empty()) std::memcpy(exact.get(), payload.data(), payload.size());
  return recognise(MakeCursor(exact.get(), 0, static_cast<int32_t>(payload.size())));
}

Bytes Ascii(const std::string& text) { return Bytes(text.begin(), text.end()); }

Bytes With(Bytes bytes, size_t at, const Bytes& changed) {
  std::copy(changed.begin(), changed.end(), bytes.begin() + static_cast<ptrdiff_t>(at));
  return bytes;
}

// A message is accepted; each of the changed ones, in which one field lies, is refused, and so is every cut below
// `least` bytes.
struct Change {
  size_t at;
  const char* bytes;
  const char* what;
};
void CheckMessage(Recogniser recognise, const Bytes& message, size_t least, const std::vector<Change>& changes) {
  EXPECT_TRUE(Asks(recognise, message));
  for (const Change& change : changes) {
    EXPECT_FALSE(Asks(recognise, With(message, change.at, Hex(change.bytes)))) << change.what;
  }
  for (size_t length = 0; length < least; ++length) {
    EXPECT_FALSE(Asks(recognise, Bytes(message.begin(), message.begin() + static_cast<ptrdiff_t>(length)))) << length;
  }
}

const Bytes kBind = Hex(R"(
  05 00 0B 03 10000000 4800 0000 01000000   # bind, little-endian, 72 bytes
  D016 D016 00000000  01 000000             # fragment sizes, group, one context
  0000 01 00  78563412 3412 CDAB EF00 0123456789AB 01000000
  045D888A EB1C C911 9FE8 08002B104860 02000000)");

TEST(Recognisers, Msrpc) {
  CheckMessage(LooksLikeMsrpc, kBind, 16,
               {{0, "04", "version"}, {1, "02", "minor version"}, {2, "01", "a type of the datagram protocol"},
                {2, "14", "no type"}, {4, "20", "integer representation"}, {4, "12", "character representation"},
                {5, "04", "floating point"}, {6, "01", "reserved"},
                {8, "4700", "too short for a bind"}, {10, "2000", "credentials that leave no room"},
                {16, "1000", "a fragment size that carries nothing"}, {24, "00", "no context"},
                {25, "01", "reserved of the list"}, {30, "00", "no transfer syntax"}});
  const Bytes request = Hex("05 00 00 83 00000000 0018 0000 00000001 00000000 0000 0005");
  EXPECT_TRUE(Asks(LooksLikeMsrpc, request)) << "big-endian";
  EXPECT_TRUE(Asks(LooksLikeMsrpc, request + request)) << "two fragments in one segment";
  EXPECT_TRUE(Asks(LooksLikeMsrpc, With(request, 8, Hex("1000")))) << "a fragment that ends in a later segment";
  EXPECT_FALSE(Asks(LooksLikeMsrpc, request + Hex("00 00"))) << "what follows is no fragment";
}

TEST(Recognisers, Smb) {
  const Bytes negotiate = Hex("00 000023 FF534D42 72 00000000 18 53C8") + Bytes(20) + Hex("00 0000");
  CheckMessage(LooksLikeSmb, negotiate, 36,
               {{0, "85", "a keep-alive"}, {1, "000022", "no room for the counts"}, {4, "FE", "the next version"},
                {4, "FD", "encrypted"}, {7, "43", "mark"}});
}

TEST(Recognisers, TdsHeader) {
  const Bytes prelogin = Hex("12 01 001A 0000 01 00  00 000B 0006  01 0011 0001 FF  0C000FA1 0000 02");
  CheckMessage(LooksLikeTds, prelogin, 19,
               {{0, "05", "type"}, {1, "21", "status"}, {1, "00", "a short packet that is not the last"},
                {2, "0007", "length"}, {2, "8000", "length"}, {4, "0001", "a process of the client's"},
                {6, "02", "not the first packet"}, {7, "01", "window"}, {8, "20", "option"},
                {9, "0003", "an offset inside the options"}, {11, "0020", "a value outside"}});
  EXPECT_TRUE(Asks(LooksLikeTds, Hex("12 01 000D 0000 00 00  16 03 01 00 00"))) << "a wrapped handshake";
  EXPECT_TRUE(Asks(LooksLikeTds, Hex("06 01 0008 0000 01 00"))) << "attention";
  EXPECT_FALSE(Asks(LooksLikeTds, Hex("06 01 0009 0000 01 00 00"))) << "attention has no body";
}

TEST(Recognisers, TdsMessages) {
  const Bytes headers = Hex("16000000 12000000 0200 0000000000000000 01000000");
  EXPECT_TRUE(Asks(LooksLikeTds, Hex("01 01 0024 0000 01 00") + headers + Hex("5300 4500 4C00"))) << "batch";
  EXPECT_TRUE(Asks(LooksLikeTds, Hex("01 01 000E 0000 01 00 5300 4500 4C00"))) << "batch without headers";
  EXPECT_FALSE(Asks(LooksLikeTds, Hex("01 01 000E 0000 01 00 5301 4500 4C00"))) << "no text";
  EXPECT_TRUE(Asks(LooksLikeTds, Hex("03 01 0010 0000 01 00 FFFF 0A00 0000 0000"))) << "call by number";
  EXPECT_FALSE(Asks(LooksLikeTds, Hex("03 01 0010 0000 01 00 FFFF 1000 0000 0000"))) << "no such number";
  EXPECT_TRUE(Asks(LooksLikeTds, Hex("03 01 0010 0000 01 00 0300 7300 7000 6100"))) << "call by name";
  EXPECT_TRUE(Asks(LooksLikeTds, Hex("0E 01 0020 0000 01 00") + headers + Hex("0500"))) << "transaction";
  EXPECT_TRUE(Asks(LooksLikeTds, Hex("04 01 0015 0034 01 00 FD 1000 C100 0000000000000000"))) << "done";
  EXPECT_FALSE(Asks(LooksLikeTds, Hex("04 01 0015 0034 01 00 FD 10FF C100 0000000000000000"))) << "status of done";
  EXPECT_FALSE(Asks(LooksLikeTds, Hex("04 01 000D 0034 01 00 E3 FFFF 0100"))) << "a token past the packet";
  EXPECT_FALSE(Asks(LooksLikeTds, Hex("04 01 000D 0034 01 00 42 0000 0100"))) << "no token";
  const Bytes login = Hex("10 01 0090 0000 01 00 88000000 04000074 00100000") + Bytes(124);
  EXPECT_TRUE(Asks(LooksLikeTds, login));
  EXPECT_FALSE(Asks(LooksLikeTds, With(login, 15, Hex("54")))) << "version of the protocol";
  EXPECT_FALSE(Asks(LooksLikeTds, With(login, 8, Hex("08")))) << "length of the login";
}

TEST(Recognisers, OracleTns) {
  const Bytes connect = Hex(R"(
    0046 0000 01 00 0000  0139 012C 0000 0800 7FFF 7F08 0000 0001 000C 003A 00000000 41 41
    0000000000000000 0000000000000000 00000000 00000000)") + Ascii("(DESCRIPTION");
  CheckMessage(LooksLikeTns, connect, 70,
               {{0, "0047", "length"}, {2, "0001", "checksum"}, {4, "14", "type"}, {6, "0001", "header checksum"},
                {8, "0100", "version"}, {10, "0200", "a compatible version above it"}, {24, "000D", "data length"},
                {26, "0010", "data inside the header"}});
  EXPECT_TRUE(Asks(LooksLikeTns, Hex("0008 0000 0B 00 0000"))) << "resend";
  EXPECT_FALSE(Asks(LooksLikeTns, Hex("0009 0000 0B 00 0000 00"))) << "resend has no body";
  EXPECT_TRUE(Asks(LooksLikeTns, Hex("000B 0000 0C 00 0000 01 00 02"))) << "marker";
  EXPECT_TRUE(Asks(LooksLikeTns, Hex("0000000D 06 00 0000 0000 03 5E 01"))) << "data with the longer length";
  EXPECT_FALSE(Asks(LooksLikeTns, Hex("0000000D 06 00 0000 0010 03 5E 01"))) << "data flags";
  EXPECT_FALSE(Asks(LooksLikeTns, Hex("0000000D 06 00 0000 0000 73 5E 01"))) << "no function of the client protocol";
  EXPECT_TRUE(Asks(LooksLikeTns, Hex("0010 0000 06 00 0000 0000 DEADBEEF 00 0A"))) << "negotiation of services";
  EXPECT_TRUE(Asks(LooksLikeTns, Hex("000A 0000 06 00 0000 0040"))) << "end of the session";
  EXPECT_TRUE(Asks(LooksLikeTns, Hex("0010 0000 04 00 0000 22 00 0004") + Ascii("(ERR")));
  EXPECT_FALSE(Asks(LooksLikeTns, Hex("0010 0000 04 00 0000 22 00 0003") + Ascii("(ERR"))) << "refusal's length";
}

const Bytes kCall = Hex(R"(
  7A3F0001 00000000 00000002 000186A3 00000003 00000001
  00000001 0000001C 4F2A1B00 00000004 686F7374 00000000 00000000 00000001 00000000   # AUTH_SYS
  00000000 00000000 00000004 00112233)");
const Bytes kReply = Hex("7A3F0001 00000001 00000000 00000000 00000000 00000000 00000000 00000001");

TEST(Recognisers, OncRpc) {
  CheckMessage(LooksLikeOncRpc, kCall, 68,
               {{0, "00000000", "xid"}, {4, "00000002", "direction"}, {8, "00000003", "version"},
                {12, "00000064", "program"}, {12, "60000000", "program"}, {16, "00010000", "version of the program"},
                {20, "00010000", "procedure"}, {24, "00000008", "flavour"}, {24, "00000000", "no credential but bytes"},
                {28, "00000194", "length"}, {28, "00000020", "a credential that does not fill its bytes"},
                {36, "00000100", "machine name"}, {52, "00000011", "groups"}, {52, "00000000", "groups"},
                {60, "00000009", "verifier"}, {64, "00000004", "a verifier of none with bytes"}});
  CheckMessage(LooksLikeOncRpc, kReply, 24,
               {{8, "00000002", "state"}, {12, "00000009", "verifier"}, {20, "00000006", "status"},
                {20, "00000001", "an error with results"}});
  EXPECT_FALSE(Asks(LooksLikeOncRpc, kReply + Bytes(1))) << "words only";
  EXPECT_TRUE(Asks(LooksLikeOncRpc, Hex("7A3F0001 00000001 00000001 00000001 00000005"))) << "denied";
  EXPECT_FALSE(Asks(LooksLikeOncRpc, Hex("7A3F0001 00000001 00000001 00000001 00000000"))) << "denied without reason";
  EXPECT_TRUE(Asks(LooksLikeOncRpc, Hex("7A3F0001 00000001 00000000 00000000 00000000 00000002 00000002 00000004")));
  EXPECT_FALSE(Asks(LooksLikeOncRpc, Hex("7A3F0001 00000001 00000000 00000000 00000000 00000002 00000004 00000002")))
      << "a range of versions that is none";
}

TEST(Recognisers, OncRpcRecords) {
  const Bytes record = Hex("80000048") + kCall;
  CheckMessage(LooksLikeOncRpcRecord, record, 72,
               {{0, "80000010", "too short"}, {0, "80000047", "words only"}, {0, "FF000048", "too long"},
                {0, "80000024", "the record ends inside the credential"}});
  EXPECT_TRUE(Asks(LooksLikeOncRpcRecord, Hex("80004000") + kReply)) << "the results end in a later segment";
  EXPECT_TRUE(Asks(LooksLikeOncRpcRecord, Hex("80000020") + kReply + Hex("80"))) << "the next record follows";
  EXPECT_FALSE(Asks(LooksLikeOncRpc, record));
  EXPECT_FALSE(Asks(LooksLikeOncRpcRecord, kCall));
}

TEST(Recognisers, TextProtocols) {
  EXPECT_TRUE(Asks(LooksLikeFix, Ascii("8=FIX.4.2\0019=5\001")));
  EXPECT_TRUE(Asks(LooksLikeFix, Ascii("10=088\0018=FIXT.1.1\001"))) << "inside a segment";
  EXPECT_TRUE(Asks(LooksLikeFix, Ascii("88=FIX")));
  EXPECT_FALSE(Asks(LooksLikeFix, Ascii("8=FI")));
  EXPECT_FALSE(Asks(LooksLikeFix, Ascii("8=FI8=fix 8 =FIX")));

  for (const char* line : {"INVITE sip:bob@example.org SIP/2.0\r\nVia: x", "REGISTER sips:example.org SIP/2.0\n",
                           "PING tel:1 SIP/2.0\r\n", "SIP/2.0 200 OK\r\n", "SIP/2.0 180 \r\n", "SIP/2.0 401\r\n"}) {
    EXPECT_TRUE(Asks(LooksLikeSip, Ascii(line))) << line;
  }
  for (const char* line : {"INVITE sip:bob@example.org SIP/2.0", "INVITE sip:bob@example.org SIP/3.0\r\n",
                           "INVITE bob SIP/2.0\r\n", "INVITE  SIP/2.0\r\n", "invite sip:b SIP/2.0\r\n",
                           "INVITE sip:a b SIP/2.0\r\n", "INVITE sip:a\x80 SIP/2.0\r\n", "GET http://a/ HTTP/1.1\r\n",
                           "RTSP/1.0 200 OK\r\n", "SIP/2.0 700 OK\r\n", "SIP/2.0 20 OK\r\n", "SIP/2.0 2000\r\n",
                           "SIP/2.0\r\n", "\r\nSIP/2.0 200 OK\r\n"}) {
    EXPECT_FALSE(Asks(LooksLikeSip, Ascii(line))) << line;
  }
}

TEST(Recognisers, MarkedProtocols) {
  const Bytes giop = Ascii("GIOP") + Hex("01 02 01 00 20000000") + Bytes(32);
  CheckMessage(LooksLikeGiop, giop, 12,
               {{0, "67", "mark"}, {4, "02", "major version"}, {5, "04", "minor version"}, {6, "04", "flags"},
                {7, "08", "type"}, {7, "05", "closing has no body"}, {7, "02", "cancelling has a number"},
                {6, "00", "the other byte order: a size past all bounds"}, {8, "03", "size"}});
  EXPECT_FALSE(Asks(LooksLikeGiop, With(giop, 4, Hex("01 00 01 07")))) << "fragments came with 1.1";

  const Bytes fcip = Hex(R"(01 01 FE FE  01 01 FE FE  00 00 FF FF  0013 FFEC
                            00000000 00000000 00000000)") + Bytes(48);
  CheckMessage(LooksLikeFcip, fcip, 28,
               {{0, "02", "protocol"}, {1, "02", "version"}, {2, "FF", "complement"}, {4, "00", "copy"},
                {8, "01", "flags without their complement"}, {9, "01 FF FE", "reserved"}, {12, "0014", "length"},
                {12, "000E FFF1", "too short"}, {12, "03FF FC00", "too long"}, {12, "8013 7FEC", "reserved"}});

  Bytes stream(3 * 188);
  for (size_t at = 0; at < stream.size(); at += 188) stream[at] = 0x47, stream[at + 3] = 0x10;
  EXPECT_TRUE(Asks(LooksLikeMpegTs, stream));
  EXPECT_FALSE(Asks(LooksLikeMpegTs, With(stream, 188, Hex("46"))));
  EXPECT_FALSE(Asks(LooksLikeMpegTs, With(stream, 191, Hex("00"))));
  EXPECT_FALSE(Asks(LooksLikeMpegTs, Bytes(stream.begin(), stream.end() - 1)));
  EXPECT_FALSE(Asks(LooksLikeMpegTs, Bytes(stream.begin(), stream.begin() + 188)));
  const Bytes handshake = Hex("13") + Ascii("BitTorrent protocol");
  EXPECT_TRUE(Asks(LooksLikeBitTorrent, handshake));
  EXPECT_FALSE(Asks(LooksLikeBitTorrent, With(handshake, 19, Hex("4C"))));
  EXPECT_FALSE(Asks(LooksLikeBitTorrent, Bytes(handshake.begin(), handshake.end() - 1)));
}

const std::vector<std::pair<const char*, Recogniser>> kAll = {
    {"MSRPC", LooksLikeMsrpc}, {"SMB", LooksLikeSmb}, {"TDS", LooksLikeTds}, {"TNS", LooksLikeTns},
    {"ONC RPC record", LooksLikeOncRpcRecord}, {"FIX", LooksLikeFix}, {"SIP", LooksLikeSip}, {"GIOP", LooksLikeGiop},
    {"FCIP", LooksLikeFcip}, {"BitTorrent", LooksLikeBitTorrent}, {"MPEG-TS", LooksLikeMpegTs}, {"ONC RPC", LooksLikeOncRpc},
    {"RTCP", [](const Cursor& c) {
       const DetectionSettings rtcpAlone{2, 0, 0};
       uint32_t identifier;
       return DetermineDynamicUDPPrototol(&rtcpAlone, 5000, 5002, c.at, Left(c), &identifier, nullptr, nullptr,
                                          nullptr) == 1;
     }}};

// Random bytes, and the same dressed as what detection sees most: TLS records, words of a small counter, zero runs.
TEST(Recognisers, RandomPayloadsAreRefused) {
  std::mt19937 random(20240607);
  const std::vector<Bytes> starts = {{}, Hex("16 03 01 02 00 01 00 01 FC 03 03"), Hex("17 03 03 05 A0"),
                                     Hex("00 00 00 20"), Hex("00 00 00 00 00 00 00 01 00 00 00 00"), Bytes(16)};
  std::map<std::string, int> claims;
  for (int i = 0; i < 100000; ++i) {
    Bytes payload(random() % 160);
    for (uint8_t& byte : payload) byte = static_cast<uint8_t>(random());
    payload = starts[static_cast<size_t>(i) % starts.size()] + payload;
    for (const auto& [name, recognise] : kAll) {
      if (recognise(MakeCursor(payload.data(), 0, static_cast<int32_t>(payload.size())))) ++claims[name];
    }
  }
  EXPECT_TRUE(claims.empty()) << claims.begin()->first << ": " << claims.begin()->second;
}

// Every prefix and every single byte changed, on a heap copy of the exact size: no recogniser reads outside.
TEST(Recognisers, ReadNothingOutside) {
  const std::vector<Bytes> messages = {kBind, kCall, kReply, Hex("80000048") + kCall,
                                       Hex("12 01 001A 0000 01 00  00 000B 0006  01 0011 0001 FF  0C000FA1 0000 02"),
                                       Ascii("INVITE sip:b SIP/2.0\r\n"), Ascii("GIOP") + Hex("01 02 01 00 20000000")};
  for (const Bytes& message : messages) {
    for (size_t length = 0; length <= message.size(); ++length) {
      const std::unique_ptr<uint8_t[]> exact(new uint8_t[length]);
      for (size_t at = 0; at <= length; ++at) {
        for (const int value : {0x00, 0x01, 0x80, 0xFF}) {
          std::copy_n(message.begin(), length, exact.get());
          if (at < length) exact[at] = static_cast<uint8_t>(value);
          for (const auto& row : kAll) row.second(MakeCursor(exact.get(), 0, static_cast<int32_t>(length)));
        }
      }
    }
  }
}

}  // namespace
}  // namespace qxview::testing
