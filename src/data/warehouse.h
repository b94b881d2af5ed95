// The warehouse that this workstation works for.
#pragma once

#include <cstdint>
#include <optional>

#include "component/session/session.h"

namespace quenta::data {

// The setting "Armazem", an armazem_id. Nothing when it is missing, empty, or no whole number of 32 bits: then no
// warehouse restricts the workstation.
std::optional<std::int32_t> CurrentWarehouse(session::Session& session);

}  // namespace quenta::data
