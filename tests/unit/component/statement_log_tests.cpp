#include "component/session/statement_log.h"

#include <new>

#include "gtest/gtest.h"
#include "support/fake_ports.h"

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

// Every call is there with its outcome, and what the sink throws disturbs nothing.
TEST(StatementLines, TellOfEveryCall) {
  FakeDatabase database;
  database.servers = {{"sql1", {}}, {"sql2", {.answers = false}}};
  database.users = {{"suite", "s3creta"}};
  database.on_query = [](const std::string& sql) {
    if (sql == "x") throw base::Error(-2147217900, "Incorrect syntax near 'x'.");
    ports::RowSet rows({"valor"});
    rows.Append(1);
    return rows;
  };
  std::string outcomes;
  session::StatementLines lines([&](const std::string& line) {
    outcomes += line.substr(line.find(" ms\t") + 4);
    throw std::bad_alloc();
  });
  session::StatementLog log(database, lines);
  for (const std::string server : {"sql2", "sql1"}) {
    const auto connection = log.CreateConnection();
    connection->SetConnectionString(";Data Source=" + server + ";User ID=suite;Password=s3creta");
    connection->OpenAsync();
    while (connection->State() == ports::ConnectionState::kConnecting) continue;
    if (server == "sql2") continue;
    connection->Query("SELECT 1");
    connection->Execute("DELETE");
    connection->BeginTransaction();
    EXPECT_THROW(connection->Execute("x"), base::Error);
    connection->RollbackTransaction();
    connection->CommitTransaction();
    connection->Close();
  }
  EXPECT_EQ(outcomes,
            "error -2147467259: Cannot connect.\tOPEN ;Data Source=sql2;User ID=suite;Password=***\r\n"
            "done\tOPEN ;Data Source=sql1;User ID=suite;Password=***\r\n"
            "1 rows\tSELECT 1\r\ndone\tDELETE\r\ndone\tBEGIN\r\n"
            "error -2147217900: Incorrect syntax near 'x'.\tx\r\n"
            "done\tROLLBACK\r\ndone\tCOMMIT\r\ndone\tCLOSE\r\n");
}

}  // namespace
}  // namespace quenta::tests
