#include "sandbox/odbc/dialect.h"

#include <algorithm>
#include <array>

#include "base/text.h"
#include "sandbox/odbc/translator.h"

namespace quenta::sandbox {
namespace {

std::string Joined(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : ", ") + part;
  return text;
}

std::string JoinedNames(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + QuoteName(name);
  return text;
}

// What SQLite itself must refuse in the column, whoever writes it: the conversions of the dialect have let through only
// what passes here, but a file can be opened by other programs.
std::string StorageCheck(const SchemaColumn& column) {
  const std::string name = QuoteName(column.name);
  const auto check = [&](const std::string& condition) {
    return " CONSTRAINT " + QuoteName("type of " + column.name) + " CHECK (" + name + " IS NULL OR " + condition + ")";
  };
  const std::string type_of = "typeof(" + name + ")";
  switch (column.type.kind) {
    case SqlKind::kBit:
      return check(type_of + " = 'integer' AND " + name + " IN (0, 1)");
    case SqlKind::kTinyInt:
      return check(type_of + " = 'integer' AND " + name + " BETWEEN 0 AND 255");
    case SqlKind::kSmallInt:
      return check(type_of + " = 'integer' AND " + name + " BETWEEN -32768 AND 32767");
    case SqlKind::kInt:
      return check(type_of + " = 'integer' AND " + name + " BETWEEN -2147483648 AND 2147483647");
    case SqlKind::kBigInt:
      return check(type_of + " = 'integer'");
    case SqlKind::kSmallDateTime:
    case SqlKind::kDateTime:
      return check(
          type_of + " = 'text' AND " + name +
          " GLOB '[0-9][0-9][0-9][0-9]-[01][0-9]-[0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-5][0-9].[0-9][0-9][0-9]'");
    default:
      break;
  }
  if (column.type.is_number()) return check(type_of + " IN ('integer', 'real')");
  if (column.type.size == 0) return check(type_of + " = 'text'");
  return check(type_of + " = 'text' AND length(" + name + ") <= " + base::DecimalText(column.type.size));
}

// The type as SQLite's grammar takes it: MAX is no length there.
std::string StorageType(const SqlType& type) {
  return base::ReplaceAll(TypeText(type), "(MAX)", "");
}

}  // namespace

Batch::Batch(std::string_view sql) : tokens_(Tokenize(sql)) {}

bool Batch::AtEnd() const {
  const auto is_separator = [](const Token& token) { return token.kind == TokenKind::kSign && token.text == ";"; };
  std::size_t next = at_;
  while (is_separator(tokens_[next])) ++next;
  return tokens_[next].kind == TokenKind::kEnd;
}

Translation Batch::Next(const Schema& schema, const SessionFacts& facts) {
  while (tokens_[at_].kind == TokenKind::kSign && tokens_[at_].text == ";") ++at_;
  std::size_t at = at_;
  Translation translation = Translator(tokens_, at, schema, facts).Statement();
  at_ = at;
  return translation;
}

