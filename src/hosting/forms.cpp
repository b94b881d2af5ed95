#include "hosting/forms.h"

#include <algorithm>

#include "hosting/frm_main_childs.h"

namespace quenta::hosting {

Forms::Forms(ports::FormHost& host, ports::ErrorReporting& error_reporting)
    : host_(host), error_reporting_(error_reporting) {}

Forms::~Forms() = default;

void Forms::Add(controls::Form& form) {
  if (std::find(forms_.begin(), forms_.end(), &form) != forms_.end()) return;
  forms_.push_back(&form);
  if (main_childs_ == nullptr || !main_childs_->loaded()) {
    main_childs_ = std::make_shared<frmMainChilds>(host_, error_reporting_, *this);
    main_childs_->Load();
  }
  main_childs_->Killme.set_enabled(false);
}

void Forms::Remove(controls::Form& form) noexcept {
  std::erase(forms_, &form);
  if (forms_.empty() && main_childs_ != nullptr) main_childs_->CloseLater();
}

bool Forms::Busy() const noexcept {
  return in_exclusive_use() ||
         std::any_of(forms_.begin(), forms_.end(), [](const controls::Form* form) { return form->in_operation(); });
}

ExclusiveUse::ExclusiveUse(Forms& forms, const controls::Form* user) : forms_(forms) {
  ++forms_.exclusive_uses_;
  for (controls::Form* form : forms_.all()) {
    if (form == user || !form->enabled()) continue;
    form->set_enabled(false);
    disabled_.push_back(form);
  }
}

ExclusiveUse::~ExclusiveUse() {
  const auto& loaded = forms_.all();
  for (controls::Form* form : disabled_) {
    if (std::find(loaded.begin(), loaded.end(), form) != loaded.end()) form->set_enabled(true);
  }
  --forms_.exclusive_uses_;
}

}  // namespace quenta::hosting
