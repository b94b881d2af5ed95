#include "controls/field_value.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

class TypesTest : public SampleComponentTest {
 protected:
  void SetUp() override {
    LogIn("ana");
    form = OpenForm(IdOfCode("10000"));
    database.Forget();
  }
  void ChooseType(int tipo_id) {
    for (int i = 0; i < form->FXTipo_ID.ListCount(); ++i) {
      if (form->FXTipo_ID.ItemData(i) == tipo_id) form->FXTipo_ID.Chosen(i);
    }
  }
  void ChooseTab(const std::string& key) {
    for (int i = 0; i < form->TabStrip1.Count(); ++i) {
      if (form->TabStrip1.tabs()[static_cast<std::size_t>(i)].key == key) form->TabStrip1.Chosen(i);
    }
  }
  // The attribute fields that can be used, in the order of their columns; "?" where the caption differs.
  std::string Available() {
    const std::pair<controls::Control*, controls::Control*> fields[] = {
        {&form->FXTamanho, &form->FXTamanho_Label},
        {&form->FXCor, &form->FXCor_Label},
        {&form->FXAltura, &form->FXAltura_Label},
        {&form->FXLargura, &form->FXLargura_Label},
        {&form->FXProfundidade, &form->FXProfundidade_Label}};
    std::string text;
    for (const auto& [field, caption] : fields) {
      text += field->enabled() != caption->enabled() ? '?' : field->enabled() ? 'x' : '-';
    }
    return text;
  }
  std::string Tabs() {
    std::string text;
    for (const auto& tab : form->TabStrip1.tabs()) text += tab.key + " ";
    return text;
  }
  std::shared_ptr<product::frmMain> form;
};

constexpr const char* kWithStocks =
    "precos stocks compras vendas encomendas_fornecedores encomendas_clientes dependentes ";
constexpr const char* kWithoutStocks = "precos compras vendas encomendas_fornecedores encomendas_clientes dependentes ";

TEST_F(TypesTest, TheTypeDecidesWhichFieldsAndTabsThereAre) {
  const struct {
    const char* what;
    int tipo_id;
    const char* available;
    const char* tabs;
  } cases[] = {
      {"all flags 0", 1, "-----", kWithStocks},
      {"some", 3, "-xxxx", kWithStocks},
      {"no stocks", 5, "-----", kWithoutStocks},
      {"the same again", 5, "-----", kWithoutStocks},
      {"null flags, no stocks", 6, "-----", kWithoutStocks},
      {"null stocks are stocks", 7, "-x---", kWithStocks},
      {"the same again", 7, "-x---", kWithStocks},
      {"all", 8, "xxxxx", kWithStocks},
  };
  for (const auto& c : cases) {
    form->SetAltered(false);
    ChooseType(c.tipo_id);
    EXPECT_EQ(Available(), c.available) << c.what;
    EXPECT_EQ(Tabs(), c.tabs) << c.what;
    EXPECT_TRUE(form->Altered()) << c.what;
  }
  EXPECT_EQ(form->TabStrip1.tabs()[1].caption, "Stocks em Armazém");
  EXPECT_EQ(database.statements[0], "SELECT * FROM tbProdutos_Tipos WHERE tipo_id = 1");
  EXPECT_TRUE(reporting.reports.empty());
}

TEST_F(TypesTest, WithoutAKnownTypeThereAreNoAttributesAndTheTabsStay) {
  for (const int tipo_id : {8, 5}) {
    const std::string tabs = tipo_id == 8 ? kWithStocks : kWithoutStocks;
    ChooseType(tipo_id);
    Sql("DELETE FROM tbProdutos_Tipos WHERE tipo_id = " + std::to_string(tipo_id));
    form->FXTipo_ID_Click();
    EXPECT_EQ(Available() + Tabs(), "-----" + tabs) << "the type is gone";
    ChooseType(tipo_id == 8 ? 2 : 6);
    form->FXTipo_ID.SetListIndex(-1);
    form->FXTipo_ID_Click();
    EXPECT_EQ(Available() + Tabs(), "-----" + tabs) << "nothing selected";
  }
}

TEST_F(TypesTest, EachTabIsFoundByItsKeyWithAndWithoutTheStockTab) {
  for (const int tipo_id : {1, 5}) {
    ChooseType(tipo_id);
    for (const auto& [key, table] : {std::pair("compras", "tbDocumentos_Fornec.data >="),
                                     {"vendas", "tbDocumentos.data >="},
                                     {"encomendas_clientes", "tbEncomendas.data >="},
                                     {"encomendas_fornecedores", "tbEncomendas_Fornec.data >="},
                                     {"dependentes", "main_id ="}}) {
      database.Forget();
      ChooseTab(key);
      EXPECT_NE(database.statements.at(0).find(table), std::string::npos) << key << ", type " << tipo_id;
    }
  }
}

TEST_F(TypesTest, APageThatGoesLeavesItsNeighbourAndOthersStaySelected) {
  const struct {
    const char* selected;
    const char* without;
    const char* with_again;
  } cases[] = {{"stocks", "precos", "precos"}, {"vendas", "vendas", "vendas"}, {"precos", "precos", "precos"}};
  for (const auto& c : cases) {
    ChooseType(1);
    ChooseTab(c.selected);
    ChooseType(5);
    EXPECT_EQ(form->TabStrip1.selected_key(), c.without);
    EXPECT_TRUE(form->layout().pages.contains(form->TabStrip1.selected_key()));
    ChooseType(1);
    EXPECT_EQ(form->TabStrip1.selected_key(), c.with_again);
  }
}

TEST_F(TypesTest, ANewTypeReadsTheStocksAgainAndKeepsThePricesThatWereTyped) {
  Sql("UPDATE tbProdutos_Stocks SET unidades = 77 WHERE armazem_id = 1 AND produto_id = " +
      std::to_string(form->ProdutoId()));
  form->FXValor.GotFocus();
  form->FXValor.KeyDown('5');
  form->FXValor.Typed("55,5");
  form->FXValor.LostFocus();
  const std::string price = form->ListView2.Item(form->PrecoKey).sub_items[0];
  ChooseType(3);
  EXPECT_EQ(form->ListView1.Item("#1").sub_items[0], "77,00");
  EXPECT_EQ(form->ListView2.Item(form->PrecoKey).sub_items[0], price);
  EXPECT_EQ(form->FXValor.tag(), "55,5");
  EXPECT_TRUE(form->PrecosAltered);

  database.Forget();
  form->Fill();
  const auto stock_reads = std::count_if(database.statements.begin(), database.statements.end(),
                                         [](const auto& sql) { return sql.starts_with("SELECT tbProdutos_Stocks.*"); });
  EXPECT_EQ(stock_reads, 1) << "once for a load, however often it sets the type";
}

TEST_F(TypesTest, AFailureIsReportedAndChangesNothing) {
  ChooseType(8);
  database.Forget();
  database.fail_at = 0;
  ChooseType(5);
  EXPECT_EQ(Available() + Tabs(), std::string("xxxxx") + kWithStocks);
  ASSERT_EQ(reporting.reports.size(), 1U);
  EXPECT_EQ(reporting.reports[0].procedure, "FXTipo_ID_Click");
}

}  // namespace
}  // namespace quenta::tests
