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

void TextField::Select(TextRange range) {
  selection_ = range;
  Changed(Aspect::kCaret);
}

void TextField::SelectAll() {
  Select({0, base::Utf16Length(text_)});
}

void TextField::Typed(std::string text) {
  if (text_ == text) return;
  text_ = std::move(text);
  if (on_change) on_change();
}

}  // namespace quenta::controls
