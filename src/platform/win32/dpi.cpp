#include "platform/win32/dpi.h"

namespace quenta::platform {
namespace {

// Windows 10 has these; older systems and some emulations do not.
struct User32 {
  HANDLE(WINAPI* SetThreadDpiAwarenessContext)(HANDLE) = nullptr;
  UINT(WINAPI* GetDpiForWindow)(HWND) = nullptr;
  BOOL(WINAPI* SystemParametersInfoForDpi)(UINT, UINT, PVOID, UINT, UINT) = nullptr;

  User32() noexcept {
    const HMODULE library = GetModuleHandleW(L"user32.dll");
    LookUp(library, "SetThreadDpiAwarenessContext", SetThreadDpiAwarenessContext);
    LookUp(library, "GetDpiForWindow", GetDpiForWindow);
    LookUp(library, "SystemParametersInfoForDpi", SystemParametersInfoForDpi);
  }

 private:
  template <typename Function>
  static void LookUp(HMODULE library, const char* name, Function& function) noexcept {
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
  }
};

const User32& Functions() noexcept {
  static const User32 functions;
  return functions;
}

UINT ScreenDpi() noexcept {
  const HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  return dpi > 0 ? static_cast<UINT>(dpi) : 96;
}

}  // namespace

DpiScope::DpiScope() noexcept {
  const auto set = Functions().SetThreadDpiAwarenessContext;
  if (set == nullptr) return;
  constexpr LONG_PTR kPerMonitorV2 = -4;
  constexpr LONG_PTR kPerMonitor = -3;
  before_ = set(reinterpret_cast<HANDLE>(kPerMonitorV2));
  if (before_ == nullptr) before_ = set(reinterpret_cast<HANDLE>(kPerMonitor));
}

DpiScope::~DpiScope() {
  if (before_ != nullptr) Functions().SetThreadDpiAwarenessContext(before_);
}

UINT DpiOf(HWND window) noexcept {
  const UINT dpi = Functions().GetDpiForWindow != nullptr ? Functions().GetDpiForWindow(window) : 0;
  return dpi != 0 ? dpi : ScreenDpi();
}

OwnedFont MessageFont(UINT dpi) noexcept {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof(metrics);
  const auto for_dpi = Functions().SystemParametersInfoForDpi;
  if (for_dpi == nullptr || !for_dpi(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0, dpi)) {
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0);
    metrics.lfMessageFont.lfHeight =
        MulDiv(metrics.lfMessageFont.lfHeight, static_cast<int>(dpi), static_cast<int>(ScreenDpi()));
  }
  return OwnedFont(CreateFontIndirectW(&metrics.lfMessageFont));
}

}  // namespace quenta::platform
