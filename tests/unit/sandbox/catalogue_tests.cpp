// The sample catalogue: whether every statement of the component finds its tables, columns and rows in it, and whether
// its data holds together.
#include "sandbox/catalogue/catalogue.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/convert.h"
#include "base/error.h"
#include "ports/database.h"
#include "sandbox/catalogue/sample_database.h"
#include "support/odbc_driver.h"

#include <unistd.h>

namespace quenta::sandbox {
namespace {

using base::Value;
using ports::Connection;
using ports::Row;
using ports::RowSet;

constexpr auto kToday = std::chrono::sys_days(std::chrono::year(2026) / 11 / 21);
const char* const kYearToDate[] = {"CONVERT(DATETIME,'2026-01-01',102)", "CONVERT(DATETIME,'2026-11-22',102)"};

const base::Locale& PointLocale() {
  static const base::Locale locale = [] {
    base::Locale point;
    point.decimal = ".";
    point.thousands = ",";
    return point;
  }();
  return locale;
}
std::string Text(const Value& value) {
  return value.is_null() ? "NULL" : base::ToText(value, PointLocale());
}
double Number(const Value& value) {
  return base::ToDouble(value, PointLocale());
}

CatalogueOptions SampleOptions() {
  CatalogueOptions options;
  options.today = kToday;
  return options;
}

// A database of its own, gone when its owner is.
class SampleDatabase {
 public:
  explicit SampleDatabase(const CatalogueOptions& options) {
    tests::KeepDriverLoaded();
    static int made = 0;
    const std::string name = "catalogue_tests_" + std::to_string(getpid()) + "_" + std::to_string(++made);
    folder_ = std::filesystem::temp_directory_path() / name;
    std::filesystem::create_directory(folder_);
    SampleFiles files;
    files.file.database = (folder_ / "sample.db").string();
    files.file.extension = sandbox::BuiltExtension();
    files.odbc_ini = (folder_ / "odbc.ini").string();
    files.data_sources = {name};
    MakeSampleDatabase(files, options);
    connection_ = OpenSampleDatabase(files);
  }
  ~SampleDatabase() {
    connection_.reset();
    std::filesystem::remove_all(folder_);
  }
  SampleDatabase(const SampleDatabase&) = delete;
  SampleDatabase& operator=(const SampleDatabase&) = delete;

  Connection& connection() { return *connection_; }

 private:
  std::filesystem::path folder_;
  std::unique_ptr<Connection> connection_;
};

// Shared by the tests that read: filling it is the costly part, and none of them leaves a change behind.
class Catalogue : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { sample_ = std::make_unique<SampleDatabase>(SampleOptions()); }
  static void TearDownTestSuite() { sample_.reset(); }

  static Connection& connection() { return sample_->connection(); }
  static RowSet Query(const std::string& sql) { return connection().Query(sql); }
  static std::string Only(const std::string& sql) {
    const RowSet rows = Query(sql);
    EXPECT_EQ(rows.size(), 1u) << sql;
    return rows.empty() ? "" : Text(rows.front().At(0));
  }
  static int Count(const std::string& from) {
    return static_cast<int>(Number(Query("SELECT COUNT(*) AS n FROM " + from).front().At(0)));
  }
  static std::string Id(const std::string& code) {
    return Only("SELECT produto_id FROM tbProdutos WHERE is_deleted = 0 AND codigo = '" + code + "'");
  }

