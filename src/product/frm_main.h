// The product form: its fields, its state, and the names of its operations. Each operation has a file of its own.
#pragma once

#include <cstdint>
#include <string>

#include "component/session/session.h"
#include "controls/combo_box.h"
#include "controls/commands.h"
#include "controls/form.h"
#include "controls/layout.h"
#include "controls/list_view.h"
#include "controls/simple_controls.h"
#include "controls/text_field.h"
#include "ports/product_form.h"

namespace quenta::product {

class frmMain final : public controls::Form, public ports::ProductForm {
 public:
  frmMain(session::Session& session, ports::FormHost& host);

  // ports::ProductForm
  bool IsLoaded() const override { return loaded(); }
  std::int32_t ProdutoId() const override { return produto_id_; }
  void Open(const ports::ProductRequest& request) override;
  void Activate() override { Show(); }

  ports::HostObjectRef Caller() const override { return request_.caller; }

  // Whether a field was changed since the last load or save. Writing it enables or disables "gravar", except while the
  // form fills its own fields: then it becomes false and nothing else happens.
  bool Altered() const noexcept { return altered_; }
  void SetAltered(bool altered);

  // Fills the lookup lists, then loads the product. Can run again on a form that is filled already. (load.cpp)
  void Fill();
  // Makes the record read-only and hides the editing buttons; with false undoes both. (load.cpp)
  void LockProduto(bool locked);
  // The product's type decides which attribute fields it has and whether there is a stock tab. (types.cpp)
  void FXTipo_ID_Click();

  // The record.
  controls::Label FXCodigo_Label{"FXCodigo_Label", "&Código"};
  controls::TextField FXCodigo{"FXCodigo"};
  controls::Label FXNome_Label{"FXNome_Label", "&Nome"};
  controls::ComboBox FXNome{"FXNome", controls::ComboBox::Style::kEditable};
  controls::CheckBox FXDescontinuado{"FXDescontinuado", "&Descontinuado"};
  controls::Label FXTipo_ID_Label{"FXTipo_ID_Label", "&Tipo de produto"};
  controls::ComboBox FXTipo_ID{"FXTipo_ID", controls::ComboBox::Style::kList};
  controls::Label FXFamilia_ID_Label{"FXFamilia_ID_Label", "&Família"};
  controls::ComboBox FXFamilia_ID{"FXFamilia_ID", controls::ComboBox::Style::kList};
  controls::Label FXSub_Familia_ID_Label{"FXSub_Familia_ID_Label", "&Subfamília"};
  controls::ComboBox FXSub_Familia_ID{"FXSub_Familia_ID", controls::ComboBox::Style::kList};
  controls::Label FXMarca_Label{"FXMarca_Label", "&Marca"};
  controls::ComboBox FXMarca{"FXMarca", controls::ComboBox::Style::kEditable};
  controls::Label FXFornecedor_ID_Label{"FXFornecedor_ID_Label", "F&ornecedor"};
  controls::ComboBox FXFornecedor_ID{"FXFornecedor_ID", controls::ComboBox::Style::kList};
  controls::Label FXCentro_ID_Label{"FXCentro_ID_Label", "C&entro de custo"};
  controls::ComboBox FXCentro_ID{"FXCentro_ID", controls::ComboBox::Style::kList};
  controls::Label FXCor_Label{"FXCor_Label", "Co&r"};
  controls::ComboBox FXCor{"FXCor", controls::ComboBox::Style::kEditable};
  controls::Label FXTamanho_Label{"FXTamanho_Label", "Taman&ho"};
  controls::ComboBox FXTamanho{"FXTamanho", controls::ComboBox::Style::kEditable};
  controls::Label FXAltura_Label{"FXAltura_Label", "&Altura"};
  controls::TextField FXAltura{"FXAltura"};
  controls::Label FXLargura_Label{"FXLargura_Label", "&Largura"};
  controls::TextField FXLargura{"FXLargura"};
  controls::Label FXProfundidade_Label{"FXProfundidade_Label", "&Profundidade"};
  controls::TextField FXProfundidade{"FXProfundidade"};
  controls::Label FXObs_Label{"FXObs_Label", "O&bservações"};
  controls::TextField FXObs{"FXObs"};

