#include "sandbox/catalogue/history.h"

#include <algorithm>

#include "sandbox/catalogue/random.h"

namespace quenta::sandbox {
namespace {

using std::chrono::days;
using std::chrono::sys_days;

constexpr int kDaysOfHistory = 730;
constexpr int kDaysUntilDelivered = 30;
constexpr int kLinesPerBusyDocument = 20;
constexpr int kWarehouses[] = {1, 1, 1, 2, 2, 3};  // where documents are issued, the first ones more often

struct DocumentType {
  int id;
  const char* prefix;
  int share;  // of 100
};
// As lookups.sql numbers them.
constexpr DocumentType kSaleTypes[] = {{1, "FT", 30}, {2, "FS", 40}, {3, "GR", 12},
                                       {4, "NC", 5},  {5, "OR", 9},  {6, "PF", 4}};
constexpr DocumentType kPurchaseTypes[] = {{1, "VFA", 62}, {2, "VGR", 20}, {3, "VNC", 5}, {4, "VCO", 9}, {5, "VAV", 4}};
constexpr DocumentType kCustomerOrderType = {0, "EC", 100};
constexpr DocumentType kSupplierOrderType = {0, "EF", 100};

class HistoryMaker {
 public:
  HistoryMaker(const std::vector<Product>& products, const HistoryPlan& plan)
      : products_(products), plan_(plan), random_(plan.seed) {
    for (std::size_t i = 0; i < products.size(); ++i) {
      if (!products[i].moves) continue;
      moving_.push_back(i);
      if (products[i].supplier_id != 0) by_supplier_[products[i].supplier_id].push_back(i);
    }
  }

  History Make() {
    if (moving_.empty()) return {};
    for (sys_days day = plan_.today - days(kDaysOfHistory); day <= plan_.today; day += days(1)) {
      const bool sunday = std::chrono::weekday(day) == std::chrono::Sunday;
      if (!sunday) MakeDay(day);
      MakeBusyDay(day);
    }
    for (auto& movements : history_) {
      std::stable_sort(movements.begin(), movements.end(), [](const Movement& a, const Movement& b) {
        return std::pair(a.moment.day, a.moment.seconds) < std::pair(b.moment.day, b.moment.seconds);
      });
    }
    NumberMovements();
    return std::move(history_);
  }

 private:
  void MakeDay(sys_days day) {
    const int sales = random_.Between(1, 3);
    for (int i = 0; i < sales; ++i) Sell(day);
    if (random_.Percent(50)) Buy(Source::kPurchases, day);
    if (random_.Percent(35)) TakeOrder(day);
    if (random_.Percent(30)) Buy(Source::kSupplierOrders, day);
  }

  void Sell(sys_days day) {
    Movement sale = NewMovement(Source::kSales, day);
    SetContact(sale, random_.Percent(45) ? plan_.customers.front() : random_.OneOf(plan_.customers));
    const int lines = random_.Between(1, 5);
    for (int i = 0; i < lines; ++i) AddLine(sale, AnyProduct(), 6, 1, 100);
    Keep(Source::kSales, std::move(sale));
  }

  void TakeOrder(sys_days day) {
    Movement order = NewMovement(Source::kCustomerOrders, day);
    SetContact(order, random_.OneOf(plan_.customers));
    const int lines = random_.Between(1, 6);
    for (int i = 0; i < lines; ++i) AddLine(order, AnyProduct(), 24, 1, 95);
    Keep(Source::kCustomerOrders, std::move(order));
  }

  // From one supplier, products of that supplier only.
  void Buy(Source source, sys_days day) {
    const Contact& supplier = random_.OneOf(plan_.suppliers);
    const auto supplied = by_supplier_.find(supplier.id);
    if (supplied == by_supplier_.end()) return;
    Movement purchase = NewMovement(source, day);
    SetContact(purchase, supplier);
    const int lines = random_.Between(2, 8);
    for (int i = 0; i < lines; ++i) AddLine(purchase, AnyOf(supplied->second), 10, 6, 60);
    Keep(source, std::move(purchase));
  }

