// Views of their own on threads of their own, as a C++ program builds them against the installed library: every thread
// decodes the captures that are named, each in an order of its own, and all have to see the same. Prints how many lines.
#include <qxview/qxview.h>
#include <qxview/qxview_functions.h>

#include <cstdio>
#include <map>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

static_assert(std::is_same_v<decltype(&QxView_VisitLines), QxView_VisitLinesFunction>);

namespace {

struct Seen {
  std::map<std::string, std::string> text;   // by capture
  std::vector<std::string> messages;
  int lines = 0;
};

int32_t Keep(void* user, const QxLineInfo* line) {
  auto* all = static_cast<std::string*>(user);
  return all->append(line->text, static_cast<size_t>(line->textLength)).push_back('\n'), 0;
}

// A host that fills nothing in decodes like none.
void* MakeView(bool lent, Seen* seen) {
  static const QxHost empty{sizeof(uint32_t)};
  QxViewOptions options{};
  options.size = sizeof options;
  options.host = lent ? &empty : nullptr;
  options.settings = lent ? nullptr : "[View]\nDynamicDetection = 1\n";
  options.message = [](void* user, int32_t, const char* text) { static_cast<Seen*>(user)->messages.push_back(text); };
  options.messageUser = seen;
  return QxView_CreateViewWith(&options);
}

void DecodeAll(const std::vector<std::string>& captures, size_t first, Seen* seen) {
  for (size_t i = 0; i < captures.size(); ++i) {
    const std::string& path = captures[(first + i) % captures.size()];
    void* view = MakeView(first % 2 == 1, seen);
    void* capture = QxView_OpenCapture(path.c_str());
    QxPacket packet{};
    packet.size = sizeof packet;
    QxPacketLine line{};
    line.size = sizeof line;
    while (QxView_NextPacket(capture, &packet) == 1) {
      QxView_DecodeFrame(view, packet.record, 0, 0, 0);
      seen->lines += QxView_VisitLines(view, Keep, &seen->text[path]);
      if (QxView_PacketLine(view, &line) == 1) seen->text[path] += line.summary;
    }
    QxView_CloseCapture(capture);
    QxView_DestroyView(view);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> captures(argv + 1, argv + argc);
  std::vector<Seen> seen(4);
  std::vector<std::thread> threads;
  for (size_t i = 0; i < seen.size(); ++i) threads.emplace_back(DecodeAll, captures, i, &seen[i]);
  for (std::thread& thread : threads) thread.join();
  for (const Seen& other : seen) {
    if (other.text != seen[0].text || other.messages != seen[0].messages) return std::puts("threads differ"), 1;
  }
  std::printf("%d\n", seen[0].lines);
}
