#include "ports/row_set.h"

#include <algorithm>

#include "base/error.h"

namespace quenta::ports {
namespace {

constexpr char FoldAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool SameName(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  return a == b ||
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return FoldAscii(x) == FoldAscii(y); });
}

}  // namespace

std::optional<std::size_t> RowSet::FindColumn(std::string_view name) const {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (SameName(columns_[i], name)) return i;
  }
  return std::nullopt;
}

const base::Value& Row::operator[](std::string_view column) const {
  const auto position = rows_->FindColumn(column);
  if (!position) {
    throw base::Error(base::error_number::kItemNotFound,
                      "Item cannot be found in the collection: " + std::string(column));
  }
  return At(*position);
}

}  // namespace quenta::ports
