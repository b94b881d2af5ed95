#include "product/form_over_product.h"

#include <utility>

#include "component/session/guarded.h"

namespace quenta::product {

void FormOverProduct::OnLoad() {
  forms_.Add(*this);
  if (const auto opener = opener_.lock()) opener->set_enabled(false);
}

// Before the window goes: the one that comes to the front then can be used.
void FormOverProduct::OnUnload(bool& cancel) {
  if (!cancel) GiveBack();
}

void FormOverProduct::OnClosed() noexcept {
  forms_.Remove(*this);
  GiveBack();
}

void FormOverProduct::OnUnloadFailed() noexcept {
  const session::Labels labels{"Programa de Contabilidade", "Quenta_Produtos", name().c_str(),
                               session::DescriptionStyle::kAlone};
  session::ReportException(session_.ports().error_reporting, labels, "Form_Unload");
}

std::shared_ptr<frmMain> FormOverProduct::OpenerOf(std::int32_t produto_id) const {
  const auto opener = opener_.lock();
  return opener && opener->loaded() && opener->ProdutoId() == produto_id ? opener : nullptr;
}

void FormOverProduct::GiveBack() noexcept {
  if (const auto opener = std::exchange(opener_, {}).lock()) opener->Reactivate(1, *this);
}

}  // namespace quenta::product
