// Expressions and conditions of the dialect.
#include <algorithm>
#include <array>
#include <charconv>

#include "base/ansi.h"
#include "base/text.h"
#include "sandbox/odbc/translator.h"

namespace quenta::sandbox {
namespace {

// What a composite takes over from its parts.
void Absorb(Fragment& whole, const Fragment& part) {
  whole.loose_columns.insert(whole.loose_columns.end(), part.loose_columns.begin(), part.loose_columns.end());
  whole.aggregate = whole.aggregate || part.aggregate;
}

Fragment Compose(std::string sql, const SqlType& type, std::initializer_list<const Fragment*> parts) {
  Fragment whole{.sql = std::move(sql), .type = type};
  for (const Fragment* part : parts) Absorb(whole, *part);
  return whole;
}

Fragment LiteralFragment(const Cell& cell, const SqlType& type) {
  return {.sql = Literal(cell), .type = type, .constant = cell};
}

constexpr int LongestText(bool national) {
  return national ? 4000 : 8000;
}

// A text kind of that many characters; MAX beyond what a sized one holds.
SqlType TextType(int size, bool national) {
  return {.kind = national ? SqlKind::kNVarChar : SqlKind::kVarChar, .size = size > LongestText(national) ? 0 : size};
}

int SizeAdded(const SqlType& a, const SqlType& b) {
  return a.size == 0 || b.size == 0 ? 0 : a.size + b.size;
}

// Decimal digits and places of a number of the kind, as arithmetic with decimals sees it.
SqlType AsDecimal(const SqlType& type) {
  switch (type.kind) {
    case SqlKind::kDecimal:
      return type;
    case SqlKind::kMoney:
      return {.kind = SqlKind::kDecimal, .precision = 19, .scale = 4};
    case SqlKind::kSmallMoney:
      return {.kind = SqlKind::kDecimal, .precision = 10, .scale = 4};
    case SqlKind::kBigInt:
      return {.kind = SqlKind::kDecimal, .precision = 19, .scale = 0};
    default:
      return {.kind = SqlKind::kDecimal, .precision = 10, .scale = 0};
  }
}

// Of two kinds that meet, the one that the other is converted to.
SqlType Higher(const SqlType& a, const SqlType& b) {
  if (a.kind == SqlKind::kDecimal && b.kind == SqlKind::kDecimal) {
    const int scale = std::max(a.scale, b.scale);
    const int whole = std::max(a.precision - a.scale, b.precision - b.scale);
    return {.kind = SqlKind::kDecimal, .precision = std::min(38, whole + scale), .scale = scale};
  }
  if (a.is_text() && b.is_text()) {
    const bool national = a.is_national() || b.is_national();
    return TextType(a.size == 0 || b.size == 0 ? 0 : std::max(a.size, b.size), national);
  }
  return a.kind >= b.kind ? a : b;
}

bool SameClass(const SqlType& a, const SqlType& b) {
  return (a.is_text() && b.is_text()) || (a.is_number() && b.is_number()) || (a.is_date() && b.is_date());
}

// Brings two sides to one class of type, as the server does before it compares or joins them.
void Unify(Fragment& left, Fragment& right) {
  if (left.type.kind == SqlKind::kNone || right.type.kind == SqlKind::kNone || SameClass(left.type, right.type)) return;
  SqlType to = Higher(left.type, right.type);
  // Text beside a decimal takes the decimal's places, but not its few digits.
  if (to.kind == SqlKind::kDecimal) to.precision = 38;
  Fragment& lower = left.type.kind < right.type.kind ? left : right;
  lower = Converted(std::move(lower), to, Conversion::kCompare);
}

std::string SignName(const std::string& sign) {
  if (sign == "=") return "equal to";
  if (sign == "<>") return "not equal to";
  if (sign == "<") return "less than";
  if (sign == ">") return "greater than";
  if (sign == "<=") return "less than or equal to";
  if (sign == ">=") return "greater than or equal to";
  return sign == "+" ? "add" : sign == "-" ? "subtract" : sign == "*" ? "multiply" : sign == "/" ? "divide" : "modulo";
}

// Two texts joined. Unless one is MAX, what is beyond the longest sized text is cut. Literals are joined here and now:
// SQLite's expressions may be 1000 levels deep, and notes have more quotes.
Fragment JoinedTexts(const Fragment& left, const Fragment& right) {
  const bool national = left.type.is_national() || right.type.is_national();
  const int size = SizeAdded(left.type, right.type);
  const SqlType type = TextType(size, national);
  Fragment whole =
      left.constant && right.constant
          ? LiteralFragment(std::get<std::string>(*left.constant) + std::get<std::string>(*right.constant), type)
          : Compose("(" + left.sql + " || " + right.sql + ")", type, {&left, &right});
  const int longest = LongestText(national);
  if (size <= longest) return whole;
  return Converted(std::move(whole), TextType(longest, national), Conversion::kConvert);
}

[[noreturn]] void RaiseIncompatible(const SqlType& left, const SqlType& right, const std::string& sign) {
  throw ServerError(message::kIncompatibleTypes, "The data types " + TypeName(left) + " and " + TypeName(right) +
                                                     " are incompatible in the " + SignName(sign) + " operator.");
}

[[noreturn]] void RaiseInvalidOperand(const SqlType& type, const std::string& where) {
  throw ServerError(message::kInvalidOperand,
                    "Operand data type " + TypeName(type) + " is invalid for " + where + " operator.");
}

bool NeedsConversion(const SqlType& from, const SqlType& to, Conversion conversion) {
  if (conversion == Conversion::kCompare) return !SameClass(from, to);
  if (from.is_text() && to.is_text()) {
    const bool narrows = from.is_national() && !to.is_national();
    const bool fits = to.size == 0 || (from.size != 0 && from.size <= to.size);
    const bool padded = to.is_fixed_text() && !(from.is_fixed_text() && from.size == to.size);
    return narrows || !fits || padded;
  }
  if (from.is_integer() && to.is_integer()) return from.kind > to.kind;
  if (from.kind == to.kind) return from.precision != to.precision || from.scale != to.scale;
  return true;
}

}  // namespace

std::string QuoteName(std::string_view name) {
  return "\"" + base::ReplaceAll(name, "\"", "\"\"") + "\"";
}

std::string QuoteText(std::string_view text) {
  return "'" + base::ReplaceAll(text, "'", "''") + "'";
}

std::string Literal(const Cell& cell) {
  if (const auto* integer = std::get_if<std::int64_t>(&cell)) return base::DecimalText(*integer);
  if (const auto* number = std::get_if<double>(&cell)) return DoubleText(*number);
  if (const auto* text = std::get_if<std::string>(&cell)) return QuoteText(*text);
  return "NULL";
}

const SchemaColumn* FindColumn(const std::vector<SchemaColumn>& columns, std::string_view name) {
  const auto found = std::find_if(columns.begin(), columns.end(),
                                  [&](const SchemaColumn& column) { return base::EqualIgnoreCase(column.name, name); });
  return found == columns.end() ? nullptr : &*found;
}

Fragment Converted(Fragment value, const SqlType& to, Conversion conversion, std::optional<int> style,
                   std::string_view place) {
  if (value.type.kind == SqlKind::kNone) {
    value.type = to;
    return value;
  }
  if (value.constant)
    return LiteralFragment(ConvertCell(*value.constant, value.type, to, conversion, style.value_or(0), place), to);
  // Only a stored column is known to keep to its type; arithmetic may leave it.
  const bool may_leave_type = value.type.is_number() && value.column.empty() && conversion != Conversion::kCompare;
  if (!may_leave_type && !style && !NeedsConversion(value.type, to, conversion)) {
    value.type = to;
    return value;
  }
  const char* how = conversion == Conversion::kAssign    ? "assign"
                    : conversion == Conversion::kCompare ? "compare"
                                                         : "convert";
  std::string sql = "ss_convert(" + value.sql + "," + QuoteText(TypeText(value.type)) + "," + QuoteText(TypeText(to)) +
                    ",'" + how + "'" + (style ? "," + base::DecimalText(*style) : "") +
                    (place.empty() ? "" : "," + QuoteText(place)) + ")";
  return Compose(std::move(sql), to, {&value});
}

// ---- tokens

const Token& Translator::Peek(std::size_t ahead) const {
  return tokens_[std::min(at_ + ahead, tokens_.size() - 1)];
}

bool Translator::IsWord(std::string_view word, std::size_t ahead) const {
  const Token& token = Peek(ahead);
  return token.kind == TokenKind::kWord && base::EqualIgnoreCase(token.text, word);
}

bool Translator::IsSign(std::string_view sign, std::size_t ahead) const {
  const Token& token = Peek(ahead);
  return token.kind == TokenKind::kSign && token.text == sign;
}

bool Translator::TakeWord(std::string_view word) {
  if (!IsWord(word)) return false;
  ++at_;
  return true;
}

bool Translator::TakeSign(std::string_view sign) {
  if (!IsSign(sign)) return false;
  ++at_;
  return true;
}

void Translator::ExpectWord(std::string_view word) {
  if (!TakeWord(word)) RaiseSyntax();
}

void Translator::ExpectSign(std::string_view sign) {
  if (!TakeSign(sign)) RaiseSyntax();
}

bool Translator::IsName(std::size_t ahead) const {
  const Token& token = Peek(ahead);
  return token.kind == TokenKind::kQuotedName || (token.kind == TokenKind::kWord && !IsReserved(token.text));
}

std::string Translator::Name() {
  if (!IsName()) RaiseSyntax();
  return tokens_[at_++].text;
}

// "table", "dbo.table", "catalogue.dbo.table" or "catalogue..table": the last part, where the parts before it are ours.
std::string Translator::ObjectName() {
  std::vector<std::string> parts{Name()};
  while (TakeSign(".")) parts.push_back(IsSign(".") ? std::string() : Name());
  const std::size_t count = parts.size();
  const bool our_schema = count < 2 || parts[count - 2].empty() || base::EqualIgnoreCase(parts[count - 2], "dbo");
  const bool our_catalogue = count < 3 || (count == 3 && base::EqualIgnoreCase(parts[0], facts_.catalogue));
  if (!our_schema || !our_catalogue) {
    std::string whole = parts[0];
    for (std::size_t i = 1; i < count; ++i) whole += "." + parts[i];
    throw ServerError(message::kInvalidObject, "Invalid object name '" + whole + "'.");
  }
  return parts.back();
}

std::int64_t Translator::WholeNumber() {
  const bool negative = TakeSign("-");
  const Token& token = Peek();
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(token.text.data(), token.text.data() + token.text.size(), number);
  if (token.kind != TokenKind::kNumber || error != std::errc() || end != token.text.data() + token.text.size())
    RaiseSyntax();
  ++at_;
  return negative ? -number : number;
}

void Translator::RaiseSyntax() const {
  const Token& token = Peek();
  if (token.kind == TokenKind::kEnd)
    throw ServerError(message::kSyntax, "Incorrect syntax near the end of the statement.");
  const bool keyword = token.kind == TokenKind::kWord && IsReserved(token.text);
  throw ServerError(message::kSyntax,
                    std::string("Incorrect syntax near ") + (keyword ? "the keyword " : "") + "'" + token.text + "'.");
}

// ---- scalars

Fragment Translator::Scalar(const Scope& scope) {
  return Sum(scope);
}

Fragment Translator::Sum(const Scope& scope) {
  Fragment left = Product(scope);
  while (IsSign("+") || IsSign("-")) {
    const std::string sign = tokens_[at_++].text;
    left = Arithmetic(sign, std::move(left), Product(scope));
  }
  return left;
}

Fragment Translator::Product(const Scope& scope) {
  Fragment left = Factor(scope);
  while (IsSign("*") || IsSign("/") || IsSign("%")) {
    const std::string sign = tokens_[at_++].text;
    left = Arithmetic(sign, std::move(left), Factor(scope));
  }
  return left;
}

Fragment Translator::Factor(const Scope& scope) {
  if (TakeSign("+")) return Factor(scope);
  if (!TakeSign("-")) return Primary(scope);
  Fragment value = Factor(scope);
  if (value.constant && value.type.is_number()) {
    if (auto* integer = std::get_if<std::int64_t>(&*value.constant)) return LiteralFragment(-*integer, value.type);
    return LiteralFragment(-std::get<double>(*value.constant), value.type);
  }
  if (value.type.is_text() || value.type.is_date()) RaiseInvalidOperand(value.type, "minus");
  return Compose("(-" + value.sql + ")", value.type, {&value});
}

Fragment Translator::Arithmetic(const std::string& sign, Fragment left, Fragment right) {
  if (left.type.is_large_text() || right.type.is_large_text()) RaiseIncompatible(left.type, right.type, sign);
  const bool joins = sign == "+" && (left.type.is_text() || left.type.kind == SqlKind::kNone) &&
                     (right.type.is_text() || right.type.kind == SqlKind::kNone) &&
                     (left.type.is_text() || right.type.is_text());
  if (joins) return JoinedTexts(left, right);
  if (left.type.is_text() && right.type.is_text()) RaiseInvalidOperand(left.type, SignName(sign));
  if (left.type.is_date() || right.type.is_date()) {
    Fragment& date = left.type.is_date() ? left : right;
    Fragment& days = left.type.is_date() ? right : left;
    if ((sign != "+" && sign != "-") || !days.type.is_integer() || (sign == "-" && &days == &left))
      throw ServerError(message::kSandboxLimit, "The sandbox adds only whole days to a date.");
    const std::string count = sign == "-" ? "(-" + days.sql + ")" : days.sql;
    return Compose("ss_dateadd('day'," + count + "," + date.sql + ")", date.type, {&left, &right});
  }
  Unify(left, right);
  SqlType type = Higher(left.type, right.type);
  if (type.kind == SqlKind::kDecimal) {
    const SqlType a = AsDecimal(left.type);
    const SqlType b = AsDecimal(right.type);
    type.scale = sign == "*"   ? a.scale + b.scale
                 : sign == "/" ? std::max(6, a.scale + b.precision + 1)
                               : std::max(a.scale, b.scale);
    type.scale = std::min(type.scale, 15);
    type.precision = 38;
  } else if (type.kind == SqlKind::kBit) {
    RaiseInvalidOperand(type, SignName(sign));
  }
  if (sign == "/" || sign == "%") {
    // SQLite keeps the amount 5.00 as the whole number 5, which must still divide like an amount.
    const std::string dividend = type.is_integer() ? left.sql : "CAST(" + left.sql + " AS REAL)";
    const std::string function = sign == "/" ? "ss_divide(" : "ss_modulo(";
    return Compose(function + dividend + "," + right.sql + ")", type, {&left, &right});
  }
  return Compose("(" + left.sql + " " + sign + " " + right.sql + ")", type, {&left, &right});
}

Fragment Translator::Primary(const Scope& scope) {
  const Token& token = Peek();
  switch (token.kind) {
    case TokenKind::kText: {
      ++at_;
      const int length = std::max(1, static_cast<int>(base::Utf16Length(token.text)));
      return LiteralFragment(token.text, TextType(length, token.national));
    }
    case TokenKind::kNumber: {
      ++at_;
      const std::string& text = token.text;
      if (text.find_first_of("eE") != std::string::npos) {
        double number = 0;
        std::from_chars(text.data(), text.data() + text.size(), number);
        return LiteralFragment(number, TypeOf(SqlKind::kFloat));
      }
      std::int64_t integer = 0;
      const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), integer);
      const bool whole = error == std::errc() && end == text.data() + text.size();
      if (whole && integer <= 2147483647) return LiteralFragment(integer, TypeOf(SqlKind::kInt));
      // Beyond INT, a whole number is a decimal.
      const std::size_t point = text.find('.');
      SqlType type{.kind = SqlKind::kDecimal};
      type.scale = point == std::string::npos ? 0 : static_cast<int>(text.size() - point - 1);
      type.precision = std::max(1, static_cast<int>(text.size()) - (point == std::string::npos ? 0 : 1));
      if (whole) return LiteralFragment(integer, type);
      double number = 0;
      std::from_chars(text.data(), text.data() + text.size(), number);
      return LiteralFragment(number, type);
    }
    case TokenKind::kVariable:
      if (!base::EqualIgnoreCase(token.text, "@@TRANCOUNT"))
        throw ServerError(message::kSandboxLimit, "The sandbox does not know the variable '" + token.text + "'.");
      ++at_;
      return {.sql = base::DecimalText(facts_.transaction_count), .type = TypeOf(SqlKind::kInt)};
    case TokenKind::kSign: {
      if (!TakeSign("(")) RaiseSyntax();
      if (IsWord("SELECT")) {
        const SelectQuery query = Select(&scope, QueryPlace::kSubquery);
        ExpectSign(")");
        RefuseOrder(query);
        if (query.columns.size() != 1)
          throw ServerError(message::kSyntax,
                            "Only one expression can be specified in the select list when the subquery "
                            "is not introduced with EXISTS.");
        return {.sql = "(" + query.sql + ")", .type = query.columns[0].type};
      }
      Fragment inside = Scalar(scope);
      ExpectSign(")");
      if (!inside.constant && inside.column.empty()) inside.sql = "(" + inside.sql + ")";
      return inside;
    }
    case TokenKind::kWord:
      if (TakeWord("NULL")) return {.sql = "NULL"};
      if (IsWord("CASE")) return CaseExpression(scope);
      if (IsSign("(", 1)) {
        const std::string name = base::ToUpper(token.text);
        at_ += 2;
        return FunctionCall(scope, name);
      }
      return ColumnReference(scope);
    case TokenKind::kQuotedName:
      return ColumnReference(scope);
    case TokenKind::kEnd:
      break;
  }
  RaiseSyntax();
}

