#include "component/session/connection_keeper.h"

#include <optional>

#include "base/convert.h"
#include "base/error.h"
#include "component/session/scrambler.h"

namespace quenta::session {
namespace {

using ports::Connection;
using ports::ConnectionState;

constexpr const char* kNotKnown = "...";
constexpr const char* kNotPresent = "A ligação ao servidor SQL não está presente.";
constexpr int kHourglass = 11;
constexpr int kNormal = 0;
constexpr int kMinimised = 1;
constexpr int kAttempts = 4;
constexpr int kAttemptSeconds = 10;

class Keeper {
 public:
  Keeper(Session& session, const ConnectionCheck& check, Connection& connection)
      : session_(session), check_(check), connection_(connection) {}

  std::string Check() {
    if (State() == ConnectionState::kConnecting) return {};
    int pointer = 0;
    if (check_.form != nullptr) {
      pointer = check_.form->MousePointer();
      check_.form->SetMousePointer(kHourglass);
    }
    bool in_transaction = false;
    const bool usable = Test(in_transaction);
    // Deliberate: this answer, and that of a cancelled wait, leave the form's hourglass.
    if (check_.transaction_shortcut && in_transaction) return {};
    std::string result;
    if (!usable) {
      if (!check_.reconnect) {
        result = kNotPresent;
      } else if (!Reconnect(result)) {
        return kNotKnown;
      }
    }
    if (check_.form != nullptr) check_.form->SetMousePointer(pointer);
    return result;
  }

 private:
  // Runs a step with errors kept instead of raised; they are the keeper's business alone.
  template <typename Step>
  void Try(Step&& step) {
    try {
      step();
    } catch (const base::Error& error) {
      error_ = error;
    }
  }

  ConnectionState State() {
    ConnectionState state = ConnectionState::kClosed;
    Try([&] { state = connection_.State(); });
    return state;
  }

  bool Test(bool& in_transaction) {
    if (State() != ConnectionState::kOpen) return false;
    error_.reset();
    Try([&] {
      const ports::RowSet rows = connection_.Query("SELECT @@TRANCOUNT as valor");
      if (rows.empty() || rows.front()["valor"].is_null()) return;
      in_transaction = base::ToDouble(rows.front()["valor"], {}) > 0;
    });
    return !error_;
  }

  // One asynchronous open, waited for. False when the wait was cancelled.
  bool OpenAndWait() {
    const std::string& current = session_.shared_connection_string;
    if (IsShared() && !current.empty()) Try([&] { connection_.SetConnectionString(Unscramble(current)); });
    error_.reset();
    Try([&] { connection_.OpenAsync(); });
    session_.cancel_reconnect = false;
    while (State() == ConnectionState::kConnecting && !session_.cancel_reconnect) {
      // A host that is quitting ends the wait as the cancel does.
      if (!session_.ports().desktop.PumpMessages()) session_.cancel_reconnect = true;
    }
    if (session_.cancel_reconnect) return false;
    if (!error_) Try([&] { connection_.ThrowIfOpenFailed(); });
    return true;
  }

  bool IsShared() const { return &connection_ == &session_.SharedConnection(); }

  void Prepare() {
    Try([&] { connection_.Close(); });
    Try([&] { connection_.SetConnectionTimeout(kAttemptSeconds); });
  }

  // The other server of the session. With one server only, that one is tried again.
  std::string OtherConnectionString() const {
    const SessionState& state = session_.state();
    const bool primary = state.on_secondary || state.secondary_data_source.empty();
    return Unscramble(primary ? state.primary_connection_string : state.secondary_connection_string);
  }

  // False when the wait was cancelled; the result otherwise says how it ended.
  bool Reconnect(std::string& result) {
    ports::ErrorReporting& reporting = session_.ports().error_reporting;
    controls::Form* const form = check_.form == nullptr ? nullptr : check_.form->Form();
    if (check_.minimise && check_.form != nullptr) {
      check_.form->Refresh();
      check_.form->SetWindowState(kMinimised);
    }
    if (!check_.silent) reporting.SQLReconnectShow(form);
    int timeout = 0;
    Try([&] { timeout = connection_.ConnectionTimeout(); });
    Prepare();
    if (!Attempt()) {
      if (!check_.silent) reporting.SQLReconnectShutdown(form);
      return false;
    }
    const std::optional<base::Error> last = error_;
    Try([&] { connection_.SetConnectionTimeout(timeout); });
    if (!check_.silent) reporting.SQLReconnectShutdown(form);
    if (State() == ConnectionState::kOpen) {
      if (!check_.silent) reporting.SQLReconnectShowOK(form);
    } else {
      if (!check_.silent) reporting.SQLReconnectShowBad(form);
      result = last && !last->description().empty() ? last->description() : kNotPresent;
    }
    if (!check_.silent) RestoreForm();
    return true;
  }

  // Up to four attempts of two opens each. False when a wait was cancelled.
  bool Attempt() {
    for (int attempt = 1; attempt <= kAttempts; ++attempt) {
      if (State() == ConnectionState::kOpen) return true;
      if (!OpenAndWait()) {
        if (check_.minimise) RestoreForm();
        return false;
      }
      if (!error_) return true;
      Prepare();
      Try([&] { connection_.SetConnectionString(OtherConnectionString()); });
      if (IsShared()) session_.shared_connection_string = Scramble(OtherConnectionString());
      if (!OpenAndWait()) {
        // Deliberately unlike the first wait: a silent check leaves the form minimised.
        if (check_.minimise && !check_.silent) RestoreForm();
        return false;
      }
      if (!error_) return true;
    }
    return true;
  }

  void RestoreForm() {
    if (check_.form == nullptr) return;
    check_.form->SetWindowState(kNormal);
    check_.form->Refresh();
  }

  Session& session_;
  const ConnectionCheck& check_;
  Connection& connection_;
  std::optional<base::Error> error_;
};

}  // namespace

std::string SQLConnectionCheck(Session& session, ConnectionCheck& check) {
  if (session.state().primary_connection_string.empty()) return kNotKnown;
  if (check.connection == nullptr) check.connection = &session.SharedConnection();
  return Keeper(session, check, *check.connection).Check();
}

void EnsureConnection(Session& session) {
  ConnectionCheck check;
  check.transaction_shortcut = true;
  check.reconnect = !session.transaction_held;
  const std::string answer = SQLConnectionCheck(session, check);
  if (answer.empty()) return;
  if (answer == kNotKnown && session.SharedConnection().State() == ConnectionState::kOpen) return;
  throw base::Error(base::error_number::kDataAccess, answer);
}

}  // namespace quenta::session
