#include "sandbox/com/ado_connection.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "sandbox/com/ado_recordset.h"
#include "sandbox/odbc/odbc_database.h"

namespace quenta::sandbox::com {
namespace {

// _Connection of ADO 2.5.
constexpr GUID kConnectionInterface = {0x00000550, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}};

constexpr std::int32_t kAsyncConnect = 16;
constexpr std::int32_t kCommandTable = 2;
constexpr std::int32_t kCommandStoredProcedure = 4;
constexpr std::int32_t kExecuteNoRecords = 128;

std::string Quoted(const std::string& value) {
  return '"' + base::ReplaceAll(value, "\"", "\"\"") + '"';
}

}  // namespace

template <typename Action>
auto ConnectionObject::AtProvider(Action action) -> decltype(action()) {
  try {
    return action();
  } catch (const base::Error& error) {
    errors_->Record(error);
    throw;
  }
}

void ConnectionObject::FailAtProvider(const char* text) {
  const base::Error error(base::error_number::kDataAccess, text);
  errors_->Record(error);
  throw error;
}

ConnectionObject::ConnectionObject()
    : connection_(OdbcDatabase().CreateConnection()), errors_(ComPtr<ErrorList>::Adopt(new ErrorList)) {}

ConnectionObject::~ConnectionObject() = default;

std::span<const Member<ConnectionObject>> ConnectionObject::Members() {
  // As ADO's type library describes them.
  using Self = ConnectionObject;
  static constexpr Member<Self> kMembers[] = {
      {L"ConnectionString", DISPID_VALUE, kProperty, {}, &Self::GetConnectionString, &Self::PutConnectionString},
      {L"ConnectionTimeout", 3, kProperty, {}, &Self::GetConnectionTimeout, &Self::PutConnectionTimeout},
      {L"Close", 5, kMethod, {}, &Self::Close},
      {L"Execute", 6, kMethod, {3, 1}, &Self::Execute},
      {L"BeginTrans", 7, kMethod, {}, &Self::BeginTrans},
      {L"CommitTrans", 8, kMethod, {}, &Self::CommitTrans},
      {L"RollbackTrans", 9, kMethod, {}, &Self::RollbackTrans},
      {L"Open", 10, kMethod, {4, 0}, &Self::Open},
      {L"Errors", 11, kProperty, {}, &Self::GetErrors},
      {L"CursorLocation", 15, kProperty, {}, &Self::GetCursorLocation, &Self::PutCursorLocation},
      {L"State", 18, kProperty, {}, &Self::GetState},
      {L"Cancel", 21, kMethod, {}, &Self::Cancel},
  };
  return kMembers;
}

HRESULT STDMETHODCALLTYPE ConnectionObject::QueryInterface(REFIID iid, void** object) noexcept {
  return Automation::QueryInterface(IsEqualIID(iid, kConnectionInterface) ? IID_IDispatch : iid, object);
}

ports::ConnectionState ConnectionObject::Settle() {
  const ports::ConnectionState state = connection_->State();
  if (opening_ && state != ports::ConnectionState::kConnecting) {
    opening_ = false;
    try {
      connection_->ThrowIfOpenFailed();
    } catch (const base::Error& error) {
      errors_->Record(error);
    }
  }
  return state;
}

void ConnectionObject::RequireClosed() {
  if (Settle() != ports::ConnectionState::kClosed) RaiseObjectOpen();
}

void ConnectionObject::RequireOpen() {
  switch (Settle()) {
    case ports::ConnectionState::kOpen:
      return;
    case ports::ConnectionState::kConnecting:
      RaiseStillConnecting();
    case ports::ConnectionState::kClosed:
      RaiseObjectClosed();
  }
}

bool ConnectionObject::HasPendingResult() const {
  return std::any_of(recordsets_.begin(), recordsets_.end(),
                     [](const RecordsetObject* recordset) { return recordset->IsPending(); });
}

void ConnectionObject::CloseRecordsets() {
  for (const auto open = recordsets_; RecordsetObject * recordset : open) recordset->Reset();
}

