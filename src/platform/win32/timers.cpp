#include "platform/win32/timers.h"

#include <algorithm>

#include "base/error.h"
#include "platform/win32/activation_context.h"

namespace quenta::platform {

Timers::~Timers() {
  StopAll();
}

void Timers::Start(ports::TimerTarget& target, int milliseconds) {
  targets_.reserve(targets_.size() + 1);
  if (!window_) {
    window_ = OwnedWindow(
        CreateWindowExW(0, WC_STATICW, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, ThisModule(), nullptr));
    if (window_) SetWindowLongPtrW(window_.get(), GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }
  if (!window_ || SetTimer(window_.get(), reinterpret_cast<UINT_PTR>(&target), static_cast<UINT>(milliseconds),
                           &Timers::OnTimer) == 0) {
    if (targets_.empty()) window_.reset();
    throw base::Error(base::error_number::kOutOfMemory, "Windows has no timer left.");
  }
  if (std::find(targets_.begin(), targets_.end(), &target) == targets_.end()) targets_.push_back(&target);
}

void Timers::Stop(ports::TimerTarget& target) noexcept {
  if (std::erase(targets_, &target) > 0) KillTimer(window_.get(), reinterpret_cast<UINT_PTR>(&target));
  if (targets_.empty()) window_.reset();  // nothing stays behind when the library goes
}

void Timers::StopAll() noexcept {
  while (!targets_.empty()) Stop(*targets_.back());
}

void CALLBACK Timers::OnTimer(HWND window, UINT, UINT_PTR target, DWORD) noexcept {
  const auto* const timers = reinterpret_cast<const Timers*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  // A message of a timer that was stopped meanwhile may still come.
  const auto found =
      std::find(timers->targets_.begin(), timers->targets_.end(), reinterpret_cast<ports::TimerTarget*>(target));
  if (found != timers->targets_.end()) (*found)->OnTimer();
}

}  // namespace quenta::platform