Fragment Translator::ColumnReference(const Scope& scope) {
  std::vector<std::string> parts{Name()};
  while (TakeSign(".")) parts.push_back(Name());
  const std::string& name = parts.back();
  // Of "dbo.table.column" the table decides.
  const std::string qualifier = parts.size() > 1 ? parts[parts.size() - 2] : std::string();
  for (const Scope* level = &scope; level; level = level->outer) {
    const Source* found = nullptr;
    const SchemaColumn* column = nullptr;
    bool qualifier_known = false;
    for (const Source& source : level->sources) {
      if (!qualifier.empty() && !base::EqualIgnoreCase(source.alias, qualifier)) continue;
      qualifier_known = true;
      const SchemaColumn* candidate = FindColumn(source.columns, name);
      if (!candidate) continue;
      if (found) throw ServerError(message::kAmbiguousColumn, "Ambiguous column name '" + name + "'.");
      found = &source;
      column = candidate;
    }
    if (found) {
      std::string sql =
          found->alias.empty() ? QuoteName(column->name) : QuoteName(found->alias) + "." + QuoteName(column->name);
      Fragment reference{.sql = sql, .type = column->type, .column = name};
      reference.loose_columns.push_back(std::move(sql));
      return reference;
    }
    if (!qualifier.empty() && qualifier_known) break;
  }
  if (!qualifier.empty()) {
    bool known = false;
    for (const Scope* level = &scope; level; level = level->outer)
      for (const Source& source : level->sources) known = known || base::EqualIgnoreCase(source.alias, qualifier);
    if (!known)
      throw ServerError(message::kUnboundColumn,
                        "The multi-part identifier \"" + qualifier + "." + name + "\" could not be bound.");
  }
  throw ServerError(message::kInvalidColumn, "Invalid column name '" + name + "'.");
}

