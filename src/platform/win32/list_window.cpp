// Lists as owner-data list views: the window asks the model for each cell it paints and holds no copy.
#include <algorithm>
#include <string>
#include <utility>

#include "base/text.h"
#include "controls/list_view.h"
#include "platform/win32/control_window.h"
#include "platform/win32/dpi.h"
#include "platform/win32/glyph_images.h"
#include "platform/win32/list_memory.h"
#include "platform/win32/settings.h"
#include "platform/win32/wide_text.h"

namespace quenta::platform {
namespace {

using controls::Aspect;
using controls::ListItem;
using controls::ListView;

constexpr int kImageSize = 16;  // in 1/96 inch
constexpr UINT kUnchecked = 1;  // state images of a check box
constexpr UINT kChecked = 2;

// From this number of rows on a list is long. To choose another row in one, some systems go through all rows in search
// of the one that was chosen: a tenth of a second for 10^5 rows, too slow for a key that repeats. And what is chosen
// row by row is painted row by row. Both are avoided here by unchoosing rows beforehand, by position and without
// painting.
constexpr int kLongList = 2000;
constexpr std::size_t kManyRows = 100;  // to be chosen or unchosen one by one while they show

bool Pressed(int key) noexcept {
  return (GetKeyState(key) & 0x8000) != 0;
}

class ListWindow final : public ControlWindow, public ListMemory {
 public:
  ListWindow(ControlOwner& owner, ListView& list) : ControlWindow(owner, list), list_(list) {}

  void Create(HWND parent) override {
    CreateControl(parent, WC_LISTVIEWW, {},
                  LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS | (list_.multi_select ? 0 : LVS_SINGLESEL) |
                      (list_.sortable ? 0 : LVS_NOSORTHEADER),
                  WS_EX_CLIENTEDGE);
    DWORD style = LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP;
    if (list_.check_boxes()) style |= LVS_EX_CHECKBOXES;
    Send(LVM_SETEXTENDEDLISTVIEWSTYLE, style, static_cast<LPARAM>(style));
    if (list_.check_boxes()) Send(LVM_SETCALLBACKMASK, LVIS_STATEIMAGEMASK);
    InsertColumns();
    ShowSort();
    ModelChanged(Aspect::kItems);
  }

  void ModelChanged(Aspect aspect) override {
    if (aspect == Aspect::kItems) {
      // Taken over when the window next needs it: a list of 10^5 rows is filled row by row.
      if (!std::exchange(stale_, true)) InvalidateRect(window(), nullptr, FALSE);
    } else if (aspect == Aspect::kSelection) {
      const Silence silence(*this);
      TakeRows();
      ShowSelection(true);
    }
  }

  std::optional<LRESULT> OnNotify(NMHDR& notification) noexcept override {
    switch (notification.code) {
      case LVN_GETDISPINFOW:
        FillCell(reinterpret_cast<NMLVDISPINFOW&>(notification).item);
        return 0;
      case LVN_ODFINDITEMW:
        return FindByText(reinterpret_cast<const NMLVFINDITEMW&>(notification));
      case LVN_ITEMCHANGED:
        TakeSelection(reinterpret_cast<const NMLISTVIEW&>(notification));
        return 0;
      case LVN_ODSTATECHANGED: {
        const auto& range = reinterpret_cast<const NMLVODSTATECHANGE&>(notification);
        TakeMarks(range.iFrom, range.iTo, range.uOldState, range.uNewState);
        return 0;
      }
      case LVN_COLUMNCLICK:
        TakeColumnClick(reinterpret_cast<const NMLISTVIEW&>(notification).iSubItem);
        return 0;
      case NM_CLICK:
        TakeClick(reinterpret_cast<const NMITEMACTIVATE&>(notification));
        return 0;
      case NM_RCLICK:
        KeepRowChosen();
        return 0;
      case NM_DBLCLK:
        if (reinterpret_cast<const NMITEMACTIVATE&>(notification).iItem >= 0) Activate();
        return 0;
      default:
        return std::nullopt;
    }
  }

