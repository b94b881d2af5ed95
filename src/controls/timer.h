// A timer of a form: an event that comes from the message loop after an interval, again and again until disabled.
#pragma once

#include <functional>

#include "ports/form_host.h"

namespace quenta::controls {

class Timer final : public ports::TimerTarget {
 public:
  // Disabled at first. The interval counts in milliseconds.
  Timer(ports::FormHost& host, int interval) : host_(host), interval_(interval) {}
  ~Timer() override { set_enabled(false); }
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

  bool enabled() const noexcept { return enabled_; }
  // Enabling a timer that is enabled changes nothing. Throws base::Error, and it stays disabled, when none can be had.
  void set_enabled(bool enabled) {
    if (enabled_ == enabled) return;
    if (enabled) {
      host_.StartTimer(*this, interval_);
    } else {
      host_.StopTimer(*this);
    }
    enabled_ = enabled;
  }

  // Throws nothing: it is called from the message loop.
  std::function<void()> on_timer;
  void OnTimer() noexcept override {
    if (enabled_ && on_timer) on_timer();
  }

 private:
  ports::FormHost& host_;
  int interval_;
  bool enabled_ = false;
};

}  // namespace quenta::controls
