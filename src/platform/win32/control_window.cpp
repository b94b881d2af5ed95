#include "platform/win32/control_window.h"

#include "base/error.h"
#include "platform/win32/wide_text.h"

namespace quenta::platform {
namespace {

using controls::ControlKind;

constexpr UINT_PTR kSubclassId = 1;

bool CanHaveFocus(ControlKind kind) {
  return kind != ControlKind::kLabel && kind != ControlKind::kFrame && kind != ControlKind::kProgressBar;
}

}  // namespace

void ControlWindow::CreateControl(HWND parent, const wchar_t* window_class, const std::string& text, DWORD style,
                                  DWORD extended_style) {
  id_ = owner_.NewCommandId();
  style |= WS_CHILD;
  if (CanHaveFocus(model_.kind())) style |= WS_TABSTOP;
  if (!model_.enabled()) style |= WS_DISABLED;
  window_ = CreateWindowExW(extended_style, window_class, Wide(text).c_str(), style, 0, 0, 0, 0, parent,
                            reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id_)), ThisModule(), nullptr);
  if (window_ == nullptr) {
    throw base::Error(base::error_number::kInternal, "Windows does not make the window of " + model_.name());
  }
  Watch(window_);
  names_.Set(window_, kControlNameProperty, model_.name());
  Restyle();
}

void ControlWindow::Watch(HWND part) noexcept {
  owner_.common_controls().SetWindowSubclass(part, &ControlWindow::SubclassProc, kSubclassId,
                                             reinterpret_cast<DWORD_PTR>(this));
}

void ControlWindow::Restyle() {
  Send(WM_SETFONT, reinterpret_cast<WPARAM>(owner_.font()), TRUE);
}

void ControlWindow::BeforeDestroy() noexcept {
  names_.Clear();
}

bool ControlWindow::LeaveForCommand() noexcept {
  bool taken = true;
  BeforeKey();
  owner_.Event([&] { taken = model_.LeftForCommand(); });
  return taken;
}

void ControlWindow::ComeBack() noexcept {
  owner_.Event([this] { model_.BackFromCommand(); });
}

WPARAM ControlWindow::Typing(HWND window, WPARAM unit) noexcept {
  BeforeKey();
  auto key = static_cast<int>(CharacterFor(unit));
  owner_.Event([&] { key = model_.KeyPress(key); });
  return IsWindow(window) ? static_cast<WPARAM>(key) : 0;
}

LRESULT CALLBACK ControlWindow::SubclassProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                                             DWORD_PTR control) noexcept {
  auto* const self = reinterpret_cast<ControlWindow*>(control);
  const CommonControls& common = self->owner_.common_controls();
  if (message == WM_NCDESTROY) {
    common.RemoveWindowSubclass(window, &ControlWindow::SubclassProc, id);
    return common.DefSubclassProc(window, message, wparam, lparam);
  }
  // What the message starts may end with the destruction of the form's window.
  const std::shared_ptr<void> alive = self->owner_.KeepAlive();
  switch (message) {
    case WM_SETFOCUS:
    case WM_KILLFOCUS: {
      self->OnMessage(window, message, wparam, lparam);
      const LRESULT result = common.DefSubclassProc(window, message, wparam, lparam);
      self->owner_.FocusMoved();
      return result;
    }
    case WM_KEYDOWN:
      self->BeforeKey();
      self->owner_.Event([&] { self->model_.KeyDown(static_cast<int>(wparam)); });
      if (!IsWindow(window)) return 0;
      break;
    case WM_CHAR:
      wparam = self->Typing(window, wparam);
      if (wparam == 0) return 0;
      break;
    default:
      break;
  }
  if (const auto result = self->OnMessage(window, message, wparam, lparam)) return *result;
  return common.DefSubclassProc(window, message, wparam, lparam);
}

std::unique_ptr<ControlWindow> MakeControlWindow(ControlOwner& owner, controls::Control& model) {
  switch (model.kind()) {
    case ControlKind::kTextField:
    case ControlKind::kMaskEdit:
      return MakeEditWindow(owner, model);
    case ControlKind::kComboBox:
      return MakeComboWindow(owner, model);
    case ControlKind::kCheckBox:
    case ControlKind::kOptionButton:
    case ControlKind::kCommandButton:
      return MakeButtonWindow(owner, model);
    case ControlKind::kDatePicker:
      return MakeDateWindow(owner, model);
    case ControlKind::kLabel:
      return MakeLabelWindow(owner, model);
    case ControlKind::kProgressBar:
      return MakeProgressWindow(owner, model);
    case ControlKind::kListView:
      return MakeListWindow(owner, model);
    case ControlKind::kTabStrip:
      return MakeTabWindow(owner, model);
    case ControlKind::kToolbar:
      return MakeToolbarWindow(owner, model);
    case ControlKind::kFrame:
      return MakeFrameWindow(owner, model);
  }
  throw base::Error(base::error_number::kInternal, "No window for " + model.name());
}

}  // namespace quenta::platform
