#include "sandbox/odbc/conversion.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "base/text.h"
#include "sandbox/odbc/code_page.h"
#include "sandbox/odbc/server_error.h"

namespace quenta::sandbox {
namespace {

constexpr int kExactDigits = 15;  // decimal digits that a double keeps

[[noreturn]] void RaiseConversionFailed(const SqlType& from, std::string_view value, const SqlType& to) {
  throw ServerError(message::kConversionFailed, "Conversion failed when converting the " + TypeName(from) + " value '" +
                                                    std::string(value) + "' to data type " + TypeName(to) + ".");
}

[[noreturn]] void RaiseConvertingError(const SqlType& from, const SqlType& to) {
  throw ServerError(message::kConvertingError,
                    "Error converting data type " + TypeName(from) + " to " + TypeName(to) + ".");
}

[[noreturn]] void RaiseOverflow(std::string_view from, const SqlType& to) {
  throw ServerError(message::kOverflow, "Arithmetic overflow error converting " + std::string(from) + " to data type " +
                                            TypeName(to) + ".");
}

[[noreturn]] void RaiseDateSyntax() {
  throw ServerError(message::kDateSyntax, "Conversion failed when converting date and/or time from character string.");
}

[[noreturn]] void RaiseDateRange(const SqlType& from, const SqlType& to) {
  throw ServerError(message::kDateRange, "The conversion of a " + TypeName(from) + " data type to a " + TypeName(to) +
                                             " data type resulted in an out-of-range value.");
}

[[noreturn]] void RaiseNotAllowed(const SqlType& from, const SqlType& to) {
  throw ServerError(message::kImplicitConversion, "Implicit conversion from data type " + TypeName(from) + " to " +
                                                      TypeName(to) +
                                                      " is not allowed. Use the CONVERT function to run this query.");
}

std::optional<double> ParseDouble(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number)) return std::nullopt;
  return number;
}

// Sign, digits and one point, nothing else: what the server takes for DECIMAL and MONEY.
bool IsPlainNumber(std::string_view text) {
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
  bool digits = false;
  bool point = false;
  for (const char c : text) {
    if (c >= '0' && c <= '9') {
      digits = true;
    } else if (c == '.' && !point) {
      point = true;
    } else {
      return false;
    }
  }
  return digits;
}

// Digits of the number as a person would write them: a double has 15 that count.
std::string DecimalDigits(double number) {
  std::array<char, 64> buffer;
  const auto [end, error] =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::general, kExactDigits);
  return error == std::errc() ? std::string(buffer.data(), end) : std::string("0");
}

struct IntegerRange {
  std::int64_t lowest;
  std::int64_t highest;
};

IntegerRange RangeOf(SqlKind kind) {
  switch (kind) {
    case SqlKind::kTinyInt:
      return {0, 255};
    case SqlKind::kSmallInt:
      return {std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max()};
    case SqlKind::kInt:
      return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};
    default:
      return {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()};
  }
}

std::int64_t InRange(std::int64_t number, const SqlType& to) {
  const IntegerRange range = RangeOf(to.kind);
  if (number >= range.lowest && number <= range.highest) return number;
  if (to.kind == SqlKind::kTinyInt || to.kind == SqlKind::kSmallInt)
    throw ServerError(message::kSmallOverflow, "Arithmetic overflow error for data type " + TypeName(to) +
                                                   ", value = " + base::DecimalText(number) + ".");
  RaiseOverflow("expression", to);
}

std::int64_t IntegerFromText(const std::string& text, const SqlType& from, const SqlType& to) {
  std::string_view digits = base::Trim(text);
  if (digits.starts_with('+')) digits.remove_prefix(1);
  if (digits.empty()) return 0;
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (end != digits.data() + digits.size() || error == std::errc::invalid_argument)
    RaiseConversionFailed(from, text, to);
  const IntegerRange range = RangeOf(to.kind);
  if (error == std::errc::result_out_of_range || number < range.lowest || number > range.highest)
    throw ServerError(message::kTextOverflow, "The conversion of the " + TypeName(from) + " value '" + text +
                                                  "' overflowed an " + TypeName(to) + " column.");
  return number;
}

