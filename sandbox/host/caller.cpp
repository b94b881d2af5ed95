#include "sandbox/host/caller.h"

namespace quenta::sandbox::host {
namespace {

constexpr DISPID kHwndId = 1;

}  // namespace

HRESULT Caller::QueryInterface(REFIID iid, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (iid != IID_IUnknown && iid != IID_IDispatch) return E_NOINTERFACE;
  *object = static_cast<IDispatch*>(this);
  AddRef();
  return S_OK;
}

ULONG Caller::Release() noexcept {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT Caller::GetTypeInfoCount(UINT* count) noexcept {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

HRESULT Caller::GetTypeInfo(UINT, LCID, ITypeInfo** info) noexcept {
  if (info != nullptr) *info = nullptr;
  return DISP_E_BADINDEX;
}

HRESULT Caller::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) noexcept {
  if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
  for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
  if (lstrcmpiW(names[0], L"hWnd") == 0) ids[0] = kHwndId;
  return ids[0] == kHwndId && count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
}

HRESULT Caller::Invoke(DISPID id, REFIID, LCID, WORD kind, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO*,
                       UINT*) noexcept {
  if (id != kHwndId || (kind & DISPATCH_PROPERTYGET) == 0) return DISP_E_MEMBERNOTFOUND;
  if (parameters != nullptr && parameters->cArgs != 0) return DISP_E_BADPARAMCOUNT;
  if (result == nullptr) return S_OK;
  VariantInit(result);
  result->vt = VT_I4;  // window handles keep to 32 bits, also in 64-bit processes
  result->lVal = static_cast<LONG>(reinterpret_cast<INT_PTR>(window_));
  return S_OK;
}

}  // namespace quenta::sandbox::host
