// The small queries that every form needs.
#pragma once

#include "base/value.h"
#include "component/session/session.h"
#include "component/session/transaction.h"

namespace quenta::data {

// The server's date and time; 1 January 1900 when it cannot be asked.
base::Date ServerDate(session::Session& session);

using session::InTransaction;

}  // namespace quenta::data
