// Value, VAT and total follow each other: whichever the user changed drives the other two through the selected rate.
#include "product/price_arithmetic.h"

#include "base/convert.h"
#include "base/format.h"
#include "controls/field_entry.h"
#include "controls/field_value.h"
#include "product/frm_main_guard.h"
#include "product/price_row.h"

namespace quenta::product {
namespace {

using namespace controls::format_code;
using controls::key_code::kShift;
using controls::key_code::kTab;

// What a field's row gets: its raw value, nothing when the user has emptied it.
std::string RawOf(const controls::TextField& field) {
  return field.text().empty() ? std::string() : field.tag();
}

}  // namespace

double R5(double amount) {
  return base::RoundToLong(amount * 100000) / 100000.0;
}

void frmMain::AddPriceEvents() {
  const auto on_typing = [this](controls::TextField& field, bool* changed) {
    const auto mark = [this, &field, changed] {
      if (field.locked() || !visible()) return;
      SetAltered(true);
      PrecosAltered = true;
      if (changed != nullptr) *changed = true;
    };
    field.on_key_down = [mark](int key) {
      if (key != kShift && key != kTab) mark();
    };
    field.on_change = mark;
  };
  const auto on_focus = [this](controls::TextField& field, int code) {
    field.on_got_focus = [this, &field, code] {
      const std::string procedure = field.name() + "_GotFocus";
      Guarded(procedure.c_str(), [&] { controls::FieldGotFocus(field, code, session_.locale()); });
    };
  };
  on_typing(FXValor, &ValorAltered);
  on_typing(FXIVA, &IVAAltered);
  on_typing(FXTOTAL, &TotalAltered);
  on_typing(FXDesconto, nullptr);
  on_focus(FXValor, kAmount4);
  on_focus(FXIVA, kAmount3);
  on_focus(FXTOTAL, kAmount3);
  on_focus(FXDesconto, kPercent);
  FXValor.on_lost_focus = [this] { FXValor_LostFocus(); };
  FXIVA.on_lost_focus = [this] { FXIVA_LostFocus(); };
  FXTOTAL.on_lost_focus = [this] { FXTOTAL_LostFocus(); };
  FXDesconto.on_lost_focus = [this] { FXDesconto_LostFocus(); };
  FXIva_ID.on_click = [this] { FXIva_ID_Click(); };

  const auto mark_reason = [this] {
    if (!visible()) return;
    SetAltered(true);
    PrecosAltered = true;
  };
  FXIVA_Descrit.on_click = mark_reason;
  FXIVA_Descrit.on_change = mark_reason;
  FXIVA_Descrit.on_lost_focus = [this] {
    Guarded("FXIVA_Descrit_LostFocus", [&] {
      SetInLine(price_position::kIvaDescrit, FXIVA_Descrit.text());
      controls::FieldLostFocus(FXIVA_Descrit, kText, session_.locale());
    });
  };
  ListView2.on_item_click = [this] {
    if (ListView2.selected() >= 0) ShowPreco(ListView2.At(ListView2.selected()).key);
  };
}

// Takes what was typed into the field and its row. True when it has to drive the other two amounts.
bool frmMain::TakeAmount(controls::TextField& field, int shown_position, int raw_position, bool altered) {
  controls::FieldLostFocus(field, kAmount3, session_.locale());
  CopyToLine(field, shown_position, raw_position);
  return !field.locked() && altered && !field.text().empty() && FXIva_ID.ListIndex() >= 0;
}

void frmMain::CopyToLine(const controls::TextField& field, int shown_position, int raw_position) {
  const std::string raw = RawOf(field);
  if (shown_position != 0) {
    SetInLine(shown_position, raw.empty() ? std::string() : base::Format(raw, "0.00", session_.locale()));
  }
  SetInLine(raw_position, raw);
}

void frmMain::ShowComputed(controls::TextField& field, double amount, int shown_position, int raw_position) {
  Set(field, amount, kAmount);
  CopyToLine(field, shown_position, raw_position);
}

// Before each computation, as long as the handler has no rate but 0: the server is asked for the selected one.
template <typename Rate>
void frmMain::LookUpRate(Rate& rate) {
  if (rate != 0) return;
  const ports::RowSet rows = session_.Query("SELECT * FROM tbTaxas_Iva WHERE iva_id = " + Sql(FXIva_ID));
  if (!rows.empty() && !rows.front()["tx"].is_null()) {
    rate = static_cast<Rate>(base::ToDouble(rows.front()["tx"], session_.locale()));
  }
}

float frmMain::Amount(const controls::TextField& field) {
  return base::ToSingle(field.tag(), session_.locale());
}

void frmMain::FXValor_LostFocus() {
  using namespace price_position;
  Guarded("FXValor_LostFocus", [&] {
    if (TakeAmount(FXValor, kShownPreco, kPreco, ValorAltered)) {
      float rate = 0;
      LookUpRate(rate);
      ShowComputed(FXTOTAL, R5(double{Amount(FXValor) * (rate + 1)}), kShownTotal, kTotal);
      LookUpRate(rate);
      ShowComputed(FXIVA, R5(double{Amount(FXTOTAL) / (rate + 1) * rate}), 0, kIva);
    }
    ValorAltered = false;
  });
}

void frmMain::FXTOTAL_LostFocus() {
  using namespace price_position;
  Guarded("FXTOTAL_LostFocus", [&] {
    if (TakeAmount(FXTOTAL, kShownTotal, kTotal, TotalAltered)) {
      float rate = 0;
      LookUpRate(rate);
      ShowComputed(FXIVA, R5(double{Amount(FXTOTAL) / (rate + 1) * rate}), 0, kIva);
      LookUpRate(rate);
      ShowComputed(FXValor, R5(double{Amount(FXTOTAL) / (rate + 1)}), kShownPreco, kPreco);
    }
    TotalAltered = false;
  });
}

void frmMain::FXIVA_LostFocus() {
  using namespace price_position;
  Guarded("FXIVA_LostFocus", [&] {
    if (TakeAmount(FXIVA, 0, kIva, IVAAltered)) {
      double rate = 0;  // double here, single in the other two: as the suite computes
      const double vat = Amount(FXIVA);
      LookUpRate(rate);
      ShowComputed(FXTOTAL, rate == 0 ? 0 : R5(vat * (rate + 1) / rate), kShownTotal, kTotal);
      LookUpRate(rate);
      ShowComputed(FXValor, rate == 0 ? 0 : R5(vat / rate), kShownPreco, kPreco);
    }
    IVAAltered = false;
  });
}

void frmMain::FXDesconto_LostFocus() {
  Guarded("FXDesconto_LostFocus", [&] {
    controls::FieldLostFocus(FXDesconto, kPercent, session_.locale());
    CopyToLine(FXDesconto, 0, price_position::kDesconto);
  });
}

// Another rate keeps the value without VAT and recomputes the rest.
void frmMain::FXIva_ID_Click() {
  Guarded("FXIva_ID_Click", [&] {
    if (!visible()) return;
    SetAltered(true);
    PrecosAltered = true;
    const auto iva_id = FXIva_ID.SelectedItemData();
    SetInLine(price_position::kIvaId, iva_id ? Sql(FXIva_ID) : "0");
    ValorAltered = true;
    FillIsencaoIVA();
    controls::FieldGotFocus(FXValor, kAmount, session_.locale());
    FXValor_LostFocus();
  });
}

}  // namespace quenta::product
