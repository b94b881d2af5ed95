#include "hosting/frm_main_childs.h"

namespace quenta::hosting {
namespace {

constexpr int kKillmeInterval = 100;  // milliseconds

}  // namespace

frmMainChilds::frmMainChilds(ports::FormHost& host, const Forms& forms)
    : Form(host, "frmMainChilds"), Killme(host, kKillmeInterval), forms_(forms) {
  Killme.on_timer = [this] { Killme_Timer(); };
}

// The product forms outlive this one: no host ever saw them close with it.
void frmMainChilds::OnUnload(bool& cancel) {
  cancel = false;
  Killme.set_enabled(false);
}

// Waits while an operation must not be disturbed; the timer then comes again.
void frmMainChilds::Killme_Timer() {
  if (forms_.in_exclusive_use()) return;
  Killme.set_enabled(false);
  Unload();
}

}  // namespace quenta::hosting
