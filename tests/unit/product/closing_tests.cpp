#include "support/sample_component.h"

namespace quenta::tests {
namespace {

using ports::Answer;

class ClosingTest : public SampleComponentTest {
 protected:
  void SetUp() override { LogIn("ana"); }
  std::string RowsOf(std::int32_t id) {
    std::string counts;
    for (const char* table : {"tbProdutos", "tbProdutos_Precos", "tbProdutos_Stocks", "tbProdutos_Stocks_Minimos"}) {
      counts +=
          SqlText(std::string("SELECT COUNT(*) FROM ") + table + " WHERE produto_id = " + std::to_string(id)) + " ";
    }
    return counts;
  }
};

TEST_F(ClosingTest, AnUnalteredFormClosesWithoutAQuestionAndANewProductStays) {
  const auto form = OpenForm(0);
  const std::string rows = RowsOf(form->ProdutoId());
  EXPECT_TRUE(form->Unload());
  EXPECT_TRUE(desktop.messages.empty());
  EXPECT_TRUE(form_host.shown.empty());
  EXPECT_EQ(RowsOf(form->ProdutoId()), rows);
}

TEST_F(ClosingTest, NoDropsTheChangesAndRemovesAProductThatWasNeverSaved) {
  const auto form = OpenForm(0);
  form->FXNome.Typed("Desistência");
  desktop.answer = Answer::kNo;
  EXPECT_TRUE(form->Unload());
  EXPECT_EQ(RowsOf(form->ProdutoId()), "0 0 0 0 ");
  EXPECT_EQ(desktop.messages.back().text, "Deseja gravar as alterações efectuadas?");
  EXPECT_EQ(desktop.messages.back().title, "Quenta_Produtos");
  EXPECT_EQ(desktop.messages.back().buttons, ports::Buttons::kYesNoCancel);
  EXPECT_TRUE(desktop.messages.back().system_modal);
  EXPECT_EQ(form_host.window_order, (std::vector<bool>{true, false}));

  const auto loaded = OpenForm(IdOfCode("10000"));
  const std::string rows = RowsOf(loaded->ProdutoId());
  loaded->FXNome.Typed("Outra");
  EXPECT_TRUE(loaded->Unload());
  EXPECT_EQ(RowsOf(loaded->ProdutoId()), rows);
  EXPECT_NE(SqlText("SELECT nome FROM tbProdutos WHERE codigo = '10000'"), "Outra");
}

TEST_F(ClosingTest, CancelKeepsTheFormAndYesSavesOrKeepsIt) {
  const auto form = OpenForm(IdOfCode("10000"));
  form->FXNome.Typed("");
  desktop.answer = Answer::kCancel;
  EXPECT_FALSE(form->Unload());
  FaultPlan no_box{.fail_at = 0};
  desktop.faults = &no_box;
  form_host.window_order.clear();
  EXPECT_FALSE(form->Unload()) << "nobody was asked";
  EXPECT_EQ(reporting.reports.size(), 1U);
  EXPECT_EQ(form_host.window_order, (std::vector<bool>{true, false}));
  desktop.answer = Answer::kYes;
  EXPECT_FALSE(form->Unload()) << "the save is refused";
  EXPECT_TRUE(form->loaded() && form->Altered());
  form->FXNome.Typed("Gravado ao fechar");
  EXPECT_TRUE(form->Unload());
  EXPECT_EQ(SqlText("SELECT nome FROM tbProdutos WHERE codigo = '10000'"), "Gravado ao fechar");
}

TEST_F(ClosingTest, TheFormServesWhoAskedLastAndReleasesWhatItWasGiven) {
  const auto owner = std::make_shared<ports::HostObject>();
  const auto form = std::static_pointer_cast<product::frmMain>(product_forms.Create());
  form->Open({.produto_id = IdOfCode("10000"), .owner = owner, .caller = owner, .current_object = owner});
  EXPECT_EQ(owner.use_count(), 4);
  const auto later = std::make_shared<ports::HostObject>();
  form->Activate({.caller = later});
  EXPECT_EQ(form->Caller(), later);
  EXPECT_EQ(owner.use_count(), 3) << "without an index the object stays";
  form->Activate({.caller = later, .current_index = 1, .current_object = later});
  EXPECT_EQ(owner.use_count(), 2);
  EXPECT_TRUE(form->Unload());
  EXPECT_EQ(owner.use_count(), 1);
  EXPECT_EQ(later.use_count(), 1);
}

TEST_F(ClosingTest, AQuestionThatIsOpenIsNotAskedTwice) {
  const auto form = OpenForm(IdOfCode("10000"));
  form->FXNome.Typed("x");
  desktop.while_asking = [&] { EXPECT_FALSE(form->Unload()); };
  desktop.answer = Answer::kNo;
  EXPECT_TRUE(form->Unload());
  EXPECT_EQ(desktop.messages.size(), 1U);
}

}  // namespace
}  // namespace quenta::tests
