// A usable shared connection for the queries of a form.
#pragma once

#include "component/session/session.h"

namespace quenta::controls {
class Form;
}

namespace quenta::data {

// session::EnsureConnection for the form whose work it is, which lives at least as long as the call; null for none.
void EnsureConnection(session::Session& session, controls::Form* form);

// session::RestoreConnection for a form.
void RestoreConnection(session::Session& session, controls::Form& form);

}  // namespace quenta::data
