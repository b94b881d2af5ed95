#include "sandbox/host/command_line.h"

#include <stdexcept>

#include "base/text.h"

namespace quenta::sandbox::host {
namespace {

CommandLine::Connect ConnectFrom(const std::string& value) {
  if (base::EqualIgnoreCase(value, "login")) return CommandLine::Connect::kLogin;
  if (base::EqualIgnoreCase(value, "sqlconnect")) return CommandLine::Connect::kSQLConnect;
  throw std::invalid_argument("/connect: tem de ser \"login\" ou \"sqlconnect\".");
}

}  // namespace

CommandLine ParseCommandLine(const std::vector<std::string>& arguments) {
  CommandLine line;
  for (const std::string& argument : arguments) {
    if (argument.size() < 2 || (argument[0] != '/' && argument[0] != '-')) {
      throw std::invalid_argument("Não se espera \"" + argument + "\" na linha de comandos.");
    }
    const std::size_t colon = argument.find(':');
    const std::string name = base::ToLower(argument.substr(1, colon == std::string::npos ? colon : colon - 1));
    const bool has_value = colon != std::string::npos;
    const std::string value = has_value ? argument.substr(colon + 1) : "";

    if (name == "new" && !has_value) {
      line.actions.push_back({Action::Kind::kNew, ""});
    } else if (name == "exit" && !has_value) {
      line.exit = true;
    } else if (name == "password" && has_value) {
      line.password = value;
    } else if (value.empty()) {
      throw std::invalid_argument("Opção desconhecida ou sem valor: /" + name);
    } else if (name == "user") {
      line.user = value;
    } else if (name == "connect") {
      line.connect = ConnectFrom(value);
    } else if (name == "server") {
      line.server = value;
    } else if (name == "servers") {
      line.servers_file = value;
    } else if (name == "search") {
      line.search = value;
    } else if (name == "log") {
      line.log_file = value;
    } else if (name == "open") {
      line.actions.push_back({Action::Kind::kOpen, value});
    } else {
      throw std::invalid_argument("Opção desconhecida ou sem valor: /" + name);
    }
  }
  return line;
}

}  // namespace quenta::sandbox::host
