#include "product/price_arithmetic.h"

#include <cmath>
#include <cstdint>

#include "base/error.h"
#include "gtest/gtest.h"

namespace quenta::tests {
namespace {

using namespace product;

TEST(PriceArithmetic, RoundsToFiveDecimalsUpToItsBound) {
  EXPECT_EQ(R5(21474.83647), 21474.83647);
  EXPECT_EQ(R5(-21474.83648), -21474.83648);
  EXPECT_THROW(R5(21474.83648), base::Error);
  EXPECT_THROW(R5(-21474.8365), base::Error);
  EXPECT_EQ(R5(0.000005), 0.0) << "ties to even";
  EXPECT_EQ(R5(0.000015), 0.00002);
  EXPECT_EQ(R5(-0.000025), -0.00002);
}

TEST(PriceArithmetic, GivesTheSuitesAmounts) {
  const struct {
    double amount, expected;
  } cases[] = {
      {TotalOfValue(100, 0.23F), 123},
      {VatOfTotal(123, 0.23F), 23},
      {ValueOfTotal(123, 0.23F), 100},
      {ValueOfTotal(10, 0.23F), 8.13008},
      {VatOfTotal(10, 0.23F), 1.86992},
      {TotalOfVat(23, 0.23), 123},
      {ValueOfVat(23, 0.23), 100},
      {TotalOfVat(5, 0), 0},
      {ValueOfVat(5, 0), 0},
      {TotalOfValue(7.5, 0), 7.5},
      {TotalOfValue(1234.5, 0.06F), 1308.56995},  // single precision carries seven digits
      {TotalOfValue(-12, 0.5F), -18},
  };
  for (const auto& [amount, expected] : cases) EXPECT_EQ(amount, expected);
}

// In hundred-thousandths and thousandths: the exact result of each computation, as far as single precision carries.
TEST(PriceArithmetic, AgreesWithExactArithmeticUpToTheBound) {
  std::uint32_t state = 7;
  const auto random = [&](std::int64_t bound) {
    state = state * 1664525U + 1013904223U;
    return std::int64_t{state >> 8} % bound;
  };
  for (int i = 0; i < 20000; ++i) {
    const std::int64_t bounds[] = {1000, 100000, 2147400};
    const std::int64_t cents = random(bounds[i % 3]) - (i % 5 == 0 ? 500 : 0);
    const std::int64_t rate = random(1000);
    const auto amount = static_cast<float>(static_cast<double>(cents) / 100);
    const auto tx = static_cast<float>(static_cast<double>(rate) / 1000);
    const auto agrees = [&](double (*compute)(float, float), double numerator, double denominator) {
      const double exact = static_cast<double>(cents) * 1000 * numerator / denominator;
      if (std::fabs(exact) > 2147483000) return;
      const double bound = 0.51 + std::fabs(exact) * 3e-7;
      EXPECT_LE(std::fabs(compute(amount, tx) * 100000 - exact), bound) << cents << " cents at " << rate;
    };
    const auto r = static_cast<double>(rate);
    agrees(&TotalOfValue, 1000 + r, 1000);
    agrees(&ValueOfTotal, 1000, 1000 + r);
    agrees(&VatOfTotal, r, 1000 + r);
    if (rate == 0) continue;
    const double exact = static_cast<double>(cents) * 1000 * 1000 / r;
    if (std::fabs(exact) * (1 + r / 1000) > 2147483000) continue;
    const double vat = static_cast<double>(cents) / 100;
    EXPECT_NEAR(ValueOfVat(vat, r / 1000) * 100000, exact, 0.51);
    EXPECT_NEAR(TotalOfVat(vat, r / 1000) * 100000, exact * (1 + r / 1000), 0.51);
  }
}

}  // namespace
}  // namespace quenta::tests