std::vector<Fragment> Translator::Arguments(const Scope& scope) {
  std::vector<Fragment> arguments;
  if (TakeSign(")")) return arguments;
  do {
    arguments.push_back(Scalar(scope));
  } while (TakeSign(","));
  ExpectSign(")");
  return arguments;
}

SqlType Translator::TypeName_() {
  std::string text = Name();
  if (TakeSign("(")) {
    text += "(";
    while (!IsSign(")")) {
      if (Peek().kind == TokenKind::kEnd) RaiseSyntax();
      text += tokens_[at_++].text;
    }
    ++at_;
    text += ")";
  }
  const std::optional<SqlType> type = ParseSqlType(text);
  if (!type) throw ServerError(message::kSandboxLimit, "The sandbox does not know the data type '" + text + "'.");
  return *type;
}

// CONVERT(type, value [, style]) and CAST(value AS type), behind the opening parenthesis.
Fragment Translator::ConvertCall(const Scope& scope, bool cast) {
  constexpr int kDefaultTextSize = 30;
  SqlType type;
  Fragment value;
  std::optional<int> style;
  const auto read_type = [&] {
    const bool sized = IsSign("(", 1);
    type = TypeName_();
    if (!sized && type.is_text() && !type.is_large_text()) type.size = kDefaultTextSize;
  };
  if (cast) {
    value = Scalar(scope);
    ExpectWord("AS");
    read_type();
  } else {
    read_type();
    ExpectSign(",");
    value = Scalar(scope);
    if (TakeSign(",")) style = static_cast<int>(WholeNumber());
  }
  ExpectSign(")");
  return Converted(std::move(value), type, Conversion::kConvert, style);
}

