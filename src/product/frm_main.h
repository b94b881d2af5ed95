// The product form: its fields, its state, and the names of its operations. Each operation has a file of its own.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "component/session/session.h"
#include "controls/combo_box.h"
#include "controls/commands.h"
#include "controls/form.h"
#include "controls/layout.h"
#include "controls/list_view.h"
#include "controls/simple_controls.h"
#include "controls/text_field.h"
#include "hosting/forms.h"
#include "ports/desktop.h"
#include "ports/product_form.h"

namespace quenta::product {

class frmMain;

// Makes the form that generates dependants of the product that the opener shows.
using MakeGenerator = std::shared_ptr<controls::Form> (*)(session::Session& session, ports::FormHost& host,
                                                          hosting::Forms& forms, const std::shared_ptr<frmMain>& opener,
                                                          std::int32_t produto_id);

class frmMain final : public controls::Form, public ports::ProductForm {
 public:
  // The session, the host and the collection of loaded forms outlive the form.
  frmMain(session::Session& session, ports::FormHost& host, hosting::Forms& forms, MakeGenerator make_generator);

  // ports::ProductForm
  bool IsLoaded() const override { return loaded(); }
  std::int32_t ProdutoId() const override { return produto_id_; }
  void Open(const ports::ProductRequest& request) override;
  void Activate(const ports::ProductRequest& request) override;

  ports::HostObjectRef Caller() const override { return request_.caller; }

  // Whether a field was changed since the last load or save. Writing it enables or disables "gravar", except while the
  // form fills its own fields: then it becomes false and nothing else happens.
  bool Altered() const noexcept { return altered_; }
  void SetAltered(bool altered);

  // Fills the lookup lists, then loads the product, or creates one when there is no identifier yet. Can run again on a
  // form that is filled already. (load.cpp)
  void Fill();
  // Saves the product. False when it was refused, or failed; the user has been told, or it was reported. The form and
  // its fields are then as they were. (saving.cpp)
  bool Gravar();
  // Makes the record read-only and hides the editing buttons; with false undoes both. What else changes the product is
  // closed and opened with it. (locking.cpp)
  void LockProduto(bool locked);
  // Whether the user may change the product that is shown: it was read whole, and its warehouse allows it.
  bool MayChange() const noexcept { return !locked_ && !incomplete_; }
  // The product's type decides which attribute fields it has and whether there is a stock tab. (types.cpp)
  void FXTipo_ID_Click();

  // Fills the price list, the working copy of the price lines, and shows the default line. False after an error, which
  // was reported. (prices.cpp)
  bool Fill_Precos();
  // Shows the price line with this key in the entry fields. Alters nothing. (prices.cpp)
  void ShowPreco(const std::string& key);
  // Makes the selected price line the default one. (prices.cpp)
  void mnProdutosPredef_Click();
  // Offers the reasons of exemption when the selected VAT rate is zero, and erases the line's reason otherwise.
  // (vat_exemption.cpp)
  void FillIsencaoIVA();
  // Fills the stock list. (stocks.cpp)
  void Fill_Stocks();
  // Opens the minimums of the selected warehouse; this form is disabled until that one closes. (stocks.cpp)
  void mnStocksPropriedades_Click();

  // Fills the history with the lines of a source in the chosen period: 1 sales, 2 purchases, 3 customer orders,
  // 4 supplier orders. (history.cpp)
  void Fill_Track(int mode);
  // Fills the list of dependent products. (dependants.cpp)
  void Fill_Dependentes();

  // Copies the product into a new one, which the form then shows. (duplicating.cpp)
  void Duplicar();
  // Deletes the product softly and closes the form. (deleting.cpp)
  void Apagar();
  // The form can be used again: a dialog that had disabled it has closed. The arguments are the suite's, and ignored.
  // (deleting.cpp)
  void Reactivate(std::int32_t number, controls::Form& caller);

  // A form over this one has changed the product, whose data_modified it found and left like this. (saving.cpp)
  void StampChanged(const base::Value& before, const base::Value& after);

  // Writes the product's report from a template of the templates folder; an empty output path becomes a file in the
  // temporary folder. Returns the path, empty when the report failed. (report.cpp)
  std::string DoReport(std::string& output_path, const std::string& template_name);
  // Writes and opens labels. The argument is the suite's, and ignored. (labels.cpp)
  void ConstructDoc(const std::string& argument);

  // The toolbars' commands by key. (commands.cpp, dependants.cpp, report.cpp)
  void Toolbar1_ButtonClick(const std::string& key);
  void Toolbar1_ButtonMenuClick(const std::string& key);
  void Toolbar2_ButtonClick(const std::string& key);
  void Toolbar3_ButtonClick(const std::string& key);

  static constexpr std::size_t kAttributeCount = 5;  // that a type may have: size, colour and three dimensions

  // Key of the price line that the entry fields show; empty while none is shown.
  std::string PrecoKey;
  // Set when a price was edited: saving must write the price lines again.
  bool PrecosAltered = false;
  // Set while the user types in the field of that name: leaving it then drives the other two amounts.
  bool ValorAltered = false;
  bool IVAAltered = false;
  bool TotalAltered = false;

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
  void OnUnload(bool& cancel) override;
  void OnClosed() noexcept override;
  void OnUnloadFailed() noexcept override;

