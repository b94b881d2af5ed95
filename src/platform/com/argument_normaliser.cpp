#include "platform/com/argument_normaliser.h"

#include <cstring>
#include <new>
#include <string>

#include "base/convert.h"
#include "base/error.h"
#include "platform/automation/com_ptr.h"
#include "platform/automation/variant_value.h"

namespace quenta::platform {
namespace {

// A script engine passes a variable as a reference to a variant, which may hold a reference again.
constexpr int kMaximumDepth = 8;

// ADO's _Recordset, as its library publishes it since version 2.5.
constexpr IID kRecordset{0x00000556, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x6D, 0x2E, 0xA4}};

// The variable that holds the content: follows references to variants.
VARIANT* Innermost(VARIANT* variant) noexcept {
  for (int depth = 0; depth < kMaximumDepth && variant->vt == (VT_BYREF | VT_VARIANT) && variant->pvarVal != nullptr;
       ++depth) {
    variant = variant->pvarVal;
  }
  return variant;
}

bool IsLeftOut(const VARIANT& variant) noexcept {
  return variant.vt == VT_EMPTY || variant.vt == VT_NULL ||
         (variant.vt == VT_ERROR && variant.scode == DISP_E_PARAMNOTFOUND);
}

// The content without references, a copy of our own.
HRESULT Copy(VARIANT& given, Variant& copy) noexcept {
  if ((given.vt & VT_BYREF) != 0 && given.byref == nullptr) return DISP_E_TYPEMISMATCH;
  return VariantCopyInd(copy.Receive(), &given);
}

// What an omitted argument is; a variant parameter sees that it was omitted.
Variant DefaultOf(ParameterKind kind) {
  switch (kind) {
    case ParameterKind::kText:
      return Variant(std::string_view());
    case ParameterKind::kLong:
      return Variant(std::int32_t{0});
    case ParameterKind::kVariant:
      return Variant::Missing();
    case ParameterKind::kObject:
      return Variant(static_cast<IDispatch*>(nullptr));
    case ParameterKind::kRecordset:
      break;
  }
  Variant nothing;
  nothing.Get().vt = VT_UNKNOWN;
  nothing.Get().punkVal = nullptr;
  return nothing;
}

// Puts the object's interface into content; a recordset of another make, which no method looks into, becomes Nothing.
HRESULT TakeObject(const Variant& given, ParameterKind kind, Variant& content) {
  content = DefaultOf(kind);
  if (given.Type() != VT_DISPATCH && given.Type() != VT_UNKNOWN) return DISP_E_TYPEMISMATCH;
  IUnknown* const object = given.Get().punkVal;
  if (object == nullptr) return S_OK;
  const bool recordset = kind == ParameterKind::kRecordset;
  void* found = nullptr;
  const HRESULT result = object->QueryInterface(recordset ? kRecordset : IID_IDispatch, &found);
  if (FAILED(result)) return recordset ? S_OK : DISP_E_TYPEMISMATCH;
  content.Get().byref = found;
  return S_OK;
}

// Brings one argument into its parameter's type. Throws base::Error and std::bad_alloc.
HRESULT Convert(Variant& given, ParameterKind kind, const base::Locale& locale, Variant& content) {
  switch (kind) {
    case ParameterKind::kText:
      content = Variant(base::ToText(ToValue(given.Get()), locale));
      return S_OK;
    case ParameterKind::kLong:
      content = Variant(base::ToLong(ToValue(given.Get()), locale));
      return S_OK;
    case ParameterKind::kVariant:
      return VariantCopy(content.Receive(), &given.Get());
    case ParameterKind::kObject:
    case ParameterKind::kRecordset:
      return TakeObject(given, kind, content);
  }
  return E_UNEXPECTED;
}

// The failure of a conversion as automation names it.
HRESULT ResultOf(const base::Error& error) noexcept {
  return error.number() == base::error_number::kOverflow ? DISP_E_OVERFLOW : DISP_E_TYPEMISMATCH;
}

// Whether the method left its argument as it was: same type and same content, an object by its identity.
bool Unchanged(const VARIANT& before, const VARIANT& now) noexcept {
  if (before.vt != now.vt) return false;
  if (before.vt == VT_BSTR) {
    const UINT length = SysStringByteLen(before.bstrVal);
    return length == SysStringByteLen(now.bstrVal) &&
           (length == 0 || std::memcmp(before.bstrVal, now.bstrVal, length) == 0);
  }
  if (before.vt == VT_DECIMAL) return std::memcmp(&before, &now, sizeof(DECIMAL)) == 0;
  // An array was copied for the comparison, so its address says nothing: it counts as changed.
  if ((before.vt & VT_ARRAY) != 0) return false;
  switch (before.vt) {
    case VT_EMPTY:
    case VT_NULL:
      return true;
    case VT_BOOL:
    case VT_I2:
    case VT_UI2:
      return before.iVal == now.iVal;
    case VT_I1:
    case VT_UI1:
      return before.bVal == now.bVal;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      return before.lVal == now.lVal;
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return before.punkVal == now.punkVal;
    default:
      return before.llVal == now.llVal;
  }
}

// Bytes that a reference to this type points to; 0 for types that are not stored by plain copy.
std::size_t PlainSize(VARTYPE type) noexcept {
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
      return 8;
    default:
      return 0;
  }
}

