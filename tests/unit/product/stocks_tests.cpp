#include "base/error.h"
#include "product/frm_stocks.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

using product::frmStocks;

class StocksTest : public SampleComponentTest {
 protected:
  void SetUp() override {
    LogIn("ana");
    Open("10407");
  }
  void Open(const std::string& code) {
    form = OpenForm(IdOfCode(code));
    id = std::to_string(form->ProdutoId());
  }
  // The properties of a warehouse, as a person opens them: chooses its row and the menu's entry.
  std::shared_ptr<frmStocks> Properties(int armazem_id) {
    const std::string key = "#" + std::to_string(armazem_id);
    for (int i = 0; i < form->ListView1.Count(); ++i) {
      if (form->ListView1.At(i).key == key) form->ListView1.Clicked(i);
    }
    form->TabStrip1.SelectKey("stocks");
    controls::FindMenuItem(form->menus(), "mnStocksPropriedades")->on_click();
    return Shown();
  }
  std::shared_ptr<frmStocks> Shown() {
    for (const auto& [model, held] : form_host.shown) {
      if (model->name() == "frmStocks") return std::static_pointer_cast<frmStocks>(held);
    }
    return nullptr;
  }
  // As a person types into the field and leaves it.
  static void Type(controls::TextField& field, const char* text) {
    field.GotFocus();
    field.Typed(text);
    field.LostFocus();
  }
  std::string Row(int armazem_id) {
    std::string text;
    for (const std::string& cell : form->ListView1.Item("#" + std::to_string(armazem_id)).sub_items) text += cell + "|";
    return text;
  }
  std::string Minimums(int armazem_id) {
    const std::string where =
        " FROM tbProdutos_Stocks_Minimos WHERE armazem_id = " + std::to_string(armazem_id) + " AND produto_id = " + id;
    return SqlText("SELECT unidades" + where) + "/" + SqlText("SELECT reposicao" + where);
  }
  void SetQuantities() {
    Sql("UPDATE tbProdutos_Stocks SET unidades = 1234.5, unidades_enc_clientes = 4, unidades_enc_fornec = NULL WHERE "
        "armazem_id = 1 AND produto_id = " +
        id);
    Sql("UPDATE tbProdutos_Stocks_Minimos SET unidades = 2.345, reposicao = NULL WHERE armazem_id = 1 AND produto_id "
        "= " +
        id);
    form->Fill_Stocks();
  }

  std::shared_ptr<product::frmMain> form;
  std::string id;
};

TEST_F(StocksTest, TheListHasARowForEachWarehouse) {
  SetQuantities();
  EXPECT_EQ(std::to_string(form->ListView1.Count()),
            SqlText("SELECT COUNT(*) FROM tbProdutos_Stocks WHERE produto_id = " + id));
  EXPECT_EQ(Row(1), "1234,50|2,35| |4,00| |");
  EXPECT_EQ(Row(2).substr(Row(2).find('|')), "| | | | |") << "a warehouse without minimums";
  Sql("UPDATE tbArmazens SET descrit = NULL WHERE armazem_id = 1");
  form->Fill_Stocks();
  EXPECT_EQ(form->ListView1.Item("#1").text, " ");
  database.Forget();
  database.fail_at = 0;
  form->Fill_Stocks();
  EXPECT_EQ(form->ListView1.Count(), 0) << "no quantities that may be another product's";
  ASSERT_EQ(reporting.reports.size(), 1U);
  EXPECT_EQ(reporting.reports[0].procedure, "Fill_Stocks");
  Open("10424");
  EXPECT_EQ(form->ListView1.Count(), 0);
  EXPECT_EQ(Properties(1), nullptr) << "no row, no properties";
}

TEST_F(StocksTest, EachWayOpensThePropertiesAndEachWayOfClosingGivesTheProductBack) {
  form->ListView1.ContextMenu();
  EXPECT_EQ(form_host.popped_up, std::vector<std::string>{"mnStocks"});
  for (const char* name : {"mnStocksAdicionarArmazem", "mnStocksRemoverArmazem"}) {
    const controls::MenuItem* const entry = controls::FindMenuItem(form->menus(), name);
    EXPECT_FALSE(entry->enabled || entry->on_click) << name;
  }
  EXPECT_EQ(Properties(99), nullptr) << "nothing selected";
  const std::function<void(frmStocks&)> ways[] = {
      [](frmStocks& stocks) { stocks.Command2.Clicked(); },
      [](frmStocks& stocks) { stocks.Command1.Clicked(); },
      [](frmStocks& stocks) { stocks.Unload(); },
      [](frmStocks& stocks) { stocks.WindowLost(); },
  };
  for (const auto& close : ways) {
    form->ListView1.Clicked(0);
    form->ListView1.Activated();
    const auto stocks = Shown();
    ASSERT_NE(stocks, nullptr);
    EXPECT_EQ(form_host.focused, "FXStockMinimo");
    EXPECT_FALSE(form->enabled());
    close(*stocks);
    form_host.shown.erase(stocks.get());
    EXPECT_FALSE(stocks->loaded());
    EXPECT_TRUE(form->enabled());
  }
  EXPECT_TRUE(reporting.reports.empty()) << reporting.reports[0].description;
}

