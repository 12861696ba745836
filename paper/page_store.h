// Pages that are kept until somebody wants to see or print one of them: in a temporary file, so that it may be any number of them.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "files/temporary_file.h"
#include "paper/pages.h"

namespace qxview {

class PageStore {
 public:
  // Null with a reason.
  static std::unique_ptr<PageStore> Create(std::string* reason);
  // The next page, without its bookmarks; false when there is no room for it.
  bool Add(const Page& page);
  int64_t Count() const { return static_cast<int64_t>(starts_.size()) - 1; }
  // From 1; false for one that is not there.
  bool Read(int64_t number, Page* page) const;

 private:
  PageStore() = default;
  std::shared_ptr<TemporaryFile> file_;
  std::vector<uint64_t> starts_{0};   // of each page, and of the next one
  std::string made_;
};

}  // namespace qxview
