// Toolbars: buttons with drawings and captions, drop-down menus, and a keyboard.
#include <algorithm>
#include <string>

#include "base/text.h"
#include "controls/commands.h"
#include "platform/win32/control_window.h"
#include "platform/win32/dpi.h"
#include "platform/win32/glyph_images.h"
#include "platform/win32/wide_text.h"

namespace quenta::platform {
namespace {

using controls::Aspect;
using controls::Toolbar;

constexpr int kMainImage = 24;   // in 1/96 inch
constexpr int kFrameImage = 16;  // of the smaller toolbars inside frames
constexpr int kSideAir = 8;      // beside a drawing, left and right together
constexpr int kOuterAir = 10;    // of the toolbar's height, outside its buttons' images

class ToolbarWindow final : public ControlWindow {
 public:
  ToolbarWindow(ControlOwner& owner, Toolbar& toolbar) : ControlWindow(owner, toolbar), toolbar_(toolbar) {}

  void Create(HWND parent) override {
    main_ = GetAncestor(parent, GA_ROOT) == parent;
    for (std::size_t i = 0; i < toolbar_.buttons().size(); ++i) commands_.push_back(owner().NewCommandId());
    CreateControl(parent, TOOLBARCLASSNAMEW, {},
                  TBSTYLE_FLAT | TBSTYLE_LIST | TBSTYLE_TOOLTIPS | TBSTYLE_TRANSPARENT | CCS_NODIVIDER | CCS_NORESIZE |
                      CCS_NOPARENTALIGN);
    Send(TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON));
    Send(TB_SETEXTENDEDSTYLE, 0, TBSTYLE_EX_DRAWDDARROWS | TBSTYLE_EX_DOUBLEBUFFER);
    InsertButtons();
    Restyle();
  }

  void ModelChanged(Aspect aspect) override {
    if (aspect != Aspect::kButtons) return;
    for (std::size_t i = 0; i < commands_.size(); ++i) {
      const Toolbar::Button& button = toolbar_.buttons()[i];
      Send(TB_ENABLEBUTTON, commands_[i], button.enabled ? TRUE : FALSE);
      Send(TB_HIDEBUTTON, commands_[i], button.visible ? FALSE : TRUE);
    }
  }

  bool OwnsCommand(WORD id) const noexcept override {
    return std::find(commands_.begin(), commands_.end(), id) != commands_.end();
  }

  void OnCommand(WORD id, WORD) noexcept override { Press(IndexOf(id)); }

  std::optional<LRESULT> OnNotify(NMHDR& notification) noexcept override {
    if (notification.code == TBN_DROPDOWN) {
      DropDown(IndexOf(static_cast<WORD>(reinterpret_cast<const NMTOOLBARW&>(notification).iItem)));
      return TBDDRET_DEFAULT;
    }
    if (notification.code == TBN_GETINFOTIPW) {
      FillTip(reinterpret_cast<NMTBGETINFOTIPW&>(notification));
      return 0;
    }
    return std::nullopt;
  }

  void Restyle() override {
    ControlWindow::Restyle();
    const int size = Scale(main_ ? kMainImage : kFrameImage, owner().dpi());
    std::vector<std::string> keys;
    for (const Toolbar::Button& button : toolbar_.buttons()) keys.push_back(button.key);
    // The air around a drawing is part of its image: not every version of the control keeps to a padding.
    const Metrics& metrics = owner().metrics();
    const SIZE cell{size + Scale(kSideAir, owner().dpi()),
                    (main_ ? metrics.toolbar : metrics.frame_toolbar) - Scale(kOuterAir, owner().dpi())};
    ImageList images(owner().common_controls(), keys, cell, size);
    ImageList disabled(owner().common_controls(), keys, cell, size, true);
    Send(TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(images.get()));
    Send(TB_SETDISABLEDIMAGELIST, 0, reinterpret_cast<LPARAM>(disabled.get()));
    // The toolbar has let go of the former lists, which go now.
    images_ = std::move(images);
    disabled_images_ = std::move(disabled);
    Send(TB_SETPADDING, 0, MAKELPARAM(2, 2));
    Send(TB_AUTOSIZE);
  }

  void BeforeDestroy() noexcept override {
    Send(TB_SETIMAGELIST, 0, 0);
    Send(TB_SETDISABLEDIMAGELIST, 0, 0);
    ControlWindow::BeforeDestroy();
  }

 protected:
  std::optional<LRESULT> OnMessage(HWND, UINT message, WPARAM wparam, LPARAM lparam) noexcept override {
    switch (message) {
      case WM_GETDLGCODE: {
        const auto* const key = reinterpret_cast<const MSG*>(lparam);
        const bool enter = key != nullptr && key->message == WM_KEYDOWN && key->wParam == VK_RETURN;
        return DLGC_WANTARROWS | (enter ? DLGC_WANTMESSAGE : 0);
      }
      case WM_SETFOCUS:
        MoveHot(-1, +1);
        return std::nullopt;
      case WM_KILLFOCUS:
        Send(TB_SETHOTITEM, static_cast<WPARAM>(-1));
        return std::nullopt;
      case WM_KEYDOWN:
        return OnKey(wparam);
      default:
        return std::nullopt;
    }
  }

