// A value as a database column, a field or an automation argument holds it. No conversions: those are in convert.h.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace quenta::base {

// Fixed-point amount in ten-thousandths (MONEY, SMALLMONEY): 12.5 is held as 125000.
struct Currency {
  std::int64_t ten_thousandths = 0;
  bool operator==(const Currency&) const = default;
};

// Exact decimal number of up to 96 bits: magnitude / 10^scale, scale 0 to 28 (DECIMAL, NUMERIC).
struct Decimal {
  std::uint32_t low = 0;
  std::uint32_t middle = 0;
  std::uint32_t high = 0;
  std::uint8_t scale = 0;
  bool negative = false;
  bool operator==(const Decimal&) const = default;
};

// Point in time as automation counts it: days since 30 December 1899, the fraction being the time of day.
// For days before that date the fraction still counts forward from midnight.
struct Date {
  double days = 0;
  bool operator==(const Date&) const = default;
};

// What a value holds. The order is that of the alternatives of Value::Storage.
enum class ValueKind { kEmpty, kNull, kBoolean, kLong, kInt64, kSingle, kDouble, kCurrency, kDecimal, kDate, kText };

// One value of any kind. Empty (never set), Null (the database's NULL) and empty text are three different things.
// Integers of 8, 16 and 32 bits are all kLong.
class Value {
 public:
  struct EmptyTag {
    bool operator==(const EmptyTag&) const = default;
  };
  struct NullTag {
    bool operator==(const NullTag&) const = default;
  };
  using Storage = std::variant<EmptyTag, NullTag, bool, std::int32_t, std::int64_t, float, double, Currency, Decimal,
                               Date, std::string>;

  Value() = default;
  Value(bool value) : storage_(value) {}                           // NOLINT(google-explicit-constructor)
  Value(std::int32_t value) : storage_(value) {}                   // NOLINT(google-explicit-constructor)
  Value(std::int64_t value) : storage_(value) {}                   // NOLINT(google-explicit-constructor)
  Value(float value) : storage_(value) {}                          // NOLINT(google-explicit-constructor)
  Value(double value) : storage_(value) {}                         // NOLINT(google-explicit-constructor)
  Value(Currency value) : storage_(value) {}                       // NOLINT(google-explicit-constructor)
  Value(Decimal value) : storage_(value) {}                        // NOLINT(google-explicit-constructor)
  Value(Date value) : storage_(value) {}                           // NOLINT(google-explicit-constructor)
  Value(std::string value) : storage_(std::move(value)) {}         // NOLINT(google-explicit-constructor)
  Value(std::string_view value) : storage_(std::string(value)) {}  // NOLINT(google-explicit-constructor)
  Value(const char* value) : storage_(std::string(value)) {}       // NOLINT(google-explicit-constructor)

  static Value Null() { return Value(Storage(NullTag{})); }

  ValueKind kind() const noexcept { return static_cast<ValueKind>(storage_.index()); }
  bool is_empty() const noexcept { return kind() == ValueKind::kEmpty; }
  bool is_null() const noexcept { return kind() == ValueKind::kNull; }
  bool is_text() const noexcept { return kind() == ValueKind::kText; }
  bool is_date() const noexcept { return kind() == ValueKind::kDate; }

  // The held alternative; T must be the one that kind() names (std::bad_variant_access otherwise).
  template <typename T>
  const T& get() const {
    return std::get<T>(storage_);
  }
  const std::string& text() const { return get<std::string>(); }

  // The text, moved out.
  std::string TakeText() && { return std::get<std::string>(std::move(storage_)); }

  const Storage& storage() const noexcept { return storage_; }

  // Same kind and same content; no conversion between kinds.
  bool operator==(const Value&) const = default;

 private:
  explicit Value(Storage storage) : storage_(std::move(storage)) {}

  Storage storage_;
};

}  // namespace quenta::base