 private:
  // Runs a procedure by the convention for errors, as session::Guarded does. (frm_main_guard.h)
  template <typename Body, typename... Untold>
  auto Guarded(const char* procedure, Body&& body, Untold&&... untold) noexcept;

  // frm_main_layout.cpp
  void AddControls();
  void LayOut();

  // commands.cpp
  void AddCommands();
  void AddMenus();
  void AddShortcuts();
  bool Shows(const controls::Frame& page) const;  // whether the tab of this page is selected
  void ShowTab(const std::string& key);
  void RefreshPage();

  // lookups.cpp
  bool FillLookups();
  void FillSubfamilias();
  void AddEntry(controls::ComboBox& box, const ports::Row& row, const char* text_column, const char* id_column);

  // load.cpp
  bool ReadProduct();
  void ReadAgain();
  void ClearRecord();
  bool LoadProduct();
  void ShowRecord(const ports::Row& product);
  void SetOffered(controls::ComboBox& box, const base::Value& id);
  void NoteAssociations();
  void LockByWarehouse();
  void SetHistoryPeriod();

  // locking.cpp, types.cpp, vat_exemption.cpp
  void SetIncomplete(bool incomplete);
  void CloseOrOpen();
  void ShowAttributes();
  void ShowExemption();

  // creation.cpp
  void CreateProduct();
  std::int32_t TakeNumber(const char* read, const char* create, std::int32_t first, const char* advance,
                          const std::function<std::string(std::int32_t)>& find_user);

  // field_events.cpp
  void AddFieldEvents();
  void MarkAltered();
  bool IsCommandKey(int key) const;
  bool LeaveField(controls::Control& field, int code);
  void FXFamilia_ID_LostFocus();
  void FXNome_GotFocus();
  void FXMarca_GotFocus();
  void TakeLimits(const ports::RowSet& products);
  void RefillNames(controls::ComboBox& box, const ports::RowSet& rows, const char* column);

  // prices.cpp
  void ShowLine(int row);
  void ForgetTyping();
  void SetInLine(const std::string& key, int position, const std::string& text);

  // price_arithmetic.cpp
  enum class Amount { kValor, kIva, kTotal };
  struct AmountField {
    controls::TextField& field;
    const char* procedure;  // that leaves it
    bool& altered;
    int shown_position;  // of the line's sub-items; 0 for none
    int raw_position;
  };
  AmountField FieldOf(Amount amount);
  void AddPriceEvents();
  void CopyToLine(const controls::TextField& field, int shown_position, int raw_position);
  void SetAmountInLine(const std::string& key, const std::string& raw, int shown_position, int raw_position);
  void LeaveAmount(Amount amount);
  void Compute(const std::string& key, Amount from);
  bool AmountsAreComputed();
  void FXIva_ID_Click();

  // vat_exemption.cpp
  bool IsExempt(const std::string& iva_id);

  // stocks.cpp
  void AddStockCommands();

  // history.cpp
  void AddHistoryCommands();
  void CopyRows(const controls::ListView& list);
  void ListView13_ColumnClick(int column);
  void mnHistoricoGuardar_Click();
  void WriteHistory(const std::string& path);
  void TabStrip1_Click();
  void ShowHistoryOf(const std::string& tab);
  void ShowLines(const ports::RowSet& lines, const char* line_id);
  void ShowStatistics(const ports::RowSet& statistics);

  // saving.cpp
  bool Save();
  bool FieldsAreValid();
  bool CodeIsTaken();
  bool ExemptionsHaveReasons();
  bool SaveRecord();
  void ForgetEmptied();
  bool MayOverwrite();
  void SaveProduct();
  base::Value SaveRelatives();
  void SavePrices(const std::string& produto_id);
  void ReplicatePrices();

  // duplicating.cpp
  void ShowCopy(std::int32_t produto_id);

  // closing.cpp
  bool MayClose();
  void DeleteNewProduct();
  ports::Answer Ask(const ports::Message& message);
  void Tell(const ports::Message& message);
  void Refuse(const char* text, const controls::Control& field);

  void Set(controls::Control& control, const base::Value& value, int code = 0);
  std::string Sql(const controls::Control& control, int code = 0);

  session::Session& session_;
  hosting::Forms& forms_;
  MakeGenerator make_generator_;
  ports::ProductRequest request_;
  std::int32_t produto_id_ = 0;          // 0 until a product is loaded or created
  bool new_product_ = false;             // the product was created in this form and not saved yet
  std::optional<base::Value> modified_;  // data_modified as this form knows it; nothing for a product just created
  bool deletion_known_ = false;          // it was deleted when it was read, or has been by this form
  bool incomplete_ = false;      // the product could not be read whole: it can only be looked at, and read again
  bool locked_ = false;          // the workstation's warehouse may not change products
  bool line_is_exempt_ = false;  // the price line that is shown has no VAT and needs a reason
  std::array<bool, kAttributeCount> has_attribute_{};  // what the type that is chosen switches on (types.cpp)
  bool altered_ = false;
  bool filling_ = false;                                // while true, nothing marks the record as altered
  std::optional<std::int32_t> familia_of_subfamilias_;  // the family that the subfamily list belongs to
  // Price lines, by key, whose amounts could not be computed because the rate could not be read, and from which amount.
  std::map<std::string, Amount> uncomputed_;
  std::string main_id_;  // of the main product, in decimal, as the save in progress has read it; empty for none
};

}  // namespace quenta::product
