// The packet list's text for FTP (RFC 959): commands and reply codes of the control connection.
//
//   USER anonymous CR LF        a command of three or four letters and its argument
//   331 Password required CR LF a reply code, a blank (or a hyphen when more lines follow) and a message
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"

namespace qxview {
namespace {

// RFC 959, 775, 1639, 2228, 2389, 2428, 2640, 3659, 7151. Commands of three letters end in a zero.
constexpr uint32_t kCommands[] = {
    FourCharacters("ABOR"), FourCharacters("ACCT"), FourCharacters("ADAT"), FourCharacters("ALLO"),
    FourCharacters("APPE"), FourCharacters("AUTH"), FourCharacters("CCC\0"), FourCharacters("CDUP"),
    FourCharacters("CONF"), FourCharacters("CWD\0"), FourCharacters("DELE"), FourCharacters("ENC\0"),
    FourCharacters("EPRT"), FourCharacters("EPSV"), FourCharacters("FEAT"), FourCharacters("HELP"),
    FourCharacters("HOST"), FourCharacters("LANG"), FourCharacters("LIST"), FourCharacters("LPRT"),
    FourCharacters("LPSV"), FourCharacters("MDTM"), FourCharacters("MIC\0"), FourCharacters("MKD\0"),
    FourCharacters("MLSD"), FourCharacters("MLST"), FourCharacters("MODE"), FourCharacters("NLST"),
    FourCharacters("NOOP"), FourCharacters("OPTS"), FourCharacters("PASS"), FourCharacters("PASV"),
    FourCharacters("PBSZ"), FourCharacters("PORT"), FourCharacters("PROT"), FourCharacters("PWD\0"),
    FourCharacters("QUIT"), FourCharacters("REIN"), FourCharacters("REST"), FourCharacters("RETR"),
    FourCharacters("RMD\0"), FourCharacters("RNFR"), FourCharacters("RNTO"), FourCharacters("SITE"),
    FourCharacters("SIZE"), FourCharacters("SMNT"), FourCharacters("STAT"), FourCharacters("STOR"),
    FourCharacters("STOU"), FourCharacters("STRU"), FourCharacters("SYST"), FourCharacters("TYPE"),
    FourCharacters("USER"), FourCharacters("XCUP"), FourCharacters("XCWD"), FourCharacters("XMKD"),
    FourCharacters("XPWD"), FourCharacters("XRMD"),
};

bool IsCommand(const TextSlice& word) {
  if (word.length > 4) return false;
  const uint32_t key = FourCharacters(word);
  for (uint32_t command : kCommands) {
    if (command == key) return true;
  }
  return false;
}

void DescribeReply(SummaryText& text, const TextSlice& line, int32_t messageLimit) {
  constexpr int32_t kCode = 3, kMessage = 4;
  Add(text, "FTP Reply Code: ");
  Add(text, TextSlice{line.text, kCode});
  if (line.length <= kMessage || messageLimit == 0 || !IsPrintable(static_cast<uint8_t>(line.text[kMessage]))) return;
  int32_t length = line.length - kMessage;
  if (messageLimit > 0 && length > messageLimit) length = messageLimit;
  Add(text, ", Message: ");
  Add(text, TextSlice{line.text + kMessage, length});
}

}  // namespace

int32_t DescribeFtp(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t messageLimit,
                    int32_t isDataConnection) {
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  if (isDataConnection) return Add(text, "FTP Data "), 1;   // with its blank: callers put a size behind it
  const TextSlice line = FirstLine(data, length);
  if (line.length == 0) return 0;
  if (StartsWithReplyCode(line)) return DescribeReply(text, line, messageLimit), 1;
  constexpr int32_t kMostWord = 64;
  TextSlice word = FirstWord(line, nullptr);
  if (word.length == 0) return Add(text, "FTP Data"), 1;
  if (word.length > kMostWord) word.length = kMostWord;
  Add(text, "FTP Command: ");
  Add(text, IsCommand(word) ? line : word);
  return 1;
}

}  // namespace qxview
