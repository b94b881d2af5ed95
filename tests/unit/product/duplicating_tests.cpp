#include <algorithm>

#include "base/date.h"
#include "data/check_permissions.h"
#include "generator/dependant.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

using ports::Answer;

class DuplicatingTest : public SampleComponentTest {
 protected:
  void SetUp() override {
    LogIn("ana");
    desktop.answer = Answer::kYes;
  }

  std::string Of(std::int32_t id, const std::string& column) {
    return SqlText("SELECT " + column + " FROM tbProdutos WHERE produto_id = " + std::to_string(id));
  }
  std::string Count(const std::string& table, std::int32_t id) {
    return SqlText("SELECT COUNT(*) FROM " + table + " WHERE produto_id = " + std::to_string(id));
  }
  std::string Counters() {
    return SqlText("SELECT contador FROM tbContadores WHERE nome = 'produto_codigo'") + " " +
           SqlText("SELECT contador FROM tbContadores WHERE nome = 'produto_id'");
  }
  void ExpectReport(const ports::ErrorReport& report) {
    EXPECT_EQ(report.product + "/" + report.project + "/" + report.module + "/" + report.procedure,
              "Programa de Contabilidade/Quenta_Contabilidade/frmMain/Gravar");
  }
  // The statements between reading the source and showing the copy.
  std::vector<std::string> CopyStatements(std::int32_t source, std::int32_t copy) const {
    const auto& all = database.statements;
    const auto first =
        std::find(all.begin(), all.end(), "SELECT * FROM tbProdutos WHERE produto_id = " + std::to_string(source));
    const auto fill = std::find(first, all.end(), "SELECT @@TRANCOUNT as valor");  // before the first list is filled
    EXPECT_NE(std::find(fill, all.end(), "SELECT * FROM tbProdutos WHERE produto_id = " + std::to_string(copy)),
              all.end())
        << "the copy is loaded as any product";
    return {first, fill};
  }
};

