// What deleting a product from its own form and from its main product's list of dependants have in common.
#pragma once

#include <string>

#include "component/session/session.h"
#include "controls/form.h"

namespace quenta::product {

// Whether the session's user may delete products. The user has been told when not.
bool MayDeleteProducts(session::Session& session, controls::Form& over);

// The product's row stays, marked and without its notes; its price, stock and minimum rows go. The identifier is in
// decimal. All or nothing only inside a transaction of the caller.
void DeleteSoftly(session::Session& session, const std::string& produto_id);

}  // namespace quenta::product
