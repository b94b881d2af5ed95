// Conversions between values with the suite's rules: rounding to the even neighbour, overflow as error 6, type mismatch
// as error 13, Null refused with error 94. Text follows the user's locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/locale.h"
#include "base/value.h"

namespace quenta::base {

// The number in a text as a user types it or a formatted field shows it: thousands separators (the locale's, point
// when the decimal separator is another sign, blank, no-break and narrow no-break space, apostrophe), a currency sign
// on either side, a leading or trailing minus, parentheses, a decimal exponent. Nothing when it is not one number.
std::optional<double> ParseNumber(std::string_view text, const Locale& locale);

// The number that a user typed, whose decimal separator is "." or ",": the one that stands last when both do, and none
// when one of them stands several times (it then separates thousands). Otherwise as ParseNumber. Infinite when it is
// larger than any double; nothing when it is no number.
std::optional<double> ParseTypedNumber(std::string_view text, const Locale& locale);

// A number as statements take it: the text itself where it is that number with a point and nothing else, or else the
// number's own text.
std::string PlainNumberText(std::string text, double number);

// The date and time in a text: numeric parts separated by "-", "/" or ".", in the locale's order or year first, with
// an optional time of day. Nothing when there is no such date.
std::optional<Date> ParseDate(std::string_view text, const Locale& locale);

// Text of a value: numbers with the locale's decimal separator and without thousands separators, True and False,
// dates in the short form (with the time when there is one), Empty as "".
std::string ToText(const Value& value, const Locale& locale);
// The same; a value that is text gives its text away.
std::string ToText(Value&& value, const Locale& locale);

// Text of a number with a point: up to 15 significant digits for double, 7 for single precision, scientific outside
// that range ("1E+15").
std::string NumberText(double number);
std::string NumberText(float number);

// Exact decimal text with a point, without trailing zeros.
std::string NumberText(Currency amount);
std::string NumberText(const Decimal& number);

std::int32_t ToLong(const Value& value, const Locale& locale);
float ToSingle(const Value& value, const Locale& locale);
double ToDouble(const Value& value, const Locale& locale);
Date ToDate(const Value& value, const Locale& locale);
bool ToBoolean(const Value& value, const Locale& locale);

// A 32-bit integer, rounded to the nearest, ties to even. Error 6 when it does not fit.
std::int32_t RoundToLong(double number);

// Rounded to this many decimals, ties to the even neighbour. A number too large to have decimals stays as it is.
double RoundHalfEven(double number, int decimals);

// Whether the conversions above would take it. Empty counts as the number 0; Null, dates and True/False do not follow
// from text rules: a Boolean is a number, a date is not, Null is neither.
bool IsNumeric(const Value& value, const Locale& locale);
bool IsDate(const Value& value, const Locale& locale);

// How the suite reads a flag column: on when it is neither Null nor 0 (nor a text that is no number).
bool IsNonZero(const Value& value);

}  // namespace quenta::base
