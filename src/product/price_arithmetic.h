// The rule by which the amounts of a price line are rounded.
#pragma once

namespace quenta::product {

// Five decimals, ties to the even neighbour, through a 32-bit integer: error 6 above 21474.83647.
double R5(double amount);

}  // namespace quenta::product
