#include "component/general.h"

#include "component_fixture.h"

namespace quenta::tests {
namespace {

using component::General;

using GeneralTest = ComponentTest;

TEST_F(GeneralTest, RecordOperationsBeforeConnectingDoNothing) {
  General general(component);
  general.ObjectOpen(7, {});
  general.Registo(7, {});
  general.ObjectNew({});
  general.NovoRegisto({});
  EXPECT_EQ(forms.forms.at(0)->opens, 0);
  EXPECT_TRUE(reporting.reports.empty());
}

TEST_F(GeneralTest, AKeyIsAnythingThatConvertsToALong) {
  session.state().connected = true;
  General general(component);
  general.ObjectOpen(base::Value(), {});
  EXPECT_EQ(forms.forms.at(0)->opens, 0) << "Empty opens nothing";
  general.ObjectOpen("42", {});
  EXPECT_EQ(forms.forms.at(0)->request.produto_id, 42);

  const std::pair<base::Value, const char*> refused[] = {
      {base::Value::Null(), "Invalid use of Null"}, {"abc", "Type mismatch"}, {1e10, "Overflow"}};
  for (const auto& [key, description] : refused) {
    reporting.reports.clear();
    general.ObjectOpen(key, {});
    ASSERT_EQ(reporting.reports.size(), 1U) << description;
    EXPECT_EQ(reporting.reports[0], (ports::ErrorReport{"Programa de Contabilidade", "Quenta_Produtos", "General",
                                                        "ObjectOpen", description}));
  }
  general.Registo("abc", {});
  EXPECT_EQ(reporting.reports.back().procedure, "Registo");
  EXPECT_EQ(forms.forms.at(0)->opens, 1);
}

TEST_F(GeneralTest, ALoadedFormKeepsItsProductAndAnotherProductGetsAnotherForm) {
  session.state().connected = true;
  General general(component);
  general.ObjectOpen(1, {});
  general.ObjectOpen(1, {});
  ASSERT_EQ(forms.forms.size(), 1U);
  EXPECT_EQ(forms.forms[0]->activations, 1);

  general.ObjectOpen(2, {});
  ASSERT_EQ(forms.forms.size(), 2U);
  EXPECT_EQ(forms.forms[0]->request.produto_id, 1);
  EXPECT_EQ(forms.forms[1]->request.produto_id, 2);

  forms.forms[1]->loaded = false;
  general.ObjectOpen(3, {});
  EXPECT_EQ(forms.forms.size(), 2U) << "a form that was closed is used again";
  EXPECT_EQ(forms.forms[1]->request.produto_id, 3);
}

TEST_F(GeneralTest, RequestsWaitInTheirOrderWhileAFormMustNotBeDisturbed) {
  session.state().connected = true;
  General general(component);
  auto other = std::make_unique<General>(component);
  forms.busy = true;
  general.ObjectOpen(1, {});
  other->ObjectOpen(2, {});
  general.Registo(3, {});
  form_host.PassTime();
  EXPECT_EQ(forms.forms.at(0)->opens, 0);

  other.reset();
  forms.busy = false;
  form_host.PassTime();
  ASSERT_EQ(forms.forms.size(), 3U) << "two to begin with, and one more for the second product";
  EXPECT_EQ(forms.forms[0]->request.produto_id, 1);
  EXPECT_EQ(forms.forms[1]->opens, 0) << "its General has gone";
  EXPECT_EQ(forms.forms[2]->request.produto_id, 3);
  EXPECT_TRUE(form_host.timers.empty());

  forms.busy = true;
  general.ObjectOpen(4, {});
  component.DropRequests();
  forms.busy = false;
  form_host.PassTime();
  EXPECT_EQ(forms.forms.size(), 3U);
}

TEST_F(GeneralTest, ItsEndReleasesTheFormAndLeavesTheSharedConnectionOpen) {
  {
    General general(component);
    ASSERT_TRUE(general.SQLConnect(Arguments()));
  }
  EXPECT_EQ(forms.forms.at(0).use_count(), 1);
  EXPECT_EQ(session.SharedConnection().State(), ports::ConnectionState::kOpen);
  EXPECT_TRUE(session.state().connected);
}

}  // namespace
}  // namespace quenta::tests
