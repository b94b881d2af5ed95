// A price line as the price list keeps it: what is shown, and the raw values in its hidden positions.
#pragma once

#include <string>

#include "controls/list_view.h"

namespace quenta::product {

// Positions of a price line's sub-items, from 1.
namespace price_position {
inline constexpr int kShownPreco = 1;
inline constexpr int kShownTotal = 2;
inline constexpr int kPreco = 3;
inline constexpr int kIvaId = 4;
inline constexpr int kIva = 5;
inline constexpr int kTotal = 6;
inline constexpr int kDesconto = 7;
inline constexpr int kTipo = 8;
inline constexpr int kIvaDescrit = 9;
}  // namespace price_position

// Small icons of the price list.
inline constexpr int kLineIcon = 2;
inline constexpr int kDefaultLineIcon = 3;

// Reads a price line by name. Numbers are texts with the user's decimal separator, "0" where the database has null.
class PriceRow {
 public:
  explicit PriceRow(const controls::ListItem& item) : item_(item) {}

  std::string tipo_id() const { return item_.key.substr(1); }
  const std::string& preco() const { return At(price_position::kPreco); }
  const std::string& iva_id() const { return At(price_position::kIvaId); }
  const std::string& iva() const { return At(price_position::kIva); }
  const std::string& preco_total() const { return At(price_position::kTotal); }
  const std::string& desconto() const { return At(price_position::kDesconto); }
  const std::string& tipo() const { return At(price_position::kTipo); }
  const std::string& iva_descrit() const { return At(price_position::kIvaDescrit); }
  bool is_default() const { return item_.small_icon == kDefaultLineIcon; }

  const std::string& At(int position) const { return item_.sub_items.at(static_cast<std::size_t>(position - 1)); }

 private:
  const controls::ListItem& item_;
};

}  // namespace quenta::product
