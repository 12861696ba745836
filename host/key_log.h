// Key logs in the form of NSS (draft-ietf-tls-keylogfile): the secrets of TLS connections, a line each, from the file that
// the setting TlsKeyLog names and from captures that hold them.
//
//   CLIENT_RANDOM <32 bytes: the random of the client's hello> <48 bytes: the master secret>
//   CLIENT_HANDSHAKE_TRAFFIC_SECRET <32 bytes> <32 or 48 bytes>     and the other secrets of TLS 1.3 and QUIC
//   RSA <8 bytes: the beginning of the encrypted premaster secret> <48 bytes>
//
// All in hexadecimal digits. Files may be of any size, and lines of kinds that are not known here are passed over.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace qxview {

struct View;

class KeyLog {
 public:
  explicit KeyLog(const View* view) : view_(view) {}

  // The next piece, cut anywhere.
  void Take(std::string_view piece);
  // Behind the last one. What is wrong with the log, its first faulty line named; empty for nothing.
  std::string Finish();

 private:
  void TakeLine();
  void Blame(std::string fault);

  const View* view_;
  std::string line_;
  bool isTooLong_ = false;
  uint64_t lines_ = 0, secrets_ = 0, faults_ = 0, firstFault_ = 0;
  std::string fault_;
};

// Tells the view the secrets of a file. False when it cannot be read; `message` names it and what is wrong, in either
// case.
bool ReadKeyLog(const View* view, const char* path, std::string* message);

}  // namespace qxview
