// The suite's settings of this computer, as the suite's own host reads them before it calls Login.
#pragma once

#include <optional>

#include "sandbox/host/server_list.h"

namespace quenta::sandbox::host {

// Nothing when the suite was never set up here, or a setting is missing.
std::optional<Server> ReadMachineServer();

}  // namespace quenta::sandbox::host
