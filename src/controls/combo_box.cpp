#include "controls/combo_box.h"

#include <algorithm>
#include <string_view>

#include "base/text.h"

namespace quenta::controls {
namespace {

char LowerByte(char byte) {
  return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

bool IsAscii(char byte) {
  return static_cast<unsigned char>(byte) < 0x80;
}

bool IsInsideLetter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// As base::StartsWithIgnoreCase, but most letters are compared as the bytes they are: a list of 10^5 entries, all with
// a long beginning in common, is searched at every key.
bool BeginsWith(std::string_view text, std::string_view start) {
  const std::size_t shorter = std::min(text.size(), start.size());
  std::size_t same = 0;
  while (same < shorter && LowerByte(text[same]) == LowerByte(start[same])) ++same;
  if (same == start.size()) return true;
  if (same == text.size() || (IsAscii(text[same]) && IsAscii(start[same]))) return false;
  while (same > 0 && (IsInsideLetter(text[same]) || IsInsideLetter(start[same]))) --same;
  return base::StartsWithIgnoreCase(text.substr(same), start.substr(same));
}

}  // namespace

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

void ComboBox::set_max_length(std::size_t units) {
  if (max_length_ == units) return;
  max_length_ = units;
  Changed(Aspect::kMaxLength);
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
    if (BeginsWith(List(i), start)) return i;
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
  if (style_ == Style::kEditable && max_length_ != 0 && base::Utf16Length(text_) > max_length_) {
    set_text(base::FromUtf16(base::ToUtf16(text_).substr(0, max_length_)));
  }
  if (on_click) on_click();
}

}  // namespace quenta::controls
