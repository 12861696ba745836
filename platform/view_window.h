// The window of a packet view: the packets that the host lends in a list, the decode tree in a tree control of the platform,
// the packet's bytes. Where there is no desktop there is none, and the functions below say so with null or false.
#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "host/packet_selection.h"
#include "host/session.h"
#include "paper/packet_pages.h"
#include "qxview/qxview_host.h"

namespace qxview {

// In the parent's client area. A width or height below 1 fills it, from then on whenever the window is fitted.
struct WindowPlace {
  int32_t left, top, width, height;
};

// A packet in a window's list. Texts are in the characters of lines.
struct ListedPacket {
  int64_t nanoseconds;
  uint32_t length;   // on the wire
  std::string source, destination, summary;
};

// Pages that are being made.
class PagesRun {
 public:
  virtual ~PagesRun() = default;
  // Goes over so many packets at most; false when the last page was put, or the printing ended.
  virtual bool Advance(int32_t packets) = 0;
  // Packets that it went over.
  virtual uint64_t Looked() const = 0;
};

struct PrintChoice {
  PacketSelection packets;
  PaperParts parts;
  std::string title;   // in each page's head, in UTF-8
  PageGrid grid;
};

// What stands behind a window: the packets that it lists, and what it asks of the program around.
class WindowPackets {
 public:
  virtual ~WindowPackets() = default;
  // Packets that can be listed, numbered from 1; 0 where the host lends none.
  virtual uint64_t Count() = 0;
  // The packet's record, good until the next call of anything here; null when it is not there any more.
  virtual const FrameRecord* Lend(uint64_t number) = 0;
  virtual bool Describe(uint64_t number, ListedPacket* out) = 0;
  // Decodes the packet into the view.
  virtual bool Show(uint64_t number) = 0;
  // Hands what the user asked for to the host; false when the host does not do that. With null: whether it would.
  virtual bool Ask(const QxViewRequest* request) = 0;
  // Saves the shown packet's lines as text; false with what is wrong.
  virtual bool SaveText(const std::string& path, std::string* wrong) = 0;
  // Puts packets on pages, as the print mode writes them and with what those in front of them teach. Null when there is no memory.
  virtual std::unique_ptr<PagesRun> StartPages(const PrintChoice& choice, PageBreaker::PutPage put) = 0;
};

// Makes the session's window, as a child of `parent` or with null as a window of its own, and shows the session in it
// until the window is destroyed, by whomever. Null when the session has one already, or when it cannot be made. packets:
// null for a window without a list.
void* OpenViewWindow(Session* session, void* parent, const WindowPlace& place, WindowPackets* packets = nullptr);

// The session decoded this frame into its tree: the other panes follow.
void ShowFrameInWindow(Session* session, const FrameRecord* record);

// False when the session has no window.
bool CloseViewWindow(Session* session);
bool FitViewWindow(Session* session);       // to its place, with the selected line in sight
bool FocusViewWindow(Session* session);     // the tree takes the keyboard

}  // namespace qxview