Variant ConnectionObject::Open(const Arguments& arguments) {
  RequireClosed();
  std::string text = arguments.Text(0);
  if (text.empty()) text = connection_->ConnectionString();
  // The arguments win over the same keywords in the string, where the last one counts.
  if (const std::string user = arguments.Text(1); !user.empty()) text += ";User ID=" + Quoted(user);
  if (const std::string password = arguments.Text(2); !password.empty()) text += ";Password=" + Quoted(password);
  connection_->SetConnectionString(text);
  in_transaction_ = false;
  StayLoaded();
  if ((std::max(arguments.Long(3, -1), 0) & kAsyncConnect) != 0) {
    AtProvider([&] { connection_->OpenAsync(); });
    opening_ = true;
  } else {
    AtProvider([&] { connection_->Open(); });
  }
  return {};
}

Variant ConnectionObject::Close(const Arguments&) {
  if (Settle() == ports::ConnectionState::kClosed) RaiseObjectClosed();
  connection_->Close();
  opening_ = false;
  CloseRecordsets();
  return {};
}

Variant ConnectionObject::Cancel(const Arguments&) {
  // An open that has ended unseen is given up as well, so that the outcome does not hang on a moment.
  if (!opening_) return {};
  connection_->Close();
  opening_ = false;
  return {};
}

Variant ConnectionObject::Execute(const Arguments& arguments) {
  RequireOpen();
  const std::int32_t options = std::max(arguments.Long(2, -1), 0);
  if ((options & kCommandStoredProcedure) != 0) RaiseNotSupported();
  std::string sql = arguments.Text(0);
  if ((options & kCommandTable) != 0) sql = "SELECT * FROM " + sql;

  // Outside a transaction the provider silently opens another connection, which behaves as this one.
  if (in_transaction_ && HasPendingResult()) {
    FailAtProvider("Cannot create new connection because in manual or distributed transaction mode.");
  }
  ports::RowSet rows = AtProvider([&] { return connection_->Query(sql); });
  arguments.StoreLong(1, -1);  // what ADO answers for a result; the port underneath does not count
  if ((options & kExecuteNoRecords) != 0) return Variant(static_cast<IDispatch*>(nullptr));
  const auto recordset = ComPtr<RecordsetObject>::Adopt(new RecordsetObject);
  recordset->Take(ComPtr<ConnectionObject>(this), std::move(rows), cursor_location_);
  return ObjectResult(recordset);
}

Variant ConnectionObject::BeginTrans(const Arguments&) {
  RequireOpen();
  if (HasPendingResult()) FailAtProvider("Cannot start transaction while in firehose mode.");
  AtProvider([&] { connection_->BeginTransaction(); });
  in_transaction_ = true;
  return Variant(std::int32_t{1});  // the nesting level; the provider does not nest
}

Variant ConnectionObject::CommitTrans(const Arguments&) {
  RequireOpen();
  AtProvider([&] { connection_->CommitTransaction(); });
  in_transaction_ = false;
  return {};
}

Variant ConnectionObject::RollbackTrans(const Arguments&) {
  RequireOpen();
  AtProvider([&] { connection_->RollbackTransaction(); });
  in_transaction_ = false;
  return {};
}

Variant ConnectionObject::GetConnectionString(const Arguments&) {
  return Variant(connection_->ConnectionString());
}
void ConnectionObject::PutConnectionString(const Arguments& arguments) {
  RequireClosed();
  connection_->SetConnectionString(arguments.Text(0));
}
Variant ConnectionObject::GetConnectionTimeout(const Arguments&) {
  return Variant(std::int32_t{connection_->ConnectionTimeout()});
}
void ConnectionObject::PutConnectionTimeout(const Arguments& arguments) {
  RequireClosed();
  const std::int32_t seconds = arguments.Long(0, 15);
  if (seconds < 0) RaiseInvalidArgument();
  connection_->SetConnectionTimeout(seconds);
}
Variant ConnectionObject::GetErrors(const Arguments&) {
  Settle();
  return ObjectResult(errors_);
}
Variant ConnectionObject::GetCursorLocation(const Arguments&) {
  return Variant(cursor_location_);
}
void ConnectionObject::PutCursorLocation(const Arguments& arguments) {
  const std::int32_t location = arguments.Long(0, 0);
  if (location != kServerCursor && location != kClientCursor) RaiseInvalidArgument();
  cursor_location_ = location;
}
Variant ConnectionObject::GetState(const Arguments&) {
  return Variant(static_cast<std::int32_t>(Settle()));
}

}  // namespace quenta::sandbox::com
