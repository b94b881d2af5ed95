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
  bool empty() const noexcept { return actions_.empty(); }

  // What a command does; empty when the command is none of this menu, or does nothing.
  std::function<void()> Action(WORD command) const;

 private:
  void Append(HMENU menu, const std::vector<controls::MenuItem>& items);

  OwnedMenu menu_;
  std::vector<std::function<void()>> actions_;  // by command, from kFirstCommand
};

}  // namespace quenta::platform
