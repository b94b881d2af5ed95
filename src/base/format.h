// Shows a value by a format pattern of the suite, such as "#,##0.00;- #,##0.00" or "dd-mm-yyyy Hh:Nn:Ss".
#pragma once

#include <string>
#include <string_view>

#include "base/locale.h"
#include "base/value.h"

namespace quenta::base {

// Number patterns: "0" and "#" are digits, "," between digits asks for thousands separators, "." is the decimal
// separator, "%" multiplies by 100, ";" starts the pattern of negative numbers (which then writes its own minus),
// everything else stands as it is. Rounds half away from zero on the decimal digits of the number.
// Date patterns: d, dd, m, mm, mmmm, yy, yyyy, h, hh, n, nn, s, ss in either case.
// A text that is neither number nor date is returned as it is; Null and Empty give "".
std::string Format(const Value& value, std::string_view pattern, const Locale& locale);

}  // namespace quenta::base
