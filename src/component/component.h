// Everything one loaded library has one of: the session and the way to new product forms.
#pragma once

#include "component/session/session.h"
#include "ports/product_form.h"

namespace quenta::component {

// Built once by the composition root (or by a test); all General objects of the library share it.
class Component {
 public:
  Component(session::Session& session, ports::ProductForms& product_forms)
      : session_(session), product_forms_(product_forms) {}

  session::Session& session() noexcept { return session_; }
  ports::ProductForms& product_forms() noexcept { return product_forms_; }

  // True while SQLConnect or Login waits; entering either again from the host's messages is refused.
  bool connecting = false;

 private:
  session::Session& session_;
  ports::ProductForms& product_forms_;
};

}  // namespace quenta::component
