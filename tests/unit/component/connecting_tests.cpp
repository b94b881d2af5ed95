#include "component/connecting.h"

#include "component/session/connection_keeper.h"
#include "component_fixture.h"

namespace quenta::tests {
namespace {

using component::General;

constexpr const char* kSharedOnFirst =
    "Provider=SQLOLEDB.1;Persist Security Info=False;User ID=suite;Password=s3creta;Encrypt=yes;"
    "Initial Catalog=Comercial;Data Source=sql1;Connect Timeout=15";

constexpr const char* kNotPresent = "A ligação ao servidor SQL não está presente.";

class SQLConnectTest : public ComponentTest {
 protected:
  // Every line goes on saying that it is open, and answers nothing.
  void LetLinesDie() {
    database.on_query = [](const std::string&) -> ports::RowSet {
      throw base::Error(-2147467259, "Communication link");
    };
  }
};

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
  const session::SessionState before = session.state();
  ports::Connection* const line = &session.SharedConnection();
  LetLinesDie();

  arguments.oFlags = 0;
  arguments.cnInitialCatalog = "Outra";
  const struct {
    const char* fails;
    const char* user;
    int at_wait;
  } cases[] = {{"the race", "suite", 0}, {"the user's own open", "ana", 0}, {"the last open", "suite", 2}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.fails);
    reporting.reports.clear();
    database.users = {{"suite", "s3creta"}, {"ana", "ana1"}};
    int waits = 0;
    // The server locks the user out at that moment.
    if (c.at_wait == 0) database.users.erase(c.user);
    desktop.while_pumping = [&] {
      if (++waits == c.at_wait) database.users.erase(c.user);
    };
    EXPECT_FALSE(General(component).SQLConnect(arguments));
    EXPECT_EQ(session.state(), before);
    EXPECT_EQ(session.shared_connection_string, before.primary_connection_string);
    EXPECT_EQ(&session.SharedConnection(), line);
    EXPECT_EQ(line->State(), ports::ConnectionState::kOpen) << "so it says";
  }
  ASSERT_EQ(reporting.reports.size(), 1U) << "only the last open was not to fail";
  EXPECT_EQ(reporting.reports[0],
            (ports::ErrorReport{"Quenta Software", "Quenta Software", "SQLConnect", "SQLConnect", "Cannot connect."}));

  database.users["suite"] = "s3creta";
  desktop.while_pumping = nullptr;
  EXPECT_NO_THROW(session::EnsureConnection(session, nullptr));
  EXPECT_NE(database.opened.back().find("Catalog=Comercial"), std::string::npos) << "the keeper goes back";
}

TEST_F(SQLConnectTest, ADeadLineIsOpenedAnew) {
  component::SQLConnectArguments arguments = Arguments();
  arguments.oFlags = 1;
  ASSERT_TRUE(General(component).SQLConnect(arguments));
  LetLinesDie();
  arguments.oFlags = 2;
  arguments.cnInitialCatalog = "Outra";
  EXPECT_TRUE(General(component).SQLConnect(arguments));
  EXPECT_EQ(session.state().initial_catalog, "Outra");
  EXPECT_EQ(session.state().application_key, "Sarvat") << "other flags keep the application key";
  EXPECT_EQ(database.opened.size(), 8U) << "two races, two tests of the user, two shared connections";
  EXPECT_EQ(database.open_connections, 1);
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

class LoginTest : public SQLConnectTest {
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

TEST_F(LoginTest, AfterSQLConnectOpensADeadLineAnewAndKeepsTheMasterStringOfTheSameDatabase) {
  const struct {
    const char* server;
    const char* catalogue;
    bool kept;
  } cases[] = {{"sql1", "Comercial", true}, {"sql2", "Comercial", false}, {"sql1", "Outra", false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.server) + ", " + c.catalogue);
    session.ReleaseConnection();
    database.on_query = [](const std::string&) { return ports::RowSet(); };
    component::SQLConnectArguments arguments = Arguments();
    arguments.cnDataSource = c.server;
    arguments.cnInitialCatalog = c.catalogue;
    ASSERT_TRUE(General(component).SQLConnect(arguments));
    const std::string master = session.state().primary_connection_string;
    const std::size_t opens = database.opened.size();
    EXPECT_TRUE(General(component).Login("ana", "not needed")) << "open already";
    EXPECT_EQ(database.opened.size(), opens);

    LetLinesDie();
    EXPECT_FALSE(General(component).Login("ana", session::Scramble("errada")));
    EXPECT_EQ(session.state().primary_connection_string, master);
    EXPECT_TRUE(General(component).Login("ana", session::Scramble("ana1")));
    EXPECT_EQ(session.state().primary_connection_string, c.kept ? master : "");
    EXPECT_EQ(database.opened.size(), opens + 3) << "twice the user's own, once the shared one";
    EXPECT_EQ(database.open_connections, 1);
    session::ConnectionCheck check;
    EXPECT_EQ(session::SQLConnectionCheck(session, check), c.kept ? kNotPresent : "...") << "the fake stays dead";
  }
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
