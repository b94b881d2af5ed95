#include "journeys/screen.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>

#include "base/convert.h"
#include "base/text.h"
#include "controls/combo_box.h"
#include "controls/list_view.h"
#include "controls/simple_controls.h"
#include "controls/text_field.h"
#include "journeys/journey.h"

namespace quenta::journeys {
namespace {

using namespace controls;
using ports::FormHost;

[[noreturn]] void Fail(const std::string& what) {
  throw std::runtime_error(what);
}

template <typename T>
T& As(Control& control, ControlKind kind, const char* what) {
  if (control.kind() != kind) Fail(control.name() + " is no " + what);
  return static_cast<T&>(control);
}

// As FormWindow shows it: what stands on a page that is not chosen cannot be seen.
bool IsShown(const Form& form, const Frame* frame) {
  if (frame == nullptr) return true;
  const Layout& layout = form.layout();
  for (const auto& [key, page] : layout.pages) {
    if (page == frame && layout.tabs->selected_key() == key) return frame->visible();
  }
  return frame->visible() &&
         std::none_of(layout.pages.begin(), layout.pages.end(), [&](const auto& page) { return page.second == frame; });
}

struct Place {
  Control* control;
  const Frame* frame;  // null outside of frames
};

// In the order of Tab.
std::vector<Place> Places(const Form& form) {
  const Layout& layout = form.layout();
  std::vector<Place> places;
  const auto add_frame = [&](const Frame* frame) {
    if (frame->toolbar != nullptr) places.push_back({frame->toolbar, frame});
    for (const LayoutRow& row : frame->rows) {
      for (const Cell& cell : row.cells) {
        if (cell.control != nullptr) places.push_back({cell.control, frame});
      }
    }
  };
  if (layout.toolbar != nullptr) places.push_back({layout.toolbar, nullptr});
  for (const Frame* frame : layout.frames) add_frame(frame);
  if (layout.tabs != nullptr) places.push_back({layout.tabs, nullptr});
  std::set<const Frame*> added;
  for (const auto& [key, page] : layout.pages) {
    if (added.insert(page).second) add_frame(page);
  }
  for (CommandButton* button : layout.buttons) places.push_back({button, nullptr});
  return places;
}

bool CanHaveFocus(const Form& form, const Place& place) {
  const ControlKind kind = place.control->kind();
  return kind != ControlKind::kLabel && kind != ControlKind::kFrame && kind != ControlKind::kProgressBar &&
         place.control->enabled() && place.control->visible() && IsShown(form, place.frame);
}

// The text that the control edits; null when it edits none.
struct Edited {
  explicit Edited(Control& control) {
    if (control.kind() == ControlKind::kTextField) {
      auto& field = static_cast<TextField&>(control);
      *this = Edited(field, field.locked(), field.max_length());
    } else if (control.kind() == ControlKind::kComboBox &&
               static_cast<ComboBox&>(control).style() == ComboBox::Style::kEditable) {
      auto& box = static_cast<ComboBox&>(control);
      *this = Edited(box, box.locked(), box.max_length());
    } else if (control.kind() == ControlKind::kMaskEdit) {
      auto& field = static_cast<MaskEdit&>(control);
      text = base::ToUtf16(field.text());
      selection = {0, text.size()};
      change = [&field](const std::string& now, TextRange) { field.Typed(now); };
    }
  }
  template <typename Field>
  Edited(Field& field, bool is_locked, std::size_t longest)
      : text(base::ToUtf16(field.text())), selection(field.selection()), locked(is_locked), max_length(longest) {
    change = [&field](const std::string& now, TextRange caret) {
      field.SelectionMoved(caret);
      field.Typed(now);
    };
    select = [&field](TextRange range) { field.SelectionMoved(range); };
    selection.start = std::min(selection.start, text.size());
    selection.length = std::min(selection.length, text.size() - selection.start);
  }
  // Puts this in the place of what is selected, as much of it as there is room for.
  void Replace(std::u16string by) {
    const std::size_t others = text.size() - selection.length;
    if (max_length != 0 && others + by.size() > max_length) by.resize(max_length > others ? max_length - others : 0);
    if (locked || (by.empty() && selection.length == 0)) return;
    text.replace(selection.start, selection.length, by);
    change(base::FromUtf16(text), {selection.start + by.size(), 0});
  }

