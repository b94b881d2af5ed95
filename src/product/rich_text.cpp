#include "product/rich_text.h"

#include <cstdint>
#include <cstdlib>

#include "base/text.h"
#include "product/rich_text_walk.h"

namespace quenta::product {
namespace {

bool IsParameter(char c) {
  return (c >= '0' && c <= '9') || c == '-';
}

}  // namespace

std::string StringRTF(std::string_view text) {
  std::string rich_text;
  const std::u16string units = base::ToUtf16(text);
  rich_text.reserve(units.size());
  bool escaped = false;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char16_t unit = units[i];
    const bool line_end = unit == '\n' || unit == '\v' || unit == u'\u2028' || unit == u'\u2029';
    if (unit == '\r' || line_end) {
      if (unit == '\r' && i + 1 < units.size() && units[i + 1] == '\n') ++i;
      rich_text += "\\line ";
    } else if (unit == '\t') {
      rich_text += "\\tab ";
    } else if (unit < 0x20 || unit == 0x7F) {
      continue;
    } else if (unit < 0x80) {
      if (unit == '\\' || unit == '{' || unit == '}') rich_text += '\\';
      rich_text += static_cast<char>(unit);
    } else {
      // Readers take the number as a signed one of 16 bits.
      rich_text += "\\u" + base::DecimalText(static_cast<std::int16_t>(unit)) + "?";
      escaped = true;
    }
  }
  // How many bytes of fallback a reader passes over is the template's to say; the text says it for itself.
  return escaped ? "{\\uc1 " + rich_text + "}" : rich_text;
}

bool EndsInControlWord(std::string_view rich_text) {
  std::size_t at = rich_text.size();
  while (at > 0 && IsParameter(rich_text[at - 1])) --at;
  while (at > 0 && IsLetter(rich_text[at - 1])) --at;
  const bool has_letters = at < rich_text.size() && IsLetter(rich_text[at]);
  if (at < rich_text.size() && !has_letters) return false;
  std::size_t backslashes = 0;
  while (backslashes < at && rich_text[at - 1 - backslashes] == '\\') ++backslashes;
  return backslashes % 2 == 1;
}

std::optional<Stretch> FindTableRow(std::string_view rich_text, std::string_view mark) {
  Stretch row;
  bool in_row = false;      // behind a row mark, or in a row's definition
  bool definition = false;  // the definition of the row has begun
  bool holds_mark = false;
  bool cell_ended = false;  // since the mark
  bool found = false;
  int depth = 0;  // of groups, counted from where the row begins
  const auto begin_at = [&](std::size_t position) {
    row.begin = position;
    in_row = true;
    holds_mark = false;
    cell_ended = false;
    depth = 0;
  };
  Walk(
      rich_text,
      [&](int step, std::size_t) {
        depth += step;
        return true;
      },
      [&](std::string_view word, std::size_t at) {
        cell_ended = cell_ended || (holds_mark && (word == "cell" || word == "nestcell"));
        // What stands between two tables does not belong to the second one's row. Some programs write the definition
        // again behind the cells.
        if (word == "trowd" && !cell_ended && (holds_mark || !definition)) {
          begin_at(at);
          definition = true;
        }
        if (word != "row") return true;
        row.end = at + 1 + word.size();
        found = holds_mark;
        if (found) return false;
        begin_at(row.end);
        definition = false;
        return true;
      },
      [&](std::size_t at) {
        holds_mark = holds_mark || (in_row && rich_text.substr(at).starts_with(mark));
        return true;
      });
  if (!found) return std::nullopt;
  row.separator.assign(static_cast<std::size_t>(std::abs(depth)), depth > 0 ? '}' : '{');
  return row;
}

Stretch FindBody(std::string_view rich_text) {
  Stretch body;
  bool begun = false;
  int depth = 0;
  Walk(
      rich_text,
      [&](int step, std::size_t at) {
        depth += step;
        if (begun && depth == 0) body.end = at;
        return depth > 0;
      },
      [&](std::string_view word, std::size_t at) {
        if (!begun && depth == 1 && (word == "pard" || word == "trowd")) {
          body.begin = at;
          begun = true;
        }
        return true;
      },
      [](std::size_t) { return true; });
  if (body.end == 0) return {.begin = 0, .end = rich_text.size(), .separator = {}};
  return body;
}

}  // namespace quenta::product
