// Closing the form: the question whether to save, and what each answer does.
#include "base/text.h"
#include "component/session/transaction.h"
#include "data/ensure_connection.h"
#include "product/frm_main_guard.h"

namespace quenta::product {

using ports::Answer;
using ports::Buttons;
using ports::Icon;

void frmMain::OnUnload(bool& cancel) {
  const bool may_close = Guarded("Form_Unload", [&] { return MayClose(); });
  cancel = !may_close;
}

// An error while closing keeps the form: nothing that the user typed is lost by it.
bool frmMain::MayClose() {
  if (!Altered()) return true;
  const Answer answer = Ask({.text = "Deseja gravar as alterações efectuadas?",
                             .icon = Icon::kQuestion,
                             .buttons = Buttons::kYesNoCancel,
                             .system_modal = true});
  if (answer == Answer::kCancel) return false;
  if (answer == Answer::kYes) return Gravar();
  if (new_product_) DeleteNewProduct();
  return true;
}

// Undoes a creation that the user did not want to keep. The numbers it took are not given back.
void frmMain::DeleteNewProduct() {
  const hosting::ExclusiveUse exclusive(forms_, *this);
  // The form closes as soon as the server is back.
  data::RestoreConnection(session_, *this);
  session::Transaction transaction(session_);
  for (const char* statement :
       {"DELETE FROM tbProdutos_Precos WHERE produto_id = ", "DELETE FROM tbProdutos_Stocks WHERE produto_id = ",
        "DELETE FROM tbProdutos_Stocks_Minimos WHERE produto_id = ", "DELETE FROM tbProdutos WHERE produto_id = "}) {
    session_.Execute(statement + base::DecimalText(produto_id_));
  }
  transaction.Commit();
}

// A question stands in front of everything: the form is topmost while it is asked.
Answer frmMain::Ask(const ports::Message& message) {
  struct Topmost {
    ~Topmost() { form.host().SetTopmost(form, false); }
    frmMain& form;
  };
  host().SetTopmost(*this, true);
  const Topmost topmost{*this};
  return session_.ports().desktop.Ask(message, this);
}

void frmMain::Tell(const ports::Message& message) {
  session_.ports().desktop.Ask(message, this);
}

// Says why the record cannot be saved, and takes the user to the field at fault.
void frmMain::Refuse(const char* text, const controls::Control& field) {
  Tell({.text = text, .title = "Registo de Documentos", .icon = Icon::kInformation, .system_modal = true});
  host().Focus(*this, field.name().c_str());
}

}  // namespace quenta::product