  void Restyle() override {
    ControlWindow::Restyle();
    const int size = Scale(kImageSize, owner().dpi());
    ImageList images(owner().common_controls(), {"list1", "list2", "list3"}, {size, size}, size);
    if (shows_images_) Send(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images.get()));
    images_ = std::move(images);
    // A change of resolution changes the columns too.
    if (dpi_ != 0 && dpi_ != owner().dpi()) {
      for (int i = 0; i < ColumnCount(); ++i)
        SetWidth(i, MulDiv(Width(i), static_cast<int>(owner().dpi()), static_cast<int>(dpi_)));
    }
    dpi_ = owner().dpi();
  }

  void BeforeDestroy() noexcept override {
    Send(LVM_SETIMAGELIST, LVSIL_SMALL, 0);  // it would destroy the list of images as well
    ControlWindow::BeforeDestroy();
  }

  RememberedList Remembered() const override {
    RememberedList list;
    for (int i = 0; i < ColumnCount(); ++i) list.widths.push_back(Unscale(Width(i), owner().dpi()));
    if (list_.sortable) list.sort = list_.sort();
    return list;
  }

  void Restore(const RememberedList& remembered) override {
    if (static_cast<int>(remembered.widths.size()) == ColumnCount()) {
      for (int i = 0; i < ColumnCount(); ++i) {
        SetWidth(i, Scale(remembered.widths[static_cast<std::size_t>(i)], owner().dpi()));
      }
    }
    if (!list_.sortable || remembered.sort.column < 0 || remembered.sort.column >= ColumnCount()) return;
    list_.RestoreSort(remembered.sort);
    if (list_.Count() > 0) {
      list_.Sort(remembered.sort, Settings().UserLocale());
      ModelChanged(Aspect::kItems);
    }
    ShowSort();
  }

 protected:
  std::optional<LRESULT> OnMessage(HWND part, UINT message, WPARAM wparam, LPARAM lparam) noexcept override {
    if (stale_ && !silent() && message != WM_NCDESTROY && message != WM_DESTROY) {
      const Silence silence(*this);
      TakeRows();
    }
    switch (message) {
      case WM_LBUTTONDOWN:
        told_in_click_ = false;
        [[fallthrough]];
      case WM_RBUTTONDOWN:
        // The field that is left takes over what was typed before another row is chosen; not every system has it so.
        if (GetFocus() != window()) SetFocus(window());
        if (!IsWindow(part)) return 0;
        return BeforeMouse(part, message, wparam, lparam);
      case WM_KEYDOWN:
        if (Pressed(VK_CONTROL) && !Pressed(VK_MENU) && Command(wparam)) return 0;
        if (wparam == VK_SPACE && list_.check_boxes()) {
          Toggle(list_.selected());
          return 0;
        }
        if (wparam == VK_RETURN && list_.on_item_activate) {
          if (list_.selected() >= 0) Activate();
          return 0;
        }
        if (MovesToAnotherRow(wparam)) return WithoutSearch(part, message, wparam, lparam, Pressed(VK_SHIFT));
        return std::nullopt;
      case WM_CHAR:
        // These are keys of the list, not the beginning of a search.
        if (wparam < VK_SPACE || (wparam == VK_SPACE && list_.check_boxes())) return 0;
        return std::nullopt;
      case WM_GETDLGCODE: {
        const auto* const key = reinterpret_cast<const MSG*>(lparam);
        const bool wanted = key != nullptr && key->message == WM_KEYDOWN && key->wParam == VK_RETURN &&
                            list_.on_item_activate != nullptr;
        return DLGC_WANTARROWS | DLGC_WANTCHARS | (wanted ? DLGC_WANTMESSAGE : 0);
      }
      case WM_CONTEXTMENU:
        if (reinterpret_cast<HWND>(wparam) != window()) return std::nullopt;  // the header's
        AskForMenu(lparam);
        return 0;
      default:
        return std::nullopt;
    }
  }

 private:
  int ColumnCount() const noexcept { return static_cast<int>(list_.columns().size()); }
  int Width(int column) const noexcept {
    return static_cast<int>(Send(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column)));
  }
  void SetWidth(int column, int width) noexcept { Send(LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(column), width); }

