// The small controls: label, check box, option button, date picker, masked edit, command button, progress bar.
#pragma once

#include <optional>

#include "base/value.h"
#include "controls/control.h"

namespace quenta::controls {

class Label final : public Control {
 public:
  // The caption may mark a mnemonic with "&", which leads to the control that the label is laid out with.
  Label(std::string name, std::string caption) : Control(std::move(name)), caption_(std::move(caption)) {}

  ControlKind kind() const noexcept override { return ControlKind::kLabel; }
  std::string Describe() const override { return caption_; }

  const std::string& caption() const noexcept { return caption_; }
  void set_caption(std::string caption);

 private:
  std::string caption_;
};

// A check box or an option button: set or not, with a caption of its own.
class Toggle : public Control {
 public:
  Toggle(std::string name, std::string caption) : Control(std::move(name)), caption_(std::move(caption)) {}

  std::string Describe() const override { return value_ ? "1" : "0"; }
  const std::string& caption() const noexcept { return caption_; }

  bool value() const noexcept { return value_; }
  void set_value(bool value);

  std::function<void()> on_click;
  // The user set or cleared it.
  void Clicked(bool value);

 private:
  std::string caption_;
  bool value_ = false;
};

class CheckBox final : public Toggle {
 public:
  using Toggle::Toggle;
  ControlKind kind() const noexcept override { return ControlKind::kCheckBox; }
};

class OptionButton final : public Toggle {
 public:
  using Toggle::Toggle;
  ControlKind kind() const noexcept override { return ControlKind::kOptionButton; }
};

class DatePicker final : public Control {
 public:
  explicit DatePicker(std::string name);

  ControlKind kind() const noexcept override { return ControlKind::kDatePicker; }
  std::string Describe() const override;

  // 1 January 1900 stands for no date.
  base::Date value() const noexcept { return value_; }
  void set_value(base::Date value);

  std::function<void()> on_change;
  // The user picked this date.
  void Picked(base::Date value);

 private:
  base::Date value_;
};

// Text entry through a mask such as "##-##-####", where "#" is a digit.
class MaskEdit final : public Control {
 public:
  MaskEdit(std::string name, std::string mask, std::string format, char prompt_char = '_');

  ControlKind kind() const noexcept override { return ControlKind::kMaskEdit; }
  std::string Describe() const override { return text_; }

  const std::string& mask() const noexcept { return mask_; }
  const std::string& format() const noexcept { return format_; }
  // The mask with every "#" replaced by the prompt character: what the field shows when empty.
  std::string EmptyText() const;

  const std::string& text() const noexcept { return text_; }
  void set_text(std::string text);
  // Shows a date, written in the field's own format.
  void ShowDate(base::Date date, std::string text);
  // The date that was shown; nothing once something else stands in the field.
  const std::optional<base::Date>& shown_date() const noexcept { return shown_date_; }
  void SelectAll();

  std::function<void()> on_change;
  void Typed(std::string text);

 private:
  std::string mask_;
  std::string format_;
  char prompt_char_;
  std::string text_;
  std::optional<base::Date> shown_date_;
};

class CommandButton final : public Control {
 public:
  // is_default is pressed by Enter, is_cancel by Esc.
  CommandButton(std::string name, std::string caption, bool is_default = false, bool is_cancel = false)
      : Control(std::move(name)), caption_(std::move(caption)), is_default_(is_default), is_cancel_(is_cancel) {}

  ControlKind kind() const noexcept override { return ControlKind::kCommandButton; }
  std::string Describe() const override { return caption_; }

  const std::string& caption() const noexcept { return caption_; }
  bool is_default() const noexcept { return is_default_; }
  bool is_cancel() const noexcept { return is_cancel_; }

  std::function<void()> on_click;
  void Clicked();

 private:
  std::string caption_;
  bool is_default_;
  bool is_cancel_;
};

// How much of a task is done.
class ProgressBar final : public Control {
 public:
  using Control::Control;

  ControlKind kind() const noexcept override { return ControlKind::kProgressBar; }
  std::string Describe() const override;

  int value() const noexcept { return value_; }
  int maximum() const noexcept { return maximum_; }
  // Steps done, of how many; kept between 0 and the maximum.
  void SetProgress(int value, int maximum);

 private:
  int value_ = 0;
  int maximum_ = 1;
};

}  // namespace quenta::controls
