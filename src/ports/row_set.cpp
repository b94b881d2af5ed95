#include "ports/row_set.h"

#include <algorithm>

#include "base/error.h"

namespace quenta::ports {
namespace {

constexpr char FoldAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool SameName(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                            [](char x, char y) { return x == y || FoldAscii(x) == FoldAscii(y); });
}

}  // namespace

std::optional<std::size_t> RowSet::FindColumn(std::string_view name) const {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (SameName(columns_[i], name)) return i;
  }
  return std::nullopt;
}

std::size_t RowSet::Column(std::string_view name) const {
  const auto position = FindColumn(name);
  if (!position) {
    throw base::Error(base::error_number::kItemNotFound,
                      "Item cannot be found in the collection: " + std::string(name));
  }
  return *position;
}

std::size_t RowSet::TextSize(std::string_view column) const {
  constexpr std::size_t kLongest = 8000;  // columns of long texts report numbers far beyond
  const auto position = FindColumn(column);
  if (!position || *position >= sizes_.size() || sizes_[*position] > kLongest) return 0;
  return sizes_[*position];
}

std::vector<std::size_t> RowSet::Columns(std::span<const char* const> names) const {
  std::vector<std::size_t> positions;
  positions.reserve(names.size());
  for (const char* const name : names) positions.push_back(Column(name));
  return positions;
}

const base::Value& Row::operator[](std::string_view column) const {
  return At(rows_->Column(column));
}

}  // namespace quenta::ports
