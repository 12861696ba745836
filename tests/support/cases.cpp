#include "tests/support/cases.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/crypto.h"

namespace qxview::testing {
namespace {

// A quoted text at `at`, which is moved behind it: as in C, with \r, \n, \0, \xNN, \" and \\.
std::string TakeText(const std::string& line, size_t& at) {
  std::string text;
  for (++at; at < line.size() && line[at] != '"'; ++at) {
    if (line[at] != '\\') {
      text += line[at];
    } else if (line[++at] == 'x') {
      text += static_cast<char>(std::stoi(line.substr(at + 1, 2), nullptr, 16));
      at += 2;
    } else {
      const char escape = line[at];
      text += escape == 'r' ? '\r' : escape == 'n' ? '\n' : escape == '0' ? '\0' : escape;
    }
  }
  ++at;
  return text;
}

void AddBytes(Bytes& bytes, const std::string& line) {
  for (size_t at = 0; at < line.size() && line[at] != '#';) {
    const bool isWide = line[at] == 'u';
    if (line[at] == ' ') {
      ++at;
    } else if (line[at] == '"' || isWide) {
      at += isWide;
      for (const char c : TakeText(line, at)) {
        bytes.push_back(static_cast<uint8_t>(c));
        if (isWide) bytes.push_back(0);
      }
    } else {
      const size_t end = std::min(line.find(' ', at), line.size());
      const std::string word = line.substr(at, end - at);
      const size_t star = word.find('*');
      const Bytes digits = Hex(star == std::string::npos ? word : word.substr(star + 1));
      bytes = bytes + (star == std::string::npos ? digits : Repeat(digits, std::stoul(word)));
      at = end;
    }
  }
}

// "= table name [options]: title".
DecodeCase CaseHead(const std::string& line) {
  DecodeCase made;
  const size_t colon = line.find(": "), bracket = line.find(" [");
  const std::string name = line.substr(2, std::min(bracket, colon) - 2);
  if (colon != std::string::npos) made.title = line.substr(colon + 2);
  Payload& payload = made.payload;
  payload.row = RowNamed(name);
  EXPECT_TRUE(payload.row) << "no such row of the registry: " << line;
  if (payload.row && name.starts_with("medium ")) payload.mediaType = static_cast<uint8_t>(payload.row->key);
  if (bracket < colon) {
    std::istringstream words(line.substr(bracket + 2, line.find(']') - bracket - 2));
    for (std::string word; words >> word;) {
      if (word == "tcp") payload.overTcp = true;
      if (word == "modern") payload.modern = true;
      if (word.starts_with("to=")) payload.toPort = static_cast<uint16_t>(std::stoi(word.substr(3)));
      if (word.starts_with("link=")) payload.linkType = static_cast<uint16_t>(std::stoi(word.substr(5)));
      if (word.starts_with("extension=")) payload.extension = Hex(word.substr(10));
    }
  }
  return made;
}

}  // namespace

std::vector<std::string> CaseFiles() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(QXVIEW_CASES_DIR)) {
    names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<DecodeCase> CasesOf(const std::string& name) {
  std::vector<DecodeCase> cases;
  std::ifstream file(QXVIEW_CASES_DIR "/" + name + ".txt");
  EXPECT_TRUE(file) << name;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("= ")) {
      cases.push_back(CaseHead(line));
    } else if (line == "-") {
      cases.back().isSeed = false;
    } else if (!line.empty() && !cases.empty()) {
      DecodeCase& last = cases.back();
      last.isSeed ? AddBytes(last.payload.bytes, line) : last.tree.push_back(line);
    }
  }
  return cases;
}

PayloadRun RunPayload(View& view, const Payload& payload, bool isTried) {
  const uint16_t tag = payload.extension.empty() ? 0 : payload.mediaType == 6 ? kExtensionAtm : kExtensionMedium;
  Record record(payload.bytes, payload.mediaType, tag, payload.extension);
  record->linkType = payload.linkType;
  ClearDecodeTree(&view, view.tree, true);
  view.engine->settings.dnsRecords = view.engine->settings.ignoreChecksums = payload.modern;
  PacketState& packet = view.context->packet = PacketState{};
  const Cursor c = MakeCursor(FrameData(record.get()), 0, static_cast<int32_t>(payload.bytes.size()));
  packet.frame = record.get();
  BeginLines(packet, c.left);
  packet.protocol = payload.row->protocol->key;
  packet.ipProtocol = payload.overTcp ? 6 : 17;
  packet.destinationPort = payload.toPort;
  packet.network.totalLength = c.left;
  packet.segment = {c.at, payload.overTcp ? c.left : 0, 0, 0, payload.overTcp};
  ForgetOrigins(view.context->origins);   // a frame begins
  const uint64_t before = CountAllocations();
  const Place at = TopLevel(&view, kFirstLevel);
  const int32_t result = isTried ? TryDecoder(at, c, payload.row->decode, nullptr) : payload.row->decode(at, c);
  packet.frame = nullptr;
  const int32_t lines = MostLinesOf(c.left) - packet.linesLeft;
  return {lines, CountAllocations() - before, result != 0 || lines > 0};
}

const DecoderRow* RowNamed(const std::string& name) {
  for (int32_t table = 0; table <= static_cast<int32_t>(DoorKind::kApplication); ++table) {
    const char* tableName;
    const DecoderRowSpan span = RegistryTable(static_cast<DoorKind>(table), &tableName);
    for (int32_t i = 0; i < span.count; ++i) {
      if (name == std::string(tableName) + " " + span.rows[i].name) return &span.rows[i];
    }
  }
  return nullptr;
}

bool HasLibcrypto() {
  uint8_t digest[kMostHash];
  TestView test;
  return HashOf(&test.view(), HashKind::kSha1, {}, digest);
}

}  // namespace qxview::testing
