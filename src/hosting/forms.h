// The loaded forms of the component, in the order of their creation, and who may use them.
#pragma once

#include <memory>
#include <vector>

#include "controls/form.h"
#include "ports/error_reporting.h"

namespace quenta::hosting {

class frmMainChilds;

class Forms {
 public:
  Forms(ports::FormHost& host, ports::ErrorReporting& error_reporting);
  ~Forms();
  Forms(const Forms&) = delete;
  Forms& operator=(const Forms&) = delete;

  // A form has loaded; the first one brings the hidden form into being. Nothing happens when it is there already.
  void Add(controls::Form& form);
  // A form has closed; after the last one the hidden form closes itself, at once if there is no timer to close it by.
  void Remove(controls::Form& form) noexcept;
  const std::vector<controls::Form*>& all() const noexcept { return forms_; }

  // The hidden form; null while there is no user interface.
  const std::shared_ptr<frmMainChilds>& main_childs() const noexcept { return main_childs_; }

  // True while an ExclusiveUse lives, or an operation runs on a form: what the host asks for then has to wait.
  bool Busy() const noexcept;
  // True while an ExclusiveUse lives.
  bool in_exclusive_use() const noexcept { return exclusive_uses_ > 0; }

 private:
  friend class ExclusiveUse;

  ports::FormHost& host_;
  ports::ErrorReporting& error_reporting_;
  std::vector<controls::Form*> forms_;
  std::shared_ptr<frmMainChilds> main_childs_;
  int exclusive_uses_ = 0;
};

// While one lives, the component's other forms take no input, and record operations and timers wait: an operation has a
// transaction open or runs for long, and what it asks or shows meanwhile lets the user reach them.
class ExclusiveUse {
 public:
  ExclusiveUse(Forms& forms, controls::Form& user) : ExclusiveUse(forms, &user) {}
  // Of no form: none of them takes input.
  explicit ExclusiveUse(Forms& forms) : ExclusiveUse(forms, nullptr) {}
  ~ExclusiveUse();
  ExclusiveUse(const ExclusiveUse&) = delete;
  ExclusiveUse& operator=(const ExclusiveUse&) = delete;

 private:
  ExclusiveUse(Forms& forms, const controls::Form* user);

  Forms& forms_;
  std::vector<controls::Form*> disabled_;
};

}  // namespace quenta::hosting
