#include "product/frm_stocks.h"

#include <initializer_list>

#include "base/convert.h"
#include "base/format.h"
#include "base/text.h"
#include "component/session/guarded.h"
#include "component/session/transaction.h"
#include "controls/field_entry.h"
#include "controls/field_value.h"
#include "data/check_permissions.h"
#include "product/product_stamp.h"

namespace quenta::product {
namespace {

using controls::format_code::kNumber;

constexpr session::Labels kLabels{"Programa de Contabilidade", "Quenta_Produtos", "frmStocks",
                                  session::DescriptionStyle::kAlone};

// As the stock list shows a quantity.
std::string ListText(const controls::TextField& field, const base::Locale& locale) {
  return field.text().empty() ? " " : base::Format(field.tag(), "0.00", locale);
}

}  // namespace

template <typename Body, typename... Untold>
void frmStocks::Guarded(const std::string& procedure, Body&& body, Untold&&... untold) noexcept {
  const Operation operation(*this);
  session::Guarded(session_.ports().error_reporting, kLabels, procedure.c_str(), body, untold...);
}

frmStocks::frmStocks(session::Session& session, ports::FormHost& host, hosting::Forms& forms,
                     const std::shared_ptr<frmMain>& opener, std::int32_t armazem_id)
    : FormOverProduct("frmStocks", session, host, forms, opener),
      produto_id_(opener->ProdutoId()),
      armazem_id_(armazem_id) {
  set_caption("Stock em Armazém");
  LayOut();
  AddEvents();
}

void frmStocks::LayOut() {
  for (controls::Control* control : std::initializer_list<controls::Control*>{
           &FXArmazem, &Frame1, &FXStock_Label, &FXStock, &FXStockMinimo_Label, &FXStockMinimo, &FXReposicao_Label,
           &FXReposicao, &Command1, &Command2}) {
    Add(*control);
  }
  for (controls::TextField* field : {&FXStock, &FXStockMinimo, &FXReposicao}) field->right_aligned = true;
  FXStock.set_locked(true);
  Frame1.rows = {{{{&FXStock, &FXStock_Label, 4},
                   {&FXStockMinimo, &FXStockMinimo_Label, 4},
                   {&FXReposicao, &FXReposicao_Label, 4}}}};
  layout_.note = &FXArmazem;
  layout_.frames = {&Frame1};
  layout_.buttons = {&Command1, &Command2};
  layout_.minimum_width = 400;
  layout_.minimum_height = 160;
  layout_.initial_width = 420;
  layout_.initial_height = 180;
  layout_.resizable = false;
}

void frmStocks::AddEvents() {
  for (controls::TextField* field : {&FXStockMinimo, &FXReposicao}) {
    field->on_got_focus = [this, field] {
      Guarded(field->name() + "_GotFocus", [&] { controls::FieldGotFocus(*field, kNumber, session_.locale()); });
    };
    field->on_lost_focus = [this, field] { Guarded(field->name() + "_LostFocus", [&] { LeaveField(*field); }); };
  }
  Command1.on_click = [this] { Command1_Click(); };
  Command2.on_click = [this] { Unload(); };
}

// The user is told when the field does not take what was typed; the button then is not pressed.
void frmStocks::LeaveField(controls::TextField& field) {
  if (controls::FieldLostFocus(field, kNumber, session_.locale())) return;
  session_.ports().desktop.Ask({.text = controls::RefusalOf(field), .icon = ports::Icon::kInformation}, this);
  host().Focus(*this, field.name().c_str());
}

void frmStocks::OnLoad() {
  Guarded("Form_Load", [&] {
    FormOverProduct::OnLoad();
    // Without the record there is nothing to save: empty fields would erase quantities that nobody has seen.
    Command1.set_enabled(false);
    ShowRecord();
  });
}

void frmStocks::ShowRecord() {
  const ports::RowSet rows = session_.Query(
      "SELECT tbProdutos_Stocks.*, tbProdutos_Stocks_Minimos.unidades as unidades_minimas, "
      "tbProdutos_Stocks_Minimos.reposicao as unidades_reposicao, 'Armazém: ' + tbArmazens.descrit as armazem FROM "
      "tbProdutos_Stocks LEFT JOIN tbProdutos_Stocks_Minimos ON (tbProdutos_Stocks.armazem_id = "
      "tbProdutos_Stocks_Minimos.armazem_id AND tbProdutos_Stocks.produto_id = tbProdutos_Stocks_Minimos.produto_id) "
      "LEFT JOIN tbArmazens ON tbProdutos_Stocks.armazem_id = tbArmazens.armazem_id WHERE tbProdutos_Stocks.produto_id "
      "= " +
      base::DecimalText(produto_id_) + " AND tbProdutos_Stocks.armazem_id = " + base::DecimalText(armazem_id_));
  if (rows.empty()) {
    FXArmazem.set_caption("Este armazém já não tem stock deste produto.");
    return;
  }
  const ports::Row stock = rows.front();
  const base::Locale& locale = session_.locale();
  controls::SetFieldValue(FXArmazem, stock["armazem"], 0, locale);
  controls::SetFieldValue(FXStock, stock["unidades"], kNumber, locale);
  controls::SetFieldValue(FXStockMinimo, stock["unidades_minimas"], kNumber, locale);
  controls::SetFieldValue(FXReposicao, stock["unidades_reposicao"], kNumber, locale);
  Command1.set_enabled(true);
}

void frmStocks::Command1_Click() {
  const std::shared_ptr<Form> alive = shared_from_this();
  bool saved = false;
  const auto tell = [&](const std::string& description) {
    session_.ports().desktop.Ask(
        {.text = "Não foi possível gravar as quantidades.\n" + description, .icon = ports::Icon::kCritical}, this);
  };
  const auto save = [&] {
    if (!Command1.enabled()) return;
    if (!data::CheckSecurityPolicy(session_, session_.state().session_user, "#2281", this)) {
      session_.ports().desktop.Ask(
          {.text =
               "Não tem permissões para efectuar alterações nos produtos. Contacte o administrador de segurança para "
               "que lhe sejam atribuídas as permissões necessárias.",
           .title = "Politicas de Segurança",
           .icon = ports::Icon::kCritical},
          this);
      return;
    }
    SaveRecord();
    ShowInList();
    saved = true;
  };
  Guarded("Command1_Click", save, tell);
  if (saved) Unload();
}

void frmStocks::SaveRecord() {
  using controls::format_code::kAmount4;
  const std::string produto_id = base::DecimalText(produto_id_);
  const hosting::ExclusiveUse exclusive(forms_, *this);
  session::Transaction transaction(session_);
  // So that the product form does not take this change for another user's, nor another user's for this one.
  const base::Value before = ReadStamp(session_, produto_id_).modified;
  // Never an insert: the suite's other modules create a warehouse's minimums.
  session_.Execute("UPDATE tbProdutos_Stocks_Minimos SET unidades = " +
                   controls::GetFieldValue(FXStockMinimo, kAmount4, session_.locale()) +
                   ", reposicao = " + controls::GetFieldValue(FXReposicao, kAmount4, session_.locale()) +
                   " WHERE armazem_id = " + base::DecimalText(armazem_id_) + " AND produto_id = " + produto_id);
  session_.Execute("UPDATE tbProdutos SET data_modified = GETDATE() WHERE produto_id = " + produto_id);
  const base::Value after = ReadStamp(session_, produto_id_).modified;
  transaction.Commit();
  if (const auto opener = OpenerOf(produto_id_)) opener->StampChanged(before, after);
}

// The product form may be gone by now, or show another product.
void frmStocks::ShowInList() {
  const auto opener = OpenerOf(produto_id_);
  if (opener == nullptr) return;
  controls::ListItem* const row = opener->ListView1.Find("#" + base::DecimalText(armazem_id_));
  if (row == nullptr) return;
  row->sub_items.at(1) = ListText(FXStockMinimo, session_.locale());
  row->sub_items.at(2) = ListText(FXReposicao, session_.locale());
  opener->ListView1.ItemsChanged();
}

}  // namespace quenta::product
