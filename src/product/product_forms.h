// Makes product forms for the record operations, and keeps track of those that are loaded.
#pragma once

#include <memory>

#include "component/session/session.h"
#include "hosting/forms.h"
#include "ports/form_host.h"
#include "ports/product_form.h"
#include "product/frm_main.h"

namespace quenta::product {

class ProductForms final : public ports::ProductForms {
 public:
  ProductForms(session::Session& session, ports::FormHost& form_host, MakeGenerator make_generator)
      : session_(session),
        form_host_(form_host),
        forms_(form_host, session.ports().error_reporting),
        make_generator_(make_generator) {
    session_.hold_input = [this] { return std::make_shared<hosting::ExclusiveUse>(forms_); };
  }
  ~ProductForms() override { session_.hold_input = nullptr; }
  ProductForms(const ProductForms&) = delete;
  ProductForms& operator=(const ProductForms&) = delete;

  std::shared_ptr<ports::ProductForm> Create() override;
  bool Busy() const override { return forms_.Busy(); }
  bool AnyLoaded() const override { return !forms_.all().empty(); }

 private:
  session::Session& session_;
  ports::FormHost& form_host_;
  hosting::Forms forms_;
  MakeGenerator make_generator_;
};

}  // namespace quenta::product
