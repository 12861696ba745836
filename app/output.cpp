#include "app/output.h"

#include <algorithm>

#include "app/commands.h"
#include "app/packet_run.h"
#include "app/progress.h"
#include "app/tree_writer.h"
#include "core/characters.h"
#include "platform/interruption.h"
#include "platform/new_file.h"
#include "platform/platform.h"

namespace qxview {

Output::Output() {
  OpenOutput(&file_, FileSink(StandardOutputFile()));
  SetIdleAction([](void* output) { static_cast<Output*>(output)->Flush(); }, this);
  YieldTerminal(StandardOutputFile());
}

Output::~Output() { SetIdleAction(nullptr, nullptr); }

int32_t Output::WriteEscaped(void* output, const char* bytes, int32_t length) {
  Output& self = *static_cast<Output*>(output);
  Output shown(self.terminal_);
  std::string_view text{bytes, static_cast<size_t>(length)};
  while (!text.empty()) {
    if (self.endsInReturn_ && text[0] != '\n') shown.Put("\\x0D");
    const size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    self.endsInReturn_ = line.ends_with('\r');
    if (self.endsInReturn_) line.remove_suffix(1);
    PutSafeText(shown, line);
    if (end == text.size()) break;
    shown.Put('\n');   // the terminal's own line end, in front of which the return says nothing
    self.endsInReturn_ = false;
    text.remove_prefix(end + 1);
  }
  shown.Flush();
  return shown.Failed() ? 0 : 1;
}

void Output::EscapeForTerminal() {
  if (!IsTerminal(file_.sink.descriptor)) return;
  terminal_ = file_.sink;
  file_.sink.handle = this;
  file_.sink.write = WriteEscaped;
  file_.sink.moveBack = [](void*, int64_t) { return int32_t{0}; };   // what a terminal has shown stays
}

void Output::SetLinePrefix(std::string_view file) {
  if (named_ == file) return;
  Flush();
  named_ = file;
  prefix_.clear();
  for (const char c : file) prefix_ += static_cast<uint8_t>(c) < 0x20 || c == 0x7F ? '?' : c;
  prefix_ += "  ";
  if (target_.write) return;
  target_ = file_.sink;
  file_.sink = {this,
                [](void* output, const char* bytes, int32_t length) {
                  return static_cast<Output*>(output)->WritePrefixed({bytes, static_cast<size_t>(length)});
                },
                [](void* output, int64_t bytes) {
                  const OutputSink& target = static_cast<Output*>(output)->target_;
                  return target.moveBack(target.handle, bytes);
                },
                target_.descriptor};
}

void Output::PutPrefixed(std::string_view lines) {
  if (!target_.write) return Put(lines);
  Flush();
  if (!file_.failed && target_.write(target_.handle, lines.data(), static_cast<int32_t>(lines.size())) != 1) file_.failed = true;
}

int32_t Output::WritePrefixed(std::string_view bytes) {
  prefixed_.clear();
  while (!bytes.empty()) {
    const size_t length = std::min(bytes.find('\n'), bytes.size() - 1) + 1;
    if (atLineStart_ && bytes[0] != '\n' && bytes[0] != '\r') prefixed_ += prefix_;
    prefixed_ += bytes.substr(0, length);
    atLineStart_ = bytes[length - 1] == '\n';
    bytes.remove_prefix(length);
  }
  return target_.write(target_.handle, prefixed_.data(), static_cast<int32_t>(prefixed_.size()));
}

int OutputFault() {
  Tell("standard output: " + WriteFailure());
  return kFileFault;
}

bool MayLackItsEnd(const ReadingOptions& options, int status) {
  if (IsInputEnded()) return !options.live && std::any_of(options.files.begin(), options.files.end(), IsDiskFile);
  return status == kFileFault && !options.keepGoing;
}

int KeepFile(NewFile* file, const std::string& name, bool written, const ReadingOptions& options, int status) {
  std::string message;
  if (!written) return Tell(name + ": " + WriteFailure()), kFileFault;
  if (MayLackItsEnd(options, status) && file->Replaces()) return Tell(name + ": stays as it was"), status;
  if (!file->Keep(&message)) return Tell(message), kFileFault;
  return status;
}

// UTF-8 to Windows-1252: see the header.
bool ToLineText(std::string_view text, std::string* out, std::string* missing) {
  out->clear();
  for (size_t at = 0; at < text.size();) {
    const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data()) + at;
    const Utf8Character next = Utf8At(bytes, static_cast<int32_t>(text.size() - at));
    const uint8_t character = next.octets ? Windows1252Of(next.code) : bytes[0];
    if (character == 0 && next.code != 0) {
      *missing = text.substr(at, static_cast<size_t>(next.octets));
      return false;
    }
    *out += static_cast<char>(character);
    at += next.octets ? static_cast<size_t>(next.octets) : 1;
  }
  return true;
}

}  // namespace qxview
