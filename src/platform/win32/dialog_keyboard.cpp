#include "platform/win32/dialog_keyboard.h"

#include "platform/win32/form_window.h"

namespace quenta::platform {
namespace {

bool IsKeyMessage(const MSG& message) noexcept {
  return message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST;
}

// While a menu is open, or a window is moved by keys, the keys belong to that.
bool KeysBelongToMenu() noexcept {
  GUITHREADINFO info{};
  info.cbSize = sizeof(info);
  if (!GetGUIThreadInfo(GetCurrentThreadId(), &info)) return false;
  return (info.flags & (GUI_INMENUMODE | GUI_SYSTEMMENUMODE | GUI_POPUPMENUMODE | GUI_INMOVESIZE)) != 0;
}

}  // namespace

void DialogKeyboard::Acquire() noexcept {
  ++forms_;
  if (!hook_) hook_ = OwnedHook(SetWindowsHookExW(WH_GETMESSAGE, &Hook, nullptr, GetCurrentThreadId()));
}

void DialogKeyboard::Release() noexcept {
  if (--forms_ == 0 && depth_ == 0) hook_.reset();
}

LRESULT CALLBACK DialogKeyboard::Hook(int code, WPARAM wparam, LPARAM lparam) noexcept {
  MSG& message = *reinterpret_cast<MSG*>(lparam);
  // A message that is only looked at comes by again when it is removed.
  if (code == HC_ACTION && wparam == PM_REMOVE && IsKeyMessage(message) && !KeysBelongToMenu()) {
    if (const std::shared_ptr<FormWindow> form = FormWindow::OfWindow(message.hwnd)) {
      const std::shared_ptr<DialogKeyboard> keyboard = form->keyboard();
      const MSG copy = message;
      if (keyboard->Handle(*form, copy)) {
        message.message = WM_NULL;
        message.wParam = 0;
        message.lParam = 0;
      }
    }
  }
  // Windows finds the next hook without being told this one, which may be gone.
  return CallNextHookEx(nullptr, code, wparam, lparam);
}

bool DialogKeyboard::Handle(FormWindow& form, const MSG& message) noexcept {
  ++depth_;
  MSG copy = message;
  const bool handled = form.TranslateKey(message) || IsDialogMessageW(form.window(), &copy);
  if (--depth_ == 0 && forms_ == 0) hook_.reset();
  return handled;
}

}  // namespace quenta::platform
