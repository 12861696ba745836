// Messages over segments and datagrams over fragments: whatever order, overlaps and losses they come with.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "core/states.h"
#include "decoders/net/ip_fragments.h"
#include "decoders/net/tcp_streams.h"
#include "decoders/states.h"
#include "host/state_log.h"
#include "tests/support/transport.h"

namespace qxview::testing {
namespace {

Bytes Ascii(const std::string& text) { return Bytes(text.begin(), text.end()); }

Bytes Part(const Bytes& bytes, size_t first, size_t length) {
  first = std::min(first, bytes.size());
  return Bytes(bytes.begin() + static_cast<ptrdiff_t>(first),
               bytes.begin() + static_cast<ptrdiff_t>(std::min(first + length, bytes.size())));
}

constexpr uint8_t kFin = 1, kSyn = 2, kAckPush = 0x18;

struct Reassembling : DefinitionsHost {
  Reassembling() { settings = {{"Reassembly", "1"}, {"IgnoreChecksums", "1"}}; }
};

// Packets of a capture, decoded one after the other.
struct Wire {
  Reassembling host;
  TestView view{&host};
  uint64_t number = 0;

  static Bytes SegmentOf(uint32_t sequence, const Bytes& payload, uint8_t flags, bool reply = false,
                         uint16_t port = 40000, uint32_t acknowledgement = 1) {
    TcpParts parts;
    parts.sourcePort = reply ? 80 : port;
    parts.destinationPort = reply ? port : 80;
    parts.sequence = sequence;
    parts.acknowledgement = acknowledgement;
    parts.flags = flags;
    parts.payload = payload;
    Bytes datagram = IPv4(6, Tcp(parts));
    if (reply) std::swap_ranges(datagram.begin() + 12, datagram.begin() + 16, datagram.begin() + 16);
    return Ethernet(0x0800, datagram);
  }
  // The application's part of the tree.
  std::string Show(const Bytes& frame, uint64_t packet) {
    Record record(frame);
    record->packetNumber = packet;
    view.Decode(record);
    std::string text = view.Text();
    size_t at = text.find("\nTCP ");
    if (at == std::string::npos) at = text.find("\nIP:");
    for (++at; at < text.size(); ++at) {   // behind the lines under the header
      at = std::min(text.find('\n', at), text.size() - 1);
      if (at + 1 >= text.size() || text[at + 1] != ' ') break;
    }
    return text.substr(std::min(at + 1, text.size()));
  }
  std::string Send(uint32_t sequence, const Bytes& payload, uint8_t flags = kAckPush, bool reply = false) {
    return Show(SegmentOf(sequence, payload, flags, reply), ++number);
  }
  void Acknowledge(uint32_t sequence) { Show(SegmentOf(1, {}, 0x10, true, 40000, sequence), ++number); }
  size_t Memory() { return view.view().engine->states->memory.used; }
};

Bytes Post(const std::string& path, size_t length) {
  return Ascii("POST /" + path + " HTTP/1.1\r\nContent-Length: " + std::to_string(length) + "\r\n\r\n" +
               std::string(length, 'x'));
}

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(TcpReassembly, AMessageIsShownWhereItIsWhole) {
  Wire wire;
  const Bytes message = Post("first", 100), next = Post("next", 3);
  EXPECT_EQ(wire.Send(1000, Part(message, 0, 18)), "Reassembly: 18 bytes kept, more needed {54+18}\n");
  EXPECT_EQ(wire.Send(1018, Part(message, 18, 62)),
            "Reassembly: 80 bytes kept, " + std::to_string(message.size() - 80) + " more needed {54+62}\n");
  const Bytes last = Part(message, 80, 1000) + next + Part(next, 0, 10);
  const std::string shown = wire.Send(1080, last);
  const std::string own = std::to_string(message.size() - 80);
  EXPECT_TRUE(shown.starts_with("HTTP - Request {54+" + own + "}\n  Request Line: POST /first HTTP/1.1 {54+0}\n")) << shown;
  EXPECT_TRUE(Has(shown, "\n  Encoded Http Data {54+" + own + "}\nHTTP - Request {")) << shown;
  EXPECT_TRUE(Has(shown, "Request Line: POST /next HTTP/1.1 {" + std::to_string(54 + message.size() - 80) + "+")) << shown;
  EXPECT_TRUE(shown.ends_with("Reassembly: 10 bytes kept, more needed {" +
                              std::to_string(54 + last.size() - 10) + "+10}\n")) << shown;

  // The first line's bytes stood in two packets; the body's partly here.
  BytePiece earlier[4];
  const LineHandle top = wire.view.tree().FirstChild(0);
  LineHandle http = top;
  while (wire.view.LineText(http) != "HTTP - Request") http = wire.view.tree().NextSibling(http);
  const OwnRange own1 = OwnRangeOfLine(&wire.view.context(), &wire.view.tree(), wire.view.tree().FirstChild(http), earlier, 4);
  ASSERT_EQ(own1.earlierCount, 2);
  EXPECT_EQ(earlier[0].packet * 1000 + earlier[0].offset, 1054);
  EXPECT_EQ(earlier[0].length, 18);
  EXPECT_EQ(earlier[1].packet * 1000 + earlier[1].offset, 2054);
  EXPECT_EQ(earlier[1].length, 2);
  EXPECT_TRUE(Has(wire.Send(1080 + static_cast<uint32_t>(last.size()), Part(next, 10, 1000)), "POST /next HTTP/1.1 {54+"));
}

TEST(TcpReassembly, WhatCameBeforeIsTold) {
  Wire wire;
  const Bytes message = Post("a", 40);
  const uint32_t size = static_cast<uint32_t>(message.size());
  wire.Send(1, Part(message, 0, 30));
  EXPECT_EQ(wire.Send(1, Part(message, 0, 30)), "Reassembly: 30 bytes came before {54+30}\n");
  Bytes other = Part(message, 20, 1000);
  other[3] ^= 1;
  const std::string shown = wire.Send(21, other);
  EXPECT_TRUE(shown.starts_with("Reassembly: 10 bytes came before, 1 of them differ {54+10}\nHTTP - Request")) << shown;
  EXPECT_TRUE(Has(shown, "POST /a HTTP/1.1")) << shown;
  EXPECT_EQ(wire.Send(1, message), "Reassembly: " + std::to_string(size) + " bytes came before {54+" +
                                       std::to_string(size) + "}\n");
}

TEST(TcpReassembly, AGapIsWaitedForAndGivenUp) {
  Wire wire;
  const Bytes message = Post("a", 40);
  const uint32_t size = static_cast<uint32_t>(message.size());
  wire.Send(1, Part(message, 0, 30));
  EXPECT_EQ(wire.Send(41, Part(message, 40, 1000)),
            "Reassembly: " + std::to_string(size - 40) + " bytes kept, 10 before them are missing {54+" +
                std::to_string(size - 40) + "}\n");
  EXPECT_TRUE(Has(wire.Send(31, Part(message, 30, 10)), "POST /a HTTP/1.1")) << "the gap is closed";
  // Acknowledged, so that it never comes: what waited starts anew.
  wire.Send(1 + size, Part(message, 0, 30));
  const std::string ahead = wire.Send(1 + 2 * size, Part(message, 0, 45));
  EXPECT_TRUE(Has(ahead, "POST /a HTTP/1.1") && Has(ahead, "before them are missing")) << "a message starts here: " << ahead;
  wire.Acknowledge(1 + 2 * size + 30);
  const std::string shown = wire.Send(1 + 2 * size + 45, Part(message, 45, 1000));
  EXPECT_TRUE(shown.starts_with("Reassembly: " + std::to_string(size - 30) + " bytes before this segment were not captured"))
      << shown;
  EXPECT_TRUE(Has(shown, "POST /a HTTP/1.1")) << shown;
  // Between messages a whole one waits for nothing, and what comes late is shown as it is.
  EXPECT_TRUE(Has(wire.Send(1 + 4 * size, message), "POST /a HTTP/1.1"));
  EXPECT_TRUE(Has(wire.Send(1 + 3 * size, message), "POST /a HTTP/1.1"));
}

TEST(TcpReassembly, MessagesEndWithTheConnectionOrAreTooLong) {
  Wire wire;
  const Bytes response = Ascii("HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\n\r\nto the end");
  EXPECT_TRUE(Has(wire.Send(1, response, kAckPush, true), "bytes kept, more needed"));
  const uint32_t end = 1 + static_cast<uint32_t>(response.size());
  EXPECT_TRUE(Has(wire.Send(end, {}, kFin | 0x10, true), "Http Data: to the end {54+0}"));

  const size_t length = 3 << 20;
  const Bytes longOne = Post("long", length), next = Post("next", 2), all = longOne + next + next;
  int continuations = 0, nexts = 0;
  for (size_t at = 0; at < all.size(); at += 1400) {
    const std::string shown = wire.Send(static_cast<uint32_t>(7 + at), Part(all, at, 1400));
    continuations += Has(shown, "HTTP - Continuation Data {54+");
    nexts += Has(shown, "Request Line: POST /next");
    EXPECT_FALSE(Has(shown, "came before")) << shown;
  }
  EXPECT_GT(continuations, 2000) << "as they are without reassembly";
  EXPECT_EQ(nexts, 1) << "both are in the last segment";
  EXPECT_LT(wire.Memory(), 4u << 20);
}

TEST(TcpReassembly, ASynBeginsTheStreamAndACutCaptureIsNotJoined) {
  Wire wire;
  const Bytes message = Post("a", 40);
  wire.Send(99, {}, kSyn);
  EXPECT_TRUE(Has(wire.Send(130, Part(message, 30, 1000)), "30 before them are missing"));
  EXPECT_TRUE(Has(wire.Send(100, Part(message, 0, 30)), "POST /a HTTP/1.1"));
  Bytes cut = Wire::SegmentOf(100 + static_cast<uint32_t>(message.size()), message, kAckPush);
  cut.resize(cut.size() - 20);
  EXPECT_TRUE(Has(wire.Show(cut, 50), "POST /a HTTP/1.1"));
  EXPECT_TRUE(Has(wire.Show(Wire::SegmentOf(100 + 2 * static_cast<uint32_t>(message.size()), message, kAckPush), 51),
                  "POST /a HTTP/1.1"));
}

// A stream of messages, cut anywhere, shuffled within a window, repeated and overlapping.
std::vector<Bytes> Shuffled(uint32_t seed, int messages) {
  std::mt19937 random(seed);
  Bytes stream;
  for (int i = 0; i < messages; ++i) stream = stream + Post(std::to_string(i), random() % 3 ? random() % 90 : random() % 5000);
  struct Piece {
    size_t place, first, length;
  };
  std::vector<Piece> pieces;
  for (size_t at = 0; at < stream.size();) {
    const size_t length = 1 + random() % 700, overlap = random() % 6 ? 0 : std::min<size_t>(at, random() % 100);
    pieces.push_back({4 * pieces.size() + random() % 16, at - overlap, length + overlap});
    if (random() % 10 == 0) pieces.push_back({4 * pieces.size() + random() % 24, at, length});
    at += length;
  }
  pieces[0].place = 0;
  std::stable_sort(pieces.begin(), pieces.end(), [](const Piece& a, const Piece& b) { return a.place < b.place; });
  std::vector<Bytes> frames{Wire::SegmentOf(0xFFFFFC00u - 1, {}, kSyn)};   // the numbers wrap
  for (const Piece& piece : pieces) {
    frames.push_back(Wire::SegmentOf(static_cast<uint32_t>(0xFFFFFC00u + piece.first), Part(stream, piece.first, piece.length),
                                     kAckPush));
  }
  return frames;
}

TEST(TcpReassembly, AnyOrderGivesAllMessagesAndTheSameWhateverIsShown) {
  for (uint32_t seed = 1; seed <= 12; ++seed) {
    const int messages = 20;
    const std::vector<Bytes> frames = Shuffled(seed, messages);
    Wire wire;
    std::vector<std::string> texts;
    std::string all;
    StateLog log;
    std::vector<size_t> starts;
    log.Record(wire.view.view().engine);
    for (size_t i = 0; i < frames.size(); ++i) {
      starts.push_back(log.End());
      texts.push_back(wire.Show(frames[i], i + 1));
      all += texts.back();
    }
    log.Record(nullptr);
    size_t at = 0;
    for (int i = 0; i < messages && at != std::string::npos; ++i) at = all.find("Request Line: POST /" + std::to_string(i) + " HTTP", at);
    EXPECT_NE(at, std::string::npos) << "seed " << seed;

    // Decoded twice each, alone behind packets that were passed, and out of the log from the last one on.
    Wire twice, replayed;
    for (size_t i = 0; i < frames.size(); ++i) {
      EXPECT_EQ(twice.Show(frames[i], i + 1), texts[i]);
      EXPECT_EQ(twice.Show(frames[i], i + 1), texts[i]) << "seed " << seed << " packet " << i + 1;
    }
    Wire passing;
    for (size_t i = 0; i < frames.size(); ++i) {
      DecodeContext& context = passing.view.context();
      const bool selected = i % 5 == 4;
      context.outputMode = selected ? kDisplayMode : kFindMode;
      context.silent = !selected;
      const std::string text = passing.Show(frames[i], i + 1);
      EXPECT_TRUE(!selected || text == texts[i]) << "seed " << seed << " packet " << i + 1 << "\n" << text << texts[i];
    }
    StateReplay replay(log, replayed.view.view().engine);
    for (size_t i = frames.size(); i-- > 0;) {
      replay.Seek(starts[i]);
      EXPECT_EQ(replayed.Show(frames[i], i + 1), texts[i]) << "seed " << seed << " packet " << i + 1;
    }
    EXPECT_TRUE(replay.InStep());
  }
}

TEST(TcpReassembly, MemoryIsBounded) {
  Wire wire;
  DecodeContext& context = wire.view.context();
  context.outputMode = kFindMode;
  context.silent = true;
  const Bytes part = Ascii("POST / HTTP/1.1\r\nContent-Length: 900000\r\n\r\n") + Bytes(1300, 'x');
  size_t most = 0;
  for (uint32_t i = 0; i < 60000; ++i) {
    Bytes frame = Wire::SegmentOf(i % 3 ? 1 : 5000, part, kAckPush, false, static_cast<uint16_t>(1024 + i));
    frame[28] = static_cast<uint8_t>(i >> 14);
    Record record(frame);
    record->packetNumber = i + 1;
    wire.view.Decode(record);
    most = std::max(most, wire.Memory());
  }
  EXPECT_GT(most, 20u << 20);
  EXPECT_LT(most, 72u << 20);
}

Bytes FragmentOf(const Bytes& datagram, size_t first, size_t length, uint8_t id, bool last) {
  Bytes fragment = IPv4(17, Part(datagram, first, length));
  fragment[5] = id;
  fragment[6] = static_cast<uint8_t>((last ? 0 : 0x20) | first >> 11);
  fragment[7] = static_cast<uint8_t>(first >> 3);
  return Ethernet(0x0800, fragment);
}

TEST(IpReassembly, FragmentsInAnyOrderMakeTheDatagram) {
  const Bytes query = Hex("1234 0100 0001 0000 0000 0000") + Ascii("\x03www\x07" "example\x04test") + Hex("00 0001 0001");
  Bytes datagram = Udp(5000, 53, query);
  std::mt19937 random(7);
  for (uint8_t id = 1; id < 30; ++id) {
    Wire wire;
    std::vector<size_t> order{0, 8, 16, 24, 32, 40};
    if (id % 4 == 0) order.insert(order.begin() + random() % 5, 16);   // twice
    std::shuffle(order.begin(), order.end(), random);
    std::string shown;
    size_t whole = 0;
    for (const size_t first : order) {
      const bool last = first + 8 >= datagram.size();
      shown = wire.Show(FragmentOf(datagram, first, 8, id, last), ++wire.number);
      whole += Has(shown, "Domain Name:www.example.test") && Has(shown, "UDP length");
      EXPECT_TRUE(whole || shown.starts_with("Reassembly: ")) << shown;
    }
    EXPECT_EQ(whole, 1u) << shown;
  }
  Wire wire;   // overlapping, with other bytes; the identification again
  for (int round = 0; round < 2; ++round) {
    wire.Show(FragmentOf(datagram, 0, 24, 9, false), ++wire.number);
    Bytes other = datagram;
    other[20] ^= 1;
    const std::string shown = wire.Show(FragmentOf(other, 16, 100, 9, true), ++wire.number);
    EXPECT_TRUE(shown.starts_with("Reassembly: 8 bytes of fragments overlap, 1 of them differ {34+")) << shown;
    EXPECT_TRUE(Has(shown, "UDP, [5000]  -> [53] DNS {34+0}")) << shown;
    EXPECT_TRUE(Has(shown, "Domain Name:www.example.test")) << shown;
  }
  const auto sixth = [&](size_t first, size_t length, bool last) {
    const Bytes header = {17, 0, static_cast<uint8_t>(first >> 8), static_cast<uint8_t>((first & 0xF8) | (last ? 0 : 1)),
                          0, 0, 0, 77};
    return Ethernet(0x86DD, IPv6(44, header + Part(datagram, first, length)));
  };
  Record first(sixth(0, 32, false)), second(sixth(32, 100, true));
  first->packetNumber = ++wire.number;
  wire.view.Decode(first);
  EXPECT_TRUE(Has(wire.view.Text(), "Reassembly: 32 bytes of fragments kept, more needed {62+32}")) << wire.view.Text();
  second->packetNumber = ++wire.number;
  wire.view.Decode(second);
  EXPECT_TRUE(Has(wire.view.Text(), "Domain Name:www.example.test")) << wire.view.Text();
}

// A segment whose datagram came in fragments ends a message that another one began: bytes that are joined twice have their places
// in the frame all the same, and of an earlier packet's the packet is told.
TEST(IpReassembly, WhatIsJoinedTwiceHasPlacesInTheFrame) {
  const Bytes message = Post("twice", 400);
  const auto segment = [&](uint32_t sequence, size_t first, size_t length) {
    return Part(Wire::SegmentOf(sequence, Part(message, first, length), kAckPush), 34, 10000);   // behind both headers
  };
  const auto fragment = [&](const Bytes& whole, bool isLast, uint8_t id) {
    Bytes piece = FragmentOf(whole, isLast ? 64 : 0, isLast ? 1000 : 64, id, isLast);
    piece[23] = 6;
    return piece;
  };
  Wire wire;
  const Bytes front = segment(1000, 0, 100), rest = segment(1100, 100, 1000);
  for (const auto& [whole, id] : {std::pair(front, uint8_t{1}), std::pair(rest, uint8_t{2})}) {
    wire.Show(fragment(whole, false, id), ++wire.number);
    wire.Show(fragment(whole, true, id), ++wire.number);
  }
  ASSERT_TRUE(Has(wire.view.Text(), "Request Line: POST /twice HTTP/1.1")) << wire.view.Text();
  const DecodeContext& context = wire.view.context();
  const auto size = static_cast<int64_t>(fragment(rest, true, 2).size());
  int32_t twice = 0;
  for (uint32_t i = 0; i < context.rangeCount; ++i) {
    BytePiece earlier[8];
    const OwnRange own = FindOwnRange(&context, context.rangeTable[i], earlier, 8);
    EXPECT_LE(RangeOffset(own.range) + int64_t{RangeLength(own.range)}, size) << i;
    twice += own.earlierCount > 1 && earlier[0].packet == 2 && earlier[0].length == 0;
    for (int32_t k = 0; k < own.earlierCount; ++k) EXPECT_LE(earlier[k].offset + earlier[k].length, 100) << i << " " << k;
  }
  EXPECT_GT(twice, 0);   // lines over both segments
}

// What looks like segments of TCP: the sequence number is a length and a place, the acknowledgment number the frame's own.
TEST(IpReassembly, PiecesOfTwoFramesOfAnSttTunnelDoNotMix) {
  Wire wire;
  const Bytes inner = Ethernet(0x0800, IPv4(17, Udp(9, 9, Bytes(40, 'x'))));
  Bytes frame{0, 6, 34, 0, 5, 0xB4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 7, 0, 0};
  frame.insert(frame.end(), inner.begin(), inner.end());
  const auto send = [&](size_t first, size_t length, uint32_t identification) {
    TcpParts parts;
    parts.sourcePort = 40000;
    parts.destinationPort = 7471;
    parts.sequence = static_cast<uint32_t>(frame.size() << 16 | first);
    parts.acknowledgement = identification;
    parts.flags = kAckPush;
    parts.payload = Part(frame, first, length);
    return wire.Show(Ethernet(0x0800, IPv4(6, Tcp(parts))), ++wire.number);
  };
  EXPECT_NE(send(0, 50, 1).find("50 bytes of fragments kept"), std::string::npos);
  EXPECT_NE(send(0, 30, 2).find("30 bytes of fragments kept"), std::string::npos);
  EXPECT_NE(send(50, 100, 1).find("UDP, [9]"), std::string::npos);
  EXPECT_NE(send(30, 100, 2).find("UDP, [9]"), std::string::npos);
}

// A control packet of OpenVPN with these TLS data, and its place in the capture.
std::string ShowControl(Wire& wire, uint8_t number, const Bytes& data, uint64_t packet) {
  const Bytes header = {0x20, 1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0, number};
  return wire.Show(Ethernet(0x0800, IPv4(17, Udp(5000, 1194, header + data))), packet);
}

TEST(DatagramReassembly, RecordsOverControlPacketsAreJoined) {
  const Bytes alert = Hex("15 0303 0002 0228"), change = Hex("14 0303 0001 01"), all = change + alert + alert;
  for (const bool joins : {false, true}) {
    Wire wire;
    wire.host.settings[0].second = joins ? "1" : "0";
    std::map<uint64_t, std::string> shown;
    // The third comes before the second, which comes twice.
    const std::vector<std::pair<uint8_t, size_t>> order = {{1, 0}, {3, 10}, {2, 5}, {2, 5}, {4, 15}};
    uint64_t packet = 0;
    for (const auto& [number, first] : order) {
      ++packet;
      shown[packet] = ShowControl(wire, number, Part(all, first, 5), packet);
    }
    const auto expect = [&](uint64_t at, const char* text) { EXPECT_TRUE(Has(shown[at], text)) << at << shown[at]; };
    if (joins) {
      expect(1, "TLS Data: 5 bytes (kept for the rest of their record) {56+5}");
      expect(2, "TLS Data: 5 bytes (kept, what is before them is missing) {56+5}");
      expect(3, "TLS Record: Change Cipher Spec, TLS 1.2, 1 bytes {56+1}");
      expect(3, "TLS Record: Alert, TLS 1.2, 2 bytes {57+4}");
      expect(4, "TLS Data: 5 bytes (came before)");
      expect(5, "TLS Record: Alert, TLS 1.2, 2 bytes {56+5}");
    } else {
      expect(1, "TLS Record: Change Cipher Spec, TLS 1.2, 1 bytes (cut) {56+5}");
      expect(2, "TLS Data: 5 bytes (continued)");
      expect(3, "TLS Record Continuation: Change Cipher Spec, 1 of 1 bytes {56+1}");
      expect(5, "TLS Data: 5 bytes (continued)");   // the one before it was not read
    }
    for (uint64_t at = packet; joins && at > 0; --at) {   // looked at again, backwards
      EXPECT_EQ(ShowControl(wire, order[at - 1].first, Part(all, order[at - 1].second, 5), at), shown[at]);
    }
  }
}

TEST(DatagramReassembly, FragmentsOfAHandshakeAreJoined) {
  const Bytes body = Hex("FEFD 20") + Bytes(32, 0xAB);   // a cookie
  const auto fragment = [&](uint8_t first, uint8_t length) {
    const Bytes header = {3, 0, 0, static_cast<uint8_t>(body.size()), 0, 0, 0, 0, first, 0, 0, length};
    const Bytes message = header + Part(body, first, length);
    const Bytes record = {22, 0xFE, 0xFD, 0, 0, 0, 0, 0, 0, 0, first, 0, static_cast<uint8_t>(message.size())};
    return Ethernet(0x0800, IPv4(17, Udp(5000, 443, record + message)));
  };
  Wire wire;
  EXPECT_TRUE(Has(wire.Show(fragment(20, 15), 1), "Reassembly: 15 bytes of fragments kept, 20 more needed {67+15}"));
  const std::string whole = wire.Show(fragment(0, 20), 2);
  EXPECT_TRUE(Has(whole, "Version: 0xFEFD = DTLS 1.2 {67+2}")) << whole;
  EXPECT_TRUE(Has(whole, "Cookie: ABABABABABABABABABABABABABABABABABABABABABABABABABABABABABABABAB {70+17}")) << whole;
}


// Three handshake messages of nine bytes each in fragments of ten; `station` tells one supplicant's from another's.
Bytes EapFragment(uint8_t identifier, size_t first, uint8_t station) {
  const Bytes done = Hex("16 0303 0004 0E000000"), message = done + done + done, part = Part(message, first, 10);
  const bool isFirst = first == 0, isLast = first + 10 >= message.size();
  Bytes method = {13, static_cast<uint8_t>((isFirst ? 0x80 : 0) | (isLast ? 0 : 0x40))};
  if (isFirst) method = method + Hex("0000001B");
  method = method + part;
  const uint8_t size = static_cast<uint8_t>(4 + method.size());
  Bytes frame = Ethernet(0x888E, Bytes{2, 0, 0, size, 2, identifier, 0, size} + method);
  frame[11] = station;
  return frame;
}

TEST(EapReassembly, FragmentsOfAMethodsMessageAreJoinedConversationByConversation) {
  Wire wire;
  EXPECT_TRUE(Has(wire.Show(EapFragment(250, 0, 7), 1), "Reassembly: 10 bytes of fragments kept, 17 more needed {28+10}"));
  wire.Show(EapFragment(9, 0, 8), 2);
  wire.Show(EapFragment(251, 10, 7), 3);
  EXPECT_TRUE(Has(wire.Show(EapFragment(251, 10, 7), 4), "20 bytes of fragments kept, 7 more needed"));   // said twice
  const std::string whole = wire.Show(EapFragment(252, 20, 7), 5);
  EXPECT_TRUE(Has(whole, "TLS Record: Handshake, TLS 1.2, 4 bytes {24+7}")) << whole;
  EXPECT_TRUE(Has(wire.Show(EapFragment(252, 20, 7), 5), "TLS Record: Handshake, TLS 1.2, 4 bytes {24+7}"));   // looked at again
  EXPECT_TRUE(Has(wire.Show(EapFragment(11, 20, 8), 6), "TLS Message Continued {24+7}"));   // one before it was lost
  EXPECT_TRUE(Has(wire.Show(EapFragment(12, 0, 8), 7), "10 bytes of fragments kept, 17 more needed"));
}

}  // namespace
}  // namespace qxview::testing
