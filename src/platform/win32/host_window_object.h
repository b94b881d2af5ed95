// A host's object that can say which window it stands for, so that a form opens over it.
#pragma once

#include <windows.h>

#include "ports/host_object.h"

namespace quenta::platform {

class HostWindowObject : public ports::HostObject {
 public:
  // The object's top-level window or a part of it; null when it has none or does not tell. May call into the host.
  virtual HWND Window() const noexcept = 0;
};

}  // namespace quenta::platform
