// HTTP/2 and WebSocket over several segments: what goes on in later frames, what goes over to them, and what hostile ends cost.
#include <zlib.h>

#include <algorithm>

#include "core/states.h"
#include "tests/support/transport.h"

namespace qxview::testing {
namespace {

Bytes Ascii(const std::string& text) { return Bytes(text.begin(), text.end()); }
Bytes Part(const Bytes& bytes, size_t from, size_t to) {
  return Bytes(bytes.begin() + static_cast<ptrdiff_t>(from), bytes.begin() + static_cast<ptrdiff_t>(std::min(to, bytes.size())));
}
Bytes Number(uint64_t value, int octets) {
  Bytes out;
  for (int i = octets - 1; i >= 0; --i) out.push_back(static_cast<uint8_t>(value >> (8 * i)));
  return out;
}
// What a connection's messages compress to, each ended by a flush.
struct Deflater {
  z_stream stream{};
  explicit Deflater(int windowBits) { deflateInit2(&stream, 9, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY); }
  ~Deflater() { deflateEnd(&stream); }
  Bytes Take(const Bytes& text, int flush) {
    Bytes out(deflateBound(&stream, text.size()) + 64);
    stream.next_in = const_cast<Bytef*>(text.data());
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, flush);
    return Part(out, 0, out.size() - stream.avail_out);
  }
  Bytes Message(const std::string& text) {   // of WebSocket: without the flush's last four octets
    const Bytes whole = Take(Ascii(text), Z_SYNC_FLUSH);
    return Part(whole, 0, whole.size() - 4);
  }
};
Bytes Gzip(const Bytes& text) { return Deflater(31).Take(text, Z_FINISH); }

const Bytes kPreface = Ascii("PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n");
constexpr uint8_t kEndStream = 1, kEndHeaders = 4, kPadded = 8;
enum : uint8_t { kData = 0, kHeaders = 1, kSettings = 4, kContinuation = 9 };
Bytes Frame(uint8_t type, uint8_t flags, uint32_t stream, const Bytes& payload) {
  return Number(payload.size(), 3) + Bytes{type, flags} + Number(stream, 4) + payload;
}
Bytes HeaderField(const std::string& name, const std::string& value, uint8_t form = 0) {
  return Bytes{form, static_cast<uint8_t>(name.size())} + Ascii(name) + Bytes{static_cast<uint8_t>(value.size())} + Ascii(value);
}
Bytes Socket(uint8_t first, const Bytes& payload, bool isMasked = false) {
  const uint8_t length = static_cast<uint8_t>(payload.size() < 126 ? payload.size() : 126);
  Bytes out = Bytes{first, static_cast<uint8_t>(length | (isMasked ? 0x80 : 0))};
  if (length == 126) out = out + Number(payload.size(), 2);
  if (!isMasked) return out + payload;
  const uint8_t key[] = {1, 2, 3, 4};
  out = out + Bytes(key, key + 4);
  for (size_t i = 0; i < payload.size(); ++i) out.push_back(payload[i] ^ key[i % 4]);
  return out;
}

struct FollowingHost : DefinitionsHost {
  explicit FollowingHost(bool follows) {
    settings = {{"Reassembly", follows ? "1" : "0"}, {"IgnoreChecksums", "1"}, {"DnsRecords", "1"}};
    definitions.AddDefinition("tcp:80=HTTP");
  }
};

// Both directions of a connection to port 80.
struct Wire {
  FollowingHost host;
  TestView view{&host};
  uint32_t next[2] = {1000, 5000};
  uint64_t number = 0;
  explicit Wire(bool follows = true) : host(follows) {}

