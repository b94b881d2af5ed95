// Tells a listener of every call that reaches the database: what was asked, how long it took, how it ended.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/error.h"
#include "ports/database.h"

namespace quenta::session {

enum class DatabaseCall { kOpen, kClose, kStatement, kBegin, kCommit, kRollback };

// A call that has ended.
struct CallRecord {
  DatabaseCall call = DatabaseCall::kStatement;
  // The statement as it was sent; the connection string without its secrets; "CLOSE", "BEGIN", "COMMIT", "ROLLBACK".
  std::string text{};
  std::chrono::microseconds duration{};
  std::optional<std::size_t> rows{};   // of a query
  std::optional<base::Error> error{};  // nothing when it succeeded
};

class CallListener {
 public:
  virtual ~CallListener() = default;
  // The call has not reached the database yet.
  virtual void Starting(DatabaseCall call, const std::string& text) = 0;
  // An open in the background ends when its connection is asked for its state and is not connecting any more.
  virtual void Ended(const CallRecord& record) noexcept = 0;
};

// Passes everything on to the real database. The listener and the real database outlive it and its connections.
class StatementLog final : public ports::Database {
 public:
  StatementLog(ports::Database& real, CallListener& listener) : real_(real), listener_(listener) {}
  std::unique_ptr<ports::Connection> CreateConnection() override;

 private:
  ports::Database& real_;
  CallListener& listener_;
};

// Writes a line for every call that has ended, through a sink that takes it with its line end. What the sink throws is
// lost: support's log never disturbs the work.
class StatementLines final : public CallListener {
 public:
  explicit StatementLines(std::function<void(const std::string& line)> sink) : sink_(std::move(sink)) {}
  void Starting(DatabaseCall call, const std::string& text) override;
  void Ended(const CallRecord& record) noexcept override;

 private:
  std::function<void(const std::string& line)> sink_;
};

// The line of a call that ended at this moment: moment (UTC), milliseconds, outcome, text; tabs between them, line ends
// and tabs inside them written as "\n", "\r", "\t". Statements stand whole, with the values they carry; only secrets
// are masked.
std::string LogLine(const CallRecord& record, std::chrono::system_clock::time_point ended);

// The text with the values of "Password=" and "PWD=" replaced by "***", whatever their case, in quotes or not.
std::string MaskSecrets(std::string_view text);

}  // namespace quenta::session
