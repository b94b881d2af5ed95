// A form of the component as an automation object, for those outside who ask on whose behalf something happens.
#pragma once

#include <windows.h>

#include <ole2.h>

#include <string>

#include "platform/automation/com_object.h"

namespace quenta::platform {

// Two read-only properties: hWnd (Long, 0 once the window is gone) and Caption. It knows the form's window and not the
// form, so whoever keeps it longer than the form lives comes to no harm.
class FormObject final : public ComObject<IDispatch> {
 public:
  FormObject(HWND window, std::wstring caption) : window_(window), caption_(std::move(caption)) {}

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** information) noexcept override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* members) noexcept override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID reserved, LCID locale, WORD kind, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT* bad_argument) noexcept override;

 private:
  HWND window_;
  std::wstring caption_;
};

}  // namespace quenta::platform
