#include "controls/control.h"

namespace quenta::controls {

void Control::set_enabled(bool enabled) {
  if (enabled_ == enabled) return;
  enabled_ = enabled;
  Changed(Aspect::kEnabled);
}

void Control::set_visible(bool visible) {
  if (visible_ == visible) return;
  visible_ = visible;
  Changed(Aspect::kVisible);
}

void Control::GotFocus() {
  focused_ = true;
  if (on_got_focus) on_got_focus();
}

void Control::LostFocus() {
  focused_ = false;
  if (on_lost_focus) on_lost_focus();
}

void Control::KeyDown(int key) {
  if (on_key_down) on_key_down(key);
}

int Control::KeyPress(int key) {
  if (on_key_press) on_key_press(key);
  return key;
}

}  // namespace quenta::controls
