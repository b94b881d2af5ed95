#include <algorithm>

#include "data/check_permissions.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

using ports::Answer;

class DeletingTest : public SampleComponentTest {
 protected:
  void SetUp() override {
    LogIn("ana");
    desktop.answer = Answer::kYes;
  }

  // Prices, stocks, minimums, whether deleted, and the notes.
  std::string StateOf(std::int32_t produto_id) {
    const std::string id = std::to_string(produto_id);
    std::string state;
    for (const char* table : {"tbProdutos_Precos", "tbProdutos_Stocks", "tbProdutos_Stocks_Minimos"}) {
      state += SqlText(std::string("SELECT COUNT(*) FROM ") + table + " WHERE produto_id = " + id) + " ";
    }
    return state + SqlText("SELECT is_deleted FROM tbProdutos WHERE produto_id = " + id) + " " +
           SqlText("SELECT obs FROM tbProdutos WHERE produto_id = " + id);
  }
  void DropModules() {
    for (const char* table : {"tbAssociados_Quotas_Tipos", "tbTratamentos", "tbProjectos_Servicos_Tipos"}) {
      Sql(std::string("DROP TABLE ") + table);
    }
  }
  void ExpectReport(const char* project, const char* procedure) {
    ASSERT_EQ(reporting.reports.size(), 1U);
    const ports::ErrorReport& report = reporting.reports[0];
    EXPECT_EQ(report.product + "/" + report.project + "/" + report.module + "/" + report.procedure,
              std::string("Programa de Contabilidade/") + project + "/frmMain/" + procedure);
  }

  static constexpr const char* kDeleted = "0 0 0 True (null)";
};

TEST_F(DeletingTest, TheProductIsMarkedAndItsRowsGo) {
  const auto form = OpenForm(IdOfCode("10000"));
  const std::int32_t produto_id = form->ProdutoId();
  const std::string id = std::to_string(produto_id);
  const std::string counters = SqlText("SELECT SUM(contador) FROM tbContadores");
  Sql("UPDATE tbProdutos SET data_modified = CONVERT(DATETIME,'2001-01-01',102), obs = 'notas' WHERE produto_id = " +
      id);
  form->Apagar();  // fills the permissions of the user
  const auto again = OpenForm(IdOfCode("10001"));
  const std::string other = std::to_string(again->ProdutoId());
  database.Forget();
  again->Toolbar1.Clicked("apagar");

  EXPECT_EQ(StateOf(produto_id), kDeleted);
  EXPECT_EQ(SqlText("SELECT codigo FROM tbProdutos WHERE produto_id = " + id), "10000");
  EXPECT_NE(SqlText("SELECT data_modified FROM tbProdutos WHERE produto_id = " + id).find("20"), std::string::npos);
  EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos WHERE data_modified < CONVERT(DATETIME,'2002-01-01',102)"), "0");
  EXPECT_EQ(SqlText("SELECT SUM(contador) FROM tbContadores"), counters) << "numbers are not given back";
  EXPECT_FALSE(again->loaded());
  EXPECT_TRUE(form_host.shown.empty());
  EXPECT_EQ(form_host.window_order, (std::vector<bool>{true, true})) << "topmost until they closed";
  EXPECT_EQ(desktop.messages.back().text,
            "Deseja apagar este Produto/Serviço?\n\r\n\rSe remover este registo não será possível recuperá-lo.");
  EXPECT_EQ(desktop.messages.back().title, "Registo de Documentos");
  EXPECT_EQ(desktop.messages.back().icon, ports::Icon::kQuestion);
  EXPECT_EQ(desktop.messages.back().buttons, ports::Buttons::kYesNo);
  EXPECT_TRUE(desktop.messages.back().system_modal);
  EXPECT_EQ(
      database.statements,
      (std::vector<std::string>{
          "SELECT @@TRANCOUNT as valor",  // for the permission: whether the connection lives
          "SELECT * FROM sysobjects WHERE name = 'tbAssociados_Quotas_Tipos'",
          "SELECT * FROM tbAssociados_Quotas_Tipos WHERE produto_id = " + other,
          "SELECT * FROM sysobjects WHERE name = 'tbTratamentos'",
          "SELECT * FROM tbTratamentos WHERE produto_id = " + other,
          "SELECT * FROM sysobjects WHERE name = 'tbProjectos_Servicos_Tipos'",
          "SELECT * FROM tbProjectos_Servicos_Tipos WHERE produto_id = " + other,
          "SELECT @@TRANCOUNT as valor",
          "BEGIN",
          "DELETE FROM tbProdutos_Precos WHERE produto_id = " + other,
          "DELETE FROM tbProdutos_Stocks WHERE produto_id = " + other,
          "DELETE FROM tbProdutos_Stocks_Minimos WHERE produto_id = " + other,
          "UPDATE tbProdutos SET is_deleted = 1, data_modified = GETDATE(), Obs = null WHERE produto_id = " + other,
          "SELECT @@TRANCOUNT as valor",
          "COMMIT",
      }));
}

