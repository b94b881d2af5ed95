#include "sandbox/odbc/odbc_link.h"

// The names below mean the narrow functions and the wide ones, as written, whatever UNICODE says.
#define SQL_NOUNICODEMAP
#ifdef _WIN32
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "base/text.h"

namespace quenta::sandbox {
namespace {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t), "ODBC's wide characters are UTF-16 units on both systems");

// What a driver takes and gives. The SQLite driver has narrow functions only and means UTF-8; between them and wide
// ones the driver manager would convert by the process's locale, and lose most letters. A server's driver has both, and
// its narrow ones mean a code page.
enum class Encoding { kUtf16, kUtf8 };

SQLWCHAR* Wide(std::u16string& text) {
  return reinterpret_cast<SQLWCHAR*>(text.data());
}

SQLCHAR* Narrow(std::string& text) {
  return reinterpret_cast<SQLCHAR*>(text.data());
}

SQLPOINTER Number(std::uintptr_t number) {
  return reinterpret_cast<SQLPOINTER>(number);
}

// Owner of one ODBC handle.
template <SQLSMALLINT kType>
class OdbcHandle {
 public:
  explicit OdbcHandle(SQLHANDLE parent) { SQLAllocHandle(kType, parent, &handle_); }
  ~OdbcHandle() {
    if (handle_ != SQL_NULL_HANDLE) SQLFreeHandle(kType, handle_);
  }
  OdbcHandle(const OdbcHandle&) = delete;
  OdbcHandle& operator=(const OdbcHandle&) = delete;

  SQLHANDLE get() const { return handle_; }

  void Check(SQLRETURN code, Encoding encoding) const {
    if (!SQL_SUCCEEDED(code) && code != SQL_NO_DATA) RaiseFailure(encoding);
  }

  [[noreturn]] void RaiseFailure(Encoding encoding) const {
    constexpr std::size_t kRoom = 4000;
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    std::string state(6, '\0');
    std::string message;
    SQLRETURN code = SQL_ERROR;
    if (encoding == Encoding::kUtf8) {
      message.resize(kRoom);
      code = SQLGetDiagRec(kType, handle_, 1, Narrow(state), &native, Narrow(message), kRoom, &length);
      message.resize(std::min(static_cast<std::size_t>(std::max<SQLSMALLINT>(length, 0)), kRoom));
    } else {
      std::u16string wide_state(6, u'\0');
      std::u16string text(kRoom, u'\0');
      code = SQLGetDiagRecW(kType, handle_, 1, Wide(wide_state), &native, Wide(text), kRoom, &length);
      text.resize(std::min(static_cast<std::size_t>(std::max<SQLSMALLINT>(length, 0)), kRoom));
      message = base::FromUtf16(text);
      state = base::FromUtf16(wide_state);
    }
    if (!SQL_SUCCEEDED(code)) throw OdbcFailure("HY000", 0, "The ODBC driver failed without saying why.");
    while (message.starts_with('[')) {
      const std::size_t end = message.find(']');
      if (end == std::string::npos) break;
      message.erase(0, end + 1);
    }
    throw OdbcFailure(state.substr(0, 5), native, std::string(base::Trim(message)));
  }

 private:
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

// A statement and how its driver writes text.
class Statement {
 public:
  Statement(SQLHANDLE connection, Encoding encoding, int timeout = 0) : handle_(connection), encoding_(encoding) {
    if (timeout > 0)
      SQLSetStmtAttr(get(), SQL_ATTR_QUERY_TIMEOUT, Number(static_cast<std::uintptr_t>(timeout)), SQL_IS_UINTEGER);
  }

  SQLHANDLE get() const { return handle_.get(); }
  void Check(SQLRETURN code) const { handle_.Check(code, encoding_); }

  void Execute(std::string sql) const {
    if (encoding_ == Encoding::kUtf8) {
      Check(SQLExecDirect(get(), Narrow(sql), static_cast<SQLINTEGER>(sql.size())));
    } else {
      std::u16string wide = base::ToUtf16(sql);
      Check(SQLExecDirectW(get(), Wide(wide), static_cast<SQLINTEGER>(wide.size())));
    }
  }

