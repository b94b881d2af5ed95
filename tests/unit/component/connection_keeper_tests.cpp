#include "component/session/connection_keeper.h"

#include "component_fixture.h"
#include "support/fake_working_form.h"

namespace quenta::tests {
namespace {

using session::ConnectionCheck;
using Calls = std::vector<std::string>;

constexpr const char* kNotPresent = "A ligação ao servidor SQL não está presente.";

class KeeperTest : public ComponentTest {
 protected:
  void SetUp() override {
    ASSERT_TRUE(component::General(component).SQLConnect(Arguments()));
    database.opened.clear();
    form.calls = &reporting.calls;
  }
  std::string Check(ConnectionCheck check) { return session::SQLConnectionCheck(session, check); }
  void DropLine() { session.SharedConnection().Close(); }
  std::vector<std::string> ServersTried() const {
    std::vector<std::string> servers;
    for (const std::string& text : database.opened) {
      const std::size_t at = text.find("Data Source=") + 12;
      servers.push_back(text.substr(at, text.find(';', at) - at));
    }
    return servers;
  }

  FakeWorkingForm form;
};

TEST_F(KeeperTest, AUsableConnectionAnswersNothingAndRestoresThePointer) {
  EXPECT_EQ(Check({.form = &form}), "");
  EXPECT_EQ(form.pointer, 5);
  EXPECT_TRUE(reporting.calls.empty());
}

TEST_F(KeeperTest, TheTransactionShortcutLeavesTheHourglass) {
  database.on_query = [](const std::string&) {
    ports::RowSet rows({"valor"});
    rows.Append(1);
    return rows;
  };
  EXPECT_EQ(Check({.form = &form, .transaction_shortcut = true}), "");
  EXPECT_EQ(form.pointer, 11);
  form.pointer = 5;
  EXPECT_EQ(Check({.form = &form}), "");
  EXPECT_EQ(form.pointer, 5);
}

TEST_F(KeeperTest, WithoutLeaveToReconnectItOnlySaysSo) {
  DropLine();
  EXPECT_EQ(Check({.form = &form}), kNotPresent);
  EXPECT_TRUE(database.opened.empty());
  EXPECT_EQ(form.pointer, 5);
}

TEST_F(KeeperTest, AStatementThatFailsCountsAsADroppedLineThoughTheStateSaysOpen) {
  database.on_query = [](const std::string&) -> ports::RowSet { throw base::Error(-2147467259, "Communication link"); };
  EXPECT_EQ(Check({}), kNotPresent);
  EXPECT_EQ(Check({.reconnect = true}), "");
  EXPECT_EQ(ServersTried(), (std::vector<std::string>{"sql1"}));
}

TEST_F(KeeperTest, ReconnectsShowingWhatHappens) {
  DropLine();
  EXPECT_EQ(Check({.form = &form, .reconnect = true, .minimise = true}), "");
  EXPECT_EQ(reporting.calls, (Calls{"refresh", "minimised", "SQLReconnectShow", "SQLReconnectShutdown",
                                    "SQLReconnectShowOK", "normal", "refresh"}));
  EXPECT_FALSE(reporting.reconnecting) << "its object is let go";
  EXPECT_EQ(session.SharedConnection().ConnectionTimeout(), 15) << "the timeout is restored";
}

TEST_F(KeeperTest, GoesToTheOtherServerWhenItsOwnIsGone) {
  database.servers["sql1"].answers = false;
  DropLine();
  EXPECT_EQ(Check({.reconnect = true, .silent = true}), "");
  EXPECT_EQ(ServersTried(), (std::vector<std::string>{"sql1", "sql2"}));
  EXPECT_FALSE(session.state().on_secondary) << "the flag is not changed";
  EXPECT_TRUE(reporting.calls.empty()) << "silent";
}

TEST_F(KeeperTest, GivesUpAfterFourAttemptsOfTwoOpens) {
  database.servers["sql1"].answers = false;
  database.servers["sql2"].answers = false;
  DropLine();
  EXPECT_EQ(Check({.form = &form, .reconnect = true, .minimise = true}), "Cannot connect.");
  EXPECT_EQ(database.opened.size(), 8U);
  EXPECT_EQ(reporting.calls, (Calls{"refresh", "minimised", "SQLReconnectShow", "SQLReconnectShutdown",
                                    "SQLReconnectShowBad", "normal", "refresh"}));
  EXPECT_FALSE(reporting.reconnecting);
  EXPECT_EQ(form.pointer, 5);
}

TEST_F(KeeperTest, AServerThatNeverAnswersIsGivenUpByOurOwnClock) {
  database.servers["sql1"].steps_to_answer = 1000000;
  desktop.while_pumping = [&] { desktop.skipped += std::chrono::seconds(1); };
  DropLine();
  EXPECT_EQ(Check({.reconnect = true}), "");
  EXPECT_EQ(ServersTried(), (std::vector<std::string>{"sql1", "sql2"}));
  EXPECT_EQ(desktop.skipped, std::chrono::seconds(11)) << "ten for the first, one for the second";

  database.servers["sql2"].steps_to_answer = 1000000;
  database.opened.clear();
  desktop.skipped = {};
  DropLine();
  EXPECT_EQ(Check({.reconnect = true}), "O servidor SQL não respondeu dentro de 10 segundos.");
  EXPECT_EQ(database.opened.size(), 8U);
  EXPECT_EQ(desktop.skipped, std::chrono::seconds(80));
  EXPECT_EQ(session.SharedConnection().State(), ports::ConnectionState::kClosed);
}

TEST_F(KeeperTest, AWaitEndsWithTheConnectionThatTheHostOpensMeanwhile) {
  database.servers["sql1"].steps_to_answer = 1000000;
  bool connected = false;
  desktop.pumps = 0;
  desktop.while_pumping = [&] {
    if (desktop.pumps == 5) connected = component::General(component).SQLConnect(Arguments());
  };
  DropLine();
  ConnectionCheck check{.reconnect = true};
  EXPECT_EQ(session::SQLConnectionCheck(session, check), "");
  EXPECT_TRUE(connected);
  EXPECT_EQ(check.connection, &session.SharedConnection());
  EXPECT_EQ(check.connection->State(), ports::ConnectionState::kOpen);
  EXPECT_EQ(database.open_connections, 1);
}

TEST_F(KeeperTest, ASessionWithOneServerTriesThatOneAgain) {
  session.state().secondary_data_source.clear();
  database.servers["sql1"].answers = false;
  DropLine();
  EXPECT_EQ(Check({.reconnect = true, .silent = true}), "Cannot connect.");
  for (const std::string& server : ServersTried()) EXPECT_EQ(server, "sql1");
}

TEST_F(KeeperTest, ACancelledWaitEndsAtOnce) {
  const struct {
    bool silent;
    bool on_second_wait;
    Calls calls;
  } cases[] = {
      {false, false, {"refresh", "minimised", "SQLReconnectShow", "SQLReconnectShutdown", "normal", "refresh"}},
      {true, false, {"refresh", "minimised", "normal", "refresh"}},
      {false, true, {"refresh", "minimised", "SQLReconnectShow", "SQLReconnectShutdown", "normal", "refresh"}},
      {true, true, {"refresh", "minimised"}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.silent ? "silent" : "shown") + (c.on_second_wait ? ", second wait" : ", first wait"));
    database.servers["sql1"] = c.on_second_wait ? FakeServer{0, false} : FakeServer{1000, true};
    database.servers["sql2"] = FakeServer{1000, true};
    form.pointer = 5;
    reporting.calls.clear();
    desktop.while_pumping = [&] { session.cancel_reconnect = true; };
    session.shared_connection_string = session.state().primary_connection_string;
    DropLine();
    EXPECT_EQ(Check({.form = &form, .reconnect = true, .silent = c.silent, .minimise = true}), "...");
    EXPECT_EQ(form.pointer, 11) << "deliberately left";
    EXPECT_EQ(reporting.calls, c.calls);
    EXPECT_FALSE(reporting.reconnecting) << "its object is let go";
  }
}

TEST_F(KeeperTest, WithoutAMasterStringItAnswersThreePointsAndCallersGoOnWhileOpen) {
  session.state().primary_connection_string.clear();
  EXPECT_EQ(Check({.reconnect = true}), "...");
  EXPECT_NO_THROW(session::EnsureConnection(session, nullptr)) << "after Login";
  DropLine();
  EXPECT_THROW(session::EnsureConnection(session, nullptr), base::Error);
}

TEST_F(KeeperTest, NeverReconnectsUnderATransactionOfOurs) {
  session.transaction_held = true;
  DropLine();
  EXPECT_THROW(session::EnsureConnection(session, nullptr), base::Error);
  EXPECT_FALSE(component::General(component).SQLConnect(Arguments())) << "nor is another connection opened";
  EXPECT_TRUE(database.opened.empty());
}

}  // namespace
}  // namespace quenta::tests