TEST_F(StocksTest, TheQuantitiesOfTheWarehouseAreShown) {
  SetQuantities();
  const auto stocks = Properties(1);
  EXPECT_EQ(stocks->FXArmazem.caption(), "Armazém: " + SqlText("SELECT descrit FROM tbArmazens WHERE armazem_id = 1"));
  EXPECT_EQ(stocks->FXStock.text(), "1\u00A0234,50");
  EXPECT_TRUE(stocks->FXStock.locked());
  EXPECT_EQ(stocks->FXStockMinimo.tag(), "2,345");
  EXPECT_EQ(stocks->FXReposicao.text() + stocks->FXReposicao.tag(), "");
  stocks->Unload();
  form_host.shown.erase(stocks.get());
  Sql("UPDATE tbArmazens SET descrit = NULL WHERE armazem_id = 1");
  EXPECT_EQ(Properties(1)->FXArmazem.caption(), "");
}

TEST_F(StocksTest, SavingWritesBothQuantitiesAndShowsThemInTheirTwoPositions) {
  SetQuantities();
  Sql("UPDATE tbProdutos SET data_modified = NULL WHERE produto_id = " + id);
  const auto stocks = Properties(1);
  Type(stocks->FXStockMinimo, "1.250,5");
  stocks->FXReposicao.GotFocus();
  stocks->FXReposicao.Typed("40");  // and Enter, without leaving the field
  database.Forget();
  stocks->Command1.Clicked();
  ASSERT_GE(database.statements.size(), 8U);
  const std::string stamp = "SELECT is_deleted, data_modified FROM tbProdutos WHERE produto_id = " + id;
  EXPECT_EQ(std::vector(database.statements.end() - 8, database.statements.end()),
            (std::vector<std::string>{
                "SELECT @@TRANCOUNT as valor", "BEGIN", stamp,
                "UPDATE tbProdutos_Stocks_Minimos SET unidades = 1250.5, reposicao = 40 WHERE armazem_id = 1 AND "
                "produto_id = " +
                    id,
                "UPDATE tbProdutos SET data_modified = GETDATE() WHERE produto_id = " + id, stamp,
                "SELECT @@TRANCOUNT as valor", "COMMIT"}));
  EXPECT_EQ(Minimums(1), "1250.5/40");
  EXPECT_NE(SqlText("SELECT data_modified FROM tbProdutos WHERE produto_id = " + id), "(null)");
  EXPECT_EQ(Row(1), "1234,50|1250,50|40,00|4,00| |");
  EXPECT_FALSE(stocks->loaded());
  EXPECT_FALSE(form->Altered());
}

TEST_F(StocksTest, WhatIsTypedIsSavedAsItIsMeant) {
  const struct {
    const char* typed;
    const char* saved;
    const char* shown;
  } cases[] = {
      {"", "(null)/7", " |7,00"},        {"0", "0/7", "0,00|7,00"},   {"12.5", "12.5/7", "12,50|7,00"},
      {"-3", "-3/7", "-3,00|7,00"},      {"abc", "0/7", "0,00|7,00"}, {"1e3", "1000/7", "1000,00|7,00"},
      {"0,005", "0.005/7", "0,01|7,00"},
  };
  for (const auto& c : cases) {
    Sql("UPDATE tbProdutos_Stocks_Minimos SET unidades = 5, reposicao = 7 WHERE armazem_id = 1 AND produto_id = " + id);
    const auto stocks = Properties(1);
    Type(stocks->FXStockMinimo, c.typed);
    stocks->Command1.Clicked();
    form_host.shown.erase(stocks.get());
    EXPECT_EQ(Minimums(1), c.saved) << c.typed;
    const auto& cells = form->ListView1.Item("#1").sub_items;
    EXPECT_EQ(cells[1] + "|" + cells[2], c.shown) << c.typed;
  }
  EXPECT_TRUE(reporting.reports.empty());
}

