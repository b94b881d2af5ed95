#include "platform/win32/menu_window.h"

#include "platform/win32/wide_text.h"
#include "platform/win32/window_names.h"

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
    const bool enabled = item.enabled && (item.can_run == nullptr || item.can_run());
    const UINT state = (enabled ? MF_ENABLED : MF_GRAYED) | (item.checked ? MF_CHECKED : MF_UNCHECKED);
    if (item.items.empty()) {
      AppendMenuW(menu, MF_STRING | state, kFirstCommand + entries_.size(), caption.c_str());
      entries_.push_back({item.on_click, item.enabled ? item.can_run : nullptr, NameLastEntry(menu, item.name)});
      continue;
    }
    OwnedMenu below(CreatePopupMenu());
    Append(below.get(), item.items);
    if (AppendMenuW(menu, MF_POPUP | state, reinterpret_cast<UINT_PTR>(below.get()), caption.c_str())) below.release();
  }
}

void MenuWindow::Opening(HMENU bar, HMENU opened) const noexcept {
  bool ours = false;
  for (int i = 0; i < GetMenuItemCount(bar) && !ours; ++i) ours = GetSubMenu(bar, i) == opened;
  for (int i = 0; ours && i < GetMenuItemCount(opened); ++i) {
    const UINT command = GetMenuItemID(opened, i);
    if (command < kFirstCommand || command - kFirstCommand >= entries_.size()) continue;
    const Entry& entry = entries_[command - kFirstCommand];
    if (entry.can_run == nullptr) continue;
    bool can_run = false;
    try {
      can_run = entry.can_run();
    } catch (...) {  // what cannot be told cannot be run
    }
    EnableMenuItem(opened, static_cast<UINT>(i), MF_BYPOSITION | (can_run ? MF_ENABLED : MF_GRAYED));
  }
}

std::function<void()> MenuWindow::Action(WORD command) const {
  const std::size_t index = static_cast<std::size_t>(command) - kFirstCommand;
  return command >= kFirstCommand && index < entries_.size() ? entries_[index].run : std::function<void()>();
}

}  // namespace quenta::platform
