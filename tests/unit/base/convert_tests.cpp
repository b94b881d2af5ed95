#include "base/convert.h"

#include <cmath>
#include <cstdio>
#include <random>

#include "base/date.h"
#include "base/error.h"
#include "gtest/gtest.h"
#include "support/locales.h"

namespace quenta::base {
namespace {

using tests::EnglishLocale;
using tests::PortugueseLocale;

struct NumberCase {
  const char* text;
  std::optional<double> in_portuguese;
  std::optional<double> in_english;
};

TEST(ParseNumber, TakesWhatAUserTypesAndWhatAFieldShows) {
  const NumberCase cases[] = {
      {"12", 12, 12},
      {" 12 ", 12, 12},
      {"12,5", 12.5, std::nullopt},
      {"12.5", std::nullopt, 12.5},
      {"1.234,50", 1234.5, std::nullopt},
      {"1,234.50", std::nullopt, 1234.5},
      {"1.234", 1234, 1.234},
      {"1.23.456", std::nullopt, std::nullopt},
      {"1\xC2\xA0"
       "234,5",
       1234.5, std::nullopt},
      {"1\xE2\x80\xAF"
       "234",
       1234, 1234},
      {"1 234 567", 1234567, 1234567},
      {"1 23", std::nullopt, std::nullopt},
      {"1'234", 1234, 1234},
      {"\xE2\x82\xAC 8,13", 8.13, std::nullopt},
      {"\xE2\x82\xAC -8,13", -8.13, std::nullopt},
      {"8,13 \xE2\x82\xAC", 8.13, std::nullopt},
      {"- 12", -12, -12},
      {"12-", -12, -12},
      {"(12)", -12, -12},
      {"--12", std::nullopt, std::nullopt},
      {"(-12)", std::nullopt, std::nullopt},
      {",5", 0.5, std::nullopt},
      {"5,", 5, std::nullopt},
      {"1E+15", 1e15, 1e15},
      {"1E999", std::nullopt, std::nullopt},
      {"1E-999", 0, 0},
      {"", std::nullopt, std::nullopt},
      {"-", std::nullopt, std::nullopt},
      {",", std::nullopt, std::nullopt},
      {"abc", std::nullopt, std::nullopt},
      {"12a", std::nullopt, std::nullopt},
      {"31-12-2017", std::nullopt, std::nullopt},
  };
  for (const NumberCase& c : cases) {
    EXPECT_EQ(ParseNumber(c.text, PortugueseLocale()), c.in_portuguese) << c.text;
    EXPECT_EQ(ParseNumber(c.text, EnglishLocale()), c.in_english) << c.text;
  }
}

TEST(ToLong, RoundsToTheEvenNeighbourAndRefusesWhatDoesNotFit) {
  const std::pair<Value, std::int32_t> cases[] = {
      {0.5, 0},
      {1.5, 2},
      {2.5, 2},
      {-0.5, 0},
      {-1.5, -2},
      {2147483647.0, 2147483647},
      {true, -1},
      {Value(), 0},
      {"42,5", 42},
      {" 7 ", 7},
      {Currency{25000}, 2},
      {-2147483648.0, INT32_MIN},
      {0.49999999999999994, 0},
  };
  for (const auto& [value, expected] : cases) EXPECT_EQ(ToLong(value, PortugueseLocale()), expected);

  const std::pair<Value, std::int32_t> refused[] = {
      {2147483647.5, error_number::kOverflow},     {-2147483649.0, error_number::kOverflow},
      {std::nan(""), error_number::kOverflow},     {"99999999999", error_number::kOverflow},
      {"abc", error_number::kTypeMismatch},        {"", error_number::kTypeMismatch},
      {Value::Null(), error_number::kInvalidNull},
  };
  for (const auto& [value, number] : refused) {
    try {
      ToLong(value, PortugueseLocale());
      ADD_FAILURE() << "expected error " << number;
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), number);
    }
  }
}

TEST(ToText, WritesNumbersAsTheUserReadsThem) {
  const std::pair<Value, const char*> cases[] = {
      {1234.5, "1234,5"},
      {0.1F, "0,1"},
      {16777216.0F, "1,677722E+07"},
      {1e15, "1E+15"},
      {123456789012345.0, "123456789012345"},
      {-0.0, "0"},
      {Currency{-125000}, "-12,5"},
      {Currency{INT64_MIN}, "-922337203685477,5808"},
      {Decimal{12345, 0, 0, 2, false}, "123,45"},
      {Decimal{5, 0, 0, 3, true}, "-0,005"},
      {Decimal{0, 0, 0, 2, true}, "0"},
      {Decimal{0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0, false}, "79228162514264337593543950335"},
      {true, "True"},
      {Value(), ""},
      {*MakeDate({2017, 12, 31, 0, 0, 0}), "31-12-2017"},
      {*MakeDate({2017, 12, 31, 14, 5, 9}), "31-12-2017 14:05:09"},
  };
  for (const auto& [value, expected] : cases) EXPECT_EQ(ToText(value, PortugueseLocale()), expected);
}

TEST(ParseDate, FollowsTheLocaleOrderAndRefusesDaysThatDoNotExist) {
  const Date christmas = *MakeDate({2017, 12, 25, 0, 0, 0});
  for (const char* text : {"25-12-2017", "25/12/2017", "25.12.2017", "2017-12-25", "25-12-17"}) {
    EXPECT_EQ(ParseDate(text, PortugueseLocale()), christmas) << text;
  }
  EXPECT_EQ(ParseDate("12/25/2017", EnglishLocale()), christmas);
  EXPECT_EQ(ParseDate("25-12-2017 14:05:09", PortugueseLocale()), MakeDate({2017, 12, 25, 14, 5, 9}));
  for (const char* text :
       {"31-02-2017", "29-02-2017", "00-01-2017", "25-12/2017", "25-12", "12345", "", "abc", "1-1-1-1"}) {
    EXPECT_EQ(ParseDate(text, PortugueseLocale()), std::nullopt) << text;
  }
  EXPECT_TRUE(ParseDate("29-02-2016", PortugueseLocale()));
}

TEST(Calendar, CountsForwardFromMidnightBeforeTheZeroDate) {
  const Date six_in_the_morning = *MakeDate({1899, 12, 29, 6, 0, 0});
  EXPECT_EQ(six_in_the_morning.days, -1.25);
  EXPECT_EQ(ToCalendar(six_in_the_morning), (CalendarTime{1899, 12, 29, 6, 0, 0}));
  EXPECT_EQ(ToCalendar(Date{43099.9999999}), (CalendarTime{2017, 12, 31, 0, 0, 0}));
  EXPECT_THROW(ToCalendar(Date{1e9}), Error);
}

// Amounts with few decimals are written by another way than the rest; both give what the C library gives.
TEST(NumberText, IsTheShortestTextOfFifteenDigitsForNumbersOfEveryKind) {
  std::minstd_rand random;
  std::uniform_real_distribution<double> exponent(-9, 17);
  for (int i = 0; i < 50000; ++i) {
    const double any = std::pow(10, exponent(random)) * (i % 2 == 0 ? 1 : -1);
    for (const double number : {any, std::round(any), std::round(any * 100) / 100, std::round(any * 100000) / 100000}) {
      char text[40];
      std::snprintf(text, sizeof text, "%.15g", number == 0 ? 0 : number);
      std::string expected = text;
      if (const std::size_t mark = expected.find('e'); mark != std::string::npos) expected[mark] = 'E';
      ASSERT_EQ(NumberText(number), expected);
    }
  }
}

}  // namespace
}  // namespace quenta::base