Cell ToInteger(const Cell& cell, const SqlType& from, const SqlType& to) {
  if (const auto* integer = std::get_if<std::int64_t>(&cell)) return InRange(*integer, to);
  if (const auto* text = std::get_if<std::string>(&cell)) return IntegerFromText(*text, from, to);
  double number = std::get<double>(cell);
  // The server rounds money and cuts decimals and floats.
  number = from.kind == SqlKind::kMoney || from.kind == SqlKind::kSmallMoney ? std::round(number) : std::trunc(number);
  if (!(std::abs(number) < 9.2e18)) RaiseOverflow("expression", to);
  return InRange(static_cast<std::int64_t>(number), to);
}

Cell ToBit(const Cell& cell, const SqlType& from, const SqlType& to) {
  if (const auto* integer = std::get_if<std::int64_t>(&cell)) return std::int64_t{*integer != 0};
  if (const auto* number = std::get_if<double>(&cell)) return std::int64_t{*number != 0};
  const std::string& text = std::get<std::string>(cell);
  const std::string_view word = base::Trim(text);
  if (base::EqualIgnoreCase(word, "true")) return std::int64_t{1};
  if (base::EqualIgnoreCase(word, "false")) return std::int64_t{0};
  return std::int64_t{IntegerFromText(text, from, to) != 0};
}

std::string NumberDigits(const Cell& cell) {
  if (const auto* integer = std::get_if<std::int64_t>(&cell)) return base::DecimalText(*integer);
  if (const auto* number = std::get_if<double>(&cell)) return DecimalDigits(*number);
  return std::string(base::Trim(std::get<std::string>(cell)));
}

// A number rounded to the scale and held to `whole_digits` before the point.
Cell ToFixedPoint(const Cell& cell, const SqlType& to, int scale, int whole_digits, std::string_view from_name) {
  const std::string rounded = RoundDecimal(NumberDigits(cell), scale);
  std::string_view digits = rounded;
  if (digits.starts_with('-')) digits.remove_prefix(1);
  const std::size_t point = digits.find('.');
  const std::size_t whole = point == std::string_view::npos ? digits.size() : point;
  const std::size_t significant_whole = digits.starts_with('0') ? 0 : whole;
  if (significant_whole > static_cast<std::size_t>(whole_digits)) RaiseOverflow(from_name, to);
  if (significant_whole + (point == std::string_view::npos ? 0 : digits.size() - point - 1) >
      static_cast<std::size_t>(kExactDigits))
    throw ServerError(message::kSandboxLimit, "The sandbox keeps decimal numbers to 15 digits only.");
  return *ParseDouble(rounded);
}

Cell ToDecimal(const Cell& cell, const SqlType& from, const SqlType& to) {
  if (from.is_text() && !IsPlainNumber(base::Trim(std::get<std::string>(cell)))) RaiseConvertingError(from, to);
  return ToFixedPoint(cell, to, to.scale, to.precision - to.scale, from.is_integer() ? TypeName(from) : "numeric");
}

Cell ToMoney(const Cell& cell, const SqlType& from, const SqlType& to) {
  if (from.is_text() && !IsPlainNumber(base::Trim(std::get<std::string>(cell))))
    throw ServerError(message::kMoneySyntax,
                      "Cannot convert a char value to money. The char value has incorrect syntax.");
  Cell amount = ToFixedPoint(cell, to, 4, 15, "expression");
  const double limit = to.kind == SqlKind::kMoney ? 922337203685477.5807 : 214748.3647;
  if (std::abs(std::get<double>(amount)) > limit) RaiseOverflow("expression", to);
  return amount;
}

