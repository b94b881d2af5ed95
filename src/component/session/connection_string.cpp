#include "component/session/connection_string.h"

#include "base/text.h"

namespace quenta::session {

std::string QuoteConnectionValue(std::string_view value) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const bool blank_at_an_end = !value.empty() && (kBlanks.find(value.front()) != std::string_view::npos ||
                                                  kBlanks.find(value.back()) != std::string_view::npos);
  const bool has_double = value.find('"') != std::string_view::npos;
  const bool has_single = value.find('\'') != std::string_view::npos;
  if (!blank_at_an_end && !has_double && !has_single && value.find(';') == std::string_view::npos) {
    return std::string(value);
  }
  if (has_double && !has_single) return "'" + std::string(value) + "'";
  return "\"" + base::ReplaceAll(value, "\"", "\"\"") + "\"";
}

std::string BuildConnectionString(const ConnectionSettings& settings) {
  return "Provider=SQLOLEDB.1;"
         "Persist Security Info=" +
         QuoteConnectionValue(settings.security_info) +
         ";"
         "User ID=" +
         QuoteConnectionValue(settings.user) +
         ";"
         "Password=" +
         QuoteConnectionValue(settings.password) + (settings.encrypt ? ";Encrypt=yes;" : ";") +
         "Initial Catalog=" + QuoteConnectionValue(settings.initial_catalog) +
         ";"
         "Data Source=" +
         QuoteConnectionValue(settings.data_source) +
         ";"
         "Connect Timeout=15";
}

}  // namespace quenta::session
