// Owner types for Windows' handles: each is given back exactly once, on every path.
#pragma once

#include <atomic>
#include <utility>

#include <windows.h>

#include <commctrl.h>

namespace quenta::platform {

// How many handles the owner types of this module hold, for tests of the balance: the system's own counts of GDI and
// USER objects are not to be had everywhere.
inline std::atomic<int>& LiveHandles() noexcept {
  static std::atomic<int> count{0};
  return count;
}

// Kind says what the handle is and how it is given back.
template <typename Kind>
class Owned {
 public:
  using Handle = typename Kind::Handle;

  Owned() = default;
  explicit Owned(Handle handle) noexcept : handle_(handle) {
    if (handle_ != Handle{}) ++LiveHandles();
  }
  Owned(Owned&& other) noexcept : handle_(std::exchange(other.handle_, Handle{})) {}
  Owned& operator=(Owned&& other) noexcept {
    if (this != &other) {
      reset();
      handle_ = std::exchange(other.handle_, Handle{});
    }
    return *this;
  }
  ~Owned() { reset(); }

  Handle get() const noexcept { return handle_; }
  explicit operator bool() const noexcept { return handle_ != Handle{}; }
  void reset() noexcept {
    if (handle_ == Handle{}) return;
    --LiveHandles();
    Kind::Release(std::exchange(handle_, Handle{}));
  }
  // The handle belongs to somebody else from now on.
  Handle release() noexcept {
    if (handle_ != Handle{}) --LiveHandles();
    return std::exchange(handle_, Handle{});
  }

 private:
  Handle handle_{};
};

template <typename T>
struct GdiObject {
  using Handle = T;
  static void Release(T object) noexcept { DeleteObject(object); }
};
struct IconHandle {
  using Handle = HICON;
  static void Release(HICON icon) noexcept { DestroyIcon(icon); }
};
struct MenuHandle {
  using Handle = HMENU;
  static void Release(HMENU menu) noexcept { DestroyMenu(menu); }
};
struct MemoryDcHandle {
  using Handle = HDC;
  static void Release(HDC dc) noexcept { DeleteDC(dc); }
};
struct HookHandle {
  using Handle = HHOOK;
  static void Release(HHOOK hook) noexcept { UnhookWindowsHookEx(hook); }
};
struct WindowHandle {
  using Handle = HWND;
  static void Release(HWND window) noexcept { DestroyWindow(window); }
};
struct AtomHandle {
  using Handle = ATOM;
  static void Release(ATOM atom) noexcept { GlobalDeleteAtom(atom); }
};
struct FileHandle {  // INVALID_HANDLE_VALUE is turned into null before it comes here
  using Handle = HANDLE;
  static void Release(HANDLE file) noexcept { CloseHandle(file); }
};
struct RegistryHandle {
  using Handle = HKEY;
  static void Release(HKEY handle) noexcept { RegCloseKey(handle); }
};
struct LibraryHandle {
  using Handle = HMODULE;
  static void Release(HMODULE library) noexcept { FreeLibrary(library); }
};

using OwnedFont = Owned<GdiObject<HFONT>>;
using OwnedBitmap = Owned<GdiObject<HBITMAP>>;
using OwnedIcon = Owned<IconHandle>;
using OwnedMenu = Owned<MenuHandle>;
using OwnedMemoryDc = Owned<MemoryDcHandle>;
using OwnedHook = Owned<HookHandle>;
using OwnedWindow = Owned<WindowHandle>;
using OwnedAtom = Owned<AtomHandle>;
using OwnedFile = Owned<FileHandle>;
using OwnedKey = Owned<RegistryHandle>;
using OwnedLibrary = Owned<LibraryHandle>;

// The screen's device context of a window, with the font selected while this lives.
class WindowDc {
 public:
  WindowDc(HWND window, HFONT font) noexcept : window_(window), dc_(GetDC(window)), before_(SelectObject(dc_, font)) {}
  ~WindowDc() {
    SelectObject(dc_, before_);
    ReleaseDC(window_, dc_);
  }
  WindowDc(const WindowDc&) = delete;
  WindowDc& operator=(const WindowDc&) = delete;
  HDC get() const noexcept { return dc_; }

 private:
  HWND window_;
  HDC dc_;
  HGDIOBJ before_;
};

}  // namespace quenta::platform
