// Wraps any Database: keeps every statement in order, and makes calls go wrong as its plan says.
#pragma once

#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/error.h"
#include "component/session/statement_log.h"
#include "ports/database.h"
#include "support/faults.h"

namespace quenta::tests {

// What the provider says of a line that died.
inline base::Error LineGone() {
  return {base::error_number::kDataAccess,
          "[DBNETLIB][ConnectionWrite (send()).]General network error. Check your network documentation."};
}

// Every statement, every begin, commit and rollback, and every open is a call of the plan's.
class FaultyConnection final : public ports::Connection {
 public:
  FaultyConnection(ports::Database& real, FaultPlan& plan)
      : database_(real), plan_(plan), real_(database_.CreateConnection()) {}

  // As long as it connects it is polled, how often is chance: only the answer that ends this counts.
  ports::ConnectionState State() override {
    if (std::chrono::steady_clock::now() < late_until_) return ports::ConnectionState::kConnecting;
    const ports::ConnectionState state = line_gone_ ? ports::ConnectionState::kOpen : real_->State();
    if (state != ports::ConnectionState::kConnecting) plan_.Pass();
    return state;
  }
  std::string ConnectionString() override { return plan_.Pass(), real_->ConnectionString(); }
  void SetConnectionString(const std::string& text) override { plan_.Pass(), real_->SetConnectionString(text); }
  int ConnectionTimeout() override { return plan_.Pass(), real_->ConnectionTimeout(); }
  void SetConnectionTimeout(int seconds) override { plan_.Pass(), real_->SetConnectionTimeout(seconds); }
  void Open() override {
    Call(CallTo::kOpen, [&] { real_->Open(); });
  }
  void OpenAsync() override {
    const bool late = plan_.fault == Fault::kIsLate && plan_.calls == plan_.fail_at;
    if (late) late_until_ = std::chrono::steady_clock::now() + plan_.late;
    Call(CallTo::kOpen, [&] { real_->OpenAsync(); });
  }
  void ThrowIfOpenFailed() override { plan_.Pass(), real_->ThrowIfOpenFailed(); }
  void Close() override {
    plan_.Pass();
    line_gone_ = false;
    late_until_ = {};
    real_->Close();
  }
  ports::RowSet Query(const std::string& sql) override {
    const bool strikes = plan_.calls == plan_.fail_at;
    const ports::RowSet rows = Call(CallTo::kQuery, [&] { return real_->Query(sql); });
    return strikes ? Disfigured(rows) : rows;
  }
  void Execute(const std::string& sql) override {
    Call(CallTo::kWrite, [&] { real_->Execute(sql); });
  }
  void BeginTransaction() override {
    Call(CallTo::kWrite, [&] { real_->BeginTransaction(); });
  }
  void CommitTransaction() override {
    Call(CallTo::kWrite, [&] { real_->CommitTransaction(); });
  }
  void RollbackTransaction() override {
    Call(CallTo::kWrite, [&] { real_->RollbackTransaction(); });
  }

 private:
  template <typename Work>
  std::invoke_result_t<Work> Call(CallTo to, Work&& work) {
    const bool strikes = plan_.Strikes(to);
    if (line_gone_) throw LineGone();
    if (strikes) Strike(work);
    return work();
  }

  template <typename Work>
  void Strike(Work& work) {
    switch (plan_.fault) {
      case Fault::kOtherColumns:
      case Fault::kAllNull:
        return;
      case Fault::kIsLate:
        if (late_until_ == std::chrono::steady_clock::time_point{}) std::this_thread::sleep_for(plan_.late);
        return;
      case Fault::kAnswerIsLost:
        work();
        [[fallthrough]];
      case Fault::kLineDrops:
        DropLine();
        throw LineGone();
      default:
        throw base::Error(base::error_number::kDataAccess, "Injected failure");
    }
  }

  ports::RowSet Disfigured(const ports::RowSet& rows) const {
    std::vector<std::string> columns = rows.columns();
    if (plan_.fault == Fault::kOtherColumns) {
      for (std::string& column : columns) column += "_2";
    }
    ports::RowSet result(std::move(columns));
    for (const ports::Row row : rows) {
      for (std::size_t i = 0; i < rows.columns().size(); ++i) {
        result.Append(plan_.fault == Fault::kAllNull ? base::Value::Null() : row.At(i));
      }
    }
    return result;
  }

  // A connection that is destroyed rolls back, as the server does when the line is gone.
  void DropLine() {
    const std::string connection_string = real_->ConnectionString();
    const int timeout = real_->ConnectionTimeout();
    real_ = database_.CreateConnection();
    real_->SetConnectionString(connection_string);
    real_->SetConnectionTimeout(timeout);
    line_gone_ = true;
  }

  ports::Database& database_;
  FaultPlan& plan_;
  std::unique_ptr<ports::Connection> real_;
  bool line_gone_ = false;
  std::chrono::steady_clock::time_point late_until_;  // an open in the background ends no earlier
};

class FaultyDatabase final : public ports::Database {
 public:
  FaultyDatabase(ports::Database& real, FaultPlan& plan) : real_(real), plan_(plan) {}
  std::unique_ptr<ports::Connection> CreateConnection() override {
    plan_.Pass();
    return std::make_unique<FaultyConnection>(real_, plan_);
  }

 private:
  ports::Database& real_;
  FaultPlan& plan_;
};

class RecordingDatabase final : public ports::Database, public FaultPlan, private session::CallListener {
 public:
  explicit RecordingDatabase(ports::Database& real) : faulty_(real, *this) {}

  std::unique_ptr<ports::Connection> CreateConnection() override { return log_.CreateConnection(); }

  std::vector<std::string> statements;  // "BEGIN", "COMMIT" and "ROLLBACK" stand for the transaction calls

  // Forgets what was recorded; nothing goes wrong any more.
  void Forget() {
    statements.clear();
    static_cast<FaultPlan&>(*this) = {};
  }

 private:
  void Starting(session::DatabaseCall call, const std::string& text) override {
    if (call == session::DatabaseCall::kOpen || call == session::DatabaseCall::kClose) return;
    statements.push_back(text);
  }
  void Ended(const session::CallRecord&) noexcept override {}

  FaultyDatabase faulty_;
  session::StatementLog log_{faulty_, *this};
};

}  // namespace quenta::tests
