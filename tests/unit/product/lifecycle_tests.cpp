// What journeys cannot show of duplicating, deleting and generating.
#include "base/error.h"
#include "generator/dependant.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

class LifecycleTest : public SampleComponentTest {
 protected:
  void SetUp() override {
    LogIn("ana");
    desktop.answer = ports::Answer::kYes;
  }
  std::string Of(std::int32_t id, const std::string& column) {
    return SqlText("SELECT " + column + " FROM tbProdutos WHERE produto_id = " + std::to_string(id));
  }
};

TEST_F(LifecycleTest, ATransactionOfAnotherOperationIsLeftToIt) {
  const auto form = OpenForm(IdOfCode("10000"));
  session::Transaction other(session);
  session.Execute("UPDATE tbProdutos SET obs = 'de outra operação' WHERE produto_id = 900");
  form->Apagar();
  EXPECT_EQ(reporting.reports.size(), 1U);
  other.Commit();
  EXPECT_EQ(SqlText("SELECT obs FROM tbProdutos WHERE produto_id = 900"), "de outra operação");
}

// The question names no product.
TEST_F(LifecycleTest, TheDependantToRemoveIsInViewWhenItIsAskedAbout) {
  const auto form = OpenForm(IdOfCode("10300"));
  form->Fill_Dependentes();
  form->ListView3.Clicked(1);
  class View final : public controls::ControlView {
   public:
    void ControlChanged(controls::Control&, controls::Aspect aspect) noexcept override {
      scrolled = scrolled || aspect == controls::Aspect::kSelection;
    }
    bool scrolled = false;
  } view;
  form->ListView3.Attach(&view);
  bool in_view = false;
  desktop.while_asking = [&] { in_view = view.scrolled; };
  form->Toolbar2.Clicked("remover");
  form->ListView3.Attach(nullptr);
  EXPECT_TRUE(in_view);
}

// Each way on which notes travel back into a statement; the server of the test cuts and joins lines as the real one.
TEST_F(LifecycleTest, NotesSurviveSavingDuplicatingAndGeneratingByteForByte) {
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

}  // namespace
}  // namespace quenta::tests
