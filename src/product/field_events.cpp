// What the record's fields do when the user types, chooses, enters and leaves.
#include <algorithm>

#include "base/convert.h"
#include "base/text.h"
#include "controls/auto_complete.h"
#include "controls/field_entry.h"
#include "controls/field_value.h"
#include "product/frm_main_guard.h"

namespace quenta::product {
namespace {

using controls::key_code::kDelete;

constexpr int kCode = controls::format_code::kText;
constexpr int kDimension = controls::format_code::kNumber;

}  // namespace

// Only the user marks the record: while the form fills itself it is not on the screen yet, or says so.
void frmMain::MarkAltered() {
  if (visible() && MayChange()) SetAltered(true);
}

// Keys that lead to a command, or out of the field, and change nothing in it.
bool frmMain::IsCommandKey(int key) const {
  using namespace controls::key_code;
  if (key == kShift || key == kTab || key == kControl || key == kAlt) return true;
  return std::any_of(shortcuts_.begin(), shortcuts_.end(), [key](const controls::Shortcut& shortcut) {
    return shortcut.key == key && !shortcut.control && !shortcut.shift;
  });
}

// The field is left. False when it does not take what was typed, which the user is told where he can mend it.
bool frmMain::LeaveField(controls::Control& field, int code) {
  if (controls::FieldLostFocus(field, code, session_.locale())) return true;
  Tell({.text = controls::RefusalOf(field), .icon = ports::Icon::kInformation});
  host().Focus(*this, field.name().c_str());
  return false;
}

void frmMain::AddFieldEvents() {
  const auto mark = [this] { MarkAltered(); };
  const auto mark_at_key = [this](int key) {
    if (!IsCommandKey(key)) MarkAltered();
  };
  const auto switch_on_focus = [this](controls::Control& field, int code) {
    field.on_got_focus = [this, &field, code] {
      const std::string procedure = field.name() + "_GotFocus";
      Guarded(procedure.c_str(), [&] { controls::FieldGotFocus(field, code, session_.locale()); });
    };
    field.on_lost_focus = [this, &field, code] {
      const std::string procedure = field.name() + "_LostFocus";
      Guarded(procedure.c_str(), [&] { LeaveField(field, code); });
    };
  };

  FXCodigo.on_change = mark;
  switch_on_focus(FXCodigo, kCode);
  for (controls::TextField* field : {&FXAltura, &FXProfundidade, &FXLargura}) {
    field->on_change = mark;
    switch_on_focus(*field, kDimension);
  }
  FXDescontinuado.on_click = mark;
  for (controls::ComboBox* box :
       {&FXCor, &FXTamanho, &FXCentro_ID, &FXFornecedor_ID, &FXFamilia_ID, &FXSub_Familia_ID, &FXNome, &FXMarca}) {
    box->on_click = mark;
    box->on_change = mark;
  }
  FXTipo_ID.on_click = [this] { FXTipo_ID_Click(); };

  for (controls::ComboBox* box : {&FXCentro_ID, &FXFamilia_ID, &FXSub_Familia_ID}) {
    box->on_key_down = [this, box](int key) {
      if (key != kDelete || box->locked()) return;
      box->SetListIndex(-1);
      MarkAltered();
    };
  }
  FXFamilia_ID.on_lost_focus = [this] { FXFamilia_ID_LostFocus(); };
  FXNome.on_key_down = mark_at_key;
  FXNome.on_key_press = [this](int& key) {
    Guarded("FXNome_KeyPress", [&] {
      if (FXNome.locked()) return;
      controls::AutoCompletarCombo(FXNome, key);
      if (key == 0) MarkAltered();
    });
  };
  FXNome.on_got_focus = [this] { FXNome_GotFocus(); };
  FXMarca.on_got_focus = [this] { FXMarca_GotFocus(); };
  FXObs.on_change = mark;
  FXObs.on_key_down = mark_at_key;
}

// The subfamilies follow the family. A family that did not change keeps the subfamily that was chosen.
void frmMain::FXFamilia_ID_LostFocus() {
  Guarded("FXFamilia_ID_LostFocus", [&] {
    const auto chosen = FXSub_Familia_ID.SelectedItemData();
    const bool same_family = FXFamilia_ID.SelectedItemData() == familia_of_subfamilias_;
    const auto choose_again = [&] {
      if (same_family && chosen) SetOffered(FXSub_Familia_ID, *chosen);
    };
    try {
      FillSubfamilias();
    } catch (...) {
      choose_again();
      throw;
    }
    choose_again();
  });
}

// Names already in use, so that products of one family are named alike.
void frmMain::FXNome_GotFocus() {
  Guarded("FXNome_GotFocus", [&] {
    controls::FieldGotFocus(FXNome, kCode, session_.locale());
    const std::string familia = controls::GetFieldValue(FXFamilia_ID, 0, session_.locale());
    const std::string subfamilia = controls::GetFieldValue(FXSub_Familia_ID, 0, session_.locale());
    if (FXFamilia_ID.ListIndex() < 0) {
      RefillNames(FXNome, {}, "nome");
    } else if (FXSub_Familia_ID.ListIndex() >= 0) {
      RefillNames(FXNome,
                  session_.Query("SELECT nome FROM tbProdutos WHERE familia_id = " + familia +
                                 " AND subfamilia_id = " + subfamilia + " GROUP BY nome ORDER BY nome"),
                  "nome");
    } else {
      RefillNames(
          FXNome,
          session_.Query("SELECT nome FROM tbProdutos WHERE familia_id = " + familia + " GROUP BY nome ORDER BY nome"),
          "nome");
    }
  });
}

void frmMain::FXMarca_GotFocus() {
  Guarded("FXMarca_GotFocus", [&] {
    controls::FieldGotFocus(FXMarca, kCode, session_.locale());
    RefillNames(FXMarca, session_.Query("SELECT marca FROM tbProdutos GROUP BY marca ORDER BY marca"), "marca");
  });
}

// A text field takes what its column takes, as soon as a result has said how much that is.
void frmMain::TakeLimits(const ports::RowSet& products) {
  const auto limit = [&](auto& field, const char* column) {
    if (products.FindColumn(column)) field.set_max_length(products.TextSize(column));
  };
  limit(FXCodigo, "codigo");
  limit(FXNome, "nome");
  limit(FXMarca, "marca");
  limit(FXCor, "cor");
  limit(FXTamanho, "tamanho");
  limit(FXObs, "obs");
  limit(FXIVA_Descrit, "iva_descrit");
}

// Offers other entries and leaves what the user has typed.
void frmMain::RefillNames(controls::ComboBox& box, const ports::RowSet& rows, const char* column) {
  TakeLimits(rows);
  const controls::ComboBox::Update update(box);
  box.Clear();
  for (const ports::Row row : rows) {
    const base::Value& name = row[column];
    if (!name.is_null()) box.AddItem(base::ToText(name, session_.locale()));
  }
}

}  // namespace quenta::product
