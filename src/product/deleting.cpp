// Deletes the product softly, unless another module of the suite refers to it, and closes the form.
#include "product/deleting.h"

#include "base/text.h"
#include "component/session/transaction.h"
#include "data/check_permissions.h"
#include "product/frm_main_guard.h"

namespace quenta::product {
namespace {

using ports::Answer;
using ports::Buttons;
using ports::Icon;

// Kept as the suite has them: other projects' names, and for deleting another procedure's.
constexpr session::Labels kDeletingLabels{"Programa de Contabilidade", "Quenta_Contabilidade", "frmMain",
                                          session::DescriptionStyle::kAlone};
constexpr session::Labels kReactivateLabels{"Programa de Contabilidade", "Quenta_Encomendas", "frmMain",
                                            session::DescriptionStyle::kAlone};

// Other modules of the suite that may refer to a product; a database need not have their tables.
struct Reference {
  const char* exists;
  const char* rows;
  const char* refusal;
};

constexpr Reference kReferences[] = {
    {"SELECT * FROM sysobjects WHERE name = 'tbAssociados_Quotas_Tipos'",
     "SELECT * FROM tbAssociados_Quotas_Tipos WHERE produto_id = ",
     "Este produto/serviço não pode ser eliminado, porque está relacionado com as Quotizações."},
    {"SELECT * FROM sysobjects WHERE name = 'tbTratamentos'", "SELECT * FROM tbTratamentos WHERE produto_id = ",
     "Este produto/serviço não pode ser eliminado, porque está relacionado com o módulo de Tratamentos."},
    {"SELECT * FROM sysobjects WHERE name = 'tbProjectos_Servicos_Tipos'",
     "SELECT * FROM tbProjectos_Servicos_Tipos WHERE produto_id = ",
     "Este produto/serviço não pode ser eliminado, porque está relacionado com o módulo de Eventos (Serviços "
     "Adicionais)."},
};

// Why the product cannot be deleted; null when nothing refers to it.
const char* RefusalOf(session::Session& session, const std::string& produto_id) {
  for (const Reference& reference : kReferences) {
    if (session.Query(reference.exists).empty()) continue;
    if (!session.Query(reference.rows + produto_id).empty()) return reference.refusal;
  }
  return nullptr;
}

// Deleting and reactivating end whatever transaction is open when they fail, the host's too. One that another operation
// of ours has open is left to it.
void RollBackOpenTransaction(session::Session& session) noexcept {
  if (session.transaction_held) return;
  try {
    if (session::InTransaction(session)) session.SharedConnection().RollbackTransaction();
  } catch (...) {
    // The line is gone, and the server has rolled back by itself.
  }
}

// Runs the body by the convention for errors; before an error is reported, the form is put right and nothing is left
// open in the database.
template <typename Body, typename PutRight>
void GuardedWithRollback(session::Session& session, const session::Labels& labels, const char* procedure, Body&& body,
                         PutRight&& put_right) noexcept {
  session::Guarded(session.ports().error_reporting, labels, procedure, [&] {
    try {
      body();
    } catch (...) {
      put_right();
      RollBackOpenTransaction(session);
      throw;
    }
  });
}

}  // namespace

bool MayDeleteProducts(session::Session& session, controls::Form& over) {
  if (data::CheckSecurityPolicy(session, session.state().session_user, "#2280", &over)) return true;
  session.ports().desktop.Ask({.text = "Não tem permissões para apagar produtos. Contacte o administrador de segurança "
                                       "para que lhe sejam atribuídas as permissões necessárias.",
                               .title = "Politicas de Segurança",
                               .icon = Icon::kCritical},
                              &over);
  return false;
}

void DeleteSoftly(session::Session& session, const std::string& produto_id) {
  for (const char* statement :
       {"DELETE FROM tbProdutos_Precos WHERE produto_id = ", "DELETE FROM tbProdutos_Stocks WHERE produto_id = ",
        "DELETE FROM tbProdutos_Stocks_Minimos WHERE produto_id = ",
        "UPDATE tbProdutos SET is_deleted = 1, data_modified = GETDATE(), Obs = null WHERE produto_id = "}) {
    session.Execute(statement + produto_id);
  }
}

// The form goes topmost for the question, and back only after No or an error: what else is said stands in front, too.
void frmMain::Apagar() {
  const std::shared_ptr<Form> alive = shared_from_this();
  bool deleted = false;
  const auto delete_product = [&] {
    const Operation operation(*this);
    const std::string id = base::DecimalText(produto_id_);
    host().SetTopmost(*this, true);
    const Answer answer = session_.ports().desktop.Ask(
        {// The line feed stands before the carriage return, as it always has.
         .text = "Deseja apagar este Produto/Serviço?\n\r\n\rSe remover este registo não "
                 "será possível recuperá-lo.",
         .title = "Registo de Documentos",
         .icon = Icon::kQuestion,
         .buttons = Buttons::kYesNo,
         .system_modal = true},
        this);
    if (answer != Answer::kYes) {
      host().SetTopmost(*this, false);
      return;
    }
    if (!MayDeleteProducts(session_, *this)) return;
    if (const char* const refusal = RefusalOf(session_, id)) {
      Tell({.text = refusal, .title = caption(), .icon = Icon::kInformation});
      return;
    }
    {
      const hosting::ExclusiveUse exclusive(forms_, *this);
      session::Transaction transaction(session_);
      DeleteSoftly(session_, id);
      transaction.Commit();
    }
    deletion_known_ = true;
    deleted = true;
  };
  GuardedWithRollback(session_, kDeletingLabels, "Gravar", delete_product, [&] { host().SetTopmost(*this, false); });
  if (deleted) Unload();
}

void frmMain::Reactivate(std::int32_t, controls::Form&) {
  GuardedWithRollback(
      session_, kReactivateLabels, "Reactivate", [&] { set_enabled(true); },
      [&] {
        set_mouse_pointer(controls::MousePointer::kDefault);
        set_enabled(true);
      });
}

}  // namespace quenta::product