Cell ToFloat(const Cell& cell, const SqlType& from, const SqlType& to) {
  double number = 0;
  if (const auto* integer = std::get_if<std::int64_t>(&cell)) {
    number = static_cast<double>(*integer);
  } else if (const auto* real = std::get_if<double>(&cell)) {
    number = *real;
  } else {
    const std::string_view text = base::Trim(std::get<std::string>(cell));
    const std::optional<double> parsed = text.empty() ? 0.0 : ParseDouble(text);
    if (!parsed) RaiseConvertingError(from, to);
    number = *parsed;
  }
  if (to.kind == SqlKind::kReal) {
    if (std::abs(number) > static_cast<double>(std::numeric_limits<float>::max())) RaiseOverflow("expression", to);
    number = static_cast<double>(static_cast<float>(number));
  }
  return number;
}

// ---- dates

struct Moment {
  std::int64_t day = 0;           // since 1970-01-01
  std::int64_t milliseconds = 0;  // of the day
};

struct Civil {
  std::int64_t year = 1900;
  int month = 1;
  int day = 1;
};

constexpr std::int64_t kMillisecondsPerDay = 86400000;

std::int64_t DayOf(const Civil& civil) {
  const std::int64_t year = civil.year - (civil.month <= 2 ? 1 : 0);
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const std::int64_t year_of_era = year - era * 400;
  const std::int64_t day_of_year = (153 * (civil.month + (civil.month > 2 ? -3 : 9)) + 2) / 5 + civil.day - 1;
  return era * 146097 + year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year - 719468;
}

