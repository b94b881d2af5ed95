// Menus of a form as Windows shows them: the menu bar and pop-up menus.
#pragma once

#include <functional>
#include <vector>

#include "controls/commands.h"
#include "platform/win32/handles.h"

namespace quenta::platform {

class MenuWindow {
 public:
  enum class Kind { kBar, kPopup };

  // Command identifiers of menus run from here on; those of controls are below.
  static constexpr WORD kFirstCommand = 0x8000;

  MenuWindow() = default;
  MenuWindow(const std::vector<controls::MenuItem>& items, Kind kind);

  HMENU get() const noexcept { return menu_.get(); }
  // The menu belongs to a window from now on, which destroys it with itself.
  HMENU release() noexcept { return menu_.release(); }
  bool empty() const noexcept { return entries_.empty(); }

  // A menu of the bar opens: its entries show whether they can run now. Menus that are not the bar's stay as they are.
  void Opening(HMENU bar, HMENU opened) const noexcept;
  // What a command does; empty when the command is none of this menu, or does nothing.
  std::function<void()> Action(WORD command) const;

 private:
  void Append(HMENU menu, const std::vector<controls::MenuItem>& items);

  struct Entry {
    std::function<void()> run;
    std::function<bool()> can_run;  // none for an entry whose state never changes
    OwnedAtom name;
  };

  OwnedMenu menu_;
  std::vector<Entry> entries_;  // by command, from kFirstCommand
};

}  // namespace quenta::platform
