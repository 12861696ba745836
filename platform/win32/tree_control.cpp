#include "platform/win32/tree_control.h"

#include <windows.h>
// Behind windows.h, whose types it uses.
#include <commctrl.h>

#include <cstring>
#include <type_traits>

#include "core/levels.h"

namespace qxview {
namespace {

constexpr int kBitmapCount = kImageCount - 1;
constexpr COLORREF kTransparent = RGB(255, 0, 255);

HWND WindowOf(void* control) { return static_cast<HWND>(control); }
HTREEITEM ItemOf(LineHandle line) { return reinterpret_cast<HTREEITEM>(line); }

LRESULT Send(void* control, UINT message, WPARAM what, LPARAM value) {
  return SendMessageA(WindowOf(control), message, what, value);
}

LineHandle Neighbour(void* control, UINT which, LineHandle line) {
  return static_cast<LineHandle>(Send(control, TVM_GETNEXTITEM, which, static_cast<LPARAM>(line)));
}

// An item with the fields that the mask asks for; all zero when there is no such line.
TVITEMA ReadItem(void* control, LineHandle line, UINT mask, UINT stateMask = 0) {
  TVITEMA item{};
  item.mask = TVIF_HANDLE | mask;
  item.hItem = ItemOf(line);
  item.stateMask = stateMask;
  if (!line || !Send(control, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item))) return TVITEMA{};
  return item;
}

void WriteItem(void* control, TVITEMA item, LineHandle line, UINT mask) {
  if (!line) return;
  item.mask = TVIF_HANDLE | mask;
  item.hItem = ItemOf(line);
  Send(control, TVM_SETITEMA, 0, reinterpret_cast<LPARAM>(&item));
}

}  // namespace

bool TreeControl::LeavesOut() {
  constexpr uint32_t kBetweenLooks = 256;
  if (leftOut_) return true;
  if (items_ % kBetweenLooks == 0 && items_ > 0 && held_ && GetTickCount() - started_ > kMostItemMilliseconds) {
    items_ = kMostItems;
  }
  return items_ >= kMostItems;
}

LineHandle TreeControl::Append(const NewLine& line) {
  if (!LeavesOut()) return Insert(line);
  constexpr char kText[] = "Lines left out of this window";
  if (!leftOut_) {
    leftOut_ = Insert({0, kText, sizeof kText - 1, LevelImage(kFirstLevel), line.rangeIndex, false});
    leftOutCount_ = 0;
  }
  ++leftOutCount_;
  return leftOut_;
}

LineHandle TreeControl::Insert(const NewLine& line) {
  TVINSERTSTRUCTA insert{};
  insert.hParent = line.parent ? ItemOf(line.parent) : TVI_ROOT;
  insert.hInsertAfter = TVI_LAST;
  insert.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_PARAM | TVIF_STATE;
  insert.item.pszText = const_cast<char*>(line.text);
  insert.item.iImage = insert.item.iSelectedImage = line.image;
  insert.item.lParam = static_cast<LPARAM>(line.rangeIndex);
  insert.item.state = line.selected ? TVIS_SELECTED : 0;
  insert.item.stateMask = TVIS_SELECTED;
  const auto added = static_cast<LineHandle>(Send(control_, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&insert)));
  if (line.selected) marked_ = added;
  if (added) ++items_;
  return added;
}

int32_t TreeControl::GetText(LineHandle line, char* out, int32_t outSize) const {
  if (outSize < 1) return 0;
  out[0] = 0;
  TVITEMA item{};
  item.mask = TVIF_HANDLE | TVIF_TEXT;
  item.hItem = ItemOf(line);
  item.pszText = out;
  item.cchTextMax = outSize;
  if (!line || !Send(control_, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item))) out[0] = 0;
  out[outSize - 1] = 0;   // a text that is cut comes without its terminator
  return static_cast<int32_t>(std::strlen(out));
}

void TreeControl::SetText(LineHandle line, const char* text, int32_t) {
  if (line == leftOut_) return;
  TVITEMA item{};
  item.pszText = const_cast<char*>(text);
  WriteItem(control_, item, line, TVIF_TEXT);
}

uint32_t TreeControl::RangeIndex(LineHandle line) const {
  return static_cast<uint32_t>(ReadItem(control_, line, TVIF_PARAM).lParam);
}

