#include "hosting/forms.h"

#include <algorithm>

namespace quenta::hosting {

ExclusiveUse::ExclusiveUse(Forms& forms, controls::Form& user) : forms_(forms) {
  for (controls::Form* form : forms_.all()) {
    if (form == &user || !form->enabled()) continue;
    form->set_enabled(false);
    disabled_.push_back(form);
  }
}

ExclusiveUse::~ExclusiveUse() {
  const auto& loaded = forms_.all();
  for (controls::Form* form : disabled_) {
    if (std::find(loaded.begin(), loaded.end(), form) != loaded.end()) form->set_enabled(true);
  }
}

}  // namespace quenta::hosting
