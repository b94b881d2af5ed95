// A control's model shown as a real window: what all kinds have in common, and the factory that knows the kinds.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <windows.h>

#include <commctrl.h>

#include "controls/control.h"
#include "platform/win32/activation_context.h"
#include "platform/win32/layout_engine.h"
#include "platform/win32/window_names.h"

namespace quenta::platform {

class ControlWindow;

// What a control's window needs of the form's window that it stands in.
class ControlOwner {
 public:
  virtual const CommonControls& common_controls() const noexcept = 0;
  virtual HFONT font() const noexcept = 0;
  virtual UINT dpi() const noexcept = 0;
  virtual const Metrics& metrics() const noexcept = 0;
  // Identifiers of commands, each given once in a form.
  virtual WORD NewCommandId() noexcept = 0;
  // Whoever holds this keeps the form's window object, and with it every ControlWindow, from being destroyed.
  virtual std::shared_ptr<void> KeepAlive() noexcept = 0;

  // Tells the model what the user did. Nothing gets out; the form's window is not destroyed before this returns.
  virtual void Event(const std::function<void()>& tell) noexcept = 0;
  // An event that starts a command without moving the focus: the focused field runs its leave routine before it; if
  // that refuses what was typed, nothing else happens. If the focus is still there at the end, the user goes on where
  // he was.
  virtual void Command(const std::function<void()>& run) noexcept = 0;
  // The user asks for a menu of the control, which belongs at this point of the screen.
  virtual void ContextMenu(POINT at, const std::function<void()>& tell) noexcept = 0;
  // The keyboard focus has moved, perhaps within the same control.
  virtual void FocusMoved() noexcept = 0;
  // Another tab is selected: another page is to be shown.
  virtual void PageChanged() noexcept = 0;
  // Whether a frame is shown as the page of a tab.
  virtual bool IsPage(const controls::Control& frame) const noexcept = 0;
  // Whether a label stands above a field, and its caption marks the field's mnemonic.
  virtual bool LeadsToField(const controls::Control& label) const noexcept = 0;
  // An option button was set: the others of its frame are not any more.
  virtual void ClearOtherOptions(const ControlWindow& chosen) noexcept = 0;

 protected:
  ~ControlOwner() = default;
};

class ControlWindow {
 public:
  ControlWindow(ControlOwner& owner, controls::Control& model) noexcept : owner_(owner), model_(model) {}
  virtual ~ControlWindow() = default;
  ControlWindow(const ControlWindow&) = delete;
  ControlWindow& operator=(const ControlWindow&) = delete;

  controls::Control& model() const noexcept { return model_; }
  HWND window() const noexcept { return window_; }
  WORD id() const noexcept { return id_; }
  // Whether this command identifier is the control's, or one of its buttons'.
  virtual bool OwnsCommand(WORD id) const noexcept { return id == id_; }

  // Makes the window, with what the model holds at this moment. Throws base::Error when Windows refuses.
  virtual void Create(HWND parent) = 0;
  // The model has changed: the window follows, without echo.
  virtual void ModelChanged(controls::Aspect aspect) = 0;
  // Notifications of the window to its parent.
  virtual void OnCommand(WORD id, WORD code) noexcept { (void)id, (void)code; }
  virtual std::optional<LRESULT> OnNotify(NMHDR& notification) noexcept {
    (void)notification;
    return std::nullopt;
  }
  // The font, the resolution or the colours are new.
  virtual void Restyle();
  // The size to give the window so that it fills the place.
  virtual SIZE WindowSize(const Rect& place) const noexcept { return {place.width, place.height}; }
  // The window was given its place.
  virtual void Placed(const Rect& place) noexcept { (void)place; }
  // A command is to begin while the control has the focus; false when it must not. And it has ended, with the focus
  // still here.
  bool LeaveForCommand() noexcept;
  void ComeBack() noexcept;
  // Lets the window go of what it holds besides itself, while it still exists.
  virtual void BeforeDestroy() noexcept;

 protected:
  void CreateControl(HWND parent, const wchar_t* window_class, const std::string& text, DWORD style,
                     DWORD extended_style = 0);
  // Messages of the window (or of a watched part of it) before it acts on them. Nothing: it acts, as it always does on
  // WM_SETFOCUS and WM_KILLFOCUS.
  virtual std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
    (void)window, (void)message, (void)wparam, (void)lparam;
    return std::nullopt;
  }
  // Called before the model is told a key, so that it knows where the caret is.
  virtual void BeforeKey() noexcept {}
  // The UTF-16 unit to type where the keyboard gives this one.
  virtual WPARAM CharacterFor(WPARAM unit) noexcept { return unit; }

  // Watches another window that is a part of this control, as the edit part of a combo box is.
  void Watch(HWND part) noexcept;
  LRESULT Default(HWND window, UINT message, WPARAM wparam, LPARAM lparam) const noexcept {
    return owner_.common_controls().DefSubclassProc(window, message, wparam, lparam);
  }
  LRESULT Send(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const noexcept {
    return SendMessageW(window_, message, wparam, lparam);
  }
  ControlOwner& owner() const noexcept { return owner_; }

  // While one lives, what the window notifies comes from the code and not from the user.
  class Silence {
   public:
    explicit Silence(ControlWindow& control) noexcept : control_(control) { ++control_.silent_; }
    ~Silence() { --control_.silent_; }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

   private:
    ControlWindow& control_;
  };
  bool silent() const noexcept { return silent_ > 0; }

  WindowNames& names() noexcept { return names_; }

 private:
  // Tells the model what is about to be typed. What is to be typed instead; 0 for nothing.
  WPARAM Typing(HWND window, WPARAM unit) noexcept;
  static LRESULT CALLBACK SubclassProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                                       DWORD_PTR control) noexcept;

  ControlOwner& owner_;
  controls::Control& model_;
  HWND window_ = nullptr;
  WORD id_ = 0;
  int silent_ = 0;
  WindowNames names_;
};

// The window for a control of any kind that can stand in a row; toolbars, tab strips and frames as well.
std::unique_ptr<ControlWindow> MakeControlWindow(ControlOwner& owner, controls::Control& model);

// The makers behind it, one for each family of kinds.
std::unique_ptr<ControlWindow> MakeEditWindow(ControlOwner& owner, controls::Control& model);
std::unique_ptr<ControlWindow> MakeComboWindow(ControlOwner& owner, controls::Control& model);
std::unique_ptr<ControlWindow> MakeButtonWindow(ControlOwner& owner, controls::Control& model);
std::unique_ptr<ControlWindow> MakeDateWindow(ControlOwner& owner, controls::Control& model);
std::unique_ptr<ControlWindow> MakeProgressWindow(ControlOwner& owner, controls::Control& model);
std::unique_ptr<ControlWindow> MakeLabelWindow(ControlOwner& owner, controls::Control& model);
std::unique_ptr<ControlWindow> MakeListWindow(ControlOwner& owner, controls::Control& model);
std::unique_ptr<ControlWindow> MakeTabWindow(ControlOwner& owner, controls::Control& model);
std::unique_ptr<ControlWindow> MakeToolbarWindow(ControlOwner& owner, controls::Control& model);
std::unique_ptr<ControlWindow> MakeFrameWindow(ControlOwner& owner, controls::Control& model);

}  // namespace quenta::platform
