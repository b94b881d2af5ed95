// The user's regional conventions as a plain value, so that nothing depends on the process's own locale.
#pragma once

#include <array>
#include <string>

namespace quenta::base {

struct Locale {
  // UTF-8. Never empty: a reader that gets nothing from the system leaves these defaults.
  std::string decimal = ",";
  std::string thousands = "\xC2\xA0";  // no-break space, as current pt-PT has it
  // How a date is written when no format asks otherwise, in the letters of Format (format.h).
  std::string short_date = "dd-mm-yyyy";
  std::array<std::string, 12> month_names{"janeiro", "fevereiro", "março",    "abril",   "maio",     "junho",
                                          "julho",   "agosto",    "setembro", "outubro", "novembro", "dezembro"};

  bool day_before_month() const;

  bool operator==(const Locale&) const = default;
};

}  // namespace quenta::base
