// The component's database port over ODBC, for SQLite files and real servers, native and on Windows.
#pragma once

#include <memory>

#include "ports/database.h"

namespace quenta::sandbox {

// Connections take the suite's OLE DB connection strings; "Data Source" is the name of an ODBC data source. They behave
// like ADO with SQLOLEDB, refusals included: error 3705 for what an open connection forbids, 3709 for what a closed one
// does, 3246 for closing inside a transaction (destroying the connection rolls it back instead).
class OdbcDatabase final : public ports::Database {
 public:
  std::unique_ptr<ports::Connection> CreateConnection() override;

  // Connecting threads that are still running, those of given-up connections included. While there are any, the code
  // that they run must stay loaded.
  static int ConnectingThreads() noexcept;
};

}  // namespace quenta::sandbox
