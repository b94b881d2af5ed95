// The rows that the component writes, as another user of the database sees them.
#include "journeys/observation.h"

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
  return value.is_date() ? base::Format(value, "yyyy-mm-dd hh:nn:ss", tests::EnglishLocale())
                         : base::ToText(value, tests::EnglishLocale());
}

}  // namespace

bool Writes(const std::string& statement) {
  return !statement.starts_with("SELECT") && statement != "BEGIN" && statement != "COMMIT" && statement != "ROLLBACK";
}

Facts RowsOf(ports::Connection& connection) {
  Facts facts;
  for (const auto& [name, keys] : kTables) {
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
  return facts;
}

}  // namespace quenta::journeys