  // Spreads the busy product's lines evenly over the current year up to today.
  void MakeBusyDay(sys_days day) {
    const std::chrono::year_month_day today(plan_.today);
    const sys_days first = today.year() / std::chrono::January / 1;
    if (day < first) return;
    const int days_left = (plan_.today - day).count() + 1;
    int lines_today = (plan_.busy_lines - busy_lines_made_) / days_left;
    busy_lines_made_ += lines_today;
    while (lines_today > 0) {
      Movement sale = NewMovement(Source::kSales, day);
      sale.type_id = kSaleTypes[0].id;
      sale.cancelled = 0;
      SetContact(sale, random_.OneOf(plan_.customers));
      const int lines = std::min(lines_today, kLinesPerBusyDocument);
      for (int i = 0; i < lines; ++i) AddLine(sale, plan_.busy_product, 12, 1, 100);
      lines_today -= lines;
      Keep(Source::kSales, std::move(sale));
    }
  }

  Movement NewMovement(Source source, sys_days day) {
    Movement movement;
    movement.warehouse_id = random_.OneOf(kWarehouses);
    // Purchases are entered by the day; sales and orders carry the time of day.
    const bool timed = source == Source::kSales || source == Source::kCustomerOrders;
    movement.moment = {day, timed ? random_.Between(9 * 3600, 19 * 3600) : 0};
    const int flag = random_.Below(100);
    movement.cancelled = flag < 4 ? 1 : flag < 20 ? -1 : 0;
    movement.type_id = TypeOf(source, random_.Below(100)).id;
    const bool order = source == Source::kCustomerOrders || source == Source::kSupplierOrders;
    movement.open = order && (plan_.today - day).count() < kDaysUntilDelivered;
    return movement;
  }

  static const DocumentType& TypeOf(Source source, int draw) {
    if (source == Source::kCustomerOrders) return kCustomerOrderType;
    if (source == Source::kSupplierOrders) return kSupplierOrderType;
    const auto pick = [draw](const auto& types) -> const DocumentType& {
      int left = draw;
      for (const DocumentType& type : types) {
        if (left < type.share) return type;
        left -= type.share;
      }
      return types[0];
    };
    return source == Source::kSales ? pick(kSaleTypes) : pick(kPurchaseTypes);
  }

  static const char* PrefixOf(Source source, int type_id) {
    if (source == Source::kCustomerOrders) return kCustomerOrderType.prefix;
    if (source == Source::kSupplierOrders) return kSupplierOrderType.prefix;
    const auto find = [type_id](const auto& types) {
      return std::find_if(std::begin(types), std::end(types),
                          [type_id](const DocumentType& type) { return type.id == type_id; })
          ->prefix;
    };
    return source == Source::kSales ? find(kSaleTypes) : find(kPurchaseTypes);
  }

  static void SetContact(Movement& movement, const Contact& contact) {
    movement.contact_id = contact.id;
    movement.contact_name = contact.name;
  }

  std::size_t AnyProduct() { return AnyOf(moving_); }

  // Some products sell better than others: the better of two draws wins.
  std::size_t AnyOf(const std::vector<std::size_t>& positions) {
    const int count = static_cast<int>(positions.size());
    return positions[static_cast<std::size_t>(std::min(random_.Below(count), random_.Below(count)))];
  }

  // Up to `most` packs of `pack` units. Draws nothing in its callers' arguments, whose order is the compiler's choice.
  void AddLine(Movement& movement, std::size_t product, int most, int pack, int percent_of_price) {
    const int price = WithoutVat(products_[product].retail_cents, products_[product].vat.per_mille);
    MovementLine line;
    line.product = product;
    line.quantity = pack * random_.Between(1, most) * 1000;
    if (random_.Percent(5)) line.quantity += 500;  // half an hour, half a metre
    line.unit_price =
        static_cast<int>(static_cast<std::int64_t>(price) * (percent_of_price * 10 + random_.Between(-30, 30)) / 1000);
    line.total = static_cast<int>((static_cast<std::int64_t>(line.unit_price) * line.quantity + 500) / 1000);
    movement.lines.push_back(line);
  }

  void Keep(Source source, Movement movement) {
    history_[static_cast<std::size_t>(source)].push_back(std::move(movement));
  }

  // Numbers count per warehouse, kind of document and year, in the order of the dates.
  void NumberMovements() {
    for (int source = 0; source < kSourceCount; ++source) {
      std::map<int, int> main_ids;
      std::map<std::pair<std::string, int>, int> numbers;
      for (Movement& movement : history_[static_cast<std::size_t>(source)]) {
        movement.main_id = ++main_ids[movement.warehouse_id];
        const int year = static_cast<int>(std::chrono::year_month_day(movement.moment.day).year());
        const std::string series = std::string(PrefixOf(static_cast<Source>(source), movement.type_id)) + " " +
                                   static_cast<char>('A' + movement.warehouse_id - 1);
        movement.number = series + std::to_string(year) + "/" + std::to_string(++numbers[std::pair(series, year)]);
      }
    }
  }

