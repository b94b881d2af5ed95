#include "component/session/session.h"

#include <new>
#include <stdexcept>

#include "component/session/connection_string.h"
#include "component/session/guarded.h"
#include "component/session/scrambler.h"
#include "gtest/gtest.h"
#include "support/fake_ports.h"

namespace quenta::tests {
namespace {

using session::DescriptionStyle;
using session::Labels;

TEST(Scrambler, IsReversibleForEveryTextAndReadsNothingElse) {
  std::string every_byte;
  for (int byte = 0; byte < 256; ++byte) every_byte += static_cast<char>(byte);
  for (const std::string& text : {std::string(), std::string("senha"), std::string("Ação € \xF0\x9F\x8D\xB7"),
                                  every_byte, std::string(100000, 'x'), std::string("\xED\xA0\x80")}) {
    EXPECT_EQ(session::Unscramble(session::Scramble(text)), text);
  }
  EXPECT_EQ(session::Scramble("senha"), session::Scramble("senha"));
  EXPECT_EQ(session::Scramble("senha").find("senha"), std::string::npos);
  for (const char* other : {"A", "XY", "senha", "0G"}) EXPECT_EQ(session::Unscramble(other), "") << other;
}

TEST(ConnectionString, OnlyValuesThatCouldAddAKeywordAreQuoted) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"sql1\\suite", "sql1\\suite"},
      {"a=b", "a=b"},
      {"a;Password=x", "\"a;Password=x\""},
      {" a", "\" a\""},
      {"a ", "\"a \""},
      {"it's", "\"it's\""},
      {"a\"b", "'a\"b'"},
      {"a\"b'c", "\"a\"\"b'c\""},
  };
  for (const auto& [value, quoted] : cases) EXPECT_EQ(session::QuoteConnectionValue(value), quoted);
}

TEST(Guarded, ReportsByTheConventionAndEndsWithTheDefaultResult) {
  constexpr Labels kModule{"P", "J", "M", DescriptionStyle::kNumbered};
  constexpr Labels kForm{"P", "J", "M", DescriptionStyle::kAlone};
  FakeErrorReporting reporting;
  const auto raise = [](int number) { return [number]() -> int { throw base::Error(number, "falhou"); }; };

  EXPECT_EQ(session::Guarded(reporting, kModule, "p", raise(0)), 0);
  EXPECT_EQ(session::Guarded(reporting, kModule, "p", raise(3709)), 0);
  EXPECT_TRUE(reporting.reports.empty()) << "0 and 3709 are silent";

  EXPECT_EQ(session::Guarded(reporting, kModule, "p", raise(13)), 0);
  EXPECT_EQ(session::Guarded(reporting, kForm, "q", raise(-2147217900)), 0);
  session::Guarded(reporting, kForm, "q", []() -> bool { throw std::bad_alloc(); });
  session::Guarded(reporting, kForm, "q", [] { throw std::out_of_range("índice"); });
  session::Guarded(reporting, kForm, "q", [] { throw 5; });
  ASSERT_EQ(reporting.reports.size(), 5U);
  EXPECT_EQ(reporting.reports[0], (ports::ErrorReport{"P", "J", "M", "p", "Error Number = 13 | Description = falhou"}));
  EXPECT_EQ(reporting.reports[1], (ports::ErrorReport{"P", "J", "M", "q", "falhou"}));
  EXPECT_EQ(reporting.reports[2].description, "Out of memory");
  EXPECT_EQ(reporting.reports[3].description, "índice");
  EXPECT_EQ(reporting.reports[4].description, "Unknown error");
  EXPECT_EQ(session::Guarded(reporting, kForm, "q", [] { return 5; }), 5);
}

}  // namespace
}  // namespace quenta::tests