void TreeControl::SetRangeIndex(LineHandle line, uint32_t index) {
  if (line == leftOut_) return;
  TVITEMA item{};
  item.lParam = static_cast<LPARAM>(index);
  WriteItem(control_, item, line, TVIF_PARAM);
}

int32_t TreeControl::Image(LineHandle line) const { return ReadItem(control_, line, TVIF_IMAGE).iImage; }

LineHandle TreeControl::FirstChild(LineHandle line) const {
  return Neighbour(control_, line ? TVGN_CHILD : TVGN_ROOT, line);
}

LineHandle TreeControl::LastChild(LineHandle line) const {
  LineHandle last = FirstChild(line);
  while (const LineHandle next = NextSibling(last)) last = next;
  return last;
}

LineHandle TreeControl::NextSibling(LineHandle line) const {
  return line ? Neighbour(control_, TVGN_NEXT, line) : 0;
}

LineHandle TreeControl::Parent(LineHandle line) const { return line ? Neighbour(control_, TVGN_PARENT, line) : 0; }

bool TreeControl::Holds(LineHandle line) const { return ReadItem(control_, line, TVIF_PARAM).hItem != nullptr; }

bool TreeControl::IsExpanded(LineHandle line) const {
  return ReadItem(control_, line, TVIF_STATE, TVIS_EXPANDED).state & TVIS_EXPANDED;
}

LineHandle TreeControl::Selected() const { return marked_ ? marked_ : Neighbour(control_, TVGN_CARET, 0); }

void TreeControl::Delete(LineHandle line) {
  if (!line) return;
  // Otherwise the selection would move on to a neighbour.
  for (LineHandle at = Selected(); at; at = Parent(at)) {
    if (at == line) Select(0);
  }
  Send(control_, TVM_DELETEITEM, 0, static_cast<LPARAM>(line));
  if (line == leftOut_) leftOut_ = 0;
}

