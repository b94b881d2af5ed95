#include "platform/com/composition_root.h"

#include <optional>
#include <string>

#include "component/session/session.h"
#include "component/session/statement_log.h"
#include "data/registry.h"
#include "generator/frm_gerar.h"
#include "platform/ado/ado_database.h"
#include "platform/com/error_reporting.h"
#include "platform/win32/desktop.h"
#include "platform/win32/form_host.h"
#include "platform/win32/settings.h"
#include "product/product_forms.h"

namespace quenta::platform {
namespace {

constexpr const char* kServerKey = R"(HKEY_LOCAL_MACHINE\SOFTWARE\Ambrell\Shared\OUT)";
constexpr const char* kSuiteKey = R"(HKEY_LOCAL_MACHINE\SOFTWARE\Ambrell\)";

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
    error_reporting_.ReleaseReconnect();
  }

 private:
  // Support's log of all statements, where the workstation's settings name a file for it.
  ports::Database& Database() {
    const session::Ports ports{database_, settings_, desktop_, error_reporting_};
    data::Registry registry(ports);
    const base::Value application = registry.ObterValorString(kServerKey, "DataServer");
    if (!application.is_text()) return database_;
    const base::Value path = registry.ObterValorString(kSuiteKey + application.text(), "StatementLog");
    if (!path.is_text() || path.text().empty()) return database_;
    lines_.emplace([this, file = path.text()](const std::string& line) { settings_.AppendFile(file, line); });
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
