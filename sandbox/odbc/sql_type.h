// The server's column types, as the sandbox's dialect, its SQLite extension and its ODBC side share them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quenta::sandbox {

// In the server's order of precedence: where two kinds meet, the higher one wins. kNone is the bare NULL.
enum class SqlKind {
  kNone,
  kText,
  kChar,
  kVarChar,
  kNText,
  kNChar,
  kNVarChar,
  kBit,
  kTinyInt,
  kSmallInt,
  kInt,
  kBigInt,
  kSmallMoney,
  kMoney,
  kDecimal,
  kReal,
  kFloat,
  kSmallDateTime,
  kDateTime,
};

struct SqlType {
  SqlKind kind = SqlKind::kNone;
  int size = 0;        // characters of the sized text kinds; 0 is MAX
  int precision = 18;  // of kDecimal
  int scale = 0;
  bool operator==(const SqlType&) const = default;

  bool is_text() const { return kind >= SqlKind::kText && kind <= SqlKind::kNVarChar; }
  bool is_national() const { return kind >= SqlKind::kNText && kind <= SqlKind::kNVarChar; }
  // TEXT and NTEXT, which the server neither compares nor sorts.
  bool is_large_text() const { return kind == SqlKind::kText || kind == SqlKind::kNText; }
  bool is_fixed_text() const { return kind == SqlKind::kChar || kind == SqlKind::kNChar; }
  bool is_number() const { return kind >= SqlKind::kBit && kind <= SqlKind::kFloat; }
  bool is_integer() const { return kind >= SqlKind::kBit && kind <= SqlKind::kBigInt; }
  bool is_date() const { return kind == SqlKind::kSmallDateTime || kind == SqlKind::kDateTime; }
};

inline SqlType TypeOf(SqlKind kind) {
  return {.kind = kind};
}

// A type as a CREATE TABLE writes it: "INT", "varchar(20)", "NVARCHAR(MAX)", "decimal(9, 2)". Nothing when there is no
// such type or its arguments are out of the server's range.
std::optional<SqlType> ParseSqlType(std::string_view text);

// The way back, in upper case: "DECIMAL(9,2)", "VARCHAR(MAX)".
std::string TypeText(const SqlType& type);

// The name alone as the server's messages write it: "varchar", "int", "numeric" for DECIMAL.
std::string TypeName(const SqlType& type);

}  // namespace quenta::sandbox
