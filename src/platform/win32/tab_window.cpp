// The strip of tabs above the pages. It is no higher than its tabs: the pages are frames below it.
#include <string>

#include "base/text.h"
#include "controls/commands.h"
#include "platform/win32/control_window.h"
#include "platform/win32/dpi.h"
#include "platform/win32/wide_text.h"

namespace quenta::platform {
namespace {

using controls::Aspect;
using controls::TabStrip;

class TabWindow final : public ControlWindow {
 public:
  TabWindow(ControlOwner& owner, TabStrip& tabs) : ControlWindow(owner, tabs), tabs_(tabs) {}

  void Create(HWND parent) override {
    CreateControl(parent, WC_TABCONTROLW, {}, WS_CLIPSIBLINGS);
    ShowTabs();
  }

  void ModelChanged(Aspect aspect) override {
    const Silence silence(*this);
    if (aspect == Aspect::kItems) ShowTabs();
    if (aspect == Aspect::kSelection || aspect == Aspect::kItems) {
      Select();
      owner().PageChanged();
    }
  }

  std::optional<LRESULT> OnNotify(NMHDR& notification) noexcept override {
    if (notification.code != TCN_SELCHANGE) return std::nullopt;
    if (!silent()) {
      const auto index = static_cast<int>(Send(TCM_GETCURSEL));
      owner().Command([this, index] { tabs_.Chosen(index); });
      Select();  // the event may have removed the tab, or chosen another one
      owner().PageChanged();
    }
    return 0;
  }

  void Restyle() override {
    ControlWindow::Restyle();
    Send(TCM_SETPADDING, 0, MAKELPARAM(Scale(kPadding, owner().dpi()), 3));
    Send(TCM_SETITEMSIZE, 0, MAKELPARAM(0, owner().metrics().tab_strip - Scale(2, owner().dpi())));
  }

 private:
  static constexpr int kPadding = 10;  // beside a caption, in 1/96 inch

  void ShowTabs() {
    Send(TCM_DELETEALLITEMS);
    names().Clear();
    names().Set(window(), kControlNameProperty, tabs_.name());
    int index = 0;
    for (const TabStrip::Tab& tab : tabs_.tabs()) {
      std::wstring caption = Wide(tab.caption);
      TCITEMW item{};
      item.mask = TCIF_TEXT;
      item.pszText = caption.data();
      Send(TCM_INSERTITEMW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
      names().Set(window(), L"Tab" + Wide(base::DecimalText(index)), tab.key);
      ++index;
    }
    Select();
  }

  void Select() noexcept {
    const Silence silence(*this);
    if (Send(TCM_GETCURSEL) != tabs_.selected()) Send(TCM_SETCURSEL, static_cast<WPARAM>(tabs_.selected()));
  }

  TabStrip& tabs_;
};

}  // namespace

std::unique_ptr<ControlWindow> MakeTabWindow(ControlOwner& owner, controls::Control& model) {
  return std::make_unique<TabWindow>(owner, static_cast<TabStrip&>(model));
}

}  // namespace quenta::platform
