#include "host/key_log.h"

#include <array>
#include <vector>

#include "core/budgets.h"
#include "core/tls_secrets.h"
#include "files/byte_source.h"
#include "host/text.h"

namespace qxview {
namespace {

struct LogLabel {
  const char* name;
  size_t idSize;                     // bytes
  size_t leastSecret, mostSecret;    // bytes
  bool isKept;
  TlsSecretKind kind;
};
constexpr LogLabel kLabels[] = {
    {"CLIENT_RANDOM", 32, 48, 48, true, TlsSecretKind::kMaster},
    {"PMS_CLIENT_RANDOM", 32, 1, 64, true, TlsSecretKind::kPremaster},
    {"CLIENT_EARLY_TRAFFIC_SECRET", 32, 32, 64, true, TlsSecretKind::kClientEarly},
    {"CLIENT_HANDSHAKE_TRAFFIC_SECRET", 32, 32, 64, true, TlsSecretKind::kClientHandshake},
    {"SERVER_HANDSHAKE_TRAFFIC_SECRET", 32, 32, 64, true, TlsSecretKind::kServerHandshake},
    {"CLIENT_TRAFFIC_SECRET_0", 32, 32, 64, true, TlsSecretKind::kClientTraffic},
    {"SERVER_TRAFFIC_SECRET_0", 32, 32, 64, true, TlsSecretKind::kServerTraffic},
    {"QUIC_CLIENT_EARLY_TRAFFIC_SECRET", 32, 32, 64, true, TlsSecretKind::kClientEarly},
    {"QUIC_CLIENT_HANDSHAKE_TRAFFIC_SECRET", 32, 32, 64, true, TlsSecretKind::kClientHandshake},
    {"QUIC_SERVER_HANDSHAKE_TRAFFIC_SECRET", 32, 32, 64, true, TlsSecretKind::kServerHandshake},
    {"QUIC_CLIENT_TRAFFIC_SECRET_0", 32, 32, 64, true, TlsSecretKind::kClientTraffic},
    {"QUIC_SERVER_TRAFFIC_SECRET_0", 32, 32, 64, true, TlsSecretKind::kServerTraffic},
    {"RSA", 8, 48, 48, true, TlsSecretKind::kEncryptedPremaster},
    // What nothing is encrypted with.
    {"EARLY_EXPORTER_SECRET", 32, 32, 64, false, {}},
    {"EARLY_EXPORTER_MASTER_SECRET", 32, 32, 64, false, {}},
    {"EXPORTER_SECRET", 32, 32, 64, false, {}},
};

std::vector<std::string_view> WordsOf(std::string_view line) {
  std::vector<std::string_view> words;
  for (size_t at = 0; at < line.size() && words.size() < 4;) {
    const size_t end = std::min(line.find_first_of(" \t\r", at), line.size());
    if (end > at) words.push_back(line.substr(at, end - at));
    at = end + 1;
  }
  return words;
}

int DigitOf(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  c = static_cast<char>(c | 0x20);
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

// The bytes that the digits stand for; -1 where they are none, or too many.
template <size_t kSize>
int32_t BytesOfDigits(std::string_view digits, std::array<uint8_t, kSize>& out) {
  if (digits.size() % 2 || digits.size() / 2 > kSize) return -1;
  for (size_t i = 0; i < digits.size(); i += 2) {
    const int high = DigitOf(digits[i]), low = DigitOf(digits[i + 1]);
    if (high < 0 || low < 0) return -1;
    out[i / 2] = static_cast<uint8_t>(high << 4 | low);
  }
  return static_cast<int32_t>(digits.size() / 2);
}

std::string SizeText(size_t least, size_t most) {
  return least == most ? std::to_string(2 * least) : std::to_string(2 * least) + " to " + std::to_string(2 * most);
}

}  // namespace

void KeyLog::Blame(std::string fault) {
  if (faults_++ > 0) return;
  firstFault_ = lines_;
  fault_ = std::move(fault);
}

void KeyLog::TakeLine() {
  ++lines_;
  const bool isTooLong = isTooLong_;
  isTooLong_ = false;
  if (isTooLong) return Blame("is longer than " + std::to_string(kMostKeyLogLine) + " bytes");
  const std::vector<std::string_view> words = WordsOf(line_);
  if (words.empty() || words[0][0] == '#') return;
  for (const LogLabel& label : kLabels) {
    if (words[0] != label.name) continue;
    std::array<uint8_t, kTlsRandomSize> id;
    std::array<uint8_t, kMostTlsSecret> secret;
    const int32_t idSize = words.size() > 1 ? BytesOfDigits(words[1], id) : -1;
    const int32_t size = words.size() > 2 ? BytesOfDigits(words[2], secret) : -1;
    const bool isGood = words.size() == 3 && idSize == static_cast<int32_t>(label.idSize) &&
                        size >= static_cast<int32_t>(label.leastSecret) && size <= static_cast<int32_t>(label.mostSecret);
    if (!isGood) {
      return Blame("wants " + SizeText(label.idSize, label.idSize) + " and " + SizeText(label.leastSecret, label.mostSecret) +
                   " hexadecimal digits behind " + label.name);
    }
    ++secrets_;
    if (label.isKept) RememberTlsSecret(view_, label.kind, {id.data(), idSize}, {secret.data(), size});
    return;
  }
}

void KeyLog::Take(std::string_view piece) {
  while (!piece.empty()) {
    const size_t end = piece.find('\n');
    const std::string_view part = piece.substr(0, end);
    isTooLong_ = isTooLong_ || line_.size() + part.size() > kMostKeyLogLine;
    if (!isTooLong_) line_ += part;
    if (end == std::string_view::npos) return;
    TakeLine();
    line_.clear();
    piece.remove_prefix(end + 1);
  }
}

std::string KeyLog::Finish() {
  if (!line_.empty() || isTooLong_) TakeLine();
  line_.clear();
  if (faults_ > 0) {
    return "line " + std::to_string(firstFault_) + " " + fault_ +
           (faults_ > 1 ? ", the first of " + std::to_string(faults_) + " faulty lines" : "");
  }
  return secrets_ == 0 && lines_ > 0 ? "there is no secret of TLS in it" : "";
}

bool ReadKeyLog(const View* view, const char* path, std::string* message) {
  const std::string name = path;
  std::string reason;
  const auto source = OpenFileSource(name == "-" ? "./-" : path, &reason);   // standard input is the capture's
  if (!source) return *message = name + ": this key log cannot be read: " + reason, false;
  KeyLog log(view);
  while (const uint8_t* bytes = source->Peek(1)) {
    const size_t count = source->Remaining();
    log.Take({reinterpret_cast<const char*>(bytes), count});
    source->Skip(count);
  }
  if (!source->Failure().empty()) {
    return *message = name + ": this key log cannot be read: " + source->Failure(), false;
  }
  const std::string fault = log.Finish();
  *message = fault.empty() ? "" : name + ": in this key log " + fault;
  return true;
}

}  // namespace qxview
