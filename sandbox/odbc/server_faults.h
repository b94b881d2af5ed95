// A server's bad days, on demand: what the file that QUENTA_FAULTS names says of a data source, read at every use.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "sandbox/odbc/server_session.h"

namespace quenta::sandbox {

enum class ServerFault {
  kNone,
  kSlow,    // opens and statements take longer
  kRefuse,  // nobody can connect; lines that are open stay so
  kDrop,    // open lines die with their next statement; connecting works
};

struct ServerState {
  ServerFault fault = ServerFault::kNone;
  std::chrono::milliseconds delay{};  // of a slow server
};

// The file's first line for the source, or for "*": "QuentaAmostra = slow 3000", "= refuse" or "= drop". All is well
// without the variable, without the file, without such a line, and with one that says anything else.
ServerState StateOfServer(const std::string& source);

// Before a connection is opened: waits as long as the server is slow, but no longer than the timeout in seconds (0 is
// none). Throws base::Error when that is over, and when the server refuses.
void MeetServer(const std::string& source, int timeout);

// The session as a server with bad days gives it; the session itself where QUENTA_FAULTS names no file.
std::unique_ptr<ServerSession> WithBadDays(std::unique_ptr<ServerSession> session, const std::string& source);

}  // namespace quenta::sandbox
