#include "sandbox/com/ado_recordset.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/automation/safe_array_access.h"
#include "platform/automation/variant_value.h"
#include "sandbox/com/ado_fields.h"

namespace quenta::sandbox::com {
namespace {

// _Recordset of ADO 2.5.
constexpr GUID kRecordsetInterface = {0x00000556, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}};

constexpr std::int32_t kForwardOnlyCursor = 0;
constexpr std::int32_t kStaticCursor = 3;
constexpr std::int32_t kReadOnlyLock = 1;

constexpr std::int32_t kPositionUnknown = -1;
constexpr std::int32_t kPositionBof = -2;
constexpr std::int32_t kPositionEof = -3;

constexpr std::int32_t kBookmarkFirst = 1;
constexpr std::int32_t kBookmarkLast = 2;

constexpr std::int32_t kCannotFetchBackwards = static_cast<std::int32_t>(0x80040E24);

[[noreturn]] void RaiseBackwards() {
  throw base::Error(kCannotFetchBackwards, "Rowset does not support fetching backward.");
}

}  // namespace

RecordsetObject::~RecordsetObject() {
  Reset();
}

std::span<const Member<RecordsetObject>> RecordsetObject::Members() {
  // The identifiers are ADO's published ones.
  using Self = RecordsetObject;
  static constexpr Member<Self> kMembers[] = {
      {L"Fields", DISPID_VALUE, &Self::GetFields},
      {L"AbsolutePosition", 0x3E8, &Self::GetAbsolutePosition},
      {L"ActiveConnection", 0x3E9, &Self::GetActiveConnection, &Self::PutActiveConnection},
      {L"BOF", 0x3EA, &Self::GetBof},
      {L"CacheSize", 0x3EC, &Self::GetCacheSize, &Self::PutCacheSize},
      {L"CursorType", 0x3ED, &Self::GetCursorType, &Self::PutCursorType},
      {L"EOF", 0x3EE, &Self::GetEof},
      {L"LockType", 0x3F0, &Self::GetLockType, &Self::PutLockType},
      {L"RecordCount", 0x3F2, &Self::GetRecordCount},
      {L"Source", 0x3F3, &Self::GetSource, &Self::PutSource},
      {L"AddNew", 0x3F4, &Self::RefuseUpdate},
      {L"Close", 0x3F6, &Self::Close},
      {L"Delete", 0x3F7, &Self::RefuseUpdate},
      {L"GetRows", 0x3F8, &Self::GetRows},
      {L"Move", 0x3F9, &Self::Move},
      {L"MoveNext", 0x3FA, &Self::MoveNext},
      {L"MovePrevious", 0x3FB, &Self::MovePrevious},
      {L"MoveFirst", 0x3FC, &Self::MoveFirst},
      {L"MoveLast", 0x3FD, &Self::MoveLast},
      {L"Open", 0x3FE, &Self::Open},
      {L"Requery", 0x3FF, &Self::Requery},
      {L"EditMode", 0x402, &Self::GetEditMode},
      {L"Update", 0x401, &Self::RefuseUpdate},
      {L"CursorLocation", 0x41B, &Self::GetCursorLocation, &Self::PutCursorLocation},
      {L"NextRecordset", 0x41C, &Self::NextRecordset},
      {L"State", 0x41E, &Self::GetState},
  };
  return kMembers;
}

HRESULT STDMETHODCALLTYPE RecordsetObject::QueryInterface(REFIID iid, void** object) noexcept {
  return Automation::QueryInterface(IsEqualIID(iid, kRecordsetInterface) ? IID_IDispatch : iid, object);
}

void RecordsetObject::Take(ComPtr<ConnectionObject> connection, std::string source, ports::RowSet rows,
                           CursorChoice choice) {
  Reset();
  source_ = std::move(source);
  choice_ = choice;
  // The client's cursor service knows one kind of cursor.
  if (choice_.location == cursor::kClient) choice_.type = kStaticCursor;
  connection_ = std::move(connection);
  if (rows.columns().empty()) return;
  connection_->Attach(*this);
  rows_ = std::move(rows);
  position_ = 0;
  open_ = true;
}

void RecordsetObject::Reset() {
  if (open_) connection_->Detach(*this);
  open_ = false;
  rows_ = {};
  position_ = 0;
}

void RecordsetObject::Abandon() {
  Reset();
}

bool RecordsetObject::ForwardOnly() const {
  return choice_.location == cursor::kServer && choice_.type == kForwardOnlyCursor;
}

bool RecordsetObject::IsPending() const {
  return open_ && ForwardOnly() && choice_.lock == kReadOnlyLock && position_ < static_cast<std::int64_t>(rows_.size());
}

void RecordsetObject::RequireOpen() const {
  if (!open_) RaiseObjectClosed();
}

void RecordsetObject::RequireClosed() const {
  if (open_) RaiseObjectOpen();
}

