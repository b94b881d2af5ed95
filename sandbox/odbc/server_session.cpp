#include "sandbox/odbc/server_session.h"

#include "base/error.h"
#include "base/text.h"
#include "sandbox/odbc/server_error.h"
#include "sandbox/odbc/server_faults.h"

namespace quenta::sandbox {
namespace {

[[noreturn]] void RaiseNoTransaction() {
  constexpr auto kNoTransaction = static_cast<std::int32_t>(0x8004D00E);
  throw base::Error(kNoTransaction, "No transaction is active.");
}

// A real server: statements pass unchanged. Transactions are the server's implicit mode, which SQLOLEDB uses too.
class PassThroughSession final : public ServerSession {
 public:
  explicit PassThroughSession(std::unique_ptr<OdbcLink> link) : link_(std::move(link)) {}

  ports::RowSet Run(const std::string& sql) override {
    try {
      return link_->Run(sql);
    } catch (const OdbcFailure& failure) {
      if (failure.state() == "HYT00") throw base::Error(AutomationNumber(message::kLockTimeout), kCommandTooLong);
      // 08…: the line died. HYT01: the wait for it did.
      const bool line =
          failure.native() == 0 || failure.state().starts_with("08") || failure.state().starts_with("HYT");
      throw base::Error(line ? base::error_number::kDataAccess : AutomationNumber(failure.native()), failure.what());
    }
  }

  void BeginTransaction() override {
    if (in_transaction_) {
      constexpr auto kTransactionExists = static_cast<std::int32_t>(0x8004D013);
      throw base::Error(kTransactionExists, "Cannot start more transactions on this session.");
    }
    Run("SET IMPLICIT_TRANSACTIONS ON");
    in_transaction_ = true;
  }
  void CommitTransaction() override { End("COMMIT"); }
  void RollbackTransaction() override { End("ROLLBACK"); }
  bool InTransaction() const override { return in_transaction_; }

 private:
  void End(const std::string& how) {
    if (!in_transaction_) RaiseNoTransaction();
    Run("IF @@TRANCOUNT > 0 " + how + " TRANSACTION");
    in_transaction_ = false;
    Run("SET IMPLICIT_TRANSACTIONS OFF");
  }

  std::unique_ptr<OdbcLink> link_;
  bool in_transaction_ = false;
};

[[noreturn]] void RaiseLoginFailed(const std::string& user) {
  throw base::Error(AutomationNumber(message::kLoginFailed), "Login failed for user '" + user + "'.");
}

std::unique_ptr<ServerSession> OpenLink(const LoginRequest& request) {
  constexpr std::size_t kLongestSourceName = 32;
  if (request.source.empty() || request.source.size() > kLongestSourceName)
    throw base::Error(base::error_number::kDataAccess, kNoServer);
  MeetServer(request.source, request.timeout);
  auto link = std::make_unique<OdbcLink>();
  try {
    link->ConnectSource(request.source, request.user, request.password, request.timeout);
  } catch (const OdbcFailure& failure) {
    // The drivers' own texts may quote what they were given, so none of them is passed on.
    if (failure.native() == message::kLoginFailed || failure.state() == "28000") RaiseLoginFailed(request.user);
    if (failure.state().starts_with("HYT")) throw base::Error(base::error_number::kDataAccess, "Timeout expired");
    throw base::Error(base::error_number::kDataAccess, kNoServer);
  }
  if (link->DbmsName().starts_with("SQLite")) return OpenSqliteSession(std::move(link), request);
  link->SetCommandTimeout(request.command_timeout);
  if (!request.catalogue.empty()) {
    try {
      link->SetCatalogue(request.catalogue);
    } catch (const OdbcFailure&) {
      throw base::Error(AutomationNumber(message::kCannotOpenCatalogue),
                        "Cannot open database \"" + request.catalogue + "\" requested by the login. The login failed.");
    }
  }
  return std::make_unique<PassThroughSession>(std::move(link));
}

}  // namespace

std::unique_ptr<ServerSession> OpenSession(const LoginRequest& request) {
  return WithBadDays(OpenLink(request), request.source);
}

}  // namespace quenta::sandbox
