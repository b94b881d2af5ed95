// What starts commands: tab strip, toolbars and menus. All dispatch by key, never by position.
#pragma once

#include <vector>

#include "controls/control.h"

namespace quenta::controls {

class TabStrip final : public Control {
 public:
  struct Tab {
    std::string key;
    std::string caption;
  };

  TabStrip(std::string name, std::vector<Tab> tabs) : Control(std::move(name)), tabs_(std::move(tabs)) {}

  ControlKind kind() const noexcept override { return ControlKind::kTabStrip; }
  std::string Describe() const override { return selected_key(); }

  const std::vector<Tab>& tabs() const noexcept { return tabs_; }
  int Count() const noexcept { return static_cast<int>(tabs_.size()); }
  // Position from 1, as the suite counts tabs.
  void Insert(int position, Tab tab);
  // Removes the tab; when it was the selected one, its left neighbour is selected.
  void Remove(int position);

  const std::string& selected_key() const noexcept;
  int selected() const noexcept { return selected_; }  // from 0
  void SelectKey(const std::string& key);
  bool Has(const std::string& key) const noexcept;

  std::function<void()> on_click;
  void Chosen(int index);  // the user chose the tab at this position, from 0

 private:
  std::vector<Tab> tabs_;
  int selected_ = 0;
};

class Toolbar final : public Control {
 public:
  struct MenuEntry {
    std::string key;
    std::string caption;
  };
  struct Button {
    std::string key;
    std::string caption;
    std::string tooltip;
    bool enabled = true;
    bool visible = true;
    bool starts_group = false;      // a separator stands before it
    std::vector<MenuEntry> menu{};  // entries of its drop-down, if it has one
  };

  Toolbar(std::string name, std::vector<Button> buttons) : Control(std::move(name)), buttons_(std::move(buttons)) {}

  ControlKind kind() const noexcept override { return ControlKind::kToolbar; }
  std::string Describe() const override;

  const std::vector<Button>& buttons() const noexcept { return buttons_; }
  // Error 5 when there is no button of this key.
  const Button& Item(const std::string& key) const;
  void EnableButton(const std::string& key, bool enabled);
  void ShowButton(const std::string& key, bool visible);

  std::function<void(const std::string& key)> on_button_click;
  std::function<void(const std::string& key)> on_menu_click;
  // The user pressed a button (ignored while it is disabled or hidden) or chose an entry of its menu.
  void Clicked(const std::string& key);
  void MenuClicked(const std::string& key);

 private:
  Button& Find(const std::string& key);
  std::vector<Button> buttons_;
};

// An entry of a menu bar or pop-up menu, with its entries below it. An entry without a caption is a separator.
struct MenuItem {
  std::string name{};      // "mnStocksPropriedades"
  std::string caption{};   // with its mnemonic, "&Propriedades…"
  std::string shortcut{};  // as shown beside it: "Ctrl+S"; the form's shortcuts make it work
  bool enabled = true;
  bool checked = false;
  bool in_menu_bar = true;  // of a menu: false for one that only pops up
  std::function<void()> on_click{};
  std::function<bool()> can_run{};  // asked when the menu opens, for an entry that is enabled; none means always
  std::vector<MenuItem> items{};
};

// Depth-first search by name; null when there is none.
MenuItem* FindMenuItem(std::vector<MenuItem>& items, const std::string& name);

// A key combination that runs a command anywhere in the form.
struct Shortcut {
  int key = 0;  // virtual key code
  bool control = false;
  bool shift = false;
  std::function<void()> run{};
};

}  // namespace quenta::controls
