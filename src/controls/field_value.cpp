#include "controls/field_value.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string_view>

#include "base/convert.h"
#include "base/date.h"
#include "base/format.h"
#include "base/sql_literal.h"
#include "base/text.h"
#include "controls/combo_box.h"
#include "controls/simple_controls.h"
#include "controls/text_field.h"

namespace quenta::controls {
namespace {

using base::Locale;
using base::Value;

// Display formats by code; empty where the value is shown as it is. The places of the minus sign are the suite's.
constexpr std::array<std::string_view, 11> kFormats{"",
                                                    "dd-mm-yyyy",
                                                    "#,##0.00;- #,##0.00",
                                                    "",
                                                    "€ #,##0.00;€ -#,##0.00",
                                                    "0.00 %",
                                                    "",
                                                    "€ #,##0.000;€ -#,##0.000",
                                                    "#,##0.000;- #,##0.000",
                                                    "dd-mm-yyyy Hh:Nn:Ss",
                                                    "€ #,##0.0000;€ -#,##0.0000"};

// Amounts on labels: two decimals when positive, three when negative, as the suite has always shown them.
constexpr std::string_view kLabelAmount = "€ #,##0.00;€ -#,##0.000";

constexpr std::array<std::string_view, 8> kDateMasks{"##:##",
                                                     "##-##-####",
                                                     "##-##-##",
                                                     "####-##-##",
                                                     "##-##-#### ##:##",
                                                     "##-##-#### ##:##:##",
                                                     "####-##-## ##:##",
                                                     "####-##-## ##:##:##"};

std::string_view FormatOf(int code) {
  return kFormats[static_cast<std::size_t>(code)];
}

bool IsKnown(int code) {
  return code >= 0 && code < static_cast<int>(kFormats.size());
}

// Codes whose raw value is a number kept in the field's tag.
bool KeepsNumber(int code) {
  using namespace format_code;
  return IsKnown(code) && code != kPlain && code != kDate && code != kText && code != kDateTime;
}

void SetText(TextField& field, const Value& value, int code, const Locale& locale) {
  if (!IsKnown(code)) return;
  if (value.is_null()) {
    field.set_tag({});
    field.set_text({});
    return;
  }
  const std::string text = base::ToText(value, locale);
  if (code == format_code::kPlain) {
    if (base::IsNumeric(value, locale)) field.set_tag(text);
    field.set_text(text);
  } else if (code == format_code::kInteger) {
    field.set_tag(text);
    field.set_text(base::DecimalText(base::ToLong(value, locale)));
  } else if (KeepsNumber(code)) {
    field.set_tag(text);
    ShowFormatted(field, code, locale);
  } else {
    field.set_tag({});
    field.set_text(code == format_code::kText ? text : base::Format(value, FormatOf(code), locale));
  }
}

// The first entry with this item data (for a number) or this text (for anything else); -1 when there is none.
int FindEntry(const ComboBox& box, const Value& value, const Locale& locale) {
  if (!box.holds_text && base::IsNumeric(value, locale)) {
    const double data = base::ToDouble(value, locale);
    for (int i = 0; i < box.ListCount(); ++i) {
      if (box.ItemData(i) && *box.ItemData(i) == data) return i;
    }
    return -1;
  }
  const std::string text = base::ToText(value, locale);
  for (int i = 0; i < box.ListCount(); ++i) {
    if (box.List(i) == text) return i;
  }
  return -1;
}

void SetCombo(ComboBox& box, const Value& value, const Locale& locale) {
  const bool editable = box.style() == ComboBox::Style::kEditable;
  const int entry = value.is_null() ? -1 : FindEntry(box, value, locale);
  box.SetListIndex(entry);
  if (editable && entry < 0) box.set_text(value.is_null() ? std::string() : base::ToText(value, locale));
}

void SetMask(MaskEdit& field, const Value& value, const Locale& locale) {
  const bool date_mask = std::find(kDateMasks.begin(), kDateMasks.end(), field.mask()) != kDateMasks.end();
  if (date_mask && base::IsDate(value, locale)) {
    field.ShowDate(base::ToDate(value, locale), base::Format(value, field.format(), locale));
  } else {
    // A value that is no date shows as none.
    field.set_text(field.EmptyText());
  }
}

std::string TextSql(const TextField& field, int code, const Locale& locale) {
  if (field.text().empty()) return "null";
  if (!KeepsNumber(code)) return base::SqlTextLiteral(field.text());
  auto number = base::ParseNumber(field.tag(), locale);
  // A column of texts may write its numbers otherwise than the user does.
  if (!number) number = base::ParseTypedNumber(field.tag(), locale);
  if (!number || !std::isfinite(*number)) return "null";
  return base::PlainNumberText(base::ReplaceAll(field.tag(), locale.decimal, "."), *number);
}

std::string ComboSql(const ComboBox& box) {
  if (box.style() == ComboBox::Style::kList || !box.holds_text) {
    if (const auto data = box.SelectedItemData()) return base::DecimalText(*data);
  }
  if (box.style() == ComboBox::Style::kList || box.text().empty()) return "null";
  return base::SqlTextLiteral(box.text());
}

// What the user has typed is read in his own order. The field's format may have another: what it has shown, and nobody
// has changed, is the date that it was.
std::string MaskSql(const MaskEdit& field, const Locale& locale) {
  const auto date = field.shown_date() ? field.shown_date() : base::ParseDate(field.text(), locale);
  return date ? base::SqlDateLiteral(*date, field.mask().find(':') != std::string::npos) : "null";
}

}  // namespace

void SetFieldValue(Control& control, const Value& value, int code, const Locale& locale) {
  switch (control.kind()) {
    case ControlKind::kTextField:
      SetText(static_cast<TextField&>(control), value, code, locale);
      break;
    case ControlKind::kComboBox:
      SetCombo(static_cast<ComboBox&>(control), value, locale);
      break;
    case ControlKind::kDatePicker: {
      auto& picker = static_cast<DatePicker&>(control);
      if (value.is_null()) {
        picker.set_value(base::EmptyDate());
      } else if (base::IsDate(value, locale)) {
        picker.set_value(base::ToDate(value, locale));
      }
      break;
    }
    case ControlKind::kCheckBox:
    case ControlKind::kOptionButton:
      static_cast<Toggle&>(control).set_value(base::IsNonZero(value));
      break;
    case ControlKind::kMaskEdit:
      SetMask(static_cast<MaskEdit&>(control), value, locale);
      break;
    case ControlKind::kLabel: {
      const bool amount = code == format_code::kAmount && base::IsNumeric(value, locale);
      static_cast<Label&>(control).set_caption(value.is_null() ? std::string()
                                               : amount        ? base::Format(value, kLabelAmount, locale)
                                                               : base::ToText(value, locale));
      break;
    }
    default:
      break;
  }
}

void ShowFormatted(Control& control, int code, const Locale& locale) {
  if (control.kind() != ControlKind::kTextField || !IsKnown(code)) return;
  auto& field = static_cast<TextField&>(control);
  if (field.tag().empty() || code == format_code::kDate || code == format_code::kText) return;
  field.set_text(FormatOf(code).empty() ? field.tag() : base::Format(field.tag(), FormatOf(code), locale));
}

std::string GetFieldValue(const Control& control, int code, const Locale& locale) {
  switch (control.kind()) {
    case ControlKind::kTextField:
      return TextSql(static_cast<const TextField&>(control), code, locale);
    case ControlKind::kComboBox:
      return ComboSql(static_cast<const ComboBox&>(control));
    case ControlKind::kDatePicker:
      return base::SqlDateLiteral(static_cast<const DatePicker&>(control).value(), false);
    case ControlKind::kCheckBox:
    case ControlKind::kOptionButton:
      return static_cast<const Toggle&>(control).value() ? "1" : "0";
    case ControlKind::kMaskEdit:
      return MaskSql(static_cast<const MaskEdit&>(control), locale);
    default:
      return "null";
  }
}

}  // namespace quenta::controls
