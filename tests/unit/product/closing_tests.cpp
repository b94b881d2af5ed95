#include "support/sample_component.h"

namespace quenta::tests {
namespace {

class ClosingTest : public SampleComponentTest {
 protected:
  void SetUp() override { LogIn("ana"); }
};

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

}  // namespace
}  // namespace quenta::tests
