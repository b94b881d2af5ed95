#include "platform/ado/ado_database.h"

#include <algorithm>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "base/convert.h"
#include "base/error.h"
#include "platform/ado/late_bound.h"
#include "platform/automation/dispatch.h"
#include "platform/automation/safe_array_access.h"
#include "platform/automation/variant_value.h"

namespace quenta::platform {
namespace {

// ADO's constants, with its own names in the comments.
constexpr std::int32_t kUseClient = 3;           // adUseClient
constexpr std::int32_t kAsyncConnect = 16;       // adAsyncConnect
constexpr std::int32_t kCommandText = 1;         // adCmdText
constexpr std::int32_t kExecuteNoRecords = 128;  // adExecuteNoRecords
constexpr std::int32_t kStateOpen = 1;           // adStateOpen
constexpr std::int32_t kStateConnecting = 2;     // adStateConnecting

constexpr std::int32_t kObjectClosed = 3704;  // adErrObjectClosed

// A block of rows is a copy of the data: large enough to make calls rare, small enough to stay in the cache.
constexpr std::int32_t kCellsInBlock = 8192;

enum class ConnectionMember {
  kBeginTrans,
  kCancel,
  kClose,
  kCommitTrans,
  kConnectionString,
  kConnectionTimeout,
  kCursorLocation,
  kErrors,
  kExecute,
  kOpen,
  kRollbackTrans,
  kState,
};
enum class RecordsetMember { kClose, kEof, kFields, kGetRows, kRecordCount, kState };
enum class CollectionMember { kCount, kItem };
enum class FieldMember { kDefinedSize, kName };
enum class ErrorMember { kNumber, kDescription };

// A number of any integer type: which one ADO gives depends on the member and on the width of the process. Throws
// base::Error 6 when 32 bits do not hold it, 13 when it is no such number.
std::int32_t LongIn(const Variant& variant) {
  const base::Value value = ToValue(variant.Get());
  switch (value.kind()) {
    case base::ValueKind::kBoolean:
    case base::ValueKind::kLong:
    case base::ValueKind::kInt64:
    case base::ValueKind::kDecimal:  // an unsigned number beyond 63 bits
      return base::ToLong(value, {});
    default:
      base::RaiseTypeMismatch();
  }
}

std::string TextIn(const Variant& variant) {
  const base::Value value = ToValue(variant.Get());
  return value.is_text() ? value.text() : std::string();
}

base::Value CellValue(const VARIANT& cell) {
  // Binary columns (pictures, row versions) come as arrays of bytes. Nobody here reads them, and one must not make the
  // other columns of its row unreadable.
  if ((cell.vt & VT_ARRAY) != 0) return {};
  return ToValue(cell);
}

}  // namespace

// The identifiers of everything that is called, shared by the connections of one AdoDatabase.
struct AdoMembers {
  MemberIdentifiers connection{L"BeginTrans",        L"Cancel",         L"Close",  L"CommitTrans", L"ConnectionString",
                               L"ConnectionTimeout", L"CursorLocation", L"Errors", L"Execute",     L"Open",
                               L"RollbackTrans",     L"State"};
  MemberIdentifiers recordset{L"Close", L"EOF", L"Fields", L"GetRows", L"RecordCount", L"State"};
  MemberIdentifiers fields{L"Count", L"Item"};
  MemberIdentifiers field{L"DefinedSize", L"Name"};
  MemberIdentifiers errors{L"Count", L"Item"};
  MemberIdentifiers error{L"Number", L"Description"};
};

namespace {

// An open result; closed when it goes.
class Recordset {
 public:
  Recordset(ComPtr<IDispatch> object, AdoMembers& members)
      : object_(std::move(object), members.recordset), members_(members) {}
  ~Recordset() {
    try {
      object_.Call(RecordsetMember::kClose);
    } catch (...) {  // a statement without a result leaves a recordset that was never open
    }
  }
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;

  ports::RowSet ReadWhole() const {
    if ((LongIn(object_.Get(RecordsetMember::kState)) & kStateOpen) == 0) return {};
    ports::RowSet rows = WithoutRows();
    const auto columns = static_cast<std::int32_t>(rows.columns().size());
    const std::int32_t count = LongIn(object_.Get(RecordsetMember::kRecordCount));
    if (count > 0) rows.Reserve(static_cast<std::size_t>(count));  // -1 where the cursor does not know

    const Variant block_rows(std::max(1, kCellsInBlock / std::max(1, columns)));
    while (LongIn(object_.Get(RecordsetMember::kEof)) == 0) {
      const Variant block = object_.Call(RecordsetMember::kGetRows, {block_rows.Get()});
      AppendBlock(rows, block);
    }
    return rows;
  }

 private:
  ports::RowSet WithoutRows() const {
    const LateBound<CollectionMember> fields(object_.CallForObject(RecordsetMember::kFields), members_.fields);
    const std::int32_t count = LongIn(fields.Get(CollectionMember::kCount));
    std::vector<std::string> names;
    std::vector<std::size_t> sizes;
    names.reserve(static_cast<std::size_t>(count));
    sizes.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i) {
      const Variant index(i);
      const LateBound<FieldMember> field(fields.CallForObject(CollectionMember::kItem, {index.Get()}), members_.field);
      names.push_back(TextIn(field.Get(FieldMember::kName)));
      // Less than 0 stands for a size that is not known.
      sizes.push_back(static_cast<std::size_t>(std::max(0, LongIn(field.Get(FieldMember::kDefinedSize)))));
    }
    return ports::RowSet(std::move(names), std::move(sizes));
  }

