// Saves the product: permission, validations, the product's row, its relatives, its prices.
#include <initializer_list>
#include <utility>
#include <vector>

#include "base/convert.h"
#include "base/error.h"
#include "base/sql_literal.h"
#include "base/text.h"
#include "component/session/transaction.h"
#include "controls/field_value.h"
#include "data/check_permissions.h"
#include "data/sql_field.h"
#include "product/frm_main_guard.h"
#include "product/price_row.h"
#include "product/product_stamp.h"

namespace quenta::product {
namespace {

using data::SQLKind;
using ports::Answer;
using ports::Buttons;
using ports::Icon;

// "name = value, name = value, …" and the date of the change.
std::string Assignments(const std::vector<std::pair<const char*, std::string>>& columns) {
  std::string text;
  for (const auto& [column, value] : columns) text += std::string(column) + " = " + value + ", ";
  return text + "data_modified = GETDATE() ";
}

}  // namespace

bool frmMain::Gravar() {
  // Whatever becomes of the report, nobody goes away from a product that he only thinks is saved.
  const auto tell = [&](const std::string& description) {
    Tell({.text = "Não foi possível gravar o produto. As alterações não foram gravadas.\n" + description,
          .title = "Registo de Documentos",
          .icon = Icon::kCritical,
          .system_modal = true});
  };
  return Guarded(
      "Gravar", [&] { return Save(); }, tell);
}

bool frmMain::Save() {
  if (!data::CheckSecurityPolicy(session_, session_.state().session_user, "#2281", this)) {
    Tell({.text = "Não tem permissões para efectuar alterações nos produtos. Contacte o administrador de segurança "
                  "para que lhe sejam atribuídas as permissões necessárias.",
          .title = "Politicas de Segurança",
          .icon = Icon::kCritical});
    return false;
  }
  if (incomplete_) {
    Tell({.text = Label1.caption(), .title = "Registo de Documentos", .icon = Icon::kInformation});
    return false;
  }
  if (!FieldsAreValid() || CodeIsTaken() || !ExemptionsHaveReasons() || !AmountsAreComputed() || !SaveRecord()) {
    return false;
  }
  Toolbar1.EnableButton("apagar", true);
  Toolbar1.EnableButton("duplicar", true);
  SetAltered(false);
  return true;
}

// False when the user, asked or told about what others did to the product, leaves it as it is.
bool frmMain::SaveRecord() {
  const hosting::ExclusiveUse exclusive(forms_, *this);
  session::Transaction transaction(session_);
  if (!MayOverwrite()) return false;
  SaveProduct();
  const base::Value modified = SaveRelatives();
  if (PrecosAltered) {
    SavePrices(base::DecimalText(produto_id_));
    ReplicatePrices();
  }
  if (new_product_) {
    // A second time after the creation did: saving a new product deliberately uses up one more code.
    session_.Execute("UPDATE tbContadores SET contador = contador + 1 WHERE nome = 'produto_codigo'");
  }
  transaction.Commit();
  // Only now: had the commit failed, the next try would need them.
  ForgetEmptied();
  PrecosAltered = false;
  new_product_ = false;
  modified_ = modified;
  return true;
}

// Nobody's work is overwritten unasked. Nothing has been written yet, so that nothing is locked while the user thinks.
bool frmMain::MayOverwrite() {
  const ProductStamp stamp = ReadStamp(session_, produto_id_);
  if (stamp.deleted && !deletion_known_) {
    Tell({.text = "Este produto foi entretanto apagado por outro utilizador. As alterações não foram gravadas.",
          .title = "Registo de Documentos",
          .icon = Icon::kInformation,
          .system_modal = true});
    return false;
  }
  if (!modified_ || *modified_ == stamp.modified) return true;
  return Ask({.text = "Este produto foi alterado por outro utilizador desde que foi aberto.\nDeseja gravar por cima "
                      "dessas alterações?",
              .title = "Registo de Documentos",
              .icon = Icon::kQuestion,
              .buttons = Buttons::kYesNo,
              .system_modal = true}) == Answer::kYes;
}

void frmMain::StampChanged(const base::Value& before, const base::Value& after) {
  if (modified_ && *modified_ == before) modified_ = after;
}

// A field that the user emptied keeps its raw value until null is saved in its place, and not longer: the next one who
// enters it would bring it back.
void frmMain::ForgetEmptied() {
  const auto forget = [](std::initializer_list<controls::TextField*> fields) {
    for (controls::TextField* field : fields) {
      if (field->text().empty()) field->set_tag({});
    }
  };
  forget({&FXAltura, &FXLargura, &FXProfundidade});
  if (PrecosAltered) forget({&FXValor, &FXIVA, &FXTOTAL, &FXDesconto});
}

bool frmMain::FieldsAreValid() {
  const struct {
    bool missing;
    const char* text;
    const controls::Control& field;
  } checks[] = {
      {FXFamilia_ID.ListIndex() < 0, "Tem de indicar uma familia de produtos para o produto que pretende gravar.",
       FXFamilia_ID},
      {FXIva_ID.ListIndex() < 0, "Tem de indicar a taxa de IVA para poder gravar o registo.", FXIva_ID},
      {base::Trim(FXCodigo.text()).empty(), "Tem de indicar um código para o produto que pretende gravar.", FXCodigo},
      {base::Trim(FXNome.text()).empty(), "Tem de indicar um nome para o produto que pretende gravar.", FXNome},
  };
  for (const auto& [missing, text, field] : checks) {
    if (!missing) continue;
    Refuse(text, field);
    return false;
  }
  return true;
}

bool frmMain::CodeIsTaken() {
  const ports::RowSet others = session_.Query(
      "SELECT produto_id FROM tbProdutos WHERE (is_deleted = 0 OR is_deleted is null) AND produto_id <> " +
      base::DecimalText(produto_id_) + " AND codigo = " + base::SqlTextLiteral(FXCodigo.text()));
  if (others.empty()) return false;
  Refuse("O código atribuido já existe, tem de indicar um código de produto diferente.", FXCodigo);
  return true;
}

// A price line without VAT must say why.
bool frmMain::ExemptionsHaveReasons() {
  for (int i = 0; i < ListView2.Count(); ++i) {
    const PriceRow line(ListView2.At(i));
    if (line.iva_id() == "0" || !base::Trim(line.iva_descrit()).empty() || !IsExempt(line.iva_id())) continue;
    Tell({.text = "O preço '" + line.tipo() +
                  "' tem isenção de IVA.\nÉ obrigatório indicar um motivo para a Isenção de IVA.",
          .icon = Icon::kInformation});
    ShowLine(i);
    if (!FXIVA_Descrit.enabled()) FillIsencaoIVA();
    host().Focus(*this, "FXIVA_Descrit");
    return false;
  }
  return true;
}

void frmMain::SaveProduct() {
  using controls::format_code::kNumber;
  session_.Execute("UPDATE tbProdutos SET " +
                   Assignments({{"codigo", Sql(FXCodigo)},
                                {"nome", Sql(FXNome)},
                                {"marca", Sql(FXMarca)},
                                {"familia_id", Sql(FXFamilia_ID)},
                                {"fornecedor_id", Sql(FXFornecedor_ID)},
                                {"subfamilia_id", Sql(FXSub_Familia_ID)},
                                {"obs", Sql(FXObs)},
                                {"tipo_id", Sql(FXTipo_ID)},
                                {"centro_id", Sql(FXCentro_ID)},
                                {"tamanho", Sql(FXTamanho)},
                                {"cor", Sql(FXCor)},
                                {"altura", Sql(FXAltura, kNumber)},
                                {"largura", Sql(FXLargura, kNumber)},
                                {"profundidade", Sql(FXProfundidade, kNumber)},
                                {"descontinuado", Sql(FXDescontinuado)}}) +
                   " WHERE produto_id=" + base::DecimalText(produto_id_));
}

// Products of one main product share their description: it goes to the dependants of this one, and from a dependant to
// its main product and the other dependants.
// Returns the date of the change that this leaves on the product itself.
base::Value frmMain::SaveRelatives() {
  const std::string id = base::DecimalText(produto_id_);
  const std::string shared = "UPDATE tbProdutos SET " + Assignments({{"nome", Sql(FXNome)},
                                                                     {"marca", Sql(FXMarca)},
                                                                     {"familia_id", Sql(FXFamilia_ID)},
                                                                     {"fornecedor_id", Sql(FXFornecedor_ID)},
                                                                     {"subfamilia_id", Sql(FXSub_Familia_ID)},
                                                                     {"tipo_id", Sql(FXTipo_ID)},
                                                                     {"descontinuado", Sql(FXDescontinuado)}});
  session_.Execute(shared + " WHERE main_id=" + id);
  main_id_.clear();
  const ports::RowSet own = session_.Query("SELECT * FROM tbProdutos WHERE produto_id = " + id);
  TakeLimits(own);
  if (own.empty() || (base::IsNonZero(own.front()["is_deleted"]) && !deletion_known_)) {
    throw base::Error(base::error_number::kInternal, "The product is not in the database any more.");
  }
  if (own.front()["main_id"].is_null()) return own.front()["data_modified"];
  main_id_ = base::ToText(own.front()["main_id"], session_.locale());
  session_.Execute(shared + " WHERE main_id=" + main_id_);
  session_.Execute(shared + " WHERE produto_id=" + main_id_);
  // The main product's dependants include this one, whose date has been set once more.
  return ReadStamp(session_, produto_id_).modified;
}

void frmMain::SavePrices(const std::string& produto_id) {
  session_.Execute("DELETE FROM tbProdutos_Precos WHERE produto_id = " + produto_id);
  for (int i = 0; i < ListView2.Count(); ++i) {
    const PriceRow line(ListView2.At(i));
    const auto number = [&](const std::string& text) { return data::SQLField(session_, text, SQLKind::kNumber); };
    session_.Execute(
        "INSERT INTO tbProdutos_Precos (tipo_id, produto_id, preco, iva_id, iva, preco_total, iva_descrit, desconto, "
        "predef) VALUES (" +
        line.tipo_id() + ", " + produto_id + ", " + number(line.preco()) + ", " + number(line.iva_id()) + ", " +
        number(line.iva()) + ", " + number(line.preco_total()) + ", " +
        data::SQLField(session_, line.iva_descrit(), SQLKind::kText) + ", " + number(line.desconto()) + ", " +
        (line.is_default() ? "1" : "0") + ")");
  }
}

// Offers the changed prices to the products that depend on this one, or on the same main product. The product itself is
// passed by, and so are deleted products, whose prices stay deleted.
void frmMain::ReplicatePrices() {
  const std::string id = base::DecimalText(produto_id_);
  const ports::RowSet products = session_.Query("SELECT * FROM tbProdutos WHERE main_id = " + id +
                                                " OR main_id = " + (main_id_.empty() ? std::string("null") : main_id_));
  if (products.empty()) return;
  const Answer answer =
      Ask({.text = "Os preços deste produto foram alterados.\nDeseja replicar essas alterações para os "
                   "produtos dependentes?",
           .title = "Alteração de Preços",
           .icon = Icon::kQuestion,
           .buttons = Buttons::kYesNo,
           .system_modal = true});
  if (answer != Answer::kYes) return;
  for (const ports::Row product : products) {
    const std::string dependant = base::ToText(product["produto_id"], session_.locale());
    if (dependant != id && !base::IsNonZero(product["is_deleted"])) SavePrices(dependant);
  }
}

}  // namespace quenta::product
