// Pieces of SQL text that are safe whatever they hold, in the one form that every server of the suite reads.
#pragma once

#include <string>
#include <string_view>

#include "base/value.h"

namespace quenta::base {

// The text with every single quote closing the literal, appended through CHAR(39) and opening it again:
// Vinha d'Alho gives Vinha d' + CHAR(39) + 'Alho.
std::string SqlSafeText(std::string_view text);

// The same between quotes.
std::string SqlTextLiteral(std::string_view text);

// CONVERT(DATETIME,'2017-12-31',102), with the time of day when asked for; "null" for 1 January 1900 and for the zero
// date, which both stand for no date.
std::string SqlDateLiteral(Date date, bool with_time);

}  // namespace quenta::base
