#include "data/sql_field.h"

#include <optional>

#include "base/convert.h"
#include "base/format.h"
#include "base/sql_literal.h"
#include "base/text.h"
#include "component/session/guarded.h"

namespace quenta::data {
namespace {

constexpr session::Labels kLabels{"Torvik Pelora Software", "Ferramentas Administrativas", "modData",
                                  session::DescriptionStyle::kNumbered};

// It has come from another project of the suite.
constexpr session::Labels kTrtfLabels{"Torvik Pelora Software", "Sinistros_Kinto", "modCode",
                                      session::DescriptionStyle::kNumbered};

// The number in a text as the user types it: with either separator as the decimal one.
std::optional<double> LocalNumber(std::string text, const base::Locale& locale) {
  const bool comma = text.find(',') != std::string::npos;
  const bool point = text.find('.') != std::string::npos;
  if (comma && point) {
    text = base::ReplaceAll(text, locale.thousands, "");
  } else {
    text = base::ReplaceAll(text, ".", locale.decimal);
    text = base::ReplaceAll(text, ",", locale.decimal);
  }
  return base::ParseNumber(text, locale);
}

std::string NumberLiteral(const base::Value& value, const base::Locale& locale) {
  if (value.kind() == base::ValueKind::kBoolean) return value.get<bool>() ? "1" : "0";
  const std::string text = base::ToText(value, locale);
  const auto number = LocalNumber(text, locale);
  if (!number) return "null";
  // Through single precision: kept as the suite's databases have been filled by it.
  if (text.find('-') != std::string::npos) return base::NumberText(base::ToSingle(*number, locale));
  return base::PlainNumberText(base::ReplaceAll(text, ",", "."), *number);
}

// What the form's date masks show when they are empty.
constexpr std::string_view kEmptyDateMask = "- - -";

std::optional<base::Date> DateOf(const base::Value& value, const std::string& text, const base::Locale& locale) {
  if (value.is_date()) return value.get<base::Date>();
  if (const auto date = base::ParseDate(text, locale)) return date;
  if (text.size() != 8) return std::nullopt;
  // Day, month and year typed without separators.
  return base::ParseDate(text.substr(0, 2) + "-" + text.substr(2, 2) + "-" + text.substr(4), base::Locale{});
}

std::string DateLiteral(const base::Value& value, const std::string& text, bool with_time, const base::Locale& locale) {
  if (text == kEmptyDateMask) return "null";
  const auto date = DateOf(value, text, locale);
  return date ? base::SqlDateLiteral(*date, with_time) : "null";
}

std::string Literal(const base::Value& value, SQLKind kind, const base::Locale& locale) {
  const std::string text = value.is_null() ? std::string() : std::string(base::Trim(base::ToText(value, locale)));
  switch (kind) {
    case SQLKind::kText:
      return text.empty() ? "null" : base::SqlTextLiteral(text);
    case SQLKind::kTextNotNull:
      return base::SqlTextLiteral(text);
    case SQLKind::kPattern:
      return base::SqlTextLiteral("%" + base::ReplaceAll(text, " ", "%") + "%");
    case SQLKind::kNumber:
    case SQLKind::kNumber2:
      return text.empty() ? "null" : NumberLiteral(value, locale);
    case SQLKind::kDate:
    case SQLKind::kDateTime:
      return text.empty() ? "null" : DateLiteral(value, text, kind == SQLKind::kDateTime, locale);
  }
  return {};
}

std::string ListText(const base::Value& value, ListKind kind, const base::Locale& locale) {
  switch (kind) {
    case ListKind::kDate:
      return base::Format(value, "dd-mm-yyyy", locale);
    case ListKind::kNumber:
      return base::Format(value, "#,##0.00;- #,##0.00", locale);
    case ListKind::kText:
      return base::ToText(value, locale);
    case ListKind::kAmount:
      return base::Format(value, "€ #,##0.00;€ -#,##0.00", locale);
    case ListKind::kPercent:
      return base::Format(value, "0.00 %", locale);
    case ListKind::kInteger:
      return base::Format(base::ToLong(value, locale), "#,##0", locale);
    case ListKind::kDateTime:
      return base::Format(value, "dd-mm-yyyy Hh:Nn:Ss", locale);
    case ListKind::kIsoDate:
      return base::Format(value, "yyyy-mm-dd", locale);
  }
  return {};
}

}  // namespace

std::string Trtf(session::Session& session, std::string& text) {
  return session::Guarded(session.ports().error_reporting, kTrtfLabels, "Trtf",
                          [&] { return text = base::SqlSafeText(text); });
}

std::string SQLField(session::Session& session, const base::Value& value, SQLKind kind) {
  return session::Guarded(session.ports().error_reporting, kLabels, "SQLField",
                          [&] { return Literal(value, kind, session.locale()); });
}

std::string ListField(session::Session& session, const ports::Row& row, const std::string& column, ListKind kind) {
  const auto position = row.FindColumn(column);
  return position ? ListField(session, row.At(*position), kind) : " ";
}

std::string ListField(session::Session& session, const base::Value& value, ListKind kind) {
  return session::Guarded(session.ports().error_reporting, kLabels, "ListField",
                          [&] { return value.is_null() ? " " : ListText(value, kind, session.locale()); });
}

bool IsLocalNumeric(const base::Value& value, const base::Locale& locale) {
  return !value.is_null() && LocalNumber(base::ToText(value, locale), locale).has_value();
}

}  // namespace quenta::data
