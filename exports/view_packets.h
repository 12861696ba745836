// The packets behind a view's window: those that the host lends from its capture buffer.
#pragma once
#include <memory>
#include <string>

#include "exports/exported_view.h"
#include "platform/view_window.h"

namespace qxview {

class ViewPackets final : public WindowPackets {
 public:
  explicit ViewPackets(ExportedView* view) : view_(view), host_(view->session->GetEngine()->host) {}

  uint64_t Count() override;
  const FrameRecord* Lend(uint64_t number) override;
  bool Describe(uint64_t number, ListedPacket* out) override;
  bool Show(uint64_t number) override;
  bool Ask(const QxViewRequest* request) override;
  bool SaveText(const std::string& path, std::string* wrong) override;
  std::unique_ptr<PagesRun> StartPages(const PrintChoice& choice, PageBreaker::PutPage put) override;

 private:
  ExportedView* view_;
  const QxHost* host_;
  // Reads headers for the list, so that the shown packet stays as it is; made with the first row.
  std::unique_ptr<Session> rows_;
};

}  // namespace qxview
