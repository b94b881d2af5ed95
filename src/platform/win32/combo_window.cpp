// Combo boxes. The list is filled when somebody first looks into it, so that long lists cost nothing until then.
#include <algorithm>
#include <string>

#include "base/error.h"
#include "base/text.h"
#include "controls/combo_box.h"
#include "platform/win32/control_window.h"
#include "platform/win32/edit_text.h"
#include "platform/win32/wide_text.h"

namespace quenta::platform {
namespace {

using controls::Aspect;
using controls::ComboBox;

class ComboWindow final : public ControlWindow {
 public:
  ComboWindow(ControlOwner& owner, ComboBox& combo) : ControlWindow(owner, combo), combo_(combo) {}

  void Create(HWND parent) override {
    const bool editable = combo_.style() == ComboBox::Style::kEditable;
    const DWORD style = (editable ? CBS_DROPDOWN | CBS_AUTOHSCROLL : CBS_DROPDOWNLIST) | WS_VSCROLL;
    CreateControl(parent, WC_COMBOBOXW, {}, style);
    COMBOBOXINFO info{};
    info.cbSize = sizeof(info);
    if (!GetComboBoxInfo(window(), &info)) {
      throw base::Error(base::error_number::kInternal, "Windows does not make the list of " + combo_.name());
    }
    list_ = info.hwndList;
    if (editable) {
      edit_ = info.hwndItem;
      Watch(edit_);
      ModelChanged(Aspect::kMaxLength);
    }
    Send(CB_SETMINVISIBLE, static_cast<WPARAM>(combo_.drop_down_rows));
    ModelChanged(Aspect::kItems);
    ModelChanged(Aspect::kLocked);
  }

  void ModelChanged(Aspect aspect) override {
    const Silence silence(*this);
    switch (aspect) {
      case Aspect::kItems:
        filled_ = false;
        if (Send(CB_GETDROPPEDSTATE) != 0) {
          Fill();
        } else {
          ShowSelection();
        }
        break;
      case Aspect::kSelection:
      case Aspect::kText:
        ShowSelection();
        break;
      case Aspect::kCaret:
        if (edit_ != nullptr) SetEditSelection(edit_, combo_.selection());
        break;
      case Aspect::kLocked:
        if (edit_ != nullptr) SendMessageW(edit_, EM_SETREADONLY, combo_.locked() ? TRUE : FALSE, 0);
        InvalidateRect(window(), nullptr, TRUE);
        break;
      case Aspect::kMaxLength:
        if (edit_ != nullptr) Send(CB_LIMITTEXT, combo_.max_length());
        break;
      case Aspect::kDropDown:
        DropDown();
        break;
      default:
        break;
    }
  }

  void OnCommand(WORD, WORD code) noexcept override {
    if (silent()) return;
    switch (code) {
      case CBN_DROPDOWN:
        FillNow();
        break;
      case CBN_SELCHANGE:
        TellChosen();
        break;
      case CBN_CLOSEUP:
      case CBN_KILLFOCUS:
        FollowQuietChange();
        break;
      case CBN_EDITCHANGE:
        BeforeKey();
        owner().Event([this] { combo_.Typed(Narrow(WindowText(window()))); });
        // The entry that was marked is not what stands in the box any more: an open list must not put it back.
        if (filled_ && combo_.ListIndex() < 0) SendMessageW(list_, LB_SETCURSEL, static_cast<WPARAM>(-1), 0);
        break;
      default:
        break;
    }
  }

  SIZE WindowSize(const Rect& place) const noexcept override {
    // A combo box's height is that of its field with its list; the field's own follows from the height of an entry.
    const auto entry = static_cast<int>(Send(CB_GETITEMHEIGHT, 0));
    return {place.width, place.height + (combo_.drop_down_rows + 1) * entry};
  }

  // The field takes the height that all one-line controls have: what its borders take is the system's affair.
  void Placed(const Rect& place) noexcept override {
    auto height = static_cast<int>(Send(CB_GETITEMHEIGHT, static_cast<WPARAM>(-1)));
    constexpr int kTries = 3;  // not every system gives the field exactly the height that it is told
    for (int i = 0; i < kTries; ++i) {
      RECT bounds{};
      GetWindowRect(window(), &bounds);
      const int missing = place.height - (bounds.bottom - bounds.top);
      if (missing == 0 || place.height <= 0) return;
      height = std::max(1, height + missing);
      Send(CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), height);
    }
  }

