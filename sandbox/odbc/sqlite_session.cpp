// The server that the sandbox plays on a SQLite file: dialect, transactions, locks and error messages.
#include <charconv>
#include <chrono>
#include <optional>
#include <thread>

#include "base/error.h"
#include "base/text.h"
#include "sandbox/odbc/password_hash.h"
#include "sandbox/odbc/server_error.h"
#include "sandbox/odbc/server_session.h"

namespace quenta::sandbox {
namespace {

std::string Quoted(std::string_view text) {
  return "'" + base::ReplaceAll(text, "'", "''") + "'";
}

[[noreturn]] void Raise(const ServerError& error) {
  throw base::Error(AutomationNumber(error.number()), error.what());
}

// "tbA.x, tbA.y" into the table and "x, y".
struct KeyColumns {
  std::string table;
  std::string columns;
};

KeyColumns ParseKeyColumns(std::string_view text) {
  KeyColumns key;
  while (!text.empty()) {
    const std::size_t comma = std::min(text.find(", "), text.size());
    const std::string_view one = text.substr(0, comma);
    const std::size_t point = one.find('.');
    key.table = one.substr(0, point);
    if (point != std::string_view::npos)
      key.columns += (key.columns.empty() ? "" : ", ") + std::string(one.substr(point + 1));
    text.remove_prefix(std::min(comma + 2, text.size()));
  }
  return key;
}

class SqliteSession final : public ServerSession {
 public:
  SqliteSession(std::unique_ptr<OdbcLink> link, std::string catalogue, int command_timeout)
      : link_(std::move(link)),
        catalogue_(std::move(catalogue)),
        command_timeout_(std::chrono::seconds(command_timeout)) {
    link_->RunText("PRAGMA foreign_keys = ON");
  }

  ports::RowSet Run(const std::string& sql) override {
    try {
      std::optional<ports::RowSet> result;
      Batch batch(sql);
      while (!batch.AtEnd()) {
        const Translation translation = Translate(batch);
        ports::RowSet rows = Execute(translation);
        if (!result && !translation.columns.empty()) result = std::move(rows);
      }
      return result ? std::move(*result) : ports::RowSet();
    } catch (const ServerError& error) {
      if (AbortsTransaction(error.number())) AbortTransaction();
      Raise(error);
    }
  }

  void BeginTransaction() override {
    if (in_transaction_) {
      constexpr auto kTransactionExists = static_cast<std::int32_t>(0x8004D013);
      throw base::Error(kTransactionExists, "Cannot start more transactions on this session.");
    }
    in_transaction_ = true;
  }

  void CommitTransaction() override { EndTransaction("COMMIT"); }

  void RollbackTransaction() override {
    EndTransaction("ROLLBACK");
    schema_.reset();
  }

  bool InTransaction() const override { return in_transaction_; }

 private:
  // A name that is not known may have come with another connection's CREATE.
  Translation Translate(Batch& batch) {
    const bool fresh = !schema_;
    if (fresh) LoadSchema();
    const SessionFacts facts{server_count_, catalogue_};
    try {
      return batch.Next(*schema_, facts);
    } catch (const ServerError& error) {
      if (fresh || AbortsTransaction(error.number())) throw;
    }
    LoadSchema();
    return batch.Next(*schema_, facts);
  }

  void LoadSchema() {
    Schema schema;
    for (const auto& row :
         Raw("SELECT object, name, type, nullable, identity, (SELECT m.type FROM sqlite_master m WHERE "
             "m.name = object) FROM sandbox_columns ORDER BY object, position")) {
      const SchemaObject* known = schema.Find(row[0]);
      SchemaObject& object = known ? schema.Add(known->name, known->is_view) : schema.Add(row[0], row[5] == "view");
      const std::optional<SqlType> type = ParseSqlType(row[2]);
      if (!type) throw ServerError(message::kSandboxLimit, "The sandbox's catalogue names an unknown type.");
      object.columns.push_back({row[1], *type, row[3] != "0", row[4] != "0"});
    }
    for (const auto& row : Raw("SELECT name, \"table\", kind, columns, referenced FROM sandbox_constraints"))
      schema.AddConstraint({row[0], row[1], row[2], row[3], row[4]});
    schema_ = std::move(schema);
  }

  ports::RowSet Execute(const Translation& translation) {
    // The server's implicit mode counts a transaction only once a statement has met a table.
    if (in_transaction_ && translation.touches_tables) server_count_ = 1;
    if (!translation.writes) {
      ports::RowSet rows;
      for (const std::string& statement : translation.statements) rows = RunOne(statement, translation);
      if (translation.lock_timeout) lock_timeout_ = *translation.lock_timeout;
      return rows;
    }
    // Not at the transaction's begin: reads before the first write must not hold others up.
    if (in_transaction_ && !writing_) {
      RunOne("BEGIN IMMEDIATE", translation);
      writing_ = true;
    }
    if (translation.statements.size() == 1) {
      RunOne(translation.statements.front(), translation);
    } else {
      RunTogether(translation);
    }
    if (translation.changes_schema) schema_.reset();
    return {};
  }

