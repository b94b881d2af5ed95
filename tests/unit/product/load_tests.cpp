#include "support/sample_component.h"

namespace quenta::tests {
namespace {

class LoadTest : public SampleComponentTest {
 protected:
  void SetUp() override { LogIn("ana"); }
};

TEST_F(LoadTest, EveryRecordFieldShowsWhatTheDatabaseHolds) {
  const std::int32_t id = IdOfCode("10300-CS-42");
  const auto form = OpenForm(id);
  const std::string where = " FROM tbProdutos WHERE produto_id = " + std::to_string(id);
  EXPECT_EQ(form->FXCodigo.text(), "10300-CS-42");
  EXPECT_EQ(form->FXNome.text(), SqlText("SELECT nome" + where));
  EXPECT_EQ(form->FXMarca.text(), SqlText("SELECT marca" + where));
  EXPECT_EQ(form->FXTamanho.text(), "42") << "the text of the size, not the size with that identifier";
  EXPECT_EQ(form->FXCor.text(), "Castanho");
  EXPECT_EQ(form->FXFamilia_ID.text(), SqlText("SELECT f.descrit FROM tbProdutos p LEFT JOIN tbProdutos_Familias f ON "
                                               "p.familia_id = f.familia_id WHERE p.produto_id = " +
                                               std::to_string(id)));
  EXPECT_EQ(form->FXSub_Familia_ID.text(),
            SqlText("SELECT s.descrit FROM tbProdutos p LEFT JOIN tbProdutos_Subfamilias s ON "
                    "p.subfamilia_id = s.subfamilia_id WHERE p.produto_id = " +
                    std::to_string(id)));
  EXPECT_EQ(form->FXFornecedor_ID.text(), SqlText("SELECT f.nome_union FROM tbProdutos p LEFT JOIN vwFornecedores f ON "
                                                  "p.fornecedor_id = f.contacto_id WHERE p.produto_id = " +
                                                  std::to_string(id)));
  EXPECT_EQ(form->FXTipo_ID.text(), "Vestuário e calçado");
  EXPECT_FALSE(form->FXCentro_ID.text().empty());
  EXPECT_TRUE(form->FXTamanho.enabled() && form->FXCor.enabled());
  EXPECT_FALSE(form->FXAltura.enabled() || form->FXAltura_Label.enabled());
  EXPECT_FALSE(form->Altered());
  EXPECT_TRUE(form->visible());
  EXPECT_TRUE(reporting.reports.empty()) << reporting.reports[0].description;
}

TEST_F(LoadTest, TheLookupsAndTheRecordAreReadWithTheseStatementsInThisOrder) {
  OpenForm(IdOfCode("10000"));
  std::vector<std::string> read;
  for (const std::string& statement : database.statements) {
    if (statement != "SELECT @@TRANCOUNT as valor")
      read.push_back(statement.substr(0, statement.find(" WHERE produto_id")).substr(0, 70));
  }
  const std::vector<std::string> expected = {
      "SELECT * FROM tbProdutos_Tipos ORDER BY tipo_id",
      "SELECT * FROM tbProdutos_Cores ORDER BY cor_id",
      "SELECT * FROM tbProdutos_Tamanhos ORDER BY tamanho_id",
      "SELECT * FROM vwCentros_Custo ORDER BY descrit2",
      "SELECT * FROM tbProdutos_Familias ORDER BY descrit",
      "SELECT * FROM vwTaxas_Iva ORDER BY descrit2",
      "SELECT * FROM vwFornecedores ORDER BY nome_union",
      "SELECT * FROM tbProdutos",
      "SELECT * FROM tbProdutos_Subfamilias WHERE familia_id = 1",
      "SELECT * FROM tbProdutos_Tipos WHERE tipo_id = 1",
      "SELECT * FROM sysobjects WHERE name = 'tbAssociados_Quotas_Tipos'",
      "SELECT * FROM tbAssociados_Quotas_Tipos",
      "SELECT * FROM sysobjects WHERE name = 'tbTratamentos'",
      "SELECT * FROM tbTratamentos",
      "SELECT * FROM sysobjects WHERE name = 'tbProjectos_Servicos_Tipos'",
      "SELECT * FROM tbProjectos_Servicos_Tipos",
      "SELECT tbProdutos_Precos.*, tbProdutos_Precos_Tipos.descrit as tipo FR",
      "SELECT * FROM tbTaxas_Iva WHERE iva_id = 3",
      "SELECT tbProdutos_Stocks.*, tbProdutos_Stocks_Minimos.unidades as unid",
      "SELECT GETDATE() AS DATE",
  };
  EXPECT_EQ(read, expected);
}

TEST_F(LoadTest, AProductOfNullsAndAMissingOneShowEmptyFields) {
  const auto nulls = OpenForm(900);
  EXPECT_EQ(nulls->Label1.caption(), "Dados do produto");
  for (const controls::Control* control : nulls->controls()) {
    const bool record = control->name() == "FXCodigo" || control->name() == "FXNome" || control->name() == "FXCor";
    EXPECT_TRUE(!record || control->Describe().empty()) << control->name();
  }
  EXPECT_EQ(nulls->FXFamilia_ID.ListIndex(), -1);
  EXPECT_EQ(nulls->FXSub_Familia_ID.ListCount(), 0);

  const auto missing = OpenForm(999999);
  EXPECT_TRUE(missing->visible());
  EXPECT_EQ(missing->FXCodigo.text(), "");
  EXPECT_EQ(missing->ProdutoId(), 999999);
  EXPECT_FALSE(missing->Gravar()) << "a product that is not there cannot be saved";
  EXPECT_TRUE(reporting.reports.empty());
}

TEST_F(LoadTest, AssociationsAreNotedWhereTheirTableExists) {
  EXPECT_EQ(OpenForm(IdOfCode("T-FIS"))->Label1.caption(),
            "Dados do produto (associado à quotização: Quota de bem-estar) (associado ao tratamento: Fisioterapia) "
            "(associado ao tipo de serviço (eventos): Fisioterapia no local)");
  Sql("DROP TABLE tbTratamentos");
  const auto form = OpenForm(IdOfCode("T-MAS"));
  EXPECT_EQ(form->Label1.caption(), "Dados do produto");
  form->Fill();
  EXPECT_TRUE(reporting.reports.empty());
}

TEST_F(LoadTest, TheWorkstationsWarehouseLocksTheRecord) {
  const std::pair<const char*, bool> cases[] = {
      {"1", false}, {"3", true}, {"11", true}, {"999", false}, {nullptr, false}};
  for (const auto& [armazem, locks] : cases) {
    settings.registry.clear();
    if (armazem != nullptr) settings.registry[R"(SOFTWARE\Ambrell\Contabilidade:Armazem)"] = armazem;
    const auto form = OpenForm(IdOfCode("10000"));
    EXPECT_EQ(form->FXCodigo.locked(), locks) << (armazem == nullptr ? "none" : armazem);
    EXPECT_EQ(form->FXFamilia_ID.locked(), locks);
    EXPECT_EQ(form->Toolbar1.Item("gravar").visible, !locks);
  }
}

TEST_F(LoadTest, ADroppedLineIsRestoredBeforeTheQueriesNeedIt) {
  session.SharedConnection().Close();
  EXPECT_EQ(OpenForm(IdOfCode("10000"))->FXCodigo.text(), "10000");
  EXPECT_TRUE(reporting.reports.empty());
  EXPECT_EQ(reporting.calls.back(), "SQLReconnectShowOK");
}

TEST_F(LoadTest, FillingAgainDoublesNothing) {
  const auto form = OpenForm(IdOfCode("10300"));
  const std::string before = form->Dump();
  form->Fill();
  EXPECT_EQ(form->Dump(), before);
  EXPECT_FALSE(form->Altered());
}

TEST_F(LoadTest, TheTypeSwitchesAttributesAndTheStockTab) {
  const auto form = OpenForm(IdOfCode("10000"));
  const auto choose = [&](const char* type) {
    for (int i = 0; i < form->FXTipo_ID.ListCount(); ++i) {
      if (form->FXTipo_ID.List(i) == type) form->FXTipo_ID.Chosen(i);
    }
  };
  EXPECT_EQ(form->TabStrip1.Count(), 7);
  choose("Serviço");
  choose("Serviço");
  EXPECT_EQ(form->TabStrip1.Count(), 6);
  EXPECT_EQ(form->TabStrip1.tabs()[1].key, "compras");
  EXPECT_FALSE(form->FXCor.enabled());
  choose("Artigo à consignação");
  EXPECT_EQ(form->TabStrip1.Count(), 7) << "a type that does not say keeps stock";
  EXPECT_EQ(form->TabStrip1.tabs()[1].key, "stocks");
  EXPECT_TRUE(form->FXCor.enabled());
  EXPECT_TRUE(form->Altered());
  Sql("DELETE FROM tbProdutos_Tipos WHERE tipo_id = 5");
  choose("Serviço");
  EXPECT_EQ(form->TabStrip1.Count(), 7) << "a type that is gone leaves the tabs";
  EXPECT_FALSE(form->FXCor.enabled());
}

TEST_F(LoadTest, TheHistoryPeriodIsTheServersYearUpToTomorrow) {
  const auto form = OpenForm(IdOfCode("10000"));
  const std::string today = SqlText("SELECT GETDATE() AS DATE");
  EXPECT_EQ(form->FXData_Inicio.Describe().substr(0, 6), "01-01-");
  EXPECT_NE(form->FXData_Fim.Describe(), "01-01-1900");
}

}  // namespace
}  // namespace quenta::tests
