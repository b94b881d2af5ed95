// What the small forms have in common that stand over the product form.
#pragma once

#include <memory>
#include <string>

#include "component/session/session.h"
#include "controls/form.h"
#include "hosting/forms.h"
#include "product/frm_main.h"

namespace quenta::product {

// The product form is disabled from the load of this one until it closes, whichever way it does. The product form may
// go earlier: the host can take it away.
class FormOverProduct : public controls::Form {
 public:
  std::shared_ptr<Form> OpenedOver() const override { return opener_.lock(); }

 protected:
  FormOverProduct(std::string name, session::Session& session, ports::FormHost& host, hosting::Forms& forms,
                  const std::shared_ptr<frmMain>& opener)
      : Form(host, std::move(name)), session_(session), forms_(forms), opener_(opener) {}

  // Form; what overrides them calls them.
  void OnLoad() override;
  void OnUnload(bool& cancel) override;
  void OnClosed() noexcept override;
  void OnUnloadFailed() noexcept override;

  // The product form while it shows this product; null once it has gone, shows another one, or was given back.
  std::shared_ptr<frmMain> OpenerOf(std::int32_t produto_id) const;

  session::Session& session_;
  hosting::Forms& forms_;

 private:
  void GiveBack() noexcept;

  std::weak_ptr<frmMain> opener_;
};

}  // namespace quenta::product