  SQLSMALLINT CountColumns() const {
    SQLSMALLINT count = 0;
    Check(SQLNumResultCols(get(), &count));
    return count;
  }

  // False behind the last row.
  bool Fetch() const {
    const SQLRETURN code = SQLFetch(get());
    Check(code);
    return code != SQL_NO_DATA;
  }

  // The current row's value in a column; nothing for NULL.
  std::optional<std::string> ReadText(SQLUSMALLINT column) {
    if (encoding_ == Encoding::kUtf8) {
      std::string text;
      return ReadPieces(column, SQL_C_CHAR, narrow_buffer_, text) ? std::optional(std::move(text)) : std::nullopt;
    }
    std::u16string text;
    return ReadPieces(column, SQL_C_WCHAR, wide_buffer_, text) ? std::optional(base::FromUtf16(text)) : std::nullopt;
  }

 private:
  // Appends the value to `whole`, piece by piece when it is longer than the buffer. False for NULL.
  template <typename Text>
  bool ReadPieces(SQLUSMALLINT column, SQLSMALLINT type, Text& buffer, Text& whole) {
    constexpr std::size_t kUnit = sizeof(typename Text::value_type);
    for (;;) {
      SQLLEN bytes = 0;
      const auto room = static_cast<SQLLEN>(buffer.size() * kUnit);
      const SQLRETURN code = SQLGetData(get(), column, type, buffer.data(), room, &bytes);
      if (code == SQL_NO_DATA) return true;
      Check(code);
      if (bytes == SQL_NULL_DATA) return false;
      // What did not fit comes with the next call; a piece fills the buffer but for its closing zero.
      const bool cut = code == SQL_SUCCESS_WITH_INFO && (bytes == SQL_NO_TOTAL || bytes >= room);
      const std::size_t units = cut ? buffer.size() - 1 : static_cast<std::size_t>(bytes) / kUnit;
      whole.append(buffer, 0, units);
      if (!cut) return true;
      if (bytes != SQL_NO_TOTAL)
        buffer.resize(std::max(buffer.size(), static_cast<std::size_t>(bytes) / kUnit - units + 1));
    }
  }

