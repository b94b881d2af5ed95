#include "component/general.h"

#include "base/convert.h"
#include "base/text.h"
#include "component/connecting.h"
#include "component/session/guarded.h"
#include "data/check_permissions.h"
#include "data/warehouse.h"

namespace quenta::component {
namespace {

constexpr session::Labels kLabels{"Programa de Contabilidade", "Quenta_Produtos", "General",
                                  session::DescriptionStyle::kAlone};
// Kept as the suite has them: this one method reports under other labels, and its own name twice.
constexpr session::Labels kSQLConnectLabels{"Quenta Software", "Quenta Software", "SQLConnect",
                                            session::DescriptionStyle::kAlone};

// The workstation's warehouse may forbid new products; one that is not set or has no row allows them.
bool WarehouseAllowsNewProducts(session::Session& session) {
  const auto armazem = data::CurrentWarehouse(session);
  if (!armazem) return true;
  const ports::RowSet rows =
      session.Query("SELECT * FROM tbArmazens WHERE armazem_id = " + base::DecimalText(*armazem));
  return rows.empty() ||
         (base::IsNonZero(rows.front()["sql_gateway"]) && base::IsNonZero(rows.front()["can_modify_produts"]));
}

}  // namespace

General::General(Component& component) : component_(component) {
  Guarded("Class_Initialize", [&] { form_ = component_.product_forms().Create(); });
}

General::~General() {
  Guarded("Class_Terminate", [&] { form_.reset(); });
}

template <typename Body>
void General::Guarded(const char* procedure, Body&& body) noexcept {
  session::Guarded(component_.session().ports().error_reporting, kLabels, procedure, body);
}

bool General::SQLConnect(const SQLConnectArguments& arguments) noexcept {
  return session::Guarded(component_.session().ports().error_reporting, kSQLConnectLabels, "SQLConnect",
                          [&] { return ConnectWithArguments(component_, arguments); });
}

bool General::Login(const std::string& User, const std::string& Password) noexcept {
  return session::Guarded(component_.session().ports().error_reporting, kLabels, "Login",
                          [&] { return ConnectWithSettings(component_, User, Password); });
}

void General::ObjectOpen(const base::Value& PKey, ports::ProductRequest request) noexcept {
  Guarded("ObjectOpen", [&] { Open("ObjectOpen", PKey, std::move(request)); });
}

void General::Registo(const base::Value& PKey, ports::ProductRequest request) noexcept {
  Guarded("Registo", [&] { Open("Registo", PKey, std::move(request)); });
}

void General::ObjectNew(ports::ProductRequest request) noexcept {
  WhenNotBusy("ObjectNew", [this, request = std::move(request)] { New(request); });
}

void General::NovoRegisto(ports::ProductRequest request) noexcept {
  WhenNotBusy("NovoRegisto", [this, request = std::move(request)] { New(request); });
}

void General::Refuse(const char* procedure, const base::Error& error) noexcept {
  if (!component_.session().state().connected) return;
  session::ReportError(component_.session().ports().error_reporting, kLabels, procedure, error);
}

// Waits while an operation of a form must not be disturbed. A request that waits dies with this object, which the
// request's owner keeps alive where there is one.
void General::WhenNotBusy(const char* procedure, std::function<void()> body) noexcept {
  Guarded(procedure, [&] {
    component_.WhenNotBusy([this, alive = std::weak_ptr<void>(alive_), procedure, body = std::move(body)] {
      if (!alive.expired()) Guarded(procedure, body);
    });
  });
}

void General::Open(const char* procedure, const base::Value& PKey, ports::ProductRequest request) {
  if (!component_.session().state().connected || PKey.is_empty()) return;
  request.produto_id = base::ToLong(PKey, component_.session().locale());
  WhenNotBusy(procedure, [this, request = std::move(request)] { Show(request); });
}

void General::New(const ports::ProductRequest& request) {
  session::Session& session = component_.session();
  if (!session.state().connected) return;
  if (!WarehouseAllowsNewProducts(session)) {
    component_.Ask({.text = "Não é possível criar produtos no armazem actual.",
                    .title = "Criar Produto",
                    .icon = ports::Icon::kInformation,
                    .system_modal = true});
    return;
  }
  if (!data::CheckSecurityPolicy(session, session.state().session_user, "#2282", nullptr)) {
    component_.Ask({.text = "Não tem permissões para criar novos produtos. Contacte o administrador de segurança para "
                            "que lhe sejam atribuídas as permissões necessárias.",
                    .title = "Politicas de Segurança",
                    .icon = ports::Icon::kCritical});
    return;
  }
  Show(request);
}

// A loaded form keeps its product: the same product is brought to the front, another one gets a form of its own, so
// that one product's fields never stand under another's identifier. The earlier form lives on until the user closes it.
void General::Show(const ports::ProductRequest& request) {
  if (form_ && form_->IsLoaded()) {
    const bool existing = request.produto_id != 0;
    if (existing && form_->ProdutoId() == request.produto_id) {
      const std::shared_ptr<ports::ProductForm> form = form_;
      form->Activate(request);
      return;
    }
    form_.reset();
  }
  if (!form_) form_ = component_.product_forms().Create();
  // Held here: while the form loads, the host may let go of this object.
  const std::shared_ptr<ports::ProductForm> form = form_;
  form->Open(request);
}

}  // namespace quenta::component
