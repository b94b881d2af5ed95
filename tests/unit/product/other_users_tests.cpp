// What others do to a product while a form shows it, and what a form does that could not read its product.
#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "product/frm_stocks.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

class SharedProductTest : public SampleComponentTest {
 protected:
  void SetUp() override { LogIn("ana"); }

  // Another user's change, as this suite makes it: with its date.
  void Touch(std::int32_t id, const std::string& assignments) {
    Sql("UPDATE tbProdutos SET " + assignments +
        ", data_modified = '2031-01-02 03:04:05' WHERE produto_id = " + std::to_string(id));
  }
  std::string Name(std::int32_t id) {
    return SqlText("SELECT nome FROM tbProdutos WHERE produto_id = " + std::to_string(id));
  }
};

TEST_F(SharedProductTest, AnotherUsersChangeIsOverwrittenOnlyWhenTheUserSaysSo) {
  const auto form = OpenForm(IdOfCode("10300-CS-42"));
  const std::int32_t id = form->ProdutoId();
  form->FXNome.Typed("Um");
  ASSERT_TRUE(form->Gravar());
  form->FXNome.Typed("Dois");
  ASSERT_TRUE(form->Gravar()) << "a dependant's own saves are not another user's";
  EXPECT_TRUE(desktop.messages.empty());

  Touch(id, "nome = 'Do outro'");
  form->FXNome.Typed("Meu");
  bool locked = true;
  desktop.while_asking = [&] {
    Sql("UPDATE tbProdutos SET largura = 7 WHERE produto_id = " + std::to_string(id));
    locked = false;
  };
  desktop.answer = ports::Answer::kNo;
  EXPECT_FALSE(form->Gravar());
  EXPECT_FALSE(locked) << "another user can write while the question is open";
  ASSERT_EQ(desktop.messages.size(), 1U);
  EXPECT_EQ(desktop.messages[0].text,
            "Este produto foi alterado por outro utilizador desde que foi aberto.\nDeseja gravar por cima dessas "
            "alterações?");
  EXPECT_EQ(desktop.messages[0].buttons, ports::Buttons::kYesNo);
  EXPECT_TRUE(desktop.messages[0].system_modal);
  EXPECT_EQ(Name(id), "Do outro");
  EXPECT_EQ(form->FXNome.text(), "Meu");
  EXPECT_TRUE(form->Altered());
  EXPECT_FALSE(session::InTransaction(session));
  desktop.answer = ports::Answer::kYes;
  EXPECT_TRUE(form->Gravar());
  EXPECT_EQ(Name(id), "Meu");
  desktop.messages.clear();
  form->FXNome.Typed("Outra vez");
  EXPECT_TRUE(form->Gravar());
  EXPECT_TRUE(desktop.messages.empty());
}

TEST_F(SharedProductTest, ADeletedProductIsNotSavedExceptByTheFormThatDeletedIt) {
  const auto form = OpenForm(IdOfCode("10000"));
  const std::int32_t id = form->ProdutoId();
  form->FXNome.Typed("Tarde demais");
  Sql("UPDATE tbProdutos SET is_deleted = 1 WHERE produto_id = " + std::to_string(id));
  EXPECT_FALSE(form->Gravar());
  ASSERT_EQ(desktop.messages.size(), 1U);
  EXPECT_EQ(desktop.messages[0].text,
            "Este produto foi entretanto apagado por outro utilizador. As alterações não foram gravadas.");
  EXPECT_TRUE(reporting.reports.empty());
  EXPECT_NE(Name(id), "Tarde demais");
  EXPECT_FALSE(session::InTransaction(session));

  const auto own = OpenForm(IdOfCode("10001"));
  own->FXNome.Typed("Apagado e gravado");
  desktop.answer = ports::Answer::kYes;  // to deleting, and to saving when it closes
  own->Apagar();
  EXPECT_FALSE(own->loaded());
  EXPECT_EQ(Name(IdOfCode("10001")), "Apagado e gravado");
}

TEST_F(SharedProductTest, TheMinimumsOfThisFormAreNotAnotherUsersButAnothersStay) {
  const auto form = OpenForm(IdOfCode("10000"));
  const std::int32_t id = form->ProdutoId();
  const auto save_minimums = [&] {
    form->ListView1.Select(0);
    form->mnStocksPropriedades_Click();
    for (const auto& [shown, alive] : std::map(form_host.shown)) {
      if (auto* const stocks = dynamic_cast<product::frmStocks*>(shown)) stocks->Command1_Click();
    }
  };
  save_minimums();
  form->FXNome.Typed("Depois dos mínimos");
  EXPECT_TRUE(form->Gravar());
  EXPECT_TRUE(desktop.messages.empty());
  Touch(id, "marca = 'Do outro'");
  save_minimums();
  form->FXNome.Typed("Por cima");
  desktop.answer = ports::Answer::kNo;
  EXPECT_FALSE(form->Gravar()) << "what another changed before the minimums is still asked about";
  EXPECT_EQ(desktop.messages.size(), 1U);
}