TEST_F(StocksTest, AWarehouseWithoutMinimumsGetsNone) {
  Sql("UPDATE tbProdutos SET data_modified = NULL WHERE produto_id = " + id);
  const auto stocks = Properties(2);
  Type(stocks->FXStockMinimo, "3");
  stocks->Command1.Clicked();
  EXPECT_EQ(Minimums(2), "(none)/(none)");
  EXPECT_NE(SqlText("SELECT data_modified FROM tbProdutos WHERE produto_id = " + id), "(null)");
  EXPECT_EQ(form->ListView1.Item("#2").sub_items[1], "3,00") << "until the list is filled again";
  form->Fill_Stocks();
  EXPECT_EQ(form->ListView1.Item("#2").sub_items[1], " ");
}

TEST_F(StocksTest, WithoutThePolicyNothingIsSaved) {
  SetQuantities();
  session.state().session_user = "carla";
  const auto stocks = Properties(1);
  Type(stocks->FXStockMinimo, "9");
  stocks->Command1.Clicked();
  ASSERT_EQ(desktop.messages.size(), 1U);
  EXPECT_EQ(desktop.messages[0].text,
            "Não tem permissões para efectuar alterações nos produtos. Contacte o administrador de segurança para que "
            "lhe sejam atribuídas as permissões necessárias.");
  EXPECT_EQ(desktop.messages[0].title, "Politicas de Segurança");
  EXPECT_EQ(desktop.messages[0].icon, ports::Icon::kCritical);
  EXPECT_EQ(Minimums(1), "2.345/(null)");
  EXPECT_EQ(Row(1), "1234,50|2,35| |4,00| |");
  EXPECT_TRUE(stocks->loaded());
  EXPECT_FALSE(form->enabled());
}

TEST_F(StocksTest, AFailureAtEachStatementSavesAllOrNothingAndTheNextTrySucceeds) {
  bool struck = true;
  int failed_saves = 0;
  for (int i = 0; struck; ++i) {
    ASSERT_LT(i, 20);
    SetQuantities();
    const auto stocks = Properties(1);
    Type(stocks->FXStockMinimo, "9");
    session.policies.clear();
    reporting.reports.clear();
    database.Forget();
    database.fail_at = i;
    stocks->Command1.Clicked();
    struck = database.calls > i;
    database.Forget();
    EXPECT_FALSE(session::InTransaction(session)) << i;
    if (stocks->loaded()) {
      ++failed_saves;
      EXPECT_EQ(reporting.reports.size(), 1U) << i;
      EXPECT_EQ(Minimums(1), "2.345/(null)") << i;
      EXPECT_EQ(Row(1), "1234,50|2,35| |4,00| |") << i;
      EXPECT_FALSE(form->enabled()) << i;
      stocks->Command1.Clicked();
    }
    EXPECT_FALSE(stocks->loaded()) << i;
    EXPECT_EQ(Minimums(1), "9/(null)") << i;
    form_host.shown.erase(stocks.get());
  }
  EXPECT_GE(failed_saves, 6) << "begin, two updates, commit and the questions before them";
}

TEST_F(StocksTest, WhatWasNotReadCannotBeSaved) {
  SetQuantities();
  const std::function<void()> faults[] = {
      [&] { database.fail_at = 0; },
      [&] { Sql("DELETE FROM tbProdutos_Stocks WHERE armazem_id = 1 AND produto_id = " + id); },
  };
  for (const auto& fault : faults) {
    database.Forget();
    fault();
    const auto stocks = Properties(1);
    ASSERT_NE(stocks, nullptr);
    stocks->Command1.Clicked();
    stocks->Command1_Click();
    EXPECT_TRUE(stocks->loaded());
    stocks->Unload();
    form_host.shown.erase(stocks.get());
    EXPECT_TRUE(form->enabled());
    EXPECT_EQ(Minimums(1), "2.345/(null)");
  }
  ASSERT_EQ(reporting.reports.size(), 1U) << "a warehouse that is gone is no error";
  EXPECT_EQ(reporting.reports[0].module + "." + reporting.reports[0].procedure, "frmStocks.Form_Load");
}

TEST_F(StocksTest, AProductFormThatIsGoneOrChangedDoesNoHarm) {
  SetQuantities();
  const auto stocks = Properties(1);
  form->ListView1.Remove("#1");
  Type(stocks->FXStockMinimo, "8");
  stocks->Command1.Clicked();
  form_host.shown.erase(stocks.get());
  EXPECT_EQ(Minimums(1), "8/(null)");

  form->Fill_Stocks();
  const auto last = Properties(1);
  form->WindowLost();
  form_host.shown.erase(form.get());
  form.reset();
  Type(last->FXStockMinimo, "9");
  last->Command1.Clicked();
  EXPECT_FALSE(last->loaded());
  EXPECT_EQ(Minimums(1), "9/(null)");
  EXPECT_TRUE(reporting.reports.empty()) << reporting.reports[0].description;
}

}  // namespace
}  // namespace quenta::tests
