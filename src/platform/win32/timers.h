// Timers of one thread, told from its message loop.
#pragma once

#include <vector>

#include <windows.h>

#include "platform/win32/handles.h"
#include "ports/form_host.h"

namespace quenta::platform {

class Timers {
 public:
  Timers() = default;
  ~Timers();
  Timers(const Timers&) = delete;
  Timers& operator=(const Timers&) = delete;

  // Throws base::Error when Windows has no timer left.
  void Start(ports::TimerTarget& target, int milliseconds);
  void Stop(ports::TimerTarget& target) noexcept;
  void StopAll() noexcept;
  bool empty() const noexcept { return targets_.empty(); }

 private:
  static void CALLBACK OnTimer(HWND window, UINT message, UINT_PTR target, DWORD time) noexcept;

  // Nobody sees it; it tells this object's timers from those of others.
  OwnedWindow window_;
  std::vector<ports::TimerTarget*> targets_;
};

}  // namespace quenta::platform
