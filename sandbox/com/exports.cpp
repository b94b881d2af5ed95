// The four functions that COM and regsvr32 call; each only delegates.
#include <ole2.h>

#include "sandbox/com/classes.h"
#include "sandbox/com/module.h"
#include "sandbox/com/registration.h"

extern "C" {

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID identifier, REFIID iid, void** object) noexcept {
  return quenta::sandbox::com::GetClassObject(identifier, iid, object);
}

HRESULT STDAPICALLTYPE DllCanUnloadNow() noexcept {
  return quenta::sandbox::com::CanUnload() ? S_OK : S_FALSE;
}

HRESULT STDAPICALLTYPE DllRegisterServer() noexcept {
  return quenta::sandbox::com::Register();
}

HRESULT STDAPICALLTYPE DllUnregisterServer() noexcept {
  return quenta::sandbox::com::Unregister();
}
}
