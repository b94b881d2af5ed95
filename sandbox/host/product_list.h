// The list of products as the sample host shows it: searched while the user types, sorted by a column.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quenta::sandbox::host {

struct Product {
  std::int32_t produto_id = 0;
  std::string codigo;
  std::string nome;
  std::string familia;
  std::optional<double> preco;  // euros, VAT included; nothing when the product has no price
  bool is_deleted = false;
};

// Lower-case text without accents: what a search compares, so that "pao" finds "Pão".
std::string FoldText(std::string_view text);

class ProductList {
 public:
  enum class Column { kCodigo, kNome, kFamilia, kPreco };

  // Takes the place of all products; search, order and the deleted ones' visibility stay.
  void Assign(std::vector<Product> products);

  // Shows the products whose code, name or family holds every word of the text. Empty text shows all.
  void SetSearch(std::string_view text);
  void ShowDeleted(bool show);
  // Products that are equal in the column stand in the order of their codes; those without a price stand last.
  void SortBy(Column column, bool descending);

  Column sorted_by() const noexcept { return column_; }
  bool descending() const noexcept { return descending_; }

  // The rows that are shown, from 0.
  std::size_t size() const noexcept { return shown_.size(); }
  const Product& operator[](std::size_t row) const { return entries_[shown_[row]].product; }
  // How many products there are to search in.
  std::size_t total() const noexcept;

  // The row that shows the product; nothing when none does.
  std::optional<std::size_t> RowOf(std::int32_t produto_id) const;
  // The first row from start (going round) whose code or name begins with the text.
  std::optional<std::size_t> RowThatBegins(std::string_view text, std::size_t start) const;

  // A product by its code, by "#" and its identifier, or by its identifier; shown or not. A deleted product is found
  // by its code only when no other has it. Null when there is none.
  const Product* Find(std::string_view code_or_id) const;

 private:
  struct Entry {
    Product product;
    std::string codigo;  // folded, like the next two
    std::string nome;
    std::string familia;
  };

  bool Matches(const Entry& entry) const;
  bool Before(const Entry& a, const Entry& b) const;
  void Select();

  std::vector<Entry> entries_;      // in the chosen order
  std::vector<std::size_t> shown_;  // indexes into entries_
  std::vector<std::string> words_;
  bool show_deleted_ = false;
  Column column_ = Column::kCodigo;
  bool descending_ = false;
};

}  // namespace quenta::sandbox::host