Civil CivilOf(std::int64_t day) {
  day += 719468;
  const std::int64_t era = (day >= 0 ? day : day - 146096) / 146097;
  const std::int64_t day_of_era = day - era * 146097;
  const std::int64_t year_of_era = (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
  const std::int64_t day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const std::int64_t month = (5 * day_of_year + 2) / 153;
  Civil civil;
  civil.day = static_cast<int>(day_of_year - (153 * month + 2) / 5 + 1);
  civil.month = static_cast<int>(month < 10 ? month + 3 : month - 9);
  civil.year = year_of_era + era * 400 + (civil.month <= 2 ? 1 : 0);
  return civil;
}

int DaysInMonth(std::int64_t year, int month) {
  const Civil next = month == 12 ? Civil{year + 1, 1, 1} : Civil{year, month + 1, 1};
  return static_cast<int>(DayOf(next) - DayOf({year, month, 1}));
}

std::string Padded(std::int64_t number, std::size_t width) {
  std::string text = base::DecimalText(number);
  return text.size() < width ? std::string(width - text.size(), '0') + text : text;
}

std::string StoredDate(const Moment& moment) {
  const Civil civil = CivilOf(moment.day);
  const std::int64_t seconds = moment.milliseconds / 1000;
  return Padded(civil.year, 4) + "-" + Padded(civil.month, 2) + "-" + Padded(civil.day, 2) + " " +
         Padded(seconds / 3600, 2) + ":" + Padded(seconds / 60 % 60, 2) + ":" + Padded(seconds % 60, 2) + "." +
         Padded(moment.milliseconds % 1000, 3);
}

// Brings milliseconds back into the day, rounds as the type stores them, and refuses what the type cannot hold.
Moment InDateRange(Moment moment, const SqlType& from, const SqlType& to) {
  if (to.kind == SqlKind::kSmallDateTime) {
    moment.milliseconds = (moment.milliseconds + 30000) / 60000 * 60000;
  } else {
    // DATETIME counts in 300ths of a second: .000, .003, .007.
    const std::int64_t ticks = (moment.milliseconds * 3 + 5) / 10;
    moment.milliseconds = ticks / 3 * 10 + (ticks % 3 * 10 + 1) / 3;
  }
  if (moment.milliseconds >= kMillisecondsPerDay) {
    moment.milliseconds -= kMillisecondsPerDay;
    ++moment.day;
  }
  const std::int64_t first = to.kind == SqlKind::kDateTime ? DayOf({1753, 1, 1}) : DayOf({1900, 1, 1});
  const std::int64_t last = to.kind == SqlKind::kDateTime ? DayOf({9999, 12, 31}) : DayOf({2079, 6, 6});
  if (moment.day < first || moment.day > last) RaiseDateRange(from, to);
  return moment;
}

std::optional<int> TakeNumber(std::string_view& text, std::size_t shortest, std::size_t longest) {
  std::size_t length = 0;
  int number = 0;
  while (length < text.size() && length < longest && text[length] >= '0' && text[length] <= '9')
    number = number * 10 + (text[length++] - '0');
  if (length < shortest) return std::nullopt;
  text.remove_prefix(length);
  return number;
}

bool TakeSign(std::string_view& text, std::string_view signs) {
  if (text.empty() || signs.find(text[0]) == std::string_view::npos) return false;
  text.remove_prefix(1);
  return true;
}

// "14:05", "14:05:09", "14:05:09.123". Nothing when it is no such text; hours beyond the day come back as they are.
std::optional<std::int64_t> ParseTime(std::string_view text) {
  const std::optional<int> hour = TakeNumber(text, 1, 2);
  if (!hour || !TakeSign(text, ":")) return std::nullopt;
  const std::optional<int> minute = TakeNumber(text, 1, 2);
  if (!minute) return std::nullopt;
  std::optional<int> second = 0;
  std::int64_t milliseconds = 0;
  if (TakeSign(text, ":")) {
    second = TakeNumber(text, 1, 2);
    if (!second) return std::nullopt;
    if (TakeSign(text, ".")) {
      const std::size_t length = text.size();
      const std::optional<int> fraction = TakeNumber(text, 1, 3);
      if (!fraction) return std::nullopt;
      milliseconds = *fraction;
      for (std::size_t digits = length - text.size(); digits < 3; ++digits) milliseconds *= 10;
    }
  }
  if (!text.empty()) return std::nullopt;
  if (*hour > 23 || *minute > 59 || *second > 59) return kMillisecondsPerDay;
  return ((*hour * 60 + *minute) * 60 + *second) * std::int64_t{1000} + milliseconds;
}

// The order of the parts in a text of CONVERT's style; unstyled texts are read year first.
enum class DateOrder { kYearMonthDay, kDayMonthYear, kMonthDayYear };

std::optional<DateOrder> OrderOfStyle(int style) {
  switch (style) {
    case 0:
    case 20:
    case 21:
    case 102:
    case 111:
    case 112:
    case 120:
    case 121:
    case 126:
      return DateOrder::kYearMonthDay;
    case 101:
    case 110:
      return DateOrder::kMonthDayYear;
    case 103:
    case 104:
    case 105:
      return DateOrder::kDayMonthYear;
    default:
      return std::nullopt;
  }
}

std::optional<Civil> TakeDate(std::string_view& text, DateOrder order) {
  std::string_view rest = text;
  if (const std::optional<int> compact = TakeNumber(rest, 8, 8); compact && (rest.empty() || rest[0] == ' ')) {
    text = rest;
    return Civil{*compact / 10000, *compact / 100 % 100, *compact % 100};
  }
  const bool year_first = order == DateOrder::kYearMonthDay;
  const std::optional<int> first = year_first ? TakeNumber(text, 4, 4) : TakeNumber(text, 1, 2);
  if (!first || !TakeSign(text, "-./")) return std::nullopt;
  const std::optional<int> second = TakeNumber(text, 1, 2);
  if (!second || !TakeSign(text, "-./")) return std::nullopt;
  const std::optional<int> third = year_first ? TakeNumber(text, 1, 2) : TakeNumber(text, 4, 4);
  if (!third) return std::nullopt;
  if (year_first) return Civil{*first, *second, *third};
  if (order == DateOrder::kDayMonthYear) return Civil{*third, *second, *first};
  return Civil{*third, *first, *second};
}

Cell DateFromText(const std::string& value, const SqlType& from, const SqlType& to, int style) {
  const std::optional<DateOrder> order = OrderOfStyle(style);
  if (!order)
    throw ServerError(message::kSandboxLimit,
                      "The sandbox does not read dates in style " + base::DecimalText(style) + ".");
  std::string_view text = base::Trim(value);
  if (text.empty()) return StoredDate({DayOf({1900, 1, 1}), 0});
  const std::optional<Civil> civil = TakeDate(text, *order);
  if (!civil) RaiseDateSyntax();
  std::int64_t milliseconds = 0;
  if (!text.empty()) {
    if (!TakeSign(text, " T")) RaiseDateSyntax();
    const std::optional<std::int64_t> time = ParseTime(base::Trim(text));
    if (!time) RaiseDateSyntax();
    milliseconds = *time;
  }
  if (civil->month < 1 || civil->month > 12 || civil->day < 1 || civil->year < 1 || civil->year > 9999 ||
      civil->day > DaysInMonth(civil->year, civil->month) || milliseconds >= kMillisecondsPerDay)
    RaiseDateRange(from, to);
  return StoredDate(InDateRange({DayOf(*civil), milliseconds}, from, to));
}

// A date that this sandbox stored itself.
Moment MomentOf(const std::string& stored) {
  std::string_view text = stored;
  const std::optional<Civil> civil = TakeDate(text, DateOrder::kYearMonthDay);
  if (!civil) RaiseDateSyntax();
  const std::optional<std::int64_t> time = text.empty() ? 0 : ParseTime(base::Trim(text));
  if (!time) RaiseDateSyntax();
  return {DayOf(*civil), *time};
}

Cell ToDate(const Cell& cell, const SqlType& from, const SqlType& to, int style) {
  if (const auto* text = std::get_if<std::string>(&cell)) {
    if (from.is_date()) return StoredDate(InDateRange(MomentOf(*text), from, to));
    return DateFromText(*text, from, to, style);
  }
  const auto* integer = std::get_if<std::int64_t>(&cell);
  const double days = integer ? static_cast<double>(*integer) : std::get<double>(cell);
  if (!(std::abs(days) < 4000000)) RaiseDateRange(from, to);
  const double whole = std::floor(days);
  const auto milliseconds = static_cast<std::int64_t>(std::llround((days - whole) * kMillisecondsPerDay));
  return StoredDate(InDateRange({DayOf({1900, 1, 1}) + static_cast<std::int64_t>(whole), milliseconds}, from, to));
}

std::string DateText(const std::string& stored, int style) {
  const Moment moment = MomentOf(stored);
  const Civil civil = CivilOf(moment.day);
  const std::string year = Padded(civil.year, 4);
  const std::string month = Padded(civil.month, 2);
  const std::string day = Padded(civil.day, 2);
  switch (style) {
    case 101:
      return month + "/" + day + "/" + year;
    case 102:
      return year + "." + month + "." + day;
    case 103:
      return day + "/" + month + "/" + year;
    case 104:
      return day + "." + month + "." + year;
    case 105:
      return day + "-" + month + "-" + year;
    case 108:
      return stored.substr(11, 8);
    case 111:
      return year + "/" + month + "/" + day;
    case 112:
      return year + month + day;
    case 20:
    case 120:
      return stored.substr(0, 19);
    case 21:
    case 121:
      return stored;
    case 0:
    case 100: {
      constexpr std::array kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
      const auto blank_padded = [](std::int64_t number) {
        return (number < 10 ? " " : "") + base::DecimalText(number);
      };
      const std::int64_t hour = moment.milliseconds / 3600000;
      return std::string(kMonths[static_cast<std::size_t>(civil.month - 1)]) + " " + blank_padded(civil.day) + " " +
             year + " " + blank_padded(hour % 12 == 0 ? 12 : hour % 12) + ":" +
             Padded(moment.milliseconds / 60000 % 60, 2) + (hour < 12 ? "AM" : "PM");
    }
    default:
      throw ServerError(message::kSandboxLimit,
                        "The sandbox does not write dates in style " + base::DecimalText(style) + ".");
  }
}

// ---- text

// As the server writes a FLOAT into text: six digits.
std::string FloatText(double number) {
  std::array<char, 64> buffer;
  const auto [end, error] =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::general, 6);
  return error == std::errc() ? std::string(buffer.data(), end) : std::string();
}

