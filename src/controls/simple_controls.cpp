#include "controls/simple_controls.h"

#include <algorithm>

#include "base/date.h"
#include "base/format.h"
#include "base/text.h"

namespace quenta::controls {

void Label::set_caption(std::string caption) {
  if (caption_ == caption) return;
  caption_ = std::move(caption);
  Changed(Aspect::kCaption);
}

void Toggle::set_value(bool value) {
  if (value_ == value) return;
  value_ = value;
  Changed(Aspect::kValue);
}

void Toggle::Clicked(bool value) {
  value_ = value;
  if (on_click) on_click();
}

DatePicker::DatePicker(std::string name) : Control(std::move(name)), value_(base::EmptyDate()) {}

std::string DatePicker::Describe() const {
  return base::Format(value_, "dd-mm-yyyy", {});
}

void DatePicker::set_value(base::Date value) {
  if (value_ == value) return;
  value_ = value;
  Changed(Aspect::kValue);
}

void DatePicker::Picked(base::Date value) {
  if (value_ == value) return;
  value_ = value;
  if (on_change) on_change();
}

MaskEdit::MaskEdit(std::string name, std::string mask, std::string format, char prompt_char)
    : Control(std::move(name)), mask_(std::move(mask)), format_(std::move(format)), prompt_char_(prompt_char) {
  text_ = EmptyText();
}

std::string MaskEdit::EmptyText() const {
  return base::ReplaceAll(mask_, "#", std::string(1, prompt_char_));
}

void MaskEdit::ShowDate(base::Date date, std::string text) {
  set_text(std::move(text));
  shown_date_ = date;
}

void MaskEdit::set_text(std::string text) {
  shown_date_.reset();
  if (text_ == text) return;
  text_ = std::move(text);
  Changed(Aspect::kText);
}

void MaskEdit::SelectAll() {
  Changed(Aspect::kCaret);
}

void MaskEdit::Typed(std::string text) {
  if (text_ == text) return;
  shown_date_.reset();
  text_ = std::move(text);
  if (on_change) on_change();
}

void CommandButton::Clicked() {
  if (enabled() && on_click) on_click();
}

std::string ProgressBar::Describe() const {
  return base::DecimalText(value_) + " of " + base::DecimalText(maximum_);
}

void ProgressBar::SetProgress(int value, int maximum) {
  maximum_ = std::max(maximum, 1);
  value_ = std::clamp(value, 0, maximum_);
  Changed(Aspect::kValue);
}

}  // namespace quenta::controls
