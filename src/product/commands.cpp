// Which command starts which operation: toolbars, tabs, menus and shortcuts, all by key.
#include "product/frm_main_guard.h"

namespace quenta::product {

void frmMain::AddCommands() {
  Toolbar1.on_button_click = [this](const std::string& key) { Toolbar1_ButtonClick(key); };
  TabStrip1.on_click = [this] { TabStrip1_Click(); };
  FXData_Inicio.on_change = [this] { ShowHistoryOf(TabStrip1.selected_key()); };
  FXData_Fim.on_change = [this] { ShowHistoryOf(TabStrip1.selected_key()); };
  ListView2.on_context_menu = [this] { host().PopupMenu(*this, "mnProdutos"); };
  AddMenus();
  AddShortcuts();
}

void frmMain::Toolbar1_ButtonClick(const std::string& key) {
  if (key == "sair") Unload();
  if (key == "gravar") Gravar();
}

void frmMain::AddMenus() {
  menus_ = {{.name = "mnFicheiro",
             .caption = "F&icheiro",
             .items = {{.name = "mnGravar",
                        .caption = "&Gravar",
                        .shortcut = "Ctrl+S",
                        .on_click = [this] { Toolbar1.Clicked("gravar"); }},
                       {},
                       {.name = "mnSair", .caption = "&Sair", .shortcut = "Esc", .on_click = [this] { Unload(); }}}},
            {.name = "mnProdutos",
             .caption = "&Preços",
             .in_menu_bar = false,
             .items = {{.name = "mnProdutosPredef", .caption = "Tornar &predefinido", .on_click = [this] {
                          mnProdutosPredef_Click();
                        }}}}};
}

void frmMain::AddShortcuts() {
  shortcuts_ = {{.key = 'S', .control = true, .run = [this] { Toolbar1.Clicked("gravar"); }}};
}

}  // namespace quenta::product
