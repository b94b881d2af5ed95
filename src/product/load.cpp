// Shows an existing product: its row in the fields, the notes on what it is tied to, and the lock of its warehouse.
#include <initializer_list>

#include "base/convert.h"
#include "base/date.h"
#include "base/text.h"
#include "controls/field_value.h"
#include "data/registry.h"
#include "data/shared_queries.h"
#include "product/frm_main_guard.h"

namespace quenta::product {
namespace {

constexpr const char* kNoteCaption = "Dados do produto";

// Other modules of the suite that may bill for a product; a database need not have their tables.
struct Association {
  const char* exists;
  const char* rows;
  const char* note;
};

constexpr Association kAssociations[] = {
    {"SELECT * FROM sysobjects WHERE name = 'tbAssociados_Quotas_Tipos'",
     "SELECT * FROM tbAssociados_Quotas_Tipos WHERE produto_id = ", " (associado à quotização: "},
    {"SELECT * FROM sysobjects WHERE name = 'tbTratamentos'",
     "SELECT * FROM tbTratamentos WHERE produto_id = ", " (associado ao tratamento: "},
    {"SELECT * FROM sysobjects WHERE name = 'tbProjectos_Servicos_Tipos'",
     "SELECT * FROM tbProjectos_Servicos_Tipos WHERE produto_id = ", " (associado ao tipo de serviço (eventos): "},
};

}  // namespace

void frmMain::Fill() {
  Guarded("Fill", [&] {
    const FillingMark mark(filling_);
    record_shown_ = false;
    ClearRecord();
    bool shown = FillLookups();
    // While a list waits for the server, the host may take the form away: nobody is there then for a new product.
    if (!loaded()) return;
    // Only a saved product can be duplicated or deleted.
    for (const char* key : {"apagar", "duplicar"}) Toolbar1.EnableButton(key, produto_id_ != 0);
    if (produto_id_ == 0) {
      CreateProduct();
    } else {
      new_product_ = false;
      shown = LoadProduct() && shown;
      NoteAssociations();
    }
    shown = Fill_Precos() && shown;
    Fill_Stocks();
    LockByWarehouse();
    record_shown_ = shown;
    Toolbar1.EnableButton("imprimir", shown);
    Toolbar3.EnableButton("relatorio", shown);
  });
  SetAltered(false);
}

// What an earlier product left in the fields never stands under another one's identifier.
void frmMain::ClearRecord() {
  ForgetTyping();
  for (controls::Control* field : std::initializer_list<controls::Control*>{
           &FXCodigo,  &FXNome,          &FXDescontinuado, &FXTipo_ID, &FXFamilia_ID, &FXSub_Familia_ID,
           &FXMarca,   &FXFornecedor_ID, &FXCentro_ID,     &FXCor,     &FXTamanho,    &FXAltura,
           &FXLargura, &FXProfundidade,  &FXObs,           &FXTipo,    &FXValor,      &FXIVA,
           &FXTOTAL,   &FXDesconto,      &FXIVA_Descrit}) {
    Set(*field, base::Value::Null());
  }
  for (controls::TextField* field : {&FXPrecoMin, &FXPrecoMax, &FXQuantidade, &FXValorTotal}) {
    Set(*field, base::Value::Null());
  }
  for (controls::ListView* list : {&ListView1, &ListView2, &ListView3, &ListView13}) list->Clear();
  FXSub_Familia_ID.Clear();
  familia_of_subfamilias_.reset();
  FXNome.Clear();
  PrecoKey.clear();
  PrecosAltered = false;
  Label1.set_caption(kNoteCaption);
}

// False when there is no such product: the fields then stay empty, and nobody is told.
bool frmMain::LoadProduct() {
  const ports::RowSet products =
      session_.Query("SELECT * FROM tbProdutos WHERE produto_id = " + base::DecimalText(produto_id_));
  if (products.empty()) return false;
  ShowRecord(products.front());
  return true;
}

void frmMain::ShowRecord(const ports::Row& product) {
  using namespace controls::format_code;
  Set(FXCodigo, product["codigo"]);
  Set(FXFamilia_ID, product["familia_id"]);
  FillSubfamilias();
  Set(FXSub_Familia_ID, product["subfamilia_id"]);
  Set(FXNome, product["nome"]);
  Set(FXDescontinuado, product["descontinuado"]);
  Set(FXFornecedor_ID, product["fornecedor_id"]);
  Set(FXMarca, product["marca"]);
  Set(FXObs, product["obs"]);
  Set(FXAltura, product["altura"], kNumber);
  Set(FXProfundidade, product["profundidade"], kNumber);
  Set(FXLargura, product["largura"], kNumber);
  Set(FXCor, product["cor"]);
  Set(FXTamanho, product["tamanho"]);
  Set(FXTipo_ID, product["tipo_id"]);
  FXTipo_ID_Click();
  Set(FXCentro_ID, product["centro_id"]);
  set_caption("Ficha de Produto - " + FXCodigo.text() + " " + FXNome.text());
}

void frmMain::NoteAssociations() {
  const std::string id = base::DecimalText(produto_id_);
  for (const Association& association : kAssociations) {
    if (session_.Query(association.exists).empty()) continue;
    const ports::RowSet rows = session_.Query(association.rows + id);
    if (rows.empty()) continue;
    const base::Value& descrit = rows.front()["descrit"];
    Label1.set_caption(Label1.caption() + association.note +
                       (descrit.is_null() ? std::string() : base::ToText(descrit, session_.locale())) + ")");
  }
}

void frmMain::LockByWarehouse() {
  LockProduto(false);
  data::Registry registry(session_.ports());
  const base::Value armazem = registry.ObterValorString(session_.SettingsKey(), "Armazem");
  if (armazem.is_null()) return;
  const ports::RowSet warehouses =
      session_.Query("SELECT * FROM tbArmazens WHERE armazem_id = " + base::ToText(armazem, session_.locale()));
  if (!warehouses.empty() && !base::IsNonZero(warehouses.front()["can_modify_produts"])) LockProduto(true);
}

void frmMain::LockProduto(bool locked) {
  for (controls::TextField* field : {&FXCodigo, &FXObs, &FXValor, &FXIVA, &FXTOTAL, &FXDesconto}) {
    field->set_locked(locked);
  }
  for (controls::ComboBox* box : {&FXFamilia_ID, &FXSub_Familia_ID, &FXNome, &FXIva_ID}) box->set_locked(locked);
  for (const char* key : {"gravar", "apagar", "duplicar"}) Toolbar1.ShowButton(key, !locked);
}

void frmMain::SetHistoryPeriod() {
  const base::Date today = data::ServerDate(session_);
  Set(FXData_Inicio, *base::MakeDate({base::ToCalendar(today).year, 1, 1, 0, 0, 0}));
  Set(FXData_Fim, base::Date{today.days + 1});
}

}  // namespace quenta::product