const base::Value& RecordsetObject::CurrentValue(std::size_t column) const {
  RequireOpen();
  if (position_ < 0 || position_ >= static_cast<std::int64_t>(rows_.size())) RaiseNoCurrentRecord();
  return rows_.Cell(static_cast<std::size_t>(position_), column);
}

std::size_t RecordsetObject::FindField(const VARIANT& key) const {
  return PositionOf(key, rows_.columns().size(), [this](const std::string& name) { return rows_.FindColumn(name); });
}

Variant RecordsetObject::Open(const Arguments& arguments) {
  RequireClosed();
  if (arguments.Has(0)) source_ = arguments.Text(0);
  if (arguments.Has(1)) Connect(arguments, 1);
  if (!connection_) RaiseInvalidConnection();
  CursorChoice choice = choice_;
  if (!location_chosen_) choice.location = connection_->cursor_location();
  choice.type = std::max(arguments.Long(2, choice.type), kForwardOnlyCursor);
  choice.lock = std::max(arguments.Long(3, choice.lock), kReadOnlyLock);
  ports::RowSet rows = connection_->Run(source_);
  Take(connection_, source_, std::move(rows), choice);
  return {};
}

Variant RecordsetObject::Close(const Arguments&) {
  RequireOpen();
  Reset();
  return {};
}

Variant RecordsetObject::Requery(const Arguments&) {
  RequireOpen();
  const ComPtr<ConnectionObject> connection = connection_;
  Reset();
  ports::RowSet rows = connection->Run(source_);
  Take(connection, source_, std::move(rows), choice_);
  return {};
}

Variant RecordsetObject::NextRecordset(const Arguments&) {
  RequireOpen();
  // The database underneath answers each text with one result.
  Reset();
  return Variant(static_cast<IDispatch*>(nullptr));
}

void RecordsetObject::MoveBy(std::int64_t rows) {
  RequireOpen();
  const auto end = static_cast<std::int64_t>(rows_.size());
  if (rows < 0 && ForwardOnly()) RaiseBackwards();
  if ((rows > 0 && position_ >= end) || (rows < 0 && (position_ < 0 || end == 0))) RaiseNoCurrentRecord();
  position_ = std::clamp<std::int64_t>(position_ + rows, -1, end);
}

Variant RecordsetObject::Move(const Arguments& arguments) {
  MoveBy(arguments.Long(0, 0));
  return {};
}

Variant RecordsetObject::MoveNext(const Arguments&) {
  MoveBy(1);
  return {};
}

Variant RecordsetObject::MovePrevious(const Arguments&) {
  MoveBy(-1);
  return {};
}

Variant RecordsetObject::MoveFirst(const Arguments& arguments) {
  RequireOpen();
  if (rows_.empty()) RaiseNoCurrentRecord();
  // A result that is sent once can only be asked for again.
  if (ForwardOnly() && position_ != 0) return Requery(arguments);
  position_ = 0;
  return {};
}

Variant RecordsetObject::MoveLast(const Arguments&) {
  RequireOpen();
  if (rows_.empty()) RaiseNoCurrentRecord();
  if (ForwardOnly()) RaiseBackwards();
  position_ = static_cast<std::int64_t>(rows_.size()) - 1;
  return {};
}

std::vector<std::size_t> RecordsetObject::ChosenColumns(const Arguments& arguments, std::size_t argument) const {
  std::vector<std::size_t> columns;
  if (!arguments.Has(argument)) {
    for (std::size_t i = 0; i < rows_.columns().size(); ++i) columns.push_back(i);
    return columns;
  }
  const VARIANT& chosen = arguments.At(argument);
  if ((chosen.vt & VT_ARRAY) == 0) return {FindField(chosen)};
  if (chosen.vt != (VT_ARRAY | VT_VARIANT)) RaiseInvalidArgument();
  const platform::SafeArrayAccess<VARIANT> names(chosen.parray);
  for (const VARIANT& name : names.Elements()) columns.push_back(FindField(name));
  return columns;
}

Variant RecordsetObject::GetRows(const Arguments& arguments) {
  RequireOpen();
  if (arguments.Has(1)) {
    const std::int32_t start = arguments.Long(1, 0);
    if (start == kBookmarkFirst) MoveFirst(arguments);
    if (start == kBookmarkLast) MoveLast(arguments);
  }
  const auto end = static_cast<std::int64_t>(rows_.size());
  if (position_ < 0 || position_ >= end) RaiseNoCurrentRecord();
  const std::int32_t wanted = arguments.Long(0, -1);
  const std::int64_t count = wanted < 0 ? end - position_ : std::min<std::int64_t>(wanted, end - position_);
  const std::vector<std::size_t> columns = ChosenColumns(arguments, 2);

  SAFEARRAYBOUND bounds[] = {{static_cast<ULONG>(columns.size()), 0}, {static_cast<ULONG>(count), 0}};
  Variant block;
  block.Get().parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
  if (block.Get().parray == nullptr) throw std::bad_alloc();
  block.Get().vt = VT_ARRAY | VT_VARIANT;
  const platform::SafeArrayAccess<VARIANT> cells(block.Get().parray);
  VARIANT* cell = cells.Elements().data();
  for (std::int64_t row = position_; row < position_ + count; ++row) {
    for (const std::size_t column : columns) {
      *cell++ = platform::ToVariant(rows_.Cell(static_cast<std::size_t>(row), column)).Detach();
    }
  }
  position_ += count;
  return block;
}

