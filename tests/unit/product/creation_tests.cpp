#include "support/sample_component.h"

namespace quenta::tests {
namespace {

class CreationTest : public SampleComponentTest {
 protected:
  void SetUp() override { LogIn("ana"); }
  std::vector<std::string> Written() const {
    std::vector<std::string> written;
    for (const std::string& statement : database.statements) {
      if (statement.rfind("SELECT", 0) != 0) written.push_back(statement);
    }
    return written;
  }
};

TEST_F(CreationTest, ANewProductIsNumberedAndInsertedWithItsRows) {
  Sql("DELETE FROM tbArmazens WHERE armazem_id > 2");
  Sql("UPDATE tbContadores SET contador = 41000 WHERE nome = 'produto_codigo'");
  Sql("UPDATE tbContadores SET contador = 90000 WHERE nome = 'produto_id'");
  const auto form = OpenForm(0);
  EXPECT_TRUE(reporting.reports.empty()) << reporting.reports[0].description;
  EXPECT_EQ(Written(), (std::vector<std::string>{
                           "BEGIN",
                           "UPDATE tbContadores SET contador = contador + 1 WHERE nome = 'produto_codigo'",
                           "UPDATE tbContadores SET contador = contador + 1 WHERE nome = 'produto_id'",
                           "INSERT INTO tbProdutos (Produto_ID,data_created, data_modified, codigo, tipo_id) VALUES "
                           "(90000,GETDATE(), GETDATE(), 41000,1)",
                           "INSERT INTO tbProdutos_Stocks (produto_id,armazem_id,unidades) VALUES (90000,1,0)",
                           "INSERT INTO tbProdutos_Stocks_Minimos (produto_id,armazem_id,unidades) VALUES (90000,1,0)",
                           "INSERT INTO tbProdutos_Stocks (produto_id,armazem_id,unidades) VALUES (90000,2,0)",
                           "INSERT INTO tbProdutos_Stocks_Minimos (produto_id,armazem_id,unidades) VALUES (90000,2,0)",
                           "INSERT INTO tbProdutos_Precos (tipo_id, produto_id, iva_id, predef) VALUES (1,90000,1,1)",
                           "INSERT INTO tbProdutos_Precos (tipo_id, produto_id, iva_id, predef) VALUES (2,90000,1,0)",
                           "INSERT INTO tbProdutos_Precos (tipo_id, produto_id, iva_id, predef) VALUES (3,90000,1,0)",
                           "COMMIT",
                       }));
  EXPECT_EQ(form->ProdutoId(), 90000);
  EXPECT_EQ(form->FXCodigo.text(), "41000");
  EXPECT_EQ(form->FXTipo_ID.text(), "Artigo");
  EXPECT_FALSE(form->Altered());
  EXPECT_EQ(SqlText("SELECT contador FROM tbContadores WHERE nome = 'produto_codigo'"), "41001");
  EXPECT_EQ(SqlText("SELECT codigo FROM tbProdutos WHERE produto_id = 90000"), "41000");
}

TEST_F(CreationTest, EmptyCountersBeginWithTheirSeeds) {
  for (const char* table : {"tbContadores", "tbProdutos_Precos", "tbProdutos_Stocks", "tbProdutos_Stocks_Minimos"}) {
    Sql(std::string("DELETE FROM ") + table);
  }
  Sql("UPDATE tbProdutos SET codigo = 'X' + codigo");
  Sql("DELETE FROM tbProdutos WHERE produto_id = 1");
  const auto form = OpenForm(0);
  EXPECT_EQ(form->FXCodigo.text(), "10000");
  EXPECT_EQ(form->ProdutoId(), 1);
  EXPECT_EQ(SqlText("SELECT contador FROM tbContadores WHERE nome = 'produto_codigo'"), "10001");
  EXPECT_EQ(SqlText("SELECT contador FROM tbContadores WHERE nome = 'produto_id'"), "2");
}

TEST_F(CreationTest, NumbersInUseAreSkippedOneByOne) {
  const std::string next = SqlText("SELECT contador FROM tbContadores WHERE nome = 'produto_codigo'");
  const int code = std::stoi(next);
  Sql("UPDATE tbProdutos SET codigo = '" + next + "' WHERE produto_id = 900");
  const auto form = OpenForm(0);
  EXPECT_EQ(form->FXCodigo.text(), std::to_string(code + 1));
  EXPECT_EQ(SqlText("SELECT contador FROM tbContadores WHERE nome = 'produto_codigo'"), std::to_string(code + 2));
}

TEST_F(CreationTest, TablesWithoutRowsGiveAProductWithoutThem) {
  Sql("UPDATE tbProdutos_Tipos SET predef = 0");
  Sql("UPDATE tbArmazens SET has_stocks = 0");
  Sql("DELETE FROM tbProdutos_Precos");
  Sql("DELETE FROM tbProdutos_Precos_Tipos");
  const auto form = OpenForm(0);
  const std::string id = std::to_string(form->ProdutoId());
  EXPECT_EQ(SqlText("SELECT tipo_id FROM tbProdutos WHERE produto_id = " + id), "(null)");
  EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos_Stocks WHERE produto_id = " + id), "0");
  EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos_Precos WHERE produto_id = " + id), "0");
}

TEST_F(CreationTest, ObjectNewAsksTheWarehouseThenThePolicy) {
  component::General general(component);
  const auto refused_with = [&](const char* title, ports::Icon icon, bool system_modal) {
    ASSERT_FALSE(desktop.messages.empty());
    EXPECT_EQ(desktop.messages.back().title, title);
    EXPECT_EQ(desktop.messages.back().icon, icon);
    EXPECT_EQ(desktop.messages.back().system_modal, system_modal);
  };
  const std::string before = SqlText("SELECT COUNT(*) FROM tbProdutos");
  for (const char* armazem : {"3", "5", "10", "11"}) {
    settings.registry[R"(SOFTWARE\Ambrell\Contabilidade:Armazem)"] = armazem;
    general.ObjectNew({});
    refused_with("Criar Produto", ports::Icon::kInformation, true);
    EXPECT_EQ(desktop.messages.back().text, "Não é possível criar produtos no armazem actual.");
  }
  settings.registry[R"(SOFTWARE\Ambrell\Contabilidade:Armazem)"] = "1";
  session.state().session_user = "bruno";
  general.NovoRegisto({});
  refused_with("Politicas de Segurança", ports::Icon::kCritical, false);
  EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos"), before);

  session.state().session_user = "ana";
  const std::size_t messages = desktop.messages.size();
  general.ObjectNew({});
  general.ObjectNew({});
  EXPECT_EQ(desktop.messages.size(), messages);
  EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos"), std::to_string(std::stoi(before) + 2)) << "two products";
  EXPECT_EQ(form_host.shown.size(), 2U);
}

}  // namespace
}  // namespace quenta::tests
