#include "platform/com/composition_root.h"

#include <optional>
#include <string>

#include "component/session/session.h"
#include "component/session/statement_log.h"
#include "data/support_log.h"
#include "generator/frm_gerar.h"
#include "platform/ado/ado_database.h"
#include "platform/com/error_reporting.h"
#include "platform/win32/desktop.h"
#include "platform/win32/form_host.h"
#include "platform/win32/settings.h"
#include "product/product_forms.h"

namespace quenta::platform {
namespace {

// Made while the host creates its General: nothing here may show a window, wait or let messages through. The members
// stand in the order in which they need each other.
class ShippedComposition final : public Composition {
 public:
  component::Component& Component() noexcept override { return component_; }

  bool Busy() const noexcept override { return form_host_.OpenForms() > 0 || form_host_.TimersRun(); }

  void End() noexcept override {
    component_.DropRequests();
    // The forms first: what they have open in the database they roll back while there still is a connection.
    form_host_.CloseAll();
    session_.ReleaseConnection();
    error_reporting_.ReleaseReconnect();
  }

 private:
  // Support's log of all statements, where the machine names a file for it.
  ports::Database& Database() {
    const std::string path = data::StatementLogPath(settings_);
    if (path.empty()) return database_;
    lines_.emplace([this, path](const std::string& line) { settings_.AppendFile(path, line); });
    return log_.emplace(database_, *lines_);
  }

  AdoDatabase database_;
  Settings settings_;
  FormHost form_host_;
  Desktop desktop_{form_host_};
  AutomationErrorReporting error_reporting_{[this](controls::Form& form) { return form_host_.WindowOf(form); }};
  std::optional<session::StatementLines> lines_;
  std::optional<session::StatementLog> log_;
  session::Session session_{{Database(), settings_, desktop_, error_reporting_}};
  product::ProductForms product_forms_{session_, form_host_, &generator::MakeGenerator};
  component::Component component_{session_, product_forms_, form_host_};
};

}  // namespace

std::unique_ptr<Composition> ComposeComponent() {
  return std::make_unique<ShippedComposition>();
}

}  // namespace quenta::platform
