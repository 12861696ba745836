// The view of packets that are being captured: another process captures into a file, which loses none however long somebody
// looks at one packet, and the view shows the file as it grows.
#pragma once
#include <functional>
#include <string>

namespace qxview {

// A name for packets that nobody keeps; empty, with what is wrong, when there is none. The file goes with ViewLive.
std::string MakeLiveFile(std::string* message);

// capture: fills the file at the path and tells on standard error how it went; the process that runs it ends with the view.
// view: shows the file. The exit status of either, the capture's when nothing came of it.
int ViewLive(const std::string& path, bool isKept, const std::function<int()>& capture, const std::function<int()>& view);

}  // namespace qxview
