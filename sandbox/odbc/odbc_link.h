// One connection through the ODBC driver manager, native or Windows: connect, run a statement, read its rows.
#pragma once

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "ports/row_set.h"
#include "sandbox/odbc/dialect.h"

namespace quenta::sandbox {

// What a driver or the driver manager reported: the first diagnostic record, without the drivers' "[…]" prefixes.
class OdbcFailure : public std::runtime_error {
 public:
  OdbcFailure(std::string state, int native, const std::string& text)
      : std::runtime_error(text), state_(std::move(state)), native_(native) {}
  const std::string& state() const noexcept { return state_; }
  int native() const noexcept { return native_; }

 private:
  std::string state_;
  int native_;
};

// Not for two threads at once, but any thread may use it after another.
class OdbcLink {
 public:
  OdbcLink();
  ~OdbcLink();
  OdbcLink(const OdbcLink&) = delete;
  OdbcLink& operator=(const OdbcLink&) = delete;

  // Connects to a data source by its name. All of these throw OdbcFailure. A timeout of 0 seconds is the driver's.
  void ConnectSource(const std::string& source, const std::string& user, const std::string& password, int timeout);
  // Connects to a SQLite file with an ODBC connection string.
  void ConnectSqlite(const std::string& text);

  // The seconds that a statement may take from now on, where the driver knows such a limit: beyond it, the statement is
  // an OdbcFailure of state HYT00. 0, as at first, is no limit.
  void SetCommandTimeout(int seconds);

  std::string DbmsName();
  void SetCatalogue(const std::string& catalogue);

  // Runs one statement and reads its first result whole. The columns are as given; without them, as the driver
  // describes them.
  ports::RowSet Run(const std::string& sql, const std::vector<ResultColumn>* columns = nullptr);
  // The rows as text, for the sandbox's own tables.
  std::vector<std::vector<std::string>> RunText(const std::string& sql);

 private:
  struct Handles;
  std::unique_ptr<Handles> handles_;
};

// The value that a driver's text stands for in a column of the type. Throws base::Error when a whole number has grown
// beyond its type.
base::Value ValueFromText(const std::string& text, const SqlType& type);

}  // namespace quenta::sandbox
