// One open session with a server: SQLite behind the dialect, or a real server behind FreeTDS.
#pragma once

#include <memory>
#include <string>

#include "ports/row_set.h"
#include "sandbox/odbc/odbc_link.h"

namespace quenta::sandbox {

struct LoginRequest {
  std::string source;
  std::string user;
  std::string password;
  std::string catalogue;  // empty takes the user's own
  int timeout = 0;        // seconds; 0 waits as long as the driver does
  // Seconds that a statement may take: the default of ADO's CommandTimeout, which nobody in the suite changes.
  int command_timeout = 30;
};

// Every failure is a base::Error with the provider's number and text.
class ServerSession {
 public:
  virtual ~ServerSession() = default;
  virtual ports::RowSet Run(const std::string& sql) = 0;
  virtual void BeginTransaction() = 0;
  virtual void CommitTransaction() = 0;
  virtual void RollbackTransaction() = 0;
  // Between a begin and its end, as the client sees it.
  virtual bool InTransaction() const = 0;
};

// Connects and logs in. Throws base::Error.
std::unique_ptr<ServerSession> OpenSession(const LoginRequest& request);

// SQLite's side of it, on a connected link. Checks that the link has the sandbox's extension and that user, password
// and catalogue are right, before anything else can run.
std::unique_ptr<ServerSession> OpenSqliteSession(std::unique_ptr<OdbcLink> link, const LoginRequest& request);

}  // namespace quenta::sandbox
