#include "controls/text_field.h"

#include "base/text.h"

namespace quenta::controls {

void TextField::set_text(std::string text) {
  if (text_ == text) return;
  text_ = std::move(text);
  selection_ = {};
  Changed(Aspect::kText);
}

void TextField::set_locked(bool locked) {
  if (locked_ == locked) return;
  locked_ = locked;
  Changed(Aspect::kLocked);
}

void TextField::set_max_length(std::size_t units) {
  if (max_length_ == units) return;
  max_length_ = units;
  Changed(Aspect::kMaxLength);
}

void TextField::Select(TextRange range) {
  selection_ = range;
  Changed(Aspect::kCaret);
}

void TextField::SelectAll() {
  Select({0, base::Utf16Length(text_)});
}

bool TextField::LeftForCommand() {
  left_ = {.typed = text_, .selection = selection_};
  LostFocus();
  left_.text = text_;
  left_.tag = tag_;
  return !left_.refused;
}

void TextField::BackFromCommand() {
  Control::BackFromCommand();
  if (!left_.refused && text_ == left_.text && tag_ == left_.tag) {
    set_text(left_.typed);
    Select(left_.selection);
  } else {
    GotFocus();  // to show what it holds now as it is typed
    Select({base::Utf16Length(text_), 0});
  }
}

void TextField::Typed(std::string text) {
  if (text_ == text) return;
  text_ = std::move(text);
  if (on_change) on_change();
}

}  // namespace quenta::controls
