#include "product/csv.h"

#include <algorithm>
#include <cmath>

#include "base/convert.h"
#include "base/format.h"
#include "base/text.h"

namespace quenta::product {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr char kSeparator = ';';

// Spreadsheets pass by blanks before the sign that begins a formula.
bool IsFormula(std::string_view cell, const base::Locale& locale) {
  cell.remove_prefix(std::min(cell.find_first_not_of(' '), cell.size()));
  if (cell.empty() || std::string_view("=+-@\t\r\n").find(cell.front()) == std::string_view::npos) return false;
  return cell.front() != '-' || !base::ParseNumber(cell, locale);
}

void AppendCell(std::string& csv, std::string_view cell, const base::Locale& locale) {
  if (base::Trim(cell).empty()) return;
  const bool formula = IsFormula(cell, locale);
  const bool quoted =
      formula || cell.find_first_of(";\"\r\n\t") != std::string_view::npos || cell.front() == ' ' || cell.back() == ' ';
  if (!quoted) {
    csv += cell;
    return;
  }
  csv += '"';
  if (formula) csv += '\'';
  for (const char c : cell) {
    if (c == '"') csv += '"';
    csv += c;
  }
  csv += '"';
}

// With the century, and with the time of day where there is one.
std::string DateText(base::Date date, const base::Locale& locale) {
  std::string pattern = locale.short_date;
  if (pattern.find("yyyy") == std::string::npos) pattern = base::ReplaceAll(pattern, "yy", "yyyy");
  if (date.days != std::trunc(date.days)) pattern += " hh:nn:ss";
  return base::Format(date, pattern, locale);
}

// What the cell stands for, whole.
std::string FullText(const controls::ListView& list, int row, int column, const base::Locale& locale) {
  const std::string& cell = list.Cell(row, column);
  const base::Value& value = list.CellValue(row, column);
  switch (list.columns()[static_cast<std::size_t>(column)].sort_as) {
    case controls::SortAs::kText:
      return cell;
    case controls::SortAs::kDate:
      return value.is_date() ? DateText(value.get<base::Date>(), locale) : cell;
    case controls::SortAs::kNumber:
      break;
  }
  if (!value.is_empty() && !value.is_text() && base::IsNumeric(value, locale)) return base::ToText(value, locale);
  const auto number = base::ParseNumber(value.is_text() ? value.text() : cell, locale);
  return number ? base::ToText(*number, locale) : cell;
}

}  // namespace

std::string CsvOf(const controls::ListView& list, const base::Locale& locale) {
  const auto& columns = list.columns();
  std::string csv(kByteOrderMark);
  const auto append_row = [&](const auto& cell_of) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (i > 0) csv += kSeparator;
      AppendCell(csv, cell_of(static_cast<int>(i)), locale);
    }
    csv += "\r\n";
  };
  append_row([&](int i) { return columns[static_cast<std::size_t>(i)].caption; });
  for (int row = 0; row < list.Count(); ++row) {
    append_row([&](int i) { return FullText(list, row, i, locale); });
  }
  return csv;
}

std::string FileNameOf(std::string_view text) {
  std::string name(text);
  for (char& c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || std::string_view("<>:\"/\\|?*").find(c) != std::string_view::npos) c = '_';
  }
  return name;
}

}  // namespace quenta::product
