#include "controls/combo_box.h"

#include "base/text.h"

namespace quenta::controls {

void ComboBox::ItemsChanged() noexcept {
  items_changed_ = true;
  if (updating_ == 0) {
    items_changed_ = false;
    Changed(Aspect::kItems);
  }
}

void ComboBox::EndUpdate() noexcept {
  if (--updating_ == 0 && items_changed_) ItemsChanged();
}

void ComboBox::Clear() {
  items_.clear();
  list_index_ = -1;
  if (style_ == Style::kList) text_.clear();
  ItemsChanged();
}

void ComboBox::AddItem(std::string text) {
  items_.push_back({std::move(text), std::nullopt});
  ItemsChanged();
}

void ComboBox::TakeIndex(int index) {
  list_index_ = index >= 0 && index < ListCount() ? index : -1;
  if (list_index_ >= 0) {
    text_ = List(list_index_);
  } else if (style_ == Style::kList) {
    text_.clear();
  }
}

void ComboBox::SetListIndex(int index) {
  TakeIndex(index);
  Changed(Aspect::kSelection);
}

std::optional<std::int32_t> ComboBox::SelectedItemData() const {
  if (list_index_ < 0) return std::nullopt;
  return ItemData(list_index_);
}

void ComboBox::set_text(std::string text) {
  if (style_ == Style::kList) return;
  if (list_index_ >= 0 && List(list_index_) != text) list_index_ = -1;
  if (text_ == text) return;
  text_ = std::move(text);
  selection_ = {};
  Changed(Aspect::kText);
}

void ComboBox::set_locked(bool locked) {
  if (locked_ == locked) return;
  locked_ = locked;
  Changed(Aspect::kLocked);
}

void ComboBox::Select(TextRange range) {
  selection_ = range;
  Changed(Aspect::kCaret);
}

void ComboBox::SelectAll() {
  Select({0, base::Utf16Length(text_)});
}

int ComboBox::FindString(const std::string& start) const {
  for (int i = 0; i < ListCount(); ++i) {
    if (base::StartsWithIgnoreCase(List(i), start)) return i;
  }
  return -1;
}

void ComboBox::Typed(std::string text) {
  if (text_ == text) return;
  text_ = std::move(text);
  list_index_ = -1;
  if (on_change) on_change();
}

void ComboBox::Chosen(int index) {
  TakeIndex(index);
  if (on_click) on_click();
}

}  // namespace quenta::controls
