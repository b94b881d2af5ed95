#include "data/sql_field.h"

#include <memory>
#include <utility>
#include <vector>

#include "base/date.h"
#include "base/text.h"
#include "data/control_fill.h"
#include "data/shared_queries.h"
#include "gtest/gtest.h"
#include "support/fake_ports.h"

namespace quenta::tests {
namespace {

using base::Value;
using data::ListKind;
using data::SQLKind;

class SQLFieldTest : public ::testing::Test {
 protected:
  FakeDatabase database;
  FakeSettings settings;
  FakeDesktop desktop;
  FakeErrorReporting reporting;
  session::Session session{{database, settings, desktop, reporting}};
};

TEST_F(SQLFieldTest, BuildsTheLiteralOfEachKind) {
  struct Case {
    SQLKind kind;
    Value value;
    const char* literal;
  };
  const base::Date moment = *base::MakeDate({2017, 12, 31, 14, 5, 9});
  const Case cases[] = {
      {SQLKind::kText, "  ", "null"},
      {SQLKind::kText, Value::Null(), "null"},
      {SQLKind::kText, " Vinha d'Alho ", "'Vinha d' + CHAR(39) + 'Alho'"},
      {SQLKind::kText, 42, "'42'"},
      // No line of the text may be taken for a continued one.
      {SQLKind::kText, "C:\\\r\nD:\\\\\nE:\\\rF:\\", "'C:\\' + '\r\nD:\\\\' + '\nE:\\\rF:\\'"},
      {SQLKind::kTextNotNull, "  ", "''"},
      {SQLKind::kTextNotNull, Value::Null(), "''"},
      {SQLKind::kTextNotNull, "'", "'' + CHAR(39) + ''"},
      {SQLKind::kNumber, Value::Null(), "null"},
      {SQLKind::kNumber, "", "null"},
      {SQLKind::kNumber, "abc", "null"},
      {SQLKind::kNumber, "1; DROP TABLE tbProdutos", "null"},
      {SQLKind::kNumber, true, "1"},
      {SQLKind::kNumber, false, "0"},
      {SQLKind::kNumber, "12,5", "12.5"},
      {SQLKind::kNumber, "12.5", "12.5"},
      {SQLKind::kNumber, 12.5, "12.5"},
      {SQLKind::kNumber, base::Currency{81301}, "8.1301"},
      {SQLKind::kNumber, -1234567.891, "-1234568"},  // seven digits once negative
      {SQLKind::kNumber, "-0,1", "-0.1"},
      {SQLKind::kNumber, "-0.1", "-0.1"},
      {SQLKind::kNumber, "1'234", "1234"},  // what is a number, but none of SQL's
      {SQLKind::kNumber, "(12)", "-12"},
      {SQLKind::kNumber, "€ 5", "5"},
      {SQLKind::kNumber, "1.234,50", "1234.5"},
      {SQLKind::kNumber, "-1.234,50", "-1234.5"},
      {SQLKind::kNumber, 1234567.891, "1234567.891"},
      {SQLKind::kNumber2, "7", "7"},
      {SQLKind::kPattern, "", "'%%'"},
      {SQLKind::kPattern, "caixa azul", "'%caixa%azul%'"},
      {SQLKind::kPattern, "d'a b_", "'%d' + CHAR(39) + 'a%b_%'"},
      {SQLKind::kDate, "- - -", "null"},
      {SQLKind::kDate, "31122017", "CONVERT(DATETIME,'2017-12-31',102)"},
      {SQLKind::kDate, "31-12-2017", "CONVERT(DATETIME,'2017-12-31',102)"},
      {SQLKind::kDate, "31132017", "null"},
      {SQLKind::kDate, "3112201", "null"},
      {SQLKind::kDate, "01-01-1900", "null"},
      {SQLKind::kDate, base::Date{0}, "null"},
      {SQLKind::kDate, moment, "CONVERT(DATETIME,'2017-12-31',102)"},
      {SQLKind::kDateTime, moment, "CONVERT(DATETIME,'2017-12-31 14:05:09',102)"},
      {static_cast<SQLKind>(9), "x", ""},
  };
  for (const Case& c : cases) EXPECT_EQ(data::SQLField(session, c.value, c.kind), c.literal);
  EXPECT_TRUE(reporting.reports.empty());
}

TEST_F(SQLFieldTest, AnErrorIsReportedAndGivesNothing) {
  EXPECT_EQ(data::SQLField(session, "-1E300", SQLKind::kNumber), "");
  ASSERT_EQ(reporting.reports.size(), 1U);
  EXPECT_EQ(reporting.reports[0].procedure, "SQLField");
  EXPECT_EQ(reporting.reports[0].description, "Error Number = 6 | Description = Overflow");
}

// The server cuts what is joined from short pieces at 8000 bytes of its code page.
TEST_F(SQLFieldTest, OnlyALongTextOfSeveralPiecesIsJoinedAsAMaximum) {
  const auto text = [](std::size_t letters) { return base::ReplaceAll(std::string(letters, 'c'), "c", "ç"); };
  for (const auto& [piece, joint] : {std::pair{"'", "' + CHAR(39) + '"}, {"\\\n", "\\' + '\n"}}) {
    const std::size_t fits = 8000 - std::string(piece).size();
    EXPECT_EQ(data::SQLField(session, piece + text(fits), SQLKind::kText), "'" + (joint + text(fits)) + "'");
    EXPECT_EQ(data::SQLField(session, piece + text(fits + 1), SQLKind::kTextNotNull),
              "CONVERT(VARCHAR(MAX), '') + '" + (joint + text(fits + 1)) + "'");
  }
  EXPECT_EQ(data::SQLField(session, text(20000), SQLKind::kText), "'" + text(20000) + "'");
}

// Whatever has the members of a list can be filled: a list box as well as a combo box.
TEST_F(SQLFieldTest, AnyListCanBeFilled) {
  struct ListBox final : controls::ItemList {
    void Clear() override { entries.clear(); }
    void AddItem(std::string text) override { entries.emplace_back(std::move(text), 0); }
    int NewIndex() const noexcept override { return static_cast<int>(entries.size()) - 1; }
    void SetItemData(int index, std::int32_t data) override {
      entries.at(static_cast<std::size_t>(index)).second = data;
    }
    std::vector<std::pair<std::string, std::int32_t>> entries{{"antes", 1}};
  } list;
  database.servers["s"] = {};
  database.users["u"] = "p";
  session.SharedConnection().SetConnectionString("x;User ID=u;Password=p;Data Source=s;");
  session.SharedConnection().Open();
  database.on_query = [](const std::string&) {
    ports::RowSet rows({"descrit", "cor_id"});
    for (const Value& cell : {Value("Azul"), Value(3), Value::Null(), Value(4), Value("Verde"), Value(5)})
      rows.Append(cell);
    return rows;
  };
  FakeFormHost host;
  const auto form = std::make_shared<controls::Form>(host, "frmLista");
  EXPECT_TRUE(data::ControlFill(session, *form, list, "SELECT", "descrit", "cor_id"));
  EXPECT_EQ(list.entries, (std::vector<std::pair<std::string, std::int32_t>>{{"Azul", 3}, {"Verde", 5}}));
}

TEST_F(SQLFieldTest, TrtfChangesItsArgumentToo) {
  const std::string piece = "a''b\\\n" + std::string(9000, 'c');
  std::string text = piece;
  EXPECT_EQ(data::Trtf(session, text), "a' + CHAR(39) + '' + CHAR(39) + 'b" + piece.substr(4));
  EXPECT_EQ(text, "a' + CHAR(39) + '' + CHAR(39) + 'b" + piece.substr(4));
}

TEST_F(SQLFieldTest, ListFieldShowsAColumnByItsKind) {
  ports::RowSet rows({"Nome", "valor", "quando", "nada"});
  for (const Value& cell :
       {Value("Vinho"), Value(-1234.5), Value(*base::MakeDate({2017, 12, 31, 14, 5, 9})), Value::Null()}) {
    rows.Append(cell);
  }
  const struct {
    const char* column;
    ListKind kind;
    const char* text;
  } cases[] = {
      {"NOME", ListKind::kText, "Vinho"},
      {"nada", ListKind::kAmount, " "},
      {"outra", ListKind::kText, " "},
      {"valor", ListKind::kNumber,
       "- 1\xC2\xA0"
       "234,50"},
      {"valor", ListKind::kAmount,
       "€ -1\xC2\xA0"
       "234,50"},
      {"valor", ListKind::kText, "-1234,5"},
      {"valor", ListKind::kInteger,
       "-1\xC2\xA0"
       "234"},
      {"quando", ListKind::kDate, "31-12-2017"},
      {"quando", ListKind::kDateTime, "31-12-2017 14:05:09"},
      {"quando", ListKind::kIsoDate, "2017-12-31"},
      {"nome", static_cast<ListKind>(9), ""},
  };
  for (const auto& [column, kind, text] : cases) {
    EXPECT_EQ(data::ListField(session, rows.front(), column, kind), text) << column;
  }
  EXPECT_EQ(data::ListField(session, rows.front(), "Nome", ListKind::kInteger), "");
  EXPECT_EQ(reporting.reports.at(0),
            (ports::ErrorReport{"Torvik Pelora Software", "Ferramentas Administrativas", "modData", "ListField",
                                "Error Number = 13 | Description = Type mismatch"}));
}

TEST_F(SQLFieldTest, IsLocalNumericTakesEitherSeparator) {
  for (const char* text : {"12", "12,5", "12.5", "1.234.567,5", "-3", ",5"}) {
    base::Locale with_points = PortugueseLocale();
    with_points.thousands = ".";
    EXPECT_TRUE(data::IsLocalNumeric(text, with_points)) << text;
  }
  for (const char* text : {"", "abc", "12-13", "1,2,3"})
    EXPECT_FALSE(data::IsLocalNumeric(text, PortugueseLocale())) << text;
  EXPECT_TRUE(data::IsLocalNumeric("1,234.50", EnglishLocale()));
}

TEST_F(SQLFieldTest, ServerDateFallsBackToTheEmptyDate) {
  EXPECT_EQ(data::ServerDate(session), base::EmptyDate()) << "closed connection";
  EXPECT_FALSE(data::InTransaction(session));
  EXPECT_TRUE(reporting.reports.empty());
}

}  // namespace
}  // namespace quenta::tests
