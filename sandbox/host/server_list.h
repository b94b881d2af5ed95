// The servers that the sample host offers, read from a small text file that an administrator writes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quenta::sandbox::host {

// What SQLConnect is told about a server, and what the host's own connection needs. The password is scrambled.
struct Server {
  std::string name;  // as the user sees it
  std::string data_source;
  std::string data_source_secondary;  // empty: none
  std::string initial_catalog;
  std::string user;
  std::string password;
  std::string security_info = "False";
  int flags = 0;              // oFlags of SQLConnect: 0 "Contabilidade", 1 "Sarvat"
  bool from_machine = false;  // the suite's own settings of this computer: opened with Login
  bool operator==(const Server&) const = default;
};

// Reads sections "[name]" with lines "DataSource=…", "DataSourceSecondary=…", "InitialCatalog=…", "User=…",
// "Password=…" (scrambled) and "Flags=…"; blank lines and lines that begin with ";" or "#" are left out. Throws
// std::invalid_argument, with the number of the line but not its text, which may hold a password.
std::vector<Server> ParseServers(std::string_view text);

// The text with which ADODB.Connection opens the server; holds the password in clear, so it is never shown or logged.
std::string ConnectionString(const Server& server);

}  // namespace quenta::sandbox::host
