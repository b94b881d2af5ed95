#include "product/csv.h"

#include "gtest/gtest.h"
#include "support/locales.h"

namespace quenta::tests {
namespace {

using controls::SortAs;

// One row of a list with a column of each kind, as the file has it.
std::string LineOf(const std::string& text, const std::string& number, const base::Locale& locale) {
  controls::ListView list("Lista", {{"Texto"}, {"Valor", 100, true, SortAs::kNumber}});
  list.Add("#1", text).sub_items = {number, "não se vê"};
  const std::string csv = product::CsvOf(list, locale);
  const std::string head = "\xEF\xBB\xBFTexto;Valor\r\n";
  EXPECT_EQ(csv.substr(0, head.size()), head);
  return csv.substr(head.size());
}

TEST(Csv, CellsAreQuotedWhereTheyMustBeAndNumbersArePlain) {
  const struct {
    const char* text;
    const char* number;
    base::Locale locale;
    const char* line;
  } cases[] = {
      {"Azeite", "10,50", PortugueseLocale(), "Azeite;10,5\r\n"},
      {"Ação; \"nova\"", " ", PortugueseLocale(), "\"Ação; \"\"nova\"\"\";\r\n"},
      {"a\r\nb", "€ 1\u00A0234,56", PortugueseLocale(), "\"a\r\nb\";1234,56\r\n"},
      {" b ", "€ -8,13", PortugueseLocale(), "\" b \";-8,13\r\n"},
      {" ", "- 1\u00A0000,25", PortugueseLocale(), ";-1000,25\r\n"},
      {"x", "1,234.50", EnglishLocale(), "x;1234.5\r\n"},
      {"x", "12 un.", PortugueseLocale(), "x;12 un.\r\n"},
  };
  for (const auto& c : cases) EXPECT_EQ(LineOf(c.text, c.number, c.locale), c.line);
}

TEST(Csv, NumbersAndDatesStandThereWhole) {
  using base::Value;
  base::Locale two_digits = PortugueseLocale();
  two_digits.short_date = "dd/mm/yy";
  const struct {
    SortAs kind;
    Value value;
    base::Locale locale;
    const char* written;
  } cases[] = {
      {SortAs::kNumber, base::Currency{-81349}, PortugueseLocale(), "-8,1349"},
      {SortAs::kNumber, 0.123456789, EnglishLocale(), "0.123456789"},
      {SortAs::kNumber, "2,125", PortugueseLocale(), "2,125"},
      {SortAs::kNumber, Value::Null(), PortugueseLocale(), "9"},
      {SortAs::kDate, base::Date{46082}, PortugueseLocale(), "01-03-2026"},
      {SortAs::kDate, base::Date{46082.5}, EnglishLocale(), "3/1/2026 12:00:00"},
      {SortAs::kDate, base::Date{46082.75}, two_digits, "01/03/2026 18:00:00"},
      {SortAs::kDate, Value::Null(), PortugueseLocale(), "9"},
  };
  for (const auto& c : cases) {
    controls::ListView list("Lista", {{"A", 100, false, c.kind}});
    list.Add("#1", "9").values = {c.value};
    EXPECT_EQ(product::CsvOf(list, c.locale),
              "\xEF\xBB\xBF"
              "A\r\n" +
                  std::string(c.written) + "\r\n");
  }
}

TEST(Csv, WhatASpreadsheetWouldRunIsMadeHarmless) {
  const std::pair<const char*, const char*> cases[] = {
      {"=HYPERLINK(\"http://x\";\"y\")", "\"'=HYPERLINK(\"\"http://x\"\";\"\"y\"\")\""},
      {"+1-800", "\"'+1-800\""},
      {"+351", "\"'+351\""},
      {"@SUM(A1)", "\"'@SUM(A1)\""},
      {"-2+3", "\"'-2+3\""},
      {"-cmd|' /C calc'!A0", "\"'-cmd|' /C calc'!A0\""},
      {"\t=1", "\"'\t=1\""},
      {"\r=1", "\"'\r=1\""},
      {"  =1", "\"'  =1\""},
      {"-5", "-5"},
      {"-1\u00A0234,50", "-1\u00A0234,50"},
      {"2=1", "2=1"},
      {"a@b.pt", "a@b.pt"},
  };
  for (const auto& [cell, written] : cases) {
    EXPECT_EQ(LineOf(cell, "", PortugueseLocale()), std::string(written) + ";\r\n");
  }
  EXPECT_EQ(LineOf("", "=1", PortugueseLocale()), ";\"'=1\"\r\n") << "what is no number in a column of numbers";
}

TEST(Csv, AFileNameHasNoCharacterThatWindowsRefuses) {
  EXPECT_EQ(product::FileNameOf("VN/001 <a:b>\\\"|?*\n Açúcar.1"), "VN_001 _a_b_______ Açúcar.1");
}

}  // namespace
}  // namespace quenta::tests
