// The behaviour that every database behind the component's port must show, as one suite of tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ports/database.h"

namespace quenta::contract {

// One database under test. It may hold anything; the suite makes its own tables (contract_…) and removes them.
class Backend {
 public:
  virtual ~Backend() = default;
  virtual std::unique_ptr<ports::Database> Create() = 0;

  // Connection strings without "Persist Security Info", for the same server where nothing else is said. The good one's
  // user may create tables.
  virtual std::string Good() = 0;
  virtual std::string WrongPassword() = 0;
  virtual std::string UnknownUser() = 0;
  virtual std::string UnknownSource() = 0;
  virtual std::string WrongCatalogue() = 0;
  // A server that accepts the line and never answers; "Connect Timeout" is not in the string. Only asked for when
  // HasNoSilentSource() is false.
  virtual std::string SilentSource() { return {}; }

  // Machines without a network loop cannot play a server that never answers.
  virtual bool HasNoSilentSource() { return true; }

  // Lets every open line die with its next statement, until they are mended. Only where HasNoFaults() is false: the
  // sandbox plays them when QUENTA_FAULTS names a file.
  void CutLines() { WriteFaults("* = drop"); }
  void MendLines() { WriteFaults(""); }
  static bool HasNoFaults() { return std::getenv("QUENTA_FAULTS") == nullptr; }

  // Wine's ODBC breaks now and then when several threads of one process use it, which the component never does. The
  // writers then take turns in their threads.
  virtual bool HasNoParallelThreads() { return false; }

 private:
  static void WriteFaults(const char* text) { std::ofstream(std::getenv("QUENTA_FAULTS")) << text << "\n"; }
};

// Runs the suite with INSTANTIATE_TEST_SUITE_P(Name, DatabaseContract, testing::Values(&MakeBackend)).
class DatabaseContract : public testing::TestWithParam<std::unique_ptr<Backend> (*)()> {
 protected:
  void SetUp() override;
  void TearDown() override;

  // A connection that is open on the good string.
  std::unique_ptr<ports::Connection> Connect();
  // Makes a table or view for this test: "contract_a (x INT)" or "contract_v AS SELECT …".
  void CreateTable(const std::string& definition);
  void CreateView(const std::string& definition);
  // The first column of the first row; fails the test when there is none.
  base::Value Single(const std::string& sql);
  // The number and text of the error that the call ends in; fails the test when it ends well.
  struct Failure {
    int number = 0;
    std::string text;
  };
  static Failure FailureOf(const std::function<void()>& call);
  Failure FailureOf(const std::string& sql);
  // Whether the state leaves kConnecting within the seconds.
  static bool EndsConnecting(ports::Connection& connection, int seconds);

  std::unique_ptr<Backend> backend_;
  std::unique_ptr<ports::Database> database_;
  std::unique_ptr<ports::Connection> connection_;

 private:
  std::vector<std::string> created_;  // statements that remove what the test has made, last first
};

}  // namespace quenta::contract
