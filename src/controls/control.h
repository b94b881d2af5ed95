// What all controls of a form have in common: a name, whether the user can see and use them, and their events.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace quenta::controls {

class Control;

enum class ControlKind {
  kTextField,
  kComboBox,
  kCheckBox,
  kOptionButton,
  kDatePicker,
  kMaskEdit,
  kLabel,
  kCommandButton,
  kListView,
  kTabStrip,
  kToolbar,
  kFrame,
  kProgressBar,
};

// What a control's model has changed by itself, for the view that shows it.
enum class Aspect {
  kText,
  kItems,
  kSelection,
  kCaret,
  kEnabled,
  kVisible,
  kLocked,
  kValue,
  kCaption,
  kButtons,
  kDropDown,
  kMaxLength
};

// The window side of a form, as its controls see it.
class ControlView {
 public:
  virtual ~ControlView() = default;
  // Called after the model has changed by code, never for what the user did in the window itself.
  virtual void ControlChanged(Control& control, Aspect aspect) noexcept = 0;
};

// Virtual key codes that the forms' handlers know by number.
namespace key_code {
inline constexpr int kBackspace = 8;
inline constexpr int kTab = 9;
inline constexpr int kEnter = 13;
inline constexpr int kShift = 16;
inline constexpr int kControl = 17;
inline constexpr int kAlt = 18;
inline constexpr int kEscape = 27;
inline constexpr int kDelete = 46;
inline constexpr int kF5 = 116;
}  // namespace key_code

// A stretch of text in UTF-16 units, as windows count.
struct TextRange {
  std::size_t start = 0;
  std::size_t length = 0;
  bool operator==(const TextRange&) const = default;
};

// Models change in two ways. Code calls the setters: the view is told, no event fires. The view calls what the user
// did (Typed, Chosen, Clicked, GotFocus …): the model follows and the events fire, the view is not told back.
class Control {
 public:
  explicit Control(std::string name) : name_(std::move(name)) {}
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  virtual ControlKind kind() const noexcept = 0;
  // The contents as text, for failure messages and dumps.
  virtual std::string Describe() const = 0;

  const std::string& name() const noexcept { return name_; }

  bool enabled() const noexcept { return enabled_; }
  void set_enabled(bool enabled);
  bool visible() const noexcept { return visible_; }
  void set_visible(bool visible);

  // Shown on hover; empty for none.
  const std::string& tooltip() const noexcept { return tooltip_; }
  void set_tooltip(std::string tooltip) { tooltip_ = std::move(tooltip); }

  std::function<void()> on_got_focus;
  std::function<void()> on_lost_focus;
  std::function<void(int key)> on_key_down;    // virtual key code, before the control acts on it
  std::function<void(int& key)> on_key_press;  // UTF-16 unit about to be typed; set to 0, it is not typed

  // What the user did, fired by the view (or a test).
  void GotFocus();
  void LostFocus();
  void KeyDown(int key);
  // Returns what is to be typed, 0 for nothing.
  int KeyPress(int key);
  bool focused() const noexcept { return focused_; }
  // A command is to run without moving the focus, and finds the control left. False when what was typed was refused:
  // the command is not to run then. Coming back runs no entry routine.
  virtual bool LeftForCommand() {
    LostFocus();
    return true;
  }
  virtual void BackFromCommand() { focused_ = true; }

  // The view that shows this control, null while there is no window. The view outlives its attachment.
  void Attach(ControlView* view) noexcept { view_ = view; }

 protected:
  void Changed(Aspect aspect) noexcept {
    if (view_ != nullptr) view_->ControlChanged(*this, aspect);
  }

 private:
  std::string name_;
  std::string tooltip_;
  bool enabled_ = true;
  bool visible_ = true;
  bool focused_ = false;
  ControlView* view_ = nullptr;
};

}  // namespace quenta::controls