TEST_F(DuplicatingTest, TheStatementsAreTheSuitesToTheBlank) {
  const std::int32_t source = IdOfCode("10000");
  const std::string id = std::to_string(source);
  for (const char* sql :
       {"DELETE FROM tbProdutos WHERE produto_id = 900", "DELETE FROM tbArmazens WHERE armazem_id > 2",
        "UPDATE tbContadores SET contador = 41 WHERE nome = 'produto_codigo'",
        "UPDATE tbContadores SET contador = 900 WHERE nome = 'produto_id'"}) {
    Sql(sql);
  }
  Sql("UPDATE tbProdutos SET nome = 'Vinha d''Alho', familia_id = 3, subfamilia_id = null, obs = 'l''obs', "
      "fornecedor_id "
      "= 7, marca = null, descontinuado = 1, tipo_id = 1, tamanho = '42', cor = 'Sangue d''Boi', largura = 1.5, "
      "profundidade = -0.25, altura = null, centro_id = 2, main_id = 5 WHERE produto_id = " +
      id);
  Sql("DELETE FROM tbProdutos_Precos WHERE tipo_id > 1 AND produto_id = " + id);
  Sql("UPDATE tbProdutos_Precos SET preco = 8.13008, iva_id = 4, iva = 0, iva_descrit = 'd''outra lei', preco_total = "
      "8.13008, desconto = null, predef = 1 WHERE produto_id = " +
      id);
  Sql("UPDATE tbProdutos_Stocks_Minimos SET unidades = 2.5, reposicao = 9 WHERE armazem_id = 1 AND produto_id = " + id);
  Sql("DELETE FROM tbProdutos_Stocks_Minimos WHERE armazem_id > 1 AND produto_id = " + id);
  Sql("UPDATE tbProdutos_Stocks SET unidades = 77 WHERE produto_id = " + id);
  const auto form = OpenForm(source);
  database.Forget();
  form->Toolbar1.Clicked("duplicar");

  EXPECT_TRUE(reporting.reports.empty()) << reporting.reports[0].description;
  EXPECT_EQ(
      CopyStatements(source, 900),
      (std::vector<std::string>{
          "SELECT * FROM tbProdutos WHERE produto_id = " + id,
          "SELECT * FROM tbContadores WHERE nome = 'produto_codigo'",
          "UPDATE tbContadores SET contador = contador + 1 WHERE nome = 'produto_codigo'",
          "SELECT * FROM tbContadores WHERE nome = 'produto_id'",
          "UPDATE tbContadores SET contador = contador + 1 WHERE nome = 'produto_id'",
          "INSERT INTO tbProdutos (produto_id, codigo, nome, familia_id, subfamilia_id, obs, data_created, "
          "data_modified, fornecedor_id, marca, descontinuado, tipo_id, tamanho, cor, largura, profundidade, altura, "
          "centro_id) VALUES (900,'42','Vinha d' + CHAR(39) + 'Alho (Cópia)',3, null, 'l' + CHAR(39) + 'obs', "
          "GETDATE(), GETDATE(), 7, null, 1, 1, '42', 'Sangue d' + CHAR(39) + 'Boi', 1.5, -0.25, null, 2)",
          "SELECT * FROM tbArmazens WHERE has_stocks <> 0",
          "INSERT INTO tbProdutos_Stocks (produto_id, armazem_id, unidades) VALUES (900,1,0)",
          "INSERT INTO tbProdutos_Stocks (produto_id, armazem_id, unidades) VALUES (900,2,0)",
          "SELECT * FROM tbProdutos_Stocks_Minimos WHERE produto_ID = " + id,
          "INSERT INTO tbProdutos_Stocks_Minimos (produto_id, armazem_id, unidades) VALUES (900,1,2.5)",
          "SELECT * FROM tbProdutos_Precos WHERE produto_id = " + id,
          "INSERT INTO tbProdutos_Precos (tipo_id, produto_id, preco, iva_id, iva, iva_descrit, preco_total, desconto, "
          "predef) VALUES (1, 900, 8.13008, 4, 0, 'd' + CHAR(39) + 'outra lei', 8.13008, null, 1)",
      }));
  EXPECT_EQ(Counters(), "42 901");
  EXPECT_EQ(Of(900, "nome"), "Vinha d'Alho (Cópia)");
  EXPECT_EQ(Of(900, "main_id"), "(null)") << "the copy of a dependant is none";
  EXPECT_EQ(Of(900, "is_deleted"), "False");
  EXPECT_EQ(SqlText("SELECT iva_descrit FROM tbProdutos_Precos WHERE produto_id = 900"), "d'outra lei");
}

// Each way on which notes travel back into a statement; the server of the test cuts and joins lines as the real one.
TEST_F(DuplicatingTest, NotesSurviveSavingDuplicatingAndGeneratingByteForByte) {
  std::string many_quotes = "'";
  while (many_quotes.size() < 20000) many_quotes += "garrafa d'água, nº " + std::to_string(many_quotes.size()) + "\r\n";
  for (const std::string& notes :
       {many_quotes + ".", std::string(20000, 'x'), std::string("C:\\fotos\\\r\nD:\\\nE:\\\\\r\n\\\n\\\n'\\'\r\nfim\\"),
        "\\\r\n" + std::string(8000, 'x')}) {
    const auto form = OpenForm(IdOfCode("10300"));
    const std::int32_t saved = form->ProdutoId();
    form->FXObs.Typed(notes);
    ASSERT_TRUE(form->Gravar());
    EXPECT_TRUE(Of(saved, "obs") == notes) << "saved: " << notes.substr(0, 20);
    const generator::Attribute cor{"Verde " + std::to_string(notes.size()), "VD" + std::to_string(notes.size())};
    const ports::RowSet rows = Sql("SELECT * FROM tbProdutos WHERE produto_id = " + std::to_string(saved));
    const generator::MainProduct main(session, rows.front());
    ASSERT_TRUE(main.CreateDependant({.cor = &cor}));
    EXPECT_TRUE(Of(IdOfCode(main.CodeOf({.cor = &cor})), "obs") == notes) << "generated: " << notes.substr(0, 20);
    form->Duplicar();
    ASSERT_NE(form->ProdutoId(), saved);
    EXPECT_TRUE(Of(form->ProdutoId(), "obs") == notes) << "duplicated: " << notes.substr(0, 20);
    ASSERT_TRUE(form->Gravar());
    EXPECT_TRUE(Of(form->ProdutoId(), "obs") == notes) << "read and saved again: " << notes.substr(0, 20);
  }
  EXPECT_TRUE(reporting.reports.empty());
}

