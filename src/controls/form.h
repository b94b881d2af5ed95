// A form: its controls by name, its layout, menus and shortcuts, and its life from load to unload. No window in it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "controls/commands.h"
#include "controls/layout.h"
#include "controls/timer.h"
#include "ports/form_host.h"
#include "ports/host_object.h"

namespace quenta::controls {

enum class FormAspect { kCaption, kEnabled, kMousePointer, kWindowState, kMenus, kRefresh };
enum class MousePointer { kDefault = 0, kHourglass = 11 };
enum class WindowState { kNormal = 0, kMinimized = 1 };

// The window side of a form, told what code has changed in the model.
class FormView : public ControlView {
 public:
  virtual void FormChanged(FormAspect aspect) noexcept = 0;
};

// Life: created → Show (loads on first use, then the window appears) → Unload (asks OnUnload, which may refuse) →
// gone. A form that was unloaded can be shown again and then loads anew.
class Form : public std::enable_shared_from_this<Form> {
 public:
  // The form is called by its class's name ("frmMain"); the host outlives it.
  Form(ports::FormHost& host, std::string name);
  virtual ~Form();
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  const std::string& name() const noexcept { return name_; }
  const std::string& caption() const noexcept { return caption_; }
  void set_caption(std::string caption);
  bool enabled() const noexcept { return enabled_; }
  void set_enabled(bool enabled);
  MousePointer mouse_pointer() const noexcept { return mouse_pointer_; }
  void set_mouse_pointer(MousePointer pointer);
  WindowState window_state() const noexcept { return window_state_; }
  void set_window_state(WindowState state);
  // Repaints at once.
  void Refresh() { Changed(FormAspect::kRefresh); }

  // The controls in the order in which they were added.
  const std::vector<Control*>& controls() const noexcept { return controls_; }
  Control* Find(const std::string& control_name) const;  // null when there is none
  const Layout& layout() const noexcept { return layout_; }
  std::vector<MenuItem>& menus() noexcept { return menus_; }
  void MenusChanged() { Changed(FormAspect::kMenus); }
  const std::vector<Shortcut>& shortcuts() const noexcept { return shortcuts_; }

  // The host's window object that asked for the form, which it is placed over; null for none.
  virtual ports::HostObjectRef Caller() const { return nullptr; }
  // The form that this one stands over, as a dialog does; null for none.
  virtual std::shared_ptr<Form> OpenedOver() const { return nullptr; }

  bool loaded() const noexcept { return loaded_; }
  // True once the load has ended and the form is on the screen; false while it fills itself.
  bool visible() const noexcept { return visible_; }

  // Loads the form if it is not loaded, and leaves it hidden.
  void Load();
  // Loads the form if it is not loaded, and shows it or brings it to the front.
  void Show();
  // Runs the unload procedure; unless it cancels, the window goes. Returns whether the form is unloaded now.
  // A second call while the first one asks the user returns false. While an operation runs on the form, it is put off
  // until that has ended.
  bool Unload();
  // Whether an operation runs on the form: it waits for the database, or asks the user.
  bool in_operation() const noexcept { return operations_ > 0; }
  // The window is gone without our doing (the host destroyed it, the session ends): no question can be asked any more.
  void WindowLost() noexcept;

  FormView* view() const noexcept { return view_; }
  // The window side takes the form and its controls over (null: lets go of them).
  void Attach(FormView* view) noexcept;

  // "name=value" for every control, a line each, for failure messages.
  std::string Dump() const;

 protected:
  // While one lives, an operation runs on the form. What the user or the host does meanwhile cannot close the form
  // under it: nothing is saved from a form that the user has closed without saving.
  class Operation {
   public:
    explicit Operation(Form& form) noexcept : form_(form), alive_(form.weak_from_this().lock()) { ++form_.operations_; }
    ~Operation() { form_.EndOperation(); }
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

   private:
    Form& form_;
    std::shared_ptr<Form> alive_;
  };

  virtual void OnLoad() {}
  // The unload procedure: sets cancel to keep the form.
  virtual void OnUnload(bool& cancel) { (void)cancel; }
  // The form is unloaded: let go of what it was given.
  virtual void OnClosed() noexcept {}
  // A closing that had been put off has failed with the exception that is being handled: the form stays, and somebody
  // has to be told.
  virtual void OnUnloadFailed() noexcept {}

  void Add(Control& control) { controls_.push_back(&control); }
  ports::FormHost& host() noexcept { return host_; }

  Layout layout_;
  std::vector<MenuItem> menus_;
  std::vector<Shortcut> shortcuts_;

 private:
  void Changed(FormAspect aspect) noexcept {
    if (view_ != nullptr) view_->FormChanged(aspect);
  }
  void Closed() noexcept;
  void EndOperation() noexcept;
  void UnloadNow() noexcept;

  ports::FormHost& host_;
  std::string name_;
  std::string caption_;
  bool enabled_ = true;
  MousePointer mouse_pointer_ = MousePointer::kDefault;
  WindowState window_state_ = WindowState::kNormal;
  std::vector<Control*> controls_;
  bool loaded_ = false;
  bool loading_ = false;
  bool visible_ = false;
  bool unloading_ = false;
  int operations_ = 0;
  bool unload_put_off_ = false;
  Timer unload_later_{host_, 1};
  FormView* view_ = nullptr;
};

}  // namespace quenta::controls
