#include "platform/automation/variant_value.h"

#include <cstdint>
#include <limits>

#include "base/error.h"
#include "platform/automation/com_error.h"
#include "platform/automation/com_ptr.h"

namespace quenta::platform {
namespace {

// A default property may be an object again; further than this nobody nests them on purpose.
constexpr int kMaximumDepth = 8;
constexpr std::int32_t kObjectNotSet = 91;

base::Value FromVariant(const VARIANT& variant, int depth);

Variant DefaultProperty(IDispatch& object) {
  DISPPARAMS none{};
  Variant result;
  ThrowIfFailed(object.Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET | DISPATCH_METHOD,
                              &none, result.Receive(), nullptr, nullptr),
                "default property");
  return result;
}

base::Value FromObject(IUnknown* unknown, int depth) {
  if (unknown == nullptr) throw base::Error(kObjectNotSet, "Object variable not set");
  const auto object = ComPtr<IUnknown>(unknown).As<IDispatch>();
  if (!object || depth >= kMaximumDepth) base::RaiseTypeMismatch();
  return FromVariant(DefaultProperty(*object.Get()).Get(), depth + 1);
}

base::Value FromUnsigned(std::uint64_t number) {
  if (number <= static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max())) {
    return static_cast<std::int32_t>(number);
  }
  if (number <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
    return static_cast<std::int64_t>(number);
  }
  return base::Decimal{.low = static_cast<std::uint32_t>(number), .middle = static_cast<std::uint32_t>(number >> 32)};
}

base::Value FromDecimal(const DECIMAL& decimal) {
  return base::Decimal{.low = decimal.Lo32,
                       .middle = decimal.Mid32,
                       .high = decimal.Hi32,
                       .scale = decimal.scale,
                       .negative = (decimal.sign & DECIMAL_NEG) != 0};
}

// The content of a variant that holds a reference, as a variant that holds the value; the content stays the owner's.
VARIANT Dereferenced(const VARIANT& variant) {
  if (variant.byref == nullptr) base::RaiseTypeMismatch();
  VARIANT content;
  VariantInit(&content);
  const VARTYPE type = static_cast<VARTYPE>(variant.vt & ~VT_BYREF);
  switch (type) {
    case VT_VARIANT:
      return *variant.pvarVal;
    case VT_DECIMAL:
      content.decVal = *variant.pdecVal;
      break;  // overlaps the type, so the type is set afterwards
    case VT_I1:
    case VT_UI1:
      content.bVal = *variant.pbVal;
      break;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      content.iVal = *variant.piVal;
      break;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      content.lVal = *variant.plVal;
      break;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
      content.llVal = *variant.pllVal;
      break;
    case VT_BSTR:
      content.bstrVal = *variant.pbstrVal;
      break;
    case VT_UNKNOWN:
    case VT_DISPATCH:
      content.punkVal = *variant.ppunkVal;
      break;
    default:
      base::RaiseTypeMismatch();
  }
  content.vt = type;
  return content;
}

base::Value FromVariant(const VARIANT& variant, int depth) {
  if ((variant.vt & VT_BYREF) != 0) {
    if (depth >= kMaximumDepth) base::RaiseTypeMismatch();
    return FromVariant(Dereferenced(variant), depth + 1);
  }
  switch (variant.vt) {
    case VT_EMPTY:
      return {};
    case VT_NULL:
      return base::Value::Null();
    case VT_ERROR:
      if (variant.scode != DISP_E_PARAMNOTFOUND) base::RaiseTypeMismatch();
      return {};
    case VT_BOOL:
      return variant.boolVal != VARIANT_FALSE;
    case VT_I1:
      return std::int32_t{static_cast<signed char>(variant.cVal)};
    case VT_UI1:
      return std::int32_t{variant.bVal};
    case VT_I2:
      return std::int32_t{variant.iVal};
    case VT_UI2:
      return std::int32_t{variant.uiVal};
    case VT_I4:
    case VT_INT:
      return static_cast<std::int32_t>(variant.lVal);
    case VT_UI4:
    case VT_UINT:
      return FromUnsigned(variant.ulVal);
    case VT_I8:
      return static_cast<std::int64_t>(variant.llVal);
    case VT_UI8:
      return FromUnsigned(variant.ullVal);
    case VT_R4:
      return variant.fltVal;
    case VT_R8:
      return variant.dblVal;
    case VT_CY:
      return base::Currency{variant.cyVal.int64};
    case VT_DECIMAL:
      return FromDecimal(variant.decVal);
    case VT_DATE:
      return base::Date{variant.date};
    case VT_BSTR:
      return FromBstr(variant.bstrVal);
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return FromObject(variant.punkVal, depth);
    default:
      base::RaiseTypeMismatch();
  }
}

// Fills a variant from each kind of content; the type is set last because a decimal covers it.
struct Filler {
  VARIANT& variant;

  VARTYPE operator()(base::Value::EmptyTag) const { return VT_EMPTY; }
  VARTYPE operator()(base::Value::NullTag) const { return VT_NULL; }
  VARTYPE operator()(bool value) const {
    variant.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
    return VT_BOOL;
  }
  VARTYPE operator()(std::int32_t value) const {
    variant.lVal = value;
    return VT_I4;
  }
  VARTYPE operator()(std::int64_t value) const {
    variant.llVal = value;
    return VT_I8;
  }
  VARTYPE operator()(float value) const {
    variant.fltVal = value;
    return VT_R4;
  }
  VARTYPE operator()(double value) const {
    variant.dblVal = value;
    return VT_R8;
  }
  VARTYPE operator()(base::Currency value) const {
    variant.cyVal.int64 = value.ten_thousandths;
    return VT_CY;
  }
  VARTYPE operator()(const base::Decimal& value) const {
    variant.decVal.Lo32 = value.low;
    variant.decVal.Mid32 = value.middle;
    variant.decVal.Hi32 = value.high;
    variant.decVal.scale = value.scale;
    variant.decVal.sign = value.negative ? DECIMAL_NEG : 0;
    return VT_DECIMAL;
  }
  VARTYPE operator()(base::Date value) const {
    variant.date = value.days;
    return VT_DATE;
  }
  VARTYPE operator()(const std::string& value) const {
    variant.bstrVal = Bstr(value).Detach();
    return VT_BSTR;
  }
};

}  // namespace

base::Value ToValue(const VARIANT& variant) {
  return FromVariant(variant, 0);
}

Variant ToVariant(const base::Value& value) {
  Variant variant;
  variant.Get().vt = std::visit(Filler{variant.Get()}, value.storage());
  return variant;
}

}  // namespace quenta::platform
