// A form with every kind of control, laid out like a record form, that notes what happens to it.
#pragma once

#include <string>
#include <vector>

#include "controls/combo_box.h"
#include "controls/form.h"
#include "controls/list_view.h"
#include "controls/simple_controls.h"
#include "controls/text_field.h"

namespace quenta::tests {

class SampleForm final : public controls::Form {
 public:
  explicit SampleForm(ports::FormHost& form_host);

  // "FXCodigo got focus", "Toolbar1 gravar", … in the order in which they happened.
  std::vector<std::string> events;
  bool refuse_unload = false;
  std::function<void()> on_unload;
  int closed = 0;
  ports::HostObjectRef caller;

  // Index of the first such event from a position on; -1 when there is none.
  int IndexOf(const std::string& event, std::size_t from = 0) const;
  bool Happened(const std::string& event) const { return IndexOf(event) >= 0; }

  controls::Toolbar Toolbar1{"Toolbar1",
                             {{.key = "gravar", .caption = "Gravar", .tooltip = "Gravar (Ctrl+S)"},
                              {.key = "apagar", .caption = "Apagar", .tooltip = "Apagar o produto"},
                              {.key = "duplicar", .caption = "Duplicar", .tooltip = "Duplicar o produto"},
                              {.key = "imprimir",
                               .caption = "Imprimir",
                               .tooltip = "Imprimir etiquetas",
                               .starts_group = true,
                               .menu = {{"etiquetas", "Etiquetas"}}},
                              {.key = "sair", .caption = "Sair", .tooltip = "Fechar (Esc)", .starts_group = true}}};
  controls::Label Label1{"Label1", "Produto associado a A10 — Camisa & calça"};
  controls::Frame Frame5{"Frame5"};
  controls::Label FXCodigo_Label{"FXCodigo_Label", "&Código"};
  controls::TextField FXCodigo{"FXCodigo"};
  controls::Label FXNome_Label{"FXNome_Label", "&Nome"};
  controls::ComboBox FXNome{"FXNome", controls::ComboBox::Style::kEditable};
  controls::CheckBox FXDescontinuado{"FXDescontinuado", "&Descontinuado"};
  controls::Label FXFamilia_ID_Label{"FXFamilia_ID_Label", "&Família"};
  controls::ComboBox FXFamilia_ID{"FXFamilia_ID", controls::ComboBox::Style::kList};
  controls::Label FXMarca_Label{"FXMarca_Label", "&Marca"};
  controls::ComboBox FXMarca{"FXMarca", controls::ComboBox::Style::kEditable};
  controls::Label FXValor_Label{"FXValor_Label", "&Valor"};
  controls::TextField FXValor{"FXValor"};
  controls::Label FXHora_Label{"FXHora_Label", "&Hora"};
  controls::MaskEdit FXHora{"FXHora", "##:##", "hh:nn"};
  controls::Frame Frame6{"Frame6", "Atributos"};
  controls::OptionButton Option1{"Option1", "&Unidade"};
  controls::OptionButton Option2{"Option2", "Em&balagem"};
  controls::Label FXObs_Label{"FXObs_Label", "&Observações"};
  controls::TextField FXObs{"FXObs"};
  controls::TabStrip TabStrip1{
      "TabStrip1", {{"precos", "Preços"}, {"stocks", "Stocks"}, {"compras", "Compras"}, {"vendas", "Vendas"}}};
  controls::Frame Frame1{"Frame1"};
  controls::ListView ListView2{"ListView2",
                               {{"Tipo de preço", 220}, {"Valor", 100, true}, {"IVA", 90, true}, {"Total", 100, true}}};
  controls::Frame Frame2{"Frame2"};
  controls::ListView ListView1{"ListView1", {{"Armazém", 240}, {"Unidades", 100, true}}, true};
  controls::Frame Frame3{"Frame3"};
  controls::Toolbar Toolbar3{"Toolbar3",
                             {{.key = "relatorio", .caption = "Relatório", .tooltip = "Relatório"},
                              {.key = "adicionar", .caption = "Adicionar", .tooltip = "Adicionar"},
                              {.key = "remover", .caption = "Remover", .tooltip = "Remover"},
                              {.key = "gerar", .caption = "Gerar", .tooltip = "Gerar"}}};
  controls::Label FXData_Inicio_Label{"FXData_Inicio_Label", "D&esde"};
  controls::DatePicker FXData_Inicio{"FXData_Inicio"};
  controls::ListView ListView13{
      "ListView13", {{"Data", 100}, {"Entidade", 240}, {"Quantidade", 100, true, controls::SortAs::kNumber}}};
  controls::CommandButton Command1{"Command1", "Aplicar", true};
  controls::CommandButton Command2{"Command2", "Fechar"};

 protected:
  void OnUnload(bool& cancel) override;
  void OnClosed() noexcept override { ++closed; }
  ports::HostObjectRef Caller() const override { return caller; }

 private:
  void Watch(controls::Control& control);
  void LayOut();
  void Fill();
};

}  // namespace quenta::tests
