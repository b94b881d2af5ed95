// Writes rows to a table with statements of many rows each, and spells their values as SQL literals.
#pragma once

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "ports/database.h"

namespace quenta::sandbox {

// A moment of the catalogue's history: a day and the seconds since its midnight.
struct Moment {
  std::chrono::sys_days day;
  int seconds = 0;
};

// Literals. Empty text is an empty text, not null; see NullableText.
std::string TextLiteral(std::string_view text);
// For columns that hold any letter (NVARCHAR).
std::string NationalLiteral(std::string_view text);
// "NULL" for an empty text.
std::string NullableText(std::string_view text);
std::string NumberLiteral(std::int64_t number);
// A number held as an integer count of 10^-decimals: (12345, 2) is 123.45.
std::string DecimalLiteral(std::int64_t units, int decimals);
// "NULL" for 0, which the catalogue's tables never use as an identifier.
std::string NullableId(int id);
std::string DateLiteral(const Moment& moment);

inline constexpr const char* kNullLiteral = "NULL";

// Rows of one table; nothing is certain to be written before Finish.
class RowWriter {
 public:
  // columns: names separated by commas.
  RowWriter(ports::Connection& connection, std::string_view table, std::string_view columns);

  // Literals in the order of the columns.
  void Add(std::initializer_list<std::string> literals);
  void Finish();

 private:
  ports::Connection& connection_;
  std::string head_;
  std::string rows_;
  int count_ = 0;
};

// Rolls back when it is left without Commit.
class Transaction {
 public:
  explicit Transaction(ports::Connection& connection);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  void Commit();

 private:
  ports::Connection& connection_;
  bool open_ = true;
};

}  // namespace quenta::sandbox