std::string TextOf(const Cell& cell, const SqlType& from, int style) {
  if (const auto* integer = std::get_if<std::int64_t>(&cell)) {
    if (from.kind == SqlKind::kMoney || from.kind == SqlKind::kSmallMoney) return base::DecimalText(*integer) + ".00";
    if (from.kind == SqlKind::kDecimal) return RoundDecimal(base::DecimalText(*integer), from.scale);
    return base::DecimalText(*integer);
  }
  if (const auto* number = std::get_if<double>(&cell)) {
    if (from.kind == SqlKind::kMoney || from.kind == SqlKind::kSmallMoney)
      return RoundDecimal(DecimalDigits(*number), 2);
    if (from.kind == SqlKind::kDecimal) return RoundDecimal(DecimalDigits(*number), from.scale);
    return FloatText(*number);
  }
  const std::string& text = std::get<std::string>(cell);
  return from.is_date() ? DateText(text, style) : text;
}

// The first `units` UTF-16 units of a text; a surrogate pair is not split.
std::string FirstUnits(std::string_view text, int units) {
  std::u16string wide = base::ToUtf16(text);
  auto length = static_cast<std::size_t>(units);
  if (wide.size() <= length) return std::string(text);
  if (length > 0 && (wide[length - 1] & 0xFC00) == 0xD800) --length;
  return base::FromUtf16(wide.substr(0, length));
}

