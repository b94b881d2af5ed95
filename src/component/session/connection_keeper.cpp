#include "component/session/connection_keeper.h"

#include <chrono>
#include <memory>
#include <optional>
#include <utility>

#include "base/convert.h"
#include "base/error.h"
#include "component/session/scrambler.h"

namespace quenta::session {
namespace {

using ports::Connection;
using ports::ConnectionState;

constexpr const char* kNotKnown = "...";
constexpr const char* kNotPresent = "A ligação ao servidor SQL não está presente.";
constexpr const char* kNoMasterString =
    "Não foi possivel reconectar ao servidor SQL. Não está definido um valor para a variável 'strSQLMasterConnString'";
constexpr const char* kNoAnswer = "O servidor SQL não respondeu dentro de 10 segundos.";
constexpr int kHourglass = 11;
constexpr int kNormal = 0;
constexpr int kMinimised = 1;
constexpr int kAttempts = 4;
constexpr std::chrono::seconds kLongestOpen{10};

ports::RowSet RunTest(Connection& connection) {
  return connection.Query("SELECT @@TRANCOUNT as valor");
}

class Keeper {
 public:
  // Without a connection of the caller's own, the shared one is kept.
  Keeper(Session& session, const ConnectionCheck& check, Connection* own)
      : session_(session), check_(check), own_(own) {}

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
    Try([&] { state = Line().State(); });
    return state;
  }

  bool Test(bool& in_transaction) {
    if (State() != ConnectionState::kOpen) return false;
    error_.reset();
    Try([&] {
      const ports::RowSet rows = RunTest(Line());
      if (rows.empty() || rows.front()["valor"].is_null()) return;
      in_transaction = base::ToDouble(rows.front()["valor"], {}) > 0;
    });
    return !error_;
  }

  // The connection that is kept. The shared one is asked for each time: a SQLConnect that the host calls during a wait
  // puts another in its place, and the wait then ends with that.
  Connection& Line() const { return own_ != nullptr ? *own_ : session_.SharedConnection(); }

  // One asynchronous open, waited for. False when the wait was cancelled.
  bool OpenAndWait() {
    ports::Desktop& desktop = session_.ports().desktop;
    const std::string& current = session_.shared_connection_string;
    if (own_ == nullptr && !current.empty()) Try([&] { Line().SetConnectionString(Unscramble(current)); });
    error_.reset();
    const auto end = desktop.Now() + kLongestOpen;
    Try([&] { Line().OpenAsync(); });
    session_.cancel_reconnect = false;
    while (State() == ConnectionState::kConnecting && !session_.cancel_reconnect) {
      if (desktop.Now() >= end) {
        // "Connect Timeout" in the connection string may have won over the property.
        Try([&] { Line().Close(); });
        error_ = base::Error(base::error_number::kDataAccess, kNoAnswer);
        return true;
      }
      // A host that is quitting ends the wait as the cancel does.
      if (!desktop.PumpMessages()) session_.cancel_reconnect = true;
    }
    if (session_.cancel_reconnect) return false;
    if (!error_) Try([&] { Line().ThrowIfOpenFailed(); });
    return true;
  }

  void Prepare() {
    Try([&] { Line().Close(); });
    Try([&] { Line().SetConnectionTimeout(static_cast<int>(kLongestOpen.count())); });
  }

  // The other server of the session. With one server only, that one is tried again.
  std::string OtherConnectionString() const {
    const SessionState& state = session_.state();
    const bool primary = state.on_secondary || state.secondary_data_source.empty();
    return Unscramble(primary ? state.primary_connection_string : state.secondary_connection_string);
  }

