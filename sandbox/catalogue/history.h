// Two years of invented documents and orders, made in memory from a list of products.
#pragma once

#include <array>
#include <chrono>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "ports/database.h"
#include "sandbox/catalogue/product_list.h"
#include "sandbox/catalogue/sql_rows.h"

namespace quenta::sandbox {

enum class Source { kSales, kPurchases, kCustomerOrders, kSupplierOrders };
inline constexpr int kSourceCount = 4;

// A line of a document or of an order. Quantities in thousandths, amounts in cents, VAT not included.
struct MovementLine {
  std::size_t product = 0;  // position in the list of products
  int quantity = 0;
  int unit_price = 0;
  int total = 0;
};

struct Movement {
  int warehouse_id = 0;
  int main_id = 0;  // counted per warehouse
  int type_id = 0;  // 0 for orders
  std::string number;
  Moment moment;
  int contact_id = 0;
  std::string contact_name;
  int cancelled = 0;  // 1, 0, or -1 for null
  bool open = false;  // an order not yet delivered
  std::vector<MovementLine> lines;
};

struct Contact {
  int id = 0;
  std::string name;
};

struct HistoryPlan {
  std::chrono::sys_days today;
  unsigned seed = 1;
  std::vector<Contact> customers;
  std::vector<Contact> suppliers;
  std::size_t busy_product = 0;  // position of the product that gets busy_lines sale lines since the first of January
  int busy_lines = 0;
};

// The movements of one source in the order of their dates.
using History = std::array<std::vector<Movement>, kSourceCount>;

History MakeHistory(const std::vector<Product>& products, const HistoryPlan& plan);

// Units on open orders, in thousandths, by position of the product and warehouse. Cancelled orders do not count.
using OrderedUnits = std::map<std::pair<std::size_t, int>, int>;
OrderedUnits UnitsOnOrder(const std::vector<Movement>& orders);

// Writes the headers and lines of one source to its tables.
void WriteHistory(ports::Connection& connection, Source source, const std::vector<Movement>& movements,
                  const std::vector<Product>& products);

// Price without VAT in cents, of an amount with VAT.
int WithoutVat(int cents, int vat_per_mille);

}  // namespace quenta::sandbox
