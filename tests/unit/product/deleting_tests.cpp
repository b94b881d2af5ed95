#include "base/error.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

class DeletingTest : public SampleComponentTest {
 protected:
  void SetUp() override {
    LogIn("ana");
    desktop.answer = ports::Answer::kYes;
  }
};

TEST_F(DeletingTest, ATransactionOfAnotherOperationIsLeftToIt) {
  const auto form = OpenForm(IdOfCode("10000"));
  session::Transaction other(session);
  session.Execute("UPDATE tbProdutos SET obs = 'de outra operação' WHERE produto_id = 900");
  form->Apagar();
  EXPECT_EQ(reporting.reports.size(), 1U);
  other.Commit();
  EXPECT_EQ(SqlText("SELECT obs FROM tbProdutos WHERE produto_id = 900"), "de outra operação");
}

// The question names no product.
TEST_F(DeletingTest, TheDependantToRemoveIsInViewWhenItIsAskedAbout) {
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

}  // namespace
}  // namespace quenta::tests
