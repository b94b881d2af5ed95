#include "component/session/statement_log.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <type_traits>
#include <utility>

#include "base/text.h"

namespace quenta::session {
namespace {

using std::chrono::steady_clock;

class LoggedConnection final : public ports::Connection {
 public:
  LoggedConnection(std::unique_ptr<ports::Connection> real, CallListener& listener)
      : real_(std::move(real)), listener_(listener) {}

  ports::ConnectionState State() override {
    const ports::ConnectionState state = real_->State();
    if (opening_since_ && state != ports::ConnectionState::kConnecting) EndOpening(state);
    return state;
  }
  std::string ConnectionString() override { return real_->ConnectionString(); }
  void SetConnectionString(const std::string& text) override { real_->SetConnectionString(text); }
  int ConnectionTimeout() override { return real_->ConnectionTimeout(); }
  void SetConnectionTimeout(int seconds) override { real_->SetConnectionTimeout(seconds); }

  void Open() override {
    Log(DatabaseCall::kOpen, MaskSecrets(real_->ConnectionString()), [&] { real_->Open(); });
  }
  void OpenAsync() override {
    opening_ = MaskSecrets(real_->ConnectionString());
    listener_.Starting(DatabaseCall::kOpen, opening_);
    opening_since_ = steady_clock::now();
    real_->OpenAsync();
  }
  void ThrowIfOpenFailed() override { real_->ThrowIfOpenFailed(); }
  void Close() override {
    opening_since_.reset();
    Log(DatabaseCall::kClose, "CLOSE", [&] { real_->Close(); });
  }

  ports::RowSet Query(const std::string& sql) override {
    ports::RowSet rows;
    Log(DatabaseCall::kStatement, sql, [&] {
      rows = real_->Query(sql);
      return rows.size();
    });
    return rows;
  }
  void Execute(const std::string& sql) override {
    Log(DatabaseCall::kStatement, sql, [&] { real_->Execute(sql); });
  }
  void BeginTransaction() override {
    Log(DatabaseCall::kBegin, "BEGIN", [&] { real_->BeginTransaction(); });
  }
  void CommitTransaction() override {
    Log(DatabaseCall::kCommit, "COMMIT", [&] { real_->CommitTransaction(); });
  }
  void RollbackTransaction() override {
    Log(DatabaseCall::kRollback, "ROLLBACK", [&] { real_->RollbackTransaction(); });
  }

 private:
  static std::chrono::microseconds Since(steady_clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::microseconds>(steady_clock::now() - start);
  }

  // Runs one call of the real connection; a call that answers a number tells the rows it has read.
  template <typename Call>
  void Log(DatabaseCall kind, const std::string& text, Call&& call) {
    listener_.Starting(kind, text);
    CallRecord record{.call = kind, .text = text};
    const auto start = steady_clock::now();
    try {
      if constexpr (std::is_void_v<std::invoke_result_t<Call>>) {
        call();
      } else {
        record.rows = call();
      }
    } catch (const base::Error& error) {
      record.duration = Since(start);
      record.error = error;
      listener_.Ended(record);
      throw;
    }
    record.duration = Since(start);
    listener_.Ended(record);
  }

  void EndOpening(ports::ConnectionState state) {
    CallRecord record{.call = DatabaseCall::kOpen, .text = opening_, .duration = Since(*opening_since_)};
    opening_since_.reset();
    if (state != ports::ConnectionState::kOpen) {
      try {
        real_->ThrowIfOpenFailed();
      } catch (const base::Error& error) {
        record.error = error;
      }
    }
    listener_.Ended(record);
  }

  std::unique_ptr<ports::Connection> real_;
  CallListener& listener_;
  std::string opening_;  // of an open in the background
  std::optional<steady_clock::time_point> opening_since_;
};

std::string Padded(std::int64_t number, std::size_t width) {
  const std::string digits = base::DecimalText(number);
  return std::string(width > digits.size() ? width - digits.size() : 0, '0') + digits;
}

// "2026-11-21 14:05:09.123Z"
std::string MomentText(std::chrono::system_clock::time_point moment) {
  using namespace std::chrono;
  const auto day = floor<days>(moment);
  const year_month_day date(day);
  const hh_mm_ss time(floor<milliseconds>(moment - day));
  return Padded(static_cast<int>(date.year()), 4) + "-" + Padded(static_cast<unsigned>(date.month()), 2) + "-" +
         Padded(static_cast<unsigned>(date.day()), 2) + " " + Padded(time.hours().count(), 2) + ":" +
         Padded(time.minutes().count(), 2) + ":" + Padded(time.seconds().count(), 2) + "." +
         Padded(time.subseconds().count(), 3) + "Z";
}

std::string OutcomeText(const CallRecord& record) {
  if (record.error) {
    return "error " + base::DecimalText(record.error->number()) + ": " + record.error->description();
  }
  return record.rows ? base::DecimalText(static_cast<long long>(*record.rows)) + " rows" : "done";
}

// On one line and in one cell.
std::string OnOneLine(std::string text) {
  constexpr std::pair<std::string_view, std::string_view> kSigns[] = {{"\r", "\\r"}, {"\n", "\\n"}, {"\t", "\\t"}};
  for (const auto& [sign, written] : kSigns) text = base::ReplaceAll(text, sign, written);
  return text;
}

// Where the value that starts here ends: behind its closing quote, where a doubled quote is part of the value, or
// before the next semicolon.
std::size_t EndOfValue(std::string_view text, std::size_t start) {
  if (start >= text.size() || (text[start] != '"' && text[start] != '\'')) {
    return std::min(text.find(';', start), text.size());
  }
  for (std::size_t quote = text.find(text[start], start + 1); quote != std::string_view::npos;
       quote = text.find(text[start], quote + 2)) {
    if (quote + 1 >= text.size() || text[quote + 1] != text[start]) return quote + 1;
  }
  return text.size();
}

}  // namespace

std::unique_ptr<ports::Connection> StatementLog::CreateConnection() {
  return std::make_unique<LoggedConnection>(real_.CreateConnection(), listener_);
}

void StatementLines::Starting(DatabaseCall, const std::string&) {}

void StatementLines::Ended(const CallRecord& record) noexcept {
  try {
    sink_(LogLine(record, std::chrono::system_clock::now()));
  } catch (...) {
    // Lost, as promised.
  }
}

std::string LogLine(const CallRecord& record, std::chrono::system_clock::time_point ended) {
  const std::int64_t microseconds = record.duration.count();
  const char* const what = record.call == DatabaseCall::kOpen ? "OPEN " : "";
  return MomentText(ended) + "\t" + base::DecimalText(microseconds / 1000) + "." + Padded(microseconds % 1000, 3) +
         " ms\t" + OnOneLine(MaskSecrets(OutcomeText(record))) + "\t" + OnOneLine(MaskSecrets(what + record.text)) +
         "\r\n";
}

std::string MaskSecrets(std::string_view text) {
  std::string masked;
  std::size_t copied = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    for (const std::string_view keyword : {"Password", "PWD"}) {
      if (!base::StartsWithIgnoreCase(text.substr(at), keyword)) continue;
      const std::size_t equals = text.find_first_not_of(' ', at + keyword.size());
      if (equals == std::string_view::npos || text[equals] != '=') continue;
      const std::size_t value = std::min(text.find_first_not_of(' ', equals + 1), text.size());
      masked.append(text, copied, value - copied).append("***");
      at = copied = EndOfValue(text, value);
      break;
    }
  }
  return masked.append(text, copied);
}

}  // namespace quenta::session
