#include "platform/win32/printer.h"

// Behind windows.h, whose types it uses.
#include <commdlg.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/win32/wide_text.h"

namespace qxview {
namespace {

constexpr double kPointsPerInch = 72, kHundredthsPerInch = 2540;

// The dialogs are loaded when the first one is asked for, as those for files are.
template <class Function>
Function* FindDialog(const char* name) {
  static const HMODULE dialogs = LoadLibraryW(L"comdlg32.dll");
  return dialogs ? reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(dialogs, name))) : nullptr;
}

// A block of the system's for as long as it is read.
template <class Held>
class Locked {
 public:
  explicit Locked(HGLOBAL block) : block_(block), held_(block ? static_cast<const Held*>(GlobalLock(block)) : nullptr) {}
  ~Locked() {
    if (held_) GlobalUnlock(block_);
  }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;
  explicit operator bool() const { return held_ != nullptr; }
  const Held* operator->() const { return held_; }
  const Held* Get() const { return held_; }

 private:
  HGLOBAL block_;
  const Held* held_;
};

const wchar_t* NameAt(const Locked<DEVNAMES>& names, WORD offset) {
  return reinterpret_cast<const wchar_t*>(names.Get()) + offset;
}

bool IsLetterCountry() {
  wchar_t size[4] = L"";
  GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_IPAPERSIZE, size, 4);
  return size[0] == L'1';
}

}  // namespace

Printer::~Printer() {
  if (mode_) GlobalFree(mode_);
  if (names_) GlobalFree(names_);
}

void Printer::TakeDefault() {
  if (asked_) return;
  asked_ = true;
  const auto ask = FindDialog<BOOL WINAPI(PRINTDLGW*)>("PrintDlgW");
  PRINTDLGW dialog{};
  dialog.lStructSize = sizeof dialog;
  dialog.Flags = PD_RETURNDEFAULT | PD_NOWARNING;
  if (!ask || !ask(&dialog)) return;
  mode_ = dialog.hDevMode;
  names_ = dialog.hDevNames;
}

HDC Printer::MakeContext(bool toPrint, bool turned) const {
  const Locked<DEVNAMES> names(names_);
  const Locked<DEVMODEW> mode(mode_);
  if (!names) return nullptr;
  std::vector<BYTE> copy;
  DEVMODEW* used = nullptr;
  if (mode) {
    const auto* bytes = reinterpret_cast<const BYTE*>(mode.Get());
    copy.assign(bytes, bytes + mode->dmSize + mode->dmDriverExtra);
    used = reinterpret_cast<DEVMODEW*>(copy.data());
    const bool lies = used->dmOrientation == DMORIENT_LANDSCAPE;
    if (turned) used->dmOrientation = lies ? DMORIENT_PORTRAIT : DMORIENT_LANDSCAPE;
    if (turned) used->dmFields |= DM_ORIENTATION;
  }
  const auto create = toPrint ? CreateDCW : CreateICW;
  return create(NameAt(names, names->wDriverOffset), NameAt(names, names->wDeviceOffset), nullptr, used);
}

HDC Printer::Open(const PaperForm& form) const { return MakeContext(true, form.twoUp); }

PaperForm Printer::Form(double fontSize, bool twoUp) const {
  const auto points = [](LONG hundredths) { return hundredths * kPointsPerInch / kHundredthsPerInch; };
  PaperForm form;
  form.fontSize = fontSize;
  form.twoUp = twoUp;
  form.margins = {points(margins_.left), points(margins_.top), points(margins_.right), points(margins_.bottom)};
  if (paper_.x > 0 && paper_.y > 0) {
    form.width = points(paper_.x);
    form.height = points(paper_.y);
  } else if (IsLetterCountry()) {
    form.width = 612;
    form.height = 792;
  }
  const HDC printer = MakeContext(false, false);
  if (!printer) return form;
  const double across = GetDeviceCaps(printer, LOGPIXELSX) / kPointsPerInch;
  const double down = GetDeviceCaps(printer, LOGPIXELSY) / kPointsPerInch;
  const int width = GetDeviceCaps(printer, PHYSICALWIDTH), height = GetDeviceCaps(printer, PHYSICALHEIGHT);
  if (across > 0 && down > 0 && width > 0 && height > 0) {
    const int left = GetDeviceCaps(printer, PHYSICALOFFSETX), top = GetDeviceCaps(printer, PHYSICALOFFSETY);
    form.width = width / across;
    form.height = height / down;
    form.margins.left = std::max(form.margins.left, left / across);
    form.margins.top = std::max(form.margins.top, top / down);
    form.margins.right = std::max(form.margins.right, (width - left - GetDeviceCaps(printer, HORZRES)) / across);
    form.margins.bottom = std::max(form.margins.bottom, (height - top - GetDeviceCaps(printer, VERTRES)) / down);
  }
  DeleteDC(printer);
  return form;
}

std::string Printer::Describe() const {
  const Locked<DEVNAMES> names(names_);
  const PaperForm form = Form(1, false);
  const auto millimetres = [](double points) { return std::to_string(std::lround(points / kPointsPerMillimetre)); };
  return (names ? NarrowOf(NameAt(names, names->wDeviceOffset)) : "No printer") + ": " + millimetres(form.width) + " x " +
         millimetres(form.height) + " mm";
}

bool Printer::SetUp(HWND owner) {
  const auto ask = FindDialog<BOOL WINAPI(PAGESETUPDLGW*)>("PageSetupDlgW");
  PAGESETUPDLGW dialog{};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = owner;
  dialog.hDevMode = mode_;
  dialog.hDevNames = names_;
  dialog.rtMargin = margins_;
  dialog.Flags = PSD_MARGINS | PSD_INHUNDREDTHSOFMILLIMETERS;
  const bool taken = ask && ask(&dialog);
  mode_ = dialog.hDevMode;   // it may have moved them
  names_ = dialog.hDevNames;
  if (!taken) return false;
  margins_ = dialog.rtMargin;
  paper_ = dialog.ptPaperSize;
  return true;
}

bool Printer::Ask(HWND owner, int64_t mostPages, Wanted* wanted) {
  constexpr int64_t kMostPages = 0xFFFF;   // that the dialog knows
  const auto ask = FindDialog<BOOL WINAPI(PRINTDLGW*)>("PrintDlgW");
  PRINTDLGW dialog{};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = owner;
  dialog.hDevMode = mode_;
  dialog.hDevNames = names_;
  dialog.Flags = PD_NOSELECTION | PD_USEDEVMODECOPIESANDCOLLATE;
  dialog.nFromPage = dialog.nMinPage = 1;
  dialog.nToPage = dialog.nMaxPage = static_cast<WORD>(mostPages > 0 ? std::min(mostPages, kMostPages) : kMostPages);
  dialog.nCopies = 1;
  const bool taken = ask && ask(&dialog);
  mode_ = dialog.hDevMode;
  names_ = dialog.hDevNames;
  if (!taken) return false;
  *wanted = {};
  wanted->copies = std::max<int32_t>(dialog.nCopies, 1);
  wanted->toFile = dialog.Flags & PD_PRINTTOFILE;
  if (dialog.Flags & PD_PAGENUMS) {
    wanted->firstPage = dialog.nFromPage;
    wanted->lastPage = dialog.nToPage;
  }
  return true;
}

}  // namespace qxview