// A list may no longer offer what the product has: a supplier who is none any more, an old type, cost centre,
// subfamily.
TEST_F(SharedProductTest, WhatAListDoesNotOfferStaysInTheProduct) {
  const std::int32_t id = IdOfCode("10000");
  Sql("UPDATE tbProdutos SET fornecedor_id = 98765, centro_id = 8765, subfamilia_id = 7654 WHERE produto_id = " +
      std::to_string(id));
  const auto form = OpenForm(id);
  EXPECT_EQ(form->FXFornecedor_ID.text(), "(98765)");
  EXPECT_EQ(form->FXCentro_ID.text(), "(8765)");
  EXPECT_EQ(form->FXSub_Familia_ID.text(), "(7654)");
  form->FXNome.Typed("Nome");
  ASSERT_TRUE(form->Gravar());
  EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos WHERE fornecedor_id = 98765 AND centro_id = 8765 AND "
                    "subfamilia_id = 7654"),
            "1");
  Sql("UPDATE tbProdutos SET fornecedor_id = null WHERE produto_id = " + std::to_string(id));
  form->Fill();
  EXPECT_EQ(form->FXFornecedor_ID.ListIndex(), -1);
  for (int i = 0; i < form->FXFornecedor_ID.ListCount(); ++i) EXPECT_NE(form->FXFornecedor_ID.List(i), "(98765)");
}

TEST_F(SharedProductTest, AFormThatCouldNotReadItsProductIsReadOnlyUntilF5ReadsIt) {
  const auto whole = OpenForm(IdOfCode("10300"));
  const std::string dump = whole->Dump();
  database.Forget();
  OpenForm(IdOfCode("10300"));
  const std::vector<std::string> statements = database.statements;
  for (std::size_t i = 0; i < statements.size(); ++i) {
    database.Forget();
    reporting.reports.clear();
    desktop.messages.clear();
    database.fail_at = static_cast<int>(i);
    const auto form = OpenForm(IdOfCode("10300"));
    SCOPED_TRACE(statements[i]);
    if (form->MayChange()) {
      // The line was restored at once, or only stocks, reasons or the period (empty without a report) are missing.
      EXPECT_TRUE(!reporting.reports.empty() || form->Dump() == dump || statements[i] == "SELECT GETDATE() AS DATE");
      continue;
    }
    EXPECT_FALSE(reporting.reports.empty());
    EXPECT_NE(form->Label1.caption().find("Prima F5"), std::string::npos);
    form->FXNome.Typed("x");
    form->FXValor.KeyDown('1');
    EXPECT_FALSE(form->Altered());
    EXPECT_FALSE(form->Toolbar1.Item("gravar").enabled);
    EXPECT_FALSE(form->FXMarca.enabled());
    EXPECT_FALSE(form->Gravar());
    EXPECT_EQ(desktop.messages.size(), 1U);
    for (const controls::Shortcut& shortcut : form->shortcuts()) {
      if (shortcut.key == controls::key_code::kF5) shortcut.run();
    }
    EXPECT_EQ(form->Dump(), dump);
    EXPECT_TRUE(form->MayChange());
  }
}

TEST_F(SharedProductTest, ACopyThatCannotBeShownLeavesTheProductWholeAndIsNamed) {
  const auto form = OpenForm(IdOfCode("10300"));
  form->FXMarca.Typed("Por gravar");
  const std::string dump = form->Dump();
  const std::int32_t id = form->ProdutoId();
  desktop.answer = ports::Answer::kYes;
  database.Forget();
  form->Duplicar();
  const auto lists = std::find(database.statements.begin(), database.statements.end(),
                               "SELECT * FROM tbProdutos_Familias ORDER BY descrit");
  ASSERT_NE(lists, database.statements.end());
  const int position = database.positions[static_cast<std::size_t>(lists - database.statements.begin())];
  const auto again = OpenForm(id);
  again->FXMarca.Typed("Por gravar");
  database.Forget();
  reporting.reports.clear();
  database.fail_at = position;
  again->Duplicar();
  EXPECT_EQ(again->ProdutoId(), id);
  EXPECT_EQ(again->Dump(), dump);
  EXPECT_TRUE(again->Altered());
  ASSERT_EQ(reporting.reports.size(), 2U);
  EXPECT_EQ(reporting.reports[1].procedure, "Gravar");
  const std::string copy = SqlText("SELECT MAX(produto_id) FROM tbProdutos");
  EXPECT_NE(reporting.reports[1].description.find("produto_id = " + copy), std::string::npos);
  EXPECT_NE(reporting.reports[1].description.find("codigo = "), std::string::npos);
  EXPECT_TRUE(again->Gravar()) << "the product that was kept is whole";
}

