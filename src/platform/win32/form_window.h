// A form's model shown as a dialog: its window, the windows of its controls, and the way of events between them.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <windows.h>

#include "controls/form.h"
#include "platform/win32/control_window.h"
#include "platform/win32/dialog_keyboard.h"
#include "platform/win32/menu_window.h"
#include "platform/win32/window_classes.h"
#include "platform/win32/window_memory_file.h"
#include "platform/win32/window_names.h"

namespace quenta::platform {

// What all forms of a host share.
struct WindowServices {
  explicit WindowServices(std::string memory_path);

  ActivationContext context;
  CommonControls common_controls{context};
  WindowClasses classes;
  WindowMemoryFile memory;
  std::shared_ptr<DialogKeyboard> keyboard = std::make_shared<DialogKeyboard>();
};

// Keeps the form alive while its window lives. All calls come from the thread that opened it.
class FormWindow final : public controls::FormView,
                         private ControlOwner,
                         public std::enable_shared_from_this<FormWindow> {
 public:
  // gone is told once, when the window does not exist any more.
  FormWindow(std::shared_ptr<WindowServices> services, std::shared_ptr<controls::Form> form,
             std::function<void(FormWindow&)> gone);
  ~FormWindow() override;

  // The form that a window of this thread is, or is part of; null when it is none of ours.
  static std::shared_ptr<FormWindow> OfWindow(HWND window) noexcept;

  // Makes the window and shows it over another one (over the work area when null), away from the places taken.
  // Throws base::Error when Windows refuses.
  void Open(HWND over, const std::vector<RECT>& taken);
  void BringToFront() noexcept;
  // The window where the user goes on when this one closes, in place of the one that it was opened over.
  void ReturnTo(HWND over) noexcept {
    if (over != window_) over_ = over;
  }
  // Removes the window: at once, or when the events that are running have ended.
  void Close() noexcept;
  // Destroys the window, and tells the form that it is lost.
  void Destroy() noexcept;
  // Puts the focus into the control, on whatever page it stands.
  void FocusControl(const std::string& name) noexcept;
  // Shows a menu where the control that asks wants it, or else at the pointer, and runs what is chosen.
  void PopupMenu(const std::vector<controls::MenuItem>& items) noexcept;
  // Brings the window into the state that the model says. To be called when a message box over the form has ended,
  // too: that has enabled it.
  void RestoreEnabled() noexcept;

  controls::Form& form() const noexcept { return *form_; }
  HWND window() const noexcept { return window_; }
  bool closing() const noexcept { return closing_; }
  const std::shared_ptr<DialogKeyboard>& keyboard() const noexcept { return services_->keyboard; }
  // Shortcuts of the form, and the keys that walk through its tabs. True when the key was one of them.
  bool TranslateKey(const MSG& message) noexcept;

  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept;

  // controls::FormView
  void ControlChanged(controls::Control& control, controls::Aspect aspect) noexcept override;
  void FormChanged(controls::FormAspect aspect) noexcept override;

 private:
  // ControlOwner
  const CommonControls& common_controls() const noexcept override { return services_->common_controls; }
  HFONT font() const noexcept override { return font_.get(); }
  UINT dpi() const noexcept override { return dpi_; }
  const Metrics& metrics() const noexcept override { return metrics_; }
  WORD NewCommandId() noexcept override { return next_command_++; }
  std::shared_ptr<void> KeepAlive() noexcept override { return shared_from_this(); }
  void Event(const std::function<void()>& tell) noexcept override;
  void Command(const std::function<void()>& run) noexcept override;
  void ContextMenu(POINT at, const std::function<void()>& tell) noexcept override;
  void FocusMoved() noexcept override;
  void PageChanged() noexcept override;
  bool IsPage(const controls::Control& frame) const noexcept override;
  bool LeadsToField(const controls::Control& label) const noexcept override {
    const auto field = field_of_label_.find(&label);
    return field != field_of_label_.end() && field->second != nullptr;
  }
  void ClearOtherOptions(const ControlWindow& chosen) noexcept override;

  // Contents (form_contents.cpp)
  void BuildControls();
  void BuildFrame(controls::Frame& frame);
  ControlWindow& AddControl(HWND parent, controls::Control& model);
  void GiveOptionsATabStop() noexcept;
  void AddTooltips();
  void ShowMenus();
  void TakeAppearance();
  void Restyle();
  void ArrangeControls();
  void PlaceControls(const std::vector<PlacedControl>& placed) noexcept;
  SIZE MinimumWindowSize() const;
  bool IsShown(const controls::Control& control) const noexcept;
  void ApplyVisibility(ControlWindow& control) noexcept;
  void ApplyEnabled(ControlWindow& control) noexcept;
  void MoveFocusFrom(const ControlWindow& control) noexcept;
  void FocusFirst() noexcept;
  ControlWindow* Find(const controls::Control* model) const noexcept;
  ControlWindow* Find(HWND window) const noexcept;  // the control that the window is, or is part of

  // Life (form_window.cpp)
  void CreateFormWindow(HWND over, const std::vector<RECT>& taken);
  Rect OpeningPlace(HWND over, const std::vector<RECT>& taken) const;
  void RestoreLists();
  void Remember() noexcept;
  void Detach() noexcept;
  void RequestClose() noexcept;
  struct SearchAbove;
  static BOOL CALLBACK LookAbove(HWND window, LPARAM search) noexcept;
  std::shared_ptr<FormWindow> FormOpenedOver() const noexcept;
  bool BringDialogToFront(bool clicked) noexcept;
  HWND WindowToReturnTo() const noexcept;
  void ActivateFormer() noexcept;

  // Messages (form_messages.cpp)
  LRESULT OnMessage(UINT message, WPARAM wparam, LPARAM lparam);
  LRESULT OnCommand(WORD id, WORD code, HWND control);
  LRESULT OnNotify(NMHDR& notification, WPARAM wparam, LPARAM lparam);
  LRESULT OnEndSession(UINT message, WPARAM wparam);
  void OnActivate(WPARAM wparam) noexcept;
  void OnEscape() noexcept;
  void OnDestroyed() noexcept;

  std::shared_ptr<WindowServices> services_;
  std::shared_ptr<controls::Form> form_;
  std::function<void(FormWindow&)> gone_;

  HWND window_ = nullptr;
  HWND over_ = nullptr;  // the window that the form was opened over
  UINT dpi_ = 96;
  OwnedFont font_;
  Metrics metrics_;
  OwnedIcon small_icon_;
  OwnedIcon large_icon_;
  MenuWindow menu_;
  std::optional<POINT> menu_place_;  // while a control asks for its menu
  HWND tooltips_ = nullptr;
  std::wstring tooltip_text_;
  WindowNames names_;
  WORD next_command_ = 100;

  std::vector<std::unique_ptr<ControlWindow>> controls_;
  std::unordered_map<HWND, ControlWindow*> by_window_;
  std::unordered_map<const controls::Control*, ControlWindow*> by_model_;
  std::unordered_map<const controls::Control*, const controls::Control*> field_of_label_;

  ControlWindow* focused_ = nullptr;  // the control whose model has been told that it has the focus
  HWND last_focus_ = nullptr;         // the window that has, or had when it was last in this form, the keyboard
  bool telling_focus_ = false;
  int commands_ = 0;  // running; the focus is not told while there are any
  int events_ = 0;    // running
  bool closing_ = false;
  bool vanished_while_active_ = false;  // somebody else has hidden or destroyed the window while the user worked in it
  bool activate_when_enabled_ = false;  // the form that was opened over this one, and disabled it, has closed
};

}  // namespace quenta::platform