TEST_F(DeletingTest, WithoutTheOtherModulesAndWithoutRowsItIsTheSame) {
  DropModules();
  const auto form = OpenForm(IdOfCode("10425"));
  const std::int32_t produto_id = form->ProdutoId();
  for (const char* table : {"tbProdutos_Precos", "tbProdutos_Stocks", "tbProdutos_Stocks_Minimos"}) {
    Sql(std::string("DELETE FROM ") + table);
  }
  form->Apagar();
  EXPECT_EQ(StateOf(produto_id), kDeleted);
  EXPECT_EQ(desktop.messages.size(), 1U);
  EXPECT_TRUE(reporting.reports.empty()) << reporting.reports[0].description;
}

TEST_F(DeletingTest, AReferenceOfAnotherModuleBlocks) {
  const auto id = std::to_string(IdOfCode("10000"));
  const struct {
    const char* table;
    const char* refusal;
    const char* not_asked;  // the next table
  } cases[] = {
      {"tbProjectos_Servicos_Tipos (servico_tipo_id, produto_id)",
       "Este produto/serviço não pode ser eliminado, porque está relacionado com o módulo de Eventos (Serviços "
       "Adicionais).",
       "nothing"},
      {"tbTratamentos (tratamento_id, produto_id)",
       "Este produto/serviço não pode ser eliminado, porque está relacionado com o módulo de Tratamentos.",
       "tbProjectos_Servicos_Tipos"},
      {"tbAssociados_Quotas_Tipos (quota_tipo_id, produto_id)",
       "Este produto/serviço não pode ser eliminado, porque está relacionado com as Quotizações.", "tbTratamentos"},
  };
  // Each one stands before those that were there already.
  for (const auto& [table, refusal, not_asked] : cases) {
    Sql(std::string("INSERT INTO ") + table + " VALUES (999, " + id + ")");
    const auto form = OpenForm(IdOfCode("10000"));
    const std::string before = StateOf(form->ProdutoId());
    database.Forget();
    form_host.window_order.clear();
    form->Apagar();
    EXPECT_EQ(desktop.messages.back().text, refusal);
    EXPECT_EQ(desktop.messages.back().title, form->caption());
    EXPECT_EQ(desktop.messages.back().icon, ports::Icon::kInformation);
    EXPECT_EQ(StateOf(form->ProdutoId()), before);
    EXPECT_TRUE(form->loaded());
    EXPECT_EQ(form_host.window_order, (std::vector<bool>{true})) << "it stays topmost";
    for (const std::string& statement : database.statements) {
      EXPECT_EQ(statement.find(not_asked), std::string::npos) << statement;
    }
  }
}

TEST_F(DeletingTest, NoAndTheRefusalChangeNothing) {
  const auto form = OpenForm(IdOfCode("10000"));
  const std::string before = StateOf(form->ProdutoId());
  desktop.answer = Answer::kNo;
  form->Apagar();
  EXPECT_EQ(form_host.window_order, (std::vector<bool>{true, false}));
  desktop.answer = Answer::kYes;
  session.state().session_user = "bruno";
  form->Apagar();
  EXPECT_EQ(desktop.messages.back().text,
            "Não tem permissões para apagar produtos. Contacte o administrador de segurança para que lhe sejam "
            "atribuídas as permissões necessárias.");
  EXPECT_EQ(desktop.messages.back().title, "Politicas de Segurança");
  EXPECT_EQ(desktop.messages.back().icon, ports::Icon::kCritical);
  EXPECT_EQ(form_host.window_order, (std::vector<bool>{true, false, true})) << "it stays topmost";
  EXPECT_EQ(StateOf(form->ProdutoId()), before);
  EXPECT_TRUE(form->loaded());
}

