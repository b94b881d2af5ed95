#include "base/locale.h"

namespace quenta::base {

bool Locale::day_before_month() const {
  return short_date.find_first_of("dD") < short_date.find_first_of("mM");
}

}  // namespace quenta::base
