#include "component/form_host/sample_form.h"

#include <algorithm>

#include "base/date.h"
#include "base/text.h"

namespace quenta::tests {

SampleForm::SampleForm(ports::FormHost& form_host) : Form(form_host, "frmAmostra") {
  set_caption("Produto A10-AZ-M");
  FXValor.right_aligned = true;
  FXObs.multi_line = true;
  FXCodigo.set_max_length(20);
  ListView13.multi_select = true;
  ListView13.sortable = true;
  for (controls::Control* control : std::initializer_list<controls::Control*>{&Toolbar1,
                                                                              &Label1,
                                                                              &Frame5,
                                                                              &FXCodigo_Label,
                                                                              &FXCodigo,
                                                                              &FXNome_Label,
                                                                              &FXNome,
                                                                              &FXDescontinuado,
                                                                              &FXFamilia_ID_Label,
                                                                              &FXFamilia_ID,
                                                                              &FXMarca_Label,
                                                                              &FXMarca,
                                                                              &FXValor_Label,
                                                                              &FXValor,
                                                                              &FXHora_Label,
                                                                              &FXHora,
                                                                              &Frame6,
                                                                              &Option1,
                                                                              &Option2,
                                                                              &FXObs_Label,
                                                                              &FXObs,
                                                                              &TabStrip1,
                                                                              &Frame1,
                                                                              &ListView2,
                                                                              &Frame2,
                                                                              &ListView1,
                                                                              &Frame3,
                                                                              &Toolbar3,
                                                                              &FXData_Inicio_Label,
                                                                              &FXData_Inicio,
                                                                              &ListView13,
                                                                              &Command1,
                                                                              &Command2}) {
    Add(*control);
    Watch(*control);
  }
  const auto note = [this](const char* event) { return [this, event] { events.emplace_back(event); }; };
  FXCodigo.on_change = note("FXCodigo change");
  FXNome.on_change = note("FXNome change");
  FXNome.on_click = note("FXNome click");
  FXFamilia_ID.on_click = note("FXFamilia_ID click");
  FXObs.on_change = note("FXObs change");
  FXHora.on_change = note("FXHora change");
  FXDescontinuado.on_click = note("FXDescontinuado click");
  Option1.on_click = note("Option1 click");
  Option2.on_click = note("Option2 click");
  FXData_Inicio.on_change = note("FXData_Inicio change");
  ListView2.on_item_click = note("ListView2 click");
  ListView2.on_item_activate = note("ListView2 activate");
  ListView2.on_context_menu = [this] { host().PopupMenu(*this, "mnProdutos"); };
  ListView2.on_copy = note("ListView2 copy");
  ListView1.on_item_click = note("ListView1 click");
  ListView13.on_copy = note("ListView13 copy");
  ListView13.on_column_click = [this](int column) {
    ListView13.Sort({column, ListView13.sort() == controls::ListSort{column, false}}, {});
  };
  TabStrip1.on_click = [this] { events.push_back("TabStrip1 " + TabStrip1.selected_key()); };
  Toolbar1.on_button_click = [this](const std::string& key) { events.push_back("Toolbar1 " + key); };
  Toolbar1.on_menu_click = [this](const std::string& key) { events.push_back("Toolbar1 menu " + key); };
  Command1.on_click = note("Command1 click");
  Command2.on_click = [this] { Unload(); };
  menus_ = {
      {.name = "mnFicheiro",
       .caption = "F&icheiro",
       .items = {{.name = "mnGravar", .caption = "&Gravar", .shortcut = "Ctrl+S", .on_click = note("mnGravar")},
                 {},
                 {.name = "mnSair", .caption = "&Sair", .shortcut = "Esc", .on_click = [this] { Unload(); }}}},
      {.name = "mnStocks",
       .caption = "Stoc&ks",
       .items = {{.name = "mnStocksPropriedades", .caption = "&Propriedades…", .enabled = false}}},
      {.name = "mnProdutos",
       .caption = "&Preços",
       .in_menu_bar = false,
       .items = {
           {.name = "mnNada", .caption = "Nada", .enabled = false, .on_click = note("mnNada")},
           {.name = "mnProdutosPredef", .caption = "Tornar &predefinido", .on_click = note("mnProdutosPredef")}}}};
  shortcuts_ = {{.key = 'S', .control = true, .run = note("shortcut")}};
  LayOut();
  Fill();
}

void SampleForm::Watch(controls::Control& control) {
  const std::string& name = control.name();
  control.on_got_focus = [this, name] { events.push_back(name + " got focus"); };
  control.on_lost_focus = [this, name] { events.push_back(name + " lost focus"); };
  control.on_key_down = [this, name](int key) { events.push_back(name + " key " + base::DecimalText(key)); };
}

void SampleForm::LayOut() {
  Frame5.rows = {{{{&FXCodigo, &FXCodigo_Label, 2}, {&FXNome, &FXNome_Label, 8}, {&FXDescontinuado, nullptr, 2}}},
                 {{{&FXFamilia_ID, &FXFamilia_ID_Label, 4},
                   {&FXMarca, &FXMarca_Label, 4},
                   {&FXValor, &FXValor_Label, 2},
                   {&FXHora, &FXHora_Label, 2}}}};
  Frame6.rows = {{{{&Option1, nullptr, 3}, {&Option2, nullptr, 3}}}, {{{&FXObs, &FXObs_Label, 12}}, 3}};
  Frame1.rows = {{{{&ListView2, nullptr, 12}}, 5, true}};
  Frame2.rows = {{{{&ListView1, nullptr, 12}}, 5, true}};
  Frame3.toolbar = &Toolbar3;
  Frame3.rows = {{{{&FXData_Inicio, &FXData_Inicio_Label, 3}}}, {{{&ListView13, nullptr, 12}}, 4, true}};
  layout_.toolbar = &Toolbar1;
  layout_.note = &Label1;
  layout_.frames = {&Frame5, &Frame6};
  layout_.tabs = &TabStrip1;
  layout_.pages = {{"precos", &Frame1}, {"stocks", &Frame2}, {"compras", &Frame3}, {"vendas", &Frame3}};
  layout_.buttons = {&Command1, &Command2};
  layout_.initial_width = 820;
  layout_.initial_height = 700;
}

void SampleForm::Fill() {
  FXCodigo.set_text("A10");
  FXValor.set_text("€ 8,13");
  FXObs.set_text("Primeira linha\r\nSegunda linha");
  FXNome.set_text("Camisa de algodão");
  for (const char* family : {"Calçado", "Camisas", "Casacos"}) FXFamilia_ID.AddItem(family);
  for (const char* name : {"Camisa", "Camisola", "Camisa de linho"}) FXNome.AddItem(name);
  FXFamilia_ID.SetListIndex(1);
  Option1.set_value(true);
  FXData_Inicio.set_value(*base::MakeDate({2024, 1, 1, 0, 0, 0}));
  for (int i = 1; i <= 3; ++i) {
    const std::string number = base::DecimalText(i);
    controls::ListItem& price = ListView2.Add("#" + number, "Preço " + number);
    price.sub_items = {"€ 8,13", "€ 1,87", "€ 10,00"};
    price.small_icon = i == 1 ? 3 : 2;
    ListView1.Add("#" + number, "Armazém " + number).sub_items = {number};
  }
}

void SampleForm::OnUnload(bool& cancel) {
  events.emplace_back("unload");
  if (on_unload) on_unload();
  cancel = refuse_unload;
}

int SampleForm::IndexOf(const std::string& event, std::size_t from) const {
  const auto found =
      std::find(events.begin() + static_cast<std::ptrdiff_t>(std::min(from, events.size())), events.end(), event);
  return found == events.end() ? -1 : static_cast<int>(found - events.begin());
}

}  // namespace quenta::tests
