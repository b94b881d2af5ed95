// Turns values into SQL literals and result columns into list texts: every value in a statement passes through here.
#pragma once

#include <string>

#include "base/locale.h"
#include "base/value.h"
#include "component/session/session.h"
#include "ports/row_set.h"

namespace quenta::data {

// Kinds of SQL literal, by the numbers the suite knows them by.
enum class SQLKind {
  kDate = 1,
  kNumber = 2,
  kText = 3,         // empty is null
  kTextNotNull = 4,  // empty is ''
  kDateTime = 5,
  kPattern = 6,  // for LIKE, blanks match anything
  kNumber2 = 7,  // the same as kNumber
};

// Kinds of list text.
enum class ListKind {
  kDate = 1,
  kNumber = 2,
  kText = 3,
  kAmount = 4,
  kPercent = 5,
  kInteger = 6,
  kDateTime = 7,
  kIsoDate = 8,
};

// The SQL literal of a value. Text that is no number gives "null" where a number is asked for; a date that does not
// exist, and 1 January 1900, give "null". Negative numbers keep about seven significant digits, as they always have.
// An error is reported, and the result is empty.
std::string SQLField(session::Session& session, const base::Value& value, SQLKind kind);

// Makes each single quote safe inside a literal, in the argument too: Vinha d'Alho becomes
// Vinha d' + CHAR(39) + 'Alho. An error is reported, and the result is empty.
std::string Trtf(session::Session& session, std::string& text);

// Display text of a column of the row: one blank when there is no such column or its value is Null. An error is
// reported, and the result is empty.
std::string ListField(session::Session& session, const ports::Row& row, const std::string& column, ListKind kind);

// The same for a value that is at hand: lists of many rows look their columns up once.
std::string ListField(session::Session& session, const base::Value& value, ListKind kind);

// Whether the value is a number as the user types it, with either separator as the decimal one.
bool IsLocalNumeric(const base::Value& value, const base::Locale& locale);

}  // namespace quenta::data
