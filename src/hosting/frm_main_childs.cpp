#include "hosting/frm_main_childs.h"

#include "component/session/guarded.h"

namespace quenta::hosting {
namespace {

constexpr session::Labels kLabels{"Programa de Contabilidade", "Quenta_Produtos", "frmMainChilds",
                                  session::DescriptionStyle::kAlone};
constexpr int kKillmeInterval = 100;  // milliseconds

}  // namespace

frmMainChilds::frmMainChilds(ports::FormHost& host, ports::ErrorReporting& error_reporting, const Forms& forms)
    : Form(host, "frmMainChilds"), Killme(host, kKillmeInterval), error_reporting_(error_reporting), forms_(forms) {
  Killme.on_timer = [this] { Killme_Timer(); };
}

void frmMainChilds::CloseLater() noexcept {
  if (!loaded()) return;
  session::Guarded(error_reporting_, kLabels, "Killme_Timer", [&] {
    try {
      Killme.set_enabled(true);
    } catch (...) {
      Unload();
      throw;
    }
  });
}

// The product forms outlive this one: no host ever saw them close with it.
void frmMainChilds::OnUnload(bool& cancel) {
  cancel = false;
  Killme.set_enabled(false);
}

// Waits while an operation must not be disturbed; the timer then comes again.
void frmMainChilds::Killme_Timer() noexcept {
  if (forms_.in_exclusive_use()) return;
  session::Guarded(error_reporting_, kLabels, "Killme_Timer", [&] {
    Killme.set_enabled(false);
    Unload();
  });
}

}  // namespace quenta::hosting
