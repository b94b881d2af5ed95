#include "sandbox/odbc/sql_type.h"

#include <array>
#include <charconv>
#include <vector>

#include "base/text.h"

namespace quenta::sandbox {
namespace {

enum class Arguments { kNone, kSize, kDecimal };

struct TypeRow {
  SqlKind kind;
  std::string_view name;
  Arguments arguments = Arguments::kNone;
  int longest = 0;
};

// The first row of a kind gives its name.
constexpr std::array kTypes{
    TypeRow{SqlKind::kText, "TEXT"},
    TypeRow{SqlKind::kChar, "CHAR", Arguments::kSize, 8000},
    TypeRow{SqlKind::kVarChar, "VARCHAR", Arguments::kSize, 8000},
    TypeRow{SqlKind::kNText, "NTEXT"},
    TypeRow{SqlKind::kNChar, "NCHAR", Arguments::kSize, 4000},
    TypeRow{SqlKind::kNVarChar, "NVARCHAR", Arguments::kSize, 4000},
    TypeRow{SqlKind::kBit, "BIT"},
    TypeRow{SqlKind::kTinyInt, "TINYINT"},
    TypeRow{SqlKind::kSmallInt, "SMALLINT"},
    TypeRow{SqlKind::kInt, "INT"},
    TypeRow{SqlKind::kInt, "INTEGER"},
    TypeRow{SqlKind::kBigInt, "BIGINT"},
    TypeRow{SqlKind::kSmallMoney, "SMALLMONEY"},
    TypeRow{SqlKind::kMoney, "MONEY"},
    TypeRow{SqlKind::kDecimal, "DECIMAL", Arguments::kDecimal, 38},
    TypeRow{SqlKind::kDecimal, "NUMERIC", Arguments::kDecimal, 38},
    TypeRow{SqlKind::kReal, "REAL"},
    TypeRow{SqlKind::kFloat, "FLOAT", Arguments::kSize, 53},
    TypeRow{SqlKind::kSmallDateTime, "SMALLDATETIME"},
    TypeRow{SqlKind::kDateTime, "DATETIME"},
};

std::optional<int> ParseCount(std::string_view text) {
  text = base::Trim(text);
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

const TypeRow& RowOf(SqlKind kind) {
  for (const TypeRow& row : kTypes)
    if (row.kind == kind) return row;
  static constexpr TypeRow kNoType{SqlKind::kNone, "NULL"};
  return kNoType;
}

}  // namespace

std::optional<SqlType> ParseSqlType(std::string_view text) {
  const std::size_t open = text.find('(');
  const std::string_view name = base::Trim(text.substr(0, open));
  std::vector<std::string_view> arguments;
  if (open != std::string_view::npos) {
    const std::size_t close = text.find(')', open);
    if (close == std::string_view::npos || !base::Trim(text.substr(close + 1)).empty()) return std::nullopt;
    std::string_view inside = text.substr(open + 1, close - open - 1);
    for (std::size_t comma = 0; comma != std::string_view::npos;) {
      comma = inside.find(',');
      arguments.push_back(base::Trim(inside.substr(0, comma)));
      if (comma != std::string_view::npos) inside.remove_prefix(comma + 1);
    }
  }
  for (const TypeRow& row : kTypes) {
    if (!base::EqualIgnoreCase(row.name, name)) continue;
    SqlType type{.kind = row.kind};
    if (arguments.empty()) {
      // CHAR and VARCHAR without a length are of one character in a table.
      if (type.is_text() && row.arguments == Arguments::kSize) type.size = 1;
      return type;
    }
    if (row.arguments == Arguments::kNone || arguments.size() > (row.arguments == Arguments::kDecimal ? 2u : 1u))
      return std::nullopt;
    if (row.arguments == Arguments::kSize && base::EqualIgnoreCase(arguments[0], "MAX"))
      return type.kind == SqlKind::kVarChar || type.kind == SqlKind::kNVarChar ? std::optional(type) : std::nullopt;
    const std::optional<int> first = ParseCount(arguments[0]);
    if (!first || *first < 1 || *first > row.longest) return std::nullopt;
    if (row.kind == SqlKind::kFloat) {
      if (*first <= 24) type.kind = SqlKind::kReal;
      return type;
    }
    if (row.arguments == Arguments::kSize) {
      type.size = *first;
      return type;
    }
    type.precision = *first;
    if (arguments.size() == 2) {
      const std::optional<int> scale = ParseCount(arguments[1]);
      if (!scale || *scale < 0 || *scale > type.precision) return std::nullopt;
      type.scale = *scale;
    }
    return type;
  }
  return std::nullopt;
}

std::string TypeText(const SqlType& type) {
  const TypeRow& row = RowOf(type.kind);
  std::string text(row.name);
  if (type.kind == SqlKind::kDecimal)
    return text + "(" + base::DecimalText(type.precision) + "," + base::DecimalText(type.scale) + ")";
  if (type.is_text() && row.arguments == Arguments::kSize)
    return text + "(" + (type.size == 0 ? "MAX" : base::DecimalText(type.size)) + ")";
  return text;
}

std::string TypeName(const SqlType& type) {
  if (type.kind == SqlKind::kDecimal) return "numeric";
  return base::ToLower(RowOf(type.kind).name);
}

}  // namespace quenta::sandbox
