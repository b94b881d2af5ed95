#include "base/sql_literal.h"

#include <cstddef>

#include "base/date.h"
#include "base/format.h"
#include "base/text.h"

namespace quenta::base {

std::string SqlSafeText(std::string_view text) {
  return ReplaceAll(text, "'", "' + CHAR(39) + '");
}

std::string SqlTextLiteral(std::string_view text) {
  constexpr std::size_t kLongestJoined = 8000;
  std::string pieces = SqlSafeText(text);
  for (const std::string end : {"\n", "\r\n"}) pieces = ReplaceAll(pieces, "\\" + end, "\\' + '" + end);
  const bool several = pieces.size() != text.size();
  const char* const start = several && Utf16Length(text) > kLongestJoined ? "CONVERT(VARCHAR(MAX), '') + '" : "'";
  return start + pieces + "'";
}

std::string SqlDateLiteral(Date date, bool with_time) {
  if (date == EmptyDate() || date.days == 0) return "null";
  return "CONVERT(DATETIME,'" + Format(date, with_time ? "yyyy-mm-dd Hh:Nn:Ss" : "yyyy-mm-dd", Locale{}) + "',102)";
}

}  // namespace quenta::base
