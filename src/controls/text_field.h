// One-line or multi-line text entry with the two faces of a record field: raw value (Tag) and display (Text).
#pragma once

#include "controls/control.h"

namespace quenta::controls {

class TextField final : public Control {
 public:
  using Control::Control;

  ControlKind kind() const noexcept override { return ControlKind::kTextField; }
  std::string Describe() const override { return text_; }

  // What the user sees. While the field has the focus, the window owns caret and undo and tells each change by Typed.
  const std::string& text() const noexcept { return text_; }
  void set_text(std::string text);

  // The raw value as text: a plain number in the user's notation, or empty when there is none.
  const std::string& tag() const noexcept { return tag_; }
  void set_tag(std::string tag) { tag_ = std::move(tag); }

  // Read-only, but still selectable.
  bool locked() const noexcept { return locked_; }
  void set_locked(bool locked);

  // How much the user can enter, in UTF-16 units; 0 is no limit. What is longer already stays as it is.
  std::size_t max_length() const noexcept { return max_length_; }
  void set_max_length(std::size_t units);

  // Properties of the field's design, set before there is a window.
  bool multi_line = false;
  bool right_aligned = false;  // as numbers stand: the decimal key of the numeric pad types the user's separator there

  // The selection in UTF-16 units. The window asks for it when told Aspect::kCaret, and keeps it up to date while the
  // field has the focus.
  TextRange selection() const noexcept { return selection_; }
  void Select(TextRange range);
  void SelectAll();
  void SelectionMoved(TextRange range) noexcept { selection_ = range; }

  std::function<void()> on_change;  // the user changed the text

  // The user changed the text to this.
  void Typed(std::string text);

  // The leave routine has not taken what was typed.
  void Refuse() noexcept { left_.refused = true; }

  // What stood in the field stands there again, as the user had it, unless it was refused, or the command has put
  // something else in.
  bool LeftForCommand() override;
  void BackFromCommand() override;

 private:
  std::string text_;
  std::string tag_;
  bool locked_ = false;
  std::size_t max_length_ = 0;
  TextRange selection_;

  // At the beginning of a command: what the user had in the field, and what leaving it has made of that.
  struct {
    std::string typed{};
    TextRange selection{};
    std::string text{};
    std::string tag{};
    bool refused = false;
  } left_;
};

}  // namespace quenta::controls
