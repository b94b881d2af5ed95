#include "base/format.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>
#include <vector>

#include "base/convert.h"
#include "base/date.h"
#include "base/text.h"

namespace quenta::base {
namespace {

// A number as its decimal digits: 0.digits × 10^point. Empty digits are zero.
struct Digits {
  std::string digits;
  int point = 0;
  bool negative = false;
};

// From plain decimal text with a point and perhaps an exponent.
Digits DigitsOf(std::string text) {
  Digits result;
  if (text.front() == '-') {
    result.negative = true;
    text.erase(0, 1);
  }
  int exponent = 0;
  if (const std::size_t mark = text.find('E'); mark != std::string::npos) {
    const char* first = text.data() + mark + (text[mark + 1] == '+' ? 2 : 1);
    std::from_chars(first, text.data() + text.size(), exponent);
    text.resize(mark);
  }
  const std::size_t dot = text.find('.');
  result.point = static_cast<int>(dot == std::string::npos ? text.size() : dot) + exponent;
  if (dot != std::string::npos) text.erase(dot, 1);
  const std::size_t first = text.find_first_not_of('0');
  if (first == std::string::npos) {
    result.point = 0;
    return result;
  }
  result.point -= static_cast<int>(first);
  result.digits = std::move(text.erase(0, first));
  return result;
}

std::optional<Digits> NumberDigits(const Value& value, const Locale& locale) {
  switch (value.kind()) {
    case ValueKind::kSingle:
      return DigitsOf(NumberText(value.get<float>()));
    case ValueKind::kCurrency:
      return DigitsOf(NumberText(value.get<Currency>()));
    case ValueKind::kDecimal:
      return DigitsOf(NumberText(value.get<Decimal>()));
    case ValueKind::kInt64:
      return DigitsOf(DecimalText(value.get<std::int64_t>()));
    case ValueKind::kText: {
      const auto number = ParseNumber(value.text(), locale);
      if (!number) return std::nullopt;
      return DigitsOf(NumberText(*number));
    }
    default:
      return DigitsOf(NumberText(ToDouble(value, locale)));
  }
}

// Half away from zero, at this many digits after the decimal separator.
void Round(Digits& number, int decimals) {
  const int keep = number.point + decimals;
  if (keep >= static_cast<int>(number.digits.size())) return;
  if (keep < 0) {
    number.digits.clear();
    return;
  }
  const bool up = number.digits[static_cast<std::size_t>(keep)] >= '5';
  number.digits.resize(static_cast<std::size_t>(keep));
  if (!up) {
    if (number.digits.find_first_not_of('0') == std::string::npos) number.digits.clear();
    return;
  }
  int position = keep - 1;
  while (position >= 0 && number.digits[static_cast<std::size_t>(position)] == '9') {
    number.digits[static_cast<std::size_t>(position--)] = '0';
  }
  if (position >= 0) {
    ++number.digits[static_cast<std::size_t>(position)];
  } else {
    number.digits.insert(0, 1, '1');
    ++number.point;
  }
}

bool IsPlaceholder(char c) {
  return c == '0' || c == '#';
}

// What one section of a number pattern asks for.
struct NumberPattern {
  std::string_view before;
  std::string_view after;
  int least_integer_digits = 0;
  int least_decimals = 0;
  int most_decimals = 0;
  bool thousands = false;
  bool percent = false;
};

NumberPattern ReadNumberPattern(std::string_view text) {
  NumberPattern pattern;
  pattern.percent = text.find('%') != std::string_view::npos;
  const auto first = std::find_if(text.begin(), text.end(), IsPlaceholder);
  const auto end = std::find_if(text.rbegin(), std::make_reverse_iterator(first), IsPlaceholder).base();
  pattern.before = {text.begin(), first};
  pattern.after = {end, text.end()};
  bool decimals = false;
  for (const char c : std::string_view(first, end)) {
    if (c == '.') {
      decimals = true;
    } else if (c == ',') {
      pattern.thousands = true;
    } else if (IsPlaceholder(c) && decimals) {
      ++pattern.most_decimals;
      if (c == '0') pattern.least_decimals = pattern.most_decimals;
    } else if (c == '0') {
      ++pattern.least_integer_digits;
    }
  }
  return pattern;
}

std::string ShowNumber(const Digits& number, const NumberPattern& pattern, const Locale& locale) {
  const auto digit_at = [&](int position) {
    return position >= 0 && position < static_cast<int>(number.digits.size())
               ? number.digits[static_cast<std::size_t>(position)]
               : '0';
  };
  std::string text(pattern.before);
  const int shown = number.digits.empty() ? 0 : std::max(number.point, 0);
  const int integer_digits = std::max(shown, pattern.least_integer_digits);
  for (int i = integer_digits; i > 0; --i) {
    text += i > shown ? '0' : digit_at(number.point - i);
    if (pattern.thousands && i > 1 && i % 3 == 1) text += locale.thousands;
  }
  int decimals = static_cast<int>(number.digits.size()) - number.point;
  if (number.digits.empty()) decimals = 0;
  decimals = std::clamp(decimals, pattern.least_decimals, pattern.most_decimals);
  if (decimals > 0) {
    text += locale.decimal;
    for (int i = 0; i < decimals; ++i) text += number.digits.empty() ? '0' : digit_at(number.point + i);
  }
  text += pattern.after;
  return text;
}

std::string FormatNumber(Digits number, std::string_view pattern_text, const Locale& locale) {
  const std::size_t semicolon = pattern_text.find(';');
  const std::string_view positive = pattern_text.substr(0, semicolon);
  const bool own_negative = number.negative && semicolon != std::string_view::npos;
  const NumberPattern pattern = ReadNumberPattern(own_negative ? pattern_text.substr(semicolon + 1) : positive);
  if (pattern.percent) number.point += 2;
  Round(number, pattern.most_decimals);
  // A negative number that rounds to zero is shown as zero, not as minus zero.
  if (number.digits.empty() && own_negative) return ShowNumber(number, ReadNumberPattern(positive), locale);
  std::string text = ShowNumber(number, pattern, locale);
  if (number.negative && !own_negative && !number.digits.empty()) text.insert(0, 1, '-');
  return text;
}

bool IsDatePattern(std::string_view pattern) {
  return std::none_of(pattern.begin(), pattern.end(), IsPlaceholder) &&
         pattern.find_first_of("dDmMyYhHnNsS") != std::string_view::npos;
}

std::string TwoDigits(int number) {
  return {static_cast<char>('0' + number / 10 % 10), static_cast<char>('0' + number % 10)};
}

std::string DatePart(char letter, std::size_t width, const CalendarTime& time, const Locale& locale) {
  const auto number = [width](int value) { return width == 1 ? DecimalText(value) : TwoDigits(value); };
  switch (letter) {
    case 'd':
      return number(time.day);
    case 'm':
      if (width >= 3) {
        const std::string& name = locale.month_names[static_cast<std::size_t>(time.month - 1)];
        return width == 3 ? FromUtf16(ToUtf16(name).substr(0, 3)) : name;
      }
      return number(time.month);
    case 'y': {
      if (width <= 2) return TwoDigits(time.year % 100);
      const std::string year = DecimalText(time.year);
      return std::string(4 - year.size(), '0') + year;
    }
    case 'h':
      return number(time.hour);
    case 'n':
      return number(time.minute);
    default:
      return number(time.second);
  }
}

std::string FormatDate(Date date, std::string_view pattern, const Locale& locale) {
  const CalendarTime time = ToCalendar(date);
  std::string text;
  for (std::size_t i = 0; i < pattern.size();) {
    const char letter = static_cast<char>(pattern[i] | 0x20);
    if (std::string_view("dmyhns").find(letter) == std::string_view::npos) {
      text += pattern[i++];
      continue;
    }
    std::size_t width = 1;
    while (i + width < pattern.size() && (pattern[i + width] | 0x20) == letter) ++width;
    text += DatePart(letter, width, time, locale);
    i += width;
  }
  return text;
}

}  // namespace

std::string Format(const Value& value, std::string_view pattern, const Locale& locale) {
  if (value.is_empty() || value.is_null()) return {};
  if (IsDatePattern(pattern)) {
    if (value.is_text() && !IsDate(value, locale)) return value.text();
    return FormatDate(ToDate(value, locale), pattern, locale);
  }
  auto digits = NumberDigits(value, locale);
  return digits ? FormatNumber(std::move(*digits), pattern, locale) : value.text();
}

}  // namespace quenta::base
