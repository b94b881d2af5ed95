#include <array>
#include <string>

#include "base/date.h"
#include "controls/field_entry.h"
#include "controls/field_value.h"
#include "controls/simple_controls.h"
#include "controls/text_field.h"
#include "gtest/gtest.h"
#include "support/locales.h"

namespace quenta::tests {
namespace {

using base::Value;
using controls::TextField;

base::Locale Points() {
  base::Locale locale = PortugueseLocale();
  locale.thousands = ".";
  return locale;
}

struct ShowCase {
  int code;
  Value value;
  const char* text;
  const char* tag;
  const char* sql;
};

TEST(TextFieldValue, IsShownAndReadBackByItsCode) {
  const ShowCase cases[] = {
      {0, "abc", "abc", "", "'abc'"},
      {0, 12.5, "12,5", "12,5", "'12,5'"},
      {0, "d'água", "d'água", "", "'d' + CHAR(39) + 'água'"},
      {1, *base::MakeDate({2017, 12, 31, 0, 0, 0}), "31-12-2017", "", "'31-12-2017'"},
      {2, -1234.5, "- 1.234,50", "-1234,5", "-1234.5"},
      {3, 12, "12", "", "'12'"},
      {4, -1234.5, "€ -1.234,50", "-1234,5", "-1234.5"},
      {4, base::Currency{81301}, "€ 8,13", "8,1301", "8.1301"},
      {5, 0.23, "23,00 %", "0,23", "0.23"},
      {6, 12.5, "12", "12,5", "12.5"},
      {7, 1.23456, "€ 1,235", "1,23456", "1.23456"},
      {8, -1.5, "- 1,500", "-1,5", "-1.5"},
      {9, *base::MakeDate({2017, 12, 31, 14, 5, 9}), "31-12-2017 14:05:09", "", "'31-12-2017 14:05:09'"},
      {10, 1.23456, "€ 1,2346", "1,23456", "1.23456"},
      // Out of a column of texts: the number goes back as SQL writes it.
      {2, "1'234", "1.234,00", "1'234", "1234"},
      {4, "(12)", "€ -12,00", "(12)", "-12"},
      {4, "12-", "€ -12,00", "12-", "-12"},
      {2, "€ 5", "5,00", "€ 5", "5"},
      {4, "1.234", "€ 1.234,00", "1.234", "1234"},
      {4, Value::Null(), "", "", "null"},
      {0, Value::Null(), "", "", "null"},
  };
  for (const ShowCase& c : cases) {
    TextField field("FX");
    field.set_text("antes");
    if (c.value.is_null()) field.set_tag("1");
    controls::SetFieldValue(field, c.value, c.code, Points());
    EXPECT_EQ(field.text(), c.text) << c.code;
    EXPECT_EQ(field.tag(), c.tag) << c.code;
    EXPECT_EQ(controls::GetFieldValue(field, c.code, Points()), c.sql) << c.code;
  }
  TextField field("FX");
  controls::SetFieldValue(field, "12.5", 4, PortugueseLocale());
  EXPECT_EQ(controls::GetFieldValue(field, 4, PortugueseLocale()), "12.5") << "a point, where the user writes a comma";
  field.set_text("antes");
  controls::SetFieldValue(field, 1, 11, Points());
  EXPECT_EQ(field.text(), "antes") << "an unknown code changes nothing";
}

TEST(OtherFieldValues, ShowNullAsNothing) {
  controls::DatePicker picker("FXData");
  controls::SetFieldValue(picker, *base::MakeDate({2017, 12, 31, 14, 5, 9}), 0, Points());
  EXPECT_EQ(controls::GetFieldValue(picker, 1, Points()), "CONVERT(DATETIME,'2017-12-31',102)");
  controls::SetFieldValue(picker, Value::Null(), 0, Points());
  EXPECT_EQ(picker.Describe(), "01-01-1900");
  EXPECT_EQ(controls::GetFieldValue(picker, 1, Points()), "null");

  controls::CheckBox box("FXDescontinuado", "");
  for (const auto& [value, sql] : std::initializer_list<std::pair<Value, const char*>>{
           {true, "1"}, {7, "1"}, {Value::Null(), "0"}, {"x", "0"}, {0, "0"}}) {
    controls::SetFieldValue(box, value, 0, Points());
    EXPECT_EQ(controls::GetFieldValue(box, 0, Points()), sql);
  }

  controls::MaskEdit mask("FXHora", "##-##-####", "dd-mm-yyyy");
  controls::SetFieldValue(mask, *base::MakeDate({2017, 12, 31, 0, 0, 0}), 0, Points());
  EXPECT_EQ(mask.text(), "31-12-2017");
  EXPECT_EQ(controls::GetFieldValue(mask, 0, Points()), "CONVERT(DATETIME,'2017-12-31',102)");
  // Another user's order: what was shown and not touched is the same date still, what he types is read in his order.
  EXPECT_EQ(controls::GetFieldValue(mask, 0, EnglishLocale()), "CONVERT(DATETIME,'2017-12-31',102)");
  for (const auto& [typed, day_first, month_first] : std::initializer_list<std::array<std::string, 3>>{
           {"03-04-2017", "CONVERT(DATETIME,'2017-04-03',102)", "CONVERT(DATETIME,'2017-03-04',102)"},
           {"31-12-2017", "CONVERT(DATETIME,'2017-12-31',102)", "null"},
           {"31-02-2017", "null", "null"}}) {
    mask.Typed(typed);
    EXPECT_EQ(controls::GetFieldValue(mask, 0, Points()), day_first);
    EXPECT_EQ(controls::GetFieldValue(mask, 0, EnglishLocale()), month_first);
    EXPECT_EQ(controls::FieldLostFocus(mask, 1, Points()), day_first != "null") << typed;
  }
  EXPECT_STREQ(controls::RefusalOf(mask), "O valor que introduziu não é uma data válida.");
  controls::SetFieldValue(mask, Value::Null(), 0, Points());
  EXPECT_EQ(mask.text(), "__-__-____");
  EXPECT_TRUE(controls::FieldLostFocus(mask, 1, Points()));
  EXPECT_EQ(controls::GetFieldValue(mask, 0, Points()), "null");

  controls::Label label("FXSaldo", "");
  controls::SetFieldValue(label, -1.2345, 4, Points());
  EXPECT_EQ(label.caption(), "€ -1,235") << "labels show three decimals of negative amounts";
}

struct EntryCase {
  int code;
  const char* tag;
  const char* shown_on_entry;
  const char* typed;
  const char* tag_after;
  const char* text_after;
};

TEST(FieldEntry, ANumericFieldSwitchesBetweenItsRawValueAndItsDisplay) {
  const EntryCase cases[] = {
      {2, "1234,5", "1234,5", "12.5", "12,5", "12,50"},
      {2, "5", "5", "-1234,5", "-1234,5", "-1.234,50"},
      {4, "1234,5", "1234,5", "1.234,50", "1234,5", "€ 1.234,50"},
      {4, "1", "1", "1,234.50", "1234,5", "€ 1.234,50"},
      {4, "1", "1", "€ 12,00", "12", "€ 12,00"},
      {4, "1", "1", "12-", "-12", "€ -12,00"},
      {4, "1", "1", "abc", "0", "€ 0,00"},
      {4, "1", "1", "1.234.567", "1234567", "€ 1.234.567,00"},
      {4, "1", "1", "5 %", "0", "€ 0,00"},
      {5, "0,23", "23", "5%5", "0", "0,00 %"},
      {5, "0,23", "23", "6", "0,06", "6,00 %"},
      {5, "0,23", "23", "13,5 %", "0,135", "13,50 %"},
      {6, "12,5", "12", "7,5", "8", "8"},
      {7, "1,23456", "1,235", "2,3456", "2,3456", "€ 2,346"},
      {8, "1,2345", "1,234", "-2,5", "-2,5", "-2,500"},
      {10, "1,23456", "1,2346", "2,34567", "2,34567", "€ 2,346"},
      {4, "", "", "7", "7", "€ 7,00"},
  };
  for (const EntryCase& c : cases) {
    SCOPED_TRACE(std::string(c.typed) + " with code " + std::to_string(c.code));
    TextField field("FX");
    field.set_tag(c.tag);
    field.set_text("display");
    controls::FieldGotFocus(field, c.code, Points());
    EXPECT_EQ(field.text(), c.shown_on_entry);
    EXPECT_EQ(field.selection().length, field.text().size()) << "all selected";
    field.Typed(c.typed);
    EXPECT_TRUE(controls::FieldLostFocus(field, c.code, Points()));
    EXPECT_EQ(field.tag(), c.tag_after);
    EXPECT_EQ(field.text(), c.text_after);
  }
}

TEST(FieldEntry, WhatIsNoNumberIsShownAsItStands) {
  for (const auto& [code, raw] :
       std::initializer_list<std::pair<int, const char*>>{{2, "abc"}, {5, "abc"}, {6, "9999999999"}, {10, "abc"}}) {
    TextField field("FX");
    field.set_tag(raw);
    EXPECT_NO_THROW(controls::FieldGotFocus(field, code, Points())) << code;
    EXPECT_EQ(field.text(), raw) << code;
  }
}

TEST(FieldEntry, ANumberBeyondTheColumnIsRefusedAndNothingShowsInf) {
  const std::string nines(400, '9');
  const struct {
    int code;
    const char* typed;
    bool taken;
  } cases[] = {{4, "1E400", false},      {4, nines.c_str(), false}, {2, "1E99999", false}, {7, "-1E39", false},
               {6, "2147483648", false}, {5, "1E39", false},        {10, "1E308", true},   {2, "-1E38", true}};
  for (const auto& [code, typed, taken] : cases) {
    TextField field("FX");
    controls::SetFieldValue(field, 7, code, EnglishLocale());
    field.Typed(typed);
    EXPECT_EQ(controls::FieldLostFocus(field, code, EnglishLocale()), taken) << typed;
    EXPECT_EQ(field.tag() == "7", !taken) << field.tag();
    EXPECT_TRUE(taken || field.text() != typed);
    controls::FieldGotFocus(field, code, EnglishLocale());
    EXPECT_EQ(field.text().find("inf"), std::string::npos) << typed;
  }
}

}  // namespace
}  // namespace quenta::tests
