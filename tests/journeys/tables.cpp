// The rows that the component writes, as another user of the database sees them.
#include "journeys/observation.h"

#include <cctype>

#include "base/convert.h"
#include "base/format.h"
#include "support/locales.h"

namespace quenta::journeys {
namespace {

constexpr struct {
  const char* name;
  const char* keys[2];
} kTables[] = {{"tbContadores", {"nome", nullptr}},
               {"tbProdutos", {"produto_id", nullptr}},
               {"tbProdutos_Precos", {"produto_id", "tipo_id"}},
               {"tbProdutos_Stocks", {"produto_id", "armazem_id"}},
               {"tbProdutos_Stocks_Minimos", {"produto_id", "armazem_id"}}};

std::string TextOf(const base::Value& value) {
  static const base::Locale kEnglish = tests::EnglishLocale();
  return value.is_date() ? base::Format(value, "yyyy-mm-dd hh:nn:ss", kEnglish) : base::ToText(value, kEnglish);
}

bool Names(const std::string& statement, const std::string& table) {
  const std::size_t at = statement.find(table);
  const std::size_t end = at + table.size();
  if (at == std::string::npos) return false;
  const bool whole = end == statement.size() || (statement[end] != '_' && std::isalpha(statement[end]) == 0);
  return whole || Names(statement.substr(end), table);
}

}  // namespace

std::set<std::string> TablesWritten(const std::string& statement) {
  std::set<std::string> tables;
  for (const auto& table : kTables) {
    if (!statement.starts_with("SELECT") && Names(statement, table.name)) tables.insert(table.name);
  }
  return tables;
}

void ReadRows(ports::Connection& connection, const std::set<std::string>& tables,
              std::map<std::string, Facts>& rows_of) {
  for (const auto& [name, keys] : kTables) {
    if (!tables.contains(name)) continue;
    Facts& facts = rows_of[name];
    facts.clear();
    const std::string order = keys[0] + (keys[1] != nullptr ? std::string(", ") + keys[1] : "");
    const ports::RowSet rows = connection.Query("SELECT * FROM " + std::string(name) + " ORDER BY " + order);
    for (const ports::Row row : rows) {
      Fact fact{std::string(name) + " " + TextOf(row[keys[0]]), {}};
      if (keys[1] != nullptr) fact.subject += "/" + TextOf(row[keys[1]]);
      for (std::size_t i = 0; i < rows.columns().size(); ++i) {
        const std::string& column = rows.columns()[i];
        const bool is_key = column == keys[0] || (keys[1] != nullptr && column == keys[1]);
        if (!is_key && !row.At(i).is_null()) fact.values.emplace_back(column, Shown(TextOf(row.At(i))));
      }
      facts.push_back(std::move(fact));
    }
  }
}

}  // namespace quenta::journeys