Fragment Translator::AggregateCall(const Scope& scope, const std::string& name) {
  if (name == "COUNT" && TakeSign("*")) {
    ExpectSign(")");
    return {.sql = "COUNT(*)", .type = TypeOf(SqlKind::kInt), .aggregate = true};
  }
  const bool distinct = TakeWord("DISTINCT");
  if (!distinct) TakeWord("ALL");
  Fragment value = Scalar(scope);
  ExpectSign(")");
  if (value.aggregate)
    throw ServerError(message::kSyntax,
                      "Cannot perform an aggregate function on an expression containing an aggregate or a subquery.");
  const bool adds = name == "SUM" || name == "AVG";
  if (value.type.is_large_text() || (adds && (!value.type.is_number() || value.type.kind == SqlKind::kBit)) ||
      (value.type.kind == SqlKind::kBit && (name == "MIN" || name == "MAX")))
    throw ServerError(message::kInvalidOperand, "Operand data type " + TypeName(value.type) + " is invalid for " +
                                                    base::ToLower(name) + " operator.");
  Fragment call{.type = value.type, .aggregate = true};
  const std::string argument =
      (distinct ? "DISTINCT " : "") + value.sql + (value.type.is_text() ? std::string(kCollate) : std::string());
  call.sql = name + "(" + argument + ")";
  if (name == "COUNT") {
    call.type = TypeOf(SqlKind::kInt);
  } else if (adds) {
    if (call.type.kind == SqlKind::kTinyInt || call.type.kind == SqlKind::kSmallInt) call.type = TypeOf(SqlKind::kInt);
    if (call.type.kind == SqlKind::kSmallMoney) call.type = TypeOf(SqlKind::kMoney);
    if (call.type.kind == SqlKind::kReal) call.type = TypeOf(SqlKind::kFloat);
    if (call.type.kind == SqlKind::kDecimal) {
      call.type.precision = 38;
      if (name == "AVG") call.type.scale = std::max(6, call.type.scale);
    }
    if (name == "AVG" && call.type.is_integer()) call.sql = "CAST(" + call.sql + " AS INTEGER)";
  }
  return call;
}

