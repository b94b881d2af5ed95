#include "controls/form.h"

#include <utility>

namespace quenta::controls {

Form::Form(ports::FormHost& host, std::string name) : host_(host), name_(std::move(name)), caption_(name_) {
  unload_later_.on_timer = [this] {
    unload_later_.set_enabled(false);
    UnloadNow();
  };
}

Form::~Form() = default;

void Form::set_caption(std::string caption) {
  if (caption_ == caption) return;
  caption_ = std::move(caption);
  Changed(FormAspect::kCaption);
}

void Form::set_enabled(bool enabled) {
  if (enabled_ == enabled) return;
  enabled_ = enabled;
  Changed(FormAspect::kEnabled);
}

void Form::set_mouse_pointer(MousePointer pointer) {
  if (mouse_pointer_ == pointer) return;
  mouse_pointer_ = pointer;
  Changed(FormAspect::kMousePointer);
}

void Form::set_window_state(WindowState state) {
  if (window_state_ == state) return;
  window_state_ = state;
  Changed(FormAspect::kWindowState);
}

Control* Form::Find(const std::string& control_name) const {
  for (Control* control : controls_) {
    if (control->name() == control_name) return control;
  }
  return nullptr;
}

void Form::Load() {
  if (loaded_) return;
  loading_ = true;
  loaded_ = true;
  try {
    OnLoad();
  } catch (...) {
    loading_ = false;
    Closed();
    throw;
  }
  loading_ = false;
}

void Form::Show() {
  // A request that arrives while the load waits for the database changes nothing: the load shows the form at its end.
  if (loading_) return;
  const std::shared_ptr<Form> alive = shared_from_this();
  Load();
  if (!loaded_) return;
  try {
    host_.Show(*this);
  } catch (...) {
    // A form that never got its window could never be closed.
    if (!visible_) Closed();
    throw;
  }
  visible_ = loaded_;
}

bool Form::Unload() {
  if (!loaded_) return true;
  if (unloading_ || loading_) return false;
  if (in_operation()) {
    unload_put_off_ = true;
    return false;
  }
  const std::shared_ptr<Form> alive = shared_from_this();
  unloading_ = true;
  bool cancel = false;
  try {
    OnUnload(cancel);
  } catch (...) {
    unloading_ = false;
    throw;
  }
  unloading_ = false;
  if (cancel && loaded_) return false;
  host_.Close(*this);
  Closed();
  return true;
}

void Form::WindowLost() noexcept {
  Closed();
}

void Form::Closed() noexcept {
  if (!loaded_) return;
  loaded_ = false;
  visible_ = false;
  unload_put_off_ = false;
  unload_later_.set_enabled(false);
  OnClosed();
}

// Not from here: the operation that has ended stands on the stack of whoever began it.
void Form::EndOperation() noexcept {
  if (--operations_ > 0 || !std::exchange(unload_put_off_, false) || !loaded_) return;
  try {
    unload_later_.set_enabled(true);
  } catch (...) {
    UnloadNow();  // without a timer; the host keeps the form until its events have ended
  }
}

void Form::UnloadNow() noexcept {
  try {
    Unload();
  } catch (...) {
    OnUnloadFailed();
  }
}

void Form::Attach(FormView* view) noexcept {
  view_ = view;
  for (Control* control : controls_) control->Attach(view);
}

std::string Form::Dump() const {
  std::string text;
  for (const Control* control : controls_) {
    text += control->name() + "=" + control->Describe();
    if (!control->enabled()) text += " (disabled)";
    if (!control->visible()) text += " (hidden)";
    text += '\n';
  }
  return text;
}

}  // namespace quenta::controls
