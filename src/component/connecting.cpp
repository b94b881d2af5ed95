#include "component/connecting.h"

#include <memory>
#include <optional>
#include <utility>

#include "base/error.h"
#include "base/text.h"
#include "component/session/connection_keeper.h"
#include "component/session/connection_string.h"
#include "component/session/scrambler.h"
#include "data/registry.h"

namespace quenta::component {
namespace {

using ports::Connection;
using ports::ConnectionState;
using session::BuildConnectionString;
using session::Scramble;
using session::SessionState;
using session::Unscramble;

// One at a time: while SQLConnect waits, the host's messages run and may bring a second call.
class ConnectingMark {
 public:
  explicit ConnectingMark(Component& component) : component_(component) { component_.connecting = true; }
  ~ConnectingMark() { component_.connecting = false; }
  ConnectingMark(const ConnectingMark&) = delete;
  ConnectingMark& operator=(const ConnectingMark&) = delete;

 private:
  Component& component_;
};

// A line that died goes on saying that it is open until a statement fails on it.
bool SessionIsOpen(session::Session& session) {
  return session.state().connected && session::ConnectionAnswers(session);
}

// No other connection takes the place of a dead one under a transaction of ours: what the operation still writes would
// then be written outside of it. While another call waits, that one decides what the session is.
bool MayConnect(Component& component) {
  return !component.connecting && !component.session().transaction_held;
}

// A connection that is tried and then closed again. Whatever fails about it only makes it not open.
class TestConnection {
 public:
  TestConnection(ports::Database& database, const std::string& connection_string) {
    try {
      connection_ = database.CreateConnection();
      connection_->SetConnectionString(connection_string);
      connection_->OpenAsync();
    } catch (const base::Error&) {
      connection_.reset();
    }
  }
  ~TestConnection() {
    try {
      if (connection_) connection_->Close();
    } catch (const base::Error&) {
      // It only served to find out; its end changes nothing.
    }
  }
  TestConnection(const TestConnection&) = delete;
  TestConnection& operator=(const TestConnection&) = delete;

  ConnectionState State() const {
    try {
      return connection_ ? connection_->State() : ConnectionState::kClosed;
    } catch (const base::Error&) {
      return ConnectionState::kClosed;
    }
  }
  bool IsOpen() const { return State() == ConnectionState::kOpen; }

