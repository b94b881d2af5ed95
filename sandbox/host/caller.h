// The host's window as an object: what the component gets as Caller, to place itself over the host.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <atomic>

namespace quenta::sandbox::host {

// COM's interfaces have no virtual destructor: objects end in their own Release.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// An IDispatch with one read-only property, hWnd. The component may hold it longer than the window lives; hWnd is 0
// from then on.
class Caller final : public IDispatch {
 public:
  explicit Caller(HWND window) : window_(window) {}
  void Detach() noexcept { window_ = nullptr; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override;
  ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() noexcept override;
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) noexcept override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* ids) noexcept override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD kind, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT* argument) noexcept override;

 private:
  ~Caller() = default;

  std::atomic<ULONG> references_ = 1;
  HWND window_;
};

#pragma GCC diagnostic pop

}  // namespace quenta::sandbox::host
