// Makes sandbox databases, their logins, and the ODBC data sources that name them. Needs unixODBC and its SQLite
// driver.
#pragma once

#include <string>
#include <vector>

namespace quenta::sandbox {

// Where a sandbox database is and what opens it. Paths are the host's, also under Wine.
struct SandboxFile {
  std::string database;            // the SQLite file
  std::string extension;           // the sandbox's SQLite extension (sandbox_sqlite.so)
  std::string driver = "SQLite3";  // a driver of odbcinst.ini, or the path of its library
};

// Makes the file with the sandbox's own tables and no login yet. The catalogue is what "Initial Catalog" must name.
// Throws base::Error when the file exists already or cannot be made.
void CreateSandboxDatabase(const SandboxFile& file, const std::string& catalogue);

// Adds a login, or gives the one of this name a new password. Throws base::Error.
void AddLogin(const SandboxFile& file, const std::string& user, const std::string& password);

struct DataSource {
  std::string name;  // at most 32 characters, without brackets
  SandboxFile file;
};

// Writes an odbc.ini that holds these data sources. Programs find it through the environment variable ODBCINI. Throws
// base::Error when it cannot be written or a path holds what such a file cannot (line ends; a comma in the
// extension's).
void WriteDataSources(const std::string& path, const std::vector<DataSource>& sources);

}  // namespace quenta::sandbox