Variant RecordsetObject::RefuseUpdate(const Arguments&) {
  RequireOpen();
  throw base::Error(3251,
                    "Current Recordset does not support updating. This may be a limitation of the provider, or of the "
                    "selected locktype.");
}

Variant RecordsetObject::GetFields(const Arguments& arguments) {
  const ComPtr<RecordsetObject> self(this);
  // rs("nome") is the default member of the collection with the argument of the property.
  return ObjectResult(arguments.Has(0) ? MakeField(self, FindField(arguments.At(0))) : MakeFields(self));
}

Variant RecordsetObject::GetBof(const Arguments&) {
  RequireOpen();
  return BooleanResult(position_ < 0 || rows_.empty());
}

Variant RecordsetObject::GetEof(const Arguments&) {
  RequireOpen();
  return BooleanResult(position_ >= static_cast<std::int64_t>(rows_.size()));
}

Variant RecordsetObject::GetRecordCount(const Arguments&) {
  RequireOpen();
  return Variant(ForwardOnly() ? std::int32_t{-1} : static_cast<std::int32_t>(rows_.size()));
}

Variant RecordsetObject::GetAbsolutePosition(const Arguments&) {
  RequireOpen();
  if (ForwardOnly()) return Variant(kPositionUnknown);
  if (position_ >= static_cast<std::int64_t>(rows_.size())) return Variant(kPositionEof);
  return Variant(position_ < 0 ? kPositionBof : static_cast<std::int32_t>(position_ + 1));
}

Variant RecordsetObject::GetActiveConnection(const Arguments&) {
  return ObjectResult(connection_);
}

void RecordsetObject::PutActiveConnection(const Arguments& arguments) {
  RequireClosed();
  Connect(arguments, 0);
}

void RecordsetObject::Connect(const Arguments& arguments, std::size_t index) {
  if (const ComPtr<IDispatch> object = arguments.Object(index)) {
    connection_ = ConnectionObject::From(*object.Get());
    if (!connection_) RaiseInvalidArgument();
    return;
  }
  connection_.Reset();
  if (!arguments.Has(index) || arguments.At(index).vt == VT_DISPATCH) return;  // Nothing
  // A connection string makes a connection of the recordset's own.
  const auto own = ComPtr<ConnectionObject>::Adopt(new ConnectionObject);
  own->OpenWith(arguments.Text(index));
  connection_ = own;
}

Variant RecordsetObject::GetCacheSize(const Arguments&) {
  return Variant(cache_size_);
}
void RecordsetObject::PutCacheSize(const Arguments& arguments) {
  const std::int32_t size = arguments.Long(0, 1);
  if (size < 1) RaiseInvalidArgument();
  cache_size_ = size;
}
Variant RecordsetObject::GetCursorType(const Arguments&) {
  return Variant(choice_.type);
}
void RecordsetObject::PutCursorType(const Arguments& arguments) {
  RequireClosed();
  choice_.type = arguments.Long(0, kForwardOnlyCursor);
}
Variant RecordsetObject::GetCursorLocation(const Arguments&) {
  return Variant(choice_.location);
}
void RecordsetObject::PutCursorLocation(const Arguments& arguments) {
  RequireClosed();
  const std::int32_t location = arguments.Long(0, 0);
  if (location != cursor::kServer && location != cursor::kClient) RaiseInvalidArgument();
  choice_.location = location;
  location_chosen_ = true;
}
Variant RecordsetObject::GetLockType(const Arguments&) {
  return Variant(choice_.lock);
}
void RecordsetObject::PutLockType(const Arguments& arguments) {
  RequireClosed();
  choice_.lock = arguments.Long(0, kReadOnlyLock);
}
Variant RecordsetObject::GetEditMode(const Arguments&) {
  RequireOpen();
  return Variant(std::int32_t{0});  // adEditNone
}
Variant RecordsetObject::GetSource(const Arguments&) {
  return Variant(source_);
}
void RecordsetObject::PutSource(const Arguments& arguments) {
  RequireClosed();
  source_ = arguments.Text(0);
}
Variant RecordsetObject::GetState(const Arguments&) {
  return Variant(std::int32_t{open_ ? 1 : 0});
}

}  // namespace quenta::sandbox::com
