#include "controls/commands.h"

#include <algorithm>

#include "base/error.h"

namespace quenta::controls {
namespace {

template <typename Buttons>
auto FindButton(Buttons& buttons, const std::string& key) {
  const auto found =
      std::find_if(buttons.begin(), buttons.end(), [&](const auto& button) { return button.key == key; });
  if (found == buttons.end()) throw base::Error(base::error_number::kInvalidCall, "Invalid procedure call or argument");
  return found;
}

}  // namespace

void TabStrip::Insert(int position, Tab tab) {
  const int index = std::clamp(position - 1, 0, Count());
  tabs_.insert(tabs_.begin() + index, std::move(tab));
  if (index <= selected_ && Count() > 1) ++selected_;
  Changed(Aspect::kItems);
}

void TabStrip::Remove(int position) {
  const int index = position - 1;
  if (index < 0 || index >= Count()) return;
  const bool was_selected = index == selected_;
  tabs_.erase(tabs_.begin() + index);
  if (selected_ > 0 && index <= selected_) --selected_;
  Changed(Aspect::kItems);
  if (was_selected) Changed(Aspect::kSelection);
}

const std::string& TabStrip::selected_key() const noexcept {
  static const std::string kNone;
  return selected_ < Count() ? tabs_[static_cast<std::size_t>(selected_)].key : kNone;
}

void TabStrip::SelectKey(const std::string& key) {
  for (int i = 0; i < Count(); ++i) {
    if (tabs_[static_cast<std::size_t>(i)].key == key) {
      selected_ = i;
      Changed(Aspect::kSelection);
      return;
    }
  }
}

bool TabStrip::Has(const std::string& key) const noexcept {
  return std::any_of(tabs_.begin(), tabs_.end(), [&](const Tab& tab) { return tab.key == key; });
}

void TabStrip::Chosen(int index) {
  if (index < 0 || index >= Count()) return;
  selected_ = index;
  if (on_click) on_click();
}

std::string Toolbar::Describe() const {
  std::string text;
  for (const Button& button : buttons_) {
    if (!button.visible) continue;
    if (!text.empty()) text += ' ';
    text += button.enabled ? button.key : "(" + button.key + ")";
  }
  return text;
}

Toolbar::Button& Toolbar::Find(const std::string& key) {
  return *FindButton(buttons_, key);
}

const Toolbar::Button& Toolbar::Item(const std::string& key) const {
  return *FindButton(buttons_, key);
}

void Toolbar::EnableButton(const std::string& key, bool enabled) {
  Button& button = Find(key);
  if (button.enabled == enabled) return;
  button.enabled = enabled;
  Changed(Aspect::kButtons);
}

void Toolbar::ShowButton(const std::string& key, bool visible) {
  Button& button = Find(key);
  if (button.visible == visible) return;
  button.visible = visible;
  Changed(Aspect::kButtons);
}

void Toolbar::Clicked(const std::string& key) {
  const Button& button = Find(key);
  if (button.enabled && button.visible && on_button_click) on_button_click(key);
}

void Toolbar::MenuClicked(const std::string& key) {
  if (on_menu_click) on_menu_click(key);
}

MenuItem* FindMenuItem(std::vector<MenuItem>& items, const std::string& name) {
  for (MenuItem& item : items) {
    if (item.name == name) return &item;
    if (MenuItem* below = FindMenuItem(item.items, name)) return below;
  }
  return nullptr;
}

}  // namespace quenta::controls
