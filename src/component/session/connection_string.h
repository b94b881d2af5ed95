// Builds the connection strings of the suite's database.
#pragma once

#include <string>
#include <string_view>

namespace quenta::session {

struct ConnectionSettings {
  std::string security_info;  // "False" or "True", for "Persist Security Info"
  std::string user;
  std::string password;  // in clear: it exists in clear only while a string is put together
  bool encrypt = false;
  std::string initial_catalog;
  std::string data_source;
};

std::string BuildConnectionString(const ConnectionSettings& settings);

// A value as OLE DB reads it back unchanged: in quotes when it holds ";", a quote, or a blank at either end, so that
// no user or server name can add a keyword of its own; as it stands otherwise.
std::string QuoteConnectionValue(std::string_view value);

}  // namespace quenta::session
