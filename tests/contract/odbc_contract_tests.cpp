// The contract on the ODBC database: a SQLite file of its own, and a socket that plays a server without a voice.
// Under Wine the file must be there already, made by "contract_tests --prepare=FOLDER" of the native build, with
// ODBCINI leading to the odbc.ini in that folder.
#include <gtest/gtest.h>

#include <chrono>
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

#include "base/error.h"
#include "database_contract.h"
#include "sandbox/odbc/odbc_database.h"
#include "sandbox/odbc/sandbox_database.h"
#include "sandbox/odbc/server_session.h"

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
  explicit SilentServer(const char* name) : name_(name), socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
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
  int socket() const { return socket_; }
  // Its section of odbc.ini.
  std::string DataSource() const {
    return "[" + name_ + "]\nDriver=FreeTDS\nServer=127.0.0.1\nTDS_Version=7.4\nPort=" + std::to_string(port_) + "\n";
  }

 private:
  std::string name_;
  int socket_;
  int port_ = 0;
};

// Of a real server what a pass-through session meets: lets everybody in, and answers to all but WAITFOR.
class BusyServer {
 public:
  BusyServer() : server_("busy"), thread_([this] { Run(); }) {}
  ~BusyServer() {
    shutdown(server_.socket(), SHUT_RDWR);
    thread_.join();
  }
  BusyServer(const BusyServer&) = delete;
  BusyServer& operator=(const BusyServer&) = delete;
  std::string DataSource() const { return server_.DataSource(); }

 private:
  void Run() const {
    for (int line = accept(server_.socket(), nullptr, nullptr); line >= 0;
         line = accept(server_.socket(), nullptr, nullptr)) {
      while (Answer(line)) {
      }
      close(line);
    }
  }

  // False when the client has gone.
  static bool Answer(int line) {
    const auto take = [&](std::size_t bytes) {
      std::string taken(bytes, '\0');
      if (bytes == 0) return taken;  // or it would wait for the next packet
      const auto got = recv(line, taken.data(), bytes, MSG_WAITALL);
      return got == static_cast<ssize_t>(bytes) ? taken : std::string();
    };
    const std::string header = take(8);
    if (header.empty()) return false;
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(header[at]); };
    const std::string tokens = AnswerTo(header[0], take(byte(2) * 256u + byte(3) - 8));
    if (tokens.empty()) return true;
    const std::string size{'\0', static_cast<char>(tokens.size() + 8)};
    const std::string packet = "\x04\x01" + size + std::string(4, '\0') + tokens;
    return send(line, packet.data(), packet.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(packet.size());
  }

  static std::string AnswerTo(char packet, const std::string& body) {
    using std::string_literals::operator""s;
    const auto done = [](char status) { return "\xFD"s + status + std::string(11, '\0'); };
    switch (packet) {
      case 0x12:  // before the login: version, and no encryption
        return "\0\0\x0B\0\6\1\0\x11\0\1\xFF\x0C\0\x10\0\0\0\2"s;
      case 0x10:  // the login: taken, by a server of one letter
        return "\xAD\x0C\0\1\x74\0\0\4\1S\0\x0F\0\0\0"s + done(0);
      case 0x06:  // never mind
        return done(0x20);
      default:
        return body.find("W\0A\0I\0T\0"s) == std::string::npos ? done(0) : std::string();
    }
  }

  SilentServer server_;
  std::thread thread_;
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
    std::ofstream(folder_ / "odbc.ini", std::ios::app) << silent_.DataSource() << busy_.DataSource();
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
  SilentServer silent_{"silent"};
  BusyServer busy_;
};

TEST(PassThroughSession, AStatementEndsWithItsTimeAndTheLineGoesOn) {
  EXPECT_EQ(sandbox::LoginRequest().command_timeout, 30) << "as ADO has it";
  const auto session = sandbox::OpenSession(
      {.source = "busy", .user = kUser, .password = "x", .catalogue = {}, .timeout = 5, .command_timeout = 1});
  const auto start = std::chrono::steady_clock::now();
  try {
    session->Run("WAITFOR DELAY '01:00'");
    ADD_FAILURE() << "ended well";
  } catch (const base::Error& error) {
    EXPECT_EQ(error.number(), static_cast<int>(0x80040E31)) << error.what();
    EXPECT_EQ(error.description(), "Query timeout expired");
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
  EXPECT_TRUE(session->Run("SET NOCOUNT ON").empty());
}

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
