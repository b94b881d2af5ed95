// Any bytes as a text: conversions, formats and literals neither crash nor lose what they promise to keep.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/ansi.h"
#include "base/convert.h"
#include "base/error.h"
#include "base/format.h"
#include "base/sql_literal.h"
#include "base/text.h"
#include "component/session/connection_string.h"
#include "component/session/scrambler.h"
#include "support/locales.h"

namespace {

using namespace quenta;

void Require(bool holds) {
  if (!holds) std::abort();
}

bool Take(std::string_view& text, std::string_view start) {
  if (!text.starts_with(start)) return false;
  text.remove_prefix(start.size());
  return true;
}

// The text that a server reads from a literal of ours: joined pieces, in which lines may be continued.
std::string ReadBack(std::string_view literal) {
  const bool cut = !Take(literal, "CONVERT(VARCHAR(MAX), '') + ");
  std::string text;
  int pieces = 0;
  do {
    ++pieces;
    if (Take(literal, "CHAR(39)")) {
      text += "'";
      continue;
    }
    Require(Take(literal, "'"));
    while (!Take(literal, "'")) {
      if (Take(literal, "\\\n") || Take(literal, "\\\r\n")) continue;
      Require(!literal.empty());
      text += literal.front();
      literal.remove_prefix(1);
    }
  } while (Take(literal, " + "));
  Require(literal.empty());
  Require(pieces == 1 || !cut || base::Utf16Length(text) <= 8000);
  return text;
}

void CheckText(const std::string& text) {
  Require(session::Unscramble(session::Scramble(text)) == text);
  session::Unscramble(text);
  session::QuoteConnectionValue(text);
  const std::u16string units = base::ToUtf16(text);
  Require(base::ToUtf16(base::FromUtf16(units)) == units);
  Require(base::Utf16Length(text) == units.size());
  Require(base::EqualIgnoreCase(text, base::ToUpper(text)) || base::FromUtf16(units) != text);
  Require(base::ToAnsi(base::FromAnsi(text)) == text);
  for (const std::string& one : {text, "'" + std::string(8000, 'x') + text})
    Require(ReadBack(base::SqlTextLiteral(one)) == one);
}

void CheckNumber(const std::string& text, const base::Locale& locale) {
  const auto number = base::ParseNumber(text, locale);
  if (number) Require(base::ParseNumber(base::ToText(*number, locale), locale).has_value());
  for (const char* pattern : {"#,##0.00;- #,##0.00", "0.00 %", "dd-mm-yyyy", text.c_str()}) {
    try {
      base::Format(text, pattern, locale);
      if (number) base::Format(*number, pattern, locale);
    } catch (const base::Error&) {
      // Refused, which is an answer.
    }
  }
  base::ParseDate(text, locale);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string text(size, '\0');
  for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>(data[i]);
  CheckText(text);
  CheckNumber(text, tests::PortugueseLocale());
  CheckNumber(text, tests::EnglishLocale());
  return 0;
}
