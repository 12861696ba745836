#include "paper/page_store.h"

#include <cstring>

namespace qxview {
namespace {

void PutText(std::string* out, const std::string& text) {
  const auto length = static_cast<uint32_t>(text.size());
  out->append(reinterpret_cast<const char*>(&length), sizeof length);
  *out += text;
}

// Takes a text from the front; what the file does not hold is empty.
std::string TakeText(std::string_view* from) {
  uint32_t length = 0;
  if (from->size() < sizeof length) return *from = {}, std::string();
  std::memcpy(&length, from->data(), sizeof length);
  from->remove_prefix(sizeof length);
  const std::string text(from->substr(0, length));
  from->remove_prefix(text.size());
  return text;
}

}  // namespace

std::unique_ptr<PageStore> PageStore::Create(std::string* reason) {
  std::unique_ptr<PageStore> store(new PageStore);
  store->file_ = TemporaryFile::Create(reason);
  return store->file_ ? std::move(store) : nullptr;
}

bool PageStore::Add(const Page& page) {
  made_.clear();
  for (const std::string* text : {&page.capture, &page.packets, &page.time}) PutText(&made_, *text);
  for (const PageRow& row : page.rows) {
    made_ += static_cast<char>(row.kind);
    PutText(&made_, row.text);
  }
  if (!file_->Append(made_.data(), made_.size())) return false;
  starts_.push_back(file_->Size());
  return true;
}

bool PageStore::Read(int64_t number, Page* page) const {
  if (number < 1 || number > Count()) return false;
  const uint64_t start = starts_[static_cast<size_t>(number) - 1];
  std::string made(static_cast<size_t>(starts_[static_cast<size_t>(number)] - start), '\0');
  if (file_->ReadAt(start, made.data(), made.size()) != made.size()) return false;
  std::string_view left = made;
  *page = {};
  page->number = number;
  for (std::string* text : {&page->capture, &page->packets, &page->time}) *text = TakeText(&left);
  while (!left.empty()) {
    const auto kind = static_cast<RowKind>(left[0]);
    left.remove_prefix(1);
    page->rows.push_back({TakeText(&left), kind});
  }
  return true;
}

}  // namespace qxview