// As the server says it since its version 2019; before, it was message 8152 and ended behind "truncated".
[[noreturn]] void RaiseTruncated(std::string_view value, std::string_view place) {
  constexpr int kMostShown = 100;
  throw ServerError(message::kTruncated, "String or binary data would be truncated in " + std::string(place) +
                                             ". Truncated value: '" + FirstUnits(value, kMostShown) + "'.");
}

Cell ToSqlText(const Cell& cell, const SqlType& from, const SqlType& to, Conversion conversion, int style,
               std::string_view place) {
  std::string text = TextOf(cell, from, style);
  if (from.is_national() && !to.is_national()) text = Narrowed(text);
  if (to.size == 0 || conversion == Conversion::kCompare) return text;
  const auto size = static_cast<std::size_t>(to.size);
  const std::size_t length = base::Utf16Length(text);
  if (length > size) {
    std::string shortened = FirstUnits(text, to.size);
    if (!from.is_text() && !from.is_date()) {
      if (conversion == Conversion::kConvert && from.is_integer()) return std::string("*");
      RaiseOverflow(from.is_integer() ? "expression" : TypeName(from), to);
    }
    const bool only_blanks_lost = text.find_first_not_of(' ', shortened.size()) == std::string::npos;
    if (conversion == Conversion::kAssign && !only_blanks_lost) RaiseTruncated(shortened, place);
    return shortened;
  }
  if (to.is_fixed_text()) text.append(size - length, ' ');
  return text;
}

// year, month or day of a date part's name and its abbreviations.
struct PartName {
  std::string_view name;
  std::string_view part;
};
constexpr std::array kPartNames{
    PartName{"year", "year"},       PartName{"yy", "year"},    PartName{"yyyy", "year"},
    PartName{"month", "month"},     PartName{"mm", "month"},   PartName{"m", "month"},
    PartName{"quarter", "quarter"}, PartName{"qq", "quarter"}, PartName{"q", "quarter"},
    PartName{"day", "day"},         PartName{"dd", "day"},     PartName{"d", "day"},
    PartName{"hour", "hour"},       PartName{"hh", "hour"},    PartName{"minute", "minute"},
    PartName{"mi", "minute"},       PartName{"n", "minute"},   PartName{"second", "second"},
    PartName{"ss", "second"},       PartName{"s", "second"},   PartName{"millisecond", "millisecond"},
    PartName{"ms", "millisecond"},
};

