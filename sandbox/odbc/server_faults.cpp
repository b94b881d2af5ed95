#include "sandbox/odbc/server_faults.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>
#include <utility>

#include "base/error.h"
#include "base/text.h"
#include "sandbox/odbc/server_error.h"

namespace quenta::sandbox {
namespace {

constexpr const char* kVariable = "QUENTA_FAULTS";

// Its statements meet the server's state of that moment. A line that has died stays dead, and the server has rolled
// back what was open on it.
class UnreliableSession final : public ServerSession {
 public:
  UnreliableSession(std::unique_ptr<ServerSession> session, std::string source)
      : session_(std::move(session)), source_(std::move(source)) {}

  ports::RowSet Run(const std::string& sql) override { return Line().Run(sql); }
  void BeginTransaction() override { Line().BeginTransaction(); }
  void CommitTransaction() override { Line().CommitTransaction(); }
  void RollbackTransaction() override { Line().RollbackTransaction(); }
  bool InTransaction() const override { return session_ != nullptr && session_->InTransaction(); }

 private:
  ServerSession& Line() {
    if (session_ != nullptr) {
      const ServerState state = StateOfServer(source_);
      std::this_thread::sleep_for(state.delay);
      if (state.fault == ServerFault::kDrop) session_.reset();
    }
    if (session_ == nullptr) {
      throw base::Error(
          base::error_number::kDataAccess,
          "[DBNETLIB][ConnectionWrite (send()).]General network error. Check your network documentation.");
    }
    return *session_;
  }

  std::unique_ptr<ServerSession> session_;
  std::string source_;
};

}  // namespace

ServerState StateOfServer(const std::string& source) {
  const char* const path = std::getenv(kVariable);
  if (path == nullptr) return {};
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) continue;
    const std::string_view name = base::Trim(std::string_view(line).substr(0, equals));
    if (name != "*" && !base::EqualIgnoreCase(name, source)) continue;
    std::istringstream words(line.substr(equals + 1));
    std::string fault;
    int milliseconds = 0;
    words >> fault >> milliseconds;
    if (fault == "slow") return {ServerFault::kSlow, std::chrono::milliseconds(milliseconds)};
    if (fault == "refuse") return {.fault = ServerFault::kRefuse};
    if (fault == "drop") return {.fault = ServerFault::kDrop};
    return {};
  }
  return {};
}

void MeetServer(const std::string& source, int timeout) {
  const ServerState state = StateOfServer(source);
  const auto longest = timeout > 0 ? std::chrono::milliseconds(std::chrono::seconds(timeout)) : state.delay;
  std::this_thread::sleep_for(std::min(state.delay, longest));
  if (state.delay > longest) throw base::Error(base::error_number::kDataAccess, "Timeout expired");
  if (state.fault == ServerFault::kRefuse) throw base::Error(base::error_number::kDataAccess, kNoServer);
}

std::unique_ptr<ServerSession> WithBadDays(std::unique_ptr<ServerSession> session, const std::string& source) {
  if (std::getenv(kVariable) == nullptr) return session;
  return std::make_unique<UnreliableSession>(std::move(session), source);
}

}  // namespace quenta::sandbox
