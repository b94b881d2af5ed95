// A product is copied, deleted, and given dependants, with the database compared before and after.
#include "component/product/product_fixture.h"

namespace quenta::tests {
namespace {

class LifecycleTest : public FormTest {
 protected:
  std::string Column(const std::string& column, const std::string& code) {
    return Sql("SELECT " + column + " FROM tbProdutos WHERE codigo = '" + code + "'");
  }
  std::string Rows(const std::string& table, int id) {
    return Sql("SELECT COUNT(*) FROM " + table + " WHERE produto_id = " + std::to_string(id));
  }
};

TEST_F(LifecycleTest, ACopyIsShownAsANewProductAndKeptByASave) {
  FormOnScreen form = OpenCode("10030");
  const std::string name = form.Text("FXNome");
  AnswerNext(IDNO);
  form.PressButton("Toolbar1", "duplicar");
  EXPECT_EQ(box_text, "Deseja duplicar este produto?");
  EXPECT_EQ(form.Text("FXCodigo"), "10030");

  for (const bool kept : {false, true}) {
    AnswerNext(IDYES);
    form.PressButton("Toolbar1", "duplicar");
    const std::string code = form.Text("FXCodigo");
    ASSERT_NE(code, "10030");
    EXPECT_EQ(form.Text("FXNome"), name + " (Cópia)");
    EXPECT_TRUE(form.ButtonIsEnabled("Toolbar1", "gravar"));
    const int copy = IdOfCode(code);
    EXPECT_EQ(Rows("tbProdutos_Precos", copy), Rows("tbProdutos_Precos", IdOfCode("10030")));
    if (kept) {
      form.PressButton("Toolbar1", "gravar");
      form.Close();
      EXPECT_EQ(Column("nome", code), name + " (Cópia)");
      continue;
    }
    AnswerNext(IDNO);
    form.Close();
    EXPECT_EQ(Rows("tbProdutos", copy), "0");
    EXPECT_EQ(Rows("tbProdutos_Stocks", copy), "0");
    form = OpenCode("10030");
  }
  EXPECT_TRUE(Forms().empty());
  EXPECT_TRUE(Reports().empty());
}

TEST_F(LifecycleTest, ADeletedProductKeepsItsRowAndNothingElse) {
  const FormOnScreen form = OpenCode("10031");
  const int id = IdOfCode("10031");
  AnswerNext(IDNO);
  form.PressButton("Toolbar1", "apagar");
  EXPECT_EQ(Column("is_deleted", "10031"), "False");
  AnswerNext(IDYES);
  form.PressButton("Toolbar1", "apagar");
  EXPECT_TRUE(Forms().empty());
  EXPECT_EQ(Column("is_deleted", "10031"), "True");
  EXPECT_EQ(Column("obs", "10031"), "");
  for (const char* const table : {"tbProdutos_Precos", "tbProdutos_Stocks", "tbProdutos_Stocks_Minimos"}) {
    EXPECT_EQ(Rows(table, id), "0") << table;
  }

  const FormOnScreen tied = OpenCode("T-MAS");
  AnswerNext({IDYES, IDOK});
  tied.PressButton("Toolbar1", "apagar");
  if (Sql("SELECT COUNT(*) FROM sysobjects WHERE name = 'tbTratamentos'") != "0") {
    EXPECT_EQ(box_text,
              "Este produto/serviço não pode ser eliminado, porque está relacionado com o módulo de Tratamentos.");
    EXPECT_EQ(box_title, tied.Caption());
    EXPECT_EQ(Forms().size(), 1U);
  }
  EXPECT_TRUE(Reports().empty());
}

TEST_F(LifecycleTest, DependantsAreListedAndRemoved) {
  const FormOnScreen form = OpenCode("10204");
  const std::string where = " FROM tbProdutos WHERE is_deleted = 0 AND main_id = " + std::to_string(IdOfCode("10204"));
  form.SelectTab("dependentes");
  const int count = std::stoi(Sql("SELECT COUNT(*)" + where));
  ASSERT_EQ(form.RowCount("ListView3"), count);
  ASSERT_GT(count, 1);
  form.FocusOn("ListView3");
  form.Key(VK_END);
  const std::string row = form.Row("ListView3", count - 1);
  const std::string code = row.substr(0, row.find(' '));
  EXPECT_FALSE(form.ButtonIsEnabled("Toolbar2", "adicionar"));
  AnswerNext(IDYES);
  form.PressButton("Toolbar2", "remover");
  EXPECT_EQ(box_text, "Deseja mesmo apagar o produto selecionado?");
  EXPECT_EQ(form.RowCount("ListView3"), count - 1);
  EXPECT_EQ(Column("is_deleted", code), "True");
  EXPECT_TRUE(Reports().empty());
}

TEST_F(LifecycleTest, DependantsAreGeneratedForWhatIsChecked) {
  const FormOnScreen form = OpenCode("10032");
  const std::string where = " FROM tbProdutos WHERE is_deleted = 0 AND main_id = " + std::to_string(IdOfCode("10032"));
  ASSERT_EQ(Sql("SELECT COUNT(*)" + where), "0");
  form.SelectTab("dependentes");
  for (const int created : {6, 0}) {
    form.PressButton("Toolbar2", "gerar");
    const FormOnScreen generator = FormNamed("frmGerar");
    ASSERT_NE(generator.window(), nullptr);
    EXPECT_FALSE(IsWindowEnabled(form.window()));
    for (const auto& [list, rows] : {std::pair{"ListView1", 2}, {"ListView2", 3}}) {
      generator.FocusOn(list);
      generator.Key(VK_HOME);
      for (int i = 0; i < rows; ++i) {
        generator.Key(VK_SPACE);
        generator.Key(VK_DOWN);
      }
    }
    AnswerNext(IDOK);
    generator.PressCommand("Command1");
    EXPECT_NE(box_text.find(created > 0 ? "6" : "0"), std::string::npos) << box_text;
    EXPECT_EQ(FormNamed("frmGerar").window(), nullptr);
    EXPECT_TRUE(IsWindowEnabled(form.window()));
    EXPECT_EQ(Sql("SELECT COUNT(*)" + where), "6");
    EXPECT_EQ(form.RowCount("ListView3"), 6);
  }
  EXPECT_EQ(Sql("SELECT COUNT(*) FROM tbProdutos_Precos WHERE produto_id IN (SELECT produto_id" + where + ")"), "18");

  const FormOnScreen dependant = OpenCode(Sql("SELECT codigo" + where));
  dependant.SelectTab("dependentes");
  AnswerNext(IDOK);
  dependant.PressButton("Toolbar2", "gerar");
  EXPECT_EQ(box_text, "Não pode gerar produtos dependentes porque este produto já é dependente de outro.");
  EXPECT_TRUE(Reports().empty());
}

TEST_F(LifecycleTest, TheGeneratorGivesTheProductFormBackHoweverItCloses) {
  const FormOnScreen form = OpenCode("10033");
  form.SelectTab("dependentes");
  for (int way = 0; way < 3; ++way) {
    form.PressButton("Toolbar2", "gerar");
    const FormOnScreen generator = FormNamed("frmGerar");
    ASSERT_NE(generator.window(), nullptr);
    if (way == 0) generator.PressCommand("Command2");
    if (way == 1) generator.Close();
    if (way == 2) generator.Key(VK_ESCAPE);
    EXPECT_EQ(FormNamed("frmGerar").window(), nullptr) << way;
    EXPECT_TRUE(IsWindowEnabled(form.window())) << way;
  }
  EXPECT_TRUE(Reports().empty());
}

}  // namespace
}  // namespace quenta::tests
