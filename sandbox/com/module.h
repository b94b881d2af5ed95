// What keeps the DLL loaded, and where it lies.
#pragma once

#include <windows.h>

#include <string>

namespace quenta::sandbox::com {

// Counts for as long as it lives: objects, class objects and locks each hold one.
class ModuleUse {
 public:
  ModuleUse() noexcept;
  ~ModuleUse();
  ModuleUse(const ModuleUse&) = delete;
  ModuleUse& operator=(const ModuleUse&) = delete;
};

// IClassFactory::LockServer.
void LockModule(bool lock) noexcept;

// Nothing counts any more and no thread of the DLL is connecting.
bool CanUnload() noexcept;

// From now on the DLL stays until the process ends. For the first thread that connects: a given-up one is still inside
// when COM goes, and CoUninitialize unloads without asking.
void StayLoaded() noexcept;

// Full path of the DLL; empty when the system does not tell.
std::wstring ModulePath();

}  // namespace quenta::sandbox::com