// Stores the value into a caller's variable of a fixed type, which keeps its type.
HRESULT StoreTyped(Variant& value, VARIANT& target) noexcept {
  const VARTYPE type = static_cast<VARTYPE>(target.vt & ~VT_BYREF);
  Variant converted;
  const HRESULT result = VariantChangeType(converted.Receive(), &value.Get(), 0, type);
  if (FAILED(result)) return result;
  switch (type) {
    case VT_BSTR:
      // In place: the string belongs to the caller, who may hold it by this very address only.
      return SysReAllocStringLen(target.pbstrVal, converted.Get().bstrVal, SysStringLen(converted.Get().bstrVal))
                 ? S_OK
                 : E_OUTOFMEMORY;
    case VT_DISPATCH:
    case VT_UNKNOWN: {
      const auto previous = ComPtr<IUnknown>::Adopt(*target.ppunkVal);
      *target.ppunkVal = converted.Detach().punkVal;
      return S_OK;
    }
    case VT_DECIMAL:
      *target.pdecVal = converted.Get().decVal;
      return S_OK;
    default: {
      const std::size_t size = PlainSize(type);
      if (size == 0) return DISP_E_TYPEMISMATCH;
      std::memcpy(target.byref, &converted.Get().llVal, size);
      return S_OK;
    }
  }
}

HRESULT Store(Variant& value, VARIANT& given) noexcept {
  // Only what came by reference is a variable; anything else is the caller's temporary.
  if ((given.vt & VT_BYREF) == 0) return S_OK;
  VARIANT* const target = Innermost(&given);
  if ((target->vt & VT_BYREF) != 0) return target->byref == nullptr ? S_OK : StoreTyped(value, *target);
  return VariantCopy(target, &value.Get());
}

}  // namespace

HRESULT NormalisedArguments::Assign(DISPPARAMS& parameters, UINT* bad_argument) noexcept {
  if (parameters.cArgs > arguments_.size() || parameters.cNamedArgs > parameters.cArgs) return DISP_E_BADPARAMCOUNT;
  for (UINT position = 0; position < parameters.cArgs; ++position) {
    // The named ones come first and say which parameter they are; the others are in order, the last one first.
    const std::size_t index = position < parameters.cNamedArgs
                                  ? static_cast<std::size_t>(parameters.rgdispidNamedArgs[position])
                                  : static_cast<std::size_t>(parameters.cArgs - 1 - position);
    if (index >= arguments_.size() || arguments_[index].given != nullptr) {
      if (bad_argument != nullptr) *bad_argument = position;
      return DISP_E_PARAMNOTFOUND;
    }
    arguments_[index].given = &parameters.rgvarg[position];
    arguments_[index].position = position;
  }
  return S_OK;
}

HRESULT NormalisedArguments::Take(DISPPARAMS& parameters, std::span<const ParameterKind> kinds,
                                  const base::Locale& locale, UINT* bad_argument) noexcept {
  UINT position = 0;
  HRESULT result = S_OK;
  try {
    arguments_.clear();
    arguments_.reserve(kinds.size());
    for (const ParameterKind kind : kinds) arguments_.emplace_back(kind);
    result = Assign(parameters, bad_argument);
    if (FAILED(result)) return result;
    for (Argument& argument : arguments_) {
      position = argument.position;
      Variant given = Variant::Missing();
      if (argument.given != nullptr) result = Copy(*Innermost(argument.given), given);
      if (SUCCEEDED(result)) {
        if (IsLeftOut(given.Get()) && argument.kind != ParameterKind::kVariant) {
          argument.current = DefaultOf(argument.kind);
        } else {
          result = Convert(given, argument.kind, locale, argument.current);
        }
      }
      if (SUCCEEDED(result)) result = VariantCopy(argument.before.Receive(), &argument.current.Get());
      if (FAILED(result)) break;
    }
  } catch (const base::Error& error) {
    result = ResultOf(error);
  } catch (const std::bad_alloc&) {
    result = E_OUTOFMEMORY;
  } catch (...) {
    // Anything: an object asked for its default property may throw through it.
    result = DISP_E_TYPEMISMATCH;
  }
  if (FAILED(result) && bad_argument != nullptr) *bad_argument = position;
  return result;
}

HRESULT NormalisedArguments::WriteBack(UINT* bad_argument) noexcept {
  for (Argument& argument : arguments_) {
    if (argument.given == nullptr || Unchanged(argument.before.Get(), argument.current.Get())) continue;
    const HRESULT result = Store(argument.current, *argument.given);
    if (FAILED(result)) {
      if (bad_argument != nullptr) *bad_argument = argument.position;
      return result;
    }
  }
  return S_OK;
}

}  // namespace quenta::platform
