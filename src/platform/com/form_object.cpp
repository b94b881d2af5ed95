#include "platform/com/form_object.h"

#include <array>
#include <cstdint>

#include "base/text.h"
#include "platform/automation/bstr.h"

namespace quenta::platform {
namespace {

constexpr std::array kNames{"hWnd", "Caption"};
enum Member : DISPID { kHWnd = 0, kCaption };

}  // namespace

HRESULT FormObject::GetTypeInfoCount(UINT* count) noexcept {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

HRESULT FormObject::GetTypeInfo(UINT, LCID, ITypeInfo** information) noexcept {
  if (information == nullptr) return E_POINTER;
  *information = nullptr;
  return DISP_E_BADINDEX;
}

HRESULT FormObject::GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID, DISPID* members) noexcept {
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (names == nullptr || members == nullptr) return E_POINTER;
  for (UINT index = 0; index < count; ++index) members[index] = DISPID_UNKNOWN;
  try {
    // Only the first name is a member's; neither property has arguments to name.
    for (std::size_t member = 0; count == 1 && member < kNames.size(); ++member) {
      if (base::EqualIgnoreCase(FromWide(names[0]), kNames[member])) {
        members[0] = static_cast<DISPID>(member);
        return S_OK;
      }
    }
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  return DISP_E_UNKNOWNNAME;
}

HRESULT FormObject::Invoke(DISPID member, REFIID reserved, LCID, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                           EXCEPINFO*, UINT*) noexcept {
  if (result != nullptr) VariantInit(result);
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if ((kind & (DISPATCH_PROPERTYGET | DISPATCH_METHOD)) == 0) return DISP_E_MEMBERNOTFOUND;
  if (parameters == nullptr || parameters->cArgs != 0) return DISP_E_BADPARAMCOUNT;
  if (member != kHWnd && member != kCaption) return DISP_E_MEMBERNOTFOUND;
  if (result == nullptr) return S_OK;
  if (member == kHWnd) {
    result->vt = VT_I4;
    result->lVal = IsWindow(window_) ? static_cast<LONG>(reinterpret_cast<std::intptr_t>(window_)) : 0;
    return S_OK;
  }
  result->bstrVal = SysAllocStringLen(caption_.data(), static_cast<UINT>(caption_.size()));
  if (result->bstrVal == nullptr) return E_OUTOFMEMORY;
  result->vt = VT_BSTR;
  return S_OK;
}

}  // namespace quenta::platform
