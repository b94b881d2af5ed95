// Resolution of monitors: awareness of the windows made here, whatever the host's, and the system's font at each.
#pragma once

#include <windows.h>

#include "platform/win32/handles.h"

namespace quenta::platform {

// While this lives, windows made by the thread are per-monitor aware and coordinates are physical pixels. Where the
// system knows only the older kind of awareness that is used; where it knows none, the host's own applies.
class DpiScope {
 public:
  DpiScope() noexcept;
  ~DpiScope();
  DpiScope(const DpiScope&) = delete;
  DpiScope& operator=(const DpiScope&) = delete;

 private:
  HANDLE before_ = nullptr;
};

// Pixels per inch of the window; that of the screen where Windows does not tell them apart.
UINT DpiOf(HWND window) noexcept;

// The font of messages and dialogs, as the user has set it.
OwnedFont MessageFont(UINT dpi) noexcept;

// 1/96 inch in pixels, and back.
inline int Scale(int length, UINT dpi) noexcept {
  return MulDiv(length, static_cast<int>(dpi), 96);
}
inline int Unscale(int pixels, UINT dpi) noexcept {
  return MulDiv(pixels, 96, static_cast<int>(dpi));
}

}  // namespace quenta::platform