Fragment Translator::FunctionCall(const Scope& scope, const std::string& name) {
  if (name == "CONVERT" || name == "CAST") return ConvertCall(scope, name == "CAST");
  if (name == "COUNT" || name == "SUM" || name == "AVG" || name == "MIN" || name == "MAX")
    return AggregateCall(scope, name);
  if (name == "DATEADD" || name == "DATEPART") {
    const std::string part = QuoteText(Name());
    ExpectSign(",");
    const std::vector<Fragment> rest = Arguments(scope);
    if (rest.size() != (name == "DATEADD" ? 2u : 1u)) RaiseSyntax();
    Fragment date = Converted(rest.back(), TypeOf(SqlKind::kDateTime), Conversion::kCompare);
    if (name == "DATEPART")
      return Compose("ss_datepart(" + part + "," + date.sql + ")", TypeOf(SqlKind::kInt), {&date});
    return Compose("ss_dateadd(" + part + "," + rest[0].sql + "," + date.sql + ")", date.type, {&rest[0], &date});
  }

  std::vector<Fragment> arguments = Arguments(scope);
  const auto takes = [&](std::size_t fewest, std::size_t most) {
    if (arguments.size() < fewest || arguments.size() > most)
      throw ServerError(174, "The " + base::ToLower(name) + " function requires " +
                                 base::DecimalText(static_cast<int>(fewest)) + " argument(s).");
  };
  const auto text = [&](std::size_t index) -> const Fragment& {
    if (!arguments[index].type.is_text())
      arguments[index] = Converted(std::move(arguments[index]), {.kind = SqlKind::kVarChar}, Conversion::kCompare);
    return arguments[index];
  };
  const auto call_on_text = [&](const std::string& function) {
    takes(1, 1);
    return Compose(function + "(" + text(0).sql + ")", arguments[0].type, {&arguments[0]});
  };

  if (name == "GETDATE") {
    takes(0, 0);
    // "now" stays the same throughout one statement, as on the server.
    return {.sql = "ss_getdate(strftime('%Y-%m-%d %H:%M:%f','now','localtime'))", .type = TypeOf(SqlKind::kDateTime)};
  }
  if (name == "CHAR" || name == "NCHAR") {
    takes(1, 1);
    const SqlType type = TextType(1, name == "NCHAR");
    const auto* code = arguments[0].constant ? std::get_if<std::int64_t>(&*arguments[0].constant) : nullptr;
    if (code && name == "CHAR" && *code >= 0 && *code <= 255)
      return LiteralFragment(base::FromAnsi(std::string(1, static_cast<char>(*code))), type);
    return Compose((name == "CHAR" ? "ss_char(" : "char(") + arguments[0].sql + ")", type, {&arguments[0]});
  }
  if (name == "DB_NAME") {
    takes(0, 0);
    return LiteralFragment(facts_.catalogue, TextType(128, true));
  }
  if (name == "ISNULL") {
    takes(2, 2);
    if (arguments[0].type.kind == SqlKind::kNone) return arguments[1];
    const Fragment other = Converted(arguments[1], arguments[0].type, Conversion::kConvert);
    return Compose("ifnull(" + arguments[0].sql + "," + other.sql + ")", arguments[0].type, {&arguments[0], &other});
  }
  if (name == "COALESCE") {
    takes(2, 100);
    SqlType type;
    for (const Fragment& argument : arguments) type = Higher(type, argument.type);
    Fragment whole{.sql = "coalesce(", .type = type};
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      const Fragment part = Converted(arguments[i], type, Conversion::kCompare);
      whole.sql += (i == 0 ? "" : ",") + part.sql;
      Absorb(whole, part);
    }
    whole.sql += ")";
    return whole;
  }
  if (name == "NULLIF") {
    takes(2, 2);
    Fragment equal = Comparison("=", arguments[0], arguments[1]);
    return Compose("CASE WHEN " + equal.sql + " THEN NULL ELSE " + arguments[0].sql + " END", arguments[0].type,
                   {&equal});
  }
  if (name == "LEN") {
    takes(1, 1);
    return Compose("length(rtrim(" + text(0).sql + "))", TypeOf(SqlKind::kInt), {&arguments[0]});
  }
  if (name == "LTRIM" || name == "RTRIM") return call_on_text(base::ToLower(name));
  if (name == "UPPER" || name == "LOWER") return call_on_text("ss_" + base::ToLower(name));
  if (name == "LEFT" || name == "RIGHT") {
    takes(2, 2);
    const std::string start = name == "LEFT" ? "1" : "max(length(" + text(0).sql + ")-" + arguments[1].sql + ",0)+1";
    return Compose("substr(" + text(0).sql + "," + start + "," + arguments[1].sql + ")", arguments[0].type,
                   {&arguments[0], &arguments[1]});
  }
  if (name == "SUBSTRING") {
    takes(3, 3);
    return Compose("substr(" + text(0).sql + "," + arguments[1].sql + "," + arguments[2].sql + ")", arguments[0].type,
                   {&arguments[0], &arguments[1], &arguments[2]});
  }
  if (name == "ABS") {
    takes(1, 1);
    if (!arguments[0].type.is_number()) RaiseInvalidOperand(arguments[0].type, "abs");
    return Compose("abs(" + arguments[0].sql + ")", arguments[0].type, {&arguments[0]});
  }
  if (name == "ROUND") {
    takes(2, 2);
    if (!arguments[0].type.is_number()) RaiseInvalidOperand(arguments[0].type, "round");
    return Compose("ss_round(" + arguments[0].sql + "," + arguments[1].sql + ")", arguments[0].type,
                   {&arguments[0], &arguments[1]});
  }
  if (name == "YEAR" || name == "MONTH" || name == "DAY") {
    takes(1, 1);
    const Fragment date = Converted(arguments[0], TypeOf(SqlKind::kDateTime), Conversion::kCompare);
    return Compose("ss_datepart('" + base::ToLower(name) + "'," + date.sql + ")", TypeOf(SqlKind::kInt), {&date});
  }
  throw ServerError(message::kUnknownFunction, "'" + name + "' is not a recognized built-in function name.");
}

