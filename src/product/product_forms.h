// Makes product forms for the record operations, and keeps track of those that are loaded.
#pragma once

#include <memory>

#include "component/session/session.h"
#include "hosting/forms.h"
#include "ports/form_host.h"
#include "ports/product_form.h"

namespace quenta::product {

class ProductForms final : public ports::ProductForms {
 public:
  ProductForms(session::Session& session, ports::FormHost& form_host) : session_(session), form_host_(form_host) {}

  std::shared_ptr<ports::ProductForm> Create() override;

 private:
  session::Session& session_;
  ports::FormHost& form_host_;
  hosting::Forms forms_;
};

}  // namespace quenta::product
