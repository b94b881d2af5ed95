#include "sandbox/com/ado_recordset.h"

#include <algorithm>
#include <new>
#include <utility>

#include "platform/automation/safe_array_access.h"
#include "platform/automation/variant_value.h"
#include "sandbox/com/ado_fields.h"

namespace quenta::sandbox::com {
namespace {

// _Recordset of ADO 2.5.
constexpr GUID kRecordsetInterface = {0x00000556, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}};

}  // namespace

RecordsetObject::~RecordsetObject() {
  Reset();
}

std::span<const Member<RecordsetObject>> RecordsetObject::Members() {
  // As ADO's type library describes them.
  using Self = RecordsetObject;
  static constexpr Member<Self> kMembers[] = {
      {L"Fields", DISPID_VALUE, kProperty, {}, &Self::GetFields},    {L"EOF", 0x3EE, kProperty, {}, &Self::GetEof},
      {L"RecordCount", 0x3F2, kProperty, {}, &Self::GetRecordCount}, {L"Close", 0x3F6, kMethod, {}, &Self::Close},
      {L"GetRows", 0x3F8, kMethod, {3, 0}, &Self::GetRows},          {L"State", 0x41E, kProperty, {}, &Self::GetState},
  };
  return kMembers;
}

HRESULT STDMETHODCALLTYPE RecordsetObject::QueryInterface(REFIID iid, void** object) noexcept {
  return Automation::QueryInterface(IsEqualIID(iid, kRecordsetInterface) ? IID_IDispatch : iid, object);
}

void RecordsetObject::Take(ComPtr<ConnectionObject> connection, ports::RowSet rows, std::int32_t cursor_location) {
  if (rows.columns().empty()) return;
  connection_ = std::move(connection);
  connection_->Attach(*this);
  rows_ = std::move(rows);
  cursor_location_ = cursor_location;
  open_ = true;
}

void RecordsetObject::Reset() {
  if (open_) connection_->Detach(*this);
  open_ = false;
  rows_ = {};
  position_ = 0;
}

bool RecordsetObject::IsPending() const {
  return open_ && cursor_location_ == kServerCursor && !AtEnd();
}

void RecordsetObject::RequireOpen() const {
  if (!open_) RaiseObjectClosed();
}

const base::Value& RecordsetObject::CurrentValue(std::size_t column) const {
  RequireOpen();
  if (AtEnd()) RaiseNoCurrentRecord();
  return rows_.Cell(position_, column);
}

Variant RecordsetObject::Close(const Arguments&) {
  RequireOpen();
  Reset();
  return {};
}

Variant RecordsetObject::GetRows(const Arguments& arguments) {
  RequireOpen();
  // Where to start and which columns: nobody asks for either here.
  if (arguments.Has(1) || arguments.Has(2)) RaiseNotSupported();
  if (AtEnd()) RaiseNoCurrentRecord();
  const std::int32_t wanted = arguments.Long(0, -1);
  const std::size_t left = rows_.size() - position_;
  const std::size_t count = wanted < 0 ? left : std::min(static_cast<std::size_t>(wanted), left);
  const std::size_t columns = rows_.columns().size();

  SAFEARRAYBOUND bounds[] = {{static_cast<ULONG>(columns), 0}, {static_cast<ULONG>(count), 0}};
  Variant block;
  block.Get().parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
  if (block.Get().parray == nullptr) throw std::bad_alloc();
  block.Get().vt = VT_ARRAY | VT_VARIANT;
  const platform::SafeArrayAccess<VARIANT> cells(block.Get().parray);
  VARIANT* cell = cells.Elements().data();
  for (std::size_t row = position_; row < position_ + count; ++row) {
    for (std::size_t column = 0; column < columns; ++column) {
      *cell++ = platform::ToVariant(rows_.Cell(row, column)).Detach();
    }
  }
  position_ += count;
  return block;
}

Variant RecordsetObject::GetFields(const Arguments&) {
  return ObjectResult(MakeFields(ComPtr<RecordsetObject>(this)));
}

Variant RecordsetObject::GetEof(const Arguments&) {
  RequireOpen();
  return BooleanResult(AtEnd());
}

Variant RecordsetObject::GetRecordCount(const Arguments&) {
  RequireOpen();
  // A result that the server is still sending does not know its length.
  return LongPointerResult(cursor_location_ == kServerCursor ? -1 : static_cast<std::intptr_t>(rows_.size()));
}

Variant RecordsetObject::GetState(const Arguments&) {
  return Variant(std::int32_t{open_ ? 1 : 0});
}

}  // namespace quenta::sandbox::com
