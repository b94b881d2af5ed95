#include "controls/field_entry.h"

#include <optional>
#include <string_view>

#include "base/convert.h"
#include "base/format.h"
#include "base/text.h"
#include "controls/combo_box.h"
#include "controls/field_value.h"
#include "controls/simple_controls.h"
#include "controls/text_field.h"

namespace quenta::controls {
namespace {

using base::Locale;
using namespace format_code;

bool IsNumberCode(int code) {
  return code == kNumber || code == kAmount || code == kPercent || code == kInteger || code == kAmount3 ||
         code == kNumber3 || code == kAmount4;
}

std::string LeaveFormat(int code) {
  switch (code) {
    case kNumber:
      return "#,##0.00";
    case kAmount:
      return "€ #,##0.00;€ -#,##0.00";
    case kPercent:
      return "0.00 %";
    case kNumber3:
      return "#,##0.000";
    default:
      return "€ #,##0.000;€ -#,##0.000";
  }
}

// How often the sign stands in the text, and where last.
struct SignUse {
  std::size_t count = 0;
  std::size_t last = 0;
};

SignUse UseOf(char sign, const std::string& text) {
  SignUse use;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != sign) continue;
    ++use.count;
    use.last = i;
  }
  return use;
}

// The number that the user typed, with "." and "," both taken as the decimal separator: the one that stands last when
// both do, and none when one of them stands several times (it then separates thousands).
std::optional<double> TypedNumber(std::string text, const Locale& locale) {
  text = base::ReplaceAll(text, "%", "");
  const SignUse commas = UseOf(',', text);
  const SignUse points = UseOf('.', text);
  char decimal = '\0';
  if (commas.count > 0 && points.count > 0) {
    decimal = commas.last > points.last ? ',' : '.';
  } else if (commas.count + points.count == 1) {
    decimal = commas.count == 1 ? ',' : '.';
  }
  Locale typed = locale;
  typed.decimal = decimal == '\0' ? (commas.count > 0 ? "." : ",") : std::string(1, decimal);
  typed.thousands = typed.decimal == "," ? "." : ",";
  return base::ParseNumber(text, typed);
}

std::string NumberInLocale(double number, const Locale& locale) {
  return base::ToText(base::Value(number), locale);
}

void ShowRaw(TextField& field, int code, const Locale& locale) {
  if (field.tag().empty()) {
    field.set_text({});
    return;
  }
  const base::Value raw(field.tag());
  switch (code) {
    case kPercent:
      field.set_text(base::ToText(base::Value(static_cast<float>(base::ToDouble(raw, locale) * 100)), locale));
      break;
    case kInteger:
      field.set_tag(base::DecimalText(base::ToLong(raw, locale)));
      field.set_text(field.tag());
      break;
    case kAmount3:
    case kNumber3:
      field.set_text(NumberInLocale(base::RoundHalfEven(base::ToDouble(raw, locale), 3), locale));
      break;
    case kAmount4:
      field.set_text(NumberInLocale(base::RoundHalfEven(base::ToDouble(raw, locale), 4), locale));
      break;
    default:
      field.set_text(field.tag());
      break;
  }
  field.SelectAll();
}

void TakeTyped(TextField& field, int code, const Locale& locale) {
  if (field.text().empty()) return;
  double number = TypedNumber(field.text(), locale).value_or(0);
  if (code == kPercent) number /= 100;
  if (code == kInteger) {
    field.set_tag(base::DecimalText(base::RoundToLong(number)));
    field.set_text(field.tag());
    return;
  }
  field.set_tag(NumberInLocale(number, locale));
  field.set_text(base::Format(field.tag(), LeaveFormat(code), locale));
}

}  // namespace

std::string LocaleDecimal(const Locale& locale) {
  return std::string(base::Trim(locale.decimal).substr(0, 1));
}

void FieldGotFocus(Control& control, int code, const Locale& locale) {
  if (control.kind() == ControlKind::kTextField) {
    auto& field = static_cast<TextField&>(control);
    if (IsNumberCode(code)) {
      ShowRaw(field, code, locale);
    } else if (code == kDate || (code == kText && !field.text().empty())) {
      field.SelectAll();
    }
  } else if (control.kind() == ControlKind::kMaskEdit && code == kDate) {
    static_cast<MaskEdit&>(control).SelectAll();
  } else if (control.kind() == ControlKind::kComboBox && code == kText) {
    auto& box = static_cast<ComboBox&>(control);
    if (box.style() == ComboBox::Style::kEditable && !box.text().empty()) box.SelectAll();
  }
}

void FieldLostFocus(Control& control, int code, const Locale& locale) {
  if (control.kind() != ControlKind::kTextField) return;
  auto& field = static_cast<TextField&>(control);
  if (IsNumberCode(code)) {
    TakeTyped(field, code, locale);
  } else if (code == kDate || code == kText) {
    field.set_tag({});
  }
}

}  // namespace quenta::controls