  // Several statements that stand for one of the server's: all or none.
  void RunTogether(const Translation& translation) {
    RunOne(in_transaction_ ? "SAVEPOINT statement" : "BEGIN IMMEDIATE", translation);
    try {
      for (const std::string& statement : translation.statements) RunOne(statement, translation);
    } catch (const ServerError&) {
      if (in_transaction_) {
        Raw("ROLLBACK TO statement");
        Raw("RELEASE statement");
      } else {
        Raw("ROLLBACK");
      }
      throw;
    }
    RunOne(in_transaction_ ? "RELEASE statement" : "COMMIT", translation);
  }

  // Waits for locks here: the driver's own wait cannot be changed once it is connected. What meets a lock has done
  // nothing yet, so it can be sent again.
  ports::RowSet RunOne(const std::string& statement, const Translation& translation) {
    constexpr std::chrono::milliseconds kPause{5};
    const auto limit = lock_timeout_ < 0 ? command_timeout_ : std::chrono::milliseconds(lock_timeout_);
    const auto end = std::chrono::steady_clock::now() + limit;
    for (;;) {
      try {
        return link_->Run(statement, &translation.columns);
      } catch (const OdbcFailure& failure) {
        const bool locked = std::string_view(failure.what()).find(" is locked") != std::string_view::npos;
        if (!locked || std::chrono::steady_clock::now() >= end) throw AsServerError(failure.what(), translation);
      }
      std::this_thread::sleep_for(kPause);
    }
  }

  std::vector<std::vector<std::string>> Raw(const std::string& statement) {
    try {
      return link_->RunText(statement);
    } catch (const OdbcFailure& failure) {
      throw AsServerError(failure.what(), {});
    }
  }

  void EndTransaction(const std::string& how) {
    if (!in_transaction_) {
      constexpr auto kNoTransaction = static_cast<std::int32_t>(0x8004D00E);
      throw base::Error(kNoTransaction, "No transaction is active.");
    }
    if (writing_) {
      try {
        Raw(how);
      } catch (const ServerError& error) {
        Raise(error);
      }
    }
    in_transaction_ = false;
    writing_ = false;
    server_count_ = 0;
  }

  // The server has rolled back; the client's transaction goes on until the client ends it.
  void AbortTransaction() {
    if (writing_) {
      try {
        Raw("ROLLBACK");
      } catch (const ServerError&) {
        // SQLite has rolled back on its own account.
      }
      schema_.reset();
    }
    writing_ = false;
    server_count_ = 0;
  }

  // The server's message for what SQLite said.
  ServerError AsServerError(std::string_view text, const Translation& translation) {
    // The driver appends SQLite's result code: "… (19)".
    if (text.ends_with(')')) {
      if (const std::size_t open = text.rfind(" ("); open != std::string_view::npos) text = text.substr(0, open);
    }
    if (std::optional<ServerError> own = DecodeServerError(text)) return *own;
    const auto after = [&](std::string_view prefix) -> std::optional<std::string> {
      if (!text.starts_with(prefix)) return std::nullopt;
      return std::string(text.substr(prefix.size()));
    };
    if (text.starts_with("database is locked") || text.starts_with("database table is locked") ||
        text.starts_with("database schema is locked"))
      return {message::kLockTimeout, lock_timeout_ < 0 ? kCommandTooLong : "Lock request time out period exceeded."};
    if (const auto keys = after("UNIQUE constraint failed: ")) return DuplicateKey(*keys);
    if (const auto column = after("NOT NULL constraint failed: ")) {
      const KeyColumns key = ParseKeyColumns(*column);
      return {message::kNullNotAllowed, "Cannot insert the value NULL into column '" + key.columns + "', table '" +
                                            catalogue_ + ".dbo." + key.table + "'; column does not allow nulls. " +
                                            translation.verb + " fails."};
    }
    if (text.starts_with("FOREIGN KEY constraint failed")) return ForeignKeyConflict(translation);
    if (const auto name = after("CHECK constraint failed: "))
      return {message::kConstraintConflict, "The " + translation.verb +
                                                " statement conflicted with the CHECK constraint \"" + *name +
                                                "\". The conflict occurred in database \"" + catalogue_ +
                                                "\", table \"dbo." + translation.table + "\"."};
    if (const auto table = after("no such table: ")) {
      schema_.reset();
      return {message::kInvalidObject, "Invalid object name '" + *table + "'."};
    }
    if (const auto column = after("no such column: ")) {
      schema_.reset();
      return {message::kInvalidColumn, "Invalid column name '" + *column + "'."};
    }
    return {message::kSandboxLimit, "The sandbox's database failed: " + std::string(text)};
  }