  OdbcHandle<SQL_HANDLE_STMT> handle_;
  Encoding encoding_;
  std::string narrow_buffer_ = std::string(1024, '\0');
  std::u16string wide_buffer_ = std::u16string(512, u'\0');
};

std::string TextAttribute(const Statement& statement, SQLUSMALLINT column, SQLUSMALLINT attribute) {
  std::u16string text(256, u'\0');
  SQLSMALLINT bytes = 0;
  SQLLEN number = 0;
  statement.Check(SQLColAttributeW(statement.get(), column, attribute, Wide(text),
                                   static_cast<SQLSMALLINT>(text.size() * sizeof(char16_t)), &bytes, &number));
  text.resize(std::min(static_cast<std::size_t>(bytes) / sizeof(char16_t), text.size()));
  return base::FromUtf16(text);
}

int NumberAttribute(const Statement& statement, SQLUSMALLINT column, SQLUSMALLINT attribute) {
  SQLSMALLINT bytes = 0;
  SQLLEN number = 0;
  statement.Check(SQLColAttributeW(statement.get(), column, attribute, nullptr, 0, &bytes, &number));
  return static_cast<int>(number);
}

SqlType DescribedType(const Statement& statement, SQLUSMALLINT column) {
  std::string name = TextAttribute(statement, column, SQL_DESC_TYPE_NAME);
  // "int identity"
  name = name.substr(0, name.find_first_of(" ("));
  SqlType type = ParseSqlType(name).value_or(SqlType{.kind = SqlKind::kNVarChar});
  if (type.kind == SqlKind::kDecimal) {
    type.precision = NumberAttribute(statement, column, SQL_DESC_PRECISION);
    type.scale = NumberAttribute(statement, column, SQL_DESC_SCALE);
  }
  if (type.is_text() && !type.is_large_text()) {
    constexpr int kLongest = 8000;
    const int length = NumberAttribute(statement, column, SQL_DESC_LENGTH);
    type.size = length > kLongest ? 0 : std::max(0, length);
  }
  return type;
}

// What the provider calls a column's defined size.
std::size_t DefinedSize(const SqlType& type) {
  switch (type.kind) {
    case SqlKind::kTinyInt:
      return 1;
    case SqlKind::kBit:
    case SqlKind::kSmallInt:
      return 2;
    case SqlKind::kNone:
    case SqlKind::kInt:
    case SqlKind::kReal:
      return 4;
    case SqlKind::kBigInt:
    case SqlKind::kFloat:
    case SqlKind::kMoney:
    case SqlKind::kSmallMoney:
      return 8;
    case SqlKind::kDateTime:
    case SqlKind::kSmallDateTime:
      return 16;
    case SqlKind::kDecimal:
      return 19;
    default:
      break;
  }
  constexpr std::size_t kLongText = 2147483647;
  constexpr std::size_t kLongNationalText = 1073741823;
  if (type.size > 0 && !type.is_large_text()) return static_cast<std::size_t>(type.size);
  return type.is_national() ? kLongNationalText : kLongText;
}

// A floating-point value as the driver holds it: its text may have lost digits.
base::Value ReadDouble(Statement& statement, SQLUSMALLINT column, SqlKind kind) {
  double number = 0;
  SQLLEN bytes = 0;
  statement.Check(SQLGetData(statement.get(), column, SQL_C_DOUBLE, &number, sizeof(number), &bytes));
  if (bytes == SQL_NULL_DATA) return base::Value::Null();
  return kind == SqlKind::kReal ? base::Value(static_cast<float>(number)) : base::Value(number);
}

base::Value ReadValue(Statement& statement, SQLUSMALLINT column, const SqlType& type) {
  const std::optional<std::string> text = statement.ReadText(column);
  if (!text) return base::Value::Null();
  return ValueFromText(*text, type);
}

}  // namespace

struct OdbcLink::Handles {
  Handles() : environment(SQL_NULL_HANDLE), connection(Prepared(environment.get())) {}
  ~Handles() {
    if (connected) SQLDisconnect(connection.get());
  }

  // A connection can only be allocated once the environment knows the version of ODBC.
  static SQLHANDLE Prepared(SQLHANDLE environment_handle) {
    SQLSetEnvAttr(environment_handle, SQL_ATTR_ODBC_VERSION, Number(SQL_OV_ODBC3), 0);
    return environment_handle;
  }

  OdbcHandle<SQL_HANDLE_ENV> environment;
  OdbcHandle<SQL_HANDLE_DBC> connection;
  Encoding encoding = Encoding::kUtf16;
  int command_timeout = 0;
  bool connected = false;
};

OdbcLink::OdbcLink() : handles_(std::make_unique<Handles>()) {}
OdbcLink::~OdbcLink() = default;

void OdbcLink::ConnectSource(const std::string& source, const std::string& user, const std::string& password,
                             int timeout) {
  if (handles_->connection.get() == SQL_NULL_HANDLE) throw OdbcFailure("HY000", 0, "There is no ODBC driver manager.");
  if (timeout > 0)
    SQLSetConnectAttrW(handles_->connection.get(), SQL_ATTR_LOGIN_TIMEOUT, Number(static_cast<std::uintptr_t>(timeout)),
                       0);
  std::u16string wide_source = base::ToUtf16(source);
  std::u16string wide_user = base::ToUtf16(user);
  std::u16string wide_password = base::ToUtf16(password);
  const auto length = [](const std::u16string& text) { return static_cast<SQLSMALLINT>(text.size()); };
  // Not by a connection string: a name or password with a ";" in it would become an attribute of its own.
  handles_->connection.Check(
      SQLConnectW(handles_->connection.get(), Wide(wide_source), length(wide_source), Wide(wide_user),
                  length(wide_user), Wide(wide_password), length(wide_password)),
      Encoding::kUtf16);
  handles_->connected = true;
  if (DbmsName().starts_with("SQLite")) handles_->encoding = Encoding::kUtf8;
}

