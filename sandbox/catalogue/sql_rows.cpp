#include "sandbox/catalogue/sql_rows.h"

#include "base/error.h"

namespace quenta::sandbox {
namespace {

// A server takes at most 1000 rows in one INSERT.
constexpr int kRowsPerStatement = 500;

std::string Padded(std::int64_t number, std::size_t width) {
  std::string digits = std::to_string(number);
  return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

}  // namespace

std::string TextLiteral(std::string_view text) {
  std::string literal = "'";
  for (const char c : text) {
    literal += c;
    if (c == '\'') literal += c;
  }
  return literal + "'";
}

std::string NationalLiteral(std::string_view text) {
  return "N" + TextLiteral(text);
}

std::string NullableText(std::string_view text) {
  return text.empty() ? kNullLiteral : TextLiteral(text);
}

std::string NumberLiteral(std::int64_t number) {
  return std::to_string(number);
}

std::string DecimalLiteral(std::int64_t units, int decimals) {
  const std::int64_t magnitude = units < 0 ? -units : units;
  std::int64_t scale = 1;
  for (int i = 0; i < decimals; ++i) scale *= 10;
  std::string text = (units < 0 ? "-" : "") + std::to_string(magnitude / scale);
  std::string fraction = Padded(magnitude % scale, static_cast<std::size_t>(decimals));
  fraction.erase(fraction.find_last_not_of('0') + 1);
  return fraction.empty() ? text : text + "." + fraction;
}

std::string NullableId(int id) {
  return id == 0 ? kNullLiteral : NumberLiteral(id);
}

std::string DateLiteral(const Moment& moment) {
  const std::chrono::year_month_day date(moment.day);
  std::string text = "CONVERT(DATETIME,'" + Padded(static_cast<int>(date.year()), 4) + "-" +
                     Padded(static_cast<unsigned>(date.month()), 2) + "-" +
                     Padded(static_cast<unsigned>(date.day()), 2);
  if (moment.seconds != 0) {
    text += " " + Padded(moment.seconds / 3600, 2) + ":" + Padded(moment.seconds / 60 % 60, 2) + ":" +
            Padded(moment.seconds % 60, 2);
  }
  return text + "',102)";
}

RowWriter::RowWriter(ports::Connection& connection, std::string_view table, std::string_view columns)
    : connection_(connection), head_("INSERT INTO " + std::string(table) + " (" + std::string(columns) + ") VALUES ") {}

void RowWriter::Add(std::initializer_list<std::string> literals) {
  rows_ += rows_.empty() ? "(" : ",(";
  bool first = true;
  for (const std::string& literal : literals) {
    if (!first) rows_ += ',';
    rows_ += literal;
    first = false;
  }
  rows_ += ')';
  if (++count_ == kRowsPerStatement) Finish();
}

void RowWriter::Finish() {
  if (count_ == 0) return;
  connection_.Execute(head_ + rows_);
  rows_.clear();
  count_ = 0;
}

Transaction::Transaction(ports::Connection& connection) : connection_(connection) {
  connection_.BeginTransaction();
}

Transaction::~Transaction() {
  if (!open_) return;
  try {
    connection_.RollbackTransaction();
  } catch (const base::Error&) {
    // The error that brought us here is the one to tell; the server undoes what a lost connection left open.
  }
}

void Transaction::Commit() {
  connection_.CommitTransaction();
  open_ = false;
}

}  // namespace quenta::sandbox