 protected:
  void BeforeKey() noexcept override {
    if (edit_ != nullptr) combo_.SelectionMoved(EditSelection(edit_));
  }

  std::optional<LRESULT> OnMessage(HWND part, UINT message, WPARAM wparam, LPARAM) noexcept override {
    if (combo_.locked() && combo_.enabled() && part == window()) {
      if (message == WM_PAINT) return PaintLocked();
      if (message == WM_SETFOCUS || message == WM_KILLFOCUS) InvalidateRect(window(), nullptr, TRUE);
    }
    if (silent()) return std::nullopt;
    if (combo_.locked() && WouldChoose(part, message, wparam)) {
      if (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK) SetFocus(window());
      return 0;
    }
    if (LooksIntoList(message, wparam)) FillNow();
    return std::nullopt;
  }

 private:
  // A locked box looks as a read-only field does: grey, its text in full colour, and no arrow that promises a list.
  // Windows has no such look for a combo box.
  LRESULT PaintLocked() const noexcept {
    PAINTSTRUCT paint{};
    const HDC dc = BeginPaint(window(), &paint);
    if (dc == nullptr) return 0;
    RECT place{};
    GetClientRect(window(), &place);
    if (edit_ != nullptr) {  // it paints itself
      RECT edit{};
      GetWindowRect(edit_, &edit);
      MapWindowPoints(nullptr, window(), reinterpret_cast<POINT*>(&edit), 2);
      ExcludeClipRect(dc, edit.left, edit.top, edit.right, edit.bottom);
    }
    FillRect(dc, &place, GetSysColorBrush(COLOR_3DFACE));
    FrameRect(dc, &place, GetSysColorBrush(COLOR_3DSHADOW));
    InflateRect(&place, -1, -1);
    if (edit_ == nullptr) {
      if (GetFocus() == window()) DrawFocusRect(dc, &place);
      const HGDIOBJ font = SelectObject(dc, owner().font());
      SetBkMode(dc, TRANSPARENT);
      SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
      place.left += GetSystemMetrics(SM_CXEDGE) * 2;
      try {
        std::wstring text = WindowText(window());
        DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &place,
                  DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
      } catch (...) {  // out of memory: the box stays empty until it is painted again
      }
      SelectObject(dc, font);
    }
    EndPaint(window(), &paint);
    return 0;
  }

  // Messages that would change what a locked box shows, or open its list.
  bool WouldChoose(HWND part, UINT message, WPARAM wparam) const noexcept {
    switch (message) {
      case WM_LBUTTONDOWN:
      case WM_LBUTTONDBLCLK:
        return part == window();
      case WM_CHAR:
        return part == window();
      case WM_MOUSEWHEEL:
      case CB_SHOWDROPDOWN:
        return true;
      case WM_KEYDOWN:
      case WM_SYSKEYDOWN:
        return IsListKey(wparam);
      default:
        return false;
    }
  }

  static bool IsListKey(WPARAM key) noexcept {
    return key == VK_UP || key == VK_DOWN || key == VK_PRIOR || key == VK_NEXT || key == VK_F4;
  }

  bool LooksIntoList(UINT message, WPARAM wparam) const noexcept {
    switch (message) {
      case WM_KEYDOWN:
        return IsListKey(wparam) || (edit_ == nullptr && (wparam == VK_HOME || wparam == VK_END));
      case WM_CHAR:
        return edit_ == nullptr;
      case WM_MOUSEWHEEL:
      case CB_GETCOUNT:
      case CB_GETCURSEL:
      case CB_SETCURSEL:
      case CB_GETLBTEXT:
      case CB_GETLBTEXTLEN:
      case CB_FINDSTRING:
      case CB_FINDSTRINGEXACT:
      case CB_SELECTSTRING:
        return true;
      default:
        return false;
    }
  }

  void FillNow() noexcept {
    if (filled_) return;
    const Silence silence(*this);
    try {
      Fill();
    } catch (...) {  // out of memory: what is in the list so far stays
    }
  }

