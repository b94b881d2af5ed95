// The session of one loaded component: who is connected to what, and the one connection on which every query runs.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "component/session/ports.h"

namespace quenta::session {

// The values that a successful SQLConnect or Login leaves behind. Passwords and the two connection strings are held
// scrambled (scrambler.h).
struct SessionState {
  bool connected = false;
  std::string session_user;
  std::string session_password;
  std::string application_key;  // subkey of the suite's registry key: "Contabilidade", "Sarvat", …
  std::string security_info;
  std::string database_user;
  std::string database_password;
  std::string initial_catalog;
  std::string primary_data_source;
  std::string secondary_data_source;  // empty when it is the primary one
  std::string primary_connection_string;
  std::string secondary_connection_string;
  bool on_secondary = false;

  bool operator==(const SessionState&) const = default;
};

class Session {
 public:
  explicit Session(const Ports& ports) : ports_(ports) {}
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  const Ports& ports() const noexcept { return ports_; }
  SessionState& state() noexcept { return state_; }
  const SessionState& state() const noexcept { return state_; }

  // The shared connection, created closed on first use. Never closed by the component's operations, but SQLConnect and
  // Login may put another in its place: whoever lets the host process messages asks for it anew afterwards.
  ports::Connection& SharedConnection();

  // Makes an open connection the shared one, in place of what was; its whole connection string comes scrambled.
  void ShareConnection(std::unique_ptr<ports::Connection> connection, std::string scrambled_string) noexcept;

  // Runs a statement on the shared connection. After one that failed the line is in doubt: the next one, outside of a
  // transaction of ours, finds out first whether it answers, and restores it (connection_keeper.h).
  ports::RowSet Query(const std::string& sql);
  void Execute(const std::string& sql);
  // The same doubt before a call that is made on the connection itself; the next statement that succeeds ends it.
  void DoubtLine() noexcept { line_in_doubt_ = true; }
  void TrustLine() noexcept { line_in_doubt_ = false; }

  // Lets go of the shared connection as it stands, whatever is open on it; the next use makes a new one, which is
  // closed.
  void DropConnection() noexcept;

  // Lets go of the shared connection and ends the session: COM is about to end, nothing may outlive it.
  void ReleaseConnection() noexcept;

  // The user's regional conventions, read once.
  const base::Locale& locale();

  // What the shared connection was last opened with, or tried with, scrambled: an open connection forgets its password,
  // and opening it again needs the whole string.
  std::string shared_connection_string;
  // Set by the reconnect protocol to end a wait for the connection; cleared before every wait.
  bool cancel_reconnect = false;
  // Takes all input from the component's forms as long as what it makes lives; set by whoever has the forms.
  std::function<std::shared_ptr<void>()> hold_input;
  // True while an operation of ours has a transaction open (transaction.h).
  bool transaction_held = false;
  // Codes of the policies that a user holds in the session's database, by user name; filled by loads that completed.
  std::map<std::string, std::vector<std::string>> policies;

  // The session's subkey of the suite's registry key, as settings are looked up; nothing while the session has none (a
  // SQLConnect that is to keep the key of before, when there was none).
  std::optional<std::string> SettingsKey() const;

 private:
  void RestoreDoubtfulLine();

  Ports ports_;
  SessionState state_;
  std::unique_ptr<ports::Connection> shared_connection_;
  bool line_in_doubt_ = false;
  std::unique_ptr<base::Locale> locale_;
};

}  // namespace quenta::session
