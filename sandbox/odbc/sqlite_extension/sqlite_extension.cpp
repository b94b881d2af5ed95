// The loadable SQLite extension of the sandbox: the server's text comparison, and the functions that the dialect calls.
#include <sqlite3ext.h>
SQLITE_EXTENSION_INIT1

#include <array>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "base/ansi.h"
#include "base/text.h"
#include "sandbox/odbc/conversion.h"
#include "sandbox/odbc/server_error.h"
#include "sandbox/odbc/sql_type.h"
#include "sandbox/odbc/text_comparison.h"

namespace quenta::sandbox {
namespace {

// Functions of an argument list; they may throw, Guarded below may not.
using Arguments = sqlite3_value**;

std::string_view TextOf(sqlite3_value* value) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return text ? std::string_view(text, static_cast<std::size_t>(sqlite3_value_bytes(value))) : std::string_view();
}

bool IsNull(sqlite3_value* value) {
  return sqlite3_value_type(value) == SQLITE_NULL;
}

Cell CellOf(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      return std::int64_t{sqlite3_value_int64(value)};
    case SQLITE_FLOAT:
      return sqlite3_value_double(value);
    case SQLITE_NULL:
      return std::monostate();
    default:
      return std::string(TextOf(value));
  }
}

void SetText(sqlite3_context* context, std::string_view text) {
  sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void SetResult(sqlite3_context* context, const Cell& cell) {
  if (const auto* integer = std::get_if<std::int64_t>(&cell)) {
    sqlite3_result_int64(context, *integer);
  } else if (const auto* number = std::get_if<double>(&cell)) {
    sqlite3_result_double(context, *number);
  } else if (const auto* text = std::get_if<std::string>(&cell)) {
    SetText(context, *text);
  } else {
    sqlite3_result_null(context);
  }
}

template <auto Function>
void Guarded(sqlite3_context* context, int count, Arguments arguments) noexcept {
  try {
    Function(context, count, arguments);
  } catch (const ServerError& error) {
    sqlite3_result_error(context, EncodeServerError(error).c_str(), -1);
  } catch (const std::exception& error) {
    sqlite3_result_error(context, error.what(), -1);
  }
}

struct TypePair {
  SqlType from;
  SqlType to;
};

void DeleteTypePair(void* pair) noexcept {
  delete static_cast<TypePair*>(pair);
}

// The types in arguments 1 and 2, parsed once for each statement: they are literals there.
TypePair TypesOf(sqlite3_context* context, Arguments arguments) {
  if (const void* known = sqlite3_get_auxdata(context, 1)) return *static_cast<const TypePair*>(known);
  const auto from = ParseSqlType(TextOf(arguments[1]));
  const auto to = ParseSqlType(TextOf(arguments[2]));
  if (!from || !to) throw ServerError(message::kSandboxLimit, "Unknown type in a conversion.");
  auto pair = std::make_unique<TypePair>(TypePair{*from, *to});
  const TypePair copy = *pair;
  sqlite3_set_auxdata(context, 1, pair.release(), DeleteTypePair);
  return copy;
}

// ss_convert(value, from, to, how [, style, or the place that is assigned to])
void ConvertFunction(sqlite3_context* context, int count, Arguments arguments) {
  if (IsNull(arguments[0])) return sqlite3_result_null(context);
  const TypePair types = TypesOf(context, arguments);
  const std::string_view how = TextOf(arguments[3]);
  const Conversion conversion = how == "assign"    ? Conversion::kAssign
                                : how == "compare" ? Conversion::kCompare
                                                   : Conversion::kConvert;
  const bool assigns = conversion == Conversion::kAssign;
  const int style = count > 4 && !assigns ? sqlite3_value_int(arguments[4]) : 0;
  const std::string_view place = count > 4 && assigns ? TextOf(arguments[4]) : std::string_view();
  SetResult(context, ConvertCell(CellOf(arguments[0]), types.from, types.to, conversion, style, place));
}

// ss_like(pattern, text [, escape])
void LikeFunction(sqlite3_context* context, int count, Arguments arguments) {
  if (IsNull(arguments[0]) || IsNull(arguments[1])) return sqlite3_result_null(context);
  std::optional<char32_t> escape;
  if (count > 2) {
    const std::string_view sign = TextOf(arguments[2]);
    if (sign.size() != 1) throw ServerError(506, "The invalid escape character was specified in a LIKE predicate.");
    escape = static_cast<unsigned char>(sign[0]);
  }
  sqlite3_result_int(context, MatchesPattern(TextOf(arguments[1]), TextOf(arguments[0]), escape) ? 1 : 0);
}

// ss_number(x): text from which the very same number can be read.
void NumberFunction(sqlite3_context* context, int, Arguments arguments) {
  if (IsNull(arguments[0])) return sqlite3_result_null(context);
  SetText(context, DoubleText(sqlite3_value_double(arguments[0])));
}

// ss_getdate(now): rounded as DATETIME stores it. The environment can stop the server's clock.
void GetDateFunction(sqlite3_context* context, int, Arguments arguments) {
  constexpr int kStyleWithMilliseconds = 121;
  const char* const stopped = std::getenv("QUENTA_NOW");
  SetResult(context, ConvertCell(stopped != nullptr ? Cell(std::string(stopped)) : CellOf(arguments[0]),
                                 TypeOf(SqlKind::kVarChar), TypeOf(SqlKind::kDateTime), Conversion::kConvert,
                                 kStyleWithMilliseconds));
}

// ss_char(n): the character of the code page, NULL outside it.
void CharFunction(sqlite3_context* context, int, Arguments arguments) {
  const sqlite3_int64 code = sqlite3_value_int64(arguments[0]);
  if (IsNull(arguments[0]) || code < 0 || code > 255) return sqlite3_result_null(context);
  const auto byte = static_cast<char>(code);
  SetText(context, base::FromAnsi(std::string_view(&byte, 1)));
}

void UpperFunction(sqlite3_context* context, int, Arguments arguments) {
  if (!IsNull(arguments[0])) SetText(context, base::ToUpper(TextOf(arguments[0])));
}

void LowerFunction(sqlite3_context* context, int, Arguments arguments) {
  if (!IsNull(arguments[0])) SetText(context, base::ToLower(TextOf(arguments[0])));
}

// ss_dateadd(part, count, date)
void DateAddFunction(sqlite3_context* context, int, Arguments arguments) {
  if (IsNull(arguments[1]) || IsNull(arguments[2])) return sqlite3_result_null(context);
  SetText(context,
          AddToDate(TextOf(arguments[0]), sqlite3_value_int64(arguments[1]), std::string(TextOf(arguments[2]))));
}

// ss_datepart(part, date)
void DatePartFunction(sqlite3_context* context, int, Arguments arguments) {
  if (IsNull(arguments[1])) return sqlite3_result_null(context);
  sqlite3_result_int64(context, DatePart(TextOf(arguments[0]), std::string(TextOf(arguments[1]))));
}

void DivideFunction(sqlite3_context* context, int, Arguments arguments) {
  if (IsNull(arguments[0]) || IsNull(arguments[1])) return sqlite3_result_null(context);
  SetResult(context, Divide(CellOf(arguments[0]), CellOf(arguments[1])));
}

void ModuloFunction(sqlite3_context* context, int, Arguments arguments) {
  if (IsNull(arguments[0]) || IsNull(arguments[1])) return sqlite3_result_null(context);
  SetResult(context, Modulo(CellOf(arguments[0]), CellOf(arguments[1])));
}

// ss_round(x, places)
void RoundFunction(sqlite3_context* context, int, Arguments arguments) {
  constexpr int kMostPlaces = 15;
  if (IsNull(arguments[0]) || IsNull(arguments[1])) return sqlite3_result_null(context);
  const int places = sqlite3_value_int(arguments[1]);
  if (places < 0 || places > kMostPlaces)
    throw ServerError(message::kSandboxLimit, "The sandbox rounds to 0 to 15 places only.");
  const SqlType type{.kind = SqlKind::kDecimal, .precision = 38, .scale = places};
  SetResult(context, ConvertCell(CellOf(arguments[0]), TypeOf(SqlKind::kFloat), type, Conversion::kConvert));
}

void VersionFunction(sqlite3_context* context, int, Arguments) {
  sqlite3_result_int(context, 1);
}

int Collate(void*, int left_size, const void* left, int right_size, const void* right) noexcept {
  return CompareText({static_cast<const char*>(left), static_cast<std::size_t>(left_size)},
                     {static_cast<const char*>(right), static_cast<std::size_t>(right_size)});
}

struct FunctionRow {
  const char* name;
  int arguments;
  void (*call)(sqlite3_context*, int, Arguments);
};

constexpr std::array kFunctions{
    FunctionRow{"ss_convert", 4, Guarded<ConvertFunction>},   FunctionRow{"ss_convert", 5, Guarded<ConvertFunction>},
    FunctionRow{"ss_like", 2, Guarded<LikeFunction>},         FunctionRow{"ss_like", 3, Guarded<LikeFunction>},
    FunctionRow{"ss_number", 1, Guarded<NumberFunction>},     FunctionRow{"ss_getdate", 1, Guarded<GetDateFunction>},
    FunctionRow{"ss_char", 1, Guarded<CharFunction>},         FunctionRow{"ss_upper", 1, Guarded<UpperFunction>},
    FunctionRow{"ss_lower", 1, Guarded<LowerFunction>},       FunctionRow{"ss_dateadd", 3, Guarded<DateAddFunction>},
    FunctionRow{"ss_datepart", 2, Guarded<DatePartFunction>}, FunctionRow{"ss_divide", 2, Guarded<DivideFunction>},
    FunctionRow{"ss_modulo", 2, Guarded<ModuloFunction>},     FunctionRow{"ss_round", 2, Guarded<RoundFunction>},
    FunctionRow{"ss_version", 0, Guarded<VersionFunction>},
};

}  // namespace
}  // namespace quenta::sandbox

// SQLite looks this name up when the data source loads the extension.
extern "C" __attribute__((visibility("default"))) int sqlite3_extension_init(sqlite3* database, char**,
                                                                             const sqlite3_api_routines* api) noexcept {
  SQLITE_EXTENSION_INIT2(api);
  int result = sqlite3_create_collation_v2(database, "SERVER", SQLITE_UTF8, nullptr, quenta::sandbox::Collate, nullptr);
  for (const quenta::sandbox::FunctionRow& row : quenta::sandbox::kFunctions) {
    if (result != SQLITE_OK) break;
    result = sqlite3_create_function_v2(database, row.name, row.arguments,
                                        SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, nullptr, row.call,
                                        nullptr, nullptr, nullptr);
  }
  return result;
}
