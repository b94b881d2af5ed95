// Value, VAT and total follow each other: whichever the user changed drives the other two through the selected rate.
#include "product/price_arithmetic.h"

#include <type_traits>

#include "base/convert.h"
#include "base/format.h"
#include "controls/field_entry.h"
#include "controls/field_value.h"
#include "product/frm_main_guard.h"
#include "product/price_row.h"

namespace quenta::product {

using namespace controls::format_code;

double R5(double amount) {
  return base::RoundToLong(amount * 100000) / 100000.0;
}

double TotalOfValue(float value, float rate) {
  return R5(double{value * (rate + 1)});
}

double VatOfTotal(float total, float rate) {
  return R5(double{total / (rate + 1) * rate});
}

double ValueOfTotal(float total, float rate) {
  return R5(double{total / (rate + 1)});
}

double TotalOfVat(double vat, double rate) {
  return rate == 0 ? 0 : R5(vat * (rate + 1) / rate);
}

double ValueOfVat(double vat, double rate) {
  return rate == 0 ? 0 : R5(vat / rate);
}

frmMain::AmountField frmMain::FieldOf(Amount amount) {
  using namespace price_position;
  switch (amount) {
    case Amount::kValor:
      return {FXValor, "FXValor_LostFocus", ValorAltered, kShownPreco, kPreco};
    case Amount::kIva:
      return {FXIVA, "FXIVA_LostFocus", IVAAltered, 0, kIva};
    case Amount::kTotal:
      break;
  }
  return {FXTOTAL, "FXTOTAL_LostFocus", TotalAltered, kShownTotal, kTotal};
}

void frmMain::AddPriceEvents() {
  const auto on_typing = [this](controls::TextField& field, bool* changed) {
    const auto mark = [this, &field, changed] {
      if (field.locked() || !visible()) return;
      SetAltered(true);
      PrecosAltered = true;
      if (changed != nullptr) *changed = true;
    };
    field.on_key_down = [this, mark](int key) {
      if (!IsCommandKey(key)) mark();
    };
    field.on_change = mark;
  };
  const auto on_focus = [this](controls::TextField& field, int code) {
    field.on_got_focus = [this, &field, code] {
      const std::string procedure = field.name() + "_GotFocus";
      Guarded(procedure.c_str(), [&] { controls::FieldGotFocus(field, code, session_.locale()); });
    };
  };
  on_typing(FXDesconto, nullptr);
  for (const Amount amount : {Amount::kValor, Amount::kIva, Amount::kTotal}) {
    const AmountField field = FieldOf(amount);
    on_typing(field.field, &field.altered);
    on_focus(field.field, amount == Amount::kValor ? kAmount4 : kAmount3);
    field.field.on_lost_focus = [this, amount] { LeaveAmount(amount); };
  }
  on_focus(FXDesconto, kPercent);
  FXDesconto.on_lost_focus = [this] {
    Guarded("FXDesconto_LostFocus", [&] {
      LeaveField(FXDesconto, kPercent);
      CopyToLine(FXDesconto, 0, price_position::kDesconto);
    });
  };
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
      SetInLine(PrecoKey, price_position::kIvaDescrit, FXIVA_Descrit.text());
      LeaveField(FXIVA_Descrit, kText);
    });
  };
  ListView2.on_item_click = [this] {
    if (ListView2.selected() >= 0) ShowPreco(ListView2.At(ListView2.selected()).key);
  };
}

// Into the field's row goes its raw value, nothing when the user has emptied it.
void frmMain::CopyToLine(const controls::TextField& field, int shown_position, int raw_position) {
  SetAmountInLine(PrecoKey, field.text().empty() ? std::string() : field.tag(), shown_position, raw_position);
}

void frmMain::SetAmountInLine(const std::string& key, const std::string& raw, int shown_position, int raw_position) {
  if (shown_position != 0) {
    SetInLine(key, shown_position, raw.empty() ? std::string() : base::Format(raw, "0.00", session_.locale()));
  }
  SetInLine(key, raw_position, raw);
}

// Takes what was typed into the field and its line, and lets it drive the other two amounts.
void frmMain::LeaveAmount(Amount amount) {
  const AmountField left = FieldOf(amount);
  Guarded(left.procedure, [&] {
    const bool taken = LeaveField(left.field, kAmount3);
    CopyToLine(left.field, left.shown_position, left.raw_position);
    if (taken && left.altered && !left.field.locked()) {
      uncomputed_.erase(PrecoKey);
      if (!left.field.text().empty() && FXIva_ID.ListIndex() >= 0) Compute(PrecoKey, amount);
    }
    left.altered = false;
  });
}

