// Asks who the user is, and opens the component's session.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "sandbox/host/component_link.h"
#include "sandbox/host/server_list.h"

namespace quenta::sandbox::host {

struct LoginOutcome {
  Server server;
  std::string user;
};

// What stands in the dialog at first.
struct LoginStart {
  std::string user;
  std::string note;        // why the user is asked again; may be empty
  std::size_t server = 0;  // index of the chosen one
};

// Stays until the session is open or the user gives up (nothing then). Servers is not empty.
std::optional<LoginOutcome> AskLogin(HWND owner, ComponentLink& component, const std::vector<Server>& servers,
                                     const LoginStart& start);

}  // namespace quenta::sandbox::host
