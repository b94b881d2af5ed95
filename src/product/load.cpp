// Shows an existing product: its row in the fields, the notes on what it is tied to, and the lock of its warehouse.
#include <initializer_list>

#include "base/convert.h"
#include "base/date.h"
#include "base/text.h"
#include "controls/field_value.h"
#include "data/shared_queries.h"
#include "data/warehouse.h"
#include "product/frm_main_guard.h"

namespace quenta::product {
namespace {

constexpr const char* kFormCaption = "Ficha de Produto";
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
  const bool whole = Guarded("Fill", [&] {
    const FillingMark mark(filling_);
    return ReadProduct();
  });
  // While a list waited for the server, the host may have taken the form away.
  if (!loaded()) return;
  SetIncomplete(!whole);
  SetAltered(false);
}

// False when part of the product could not be read, which was reported.
bool frmMain::ReadProduct() {
  modified_.reset();
  deletion_known_ = false;
  LockProduto(false);
  ClearRecord();
  const bool lists = FillLookups();
  if (!loaded()) return false;
  bool there = true;
  if (produto_id_ == 0) {
    // Without its lists, a product would be created without the type and the VAT rate that they propose.
    if (!lists) return false;
    CreateProduct();
  } else {
    // A creation whose product could not be shown is read again as what it is.
    if (!incomplete_) new_product_ = false;
    there = LoadProduct();
    NoteAssociations();
  }
  // Only a saved product can be duplicated or deleted.
  for (const char* key : {"apagar", "duplicar"}) Toolbar1.EnableButton(key, !new_product_);
  const bool prices = Fill_Precos();
  Fill_Stocks();
  LockByWarehouse();
  Toolbar1.EnableButton("imprimir", there && prices);
  Toolbar3.EnableButton("relatorio", there && prices);
  return lists && prices;
}

// What could not be read the first time may be there by now.
void frmMain::ReadAgain() {
  if (incomplete_) Fill();
  if (loaded() && FXData_Inicio.value() == base::EmptyDate()) Guarded("Form_Load", [&] { SetHistoryPeriod(); });
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
  set_caption(kFormCaption);
  Label1.set_caption(kNoteCaption);
}

// False when there is no such product: the fields then stay empty, and nobody is told.
bool frmMain::LoadProduct() {
  const ports::RowSet products =
      session_.Query("SELECT * FROM tbProdutos WHERE produto_id = " + base::DecimalText(produto_id_));
  TakeLimits(products);
  if (products.empty()) return false;
  ShowRecord(products.front());
  return true;
}

void frmMain::ShowRecord(const ports::Row& product) {
  using namespace controls::format_code;
  Set(FXCodigo, product["codigo"]);
  Set(FXFamilia_ID, product["familia_id"]);
  FillSubfamilias();
  if (FXFamilia_ID.ListIndex() >= 0) SetOffered(FXSub_Familia_ID, product["subfamilia_id"]);
  Set(FXNome, product["nome"]);
  Set(FXDescontinuado, product["descontinuado"]);
  SetOffered(FXFornecedor_ID, product["fornecedor_id"]);
  Set(FXMarca, product["marca"]);
  Set(FXObs, product["obs"]);
  Set(FXAltura, product["altura"], kNumber);
  Set(FXProfundidade, product["profundidade"], kNumber);
  Set(FXLargura, product["largura"], kNumber);
  Set(FXCor, product["cor"]);
  Set(FXTamanho, product["tamanho"]);
  SetOffered(FXTipo_ID, product["tipo_id"]);
  FXTipo_ID_Click();
  SetOffered(FXCentro_ID, product["centro_id"]);
  modified_ = product["data_modified"];
  deletion_known_ = base::IsNonZero(product["is_deleted"]);
  set_caption(std::string(kFormCaption) + " - " + FXCodigo.text() + " " + FXNome.text());
}

// A product keeps what its list does not offer any more (a supplier who is none now, an old type): as an entry of its
// own, by its number. Left out, it would be erased by the next save. It goes when the list is filled again.
void frmMain::SetOffered(controls::ComboBox& box, const base::Value& id) {
  Set(box, id);
  if (id.is_null() || box.ListIndex() >= 0) return;
  const std::int32_t number = base::ToLong(id, session_.locale());
  box.AddItem("(" + base::DecimalText(number) + ")");
  box.SetItemData(box.NewIndex(), number);
  box.SetListIndex(box.NewIndex());
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
  const auto armazem = data::CurrentWarehouse(session_);
  if (!armazem) return;
  const ports::RowSet warehouses =
      session_.Query("SELECT * FROM tbArmazens WHERE armazem_id = " + base::DecimalText(*armazem));
  if (!warehouses.empty() && !base::IsNonZero(warehouses.front()["can_modify_produts"])) LockProduto(true);
}

void frmMain::SetHistoryPeriod() {
  const base::Date today = data::ServerDate(session_);
  Set(FXData_Inicio, *base::MakeDate({base::ToCalendar(today).year, 1, 1, 0, 0, 0}));
  Set(FXData_Fim, base::Date{today.days + 1});
}

}  // namespace quenta::product