TEST_F(DuplicatingTest, TheFormShowsTheCopyAsANewProductThatCanBeDiscardedOrKept) {
  const auto form = OpenForm(IdOfCode("10001"));
  const std::int32_t source = form->ProdutoId();
  form->Toolbar1.Clicked("duplicar");
  ASSERT_EQ(desktop.messages.size(), 1U);
  EXPECT_EQ(desktop.messages[0].text, "Deseja duplicar este produto?");
  EXPECT_EQ(desktop.messages[0].title, "Registo de Documentos");
  EXPECT_EQ(desktop.messages[0].icon, ports::Icon::kQuestion);
  EXPECT_EQ(desktop.messages[0].buttons, ports::Buttons::kYesNo);
  EXPECT_TRUE(desktop.messages[0].system_modal);
  EXPECT_EQ(form_host.window_order, (std::vector<bool>{true, false}));
  const std::int32_t discarded = form->ProdutoId();
  EXPECT_NE(discarded, source);
  EXPECT_EQ(form->FXCodigo.text(), Of(discarded, "codigo"));
  EXPECT_EQ(form->FXNome.text(), Of(source, "nome") + " (Cópia)");
  EXPECT_TRUE(form->Altered() && form->Toolbar1.Item("gravar").enabled);

  // A copy of the copy, which is an existing product like any other once it is there.
  form->Duplicar();
  const std::int32_t kept = form->ProdutoId();
  EXPECT_EQ(form->FXNome.text(), Of(source, "nome") + " (Cópia) (Cópia)");
  ASSERT_TRUE(form->Gravar()) << desktop.messages.back().text;
  desktop.answer = Answer::kNo;
  EXPECT_TRUE(form->Unload());
  EXPECT_EQ(Count("tbProdutos", kept), "1") << "it was saved";

  const auto again = OpenForm(discarded);
  desktop.answer = Answer::kYes;
  again->Duplicar();
  const std::int32_t copy = again->ProdutoId();
  desktop.answer = Answer::kNo;
  EXPECT_TRUE(again->Unload());
  for (const char* table : {"tbProdutos", "tbProdutos_Precos", "tbProdutos_Stocks", "tbProdutos_Stocks_Minimos"}) {
    EXPECT_EQ(Count(table, copy), "0") << table;
    EXPECT_NE(Count(table, discarded), "0") << table;
  }
}

TEST_F(DuplicatingTest, WhatTheSourceLacksTheCopyLacks) {
  const struct {
    const char* what;
    const char* prepare;
    const char* column;
    const char* value;
  } cases[] = {
      {"no name", "UPDATE tbProdutos SET nome = null", "nome", "(null)"},
      {"no attributes", "UPDATE tbProdutos SET cor = null, altura = null", "cor", "(null)"},
      {"a deleted source", "UPDATE tbProdutos SET is_deleted = 1", "is_deleted", "False"},
      {"no warehouse with stocks", "UPDATE tbArmazens SET has_stocks = 0",
       "(SELECT COUNT(*) FROM tbProdutos_Stocks s WHERE s.produto_id = tbProdutos.produto_id)", "0"},
      {"no minimums", "DELETE FROM tbProdutos_Stocks_Minimos",
       "(SELECT COUNT(*) FROM tbProdutos_Stocks_Minimos s WHERE s.produto_id = tbProdutos.produto_id)", "0"},
      {"no prices", "DELETE FROM tbProdutos_Precos",
       "(SELECT COUNT(*) FROM tbProdutos_Precos s WHERE s.produto_id = tbProdutos.produto_id)", "0"},
  };
  for (const auto& [what, prepare, column, value] : cases) {
    SCOPED_TRACE(what);
    Sql(prepare);
    const auto form = OpenForm(IdOfCode("10011"));
    const std::int32_t source = form->ProdutoId();
    form->Duplicar();
    EXPECT_NE(form->ProdutoId(), source);
    EXPECT_EQ(Of(form->ProdutoId(), column), value);
  }
  EXPECT_TRUE(reporting.reports.empty()) << reporting.reports[0].description;
}

