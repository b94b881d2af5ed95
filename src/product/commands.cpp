// Which command starts which operation: toolbars, tabs, menus and shortcuts, all by key.
#include <iterator>
#include <utility>

#include "product/frm_main_guard.h"

namespace quenta::product {

void frmMain::AddCommands() {
  Toolbar1.on_button_click = [this](const std::string& key) { Toolbar1_ButtonClick(key); };
  Toolbar1.on_menu_click = [this](const std::string& key) { Toolbar1_ButtonMenuClick(key); };
  Toolbar2.on_button_click = [this](const std::string& key) { Toolbar2_ButtonClick(key); };
  Toolbar3.on_button_click = [this](const std::string& key) { Toolbar3_ButtonClick(key); };
  TabStrip1.on_click = [this] { TabStrip1_Click(); };
  FXData_Inicio.on_change = [this] { ShowHistoryOf(TabStrip1.selected_key()); };
  FXData_Fim.on_change = [this] { ShowHistoryOf(TabStrip1.selected_key()); };
  ListView2.on_context_menu = [this] { host().PopupMenu(*this, "mnProdutos"); };
  AddStockCommands();
  AddHistoryCommands();
  AddMenus();
  AddShortcuts();
}

void frmMain::Toolbar1_ButtonClick(const std::string& key) {
  if (key == "sair") Unload();
  if (key == "gravar") Gravar();
  if (key == "imprimir") ConstructDoc("");
  if (key == "apagar") Apagar();
  if (key == "duplicar") Duplicar();
}

void frmMain::Toolbar1_ButtonMenuClick(const std::string& key) {
  if (key == "etiquetas") ConstructDoc("");
}

// The menus offer what the toolbars do, and what the lists' pop-up menus do: those are the menus themselves. An entry
// for what stands on a page of the tabs can be run only while that page is shown: nothing acts on rows that nobody
// sees.
void frmMain::AddMenus() {
  using controls::MenuItem;
  // An entry that presses a toolbar's button, where the user can.
  const auto button = [](controls::Toolbar& bar, const char* key, const char* name, const char* caption,
                         const char* shortcut = "") {
    return MenuItem{.name = name,
                    .caption = caption,
                    .shortcut = shortcut,
                    .on_click = [&bar, key] { bar.Clicked(key); },
                    .can_run = [&bar, key] { return bar.Item(key).enabled && bar.Item(key).visible; }};
  };
  const auto tab = [this](const char* key, const char* caption, const char* shortcut) {
    return MenuItem{.name = std::string("mnVer_") + key,
                    .caption = caption,
                    .shortcut = shortcut,
                    .on_click = [this, key] { ShowTab(key); },
                    .can_run = [this, key] { return TabStrip1.Has(key); }};
  };
  const auto on_page = [this](const controls::Frame& page, MenuItem entry) {
    entry.can_run = [this, &page, can_run = entry.can_run] { return Shows(page) && (!can_run || can_run()); };
    return entry;
  };

  menus_ = {
      {.name = "mnFicheiro",
       .caption = "F&icheiro",
       .items = {button(Toolbar1, "gravar", "mnGravar", "&Gravar", "Ctrl+S"),
                 {},
                 button(Toolbar1, "imprimir", "mnImprimir", "Imprimir &etiquetas…", "Ctrl+P"),
                 {},
                 {.name = "mnSair", .caption = "&Sair", .shortcut = "Esc", .on_click = [this] { Unload(); }}}},
      {.name = "mnProduto",
       .caption = "Prod&uto",
       .items = {button(Toolbar1, "duplicar", "mnDuplicar", "&Duplicar", "Ctrl+D"),
                 button(Toolbar1, "apagar", "mnApagar", "&Apagar", "Ctrl+Shift+Del"),
                 {},
                 on_page(Frame4, button(Toolbar2, "gerar", "mnDependentesGerar", "&Gerar dependentes…", "Ctrl+G")),
                 on_page(Frame4, button(Toolbar2, "adicionar", "mnDependentesAdicionar", "Ad&icionar dependente")),
                 on_page(Frame4, button(Toolbar2, "remover", "mnDependentesRemover", "&Remover dependente"))}},
      {.name = "mnProdutos",
       .caption = "Preço&s",
       .items = {on_page(Frame1, {.name = "mnProdutosPredef",
                                  .caption = "Tornar &predefinido",
                                  .on_click = [this] { mnProdutosPredef_Click(); },
                                  .can_run = [this] { return ListView2.selected() >= 0 && MayChange(); }})}},
      // Which warehouses keep a product is not decided here: these two entries have no action.
      {.name = "mnStocks",
       .caption = "Stoc&ks",
       .items = {{.name = "mnStocksAdicionarArmazem", .caption = "&Adicionar armazém", .enabled = false},
                 on_page(Frame2, {.name = "mnStocksPropriedades",
                                  .caption = "&Propriedades…",
                                  .shortcut = "Enter",
                                  .on_click = [this] { mnStocksPropriedades_Click(); },
                                  .can_run = [this] { return ListView1.selected() >= 0 && MayChange(); }}),
                 {.name = "mnStocksRemoverArmazem", .caption = "&Remover armazém", .enabled = false}}},
      {.name = "mnHistorico",
       .caption = "&Histórico",
       .items = {on_page(Frame3, {.name = "mnHistoricoCopiar",
                                  .caption = "&Copiar",
                                  .shortcut = "Ctrl+C",
                                  .on_click = [this] { ListView13.Copy(); }}),
                 on_page(Frame3, {.name = "mnHistoricoSelecionarTudo",
                                  .caption = "&Selecionar tudo",
                                  .shortcut = "Ctrl+A",
                                  .on_click = [this] { ListView13.MarkAll(); }}),
                 {},
                 on_page(Frame3, {.name = "mnHistoricoGuardar",
                                  .caption = "&Guardar como CSV…",
                                  .on_click = [this] { mnHistoricoGuardar_Click(); }}),
                 on_page(Frame3, button(Toolbar3, "relatorio", "mnHistoricoRelatorio", "&Relatório", "Ctrl+R"))}},
      {.name = "mnVer",
       .caption = "&Ver",
       .items = {tab("precos", "&Preços", "Ctrl+1"),
                 tab("stocks", "&Stocks em armazém", "Ctrl+2"),
                 tab("compras", "&Compras", "Ctrl+3"),
                 tab("vendas", "&Vendas", "Ctrl+4"),
                 tab("encomendas_fornecedores", "Encomendas a &fornecedores", "Ctrl+5"),
                 tab("encomendas_clientes", "Encomendas de c&lientes", "Ctrl+6"),
                 tab("dependentes", "&Dependentes", "Ctrl+7"),
                 {},
                 {.name = "mnVerAtualizar",
                  .caption = "A&tualizar",
                  .shortcut = "F5",
                  .on_click = [this] { RefreshPage(); }}}},
  };
  // The page may have changed since the menu opened, and keys run entries without opening any.
  for (MenuItem& menu : menus_) {
    for (MenuItem& entry : menu.items) {
      if (!entry.can_run) continue;
      entry.on_click = [can_run = entry.can_run, run = std::move(entry.on_click)] {
        if (can_run()) run();
      };
    }
  }
}

// The keys that the menus name, but for those that their windows know themselves.
void frmMain::AddShortcuts() {
  using controls::key_code::kDelete;
  using controls::key_code::kF5;
  const auto press = [](controls::Toolbar& bar, const char* key) { return [&bar, key] { bar.Clicked(key); }; };
  const auto choose = [this](const char* entry) {
    return [this, entry] { controls::FindMenuItem(menus_, entry)->on_click(); };
  };
  shortcuts_ = {
      {.key = 'S', .control = true, .run = press(Toolbar1, "gravar")},
      {.key = 'P', .control = true, .run = press(Toolbar1, "imprimir")},
      {.key = 'D', .control = true, .run = press(Toolbar1, "duplicar")},
      {.key = kDelete, .control = true, .shift = true, .run = press(Toolbar1, "apagar")},
      {.key = 'G', .control = true, .run = choose("mnDependentesGerar")},
      {.key = 'R', .control = true, .run = choose("mnHistoricoRelatorio")},
      {.key = kF5, .run = [this] { RefreshPage(); }},
  };
  const char* const tabs[] = {
      "precos", "stocks", "compras", "vendas", "encomendas_fornecedores", "encomendas_clientes", "dependentes"};
  for (std::size_t i = 0; i < std::size(tabs); ++i) {
    shortcuts_.push_back(
        {.key = '1' + static_cast<int>(i), .control = true, .run = [this, tab = tabs[i]] { ShowTab(tab); }});
  }
}

bool frmMain::Shows(const controls::Frame& page) const {
  const auto shown = layout_.pages.find(TabStrip1.selected_key());
  return shown != layout_.pages.end() && shown->second == &page;
}

// As if the user had chosen the tab, and gone to its list; nothing happens when the product has no such tab.
void frmMain::ShowTab(const std::string& key) {
  if (!TabStrip1.Has(key)) return;
  TabStrip1.SelectKey(key);
  TabStrip1_Click();
  for (const controls::LayoutRow& row : layout_.pages.at(key)->rows) {
    const controls::Control* const control = row.cells.front().control;
    if (control->kind() == controls::ControlKind::kListView) host().Focus(*this, control->name().c_str());
  }
}

// Reads the list of the page that is shown again. The price list is left: it holds what the user has not saved yet.
// What could not be read when the form was opened is read again, too.
void frmMain::RefreshPage() {
  ReadAgain();
  if (!loaded()) return;
  if (TabStrip1.selected_key() == "stocks") Fill_Stocks();
  TabStrip1_Click();
}

}  // namespace quenta::product
