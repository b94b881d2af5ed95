// Where support wants its log of all statements.
#pragma once

#include <string>

#include "ports/settings.h"

namespace quenta::data {

// The path of the file; empty for none. Read from the machine's registry alone: neither the shadow file, which any user
// can write, nor a reference can switch the log on, and a damaged setting is as good as none and shows no message.
std::string StatementLogPath(ports::Settings& settings);

}  // namespace quenta::data