TEST_F(DuplicatingTest, NoTheRefusalAndAMissingSourceWriteNothing) {
  const auto form = OpenForm(IdOfCode("10001"));
  const std::int32_t source = form->ProdutoId();
  const std::string before = Counters() + SqlText("SELECT COUNT(*) FROM tbProdutos");
  const auto expect_nothing_done = [&] {
    EXPECT_EQ(Counters() + SqlText("SELECT COUNT(*) FROM tbProdutos"), before);
    EXPECT_EQ(form->ProdutoId(), source);
    EXPECT_FALSE(form->Altered());
    EXPECT_EQ(form_host.window_order, (std::vector<bool>{true, false}));
    form_host.window_order.clear();
  };
  desktop.answer = Answer::kNo;
  form->Duplicar();
  EXPECT_EQ(desktop.messages.size(), 1U);
  expect_nothing_done();

  desktop.answer = Answer::kYes;
  session.state().session_user = "bruno";
  form->Duplicar();
  EXPECT_EQ(desktop.messages.back().text,
            "Não tem permissões para criar novos produtos. Contacte o administrador de segurança para que lhe sejam "
            "atribuídas as permissões necessárias.");
  EXPECT_EQ(desktop.messages.back().title, "Politicas de Segurança");
  EXPECT_EQ(desktop.messages.back().icon, ports::Icon::kCritical);
  expect_nothing_done();

  session.state().session_user = "ana";
  const std::size_t messages = desktop.messages.size();
  Sql("UPDATE tbProdutos SET produto_id = 123456 WHERE produto_id = 900");
  const auto gone = OpenForm(123456);
  Sql("DELETE FROM tbProdutos WHERE produto_id = 123456");
  gone->Duplicar();
  EXPECT_EQ(Counters(), before.substr(0, Counters().size()));
  EXPECT_EQ(desktop.messages.size(), messages + 1) << "the question alone";
  EXPECT_TRUE(reporting.reports.empty());
}

// Nothing is undone: the report has to say where what is left can be found.
TEST_F(DuplicatingTest, AFailureAtEachStatementKeepsTheProductShownAndNamesTheHalfCopy) {
  Sql("DELETE FROM tbArmazens WHERE armazem_id > 2");
  Sql("DELETE FROM tbProdutos_Stocks_Minimos WHERE armazem_id > 2");
  const auto form = OpenForm(IdOfCode("10001"));
  const std::int32_t source = form->ProdutoId();
  const std::string codigo = form->FXCodigo.text();
  data::CheckSecurityPolicy(session, "ana", "#2282", nullptr);
  // The first statement only tries the connection, and mends it when it fails.
  int failures = 0;
  for (int i = 1;; ++i) {
    ASSERT_LT(i, 40);
    const std::int32_t next = std::stoi(SqlText("SELECT contador FROM tbContadores WHERE nome = 'produto_id'"));
    database.Forget();
    reporting.reports.clear();
    database.fail_at = i;
    form->Duplicar();
    // All was written; now it is the copy's own load that fails.
    if (form->ProdutoId() != source) break;
    SCOPED_TRACE(database.statements.back());
    EXPECT_EQ(database.statements.size(), static_cast<std::size_t>(i) + 1) << "it stops where it is";
    database.Forget();
    ++failures;
    ASSERT_EQ(reporting.reports.size(), 1U);
    ExpectReport(reporting.reports[0]);
    EXPECT_EQ(form->FXCodigo.text(), codigo);
    EXPECT_FALSE(form->Altered());
    const bool numbered = std::stoi(SqlText("SELECT contador FROM tbContadores WHERE nome = 'produto_id'")) == next + 1;
    const std::string& description = reporting.reports[0].description;
    EXPECT_EQ(description.find("produto_id = " + std::to_string(next)) != std::string::npos, numbered) << description;
    EXPECT_EQ(description.find("codigo = ") != std::string::npos, i > 3) << description;
    EXPECT_EQ(Count("tbProdutos", next), i > 6 ? "1" : "0") << "what is there stays";
  }
  EXPECT_EQ(failures, 16) << "each statement up to the last price line";
  EXPECT_FALSE(session::InTransaction(session));
}

