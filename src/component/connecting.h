// The two ways to open the session: with settings from the host, racing two servers, or with the suite's own settings.
#pragma once

#include <string>

#include "component/component.h"
#include "component/general.h"

namespace quenta::component {

// Both answer true at once while the session is open and its connection answers, and false at once where no connection
// may be opened: while the other or the same waits, and under a transaction of ours on a dead line. Another database is
// refused while forms are open. A call that fails or throws leaves session and shared connection as they were.

// Races the primary and the secondary server, checks the user's credentials on the winner, and opens the shared
// connection there. True when the session is open; false when no server answered or the credentials failed. Throws what
// is unexpected: the shared connection's own open.
bool ConnectWithArguments(Component& component, const SQLConnectArguments& arguments);

// Reads the settings from the registry, checks the user's credentials, and opens the shared connection. False when a
// setting is missing or the credentials fail.
bool ConnectWithSettings(Component& component, const std::string& user, const std::string& password);

}  // namespace quenta::component
