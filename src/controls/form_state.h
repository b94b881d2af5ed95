// What a form shows, taken down so that it can be put back.
#pragma once

#include <functional>
#include <vector>

#include "controls/form.h"

namespace quenta::controls {

// The contents of a form's controls and its caption, as they were when this was made. Lists of rows are taken out of
// their controls, which are empty from then on: they may be long, and whoever makes this fills them anew.
class FormState {
 public:
  explicit FormState(Form& form);
  // Once at most. No event fires.
  void PutBack();

 private:
  std::vector<std::function<void()>> steps_;
};

}  // namespace quenta::controls
