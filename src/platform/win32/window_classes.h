// The window classes of forms and of the frames inside them, registered while this module shows windows.
#pragma once

#include <windows.h>

namespace quenta::platform {

inline constexpr wchar_t kFormClass[] = L"QuentaForm";
inline constexpr wchar_t kFrameClass[] = L"QuentaFrame";

class WindowClasses {
 public:
  // Throws base::Error when Windows refuses.
  explicit WindowClasses(WNDPROC form_procedure);
  // All windows of these classes are gone by then.
  ~WindowClasses();
  WindowClasses(const WindowClasses&) = delete;
  WindowClasses& operator=(const WindowClasses&) = delete;
};

}  // namespace quenta::platform
