#include "platform/win32/form_host.h"

#include <algorithm>

#include "platform/win32/dpi.h"
#include "platform/win32/form_window.h"
#include "platform/win32/host_window_object.h"

namespace quenta::platform {
namespace {

// The top window that it is part of. Null for another program's, which is no place to be, nor to go back to.
HWND TopWindowOfOurs(HWND window) noexcept {
  DWORD process = 0;
  if (window != nullptr) GetWindowThreadProcessId(window, &process);
  return process == GetCurrentProcessId() ? GetAncestor(window, GA_ROOT) : nullptr;
}

void Reorder(HWND window, bool topmost) noexcept {
  SetWindowPos(window, topmost ? HWND_TOPMOST : HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE);
}

}  // namespace

FormHost::FormHost(std::string window_memory_path) : window_memory_path_(std::move(window_memory_path)) {}

FormHost::~FormHost() {
  CloseAll();
}

const std::shared_ptr<WindowServices>& FormHost::Services() {
  if (services_ == nullptr) services_ = std::make_shared<WindowServices>(window_memory_path_);
  return services_;
}

void FormHost::Show(controls::Form& form) {
  if (const auto shown = Find(form)) {
    // Whoever asked last is gone back to.
    if (const HWND caller = WindowOfCaller(form)) shown->ReturnTo(caller);
    shown->BringToFront();
    return;
  }
  std::vector<RECT> taken;
  {
    const DpiScope dpi_scope;
    for (const auto& other : windows_) {
      RECT place{};
      if (!other->closing() && GetWindowRect(other->window(), &place)) taken.push_back(place);
    }
  }
  const auto window = std::make_shared<FormWindow>(Services(), form.shared_from_this(), [this](FormWindow& gone) {
    std::erase_if(windows_, [&](const auto& one) { return one.get() == &gone; });
  });
  windows_.push_back(window);
  try {
    window->Open(WindowToOpenOver(form), taken);
  } catch (...) {
    std::erase(windows_, window);
    throw;
  }
}

HWND FormHost::WindowOfCaller(const controls::Form& form) const {
  const auto caller = std::dynamic_pointer_cast<HostWindowObject>(form.Caller());
  return caller != nullptr ? TopWindowOfOurs(caller->Window()) : nullptr;
}

HWND FormHost::WindowToOpenOver(const controls::Form& form) const {
  if (const auto below = form.OpenedOver()) {
    if (const HWND window = WindowOf(*below)) return window;
  }
  if (const HWND window = WindowOfCaller(form)) return window;
  const HWND active = GetActiveWindow();
  return TopWindowOfOurs(active != nullptr ? active : GetForegroundWindow());
}

void FormHost::Close(controls::Form& form) {
  if (const auto window = Find(form)) window->Close();
}

void FormHost::SetTopmost(controls::Form& form, bool topmost) {
  const auto window = Find(form);
  if (window == nullptr) return;
  Reorder(window->window(), topmost);
  if (topmost && (GetWindowLongW(window->window(), GWL_EXSTYLE) & WS_EX_TOPMOST) == 0) {
    // Wine puts the tooltips and calendars that the window owns on top and the window itself behind them, where it is
    // topmost only if what comes next is: for this moment, a window that nobody sees.
    const OwnedWindow next(CreateWindowExW(WS_EX_TOPMOST | WS_EX_NOACTIVATE, WC_STATICW, nullptr, WS_POPUP, 0, 0, 0, 0,
                                           nullptr, nullptr, ThisModule(), nullptr));
    Reorder(window->window(), topmost);
  }
}

void FormHost::Focus(controls::Form& form, const char* control_name) {
  if (const auto window = Find(form)) window->FocusControl(control_name);
}

void FormHost::PopupMenu(controls::Form& form, const char* menu_name) {
  const auto window = Find(form);
  const controls::MenuItem* const menu = controls::FindMenuItem(form.menus(), menu_name);
  if (window == nullptr || menu == nullptr) return;
  window->PopupMenu(std::vector<controls::MenuItem>(menu->items));
}

int FormHost::OpenForms() const noexcept {
  const bool hooked = services_ != nullptr && services_->keyboard->busy();
  return static_cast<int>(windows_.size()) + (hooked && windows_.empty() ? 1 : 0);
}

void FormHost::CloseAll() noexcept {
  // Each window takes itself off the list when it is gone.
  while (!windows_.empty()) {
    const std::shared_ptr<FormWindow> window = windows_.back();
    window->Destroy();
    std::erase(windows_, window);
  }
  timers_.StopAll();
}

HWND FormHost::WindowOf(const controls::Form& form) const noexcept {
  const auto window = Find(form);
  return window != nullptr ? window->window() : nullptr;
}

void FormHost::QuestionEnded(const controls::Form& form) noexcept {
  if (const auto window = Find(form)) window->RestoreEnabled();
}

std::shared_ptr<FormWindow> FormHost::Find(const controls::Form& form) const noexcept {
  const auto found = std::find_if(windows_.begin(), windows_.end(),
                                  [&](const auto& one) { return &one->form() == &form && !one->closing(); });
  return found != windows_.end() ? *found : nullptr;
}

}  // namespace quenta::platform
