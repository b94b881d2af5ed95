#include "platform/com/composition_root.h"

#include "component/session/session.h"
#include "platform/ado/ado_database.h"
#include "platform/com/error_reporting.h"
#include "platform/win32/desktop.h"
#include "platform/win32/form_host.h"
#include "platform/win32/settings.h"
#include "product/product_forms.h"

namespace quenta::platform {
namespace {

// The members stand in the order in which they need each other.
class ShippedComposition final : public Composition {
 public:
  component::Component& Component() noexcept override { return component_; }

  bool Busy() const noexcept override { return form_host_.OpenForms() > 0 || form_host_.TimersRun(); }

  void End() noexcept override {
    component_.DropRequests();
    // The forms first: what they have open in the database they roll back while there still is a connection.
    form_host_.CloseAll();
    session_.ReleaseConnection();
    error_reporting_.Release();
  }

 private:
  AdoDatabase database_;
  Settings settings_;
  FormHost form_host_;
  Desktop desktop_{form_host_};
  AutomationErrorReporting error_reporting_{[this](controls::Form& form) { return form_host_.WindowOf(form); }};
  session::Session session_{{database_, settings_, desktop_, error_reporting_}};
  product::ProductForms product_forms_{session_, form_host_};
  component::Component component_{session_, product_forms_, form_host_};
};

}  // namespace

std::unique_ptr<Composition> ComposeComponent() {
  return std::make_unique<ShippedComposition>();
}

}  // namespace quenta::platform