  std::u16string text;
  TextRange selection;
  bool locked = false;
  std::size_t max_length = 0;
  std::function<void(const std::string& text, TextRange caret)> change;  // none: nothing to edit
  std::function<void(TextRange range)> select;
};

std::string ForCaller(const Form& form) {
  const auto caller = std::dynamic_pointer_cast<HostWindow>(form.Caller());
  return caller != nullptr ? " for " + caller->name : "";
}

int VirtualKey(const std::string& name) {
  static const std::map<std::string, int> kNames = {{"Tab", key_code::kTab},
                                                    {"Enter", key_code::kEnter},
                                                    {"Esc", key_code::kEscape},
                                                    {"Del", key_code::kDelete},
                                                    {"Backspace", key_code::kBackspace},
                                                    {"F5", key_code::kF5},
                                                    {"Shift", key_code::kShift},
                                                    {"Space", 32},
                                                    {"PageUp", 33},
                                                    {"PageDown", 34},
                                                    {"End", 35},
                                                    {"Home", 36},
                                                    {"Left", 37},
                                                    {"Up", 38},
                                                    {"Right", 39},
                                                    {"Down", 40}};
  const auto found = kNames.find(name);
  if (found != kNames.end()) return found->second;
  if (name.size() == 1) return std::toupper(static_cast<unsigned char>(name[0]));
  Fail("no key is called " + name);
}

}  // namespace

// --- The forms' side
// --------------------------------------------------------------------------------------------------

void Screen::Show(Form& form) {
  host.Show(form);
  Window* window = Find(&form);
  if (window == nullptr) {
    windows_.push_back(std::make_unique<Window>());
    window = windows_.back().get();
    window->form = form.shared_from_this();
    window->name = FreeName(form.name());
    for (const Place& place : Places(form)) {
      if (window->focus == nullptr && place.control->kind() != ControlKind::kToolbar && CanHaveFocus(form, place)) {
        window->focus = place.control;
      }
    }
    tell_("shown " + window->name + ForCaller(form));
  } else {
    tell_("to front " + window->name + ForCaller(form));
    std::rotate(std::find_if(windows_.begin(), windows_.end(), [&](const auto& w) { return w.get() == window; }),
                std::find_if(windows_.begin(), windows_.end(), [&](const auto& w) { return w.get() == window; }) + 1,
                windows_.end());
  }
  Settle();
}

void Screen::Close(Form& form) {
  host.Close(form);
  const auto found =
      std::find_if(windows_.begin(), windows_.end(), [&](const auto& window) { return window->form.get() == &form; });
  if (found == windows_.end()) return tell_("closed " + form.name());  // it has no window
  tell_("closed " + (*found)->name);
  closed_.push_back((*found)->form);
  windows_.erase(found);
}

void Screen::SetTopmost(Form& form, bool topmost) {
  host.SetTopmost(form, topmost);
  if (Window* const window = Find(&form)) window->topmost = topmost;
  tell_((topmost ? "topmost " : "not topmost ") + NameOf(&form));
}

void Screen::Focus(Form& form, const char* control_name) {
  host.Focus(form, control_name);
  tell_("focus " + (NameOf(&form) == "frmMain" ? "" : NameOf(&form) + ".") + control_name);
  Window* const window = Find(&form);
  Control* const control = form.Find(control_name);
  if (window == nullptr || control == nullptr) return;
  for (const Place& place : Places(form)) {
    if (place.control != control || IsShown(form, place.frame)) continue;
    for (int i = 0; i < form.layout().tabs->Count(); ++i) {
      const auto page = form.layout().pages.find(form.layout().tabs->tabs()[static_cast<std::size_t>(i)].key);
      if (page != form.layout().pages.end() && page->second == place.frame) {
        SelectTab(*window, i);
        break;
      }
    }
  }
  if (control->enabled() && control->visible()) Move(*window, control);
}

void Screen::PopupMenu(Form& form, const char* menu_name) {
  host.PopupMenu(form, menu_name);
  const std::string answer = answers.empty() ? "" : answers.front();
  if (!answers.empty()) answers.pop_front();
  MenuItem* const menu = FindMenuItem(form.menus(), menu_name);
  std::string entries;
  MenuItem* chosen = nullptr;
  for (MenuItem& item : menu->items) {
    const bool can_run = item.enabled && (!item.can_run || item.can_run());
    entries += " " + (item.caption.empty() ? "-" : can_run ? item.name : "(" + item.name + ")");
    if (item.name == answer && can_run) chosen = &item;
  }
  tell_("menu" + entries + " -> " + (chosen != nullptr ? answer : "none"));
  if (chosen != nullptr) Command(chosen->on_click);
}

std::string Screen::FreeName(const std::string& form_name) const {
  const auto taken = [&](const std::string& name) {
    return std::any_of(windows_.begin(), windows_.end(), [&](const auto& window) { return window->name == name; });
  };
  std::string name = form_name;
  for (int number = 2; taken(name); ++number) name = form_name + "#" + std::to_string(number);
  return name;
}

// --- The person's side
// ------------------------------------------------------------------------------------------------

Screen::Window* Screen::Find(const Form* form) const {
  for (const auto& window : windows_) {
    if (window->form.get() == form) return window.get();
  }
  return nullptr;
}

Screen::Window& Screen::Front() {
  if (windows_.empty()) Fail("no form is open");
  // A form that is disabled shows the one that keeps it waiting.
  for (auto window = windows_.rbegin(); window != windows_.rend(); ++window) {
    if ((*window)->form->enabled()) return **window;
  }
  Fail("all forms are disabled");
}

Control& Screen::Reachable(const std::string& name) {
  const Form& form = *Front().form;
  for (const Place& place : Places(form)) {
    if (place.control->name() != name) continue;
    if (!CanHaveFocus(form, place)) Fail(name + " is disabled, hidden, or on a page that is not chosen");
    return *place.control;
  }
  Fail(form.name() + " has no " + name);
}

void Screen::Event(const std::function<void()>& tell) {
  tell();
  Settle();
}

// What a button or a menu starts sees the field that was left as it is taken over; back in it, the user goes on where
// he was.
void Screen::Command(const std::function<void()>& run) {
  Window& front = Front();
  const std::shared_ptr<Form> form = front.form;
  Control* const left = std::exchange(front.told, nullptr);
  ++front.commands;
  if ((left == nullptr || left->LeftForCommand()) && run) run();
  Window* const window = Find(form.get());
  const bool back = window != nullptr && --window->commands == 0 && left != nullptr && window->told == nullptr &&
                    window->focus == left && windows_.back().get() == window && form->enabled();
  if (back) {
    window->told = left;
    left->BackFromCommand();
  }
  Settle();
}

void Screen::Move(Window& window, Control* control) {
  window.focus = control;
  Settle();
}

// Tells the controls where the focus has gone, until it comes to rest.
void Screen::Settle() {
  for (bool moved = true; moved;) {
    moved = false;
    for (std::size_t i = 0; i < windows_.size() && !moved; ++i) {
      Window& window = *windows_[i];
      if (window.commands > 0) continue;
      const std::shared_ptr<Form> alive = window.form;
      Control* const now = i + 1 == windows_.size() && window.form->enabled() ? window.focus : nullptr;
      if (window.told == now) continue;
      moved = true;
      if (window.told != nullptr) {
        std::exchange(window.told, nullptr)->LostFocus();
      } else {
        window.told = now;
        now->GotFocus();
      }
    }
  }
}

void Screen::FocusOn(const std::string& control) {
  Move(Front(), &Reachable(control));
}

void Screen::TypeUnit(Control& control, char16_t unit) {
  Event([&] {
    const int key = control.KeyPress(unit);
    if (Edited edited(control); key != 0 && edited.change) {
      edited.Replace(key == u'\r' ? u"\r\n" : std::u16string(1, static_cast<char16_t>(key)));
    }
  });
}

void Screen::Erase(Control& control, bool before_caret) {
  Event([&] {
    Edited edited(control);
    if (!edited.change) return;
    if (edited.selection.length == 0) {
      if (before_caret ? edited.selection.start == 0 : edited.selection.start == edited.text.size()) return;
      edited.selection = {edited.selection.start - (before_caret ? 1 : 0), 1};
    }
    edited.Replace({});
  });
}

void Screen::Type(const std::string& name, const std::string& text) {
  Control& control = Reachable(name);
  Move(Front(), &control);
  Edited edited(control);
  if (!edited.change) Fail(name + " takes no text");
  if (edited.select) edited.select({0, edited.text.size()});
  if (text.empty()) return Key("Del");
  for (const char16_t unit : base::ToUtf16(text)) {
    constexpr int kSomeKey = 0xE7;
    const bool plain = unit < 0x80 && std::isalnum(unit) != 0;
    Event([&] { control.KeyDown(unit == u'\n' ? key_code::kEnter : plain ? std::toupper(unit) : kSomeKey); });
    TypeUnit(control, unit == u'\n' ? u'\r' : unit);
  }
}

// Modifiers reach the control as keys of their own; a shortcut's last key does not.
void Screen::Key(const std::string& keys) {
  bool control = false;
  bool shift = false;
  std::string name = keys;
  for (std::size_t plus; (plus = name.find('+')) != std::string::npos && plus + 1 < name.size();) {
    const std::string modifier = name.substr(0, plus);
    (modifier == "Ctrl" ? control : shift) = true;
    const int code = modifier == "Ctrl" ? key_code::kControl : key_code::kShift;
    if (Control* const told = Front().told) Event([&] { told->KeyDown(code); });
    name.erase(0, plus + 1);
  }
  const int key = VirtualKey(name);
  const Form& form = *Front().form;
  TabStrip* const tabs = form.layout().tabs;
  for (const Shortcut& shortcut : form.shortcuts()) {
    if (shortcut.key == key && shortcut.control == control && shortcut.shift == shift) return Command(shortcut.run);
  }
  if (key == key_code::kTab && control && tabs != nullptr) {
    return SelectTab(Front(), (tabs->selected() + (shift ? tabs->Count() - 1 : 1)) % tabs->Count());
  }
  if (control && key == 'C' && Front().told != nullptr && Front().told->kind() == ControlKind::kListView) {
    return Event([&] { static_cast<ListView*>(Front().told)->Copy(); });
  }
  PressPlain(name, key, shift);
}

void Screen::PressPlain(const std::string& name, int key, bool shift) {
  Window& window = Front();
  const Layout& layout = window.form->layout();
  Control* const told = window.told;
  if (key == key_code::kEscape) {
    for (CommandButton* const button : layout.buttons) {
      if (button->is_cancel()) return Command([button] { button->Clicked(); });
    }
    return CloseBox();
  }
  if (key == key_code::kTab) {
    std::vector<Control*> stops;
    for (const Place& place : Places(*window.form)) {
      if (CanHaveFocus(*window.form, place)) stops.push_back(place.control);
    }
    const auto at = static_cast<std::size_t>(std::find(stops.begin(), stops.end(), window.focus) - stops.begin());
    return Move(window, stops[(at + (shift ? stops.size() - 1 : 1)) % stops.size()]);
  }
  if (told == nullptr) return;
  const bool multi_line = told->kind() == ControlKind::kTextField && static_cast<TextField*>(told)->multi_line;
  const bool list = told->kind() == ControlKind::kListView;
  if (key == key_code::kEnter && !multi_line && !(list && static_cast<ListView*>(told)->on_item_activate)) {
    for (CommandButton* const button : layout.buttons) {
      if (button->is_default()) return Command([button] { button->Clicked(); });
    }
    return;
  }
  Event([&] { told->KeyDown(key); });
  if (key == key_code::kDelete || key == key_code::kBackspace) return Erase(*told, key == key_code::kBackspace);
  const int step = name == "Down" ? 1 : name == "Up" ? -1 : 0;
  if (list) {
    auto& rows = static_cast<ListView&>(*told);
    const int row = std::clamp(rows.selected() + step, 0, rows.Count() - 1);
    if (step != 0 && row != rows.selected()) Event([&] { rows.Clicked(row); });
    if (key == key_code::kEnter && rows.selected() >= 0) Event([&] { rows.Activated(); });
    if (name == "Space" && rows.check_boxes() && rows.selected() >= 0) {
      Event([&] { rows.Checked(rows.selected(), !rows.At(rows.selected()).checked); });
    }
  } else if (told->kind() == ControlKind::kComboBox && step != 0) {
    auto& box = static_cast<ComboBox&>(*told);
    const int index = std::clamp(box.ListIndex() + step, 0, box.ListCount() - 1);
    if (!box.locked() && index != box.ListIndex()) Event([&] { box.Chosen(index); });
  } else if (told->kind() == ControlKind::kCheckBox && name == "Space") {
    Click(told->name(), {});
  } else if (name.size() == 1 || key == key_code::kEnter) {
    TypeUnit(*told, key == key_code::kEnter ? u'\r' : static_cast<char16_t>(name[0]));
  }
}

void Screen::Choose(const std::string& name, const std::string& entry) {
  auto& box = As<ComboBox>(Reachable(name), ControlKind::kComboBox, "list to choose from");
  Move(Front(), &box);
  for (int i = 0; i < box.ListCount(); ++i) {
    if (box.List(i) != entry) continue;
    if (!box.locked() && i != box.ListIndex()) Event([&] { box.Chosen(i); });
    return;
  }
  Fail(name + " has no entry " + entry);
}

void Screen::Click(const std::string& name, const std::string& part) {
  Control& control = Reachable(name);
  if (control.kind() == ControlKind::kToolbar) {
    auto& bar = static_cast<Toolbar&>(control);
    const auto [key, entry] = FirstWord(part);
    const Toolbar::Button& button = bar.Item(key);
    if (!button.enabled || !button.visible) return;  // nothing happens, the focus stays
    Command([&bar, key = key, entry = entry] { entry.empty() ? bar.Clicked(key) : bar.MenuClicked(entry); });
    return;
  }
  Move(Front(), &control);
  if (control.kind() == ControlKind::kCommandButton) {
    Command([&] { static_cast<CommandButton&>(control).Clicked(); });
  } else if (control.kind() == ControlKind::kCheckBox) {
    auto& toggle = static_cast<Toggle&>(control);
    Event([&] { toggle.Clicked(!toggle.value()); });
  } else if (control.kind() == ControlKind::kOptionButton) {
    auto& option = static_cast<Toggle&>(control);
    if (option.value()) return;
    for (Control* other : Front().form->controls()) {
      if (other->kind() == ControlKind::kOptionButton) static_cast<Toggle*>(other)->set_value(false);
    }
    Event([&] { option.Clicked(true); });
  } else if (control.kind() == ControlKind::kListView) {
    auto& list = static_cast<ListView&>(control);  // the check box of the row that begins so
    ClickRow(name, part, false);
    Event([&] { list.Checked(list.selected(), !list.At(list.selected()).checked); });
  }
}

void Screen::ClickMenu(const std::string& name) {
  MenuItem* const item = FindMenuItem(Front().form->menus(), name);
  if (item == nullptr) Fail("no menu has an entry " + name);
  if (item->enabled && (!item->can_run || item->can_run())) Command(item->on_click);
}

void Screen::SelectTab(Window& window, int index) {
  const std::shared_ptr<Form> form = window.form;
  TabStrip& tabs = *form->layout().tabs;
  Command([&] { tabs.Chosen(index); });
  // What cannot be seen any more gives the keyboard to the tabs.
  for (const Place& place : Places(*form)) {
    if (place.control == window.focus && !CanHaveFocus(*form, place)) Move(window, &tabs);
  }
}

void Screen::ClickTab(const std::string& key) {
  const TabStrip& tabs = *Front().form->layout().tabs;
  for (int i = 0; i < tabs.Count(); ++i) {
    if (tabs.tabs()[static_cast<std::size_t>(i)].key == key) return SelectTab(Front(), i);
  }
  Fail("no tab " + key);
}

void Screen::ClickRow(const std::string& name, const std::string& start, bool twice) {
  auto& list = As<ListView>(Reachable(name), ControlKind::kListView, "list");
  Move(Front(), &list);
  for (int i = 0; i < list.Count(); ++i) {
    if (list.At(i).text.rfind(start, 0) != 0 && list.At(i).key != start) continue;
    if (list.multi_select) list.Marked(0, list.Count() - 1, false);
    list.Marked(i, i, list.multi_select);
    Event([&] { list.Clicked(i); });
    if (twice) Event([&] { list.Activated(); });
    return;
  }
  Fail(name + " has no row " + start);
}

void Screen::OpenMenu(const std::string& name) {
  auto& list = As<ListView>(Reachable(name), ControlKind::kListView, "list");
  Move(Front(), &list);
  Event([&] { list.ContextMenu(); });
}

void Screen::ClickHeader(const std::string& name, int column) {
  auto& list = As<ListView>(Reachable(name), ControlKind::kListView, "list");
  Event([&] { list.ColumnClicked(column); });
}

void Screen::Pick(const std::string& name, const std::string& date) {
  auto& field = As<DatePicker>(Reachable(name), ControlKind::kDatePicker, "date");
  Move(Front(), &field);
  const auto parsed = base::ParseDate(date, {});
  if (!parsed) Fail(date + " is no date");
  Event([&] { field.Picked(*parsed); });
}

void Screen::CloseBox() {
  const std::shared_ptr<Form> form = Front().form;
  Command([&] { form->Unload(); });
}

void Screen::BringToFront(const std::string& name) {
  for (std::size_t i = 0; i < windows_.size(); ++i) {
    if (windows_[i]->name != name) continue;
    std::rotate(windows_.begin() + static_cast<std::ptrdiff_t>(i),
                windows_.begin() + static_cast<std::ptrdiff_t>(i) + 1, windows_.end());
    return Settle();
  }
  Fail(name + " is not open");
}

std::vector<std::pair<std::string, std::shared_ptr<Form>>> Screen::Forms() const {
  std::vector<std::pair<std::string, std::shared_ptr<Form>>> forms;
  for (const auto& window : windows_) forms.emplace_back(window->name, window->form);
  return forms;
}

std::string Screen::NameOf(const Form* form) const {
  const Window* const window = Find(form);
  return window != nullptr ? window->name : form != nullptr ? form->name() + " without a window" : "nothing";
}

bool Screen::IsTopmost(const Form* form) const {
  const Window* const window = Find(form);
  return window != nullptr && window->topmost;
}

}  // namespace quenta::journeys
