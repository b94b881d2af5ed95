#include "platform/win32/window_names.h"

#include <algorithm>

#include "platform/win32/wide_text.h"

namespace quenta::platform {

void WindowNames::Set(HWND window, const std::wstring& property, const std::string& name, WORD high_word) noexcept {
  try {
    std::erase_if(entries_, [&](const Entry& entry) { return entry.window == window && entry.property == property; });
    OwnedAtom atom(GlobalAddAtomW(Wide(name).c_str()));
    if (!atom) return;
    const auto value = static_cast<ULONG_PTR>(static_cast<DWORD>(MAKELONG(atom.get(), high_word)));
    if (SetPropW(window, property.c_str(), reinterpret_cast<HANDLE>(value))) {
      entries_.push_back({window, property, std::move(atom)});
    }
  } catch (...) {  // out of memory: the window works without its name
  }
}

void WindowNames::Clear() noexcept {
  for (const Entry& entry : entries_) RemovePropW(entry.window, entry.property.c_str());
  entries_.clear();
}

OwnedAtom NameLastEntry(HMENU menu, const std::string& name) {
  OwnedAtom atom(GlobalAddAtomW(Wide(name).c_str()));
  MENUITEMINFOW data{};
  data.cbSize = sizeof(data);
  data.fMask = MIIM_DATA;
  data.dwItemData = atom.get();
  SetMenuItemInfoW(menu, static_cast<UINT>(GetMenuItemCount(menu) - 1), TRUE, &data);
  return atom;
}

}  // namespace quenta::platform
