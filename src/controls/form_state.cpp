#include "controls/form_state.h"

#include <memory>
#include <utility>

#include "controls/combo_box.h"
#include "controls/commands.h"
#include "controls/list_view.h"
#include "controls/simple_controls.h"
#include "controls/text_field.h"

namespace quenta::controls {
namespace {

using Step = std::function<void()>;

Step Remember(TextField& field) {
  return [&field, text = field.text(), tag = field.tag(), locked = field.locked()] {
    field.set_tag(tag);
    field.set_text(text);
    field.set_locked(locked);
  };
}

Step Remember(ComboBox& box) {
  std::vector<std::pair<std::string, std::optional<std::int32_t>>> entries;
  entries.reserve(static_cast<std::size_t>(box.ListCount()));
  for (int i = 0; i < box.ListCount(); ++i) entries.emplace_back(box.List(i), box.ItemData(i));
  return [&box, entries = std::move(entries), index = box.ListIndex(), text = box.text(), locked = box.locked()] {
    const ComboBox::Update update(box);
    box.Clear();
    for (const auto& [entry, data] : entries) {
      box.AddItem(entry);
      if (data) box.SetItemData(box.NewIndex(), *data);
    }
    box.SetListIndex(index);
    box.set_text(text);
    box.set_locked(locked);
  };
}

Step Remember(ListView& list) {
  auto rows = std::make_shared<std::vector<ListItem>>();
  rows->reserve(static_cast<std::size_t>(list.Count()));
  for (int i = 0; i < list.Count(); ++i) rows->push_back(std::move(list.At(i)));
  const int selected = list.selected();
  list.Clear();
  return [&list, rows, selected] {
    const ListView::Update update(list);
    list.Clear();
    for (ListItem& row : *rows) {
      const std::string key = row.key;
      list.Add(key, {}) = std::move(row);
    }
    list.Select(selected);
  };
}

Step Remember(Toolbar& bar) {
  return [&bar, buttons = bar.buttons()] {
    for (const Toolbar::Button& button : buttons) {
      bar.EnableButton(button.key, button.enabled);
      bar.ShowButton(button.key, button.visible);
    }
  };
}

Step Remember(TabStrip& strip) {
  return [&strip, tabs = strip.tabs(), selected = strip.selected_key()] {
    while (strip.Count() > 0) strip.Remove(strip.Count());
    for (const TabStrip::Tab& tab : tabs) strip.Insert(strip.Count() + 1, tab);
    strip.SelectKey(selected);
  };
}

Step Remember(Control& control) {
  switch (control.kind()) {
    case ControlKind::kTextField:
      return Remember(static_cast<TextField&>(control));
    case ControlKind::kComboBox:
      return Remember(static_cast<ComboBox&>(control));
    case ControlKind::kListView:
      return Remember(static_cast<ListView&>(control));
    case ControlKind::kToolbar:
      return Remember(static_cast<Toolbar&>(control));
    case ControlKind::kTabStrip:
      return Remember(static_cast<TabStrip&>(control));
    case ControlKind::kCheckBox:
    case ControlKind::kOptionButton: {
      auto& toggle = static_cast<Toggle&>(control);
      return [&toggle, value = toggle.value()] { toggle.set_value(value); };
    }
    case ControlKind::kDatePicker: {
      auto& picker = static_cast<DatePicker&>(control);
      return [&picker, value = picker.value()] { picker.set_value(value); };
    }
    case ControlKind::kMaskEdit: {
      auto& field = static_cast<MaskEdit&>(control);
      return [&field, text = field.text(), date = field.shown_date()] {
        date ? field.ShowDate(*date, text) : field.set_text(text);
      };
    }
    case ControlKind::kLabel: {
      auto& label = static_cast<Label&>(control);
      return [&label, caption = label.caption()] { label.set_caption(caption); };
    }
    default:
      return [] {};
  }
}

}  // namespace

FormState::FormState(Form& form) {
  steps_.emplace_back([&form, caption = form.caption()] { form.set_caption(caption); });
  for (Control* control : form.controls()) {
    steps_.push_back(Remember(*control));
    steps_.emplace_back([control, enabled = control->enabled(), visible = control->visible()] {
      control->set_enabled(enabled);
      control->set_visible(visible);
    });
  }
}

void FormState::PutBack() {
  for (const Step& step : std::exchange(steps_, {})) step();
}

}  // namespace quenta::controls
