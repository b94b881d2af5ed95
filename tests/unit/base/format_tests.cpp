#include "base/format.h"

#include "base/date.h"
#include "gtest/gtest.h"
#include "support/locales.h"

namespace quenta::base {
namespace {

using tests::EnglishLocale;
using tests::PortugueseLocale;

constexpr const char* kEuro = "\xE2\x82\xAC #,##0.00;\xE2\x82\xAC -#,##0.00";

TEST(Format, ShowsNumbersByTheSuitesPatterns) {
  struct Case {
    Value value;
    const char* pattern;
    const char* expected;  // "_" stands for the no-break space between thousands
  };
  const Case cases[] = {
      {1234.5, "#,##0.00;- #,##0.00", "1_234,50"},
      {-1234.5, "#,##0.00;- #,##0.00", "- 1_234,50"},
      {1234567.891, "#,##0.00", "1_234_567,89"},
      {-12, "#,##0.00", "-12,00"},
      {1234.5, kEuro, "\xE2\x82\xAC 1_234,50"},
      {-1234.5, kEuro, "\xE2\x82\xAC -1_234,50"},
      {-1.2345, "\xE2\x82\xAC #,##0.00;\xE2\x82\xAC -#,##0.000", "\xE2\x82\xAC -1,235"},
      {-0.001, kEuro, "\xE2\x82\xAC 0,00"},
      {0.23, "0.00 %", "23,00 %"},
      {-0.05, "0.00 %", "-5,00 %"},
      {0, "#,##0.00", "0,00"},
      {1.005, "0.00", "1,01"},  // as its decimal digits read, not as its binary value
      {2.5, "0", "3"},
      {-2.5, "0", "-3"},
      {0.125F, "0.00", "0,13"},
      {99999.995, "#,##0.00", "100_000,00"},
      {0.5, "#,##0", "1"},
      {0.4, "#,##0", "0"},
      {0.001, "0.00", "0,00"},
      {1e20, "#,##0", "100_000_000_000_000_000_000"},
      {1e-10, "0.00", "0,00"},
      {Currency{81301}, "0.00", "8,13"},
      {Decimal{12345678, 0, 0, 5, true}, "0.000", "-123,457"},
      {"8,13008", "0.00", "8,13"},
      {"abc", "0.00", "abc"},
      {Value::Null(), "0.00", ""},
      {Value(), "0.00", ""},
      {true, "0", "-1"},
  };
  Locale locale = PortugueseLocale();
  locale.thousands = "_";
  for (const Case& c : cases) EXPECT_EQ(Format(c.value, c.pattern, locale), c.expected) << c.pattern;
  EXPECT_EQ(Format(1234.5, "#,##0.00", EnglishLocale()), "1,234.50");
}

TEST(Format, ShowsDatesByTheSuitesPatterns) {
  const Date moment = *MakeDate({2017, 3, 1, 4, 5, 9});
  const std::pair<const char*, const char*> cases[] = {
      {"dd-mm-yyyy", "01-03-2017"},   {"dd-mm-yyyy Hh:Nn:Ss", "01-03-2017 04:05:09"},
      {"yyyy-mm-dd", "2017-03-01"},   {"yyyy-mm-dd Hh:Nn:Ss", "2017-03-01 04:05:09"},
      {"dd mmmm", "01 mar\xC3\xA7o"}, {"yyyy", "2017"},
  };
  for (const auto& [pattern, expected] : cases) EXPECT_EQ(Format(moment, pattern, PortugueseLocale()), expected);
  EXPECT_EQ(Format("01-01-2026", "yyyy-mm-dd", PortugueseLocale()), "2026-01-01");
  EXPECT_EQ(Format("amanh\xC3\xA3", "yyyy-mm-dd", PortugueseLocale()), "amanh\xC3\xA3");
}

}  // namespace
}  // namespace quenta::base
