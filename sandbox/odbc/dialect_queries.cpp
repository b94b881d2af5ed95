// SELECT in the dialect.
#include <algorithm>
#include <array>

#include "base/text.h"
#include "sandbox/odbc/translator.h"

namespace quenta::sandbox {
namespace {

std::string Numbered(std::size_t index) {
  return "c" + base::DecimalText(static_cast<int>(index + 1));
}

// A number that is not whole leaves as text: the driver would cut it to 15 digits.
std::string ForClient(const std::string& sql, const SqlType& type) {
  const bool whole = type.is_integer() || !type.is_number();
  return whole ? sql : "ss_number(" + sql + ")";
}

[[noreturn]] void RaiseNotSortable() {
  throw ServerError(message::kLargeText,
                    "The text, ntext, and image data types cannot be compared or sorted, except when "
                    "using IS NULL or LIKE operator.");
}

}  // namespace

// SELECT … [UNION [ALL] SELECT …]… [ORDER BY …]
SelectQuery Translator::Select(const Scope* outer, QueryPlace place) {
  std::vector<SelectCore> cores{Core(outer)};
  std::vector<std::string> joints;
  while (TakeWord("UNION")) {
    joints.push_back(TakeWord("ALL") ? " UNION ALL " : " UNION ");
    cores.push_back(Core(outer));
    if (cores.back().outputs.size() != cores.front().outputs.size())
      throw ServerError(message::kUnequalUnion,
                        "All queries combined using a UNION, INTERSECT or EXCEPT operator must have "
                        "an equal number of expressions in their target lists.");
  }
  SelectQuery query;
  if (cores.size() == 1) {
    const SelectCore& core = cores.front();
    query.sql = Render(core, place, place == QueryPlace::kSubquery);
    const std::string order = OrderBy(core, false);
    query.ordered = !order.empty() && core.limit.empty();
    query.sql += order + core.limit;
    for (const Output& output : core.outputs) query.columns.push_back({output.name, output.value.type});
    return query;
  }

  // A union is read through a query around it, which names, sorts and sends its columns.
  for (std::size_t i = 0; i < cores.front().outputs.size(); ++i) {
    SqlType type;
    for (const SelectCore& core : cores)
      if (core.outputs[i].value.type.kind > type.kind) type = core.outputs[i].value.type;
    for (const SelectCore& core : cores)
      if (type.is_text())
        type.size = type.size == 0 || core.outputs[i].value.type.size == 0
                        ? 0
                        : std::max(type.size, core.outputs[i].value.type.size);
    for (SelectCore& core : cores) {
      Fragment& value = core.outputs[i].value;
      value = Converted(std::move(value), type, Conversion::kCompare);
    }
    query.columns.push_back({cores.front().outputs[i].name, type});
  }
  std::string inside;
  for (std::size_t i = 0; i < cores.size(); ++i) {
    if (!cores[i].limit.empty())
      throw ServerError(message::kSandboxLimit, "The sandbox does not know TOP inside a UNION.");
    inside += (i == 0 ? "" : joints[i - 1]) + Render(cores[i], QueryPlace::kDerived, true);
  }
  std::string list;
  for (std::size_t i = 0; i < query.columns.size(); ++i) {
    const std::string column = QuoteName(Numbered(i));
    const std::string name = place == QueryPlace::kDerived ? query.columns[i].name : Numbered(i);
    list += (i == 0 ? "" : ", ") + (place == QueryPlace::kResult ? ForClient(column, query.columns[i].type) : column) +
            " AS " + QuoteName(name);
  }
  const std::string order = OrderBy(cores.front(), true);
  query.ordered = !order.empty();
  query.sql = "SELECT " + list + " FROM (" + inside + ")" + order;
  return query;
}

// One SELECT up to its HAVING. The list stands before the FROM that gives its names a meaning, so FROM is read first.
SelectCore Translator::Core(const Scope* outer) {
  ExpectWord("SELECT");
  SelectCore core;
  core.scope.outer = outer;
  core.distinct = TakeWord("DISTINCT");
  if (!core.distinct) TakeWord("ALL");
  if (TakeWord("TOP")) {
    const bool parenthesis = TakeSign("(");
    core.limit = " LIMIT " + base::DecimalText(WholeNumber());
    if (parenthesis) ExpectSign(")");
    if (IsWord("PERCENT") || IsWord("WITH"))
      throw ServerError(message::kSandboxLimit, "The sandbox knows TOP with a number of rows only.");
  }
  const std::size_t list = at_;
  std::size_t depth = 0;
  constexpr std::array kAfterList{"FROM",   "WHERE",  "GROUP",  "HAVING", "ORDER", "UNION", "SELECT",
                                  "INSERT", "UPDATE", "DELETE", "CREATE", "DROP",  "SET"};
  const auto list_ends = [&] {
    return IsSign(";") ||
           std::any_of(kAfterList.begin(), kAfterList.end(), [&](const char* word) { return IsWord(word); });
  };
  while (Peek().kind != TokenKind::kEnd && !(depth == 0 && list_ends())) {
    if (IsSign("(")) ++depth;
    if (IsSign(")") && depth-- == 0) break;
    ++at_;
  }
  std::size_t behind_from = at_;
  const bool has_from = TakeWord("FROM");
  if (has_from) {
    FromClause(core, outer);
    behind_from = at_;
  }
  at_ = list;
  SelectList(core);
  if (has_from) {
    // The list must end where FROM begins.
    if (!IsWord("FROM")) RaiseSyntax();
    at_ = behind_from;
  }
  if (TakeWord("WHERE")) {
    const Fragment condition = Condition(core.scope);
    if (condition.aggregate)
      throw ServerError(message::kSyntax,
                        "An aggregate may not appear in the WHERE clause unless it is in a subquery "
                        "contained in a HAVING clause or a select list.");
    core.where = condition.sql;
  }
  if (TakeWord("GROUP")) {
    ExpectWord("BY");
    do {
      core.groups.push_back(Scalar(core.scope));
      if (core.groups.back().type.is_large_text()) RaiseNotSortable();
    } while (TakeSign(","));
  }
  if (TakeWord("HAVING")) core.having = Condition(core.scope).sql;
  CheckGrouping(core);
  return core;
}

void Translator::SelectList(SelectCore& core) {
  const auto add_all = [&](const Source& source) {
    for (const SchemaColumn& column : source.columns) {
      Fragment value{
          .sql = QuoteName(source.alias) + "." + QuoteName(column.name), .type = column.type, .column = column.name};
      value.loose_columns.push_back(value.sql);
      core.outputs.push_back({std::move(value), column.name});
    }
  };
  do {
    if (TakeSign("*")) {
      if (core.scope.sources.empty()) throw ServerError(263, "Must specify table to select from.");
      for (const Source& source : core.scope.sources) add_all(source);
      continue;
    }
    if (IsName() && IsSign(".", 1) && IsSign("*", 2)) {
      const std::string alias = Name();
      at_ += 2;
      const auto source =
          std::find_if(core.scope.sources.begin(), core.scope.sources.end(),
                       [&](const Source& candidate) { return base::EqualIgnoreCase(candidate.alias, alias); });
      if (source == core.scope.sources.end())
        throw ServerError(
            107, "The column prefix '" + alias + "' does not match with a table name or alias name used in the query.");
      add_all(*source);
      continue;
    }
    Output output{.value = Scalar(core.scope), .name = {}};
    output.name = output.value.column;
    if (TakeWord("AS")) {
      output.name = Peek().kind == TokenKind::kText ? tokens_[at_++].text : Name();
    } else if (IsName() || Peek().kind == TokenKind::kText) {
      output.name = tokens_[at_++].text;
    }
    core.outputs.push_back(std::move(output));
  } while (TakeSign(","));
  if (core.distinct)
    for (const Output& output : core.outputs)
      if (output.value.type.is_large_text()) RaiseNotSortable();
}

void Translator::FromClause(SelectCore& core, const Scope* outer) {
  TableSource(core, outer);
  for (;;) {
    std::string join;
    if (TakeSign(",") || IsWord("CROSS")) {
      if (TakeWord("CROSS")) ExpectWord("JOIN");
      core.from += " CROSS JOIN ";
      TableSource(core, outer);
      continue;
    }
    if (TakeWord("LEFT")) {
      join = " LEFT JOIN ";
    } else if (TakeWord("RIGHT")) {
      join = " RIGHT JOIN ";
    } else if (TakeWord("FULL")) {
      join = " FULL JOIN ";
    } else if (IsWord("INNER") || IsWord("JOIN")) {
      TakeWord("INNER");
      join = " JOIN ";
    } else {
      return;
    }
    if (join != " JOIN ") TakeWord("OUTER");
    ExpectWord("JOIN");
    core.from += join;
    TableSource(core, outer);
    ExpectWord("ON");
    core.from += " ON " + Condition(core.scope).sql;
  }
}

void Translator::TableSource(SelectCore& core, const Scope* outer) {
  Source source;
  if (TakeSign("(")) {
    if (!IsWord("SELECT")) throw ServerError(message::kSandboxLimit, "The sandbox does not know joins in parentheses.");
    const SelectQuery query = Select(outer, QueryPlace::kDerived);
    ExpectSign(")");
    RefuseOrder(query);
    TakeWord("AS");
    source.alias = Name();
    for (std::size_t i = 0; i < query.columns.size(); ++i) {
      const ResultColumn& column = query.columns[i];
      if (column.name.empty())
        throw ServerError(8155, "No column name was specified for column " +
                                    base::DecimalText(static_cast<int>(i + 1)) + " of '" + source.alias + "'.");
      if (FindColumn(source.columns, column.name))
        throw ServerError(8156,
                          "The column '" + column.name + "' was specified multiple times for '" + source.alias + "'.");
      source.columns.push_back({.name = column.name, .type = column.type});
    }
    core.from += "(" + query.sql + ") AS " + QuoteName(source.alias);
  } else {
    const std::string name = ObjectName();
    const SchemaObject* object = schema_.Find(name);
    if (!object) throw ServerError(message::kInvalidObject, "Invalid object name '" + name + "'.");
    result_.touches_tables = true;
    source.alias = object->name;
    source.columns = object->columns;
    if (TakeWord("AS") || IsName()) source.alias = Name();
    core.from += QuoteName(object->name) + " AS " + QuoteName(source.alias);
    // Lock hints change nothing here.
    if (TakeWord("WITH") || (IsSign("(") && IsWord("NOLOCK", 1))) {
      ExpectSign("(");
      while (!TakeSign(")")) {
        if (Peek().kind == TokenKind::kEnd) RaiseSyntax();
        ++at_;
      }
    }
  }
  for (const Source& other : core.scope.sources)
    if (base::EqualIgnoreCase(other.alias, source.alias))
      throw ServerError(
          1013, "The objects \"" + other.alias + "\" and \"" + source.alias +
                    "\" in the FROM clause have the same exposed names. Use correlation names to distinguish them.");
  core.scope.sources.push_back(std::move(source));
}

void Translator::RefuseOrder(const SelectQuery& query) {
  if (query.ordered)
    throw ServerError(message::kOrderInView,
                      "The ORDER BY clause is invalid in views, inline functions, derived tables, "
                      "subqueries, and common table expressions, unless TOP is also specified.");
}

void Translator::CheckGrouping(const SelectCore& core) const {
  const bool aggregates = std::any_of(core.outputs.begin(), core.outputs.end(),
                                      [](const Output& output) { return output.value.aggregate; });
  if (core.groups.empty() && !aggregates && core.having.empty()) return;
  const auto grouped = [&](const std::string& sql) {
    return std::any_of(core.groups.begin(), core.groups.end(), [&](const Fragment& group) { return group.sql == sql; });
  };
  for (const Output& output : core.outputs) {
    if (grouped(output.value.sql)) continue;
    for (const std::string& column : output.value.loose_columns)
      if (!grouped(column))
        throw ServerError(message::kNotGrouped,
                          "Column '" + base::ReplaceAll(column, "\"", "") +
                              "' is invalid in the select list because it is not contained in either "
                              "an aggregate function or the GROUP BY clause.");
  }
}

// " ORDER BY …" or nothing. A bare name means a column of the result before one of the tables.
std::string Translator::OrderBy(const SelectCore& core, bool compound) {
  if (!TakeWord("ORDER")) return {};
  ExpectWord("BY");
  std::string list;
  do {
    Fragment key;
    std::optional<std::size_t> output;
    if (Peek().kind == TokenKind::kNumber) {
      const std::int64_t position = WholeNumber();
      if (position < 1 || position > static_cast<std::int64_t>(core.outputs.size()))
        throw ServerError(108, "The ORDER BY position number " + base::DecimalText(position) +
                                   " is out of range of the number of items in the select list.");
      output = static_cast<std::size_t>(position - 1);
    } else if (IsName() && !IsSign(".", 1) && !IsSign("(", 1)) {
      for (std::size_t i = 0; i < core.outputs.size(); ++i) {
        if (!base::EqualIgnoreCase(core.outputs[i].name, Peek().text)) continue;
        if (output && core.outputs[*output].value.sql != core.outputs[i].value.sql)
          throw ServerError(message::kAmbiguousColumn, "Ambiguous column name '" + Peek().text + "'.");
        output = i;
      }
      if (output) ++at_;
    }
    if (output) {
      key = core.outputs[*output].value;
      if (compound) key.sql = QuoteName(Numbered(*output));
    } else if (compound) {
      throw ServerError(104,
                        "ORDER BY items must appear in the select list if the statement contains a UNION, INTERSECT or "
                        "EXCEPT operator.");
    } else {
      key = Scalar(core.scope);
      const bool listed = std::any_of(core.outputs.begin(), core.outputs.end(),
                                      [&](const Output& item) { return item.value.sql == key.sql; });
      if (core.distinct && !listed)
        throw ServerError(145, "ORDER BY items must appear in the select list if SELECT DISTINCT is specified.");
    }
    if (key.type.is_large_text()) RaiseNotSortable();
    list += (list.empty() ? "" : ", ") + key.sql + (key.type.is_text() ? std::string(kCollate) : "");
    if (TakeWord("DESC")) {
      list += " DESC";
    } else {
      TakeWord("ASC");
    }
  } while (TakeSign(","));
  return " ORDER BY " + list;
}

std::string Translator::Render(const SelectCore& core, QueryPlace place, bool numbered) const {
  std::string sql = core.distinct ? "SELECT DISTINCT " : "SELECT ";
  for (std::size_t i = 0; i < core.outputs.size(); ++i) {
    const Output& output = core.outputs[i];
    sql += i == 0 ? "" : ", ";
    sql += place == QueryPlace::kResult ? ForClient(output.value.sql, output.value.type) : output.value.sql;
    if (output.value.type.is_text() && (core.distinct || place == QueryPlace::kDerived || numbered)) sql += kCollate;
    if (numbered) {
      sql += " AS " + QuoteName(Numbered(i));
    } else if (place == QueryPlace::kDerived && !output.name.empty()) {
      sql += " AS " + QuoteName(output.name);
    }
  }
  if (!core.from.empty()) sql += " FROM " + core.from;
  if (!core.where.empty()) sql += " WHERE " + core.where;
  for (std::size_t i = 0; i < core.groups.size(); ++i)
    sql += (i == 0 ? " GROUP BY " : ", ") + core.groups[i].sql +
           (core.groups[i].type.is_text() ? std::string(kCollate) : "");
  if (!core.having.empty()) sql += " HAVING " + core.having;
  return sql;
}

}  // namespace quenta::sandbox