  const std::vector<Product>& products_;
  const HistoryPlan& plan_;
  Random random_;
  std::vector<std::size_t> moving_;  // positions of the products that may be moved
  std::map<int, std::vector<std::size_t>> by_supplier_;
  History history_;
  int busy_lines_made_ = 0;
};

struct SourceTables {
  const char* header;
  const char* header_columns;
  const char* items;
  const char* item_columns;
  bool orders;
};

constexpr const char* kDocumentColumns =
    "armazem_id, documento_main_id, tipo_doc_id, documento_no, data, contacto_id, nome, total, anulado";
constexpr const char* kDocumentItemColumns =
    "armazem_id, documento_item_id, documento_main_id, produto_id, descrit, quantidade, preco_unitario, preco_total";
constexpr const char* kOrderColumns =
    "armazem_id, encomenda_main_id, encomenda_no, data, contacto_id, nome, total, anulada, satisfeita";
constexpr const char* kOrderItemColumns =
    "armazem_id, encomenda_item_id, encomenda_main_id, produto_id, descrit, quantidade, preco_unitario, preco_total";

constexpr SourceTables kTables[kSourceCount] = {
    {"tbDocumentos", kDocumentColumns, "tbDocumentos_Items", kDocumentItemColumns, false},
    {"tbDocumentos_Fornec", kDocumentColumns, "tbDocumentos_Fornec_Items", kDocumentItemColumns, false},
    {"tbEncomendas", kOrderColumns, "tbEncomendas_Items", kOrderItemColumns, true},
    {"tbEncomendas_Fornec", kOrderColumns, "tbEncomendas_Fornec_Items", kOrderItemColumns, true},
};

void AddHeader(RowWriter& headers, const SourceTables& tables, const Movement& movement) {
  std::int64_t total = 0;
  for (const MovementLine& line : movement.lines) total += line.total;
  const std::string warehouse = NumberLiteral(movement.warehouse_id);
  const std::string main_id = NumberLiteral(movement.main_id);
  const std::string number = TextLiteral(movement.number);
  const std::string date = DateLiteral(movement.moment);
  const std::string contact = NumberLiteral(movement.contact_id);
  const std::string name = NationalLiteral(movement.contact_name);
  const std::string amount = DecimalLiteral(total, 2);
  const std::string cancelled = movement.cancelled < 0 ? kNullLiteral : NumberLiteral(movement.cancelled);
  if (tables.orders) {
    headers.Add({warehouse, main_id, number, date, contact, name, amount, cancelled, movement.open ? "0" : "1"});
  } else {
    headers.Add({warehouse, main_id, NumberLiteral(movement.type_id), number, date, contact, name, amount, cancelled});
  }
}

}  // namespace

int WithoutVat(int cents, int vat_per_mille) {
  const int divisor = 1000 + vat_per_mille;
  return static_cast<int>((static_cast<std::int64_t>(cents) * 1000 + divisor / 2) / divisor);
}

History MakeHistory(const std::vector<Product>& products, const HistoryPlan& plan) {
  return HistoryMaker(products, plan).Make();
}

OrderedUnits UnitsOnOrder(const std::vector<Movement>& orders) {
  OrderedUnits units;
  for (const Movement& order : orders) {
    if (!order.open || order.cancelled == 1) continue;
    for (const MovementLine& line : order.lines) units[std::pair(line.product, order.warehouse_id)] += line.quantity;
  }
  return units;
}

void WriteHistory(ports::Connection& connection, Source source, const std::vector<Movement>& movements,
                  const std::vector<Product>& products) {
  const SourceTables& tables = kTables[static_cast<std::size_t>(source)];
  RowWriter headers(connection, tables.header, tables.header_columns);
  for (const Movement& movement : movements) AddHeader(headers, tables, movement);
  headers.Finish();

  RowWriter items(connection, tables.items, tables.item_columns);
  std::map<int, int> item_ids;
  for (const Movement& movement : movements) {
    for (const MovementLine& line : movement.lines) {
      const Product& product = products[line.product];
      items.Add({NumberLiteral(movement.warehouse_id), NumberLiteral(++item_ids[movement.warehouse_id]),
                 NumberLiteral(movement.main_id), NumberLiteral(product.id), TextLiteral(product.name),
                 DecimalLiteral(line.quantity, 3), DecimalLiteral(line.unit_price, 2), DecimalLiteral(line.total, 2)});
    }
  }
  items.Finish();
}

}  // namespace quenta::sandbox