TEST_F(DuplicatingTest, WhatTheServerRefusesIsReportedWithItsReason) {
  const struct {
    const char* what;
    const char* prepare;
    const char* codigo;
    const char* reason;
  } cases[] = {
      {"a name that leaves no room for the mark", "", "10702", "truncated"},
      {"an identifier that is taken", "UPDATE tbContadores SET contador = 900 WHERE nome = 'produto_id'", "10001",
       "PK_tbProdutos"},
      {"no counter of identifiers", "DELETE FROM tbContadores WHERE nome = 'produto_id'", "10001", "'produto_id'"},
      {"no counter of codes", "DELETE FROM tbContadores", "10001", "'produto_codigo'"},
  };
  for (const auto& [what, prepare, codigo, reason] : cases) {
    SCOPED_TRACE(what);
    if (*prepare != '\0') Sql(prepare);
    const std::string products = SqlText("SELECT COUNT(*) FROM tbProdutos");
    const auto form = OpenForm(IdOfCode(codigo));
    reporting.reports.clear();
    form->Duplicar();
    ASSERT_EQ(reporting.reports.size(), 1U);
    ExpectReport(reporting.reports[0]);
    EXPECT_NE(reporting.reports[0].description.find(reason), std::string::npos) << reporting.reports[0].description;
    EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos"), products);
    EXPECT_EQ(form->FXCodigo.text(), codigo);
  }
}

// Acting on a row that stayed would change another product. What is open is read again, the rest is empty.
TEST_F(DuplicatingTest, NoListKeepsRowsOfTheOriginal) {
  for (const char* const tab : {"precos", "dependentes", "vendas"}) {
    const auto form = OpenForm(IdOfCode("10300"));
    form->FXData_Inicio.set_value(*base::MakeDate({2020, 1, 1, 0, 0, 0}));
    form->Fill_Dependentes();
    form->ListView13.Add("1#1", "01-01-2026");
    form->FXQuantidade.set_text("1,00");
    form->TabStrip1.SelectKey(tab);
    ASSERT_GT(form->ListView3.Count(), 0);
    form->Duplicar();
    ASSERT_TRUE(form->Altered()) << "the copy is shown";
    EXPECT_EQ(form->ListView3.Count(), 0) << tab;
    EXPECT_EQ(form->ListView13.Count(), 0) << tab;
    EXPECT_EQ(form->FXQuantidade.text(), "") << tab;
  }
  // Nothing of the product is read when a lookup list ends the load with an error.
  database.Forget();
  const auto form = OpenForm(IdOfCode("10300"));
  const auto lookup = std::ranges::find(database.statements, "SELECT * FROM tbProdutos_Familias ORDER BY descrit");
  const auto position = static_cast<int>(lookup - database.statements.begin());
  form->Fill_Dependentes();
  form->ListView13.Add("1#1", "01-01-2026");
  database.Forget();
  database.fail_at = position;
  form->Fill();
  database.Forget();
  for (const controls::ListView* list : {&form->ListView1, &form->ListView2, &form->ListView3, &form->ListView13}) {
    EXPECT_EQ(list->Count(), 0) << list->name();
  }
  EXPECT_EQ(form->FXSub_Familia_ID.ListCount(), 0);
  EXPECT_EQ(form->PrecoKey, "");
}

TEST_F(DuplicatingTest, OnlyASavedProductCanBeDuplicatedOrDeleted) {
  const auto enabled = [](const product::frmMain& form) {
    return std::pair(form.Toolbar1.Item("duplicar").enabled, form.Toolbar1.Item("apagar").enabled);
  };
  const auto form = OpenForm(0);
  EXPECT_EQ(enabled(*form), std::pair(false, false));
  form->Toolbar1.Clicked("duplicar");
  form->Toolbar1.Clicked("apagar");
  EXPECT_TRUE(desktop.messages.empty());
  form->FXFamilia_ID.Chosen(0);
  form->FXNome.Typed("Gravado");
  ASSERT_TRUE(form->Gravar());
  EXPECT_EQ(enabled(*form), std::pair(true, true));
  EXPECT_EQ(enabled(*OpenForm(IdOfCode("10000"))), std::pair(true, true));
}

}  // namespace
}  // namespace quenta::tests
