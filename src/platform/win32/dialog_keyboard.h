// The forms' keyboard in a host whose message loop knows no dialogs: Tab, mnemonics, Enter, Esc and shortcuts.
#pragma once

#include <memory>

#include <windows.h>

#include "platform/win32/handles.h"

namespace quenta::platform {

class FormWindow;

// A hook on the thread's message queue that treats keys for the forms as a dialog's loop would, before the host's loop
// sees them. It is there while there are forms. All calls come from the forms' thread.
class DialogKeyboard {
 public:
  // Called for each form's window that is made. Without a hook a form still works, by mouse and by plain typing.
  void Acquire() noexcept;
  // Called when a form's window is gone; with the last one the hook goes too. Safe from inside the hook.
  void Release() noexcept;
  // True until the hook's code is left for good.
  bool busy() const noexcept { return static_cast<bool>(hook_); }

 private:
  static LRESULT CALLBACK Hook(int code, WPARAM wparam, LPARAM lparam) noexcept;
  bool Handle(FormWindow& form, const MSG& message) noexcept;

  int forms_ = 0;
  int depth_ = 0;  // of calls of the hook within each other, as when a key's command asks a question
  OwnedHook hook_;
};

}  // namespace quenta::platform
