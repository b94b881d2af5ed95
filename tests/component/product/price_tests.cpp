// Price lines edited by keyboard alone, with the rows in the database compared.
#include "base/text.h"
#include "component/product/product_fixture.h"

namespace quenta::tests {
namespace {

class PriceFormTest : public FormTest {
 protected:
  std::string Amounts(const FormOnScreen& form) {
    return form.Text("FXValor") + " | " + form.Text("FXIVA") + " | " + form.Text("FXTOTAL");
  }
  // A price row of the product in the database, numbers with a point.
  std::string Stored(const std::string& code, const std::string& column, int tipo_id) {
    return base::ReplaceAll(Sql("SELECT " + column + " FROM tbProdutos_Precos WHERE tipo_id = " +
                                std::to_string(tipo_id) + " AND produto_id = " + std::to_string(IdOfCode(code))),
                            ",", ".");
  }
};

TEST_F(PriceFormTest, ALineIsEditedByKeyboardAlone) {
  const FormOnScreen form = OpenCode("10020");
  form.FocusOn("FXValor");
  form.Type("100");
  form.Key(VK_TAB);
  EXPECT_EQ(form.Focused(), "FXIva_ID");
  form.Choose("FXIva_ID", "NOR");
  form.Key(VK_TAB);
  EXPECT_EQ(form.Focused(), "FXIVA");
  EXPECT_EQ(Amounts(form), "€ 100,000 | 23 | € 123,00") << "what was typed keeps three decimals";
  form.Key(VK_TAB);
  EXPECT_EQ(form.Focused(), "FXTOTAL");
  form.Type("10");
  form.Key(VK_TAB);
  EXPECT_EQ(form.Focused(), "FXDesconto");
  form.Type("5");
  form.Key(VK_TAB);
  EXPECT_EQ(Amounts(form), "€ 8,13 | € 1,87 | € 10,000");
  EXPECT_EQ(form.Text("FXDesconto"), "5,00 %");
  form.PressButton("Toolbar1", "gravar");
  EXPECT_TRUE(Reports().empty());
  EXPECT_EQ(Stored("10020", "preco", 1), "8.13008");
  EXPECT_EQ(Stored("10020", "iva", 1), "1.86992");
  EXPECT_EQ(Stored("10020", "preco_total", 1), "10");
  EXPECT_EQ(Stored("10020", "desconto", 1), "0.05");
  form.Close();
  EXPECT_EQ(Amounts(OpenCode("10020")), "€ 8,13 | € 1,87 | € 10,00");
}

TEST_F(PriceFormTest, AnotherLineBecomesTheDefaultFromTheContextMenu) {
  const FormOnScreen form = OpenCode("10021");
  const int rows = form.RowCount("ListView2");
  ASSERT_EQ(rows, 3);
  form.FocusOn("ListView2");
  form.Key(VK_HOME);
  const std::string name = form.Text("FXTipo");
  EXPECT_EQ(form.Row("ListView2", 0).substr(0, name.size()), name);
  EXPECT_FALSE(form.ButtonIsEnabled("Toolbar1", "gravar")) << "showing a line alters nothing";
  form.ChooseFromContextMenu(1);
  EXPECT_EQ(form.Row("ListView2", 0).substr(0, name.size() + 14), name + " [Predefinido]");
  EXPECT_TRUE(form.ButtonIsEnabled("Toolbar1", "gravar"));
  form.PressButton("Toolbar1", "gravar");
  const std::string where =
      " FROM tbProdutos_Precos WHERE predef <> 0 AND produto_id = " + std::to_string(IdOfCode("10021"));
  EXPECT_EQ(Sql("SELECT COUNT(*)" + where), "1");
  EXPECT_EQ(Sql("SELECT descrit FROM tbProdutos_Precos_Tipos WHERE tipo_id = (SELECT tipo_id" + where + ")"), name);
  form.Close();
  EXPECT_EQ(OpenCode("10021").Text("FXTipo"), name);
  EXPECT_TRUE(Reports().empty());
}

TEST_F(PriceFormTest, AnExemptLineAsksForItsReason) {
  const FormOnScreen form = OpenCode("10022");
  EXPECT_FALSE(form.IsEnabled("FXIVA_Descrit"));
  form.Choose("FXIva_ID", "ISE");
  EXPECT_TRUE(form.IsEnabled("FXIVA_Descrit"));
  AnswerNext(IDOK);
  form.PressButton("Toolbar1", "gravar");
  EXPECT_EQ(box_text, "O preço '" + form.Text("FXTipo") +
                          "' tem isenção de IVA.\nÉ obrigatório indicar um motivo para a Isenção de IVA.");
  EXPECT_EQ(form.Focused(), "FXIVA_Descrit");
  form.Key(VK_DOWN);
  const std::string reason = form.Text("FXIVA_Descrit");
  EXPECT_FALSE(reason.empty());
  form.PressButton("Toolbar1", "gravar");
  EXPECT_EQ(Stored("10022", "iva_descrit", 1), reason);
  EXPECT_EQ(Stored("10022", "iva", 1), "0");
  EXPECT_TRUE(Reports().empty());
}

}  // namespace
}  // namespace quenta::tests
