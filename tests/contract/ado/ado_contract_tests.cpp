// The contract on the ADO adapter: over the sandbox's classes under Wine, or over the real ones on a Windows machine.
#include "sandbox_source.h"

#include <gtest/gtest.h>

#include "database_contract.h"
#include "platform/ado/ado_database.h"

namespace quenta::contract {
namespace {

// The contract also connects from threads of its own; each is an apartment with connections of its own.
class DatabaseOnAnyThread final : public ports::Database {
 public:
  std::unique_ptr<ports::Connection> CreateConnection() override {
    thread_local const Apartment apartment;
    thread_local platform::AdoDatabase database;
    return database.CreateConnection();
  }
};

class AdoBackend final : public Backend {
 public:
  std::unique_ptr<ports::Database> Create() override { return std::make_unique<DatabaseOnAnyThread>(); }
  std::string Good() override { return server_.ConnectionString(); }
  std::string WrongPassword() override {
    Server other = server_;
    other.password = "other";
    return other.ConnectionString();
  }
  std::string UnknownUser() override {
    Server other = server_;
    other.user = "nobody";
    return other.ConnectionString();
  }
  std::string UnknownSource() override {
    Server other = server_;
    other.source = "nowhere";
    return other.ConnectionString();
  }
  std::string WrongCatalogue() override {
    Server other = server_;
    other.catalogue = "Other";
    return other.ConnectionString();
  }
  std::string SilentSource() override {
    Server other = server_;
    other.source = other.silent;
    return other.ConnectionString();
  }
  bool HasNoSilentSource() override { return server_.silent.empty(); }
  bool HasNoParallelThreads() override { return true; }

 private:
  const Server& server_ = TestedServer();
};

std::unique_ptr<Backend> MakeAdoBackend() {
  return std::make_unique<AdoBackend>();
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Ado, DatabaseContract, testing::Values(&MakeAdoBackend),
                         [](const auto&) { return std::string("registered"); });

}  // namespace quenta::contract

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  testing::AddGlobalTestEnvironment(new quenta::contract::ServerEnvironment);
  return RUN_ALL_TESTS();
}