 private:
  void InsertButtons() {
    std::vector<TBBUTTON> buttons;
    // The toolbar may keep pointers to the captions instead of copies.
    captions_.clear();
    for (const Toolbar::Button& button : toolbar_.buttons()) captions_.push_back(Wide(button.caption));
    for (std::size_t i = 0; i < commands_.size(); ++i) {
      const Toolbar::Button& button = toolbar_.buttons()[i];
      if (button.starts_group) {
        TBBUTTON separator{};
        separator.fsStyle = BTNS_SEP;
        buttons.push_back(separator);
      }
      TBBUTTON data{};
      data.iBitmap = static_cast<int>(i);
      data.idCommand = commands_[i];
      data.fsState = static_cast<BYTE>((button.enabled ? TBSTATE_ENABLED : 0) | (button.visible ? 0 : TBSTATE_HIDDEN));
      data.fsStyle = static_cast<BYTE>(BTNS_AUTOSIZE | BTNS_SHOWTEXT | (button.menu.empty() ? 0 : BTNS_DROPDOWN));
      data.iString = reinterpret_cast<INT_PTR>(captions_[i].c_str());
      buttons.push_back(data);
      names().Set(window(), L"Button" + Wide(base::DecimalText(static_cast<long long>(i))), button.key, commands_[i]);
    }
    Send(TB_ADDBUTTONSW, buttons.size(), reinterpret_cast<LPARAM>(buttons.data()));
  }

  // Position of the button with this command among the model's; behind the last one when there is none.
  std::size_t IndexOf(WORD id) const noexcept {
    return static_cast<std::size_t>(std::find(commands_.begin(), commands_.end(), id) - commands_.begin());
  }

  void Press(std::size_t index) noexcept {
    if (index >= commands_.size()) return;
    const Toolbar::Button& button = toolbar_.buttons()[index];
    if (!button.enabled || !button.visible) return;
    owner().Command([this, index] { toolbar_.Clicked(std::string(toolbar_.buttons()[index].key)); });
  }

  void DropDown(std::size_t index) noexcept {
    if (index >= commands_.size()) return;
    owner().Command([this, index] {
      const std::vector<Toolbar::MenuEntry> entries = toolbar_.buttons()[index].menu;
      const OwnedMenu menu(CreatePopupMenu());
      std::vector<OwnedAtom> names_of_entries;
      for (std::size_t i = 0; i < entries.size(); ++i) {
        AppendMenuW(menu.get(), MF_STRING, i + 1, Wide(entries[i].caption).c_str());
        names_of_entries.push_back(NameLastEntry(menu.get(), entries[i].key));
      }
      RECT button{};
      Send(TB_GETRECT, commands_[index], reinterpret_cast<LPARAM>(&button));
      MapWindowPoints(window(), nullptr, reinterpret_cast<POINT*>(&button), 2);
      const auto chosen = static_cast<std::size_t>(TrackPopupMenu(
          menu.get(), TPM_RETURNCMD | TPM_LEFTALIGN | TPM_TOPALIGN, button.left, button.bottom, 0, window(), nullptr));
      if (chosen != 0) toolbar_.MenuClicked(entries[chosen - 1].key);
    });
  }

  void FillTip(NMTBGETINFOTIPW& tip) const noexcept {
    const std::size_t index = IndexOf(static_cast<WORD>(tip.iItem));
    if (index >= commands_.size() || tip.cchTextMax <= 0) return;
    try {
      const std::wstring text = Wide(toolbar_.buttons()[index].tooltip);
      const std::size_t length = std::min(text.size(), static_cast<std::size_t>(tip.cchTextMax) - 1);
      text.copy(tip.pszText, length);
      tip.pszText[length] = L'\0';
    } catch (...) {  // no tip
    }
  }

  std::optional<LRESULT> OnKey(WPARAM key) noexcept {
    const auto hot = static_cast<int>(Send(TB_GETHOTITEM));
    switch (key) {
      case VK_LEFT:
        MoveHot(hot, -1);
        return 0;
      case VK_RIGHT:
        MoveHot(hot, +1);
        return 0;
      case VK_HOME:
        MoveHot(-1, +1);
        return 0;
      case VK_RETURN:
      case VK_SPACE:
        Press(HotIndex(hot));
        return 0;
      case VK_DOWN: {
        const std::size_t index = HotIndex(hot);
        if (index < commands_.size() && !toolbar_.buttons()[index].menu.empty()) DropDown(index);
        return 0;
      }
      default:
        return std::nullopt;
    }
  }

  // Marks the next button in this direction that can be pressed; the mark stays where it is when there is none.
  void MoveHot(int from, int step) noexcept {
    const auto count = static_cast<int>(Send(TB_BUTTONCOUNT));
    for (int i = from + step; i >= 0 && i < count; i += step) {
      const std::size_t index = HotIndex(i);
      if (index < commands_.size() && toolbar_.buttons()[index].enabled && toolbar_.buttons()[index].visible) {
        Send(TB_SETHOTITEM, static_cast<WPARAM>(i));
        return;
      }
    }
  }

  // The model's button at a position of the window, which counts separators too.
  std::size_t HotIndex(int position) const noexcept {
    TBBUTTON button{};
    if (position < 0 || !Send(TB_GETBUTTON, static_cast<WPARAM>(position), reinterpret_cast<LPARAM>(&button))) {
      return commands_.size();
    }
    return IndexOf(static_cast<WORD>(button.idCommand));
  }

  Toolbar& toolbar_;
  bool main_ = false;
  std::vector<WORD> commands_;  // of the model's buttons, in their order
  std::vector<std::wstring> captions_;
  ImageList images_;
  ImageList disabled_images_;
};

}  // namespace

std::unique_ptr<ControlWindow> MakeToolbarWindow(ControlOwner& owner, controls::Control& model) {
  return std::make_unique<ToolbarWindow>(owner, static_cast<Toolbar&>(model));
}

}  // namespace quenta::platform
