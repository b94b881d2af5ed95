// The part of the outside that turns form models into windows and keeps them in order.
#pragma once

namespace quenta::controls {
class Form;  // handed through as a name; a port never looks inside
}

namespace quenta::ports {

// Who is told that a timer's interval has passed.
class TimerTarget {
 public:
  virtual ~TimerTarget() = default;
  virtual void OnTimer() noexcept = 0;
};

class FormHost {
 public:
  virtual ~FormHost() = default;

  // Makes the form's window on first use (modeless, over the caller's window, without an owner) and brings it to the
  // front. The host keeps the form alive until its window is gone. Throws base::Error when there can be no window.
  virtual void Show(controls::Form& form) = 0;

  // Removes the window without asking the form. Safe from inside the form's own events: what is still running ends
  // first. Nothing happens when the form has no window.
  virtual void Close(controls::Form& form) = 0;

  // Above all windows, or back in the normal order; position and size stay.
  virtual void SetTopmost(controls::Form& form, bool topmost) = 0;

  // Puts the keyboard focus into the form's control of this name, on whatever tab page it stands.
  virtual void Focus(controls::Form& form, const char* control_name) = 0;

  // Shows the entries below the form's menu of this name, at the pointer or beside the focused control when a key asked
  // for it, and runs what the user chooses. Nothing happens when the form has no window or no such menu.
  virtual void PopupMenu(controls::Form& form, const char* menu_name) = 0;

  // Tells the target from the message loop each time the interval has passed, until it is stopped. Started again, the
  // interval begins anew. A target that runs keeps the library loaded; it must be stopped before it dies. Throws
  // base::Error when no timer can be had.
  virtual void StartTimer(TimerTarget& target, int milliseconds) = 0;
  virtual void StopTimer(TimerTarget& target) noexcept = 0;
};

}  // namespace quenta::ports
