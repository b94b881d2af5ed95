#include "sandbox/com/automation_object.h"

#include <algorithm>
#include <new>
#include <utility>

#include "base/error.h"
#include "platform/automation/bstr.h"
#include "platform/automation/com_error.h"
#include "sandbox/com/ado_errors.h"

namespace quenta::sandbox::com {
namespace {

const VARIANT& Through(const VARIANT& variant) noexcept {
  return variant.vt == (VT_BYREF | VT_VARIANT) ? *variant.pvarVal : variant;
}

Variant Converted(const VARIANT& variant, VARTYPE type) {
  Variant result;
  VARIANT source = variant;  // the content stays the caller's
  platform::ThrowIfFailed(VariantChangeType(result.Receive(), &source, 0, type), "argument");
  return result;
}

// Tells the caller about an error, as far as it wants to know.
HRESULT Raise(const base::Error& error, std::wstring_view source, EXCEPINFO* exception) noexcept {
  if (exception != nullptr) {
    *exception = {};
    exception->scode = ResultOf(error.number());
    const std::wstring_view origin = IsProviderError(error) ? kProviderName : source;
    exception->bstrSource = SysAllocStringLen(origin.data(), static_cast<UINT>(origin.size()));
    try {
      exception->bstrDescription = platform::Bstr(error.description()).Detach();
    } catch (const std::bad_alloc&) {  // the number alone must do
    }
  }
  return DISP_E_EXCEPTION;
}

}  // namespace

bool SameName(std::wstring_view a, std::wstring_view b) noexcept {
  constexpr auto kFold = [](wchar_t c) { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [kFold](wchar_t x, wchar_t y) { return kFold(x) == kFold(y); });
}

std::string TextOf(const VARIANT& variant) {
  return platform::FromBstr(Converted(variant, VT_BSTR).Get().bstrVal);
}

std::int32_t LongOf(const VARIANT& variant) {
  return static_cast<std::int32_t>(Converted(variant, VT_I4).Get().lVal);
}

bool Arguments::Has(std::size_t index) const noexcept {
  if (index >= count()) return false;
  const VARIANT& argument = At(index);
  return argument.vt != VT_EMPTY && !(argument.vt == VT_ERROR && argument.scode == DISP_E_PARAMNOTFOUND);
}

const VARIANT& Arguments::At(std::size_t index) const noexcept {
  return Through(Raw(index));
}

std::string Arguments::Text(std::size_t index, std::string_view otherwise) const {
  return Has(index) ? TextOf(At(index)) : std::string(otherwise);
}

std::int32_t Arguments::Long(std::size_t index, std::int32_t otherwise) const {
  return Has(index) ? LongOf(At(index)) : otherwise;
}

ComPtr<IDispatch> Arguments::Object(std::size_t index) const noexcept {
  if (!Has(index)) return {};
  const VARIANT& argument = At(index);
  switch (argument.vt) {
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return ComPtr<IUnknown>(argument.punkVal).As<IDispatch>();
    case VT_BYREF | VT_DISPATCH:
    case VT_BYREF | VT_UNKNOWN:
      return ComPtr<IUnknown>(*argument.ppunkVal).As<IDispatch>();
    default:
      return {};
  }
}

void Arguments::StoreLong(std::size_t index, std::int32_t number) const noexcept {
  if (index >= count()) return;
  const VARIANT& argument = Raw(index);
  if (argument.vt == (VT_BYREF | VT_I4)) {
    *argument.plVal = number;
  } else if (argument.vt == (VT_BYREF | VT_VARIANT)) {
    VariantClear(argument.pvarVal);
    argument.pvarVal->vt = VT_I4;
    argument.pvarVal->lVal = number;
  }
}

HRESULT STDMETHODCALLTYPE AutomationObject::GetTypeInfoCount(UINT* count) noexcept {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

HRESULT STDMETHODCALLTYPE AutomationObject::GetTypeInfo(UINT, LCID, ITypeInfo** info) noexcept {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE AutomationObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                                          DISPID* identifiers) noexcept {
  if (names == nullptr || identifiers == nullptr || count == 0) return E_INVALIDARG;
  // The names after the first are those of parameters, which no member here offers.
  std::fill_n(identifiers, count, DISPID_UNKNOWN);
  identifiers[0] = FindMember(names[0]);
  return identifiers[0] == DISPID_UNKNOWN || count > 1 ? DISP_E_UNKNOWNNAME : S_OK;
}

HRESULT STDMETHODCALLTYPE AutomationObject::Invoke(DISPID identifier, REFIID iid, LCID locale, WORD kind,
                                                   DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                                   UINT* argument_error) noexcept {
  if (result != nullptr) VariantInit(result);
  if (!IsEqualIID(iid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (parameters == nullptr) return E_INVALIDARG;
  const bool put = (kind & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  const bool names_value_only = parameters->cNamedArgs == 1 && parameters->rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
  if (put ? !names_value_only : parameters->cNamedArgs != 0) return DISP_E_NONAMEDARGS;

  // A call may drop the last reference to the object that it runs on.
  const ComPtr<IDispatch> alive(this);
  try {
    Variant answer;
    const HRESULT outcome = Call(identifier, kind, Arguments(*parameters), answer);
    if (outcome == DISP_E_BADPARAMCOUNT && (kind & DISPATCH_PROPERTYGET) != 0) {
      // rs.Fields("nome"): too many for the property are those of its object's default member.
      const DISPPARAMS none{};
      if (Call(identifier, DISPATCH_PROPERTYGET, Arguments(none), answer) == S_OK && answer.Type() == VT_DISPATCH) {
        return answer.Get().pdispVal->Invoke(DISPID_VALUE, iid, locale, kind, parameters, result, exception,
                                             argument_error);
      }
    }
    if (FAILED(outcome)) return outcome;
    if (result != nullptr) *result = answer.Detach();
    return S_OK;
  } catch (const base::Error& error) {
    return Raise(error, Source(), exception);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

Variant BooleanResult(bool value) noexcept {
  Variant variant;
  variant.Get().vt = VT_BOOL;
  variant.Get().boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  return variant;
}

Variant LongPointerResult(std::intptr_t number) noexcept {
  Variant variant;
  if constexpr (sizeof(number) == sizeof(variant.Get().llVal)) {
    variant.Get().vt = VT_I8;
    variant.Get().llVal = number;
  } else {
    variant.Get().vt = VT_I4;
    variant.Get().lVal = static_cast<LONG>(number);
  }
  return variant;
}

}  // namespace quenta::sandbox::com