void TreeControl::Clear() {
  const bool wasHeld = held_;
  if (!wasHeld) HoldRedraw(true);
  Select(0);
  Send(control_, TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
  items_ = 0;
  leftOut_ = 0;
  if (!wasHeld) HoldRedraw(false);
}

void TreeControl::Expand(LineHandle line, bool expanded) {
  if (line) Send(control_, TVM_EXPAND, expanded ? TVE_EXPAND : TVE_COLLAPSE, static_cast<LPARAM>(line));
}

void TreeControl::Select(LineHandle line) {
  if (marked_) {
    TVITEMA item{};
    item.stateMask = TVIS_SELECTED;
    WriteItem(control_, item, marked_, TVIF_STATE);
    marked_ = 0;
  }
  Send(control_, TVM_SELECTITEM, TVGN_CARET, static_cast<LPARAM>(line));
}

void TreeControl::ScrollToTop() {
  Send(control_, TVM_SELECTITEM, TVGN_CARET, static_cast<LPARAM>(FirstChild(0)));
  Send(control_, TVM_SELECTITEM, TVGN_CARET, 0);
}

void TreeControl::HoldRedraw(bool held) {
  if (held && !held_) {
    items_ = static_cast<uint32_t>(Send(control_, TVM_GETCOUNT, 0, 0));
    started_ = GetTickCount();
  } else if (!held && leftOut_) {
    char text[64];
    wsprintfA(text, "Lines left out of this window: %u", leftOutCount_);
    TVITEMA item{};
    item.pszText = text;
    WriteItem(control_, item, leftOut_, TVIF_TEXT);
  }
  held_ = held;
  Send(control_, WM_SETREDRAW, !held, 0);
  if (!held) InvalidateRect(WindowOf(control_), nullptr, TRUE);
}

namespace {

// What is taken from the system's common controls. They are loaded with the first tree: that takes many times as long
// as loading this module, which most programs want no window of.
struct CommonControls {
  decltype(&InitCommonControlsEx) init;
  decltype(&ImageList_Create) createList;
  decltype(&ImageList_AddMasked) addMasked;
  decltype(&ImageList_GetImageCount) countImages;
  decltype(&ImageList_Destroy) destroyList;

  bool Load() {
    const HMODULE library = LoadLibraryW(L"comctl32.dll");
    if (!library) return false;
    const auto find = [library](auto& function, const char* name) {
      const FARPROC found = GetProcAddress(library, name);
      function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(reinterpret_cast<void*>(found));
      return found != nullptr;
    };
    return find(init, "InitCommonControlsEx") && find(createList, "ImageList_Create") &&
           find(addMasked, "ImageList_AddMasked") && find(countImages, "ImageList_GetImageCount") &&
           find(destroyList, "ImageList_Destroy");
  }
};

// Null when they are not there.
const CommonControls* FindCommonControls() {
  static CommonControls controls;
  static const bool loaded = controls.Load();
  return loaded ? &controls : nullptr;
}

// Of screens with more dots: all bitmaps side by side in one.
struct LargerImages {
  uint32_t fromDotsPerInch;
  const char* name;
  int32_t width, height;
};
constexpr LargerImages kLargerImages[] = {{168, "TR_192", 2 * kImageWidth, 2 * kImageHeight},
                                          {120, "TR_144", 3 * kImageWidth / 2, 3 * kImageHeight / 2}};

HIMAGELIST LoadLargerImages(const CommonControls& controls, HMODULE module, const LargerImages& larger) {
  const HIMAGELIST images = controls.createList(larger.width, larger.height, ILC_COLOR24 | ILC_MASK, 2 * kBitmapCount, 0);
  const HBITMAP bitmap = images ? LoadBitmapA(module, larger.name) : nullptr;
  // Once more for the last image, which repeats the first.
  for (int round = 0; bitmap && round < 2; ++round) controls.addMasked(images, bitmap, kTransparent);
  if (bitmap) DeleteObject(bitmap);
  if (images && controls.countImages(images) >= kImageCount) return images;
  if (images) controls.destroyList(images);
  return nullptr;
}

// The images of the levels from the resources of the module that this code is in; null when one is missing.
HIMAGELIST LoadLevelImages(const CommonControls& controls, uint32_t dotsPerInch) {
  HMODULE module;
  if (!GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                          reinterpret_cast<LPCSTR>(&kBitmapCount), &module)) {
    return nullptr;
  }
  for (const LargerImages& larger : kLargerImages) {
    if (dotsPerInch >= larger.fromDotsPerInch) return LoadLargerImages(controls, module, larger);
  }
  const HIMAGELIST images = controls.createList(kImageWidth, kImageHeight, ILC_COLOR24 | ILC_MASK, kImageCount, 0);
  if (!images) return nullptr;
  for (int image = 0; image < kImageCount; ++image) {
    char name[8];
    wsprintfA(name, "TR%.01lu", static_cast<unsigned long>(image % kBitmapCount));
    const HBITMAP bitmap = LoadBitmapA(module, name);
    if (!bitmap) continue;
    controls.addMasked(images, bitmap, kTransparent);
    DeleteObject(bitmap);
  }
  if (controls.countImages(images) >= kImageCount) return images;
  controls.destroyList(images);
  return nullptr;
}

}  // namespace

void* CreateTreeControl(void* parent, uint32_t dotsPerInch) {
  const CommonControls* controls = FindCommonControls();
  if (!controls) return nullptr;
  const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_TREEVIEW_CLASSES | ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES};
  controls->init(&classes);
  const HIMAGELIST images = LoadLevelImages(*controls, dotsPerInch);
  if (!images) return nullptr;
  const DWORD style = WS_CHILD | WS_VISIBLE | WS_TABSTOP | TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT |
                      TVS_SHOWSELALWAYS | TVS_DISABLEDRAGDROP;
  const HWND control = CreateWindowExA(0, WC_TREEVIEWA, "", style, 0, 0, 0, 0, WindowOf(parent), nullptr,
                                       GetModuleHandleA(nullptr), nullptr);
  if (!control) {
    controls->destroyList(images);
    return nullptr;
  }
  Send(control, TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(images));
  return control;
}

void ScaleTreeControl(void* control, uint32_t dotsPerInch) {
  const CommonControls* controls = FindCommonControls();
  const HIMAGELIST images = controls ? LoadLevelImages(*controls, dotsPerInch) : nullptr;
  if (!images) return;
  const LRESULT before = Send(control, TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(images));
  controls->destroyList(reinterpret_cast<HIMAGELIST>(before));
}

void DestroyTreeControl(void* control) {
  const auto images = reinterpret_cast<HIMAGELIST>(Send(control, TVM_GETIMAGELIST, TVSIL_NORMAL, 0));
  DestroyWindow(WindowOf(control));
  if (const CommonControls* controls = FindCommonControls()) controls->destroyList(images);
}

}  // namespace qxview
