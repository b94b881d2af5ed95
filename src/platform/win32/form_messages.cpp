// The window procedure of forms, and the keys that belong to a form as a whole.
#include "platform/win32/dpi.h"
#include "platform/win32/form_window.h"
#include "platform/win32/form_window_messages.h"
#include "platform/win32/wide_text.h"

namespace quenta::platform {
namespace {

bool Pressed(int key) noexcept {
  return (GetKeyState(key) & 0x8000) != 0;
}

}  // namespace

LRESULT CALLBACK FormWindow::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
  if (message == WM_NCCREATE) {
    auto* const form = static_cast<FormWindow*>(reinterpret_cast<const CREATESTRUCTW*>(lparam)->lpCreateParams);
    form->window_ = window;
    form->keyboard()->Acquire();
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(form));
  }
  auto* const form = reinterpret_cast<FormWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (form == nullptr) return DefDlgProcW(window, message, wparam, lparam);
  const std::shared_ptr<FormWindow> alive = form->shared_from_this();
  try {
    return form->OnMessage(message, wparam, lparam);
  } catch (...) {  // out of memory: the message has no effect
    return 0;
  }
}

LRESULT FormWindow::OnMessage(UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_COMMAND:
      return OnCommand(LOWORD(wparam), HIWORD(wparam), reinterpret_cast<HWND>(lparam));
    case WM_NOTIFY:
      return OnNotify(*reinterpret_cast<NMHDR*>(lparam), wparam, lparam);
    case WM_SIZE:
      if (wparam != SIZE_MINIMIZED) ArrangeControls();
      return 0;
    case WM_GETMINMAXINFO:
      if (!controls_.empty() && !IsIconic(window_)) {
        const SIZE least = MinimumWindowSize();
        reinterpret_cast<MINMAXINFO*>(lparam)->ptMinTrackSize = {least.cx, least.cy};
      }
      return 0;
    case WM_DPICHANGED: {
      dpi_ = HIWORD(wparam);
      Restyle();
      const RECT& place = *reinterpret_cast<const RECT*>(lparam);
      SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                   SWP_NOZORDER | SWP_NOACTIVATE);
      ArrangeControls();
      return 0;
    }
    case WM_SYSCOLORCHANGE:
    case WM_SETTINGCHANGE:
    case WM_THEMECHANGED:
      for (const auto& control : controls_) {
        if (message == WM_SYSCOLORCHANGE) SendMessageW(control->window(), message, wparam, lparam);
      }
      Restyle();
      ArrangeControls();
      break;
    case WM_INITMENUPOPUP:
      menu_.Opening(GetMenu(window_), reinterpret_cast<HMENU>(wparam));
      break;
    case WM_ACTIVATE:
      OnActivate(wparam);
      break;
    case kDialogMessage:
      BringDialogToFront(false);
      return 0;
    case WM_SETCURSOR:
      // What Windows makes of a click on a disabled window.
      if (static_cast<SHORT>(LOWORD(lparam)) == HTERROR && HIWORD(lparam) == WM_LBUTTONDOWN) {
        if (BringDialogToFront(true)) return TRUE;
        const DWORD at = GetMessagePos();
        if (DefWindowProcW(window_, WM_NCHITTEST, 0, static_cast<LPARAM>(at)) == HTCLOSE) RequestClose();
      }
      if (form_->mouse_pointer() == controls::MousePointer::kHourglass) {
        SetCursor(LoadCursorW(nullptr, IDC_WAIT));
        return TRUE;
      }
      break;
    case WM_CLOSE:
      RequestClose();
      return 0;
    case WM_QUERYENDSESSION:
    case WM_ENDSESSION:
      return OnEndSession(message, wparam);
    case kShortcutMessage:
      if (IsWindowEnabled(window_) && wparam < form_->shortcuts().size()) {
        Command([this, wparam] {
          if (const auto run = form_->shortcuts()[wparam].run) run();
        });
      }
      return 0;
    case kTabMessage:
      if (const ControlWindow* const tabs = IsWindowEnabled(window_) ? Find(form_->layout().tabs) : nullptr) {
        SendMessageW(tabs->window(), TCM_SETCURFOCUS, wparam, 0);
      }
      return 0;
    case kEscapeMessage:
      OnEscape();
      return 0;
    case kDestroyMessage:
      // An event that runs at this moment, further up the stack, posts the message again when it ends.
      if (closing_ && events_ == 0) DestroyWindow(window_);
      return 0;
    case WM_DESTROY:
      Remember();
      for (const auto& control : controls_) control->BeforeDestroy();
      names_.Clear();
      break;
    case WM_NCDESTROY: {
      const HWND window = window_;
      OnDestroyed();
      return DefDlgProcW(window, message, wparam, lparam);
    }
    default:
      break;
  }
  return DefDlgProcW(window_, message, wparam, lparam);
}

