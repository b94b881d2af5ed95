#include "platform/win32/window_classes.h"

#include "base/error.h"
#include "platform/win32/activation_context.h"

namespace quenta::platform {
namespace {

void Register(const wchar_t* name, WNDPROC procedure, int extra_bytes, UINT style) {
  WNDCLASSEXW data{};
  data.cbSize = sizeof(data);
  data.style = style;
  data.lpfnWndProc = procedure;
  data.cbWndExtra = extra_bytes;
  data.hInstance = ThisModule();
  data.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  data.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<UINT_PTR>(COLOR_3DFACE + 1));
  data.lpszClassName = name;
  if (RegisterClassExW(&data) == 0 && GetLastError() != ERROR_CLASS_ALREADY_EXISTS) {
    throw base::Error(base::error_number::kInternal, "Windows does not register the forms' window class");
  }
}

}  // namespace

WindowClasses::WindowClasses(WNDPROC form_procedure) {
  // A class whose windows have the extra bytes of dialogs and hand their messages to DefDlgProc makes real dialogs.
  Register(kFormClass, form_procedure, DLGWINDOWEXTRA, CS_DBLCLKS);
  try {
    Register(kFrameClass, DefWindowProcW, 0, CS_HREDRAW | CS_VREDRAW);
  } catch (...) {
    UnregisterClassW(kFormClass, ThisModule());
    throw;
  }
}

WindowClasses::~WindowClasses() {
  UnregisterClassW(kFrameClass, ThisModule());
  UnregisterClassW(kFormClass, ThisModule());
}

}  // namespace quenta::platform