void OdbcLink::ConnectSqlite(const std::string& text) {
  if (handles_->connection.get() == SQL_NULL_HANDLE) throw OdbcFailure("HY000", 0, "There is no ODBC driver manager.");
  handles_->encoding = Encoding::kUtf8;
  std::string copy = text;
  SQLSMALLINT length = 0;
  handles_->connection.Check(
      SQLDriverConnect(handles_->connection.get(), nullptr, Narrow(copy), static_cast<SQLSMALLINT>(copy.size()),
                       nullptr, 0, &length, SQL_DRIVER_NOPROMPT),
      Encoding::kUtf8);
  handles_->connected = true;
}

void OdbcLink::SetCommandTimeout(int seconds) {
  handles_->command_timeout = seconds;
}

std::string OdbcLink::DbmsName() {
  std::u16string name(128, u'\0');
  SQLSMALLINT bytes = 0;
  handles_->connection.Check(SQLGetInfoW(handles_->connection.get(), SQL_DBMS_NAME, Wide(name),
                                         static_cast<SQLSMALLINT>(name.size() * sizeof(char16_t)), &bytes),
                             Encoding::kUtf16);
  name.resize(std::min(static_cast<std::size_t>(bytes) / sizeof(char16_t), name.size()));
  return base::FromUtf16(name);
}

void OdbcLink::SetCatalogue(const std::string& catalogue) {
  std::u16string wide = base::ToUtf16(catalogue);
  handles_->connection.Check(SQLSetConnectAttrW(handles_->connection.get(), SQL_ATTR_CURRENT_CATALOG, Wide(wide),
                                                static_cast<SQLINTEGER>(wide.size() * sizeof(char16_t))),
                             Encoding::kUtf16);
}

ports::RowSet OdbcLink::Run(const std::string& sql, const std::vector<ResultColumn>* columns) {
  Statement statement(handles_->connection.get(), handles_->encoding, handles_->command_timeout);
  statement.Execute(sql);
  SQLSMALLINT count = statement.CountColumns();
  // The first of several statements need not be the one with a result.
  while (count == 0 && !columns) {
    const SQLRETURN more = SQLMoreResults(statement.get());
    if (more == SQL_NO_DATA) return {};
    statement.Check(more);
    count = statement.CountColumns();
  }
  // What a statement without a result says all the same (SQLite's settings answer with a row) is dropped.
  if (count == 0 || (columns && columns->empty())) return {};

  std::vector<SqlType> types;
  std::vector<std::string> names;
  std::vector<std::size_t> sizes;
  for (SQLUSMALLINT column = 1; column <= static_cast<SQLUSMALLINT>(count); ++column) {
    types.push_back(columns ? columns->at(column - 1u).type : DescribedType(statement, column));
    names.push_back(columns ? columns->at(column - 1u).name : TextAttribute(statement, column, SQL_DESC_LABEL));
    sizes.push_back(DefinedSize(types.back()));
  }
  ports::RowSet rows(std::move(names), std::move(sizes));
  while (statement.Fetch()) {
    for (SQLUSMALLINT column = 1; column <= static_cast<SQLUSMALLINT>(count); ++column) {
      const SqlType& type = types[column - 1u];
      const bool as_double = !columns && (type.kind == SqlKind::kFloat || type.kind == SqlKind::kReal);
      rows.Append(as_double ? ReadDouble(statement, column, type.kind) : ReadValue(statement, column, type));
    }
  }
  return rows;
}

std::vector<std::vector<std::string>> OdbcLink::RunText(const std::string& sql) {
  Statement statement(handles_->connection.get(), handles_->encoding);
  statement.Execute(sql);
  const auto count = static_cast<SQLUSMALLINT>(statement.CountColumns());
  std::vector<std::vector<std::string>> rows;
  if (count == 0) return rows;
  while (statement.Fetch()) {
    std::vector<std::string>& row = rows.emplace_back();
    for (SQLUSMALLINT column = 1; column <= count; ++column) row.push_back(statement.ReadText(column).value_or(""));
  }
  return rows;
}

}  // namespace quenta::sandbox
