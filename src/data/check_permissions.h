// Whether a user holds a numbered security policy of the suite.
#pragma once

#include <string>

#include "component/session/session.h"

namespace quenta::controls {
class Form;
}

namespace quenta::data {

// True when the user holds the policy ("#2282"), compared as exact text. The user's policies are read once and kept. An
// empty user name, and any error (which is reported), give false. The form is the one that asks, null for none: a
// reconnect is shown over it.
bool CheckSecurityPolicy(session::Session& session, const std::string& user_name, const std::string& policy_code,
                         controls::Form* form);

// The condition over a column of granted and excluded users and groups that selects the user's policies: the grants,
// and with the exclusion flag the exclusions too. Empty when the user belongs to no group, who then holds no policy.
std::string ReadPermitionsDef(session::Session& session, const std::string& user_name, const std::string& column,
                              bool exclusion, controls::Form* form);

}  // namespace quenta::data
