// The server that the tests over ADO connect to: a sandbox database of their own under Wine, or a real server.
//
// With QUENTA_CONTRACT_FOLDER a program makes a sandbox database of its own in that folder of the host (which ODBCINI
// must already name: <folder>/odbc.ini) with the SQLite extension that QUENTA_SQLITE_EXTENSION names. Otherwise
// QUENTA_CONTRACT_SERVER, _USER, _PASSWORD and _CATALOGUE say which server to test, and _OPTIONS what else the
// connection string holds; the user must be able to create tables there.
#pragma once

#include <winsock2.h>

#include <gtest/gtest.h>
#include <objbase.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

#include "sandbox/odbc/sandbox_database.h"

namespace quenta::contract {

struct Server {
  std::string source;
  std::string user;
  std::string password;
  std::string catalogue;
  std::string silent;   // a source that accepts the line and never answers
  std::string options;  // more of the connection string, such as "Encrypt=yes"

  std::string ConnectionString() const {
    std::string quoted;
    for (const char c : password) quoted += c == '"' ? "\"\"" : std::string(1, c);
    return "Provider=SQLOLEDB.1;User ID=" + user + ";Password=\"" + quoted + "\";Initial Catalog=" + catalogue +
           ";Data Source=" + source + (options.empty() ? "" : ";" + options);
  }
};

inline Server& TestedServer() {
  static Server server;
  return server;
}

inline std::string Setting(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

class Apartment {
 public:
  Apartment() {
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) throw std::runtime_error("no apartment");
  }
  ~Apartment() { CoUninitialize(); }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
};

// A listening socket: the system takes connections for it, and nobody ever answers on them.
class SilentServer {
 public:
  SilentServer() {
    WSADATA data;
    if (WSAStartup(MAKEWORD(2, 2), &data) != 0) throw std::runtime_error("no sockets");
    socket_ = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int length = sizeof(address);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (socket_ == INVALID_SOCKET || bind(socket_, generic, length) != 0 || listen(socket_, 16) != 0 ||
        getsockname(socket_, generic, &length) != 0) {
      throw std::runtime_error("no socket for the silent server");
    }
    port_ = ntohs(address.sin_port);
  }
  ~SilentServer() {
    closesocket(socket_);
    WSACleanup();
  }
  SilentServer(const SilentServer&) = delete;
  SilentServer& operator=(const SilentServer&) = delete;
  std::string Port() const { return std::to_string(port_); }

 private:
  SOCKET socket_ = INVALID_SOCKET;
  int port_ = 0;
};

// Fills TestedServer() before the first test.
class ServerEnvironment final : public testing::Environment {
 public:
  void SetUp() override {
    const std::string folder = Setting("QUENTA_CONTRACT_FOLDER");
    Server& server = TestedServer();
    if (folder.empty()) {
      server = {.source = Setting("QUENTA_CONTRACT_SERVER"),
                .user = Setting("QUENTA_CONTRACT_USER"),
                .password = Setting("QUENTA_CONTRACT_PASSWORD"),
                .catalogue = Setting("QUENTA_CONTRACT_CATALOGUE"),
                .silent = "127.0.0.1," + silent_.Port(),
                .options = Setting("QUENTA_CONTRACT_OPTIONS")};
      if (server.source.empty()) throw std::runtime_error("neither QUENTA_CONTRACT_FOLDER nor _SERVER is set");
      return;
    }
    server = {.source = "contract",
              .user = "Utilizador",
              .password = "segr;e'do \"ç\"",
              .catalogue = "Ambrell",
              .silent = "silent",
              .options = "Encrypt=yes"};
    const sandbox::SandboxFile file{.database = folder + "/contract.db",
                                    .extension = Setting("QUENTA_SQLITE_EXTENSION")};
    sandbox::CreateSandboxDatabase(file, server.catalogue);
    sandbox::AddLogin(file, server.user, server.password);
    const std::string ini = folder + "/odbc.ini";
    sandbox::WriteDataSources(ini, {{server.source, file}});
    std::ofstream(ini, std::ios::app | std::ios::binary)
        << "[silent]\nDriver=FreeTDS\nServer=127.0.0.1\nTDS_Version=7.4\nPort=" << silent_.Port() << "\n";
  }

 private:
  SilentServer silent_;
};

}  // namespace quenta::contract