Fragment Translator::CaseExpression(const Scope& scope) {
  ExpectWord("CASE");
  std::optional<Fragment> subject;
  if (!IsWord("WHEN")) subject = Scalar(scope);
  struct Branch {
    std::string condition;
    Fragment value;
  };
  std::vector<Branch> branches;
  Fragment whole;
  const auto add = [&](std::string condition, Fragment value) {
    whole.type = whole.type.kind == SqlKind::kNone ? value.type : Higher(whole.type, value.type);
    Absorb(whole, value);
    branches.push_back({std::move(condition), std::move(value)});
  };
  while (TakeWord("WHEN")) {
    const Fragment condition = subject ? Comparison("=", *subject, Scalar(scope)) : Condition(scope);
    Absorb(whole, condition);
    ExpectWord("THEN");
    add(condition.sql, Scalar(scope));
  }
  if (branches.empty()) RaiseSyntax();
  if (TakeWord("ELSE")) add("", Scalar(scope));
  ExpectWord("END");
  whole.sql = "CASE";
  for (Branch& branch : branches) {
    const Fragment value = Converted(std::move(branch.value), whole.type, Conversion::kCompare);
    whole.sql += branch.condition.empty() ? " ELSE " + value.sql : " WHEN " + branch.condition + " THEN " + value.sql;
  }
  whole.sql += " END";
  return whole;
}

