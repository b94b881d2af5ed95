// Opening on servers that are slow, as the sandbox plays them: real threads, real time.
#include <stdlib.h>

#include <fstream>

#include "support/sample_component.h"

namespace quenta::tests {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class BadServerTest : public SampleComponentTest {
 protected:
  BadServerTest() { setenv("QUENTA_FAULTS", faults_file_.c_str(), 1); }
  ~BadServerTest() override {
    // A thread that still connects must not outlive the driver.
    while (sandbox::OdbcDatabase::ConnectingThreads() > 0) desktop.PumpMessages();
    unsetenv("QUENTA_FAULTS");
  }
  void Servers(const std::string& first, const std::string& second) {
    std::ofstream(faults_file_) << sample_.source << " = " << first << "\n"
                                << sample_.other_source() << " = " << second;
  }

  std::string faults_file_ = sample_.folder + "/avarias.txt";
};

TEST_F(BadServerTest, TheQuickerServerIsTakenAndTheHostLivesOnMeanwhile) {
  Servers("slow 3000", "slow 200");
  component::SQLConnectArguments arguments = ArgumentsOf("ana");
  arguments.cnDataSourceSecondary = sample_.other_source();
  const auto start = steady_clock::now();
  EXPECT_TRUE(component::General(component).SQLConnect(arguments));
  EXPECT_LT(steady_clock::now() - start, milliseconds(3000));
  EXPECT_GT(desktop.pumps, 10);
  EXPECT_TRUE(session.state().on_secondary);
}

TEST_F(BadServerTest, AnOpenEndsWithItsTimeout) {
  Servers("slow 3000", "");
  const auto connection = odbc.CreateConnection();
  connection->SetConnectionString(SharedConnectionString());
  connection->SetConnectionTimeout(1);
  EXPECT_THROW(connection->Open(), base::Error);
}

}  // namespace
}  // namespace quenta::tests
