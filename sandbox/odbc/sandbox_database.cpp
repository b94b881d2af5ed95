#include "sandbox/odbc/sandbox_database.h"

#include <array>
#include <filesystem>
#include <fstream>

#include "base/error.h"
#include "base/text.h"
#include "sandbox/odbc/odbc_link.h"
#include "sandbox/odbc/password_hash.h"

namespace quenta::sandbox {
namespace {

[[noreturn]] void Raise(const std::string& text) {
  throw base::Error(base::error_number::kDataAccess, text);
}

std::string Quoted(std::string_view text) {
  return "'" + base::ReplaceAll(text, "'", "''") + "'";
}

void RequirePlain(const std::string& text, std::string_view forbidden) {
  if (text.empty() || text.find_first_of(forbidden) != std::string::npos)
    Raise("'" + text + "' cannot stand in an ODBC data source.");
}

void Run(OdbcLink& link, const std::string& statement) {
  try {
    link.RunText(statement);
  } catch (const OdbcFailure& failure) {
    Raise(failure.what());
  }
}

void Connect(OdbcLink& link, const SandboxFile& file, bool create) {
  for (const std::string* part : {&file.database, &file.extension, &file.driver}) RequirePlain(*part, ";{}\r\n");
  try {
    link.ConnectSqlite("Driver=" + file.driver + ";Database=" + file.database + ";LoadExt=" + file.extension +
                       ";JournalMode=WAL;Timeout=30000;NoCreat=" + (create ? "0" : "1"));
  } catch (const OdbcFailure& failure) {
    Raise("The database file cannot be opened: " + std::string(failure.what()));
  }
}

}  // namespace

void CreateSandboxDatabase(const SandboxFile& file, const std::string& catalogue) {
  if (std::filesystem::exists(file.database)) Raise("There is already a file '" + file.database + "'.");
  OdbcLink link;
  Connect(link, file, true);
  const std::array kStatements{
      std::string("CREATE TABLE sandbox_settings (name TEXT PRIMARY KEY, value TEXT NOT NULL) WITHOUT ROWID"),
      "INSERT INTO sandbox_settings VALUES ('catalogue', " + Quoted(catalogue) + ")",
      std::string("CREATE TABLE sandbox_logins (name TEXT PRIMARY KEY COLLATE SERVER, salt TEXT NOT NULL, iterations "
                  "INTEGER NOT NULL, hash TEXT NOT NULL) WITHOUT ROWID"),
      // What SQLite does not keep of a CREATE: the server's types, also of a view's columns, and constraints' names.
      std::string(
          "CREATE TABLE sandbox_columns (object TEXT COLLATE NOCASE, position INTEGER, name TEXT NOT NULL, type TEXT "
          "NOT NULL, nullable INTEGER NOT NULL, identity INTEGER NOT NULL, PRIMARY KEY (object, position)) "
          "WITHOUT ROWID"),
      std::string(
          "CREATE TABLE sandbox_constraints (name TEXT, \"table\" TEXT, kind TEXT NOT NULL, columns TEXT NOT NULL, "
          "referenced TEXT NOT NULL, PRIMARY KEY (\"table\", name)) WITHOUT ROWID"),
      std::string(
          "CREATE VIEW sysobjects AS SELECT name, rowid AS id, CASE type WHEN 'view' THEN 'V ' ELSE 'U ' END AS xtype "
          "FROM sqlite_master WHERE type IN ('table', 'view') AND name NOT LIKE 'sqlite!_%' ESCAPE '!' AND name NOT "
          "LIKE 'sandbox!_%' ESCAPE '!' AND name <> 'sysobjects'"),
      std::string(
          "INSERT INTO sandbox_columns VALUES ('sysobjects', 1, 'name', 'NVARCHAR(128)', 0, 0), ('sysobjects', 2, "
          "'id', 'INT', 0, 0), ('sysobjects', 3, 'xtype', 'CHAR(2)', 0, 0)"),
  };
  for (const std::string& statement : kStatements) Run(link, statement);
}

void AddLogin(const SandboxFile& file, const std::string& user, const std::string& password) {
  // Enough for a sandbox: what it guards is invented.
  constexpr int kIterations = 1000;
  OdbcLink link;
  Connect(link, file, false);
  const std::string salt = MakeSalt();
  Run(link, "INSERT OR REPLACE INTO sandbox_logins VALUES (" + Quoted(user) + ", " + Quoted(salt) + ", " +
                base::DecimalText(kIterations) + ", " + Quoted(HashPassword(password, salt, kIterations)) + ")");
}

void WriteDataSources(const std::string& path, const std::vector<DataSource>& sources) {
  constexpr std::size_t kLongestName = 32;
  std::string text;
  for (const DataSource& source : sources) {
    RequirePlain(source.name, "[]{}(),;?*=!@\\\r\n");
    if (source.name.size() > kLongestName) Raise("The data source name '" + source.name + "' is too long.");
    RequirePlain(source.file.database, "\r\n");
    RequirePlain(source.file.extension, ",\r\n");
    RequirePlain(source.file.driver, "\r\n");
    text += "[" + source.name + "]\nDriver=" + source.file.driver + "\nDatabase=" + source.file.database +
            "\nLoadExt=" + source.file.extension + "\nJournalMode=WAL\nTimeout=10\nNoCreat=1\n\n";
  }
  std::ofstream file(std::filesystem::path(path), std::ios::binary | std::ios::trunc);
  file << text;
  file.close();
  if (!file) Raise("The file '" + path + "' cannot be written.");
}

}  // namespace quenta::sandbox
