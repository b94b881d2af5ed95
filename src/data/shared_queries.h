// The small queries that every form needs.
#pragma once

#include "base/value.h"
#include "component/session/session.h"

namespace quenta::data {

// The server's date and time; 1 January 1900 when it cannot be asked.
base::Date ServerDate(session::Session& session);

// Whether a transaction is open on the shared connection; false without a query when that is closed.
bool InTransaction(session::Session& session);

}  // namespace quenta::data