std::vector<std::string> SplitBatches(std::string_view script) {
  std::vector<std::string> batches;
  std::string batch;
  const auto finish = [&] {
    if (!Batch(batch).AtEnd()) batches.push_back(batch);
    batch.clear();
  };
  while (!script.empty()) {
    const std::size_t end = std::min(script.find('\n'), script.size());
    std::string_view line = script.substr(0, end);
    script.remove_prefix(std::min(end + 1, script.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (base::EqualIgnoreCase(base::Trim(line), "GO")) {
      finish();
    } else {
      batch += std::string(line) + "\n";
    }
  }
  finish();
  return batches;
}

Translation Translator::Statement() {
  const Token& first = Peek();
  result_.verb = base::ToUpper(first.text);
  if (IsWord("SELECT")) {
    SelectQuery query = Select(nullptr, QueryPlace::kResult);
    result_.statements = {std::move(query.sql)};
    result_.columns = std::move(query.columns);
  } else if (TakeWord("INSERT")) {
    InsertStatement();
  } else if (TakeWord("UPDATE")) {
    UpdateStatement();
  } else if (TakeWord("DELETE")) {
    DeleteStatement();
  } else if (TakeWord("CREATE")) {
    CreateStatement();
  } else if (TakeWord("DROP")) {
    DropStatement();
  } else if (TakeWord("SET")) {
    SetStatement();
  } else if (first.kind == TokenKind::kWord && IsReserved(first.text)) {
    throw ServerError(message::kSandboxLimit, "The sandbox does not know the statement '" + result_.verb + "'.");
  } else if (at_ == 0 && IsName()) {  // a batch that begins with no statement's word calls a procedure
    const std::string name = Name();
    if (Peek().kind == TokenKind::kSign && !IsSign(";") && !IsSign("-")) RaiseSyntax();
    throw ServerError(message::kNoProcedure, "Could not find stored procedure '" + name + "'.");
  } else {
    RaiseSyntax();
  }
  const Token& next = Peek();
  const bool at_end = next.kind == TokenKind::kEnd || IsSign(";");
  constexpr std::array kStarts{"SELECT", "INSERT", "UPDATE", "DELETE", "CREATE", "DROP", "SET"};
  if (!at_end && std::none_of(kStarts.begin(), kStarts.end(), [&](const char* word) { return IsWord(word); }))
    RaiseSyntax();
  if (result_.writes) result_.touches_tables = true;
  for (std::string& statement : after_) result_.statements.push_back(std::move(statement));
  return std::move(result_);
}

// ---- rows

const SchemaObject& Translator::WritableTable(const std::string& name) const {
  const SchemaObject* object = schema_.Find(name);
  if (!object) throw ServerError(message::kInvalidObject, "Invalid object name '" + name + "'.");
  if (object->is_view)
    throw ServerError(message::kSandboxLimit, "The sandbox does not write through the view '" + name + "'.");
  return *object;
}

std::string Translator::Assigned(Fragment value, const SchemaColumn& column) {
  const std::string place = "table '" + facts_.catalogue + ".dbo." + result_.table + "', column '" + column.name + "'";
  return Converted(std::move(value), column.type, Conversion::kAssign, std::nullopt, place).sql;
}

std::vector<std::string> Translator::ColumnList(const SchemaObject& object) {
  std::vector<std::string> names;
  do {
    const std::string name = Name();
    const SchemaColumn* column = FindColumn(object.columns, name);
    if (!column) throw ServerError(message::kInvalidColumn, "Invalid column name '" + name + "'.");
    if (std::find(names.begin(), names.end(), column->name) != names.end())
      throw ServerError(message::kColumnNotUnique, "The column name '" + name +
                                                       "' is specified more than once in the SET "
                                                       "clause or column list of an INSERT.");
    names.push_back(column->name);
  } while (TakeSign(","));
  return names;
}

void Translator::InsertStatement() {
  TakeWord("INTO");
  const std::string name = ObjectName();
  const SchemaObject& table = WritableTable(name);
  result_.writes = true;
  result_.table = table.name;
  std::vector<std::string> names;
  if (IsSign("(") && !IsWord("SELECT", 1)) {
    ExpectSign("(");
    names = ColumnList(table);
    ExpectSign(")");
    for (const std::string& column : names)
      if (FindColumn(table.columns, column)->identity)
        throw ServerError(544, "Cannot insert explicit value for identity column in table '" + table.name +
                                   "' when IDENTITY_INSERT is set to OFF.");
  } else {
    for (const SchemaColumn& column : table.columns)
      if (!column.identity) names.push_back(column.name);
  }
  std::string head = "INSERT INTO " + QuoteName(table.name) + " (" + JoinedNames(names) + ") ";

  if (TakeWord("DEFAULT")) {
    ExpectWord("VALUES");
    result_.statements = {"INSERT INTO " + QuoteName(table.name) + " DEFAULT VALUES"};
    return;
  }
  if (IsWord("SELECT")) {
    const SelectQuery query = Select(nullptr, QueryPlace::kSubquery);
    if (query.columns.size() != names.size())
      throw ServerError(message::kWrongColumnCount,
                        "Column name or number of supplied values does not match table definition.");
    std::vector<std::string> values;
    for (std::size_t i = 0; i < names.size(); ++i)
      values.push_back(Assigned(
          {.sql = "\"q\".\"c" + base::DecimalText(static_cast<int>(i + 1)) + "\"", .type = query.columns[i].type},
          *FindColumn(table.columns, names[i])));
    result_.statements = {head + "SELECT " + Joined(values) + " FROM (" + query.sql + ") AS \"q\""};
    return;
  }
  ExpectWord("VALUES");
  std::string rows;
  const Scope nothing;
  do {
    ExpectSign("(");
    std::vector<Fragment> values = Arguments(nothing);
    if (values.size() < names.size())
      throw ServerError(
          message::kTooFewValues,
          "There are more columns in the INSERT statement than values specified in the VALUES clause. The "
          "number of values in the VALUES clause must match the number of columns specified in the INSERT "
          "statement.");
    if (values.size() > names.size())
      throw ServerError(
          message::kTooManyValues,
          "There are fewer columns in the INSERT statement than values specified in the VALUES clause. The "
          "number of values in the VALUES clause must match the number of columns specified in the INSERT "
          "statement.");
    std::vector<std::string> row;
    for (std::size_t i = 0; i < names.size(); ++i)
      row.push_back(Assigned(std::move(values[i]), *FindColumn(table.columns, names[i])));
    rows += (rows.empty() ? "(" : ", (") + Joined(row) + ")";
  } while (TakeSign(","));
  result_.statements = {head + "VALUES " + rows};
}

void Translator::UpdateStatement() {
  const std::string name = ObjectName();
  const SchemaObject& table = WritableTable(name);
  result_.writes = true;
  result_.table = table.name;
  Scope scope;
  scope.sources.push_back({table.name, table.columns});
  ExpectWord("SET");
  std::string sql = "UPDATE " + QuoteName(table.name) + " SET ";
  bool first = true;
  do {
    const std::string column_name = Name();
    const SchemaColumn* column = FindColumn(table.columns, column_name);
    if (!column) throw ServerError(message::kInvalidColumn, "Invalid column name '" + column_name + "'.");
    if (column->identity) throw ServerError(8102, "Cannot update identity column '" + column->name + "'.");
    ExpectSign("=");
    sql += (first ? "" : ", ") + QuoteName(column->name) + " = " + Assigned(Scalar(scope), *column);
    first = false;
  } while (TakeSign(","));
  if (IsWord("FROM")) throw ServerError(message::kSandboxLimit, "The sandbox does not know UPDATE with FROM.");
  if (TakeWord("WHERE")) sql += " WHERE " + Condition(scope).sql;
  result_.statements = {std::move(sql)};
}

void Translator::DeleteStatement() {
  TakeWord("FROM");
  const std::string name = ObjectName();
  const SchemaObject& table = WritableTable(name);
  result_.writes = true;
  result_.table = table.name;
  Scope scope;
  scope.sources.push_back({table.name, table.columns});
  std::string sql = "DELETE FROM " + QuoteName(table.name);
  if (IsWord("FROM")) throw ServerError(message::kSandboxLimit, "The sandbox does not know DELETE with a second FROM.");
  if (TakeWord("WHERE")) sql += " WHERE " + Condition(scope).sql;
  result_.statements = {std::move(sql)};
}

// ---- definitions

void Translator::CreateStatement() {
  result_.writes = true;
  result_.changes_schema = true;
  if (TakeWord("TABLE")) return CreateTable();
  if (TakeWord("VIEW")) return CreateView();
  const bool unique = TakeWord("UNIQUE");
  if (!TakeWord("CLUSTERED")) TakeWord("NONCLUSTERED");
  if (TakeWord("INDEX")) return CreateIndex(unique);
  throw ServerError(message::kSandboxLimit, "The sandbox creates tables, views and indexes only.");
}

void Translator::RecordObject(const SchemaObject& object) {
  std::string rows;
  for (std::size_t i = 0; i < object.columns.size(); ++i) {
    const SchemaColumn& column = object.columns[i];
    rows += (i == 0 ? "(" : ", (") + QuoteText(object.name) + ", " + base::DecimalText(static_cast<int>(i + 1)) + ", " +
            QuoteText(column.name) + ", " + QuoteText(TypeText(column.type)) + ", " + (column.nullable ? "1" : "0") +
            ", " + (column.identity ? "1" : "0") + ")";
  }
  after_.push_back("INSERT INTO sandbox_columns VALUES " + rows);
}

void Translator::RecordConstraint(const SchemaConstraint& constraint) {
  after_.push_back("INSERT INTO sandbox_constraints VALUES (" + QuoteText(constraint.name) + ", " +
                   QuoteText(constraint.table) + ", " + QuoteText(constraint.kind) + ", " +
                   QuoteText(constraint.columns) + ", " + QuoteText(constraint.referenced) + ")");
}

// SQLite's index names are of the whole database, the server's of one table. NULLs are equal in a unique index of the
// server and different in SQLite's, so a column that may be NULL goes in as an expression.
void Translator::AddUniqueIndex(const std::string& name, const SchemaObject& table,
                                const std::vector<std::string>& columns, std::string_view kind) {
  std::vector<std::string> keys;
  for (const std::string& column_name : columns) {
    const SchemaColumn& column = *FindColumn(table.columns, column_name);
    std::string key = QuoteName(column.name);
    if (column.nullable) key = "ifnull(" + key + ", x'')";
    keys.push_back(key + (column.type.is_text() ? std::string(kCollate) : ""));
  }
  after_.push_back("CREATE UNIQUE INDEX " + QuoteName(table.name + "." + name) + " ON " + QuoteName(table.name) + " (" +
                   Joined(keys) + ")");
  RecordConstraint({name, table.name, std::string(kind), Joined(columns), ""});
}

void Translator::CreateTable() {
  SchemaObject table;
  table.name = ObjectName();
  if (schema_.Find(table.name))
    throw ServerError(message::kObjectExists, "There is already an object named '" + table.name + "' in the database.");
  result_.table = table.name;
  ExpectSign("(");
  std::vector<std::string> columns;
  std::vector<std::string> constraints;  // SQLite wants them behind all columns
  do {
    if (IsSign(")")) break;
    if (!TableConstraint(table, "", constraints)) columns.push_back(TableColumn(table, constraints));
  } while (TakeSign(","));
  ExpectSign(")");
  if (table.columns.empty()) RaiseSyntax();
  if (has_identity_ && !has_primary_key_)
    throw ServerError(message::kSandboxLimit, "The sandbox keeps an IDENTITY column only as the whole primary key.");
  std::string sql = "CREATE TABLE " + QuoteName(table.name) + " (" + Joined(columns) +
                    (constraints.empty() ? "" : ", " + Joined(constraints));
  // With a key the table is stored in the key's order, in which the server returns rows that nobody sorts.
  sql += has_primary_key_ && !has_identity_ ? ") WITHOUT ROWID" : ")";
  result_.statements = {std::move(sql)};
  RecordObject(table);
}

// The definition of one column; constraints that are written beside it go to the table's.
std::string Translator::TableColumn(SchemaObject& table, std::vector<std::string>& constraints) {
  SchemaColumn column;
  column.name = Name();
  if (FindColumn(table.columns, column.name))
    throw ServerError(2705, "Column names in each table must be unique. Column name '" + column.name + "' in table '" +
                                table.name + "' is specified more than once.");
  column.type = TypeName_();
  table.columns.push_back(column);
  SchemaColumn& stored = table.columns.back();
  std::string defaults;
  for (;;) {
    if (TakeWord("NULL")) {
      stored.nullable = true;
    } else if (IsWord("NOT") && IsWord("NULL", 1)) {
      at_ += 2;
      stored.nullable = false;
    } else if (TakeWord("IDENTITY")) {
      if (TakeSign("(")) {
        if (WholeNumber() != 1 || !TakeSign(",") || WholeNumber() != 1)
          throw ServerError(message::kSandboxLimit, "The sandbox knows IDENTITY (1, 1) only.");
        ExpectSign(")");
      }
      stored.identity = true;
      stored.nullable = false;
      has_identity_ = true;
    } else if (TakeWord("COLLATE")) {
      Name();
    } else if (IsWord("DEFAULT") || (IsWord("CONSTRAINT") && IsWord("DEFAULT", 2))) {
      if (TakeWord("CONSTRAINT")) Name();
      ExpectWord("DEFAULT");
      defaults = " DEFAULT (" + Assigned(Scalar({}), stored) + ")";
    } else {
      const bool had_key = has_primary_key_;
      if (!TableConstraint(table, column.name, constraints)) break;
      if (has_primary_key_ && !had_key) stored.nullable = false;
    }
  }
  if (stored.identity) return QuoteName(column.name) + " INTEGER PRIMARY KEY AUTOINCREMENT" + StorageCheck(stored);
  return QuoteName(column.name) + " " + StorageType(column.type) + (stored.nullable ? "" : " NOT NULL") + defaults +
         (column.type.is_text() ? std::string(kCollate) : "") + StorageCheck(stored);
}

// A constraint of the table, or of one column when `only_column` names it. False when none begins here.
bool Translator::TableConstraint(const SchemaObject& table, const std::string& only_column,
                                 std::vector<std::string>& constraints) {
  std::string name;
  if (TakeWord("CONSTRAINT")) name = Name();
  const auto named = [&](std::string_view prefix) {
    if (name.empty()) name = std::string(prefix) + "__" + table.name + (only_column.empty() ? "" : "__" + only_column);
    return "CONSTRAINT " + QuoteName(name) + " ";
  };
  const auto key_columns = [&] {
    if (!TakeWord("CLUSTERED")) TakeWord("NONCLUSTERED");
    if (!only_column.empty()) return std::vector<std::string>{only_column};
    ExpectSign("(");
    std::vector<std::string> columns;
    do {
      const std::string column = Name();
      const SchemaColumn* found = FindColumn(table.columns, column);
      if (!found) throw ServerError(1911, "Column name '" + column + "' does not exist in the target table or view.");
      if (found->type.is_large_text())
        throw ServerError(1919, "Column '" + column + "' in table '" + table.name +
                                    "' is of a type that is invalid for use as a key column in an index.");
      columns.push_back(found->name);
      if (!TakeWord("ASC")) TakeWord("DESC");
    } while (TakeSign(","));
    ExpectSign(")");
    return columns;
  };

  if (TakeWord("PRIMARY")) {
    ExpectWord("KEY");
    if (has_primary_key_)
      throw ServerError(8110, "Cannot add multiple PRIMARY KEY constraints to table '" + table.name + "'.");
    has_primary_key_ = true;
    const std::vector<std::string> columns = key_columns();
    const std::string head = named("PK");
    const SchemaColumn& first = *FindColumn(table.columns, columns[0]);
    if (has_identity_ && (columns.size() != 1 || !first.identity))
      throw ServerError(message::kSandboxLimit, "The sandbox keeps an IDENTITY column only as the whole primary key.");
    for (const std::string& column : columns)
      if (only_column.empty() && FindColumn(table.columns, column)->nullable)
        throw ServerError(8111,
                          "Cannot define PRIMARY KEY constraint on nullable column in table '" + table.name + "'.");
    if (!first.identity) constraints.push_back(head + "PRIMARY KEY (" + JoinedNames(columns) + ")");
    RecordConstraint({name, table.name, std::string(constraint_kind::kPrimaryKey), Joined(columns), ""});
    return true;
  }
  if (TakeWord("UNIQUE")) {
    const std::vector<std::string> columns = key_columns();
    const std::string head = named("UQ");
    const bool nullable = std::any_of(columns.begin(), columns.end(), [&](const std::string& column) {
      return FindColumn(table.columns, column)->nullable;
    });
    if (nullable) {
      AddUniqueIndex(name, table, columns, constraint_kind::kUnique);
    } else {
      constraints.push_back(head + "UNIQUE (" + JoinedNames(columns) + ")");
      RecordConstraint({name, table.name, std::string(constraint_kind::kUnique), Joined(columns), ""});
    }
    return true;
  }
  if (IsWord("FOREIGN") || IsWord("REFERENCES")) {
    std::vector<std::string> columns{only_column};
    if (TakeWord("FOREIGN")) {
      ExpectWord("KEY");
      if (IsSign("(")) columns = key_columns();
    }
    ExpectWord("REFERENCES");
    const std::string referenced = ObjectName();
    const SchemaObject* other = base::EqualIgnoreCase(referenced, table.name) ? &table : schema_.Find(referenced);
    if (!other) throw ServerError(1767, "Foreign key references invalid table '" + referenced + "'.");
    std::string definition =
        named("FK") + "FOREIGN KEY (" + JoinedNames(columns) + ") REFERENCES " + QuoteName(other->name);
    if (TakeSign("(")) {
      definition += " (" + JoinedNames(ColumnList(*other)) + ")";
      ExpectSign(")");
    }
    while (TakeWord("ON")) {
      definition += TakeWord("DELETE") ? " ON DELETE" : (ExpectWord("UPDATE"), " ON UPDATE");
      if (TakeWord("CASCADE")) {
        definition += " CASCADE";
      } else if (TakeWord("NO")) {
        ExpectWord("ACTION");
        definition += " NO ACTION";
      } else {
        ExpectWord("SET");
        definition += TakeWord("NULL") ? " SET NULL" : (ExpectWord("DEFAULT"), " SET DEFAULT");
      }
    }
    constraints.push_back(std::move(definition));
    RecordConstraint({name, table.name, std::string(constraint_kind::kForeignKey), Joined(columns), other->name});
    return true;
  }
  if (TakeWord("CHECK")) {
    ExpectSign("(");
    Scope scope;
    scope.sources.push_back({"", table.columns});
    const Fragment condition = Condition(scope);
    ExpectSign(")");
    constraints.push_back(named("CK") + "CHECK (" + condition.sql + ")");
    RecordConstraint({name, table.name, std::string(constraint_kind::kCheck), only_column, ""});
    return true;
  }
  if (!name.empty()) RaiseSyntax();
  return false;
}

void Translator::CreateIndex(bool unique) {
  const std::string name = Name();
  ExpectWord("ON");
  const std::string table_name = ObjectName();
  const SchemaObject& table = WritableTable(table_name);
  result_.table = table.name;
  ExpectSign("(");
  std::vector<std::string> columns;
  std::vector<std::string> keys;
  do {
    const std::string column_name = Name();
    const SchemaColumn* column = FindColumn(table.columns, column_name);
    if (!column)
      throw ServerError(1911, "Column name '" + column_name + "' does not exist in the target table or view.");
    const bool descending = TakeWord("DESC");
    if (!descending) TakeWord("ASC");
    columns.push_back(column->name);
    keys.push_back(QuoteName(column->name) + (descending ? " DESC" : ""));
  } while (TakeSign(","));
  ExpectSign(")");
  if (unique) return AddUniqueIndex(name, table, columns, constraint_kind::kUniqueIndex);
  result_.statements = {"CREATE INDEX " + QuoteName(table.name + "." + name) + " ON " + QuoteName(table.name) + " (" +
                        Joined(keys) + ")"};
}

void Translator::CreateView() {
  SchemaObject view;
  view.is_view = true;
  view.name = ObjectName();
  if (schema_.Find(view.name))
    throw ServerError(message::kObjectExists, "There is already an object named '" + view.name + "' in the database.");
  result_.table = view.name;
  std::vector<std::string> names;
  if (TakeSign("(")) {
    do {
      names.push_back(Name());
    } while (TakeSign(","));
    ExpectSign(")");
  }
  ExpectWord("AS");
  const SelectQuery query = Select(nullptr, QueryPlace::kSubquery);
  RefuseOrder(query);
  if (!names.empty() && names.size() != query.columns.size())
    throw ServerError(8158, "'" + view.name + "' has more columns than were specified in the column list.");
  std::vector<std::string> view_names;
  for (std::size_t i = 0; i < query.columns.size(); ++i) {
    const std::string name = names.empty() ? query.columns[i].name : names[i];
    if (name.empty())
      throw ServerError(4511, "Create View or Function failed because no column name was specified for column " +
                                  base::DecimalText(static_cast<int>(i + 1)) + ".");
    if (FindColumn(view.columns, name))
      throw ServerError(4506, "Column names in each view or function must be unique. Column name '" + name +
                                  "' in view or function '" + view.name + "' is specified more than once.");
    view.columns.push_back({.name = name, .type = query.columns[i].type});
    view_names.push_back(name);
  }
  result_.statements = {"CREATE VIEW " + QuoteName(view.name) + " (" + JoinedNames(view_names) + ") AS " + query.sql};
  RecordObject(view);
}

void Translator::DropStatement() {
  result_.writes = true;
  result_.changes_schema = true;
  const bool view = TakeWord("VIEW");
  if (!view && !TakeWord("TABLE"))
    throw ServerError(message::kSandboxLimit, "The sandbox drops tables and views only.");
  const std::string what = view ? "view" : "table";
  bool if_exists = false;
  if (IsWord("IF") && IsWord("EXISTS", 1)) {
    at_ += 2;
    if_exists = true;
  }
  do {
    const std::string name = ObjectName();
    const SchemaObject* object = schema_.Find(name);
    if (!object || object->is_view != view) {
      if (if_exists) continue;
      throw ServerError(message::kCannotDrop, "Cannot drop the " + what + " '" + name +
                                                  "', because it does not exist or you do not have permission.");
    }
    for (const SchemaConstraint& constraint : schema_.constraints())
      if (base::EqualIgnoreCase(constraint.referenced, object->name) &&
          !base::EqualIgnoreCase(constraint.table, object->name))
        throw ServerError(
            3726, "Could not drop object '" + object->name + "' because it is referenced by a FOREIGN KEY constraint.");
    result_.statements.push_back((view ? "DROP VIEW " : "DROP TABLE ") + QuoteName(object->name));
    result_.statements.push_back("DELETE FROM sandbox_columns WHERE object = " + QuoteText(object->name));
    result_.statements.push_back("DELETE FROM sandbox_constraints WHERE \"table\" = " + QuoteText(object->name));
  } while (TakeSign(","));
}

void Translator::SetStatement() {
  if (TakeWord("LOCK_TIMEOUT")) {
    result_.lock_timeout = WholeNumber();
    return;
  }
  constexpr std::array kWithoutEffect{"NOCOUNT",       "ANSI_NULLS",        "ANSI_PADDING",
                                      "ANSI_WARNINGS", "QUOTED_IDENTIFIER", "CONCAT_NULL_YIELDS_NULL"};
  for (const char* option : kWithoutEffect) {
    if (!TakeWord(option)) continue;
    if (!TakeWord("ON") && !TakeWord("OFF")) RaiseSyntax();
    return;
  }
  throw ServerError(message::kSandboxLimit, "The sandbox does not know the option '" + Peek().text + "'.");
}

}  // namespace quenta::sandbox
