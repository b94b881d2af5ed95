// The contract on the ODBC database: a SQLite file of its own, and a socket that plays a server without a voice.
// Under Wine the file must be there already, made by "contract_tests --prepare=FOLDER" of the native build, with
// ODBCINI leading to the odbc.ini in that folder.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <thread>

#ifndef _WIN32
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

#include "database_contract.h"
#include "sandbox/odbc/odbc_database.h"
#include "sandbox/odbc/sandbox_database.h"

namespace quenta::contract {
namespace {

constexpr const char* kCatalogue = "Ambrell";
constexpr const char* kUser = "Utilizador";
constexpr const char* kPassword = "segr;e'do \"ç\"";

std::string ConnectionString(const std::string& source, const std::string& user, const std::string& password,
                             const std::string& catalogue) {
  std::string quoted;
  for (const char c : password) quoted += c == '"' ? "\"\"" : std::string(1, c);
  return "Provider=SQLOLEDB.1;User ID=" + user + ";Password=\"" + quoted +
         "\";Encrypt=yes;Initial Catalog=" + catalogue + ";Data Source=" + source;
}

class OdbcBackend final : public Backend {
 public:
  std::unique_ptr<ports::Database> Create() override { return std::make_unique<sandbox::OdbcDatabase>(); }
  std::string Good() override { return ConnectionString("contract", kUser, kPassword, kCatalogue); }
  std::string WrongPassword() override { return ConnectionString("contract", kUser, "other", kCatalogue); }
  std::string UnknownUser() override { return ConnectionString("contract", "nobody", kPassword, kCatalogue); }
  std::string UnknownSource() override { return ConnectionString("nowhere", kUser, kPassword, kCatalogue); }
  std::string WrongCatalogue() override { return ConnectionString("contract", kUser, kPassword, "Other"); }
#ifndef _WIN32
  std::string SilentSource() override {
    return ConnectionString("silent", kUser, kPassword, kCatalogue);
  }
  bool HasNoSilentSource() override {
    return false;
  }
#endif
};

std::unique_ptr<Backend> MakeOdbcBackend() {
  return std::make_unique<OdbcBackend>();
}

#ifndef _WIN32

// A listening socket: the system takes connections for it, and nobody ever answers on them.
class SilentServer {
 public:
  SilentServer() : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (socket_ < 0 || bind(socket_, generic, length) != 0 || listen(socket_, 16) != 0 ||
        getsockname(socket_, generic, &length) != 0)
      throw std::runtime_error("no socket for the silent server");
    port_ = ntohs(address.sin_port);
  }
  ~SilentServer() { close(socket_); }
  SilentServer(const SilentServer&) = delete;
  SilentServer& operator=(const SilentServer&) = delete;
  int port() const { return port_; }

 private:
  int socket_;
  int port_ = 0;
};

// Makes the database and the data source "contract" in the folder, which must exist.
void Prepare(const std::filesystem::path& folder) {
  const sandbox::SandboxFile file{.database = (folder / "contract.db").string(), .extension = QUENTA_SQLITE_EXTENSION};
  sandbox::CreateSandboxDatabase(file, kCatalogue);
  sandbox::AddLogin(file, kUser, kPassword);
  sandbox::WriteDataSources((folder / "odbc.ini").string(), {{"contract", file}});
}

// A folder with a database and data sources of its own, and the variable that leads the driver manager to it.
class OdbcEnvironment final : public testing::Environment {
 public:
  OdbcEnvironment() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quenta_contract_XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no folder for the contract's database");
    folder_ = pattern;
    setenv("ODBCINI", (folder_ / "odbc.ini").c_str(), 1);
    setenv("QUENTA_FAULTS", (folder_ / "faults.txt").c_str(), 1);
    Prepare(folder_);
    std::ofstream(folder_ / "odbc.ini", std::ios::app)
        << "[silent]\nDriver=FreeTDS\nServer=127.0.0.1\nTDS_Version=7.4\nPort=" << silent_.port() << "\n";
  }

  // The SQLite driver leaves its start-up allocations behind when it is unloaded, which the driver manager does after
  // the last connection: one that is never closed keeps it loaded, and leak checkers content.
  void SetUp() override {
    static ports::Connection* const holder = sandbox::OdbcDatabase().CreateConnection().release();
    holder->SetConnectionString(OdbcBackend().Good());
    holder->Open();
  }

  ~OdbcEnvironment() override {
    // Given-up connects may still be at work on the files.
    while (sandbox::OdbcDatabase::ConnectingThreads() > 0) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

 private:
  std::filesystem::path folder_;
  SilentServer silent_;
};

#endif

}  // namespace

INSTANTIATE_TEST_SUITE_P(Odbc, DatabaseContract, testing::Values(&MakeOdbcBackend),
                         [](const auto&) { return std::string("sqlite"); });

}  // namespace quenta::contract

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
#ifndef _WIN32
  constexpr std::string_view kPrepare = "--prepare=";
  if (argc > 1 && std::string_view(argv[1]).starts_with(kPrepare)) {
    quenta::contract::Prepare(std::string_view(argv[1]).substr(kPrepare.size()));
    return 0;
  }
  if (!testing::GTEST_FLAG(list_tests)) testing::AddGlobalTestEnvironment(new quenta::contract::OdbcEnvironment);
#endif
  return RUN_ALL_TESTS();
}
