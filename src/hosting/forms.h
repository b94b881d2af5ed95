// The loaded forms of the component, in the order of their creation.
#pragma once

#include <vector>

#include "controls/form.h"

namespace quenta::hosting {

class Forms {
 public:
  void Add(controls::Form& form) { forms_.push_back(&form); }
  void Remove(controls::Form& form) noexcept { std::erase(forms_, &form); }
  const std::vector<controls::Form*>& all() const noexcept { return forms_; }

 private:
  std::vector<controls::Form*> forms_;
};

// While one lives, the component's other forms take no input: an operation has a transaction open, and a question that
// is asked inside it lets the user reach them.
class ExclusiveUse {
 public:
  ExclusiveUse(Forms& forms, controls::Form& user);
  ~ExclusiveUse();
  ExclusiveUse(const ExclusiveUse&) = delete;
  ExclusiveUse& operator=(const ExclusiveUse&) = delete;

 private:
  Forms& forms_;
  std::vector<controls::Form*> disabled_;
};

}  // namespace quenta::hosting
