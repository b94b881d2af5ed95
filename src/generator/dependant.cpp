#include "generator/dependant.h"

#include "base/convert.h"
#include "base/sql_literal.h"
#include "base/text.h"
#include "component/session/transaction.h"
#include "data/sql_field.h"
#include "product/copying.h"

namespace quenta::generator {
namespace {

using data::SQLKind;

// The beginnings of the insert, which differ in their blanks, as they always have.
constexpr const char* kInsertWithBoth =
    "INSERT INTO tbProdutos (produto_id, codigo, nome, familia_id, subfamilia_id, obs, data_created, data_modified, "
    "fornecedor_id, marca, descontinuado, main_id, cor, tamanho, tipo_id,largura, profundidade, altura ) VALUES (";
constexpr const char* kInsertWithColour =
    "INSERT INTO tbProdutos (produto_id, codigo, nome, familia_id, subfamilia_id, obs, data_created, data_modified, "
    "fornecedor_id, marca, descontinuado, main_id, cor, tamanho, tipo_id, largura, profundidade, altura) VALUES (";
constexpr const char* kInsertWithSize =
    "INSERT INTO tbProdutos (produto_id, codigo, nome, familia_id, subfamilia_id, obs, data_created, data_modified, "
    "fornecedor_id, marca, descontinuado, main_id, cor, tamanho, tipo_id, largura, profundidade, altura ) VALUES (";

const char* InsertFor(const Combination& combination) {
  if (combination.tamanho == nullptr) return kInsertWithColour;
  return combination.cor == nullptr ? kInsertWithSize : kInsertWithBoth;
}

}  // namespace

MainProduct::MainProduct(session::Session& session, const ports::Row& row)
    : session_(session),
      produto_id_(base::ToLong(row["produto_id"], session.locale())),
      codigo_(row["codigo"].is_null() ? std::string() : base::ToText(row["codigo"], session.locale())) {
  const auto number = [&](const char* column) { return data::SQLField(session, row[column], SQLKind::kNumber); };
  const auto text = [&](const char* column) { return data::SQLField(session, row[column], SQLKind::kText); };
  before_attributes_ = text("nome") + "," + number("familia_id") + ", " + number("subfamilia_id") + ", " + text("obs") +
                       ", GETDATE(), GETDATE(), " + number("fornecedor_id") + ", " + text("marca") + ", " +
                       number("descontinuado") + ", " + base::DecimalText(produto_id_) + ", ";
  after_attributes_ = ", " + number("tipo_id") + ", " + number("largura") + ", " + number("profundidade") + ", " +
                      number("altura") + ")";
}

std::string MainProduct::CodeOf(const Combination& combination) const {
  std::string code = codigo_;
  for (const Attribute* attribute : {combination.cor, combination.tamanho}) {
    if (attribute != nullptr) code += "-" + attribute->code;
  }
  return code;
}

bool MainProduct::HasDependant(const Combination& combination) const {
  std::string query = "SELECT * FROM tbProdutos WHERE is_deleted = 0 AND main_id = " + base::DecimalText(produto_id_);
  const std::string cor = TextLiteral(combination.cor);
  const std::string tamanho = TextLiteral(combination.tamanho);
  if (combination.tamanho == nullptr) {
    query += " AND tamanho is null AND cor = " + cor;
  } else if (combination.cor == nullptr) {
    query += " AND cor is null AND tamanho = " + tamanho;
  } else {
    query += " AND cor = " + cor + " AND tamanho = " + tamanho;
  }
  return !session_.Query(query).empty();
}

bool MainProduct::CreateDependant(const Combination& combination) const {
  session::Transaction transaction(session_);
  const std::int32_t produto_id = product::TakeProdutoId(session_);
  // The counter's row is ours until the end: whoever generates beside us has either committed what can be found now, or
  // will look for it after us.
  if (HasDependant(combination)) return false;
  InsertProduct(produto_id, combination);
  product::InsertStocks(session_, produto_id);
  product::CopyMinimums(session_, produto_id_, produto_id);
  CopyPrices(produto_id);
  transaction.Commit();
  return true;
}

void MainProduct::InsertProduct(std::int32_t produto_id, const Combination& combination) const {
  session_.Execute(InsertFor(combination) + base::DecimalText(produto_id) + "," +
                   base::SqlTextLiteral(CodeOf(combination)) + "," + before_attributes_ + TextLiteral(combination.cor) +
                   ", " + TextLiteral(combination.tamanho) + after_attributes_);
}

// Without the reason of exemption: dependants have never taken it over.
void MainProduct::CopyPrices(std::int32_t produto_id) const {
  const std::string id = base::DecimalText(produto_id);
  for (const ports::Row line :
       session_.Query("SELECT * FROM tbProdutos_Precos WHERE produto_id = " + base::DecimalText(produto_id_))) {
    const auto number = [&](const char* column) { return data::SQLField(session_, line[column], SQLKind::kNumber); };
    session_.Execute(
        "INSERT INTO tbProdutos_Precos (tipo_id, produto_id, preco, iva_id, iva, preco_total, desconto, predef) VALUES "
        "(" +
        number("tipo_id") + ", " + id + ", " + number("preco") + ", " + number("iva_id") + ", " + number("iva") + ", " +
        number("preco_total") + ", " + number("desconto") + ", " + number("predef") + ")");
  }
}

std::string MainProduct::TextLiteral(const Attribute* attribute) const {
  return attribute == nullptr ? "null" : data::SQLField(session_, attribute->text, SQLKind::kText);
}

}  // namespace quenta::generator
