#include "controls/field_value.h"
#include "support/sample_component.h"

namespace quenta::tests {
namespace {

using namespace controls::key_code;

class FieldEventsTest : public SampleComponentTest {
 protected:
  void SetUp() override {
    LogIn("ana");
    form = OpenForm(IdOfCode("10000"));
  }
  std::shared_ptr<product::frmMain> form;
};

TEST_F(FieldEventsTest, WhatTheUserChangesMarksTheRecord) {
  const std::vector<std::pair<const char*, std::function<void()>>> changes = {
      {"code", [&] { form->FXCodigo.Typed("X1"); }},
      {"height", [&] { form->FXAltura.Typed("5"); }},
      {"discontinued", [&] { form->FXDescontinuado.Clicked(true); }},
      {"colour chosen", [&] { form->FXCor.Chosen(1); }},
      {"size typed", [&] { form->FXTamanho.Typed("XXL"); }},
      {"supplier", [&] { form->FXFornecedor_ID.Chosen(0); }},
      {"cost centre cleared", [&] { form->FXCentro_ID.KeyDown(kDelete); }},
      {"family cleared", [&] { form->FXFamilia_ID.KeyDown(kDelete); }},
      {"name key", [&] { form->FXNome.KeyDown(kEscape); }},
      {"name pasted", [&] { form->FXNome.Typed("colado"); }},
      {"brand", [&] { form->FXMarca.Typed("Marca"); }},
      {"notes key", [&] { form->FXObs.KeyDown('A'); }},
      {"notes pasted", [&] { form->FXObs.Typed("nota"); }},
      {"type", [&] { form->FXTipo_ID.Chosen(1); }},
  };
  for (const auto& [what, change] : changes) {
    form->SetAltered(false);
    change();
    EXPECT_TRUE(form->Altered()) << what;
    EXPECT_TRUE(form->Toolbar1.Item("gravar").enabled) << what;
  }
  EXPECT_EQ(form->FXCentro_ID.ListIndex(), -1);
  EXPECT_EQ(form->FXFamilia_ID.ListIndex(), -1);
}

TEST_F(FieldEventsTest, MovingThroughTheFieldsMarksNothing) {
  for (controls::Control* control : form->controls()) {
    control->GotFocus();
    for (const int key : {kTab, kShift, kControl, kAlt, kF5}) control->KeyDown(key);
    control->LostFocus();
  }
  EXPECT_FALSE(form->Altered()) << form->Dump();
}

TEST_F(FieldEventsTest, SubfamiliesFollowTheFamily) {
  const std::string before = form->FXSub_Familia_ID.text();
  form->FXFamilia_ID.GotFocus();
  form->FXFamilia_ID.LostFocus();
  EXPECT_EQ(form->FXSub_Familia_ID.text(), before) << "an unchanged family keeps the subfamily";
  const int entries = form->FXSub_Familia_ID.ListCount();
  form->FXFamilia_ID.LostFocus();
  EXPECT_EQ(form->FXSub_Familia_ID.ListCount(), entries);

  controls::SetFieldValue(form->FXFamilia_ID, 4, 0, {});
  form->FXFamilia_ID.LostFocus();
  EXPECT_EQ(form->FXSub_Familia_ID.ListCount(), 3);
  EXPECT_EQ(form->FXSub_Familia_ID.ListIndex(), -1);
  form->FXFamilia_ID.KeyDown(kDelete);
  form->FXFamilia_ID.LostFocus();
  EXPECT_EQ(form->FXSub_Familia_ID.ListCount(), 0);
}

TEST_F(FieldEventsTest, NamesAndBrandsAreOfferedOnDemandWithoutDoubles) {
  const auto names = [&] {
    form->FXNome.GotFocus();
    form->FXNome.LostFocus();
    return form->FXNome.ListCount();
  };
  form->FXNome.Typed("Meio escrito");
  const int in_subfamily = names();
  EXPECT_EQ(names(), in_subfamily);
  EXPECT_EQ(form->FXNome.text(), "Meio escrito");
  form->FXSub_Familia_ID.KeyDown(kDelete);
  EXPECT_GT(names(), in_subfamily);
  form->FXFamilia_ID.KeyDown(kDelete);
  EXPECT_EQ(names(), 0) << "no family, no names";
  form->FXMarca.GotFocus();
  EXPECT_EQ(form->FXMarca.ListCount(), std::stoi(SqlText("SELECT COUNT(DISTINCT marca) FROM tbProdutos")));
}

}  // namespace
}  // namespace quenta::tests
