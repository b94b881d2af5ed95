// Names of models on their windows, readable from any process: tests and assistive tools find controls by name.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <windows.h>

#include "platform/win32/handles.h"

namespace quenta::platform {

// Window properties set here, and how to read them in whatever process (GetPropW, then the low word is a global atom
// for GlobalGetAtomNameW):
//   ControlName   the model's name ("FXCodigo", "ListView2", "frmMain"), on the window of every control and form
//   Button0 …     the key of each button of a toolbar, on the toolbar's window; the high word is the command to send to
//                 the toolbar's parent (WM_COMMAND) to press it
//   Tab0 …        the key of each tab, on the tab strip's window, in the order of the tabs
// The entries of menus have the same atoms as their item data (MENUITEMINFOW).
class WindowNames {
 public:
  // Sets or replaces a property. A failure leaves the window without it.
  void Set(HWND window, const std::wstring& property, const std::string& name, WORD high_word = 0) noexcept;
  // Takes every property off again, while the window still exists.
  void Clear() noexcept;

 private:
  struct Entry {
    HWND window;
    std::wstring property;
    OwnedAtom atom;
  };
  std::vector<Entry> entries_;
};

// Names the menu's last entry as long as the result lives.
OwnedAtom NameLastEntry(HMENU menu, const std::string& name);

inline constexpr wchar_t kControlNameProperty[] = L"ControlName";

}  // namespace quenta::platform
