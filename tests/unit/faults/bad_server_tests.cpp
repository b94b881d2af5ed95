// The connection keeper, and what stands on it, against a server that is slow, refuses, or lets lines die.
#include <stdlib.h>

#include <fstream>
#include <set>

#include "component/session/connection_keeper.h"
#include "component/session/scrambler.h"
#include "support/fake_working_form.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

using session::ConnectionCheck;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr const char* kNoServer = "[DBNETLIB][ConnectionOpen (Connect()).]SQL Server does not exist or access denied.";

class BadServerTest : public SampleComponentTest {
 protected:
  BadServerTest() { setenv("QUENTA_FAULTS", faults_file_.c_str(), 1); }
  ~BadServerTest() override {
    // A thread that still connects must not outlive the driver.
    while (sandbox::OdbcDatabase::ConnectingThreads() > 0) desktop.PumpMessages();
    unsetenv("QUENTA_FAULTS");
  }
  // With two servers; both are well at first.
  void SetUp() override {
    arguments_.cnDataSourceSecondary = sample_.other_source();
    ASSERT_TRUE(component::General(component).SQLConnect(arguments_));
  }

  void Servers(const std::string& first, const std::string& second) {
    std::ofstream(faults_file_) << sample_.source << " = " << first << "\n"
                                << sample_.other_source() << " = " << second;
  }
  std::string Check(ConnectionCheck check = {.reconnect = true}) {
    check.form = &form_;
    const auto start = steady_clock::now();
    std::string answer = session::SQLConnectionCheck(session, check);
    took_ = std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
    return answer;
  }
  // The statement that finds out.
  void LetLineDie() {
    Servers("drop", "drop");
    try {
      session.Query("SELECT @@TRANCOUNT as valor");
      FAIL() << "the line is well";
    } catch (const base::Error& error) {
      EXPECT_EQ(error.number(), base::error_number::kDataAccess);
      EXPECT_EQ(error.description(),
                "[DBNETLIB][ConnectionWrite (send()).]General network error. Check your network documentation.");
    }
    EXPECT_EQ(session.SharedConnection().State(), ports::ConnectionState::kOpen) << "it does not know yet";
    desktop.pumps = 0;
  }
  std::string Server() { return session.SharedConnection().ConnectionString(); }

  std::string faults_file_ = sample_.folder + "/avarias.txt";
  component::SQLConnectArguments arguments_ = ArgumentsOf("ana");
  FakeWorkingForm form_;
  milliseconds took_{};
};

TEST_F(BadServerTest, ALineThatDiedIsReplacedAndTheHostLivesOnWhileTheServerIsSlow) {
  LetLineDie();
  Servers("slow 200", "slow 200");
  EXPECT_EQ(Check(), "");
  EXPECT_GE(took_, milliseconds(200));
  EXPECT_GT(desktop.pumps, 10) << "the host's messages are processed meanwhile";
  EXPECT_EQ(form_.pointer, 5);
  Servers("", "");
  EXPECT_EQ(OpenForm(IdOfCode("10300"))->FXCodigo.text(), "10300");
  EXPECT_TRUE(reporting.reports.empty());
}

TEST_F(BadServerTest, TheOtherServerTakesOver) {
  LetLineDie();
  Servers("refuse", "");
  EXPECT_EQ(Check(), "");
  EXPECT_NE(Server().find("Data Source=" + sample_.other_source()), std::string::npos) << Server();
  EXPECT_EQ(reporting.calls.back(), "SQLReconnectShowOK");
}

TEST_F(BadServerTest, TheFormWhoseQueryWaitsShowsTheHourglassAndTheReconnectIsShownOverIt) {
  const auto form = OpenForm(IdOfCode("10300"));
  form->FXNome.Typed("Depois da falha");
  LetLineDie();
  Servers("slow 100", "slow 100");
  std::set<controls::MousePointer> pointers;
  desktop.while_pumping = [&] { pointers.insert(form->mouse_pointer()); };
  EXPECT_TRUE(form->Gravar());
  EXPECT_EQ(pointers, std::set{controls::MousePointer::kHourglass});
  EXPECT_EQ(form->mouse_pointer(), controls::MousePointer::kDefault);
  EXPECT_EQ(reporting.shown_over, form.get());
  EXPECT_EQ(reporting.calls.back(), "SQLReconnectShowOK");
  desktop.while_pumping = nullptr;
}

TEST_F(BadServerTest, WhileNobodyAnswersItSaysWhyAndWorksAgainOnceSomebodyDoes) {
  const std::int32_t id = IdOfCode("10300");
  LetLineDie();
  Servers("refuse", "refuse");
  EXPECT_EQ(Check(), kNoServer);
  EXPECT_EQ(reporting.calls.back(), "SQLReconnectShowBad");
  const auto form = OpenForm(id);
  EXPECT_FALSE(reporting.reports.empty());
  EXPECT_FALSE(form->Gravar());
  Servers("", "");
  EXPECT_EQ(Check(), "");
}

TEST_F(BadServerTest, AWaitThatIsCancelledEndsAtOnceAndLeavesTheHourglass) {
  LetLineDie();
  Servers("slow 300", "slow 300");
  desktop.while_pumping = [&] { session.cancel_reconnect = desktop.pumps == 5; };
  EXPECT_EQ(Check(), "...");
  EXPECT_LT(took_, milliseconds(250));
  EXPECT_EQ(form_.pointer, 11);
  desktop.while_pumping = nullptr;
  Servers("", "");
  EXPECT_EQ(Check(), "");
}

TEST_F(BadServerTest, WithoutLeaveToReconnectItAnswersAtOnce) {
  LetLineDie();
  Servers("slow 5000", "slow 5000");
  session.SharedConnection().Close();
  EXPECT_EQ(Check({}), "A ligação ao servidor SQL não está presente.");
  EXPECT_EQ(desktop.pumps, 0);
}

TEST_F(BadServerTest, ASaveInWhichTheLineDiesLosesNothing) {
  const auto form = OpenForm(IdOfCode("10300"));
  form->FXNome.Typed("Inteiro ou nada");
  form->PrecosAltered = true;
  desktop.while_asking = [&] { Servers("drop", "drop"); };
  desktop.answer = ports::Answer::kYes;
  EXPECT_FALSE(form->Gravar()) << "the line dies while the user answers";
  EXPECT_FALSE(reporting.reports.empty());
  EXPECT_TRUE(form->Altered() && form->PrecosAltered);
  Servers("", "");
  desktop.while_asking = nullptr;
  EXPECT_EQ(SqlText("SELECT COUNT(*) FROM tbProdutos WHERE nome = 'Inteiro ou nada'"), "0");
  EXPECT_TRUE(form->Gravar());
}

TEST_F(BadServerTest, TheQuickerServerWinsTheLogin) {
  session.ReleaseConnection();
  Servers("slow 2000", "");
  const auto start = steady_clock::now();
  EXPECT_TRUE(component::General(component).SQLConnect(arguments_));
  EXPECT_LT(steady_clock::now() - start, milliseconds(2000));
  EXPECT_TRUE(session.state().on_secondary);
}

TEST_F(BadServerTest, AnOpenEndsWithItsTimeout) {
  Servers("slow 30000", "");
  const auto connection = odbc.CreateConnection();
  connection->SetConnectionString(SharedConnectionString());
  connection->SetConnectionTimeout(1);
  const auto start = steady_clock::now();
  EXPECT_THROW(connection->Open(), base::Error);
  EXPECT_LT(steady_clock::now() - start, milliseconds(2500));
}

}  // namespace
}  // namespace quenta::tests
