#include "component/session/statement_log.h"

#include "component_fixture.h"

namespace quenta::tests {
namespace {

using session::MaskSecrets;

TEST(MaskSecrets, HidesTheValuesOfPasswordsAndNothingElse) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"User ID=suite;Password=s3creta;Data Source=sql1", "User ID=suite;Password=***;Data Source=sql1"},
      {"password = 'a;b''c';Encrypt=yes;", "password = ***;Encrypt=yes;"},
      {"PWD=\"x\"\";y\";Uid=a;pwd=;Password", "PWD=***;Uid=a;pwd=***;Password"},
      {"Password=até ao fim", "Password=***"},
      {"Password=\"sem fim", "Password=***"},
      {"UPDATE tbProdutos SET nome = 'Password; água'", "UPDATE tbProdutos SET nome = 'Password; água'"},
  };
  for (const auto& [text, masked] : cases) EXPECT_EQ(MaskSecrets(text), masked);
}

TEST(LogLine, IsOneLineWithMomentDurationOutcomeAndTheWholeStatement) {
  using namespace std::chrono;
  const auto moment = sys_days(year{2026} / 3 / 9) + hours(7) + minutes(5) + seconds(1) + milliseconds(20);
  EXPECT_EQ(session::LogLine({.text = "SELECT 'a\r\n\tb'", .duration = microseconds(61005), .rows = 12}, moment),
            "2026-03-09 07:05:01.020Z\t61.005 ms\t12 rows\tSELECT 'a\\r\\n\\tb'\r\n");
  EXPECT_EQ(
      session::LogLine({.call = session::DatabaseCall::kOpen,
                        .text = "Password=x;Data Source=sql1",
                        .error = base::Error(-5, "Login failed\nPWD=x")},
                       moment),
      "2026-03-09 07:05:01.020Z\t0.000 ms\terror -5: Login failed\\nPWD=***\tOPEN Password=***;Data Source=sql1\r\n");
}

// A whole session through the log: every call is there with its outcome, and no password in any form.
class StatementLogTest : public ComponentTest {
 protected:
  std::string log_text;
  session::StatementLines lines{[this](const std::string& line) { log_text += line; }};
  session::StatementLog log{database, lines};
  session::Session logged_session{{log, settings, desktop, reporting}};
  FakeProductForms logged_forms;
  component::Component logged{logged_session, logged_forms, form_host};
};

TEST_F(StatementLogTest, TellsOfEveryCallAndOfNoPassword) {
  database.servers["sql1"].answers = false;
  database.on_query = [](const std::string& sql) {
    if (sql == "x") throw base::Error(-2147217900, "Incorrect syntax near 'x'.");
    ports::RowSet rows({"valor"});
    rows.Append(1);
    return rows;
  };
  ASSERT_TRUE(component::General(logged).SQLConnect(Arguments()));
  logged_session.Query("SELECT 1");
  logged_session.Execute("DELETE");
  logged_session.SharedConnection().BeginTransaction();
  EXPECT_THROW(logged_session.Execute("x"), base::Error);
  logged_session.SharedConnection().RollbackTransaction();
  const char* const expected[] = {"error -2147467259: Cannot connect.\tOPEN Provider=SQLOLEDB.1;",
                                  "Data Source=sql2",
                                  "1 rows\tSELECT 1\r\n",
                                  "done\tDELETE\r\n",
                                  "done\tBEGIN\r\n",
                                  "error -2147217900: Incorrect syntax near 'x'.\tx\r\n",
                                  "done\tROLLBACK\r\n"};
  std::size_t at = 0;
  for (const char* const text : expected) {
    at = log_text.find(text, at);
    ASSERT_NE(at, std::string::npos) << text << " is missing in\n" << log_text;
  }
  for (const std::string password : {"s3creta", "ana1"}) {
    EXPECT_EQ(log_text.find(password), std::string::npos);
    EXPECT_EQ(log_text.find(session::Scramble(password)), std::string::npos);
  }
}

TEST_F(StatementLogTest, ASinkThatFailsDisturbsNothing) {
  session::StatementLines failing([](const std::string&) { throw std::bad_alloc(); });
  session::StatementLog failing_log(database, failing);
  const auto connection = failing_log.CreateConnection();
  connection->SetConnectionString(";Data Source=sql1;User ID=suite;Password=s3creta");
  EXPECT_NO_THROW(connection->Open());
  EXPECT_NO_THROW(connection->Query("SELECT 1"));
}

}  // namespace
}  // namespace quenta::tests