LRESULT FormWindow::OnCommand(WORD id, WORD code, HWND control) {
  if (ControlWindow* const shown = Find(control)) {
    shown->OnCommand(id, code);
    return 0;
  }
  if (id == IDCANCEL) {  // Esc: acted on outside the keyboard's hook
    PostMessageW(window_, kEscapeMessage, 0, 0);
    return 0;
  }
  if (const auto action = menu_.Action(id)) {
    Command(action);
    return 0;
  }
  // Enter presses the default button by its identifier alone when it stands in a frame.
  for (const auto& shown : controls_) {
    if (shown->OwnsCommand(id)) {
      shown->OnCommand(id, code);
      return 0;
    }
  }
  return 0;
}

LRESULT FormWindow::OnNotify(NMHDR& notification, WPARAM wparam, LPARAM lparam) {
  if (notification.code == TTN_GETDISPINFOW && notification.hwndFrom == tooltips_) {
    const ControlWindow* const control = Find(reinterpret_cast<HWND>(notification.idFrom));
    tooltip_text_ = control != nullptr ? Wide(control->model().tooltip()) : std::wstring();
    reinterpret_cast<NMTTDISPINFOW&>(notification).lpszText = tooltip_text_.data();
    return 0;
  }
  const auto found = by_window_.find(notification.hwndFrom);
  if (found != by_window_.end()) {
    if (const auto result = found->second->OnNotify(notification)) return *result;
  }
  return DefDlgProcW(window_, WM_NOTIFY, wparam, lparam);
}

// The session's end waits for the form's own question; what has been asked once is not asked again at the end itself.
LRESULT FormWindow::OnEndSession(UINT message, WPARAM wparam) {
  if (message == WM_QUERYENDSESSION) {
    bool unloaded = closing_;
    if (!unloaded) {
      ShutdownBlockReasonCreate(window_, Wide(form_->caption()).c_str());
      Command([&] { unloaded = form_->Unload(); });
      ShutdownBlockReasonDestroy(window_);
    }
    return unloaded ? TRUE : FALSE;
  }
  if (wparam != FALSE && !closing_) {
    closing_ = true;
    Detach();
    form_->WindowLost();
  }
  return 0;
}

void FormWindow::OnActivate(WPARAM wparam) noexcept {
  const bool active = LOWORD(wparam) != WA_INACTIVE;
  vanished_while_active_ = !active && !closing_ && !IsWindowVisible(window_);
  if (!active) activate_when_enabled_ = false;  // the user has gone elsewhere
  // By the task bar or by a program: the form cannot be used, and must not cover the one that can.
  if (active && !IsWindowEnabled(window_)) PostMessageW(window_, kDialogMessage, 0, 0);
}

void FormWindow::OnEscape() noexcept {
  if (!IsWindowEnabled(window_)) return;
  for (controls::CommandButton* const button : form_->layout().buttons) {
    if (!button->is_cancel()) continue;
    Command([button] { button->Clicked(); });
    return;
  }
  RequestClose();
}

void FormWindow::OnDestroyed() noexcept {
  SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
  window_ = nullptr;
  keyboard()->Release();
  if (!closing_) {
    // Not by us: the host has destroyed the window.
    closing_ = true;
    Detach();
    form_->WindowLost();
    if (vanished_while_active_) ActivateFormer();
  }
  // A copy: what it does may end in this object's destruction.
  const auto gone = gone_;
  gone(*this);
}

bool FormWindow::TranslateKey(const MSG& message) noexcept {
  if (message.message != WM_KEYDOWN || closing_ || Pressed(VK_MENU) || !IsWindowEnabled(window_)) return false;
  const bool control = Pressed(VK_CONTROL);
  const bool shift = Pressed(VK_SHIFT);
  constexpr LPARAM kRepeated = LPARAM{1} << 30;
  const auto post = [&](UINT what, std::size_t position) {
    if ((message.lParam & kRepeated) == 0) PostMessageW(window_, what, position, 0);
    return true;
  };
  const controls::TabStrip* const tabs = form_->layout().tabs;
  if (message.wParam == VK_TAB && control && tabs != nullptr && tabs->visible() && tabs->enabled() &&
      tabs->Count() > 1) {
    const int step = shift ? tabs->Count() - 1 : 1;
    return post(kTabMessage, static_cast<std::size_t>((tabs->selected() + step) % tabs->Count()));
  }
  const std::vector<controls::Shortcut>& shortcuts = form_->shortcuts();
  for (std::size_t i = 0; i < shortcuts.size(); ++i) {
    if (static_cast<WPARAM>(shortcuts[i].key) == message.wParam && shortcuts[i].control == control &&
        shortcuts[i].shift == shift) {
      return post(kShortcutMessage, i);
    }
  }
  return false;
}

}  // namespace quenta::platform