std::string_view PartOf(std::string_view name) {
  for (const PartName& row : kPartNames)
    if (base::EqualIgnoreCase(row.name, name)) return row.part;
  throw ServerError(message::kSyntax, "'" + std::string(name) + "' is not a recognized datepart option.");
}

double Number(const Cell& cell) {
  const auto* integer = std::get_if<std::int64_t>(&cell);
  return integer ? static_cast<double>(*integer) : std::get<double>(cell);
}

[[noreturn]] void RaiseDivideByZero() {
  throw ServerError(message::kDivideByZero, "Divide by zero error encountered.");
}

}  // namespace

Cell ConvertCell(const Cell& cell, const SqlType& from, const SqlType& to, Conversion conversion, int style,
                 std::string_view place) {
  if (std::holds_alternative<std::monostate>(cell)) return cell;
  if (to.is_text()) return ToSqlText(cell, from, to, conversion, style, place);
  if (to.is_date()) return ToDate(cell, from, to, style);
  if (from.is_date() && conversion != Conversion::kConvert) RaiseNotAllowed(from, to);
  if (from.is_date()) {
    const Moment moment = MomentOf(std::get<std::string>(cell));
    const double days = static_cast<double>(moment.day - DayOf({1900, 1, 1})) +
                        static_cast<double>(moment.milliseconds) / static_cast<double>(kMillisecondsPerDay);
    return ConvertCell(to.is_integer() ? std::round(days) : days, TypeOf(SqlKind::kFloat), to, conversion, style);
  }
  switch (to.kind) {
    case SqlKind::kBit:
      return ToBit(cell, from, to);
    case SqlKind::kTinyInt:
    case SqlKind::kSmallInt:
    case SqlKind::kInt:
    case SqlKind::kBigInt:
      return ToInteger(cell, from, to);
    case SqlKind::kDecimal:
      return ToDecimal(cell, from, to);
    case SqlKind::kSmallMoney:
    case SqlKind::kMoney:
      return ToMoney(cell, from, to);
    case SqlKind::kReal:
    case SqlKind::kFloat:
      return ToFloat(cell, from, to);
    default:
      return cell;
  }
}

std::string RoundDecimal(std::string_view number, int scale) {
  const bool negative = number.starts_with('-');
  if (negative || number.starts_with('+')) number.remove_prefix(1);
  int exponent = 0;
  if (const std::size_t mark = number.find_first_of("eE"); mark != std::string_view::npos) {
    std::string_view text = number.substr(mark + 1);
    if (text.starts_with('+')) text.remove_prefix(1);
    std::from_chars(text.data(), text.data() + text.size(), exponent);
    number = number.substr(0, mark);
  }
  const std::size_t point = number.find('.');
  std::string digits(number.substr(0, point));
  int fraction = -exponent;
  if (point != std::string_view::npos) {
    digits += number.substr(point + 1);
    fraction += static_cast<int>(number.size() - point - 1);
  }
  // The number is digits / 10^fraction; bring it to digits / 10^scale.
  bool round_up = false;
  if (fraction < scale) {
    digits.append(static_cast<std::size_t>(scale - fraction), '0');
  } else if (fraction > scale) {
    const auto dropped = static_cast<std::size_t>(fraction - scale);
    if (dropped > digits.size()) {
      digits = "0";
    } else {
      round_up = digits[digits.size() - dropped] >= '5';
      digits.resize(digits.size() - dropped);
    }
  }
  if (round_up) {
    std::size_t at = digits.size();
    while (at > 0 && digits[at - 1] == '9') digits[--at] = '0';
    if (at > 0) {
      ++digits[at - 1];
    } else {
      digits.insert(digits.begin(), '1');
    }
  }
  const auto places = static_cast<std::size_t>(scale);
  if (digits.size() <= places) digits.insert(0, places + 1 - digits.size(), '0');
  const std::size_t first = std::min(digits.find_first_not_of('0'), digits.size() - places - 1);
  digits.erase(0, first);
  const bool zero = digits.find_first_not_of('0') == std::string::npos;
  if (places > 0) digits.insert(digits.size() - places, 1, '.');
  return negative && !zero ? "-" + digits : digits;
}

