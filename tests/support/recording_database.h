// Wraps any Database: keeps every statement in order, and makes the n-th call fail.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/error.h"
#include "ports/database.h"

namespace quenta::tests {

class RecordingDatabase final : public ports::Database {
 public:
  explicit RecordingDatabase(ports::Database& real) : real_(real) {}

  std::unique_ptr<ports::Connection> CreateConnection() override;

  std::vector<std::string> statements;  // "BEGIN", "COMMIT" and "ROLLBACK" stand for the transaction calls
  int fail_at = -1;                     // position, from 0, of the call that fails; -1 for none
  bool fail_for_good = false;           // all later calls fail too

  void Forget() {
    statements.clear();
    fail_at = -1;
    fail_for_good = false;
  }

  // Notes a statement, or fails in its place.
  void Note(const std::string& statement) {
    const int position = static_cast<int>(statements.size());
    statements.push_back(statement);
    if (fail_at >= 0 && (position == fail_at || (fail_for_good && position > fail_at))) {
      throw base::Error(base::error_number::kDataAccess, "Injected failure at statement " + std::to_string(position));
    }
  }

 private:
  ports::Database& real_;
};

class RecordingConnection final : public ports::Connection {
 public:
  RecordingConnection(RecordingDatabase& owner, std::unique_ptr<ports::Connection> real)
      : owner_(owner), real_(std::move(real)) {}

  ports::ConnectionState State() override { return real_->State(); }
  std::string ConnectionString() override { return real_->ConnectionString(); }
  void SetConnectionString(const std::string& text) override { real_->SetConnectionString(text); }
  int ConnectionTimeout() override { return real_->ConnectionTimeout(); }
  void SetConnectionTimeout(int seconds) override { real_->SetConnectionTimeout(seconds); }
  void Open() override { real_->Open(); }
  void OpenAsync() override { real_->OpenAsync(); }
  void ThrowIfOpenFailed() override { real_->ThrowIfOpenFailed(); }
  void Close() override { real_->Close(); }
  ports::RowSet Query(const std::string& sql) override {
    owner_.Note(sql);
    return real_->Query(sql);
  }
  void Execute(const std::string& sql) override {
    owner_.Note(sql);
    real_->Execute(sql);
  }
  void BeginTransaction() override {
    owner_.Note("BEGIN");
    real_->BeginTransaction();
  }
  void CommitTransaction() override {
    owner_.Note("COMMIT");
    real_->CommitTransaction();
  }
  void RollbackTransaction() override {
    owner_.Note("ROLLBACK");
    real_->RollbackTransaction();
  }

 private:
  RecordingDatabase& owner_;
  std::unique_ptr<ports::Connection> real_;
};

inline std::unique_ptr<ports::Connection> RecordingDatabase::CreateConnection() {
  return std::make_unique<RecordingConnection>(*this, real_.CreateConnection());
}

}  // namespace quenta::tests
