#include "sandbox/com/ado_fields.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "base/text.h"
#include "platform/automation/variant_value.h"

namespace quenta::sandbox::com {
namespace {

class FieldObject final : public Automation<FieldObject> {
 public:
  FieldObject(ComPtr<RecordsetObject> recordset, std::size_t column)
      : recordset_(std::move(recordset)), column_(column) {}

  static std::span<const Member<FieldObject>> Members() {
    static constexpr Member<FieldObject> kMembers[] = {
        {L"Value", DISPID_VALUE, &FieldObject::GetValue, &FieldObject::PutValue},
        {L"Attributes", 0x40C, &FieldObject::GetAttributes},
        {L"Name", 0x44C, &FieldObject::GetName},
        {L"Type", 0x44E, &FieldObject::GetType},
        {L"DefinedSize", 0x44F, &FieldObject::GetDefinedSize},
        {L"ActualSize", 0x455, &FieldObject::GetActualSize},
    };
    return kMembers;
  }

 protected:
  std::wstring_view Source() const noexcept override { return L"ADODB.Field"; }

 private:
  // ADO's type and size of what a value holds. The port underneath hands on values without their declared types.
  struct Description {
    std::int32_t type;
    std::int32_t size;  // bytes; characters for text
  };

  static Description Describe(const base::Value& value) {
    switch (value.kind()) {
      case base::ValueKind::kBoolean:
        return {11, 2};  // adBoolean
      case base::ValueKind::kLong:
        return {3, 4};  // adInteger
      case base::ValueKind::kInt64:
        return {20, 8};  // adBigInt
      case base::ValueKind::kSingle:
        return {4, 4};  // adSingle
      case base::ValueKind::kDouble:
        return {5, 8};  // adDouble
      case base::ValueKind::kCurrency:
        return {6, 8};  // adCurrency
      case base::ValueKind::kDecimal:
        return {131, 19};  // adNumeric
      case base::ValueKind::kDate:
        return {135, 16};  // adDBTimeStamp
      case base::ValueKind::kText:
        return {202, static_cast<std::int32_t>(base::Utf16Length(value.text()))};  // adVarWChar
      case base::ValueKind::kEmpty:
      case base::ValueKind::kNull:
        break;
    }
    return {202, 0};
  }

  // The column as its values show it: the type of the first that is not Null, and the largest size.
  Description DescribeColumn() const {
    const ports::RowSet& rows = Rows();
    Description column = Describe(base::Value::Null());
    bool known = false;
    for (std::size_t row = 0; row < rows.size(); ++row) {
      const base::Value& value = rows.Cell(row, column_);
      if (value.is_null()) continue;
      const Description cell = Describe(value);
      if (!known) column.type = cell.type;
      known = true;
      column.size = std::max(column.size, cell.size);
    }
    return column;
  }

  // A field outlives its recordset's closing and what it is opened on next.
  const ports::RowSet& Rows() const {
    if (column_ >= recordset_->Rows().columns().size()) RaiseItemNotFound();
    return recordset_->Rows();
  }

  Variant GetValue(const Arguments&) {
    Rows();
    return platform::ToVariant(recordset_->CurrentValue(column_));
  }
  void PutValue(const Arguments&) { RaiseNotSupported(); }
  Variant GetAttributes(const Arguments&) { return Variant(std::int32_t{0x60}); }  // adFldIsNullable, adFldMayBeNull
  Variant GetName(const Arguments&) { return Variant(Rows().columns()[column_]); }
  Variant GetType(const Arguments&) { return Variant(DescribeColumn().type); }
  Variant GetDefinedSize(const Arguments&) { return Variant(DescribeColumn().size); }
  Variant GetActualSize(const Arguments&) {
    Rows();
    const base::Value& value = recordset_->CurrentValue(column_);
    const Description cell = Describe(value);
    return Variant(value.is_text() ? cell.size * 2 : cell.size);
  }

  ComPtr<RecordsetObject> recordset_;
  std::size_t column_;
};

class FieldsObject final : public Automation<FieldsObject> {
 public:
  explicit FieldsObject(ComPtr<RecordsetObject> recordset) : recordset_(std::move(recordset)) {}

  static std::span<const Member<FieldsObject>> Members() {
    static constexpr Member<FieldsObject> kMembers[] = {
        {L"Item", DISPID_VALUE, &FieldsObject::Item},
        {L"Count", 0x60020000, &FieldsObject::Count},
        {L"_NewEnum", DISPID_NEWENUM, &FieldsObject::Enumerate},
    };
    return kMembers;
  }

 protected:
  std::wstring_view Source() const noexcept override { return L"ADODB.Fields"; }

 private:
  Variant Item(const Arguments& arguments) {
    if (!arguments.Has(0)) RaiseInvalidArgument();
    return ObjectResult(MakeField(recordset_, recordset_->FindField(arguments.At(0))));
  }
  Variant Count(const Arguments&) { return Variant(static_cast<std::int32_t>(recordset_->Rows().columns().size())); }
  Variant Enumerate(const Arguments&) {
    std::vector<Variant> elements;
    for (std::size_t i = 0; i < recordset_->Rows().columns().size(); ++i) {
      elements.push_back(ObjectResult(MakeField(recordset_, i)));
    }
    return EnumeratorResult(std::move(elements));
  }

  ComPtr<RecordsetObject> recordset_;
};

}  // namespace

ComPtr<IDispatch> MakeFields(const ComPtr<RecordsetObject>& recordset) {
  return ComPtr<IDispatch>::Adopt(new FieldsObject(recordset));
}

ComPtr<IDispatch> MakeField(const ComPtr<RecordsetObject>& recordset, std::size_t column) {
  return ComPtr<IDispatch>::Adopt(new FieldObject(recordset, column));
}

}  // namespace quenta::sandbox::com
