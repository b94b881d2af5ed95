#include "sandbox/catalogue/catalogue.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <optional>
#include <utility>

#include "base/error.h"
#include "sandbox/catalogue/history.h"
#include "sandbox/catalogue/product_list.h"
#include "sandbox/catalogue/random.h"
#include "sandbox/catalogue/sql_rows.h"
#include "sandbox/catalogue/texts.h"
#include "sandbox/odbc/dialect.h"

namespace quenta::sandbox {
namespace {

using base::Value;
using base::ValueKind;
using ports::Connection;
using ports::Row;

std::string Text(const Value& value) {
  return value.is_text() ? value.text() : std::string();
}

int Integer(const Value& value) {
  if (value.kind() == ValueKind::kLong) return value.get<std::int32_t>();
  throw base::Error(base::error_number::kTypeMismatch, "An INT column did not arrive as an integer");
}

std::size_t TablesOf(Modules modules) {
  switch (modules) {
    case Modules::kNone:
      return 0;
    case Modules::kTwo:
      return 2;
    case Modules::kAll:
      return 3;
  }
  return 0;
}

LookupIds ReadLookupIds(Connection& connection) {
  LookupIds ids;
  for (const Row row : connection.Query("SELECT familia_id, descrit FROM tbProdutos_Familias")) {
    ids.families[Text(row["descrit"])] = Integer(row["familia_id"]);
  }
  for (const Row row : connection.Query("SELECT subfamilia_id, familia_id, descrit FROM tbProdutos_Subfamilias")) {
    ids.subfamilies[{Integer(row["familia_id"]), Text(row["descrit"])}] = Integer(row["subfamilia_id"]);
  }
  for (const Row row : connection.Query("SELECT tipo_id, descrit FROM tbProdutos_Tipos")) {
    ids.types[Text(row["descrit"])] = Integer(row["tipo_id"]);
  }
  for (const Row row : connection.Query("SELECT centro_id, codigo FROM tbCentros_Custo")) {
    ids.cost_centres[Text(row["codigo"])] = Integer(row["centro_id"]);
  }
  for (const Row row : connection.Query("SELECT iva_id, codigo, tx FROM tbTaxas_Iva")) {
    const double rate = row["tx"].get<double>();
    ids.vat_rates[Text(row["codigo"])] = {Integer(row["iva_id"]), static_cast<int>(std::lround(rate * 1000))};
  }
  for (const Row row : connection.Query("SELECT codigo, descrit FROM tbTaxas_IVA_Insencoes")) {
    ids.exemptions[Text(row["codigo"])] = Text(row["descrit"]);
  }
  for (const Row row : connection.Query("SELECT code, descrit FROM tbProdutos_Cores WHERE code IS NOT NULL")) {
    ids.colours[Text(row["code"])] = Text(row["descrit"]);
  }
  for (const Row row : connection.Query("SELECT code, descrit FROM tbProdutos_Tamanhos WHERE code IS NOT NULL")) {
    ids.sizes[Text(row["code"])] = Text(row["descrit"]);
  }
  return ids;
}

std::vector<Contact> ReadContacts(Connection& connection, const std::string& sql) {
  std::vector<Contact> contacts;
  for (const Row row : connection.Query(sql))
    contacts.push_back({Integer(row["contacto_id"]), Text(row["nome_union"])});
  return contacts;
}

std::vector<int> ReadIds(Connection& connection, const std::string& sql) {
  std::vector<int> ids;
  for (const Row row : connection.Query(sql)) ids.push_back(Integer(row.At(0)));
  return ids;
}

std::string MeasureLiteral(int millimetres) {
  return millimetres == 0 ? kNullLiteral : DecimalLiteral(millimetres, 1);
}

void WriteProducts(Connection& connection, const std::vector<Product>& products, const CatalogueOptions& options) {
  RowWriter rows(connection, "tbProdutos",
                 "produto_id, codigo, nome, familia_id, subfamilia_id, fornecedor_id, marca, obs, tipo_id, centro_id, "
                 "tamanho, cor, altura, largura, profundidade, descontinuado, main_id, is_deleted, data_created, "
                 "data_modified");
  Random random(options.seed);
  for (const Product& product : products) {
    const int age = random.Between(60, 1500);
    const Moment created{options.today - std::chrono::days(age), random.Between(9 * 3600, 19 * 3600)};
    const Moment modified{options.today - std::chrono::days(random.Below(age)), random.Between(9 * 3600, 19 * 3600)};
    rows.Add({NumberLiteral(product.id),
              TextLiteral(product.code),
              TextLiteral(product.name),
              NullableId(product.family_id),
              NullableId(product.subfamily_id),
              NullableId(product.supplier_id),
              NullableText(product.brand),
              NullableText(product.notes),
              NullableId(product.type_id),
              NullableId(product.cost_centre_id),
              NullableText(product.size),
              NullableText(product.colour),
              MeasureLiteral(product.height_mm),
              MeasureLiteral(product.width_mm),
              MeasureLiteral(product.depth_mm),
              product.discontinued ? "1" : "0",
              NullableId(product.main_id),
              product.deleted ? "1" : "0",
              DateLiteral(created),
              DateLiteral(modified)});
  }
  rows.Finish();
}

// Retail prices are round with VAT, the others without. Amounts in hundred-thousandths, as exact as the form keeps
// them.
void WritePrices(Connection& connection, const std::vector<Product>& products) {
  struct PriceType {
    int id;
    int percent_of_retail;
    int discount_percent;
  };
  static constexpr PriceType kTypes[] = {{1, 100, 0}, {2, 82, 5}, {3, 70, 10}};
  RowWriter rows(connection, "tbProdutos_Precos",
                 "tipo_id, produto_id, preco, iva_id, iva, preco_total, iva_descrit, desconto, predef");
  for (const Product& product : products) {
    if (product.deleted) continue;
    const std::int64_t factor = 1000 + product.vat.per_mille;
    const std::int64_t retail_total = static_cast<std::int64_t>(product.retail_cents) * 1000;
    const std::int64_t retail_net = (retail_total * 1000 + factor / 2) / factor;
    for (const PriceType& type : kTypes) {
      std::int64_t net = retail_net;
      std::int64_t total = retail_total;
      if (type.percent_of_retail != 100) {
        net = retail_net * type.percent_of_retail / 100000 * 1000;
        total = net * factor / 1000;
      }
      rows.Add({NumberLiteral(type.id), NumberLiteral(product.id), DecimalLiteral(net, 5), NullableId(product.vat.id),
                DecimalLiteral(total - net, 5), DecimalLiteral(total, 5), NullableText(product.exemption),
                DecimalLiteral(type.discount_percent, 2), type.id == 1 ? "1" : "0"});
    }
  }
  rows.Finish();
}

// One row of stock and one of minimums for each product and warehouse that keeps stock, as creating a product does.
void WriteStocks(Connection& connection, const std::vector<Product>& products, const History& history,
                 const std::vector<int>& types_without_stock, unsigned seed) {
  const std::vector<int> warehouses =
      ReadIds(connection, "SELECT armazem_id FROM tbArmazens WHERE has_stocks <> 0 ORDER BY armazem_id");
  const OrderedUnits by_customers = UnitsOnOrder(history[static_cast<std::size_t>(Source::kCustomerOrders)]);
  const OrderedUnits from_suppliers = UnitsOnOrder(history[static_cast<std::size_t>(Source::kSupplierOrders)]);
  const auto ordered = [](const OrderedUnits& units, std::size_t product, int warehouse) {
    const auto found = units.find({product, warehouse});
    return found == units.end() ? std::string(kNullLiteral) : DecimalLiteral(found->second, 3);
  };

  RowWriter stocks(connection, "tbProdutos_Stocks",
                   "produto_id, armazem_id, unidades, unidades_enc_clientes, unidades_enc_fornec");
  RowWriter minimums(connection, "tbProdutos_Stocks_Minimos", "produto_id, armazem_id, unidades, reposicao");
  Random random(seed);
  for (std::size_t i = 0; i < products.size(); ++i) {
    const Product& product = products[i];
    if (product.deleted) continue;
    const bool stocked =
        std::find(types_without_stock.begin(), types_without_stock.end(), product.type_id) == types_without_stock.end();
    for (const int warehouse : warehouses) {
      const int units = !stocked || random.Percent(20) ? 0 : random.Between(-2, 120);
      const int minimum = !stocked || random.Percent(40) ? 0 : 5 * random.Between(1, 6);
      stocks.Add({NumberLiteral(product.id), NumberLiteral(warehouse), NumberLiteral(units),
                  ordered(by_customers, i, warehouse), ordered(from_suppliers, i, warehouse)});
      minimums.Add({NumberLiteral(product.id), NumberLiteral(warehouse), NumberLiteral(minimum),
                    minimum == 0 ? kNullLiteral : NumberLiteral(2 * minimum)});
    }
  }
  stocks.Finish();
  minimums.Finish();
}

void WriteModules(Connection& connection, const std::vector<Product>& products, Modules modules) {
  struct Module {
    const char* table;
    const char* columns;
    std::string Product::*name;
  };
  static constexpr Module kModules[] = {
      {"tbAssociados_Quotas_Tipos", "quota_tipo_id, descrit, produto_id", &Product::quota},
      {"tbTratamentos", "tratamento_id, descrit, produto_id", &Product::treatment},
      {"tbProjectos_Servicos_Tipos", "servico_tipo_id, descrit, produto_id", &Product::service}};
  for (std::size_t i = 0; i < TablesOf(modules); ++i) {
    const Module& module = kModules[i];
    RowWriter rows(connection, module.table, module.columns);
    int id = 0;
    for (const Product& product : products) {
      const std::string& name = product.*module.name;
      if (!name.empty()) rows.Add({NumberLiteral(++id), TextLiteral(name), NumberLiteral(product.id)});
    }
    rows.Add({NumberLiteral(++id), TextLiteral("Sem artigo associado"), kNullLiteral});
    rows.Finish();
  }
}

// The number of a code that the code counter could have given out. Longer codes are bar codes.
std::optional<int> CountedCode(const std::string& code) {
  const bool digits = std::all_of(code.begin(), code.end(), [](char c) { return c >= '0' && c <= '9'; });
  if (code.empty() || code.size() > 6 || !digits) return std::nullopt;
  return std::stoi(code);
}

// Both counters hold the next number to give out.
void WriteCounters(Connection& connection, const std::vector<Product>& products) {
  int last_id = 0;
  int last_code = 9999;
  for (const Product& product : products) {
    last_id = std::max(last_id, product.id);
    last_code = std::max(last_code, CountedCode(product.code).value_or(0));
  }
  RowWriter rows(connection, "tbContadores", "nome, contador");
  rows.Add({TextLiteral("produto_codigo"), NumberLiteral(last_code + 1)});
  rows.Add({TextLiteral("produto_id"), NumberLiteral(last_id + 1)});
  rows.Finish();
}

}  // namespace

std::vector<CatalogueLogin> CatalogueLogins() {
  std::vector<CatalogueLogin> logins{{"suite", "Suite-2026"}};
  for (const char* user : {"ana", "bruno", "carla", "diogo", "eva", "d'orey", "gil", "maria", "marta", "rui"}) {
    logins.push_back({user, std::string(user) + "-senha"});
  }
  return logins;
}

void LoadSchema(Connection& connection, const std::string& sql_text) {
  for (const std::string& batch : SplitBatches(sql_text)) connection.Execute(batch);
}

void CreateCatalogue(Connection& connection, Modules modules) {
  Transaction transaction(connection);
  LoadSchema(connection, std::string(kSchemaSql));
  const std::vector<std::string> module_tables = SplitBatches(kSchemaModulesSql);
  for (std::size_t i = 0; i < TablesOf(modules); ++i) connection.Execute(module_tables[i]);
  transaction.Commit();
}

void FillCatalogue(Connection& connection, const CatalogueOptions& options) {
  Transaction transaction(connection);
  LoadSchema(connection, std::string(kLookupsSql));
  const LookupIds ids = ReadLookupIds(connection);
  std::vector<Product> products = ReadProducts(kProductsTxt, ids);
  if (options.products > 0) CompleteProducts(products, options.products, ids, options.seed);

  HistoryPlan plan;
  plan.today = options.today;
  plan.seed = options.seed;
  plan.customers = ReadContacts(
      connection, "SELECT contacto_id, nome_union FROM tbContactos WHERE is_cliente <> 0 ORDER BY contacto_id");
  plan.suppliers = ReadContacts(connection, "SELECT contacto_id, nome_union FROM vwFornecedores ORDER BY contacto_id");
  plan.busy_lines = options.history_lines;
  const auto busy = std::find_if(products.begin(), products.end(),
                                 [](const Product& product) { return product.code == kBusyProductCode; });
  if (busy != products.end()) plan.busy_product = static_cast<std::size_t>(busy - products.begin());
  const History history = MakeHistory(products, plan);

  WriteProducts(connection, products, options);
  WritePrices(connection, products);
  WriteStocks(connection, products, history,
              ReadIds(connection, "SELECT tipo_id FROM tbProdutos_Tipos WHERE has_stocks = 0"), options.seed);
  WriteModules(connection, products, options.modules);
  for (int source = 0; source < kSourceCount; ++source) {
    WriteHistory(connection, static_cast<Source>(source), history[static_cast<std::size_t>(source)], products);
  }
  WriteCounters(connection, products);
  LoadSchema(connection, std::string(kExceptionsSql));
  transaction.Commit();
}

}  // namespace quenta::sandbox
