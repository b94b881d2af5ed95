// Visual styles in a host that asks for none: the module's own manifest, and the common controls that it names.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include "platform/win32/handles.h"

namespace quenta::platform {

// The module that this code is part of: the component's library, or a test's program.
HMODULE ThisModule() noexcept;

// The context of the manifest in this module's resources (win32.rc). Without that resource, and on failure, the host's
// own context stays in force and windows look as the host's do.
class ActivationContext {
 public:
  ActivationContext() noexcept;
  ~ActivationContext();
  ActivationContext(const ActivationContext&) = delete;
  ActivationContext& operator=(const ActivationContext&) = delete;

  // Windows, message boxes and libraries made while a scope lives are those of the context.
  class Scope {
   public:
    explicit Scope(const ActivationContext& context) noexcept;
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    ULONG_PTR cookie_ = 0;
    bool active_ = false;
  };

 private:
  HANDLE context_ = INVALID_HANDLE_VALUE;
};

// Functions of the common controls that the activation context names. They are looked up, not imported: an import
// might be bound to the host's older version, whose image lists the newer controls do not take.
class CommonControls {
 public:
  // Loads the library and registers the window classes. Throws base::Error when Windows lacks them.
  explicit CommonControls(const ActivationContext& context);

  decltype(&::SetWindowSubclass) SetWindowSubclass = nullptr;
  decltype(&::RemoveWindowSubclass) RemoveWindowSubclass = nullptr;
  decltype(&::DefSubclassProc) DefSubclassProc = nullptr;
  decltype(&::ImageList_Create) ImageList_Create = nullptr;
  decltype(&::ImageList_Destroy) ImageList_Destroy = nullptr;
  decltype(&::ImageList_Add) ImageList_Add = nullptr;

 private:
  OwnedLibrary library_;
};

}  // namespace quenta::platform