  void Fill() {
    filled_ = true;
    SendMessageW(list_, WM_SETREDRAW, FALSE, 0);
    const std::wstring typed = edit_ != nullptr ? WindowText(edit_) : std::wstring();
    const controls::TextRange selection = edit_ != nullptr ? EditSelection(edit_) : controls::TextRange{};
    Send(CB_RESETCONTENT);
    // Straight to the list: by way of the box, 10^5 entries would pass through the watched window one by one.
    constexpr LPARAM kBytesPerEntry = 64;
    SendMessageW(list_, LB_INITSTORAGE, static_cast<WPARAM>(combo_.ListCount()), combo_.ListCount() * kBytesPerEntry);
    for (int i = 0; i < combo_.ListCount(); ++i) {
      SendMessageW(list_, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(base::ToUtf16(combo_.List(i)).c_str()));
    }
    Send(CB_SETCURSEL, static_cast<WPARAM>(combo_.ListIndex()));
    if (edit_ != nullptr) {  // emptying the list has emptied the edit part too
      if (WindowText(edit_) != typed) SetWindowTextW(edit_, typed.c_str());
      SetEditSelection(edit_, selection);
    }
    SendMessageW(list_, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(window(), nullptr, TRUE);
  }

  // What the box shows, with as little of a list as that needs.
  void ShowSelection() {
    if (edit_ == nullptr && !filled_) {
      const bool chosen = combo_.ListIndex() >= 0;
      if ((Send(CB_GETCURSEL) == 0) == chosen && WindowText(window()) == Wide(combo_.text())) return;
      Send(CB_RESETCONTENT);
      if (chosen) {
        Send(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Wide(combo_.text()).c_str()));
        Send(CB_SETCURSEL, 0);
      }
      return;
    }
    if (filled_ && Send(CB_GETCURSEL) != combo_.ListIndex()) {
      Send(CB_SETCURSEL, static_cast<WPARAM>(combo_.ListIndex()));
    }
    if (edit_ != nullptr) {
      const std::wstring text = Wide(combo_.text());
      if (WindowText(edit_) != text) SetWindowTextW(edit_, text.c_str());
    }
  }

  void TellChosen() noexcept {
    if (!filled_) return;
    const auto index = static_cast<int>(Send(CB_GETCURSEL));
    if (index == combo_.ListIndex()) return;
    owner().Event([&] { combo_.Chosen(index); });
  }

  // Closing the list may put the former choice back (Esc), or the marked entry's text into the edit part (Enter),
  // without a word.
  void FollowQuietChange() noexcept {
    if (edit_ == nullptr) {
      TellChosen();
      return;
    }
    owner().Event([this] {
      const std::string text = Narrow(WindowText(edit_));
      if (text == combo_.text()) return;
      const auto index = filled_ ? static_cast<int>(Send(CB_GETCURSEL)) : -1;
      if (index >= 0 && index < combo_.ListCount() && combo_.List(index) == text) {
        combo_.Chosen(index);
      } else {
        combo_.Typed(text);
      }
    });
  }

  // Opens the list at the entry that the box shows; text and caret stay as they are.
  void DropDown() {
    if (Send(CB_GETDROPPEDSTATE) != 0) return;
    if (!filled_) Fill();
    const controls::TextRange selection = combo_.selection();
    Send(CB_SHOWDROPDOWN, TRUE);
    ShowSelection();
    if (edit_ != nullptr) SetEditSelection(edit_, selection);
    const int match = combo_.ListIndex() < 0 ? combo_.FindString(combo_.text()) : -1;
    if (match >= 0) SendMessageW(list_, LB_SETTOPINDEX, static_cast<WPARAM>(match), 0);
    SetCursor(LoadCursorW(nullptr, IDC_ARROW));  // opening by code while the user types hides the pointer
  }

  ComboBox& combo_;
  HWND edit_ = nullptr;  // null in a box that can only be chosen from
  HWND list_ = nullptr;
  bool filled_ = false;
};

}  // namespace

std::unique_ptr<ControlWindow> MakeComboWindow(ControlOwner& owner, controls::Control& model) {
  return std::make_unique<ComboWindow>(owner, static_cast<ComboBox&>(model));
}

}  // namespace quenta::platform
