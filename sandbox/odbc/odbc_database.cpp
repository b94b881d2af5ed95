#include "sandbox/odbc/odbc_database.h"

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "base/error.h"
#include "base/text.h"
#include "sandbox/odbc/connection_string.h"
#include "sandbox/odbc/server_session.h"

namespace quenta::sandbox {
namespace {

namespace ado_error {
constexpr std::int32_t kInTransaction = 3246;
constexpr std::int32_t kObjectOpen = 3705;
constexpr std::int32_t kProviderNotFound = 3706;
}  // namespace ado_error

std::atomic<int> connecting_threads{0};

// One open in progress, shared by the connection and the thread that connects. Whoever comes last, cleans up: a
// connection that gives up leaves the thread behind, and the thread then drops the session that nobody waits for.
struct Attempt {
  std::mutex mutex;
  std::condition_variable ended;
  bool done = false;
  std::unique_ptr<ServerSession> session;
  std::optional<base::Error> error;
};

void Connect(const std::shared_ptr<Attempt>& attempt, const LoginRequest& request) noexcept {
  std::unique_ptr<ServerSession> session;
  std::optional<base::Error> error;
  try {
    session = OpenSession(request);
  } catch (const base::Error& known) {
    error = known;
  } catch (const std::exception&) {
    error = base::Error(base::error_number::kDataAccess, "The connection failed.");
  }
  const std::lock_guard lock(attempt->mutex);
  attempt->session = std::move(session);
  attempt->error = std::move(error);
  attempt->done = true;
  attempt->ended.notify_all();
}

struct ConnectCall {
  std::shared_ptr<Attempt> attempt;
  LoginRequest request;
};

void* RunConnectCall(void* argument) noexcept {
  {
    const std::unique_ptr<ConnectCall> call(static_cast<ConnectCall*>(argument));
    Connect(call->attempt, call->request);
  }
  --connecting_threads;
  return nullptr;
}

// Nobody waits for the thread, so it is born detached. std::thread::detach() will not do: mingw's pthread_detach frees
// the bookkeeping of a thread that is just ending, while the thread still uses it.
bool StartThread(std::unique_ptr<ConnectCall> call) {
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) return false;
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_t thread{};
  const bool started = pthread_create(&thread, &attributes, &RunConnectCall, call.get()) == 0;
  pthread_attr_destroy(&attributes);
  if (started) static_cast<void>(call.release());
  return started;
}

std::shared_ptr<Attempt> StartAttempt(const LoginRequest& request) {
  auto attempt = std::make_shared<Attempt>();
  auto call = std::make_unique<ConnectCall>(ConnectCall{attempt, request});
  ++connecting_threads;
  if (!StartThread(std::move(call))) {
    --connecting_threads;
    throw base::Error(base::error_number::kDataAccess, "No thread for the connection could be started.");
  }
  return attempt;
}

int ParseSeconds(const std::string& text, int otherwise) {
  int seconds = 0;
  for (const char c : text) {
    if (c < '0' || c > '9' || seconds > 100000) return otherwise;
    seconds = seconds * 10 + (c - '0');
  }
  return text.empty() ? otherwise : seconds;
}

class OdbcConnection final : public ports::Connection {
 public:
  ports::ConnectionState State() override {
    Settle();
    if (attempt_) return ports::ConnectionState::kConnecting;
    return session_ ? ports::ConnectionState::kOpen : ports::ConnectionState::kClosed;
  }

  std::string ConnectionString() override { return connection_string_; }

  void SetConnectionString(const std::string& text) override {
    RequireClosed();
    connection_string_ = text;
  }

  int ConnectionTimeout() override { return timeout_; }

  void SetConnectionTimeout(int seconds) override {
    RequireClosed();
    timeout_ = std::max(seconds, 0);
  }

  void Open() override {
    Start();
    std::unique_lock lock(attempt_->mutex);
    const auto done = [this] { return attempt_->done; };
    if (deadline_) {
      attempt_->ended.wait_until(lock, *deadline_, done);
    } else {
      attempt_->ended.wait(lock, done);
    }
    lock.unlock();
    Settle();
    ThrowIfOpenFailed();
  }

  void OpenAsync() override { Start(); }

  void ThrowIfOpenFailed() override {
    Settle();
    if (open_error_) throw base::Error(*open_error_);
  }

  void Close() override {
    if (session_ && session_->InTransaction())
      throw base::Error(ado_error::kInTransaction,
                        "Connection object cannot be explicitly closed while in a transaction.");
    attempt_.reset();
    session_.reset();
    open_error_.reset();
  }

  ports::RowSet Query(const std::string& sql) override { return Session().Run(sql); }
  void Execute(const std::string& sql) override { Session().Run(sql); }
  void BeginTransaction() override { Session().BeginTransaction(); }
  void CommitTransaction() override { Session().CommitTransaction(); }
  void RollbackTransaction() override { Session().RollbackTransaction(); }

 private:
  void RequireClosed() {
    if (State() != ports::ConnectionState::kClosed)
      throw base::Error(ado_error::kObjectOpen, "Operation is not allowed when the object is open.");
  }

  ServerSession& Session() {
    Settle();
    if (!session_)
      throw base::Error(
          base::error_number::kClosedConnection,
          "The connection cannot be used to perform this operation. It is either closed or invalid in this "
          "context.");
    return *session_;
  }

  void Start() {
    RequireClosed();
    open_error_.reset();
    const sandbox::ConnectionString text(connection_string_);
    if (!base::StartsWithIgnoreCase(text.Get("Provider"), "SQLOLEDB"))
      throw base::Error(ado_error::kProviderNotFound, "Provider cannot be found. It may not be properly installed.");
    // Both limits count: the caller's own and the one in the string; 0 is none.
    int timeout = ParseSeconds(text.Get("Connect Timeout"), timeout_);
    if (timeout == 0 || (timeout_ > 0 && timeout_ < timeout)) timeout = timeout_;
    attempt_ = StartAttempt({.source = text.Get("Data Source"),
                             .user = text.Get("User ID"),
                             .password = text.Get("Password"),
                             .catalogue = text.Get("Initial Catalog"),
                             .timeout = timeout});
    deadline_.reset();
    // The driver gets the time first: its answer says more.
    if (timeout > 0) deadline_ = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout * 1000 + 500);
  }

  // Takes over what the connecting thread has brought, or gives it up when its time is over.
  void Settle() {
    if (!attempt_) return;
    {
      const std::lock_guard lock(attempt_->mutex);
      if (attempt_->done) {
        session_ = std::move(attempt_->session);
        open_error_ = attempt_->error;
      } else if (deadline_ && std::chrono::steady_clock::now() >= *deadline_) {
        open_error_ = base::Error(base::error_number::kDataAccess, "Timeout expired");
      } else {
        return;
      }
    }
    attempt_.reset();
    if (!session_) return;
    sandbox::ConnectionString text(connection_string_);
    if (base::EqualIgnoreCase(text.Get("Persist Security Info"), "True")) return;
    text.Remove("Password");
    connection_string_ = text.Text();
  }

  std::string connection_string_;
  int timeout_ = 15;
  std::shared_ptr<Attempt> attempt_;  // only while connecting
  std::optional<std::chrono::steady_clock::time_point> deadline_;
  std::unique_ptr<ServerSession> session_;
  std::optional<base::Error> open_error_;
};

}  // namespace

std::unique_ptr<ports::Connection> OdbcDatabase::CreateConnection() {
  return std::make_unique<OdbcConnection>();
}

int OdbcDatabase::ConnectingThreads() noexcept {
  return connecting_threads;
}

}  // namespace quenta::sandbox
