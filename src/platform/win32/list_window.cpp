// Lists as owner-data list views: the window asks the model for each cell it paints and holds no copy.
#include <algorithm>
#include <string>
#include <utility>

#include "base/text.h"
#include "controls/list_view.h"
#include "platform/win32/column_widths.h"
#include "platform/win32/control_window.h"
#include "platform/win32/dpi.h"
#include "platform/win32/glyph_images.h"
#include "platform/win32/wide_text.h"

namespace quenta::platform {
namespace {

using controls::Aspect;
using controls::ListItem;
using controls::ListView;

constexpr int kImageSize = 16;  // in 1/96 inch
constexpr UINT kUnchecked = 1;  // state images of a check box
constexpr UINT kChecked = 2;

class ListWindow final : public ControlWindow, public ColumnWidths {
 public:
  ListWindow(ControlOwner& owner, ListView& list) : ControlWindow(owner, list), list_(list) {}

  void Create(HWND parent) override {
    CreateControl(parent, WC_LISTVIEWW, {}, LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS | LVS_SINGLESEL,
                  WS_EX_CLIENTEDGE);
    DWORD style = LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP;
    if (list_.check_boxes()) style |= LVS_EX_CHECKBOXES;
    Send(LVM_SETEXTENDEDLISTVIEWSTYLE, style, static_cast<LPARAM>(style));
    if (list_.check_boxes()) Send(LVM_SETCALLBACKMASK, LVIS_STATEIMAGEMASK);
    InsertColumns();
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
      case NM_CLICK:
        TakeClick(reinterpret_cast<const NMITEMACTIVATE&>(notification));
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

  std::vector<int> Widths() const override {
    std::vector<int> widths;
    for (int i = 0; i < ColumnCount(); ++i) widths.push_back(Unscale(Width(i), owner().dpi()));
    return widths;
  }

  void SetWidths(const std::vector<int>& widths) override {
    if (static_cast<int>(widths.size()) != ColumnCount()) return;  // remembered by another version
    for (int i = 0; i < ColumnCount(); ++i) {
      SetWidth(i, Scale(widths[static_cast<std::size_t>(i)], owner().dpi()));
    }
  }

 protected:
  std::optional<LRESULT> OnMessage(HWND, UINT message, WPARAM wparam, LPARAM lparam) noexcept override {
    if (stale_ && !silent() && message != WM_NCDESTROY && message != WM_DESTROY) {
      const Silence silence(*this);
      TakeRows();
    }
    switch (message) {
      case WM_LBUTTONDOWN:
        told_in_click_ = false;
        return std::nullopt;
      case WM_KEYDOWN:
        if (wparam == VK_SPACE && list_.check_boxes()) {
          Toggle(list_.selected());
          return 0;
        }
        if (wparam == VK_RETURN && list_.on_item_activate) {
          if (list_.selected() >= 0) Activate();
          return 0;
        }
        return std::nullopt;
      case WM_CHAR:
        // These are keys of the list, not the beginning of a search.
        if (wparam == VK_RETURN || (wparam == VK_SPACE && list_.check_boxes())) return 0;
        return std::nullopt;
      case WM_GETDLGCODE: {
        const auto* const key = reinterpret_cast<const MSG*>(lparam);
        const bool wanted = key != nullptr && key->message == WM_KEYDOWN && key->wParam == VK_RETURN &&
                            list_.on_item_activate != nullptr;
        return DLGC_WANTARROWS | DLGC_WANTCHARS | (wanted ? DLGC_WANTMESSAGE : 0);
      }
      case WM_CONTEXTMENU:
        if (reinterpret_cast<HWND>(wparam) != window()) return std::nullopt;  // the header's
        owner().Event([this] { list_.ContextMenu(); });
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
    ShowSelection(false);
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
    const bool now_selected = (change.uNewState & LVIS_SELECTED) != 0 && (change.uOldState & LVIS_SELECTED) == 0;
    if (silent() || !now_selected || change.iItem < 0) return;
    told_in_click_ = true;
    owner().Event([&] { list_.Clicked(change.iItem); });
  }

  void TakeClick(const NMITEMACTIVATE& click) noexcept {
    if (list_.check_boxes()) {
      LVHITTESTINFO hit{};
      hit.pt = click.ptAction;
      Send(LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit));
      if (hit.iItem >= 0 && (hit.flags & LVHT_ONITEMSTATEICON) != 0) Toggle(hit.iItem);
    }
    if (click.iItem < 0) {
      // A click beside the rows leaves the row chosen that was.
      const Silence silence(*this);
      ShowSelection(false);
    } else if (!told_in_click_) {
      owner().Event([&] { list_.Clicked(click.iItem); });
    }
    told_in_click_ = false;
  }

  void Toggle(int row) noexcept {
    if (row < 0 || row >= list_.Count()) return;
    owner().Event([this, row] { list_.Checked(row, !list_.At(row).checked); });
    Send(LVM_REDRAWITEMS, static_cast<WPARAM>(row), row);
  }

  void Activate() noexcept {
    owner().Event([this] { list_.Activated(); });
  }

  void ShowSelection(bool scroll) noexcept {
    const auto shown = static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
    const int row = list_.selected();
    if (shown != row) {
      LVITEMW state{};
      state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
      // By its position: for all rows at once takes seconds in a long list.
      if (shown >= 0) Send(LVM_SETITEMSTATE, static_cast<WPARAM>(shown), reinterpret_cast<LPARAM>(&state));
      state.state = LVIS_SELECTED | LVIS_FOCUSED;
      if (row >= 0) Send(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&state));
    }
    if (scroll && row >= 0) Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
  }

  ListView& list_;
  ImageList images_;
  UINT dpi_ = 0;
  bool stale_ = false;  // the model's rows have changed since the window took their number
  bool shows_images_ = false;
  bool told_in_click_ = false;  // the press of the mouse button has chosen a row already
};

}  // namespace

std::unique_ptr<ControlWindow> MakeListWindow(ControlOwner& owner, controls::Control& model) {
  return std::make_unique<ListWindow>(owner, static_cast<ListView&>(model));
}

}  // namespace quenta::platform
