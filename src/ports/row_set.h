// The rows of a query, read whole: plain data, independent of the connection they came from.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/value.h"

namespace quenta::ports {

class RowSet;

// One row of a RowSet; valid as long as the RowSet is.
class Row {
 public:
  Row(const RowSet& rows, std::size_t index) : rows_(&rows), index_(index) {}

  // The column's value. Names match without regard to the case of A to Z, the first match wins.
  // Throws Error 3265 when the result has no such column.
  const base::Value& operator[](std::string_view column) const;
  const base::Value& At(std::size_t column) const;
  // Position of the column, found as operator[] finds it.
  std::optional<std::size_t> FindColumn(std::string_view column) const;

 private:
  const RowSet* rows_;
  std::size_t index_;
};

class RowSet {
 public:
  class Iterator {
   public:
    Iterator(const RowSet& rows, std::size_t index) : rows_(&rows), index_(index) {}
    Row operator*() const { return {*rows_, index_}; }
    Iterator& operator++() {
      ++index_;
      return *this;
    }
    bool operator==(const Iterator&) const = default;

   private:
    const RowSet* rows_;
    std::size_t index_;
  };

  RowSet() = default;
  // The sizes are the columns' own, as the database defines them: characters of a text column, bytes of others. Those
  // that are left out are not known.
  explicit RowSet(std::vector<std::string> columns, std::vector<std::size_t> sizes = {})
      : columns_(std::move(columns)), sizes_(std::move(sizes)) {}

  const std::vector<std::string>& columns() const noexcept { return columns_; }
  const std::vector<std::size_t>& sizes() const noexcept { return sizes_; }
  // How many characters a text column takes; 0 where that is not known, where the column's texts are of any length, and
  // where there is no such column.
  std::size_t TextSize(std::string_view column) const;
  // Position of the column, found as Row::operator[] finds it.
  std::optional<std::size_t> FindColumn(std::string_view name) const;
  // The same, for lists of many rows: Error 3265 when the result has no such column.
  std::size_t Column(std::string_view name) const;
  std::vector<std::size_t> Columns(std::span<const char* const> names) const;

  bool empty() const noexcept { return cells_.empty(); }
  std::size_t size() const noexcept { return columns_.empty() ? 0 : cells_.size() / columns_.size(); }
  Row operator[](std::size_t index) const { return {*this, index}; }
  Row front() const { return {*this, 0}; }
  Iterator begin() const { return {*this, 0}; }
  Iterator end() const { return {*this, size()}; }

  // Cells are stored row after row; an adapter appends them in column order.
  void Append(base::Value cell) { cells_.push_back(std::move(cell)); }
  void Reserve(std::size_t rows) { cells_.reserve(rows * columns_.size()); }
  // Moves a cell's value out; the cell is not to be read again.
  base::Value Take(std::size_t row, std::size_t column) { return std::move(cells_[row * columns_.size() + column]); }
  const base::Value& Cell(std::size_t row, std::size_t column) const { return cells_[row * columns_.size() + column]; }

 private:
  std::vector<std::string> columns_;
  std::vector<std::size_t> sizes_;
  std::vector<base::Value> cells_;
};

inline std::optional<std::size_t> Row::FindColumn(std::string_view column) const {
  return rows_->FindColumn(column);
}

inline const base::Value& Row::At(std::size_t column) const {
  return rows_->Cell(index_, column);
}

}  // namespace quenta::ports