  // False when the wait was cancelled; the result otherwise says how it ended.
  bool Reconnect(std::string& result) {
    // The suite's text for it, which nobody sees: without that string the keeper has answered before it got here.
    if (session_.state().primary_connection_string.empty()) {
      result = kNoMasterString;
      return true;
    }
    ports::ErrorReporting& reporting = session_.ports().error_reporting;
    controls::Form* const form = check_.form == nullptr ? nullptr : check_.form->Form();
    // The waits below let the user go on: nothing may begin on a line that is just being opened.
    const std::shared_ptr<void> no_input = session_.hold_input ? session_.hold_input() : nullptr;
    if (check_.minimise && check_.form != nullptr) {
      check_.form->Refresh();
      check_.form->SetWindowState(kMinimised);
    }
    if (!check_.silent) reporting.SQLReconnectShow(form);
    int timeout = 0;
    Try([&] { timeout = Line().ConnectionTimeout(); });
    Prepare();
    const Outcome outcome = Attempt();
    if (outcome != Outcome::kEnded) {
      if (!check_.silent) {
        reporting.SQLReconnectShutdown(form);
        reporting.ReleaseReconnect();
      }
      // Deliberately unlike the first wait: a silent check whose second wait is cancelled leaves the form minimised.
      if (check_.minimise && (outcome == Outcome::kFirstWaitCancelled || !check_.silent)) RestoreForm();
      return false;
    }
    const std::optional<base::Error> last = error_;
    Try([&] { Line().SetConnectionTimeout(timeout); });
    if (!check_.silent) reporting.SQLReconnectShutdown(form);
    if (State() == ConnectionState::kOpen) {
      if (!check_.silent) reporting.SQLReconnectShowOK(form);
    } else {
      if (!check_.silent) reporting.SQLReconnectShowBad(form);
      result = last && !last->description().empty() ? last->description() : kNotPresent;
    }
    if (!check_.silent) {
      reporting.ReleaseReconnect();
      RestoreForm();
    }
    return true;
  }

  enum class Outcome { kEnded, kFirstWaitCancelled, kSecondWaitCancelled };

  // Up to four attempts of two opens each.
  Outcome Attempt() {
    for (int attempt = 1; attempt <= kAttempts; ++attempt) {
      if (State() == ConnectionState::kOpen) break;
      if (!OpenAndWait()) return Outcome::kFirstWaitCancelled;
      if (!error_) break;
      Prepare();
      Try([&] { Line().SetConnectionString(OtherConnectionString()); });
      if (own_ == nullptr) session_.shared_connection_string = Scramble(OtherConnectionString());
      if (!OpenAndWait()) return Outcome::kSecondWaitCancelled;
      if (!error_) break;
    }
    return Outcome::kEnded;
  }

  void RestoreForm() {
    if (check_.form == nullptr) return;
    check_.form->SetWindowState(kNormal);
    check_.form->Refresh();
  }

  Session& session_;
  const ConnectionCheck& check_;
  Connection* const own_;
  std::optional<base::Error> error_;
};

}  // namespace

std::string SQLConnectionCheck(Session& session, ConnectionCheck& check) {
  if (session.state().primary_connection_string.empty()) return kNotKnown;
  const bool shared = check.connection == nullptr || check.connection == &session.SharedConnection();
  std::string answer = Keeper(session, check, shared ? nullptr : check.connection).Check();
  if (shared && answer.empty()) session.TrustLine();
  try {
    if (shared) check.connection = &session.SharedConnection();
  } catch (const base::Error&) {
    check.connection = nullptr;  // it cannot even be created, as the answer says
  }
  return answer;
}

bool ConnectionAnswers(Session& session) {
  try {
    Connection& connection = session.SharedConnection();
    if (connection.State() != ConnectionState::kOpen) return false;
    RunTest(connection);
    return true;
  } catch (const base::Error&) {
    return false;
  }
}

void EnsureConnection(Session& session, WorkingForm* form) {
  ConnectionCheck check;
  check.form = form;
  check.reconnect = !session.transaction_held;
  const std::string answer = SQLConnectionCheck(session, check);
  if (answer.empty()) return;
  if (answer == kNotKnown && session.SharedConnection().State() == ConnectionState::kOpen) return;
  throw base::Error(base::error_number::kDataAccess, answer);
}

void RestoreConnection(Session& session, WorkingForm* form) {
  if (!session.state().primary_connection_string.empty()) {
    EnsureConnection(session, form);
    return;
  }
  if (ConnectionAnswers(session)) return;
  if (session.transaction_held || session.shared_connection_string.empty()) {
    throw base::Error(base::error_number::kDataAccess, kNotPresent);
  }
  std::unique_ptr<Connection> connection = session.ports().database.CreateConnection();
  connection->SetConnectionString(Unscramble(session.shared_connection_string));
  connection->Open();
  session.ShareConnection(std::move(connection), session.shared_connection_string);
}

}  // namespace quenta::session