  void InsertColumns() {
    for (int i = 0; i < ColumnCount(); ++i) {
      const controls::ListColumn& column = list_.columns()[static_cast<std::size_t>(i)];
      std::wstring caption = Wide(column.caption);
      LVCOLUMNW data{};
      data.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT | LVCF_SUBITEM;
      data.fmt = column.right_aligned ? LVCFMT_RIGHT : LVCFMT_LEFT;
      data.cx = Scale(column.width, owner().dpi());
      data.pszText = caption.data();
      data.iSubItem = i;
      Send(LVM_INSERTCOLUMNW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&data));
    }
  }

  void TakeRows() noexcept {
    if (!std::exchange(stale_, false)) return;
    Send(LVM_SETITEMCOUNT, static_cast<WPARAM>(list_.Count()), LVSICF_NOSCROLL | LVSICF_NOINVALIDATEALL);
    InvalidateRect(window(), nullptr, FALSE);
    // Rows leave room for images from the first row on that has one.
    for (int i = 0; i < list_.Count() && !shows_images_; ++i) {
      if (list_.At(i).small_icon == 0) continue;
      shows_images_ = true;
      Send(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images_.get()));
    }
    ShowSort();
    ShowSelection(false);
  }

  // The arrow in the header of the column that the rows are sorted by.
  void ShowSort() noexcept {
    if (shown_sort_ == list_.sort()) return;
    shown_sort_ = list_.sort();
    const auto header = reinterpret_cast<HWND>(Send(LVM_GETHEADER));
    for (int i = 0; i < ColumnCount(); ++i) {
      HDITEMW item{};
      item.mask = HDI_FORMAT;
      SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
      item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
      if (i == shown_sort_.column) item.fmt |= shown_sort_.descending ? HDF_SORTDOWN : HDF_SORTUP;
      SendMessageW(header, HDM_SETITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
    }
  }

  void FillCell(LVITEMW& item) noexcept {
    if (item.iItem < 0 || item.iItem >= list_.Count()) return;
    try {
      if ((item.mask & LVIF_TEXT) != 0 && item.cchTextMax > 0) {
        const std::wstring text = Wide(list_.Cell(item.iItem, item.iSubItem));
        const std::size_t length = std::min(text.size(), static_cast<std::size_t>(item.cchTextMax) - 1);
        text.copy(item.pszText, length);
        item.pszText[length] = L'\0';
      }
      const ListItem& row = list_.At(item.iItem);
      if ((item.mask & LVIF_IMAGE) != 0) item.iImage = row.small_icon > 0 ? row.small_icon - 1 : I_IMAGENONE;
      if ((item.mask & LVIF_STATE) != 0 && (item.stateMask & LVIS_STATEIMAGEMASK) != 0) {
        item.state = INDEXTOSTATEIMAGEMASK(row.checked ? kChecked : kUnchecked);
      }
    } catch (...) {  // out of memory: the cell stays empty
    }
  }

  LRESULT FindByText(const NMLVFINDITEMW& request) noexcept {
    if ((request.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) == 0 || list_.Count() == 0) return -1;
    try {
      const std::string start = Narrow(request.lvfi.psz);
      const int first = std::clamp(request.iStart, 0, list_.Count() - 1);
      for (int i = 0; i < list_.Count(); ++i) {
        const int row = (first + i) % list_.Count();
        if (base::StartsWithIgnoreCase(list_.Cell(row, 0), start)) return row;
      }
    } catch (...) {  // not found
    }
    return -1;
  }

  void TakeSelection(const NMLISTVIEW& change) noexcept {
    if (silent()) return;
    // Position -1 stands for all rows.
    TakeMarks(std::max(change.iItem, 0), change.iItem < 0 ? list_.Count() - 1 : change.iItem, change.uOldState,
              change.uNewState);
    // Where many rows can be marked, the one chosen is the one that has the focus.
    const UINT mark = list_.multi_select ? LVIS_FOCUSED : LVIS_SELECTED;
    if ((change.uNewState & ~change.uOldState & mark) == 0 || change.iItem < 0) return;
    told_in_click_ = true;
    owner().Event([&] { list_.Clicked(change.iItem); });
  }

  void TakeMarks(int first, int last, UINT before, UINT after) noexcept {
    if (silent() || !list_.multi_select || ((before ^ after) & LVIS_SELECTED) == 0) return;
    list_.Marked(first, last, (after & LVIS_SELECTED) != 0);
  }

  void TakeClick(const NMITEMACTIVATE& click) noexcept {
    if (list_.check_boxes()) {
      LVHITTESTINFO hit{};
      hit.pt = click.ptAction;
      Send(LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
      if (hit.iItem >= 0 && (hit.flags & LVHT_ONITEMSTATEICON) != 0) Toggle(hit.iItem);
    }
    if (click.iItem < 0) {
      KeepRowChosen();
    } else if (!told_in_click_) {
      owner().Event([&] { list_.Clicked(click.iItem); });
    }
    told_in_click_ = false;
  }

  // A click beside the rows leaves the row chosen that was.
  void KeepRowChosen() noexcept {
    if (list_.multi_select) return;
    const Silence silence(*this);
    ShowSelection(false);
  }

  void TakeColumnClick(int column) noexcept {
    owner().Event([&] { list_.ColumnClicked(column); });
    ShowSort();
  }

  // The list's own keys with Ctrl. True when this was one.
  bool Command(WPARAM key) noexcept {
    if (key == 'C' || key == VK_INSERT) {
      owner().Event([this] { list_.Copy(); });
      return true;
    }
    // Who has no mouse sorts by the column's number.
    const auto column = static_cast<int>(key) - '1';
    if (list_.sortable && column >= 0 && column < std::min(ColumnCount(), 9)) {
      TakeColumnClick(column);
      return true;
    }
    if (key != 'A' || !list_.multi_select) return false;
    list_.Marked(0, list_.Count() - 1, true);
    const Silence silence(*this);
    ShowSelection(false);
    return true;
  }

  // Whether the key takes the choice from the row that has it to another one.
  bool MovesToAnotherRow(WPARAM key) const noexcept {
    if (list_.Count() < kLongList || (list_.multi_select && Pressed(VK_CONTROL))) return false;
    const int row = list_.selected();
    if (row < 0 || RowState(row, LVIS_FOCUSED) == 0) return false;
    if (key == VK_UP || key == VK_PRIOR || key == VK_HOME) return row > 0;
    return (key == VK_DOWN || key == VK_NEXT || key == VK_END) && row < list_.Count() - 1;
  }

  std::optional<LRESULT> BeforeMouse(HWND part, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
    if (list_.Count() < kLongList) return std::nullopt;
    const bool range = (wparam & MK_SHIFT) != 0;
    if (list_.multi_select && (wparam & MK_CONTROL) != 0) return std::nullopt;
    LVHITTESTINFO hit{};
    hit.pt = {static_cast<SHORT>(LOWORD(lparam)), static_cast<SHORT>(HIWORD(lparam))};
    Send(LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
    if (hit.iItem < 0 || (hit.flags & LVHT_ONITEMSTATEICON) != 0) return std::nullopt;
    // The menu of several rows is asked for by the right button on one of them.
    if (message == WM_RBUTTONDOWN && RowState(hit.iItem, LVIS_SELECTED) != 0) return std::nullopt;
    return WithoutSearch(part, message, wparam, lparam, range);
  }

  // Lets a long list act on a message that chooses another row, or a range of rows.
  std::optional<LRESULT> WithoutSearch(HWND part, UINT message, WPARAM wparam, LPARAM lparam, bool range) noexcept {
    {
      const Silence silence(*this);
      if (list_.multi_select) {
        ClearMarks();
        list_.Marked(0, list_.Count() - 1, false);
      } else if (list_.selected() >= 0) {
        SetRowState(list_.selected(), 0, LVIS_SELECTED);
      }
    }
    if (!range || !list_.multi_select) return std::nullopt;
    Send(WM_SETREDRAW, FALSE);
    const LRESULT result = Default(part, message, wparam, lparam);
    Send(WM_SETREDRAW, TRUE);
    return result;
  }

  // Below the row chosen when a key asks, which makes it the one that has the focus if there is none.
  void AskForMenu(LPARAM place) noexcept {
    POINT at{static_cast<SHORT>(LOWORD(place)), static_cast<SHORT>(HIWORD(place))};
    if (at.x == -1 && at.y == -1) {
      RECT row{};
      GetClientRect(window(), &row);
      row.bottom = row.top;
      if (list_.Count() > 0) {
        if (list_.selected() < 0) {
          const auto focused = static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
          SetRowState(std::max(focused, 0), LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
        }
        const auto shown = static_cast<WPARAM>(std::max(list_.selected(), 0));
        Send(LVM_ENSUREVISIBLE, shown, FALSE);
        row.left = LVIR_LABEL;
        Send(LVM_GETITEMRECT, shown, reinterpret_cast<LPARAM>(&row));
      }
      at = {row.left, row.bottom};
      ClientToScreen(window(), &at);
    }
    owner().ContextMenu(at, [this] { list_.ContextMenu(); });
  }

  void Toggle(int row) noexcept {
    if (row < 0 || row >= list_.Count()) return;
    owner().Event([this, row] { list_.Checked(row, !list_.At(row).checked); });
    Send(LVM_REDRAWITEMS, static_cast<WPARAM>(row), row);
  }

  void Activate() noexcept {
    owner().Event([this] { list_.Activated(); });
  }

  UINT RowState(int row, UINT mask) const noexcept {
    return static_cast<UINT>(Send(LVM_GETITEMSTATE, static_cast<WPARAM>(row), static_cast<LPARAM>(mask)));
  }
  // Of all rows when the position is -1.
  void SetRowState(int row, UINT state, UINT mask) noexcept {
    LVITEMW item{};
    item.state = state;
    item.stateMask = mask;
    Send(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
  }

  void ShowSelection(bool scroll) noexcept {
    const int row = list_.selected();
    if (list_.multi_select) {
      ShowMarks();
      if (row >= 0) {
        SetRowState(row, LVIS_FOCUSED, LVIS_FOCUSED);
        Send(LVM_SETSELECTIONMARK, 0, row);  // where a range that the user marks begins
      }
    } else {
      ShowChosenRow(row);
    }
    if (scroll && row >= 0) Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
  }

  void ShowChosenRow(int row) noexcept {
    constexpr UINT kMarks = LVIS_SELECTED | LVIS_FOCUSED;
    const bool any = Send(LVM_GETSELECTEDCOUNT) > 0;
    if (row >= 0 ? any && RowState(row, kMarks) == kMarks : !any) return;
    const auto shown = any ? static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED)) : -1;
    // By its position: for all rows at once takes long in a long list.
    if (shown >= 0) SetRowState(shown, 0, kMarks);
    if (row >= 0) SetRowState(row, kMarks, kMarks);
  }

  void ShowMarks() noexcept {
    std::vector<int> rows;
    try {
      rows = list_.MarkedRows();
    } catch (...) {  // out of memory: none is shown
    }
    if (rows.empty() && Send(LVM_GETSELECTEDCOUNT) == 0) return;
    Send(WM_SETREDRAW, FALSE);
    // All rows at once are quicker than most of them one by one.
    const bool most = rows.size() > static_cast<std::size_t>(list_.Count()) / 2;
    SetRowState(-1, most ? LVIS_SELECTED : 0, LVIS_SELECTED);
    auto marked = rows.begin();
    for (int row = 0; row < list_.Count(); ++row) {
      const bool is_marked = marked != rows.end() && *marked == row;
      if (is_marked) ++marked;
      if (is_marked != most) SetRowState(row, most ? 0 : LVIS_SELECTED, LVIS_SELECTED);
    }
    Send(WM_SETREDRAW, TRUE);
    InvalidateRect(window(), nullptr, FALSE);
  }

  void ClearMarks() noexcept {
    std::vector<int> rows;
    try {
      rows = list_.MarkedRows();
    } catch (...) {  // out of memory: the list clears them itself
      return;
    }
    if (rows.size() <= kManyRows) {
      for (const int row : rows) SetRowState(row, 0, LVIS_SELECTED);
    } else {
      Send(WM_SETREDRAW, FALSE);
      SetRowState(-1, 0, LVIS_SELECTED);
      Send(WM_SETREDRAW, TRUE);
    }
  }

  ListView& list_;
  ImageList images_;
  UINT dpi_ = 0;
  controls::ListSort shown_sort_;
  bool stale_ = false;  // the model's rows have changed since the window took their number
  bool shows_images_ = false;
  bool told_in_click_ = false;  // the press of the mouse button has chosen a row already
};

}  // namespace

std::unique_ptr<ControlWindow> MakeListWindow(ControlOwner& owner, controls::Control& model) {
  return std::make_unique<ListWindow>(owner, static_cast<ListView&>(model));
}

}  // namespace quenta::platform