// ---- conditions

Fragment Translator::Condition(const Scope& scope) {
  Fragment left = AndCondition(scope);
  while (TakeWord("OR")) {
    const Fragment right = AndCondition(scope);
    left = Compose(left.sql + " OR " + right.sql, {}, {&left, &right});
  }
  return left;
}

Fragment Translator::AndCondition(const Scope& scope) {
  Fragment left = NotCondition(scope);
  while (TakeWord("AND")) {
    const Fragment right = NotCondition(scope);
    left = Compose(left.sql + " AND " + right.sql, {}, {&left, &right});
  }
  return left;
}

Fragment Translator::NotCondition(const Scope& scope) {
  if (!TakeWord("NOT")) return Predicate(scope);
  const Fragment inside = NotCondition(scope);
  return Compose("NOT (" + inside.sql + ")", {}, {&inside});
}

// At "(": whether it opens an operand ("(a + b) * 2 > c") and not a condition ("(a = b OR c = d)"). What follows the
// closing parenthesis tells.
bool Translator::ParenthesisHoldsScalar() const {
  if (IsWord("SELECT", 1)) return true;
  std::size_t depth = 0;
  std::size_t ahead = 0;
  do {
    if (Peek(ahead).kind == TokenKind::kEnd) return false;
    if (IsSign("(", ahead)) ++depth;
    if (IsSign(")", ahead)) --depth;
    ++ahead;
  } while (depth > 0);
  if (Peek(ahead).kind == TokenKind::kSign) return !IsSign(")", ahead) && !IsSign(";", ahead) && !IsSign(",", ahead);
  const bool negated = IsWord("NOT", ahead);
  const std::size_t word = ahead + (negated ? 1 : 0);
  return IsWord("IN", word) || IsWord("LIKE", word) || IsWord("BETWEEN", word) || IsWord("IS", word);
}

