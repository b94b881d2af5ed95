// Keeps the SQLite driver loaded, so that leak checkers stay content.
#pragma once

#include <sql.h>
#include <sqlext.h>

namespace quenta::tests {

// The driver leaves its start-up allocations behind whenever it is unloaded, which the driver manager does after the
// last connection: one that is never closed keeps it loaded. To be called before any other connection is opened.
inline void KeepDriverLoaded() {
  static const SQLHDBC holder = [] {
    SQLHENV environment = SQL_NULL_HENV;
    SQLHDBC connection = SQL_NULL_HDBC;
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
    SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection);
    SQLCHAR text[] = "Driver=SQLite3;Database=:memory:";
    SQLDriverConnect(connection, nullptr, text, SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
    return connection;
  }();
  (void)holder;
}

}  // namespace quenta::tests
