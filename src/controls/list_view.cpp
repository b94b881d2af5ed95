#include "controls/list_view.h"

#include "base/error.h"
#include "base/text.h"

namespace quenta::controls {
namespace {

[[noreturn]] void RaiseNoSuchRow() {
  throw base::Error(base::error_number::kInvalidCall, "Invalid procedure call or argument");
}

}  // namespace

std::string ListView::Describe() const {
  std::string text = base::DecimalText(Count()) + " rows";
  if (selected_ >= 0) text += ", selected " + items_[static_cast<std::size_t>(selected_)].key;
  return text;
}

void ListView::Clear() {
  items_.clear();
  positions_.clear();
  selected_ = -1;
  RowsChanged();
}

ListItem& ListView::Add(std::string key, std::string text) {
  if (!positions_.emplace(key, items_.size()).second) RaiseNoSuchRow();
  items_.push_back({std::move(key), std::move(text), {}, 0, false});
  RowsChanged();
  return items_.back();
}

void ListView::Remove(const std::string& key) {
  const auto found = positions_.find(key);
  if (found == positions_.end()) RaiseNoSuchRow();
  const std::size_t index = found->second;
  items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(index));
  positions_.erase(found);
  for (auto& [other, position] : positions_) {
    if (position > index) --position;
  }
  if (selected_ >= Count()) selected_ = Count() - 1;
  RowsChanged();
}

ListItem& ListView::At(int index) {
  if (index < 0 || index >= Count()) RaiseNoSuchRow();
  return items_[static_cast<std::size_t>(index)];
}

ListItem& ListView::Item(const std::string& key) {
  const auto found = positions_.find(key);
  if (found == positions_.end()) RaiseNoSuchRow();
  return items_[found->second];
}

const std::string& ListView::Cell(int row, int column) const {
  static const std::string kNothing;
  if (row < 0 || row >= Count()) return kNothing;
  const ListItem& item = items_[static_cast<std::size_t>(row)];
  if (column == 0) return item.text;
  const auto position = static_cast<std::size_t>(column - 1);
  return position < item.sub_items.size() ? item.sub_items[position] : kNothing;
}

void ListView::Select(int index) {
  selected_ = index >= 0 && index < Count() ? index : -1;
  Changed(Aspect::kSelection);
}

void ListView::Clicked(int index) {
  selected_ = index >= 0 && index < Count() ? index : -1;
  if (on_item_click) on_item_click();
}

void ListView::Activated() {
  if (on_item_activate) on_item_activate();
}

void ListView::ContextMenu() {
  if (on_context_menu) on_context_menu();
}

void ListView::Checked(int index, bool checked) {
  At(index).checked = checked;
}

}  // namespace quenta::controls
