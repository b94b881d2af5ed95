// The component's amounts, to the last digit: price arithmetic, conversions and what fields show of them, over a table
// that is computed here, natively and in both widths of Windows, and compared with one digest.
#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <string>

#include "base/convert.h"
#include "base/error.h"
#include "controls/field_value.h"
#include "controls/text_field.h"
#include "product/price_arithmetic.h"
#include "support/locales.h"

namespace quenta::tests {
namespace {

// FNV-1a over texts, each with its end.
class Digest {
 public:
  void Add(const std::string& text) {
    for (const char c : text) Add(static_cast<unsigned char>(c));
    Add(0);
  }
  std::uint64_t value() const { return value_; }

 private:
  void Add(unsigned char byte) { value_ = (value_ ^ byte) * 0x100000001B3; }

  std::uint64_t value_ = 0xCBF29CE484222325;
};

// The price lines of the table: what is typed, and at which rate.
class Lines {
 public:
  static constexpr int kCount = 120000;

  double Rate() { return kRates[Next(std::size(kRates))]; }
  // Up to where a line's total is too large to be rounded, with up to five decimals; one in eight is negative.
  std::string Typed() {
    static constexpr int kUnits[] = {10, 100, 1000, 22000};
    std::string text = Next(8) == 0 ? "-" : "";
    text += std::to_string(Next(kUnits[Next(4)]));
    const std::uint32_t decimals = Next(6);
    for (std::uint32_t i = 0; i < decimals; ++i) text += (i == 0 ? "," : "") + std::to_string(Next(10));
    return text;
  }

 private:
  static constexpr double kRates[] = {0.06, 0.13, 0.23, 0.04, 0.09, 0.16, 0.22, 0.05, 0};

  // The same numbers everywhere, which the standard library's distributions do not promise.
  std::uint32_t Next(std::size_t end) {
    state_ = state_ * 6364136223846793005 + 1442695040888963407;
    return static_cast<std::uint32_t>((state_ >> 33) % end);
  }
  std::uint64_t state_ = 2017;
};

TEST(AmountTest, AreTheSameToTheLastDigitInEveryBuild) {
  namespace codes = controls::format_code;
  const base::Locale locale = PortugueseLocale();
  controls::TextField field("FXTOTAL");
  Digest digest;
  // An amount as its field keeps it, shows it (each way in turn), and hands it to a statement.
  std::size_t turn = 0;
  const auto add = [&](const base::Value& amount) {
    static constexpr int kCodes[] = {codes::kPlain,   codes::kNumber,  codes::kAmount, codes::kPercent,
                                     codes::kAmount3, codes::kNumber3, codes::kAmount4};
    const int code = kCodes[turn++ % std::size(kCodes)];
    controls::SetFieldValue(field, amount, code, locale);
    digest.Add(field.tag());
    digest.Add(field.text());
    digest.Add(controls::GetFieldValue(field, code, locale));
  };
  const auto add_computed = [&](auto compute, auto amount, auto rate) {
    try {
      add(compute(amount, rate));
    } catch (const base::Error& error) {
      EXPECT_EQ(error.number(), 6);
      digest.Add("6");
    }
  };
  Lines lines;
  for (int i = 0; i < Lines::kCount; ++i) {
    const double rate = lines.Rate();
    const base::Value typed(lines.Typed());
    const float single = base::ToSingle(typed, locale);
    const double number = base::ToDouble(typed, locale);
    digest.Add(typed.text());
    add(single);
    add(number / 100);
    add(base::RoundHalfEven(number, i % 6));
    add_computed(product::TotalOfValue, single, static_cast<float>(rate));
    add_computed(product::VatOfTotal, single, static_cast<float>(rate));
    add_computed(product::ValueOfTotal, single, static_cast<float>(rate));
    const float vat = single * static_cast<float>(rate);
    add_computed(product::TotalOfVat, double{vat}, rate);
    add_computed(product::ValueOfVat, double{vat}, rate);
  }
  EXPECT_EQ(digest.value(), 6707490296227618322U);
  EXPECT_EQ(base::NumberText(product::TotalOfValue(56.75F, 0.06F)), "60.15499") << "in single precision";
}

}  // namespace
}  // namespace quenta::tests
