// The rules by which the amounts of a price line give each other, and how they are rounded.
#pragma once

namespace quenta::product {

// Five decimals, ties to the even neighbour, through a 32-bit integer: error 6 above 21474.83647.
double R5(double amount);

// What one amount of a line gives of another at this rate (0.23 is 23 %), rounded by R5. In single precision, but for
// what the VAT amount gives; that is 0 where there is no rate.
double TotalOfValue(float value, float rate);
double VatOfTotal(float total, float rate);
double ValueOfTotal(float total, float rate);
double TotalOfVat(double vat, double rate);
double ValueOfVat(double vat, double rate);

}  // namespace quenta::product
