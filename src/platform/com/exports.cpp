// The library's four exports; each only hands on to the one server of this library. There is no DllMain of our own:
// nothing has to happen while the loader holds its lock, and the statically linked runtime needs the loader's notices
// about ending threads, so they are not switched off either.
#include <windows.h>

#include <ole2.h>

#include <cstddef>
#include <new>

#include "platform/com/composition_root.h"
#include "platform/com/registration.h"
#include "platform/com/server.h"

// The linker puts it at the module's load address, which is the module's handle.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace quenta::platform {
namespace {

HMODULE ThisLibrary() noexcept {
  return reinterpret_cast<HMODULE>(&__ImageBase);
}

// The library's only state. Never destroyed: at the end of the process COM is gone before the library is, and nothing
// that the component holds may be released then.
Server& TheServer() {
  alignas(Server) static std::byte memory[sizeof(Server)];
  static Server* const server = new (memory) Server(ThisLibrary(), &ComposeComponent);
  return *server;
}

}  // namespace
}  // namespace quenta::platform

STDAPI DllGetClassObject(REFCLSID class_id, REFIID iid, void** object) {
  return quenta::platform::TheServer().GetClassObject(class_id, iid, object);
}

STDAPI DllCanUnloadNow() {
  return quenta::platform::TheServer().CanUnload();
}

STDAPI DllRegisterServer() {
  return quenta::platform::Register(quenta::platform::ThisLibrary());
}

STDAPI DllUnregisterServer() {
  return quenta::platform::Unregister(quenta::platform::ThisLibrary());
}
