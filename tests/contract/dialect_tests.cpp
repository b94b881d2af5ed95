// The dialect as text to text. What its SQL does in the database is the contract's matter; here stand the promises that
// a database does not show: how values are spelled, that indexes stay usable, and that no text can upset it.
#include "sandbox/odbc/dialect.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sandbox/odbc/server_error.h"

namespace quenta::sandbox {
namespace {

Schema SampleSchema() {
  Schema schema;
  const auto add = [&](const char* name, bool is_view, std::vector<SchemaColumn> columns) {
    schema.Add(name, is_view).columns = std::move(columns);
  };
  const SqlType code{.kind = SqlKind::kVarChar, .size = 20};
  add("tbProdutos", false,
      {{.name = "produto_id", .type = TypeOf(SqlKind::kInt), .nullable = false},
       {.name = "codigo", .type = code},
       {.name = "nome", .type = {.kind = SqlKind::kNVarChar, .size = 40}},
       {.name = "altura", .type = TypeOf(SqlKind::kFloat)},
       {.name = "obs", .type = TypeOf(SqlKind::kText)},
       {.name = "data_created", .type = TypeOf(SqlKind::kDateTime)}});
  add("tbArmazens", false, {{.name = "armazem_id", .type = TypeOf(SqlKind::kInt)}, {.name = "descrit", .type = code}});
  add("vwTaxas", true, {{.name = "iva_id", .type = TypeOf(SqlKind::kInt)}});
  return schema;
}

Translation Translate(std::string_view sql) {
  Batch batch(sql);
  return batch.Next(SampleSchema(), {.transaction_count = 1, .catalogue = "Ambrell"});
}

TEST(Dialect, SpellsStatementsForSqlite) {
  struct Case {
    const char* name;
    const char* sql;
    const char* expected;
  };
  for (
      const Case& c : {
          Case{"a key is compared as it stands, so that its index serves",
               "SELECT codigo FROM tbProdutos WHERE produto_id=5",
               R"(SELECT "tbProdutos"."codigo" FROM "tbProdutos" AS "tbProdutos" WHERE "tbProdutos"."produto_id" = 5)"},
          Case{"text compares by the collation of its index", "SELECT p.codigo FROM tbProdutos p WHERE CODIGO = 'a''b'",
               R"(SELECT "p"."codigo" FROM "tbProdutos" AS "p" WHERE "p"."codigo" COLLATE SERVER = 'a''b')"},
          Case{
              "a number beside text converts each row", "SELECT codigo FROM tbProdutos WHERE codigo = 10000",
              R"(SELECT "tbProdutos"."codigo" FROM "tbProdutos" AS "tbProdutos" WHERE ss_convert("tbProdutos"."codigo",'VARCHAR(20)','INT','compare') = 10000)"},
          Case{"a number as text becomes a number at once", "SELECT codigo FROM tbProdutos WHERE produto_id = '7'",
               R"(SELECT "tbProdutos"."codigo" FROM "tbProdutos" AS "tbProdutos" WHERE "tbProdutos"."produto_id" = 7)"},
          Case{"a literal without N loses what the code page lacks", "SELECT 'Ω€' AS a, N'Ω€' AS b",
               "SELECT 'O€', 'Ω€'"},
          Case{
              "plus joins text and adds numbers", "SELECT 'a' + CHAR(39) + codigo, produto_id + 1 FROM tbProdutos",
              R"(SELECT ('a''' || "tbProdutos"."codigo"), ("tbProdutos"."produto_id" + 1) FROM "tbProdutos" AS "tbProdutos")"},
          Case{"an inserted literal is converted on the way",
               "INSERT tbProdutos (PRODUTO_ID, codigo) VALUES (' 7 ', 12)",
               R"(INSERT INTO "tbProdutos" ("produto_id", "codigo") VALUES (7, '12'))"},
          Case{
              "a date is spelled in one way",
              "SELECT codigo FROM tbProdutos WHERE data_created < CONVERT(DATETIME,'2017-12-31',102)",
              R"(SELECT "tbProdutos"."codigo" FROM "tbProdutos" AS "tbProdutos" WHERE "tbProdutos"."data_created" < '2017-12-31 00:00:00.000')"},
          Case{"the count of transactions is known", "SELECT @@TRANCOUNT as valor", "SELECT 1"},
          Case{
              "the top rows", "SELECT TOP 3 codigo FROM tbProdutos ORDER BY nome DESC",
              R"(SELECT "tbProdutos"."codigo" FROM "tbProdutos" AS "tbProdutos" ORDER BY "tbProdutos"."nome" COLLATE SERVER DESC LIMIT 3)"},
          Case{"comments and blanks go", "DELETE -- ? {\n FROM /* a /* b */ */ [tbProdutos]",
               R"(DELETE FROM "tbProdutos")"},
      }) {
    const Translation translation = Translate(c.sql);
    ASSERT_EQ(translation.statements.size(), 1u) << c.name;
    EXPECT_EQ(translation.statements[0], c.expected) << c.name;
  }
}

TEST(Dialect, TellsWhatAStatementDoes) {
  struct Case {
    const char* sql;
    bool touches_tables;
    bool writes;
    bool changes_schema;
    std::size_t columns;
  };
  for (const Case& c :
       {Case{"SELECT * FROM tbProdutos", true, false, false, 6},
        Case{"SELECT GETDATE() AS DATE", false, false, false, 1},
        Case{"SELECT @@TRANCOUNT as valor", false, false, false, 1},
        Case{"SELECT (SELECT COUNT(*) FROM tbArmazens)", true, false, false, 1},
        Case{"UPDATE tbProdutos SET codigo = null", true, true, false, 0},
        Case{"DELETE FROM tbProdutos", true, true, false, 0},
        Case{"INSERT INTO tbArmazens VALUES (1, 'x')", true, true, false, 0},
        Case{"CREATE TABLE t (x INT)", true, true, true, 0}, Case{"DROP TABLE tbArmazens", true, true, true, 0},
        Case{"SET NOCOUNT ON", false, false, false, 0}}) {
    const Translation translation = Translate(c.sql);
    EXPECT_EQ(translation.touches_tables, c.touches_tables) << c.sql;
    EXPECT_EQ(translation.writes, c.writes) << c.sql;
    EXPECT_EQ(translation.changes_schema, c.changes_schema) << c.sql;
    EXPECT_EQ(translation.columns.size(), c.columns) << c.sql;
  }
}

TEST(Dialect, SaysHonestlyWhatItDoesNotKnow) {
  for (const char* sql :
       {"EXEC sp_who", "SELECT TOP 10 PERCENT codigo FROM tbProdutos",
        "UPDATE tbProdutos SET codigo = '' FROM tbArmazens", "INSERT INTO vwTaxas VALUES (1)",
        "ALTER TABLE tbProdutos ADD x INT", "CREATE TABLE t (x XML)", "CREATE TABLE t (x INT IDENTITY)", "SELECT @x",
        "DECLARE @x INT", "SET XACT_ABORT ON", "SELECT GETDATE() - GETDATE()", "BEGIN TRANSACTION"}) {
    try {
      ADD_FAILURE() << sql << " became " << Translate(sql).statements.at(0);
    } catch (const ServerError& error) {
      EXPECT_EQ(error.number(), message::kSandboxLimit) << sql << ": " << error.what();
      EXPECT_NE(std::string(error.what()).find("sandbox"), std::string::npos) << error.what();
    }
  }
}

// Every text either becomes SQL or a message; nothing reads past the end, hangs, or passes a piece through unread.
TEST(Dialect, NoPieceOfAStatementUpsetsIt) {
  const std::vector<std::string> statements{
      "SELECT DISTINCT TOP 3 p.nome, 'a' + [nome] AS x, COUNT(*) FROM dbo.tbProdutos AS p LEFT JOIN (SELECT armazem_id "
      "AS i FROM "
      "tbArmazens) q ON p.produto_id = q.i WHERE NOT (codigo LIKE N'%[a-c]_' ESCAPE '!' OR p.nome IN ('a', 'b')) AND "
      "produto_id "
      "BETWEEN 1 AND 2.5e0 GROUP BY nome HAVING SUM(altura) > 1 ORDER BY 1 DESC, nome",
      "INSERT INTO tbProdutos (produto_id, codigo) VALUES (1, 'x' + CHAR(39)), ((2), CASE WHEN 1 = 1 THEN 'a' ELSE 'b' "
      "END)",
      "UPDATE tbProdutos SET codigo = codigo + 'x', data_created = GETDATE() WHERE EXISTS (SELECT * FROM tbArmazens) ;",
      "CREATE TABLE t (a INT NOT NULL CONSTRAINT d DEFAULT (1), b DECIMAL(9,2) NULL, c VARCHAR(MAX), CONSTRAINT k "
      "PRIMARY KEY "
      "(a), CONSTRAINT f FOREIGN KEY (b) REFERENCES tbArmazens (armazem_id) ON DELETE CASCADE, CHECK (a > 0), UNIQUE "
      "(b, a))",
      "CREATE VIEW v (x) AS SELECT codigo FROM tbProdutos UNION ALL SELECT 'a' ",
      "SELECT CONVERT(VARCHAR(10), GETDATE(), 105), CAST('1' AS INT), DATEADD(day, 1, GETDATE()), ISNULL(null, 1), "
      "@@TRANCOUNT, -1"};
  int translated = 0;
  const auto attempt = [&](const std::string& sql) {
    try {
      Batch batch(sql);
      for (int count = 0; !batch.AtEnd(); ++count) {
        ASSERT_LT(count, 100) << "no end in " << sql;
        batch.Next(SampleSchema(), {});
        ++translated;
      }
    } catch (const ServerError& error) {
      EXPECT_STRNE(error.what(), "") << sql;
    }
  };
  for (const std::string& statement : statements) {
    EXPECT_NO_THROW(Translate(statement)) << statement;
    for (std::size_t at = 0; at <= statement.size(); ++at) {
      attempt(statement.substr(0, at));
      attempt(statement.substr(at));
      for (const char* piece : {"'", "(", ")", ",", " SELECT ", ";", "[", "\xFF", "--", "/*", " 1 "})
        attempt(statement.substr(0, at) + piece + statement.substr(at));
    }
  }
  EXPECT_GT(translated, 200);
}

TEST(Dialect, SplitsScriptsAtTheLinesThatHoldOnlyGo) {
  EXPECT_EQ(SplitBatches("SELECT 1\nGO\r\n-- only a comment\n  go  \nSELECT 'GO'\nSELECT 2 -- GO\nGO\n\nGO"),
            (std::vector<std::string>{"SELECT 1\n", "SELECT 'GO'\nSELECT 2 -- GO\n"}));
  EXPECT_TRUE(SplitBatches("").empty());
}

}  // namespace
}  // namespace quenta::sandbox