  ServerError DuplicateKey(const std::string& keys) const {
    const auto violation = [](const SchemaConstraint& constraint) -> ServerError {
      if (constraint.kind == constraint_kind::kUniqueIndex)
        return {message::kDuplicateIndexKey, "Cannot insert duplicate key row in object 'dbo." + constraint.table +
                                                 "' with unique index '" + constraint.name + "'."};
      return {message::kDuplicateKey, "Violation of " + constraint.kind + " constraint '" + constraint.name +
                                          "'. Cannot insert duplicate key in object 'dbo." + constraint.table + "'."};
    };
    const KeyColumns key = ParseKeyColumns(keys);
    for (const SchemaConstraint& constraint : schema_->constraints()) {
      const bool of_key = constraint.kind != constraint_kind::kForeignKey && constraint.kind != constraint_kind::kCheck;
      const bool by_columns = constraint.table == key.table && constraint.columns == key.columns;
      // Of an index over expressions SQLite tells the name instead.
      const bool by_index = keys == "index '" + constraint.table + "." + constraint.name + "'";
      if (of_key && (by_columns || by_index)) return violation(constraint);
    }
    return {message::kDuplicateKey, "Violation of a UNIQUE KEY constraint. Cannot insert duplicate key."};
  }

  // SQLite does not say which key; where only one can be meant, it is named.
  ServerError ForeignKeyConflict(const Translation& translation) const {
    const bool of_parent = translation.verb == "DELETE" || translation.verb == "DROP";
    std::string name;
    int candidates = 0;
    for (const SchemaConstraint& constraint : schema_->constraints()) {
      if (constraint.kind != constraint_kind::kForeignKey) continue;
      if ((of_parent ? constraint.referenced : constraint.table) != translation.table) continue;
      name = constraint.name;
      ++candidates;
    }
    const std::string kind = of_parent ? "REFERENCE" : "FOREIGN KEY";
    return {message::kConstraintConflict,
            "The " + translation.verb + " statement conflicted with " +
                (candidates == 1 ? "the " + kind + " constraint \"" + name + "\"" : "a " + kind + " constraint") +
                ". The conflict occurred in database \"" + catalogue_ + "\"."};
  }

  std::unique_ptr<OdbcLink> link_;
  std::string catalogue_;
  std::chrono::milliseconds command_timeout_;
  std::optional<Schema> schema_;
  bool in_transaction_ = false;     // as the client sees it
  int server_count_ = 0;            // @@TRANCOUNT
  bool writing_ = false;            // SQLite's own transaction is open
  std::int64_t lock_timeout_ = -1;  // milliseconds, as the client has set it
};

int ParseInt(const std::string& text) {
  int number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

}  // namespace

std::unique_ptr<ServerSession> OpenSqliteSession(std::unique_ptr<OdbcLink> link, const LoginRequest& request) {
  const auto refuse = [&](const std::string& why) -> std::vector<std::vector<std::string>> {
    throw base::Error(base::error_number::kDataAccess, "The data source '" + request.source + "' " + why);
  };
  const auto run = [&](const std::string& sql, const std::string& otherwise) {
    try {
      return link->RunText(sql);
    } catch (const OdbcFailure&) {
      return refuse(otherwise);
    }
  };
  run("SELECT ss_version()", "does not load the sandbox's SQLite extension.");
  const std::string no_sandbox = "is no sandbox database.";
  const auto logins =
      run("SELECT salt, iterations, hash FROM sandbox_logins WHERE name = " + Quoted(request.user), no_sandbox);
  if (logins.empty() || HashPassword(request.password, logins[0][0], ParseInt(logins[0][1])) != logins[0][2])
    throw base::Error(AutomationNumber(message::kLoginFailed), "Login failed for user '" + request.user + "'.");
  const auto catalogues = run("SELECT value FROM sandbox_settings WHERE name = 'catalogue'", no_sandbox);
  if (catalogues.empty()) refuse(no_sandbox);
  const std::string& catalogue = catalogues[0][0];
  if (!request.catalogue.empty() && !base::EqualIgnoreCase(request.catalogue, catalogue))
    throw base::Error(AutomationNumber(message::kCannotOpenCatalogue),
                      "Cannot open database \"" + request.catalogue + "\" requested by the login. The login failed.");
  return std::make_unique<SqliteSession>(std::move(link), catalogue, request.command_timeout);
}

}  // namespace quenta::sandbox