  // The array's first dimension is the column, so that its elements lie row after row, as a RowSet wants them.
  static void AppendBlock(ports::RowSet& rows, const Variant& block) {
    if (block.Type() != (VT_ARRAY | VT_VARIANT)) base::RaiseTypeMismatch();
    const SafeArrayAccess<VARIANT> cells(block.Get().parray);
    if (cells.Extent(1) != rows.columns().size() || cells.Extent(2) == 0) base::RaiseTypeMismatch();
    for (const VARIANT& cell : cells.Elements()) rows.Append(CellValue(cell));
  }

  LateBound<RecordsetMember> object_;
  AdoMembers& members_;
};

class AdoConnection final : public ports::Connection {
 public:
  explicit AdoConnection(std::shared_ptr<AdoMembers> members)
      : members_(std::move(members)), object_(CreateObject(L"ADODB.Connection"), members_->connection) {
    // A server cursor would keep its result pending, and the provider opens a second connection beside a pending one.
    object_.Put(ConnectionMember::kCursorLocation, Variant(kUseClient));
  }
  ~AdoConnection() override {
    try {
      AdoConnection::Close();
    } catch (...) {  // releasing the object ends the connection all the same
    }
  }

  ports::ConnectionState State() override {
    const std::int32_t bits = LongIn(object_.Get(ConnectionMember::kState));
    if ((bits & kStateConnecting) != 0) return ports::ConnectionState::kConnecting;
    opening_ = false;
    return (bits & kStateOpen) != 0 ? ports::ConnectionState::kOpen : ports::ConnectionState::kClosed;
  }

  std::string ConnectionString() override { return TextIn(object_.Get(ConnectionMember::kConnectionString)); }
  void SetConnectionString(const std::string& text) override {
    object_.Put(ConnectionMember::kConnectionString, Variant(std::string_view(text)));
  }

  int ConnectionTimeout() override { return LongIn(object_.Get(ConnectionMember::kConnectionTimeout)); }
  void SetConnectionTimeout(int seconds) override {
    object_.Put(ConnectionMember::kConnectionTimeout, Variant(std::int32_t{seconds}));
  }

  void Open() override { object_.Call(ConnectionMember::kOpen); }

  void OpenAsync() override {
    const Variant missing = Variant::Missing();
    const Variant option(kAsyncConnect);
    object_.Call(ConnectionMember::kOpen, {missing.Get(), missing.Get(), missing.Get(), option.Get()});
    opening_ = true;
  }

  void ThrowIfOpenFailed() override {
    if (State() != ports::ConnectionState::kClosed) return;
    const LateBound<CollectionMember> errors(object_.CallForObject(ConnectionMember::kErrors), members_->errors);
    if (LongIn(errors.Get(CollectionMember::kCount)) == 0) {
      throw base::Error(base::error_number::kDataAccess, "The connection could not be opened.");
    }
    const Variant first(std::int32_t{0});
    const LateBound<ErrorMember> error(errors.CallForObject(CollectionMember::kItem, {first.Get()}), members_->error);
    const auto number = static_cast<HRESULT>(LongIn(error.Get(ErrorMember::kNumber)));
    throw base::Error(ErrorNumber(number), TextIn(error.Get(ErrorMember::kDescription)));
  }

  void Close() override {
    if (opening_) Cancel();
    if (State() != ports::ConnectionState::kClosed) object_.Call(ConnectionMember::kClose);
  }

  ports::RowSet Query(const std::string& sql) override {
    return WithinMemory([&] { return Recordset(ObjectIn(Run(sql, kCommandText)), *members_).ReadWhole(); });
  }

  void Execute(const std::string& sql) override {
    WithinMemory([&] { return Run(sql, kCommandText | kExecuteNoRecords); });
  }

  void BeginTransaction() override { CallOpen(ConnectionMember::kBeginTrans); }
  void CommitTransaction() override { CallOpen(ConnectionMember::kCommitTrans); }
  void RollbackTransaction() override { CallOpen(ConnectionMember::kRollbackTrans); }

 private:
  void Cancel() {
    try {
      object_.Call(ConnectionMember::kCancel);
    } catch (const base::Error&) {  // the open has just ended: there is nothing to cancel any more
    }
    opening_ = false;
  }

  // Calls something that needs an open connection. ADO names the closed object itself (3704) where the component, and
  // ADO in its other classes, speak of a connection that cannot be used.
  Variant CallOpen(ConnectionMember member, std::initializer_list<VARIANT> arguments = {}) {
    try {
      return object_.Call(member, arguments);
    } catch (const base::Error& error) {
      if (error.number() != kObjectClosed) throw;
      throw base::Error(base::error_number::kClosedConnection,
                        "The connection cannot be used to perform this operation. It is either closed or invalid in "
                        "this context.");
    }
  }

  Variant Run(const std::string& sql, std::int32_t options) {
    const Variant text{std::string_view(sql)};
    const Variant records_affected = Variant::Missing();
    const Variant option(options);
    return CallOpen(ConnectionMember::kExecute, {text.Get(), records_affected.Get(), option.Get()});
  }

  // Statements and results have any length; the port's users know one kind of exception.
  template <typename Action>
  static auto WithinMemory(Action action) -> decltype(action()) {
    try {
      return action();
    } catch (const std::bad_alloc&) {
      throw base::Error(base::error_number::kOutOfMemory, "Out of memory");
    }
  }

  std::shared_ptr<AdoMembers> members_;
  LateBound<ConnectionMember> object_;
  bool opening_ = false;  // an open in the background whose end nobody has seen yet
};

}  // namespace

AdoDatabase::AdoDatabase() : members_(std::make_shared<AdoMembers>()) {}

std::unique_ptr<ports::Connection> AdoDatabase::CreateConnection() {
  return std::make_unique<AdoConnection>(members_);
}

}  // namespace quenta::platform