TEST_F(DeletingTest, AFailureAtEachStatementLeavesTheProductWholeAndTheNextTrySucceeds) {
  Sql("UPDATE tbProdutos SET obs = 'notas' WHERE codigo = '10000'");
  const auto form = OpenForm(IdOfCode("10000"));
  const std::string before = StateOf(form->ProdutoId());
  data::CheckSecurityPolicy(session, "ana", "#2280", nullptr);
  // The first statement only tries the connection, and mends it when it fails.
  int failures = 0;
  for (int i = 1; form->loaded(); ++i) {
    ASSERT_LT(i, 30);
    database.Forget();
    reporting.reports.clear();
    form_host.window_order.clear();
    database.fail_at = i;
    form->Apagar();
    database.Forget();
    if (!form->loaded()) break;
    SCOPED_TRACE("statement " + std::to_string(i));
    ++failures;
    EXPECT_EQ(StateOf(form->ProdutoId()), before);
    EXPECT_FALSE(session::InTransaction(session));
    EXPECT_NO_THROW(Sql("UPDATE tbProdutos SET obs = obs WHERE produto_id = 900")) << "nothing is left locked";
    ExpectReport("Quenta_Contabilidade", "Gravar");
    EXPECT_EQ(form_host.window_order, (std::vector<bool>{true, false}));
  }
  EXPECT_EQ(failures, 14) << "each statement up to the commit";
  EXPECT_EQ(StateOf(form->ProdutoId()), kDeleted);
}

// Kept as the suite has it: here, and in Reactivate, the host's transaction shares the operation's end.
TEST_F(DeletingTest, TheHostsTransactionIsCommittedWithItAndRolledBackWithIt) {
  const auto begin = [&] {
    session.SharedConnection().BeginTransaction();
    session.Execute("UPDATE tbProdutos SET obs = 'do anfitrião' WHERE produto_id = 900");
    database.Forget();
  };
  const auto notes = [&] { return SqlText("SELECT obs FROM tbProdutos WHERE produto_id = 900"); };
  const auto form = OpenForm(IdOfCode("10000"));
  const std::string before = StateOf(form->ProdutoId());
  data::CheckSecurityPolicy(session, "ana", "#2280", nullptr);
  begin();
  database.fail_at = 10;  // of the deletes, the third
  form->Apagar();
  ExpectReport("Quenta_Contabilidade", "Gravar");
  EXPECT_EQ(database.statements.back(), "ROLLBACK");
  EXPECT_FALSE(session::InTransaction(session));
  EXPECT_EQ(notes(), "(null)");
  EXPECT_EQ(StateOf(form->ProdutoId()), before);

  begin();
  form->Apagar();
  EXPECT_EQ(std::count(database.statements.begin(), database.statements.end(), "BEGIN"), 0);
  EXPECT_EQ(notes(), "do anfitrião");
  EXPECT_EQ(StateOf(form->ProdutoId()), kDeleted);
}

TEST_F(DeletingTest, ATransactionOfAnotherOperationIsLeftToIt) {
  const auto form = OpenForm(IdOfCode("10000"));
  session::Transaction other(session);
  session.Execute("UPDATE tbProdutos SET obs = 'de outra operação' WHERE produto_id = 900");
  form->Apagar();
  ExpectReport("Quenta_Contabilidade", "Gravar");
  other.Commit();
  EXPECT_EQ(SqlText("SELECT obs FROM tbProdutos WHERE produto_id = 900"), "de outra operação");
}

TEST_F(DeletingTest, ClosingAsksAboutChangesThatWereNotSaved) {
  const auto form = OpenForm(IdOfCode("10000"));
  form->FXNome.Typed("Alterado");
  int questions = 0;
  desktop.while_asking = [&] { desktop.answer = ++questions == 1 ? Answer::kYes : Answer::kNo; };
  form->Apagar();
  EXPECT_EQ(desktop.messages.back().text, "Deseja gravar as alterações efectuadas?");
  EXPECT_FALSE(form->loaded());
  EXPECT_EQ(StateOf(form->ProdutoId()), kDeleted);
  EXPECT_NE(SqlText("SELECT nome FROM tbProdutos WHERE codigo = '10000'"), "Alterado");
}

TEST_F(DeletingTest, ReactivateMakesTheFormUsableAgain) {
  const auto form = OpenForm(IdOfCode("10000"));
  form->set_enabled(false);
  form->Reactivate(1, *form);
  EXPECT_TRUE(form->enabled());
  EXPECT_TRUE(reporting.reports.empty());
}

}  // namespace
}  // namespace quenta::tests
