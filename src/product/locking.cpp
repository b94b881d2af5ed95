// What of the record the user may change: nothing while it was not read whole, or while its warehouse forbids it.
#include <initializer_list>
#include <utility>

#include "product/frm_main_guard.h"

namespace quenta::product {

void frmMain::LockProduto(bool locked) {
  locked_ = locked;
  for (const char* key : {"gravar", "apagar", "duplicar"}) Toolbar1.ShowButton(key, !locked);
  CloseOrOpen();
}

// A product that was not read whole can be looked at, and read again; saving it would erase what is not shown.
void frmMain::SetIncomplete(bool incomplete) {
  incomplete_ = incomplete;
  if (incomplete) {
    Label1.set_caption(
        produto_id_ == 0 ? "Não foi possível criar o produto. Prima F5 para tentar de novo."
                         : "Não foi possível ler todo o produto: só pode ser consultado. Prima F5 para o ler de novo.");
    for (const char* key : {"apagar", "duplicar", "imprimir"}) Toolbar1.EnableButton(key, false);
    Toolbar3.EnableButton("relatorio", false);
  }
  CloseOrOpen();
}

void frmMain::CloseOrOpen() {
  const bool may_change = MayChange();
  for (controls::TextField* field : {&FXCodigo, &FXObs, &FXValor, &FXIVA, &FXTOTAL, &FXDesconto}) {
    field->set_locked(!may_change);
  }
  for (controls::ComboBox* box : {&FXFamilia_ID, &FXSub_Familia_ID, &FXNome, &FXIva_ID}) box->set_locked(!may_change);
  // Beyond the fields that have always been locked: whatever else of the record would be saved with them.
  for (const auto& [field, caption] : std::initializer_list<std::pair<controls::Control*, controls::Control*>>{
           {&FXDescontinuado, nullptr},
           {&FXTipo_ID, &FXTipo_ID_Label},
           {&FXMarca, &FXMarca_Label},
           {&FXFornecedor_ID, &FXFornecedor_ID_Label},
           {&FXCentro_ID, &FXCentro_ID_Label}}) {
    field->set_enabled(may_change);
    if (caption != nullptr) caption->set_enabled(may_change);
  }
  ShowAttributes();
  ShowExemption();
  for (const char* key : {"gerar", "remover"}) Toolbar2.EnableButton(key, may_change);
}

}  // namespace quenta::product
