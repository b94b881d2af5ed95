#include "component/connecting.h"

#include "component_fixture.h"

namespace quenta::tests {
namespace {

using component::General;

constexpr const char* kSharedOnFirst =
    "Provider=SQLOLEDB.1;Persist Security Info=False;User ID=suite;Password=s3creta;Encrypt=yes;"
    "Initial Catalog=Comercial;Data Source=sql1;Connect Timeout=15";

using SQLConnectTest = ComponentTest;

struct RaceCase {
  const char* name;
  FakeServer primary;
  FakeServer secondary;
  bool connects;
  bool on_secondary;
};

TEST_F(SQLConnectTest, TheFirstServerThatAnswersWinsAndThePrimaryWinsATie) {
  const RaceCase cases[] = {
      {"both at once", {1, true}, {1, true}, true, false},
      {"primary slower", {9, true}, {2, true}, true, true},
      {"primary refuses at once", {0, false}, {5, true}, true, true},
      {"secondary refuses at once", {5, true}, {0, false}, true, false},
      {"both refuse at once", {0, false}, {0, false}, false, false},
      {"both refuse late", {7, false}, {9, false}, false, false},
  };
  for (const RaceCase& c : cases) {
    SCOPED_TRACE(c.name);
    session.ReleaseConnection();
    database.servers = {{"sql1", c.primary}, {"sql2", c.secondary}};
    EXPECT_EQ(General(component).SQLConnect(Arguments()), c.connects);
    EXPECT_EQ(session.state().connected, c.connects);
    EXPECT_EQ(session.state().on_secondary, c.on_secondary);
    EXPECT_EQ(database.open_connections, c.connects ? 1 : 0) << "only the shared connection stays open";
  }
  EXPECT_TRUE(reporting.reports.empty());
}

TEST_F(SQLConnectTest, TheSharedConnectionIsTheComponentsUserOnTheWinner) {
  ASSERT_TRUE(General(component).SQLConnect(Arguments()));
  EXPECT_EQ(database.opened.back(), kSharedOnFirst);
  const session::SessionState& state = session.state();
  EXPECT_EQ(state.session_user, "ana");
  EXPECT_EQ(state.session_password, session::Scramble("ana1"));
  EXPECT_EQ(state.application_key, "Contabilidade");
  EXPECT_EQ(state.primary_connection_string, session::Scramble(kSharedOnFirst));

  const std::size_t opens = database.opened.size();
  EXPECT_TRUE(General(component).SQLConnect(Arguments())) << "open already";
  EXPECT_EQ(database.opened.size(), opens);
}

TEST_F(SQLConnectTest, EqualServersAreTriedOnce) {
  component::SQLConnectArguments arguments = Arguments();
  arguments.cnDataSourceSecondary = arguments.cnDataSource;
  ASSERT_TRUE(General(component).SQLConnect(arguments));
  EXPECT_EQ(database.opened.size(), 3U) << "one race, one user test, the shared connection";
  EXPECT_EQ(session.state().secondary_data_source, "");
}

TEST_F(SQLConnectTest, AFailedAttemptLeavesTheSessionAsItWas) {
  component::SQLConnectArguments arguments = Arguments();
  arguments.oFlags = 1;
  ASSERT_TRUE(General(component).SQLConnect(arguments));
  session.SharedConnection().Close();
  const std::string before = session.state().primary_connection_string;

  arguments.Password = session::Scramble("errada");
  arguments.oFlags = 0;
  arguments.cnInitialCatalog = "Outra";
  EXPECT_FALSE(General(component).SQLConnect(arguments));
  EXPECT_EQ(session.state().application_key, "Sarvat");
  EXPECT_EQ(session.state().initial_catalog, "Comercial");
  EXPECT_EQ(session.state().primary_connection_string, before);
  EXPECT_EQ(session.state().session_password, session::Scramble("ana1"));

  arguments.Password = session::Scramble("ana1");
  arguments.oFlags = 2;
  EXPECT_TRUE(General(component).SQLConnect(arguments));
  EXPECT_EQ(session.state().application_key, "Sarvat") << "other flags keep the application key";
}

TEST_F(SQLConnectTest, AnErrorOfTheSharedConnectionIsReportedUnderTheLabelsKeptForIt) {
  database.users.erase("suite");
  database.users["suite"] = "s3creta";
  int opens = 0;
  database.servers["sql2"].answers = false;
  desktop.while_pumping = [&] {
    // The server lets the race and the user's test in, then locks the component's own user out.
    if (++opens == 2) database.users["suite"] = "mudada";
  };
  EXPECT_FALSE(General(component).SQLConnect(Arguments()));
  ASSERT_EQ(reporting.reports.size(), 1U);
  EXPECT_EQ(reporting.reports[0],
            (ports::ErrorReport{"Quenta Software", "Quenta Software", "SQLConnect", "SQLConnect", "Cannot connect."}));
  EXPECT_FALSE(session.state().connected);
}

TEST_F(SQLConnectTest, TheWaitEndsWithTheHostAndRefusesToBeEnteredAgain) {
  database.servers["sql1"].steps_to_answer = 1000000;
  database.servers["sql2"].steps_to_answer = 1000000;
  bool inner = true;
  desktop.while_pumping = [&] {
    if (desktop.pumps == 3) inner = General(component).SQLConnect(Arguments());
  };
  desktop.quits_after = 10;
  EXPECT_FALSE(General(component).SQLConnect(Arguments()));
  EXPECT_FALSE(inner);
  EXPECT_EQ(database.open_connections, 0);
}

class LoginTest : public ComponentTest {
 protected:
  LoginTest() {
    settings.registry = {{R"(SOFTWARE\Ambrell\Shared\OUT:DataServer)", "Contabilidade"},
                         {R"(SOFTWARE\Ambrell\Contabilidade:dtSecurityInfo)", "False"},
                         {R"(SOFTWARE\Ambrell\Contabilidade:dtUser)", "suite"},
                         {R"(SOFTWARE\Ambrell\Contabilidade:dtPassword)", session::Scramble("s3creta")},
                         {R"(SOFTWARE\Ambrell\Contabilidade:dtInitialCatalog)", "Comercial"},
                         {R"(SOFTWARE\Ambrell\Contabilidade:dtDataSource)", "sql1"}};
  }
};

TEST_F(LoginTest, TakesItsSettingsFromTheRegistryAndKeepsNoMasterString) {
  ASSERT_TRUE(General(component).Login("ana", session::Scramble("ana1")));
  EXPECT_EQ(database.opened.front(),
            "Provider=SQLOLEDB.1;Persist Security Info=False;User ID=ana;Password=ana1;Initial Catalog=Comercial;"
            "Data Source=sql1;Connect Timeout=15");
  EXPECT_EQ(session.state().application_key, "Contabilidade");
  EXPECT_EQ(session.state().session_user, "ana");
  EXPECT_EQ(session.state().primary_connection_string, "");
  EXPECT_EQ(database.open_connections, 1);
}

TEST_F(LoginTest, AMissingSettingOrWrongCredentialsGiveFalseWithoutAReport) {
  EXPECT_FALSE(General(component).Login("ana", session::Scramble("errada")));
  EXPECT_FALSE(General(component).Login("ana", "not scrambled"));
  const auto whole = settings.registry;
  for (const auto& [name, value] : whole) {
    settings.registry = whole;
    settings.registry.erase(name);
    EXPECT_FALSE(General(component).Login("ana", session::Scramble("ana1"))) << "without " << name;
  }
  EXPECT_TRUE(reporting.reports.empty());
  EXPECT_FALSE(session.state().connected);
  EXPECT_EQ(database.open_connections, 0);
}

}  // namespace
}  // namespace quenta::tests
