// What the sample host can be told to do from its command line, so that scripts can drive it.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quenta::sandbox::host {

struct Action {
  enum class Kind { kOpen, kNew };
  Kind kind;
  std::string product;  // kOpen: a code, or "#" and an identifier, or an identifier that is no code
};

struct CommandLine {
  enum class Connect { kAsk, kLogin, kSQLConnect };

  std::string user;
  std::optional<std::string> password;  // in clear; without one the user is asked
  Connect connect = Connect::kAsk;
  std::string server;        // name of a server of the servers file; empty takes the first
  std::string servers_file;  // path; empty is "servidores.ini" beside the program
  std::string search;        // what stands in the search field at first
  std::string log_file;      // path; what the status line says is also written there
  std::vector<Action> actions;
  bool exit = false;  // end when the actions are done; the exit code is 0 when all succeeded
};

// Options begin with "/" or "-" and their names have no case: "/user:ana", "/open:10001". Throws std::invalid_argument
// with a text for the user when an argument is unknown or lacks its value.
CommandLine ParseCommandLine(const std::vector<std::string>& arguments);

}  // namespace quenta::sandbox::host
