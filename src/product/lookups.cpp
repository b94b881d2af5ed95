// The lists that the record's fields choose from.
#include "base/convert.h"
#include "base/error.h"
#include "base/text.h"
#include "data/control_fill.h"
#include "product/frm_main_guard.h"

namespace quenta::product {

// False when one of the lists could not be filled: what the record chooses from it then cannot be shown.
bool frmMain::FillLookups() {
  bool complete = true;
  const auto fill = [&](controls::ComboBox& box, const char* sql, const char* text_column, const char* id_column) {
    complete = data::ControlFill(session_, *this, box, sql, text_column, id_column) && complete;
    // Reported by now. Without a line, every further question would wait as long as this one did.
    if (!complete && session_.SharedConnection().State() != ports::ConnectionState::kOpen) {
      throw base::Error(base::error_number::kClosedConnection, "The connection is not open.");
    }
  };
  fill(FXTipo_ID, "SELECT * FROM tbProdutos_Tipos ORDER BY tipo_id", "descrit", "tipo_id");
  FXTipo_ID_Click();
  fill(FXCor, "SELECT * FROM tbProdutos_Cores ORDER BY cor_id", "descrit", "cor_id");
  fill(FXTamanho, "SELECT * FROM tbProdutos_Tamanhos ORDER BY tamanho_id", "descrit", "tamanho_id");
  fill(FXCentro_ID, "SELECT * FROM vwCentros_Custo ORDER BY descrit2", "descrit2", "centro_id");

  const ports::RowSet familias = session_.Query("SELECT * FROM tbProdutos_Familias ORDER BY descrit");
  {
    const controls::ComboBox::Update update(FXFamilia_ID);
    FXFamilia_ID.Clear();
    for (const ports::Row familia : familias) AddEntry(FXFamilia_ID, familia, "descrit", "familia_id");
  }
  const ports::RowSet taxas = session_.Query("SELECT * FROM vwTaxas_Iva ORDER BY descrit2");
  {
    const controls::ComboBox::Update update(FXIva_ID);
    FXIva_ID.Clear();
    int predef = -1;
    for (const ports::Row taxa : taxas) {
      AddEntry(FXIva_ID, taxa, "descrit2", "iva_id");
      if (base::IsNonZero(taxa["predef"])) predef = FXIva_ID.NewIndex();
    }
    FXIva_ID.SetListIndex(predef);
  }
  fill(FXFornecedor_ID, "SELECT * FROM vwFornecedores ORDER BY nome_union", "nome_union", "contacto_id");
  return complete;
}

void frmMain::FillSubfamilias() {
  const controls::ComboBox::Update update(FXSub_Familia_ID);
  const auto familia = FXFamilia_ID.SelectedItemData();
  familia_of_subfamilias_ = familia;
  // Before the query: if that fails, no other family's subfamilies stay.
  FXSub_Familia_ID.Clear();
  if (!familia) return;
  const ports::RowSet rows =
      session_.Query("SELECT * FROM tbProdutos_Subfamilias WHERE familia_id = " + base::DecimalText(*familia));
  for (const ports::Row row : rows) AddEntry(FXSub_Familia_ID, row, "descrit", "subfamilia_id");
}

void frmMain::AddEntry(controls::ComboBox& box, const ports::Row& row, const char* text_column, const char* id_column) {
  const base::Value& text = row[text_column];
  box.AddItem(text.is_null() ? std::string() : base::ToText(text, session_.locale()));
  const base::Value& id = row[id_column];
  if (!id.is_null()) box.SetItemData(box.NewIndex(), base::ToLong(id, session_.locale()));
}

}  // namespace quenta::product
