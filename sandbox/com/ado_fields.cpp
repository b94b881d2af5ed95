#include "sandbox/com/ado_fields.h"

#include <utility>

#include "platform/automation/variant_value.h"

namespace quenta::sandbox::com {
namespace {

class FieldObject final : public Automation<FieldObject> {
 public:
  FieldObject(ComPtr<RecordsetObject> recordset, std::size_t column)
      : recordset_(std::move(recordset)), column_(column) {}

  static std::span<const Member<FieldObject>> Members() {
    static constexpr Member<FieldObject> kMembers[] = {
        {L"Value", DISPID_VALUE, kProperty, {}, &FieldObject::GetValue},
        {L"Name", 0x44C, kProperty, {}, &FieldObject::GetName},
        {L"DefinedSize", 0x44F, kProperty, {}, &FieldObject::GetDefinedSize},
    };
    return kMembers;
  }

 protected:
  std::wstring_view Source() const noexcept override { return L"ADODB.Field"; }

 private:
  // A field outlives its recordset's closing.
  const ports::RowSet& Rows() const {
    if (column_ >= recordset_->Rows().columns().size()) RaiseItemNotFound();
    return recordset_->Rows();
  }

  Variant GetValue(const Arguments&) {
    Rows();
    return platform::ToVariant(recordset_->CurrentValue(column_));
  }
  Variant GetName(const Arguments&) { return Variant(Rows().columns()[column_]); }
  Variant GetDefinedSize(const Arguments&) {
    return LongPointerResult(static_cast<std::intptr_t>(Rows().sizes().at(column_)));
  }

  ComPtr<RecordsetObject> recordset_;
  std::size_t column_;
};

class FieldsObject final : public Automation<FieldsObject> {
 public:
  explicit FieldsObject(ComPtr<RecordsetObject> recordset) : recordset_(std::move(recordset)) {}

  static std::span<const Member<FieldsObject>> Members() {
    static constexpr Member<FieldsObject> kMembers[] = {
        {L"Item", DISPID_VALUE, kProperty, {1, 1}, &FieldsObject::Item},
        {L"Count", 0x60020000, kProperty, {}, &FieldsObject::Count},
    };
    return kMembers;
  }

 protected:
  std::wstring_view Source() const noexcept override { return L"ADODB.Fields"; }

 private:
  Variant Item(const Arguments& arguments) {
    if (!arguments.Has(0)) RaiseInvalidArgument();
    const ports::RowSet& rows = recordset_->Rows();
    const std::size_t column = PositionOf(arguments.At(0), rows.columns().size(),
                                          [&rows](const std::string& name) { return rows.FindColumn(name); });
    return ObjectResult(ComPtr<FieldObject>::Adopt(new FieldObject(recordset_, column)));
  }
  Variant Count(const Arguments&) { return Variant(static_cast<std::int32_t>(recordset_->Rows().columns().size())); }

  ComPtr<RecordsetObject> recordset_;
};

}  // namespace

ComPtr<IDispatch> MakeFields(const ComPtr<RecordsetObject>& recordset) {
  return ComPtr<IDispatch>::Adopt(new FieldsObject(recordset));
}

}  // namespace quenta::sandbox::com