 private:
  static std::unique_ptr<SampleDatabase> sample_;
};
std::unique_ptr<SampleDatabase> Catalogue::sample_;

struct HistorySource {
  const char* from;  // FROM to the product identifier
  const char* columns;
  const char* header;
};
const HistorySource kHistorySources[] = {
    {" FROM vwDocumentos_Details LEFT JOIN tbDocumentos ON tbDocumentos.armazem_id = vwDocumentos_Details.armazem_id "
     "AND "
     "tbDocumentos.documento_main_id = vwDocumentos_Details.documento_main_id LEFT JOIN tbDocumentos_Tipos ON "
     "tbDocumentos.tipo_doc_id = tbDocumentos_Tipos.tipo_doc_id WHERE (tbDocumentos.anulado = 0 OR "
     "tbDocumentos.anulado "
     "is null) AND tbDocumentos_Tipos.change_stocks <> 0 AND produto_id = ",
     "tbDocumentos.data, tbDocumentos.nome as entidade, tbDocumentos_Tipos.descrit as tipo, tbDocumentos.documento_no, "
     "vwDocumentos_Details.*, tbDocumentos_Tipos.peso",
     "tbDocumentos"},
    {" FROM vwDocumentos_Fornec_Details LEFT JOIN tbDocumentos_Fornec ON tbDocumentos_Fornec.armazem_id = "
     "vwDocumentos_Fornec_Details.armazem_id AND tbDocumentos_Fornec.documento_main_id = "
     "vwDocumentos_Fornec_Details.documento_main_id LEFT JOIN tbDocumentos_Fornec_Tipos ON "
     "tbDocumentos_Fornec.tipo_doc_id = tbDocumentos_Fornec_Tipos.tipo_doc_id WHERE (tbDocumentos_Fornec.anulado = 0 "
     "OR "
     "tbDocumentos_Fornec.anulado is null) AND tbDocumentos_Fornec_Tipos.change_stocks <> 0 AND produto_id = ",
     "tbDocumentos_Fornec.data, tbDocumentos_Fornec.nome as entidade, tbDocumentos_Fornec_Tipos.descrit as tipo, "
     "tbDocumentos_Fornec.documento_no, vwDocumentos_Fornec_Details.*, tbDocumentos_Fornec_Tipos.peso",
     "tbDocumentos_Fornec"},
    {" FROM vwEncomendas_Details LEFT JOIN tbEncomendas ON tbEncomendas.armazem_id = vwEncomendas_Details.armazem_id "
     "AND "
     "tbEncomendas.encomenda_main_id = vwEncomendas_Details.encomenda_main_id WHERE (tbEncomendas.anulada = 0 OR "
     "tbEncomendas.anulada is null) AND produto_id = ",
     "tbEncomendas.data, tbEncomendas.nome  as entidade, 'Encomenda' as tipo, tbEncomendas.encomenda_no, "
     "vwEncomendas_Details.*",
     "tbEncomendas"},
    {" FROM vwEncomendas_Fornec_Details LEFT JOIN tbEncomendas_Fornec ON tbEncomendas_Fornec.armazem_id = "
     "vwEncomendas_Fornec_Details.armazem_id AND tbEncomendas_Fornec.encomenda_main_id = "
     "vwEncomendas_Fornec_Details.encomenda_main_id WHERE (tbEncomendas_Fornec.anulada = 0 OR "
     "tbEncomendas_Fornec.anulada is null) AND produto_id = ",
     "tbEncomendas_Fornec.data, tbEncomendas_Fornec.nome as entidade, 'Encomenda' as tipo, "
     "tbEncomendas_Fornec.encomenda_no, vwEncomendas_Fornec_Details.*",
     "tbEncomendas_Fornec"}};

std::string HistoryQuery(const HistorySource& source, const std::string& columns, const std::string& product,
                         const char* const (&dates)[2] = kYearToDate) {
  return "SELECT " + columns + source.from + product + " AND " + source.header + ".data >= " + dates[0] + " AND " +
         source.header + ".data <= " + dates[1];
}

const char* const kStatistics =
    "MIN(preco_unitario) as preco_unitario_min, MAX(preco_unitario) as preco_unitario_max, SUM(quantidade) as "
    "quantidade_sum, SUM(preco_total) as preco_total_sum";

TEST_F(Catalogue, AnswersEveryQuestionOfTheComponent) {
  struct Question {
    std::string sql;
    int rows;  // at least; 0 for a question whose usual answer is nothing
    std::vector<const char*> columns;
  };
  const std::string product = Id("10000");
  const std::string variants = Id("10204");
  const std::string treatment = Id("T-MAS");
  const std::vector<Question> questions = {
      {"SELECT * FROM tbProdutos_Tipos ORDER BY tipo_id", 8, {"tipo_id", "descrit"}},
      {"SELECT * FROM tbProdutos_Cores ORDER BY cor_id", 16, {"cor_id", "descrit"}},
      {"SELECT * FROM tbProdutos_Tamanhos ORDER BY tamanho_id", 43, {"tamanho_id", "descrit"}},
      {"SELECT * FROM vwCentros_Custo ORDER BY descrit2", 7, {"centro_id", "descrit2"}},
      {"SELECT * FROM tbProdutos_Familias ORDER BY descrit", 10, {"familia_id", "descrit"}},
      {"SELECT * FROM vwTaxas_Iva ORDER BY descrit2", 4, {"iva_id", "descrit2", "predef"}},
      {"SELECT * FROM vwFornecedores ORDER BY nome_union", 17, {"contacto_id", "nome_union"}},
      {"SELECT * FROM tbProdutos_Subfamilias WHERE familia_id = 1", 5, {"subfamilia_id", "descrit"}},
      {"SELECT nome FROM tbProdutos WHERE familia_id = 1 AND subfamilia_id = 2 GROUP BY nome ORDER BY nome",
       8,
       {"nome"}},
      {"SELECT nome FROM tbProdutos WHERE familia_id = 1 GROUP BY nome ORDER BY nome", 30, {"nome"}},
      {"SELECT marca FROM tbProdutos GROUP BY marca ORDER BY marca", 20, {"marca"}},
      {"SELECT * FROM tbProdutos WHERE produto_id = " + product,
       1,
       {"codigo", "familia_id", "subfamilia_id", "nome", "descontinuado", "fornecedor_id", "marca", "obs", "altura",
        "profundidade", "largura", "cor", "tamanho", "tipo_id", "centro_id", "main_id", "is_deleted", "data_created",
        "data_modified"}},
      {"SELECT * FROM sysobjects WHERE name = 'tbAssociados_Quotas_Tipos'", 1, {}},
      {"SELECT * FROM sysobjects WHERE name = 'tbTratamentos'", 1, {}},
      {"SELECT * FROM sysobjects WHERE name = 'tbProjectos_Servicos_Tipos'", 0, {}},
      {"SELECT * FROM tbAssociados_Quotas_Tipos WHERE produto_id = " + Id("Q-ANO"), 1, {"descrit"}},
      {"SELECT * FROM tbTratamentos WHERE produto_id = " + treatment, 1, {"descrit"}},
      {"SELECT * FROM tbArmazens WHERE armazem_id = 1", 1, {"sql_gateway", "can_modify_produts"}},
      {"SELECT * FROM tbArmazens WHERE has_stocks <> 0", 8, {"armazem_id"}},
      {"SELECT * FROM tbContadores WHERE nome = 'produto_codigo'", 1, {"contador"}},
      {"SELECT * FROM tbContadores WHERE nome = 'produto_id'", 1, {"contador"}},
      {"SELECT produto_id FROM tbProdutos WHERE Produto_ID = " + product, 1, {"produto_id"}},
      {"SELECT * FROM tbProdutos_Tipos WHERE predef <> 0", 1, {"tipo_id"}},
      {"SELECT * FROM tbProdutos_Tipos WHERE tipo_id = 8",
       1,
       {"tamanho", "cor", "altura", "largura", "profundidade", "has_stocks"}},
      {"SELECT * FROM tbProdutos_Precos_Tipos", 3, {"tipo_id", "predef_venda"}},
      {"SELECT produto_id FROM tbProdutos WHERE (is_deleted = 0 OR is_deleted is null) AND produto_id <> " + product +
           " AND codigo = '10001'",
       1,
       {"produto_id"}},
      {"SELECT * FROM tbTaxas_Iva WHERE iva_id = 1", 1, {"tx"}},
      {"SELECT * FROM tbProdutos WHERE main_id = " + variants + " OR main_id = " + variants, 15, {"produto_id"}},
      {"SELECT tbProdutos_Precos.*, tbProdutos_Precos_Tipos.descrit as tipo FROM tbProdutos_Precos LEFT JOIN "
       "tbProdutos_Precos_Tipos ON tbProdutos_Precos.tipo_id = tbProdutos_Precos_Tipos.tipo_id WHERE produto_id = " +
           product + " ORDER BY tbProdutos_Precos_Tipos.descrit",
       3,
       {"tipo_id", "tipo", "preco", "preco_total", "iva_id", "iva", "desconto", "iva_descrit", "predef"}},
      {"SELECT * FROM tbTaxas_IVA_Insencoes ORDER BY descrit", 13, {"isencao_id", "descrit"}},
      {"SELECT tbProdutos_Stocks.*, tbProdutos_Stocks_Minimos.unidades as unidades_minimas, "
       "tbProdutos_Stocks_Minimos.reposicao as unidades_reposicao, tbArmazens.descrit as armazem FROM "
       "tbProdutos_Stocks LEFT JOIN tbProdutos_Stocks_Minimos ON (tbProdutos_Stocks.armazem_id = "
       "tbProdutos_Stocks_Minimos.armazem_id AND tbProdutos_Stocks.produto_id = tbProdutos_Stocks_Minimos.produto_id) "
       "LEFT JOIN tbArmazens ON tbProdutos_Stocks.armazem_id = tbArmazens.armazem_id WHERE "
       "tbProdutos_Stocks.produto_id = " +
           product,
       8,
       {"armazem_id", "armazem", "unidades", "unidades_minimas", "unidades_reposicao", "unidades_enc_clientes",
        "unidades_enc_fornec"}},
      {"SELECT tbProdutos_Stocks.*, tbProdutos_Stocks_Minimos.unidades as unidades_minimas, "
       "tbProdutos_Stocks_Minimos.reposicao as unidades_reposicao, 'Armazém: ' + tbArmazens.descrit as armazem FROM "
       "tbProdutos_Stocks LEFT JOIN tbProdutos_Stocks_Minimos ON (tbProdutos_Stocks.armazem_id = "
       "tbProdutos_Stocks_Minimos.armazem_id AND tbProdutos_Stocks.produto_id = tbProdutos_Stocks_Minimos.produto_id) "
       "LEFT JOIN tbArmazens ON tbProdutos_Stocks.armazem_id = tbArmazens.armazem_id WHERE "
       "tbProdutos_Stocks.produto_id = " +
           product + " AND tbProdutos_Stocks.armazem_id = 2",
       1,
       {"armazem", "unidades", "unidades_minimas", "unidades_reposicao"}},
      {"SELECT * FROM tbProdutos_Stocks_Minimos WHERE produto_ID = " + product, 8, {"armazem_id", "unidades"}},
      {"SELECT * FROM tbProdutos_Precos WHERE produto_id = " + product, 3, {"tipo_id", "iva_descrit"}},
      {"SELECT * FROM tbProdutos WHERE is_deleted = 0 AND main_id = " + variants,
       15,
       {"produto_id", "codigo", "nome", "cor", "tamanho"}},
      {"SELECT * FROM tbProdutos_Cores ORDER BY descrit", 16, {"cor_id", "descrit", "code"}},
      {"SELECT * FROM tbProdutos_Tamanhos ORDER BY descrit", 43, {"tamanho_id", "descrit", "code"}},
      {"SELECT * FROM tbProdutos WHERE is_deleted = 0 AND main_id = " + variants +
           " AND cor = 'Azul' AND tamanho = 'M'",
       1,
       {}},
      {"SELECT * FROM tbProdutos WHERE is_deleted = 0 AND main_id = " + Id("10500") +
           " AND tamanho is null AND cor = 'Azul'",
       1,
       {}},
      {"SELECT * FROM tbProdutos WHERE is_deleted = 0 AND main_id = " + Id("VN-001") +
           " AND cor is null AND tamanho = '37,5 cl'",
       1,
       {}},
      {"SELECT tbContactos.nome_union FROM tbUsers LEFT JOIN tbContactos ON tbUsers.contacto_id = "
       "tbContactos.contacto_id WHERE tbUsers.descrit = 'ana'",
       1,
       {"nome_union"}},
      {"SELECT tbGroups.code, tbUsers.code as user_code FROM tbGroups_Users_Links LEFT OUTER JOIN tbGroups ON "
       "tbGroups_Users_Links.group_id = tbGroups.group_id LEFT JOIN tbUsers ON tbGroups_Users_Links.user_id = "
       "tbUsers.user_id WHERE tbUsers.descrit = 'ana'",
       2,
       {"code", "user_code"}},
      {"SELECT GETDATE() AS DATE", 1, {"date"}},
      {"SELECT @@TRANCOUNT as valor", 1, {"valor"}},
  };
  for (const Question& question : questions) {
    SCOPED_TRACE(question.sql);
    RowSet rows;
    ASSERT_NO_THROW(rows = Query(question.sql));
    EXPECT_GE(static_cast<int>(rows.size()), question.rows);
    EXPECT_EQ(question.rows == 0, rows.empty());
    for (const char* column : question.columns) EXPECT_TRUE(rows.FindColumn(column)) << column;
  }
}

TEST_F(Catalogue, HasAHistoryInAllFourSources) {
  const std::string product = Id("10011");
  for (const HistorySource& source : kHistorySources) {
    SCOPED_TRACE(source.header);
    const RowSet lines = Query(HistoryQuery(source, source.columns, product) + " ORDER BY data");
    ASSERT_GT(lines.size(), 0u);
    for (const char* column :
         {"data", "entidade", "tipo", "documento_no", "quantidade", "preco_unitario", "preco_total", "armazem_id"}) {
      EXPECT_FALSE(lines.front()[column].is_null()) << column;
    }
    double quantity = 0;
    for (const Row line : lines) quantity += Number(line["quantidade"]);
    const RowSet statistics = Query(HistoryQuery(source, kStatistics, product));
    EXPECT_NEAR(Number(statistics.front()["quantidade_sum"]), quantity, 1e-6);
    EXPECT_LE(Number(statistics.front()["preco_unitario_min"]), Number(statistics.front()["preco_unitario_max"]));

    const std::string header(source.header);
    const std::string cancelled = header.find("Encomendas") == std::string::npos ? "anulado" : "anulada";
    EXPECT_GT(Count(header + " WHERE " + cancelled + " = 1"), 0);
    EXPECT_GT(Count(header + " WHERE " + cancelled + " IS NULL"), 0);
    EXPECT_EQ(Count(header + " WHERE data >= CONVERT(DATETIME,'2026-11-22',102)"), 0);
    EXPECT_EQ(Count(header + " WHERE data < CONVERT(DATETIME,'2024-11-21',102)"), 0);
  }
  EXPECT_GT(Count("tbDocumentos WHERE tipo_doc_id IN (5, 6)"), 0) << "documents that move no stock";
}

// The statements that write, as the component assembles them; all of it is rolled back.
TEST_F(Catalogue, TakesEveryWriteOfTheComponent) {
  const std::string variants = Id("10204");
  const std::vector<std::string> statements = {
      "UPDATE tbContadores SET contador = contador + 1 WHERE nome = 'produto_codigo'",
      "INSERT INTO tbProdutos (Produto_ID,data_created, data_modified, codigo, tipo_id) VALUES (70000,GETDATE(), "
      "GETDATE(), 70000,1)",
      "INSERT INTO tbProdutos_Stocks (produto_id,armazem_id,unidades) VALUES (70000,1,0)",
      "INSERT INTO tbProdutos_Stocks_Minimos (produto_id,armazem_id,unidades) VALUES (70000,1,0)",
      "INSERT INTO tbProdutos_Precos (tipo_id, produto_id, iva_id, predef) VALUES (1,70000,1,1)",
      "UPDATE tbProdutos SET codigo = '70000', nome = 'Vinha d' + CHAR(39) + 'Alho', marca = null, familia_id = 1, "
      "fornecedor_id = 101, subfamilia_id = 1, obs = 'Notas', tipo_id = 1, centro_id = 1, tamanho = null, cor = null, "
      "altura = 1.25, largura = null, profundidade = null, descontinuado = 0, data_modified = GETDATE()  WHERE "
      "produto_id=70000",
      "UPDATE tbProdutos SET nome = 'T-shirt', data_modified = GETDATE()  WHERE main_id=" + variants,
      "DELETE FROM tbProdutos_Precos WHERE produto_id = 70000",
      "INSERT INTO tbProdutos_Precos (tipo_id, produto_id, preco, iva_id, iva, preco_total, iva_descrit, desconto, "
      "predef) VALUES (1, 70000, 8.13008, 1, 1.86992, 10, null, 0.05, 1)",
      "UPDATE tbProdutos_Stocks_Minimos SET unidades = 2.5, reposicao = 10 WHERE armazem_id = 1 AND produto_id = 70000",
      "INSERT INTO tbProdutos (produto_id, codigo, nome, familia_id, subfamilia_id, obs, data_created, data_modified, "
      "fornecedor_id, marca, descontinuado, main_id, cor, tamanho, tipo_id,largura, profundidade, altura ) VALUES "
      "(70001, '70000-AZ-42', 'Vinha', 1, 1, null, GETDATE(), GETDATE(), 101, null, 0, 70000, 'Azul', '42', 1, null, "
      "null, null)",
      "DELETE FROM tbProdutos_Stocks WHERE produto_id = 70000",
      "DELETE FROM tbProdutos_Stocks_Minimos WHERE produto_id = 70000",
      "UPDATE tbProdutos SET is_deleted = 1, data_modified = GETDATE(), Obs = null WHERE produto_id = 70001",
      // What closing an unsaved product without saving does, even after it was given dependent products.
      "DELETE FROM tbProdutos_Precos WHERE produto_id = 70000",
      "DELETE FROM tbProdutos WHERE produto_id = 70000",
  };
  connection().BeginTransaction();
  for (const std::string& statement : statements) EXPECT_NO_THROW(connection().Execute(statement)) << statement;
  EXPECT_EQ(Only("SELECT tamanho FROM tbProdutos WHERE produto_id = 70001"), "42");
  connection().RollbackTransaction();
  EXPECT_EQ(Count("tbProdutos WHERE produto_id >= 70000"), 0);
}

TEST_F(Catalogue, RefusesTheSameIdentifierTwiceButNotTheSameCode) {
  const std::string insert = "INSERT INTO tbProdutos (produto_id, codigo) VALUES (";
  EXPECT_THROW(connection().Execute(insert + Id("10000") + ", '70000')"), base::Error);
  EXPECT_THROW(connection().Execute("INSERT INTO tbContadores (nome, contador) VALUES ('produto_id', 1)"), base::Error);
  EXPECT_EQ(Count("tbProdutos WHERE codigo = '10704'"), 2);
  EXPECT_EQ(Count("tbProdutos WHERE codigo = '10704' AND is_deleted = 1"), 1);
}

TEST_F(Catalogue, HasPricesThatAddUp) {
  // exceptions.sql spoils these on purpose.
  const std::set<std::string> without_one_default = {"10402", "10403"};
  std::map<std::string, int> defaults;
  for (const Row row : Query("SELECT tbProdutos.codigo, tbProdutos_Precos.preco, tbProdutos_Precos.iva, "
                             "tbProdutos_Precos.preco_total, tbProdutos_Precos.predef, tbProdutos_Precos.iva_descrit, "
                             "tbTaxas_Iva.tx FROM tbProdutos_Precos INNER JOIN tbProdutos ON tbProdutos.produto_id = "
                             "tbProdutos_Precos.produto_id LEFT JOIN tbTaxas_Iva ON tbTaxas_Iva.iva_id = "
                             "tbProdutos_Precos.iva_id")) {
    const std::string code = Text(row["codigo"]);
    SCOPED_TRACE(code);
    defaults[code] += base::IsNonZero(row["predef"]) ? 1 : 0;
    if (row["preco"].is_null() || row["tx"].is_null()) continue;
    const double net = Number(row["preco"]);
    const double total = Number(row["preco_total"]);
    const double rate = Number(row["tx"]);
    EXPECT_GT(net, 0);
    EXPECT_NEAR(net + Number(row["iva"]), total, 1e-9);
    EXPECT_NEAR(net * (1 + rate), total, 1e-5);
    EXPECT_EQ(rate == 0 && code != "10405", !row["iva_descrit"].is_null());
  }
  EXPECT_GE(defaults.size(), 400u);
  for (const auto& [code, count] : defaults) EXPECT_TRUE(count == 1 || without_one_default.count(code) == 1) << code;
  EXPECT_EQ(defaults["10402"], 0);
  EXPECT_EQ(defaults["10403"], 2);
}

TEST_F(Catalogue, HasEveryFlagOnOffAndNull) {
  std::set<std::string> warehouses;
  for (const Row row : Query("SELECT sql_gateway, can_modify_produts, has_stocks FROM tbArmazens")) {
    const auto flag = [&](const char* name) {
      return row[name].is_null() ? "-" : base::IsNonZero(row[name]) ? "1" : "0";
    };
    warehouses.insert(std::string(flag("sql_gateway")) + flag("can_modify_produts") + flag("has_stocks"));
  }
  for (const char* flags : {"000", "001", "010", "011", "100", "101", "110", "111", "-11", "1-1", "11-", "---"}) {
    EXPECT_TRUE(warehouses.count(flags)) << flags;
  }
  EXPECT_EQ(Count("tbProdutos_Tipos WHERE has_stocks IS NULL"), 1);
  EXPECT_EQ(Count("tbProdutos_Tipos WHERE has_stocks = 0"), 2);
  EXPECT_GT(Count("tbProdutos WHERE descontinuado = 1"), 0);
  EXPECT_GT(Count("tbProdutos WHERE is_deleted = 1"), 0);
  EXPECT_EQ(Count("tbProdutos WHERE is_deleted IS NULL AND codigo IS NULL AND nome IS NULL"), 1);
  EXPECT_EQ(Count("tbArmazens WHERE has_stocks = 1 AND descrit IS NULL"), 1);
}

TEST_F(Catalogue, HasDependentProductsThatTheGeneratorCouldHaveMade) {
  std::set<std::tuple<std::string, std::string, std::string>> made;
  for (const Row row :
       Query("SELECT d.codigo, d.main_id, d.cor, d.tamanho, m.codigo AS main_codigo, m.main_id AS "
             "main_main_id, c.code AS cor_code, t.code AS tamanho_code, m.cor AS main_cor, m.tamanho AS "
             "main_tamanho FROM tbProdutos d LEFT JOIN tbProdutos m ON m.produto_id = d.main_id LEFT "
             "JOIN tbProdutos_Cores c ON c.descrit = d.cor LEFT JOIN tbProdutos_Tamanhos t ON t.descrit "
             "= d.tamanho WHERE d.main_id IS NOT NULL AND d.is_deleted = 0")) {
    SCOPED_TRACE(Text(row["codigo"]));
    EXPECT_TRUE(row["main_main_id"].is_null());
    EXPECT_TRUE(made.insert({Text(row["main_id"]), Text(row["cor"]), Text(row["tamanho"])}).second);
    std::string code = Text(row["main_codigo"]);
    if (row["main_cor"].is_null() && !row["cor"].is_null()) code += "-" + Text(row["cor_code"]);
    if (row["main_tamanho"].is_null() && !row["tamanho"].is_null()) code += "-" + Text(row["tamanho_code"]);
    EXPECT_EQ(Text(row["codigo"]), code);
  }
  EXPECT_GE(made.size(), 200u);
  // A size that reads as a number must not be the identifier of another size's row by accident of the data.
  EXPECT_GT(Count("tbProdutos WHERE tamanho = '42'"), 0);
  EXPECT_NE(Only("SELECT tamanho_id FROM tbProdutos_Tamanhos WHERE descrit = '42'"), "42");
}

TEST_F(Catalogue, CountsOrderedUnitsInTheStocks) {
  for (const auto& [orders, column] :
       {std::pair("tbEncomendas", "unidades_enc_clientes"), std::pair("tbEncomendas_Fornec", "unidades_enc_fornec")}) {
    const std::string header(orders);
    const std::string items = header + "_Items";
    const RowSet stock =
        Query("SELECT SUM(" + std::string(column) + ") AS n FROM tbProdutos_Stocks WHERE produto_id <> " + Id("10424"));
    const RowSet open =
        Query("SELECT SUM(" + items + ".quantidade) AS n FROM " + items + " INNER JOIN " + header + " ON " + header +
              ".armazem_id = " + items + ".armazem_id AND " + header + ".encomenda_main_id = " + items +
              ".encomenda_main_id INNER JOIN tbProdutos ON "
              "tbProdutos.produto_id = " +
              items + ".produto_id WHERE " + header + ".satisfeita = 0 AND (" + header + ".anulada = 0 OR " + header +
              ".anulada IS NULL) AND tbProdutos.is_deleted = 0 AND tbProdutos.produto_id <> " + Id("10424"));
    EXPECT_GT(Number(open.front()["n"]), 0) << orders;
    EXPECT_NEAR(Number(stock.front()["n"]), Number(open.front()["n"]), 1e-6) << orders;
  }
}

TEST_F(Catalogue, HoldsTheNextNumbersInItsCounters) {
  EXPECT_EQ(Only("SELECT contador FROM tbContadores WHERE nome = 'produto_codigo'"), "10707");
  EXPECT_EQ(Count("tbProdutos WHERE codigo = '10707'"), 0);
  EXPECT_EQ(
      Count("tbProdutos WHERE produto_id >= " + Only("SELECT contador FROM tbContadores WHERE nome = 'produto_id'")),
      0);
}

// Which of create (#2282), change (#2281) and delete (#2280) each user holds by the tokens of the policies.
TEST_F(Catalogue, GrantsPoliciesAsDocumented) {
  const std::map<std::string, std::set<std::string>> expected = {{"ana", {"#2280", "#2281", "#2282"}},
                                                                 {"bruno", {"#2281"}},
                                                                 {"carla", {}},
                                                                 {"diogo", {}},
                                                                 {"eva", {"#2280", "#2281", "#2282"}},
                                                                 {"d'orey", {"#2280", "#2281", "#2282"}},
                                                                 {"gil", {"#2281"}},
                                                                 {"maria", {"#2282"}},
                                                                 {"marta", {"#2282"}},
                                                                 {"rui", {"#2281"}}};
  std::map<std::string, std::set<std::string>> held;
  for (const Row user : Query("SELECT descrit FROM tbUsers")) held[Text(user["descrit"])];
  for (const Row row : Query("SELECT tbUsers.descrit, tbUsers.code AS user_code, tbGroups.code FROM "
                             "tbGroups_Users_Links LEFT JOIN tbGroups ON tbGroups_Users_Links.group_id = "
                             "tbGroups.group_id LEFT JOIN tbUsers ON tbGroups_Users_Links.user_id = tbUsers.user_id")) {
    std::string condition = "users_groups Like '%1" + Text(row["user_code"]) + "%' ";
    if (!row["code"].is_null()) condition += " OR users_groups LIKE '%1" + Text(row["code"]) + "%' ";
    for (const Row policy : Query("SELECT tbSecurityPolicies.code FROM tbSecurityPolicies WHERE 0 = 0  AND (" +
                                  condition + ") AND code LIKE '#228%'")) {
      held[Text(row["descrit"])].insert(Text(policy["code"]));
    }
  }
  EXPECT_EQ(held, expected);

  std::set<std::string> logins;
  for (const CatalogueLogin& login : CatalogueLogins()) logins.insert(login.user);
  for (const auto& [user, policies] : expected) EXPECT_TRUE(logins.count(user)) << user;
  EXPECT_TRUE(logins.count("suite"));
}

TEST_F(Catalogue, KeepsLettersOfEveryKind) {
  EXPECT_EQ(Only("SELECT nome_union FROM tbContactos WHERE contacto_id = 116"), "Przędzalnia Północna Sp. z o.o.");
  EXPECT_EQ(Only("SELECT nome FROM tbProdutos WHERE codigo = '10006'"), "Tempero \"Vinha d'Alho\" tradicional 37,5 cl");
  EXPECT_EQ(base::ToText(Query("SELECT nome FROM tbProdutos WHERE codigo = '10500-AZ'").front().At(0), PointLocale()),
            "Caneta");
}

// Every row of every table, in the order of the keys.
std::string Dump(Connection& connection) {
  std::string dump;
  for (const char* table :
       {"tbProdutos ORDER BY produto_id", "tbProdutos_Precos ORDER BY produto_id, tipo_id",
        "tbProdutos_Stocks ORDER BY produto_id, armazem_id",
        "tbProdutos_Stocks_Minimos ORDER BY produto_id, armazem_id",
        "tbDocumentos ORDER BY armazem_id, documento_main_id",
        "tbDocumentos_Items ORDER BY armazem_id, documento_item_id",
        "tbEncomendas_Fornec ORDER BY armazem_id, encomenda_main_id", "tbContadores ORDER BY nome"}) {
    const RowSet rows = connection.Query("SELECT * FROM " + std::string(table));
    for (const Row row : rows) {
      for (std::size_t i = 0; i < rows.columns().size(); ++i) dump += Text(row.At(i)) + "|";
      dump += "\n";
    }
  }
  return dump;
}

TEST(CatalogueOptionsTest, SameOptionsGiveTheSameData) {
  CatalogueOptions options = SampleOptions();
  options.products = 120;
  SampleDatabase first(options);
  SampleDatabase second(options);
  options.seed = 2;
  SampleDatabase other(options);
  const std::string dump = Dump(first.connection());
  EXPECT_GT(dump.size(), 10000u);
  EXPECT_TRUE(dump == Dump(second.connection()));
  EXPECT_FALSE(dump == Dump(other.connection()));
}

TEST(CatalogueOptionsTest, MakesAsManyRowsAsAsked) {
  CatalogueOptions options = SampleOptions();
  options.products = 2000;
  options.history_lines = 3000;
  options.modules = Modules::kAll;
  SampleDatabase sample(options);
  Connection& connection = sample.connection();
  // One more: the product of which nothing is known comes with the exceptions.
  EXPECT_EQ(Number(connection.Query("SELECT COUNT(*) AS n FROM tbProdutos").front()["n"]), 2001);
  EXPECT_EQ(connection.Query("SELECT * FROM sysobjects WHERE name = 'tbProjectos_Servicos_Tipos'").size(), 1u);
  EXPECT_GT(connection.Query("SELECT * FROM tbProjectos_Servicos_Tipos").size(), 1u);
  const RowSet busy =
      connection.Query("SELECT produto_id FROM tbProdutos WHERE codigo = '" + std::string(kBusyProductCode) + "'");
  const std::size_t lines =
      connection.Query(HistoryQuery(kHistorySources[0], kHistorySources[0].columns, Text(busy.front().At(0)))).size();
  EXPECT_GE(lines, 3000u);
  EXPECT_LT(lines, 3100u);
}

TEST(CatalogueOptionsTest, MayLeaveTheModulesOut) {
  CatalogueOptions options = SampleOptions();
  options.products = 100;
  options.modules = Modules::kNone;
  SampleDatabase sample(options);
  EXPECT_TRUE(sample.connection().Query("SELECT * FROM sysobjects WHERE name = 'tbTratamentos'").empty());
}

TEST(CatalogueOptionsTest, EndsItsHistoryOnTheGivenDay) {
  CatalogueOptions options;
  options.today = std::chrono::year(2024) / 1 / 1;
  options.products = 100;
  options.history_lines = 50;
  SampleDatabase sample(options);
  const auto count = [&](const std::string& condition) {
    return Number(
        sample.connection().Query("SELECT COUNT(*) AS n FROM tbDocumentos WHERE data " + condition).front()["n"]);
  };
  EXPECT_GE(count(">= CONVERT(DATETIME,'2024-01-01',102)"), 3) << "the extra lines, 20 in a document";
  EXPECT_EQ(count(">= CONVERT(DATETIME,'2024-01-02',102)"), 0);
}

}  // namespace
}  // namespace quenta::sandbox
