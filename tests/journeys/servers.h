// Servers that are slow or away as a journey says, in front of a real database. Time is the journey's own.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "base/error.h"
#include "ports/database.h"

namespace quenta::journeys {

using Clock = std::chrono::steady_clock;

// How a server takes an open. A server that nothing is said of answers at once.
struct ServerState {
  std::chrono::seconds answers_after{0};
  int answers = -1;  // so many more times; then it is away. -1 for ever
};

class Servers final : public ports::Database {
 public:
  Servers(ports::Database& real, std::function<Clock::time_point()> now) : real_(real), now_(std::move(now)) {}
  std::unique_ptr<ports::Connection> CreateConnection() override;

  std::map<std::string, ServerState> states;  // by data source
  int open_lines = 0;
  int connecting = 0;  // lines that do at the moment
  int timeout = 15;    // of the line that was given one last

 private:
  friend class ServedConnection;
  ports::Database& real_;
  std::function<Clock::time_point()> now_;
};

class ServedConnection final : public ports::Connection {
 public:
  explicit ServedConnection(Servers& servers) : servers_(servers), real_(servers.real_.CreateConnection()) {}
  ~ServedConnection() override { Mark(false, {}); }

  ports::ConnectionState State() override {
    if (until_ && servers_.now_() < *until_) return ports::ConnectionState::kConnecting;
    if (until_) End();
    return real_->State();
  }
  std::string ConnectionString() override { return real_->ConnectionString(); }
  void SetConnectionString(const std::string& text) override { Idle().SetConnectionString(text); }
  int ConnectionTimeout() override { return real_->ConnectionTimeout(); }
  void SetConnectionTimeout(int seconds) override {
    Idle().SetConnectionTimeout(seconds);
    servers_.timeout = seconds;
  }
  void Open() override {
    OpenAsync();
    End();
    ThrowIfOpenFailed();
  }
  void OpenAsync() override {
    error_.reset();
    Mark(open_, servers_.now_() + Server().answers_after);
  }
  void ThrowIfOpenFailed() override {
    if (error_) throw base::Error(*error_);
  }
  void Close() override {
    real_->Close();
    Mark(false, {});
  }
  ports::RowSet Query(const std::string& sql) override { return real_->Query(sql); }
  void Execute(const std::string& sql) override { real_->Execute(sql); }
  void BeginTransaction() override { real_->BeginTransaction(); }
  void CommitTransaction() override { real_->CommitTransaction(); }
  void RollbackTransaction() override { real_->RollbackTransaction(); }

 private:
  ServerState& Server() {
    constexpr std::string_view kKeyword = "Data Source=";
    const std::string text = real_->ConnectionString();
    const std::size_t start = text.find(kKeyword) + kKeyword.size();
    return servers_.states[text.substr(start, text.find(';', start) - start)];
  }
  void End() {
    Mark(false, {});
    try {
      int& answers = Server().answers;
      if (answers == 0) {
        throw base::Error(base::error_number::kDataAccess,
                          "[DBNETLIB][ConnectionOpen (Connect()).]SQL Server does not exist or access denied.");
      }
      if (answers > 0) --answers;
      real_->Open();
      Mark(true, {});
    } catch (const base::Error& error) {
      error_ = error;
    }
  }
  void Mark(bool open, std::optional<Clock::time_point> until) {
    servers_.open_lines += static_cast<int>(open) - static_cast<int>(std::exchange(open_, open));
    servers_.connecting += static_cast<int>(until.has_value()) - static_cast<int>(until_.has_value());
    until_ = until;
  }
  ports::Connection& Idle() {
    if (until_) throw base::Error(3705, "Operation is not allowed when the object is open.");
    return *real_;
  }

  Servers& servers_;
  std::unique_ptr<ports::Connection> real_;
  std::optional<Clock::time_point> until_;  // it connects until then
  std::optional<base::Error> error_;        // the last open ended so
  bool open_ = false;
};

inline std::unique_ptr<ports::Connection> Servers::CreateConnection() {
  return std::make_unique<ServedConnection>(*this);
}

}  // namespace quenta::journeys
