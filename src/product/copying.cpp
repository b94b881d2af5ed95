#include "product/copying.h"

#include <string>

#include "base/convert.h"
#include "base/error.h"
#include "base/text.h"
#include "data/sql_field.h"

namespace quenta::product {
namespace {

constexpr std::int32_t kNoCurrentRow = 3021;  // data access: a row is read that is not there

}  // namespace

std::int32_t ReadAndAdvance(session::Session& session, const char* read, const char* advance) {
  const ports::RowSet counter = session.Query(read);
  if (counter.empty()) throw base::Error(kNoCurrentRow, std::string("There is no row: ") + read);
  const std::int32_t number = base::ToLong(counter.front()["contador"], session.locale());
  session.Execute(advance);
  return number;
}

std::int32_t TakeProdutoId(session::Session& session) {
  return ReadAndAdvance(session, "SELECT * FROM tbContadores WHERE nome = 'produto_id'",
                        "UPDATE tbContadores SET contador = contador + 1 WHERE nome = 'produto_id'");
}

void InsertStocks(session::Session& session, std::int32_t copy) {
  const std::string id = base::DecimalText(copy);
  for (const ports::Row armazem : session.Query("SELECT * FROM tbArmazens WHERE has_stocks <> 0")) {
    session.Execute("INSERT INTO tbProdutos_Stocks (produto_id, armazem_id, unidades) VALUES (" + id + "," +
                    base::ToText(armazem["armazem_id"], session.locale()) + ",0)");
  }
}

void CopyMinimums(session::Session& session, std::int32_t source, std::int32_t copy) {
  const std::string id = base::DecimalText(copy);
  for (const ports::Row minimum :
       session.Query("SELECT * FROM tbProdutos_Stocks_Minimos WHERE produto_ID = " + base::DecimalText(source))) {
    session.Execute("INSERT INTO tbProdutos_Stocks_Minimos (produto_id, armazem_id, unidades) VALUES (" + id + "," +
                    base::ToText(minimum["armazem_id"], session.locale()) + "," +
                    data::SQLField(session, minimum["unidades"], data::SQLKind::kNumber) + ")");
  }
}

}  // namespace quenta::product
