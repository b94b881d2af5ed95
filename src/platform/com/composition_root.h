// Where the component is put together from its parts.
#pragma once

#include <memory>

#include "platform/com/composition.h"

namespace quenta::platform {

// The component as it ships: ADO, Windows' settings and windows, the suite's error reporting.
// Throws when the system refuses something it needs.
std::unique_ptr<Composition> ComposeComponent();

}  // namespace quenta::platform
