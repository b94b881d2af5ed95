// Tells when COM is about to end in an apartment, while its objects can still be released.
#pragma once

#include <windows.h>

#include <objidl.h>

#include "platform/automation/com_object.h"
#include "platform/com/server.h"

namespace quenta::platform {

// Registered for the thread that owns the component; ends it before the thread's last CoUninitialize takes effect.
class InitializeSpy final : public ComObject<IInitializeSpy> {
 public:
  explicit InitializeSpy(Server& server) noexcept : server_(server) {}

  HRESULT STDMETHODCALLTYPE PreInitialize(DWORD, DWORD) noexcept override { return S_OK; }
  HRESULT STDMETHODCALLTYPE PostInitialize(HRESULT result, DWORD, DWORD) noexcept override { return result; }
  HRESULT STDMETHODCALLTYPE PreUninitialize(DWORD initialisations) noexcept override {
    // 1: this call undoes the last CoInitialize of the thread.
    if (initialisations == 1) server_.End();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE PostUninitialize(DWORD) noexcept override { return S_OK; }

 private:
  Server& server_;
};

}  // namespace quenta::platform