  // Prices: the list and the entry fields of the line that is selected in it.
  controls::ListView ListView2;
  controls::Label FXTipo_Label{"FXTipo_Label", "Preço"};
  controls::TextField FXTipo{"FXTipo"};
  controls::Label FXValor_Label{"FXValor_Label", "&Valor"};
  controls::TextField FXValor{"FXValor"};
  controls::Label FXIva_ID_Label{"FXIva_ID_Label", "Ta&xa de IVA"};
  controls::ComboBox FXIva_ID{"FXIva_ID", controls::ComboBox::Style::kList};
  controls::Label FXIVA_Label{"FXIVA_Label", "IVA"};
  controls::TextField FXIVA{"FXIVA"};
  controls::Label FXTOTAL_Label{"FXTOTAL_Label", "Total"};
  controls::TextField FXTOTAL{"FXTOTAL"};
  controls::Label FXDesconto_Label{"FXDesconto_Label", "Desconto"};
  controls::TextField FXDesconto{"FXDesconto"};
  controls::Label FXIVA_Descrit_Label{"FXIVA_Descrit_Label", "Motivo da isenção de IVA"};
  controls::ComboBox FXIVA_Descrit{"FXIVA_Descrit", controls::ComboBox::Style::kEditable};

  // Stocks, one row for each warehouse.
  controls::ListView ListView1;

  // History: period, lines and their statistics.
  controls::Label FXData_Inicio_Label{"FXData_Inicio_Label", "Desde"};
  controls::DatePicker FXData_Inicio{"FXData_Inicio"};
  controls::Label FXData_Fim_Label{"FXData_Fim_Label", "Até"};
  controls::DatePicker FXData_Fim{"FXData_Fim"};
  controls::ListView ListView13;
  controls::Label FXPrecoMin_Label{"FXPrecoMin_Label", "Preço mínimo"};
  controls::TextField FXPrecoMin{"FXPrecoMin"};
  controls::Label FXPrecoMax_Label{"FXPrecoMax_Label", "Preço máximo"};
  controls::TextField FXPrecoMax{"FXPrecoMax"};
  controls::Label FXQuantidade_Label{"FXQuantidade_Label", "Quantidade"};
  controls::TextField FXQuantidade{"FXQuantidade"};
  controls::Label FXValorTotal_Label{"FXValorTotal_Label", "Valor total"};
  controls::TextField FXValorTotal{"FXValorTotal"};

  // Dependent products.
  controls::ListView ListView3;

  controls::Label Label1{"Label1", ""};
  controls::Toolbar Toolbar1;
  controls::Toolbar Toolbar2;
  controls::Toolbar Toolbar3;
  controls::TabStrip TabStrip1;
  controls::Frame Frame1{"Frame1"};  // prices
  controls::Frame Frame2{"Frame2"};  // stocks
  controls::Frame Frame3{"Frame3"};  // history
  controls::Frame Frame4{"Frame4"};  // dependants
  controls::Frame Frame5{"Frame5"};  // record: identification
  controls::Frame Frame6{"Frame6"};  // record: attributes and notes

 protected:
  void OnLoad() override;
  void OnClosed() noexcept override;

 private:
  template <typename Body>
  auto Guarded(const char* procedure, Body&& body) noexcept;

  // frm_main_layout.cpp
  void AddControls();
  void LayOut();
  void AddCommands();

  // lookups.cpp
  void FillLookups();
  void FillSubfamilias();
  void AddEntry(controls::ComboBox& box, const ports::Row& row, const char* text_column, const char* id_column);

  // load.cpp
  void LoadProduct();
  void ShowRecord(const ports::Row& product);
  void NoteAssociations();
  void LockByWarehouse();
  void SetHistoryPeriod();

  void Set(controls::Control& control, const base::Value& value, int code = 0);

  session::Session& session_;
  ports::ProductRequest request_;
  std::int32_t produto_id_ = 0;  // 0 until a product is loaded or created
  bool altered_ = false;
  bool filling_ = false;  // while true, nothing marks the record as altered
};

}  // namespace quenta::product