std::string DoubleText(double number) {
  std::array<char, 400> buffer;
  const bool fixed = std::abs(number) < 1e18 && (std::abs(number) >= 1e-6 || number == 0);
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                          fixed ? std::chars_format::fixed : std::chars_format::scientific);
  return error == std::errc() ? std::string(buffer.data(), end) : std::string("0");
}

std::string AddToDate(std::string_view part_name, std::int64_t count, const std::string& date) {
  const std::string_view part = PartOf(part_name);
  const SqlType type = TypeOf(SqlKind::kDateTime);
  Moment moment = MomentOf(date);
  if (std::abs(count) > std::numeric_limits<std::int32_t>::max()) RaiseOverflow("expression", TypeOf(SqlKind::kInt));
  if (part == "year" || part == "quarter" || part == "month") {
    Civil civil = CivilOf(moment.day);
    if (std::abs(count) > 120000) RaiseDateRange(TypeOf(SqlKind::kInt), type);
    std::int64_t months = civil.year * 12 + civil.month - 1 + count * (part == "year" ? 12 : part == "quarter" ? 3 : 1);
    if (months < 12) RaiseDateRange(TypeOf(SqlKind::kInt), type);
    civil.year = months / 12;
    civil.month = static_cast<int>(months % 12 + 1);
    civil.day = std::min(civil.day, DaysInMonth(civil.year, civil.month));
    moment.day = DayOf(civil);
  } else if (part == "day") {
    if (std::abs(count) > 4000000) RaiseDateRange(TypeOf(SqlKind::kInt), type);
    moment.day += count;
  } else {
    const std::int64_t unit = part == "hour" ? 3600000 : part == "minute" ? 60000 : part == "second" ? 1000 : 1;
    const std::int64_t total = moment.milliseconds + count * unit;
    const std::int64_t days =
        total >= 0 ? total / kMillisecondsPerDay : -((-total + kMillisecondsPerDay - 1) / kMillisecondsPerDay);
    moment.day += days;
    moment.milliseconds = total - days * kMillisecondsPerDay;
  }
  return StoredDate(InDateRange(moment, TypeOf(SqlKind::kInt), type));
}

std::int64_t DatePart(std::string_view part_name, const std::string& date) {
  const std::string_view part = PartOf(part_name);
  const Moment moment = MomentOf(date);
  const Civil civil = CivilOf(moment.day);
  if (part == "year") return civil.year;
  if (part == "quarter") return (civil.month + 2) / 3;
  if (part == "month") return civil.month;
  if (part == "day") return civil.day;
  if (part == "hour") return moment.milliseconds / 3600000;
  if (part == "minute") return moment.milliseconds / 60000 % 60;
  if (part == "second") return moment.milliseconds / 1000 % 60;
  return moment.milliseconds % 1000;
}

Cell Divide(const Cell& a, const Cell& b) {
  const auto* left = std::get_if<std::int64_t>(&a);
  const auto* right = std::get_if<std::int64_t>(&b);
  if (left && right) {
    if (*right == 0) RaiseDivideByZero();
    if (*left == std::numeric_limits<std::int64_t>::min() && *right == -1)
      RaiseOverflow("expression", TypeOf(SqlKind::kBigInt));
    return *left / *right;
  }
  if (Number(b) == 0) RaiseDivideByZero();
  return Number(a) / Number(b);
}

Cell Modulo(const Cell& a, const Cell& b) {
  const auto* left = std::get_if<std::int64_t>(&a);
  const auto* right = std::get_if<std::int64_t>(&b);
  if (left && right) {
    if (*right == 0) RaiseDivideByZero();
    return *right == -1 ? std::int64_t{0} : *left % *right;
  }
  if (Number(b) == 0) RaiseDivideByZero();
  return std::fmod(Number(a), Number(b));
}

}  // namespace quenta::sandbox
