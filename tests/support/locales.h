// The two regional conventions that tests compare.
#pragma once

#include "base/locale.h"

namespace quenta::tests {

inline base::Locale PortugueseLocale() {
  return {};
}

inline base::Locale EnglishLocale() {
  base::Locale locale;
  locale.decimal = ".";
  locale.thousands = ",";
  locale.short_date = "m/d/yyyy";
  locale.month_names = {"January", "February", "March",     "April",   "May",      "June",
                        "July",    "August",   "September", "October", "November", "December"};
  return locale;
}

}  // namespace quenta::tests
