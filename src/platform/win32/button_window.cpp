// Check boxes, option buttons and command buttons.
#include "controls/simple_controls.h"
#include "platform/win32/control_window.h"
#include "platform/win32/wide_text.h"

namespace quenta::platform {
namespace {

using controls::Aspect;
using controls::ControlKind;

class ToggleWindow final : public ControlWindow {
 public:
  ToggleWindow(ControlOwner& owner, controls::Toggle& toggle) : ControlWindow(owner, toggle), toggle_(toggle) {}

  void Create(HWND parent) override {
    CreateControl(parent, WC_BUTTONW, toggle_.caption(), IsOption() ? BS_AUTORADIOBUTTON : BS_AUTOCHECKBOX);
    ModelChanged(Aspect::kValue);
  }

  void ModelChanged(Aspect aspect) override {
    const Silence silence(*this);
    // Also when it is the same: for an option button this says whether Tab stops at it.
    if (aspect == Aspect::kValue) Send(BM_SETCHECK, toggle_.value() ? BST_CHECKED : BST_UNCHECKED);
  }

  void OnCommand(WORD, WORD code) noexcept override {
    if (code != BN_CLICKED || silent()) return;
    const bool value = Send(BM_GETCHECK) == BST_CHECKED;
    // An option button that merely gets the focus says that it was clicked, too.
    if (IsOption() && value == toggle_.value()) return;
    owner().Event([this, value] {
      if (IsOption()) owner().ClearOtherOptions(*this);
      toggle_.Clicked(value);
    });
  }

 private:
  bool IsOption() const noexcept { return toggle_.kind() == ControlKind::kOptionButton; }

  controls::Toggle& toggle_;
};

class CommandButtonWindow final : public ControlWindow {
 public:
  CommandButtonWindow(ControlOwner& owner, controls::CommandButton& button)
      : ControlWindow(owner, button), button_(button) {}

  void Create(HWND parent) override {
    CreateControl(parent, WC_BUTTONW, button_.caption(), button_.is_default() ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON);
  }

  void ModelChanged(Aspect) override {}

  void OnCommand(WORD, WORD code) noexcept override {
    if (code == BN_CLICKED) {
      owner().Command([this] { button_.Clicked(); });
    }
  }

 private:
  controls::CommandButton& button_;
};

}  // namespace

std::unique_ptr<ControlWindow> MakeButtonWindow(ControlOwner& owner, controls::Control& model) {
  if (model.kind() == ControlKind::kCommandButton) {
    return std::make_unique<CommandButtonWindow>(owner, static_cast<controls::CommandButton&>(model));
  }
  return std::make_unique<ToggleWindow>(owner, static_cast<controls::Toggle&>(model));
}

}  // namespace quenta::platform
