#include "platform/win32/menu_window.h"

#include "platform/win32/wide_text.h"

namespace quenta::platform {

MenuWindow::MenuWindow(const std::vector<controls::MenuItem>& items, Kind kind)
    : menu_(kind == Kind::kBar ? CreateMenu() : CreatePopupMenu()) {
  Append(menu_.get(), items);
}

void MenuWindow::Append(HMENU menu, const std::vector<controls::MenuItem>& items) {
  for (const controls::MenuItem& item : items) {
    if (!item.in_menu_bar) continue;
    if (item.caption.empty()) {
      AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
      continue;
    }
    std::wstring caption = Wide(item.caption);
    if (!item.shortcut.empty()) caption += L'\t' + Wide(item.shortcut);
    const UINT state = (item.enabled ? MF_ENABLED : MF_GRAYED) | (item.checked ? MF_CHECKED : MF_UNCHECKED);
    if (item.items.empty()) {
      AppendMenuW(menu, MF_STRING | state, kFirstCommand + actions_.size(), caption.c_str());
      actions_.push_back(item.on_click);
      continue;
    }
    OwnedMenu below(CreatePopupMenu());
    Append(below.get(), item.items);
    if (AppendMenuW(menu, MF_POPUP | state, reinterpret_cast<UINT_PTR>(below.get()), caption.c_str())) below.release();
  }
}

std::function<void()> MenuWindow::Action(WORD command) const {
  const std::size_t index = static_cast<std::size_t>(command) - kFirstCommand;
  return command >= kFirstCommand && index < actions_.size() ? actions_[index] : std::function<void()>();
}

}  // namespace quenta::platform