// Computes a line's other two amounts; with the key of the line that is shown, those in the entry fields too. When the
// rate cannot be read, the line is noted as not computed.
void frmMain::Compute(const std::string& key, Amount from) {
  const base::Locale& locale = session_.locale();
  const bool shown = key == PrecoKey;
  const auto amount = [&](Amount which) {
    const AmountField field = FieldOf(which);
    return base::ToSingle(shown ? field.field.tag() : PriceRow(ListView2.Item(key)).At(field.raw_position), locale);
  };
  const auto set = [&](Amount which, double value) {
    const AmountField field = FieldOf(which);
    if (shown) Set(field.field, value, kAmount);
    SetAmountInLine(key, base::ToText(value, locale), field.shown_position, field.raw_position);
  };
  // Before each computation, as long as there is no rate but 0: the server is asked for the selected one.
  const auto look_up = [&](auto& rate) {
    if (rate != 0) return;
    try {
      const ports::RowSet rows = session_.Query("SELECT * FROM tbTaxas_Iva WHERE iva_id = " +
                                                (shown ? Sql(FXIva_ID) : PriceRow(ListView2.Item(key)).iva_id()));
      if (rows.empty() || rows.front()["tx"].is_null()) return;
      rate = static_cast<std::remove_reference_t<decltype(rate)>>(base::ToDouble(rows.front()["tx"], locale));
    } catch (const base::Error&) {
      if (!key.empty()) uncomputed_[key] = from;
      throw;
    }
  };

  if (from == Amount::kIva) {
    double rate = 0;  // double here, single in the other two: as the suite computes
    const double vat = amount(Amount::kIva);
    look_up(rate);
    set(Amount::kTotal, TotalOfVat(vat, rate));
    look_up(rate);
    set(Amount::kValor, ValueOfVat(vat, rate));
    return;
  }
  float rate = 0;
  look_up(rate);
  if (from == Amount::kValor) {
    set(Amount::kTotal, TotalOfValue(amount(Amount::kValor), rate));
    look_up(rate);
    set(Amount::kIva, VatOfTotal(amount(Amount::kTotal), rate));
  } else {
    set(Amount::kIva, VatOfTotal(amount(Amount::kTotal), rate));
    look_up(rate);
    set(Amount::kValor, ValueOfTotal(amount(Amount::kTotal), rate));
  }
}

// Lines whose rate could not be read are computed before they are saved. False when it cannot be read again, which the
// user has been told; an amount too large to drive the others is saved as it was typed.
bool frmMain::AmountsAreComputed() {
  for (int i = 0; i < ListView2.Count(); ++i) {
    const std::string key = ListView2.At(i).key;
    const auto entry = uncomputed_.find(key);
    if (entry == uncomputed_.end()) continue;
    const Amount amount = entry->second;
    const AmountField field = FieldOf(amount);
    uncomputed_.erase(entry);
    Guarded(field.procedure, [&] {
      Compute(key, amount);
      if (key == PrecoKey) field.altered = false;
    });
    if (uncomputed_.find(key) == uncomputed_.end()) continue;
    Tell({.text = "Não foi possível ler a taxa de IVA do preço '" + PriceRow(ListView2.At(i)).tipo() +
                  "'.\nO produto não foi gravado. Tente gravar de novo.",
          .icon = ports::Icon::kInformation});
    ShowLine(i);
    host().Focus(*this, field.field.name().c_str());
    return false;
  }
  return true;
}

// Another rate keeps the value without VAT and recomputes the rest.
void frmMain::FXIva_ID_Click() {
  Guarded("FXIva_ID_Click", [&] {
    if (!visible()) return;
    SetAltered(true);
    PrecosAltered = true;
    const auto iva_id = FXIva_ID.SelectedItemData();
    SetInLine(PrecoKey, price_position::kIvaId, iva_id ? Sql(FXIva_ID) : "0");
    ValorAltered = true;
    FillIsencaoIVA();
    controls::FieldGotFocus(FXValor, kAmount, session_.locale());
    LeaveAmount(Amount::kValor);
  });
}

}  // namespace quenta::product
