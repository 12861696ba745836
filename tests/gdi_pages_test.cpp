// Pages drawn through GDI: every character in its cell, whatever the device is.
#ifdef _WIN32
#include "platform/win32/gdi_pages.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace qxview::testing {
namespace {

struct Text {
  std::wstring text;
  LONG x, y;
  std::vector<LONG> cells;   // where each character begins
};

int CALLBACK TakeRecord(HDC, HANDLETABLE*, const ENHMETARECORD* record, int, LPARAM texts) {
  if (record->iType != EMR_EXTTEXTOUTW) return 1;
  const auto* drawn = reinterpret_cast<const EMREXTTEXTOUTW*>(record);
  const auto* bytes = reinterpret_cast<const char*>(record);
  Text text{{}, drawn->emrtext.ptlReference.x, drawn->emrtext.ptlReference.y, {}};
  if (drawn->emrtext.nChars == 0) return 1;
  text.text.assign(reinterpret_cast<const wchar_t*>(bytes + drawn->emrtext.offString), drawn->emrtext.nChars);
  LONG at = 0;
  for (DWORD i = 0; i < drawn->emrtext.nChars; ++i) {
    LONG advance;
    text.cells.push_back(at);
    std::memcpy(&advance, bytes + drawn->emrtext.offDx + i * sizeof advance, sizeof advance);
    at += advance;
  }
  reinterpret_cast<std::vector<Text>*>(texts)->push_back(text);
  return 1;
}

std::vector<Text> TextsOf(const GdiPages& pages, const Page& page, const SheetPlace& place, size_t which) {
  const HDC target = CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr);
  pages.Draw(target, page, place, which);
  const HENHMETAFILE drawn = CloseEnhMetaFile(target);
  std::vector<Text> texts;
  EnumEnhMetaFile(nullptr, drawn, TakeRecord, &texts, nullptr);
  DeleteEnhMetaFile(drawn);
  return texts;
}

TEST(GdiPages, DrawTheSameOnEveryDevice) {
  PaperForm form;
  form.twoUp = true;
  const GdiPages pages(form);
  const PageGrid grid = GridOf(form, pages.Cell());
  EXPECT_TRUE(IsWorthPrinting(grid));
  Page page;
  page.number = 12;
  page.capture = std::string(400, 'a') + "\u0434\u0430\u043D\u043D\u044B\u0435.pcap";
  page.packets = "Packets 3 to 4";
  page.rows = {{"Packet 3:", RowKind::kPacket}, {"", RowKind::kLine}, {"    na\u00EFve \U0001F600 end", RowKind::kLine},
               {std::string(static_cast<size_t>(grid.columns), 'x'), RowKind::kTitle}};
  const std::vector<Text> texts = TextsOf(pages, page, {0, 0, 96 / 72.0, 96 / 72.0}, 0);
  ASSERT_EQ(texts.size(), 6u);
  EXPECT_NE(texts[1].text.find(L"\u2026"), std::wstring::npos) << "a long name is cut in its middle";
  EXPECT_TRUE(texts[1].text.front() == 'a' && texts[1].text.ends_with(L".pcap"));
  EXPECT_EQ(texts[2].text, L"12");
  EXPECT_EQ(texts[3].text, L"Packet 3:");
  const Text& row = texts[4];
  const size_t face = row.text.find(L'\xD83D');
  ASSERT_NE(face, std::wstring::npos);
  EXPECT_EQ(row.cells[face], row.cells[face + 1]) << "the halves of a pair share a cell";
  const double cell = pages.Cell().width * 100;
  EXPECT_NEAR(row.cells[10], 10 * cell, 1);
  EXPECT_NEAR(row.cells[face + 2], (face + 1) * cell, 1);
  const double room = form.width - form.margins.left - form.margins.right;
  EXPECT_LE(texts[5].cells.back() + cell, room * 100 + 1) << "a full row ends at the margin";
  const std::vector<Text> finer = TextsOf(pages, page, {-100, -100, 600 / 72.0, 600 / 72.0}, 1);
  ASSERT_EQ(finer.size(), texts.size());
  for (size_t i = 3; i < texts.size(); ++i) {
    EXPECT_EQ(finer[i].text, texts[i].text);
    EXPECT_EQ(finer[i].cells, texts[i].cells);
    EXPECT_TRUE(finer[i].x == texts[i].x && finer[i].y == texts[i].y);
  }
}

}  // namespace
}  // namespace qxview::testing
#endif
