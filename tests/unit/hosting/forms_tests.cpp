#include "hosting/forms.h"

#include "gtest/gtest.h"
#include "hosting/frm_main_childs.h"
#include "support/fake_ports.h"

namespace quenta::tests {
namespace {

// A form that is among the loaded ones from its load to its close.
class ListedForm final : public controls::Form {
 public:
  ListedForm(ports::FormHost& host, hosting::Forms& forms) : Form(host, "ListedForm"), forms_(forms) {}

 protected:
  void OnLoad() override { forms_.Add(*this); }
  void OnClosed() noexcept override { forms_.Remove(*this); }

 private:
  hosting::Forms& forms_;
};

class FormsTest : public testing::Test {
 protected:
  std::shared_ptr<ListedForm> Open() {
    const auto form = std::make_shared<ListedForm>(host, forms);
    form->Show();
    return form;
  }
  bool HiddenFormIsLoaded() const { return forms.main_childs() != nullptr && forms.main_childs()->loaded(); }

  FakeFormHost host;
  FakeErrorReporting reporting;
  hosting::Forms forms{host, reporting};
};

TEST_F(FormsTest, TheHiddenFormLivesFromTheFirstFormUntilAfterTheLast) {
  EXPECT_FALSE(HiddenFormIsLoaded());
  const auto first = Open();
  const auto second = Open();
  EXPECT_TRUE(HiddenFormIsLoaded());
  EXPECT_EQ(host.shown.count(forms.main_childs().get()), 0U) << "it stays hidden";
  first->Unload();
  host.PassTime();
  EXPECT_TRUE(HiddenFormIsLoaded());

  second->Unload();
  EXPECT_TRUE(HiddenFormIsLoaded()) << "it goes on a later pass of the message loop";
  const auto third = Open();
  host.PassTime();
  EXPECT_TRUE(HiddenFormIsLoaded()) << "a form was opened meanwhile";
  third->Unload();
  host.PassTime();
  EXPECT_FALSE(HiddenFormIsLoaded());
  EXPECT_TRUE(host.timers.empty());
  Open();
  EXPECT_TRUE(HiddenFormIsLoaded());
}

TEST_F(FormsTest, UnloadingTheHiddenFormLeavesTheOthersOpen) {
  const auto form = Open();
  forms.main_childs()->Killme.set_enabled(true);
  forms.main_childs()->Killme.set_enabled(true);
  host.PassTime();
  EXPECT_FALSE(HiddenFormIsLoaded());
  EXPECT_TRUE(host.timers.empty()) << "it fires once";
  EXPECT_TRUE(form->loaded());
  EXPECT_EQ(host.shown.count(form.get()), 1U);
}

TEST_F(FormsTest, WithoutATimerTheHiddenFormClosesAtOnce) {
  FaultPlan no_timer{.fail_at = 0, .fault = Fault::kFailsForGood};
  const auto form = Open();
  host.faults = &no_timer;
  EXPECT_TRUE(form->Unload());
  EXPECT_FALSE(form->loaded());
  EXPECT_FALSE(HiddenFormIsLoaded());
  ASSERT_EQ(reporting.reports.size(), 1U);
  EXPECT_EQ(reporting.reports[0], (ports::ErrorReport{"Programa de Contabilidade", "Quenta_Produtos", "frmMainChilds",
                                                      "Killme_Timer", "Injected failure"}));
  host.faults = nullptr;
  Open()->Unload();
  host.PassTime();
  EXPECT_FALSE(HiddenFormIsLoaded()) << "the next time as ever";
}

TEST_F(FormsTest, ExclusiveUseDisablesTheOthersAndMakesTimersWait) {
  const auto user = Open();
  const auto other = Open();
  const auto disabled_before = Open();
  disabled_before->set_enabled(false);
  forms.main_childs()->Killme.set_enabled(true);
  {
    const hosting::ExclusiveUse use(forms, *user);
    const hosting::ExclusiveUse within(forms, *user);
    EXPECT_TRUE(forms.in_exclusive_use());
    EXPECT_TRUE(user->enabled());
    EXPECT_FALSE(other->enabled());
    host.PassTime();
    EXPECT_TRUE(HiddenFormIsLoaded());
    other->WindowLost();
  }
  EXPECT_FALSE(forms.in_exclusive_use());
  EXPECT_FALSE(other->enabled()) << "a form that has gone meanwhile is left alone";
  EXPECT_FALSE(disabled_before->enabled());
  host.PassTime();
  EXPECT_FALSE(HiddenFormIsLoaded());
}

}  // namespace
}  // namespace quenta::tests
