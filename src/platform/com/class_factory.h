// The class object of General.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include "platform/automation/com_object.h"
#include "platform/com/server.h"

namespace quenta::platform {

class ClassFactory final : public ComObject<IClassFactory> {
 public:
  explicit ClassFactory(Server& server) noexcept : use_(server) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return use_.Get().CreateGeneral(iid, object);
  }

  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) noexcept override {
    lock ? use_.Get().AddUse() : use_.Get().DropUse();
    return S_OK;
  }

 private:
  const ServerUse use_;
};

}  // namespace quenta::platform
