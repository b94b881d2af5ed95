// Driver text into values, for odbc_link.h.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "base/date.h"
#include "base/error.h"
#include "base/text.h"
#include "sandbox/odbc/conversion.h"
#include "sandbox/odbc/odbc_link.h"
#include "sandbox/odbc/server_error.h"

namespace quenta::sandbox {
namespace {

[[noreturn]] void RaiseUnreadable(const SqlType& type) {
  throw base::Error(base::error_number::kDataAccess, "The driver sent no " + TypeName(type) + " that can be read.");
}

std::int64_t Integer(std::string_view text, const SqlType& type) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) RaiseUnreadable(type);
  return number;
}

std::int32_t Long(std::string_view text, const SqlType& type) {
  const std::int64_t number = Integer(text, type);
  if (number < std::numeric_limits<std::int32_t>::min() || number > std::numeric_limits<std::int32_t>::max())
    throw base::Error(AutomationNumber(message::kOverflow),
                      "Arithmetic overflow error converting expression to data type int.");
  return static_cast<std::int32_t>(number);
}

double Double(std::string_view text, const SqlType& type) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) RaiseUnreadable(type);
  return number;
}

base::Decimal ReadDecimal(const std::string& text, const SqlType& type) {
  constexpr int kMostPlaces = 28;
  const int scale = std::min(type.scale, kMostPlaces);
  const std::string rounded = RoundDecimal(text, scale);
  base::Decimal number;
  number.scale = static_cast<std::uint8_t>(scale);
  for (const char c : rounded) {
    if (c == '-') {
      number.negative = true;
      continue;
    }
    if (c < '0' || c > '9') continue;
    std::uint64_t carry = static_cast<std::uint64_t>(c - '0');
    for (std::uint32_t* part : {&number.low, &number.middle, &number.high}) {
      carry += std::uint64_t{*part} * 10;
      *part = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
    if (carry != 0)
      throw base::Error(AutomationNumber(message::kOverflow),
                        "Arithmetic overflow error converting numeric to data type numeric.");
  }
  return number;
}

// "2017-12-31 14:05:09.123", with or without the time and its fraction.
base::Date ReadDate(const std::string& text, const SqlType& type) {
  const auto part = [&](std::size_t at, std::size_t length) {
    return text.size() < at + length ? 0 : static_cast<int>(Integer(std::string_view(text).substr(at, length), type));
  };
  if (text.size() < 10) RaiseUnreadable(type);
  const std::optional<base::Date> midnight = base::MakeDate({part(0, 4), part(5, 2), part(8, 2), 0, 0, 0});
  if (!midnight) RaiseUnreadable(type);
  double milliseconds = ((part(11, 2) * 60 + part(14, 2)) * 60 + part(17, 2)) * 1000.0;
  if (text.size() > 20) milliseconds += Double("0" + text.substr(19), type) * 1000;
  const double fraction = milliseconds / 86400000.0;
  return {midnight->days < 0 ? midnight->days - fraction : midnight->days + fraction};
}

}  // namespace

base::Value ValueFromText(const std::string& text, const SqlType& type) {
  switch (type.kind) {
    case SqlKind::kBit:
      return Integer(text, type) != 0;
    case SqlKind::kTinyInt:
    case SqlKind::kSmallInt:
    case SqlKind::kInt:
      return Long(text, type);
    case SqlKind::kBigInt:
      return Integer(text, type);
    case SqlKind::kSmallMoney:
    case SqlKind::kMoney:
      return base::Currency{Integer(base::ReplaceAll(RoundDecimal(text, 4), ".", ""), type)};
    case SqlKind::kDecimal:
      return ReadDecimal(text, type);
    case SqlKind::kReal:
      return static_cast<float>(Double(text, type));
    case SqlKind::kFloat:
      return Double(text, type);
    case SqlKind::kSmallDateTime:
    case SqlKind::kDateTime:
      return ReadDate(text, type);
    default:
      return text;
  }
}

}  // namespace quenta::sandbox
