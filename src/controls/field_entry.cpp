#include "controls/field_entry.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string_view>

#include "base/convert.h"
#include "base/error.h"
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

// The number that was typed, 0 for what is none. A percentage may end in its sign.
double TypedNumber(std::string_view text, int code, const Locale& locale) {
  text = base::Trim(text);
  if (code == kPercent && text.ends_with('%')) text.remove_suffix(1);
  return base::ParseTypedNumber(text, locale).value_or(0);
}

// Whether a column takes the number, and the field can show it again. Negative numbers enter statements, and
// percentages their field, through single precision.
bool Fits(double number, int code) {
  constexpr double kLargestSingle = std::numeric_limits<float>::max();
  if (code == kInteger) {
    return std::fabs(number) <= std::numeric_limits<std::int32_t>::max();
  }
  if (number < 0 || code == kPercent) return std::fabs(number) <= kLargestSingle;
  return std::isfinite(number);
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
      field.set_text(base::ToText(base::Value(base::ToSingle(base::ToDouble(raw, locale) * 100, locale)), locale));
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

void ShowLeft(TextField& field, int code, const Locale& locale) {
  field.set_text(code == kInteger || field.tag().empty() ? field.tag()
                                                         : base::Format(field.tag(), LeaveFormat(code), locale));
}

bool TakeTyped(TextField& field, int code, const Locale& locale) {
  if (field.text().empty()) return true;
  const double number = TypedNumber(field.text(), code, locale);
  const bool fits = Fits(number, code);
  if (fits) {
    field.set_tag(code == kInteger ? base::DecimalText(base::RoundToLong(number))
                                   : NumberInLocale(code == kPercent ? number / 100 : number, locale));
  }
  ShowLeft(field, code, locale);
  if (!fits) field.Refuse();
  return fits;
}

}  // namespace

const char* RefusalOf(const Control& control) {
  return control.kind() == ControlKind::kMaskEdit
             ? "O valor que introduziu não é uma data válida."
             : "O número que introduziu é demasiado grande para este campo, que fica com o valor que tinha.";
}

std::string LocaleDecimal(const Locale& locale) {
  return std::string(base::Trim(locale.decimal).substr(0, 1));
}

void FieldGotFocus(Control& control, int code, const Locale& locale) {
  if (control.kind() == ControlKind::kTextField) {
    auto& field = static_cast<TextField&>(control);
    if (IsNumberCode(code)) {
      try {
        ShowRaw(field, code, locale);
      } catch (const base::Error&) {
        field.set_text(field.tag());
        field.SelectAll();
      }
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

bool FieldLostFocus(Control& control, int code, const Locale& locale) {
  if (control.kind() == ControlKind::kMaskEdit) {
    const auto& field = static_cast<const MaskEdit&>(control);
    return field.shown_date() || field.text() == field.EmptyText() || base::ParseDate(field.text(), locale).has_value();
  }
  if (control.kind() != ControlKind::kTextField) return true;
  auto& field = static_cast<TextField&>(control);
  if (IsNumberCode(code)) return TakeTyped(field, code, locale);
  if (code == kDate || code == kText) field.set_tag({});
  return true;
}

}  // namespace quenta::controls
