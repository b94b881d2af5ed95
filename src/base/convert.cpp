#include "base/convert.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "base/date.h"
#include "base/error.h"
#include "base/format.h"
#include "base/text.h"

namespace quenta::base {
namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

// Takes the prefix off the text when it is there.
bool TakePrefix(std::string_view& text, std::string_view prefix) {
  if (prefix.empty() || !StartsWith(text, prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

bool TakeSuffix(std::string_view& text, std::string_view suffix) {
  if (suffix.empty() || text.size() < suffix.size() || text.substr(text.size() - suffix.size()) != suffix) return false;
  text.remove_suffix(suffix.size());
  return true;
}

constexpr std::string_view kNoBreakSpace = "\xC2\xA0";
constexpr std::string_view kNarrowNoBreakSpace = "\xE2\x80\xAF";
constexpr std::array<std::string_view, 4> kBlanks{" ", "\t", kNoBreakSpace, kNarrowNoBreakSpace};
constexpr std::array<std::string_view, 3> kCurrencySigns{"\xE2\x82\xAC", "$", "\xC2\xA3"};  // euro, dollar, pound

template <typename Signs>
bool TakeAnyPrefix(std::string_view& text, const Signs& signs) {
  for (const std::string_view sign : signs) {
    if (TakePrefix(text, sign)) return true;
  }
  return false;
}

template <typename Signs>
bool TakeAnySuffix(std::string_view& text, const Signs& signs) {
  for (const std::string_view sign : signs) {
    if (TakeSuffix(text, sign)) return true;
  }
  return false;
}

void TrimBlanks(std::string_view& text) {
  while (TakeAnyPrefix(text, kBlanks)) {
  }
  while (TakeAnySuffix(text, kBlanks)) {
  }
}

// Takes off what may stand around the digits; each at most once. Answers false when something stands there twice.
bool TakeSurroundings(std::string_view& text, bool& negative) {
  bool signed_already = false;
  bool currency_seen = false;
  TrimBlanks(text);
  if (text.size() >= 2 && text.front() == '(' && text.back() == ')') {
    negative = signed_already = true;
    text = text.substr(1, text.size() - 2);
  }
  for (bool taken = true; taken;) {
    TrimBlanks(text);
    taken = false;
    const bool minus = TakePrefix(text, "-") || TakeSuffix(text, "-");
    if (minus || TakePrefix(text, "+")) {
      if (signed_already) return false;
      signed_already = taken = true;
      negative = minus;
    } else if (TakeAnyPrefix(text, kCurrencySigns) || TakeAnySuffix(text, kCurrencySigns)) {
      if (currency_seen) return false;
      currency_seen = taken = true;
    }
  }
  return true;
}

// Moves the digits of the integer part, without their separators, to the output. A separator must stand before exactly
// three digits, so that "12.5" is not read as 125.
bool TakeIntegerPart(std::string_view& text, const Locale& locale, std::string& digits) {
  std::vector<std::string_view> separators{" ", kNoBreakSpace, kNarrowNoBreakSpace, "'", "\xE2\x80\x99"};
  if (locale.decimal != ".") separators.emplace_back(".");
  if (locale.thousands != locale.decimal) separators.emplace_back(locale.thousands);
  std::size_t since_separator = 0;
  bool grouped = false;
  while (!text.empty()) {
    if (IsDigit(text.front())) {
      digits += text.front();
      ++since_separator;
      text.remove_prefix(1);
      continue;
    }
    if (StartsWith(text, locale.decimal)) break;
    if (digits.empty() || (grouped && since_separator != 3)) break;
    std::string_view after = text;
    if (!TakeAnyPrefix(after, separators) || after.empty() || !IsDigit(after.front())) break;
    text = after;
    grouped = true;
    since_separator = 0;
  }
  return !grouped || since_separator == 3;
}

template <typename Float>
std::string GeneralText(Float number, int precision) {
  if (number == 0) return "0";
  char buffer[64];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::general, precision).ptr;
  std::string text(buffer, end);
  if (const std::size_t exponent = text.find('e'); exponent != std::string::npos) text[exponent] = 'E';
  return text;
}

// Decimal digits of an integer with the point put in before the last `scale` ones, without trailing zeros after it.
std::string WithScale(std::string digits, std::size_t scale, bool negative) {
  if (digits.size() <= scale) digits.insert(0, scale + 1 - digits.size(), '0');
  if (scale > 0) {
    digits.insert(digits.size() - scale, 1, '.');
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.back() == '.') digits.pop_back();
  }
  return negative && digits != "0" ? "-" + digits : digits;
}

// An amount in units of 10^-scale.
std::string ScaledText(std::int64_t amount, std::size_t scale) {
  const bool negative = amount < 0;
  const auto magnitude = negative ? 0 - static_cast<std::uint64_t>(amount) : static_cast<std::uint64_t>(amount);
  char buffer[24];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, magnitude).ptr;
  return WithScale(std::string(buffer, end), scale, negative);
}

double PlainNumber(const std::string& text) {
  double number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

std::string DateText(Date date, const Locale& locale) {
  const bool has_day = std::trunc(date.days) != 0;
  const bool has_time = date.days != std::trunc(date.days);
  std::string text;
  if (has_day || !has_time) text = Format(date, locale.short_date, locale);
  if (has_time) text += (text.empty() ? "" : " ") + Format(date, "hh:nn:ss", locale);
  return text;
}

// The whole numbers of a text like "31-12-2017", and the separators between them.
struct NumberParts {
  std::vector<int> numbers;
  std::vector<std::size_t> widths;
  std::string separators;
};

std::optional<NumberParts> SplitNumbers(std::string_view text) {
  NumberParts parts;
  while (true) {
    int number = 0;
    std::size_t width = 0;
    while (!text.empty() && IsDigit(text.front())) {
      if (++width > 4) return std::nullopt;
      number = number * 10 + (text.front() - '0');
      text.remove_prefix(1);
    }
    if (width == 0) return std::nullopt;
    parts.numbers.push_back(number);
    parts.widths.push_back(width);
    if (text.empty()) return parts;
    parts.separators += text.front();
    text.remove_prefix(1);
  }
}

bool ReadDay(std::string_view text, const Locale& locale, CalendarTime& time) {
  const auto parts = SplitNumbers(text);
  if (!parts || parts->numbers.size() != 3) return false;
  const char separator = parts->separators[0];
  if ((separator != '-' && separator != '/' && separator != '.') || parts->separators[1] != separator) return false;
  std::size_t year_at = 2;
  std::size_t month_at = locale.day_before_month() ? 1 : 0;
  std::size_t day_at = 1 - month_at;
  if (parts->widths[0] > 2) {
    year_at = 0;
    month_at = 1;
    day_at = 2;
  }
  time.year = parts->numbers[year_at];
  if (parts->widths[year_at] <= 2) time.year += time.year < 30 ? 2000 : 1900;
  time.month = parts->numbers[month_at];
  time.day = parts->numbers[day_at];
  return parts->widths[month_at] <= 2 && parts->widths[day_at] <= 2;
}

bool ReadTime(std::string_view text, CalendarTime& time) {
  const auto parts = SplitNumbers(text);
  if (!parts || parts->numbers.size() < 2 || parts->numbers.size() > 3) return false;
  if (parts->separators.find_first_not_of(':') != std::string::npos) return false;
  time.hour = parts->numbers[0];
  time.minute = parts->numbers[1];
  time.second = parts->numbers.size() == 3 ? parts->numbers[2] : 0;
  return true;
}

// Whether a number that no double holds ("1e999", "0.1e-400") is too large for one, and not too small.
bool IsTooLarge(const std::string& plain) {
  const std::size_t mark = std::min(plain.find('e'), plain.size());
  int exponent = 0;
  if (mark < plain.size() &&
      std::from_chars(plain.data() + mark + 1, plain.data() + plain.size(), exponent).ec != std::errc()) {
    return plain[mark + 1] != '-';
  }
  const auto point = static_cast<int>(std::min(plain.find('.'), mark));
  const auto first = static_cast<int>(plain.find_first_of("123456789"));
  return point - first + exponent > 0;
}

// The number in a text, infinite when it is too large for a double; nothing when it is no number.
std::optional<double> ReadNumber(std::string_view text, const Locale& locale) {
  bool negative = false;
  if (!TakeSurroundings(text, negative)) return std::nullopt;
  std::string plain;
  if (!TakeIntegerPart(text, locale, plain)) return std::nullopt;
  bool any_digit = !plain.empty();
  if (TakePrefix(text, locale.decimal)) {
    plain += '.';
    while (!text.empty() && IsDigit(text.front())) {
      plain += text.front();
      text.remove_prefix(1);
      any_digit = true;
    }
  }
  if (!any_digit) return std::nullopt;
  if (plain.front() == '.') plain.insert(0, 1, '0');
  if (!text.empty() && (text.front() == 'E' || text.front() == 'e')) {
    plain += 'e';
    text.remove_prefix(1);
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
      if (text.front() == '-') plain += '-';
      text.remove_prefix(1);
    }
    if (text.empty()) return std::nullopt;
    plain += text;
    for (; !text.empty(); text.remove_prefix(1)) {
      if (!IsDigit(text.front())) return std::nullopt;
    }
  }
  if (!text.empty()) return std::nullopt;
  double number = 0;
  const std::errc error = std::from_chars(plain.data(), plain.data() + plain.size(), number).ec;
  if (error == std::errc::result_out_of_range && IsTooLarge(plain)) number = std::numeric_limits<double>::infinity();
  return negative ? -number : number;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text, const Locale& locale) {
  const auto number = ReadNumber(text, locale);
  return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<double> ParseTypedNumber(std::string_view text, const Locale& locale) {
  const auto commas = std::count(text.begin(), text.end(), ',');
  const auto points = std::count(text.begin(), text.end(), '.');
  if (commas + points == 0) return ReadNumber(text, locale);
  bool comma_is_decimal = commas == 1;
  if (commas > 0 && points > 0) {
    comma_is_decimal = text.rfind(',') > text.rfind('.');
  } else if (commas + points > 1) {
    comma_is_decimal = points > 0;
  }
  Locale typed = locale;
  typed.decimal = comma_is_decimal ? "," : ".";
  typed.thousands = comma_is_decimal ? "." : ",";
  return ReadNumber(text, typed);
}

std::string PlainNumberText(std::string text, double number) {
  double read = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, read);
  return error == std::errc() && stopped == end && read == number ? text : NumberText(number);
}

std::optional<Date> ParseDate(std::string_view text, const Locale& locale) {
  text = Trim(text);
  CalendarTime time;
  const std::size_t blank = text.find_first_of(" T");
  if (blank == std::string_view::npos) {
    if (!ReadDay(text, locale, time)) {
      time = {};
      if (!ReadTime(text, time)) return std::nullopt;
    }
  } else if (!ReadDay(text.substr(0, blank), locale, time) || !ReadTime(Trim(text.substr(blank + 1)), time)) {
    return std::nullopt;
  }
  return MakeDate(time);
}

std::string NumberText(double number) {
  // Quantities and amounts have few decimals. Counted in hundred-thousandths they are written far quicker, and the
  // same: a number that is the nearest one to a text of at most 15 digits has that text. Small ones have an exponent.
  constexpr double kScale = 100000;
  constexpr double kMost = 1e15;
  constexpr double kLeast = 1e-4;
  const double magnitude = std::fabs(number);
  if (magnitude < kMost && std::trunc(number) == number) return DecimalText(static_cast<std::int64_t>(number));
  const double scaled = std::round(number * kScale);
  if (magnitude >= kLeast && std::fabs(scaled) < kMost && scaled / kScale == number) {
    return ScaledText(static_cast<std::int64_t>(scaled), 5);
  }
  return GeneralText(number, 15);
}

std::string NumberText(float number) {
  return GeneralText(number, 7);
}

std::string NumberText(Currency amount) {
  return ScaledText(amount.ten_thousandths, 4);
}

std::string NumberText(const Decimal& number) {
  std::array<std::uint32_t, 3> words{number.high, number.middle, number.low};
  std::string reversed;
  while (words[0] != 0 || words[1] != 0 || words[2] != 0) {
    std::uint64_t remainder = 0;
    for (std::uint32_t& word : words) {
      const std::uint64_t part = (remainder << 32) | word;
      word = static_cast<std::uint32_t>(part / 10);
      remainder = part % 10;
    }
    reversed += static_cast<char>('0' + remainder);
  }
  return WithScale(std::string(reversed.rbegin(), reversed.rend()), number.scale, number.negative);
}

namespace {

std::string WithLocaleDecimal(std::string text, const Locale& locale) {
  if (const std::size_t point = text.find('.'); point != std::string::npos) text.replace(point, 1, locale.decimal);
  return text;
}

}  // namespace

std::string ToText(const Value& value, const Locale& locale) {
  switch (value.kind()) {
    case ValueKind::kEmpty:
      return {};
    case ValueKind::kNull:
      RaiseInvalidNull();
    case ValueKind::kBoolean:
      return value.get<bool>() ? "True" : "False";
    case ValueKind::kLong:
      return DecimalText(value.get<std::int32_t>());
    case ValueKind::kInt64:
      return DecimalText(value.get<std::int64_t>());
    case ValueKind::kSingle:
      return WithLocaleDecimal(NumberText(value.get<float>()), locale);
    case ValueKind::kDouble:
      return WithLocaleDecimal(NumberText(value.get<double>()), locale);
    case ValueKind::kCurrency:
      return WithLocaleDecimal(NumberText(value.get<Currency>()), locale);
    case ValueKind::kDecimal:
      return WithLocaleDecimal(NumberText(value.get<Decimal>()), locale);
    case ValueKind::kDate:
      return DateText(value.get<Date>(), locale);
    case ValueKind::kText:
      return value.text();
  }
  return {};
}

std::string ToText(Value&& value, const Locale& locale) {
  return value.is_text() ? std::move(value).TakeText() : ToText(std::as_const(value), locale);
}

namespace {

// Independent of the process's rounding mode.
double RoundToEven(double number) {
  const double below = std::floor(number);
  const double rest = number - below;
  return rest > 0.5 || (rest == 0.5 && std::fmod(below, 2) != 0) ? below + 1 : below;
}

}  // namespace

std::int32_t RoundToLong(double number) {
  const double rounded = RoundToEven(number);
  if (!(rounded >= std::numeric_limits<std::int32_t>::min() && rounded <= std::numeric_limits<std::int32_t>::max())) {
    RaiseOverflow();
  }
  return static_cast<std::int32_t>(rounded);
}

double RoundHalfEven(double number, int decimals) {
  const double scale = std::pow(10.0, decimals);
  const double scaled = number * scale;
  return std::isfinite(scaled) ? RoundToEven(scaled) / scale : number;
}

std::int32_t ToLong(const Value& value, const Locale& locale) {
  return value.kind() == ValueKind::kLong ? value.get<std::int32_t>() : RoundToLong(ToDouble(value, locale));
}

float ToSingle(const Value& value, const Locale& locale) {
  if (value.kind() == ValueKind::kSingle) return value.get<float>();
  const double number = ToDouble(value, locale);
  if (std::fabs(number) > double{std::numeric_limits<float>::max()}) RaiseOverflow();
  return static_cast<float>(number);
}

double ToDouble(const Value& value, const Locale& locale) {
  switch (value.kind()) {
    case ValueKind::kEmpty:
      return 0;
    case ValueKind::kNull:
      RaiseInvalidNull();
    case ValueKind::kBoolean:
      return value.get<bool>() ? -1 : 0;
    case ValueKind::kLong:
      return value.get<std::int32_t>();
    case ValueKind::kInt64:
      return static_cast<double>(value.get<std::int64_t>());
    case ValueKind::kSingle:
      return double{value.get<float>()};
    case ValueKind::kDouble:
      return value.get<double>();
    case ValueKind::kCurrency:
      return PlainNumber(NumberText(value.get<Currency>()));
    case ValueKind::kDecimal:
      return PlainNumber(NumberText(value.get<Decimal>()));
    case ValueKind::kDate:
      return value.get<Date>().days;
    case ValueKind::kText:
      break;
  }
  const auto number = ParseNumber(value.text(), locale);
  if (!number) RaiseTypeMismatch();
  return *number;
}

Date ToDate(const Value& value, const Locale& locale) {
  if (value.is_date()) return value.get<Date>();
  if (value.is_text()) {
    const auto date = ParseDate(value.text(), locale);
    if (!date) RaiseTypeMismatch();
    return *date;
  }
  const Date date{ToDouble(value, locale)};
  ToCalendar(date);  // raises when there is no such day
  return date;
}

bool ToBoolean(const Value& value, const Locale& locale) {
  if (value.kind() == ValueKind::kBoolean) return value.get<bool>();
  if (value.is_text()) {
    if (EqualIgnoreCase(value.text(), "True")) return true;
    if (EqualIgnoreCase(value.text(), "False")) return false;
  }
  return ToDouble(value, locale) != 0;
}

bool IsNumeric(const Value& value, const Locale& locale) {
  switch (value.kind()) {
    case ValueKind::kNull:
    case ValueKind::kDate:
      return false;
    case ValueKind::kText:
      return ParseNumber(value.text(), locale).has_value();
    default:
      return true;
  }
}

bool IsDate(const Value& value, const Locale& locale) {
  if (value.is_text()) return ParseDate(value.text(), locale).has_value();
  return value.is_date();
}

bool IsNonZero(const Value& value) {
  if (value.is_null() || value.is_date()) return false;
  static const Locale kAnyLocale;
  if (value.is_text()) return ParseNumber(value.text(), kAnyLocale).value_or(0) != 0;
  return ToDouble(value, kAnyLocale) != 0;
}

}  // namespace quenta::base
