// Where the product form's controls stand.
#include "product/frm_main.h"

#include <initializer_list>

namespace quenta::product {

void frmMain::AddControls() {
  FXCor.holds_text = true;
  FXTamanho.holds_text = true;
  FXIVA_Descrit.holds_text = true;
  FXObs.multi_line = true;
  for (controls::TextField* field : {&FXAltura, &FXLargura, &FXProfundidade, &FXValor, &FXIVA, &FXTOTAL, &FXDesconto,
                                     &FXPrecoMin, &FXPrecoMax, &FXQuantidade, &FXValorTotal}) {
    field->right_aligned = true;
  }
  for (controls::TextField* field : {&FXTipo, &FXPrecoMin, &FXPrecoMax, &FXQuantidade, &FXValorTotal}) {
    field->set_locked(true);
  }
  for (controls::Control* control : std::initializer_list<controls::Control*>{&Toolbar1,
                                                                              &Label1,
                                                                              &Frame5,
                                                                              &FXCodigo_Label,
                                                                              &FXCodigo,
                                                                              &FXNome_Label,
                                                                              &FXNome,
                                                                              &FXDescontinuado,
                                                                              &FXTipo_ID_Label,
                                                                              &FXTipo_ID,
                                                                              &FXFamilia_ID_Label,
                                                                              &FXFamilia_ID,
                                                                              &FXSub_Familia_ID_Label,
                                                                              &FXSub_Familia_ID,
                                                                              &FXMarca_Label,
                                                                              &FXMarca,
                                                                              &FXFornecedor_ID_Label,
                                                                              &FXFornecedor_ID,
                                                                              &FXCentro_ID_Label,
                                                                              &FXCentro_ID,
                                                                              &Frame6,
                                                                              &FXCor_Label,
                                                                              &FXCor,
                                                                              &FXTamanho_Label,
                                                                              &FXTamanho,
                                                                              &FXAltura_Label,
                                                                              &FXAltura,
                                                                              &FXLargura_Label,
                                                                              &FXLargura,
                                                                              &FXProfundidade_Label,
                                                                              &FXProfundidade,
                                                                              &FXObs_Label,
                                                                              &FXObs,
                                                                              &TabStrip1,
                                                                              &Frame1,
                                                                              &ListView2,
                                                                              &FXTipo_Label,
                                                                              &FXTipo,
                                                                              &FXValor_Label,
                                                                              &FXValor,
                                                                              &FXIva_ID_Label,
                                                                              &FXIva_ID,
                                                                              &FXIVA_Label,
                                                                              &FXIVA,
                                                                              &FXTOTAL_Label,
                                                                              &FXTOTAL,
                                                                              &FXDesconto_Label,
                                                                              &FXDesconto,
                                                                              &FXIVA_Descrit_Label,
                                                                              &FXIVA_Descrit,
                                                                              &Frame2,
                                                                              &ListView1,
                                                                              &Frame3,
                                                                              &Toolbar3,
                                                                              &FXData_Inicio_Label,
                                                                              &FXData_Inicio,
                                                                              &FXData_Fim_Label,
                                                                              &FXData_Fim,
                                                                              &ListView13,
                                                                              &FXPrecoMin_Label,
                                                                              &FXPrecoMin,
                                                                              &FXPrecoMax_Label,
                                                                              &FXPrecoMax,
                                                                              &FXQuantidade_Label,
                                                                              &FXQuantidade,
                                                                              &FXValorTotal_Label,
                                                                              &FXValorTotal,
                                                                              &Frame4,
                                                                              &Toolbar2,
                                                                              &ListView3}) {
    Add(*control);
  }
}

void frmMain::LayOut() {
  Frame5.rows = {
      {{{&FXCodigo, &FXCodigo_Label, 2}, {&FXNome, &FXNome_Label, 8}, {&FXDescontinuado, nullptr, 2}}},
      {{{&FXTipo_ID, &FXTipo_ID_Label, 3},
        {&FXFamilia_ID, &FXFamilia_ID_Label, 3},
        {&FXSub_Familia_ID, &FXSub_Familia_ID_Label, 3},
        {&FXMarca, &FXMarca_Label, 3}}},
      {{{&FXFornecedor_ID, &FXFornecedor_ID_Label, 6}, {&FXCentro_ID, &FXCentro_ID_Label, 6}}},
  };
  Frame6.rows = {
      {{{&FXCor, &FXCor_Label, 3},
        {&FXTamanho, &FXTamanho_Label, 3},
        {&FXAltura, &FXAltura_Label, 2},
        {&FXLargura, &FXLargura_Label, 2},
        {&FXProfundidade, &FXProfundidade_Label, 2}}},
      {{{&FXObs, &FXObs_Label, 12}}, 3},
  };
  Frame1.rows = {
      {{{&ListView2, nullptr, 12}}, 5, true},
      {{{&FXTipo, &FXTipo_Label, 3},
        {&FXValor, &FXValor_Label, 2},
        {&FXIva_ID, &FXIva_ID_Label, 3},
        {&FXIVA, &FXIVA_Label, 1},
        {&FXTOTAL, &FXTOTAL_Label, 2},
        {&FXDesconto, &FXDesconto_Label, 1}}},
      {{{&FXIVA_Descrit, &FXIVA_Descrit_Label, 12}}},
  };
  Frame2.rows = {{{{&ListView1, nullptr, 12}}, 5, true}};
  Frame3.toolbar = &Toolbar3;
  Frame3.rows = {
      {{{&FXData_Inicio, &FXData_Inicio_Label, 3}, {&FXData_Fim, &FXData_Fim_Label, 3}}},
      {{{&ListView13, nullptr, 12}}, 5, true},
      {{{&FXPrecoMin, &FXPrecoMin_Label, 3},
        {&FXPrecoMax, &FXPrecoMax_Label, 3},
        {&FXQuantidade, &FXQuantidade_Label, 3},
        {&FXValorTotal, &FXValorTotal_Label, 3}}},
  };
  Frame4.toolbar = &Toolbar2;
  Frame4.rows = {{{{&ListView3, nullptr, 12}}, 5, true}};

  layout_.toolbar = &Toolbar1;
  layout_.note = &Label1;
  layout_.frames = {&Frame5, &Frame6};
  layout_.tabs = &TabStrip1;
  layout_.pages = {{"precos", &Frame1},
                   {"stocks", &Frame2},
                   {"compras", &Frame3},
                   {"vendas", &Frame3},
                   {"encomendas_fornecedores", &Frame3},
                   {"encomendas_clientes", &Frame3},
                   {"dependentes", &Frame4}};
  layout_.minimum_width = 760;
  layout_.minimum_height = 600;
  layout_.initial_width = 940;
  layout_.initial_height = 720;
}

}  // namespace quenta::product
