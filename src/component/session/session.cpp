#include "component/session/session.h"

#include <utility>

#include "component/session/connection_keeper.h"

namespace quenta::session {

ports::Connection& Session::SharedConnection() {
  if (!shared_connection_) shared_connection_ = ports_.database.CreateConnection();
  return *shared_connection_;
}

void Session::ShareConnection(std::unique_ptr<ports::Connection> connection, std::string scrambled_string) noexcept {
  shared_connection_ = std::move(connection);
  TrustLine();
  shared_connection_string = std::move(scrambled_string);
}

// A field or a page reads without asking the keeper; without this, all that the user did next would fail as well.
void Session::RestoreDoubtfulLine() {
  if (!line_in_doubt_ || transaction_held) return;
  RestoreConnection(*this, nullptr);
  TrustLine();
}

ports::RowSet Session::Query(const std::string& sql) {
  RestoreDoubtfulLine();
  DoubtLine();
  ports::RowSet rows = SharedConnection().Query(sql);
  TrustLine();
  return rows;
}

void Session::Execute(const std::string& sql) {
  RestoreDoubtfulLine();
  DoubtLine();
  SharedConnection().Execute(sql);
  TrustLine();
}

void Session::DropConnection() noexcept {
  shared_connection_.reset();
  DoubtLine();
}

void Session::ReleaseConnection() noexcept {
  TrustLine();
  state_ = {};
  shared_connection_string.clear();
  shared_connection_.reset();
}

const base::Locale& Session::locale() {
  if (!locale_) locale_ = std::make_unique<base::Locale>(ports_.settings.UserLocale());
  return *locale_;
}

std::optional<std::string> Session::SettingsKey() const {
  if (state_.application_key.empty()) return std::nullopt;
  return R"(HKEY_LOCAL_MACHINE\SOFTWARE\Ambrell\)" + state_.application_key;
}

}  // namespace quenta::session
