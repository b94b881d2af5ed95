// The server's conversions between column types, on values as SQLite stores them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "sandbox/odbc/sql_type.h"

namespace quenta::sandbox {

// A value as SQLite holds it: NULL, an integer, a floating-point number, text. Whole and BIT columns are integers;
// money and decimals are numbers rounded to their scale; dates are text, "2017-12-31 14:05:09.000".
using Cell = std::variant<std::monostate, std::int64_t, double, std::string>;

enum class Conversion {
  kAssign,   // into a column: what does not fit is an error
  kCompare,  // between the two sides of a comparison or an operation: nothing is cut
  kConvert,  // CONVERT and CAST: text is cut silently
};

// Converts by the server's rules. Throws ServerError with the server's own message. `style` is CONVERT's third
// argument; `place` names the column that is assigned to as a message does ("table 't', column 'c'").
Cell ConvertCell(const Cell& cell, const SqlType& from, const SqlType& to, Conversion conversion, int style = 0,
                 std::string_view place = {});

// Decimal digits of a number, rounded half away from zero to `scale` places: ("2.345", 2) gives "2.35", ("-0.4", 0)
// gives "0". Takes plain and exponent notation.
std::string RoundDecimal(std::string_view number, int scale);

// Shortest text from which the same double is read again; never exponent notation where a decimal could follow.
std::string DoubleText(double number);

// One of year, quarter, month, day, hour, minute, second, millisecond. Throws ServerError for another name.
std::string AddToDate(std::string_view part, std::int64_t count, const std::string& date);
std::int64_t DatePart(std::string_view part, const std::string& date);

// a / b and a % b: whole numbers stay whole; error 8134 when b is 0.
Cell Divide(const Cell& a, const Cell& b);
Cell Modulo(const Cell& a, const Cell& b);

}  // namespace quenta::sandbox
