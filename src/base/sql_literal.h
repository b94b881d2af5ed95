// Pieces of SQL text that are safe whatever they hold, in the one form that every server of the suite reads.
#pragma once

#include <string>
#include <string_view>

#include "base/value.h"

namespace quenta::base {

// The text with every single quote closing the literal, appended through CHAR(39) and opening it again:
// Vinha d'Alho gives Vinha d' + CHAR(39) + 'Alho.
std::string SqlSafeText(std::string_view text);

// The expression that the server reads as this very text, whatever it holds: the same between quotes. It would take a
// backslash before a line end (LF or CR LF) for a continued line and drop both, so these stand in two pieces,
// 'C:\' + '…'; and it cuts what is joined from pieces at 8000 bytes, so several pieces of a longer text begin with
// CONVERT(VARCHAR(MAX), '') + . Bytes are the server's, of Windows-1252: one for each UTF-16 unit.
std::string SqlTextLiteral(std::string_view text);

// CONVERT(DATETIME,'2017-12-31',102), with the time of day when asked for; "null" for 1 January 1900 and for the zero
// date, which both stand for no date.
std::string SqlDateLiteral(Date date, bool with_time);

}  // namespace quenta::base