  std::string Send(const Bytes& payload, bool isReply = false) {
    const uint16_t client = 40000, server = 80;
    Bytes datagram = IPv4(6, Tcp({.sourcePort = isReply ? server : client, .destinationPort = isReply ? client : server,
                                  .sequence = next[isReply], .acknowledgement = next[!isReply], .payload = payload}));
    if (isReply) std::swap_ranges(datagram.begin() + 12, datagram.begin() + 16, datagram.begin() + 16);
    next[isReply] += static_cast<uint32_t>(payload.size());
    Record record(Ethernet(0x0800, datagram));
    record->packetNumber = ++number;
    view.Decode(record);
    const std::string first = view.Text();
    view.Decode(record);
    EXPECT_EQ(view.Text(), first) << "the same packet again";
    return first;
  }
  std::string Reply(const Bytes& payload) { return Send(payload, true); }
};

TEST(Http2Streams, GoesOverFromTheVersionBefore) {
  for (const bool follows : {false, true}) {
    Wire wire(follows);
    const Bytes asks = Ascii("GET / HTTP/1.1\r\nUpgrade: h2c\r\nHTTP2-Settings: AAMAAABkAAQAoAAAAAIAAAAA\r\n\r\n");
    ExpectInOrder(wire.Send(asks),
                  {"HTTP - Request", "Name: HTTP2-Settings", "Setting: MAX_CONCURRENT_STREAMS = 100",
                   "Setting: INITIAL_WINDOW_SIZE = 10485760", "Setting: ENABLE_PUSH = 0"});
    ExpectInOrder(wire.Reply(Ascii("HTTP/1.1 101 Switching Protocols\r\nConnection: Upgrade\r\nUpgrade: h2c\r\n\r\n") +
                             Frame(kSettings, 0, 0, {}) + Frame(kHeaders, kEndHeaders, 1, Hex("88"))),
                  {"HTTP - Response", "HTTP/2: SETTINGS, Stream 0", "HTTP/2: HEADERS, Stream 1, 1 bytes, 200"});
    ExpectInOrder(wire.Send(kPreface + Frame(kSettings, 1, 0, {})), {"Connection Preface", "SETTINGS"});
  }
}

TEST(Http2Streams, AFieldGoesOnInTheNextFrame) {
  for (const bool follows : {false, true}) {
    Wire wire(follows);
    const Bytes fields = Hex("82 86 84") + HeaderField("split", "in its middle", 0x40) + HeaderField("last", "one", 0x40);
    wire.Send(kPreface + Frame(kSettings, 0, 0, {}));
    wire.Send(Frame(kHeaders, kEndStream, 1, Part(fields, 0, 8)));
    ExpectInOrder(wire.Send(Frame(kContinuation, 0, 1, Part(fields, 8, 12))), {"CONTINUATION", "Field in Part"});
    ExpectInOrder(wire.Send(Frame(kContinuation, kEndHeaders, 1, Part(fields, 12, 99)) +
                            Frame(kHeaders, kEndStream | kEndHeaders, 3, Hex("82 BF BE"))),
                  {"Header: split: in its middle", "Header: last: one", "Stream 3", "Header: split: in its middle",
                   "Header: last: one"});
    // One that does not end is not kept for ever.
    wire.Send(Frame(kHeaders, 0, 5, Hex("00 7F C1 FF 7F") + Bytes(15000, 'n')));
    std::string shown;
    for (int i = 0; i < 5; ++i) shown += wire.Send(Frame(kContinuation, 0, 5, Bytes(15000, 'n')));
    EXPECT_NE(shown.find("not joined"), std::string::npos) << shown;
  }
}

TEST(Http2Streams, ABodyIsShownWhenItIsWhole) {
  Wire wire;
  wire.Send(kPreface + Frame(kSettings, 0, 0, {}));
  const Bytes json = Ascii("{\"name\": \"value\", \"more\": [1, 2, 3]}");
  const Bytes typed = Hex("88") + HeaderField("content-type", "application/json");
  wire.Reply(Frame(kHeaders, kEndHeaders, 1, typed) + Frame(kData, kPadded, 1, Hex("03") + Part(json, 0, 10) + Bytes(3, 0)));
  ExpectInOrder(wire.Reply(Frame(kData, kEndStream, 1, Part(json, 10, 99))),
                {"Joined Content: 36 bytes of 2 pieces", "JSON: 36 bytes", "name: value", "more"});

  // Coded, interleaved with another stream's, ended by trailers.
  const Bytes coded = Gzip(json);
  wire.Reply(Frame(kHeaders, kEndHeaders, 3, typed + HeaderField("content-encoding", "gzip")) +
             Frame(kHeaders, kEndHeaders, 5, Hex("88") + HeaderField("content-type", "text/plain")));
  wire.Reply(Frame(kData, 0, 3, Part(coded, 0, 20)) + Frame(kData, 0, 5, Ascii("one\r\n")) +
             Frame(kData, 0, 3, Part(coded, 20, 99)));
  ExpectInOrder(wire.Reply(Frame(kHeaders, kEndStream | kEndHeaders, 3, HeaderField("trailer", "1")) +
                           Frame(kData, kEndStream, 5, Ascii("two"))),
                {"Joined Content", "Inflated Content: 36 bytes", "name: value", "Joined Content: 8 bytes", "Text: one",
                 "Text: two"});
}

TEST(Http2Streams, AMessageOfGrpcIsShownWhenItIsWhole) {
  Wire wire;
  wire.Send(kPreface + Frame(kSettings, 0, 0, {}));
  const Bytes plain = Hex("0A 05 68656C6C6F 10 96 01"), packed = Gzip(plain);
  const Bytes messages = Hex("00") + Number(plain.size(), 4) + plain + Hex("01") + Number(packed.size(), 4) + packed;
  wire.Send(Frame(kHeaders, kEndHeaders, 1, Hex("83") + HeaderField("content-type", "application/grpc+proto") +
                                                HeaderField("grpc-encoding", "gzip")));
  wire.Send(Frame(kData, 0, 1, Part(messages, 0, 3)));
  ExpectInOrder(wire.Send(Frame(kData, 0, 1, Part(messages, 3, 9))), {"Message Continued"});
  ExpectInOrder(wire.Send(Frame(kData, 0, 1, Part(messages, 9, 30))),
                {"gRPC Message: 10 bytes, joined of", "hello", "gRPC Message"});
  ExpectInOrder(wire.Send(Frame(kData, kEndStream, 1, Part(messages, 30, 999))),
                {"joined of 2 pieces", "Inflated Content: 10 bytes", "hello"});
}

TEST(Http2Streams, CarriesWebSocket) {
  Wire wire;
  wire.Send(kPreface + Frame(kSettings, 0, 0, {}));
  wire.Send(Frame(kHeaders, kEndHeaders, 1, HeaderField(":method", "CONNECT") + HeaderField(":protocol", "websocket")));
  wire.Reply(Frame(kSettings, 0, 0, {}) +
             Frame(kHeaders, kEndHeaders, 1, Hex("88") + HeaderField("sec-websocket-extensions", "permessage-deflate")));
  Deflater deflater(-15);
  ExpectInOrder(wire.Send(Frame(kData, 0, 1, Socket(0xC1, deflater.Message("hello, hello, hello"), true))),
                {"DATA, Stream 1", "WebSocket: Text", "Inflated Payload: 19 bytes", "Text: hello, hello, hello"});
  ExpectInOrder(wire.Reply(Frame(kData, 0, 1, Socket(0x81, Ascii("ok")))), {"WebSocket: Text", "Text: ok"});
}

const Bytes kGoesToSocket =
    Ascii("HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nSec-WebSocket-Extensions: permessage-deflate\r\n\r\n");

TEST(WebSocketStreams, AMessageInFragmentsIsInflatedWhole) {
  for (const bool follows : {false, true}) {
    Wire wire(follows);
    wire.Send(Ascii("GET / HTTP/1.1\r\nUpgrade: websocket\r\n\r\n"));
    wire.Reply(kGoesToSocket);
    Deflater deflater(-15);
    const std::string words = "some words that come in several fragments, some words that come again";
    const Bytes message = deflater.Message(words), next = deflater.Message(words + "!");
    EXPECT_LT(next.size(), message.size() / 2) << "goes on with the window";
    const Bytes frames = Socket(0x41, Part(message, 0, 10), true) + Socket(0x89, Ascii("ping"), true) +
                         Socket(0x00, Part(message, 10, 30), true) + Socket(0x80, Part(message, 30, 999), true) +
                         Socket(0xC1, next, true);
    const size_t cut = frames.size() - next.size() - 1;   // in the last head
    ExpectInOrder(wire.Send(Part(frames, 0, 25)), {"Compressed Payload in Part"});
    ExpectInOrder(wire.Send(Part(frames, 25, cut)), {"of 3 pieces", "Inflated Payload", "Text: " + words});
    ExpectInOrder(wire.Send(Part(frames, cut, 999)), {"Inflated Payload", "Text: " + words + "!"});
  }
}

TEST(WebStreams, WhatHostileEndsSendIsBounded) {
  Wire wire(false);
  wire.Send(kPreface + Frame(kSettings, 0, 0, {}));
  // One large entry, named thousands of times.
  const Bytes large = Hex("40 01 61 7F C1 1E") + Bytes(4000, 'x');
  std::string shown = wire.Send(Frame(kHeaders, kEndHeaders, 1, large + Bytes(12000, 0xBE)));
  EXPECT_LT(shown.size(), 20u << 20);
  // Numbers that do not end or fit, a table of any size, Huffman codes that are none.
  const Bytes endless = Hex("3F FFFFFFFFFFFFFFFF3F") + Hex("FF FFFFFFFFFFFFFFFF3F") + Hex("00 8180 8200FF");
  shown = wire.Send(Frame(kHeaders, kEndHeaders, 3, endless));
  ExpectInOrder(shown, {"Dynamic Table Size Update: ", "Header: "});
  // A frame of 16 MB is shown as it comes, and another stream's behind it is found.
  shown = wire.Send(Number(0xFFFFFF, 3) + Hex("00 00 00000005") + Bytes(500, 'y'));
  ExpectInOrder(shown, {"DATA, Stream 5, 16777215 bytes"});
  ExpectInOrder(wire.Send(Bytes(1400, 'y')), {"Continued, Stream 5, 1400 bytes, 16775315 to come"});

  Wire socket(false);
  socket.Reply(kGoesToSocket);
  const Bytes bomb = Deflater(-15).Take(Bytes(2 << 20, 0), Z_SYNC_FLUSH);
  shown = socket.Reply(Socket(0xC2, Part(bomb, 0, bomb.size() - 4)));
  ExpectInOrder(shown, {"more is not inflated"});
  // Fragments without end, and a length of 2^63 - 1.
  socket.Reply(Socket(0x42, Bytes(60000, 1)));
  for (int i = 0; i < 20; ++i) shown += socket.Reply(Socket(0x00, Bytes(60000, 1)));
  ExpectInOrder(shown, {"not joined"});
  ExpectInOrder(socket.Reply(Hex("82 7F 7FFFFFFFFFFFFFFF") + Bytes(100, 2)), {"Binary, 9223372036854775807 bytes"});
  ExpectInOrder(socket.Reply(Bytes(1400, 2)), {"Binary Continued, 1400 bytes"});
  EXPECT_LT(socket.view.view().engine->states->memory.used, 32u << 20);
}

}  // namespace
}  // namespace qxview::testing
