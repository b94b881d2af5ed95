#include "component/general.h"

#include <initializer_list>
#include <utility>

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
  general.ObjectOpen(1, {.current_index = 5});
  ASSERT_EQ(forms.forms.size(), 1U);
  EXPECT_EQ(forms.forms[0]->activations, 1);
  EXPECT_EQ(forms.forms[0]->request.current_index, 5) << "it now serves the one who asked last";

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

TEST_F(GeneralTest, WithoutATimerARequestThatWouldWaitIsReportedAndTheNextOneWaits) {
  session.state().connected = true;
  General general(component);
  forms.busy = true;
  FaultPlan no_timer{.fail_at = 0, .fault = Fault::kFails};
  form_host.faults = &no_timer;
  general.ObjectOpen(1, {});
  ASSERT_EQ(reporting.reports.size(), 1U);
  EXPECT_EQ(reporting.reports[0].procedure, "ObjectOpen");
  general.ObjectOpen(2, {});
  general.ObjectOpen(3, {});
  EXPECT_EQ(form_host.timers.size(), 1U);

  // The first of them keeps the forms busy again: what still waits needs no timer of its own.
  no_timer = {.fail_at = 1, .fault = Fault::kFailsForGood};
  forms.forms.at(0)->on_open = [&] { forms.busy = true; };
  forms.busy = false;
  form_host.PassTime();
  EXPECT_EQ(forms.forms[0]->request.produto_id, 2);
  EXPECT_EQ(forms.forms.size(), 1U);
  forms.busy = false;
  form_host.PassTime();
  EXPECT_EQ(forms.forms.at(1)->request.produto_id, 3);
  EXPECT_TRUE(form_host.timers.empty());
}

TEST_F(GeneralTest, EachCallOfTheOutsideMayFailWhileConnectingAndTheNextTrySucceeds) {
  settings.registry = {{R"(SOFTWARE\Ambrell\Shared\OUT:DataServer)", ""}};
  EXPECT_FALSE(General(component).Login("ana", "")) << "an empty setting is a missing one";
  EXPECT_TRUE(desktop.messages.empty());
  settings.registry = {{R"(SOFTWARE\Ambrell\Shared\OUT:DataServer)", "Sarvat"}};
  for (const auto& [name, value] : {std::pair{"dtSecurityInfo", "False"},
                                    {"dtUser", "suite"},
                                    {"dtInitialCatalog", "Comercial"},
                                    {"dtDataSource", "sql1"}}) {
    settings.registry[std::string(R"(SOFTWARE\Ambrell\Sarvat:)") + name] = value;
  }
  settings.registry[R"(SOFTWARE\Ambrell\Sarvat:dtPassword)"] = session::Scramble("s3creta");
  const std::pair<const char*, std::function<bool(General&)>> calls[] = {
      {"SQLConnect", [&](General& general) { return general.SQLConnect(Arguments()); }},
      {"Login", [](General& general) { return general.Login("ana", session::Scramble("ana1")); }},
  };
  for (const auto& [name, call] : calls) {
    for (const Fault fault : {Fault::kFails, Fault::kFailsForGood}) {
      FaultPlan plan{.fault = fault};
      do {
        SCOPED_TRACE(name + (" with call " + std::to_string(plan.fail_at)));
        session.ReleaseConnection();
        for (Fallible* part : std::initializer_list<Fallible*>{&database, &settings, &desktop, &reporting}) {
          part->faults = &plan;
        }
        plan.calls = 0;
        ++plan.fail_at;
        General general(component);
        const bool open = call(general);
        for (Fallible* part : std::initializer_list<Fallible*>{&database, &settings, &desktop, &reporting}) {
          part->faults = nullptr;
        }
        EXPECT_EQ(session.state().connected, open);
        EXPECT_TRUE(call(general)) << "the next time";
        EXPECT_EQ(database.open_connections, 1);
      } while (plan.calls > plan.fail_at);
    }
  }
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
