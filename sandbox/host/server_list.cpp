#include "sandbox/host/server_list.h"

#include <array>
#include <stdexcept>

#include "base/text.h"
#include "sandbox/host/scramble.h"

namespace quenta::sandbox::host {
namespace {

struct Key {
  std::string_view name;
  std::string Server::*member;
};

constexpr std::array<Key, 5> kKeys{{
    {"DataSource", &Server::data_source},
    {"DataSourceSecondary", &Server::data_source_secondary},
    {"InitialCatalog", &Server::initial_catalog},
    {"User", &Server::user},
    {"Password", &Server::password},
}};

// True when the line was understood.
bool ReadLine(std::string_view line, std::vector<Server>& servers) {
  if (line.front() == '[' && line.back() == ']' && line.size() > 2) {
    servers.emplace_back().name = line.substr(1, line.size() - 2);
    return true;
  }
  const std::size_t equals = line.find('=');
  if (servers.empty() || equals == std::string_view::npos) return false;
  const std::string_view name = base::Trim(line.substr(0, equals));
  const std::string_view value = base::Trim(line.substr(equals + 1));
  if (base::EqualIgnoreCase(name, "Flags")) {
    if (value != "0" && value != "1") return false;
    servers.back().flags = value[0] - '0';
    return true;
  }
  for (const Key& key : kKeys) {
    if (!base::EqualIgnoreCase(name, key.name)) continue;
    servers.back().*key.member = value;
    return true;
  }
  return false;
}

}  // namespace

std::vector<Server> ParseServers(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);  // Windows editors put a byte order mark in front
  std::vector<Server> servers;
  for (int number = 1; !text.empty(); ++number) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    line = base::Trim(line);
    if (line.empty() || line.front() == ';' || line.front() == '#') continue;
    if (!ReadLine(line, servers)) {
      throw std::invalid_argument("A linha " + base::DecimalText(number) + " da lista de servidores não se percebe.");
    }
  }
  return servers;
}

std::string ConnectionString(const Server& server) {
  return "Provider=SQLOLEDB.1;Persist Security Info=" + server.security_info + ";User ID=" + server.user +
         ";Password=" + Unscramble(server.password) + ";Initial Catalog=" + server.initial_catalog +
         ";Data Source=" + server.data_source + ";Connect Timeout=15";
}

}  // namespace quenta::sandbox::host
