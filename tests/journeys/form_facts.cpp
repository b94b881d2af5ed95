// What the user sees of a form, and what its model knows beside that.
#include "journeys/observation.h"

#include "base/text.h"
#include "controls/combo_box.h"
#include "controls/list_view.h"
#include "controls/simple_controls.h"
#include "controls/text_field.h"

namespace quenta::journeys {
namespace {

using base::DecimalText;
using namespace controls;

std::string YesNo(bool value) {
  return value ? "yes" : "no";
}

constexpr int kFirst = 3;  // that stand of a long list

std::string Entries(const ComboBox& box) {
  std::string text;
  for (int i = 0; i < box.ListCount(); ++i) {
    if (IsLeftOut(i, box.ListCount())) {
      if (i == kFirst) text += "; … " + DecimalText(box.ListCount()) + " in all …";
      continue;
    }
    const auto data = box.ItemData(i);
    text += (i > 0 ? "; " : "") + (data ? DecimalText(*data) + " " : std::string()) + box.List(i);
  }
  return text;
}

void Add(const ComboBox& box, Fact& fact) {
  const auto data = box.SelectedItemData();
  const std::string chosen = box.ListIndex() < 0 ? "" : data ? DecimalText(*data) : box.List(box.ListIndex());
  fact.values.emplace_back("text", Shown(box.text()));
  fact.values.emplace_back("chosen", Shown(chosen));
  fact.values.emplace_back("locked", YesNo(box.locked()));
}

void Add(const TextField& field, Fact& fact) {
  fact.values.emplace_back("text", Shown(field.text()));
  if (field.right_aligned) fact.values.emplace_back("tag", Shown(field.tag()));  // only numbers have a raw value
  fact.values.emplace_back("locked", YesNo(field.locked()));
}

void Add(const Toolbar& bar, Fact& fact) {
  for (const Toolbar::Button& button : bar.buttons()) {
    fact.values.emplace_back(button.key, !button.visible ? "hidden" : button.enabled ? "on" : "off");
  }
}

void Add(const TabStrip& tabs, Fact& fact) {
  std::string keys;
  for (const TabStrip::Tab& tab : tabs.tabs()) keys += (keys.empty() ? "" : " ") + tab.key;
  fact.values.emplace_back("chosen", Shown(tabs.selected_key()));
  fact.values.emplace_back("tabs", Shown(keys));
}

// The list itself; its rows are subjects of their own.
void Add(const ListView& list, Fact& fact) {
  std::string marked;
  std::string order;
  for (int i = 0; i < list.Count(); ++i) {
    const ListItem& item = const_cast<ListView&>(list).At(i);
    if (item.marked) marked += (marked.empty() ? "" : " ") + item.key;
    if (!IsLeftOut(i, list.Count())) order += (order.empty() ? "" : " ") + item.key;
  }
  fact.values.emplace_back("rows", DecimalText(list.Count()));
  fact.values.emplace_back("chosen",
                           Shown(list.selected() < 0 ? "" : const_cast<ListView&>(list).At(list.selected()).key));
  fact.values.emplace_back("marked", Shown(marked));
  if (list.sort().column >= 0) fact.values.emplace_back("order", Shown(order));
}

void AddRows(const ListView& list, const std::string& subject, Facts& facts) {
  const auto columns = list.columns().size();
  for (int i = 0; i < list.Count(); ++i) {
    if (IsLeftOut(i, list.Count())) continue;
    const ListItem& item = const_cast<ListView&>(list).At(i);
    std::string shown = item.text;
    std::string hidden;
    for (std::size_t k = 0; k < item.sub_items.size(); ++k) {
      std::string& text = k + 1 < columns ? shown : hidden;
      text += (k + 1 == columns ? "" : "|") + item.sub_items[k];
    }
    Fact fact{subject + " " + item.key, {}};
    fact.values.emplace_back("row", Shown(shown));
    fact.values.emplace_back("hidden", Shown(hidden));
    fact.values.emplace_back("icon", DecimalText(item.small_icon));
    fact.values.emplace_back("checked", YesNo(item.checked));
    facts.push_back(std::move(fact));
  }
}

void AddContents(const Control& control, Fact& fact) {
  switch (control.kind()) {
    case ControlKind::kComboBox:
      return Add(static_cast<const ComboBox&>(control), fact);
    case ControlKind::kTextField:
      return Add(static_cast<const TextField&>(control), fact);
    case ControlKind::kToolbar:
      return Add(static_cast<const Toolbar&>(control), fact);
    case ControlKind::kTabStrip:
      return Add(static_cast<const TabStrip&>(control), fact);
    case ControlKind::kListView:
      return Add(static_cast<const ListView&>(control), fact);
    case ControlKind::kCheckBox:
    case ControlKind::kOptionButton:
      fact.values.emplace_back("caption", Shown(static_cast<const Toggle&>(control).caption()));
      [[fallthrough]];
    default:
      fact.values.emplace_back("text", Shown(control.Describe()));
  }
}

}  // namespace

bool IsLeftOut(int position, int count) {
  constexpr int kLongList = 20;
  constexpr int kLast = 2;
  return count > kLongList && position >= kFirst && position < count - kLast;
}

Facts FactsOf(const Form& form, const std::string& form_name) {
  const std::string prefix = form_name == "frmMain" ? "" : form_name + ".";
  Facts facts;
  facts.push_back({form_name, {}});
  facts.back().values = {{"caption", Shown(form.caption())},
                         {"enabled", YesNo(form.enabled())},
                         {"pointer", form.mouse_pointer() == MousePointer::kHourglass ? "hourglass" : "default"},
                         {"minimized", YesNo(form.window_state() == WindowState::kMinimized)}};
  for (const Control* const control : form.controls()) {
    Fact fact{prefix + control->name(), {}};
    AddContents(*control, fact);
    fact.values.emplace_back("enabled", YesNo(control->enabled()));
    fact.values.emplace_back("visible", YesNo(control->visible()));
    facts.push_back(std::move(fact));
    if (control->kind() == ControlKind::kListView) {
      AddRows(static_cast<const ListView&>(*control), prefix + control->name(), facts);
    }
  }
  for (const Control* const control : form.controls()) {
    if (control->kind() != ControlKind::kComboBox) continue;
    const std::string entries = Entries(static_cast<const ComboBox&>(*control));
    facts.push_back({"entries of " + prefix + control->name(), {{"", Shown(entries)}}});
  }
  return facts;
}

}  // namespace quenta::journeys
