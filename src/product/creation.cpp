// Numbers and inserts a new product at once, with its stock, minimum and price rows; saving it comes later.
#include "base/convert.h"
#include "base/text.h"
#include "component/session/transaction.h"
#include "controls/field_value.h"
#include "data/sql_field.h"
#include "product/frm_main_guard.h"

namespace quenta::product {
namespace {

using data::SQLKind;

}  // namespace

void frmMain::CreateProduct() {
  const hosting::ExclusiveUse exclusive(forms_, *this);
  session::Transaction transaction(session_);
  const std::int32_t codigo =
      TakeNumber("SELECT * FROM tbContadores WHERE nome = 'produto_codigo'",
                 "INSERT tbContadores (nome, contador) VALUES ('produto_codigo', 10001)", 10000,
                 "UPDATE tbContadores SET contador = contador + 1 WHERE nome = 'produto_codigo'",
                 // Compared as text: codes with letters exist, and the server would turn them all into numbers.
                 [&](std::int32_t number) {
                   return "SELECT produto_id FROM tbProdutos WHERE codigo = " +
                          data::SQLField(session_, base::DecimalText(number), SQLKind::kText);
                 });
  const std::int32_t produto_id =
      TakeNumber("SELECT * FROM tbContadores WHERE nome = 'produto_id'",
                 "INSERT tbContadores (nome, contador) VALUES ('produto_id', 2)", 1,
                 "UPDATE tbContadores SET contador = contador + 1 WHERE nome = 'produto_id'", [&](std::int32_t number) {
                   return "SELECT produto_id FROM tbProdutos WHERE Produto_ID = " +
                          data::SQLField(session_, number, SQLKind::kNumber);
                 });

  const ports::RowSet types = session_.Query("SELECT * FROM tbProdutos_Tipos WHERE predef <> 0");
  if (!types.empty()) {
    Set(FXTipo_ID, types.front()["tipo_id"]);
    FXTipo_ID_Click();
  }
  const std::string id = base::DecimalText(produto_id);
  session_.Execute("INSERT INTO tbProdutos (Produto_ID,data_created, data_modified, codigo, tipo_id) VALUES (" + id +
                   ",GETDATE(), GETDATE(), " + base::DecimalText(codigo) + "," + Sql(FXTipo_ID) + ")");
  for (const ports::Row armazem : session_.Query("SELECT * FROM tbArmazens WHERE has_stocks <> 0")) {
    const std::string values = id + "," + base::ToText(armazem["armazem_id"], session_.locale()) + ",0)";
    session_.Execute("INSERT INTO tbProdutos_Stocks (produto_id,armazem_id,unidades) VALUES (" + values);
    session_.Execute("INSERT INTO tbProdutos_Stocks_Minimos (produto_id,armazem_id,unidades) VALUES (" + values);
  }
  for (const ports::Row tipo : session_.Query("SELECT * FROM tbProdutos_Precos_Tipos")) {
    session_.Execute("INSERT INTO tbProdutos_Precos (tipo_id, produto_id, iva_id, predef) VALUES (" +
                     data::SQLField(session_, tipo["tipo_id"], SQLKind::kNumber) + "," + id + "," + Sql(FXIva_ID) +
                     "," + data::SQLField(session_, tipo["predef_venda"], SQLKind::kNumber) + ")");
  }
  transaction.Commit();

  produto_id_ = produto_id;
  new_product_ = true;
  Set(FXCodigo, codigo);
  Set(FXFamilia_ID, base::Value::Null());
  Set(FXSub_Familia_ID, base::Value::Null());
  Set(FXNome, "");
  for (controls::TextField* field : {&FXValor, &FXIVA, &FXTOTAL, &FXDesconto, &FXObs}) Set(*field, "");
}

// Takes the next free number of a counter. The counter moves on with every number tried, and never back.
std::int32_t frmMain::TakeNumber(const char* read, const char* create, std::int32_t first, const char* advance,
                                 const std::function<std::string(std::int32_t)>& find_user) {
  while (true) {
    std::int32_t number = first;
    const ports::RowSet counter = session_.Query(read);
    if (counter.empty()) {
      session_.Execute(create);
    } else {
      number = base::ToLong(counter.front()["contador"], session_.locale());
      session_.Execute(advance);
    }
    if (session_.Query(find_user(number)).empty()) return number;
  }
}

}  // namespace quenta::product
