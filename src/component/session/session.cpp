#include "component/session/session.h"

#include <utility>

namespace quenta::session {

ports::Connection& Session::SharedConnection() {
  if (!shared_connection_) shared_connection_ = ports_.database.CreateConnection();
  return *shared_connection_;
}

void Session::ShareConnection(std::unique_ptr<ports::Connection> connection, std::string scrambled_string) noexcept {
  shared_connection_ = std::move(connection);
  shared_connection_string = std::move(scrambled_string);
}

void Session::ReleaseConnection() noexcept {
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
