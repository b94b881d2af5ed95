#include "controls/list_view.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

#include "base/convert.h"
#include "base/date.h"
#include "base/error.h"
#include "base/text.h"

namespace quenta::controls {
namespace {

[[noreturn]] void RaiseNoSuchRow() {
  throw base::Error(base::error_number::kInvalidCall, "Invalid procedure call or argument");
}

// What a cell is compared by; a number or a date that cannot be read comes before all that can.
struct SortKey {
  std::optional<double> number;
  std::string text;
  bool operator<(const SortKey& other) const {
    return number != other.number ? number < other.number : text < other.text;
  }
};

SortKey KeyOf(const base::Value& value, const std::string& cell, SortAs kind, const base::Locale& locale) {
  switch (kind) {
    case SortAs::kNumber:
      if (value.is_empty()) return {base::ParseNumber(cell, locale), {}};
      return {base::IsNumeric(value, locale) ? std::optional(base::ToDouble(value, locale)) : std::nullopt, {}};
    case SortAs::kDate:
      return {
          base::IsDate(value, locale) ? std::optional(base::PointInTime(base::ToDate(value, locale))) : std::nullopt,
          {}};
    case SortAs::kText:
      break;
  }
  return {std::nullopt, base::SortKey(cell)};
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

void ListView::Reserve(std::size_t rows) {
  items_.reserve(rows);
  positions_.reserve(rows);
}

ListItem& ListView::Add(std::string key, std::string text) {
  if (!positions_.emplace(key, items_.size()).second) RaiseNoSuchRow();
  items_.push_back({.key = std::move(key), .text = std::move(text), .sub_items = {}});
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
  if (selected_ > static_cast<int>(index) || selected_ == Count()) --selected_;
  RowsChanged();
}

ListItem& ListView::At(int index) {
  if (index < 0 || index >= Count()) RaiseNoSuchRow();
  return items_[static_cast<std::size_t>(index)];
}

ListItem& ListView::Item(const std::string& key) {
  ListItem* const item = Find(key);
  if (item == nullptr) RaiseNoSuchRow();
  return *item;
}

ListItem* ListView::Find(const std::string& key) {
  const auto found = positions_.find(key);
  return found == positions_.end() ? nullptr : &items_[found->second];
}

const std::string& ListView::Cell(int row, int column) const {
  static const std::string kNothing;
  if (row < 0 || row >= Count()) return kNothing;
  const ListItem& item = items_[static_cast<std::size_t>(row)];
  if (column == 0) return item.text;
  const auto position = static_cast<std::size_t>(column - 1);
  return position < item.sub_items.size() ? item.sub_items[position] : kNothing;
}

const base::Value& ListView::CellValue(int row, int column) const {
  static const base::Value kNone;
  if (row < 0 || row >= Count() || column < 0) return kNone;
  const auto& values = items_[static_cast<std::size_t>(row)].values;
  const auto position = static_cast<std::size_t>(column);
  return position < values.size() ? values[position] : kNone;
}

void ListView::Select(int index) {
  selected_ = index >= 0 && index < Count() ? index : -1;
  if (multi_select) {
    Marked(0, Count() - 1, false);
    Marked(selected_, selected_, true);
  }
  SelectionChanged();
}

std::vector<int> ListView::MarkedRows() const {
  std::vector<int> rows;
  if (!multi_select) {
    if (selected_ >= 0) rows.push_back(selected_);
    return rows;
  }
  for (int i = 0; i < Count(); ++i) {
    if (items_[static_cast<std::size_t>(i)].marked) rows.push_back(i);
  }
  return rows;
}

void ListView::MarkAll() {
  if (!multi_select) return;
  Marked(0, Count() - 1, true);
  SelectionChanged();
}

std::string ListView::MarkedText() const {
  std::string text;
  for (const int row : MarkedRows()) {
    for (int column = 0; column < static_cast<int>(columns_.size()); ++column) {
      if (column > 0) text += '\t';
      const std::size_t start = text.size();
      text += Cell(row, column);
      std::replace_if(
          text.begin() + static_cast<std::ptrdiff_t>(start), text.end(),
          [](char c) { return c == '\t' || c == '\r' || c == '\n'; }, ' ');
    }
    text += "\r\n";
  }
  return text;
}

void ListView::Sort(const ListSort& sort, const base::Locale& locale) {
  sort_ = sort;
  if (sort.column < 0 || sort.column >= static_cast<int>(columns_.size()) || items_.empty()) return;
  const SortAs kind = columns_[static_cast<std::size_t>(sort.column)].sort_as;
  std::vector<SortKey> keys;
  keys.reserve(items_.size());
  for (int i = 0; i < Count(); ++i) {
    keys.push_back(KeyOf(CellValue(i, sort.column), Cell(i, sort.column), kind, locale));
  }
  std::vector<std::size_t> order(items_.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return sort.descending ? keys[b] < keys[a] : keys[a] < keys[b];
  });

  std::vector<ListItem> sorted;
  sorted.reserve(items_.size());
  const int selected_before = selected_;
  for (const std::size_t index : order) {
    if (static_cast<int>(index) == selected_before) selected_ = static_cast<int>(sorted.size());
    positions_.find(items_[index].key)->second = sorted.size();
    sorted.push_back(std::move(items_[index]));
  }
  items_ = std::move(sorted);
  const Update update(*this);
  RowsChanged();
  SelectionChanged();
}

void ListView::Note(bool& changed) noexcept {
  changed = true;
  if (updating_ == 0) TellView();
}

// The rows first: what is selected may be one of the new ones.
void ListView::TellView() noexcept {
  if (std::exchange(rows_changed_, false)) Changed(Aspect::kItems);
  if (std::exchange(selection_changed_, false)) Changed(Aspect::kSelection);
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
  if (on_item_check) on_item_check();
}

void ListView::Marked(int first, int last, bool marked) {
  for (int i = std::max(first, 0); i <= last && i < Count(); ++i) items_[static_cast<std::size_t>(i)].marked = marked;
}

void ListView::ColumnClicked(int column) {
  if (sortable && on_column_click) on_column_click(column);
}

void ListView::Copy() {
  if (on_copy) on_copy();
}

}  // namespace quenta::controls
