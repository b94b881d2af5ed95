// What one loaded library runs on, as the COM layer sees it: the component with everything it was built from.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>

#include "component/component.h"

namespace quenta::platform {

// Made, used and destroyed on the thread of the apartment that owns the component.
class Composition {
 public:
  virtual ~Composition() = default;

  virtual component::Component& Component() noexcept = 0;

  // True while a window, a timer, a hook or a connecting thread of the component is alive: the library must stay.
  virtual bool Busy() const noexcept = 0;

  // COM is about to end on this thread: closes the windows without asking and lets go of every object of COM's. What
  // still refers to the composition afterwards finds a session that is not connected.
  virtual void End() noexcept = 0;
};

// Builds a composition. Throws when the system refuses something it needs.
using Compose = std::function<std::unique_ptr<Composition>()>;

}  // namespace quenta::platform
