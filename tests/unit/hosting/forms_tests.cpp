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

  // The user closes it while an operation of its own runs.
  void CloseWhileItWorks() {
    const Operation operation(*this);
    EXPECT_FALSE(Unload());
  }
  bool cannot_close = false;
  int failures_told = 0;

 protected:
  void OnLoad() override { forms_.Add(*this); }
  void OnUnload(bool&) override {
    if (cannot_close) throw base::Error(base::error_number::kInternal, "It stays.");
  }
  void OnClosed() noexcept override { forms_.Remove(*this); }
  void OnUnloadFailed() noexcept override { ++failures_told; }

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

TEST_F(FormsTest, AClosingThatWasPutOffIsNotDroppedInSilence) {
  const auto form = Open();
  form->cannot_close = true;
  form->CloseWhileItWorks();
  host.PassTime();
  EXPECT_TRUE(form->loaded());
  EXPECT_EQ(form->failures_told, 1);
  form->cannot_close = false;
  form->CloseWhileItWorks();
  host.PassTime();
  EXPECT_FALSE(form->loaded());

  const auto other = Open();
  FaultPlan no_timer{.fail_at = 0, .fault = Fault::kFailsForGood};
  host.faults = &no_timer;
  other->CloseWhileItWorks();
  EXPECT_FALSE(other->loaded()) << "at once, without a timer to close it by";
}

TEST_F(FormsTest, ExclusiveUseDisablesTheOthersAndMakesTimersWait) {
  const auto user = Open();
  const auto other = Open();
  const auto disabled_before = Open();
  disabled_before->set_enabled(false);
  forms.main_childs()->Killme.set_enabled(true);
  {
    const hosting::ExclusiveUse use(forms, *user);
    { const hosting::ExclusiveUse within(forms, *user); }
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