TEST_F(SharedProductTest, AWarehouseThatMayNotChangeProductsClosesTheWholeRecord) {
  for (const char* none : {"", "  ", "abc", "1 OR 1=1", "99999999999"}) {
    settings.registry["SOFTWARE\\Ambrell\\Contabilidade:Armazem"] = none;
    database.Forget();
    EXPECT_TRUE(OpenForm(IdOfCode("10000"))->MayChange()) << none;
    for (const std::string& statement : database.statements) {
      EXPECT_EQ(statement.find("tbArmazens WHERE armazem_id"), std::string::npos) << statement;
    }
  }
  const std::string locked = SqlText("SELECT armazem_id FROM tbArmazens WHERE can_modify_produts = 0");
  settings.registry["SOFTWARE\\Ambrell\\Contabilidade:Armazem"] = " " + locked + " ";
  const auto form = OpenForm(IdOfCode("10300"));
  for (const char* name : {"FXDescontinuado", "FXTipo_ID", "FXMarca", "FXFornecedor_ID", "FXCentro_ID", "FXCor",
                           "FXTamanho", "FXAltura", "FXLargura", "FXProfundidade", "FXIVA_Descrit"}) {
    EXPECT_FALSE(form->Find(name)->enabled()) << name;
  }
  for (const char* key : {"gerar", "remover"}) EXPECT_FALSE(form->Toolbar2.Item(key).enabled) << key;
  form->ListView1.Select(0);
  form->mnStocksPropriedades_Click();
  ASSERT_EQ(desktop.messages.size(), 1U);
  EXPECT_EQ(desktop.messages[0].text, "O armazém deste posto não pode alterar produtos.");
  EXPECT_TRUE(form->Toolbar1.Item("imprimir").enabled);
  EXPECT_TRUE(form->Toolbar3.Item("relatorio").enabled);
  form->LockProduto(false);
  EXPECT_TRUE(form->FXMarca.enabled());
  EXPECT_TRUE(form->Toolbar2.Item("gerar").enabled);
}

// Closing waits while an operation waits for the server or asks: what is closed with No is never saved afterwards.
TEST_F(SharedProductTest, AFormIsNotClosedUnderAnOperation) {
  const auto form = OpenForm(0);
  const std::int32_t id = form->ProdutoId();
  form->FXNome.Typed("Nunca gravado");
  form->FXFamilia_ID.Chosen(0);
  desktop.answer = ports::Answer::kNo;
  Touch(id, "marca = 'x'");
  bool asked = false;
  bool closed_meanwhile = true;
  component::General general(component);
  desktop.while_asking = [&] {
    if (!std::exchange(asked, true)) {
      closed_meanwhile = form->Unload();
      general.ObjectOpen(IdOfCode("10000"), {});
    }
  };
  form->Duplicar();
  EXPECT_FALSE(closed_meanwhile);
  EXPECT_TRUE(form->loaded());
  const std::size_t shown = form_host.shown.size();
  form_host.PassTime();
  EXPECT_FALSE(form->loaded()) << "the closing that waited: No, so that the new product goes";
  EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos WHERE produto_id = " + std::to_string(id)), "0");
  EXPECT_EQ(form_host.shown.size(), shown) << "one closed, one opened";
}

TEST_F(SharedProductTest, NoToANewProductWaitsForTheServerAndThenCloses) {
  desktop.answer = ports::Answer::kNo;
  for (const bool after_login : {false, true}) {
    const auto form = OpenForm(0);
    const std::int32_t id = form->ProdutoId();
    form->FXNome.Typed("Sem servidor");
    if (after_login) session.state().primary_connection_string.clear();
    database.Forget();
    database.fail_at = 0;
    database.fault = Fault::kLineDrops;
    EXPECT_TRUE(form->Unload()) << "the line is restored first";
    EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos WHERE produto_id = " + std::to_string(id)), "0");
  }
}

}  // namespace
}  // namespace quenta::tests
