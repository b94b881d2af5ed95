// Turns the T-SQL that the component and the sandbox's schema speak into SQLite's SQL. Pure text to text: needs the
// schema to know the types of columns, but no connection.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sandbox/odbc/schema.h"
#include "sandbox/odbc/sql_tokens.h"
#include "sandbox/odbc/sql_type.h"

namespace quenta::sandbox {

// What a statement may ask about the connection it runs on.
struct SessionFacts {
  int transaction_count = 0;  // @@TRANCOUNT
  std::string catalogue;      // DB_NAME()
};

struct ResultColumn {
  std::string name;  // empty for an expression without a name
  SqlType type;
};

// One T-SQL statement in SQLite's words.
struct Translation {
  // To be run in order, all or none. Empty for a statement without effect here (SET NOCOUNT ON).
  std::vector<std::string> statements;
  // The columns of the result; empty when the statement has none. Numbers that are not whole arrive as text.
  std::vector<ResultColumn> columns;
  std::string verb;             // SELECT, INSERT, UPDATE, DELETE, CREATE, DROP or SET
  std::string table;            // the table that is written, as the schema spells it
  bool touches_tables = false;  // what starts a transaction on a server in implicit mode
  bool writes = false;
  bool changes_schema = false;
  std::optional<std::int64_t> lock_timeout{};  // milliseconds; -1 waits as long as a command may run
};

// The statements of one batch, translated one at a time because each may change the schema for the next.
class Batch {
 public:
  // Throws ServerError for an unclosed quote or comment.
  explicit Batch(std::string_view sql);

  bool AtEnd() const;
  // Throws ServerError with the server's message where the server would refuse the statement, and with message
  // kSandboxLimit where the server would take what the sandbox does not know; may then be called again, with a newer
  // schema.
  Translation Next(const Schema& schema, const SessionFacts& facts);

 private:
  std::vector<Token> tokens_;
  std::size_t at_ = 0;
};

// The batches of a script: the text between lines that hold only GO. Batches without a statement are left out.
std::vector<std::string> SplitBatches(std::string_view script);

}  // namespace quenta::sandbox
