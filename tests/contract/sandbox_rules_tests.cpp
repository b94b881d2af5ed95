// The rules of the server that the sandbox plays by itself: order of text, patterns, conversions, connection strings.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "base/error.h"
#include "sandbox/odbc/connection_string.h"
#include "sandbox/odbc/conversion.h"
#include "sandbox/odbc/password_hash.h"
#include "sandbox/odbc/server_error.h"
#include "sandbox/odbc/text_comparison.h"

namespace quenta::sandbox {
namespace {

int Sign(int number) {
  return number < 0 ? -1 : number > 0 ? 1 : 0;
}

TEST(TextComparison, IsAnOrder) {
  const std::vector<std::string> words{"",   " ", "a", "A ",    "á",    "Á",     "à",    "ab",       "ç",   "c",
                                       "Cz", "Ç", "d", "10",    "9",    "!",     "\xC3", "\xF0\x9F", "ž",   "Ω",
                                       "ω",  "ñ", "n", "co-op", "coop", "ab  c", "abc ", "ação",     "acao"};
  for (const std::string& a : words)
    for (const std::string& b : words) {
      EXPECT_EQ(Sign(CompareText(a, b)), -Sign(CompareText(b, a))) << a << " and " << b;
      for (const std::string& c : words) {
        if (CompareText(a, b) <= 0 && CompareText(b, c) <= 0) {
          EXPECT_LE(CompareText(a, c), 0) << a << ", " << b << ", " << c;
        }
      }
    }
}

TEST(TextComparison, FoldsEveryAccentedLetterButKeepsItsAccent) {
  const std::string upper = "ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖØÙÚÛÜÝÞĀĂĄĆĈĊČĎŁŃŇŌŒŘŚŠŤŪŮŹŻŽŸ";
  const std::string lower = "àáâãäåæçèéêëìíîïðñòóôõöøùúûüýþāăąćĉċčďłńňōœřśšťūůźżžÿ";
  ASSERT_EQ(upper.size(), lower.size());
  for (std::size_t at = 0; at < upper.size(); at += 2) {
    EXPECT_EQ(CompareText(upper.substr(at, 2), lower.substr(at, 2)), 0) << upper.substr(at, 2);
    for (const char plain : std::string("abcdefghijklmnopqrstuvwxyz"))
      EXPECT_NE(CompareText(lower.substr(at, 2), std::string(1, plain)), 0) << lower.substr(at, 2);
  }
  EXPECT_NE(CompareText("×", "÷"), 0);
}

TEST(TextComparison, PatternsEndHoweverManyPercentSignsTheyHave) {
  EXPECT_FALSE(MatchesPattern(std::string(2000, 'a'), "%a%a%a%a%a%a%a%a%a%a%a%a%b", std::nullopt));
  EXPECT_TRUE(MatchesPattern(std::string(2000, 'a') + "b", "%a%a%a%a%a%a%b", std::nullopt));
  EXPECT_FALSE(MatchesPattern("a", "[a", std::nullopt)) << "an open class matches nothing";
  EXPECT_FALSE(MatchesPattern("abc", "abc ", std::nullopt)) << "the pattern's blanks count";
  EXPECT_TRUE(MatchesPattern("abc  ", "abc", std::nullopt)) << "the text's do not";
}

TEST(Conversion, RoundsDecimalsHalfAwayFromZero) {
  struct Case {
    const char* number;
    int scale;
    const char* expected;
  };
  for (const Case& c :
       {Case{"2.345", 2, "2.35"}, Case{"-2.345", 2, "-2.35"}, Case{"2.344", 2, "2.34"}, Case{"9.995", 2, "10.00"},
        Case{"999.5", 0, "1000"}, Case{"-0.4", 0, "0"}, Case{"0.5", 0, "1"}, Case{"0.05", 0, "0"},
        Case{"7", 3, "7.000"}, Case{".5", 1, "0.5"}, Case{"5.", 1, "5.0"}, Case{"1e3", 2, "1000.00"},
        Case{"1.5E-3", 3, "0.002"}, Case{"1e-20", 4, "0.0000"}, Case{"+00012.30", 1, "12.3"}, Case{"0", 0, "0"}})
    EXPECT_EQ(RoundDecimal(c.number, c.scale), c.expected) << c.number << " to " << c.scale;
}

TEST(Conversion, ADoubleSurvivesItsText) {
  std::uint64_t state = 42;
  for (int i = 0; i < 2000; ++i) {
    state = state * 6364136223846793005u + 1442695040888963407u;
    const double number =
        static_cast<double>(static_cast<std::int64_t>(state)) / static_cast<double>((state >> 40) + 1);
    EXPECT_EQ(std::get<double>(ConvertCell(DoubleText(number), TypeOf(SqlKind::kVarChar), TypeOf(SqlKind::kFloat),
                                           Conversion::kAssign)),
              number);
  }
}

std::string DateOf(const char* text, int style) {
  return std::get<std::string>(ConvertCell(std::string(text), TypeOf(SqlKind::kVarChar), TypeOf(SqlKind::kDateTime),
                                           Conversion::kConvert, style));
}

TEST(Conversion, ReadsDatesInTheirStyle) {
  struct Case {
    const char* text;
    int style;
    const char* expected;
  };
  for (const Case& c :
       {Case{"2017-12-31", 102, "2017-12-31 00:00:00.000"}, Case{"2017.12.31 14:05:09", 102, "2017-12-31 14:05:09.000"},
        Case{"2016-02-29", 102, "2016-02-29 00:00:00.000"}, Case{"31-12-2017", 105, "2017-12-31 00:00:00.000"},
        Case{"12/31/2017", 101, "2017-12-31 00:00:00.000"}, Case{"20171231", 0, "2017-12-31 00:00:00.000"},
        Case{"2017-12-31T23:59:59.998", 126, "2017-12-31 23:59:59.997"},
        Case{"2017-12-31 23:59:59.999", 121, "2018-01-01 00:00:00.000"},
        Case{"2017-12-31 10:00:00.5", 121, "2017-12-31 10:00:00.500"},
        Case{"1753-01-01", 102, "1753-01-01 00:00:00.000"}, Case{"9999-12-31", 102, "9999-12-31 00:00:00.000"},
        Case{"", 0, "1900-01-01 00:00:00.000"}})
    EXPECT_EQ(DateOf(c.text, c.style), c.expected) << c.text;
  struct Refusal {
    const char* text;
    int number;
  };
  for (const Refusal& c :
       {Refusal{"2017-02-29", message::kDateRange}, Refusal{"2017-13-01", message::kDateRange},
        Refusal{"1752-12-31", message::kDateRange}, Refusal{"2017-12-31 24:00:00", message::kDateRange},
        Refusal{"abc", message::kDateSyntax}, Refusal{"2017-12", message::kDateSyntax},
        Refusal{"2017-12-31x", message::kDateSyntax}, Refusal{"31-12-2017", message::kDateSyntax},
        Refusal{"2017-12-31 1", message::kDateSyntax}}) {
    try {
      ADD_FAILURE() << c.text << " became " << DateOf(c.text, 102);
    } catch (const ServerError& error) {
      EXPECT_EQ(error.number(), c.number) << c.text;
    }
  }
}

TEST(Conversion, EveryDayOfFourCenturiesComesAndGoes) {
  std::string date = "1799-12-31 00:00:00.000";
  for (int day = 0; day < 146097; ++day) date = AddToDate("day", 1, date);
  EXPECT_EQ(date, "2199-12-31 00:00:00.000");
  EXPECT_EQ(AddToDate("month", 1, "2020-01-31 08:00:00.000"), "2020-02-29 08:00:00.000");
  EXPECT_EQ(AddToDate("yy", -1, "2020-02-29 08:00:00.000"), "2019-02-28 08:00:00.000");
  EXPECT_EQ(AddToDate("hour", -9, "2020-03-01 08:00:00.000"), "2020-02-29 23:00:00.000");
  EXPECT_THROW(AddToDate("day", 3000000, date), ServerError);
}

TEST(ConnectionString, FollowsTheRulesOfOleDb) {
  const ConnectionString text(
      "Provider=SQLOLEDB.1;;User ID = ana ;PASSWORD=\"a;b\"\"c'd\" ;Data  Source=x; Initial Catalog='it''s';a==b=c;"
      "data source=Last;Empty=;");
  struct Case {
    const char* keyword;
    const char* value;
  };
  for (const Case& c : {Case{"provider", "SQLOLEDB.1"}, Case{"User ID", "ana"}, Case{"Password", "a;b\"c'd"},
                        Case{"Initial Catalog", "it's"}, Case{"A=B", "c"}, Case{"Data Source", "Last"},
                        Case{"Empty", ""}, Case{"Missing", ""}})
    EXPECT_EQ(text.Get(c.keyword), c.value) << c.keyword;
  EXPECT_EQ(ConnectionString("uid=u;PWD=p;server=s;database=d").Get("Data Source"), "s");

  ConnectionString again(text.Text());
  EXPECT_EQ(again.Get("Password"), "a;b\"c'd");
  again.Remove("password");
  EXPECT_EQ(again.Text().find("a;b"), std::string::npos);
  EXPECT_EQ(again.Get("a=b"), "c");
  for (const char* wrong : {"Provider", "a=b;c", "x=\"open", "x='a'b", "=x"})
    EXPECT_THROW(ConnectionString{wrong}, base::Error) << wrong;
}

TEST(PasswordHash, AgreesWithThePublishedVectors) {
  const auto hexadecimal = [](const Sha256Digest& digest) {
    std::string text;
    for (const std::uint8_t byte : digest) {
      text += "0123456789abcdef"[byte >> 4];
      text += "0123456789abcdef"[byte & 15];
    }
    return text;
  };
  EXPECT_EQ(hexadecimal(Sha256("abc")), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(hexadecimal(Sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq")),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(HashPassword("password", "salt", 1), "120fb6cffcf8b32c43e7225256c4f837a86548c92ccc35480805987cb70be17b");
  EXPECT_EQ(HashPassword("password", "salt", 2), "ae4d0c95af6b46d32d0adff928f06dd02a303f8ef3c251dfd6e2d85a95474c43");
  EXPECT_NE(MakeSalt(), MakeSalt());
}

}  // namespace
}  // namespace quenta::sandbox