Fragment Translator::Predicate(const Scope& scope) {
  if (IsSign("(") && !ParenthesisHoldsScalar()) {
    ++at_;
    Fragment inside = Condition(scope);
    ExpectSign(")");
    inside.sql = "(" + inside.sql + ")";
    return inside;
  }
  if (TakeWord("EXISTS")) {
    ExpectSign("(");
    const SelectQuery query = Select(&scope, QueryPlace::kSubquery);
    ExpectSign(")");
    return {.sql = "EXISTS (" + query.sql + ")"};
  }
  Fragment left = Scalar(scope);
  if (TakeWord("IS")) {
    const bool negated = TakeWord("NOT");
    ExpectWord("NULL");
    return Compose(left.sql + (negated ? " IS NOT NULL" : " IS NULL"), {}, {&left});
  }
  const bool negated = TakeWord("NOT");
  if (TakeWord("IN")) return InList(scope, std::move(left), negated);
  if (TakeWord("BETWEEN")) {
    Fragment low = Scalar(scope);
    ExpectWord("AND");
    Fragment high = Scalar(scope);
    const Fragment from = Comparison(">=", left, std::move(low));
    const Fragment to = Comparison("<=", left, std::move(high));
    return Compose((negated ? "NOT (" : "(") + from.sql + " AND " + to.sql + ")", {}, {&from, &to});
  }
  if (TakeWord("LIKE")) {
    Fragment pattern = Scalar(scope);
    const SqlType any_text{.kind = SqlKind::kNVarChar};
    if (!left.type.is_text()) left = Converted(std::move(left), any_text, Conversion::kCompare);
    if (!pattern.type.is_text()) pattern = Converted(std::move(pattern), any_text, Conversion::kCompare);
    std::string escape;
    if (TakeWord("ESCAPE")) escape = "," + Scalar(scope).sql;
    return Compose((negated ? "NOT ss_like(" : "ss_like(") + pattern.sql + "," + left.sql + escape + ")", {},
                   {&left, &pattern});
  }
  if (negated || Peek().kind != TokenKind::kSign) RaiseSyntax();
  struct SignRow {
    std::string_view written;
    std::string_view plain;
  };
  constexpr std::array kSigns{SignRow{"=", "="},   SignRow{"<>", "<>"}, SignRow{"!=", "<>"},
                              SignRow{"<", "<"},   SignRow{">", ">"},   SignRow{"<=", "<="},
                              SignRow{">=", ">="}, SignRow{"!<", ">="}, SignRow{"!>", "<="}};
  for (const SignRow& row : kSigns)
    if (TakeSign(row.written)) return Comparison(std::string(row.plain), std::move(left), Scalar(scope));
  RaiseSyntax();
}

Fragment Translator::Comparison(const std::string& sign, Fragment left, Fragment right) {
  if (left.type.is_large_text() || right.type.is_large_text()) RaiseIncompatible(left.type, right.type, sign);
  Unify(left, right);
  const bool of_text = left.type.is_text() || right.type.is_text();
  return Compose(left.sql + (of_text ? std::string(kCollate) : std::string()) + " " + sign + " " + right.sql, {},
                 {&left, &right});
}

Fragment Translator::InList(const Scope& scope, Fragment left, bool negated) {
  const std::string word = negated ? " NOT IN (" : " IN (";
  const auto collated = [](const Fragment& side) {
    return side.sql + (side.type.is_text() ? std::string(kCollate) : "");
  };
  ExpectSign("(");
  if (left.type.is_large_text()) RaiseIncompatible(left.type, left.type, "=");
  if (IsWord("SELECT")) {
    SelectQuery query = Select(&scope, QueryPlace::kSubquery);
    ExpectSign(")");
    RefuseOrder(query);
    Fragment column{.sql = "\"q\".\"c1\"", .type = query.columns[0].type};
    Unify(left, column);
    if (column.sql != "\"q\".\"c1\"") query.sql = "SELECT " + column.sql + " FROM (" + query.sql + ") AS \"q\"";
    return Compose(collated(left) + word + query.sql + ")", {}, {&left});
  }
  std::vector<Fragment> items = Arguments(scope);
  // One number among the items makes the whole comparison one of numbers.
  for (Fragment& item : items) Unify(left, item);
  Fragment whole = Compose(collated(left) + word, {}, {&left});
  for (std::size_t i = 0; i < items.size(); ++i) {
    Unify(left, items[i]);
    whole.sql += (i == 0 ? "" : ", ") + items[i].sql;
    Absorb(whole, items[i]);
  }
  whole.sql += ")";
  return whole;
}

}  // namespace quenta::sandbox
