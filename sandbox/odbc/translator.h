// The inside of the dialect: a recursive-descent translator over tokens. Used by dialect*.cpp only.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/odbc/conversion.h"
#include "sandbox/odbc/dialect.h"
#include "sandbox/odbc/server_error.h"

namespace quenta::sandbox {

// A translated expression: SQLite's text and what is known about its value.
struct Fragment {
  std::string sql{};
  SqlType type{};
  std::optional<Cell> constant{};  // the value of a literal
  std::string column{};            // the name of a bare column reference
  // Columns named outside an aggregate: a grouped query may only name grouped ones.
  std::vector<std::string> loose_columns{};
  bool aggregate = false;
};

// A table, view or derived table that a FROM clause brings in.
struct Source {
  std::string alias;  // empty where columns are written without one (CHECK, DEFAULT)
  std::vector<SchemaColumn> columns;
};

struct Scope {
  std::vector<Source> sources;
  const Scope* outer = nullptr;  // of the query around a subquery
};

struct Output {
  Fragment value;
  std::string name;
};

// One SELECT without ORDER BY.
struct SelectCore {
  Scope scope;
  bool distinct = false;
  std::string limit;
  std::vector<Output> outputs;
  std::string from;
  std::string where;
  std::vector<Fragment> groups;
  std::string having;
};

// A whole SELECT: SQL and the columns it yields.
struct SelectQuery {
  std::string sql;
  std::vector<ResultColumn> columns;
  bool ordered = false;  // has an ORDER BY that no TOP gives a meaning to
};

enum class QueryPlace {
  kResult,    // the client reads it: numbers leave as text, columns go by position
  kDerived,   // a FROM clause, a view or an INSERT reads it by column name
  kSubquery,  // an expression reads its first column
};

// The quoted name; the collation name as the extension registers it.
std::string QuoteName(std::string_view name);
std::string QuoteText(std::string_view text);
std::string Literal(const Cell& cell);
inline constexpr std::string_view kCollate = " COLLATE SERVER";

class Translator {
 public:
  Translator(const std::vector<Token>& tokens, std::size_t& at, const Schema& schema, const SessionFacts& facts)
      : tokens_(tokens), at_(at), schema_(schema), facts_(facts) {}

  Translation Statement();

 private:
  // tokens
  const Token& Peek(std::size_t ahead = 0) const;
  bool IsWord(std::string_view word, std::size_t ahead = 0) const;
  bool IsSign(std::string_view sign, std::size_t ahead = 0) const;
  bool TakeWord(std::string_view word);
  bool TakeSign(std::string_view sign);
  void ExpectWord(std::string_view word);
  void ExpectSign(std::string_view sign);
  bool IsName(std::size_t ahead = 0) const;
  std::string Name();
  std::string ObjectName();
  std::int64_t WholeNumber();
  [[noreturn]] void RaiseSyntax() const;

  // expressions
  Fragment Scalar(const Scope& scope);
  Fragment Sum(const Scope& scope);
  Fragment Product(const Scope& scope);
  Fragment Factor(const Scope& scope);
  Fragment Primary(const Scope& scope);
  Fragment ColumnReference(const Scope& scope);
  Fragment FunctionCall(const Scope& scope, const std::string& name);
  Fragment ConvertCall(const Scope& scope, bool cast);
  Fragment AggregateCall(const Scope& scope, const std::string& name);
  Fragment CaseExpression(const Scope& scope);
  Fragment Arithmetic(const std::string& sign, Fragment left, Fragment right);
  SqlType TypeName_();
  std::vector<Fragment> Arguments(const Scope& scope);
  Fragment Condition(const Scope& scope);
  Fragment AndCondition(const Scope& scope);
  Fragment NotCondition(const Scope& scope);
  Fragment Predicate(const Scope& scope);
  Fragment Comparison(const std::string& sign, Fragment left, Fragment right);
  Fragment InList(const Scope& scope, Fragment left, bool negated);
  bool ParenthesisHoldsScalar() const;

  // queries
  SelectQuery Select(const Scope* outer, QueryPlace place);
  SelectCore Core(const Scope* outer);
  void SelectList(SelectCore& core);
  void FromClause(SelectCore& core, const Scope* outer);
  void TableSource(SelectCore& core, const Scope* outer);
  static void RefuseOrder(const SelectQuery& query);
  void CheckGrouping(const SelectCore& core) const;
  std::string OrderBy(const SelectCore& core, bool compound);
  std::string Render(const SelectCore& core, QueryPlace place, bool numbered) const;

  // statements
  void InsertStatement();
  void UpdateStatement();
  void DeleteStatement();
  void CreateStatement();
  void CreateTable();
  void CreateIndex(bool unique);
  void CreateView();
  void DropStatement();
  void SetStatement();
  std::string TableColumn(SchemaObject& table, std::vector<std::string>& constraints);
  bool TableConstraint(const SchemaObject& table, const std::string& only_column,
                       std::vector<std::string>& constraints);
  std::vector<std::string> ColumnList(const SchemaObject& object);
  void RecordObject(const SchemaObject& object);
  void RecordConstraint(const SchemaConstraint& constraint);
  void AddUniqueIndex(const std::string& name, const SchemaObject& table, const std::vector<std::string>& columns,
                      std::string_view kind);
  std::string Assigned(Fragment value, const SchemaColumn& column);
  const SchemaObject& WritableTable(const std::string& name) const;

  const std::vector<Token>& tokens_;
  std::size_t& at_;
  const Schema& schema_;
  const SessionFacts& facts_;
  Translation result_;
  std::vector<std::string> after_;  // statements that follow the main one
  bool has_primary_key_ = false;
  bool has_identity_ = false;
};

// The fragment converted to a type; literals are converted here and now, and fail here. `place` is ConvertCell's.
Fragment Converted(Fragment value, const SqlType& to, Conversion conversion, std::optional<int> style = std::nullopt,
                   std::string_view place = {});

const SchemaColumn* FindColumn(const std::vector<SchemaColumn>& columns, std::string_view name);

}  // namespace quenta::sandbox