 private:
  std::unique_ptr<Connection> connection_;
};

enum class Server { kNone, kPrimary, kSecondary };

// Tries both servers at once; the primary wins a tie. A secondary string that is empty is not tried.
Server RaceServers(const session::Ports& ports, const std::string& primary, const std::string& secondary) {
  const TestConnection a(ports.database, primary);
  std::optional<TestConnection> b;
  if (!secondary.empty()) b.emplace(ports.database, secondary);
  while (true) {
    const ConnectionState state_a = a.State();
    const ConnectionState state_b = b ? b->State() : ConnectionState::kClosed;
    if (state_a == ConnectionState::kOpen) return Server::kPrimary;
    if (state_b == ConnectionState::kOpen) return Server::kSecondary;
    // Their sum below the state "connecting" means that neither is still trying.
    if (static_cast<int>(state_a) + static_cast<int>(state_b) < static_cast<int>(ConnectionState::kConnecting)) {
      return Server::kNone;
    }
    if (!ports.desktop.PumpMessages()) return Server::kNone;
  }
}

bool CredentialsHold(const session::Ports& ports, const std::string& connection_string) {
  const TestConnection user(ports.database, connection_string);
  while (user.State() == ConnectionState::kConnecting) {
    if (!ports.desktop.PumpMessages()) return false;
  }
  return user.IsOpen();
}

// The same catalogue, with a server in common: mirrors of one database are told by no other sign.
bool IsSameDatabase(const SessionState& a, const SessionState& b) {
  const auto has = [](const SessionState& state, const std::string& server) {
    return !server.empty() && (base::EqualIgnoreCase(state.primary_data_source, server) ||
                               base::EqualIgnoreCase(state.secondary_data_source, server));
  };
  return base::EqualIgnoreCase(a.initial_catalog, b.initial_catalog) &&
         (has(a, b.primary_data_source) || has(a, b.secondary_data_source));
}

// Identifiers mean other products in another database: a form that is open would save there what it has read here.
void RequireNoForms(Component& component, const SessionState& next) {
  const SessionState& former = component.session().state();
  if (!former.connected || IsSameDatabase(former, next) || !component.product_forms().AnyLoaded()) return;
  throw base::Error(base::error_number::kInvalidCall,
                    "Há fichas abertas de outra base de dados. Feche-as antes de mudar de ligação.");
}

void Enter(session::Session& session, SessionState next) {
  if (!IsSameDatabase(session.state(), next)) session.policies.clear();
  session.state() = std::move(next);
}

// The shared connection stays what it was until another one is open.
void OpenSharedConnection(session::Session& session, const std::string& connection_string) {
  std::string scrambled = Scramble(connection_string);
  std::unique_ptr<Connection> connection = session.ports().database.CreateConnection();
  connection->SetConnectionString(connection_string);
  connection->Open();
  session.ShareConnection(std::move(connection), std::move(scrambled));
}

bool OpensWith(ports::Database& database, const std::string& connection_string) {
  const std::unique_ptr<Connection> test = database.CreateConnection();
  try {
    test->SetConnectionString(connection_string);
    test->Open();
    return !test->ConnectionString().empty();
  } catch (const base::Error&) {
    return false;
  }
}

}  // namespace

bool ConnectWithArguments(Component& component, const SQLConnectArguments& arguments) {
  session::Session& session = component.session();
  if (SessionIsOpen(session)) return true;
  if (!MayConnect(component)) return false;
  const ConnectingMark mark(component);

  SessionState next = session.state();
  if (arguments.oFlags == 0) next.application_key = "Contabilidade";
  if (arguments.oFlags == 1) next.application_key = "Sarvat";
  next.security_info = "False";
  next.database_user = arguments.cnUser;
  next.database_password = arguments.cnPassword;
  next.initial_catalog = arguments.cnInitialCatalog;
  next.primary_data_source = arguments.cnDataSource;
  next.secondary_data_source =
      arguments.cnDataSourceSecondary == arguments.cnDataSource ? std::string() : arguments.cnDataSourceSecondary;
  RequireNoForms(component, next);

  const auto shared_string = [&](const std::string& server) {
    return BuildConnectionString({next.security_info, next.database_user, Unscramble(next.database_password), true,
                                  next.initial_catalog, server});
  };
  next.primary_connection_string = Scramble(shared_string(next.primary_data_source));
  next.secondary_connection_string = Scramble(shared_string(next.secondary_data_source));

  const session::Ports& ports = session.ports();
  const Server winner =
      RaceServers(ports, Unscramble(next.primary_connection_string),
                  next.secondary_data_source.empty() ? std::string() : Unscramble(next.secondary_connection_string));
  if (winner == Server::kNone) return false;
  next.on_secondary = winner == Server::kSecondary;

  const std::string& server = next.on_secondary ? next.secondary_data_source : next.primary_data_source;
  if (!CredentialsHold(ports, BuildConnectionString({next.security_info, arguments.User, Unscramble(arguments.Password),
                                                     true, next.initial_catalog, server}))) {
    return false;
  }
  next.session_user = arguments.User;
  next.session_password = arguments.Password;
  OpenSharedConnection(
      session, Unscramble(next.on_secondary ? next.secondary_connection_string : next.primary_connection_string));
  next.connected = true;
  Enter(session, std::move(next));
  return true;
}

bool ConnectWithSettings(Component& component, const std::string& user, const std::string& password) {
  session::Session& session = component.session();
  if (SessionIsOpen(session)) return true;
  if (!MayConnect(component)) return false;
  const ConnectingMark mark(component);

  data::Registry registry(session.ports());
  const auto read = [&](const std::string& key, const char* name) {
    const base::Value value = registry.ObterValorString(key, name);
    return value.is_null() ? std::nullopt : std::optional<std::string>(value.text());
  };
  const auto application_key = read(R"(HKEY_LOCAL_MACHINE\SOFTWARE\Ambrell\Shared\OUT)", "DataServer");
  // An empty name would be a key path that ends in a backslash, which is refused with a message.
  if (!application_key || application_key->empty()) return false;
  const std::string key = R"(HKEY_LOCAL_MACHINE\SOFTWARE\Ambrell\)" + *application_key;
  const auto security_info = read(key, "dtSecurityInfo");
  const auto database_user = read(key, "dtUser");
  const auto database_password = read(key, "dtPassword");
  const auto initial_catalog = read(key, "dtInitialCatalog");
  const auto data_source = read(key, "dtDataSource");
  if (!security_info || !database_user || !database_password || !initial_catalog || !data_source) return false;

  const auto connection_string = [&](const std::string& who, const std::string& scrambled_password) {
    return BuildConnectionString(
        {*security_info, who, Unscramble(scrambled_password), false, *initial_catalog, *data_source});
  };
  SessionState target;
  target.initial_catalog = *initial_catalog;
  target.primary_data_source = *data_source;
  RequireNoForms(component, target);
  if (!OpensWith(session.ports().database, connection_string(user, password))) return false;
  if (!session::ConnectionAnswers(session)) {
    OpenSharedConnection(session, connection_string(*database_user, *database_password));
  }

  // What SQLConnect left for the keeper is good for the same database only.
  SessionState next = session.state();
  if (next.primary_data_source != *data_source || next.initial_catalog != *initial_catalog) next = {};
  next.on_secondary = false;
  next.connected = true;
  next.session_user = user;
  next.session_password = password;
  next.application_key = *application_key;
  next.security_info = *security_info;
  next.database_user = *database_user;
  next.database_password = *database_password;
  next.initial_catalog = *initial_catalog;
  next.primary_data_source = *data_source;
  Enter(session, std::move(next));
  return true;
}

}  // namespace quenta::component
