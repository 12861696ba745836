#include "platform/win32/gdi_pages.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "platform/win32/wide_text.h"

namespace qxview {
namespace {

// Pages are drawn in hundredths of a point, whatever the device's pixels are.
constexpr double kUnits = 100;
int Units(double points) { return static_cast<int>(std::lround(points * kUnits)); }

constexpr COLORREF Gray(double level) {
  const auto value = static_cast<BYTE>(level * 255);
  return RGB(value, value, value);
}

int CALLBACK TakeFontFound(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM found) {
  *reinterpret_cast<bool*>(found) = true;
  return 0;
}

bool HasFont(HDC screen, const wchar_t* name) {
  LOGFONTW wanted{};
  wanted.lfCharSet = DEFAULT_CHARSET;
  lstrcpynW(wanted.lfFaceName, name, LF_FACESIZE);
  bool found = false;
  EnumFontFamiliesExW(screen, &wanted, TakeFontFound, reinterpret_cast<LPARAM>(&found), 0);
  return found;
}

// The first of the fonts that is there; else whatever the system takes for one of its kind.
template <size_t kCount>
HFONT MakeFont(HDC screen, const wchar_t* const (&names)[kCount], BYTE kind, int height, int weight) {
  const wchar_t* name = L"";
  for (size_t i = 0; i < kCount && !name[0]; ++i) {
    if (HasFont(screen, names[i])) name = names[i];
  }
  return CreateFontW(-height, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS,
                     ANTIALIASED_QUALITY, kind, name);
}
constexpr const wchar_t* kFixedFonts[] = {L"Consolas", L"DejaVu Sans Mono", L"Liberation Mono", L"Courier New"};
constexpr const wchar_t* kHeadFonts[] = {L"Segoe UI", L"DejaVu Sans", L"Liberation Sans", L"Arial"};
constexpr BYTE kFixed = FIXED_PITCH | FF_MODERN, kVariable = VARIABLE_PITCH | FF_SWISS;

void Fill(HDC target, double left, double top, double width, double height, COLORREF color) {
  const RECT area{Units(left), Units(top), Units(left + width), Units(top + height)};
  const COLORREF before = SetBkColor(target, color);
  ExtTextOutW(target, 0, 0, ETO_OPAQUE, &area, L"", 0, nullptr);
  SetBkColor(target, before);
}

void PutText(HDC target, double x, double baseline, const std::wstring& text) {
  ExtTextOutW(target, Units(x), Units(baseline), 0, nullptr, text.data(), static_cast<UINT>(text.size()), nullptr);
}

double WidthOf(HDC target, const std::wstring& text) {
  SIZE size{};
  GetTextExtentPoint32W(target, text.data(), static_cast<int>(text.size()), &size);
  return size.cx / kUnits;
}

// As much of the text's beginning and end as there is room for.
std::wstring CutInTheMiddle(HDC target, const std::wstring& text, double room) {
  if (WidthOf(target, text) <= room) return text;
  size_t least = 0, most = text.size();   // characters that are kept
  while (least < most) {
    const size_t kept = (least + most + 1) / 2;
    const std::wstring cut = text.substr(0, kept - kept / 2) + L"\u2026" + text.substr(text.size() - kept / 2);
    if (WidthOf(target, cut) <= room) least = kept; else most = kept - 1;
  }
  return text.substr(0, least - least / 2) + L"\u2026" + text.substr(text.size() - least / 2);
}

}  // namespace

GdiPages::GdiPages(const PaperForm& form) : form_(form) {
  // The cell is the font's own, from its outlines: a page has as many columns on every device.
  constexpr int kLarge = 2048, kMeasured = 64;
  const HDC screen = CreateCompatibleDC(nullptr);
  const HFONT large = MakeFont(screen, kFixedFonts, kFixed, kLarge, FW_NORMAL);
  const HGDIOBJ before = SelectObject(screen, large);
  SIZE size{};
  GetTextExtentPoint32W(screen, std::wstring(kMeasured, L'0').data(), kMeasured, &size);
  SelectObject(screen, before);
  DeleteObject(large);
  const double share = size.cx > 0 ? static_cast<double>(size.cx) / kMeasured / kLarge : 0.6;
  cell_ = {form.fontSize * share, form.fontSize * kLineHeight};
  plain_ = MakeFont(screen, kFixedFonts, kFixed, Units(form.fontSize), FW_NORMAL);
  bold_ = MakeFont(screen, kFixedFonts, kFixed, Units(form.fontSize), FW_BOLD);
  head_ = MakeFont(screen, kHeadFonts, kVariable, Units(form.fontSize), FW_NORMAL);
  DeleteDC(screen);
}

GdiPages::~GdiPages() {
  for (const HFONT font : {plain_, bold_, head_}) DeleteObject(font);
}

void GdiPages::Draw(HDC target, const Page& page, const SheetPlace& sheet, size_t place) const {
  const Sheet whole = SheetOf(form_);
  const Sheet::Place& at = whole.places[place % whole.places.size()];
  const int saved = SaveDC(target);
  SetMapMode(target, MM_ANISOTROPIC);
  // A long stretch on both sides, so that the scale is exact.
  constexpr double kStretch = 10000;
  SetWindowExtEx(target, Units(kStretch), Units(kStretch), nullptr);
  SetViewportExtEx(target, static_cast<int>(std::lround(kStretch * at.scale * sheet.pixelsAcross)),
                   static_cast<int>(std::lround(kStretch * at.scale * sheet.pixelsDown)), nullptr);
  SetViewportOrgEx(target, static_cast<int>(std::lround(sheet.left + at.x * sheet.pixelsAcross)),
                   static_cast<int>(std::lround(sheet.top + at.y * sheet.pixelsDown)), nullptr);
  SetBkMode(target, TRANSPARENT);
  SetTextAlign(target, TA_BASELINE | TA_LEFT);
  DrawHead(target, page);
  for (size_t i = 0; i < page.rows.size(); ++i) DrawRow(target, page.rows[i], static_cast<int32_t>(i));
  RestoreDC(target, saved);
}

void GdiPages::DrawHead(HDC target, const Page& page) const {
  const PaperMargins& margins = form_.margins;
  const double left = margins.left, right = form_.width - margins.right, top = margins.top;
  const double baseline = form_.fontSize * kBaseline, gap = 2 * cell_.width;
  SelectObject(target, head_);
  SetTextColor(target, Gray(kGray));
  const std::wstring about = WideOf(page.packets + "    " + page.time), number = WideOf(std::to_string(page.number));
  const double aboutWidth = WidthOf(target, about);
  PutText(target, right - aboutWidth, top + baseline, about);
  const double room = std::max(right - left - aboutWidth - gap, gap);
  PutText(target, left, top + baseline, CutInTheMiddle(target, WideOf(page.capture), room));
  Fill(target, left, top + kRuleAt * cell_.height, right - left, kRuleHeight, Gray(kRule));
  const double foot = form_.height - margins.bottom - cell_.height;
  PutText(target, (form_.width - WidthOf(target, number)) / 2, foot + baseline, number);
}

void GdiPages::DrawRow(HDC target, const PageRow& row, int32_t index) const {
  const double left = form_.margins.left, width = form_.width - left - form_.margins.right;
  const double y = form_.margins.top + (kHeadLines + index) * cell_.height;
  if (row.kind == RowKind::kPacket) {
    Fill(target, left - kBandBeyond, y - 0.04 * cell_.height, width + 2 * kBandBeyond, cell_.height, Gray(kBand));
  }
  if (row.text.empty()) return;
  SelectObject(target, row.kind == RowKind::kLine ? plain_ : bold_);
  SetTextColor(target, Gray(kBlack));
  // Every character has its cell, whatever the device makes of the font's widths; the halves of a pair share one.
  const std::wstring text = WideOf(row.text);
  std::vector<INT> advances(text.size());
  int32_t cells = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool isFirstHalf = text[i] >= 0xD800 && text[i] < 0xDC00;
    const int before = Units(cells * cell_.width);
    advances[i] = isFirstHalf ? 0 : Units(++cells * cell_.width) - before;
  }
  ExtTextOutW(target, Units(left), Units(y + form_.fontSize * kBaseline), 0, nullptr, text.data(), static_cast<UINT>(text.size()),
              advances.data());
}

}  // namespace qxview
